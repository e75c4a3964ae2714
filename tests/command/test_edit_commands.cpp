#include <cstdint>
#include <filesystem>
#include <functional>

#include <nlohmann/json.hpp>

#include "model/modDocument.h"
#include "model/modMvmBind.h"
#include "modFiles.h"
#include "support/fresh.h"
#include "support/run_command.h"
#include "weights/modBoneAlias.h"
#include "weights/modEdit.h"
#include "weights/modMirror.h"
#include "weights/modMvmXTools.h"
#include "weights/modSegments.h"
#include "weights/modWeights.h"

// Each command gives, byte for byte, the file that the core's operation gives on the same model.

using testing::HasSubstr;

namespace {

const std::string half = SOURCE_FOLDER "/samples/tutorial/vorrel-half.mvm";

/// A model with two ordinary skins, of which the first has no role, and no shadow.
const std::string twoSkins =
    CrLf(FileInfoText + "bone \"L01\"|{| position = (-1,0,0)|}|bone \"R02\"|{| position = (1,0,0)|}|"
                        "bone \"$j$S01\"|{|}|"
                        "skin \"A\"|{| v = (-1,0,0),1| v = (1,0,0),-1|}|"
                        "skin \"B\"|{| v = (-1,0,0),1| v = (1,0,0),-1|}|"
                        "instance \"B\"|{| mesh = \"B\"| scale = 1|}|"
                        "instance \"A\"|{| mesh = \"A\"| scale = 2|}|");

#ifdef _WIN32
constexpr bool onWindows = true;
constexpr const char* toDevice = "mirror two.mvm -o nul.mvm";
#else
constexpr bool onWindows = false;
constexpr const char* toDevice = "mirror two.mvm -o /dev/null";
#endif

/// On Windows there is no disk that is always full; a program without OpenGL paints no pictures.
bool IsLeftOut(const std::string& words)
{
    return (onWindows && words.find('>') != std::string::npos) || (HAS_PICTURES == 0 && words.starts_with("picture"));
}

struct Commands : FreshFolder {
    /// The scene as the window has it after Open.
    void Open(const std::string& path, bool aliases = true)
    {
        scripted::Reset();
        scripted::Folder = SOURCE_FOLDER "/assets";
        LoadAlias();
        ASSERT_TRUE(LoadMVM(path));
        AliasesOn = aliases;
        if (aliases) {
            ApplyAliases();
        }
    }
    std::string SavedScene()
    {
        EXPECT_EQ(SaveModelFile(Folder / "window.mvm"), SaveOutcome::Saved);
        return Content(Folder / "window.mvm");
    }
    Outcome Run(const std::string& words) const { return RunCommand(Folder, words); }
};

int16_t BoneNamed(const std::string& name)
{
    for (int16_t bone = 1; bone <= static_cast<int16_t>(BoneCount()); ++bone) {
        if (Bones[bone].Name == name || Bones[bone].Alias == name) {
            return bone;
        }
    }
    return 0;
}

} // namespace

