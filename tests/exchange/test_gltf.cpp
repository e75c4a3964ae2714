#include <map>

#include <nlohmann/json.hpp>

#include "modBase64.h"
#include "modExchangeNames.h"
#include "modFromScene.h"
#include "modGltfRead.h"
#include "modGltfWrite.h"
#include "modLike.h"
#include "modNewScene.h"
#include "modPictures.h"
#include "modStb.h"
#include "support/beast_text.h"
#include "support/fresh.h"

using testing::HasSubstr;

// Models on their way to glTF and back, as they come back where nothing was changed.

namespace {

class ATrip : public ModelFile {
protected:
    /// The open model, as a file of glTF gives it back.
    ExchangeModel Exchanged(bool inFiles = false)
    {
        ExchangeModel out;
        ExchangeModel in;
        EXPECT_TRUE(ExchangeFromScene(Folder.Path, &out, &Error)) << Error;
        uint8_t shade = 0;
        std::vector<uint8_t> pixels(48);
        for (uint8_t& pixel : pixels) {
            pixel = shade++;
        }
        EXPECT_TRUE(EncodePng(pixels, 4, 4, 3, &out.Images.emplace_back(ExchangeImage{"Sk\xC3\xA4le", ""}).Bytes));
        std::string text;
        if (inFiles) {
            std::vector<NamedFile> files;
            EXPECT_TRUE(GltfFilesOf(out, "\xC3\xA4 100% #1", &files, &Error)) << Error;
            for (const NamedFile& file : files) {
                PutFile(Folder / file.Name, file.Bytes);
            }
            text = files.front().Bytes;
        } else {
            EXPECT_TRUE(GlbOf(out, &text, &Error)) << Error;
        }
        EXPECT_TRUE(ReadGltf(text, Folder.Path, &in, &Error)) << Error;
        EXPECT_TRUE(!in.Images.empty() && in.Images.back().Bytes == out.Images.back().Bytes);
        return in;
    }
    /// The text of a new model; what is wrong when there is none.
    std::string NewText(const ExchangeModel& model)
    {
        scripted::Reset();
        std::vector<MapFile> files;
        Notes.clear();
        return SceneFromExchange(model, {.Skin = {}, .Folder = Folder.Path}, &files, &Notes, &Error) ? ModelText()
                                                                                                     : Error;
    }
    std::vector<std::string> Notes;
};

void MeshOf(std::vector<Vec3> places, std::vector<MvmFace> faces)
{
    Meshes.Add({.Name = "Beast", .Vertices = {std::move(places)}, .Faces = {std::move(faces)}});
}

MvmMesh& Skin()
{
    return Meshes[1];
}

/// Other programs cut longer names, some within a letter.
bool AreNamesShort(const ExchangeModel& model)
{
    std::vector<std::string> names;
    const auto addAll = [&](const auto& records) {
        for (const auto& record : records) {
            names.push_back(record.Name);
        }
    };
    addAll(model.Bones);
    addAll(model.Materials);
    addAll(model.Meshes);
    for (const ExchangeMesh& mesh : model.Meshes) {
        addAll(mesh.Placements);
    }
    return std::all_of(names.begin(), names.end(),
                       [](const std::string& name) { return !name.empty() && name.size() <= 63; });
}

void NameMaterial(const std::string& name)
{
    Materials[1].Name = Skin().MeshMaterials[1].Name = Meshes[3].MeshMaterials[1].Name = name;
}

} // namespace

