#include <filesystem>
#include <map>

#include "modFiles.h"
#include "support/beast_text.h"
#include "support/fresh.h"
#include "support/run_command.h"

using testing::HasSubstr;

namespace {

/// A triangle of one red material.
const std::string redTriangle =
    R"({"asset": {"version": "2.0"}, "scenes": [{"nodes": [0]}], "nodes": [{"mesh": 0}],
        "meshes": [{"name": "Tri", "primitives": [{"attributes": {"POSITION": 0}, "material": 0}]}],
        "materials": [{"name": "Red", "pbrMetallicRoughness": {"baseColorFactor": [1, 0, 0, 1]}}],
        "accessors": [{"bufferView": 0, "componentType": 5126, "type": "VEC3", "count": 3}],
        "bufferViews": [{"buffer": 0, "byteLength": 36}], "buffers": [{"byteLength": 36, "uri":
        "data:application/octet-stream;base64,AAAAAAAAAAAAAAAAAACAPwAAAAAAAAAAAAAAAAAAgD8AAAAA"}]})";

class Convert : public ModelFile {
protected:
    void SetUp() override
    {
        ASSERT_TRUE(Load(BeastText));
        Plain = ModelText();
        PutFile(Path, Plain);
    }
    void Done(const std::string& words, const std::string& told = "") const
    {
        SCOPED_TRACE(words);
        const Outcome outcome = RunCommand(Folder, "convert " + words);
        EXPECT_EQ(outcome.Code, 0) << outcome.Errors;
        EXPECT_THAT(outcome.Output + outcome.Errors, HasSubstr(told));
    }
    std::map<std::string, std::string> Listing() const
    {
        std::map<std::string, std::string> files;
        for (const std::string& name : Folder.Names()) {
            files[name] = std::filesystem::is_directory(PathOf(Folder / name)) ? "" : Content(Folder / name);
        }
        return files;
    }
    std::string Plain;
};

} // namespace

TEST_F(Convert, TakesAModelOutAndBack)
{
    Done("a.mvm a.glb", "1 face of \"Beast\" stays behind, in the record alone");
    Done("a.mvm b.GLTF");
    EXPECT_THAT(Folder.Names(), testing::ElementsAre("a.glb", "a.mvm", "b.GLTF", "b.bin"));
    Done("a.glb new.mvm");
    Done("b.GLTF text.mvm");
    Done("a.glb like.mvm --like a.mvm", "\"Beast\": 8 vertices kept");
    Done("a.glb like.mvm --like a.mvm");
    Done("a.glb a.mvm --like a.mvm --in-place");
    for (const char* name : {"a.mvm", "new.mvm", "text.mvm", "like.mvm"}) {
        EXPECT_EQ(Content(Folder / name), Plain) << name;
    }
    Done("a.glb chosen.mvm --skin Eye", "The file was changed since");
    EXPECT_THAT(Content(Folder / "chosen.mvm"), HasSubstr("skin \"Eye\""));
}

TEST_F(Convert, TakesAShapeThatStandsElsewhereOnlyWhenForced)
{
    std::string moved = Plain;
    moved.replace(moved.find("position = (0,1,0)"), 18, "position = (0,3,0)");
    PutFile(Folder / "moved.mvm", moved);
    Done("moved.mvm moved.glb");
    const Outcome outcome = RunCommand(Folder, "convert moved.glb out.mvm --like a.mvm");
    EXPECT_EQ(outcome.Code, 2);
    EXPECT_THAT(outcome.Errors, HasSubstr("1 of 3 bones stand elsewhere than in the model, up to 2"));
    EXPECT_THAT(outcome.Errors, HasSubstr("Nothing is written; --force takes the shape as it stands."));
    EXPECT_EQ(Content(Folder / "out.mvm"), "(none)");
    Done("moved.glb out.mvm --like a.mvm --force");
    EXPECT_EQ(Content(Folder / "out.mvm"), Plain);
}

TEST_F(Convert, PutsPicturesBesideANewModelAndOverNone)
{
    PutFile(Folder / "red.gltf", redTriangle);
    Done("red.gltf first.mvm");
    EXPECT_THAT(Content(Folder / "first.mvm"), HasSubstr("colormap = \"Red.bmp\""));
    const std::string picture = Content(Folder / "Red.bmp");
    EXPECT_TRUE(picture.starts_with("BM"));
    Done("red.gltf again.mvm");
    EXPECT_THAT(Folder.Names(), testing::Not(testing::Contains("Red-2.bmp")));
    PutFile(Folder / "Red.bmp", "mine");
    Done("red.gltf other.mvm");
    EXPECT_EQ(Content(Folder / "Red.bmp"), "mine");
    EXPECT_EQ(Content(Folder / "Red-2.bmp"), picture);
    EXPECT_THAT(Content(Folder / "other.mvm"), HasSubstr("colormap = \"Red-2.bmp\""));

    Done("again.mvm far.gltf"); // its picture is "mine", which is none
    EXPECT_THAT(Folder.Names(), testing::Not(testing::Contains("far-1.png")));
    PutFile(Folder / "Red.bmp", picture);
    Done("first.mvm far.gltf");
    EXPECT_TRUE(Content(Folder / "far-1.png").starts_with("\x89PNG"));

    std::filesystem::create_directory(PathOf(Folder / "sub"));
    for (const std::string& there : {picture, std::string("mine")}) { // none at first
        Done("far.gltf sub/back.mvm");
        EXPECT_THAT(Content(Folder / "sub/back.mvm"), HasSubstr("colormap = \"Red.bmp\""));
        EXPECT_EQ(Content(Folder / "sub/Red.bmp"), there);
        PutFile(Folder / "sub/Red.bmp", "mine");
    }
}