TEST_F(Commands, EachGivesTheFileOfTheWindowsCommand)
{
    struct Case {
        std::string Words;
        std::string Model;
        bool Aliases;
        std::function<void()> Edit;
    };
    PutFile(Folder / "two.mvm", twoSkins);
    std::filesystem::copy(half, Folder / "half.mvm");
    Open(half);
    SaveWeights(Folder / "half.wif", SkinMesh);
    const auto mirror = [](float vertices, float bones, const MirrorOptions& options, int16_t target = 0) {
        return [=] {
            MirrorVertexThreshold = vertices;
            MirrorBoneThreshold = bones;
            EditTarget = target;
            MirrorWeights(options);
        };
    };
    const Case cases[] = {
        {"mirror", "half.mvm", true, mirror(0.01F, 0.01F, {})},
        {"mirror --right-to-left --only-unassigned --unassign --vertex-threshold 0.05", "half.mvm", true,
         mirror(0.05F, 0.01F, {.LeftToRight = false, .Reassign = false, .Unassign = true})},
        {"mirror --unassign --bone-threshold 0.3 --no-aliases", "half.mvm", false,
         mirror(0.01F, 0.3F, {.Unassign = true})},
        {"mirror --on-shadow --prove", "half.mvm", true, mirror(0.01F, 0.01F, {}, 1)},
        {"auto-assign", "half.mvm", true, [] { AutoAssign(SkinMesh); }},
        {"auto-assign --by segments --mesh Vorrel", "half.mvm", true, [] { AutoAssignBySegments(SkinMesh); }},
        {"auto-assign --by segments --no-aliases", "half.mvm", false, [] { AutoAssignBySegments(SkinMesh); }},
        {"auto-assign --mesh shadow", "half.mvm", true, [] { AutoAssign(ShadowMesh); }},
        {"normals --mesh skin --mesh '$headVorrel'", "half.mvm", true,
         [] {
             RegenerateNormals(SkinMesh);
             RegenerateNormals(HeadMesh);
         }},
        {"swap --bone 1 --with Tail09", "half.mvm", true, [] { SwapBones(SkinMesh, 1, BoneNamed("Tail09")); }},
        {"reassign --from none --to 3", "half.mvm", true, [] { ReplaceBone(SkinMesh, 0, 3); }},
        {"reassign --on-shadow --from '$j$Head04' --to 'Shadow Neck'", "half.mvm", true,
         [] { ReplaceBone(ShadowMesh, BoneNamed("$j$Head04"), BoneNamed("$j$Neck03")); }},
        {"unassign --bone Head", "half.mvm", true, [] { ReplaceBone(SkinMesh, BoneNamed("Head07"), 0); }},
        {"unassign --all --on-shadow", "half.mvm", true, [] { UnassignAll(ShadowMesh); }},
        {"mirror --skin A", "two.mvm", true,
         [] {
             SelectSkinMesh(1);
             MirrorWeights({});
         }},
        {"unassign --all --skin 1 --shadow B", "two.mvm", true,
         [] {
             SelectSkinMesh(1);
             SelectShadowMesh(2);
             UnassignAll(1);
         }},
        {"weights load half.wif --by index", "half.mvm", true,
         [this] {
             scripted::AssignModes = {1};
             LoadWeights(Folder / "half.wif", SkinMesh);
         }},
        {"weights load half.wif --by position --accept name --accept bones --accept vertices", "two.mvm", true,
         [this] {
             scripted::AssignModes = {2};
             scripted::Answers = {BoxAnswer::Yes, BoxAnswer::Yes, BoxAnswer::Yes};
             LoadWeights(Folder / "half.wif", SkinMesh);
         }},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(c.Words);
        const std::string first = c.Words.substr(0, c.Words.find(' '));
        const bool weights = first == "weights";
        const std::string words = weights ? "weights load " + c.Model + c.Words.substr(12) : c.Words + " " + c.Model;
        const Outcome outcome = Run(words + " -o out.mvm");
        EXPECT_EQ(outcome.Code, 0) << outcome.Errors;
        Open(Folder / c.Model, c.Aliases);
        const std::string before = ModelText();
        c.Edit();
        const std::string wanted = SavedScene();
        EXPECT_TRUE(Content(Folder / "out.mvm") == wanted) << outcome.Output;
        EXPECT_EQ(Content(Folder / "half.mvm") == Content(half), true) << "the model itself is left alone";
        EXPECT_TRUE(weights || wanted != before) << "the case changes nothing";

        PutFile(Folder / "in.mvm", Content(Folder / c.Model));
        const std::string inPlace =
            (weights ? "weights load in.mvm" + c.Words.substr(12) : c.Words + " in.mvm") + " --accept-losses";
        EXPECT_EQ(Run(inPlace + " --in-place --quiet").Code, 0);
        EXPECT_TRUE(Content(Folder / "in.mvm") == wanted);
    }
    EXPECT_EQ(Folder.Names(),
              (std::vector<std::string>{"half.mvm", "half.wif", "in.mvm", "out.mvm", "two.mvm", "window.mvm"}));
}