TEST_F(ATrip, GivesBackOddModelsByteForByte)
{
    const std::map<std::string, std::function<void()>> cases = {
        {"as it is", [] {}},
        {"no bones", [] { Bones.Items.clear(); }},
        {"bones without a skin",
         [] {
             SkinMesh = ShadowMesh = 0;
             Skin().IsSkin = Meshes[2].IsSkin = false;
         }},
        {"bones beyond the last one", [] { Skin().VertexBones.Items = {99, -7, 32767, -32768, 4, 3, 9, 1}; }},
        {"vertices without an entry for their bones",
         [] {
             Skin().VertexBones.Items = {1, 2};
         }},
        {"skin and shadow at once", [] { ShadowMesh = SkinMesh; }},
        {"a shadow alone", [] { SkinMesh = 0; }},
        {"skins without a role",
         [] {
             SkinMesh = 0;
             ShadowMesh = 3;
         }},
        {"numbers that name nothing",
         [] {
             Skin().Faces[1] = {{1, 2, 3}, {0, -5, 99}, {32767, -32768, 0}, -9};
             Skin().Faces[2] = {{3, 2, 1}, {1, 99, 4}, {0, 0, 0}, 32767};
             Skin().Faces.Add({{0, 1, 2}, {1, 2, 3}, {1, 2, 3}, 1});
             Skin().Faces.Add({{1, 2, 9}, {4, 4, 4}, {9, 9, 9}, 0});
         }},
        {"only faces that cannot travel in the skin",
         [] {
             Skin().Faces.Items = {{{1, 1, 2}, {}, {}, 1}};
         }},
        {"no faces in the skin", [] { Skin().Faces.Items.clear(); }},
        {"no vertices in the skin",
         [] {
             Skin().Vertices.Items.clear();
             Skin().VertexBones.Items.clear();
         }},
        {"normals of many lengths",
         [] {
             Skin().Normals.Items = {{}, {1e-30F, 0, 0}, {1e30F, 1e30F, 0}};
         }},
        {"normals of almost length 1",
         [] {
             Skin().Normals.Items = {{1.0004F, 0, 0}, {0, 0.9996F, 0}};
         }},
        {"zeros of both signs",
         [] {
             Skin().Vertices[1] = Skin().Normals[1] = {-0.0F, 0, -0.0F};
         }},
        {"texture coordinates that turning changes",
         [] {
             Skin().TexCoords.Items = {{1e-9F, 1e-9F}, {1e9F, 1e9F}, {0.1F, 0.3333333F}, {-7.77F, 1e-20F}};
         }},
        {"the same face four times",
         [] {
             for (int i = 0; i < 3; ++i) {
                 Skin().Faces.Add(Skin().Faces[3]);
             }
         }},
        {"the same face with other materials and normals",
         [] {
             Skin().Faces.Items.insert(Skin().Faces.begin() + 2, {{{1, 2, 3}, {1, 1, 1}, {1, 2, 3}, 0},
                                                                  {{1, 2, 3}, {1, 1, 1}, {1, 2, 3}, 2},
                                                                  {{1, 2, 3}, {3, 1, 1}, {1, 2, 3}, 1},
                                                                  {{1, 2, 3}, {1, 1, 1}, {1, 2, 3}, 1}});
         }},
        {"equal names",
         [] {
             Bones[1].Name = Bones[2].Name = "Leg";
             Materials[2].Name = "Bark";
             Skin().MeshMaterials.Items = {{"Bark", 2}, {"Bark", 2}};
             Meshes[2].Name = Meshes[3].Name = "Beast";
             Instances[2].Name = Instances[3].Name = "Beast";
         }},
        {"names that look made unique",
         [] {
             Bones[1].Name = "Leg.002";
             Bones[2].Name = Bones[3].Name = "Leg";
         }},
        {"empty names",
         [] {
             Bones[1].Name = Bones[2].Name = Instances[2].Name = Instances[2].Mesh = Meshes[3].Name = "";
             NameMaterial("");
         }},
        {"long names in letters of two bytes",
         [] {
             Bones[1].Name = Bones[2].Name = Meshes[1].Name = Instances[2].Name = std::string(300, '\xE4');
             NameMaterial("x" + std::string(300, '\xE4'));
         }},
        {"names that mean something", [] { Bones[1].Name = "neutral_bone"; }},
        {"control characters",
         [] {
             Bones[2].Name = Meshes[1].Name = "a\x01\t\x7F\x81\xFF\"";
             NameMaterial(Bones[2].Name);
         }},
        {"materials that the model lacks",
         [] {
             Skin().MeshMaterials.Items = {{"No", 0}, {"No", 0}, {"Fin", 2}};
         }},
        {"instances of all scales",
         [] {
             Instances[1].Scale = 0;
             Instances[2].Scale = -2;
             Instances[3].Scale = 1e-20F;
         }},
        {"a mirrored skin", [] { Instances[1].Scale = -2; }},
        {"turned instances",
         [] {
             Instances[2].Rotation = Instances[1].Rotation = {90, 90, 400};
         }},
        {"no instances", [] { Instances.Items.clear(); }},
        {"large places",
         [] {
             Skin().Vertices[2] = Bones[1].Position = Instances[1].Position = {1e30F, -1e30F, 3};
         }},
        {"a circle of links", [] { Bones[1].LinkBone = Bones[2].LinkBone = Bones[3].LinkBone = 2; }},
    };
    for (const auto& [name, change] : cases) {
        for (const bool inFiles : {false, true}) {
            SCOPED_TRACE(name + (inFiles ? ", in files" : ""));
            ASSERT_TRUE(LoadAnew(BeastText));
            change();
            const std::string plain = ModelText();
            const ExchangeModel in = Exchanged(inFiles);
            EXPECT_TRUE(AreNamesShort(in));
            EXPECT_EQ(NewText(in), plain);
            EXPECT_THAT(Notes, testing::IsEmpty());
            ASSERT_TRUE(LoadAnew(BeastText));
            change();
            bool isDoubtful = true;
            EXPECT_TRUE(MergeIntoScene(in, &isDoubtful, &Notes, &Error)) << Error;
            EXPECT_EQ(ModelText(), plain);
            EXPECT_FALSE(isDoubtful);
        }
    }
}