TEST_F(Convert, TouchesNothingWhenItFails)
{
    Done("a.mvm a.glb");
    const std::string glb = Content(Folder / "a.glb");
    PutFile(Folder / "cut.glb", glb.substr(0, glb.size() / 2));
    PutFile(Folder / "red.gltf", redTriangle);
    PutFile(Folder / "far.gltf", R"({"asset": {"version": "2.0"}, "buffers": [{"byteLength": 1, "uri": "../a"}]})");
    PutFile(Folder / "bare.mvm", CrLf("bone \"B01\"|{|}|"));
    PutFile(Folder / "flat.mvm", CrLf("mesh \"M\"|{| v = (0,0,0)| f = (1,1,1),(1,1,1),(1,1,1),0|}|"));
    for (const char* name : {"text.glb", "text.mvm", "other.bin"}) {
        PutFile(Folder / name, "not yours");
    }
    for (const std::string name : {"readonly.mvm", "readonly.glb"}) {
        PutFile(Folder / name, name == "readonly.mvm" ? Plain : glb);
        std::filesystem::permissions(PathOf(Folder / name), std::filesystem::perms(0444));
    }
    for (const char* name : {"folder.glb", "folder.mvm", "folder.gltf", "deep.bin"}) {
        std::filesystem::create_directory(PathOf(Folder / name));
    }
    std::filesystem::create_hard_link(PathOf(Path), PathOf(Folder / "twin.glb"));
    const std::string formats = "One of the two files is a model (.mvm); the other one is .glb or .gltf";
    const std::pair<std::string, std::string> cases[] = {
        {"", "IN is required"},
        {"a.mvm", "OUT is required"},
        {"a.mvm b.mvm", formats},
        {"a.glb b.glb", formats},
        {"a.mvm b.fbx", formats},
        {"a.mvm b", formats},
        {"a.mvm b.glb --like a.mvm", "--like and --skin are for the way back to a model."},
        {"a.mvm b.glb --skin Beast", "--like and --skin are for the way back to a model."},
        {"a.glb b.mvm --force", "--force requires --like"},
        {"a.glb b.mvm --in-place", "--in-place requires --like"},
        {"a.glb b.mvm --like a.mvm --skin Beast", "excludes"},
        {"nosuch.mvm b.glb", "bwrt: nosuch.mvm: Cannot find file \"nosuch.mvm\"."},
        {"nosuch.glb b.mvm", "bwrt: nosuch.glb: "},
        {"a.glb b.mvm --like nosuch.mvm", "bwrt: nosuch.mvm: Cannot find file \"nosuch.mvm\"."},
        {"folder.glb b.mvm", "bwrt: folder.glb: "},
        {"text.mvm b.glb", "bwrt: text.mvm: "},
        {"text.glb b.mvm", "bwrt: text.glb: It is no glTF file, or a damaged one: "},
        {"cut.glb b.mvm", "bwrt: cut.glb: It is cut off or damaged."},
        {"cut.glb a.mvm --like a.mvm --in-place", "bwrt: cut.glb: It is cut off or damaged."},
        {"far.gltf b.mvm", "It names \"../a\", which is outside of its folder."},
        {"flat.mvm b.glb", "The model has no mesh with a face."},
        {"a.glb b.mvm --skin nobody", "There is no mesh \"nobody\"."},
        {"red.gltf b.mvm --like bare.mvm", "It has no mesh of the model."},
        {"a.mvm text.glb", "\"text.glb\" is there and is no glTF file;"},
        {"a.glb text.mvm", "\"text.mvm\" is there and is no model;"},
        {"a.glb text.mvm --like a.mvm", "\"text.mvm\" is there and is no model;"},
        {"a.mvm readonly.glb", "File is marked read only."},
        {"a.glb readonly.mvm", "File is marked read only."},
        {"a.glb readonly.mvm --like readonly.mvm --in-place", "File is marked read only."},
        {"a.mvm twin.glb", "\"twin.glb\" is a file that the command reads."},
        {"a.glb a.mvm --like a.mvm", "\"a.mvm\" is the model of --like itself; --in-place writes to it."},
        {"a.glb ./a.mvm --like a.mvm", "is the model of --like itself; --in-place writes to it."},
        {"a.glb b.mvm --like a.mvm --in-place", "--in-place is for an OUT that is the model of --like."},
        {"a.mvm other.gltf", "\"other.bin\" is there already; take another name, or remove it first."},
        {"a.mvm folder.glb", "\"folder.glb\" is a folder."},
        {"a.mvm deep.gltf", "\"deep.bin\" is there already;"},
        {"a.mvm folder.gltf", "\"folder.gltf\" is a folder."},
        {"a.glb folder.mvm", "\"folder.mvm\" is a folder."},
        {"a.mvm nofolder/b.glb", "bwrt: nofolder/b.glb: "},
        {"a.mvm nofolder/b.gltf", "bwrt: nofolder/b.bin: "},
        {"a.glb nofolder/b.mvm", "bwrt: nofolder/b.mvm: "},
        {"red.gltf nofolder/b.mvm", "bwrt: nofolder/"},
        {"red.gltf folder.mvm", "\"folder.mvm\" is a folder."},
    };
    const auto before = Listing();
    for (const auto& [words, text] : cases) {
        SCOPED_TRACE(words);
        const Outcome outcome = RunCommand(Folder, "convert " + words);
        EXPECT_EQ(outcome.Code, 2);
        EXPECT_EQ(outcome.Output, "");
        EXPECT_THAT(outcome.Errors, HasSubstr(text));
        EXPECT_TRUE(Listing() == before);
    }
}