TEST_F(Commands, WhatCannotBeDoneIsToldAndChangesNoFile)
{
    PutFile(Folder / "two.mvm", twoSkins);
    PutFile(Folder / "broken.mvm", CrLf("mesh \"A\"|{| v = (1,2,3)| v = x|}|"));
    PutFile(Folder / "lf.mvm", "mesh \"A\"\n{\n v = (1,2,3)\n}\n");
    PutFile(Folder / "empty.mvm", "");
    PutFile(Folder / "other.wif", "no weights");
    std::filesystem::create_directory(Folder / "folder");
    if (onWindows) { // where links are for administrators
        std::filesystem::create_hard_link(Folder / "two.mvm", Folder / "link.mvm");
    } else {
        std::filesystem::create_symlink("two.mvm", Folder / "link.mvm");
    }
    PutFile(Folder / "two.mvm.old", twoSkins);
    PutFile(Folder / "empty.bmp", "BM");
    PutFile(Folder / "lone.mvm", CrLf("bone \"A01\"|{\n|}|"));
    PutFile(Folder / "readonly.wif", "BWRT");
    PutFile(Folder / "readonly.mvm", CrLf("bone \"A01\"|{|}|skin \"S\"|{|}|instance \"S\"|{| mesh = \"S\"|}|"));
    for (const char* name : {"readonly.mvm", "readonly.wif"}) {
        std::filesystem::permissions(Folder / name, std::filesystem::perms(0444));
    }
    Open(Folder / "two.mvm");
    Bones.Add();
    SaveWeights(Folder / "more.wif", SkinMesh);
    const auto listing = [this] {
        std::string all;
        for (const std::string& name : Folder.Names()) {
            all += name + ": " + (std::filesystem::is_directory(Folder / name) ? "" : Content(Folder / name)) + "\n";
        }
        return all;
    };
    const std::string before = listing();
    const std::pair<const char*, const char*> cases[] = {
        {"mirror two.mvm", "bwrt: Say where to: -o FILE, or --in-place"},
        {"mirror two.mvm -o two.mvm", "\"two.mvm\" is the model itself; --in-place writes to it."},
        {"mirror two.mvm -o ./link.mvm", "is the model itself"},
        {"mirror two.mvm -o folder", "bwrt: folder: Runtime error in WriteMVM"},
        {toDevice, "Runtime error in WriteMVM"},
        {"mirror two.mvm -o nowhere/out.mvm", "bwrt: nowhere/out.mvm: Runtime error in WriteMVM"},
        {"mirror two.mvm -o readonly.mvm", "Can't overwrite file."},
        {"mirror readonly.mvm --in-place", "File is marked read only."},
        {"mirror two.mvm -o a --in-place", "--in-place"},
        {"mirror two.mvm lf.mvm -o a", "-o takes one model."},
        {"mirror two.mvm -o a --vertex-threshold 0", "--vertex-threshold"},
        {"mirror two.mvm -o a --vertex-threshold x", "--vertex-threshold"},
        {"mirror nosuch.mvm -o a", "bwrt: nosuch.mvm: Cannot find file \"nosuch.mvm\"."},
        {"mirror folder -o a", "bwrt: folder: Runtime error in LoadMVM"},
        {"mirror broken.mvm -o a", "bwrt: broken.mvm: Line 4: A value is too short for coordinates."},
        {"mirror lf.mvm --in-place", "was read as a single line"},
        {"mirror empty.mvm --in-place", "The file holds no material, bone, mesh or instance."},
        {"mirror two.mvm --on-shadow -o a", "bwrt: two.mvm: The model has no shadow."},
        {"mirror two.mvm --skin C -o a", "There is no mesh \"C\"."},
        {"auto-assign two.mvm --mesh shadow -o a", "The model has no shadow."},
        {"auto-assign two.mvm --mesh 3 -o a", "There is no mesh \"3\"."},
        {"swap two.mvm --bone L01 --with 0 -o a", "There is no bone \"0\"."},
        {"swap two.mvm --bone none --with 2 -o a", "There is no bone \"none\"."},
        {"unassign two.mvm -o a", "No. With --all the answer is yes."},
        {"weights load two.mvm more.wif --by index -o a", "With --accept bones the answer is yes."},
        {"weights load two.mvm other.wif --by index -o a", "File is not an weight information file."},
        {"weights load two.mvm nosuch.wif --by index -o a", "Runtime error in LoadWeights"},
        {"weights load two.mvm more.wif -o a", "--by is required"},
        {"weights save two.mvm two.mvm", "\"two.mvm\" is a file that the command reads."},
        {"weights save two.mvm lf.mvm", "\"lf.mvm\" is there and is no weights file"},
        {"weights save two.mvm readonly.wif", "File is marked read only."},
        {"weights load two.mvm more.wif --by index --accept bones -o more.wif", "is a file that the command reads."},
        {"mirror two.mvm.old -o two.mvm", "would take away \"two.mvm.old\""},
        {"mirror two.mvm ./two.mvm --in-place", "is named twice"},
        {"mirror lone.mvm --in-place", "bwrt: lone.mvm: Line 2: Line feeds stand in the file"},
        {"weights save two.mvm folder", "Runtime error in SaveWeights"},
        {"weights save two.mvm a --on-shadow", "The model has no shadow."},
        {"new Nosuch two.mvm -o a", "Cannot load selected preset."},
        {"new Vorrel lf.mvm -o a", "Cannot load skin model file."},
        {"new Vorrel two.mvm -o two.mvm", "is the model itself"},
        {"new Vorrel two.mvm --skin C -o a", "There is no mesh \"C\"."},
        {"alias make two.mvm -o nowhere", "Runtime error in alias"},
        {"check nosuch.mvm", "bwrt: nosuch.mvm: "},
        {"check two.mvm --only nonsense", "nonsense"},
        {"diff two.mvm nosuch.mvm", "bwrt: nosuch.mvm: Cannot find file"},
        {"report two.mvm >/dev/full", "The results could not be written."},
        {"picture two.mvm two.mvm", "is a file that the command reads."},
        {"picture two.mvm empty.bmp", "is no PNG picture"},
        {"picture two.mvm a --size 0x4", "The size \"0x4\" is not like"},
        {"picture two.mvm a --size 99999", "The size \"99999\" is not like"},
        {"picture two.mvm a --bone nobody", "There is no bone \"nobody\"."},
        {"picture two.mvm folder", "Runtime error in picture"},
        {"picture broken.mvm a", "Line 4"},
        {"", "A command is missing."},
        {"-x", "There is no option \"-x\"."},
        {"nonsense", "There is no command \"nonsense\"."},
        {"mirror --nonsense two.mvm", "nonsense"},
        {"--help >/dev/full", "The results could not be written."},
    };
    for (const auto& [words, text] : cases) {
        SCOPED_TRACE(words);
        if (IsLeftOut(words)) {
            continue;
        }
        const Outcome outcome = Run(words);
        EXPECT_EQ(outcome.Code, 2);
        EXPECT_THAT(outcome.Errors, HasSubstr(text));
        EXPECT_TRUE(listing() == before);
    }
}