TEST_F(ATrip, TakesThePlacesOfVerticesAndFacesThatTheRecordHas)
{
    // 70,000 corners on few vertices need indices of 32 bits.
    std::vector<MvmFace> faces;
    for (int16_t i = 0; i < 25000; ++i) {
        faces.push_back({{1, 2, 3}, {i, i, i}, {}, 0});
    }
    MeshOf({{0, 0, 0}, {1, 0, 0}, {0, 1, 0}}, faces);
    const std::string plain = ModelText();
    const ExchangeModel in = Exchanged();
    EXPECT_EQ(in.Meshes.at(0).Vertices.size(), 75000);
    EXPECT_TRUE(NewText(in) == plain);
}

TEST_F(ATrip, GoesOutAsOtherProgramsTakeIt)
{
    ASSERT_TRUE(LoadAnew(BeastText));
    Bones[2].LinkBone = 1;
    const ExchangeModel in = Exchanged();
    ASSERT_EQ(in.Meshes.size(), 3);
    EXPECT_EQ(in.Bones.at(1).Parent, 0);
    EXPECT_EQ(in.Bones[1].Head.Y, 0.5F);
    const ExchangeMesh& skin = in.Meshes[0];
    EXPECT_TRUE(skin.IsSkinned && in.Meshes[1].IsSkinned && !in.Meshes[2].IsSkinned);
    EXPECT_THAT(skin.Joints, testing::ElementsAre(0, 1));
    EXPECT_THAT(in.Meshes[1].Joints, testing::ElementsAre(2));
    EXPECT_EQ(in.Meshes[2].Placements.size(), 2);
    for (const ExchangeMesh& bound : {skin, in.Meshes[1]}) { // the shadow stands where the skin does
        EXPECT_EQ(bound.Placements.at(0).Position.Y, 2);
        EXPECT_EQ(bound.Placements[0].Scale, 2);
    }
    EXPECT_EQ(in.Materials.at(static_cast<size_t>(skin.Parts.at(1).Material)).Name, "Fin");
    EXPECT_EQ(skin.Vertices.size(), 14) << "two faces on the same vertices share no corner";
    for (const ExchangeVertex& corner : skin.Vertices) {
        EXPECT_NEAR(std::abs(corner.Normal.Y), 1, 1e-6);
    }
    // A bone without vertices is a joint; the joint of no bone is there where a vertex has none.
    std::string glb;
    ExchangeModel out;
    Skin().VertexBones.Items.assign(8, 2);
    Meshes[2].VertexBones.Items.assign(3, 3);
    ASSERT_TRUE(ExchangeFromScene(Folder.Path, &out, &Error)) << Error;
    EXPECT_THAT(out.Meshes[0].Joints, testing::ElementsAre(0, 1));
    out.Meshes[0].Vertices[0].Bone = 0;
    ASSERT_TRUE(GlbOf(out, &glb, &Error)) << Error;
    EXPECT_THAT(glb, testing::Not(HasSubstr(unassignedJoint)));
    out.Meshes[0].Vertices[0].Bone = -1;
    ASSERT_TRUE(GlbOf(out, &glb, &Error)) << Error;
    EXPECT_THAT(glb, HasSubstr(unassignedJoint));
}