TEST_F(Commands, OneFailureDoesNotStopTheOthers)
{
    PutFile(Folder / "a.mvm", twoSkins);
    PutFile(Folder / "b.mvm", "");
    PutFile(Folder / "[c]", twoSkins);
    const Outcome damaged = Run("mirror a.mvm '[c]' --in-place");
    EXPECT_EQ(damaged.Code, 2);
    EXPECT_THAT(damaged.Errors, HasSubstr("bwrt: a.mvm: A save in place would make this final."));
    EXPECT_TRUE(Content(Folder / "a.mvm") == twoSkins && Content(Folder / "[c]") == twoSkins);
    const Outcome outcome = Run("mirror a.mvm b.mvm nosuch.mvm '[c]' --in-place --accept-losses");
    EXPECT_EQ(outcome.Code, 2);
    EXPECT_EQ(outcome.Output, "a.mvm: 1 vertex changed\n./[c]: 1 vertex changed\n");
    EXPECT_TRUE(Content(Folder / "a.mvm") == Content(Folder / "[c]") && Content(Folder / "a.mvm") != twoSkins);
    EXPECT_THAT(outcome.Errors, HasSubstr("bwrt: b.mvm: "));
    if (!onWindows) {
        EXPECT_EQ(Run("report a.mvm | head -n 1").Errors, "") << "a reader who goes ends it silently";
    }
    EXPECT_EQ(Run("normals ./a*.mvm --mesh 2 --in-place").Output, "./a.mvm: 0 vertices changed\n");
    EXPECT_EQ(Run("mirror a.mvm -o q --quiet").Output, "");
    EXPECT_THAT(Run("mirror a.mvm -o q --verbose").Errors, HasSubstr("bwrt: a.mvm: 2 : 1\n"));
    EXPECT_EQ(Run("--help").Code, 0);
    for (const char* command : {"check", "report", "diff", "mirror", "auto-assign", "normals", "swap", "reassign",
                                "unassign", "weights save", "weights load", "alias make", "new", "picture"}) {
        EXPECT_THAT(Run(std::string(command) + " --help").Output,
                    HasSubstr("Example:\n  bwrt " + std::string(command)));
    }
}

TEST_F(Commands, MirrorProvesWhatItDid)
{
    // Targets at X > 0: 2 pairs with 1 and 7, which disagree; 4 has no source; 6 keeps its bone, since the partner of
    // the source's is itself none.
    PutFile(Folder / "m.mvm", CrLf("bone \"L01\"|{| position = (-1,0,0)|}|bone \"R02\"|{| position = (1,0,0)|}|"
                                   "bone \"M03\"|{| position = (0,5,0)|}|skin \"S\"|{| v = (-1,0,0),1| v = (1,0,0),3|"
                                   " v = (-1,1,0),3| v = (1,3,0),2| v = (-2,0,0),1| v = (1,1,0),2| v = (-1,0,0.001),3|"
                                   " v = (2,0,0),-1|}|instance \"S\"|{| mesh = \"S\"| scale = 1|}|"));
    const Outcome outcome = Run("mirror m.mvm -o out.mvm --json");
    ASSERT_EQ(outcome.Code, 0) << outcome.Errors;
    const nlohmann::json file = nlohmann::json::parse(outcome.Output).at("files").at(0);
    EXPECT_EQ(file.at("saved"), true);
    EXPECT_EQ(file.at("pairing"), "position");
    EXPECT_EQ(file.at("withoutSource"), nlohmann::json({4}));
    EXPECT_EQ(file.at("withSeveralSources"), nlohmann::json({2}));
    EXPECT_EQ(file.at("sourcesDisagree"), nlohmann::json({2}));
    EXPECT_EQ(file.at("bonesWithoutPartner"), nlohmann::json::parse(R"([{"bone": 3, "name": "M03", "label": "M03"}])"));
    EXPECT_EQ(file.at("notMutual"), nlohmann::json::array());
    const auto row = [](int bone, const char* name, int taken, int kept, int lost, int cleared) {
        return nlohmann::json{{"bone", bone}, {"name", name}, {"label", name},     {"taken", taken},
                              {"kept", kept}, {"lost", lost}, {"cleared", cleared}};
    };
    EXPECT_EQ(file.at("bones"),
              (nlohmann::json{row(0, "none", 0, 0, 1, 0), row(2, "R02", 2, 2, 0, 0), row(3, "M03", 0, 0, 1, 0)}));
    const Outcome proof = Run("mirror m.mvm -o out.mvm --prove --unassign");
    EXPECT_THAT(proof.Output, HasSubstr("\nR02       1     1     0        1\n"));
    EXPECT_THAT(proof.Output, HasSubstr("\nTarget vertices without a source: 1 (4)\n"));
    EXPECT_THAT(proof.Output, HasSubstr("\nSource bones without a partner: M03\n"));
}

TEST_F(Commands, NewPutsSkeletonAndMeshTogether)
{
    std::filesystem::copy(SOURCE_FOLDER "/samples/tutorial/vorrel-skin.mvm", Folder / "skin.mvm");
    scripted::Folder = SOURCE_FOLDER "/assets";
    ASSERT_TRUE(LoadMVM(SOURCE_FOLDER "/assets/presets/Vorrel.preset") && LoadMVM(Folder / "skin.mvm"));
    const std::string plain = SavedScene();
    SelectSkinMesh(static_cast<int16_t>(MeshCount()));
    const std::string chosen = SavedScene();
    EXPECT_EQ(Run("new Vorrel skin.mvm -o a.mvm --skin " + std::to_string(MeshCount())).Code, 0);
    EXPECT_TRUE(Content(Folder / "a.mvm") == chosen);
    EXPECT_EQ(Run("new '" SOURCE_FOLDER "/assets/presets/Vorrel.preset' skin.mvm -o b.mvm").Code, 0);
    EXPECT_TRUE(Content(Folder / "b.mvm") == plain);
}