TEST_F(ATrip, RefusesNumbersThatAreNotFinite)
{
    const std::function<void(float)> cases[] = {
        [](float x) { Skin().Vertices[7].X = x; }, [](float x) { Skin().Normals[1].Y = x; },
        [](float x) { Skin().TexCoords[5].V = x; }, [](float x) { Bones[1].Rotation.Z = x; },
        [](float x) { Instances[1].Scale = x; }};
    for (const auto& change : cases) {
        for (const float number : {INFINITY, -INFINITY, NAN}) {
            ASSERT_TRUE(LoadAnew(BeastText));
            change(number);
            ExchangeModel out;
            EXPECT_FALSE(ExchangeFromScene(Folder.Path, &out, &Error));
            EXPECT_THAT(Error, HasSubstr("holds a number that is not finite."));
        }
    }
    scripted::Reset();
    ExchangeModel out;
    EXPECT_FALSE(ExchangeFromScene(Folder.Path, &out, &Error));
    EXPECT_EQ(Error, "The model has no mesh with a face.");
}

TEST_F(ATrip, TakesWhatWasChangedInPlaceOfTheRecord)
{
    struct Case {
        std::string Name;
        std::function<void(ExchangeModel*)> Change;
        std::string Now; ///< stands in the model's text
    };
    const Case cases[] = {
        {"vertex", [](auto* m) { m->Meshes[0].Vertices[0].Place.Y = 7; }, " v = (0,0,7),"},
        {"joint", [](auto* m) { m->Meshes[0].Vertices[0].Bone = 1; }, " v = (0,0,0),2"},
        {"normal",
         [](auto* m) {
             m->Meshes[0].Vertices[0].Normal = {1, 0, 0};
         },
         " n = (1,0,0)|"},
        {"bone", [](auto* m) { m->Bones[1].Head.X = 1.01F; }, " position = (1.01,0,0.5)|"},
        {"name of a bone", [](auto* m) { m->Bones[1].Name = "Arm02"; }, "bone \"Arm02\""},
        {"name of a material", [](auto* m) { m->Materials[1].Name = "Fan"; }, "material \"Fan\""},
        {"material", [](auto* m) { m->Meshes[0].Parts[1].Material = 0; }, " f = (2,4,3),(2,1,3),(1,1,1),1|"},
        {"place of a mesh", [](auto* m) { m->Meshes[2].Placements[0].Position.X = 4; }, " position = (4,0,0)|"},
        {"turn of a mesh", [](auto* m) { m->Meshes[2].Placements[0].Rotation.X = 1; }, " rotation = (1,90,0)|"},
        {"place of the skin", [](auto* m) { m->Meshes[0].Placements[0].Scale = 3; }, " scale = 3|"},
        {"another place",
         [](auto* m) {
             m->Meshes[2].Placements.push_back({"New", {}, {}, 1});
         },
         "instance \"New\""},
        {"name of a mesh", [](auto* m) { m->Meshes[2].Name = "Ear"; }, "mesh \"Ear\""},
        {"triangle", [](auto* m) { m->Meshes[0].Parts[0].Triangles.pop_back(); }, " v = (1,1,0),2| v = (2,1,0),2| t"},
        {"mesh", [](auto* m) { m->Meshes.push_back(m->Meshes[2]); }, "mesh \"Eye-2\""},
        {"lost mesh", [](auto* m) { m->Meshes.pop_back(); }, "scale = 2|}||"},
        {"record", [](auto* m) { m->Record.clear(); }, "instance \"$Beast\"|"},
        {"lies", [](auto* m) { m->Record = R"({"version": 1, "bones": 7})"; }, "instance \"$Beast\"|"},
    };
    ASSERT_TRUE(LoadAnew(BeastText));
    const std::string plain = ModelText();
    const ExchangeModel in = Exchanged();
    for (const Case& c : cases) {
        SCOPED_TRACE(c.Name);
        ExchangeModel changed = in;
        c.Change(&changed);
        const std::string text = NewText(changed);
        EXPECT_NE(text, plain);
        EXPECT_THAT(text, HasSubstr(CrLf(c.Now)));
        EXPECT_EQ(!Notes.empty() && Notes[0].starts_with("The file was changed since"), c.Name != "record");
    }
    ExchangeModel bare = in;
    bare.Record.clear();
    EXPECT_THAT(
        NewText(bare),
        HasSubstr(CrLf("skin \"Beast\"|{| m = \"Bark\"| m = \"Fin\"| v = (0,0,0),1| v = (1,0,0),2| v = (0,1,0),-1|"
                       " v = (1,1,0),2| v = (2,1,0),2| v = (2,1,0),1| v = (1,1,0),2| t = (0,0)| t = (1,0)|"
                       " t = (0,1)| t = (0.3,0.7)| n = (0,0,1)| n = (0,0,-1)| n = (0,0,1)|"
                       " f = (1,2,3),(1,2,3),(1,1,1),1| f = (3,2,1),(3,2,1),(2,2,2),1|"
                       " f = (2,5,4),(2,3,1),(3,1,1),1| f = (6,7,2),(1,4,2),(1,1,1),1|"
                       " f = (2,4,3),(2,1,3),(1,1,1),2|}||")));
}

TEST_F(ATrip, TakesNoLiesFromARecord)
{
    ASSERT_TRUE(LoadAnew(BeastText));
    const ExchangeModel in = Exchanged();
    const nlohmann::json record = nlohmann::json::parse(in.Record);
    const std::string rest = FromBase64(record["meshes"][0]["rest"].get<std::string>());
    const auto withRest = [&](const std::string& bytes) {
        nlohmann::json lie = record;
        lie["meshes"][0]["rest"] = ToBase64(bytes);
        return lie.dump();
    };
    std::vector<std::string> lies = {
        "", "{", "[]", "7", "{}", std::string(100000, '['), withRest(""), withRest("AAAA")};
    const nlohmann::json flat = record.flatten();
    for (const auto& [path, value] : flat.items()) { // each value of another type, and gone
        for (const auto& other : {nlohmann::json(), nlohmann::json(-1e300), nlohmann::json("*")}) {
            nlohmann::json lie = record;
            lie[nlohmann::json::json_pointer(path)] = other;
            lies.push_back(lie.dump());
        }
    }
    for (size_t word = 0; word + 4 <= rest.size(); word += 4) { // each number of the rest
        for (const char* number : {"\xFF\xFF\xFF\x7F", "\xFF\xFF\xFF\xFF", "\x40\x9C\0\0", "\0\0\x80\x7F"}) {
            std::string bytes = rest;
            bytes.replace(word, 4, std::string(number, 4));
            lies.push_back(withRest(bytes));
        }
        lies.push_back(withRest(rest.substr(0, word)));
    }
    for (const std::string& lie : lies) {
        SCOPED_TRACE(lie.substr(0, 2000));
        ExchangeModel model = in;
        model.Record = lie;
        EXPECT_THAT(NewText(model), HasSubstr("skin \"Beast\""));
        EXPECT_TRUE(AllFinite(&Error)) << Error;
        for (const MvmMesh& mesh : Meshes) {
            ASSERT_TRUE(mesh.VertexCount() <= INT16_MAX && mesh.NormalCount() <= INT16_MAX &&
                        mesh.TexCoordCount() <= INT16_MAX && mesh.FaceCount() <= INT16_MAX);
            ASSERT_TRUE(!mesh.IsSkin || mesh.VertexBones.Count() == mesh.VertexCount());
        }
    }
}
