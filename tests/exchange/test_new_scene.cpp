#include "modNewScene.h"
#include "modPictures.h"
#include "support/fresh.h"

using testing::HasSubstr;

// Models that are made of files of other programs.

namespace {

struct ANewModel : Fresh {
    /// The text of the new model; what is wrong when there is none.
    std::string Made(const ExchangeModel& model, const std::string& skin = "")
    {
        scripted::Reset();
        std::vector<MapFile> files;
        std::string error;
        Notes.clear();
        return SceneFromExchange(model, {.Skin = skin, .Folder = {}}, &files, &Notes, &error) ? ModelText() : error;
    }
    std::vector<std::string> Notes;
};

/// A triangle with this first corner, whose corners all have one bone; that is not skinned without one.
ExchangeMesh Triangle(const std::string& name, float x, int32_t bone)
{
    ExchangeMesh mesh{.Name = name, .IsSkinned = bone >= 0, .Placements = {{name}}};
    for (const Vec3& place : {Vec3{x, 0, 0}, Vec3{x + 1, 0, 0}, Vec3{x, 1, 0}}) {
        mesh.Vertices.push_back({.Place = place, .Normal = {0, 1, 0}, .TexCoord = {0, 1}, .Bone = bone});
    }
    mesh.Parts = {{.Triangles = {{0, 1, 2}}}};
    return mesh;
}

} // namespace

TEST_F(ANewModel, HasNamesAndJointNumbersThatAModelKeeps)
{
    const std::pair<std::vector<std::string>, std::vector<std::string>> cases[] = {
        {{"A07", "B07", "$j$C07", "D"}, {"A07_01", "B07_02", "$j$C07", "D03"}},
        {{"Bone.001", "Bone.002", "Bone"}, {"Bone.001", "Bone.002", "Bone03"}},
        {{"00", "x-5", "x.5", "a1.", "b 2"}, {"00", "x-5_02", "x.5_03", "a1.", "b_2_04"}},
        {{"a \"b\"={c}\n", "", "\xC3\xA4", "\xE2\x84\xB5"},
         {"a__b___c__01", "_02",
          "\xE4"
          "03",
          "?04"}},
    };
    for (const auto& [names, wanted] : cases) {
        ExchangeModel model;
        for (const std::string& name : names) {
            model.Bones.push_back({.Name = name});
        }
        (void)Made(model);
        std::vector<std::string> given;
        for (const MvmBone& bone : Bones) {
            given.push_back(bone.Name);
        }
        EXPECT_EQ(given, wanted);
    }
    ExchangeModel many;
    for (int bone = 0; bone < 100; ++bone) {
        many.Bones.push_back({.Name = "Bone"});
        many.Bones.push_back({.Name = "$j$Bone"});
    }
    EXPECT_THAT(Made(many), AllOf(HasSubstr("bone \"Bone10\""), HasSubstr("bone \"$j$Bone99\"")));
    many.Bones.push_back({.Name = "$j$x00"});
    EXPECT_EQ(Made(many), "It has 101 shadow bones; a model can tell 100 of them apart.");
}

TEST_F(ANewModel, HasOneSkinAndOneShadow)
{
    ExchangeModel model{.Bones = {{"Hip01"}, {"$j$Hip01"}}};
    model.Meshes = {Triangle("To$p", 5, 0), Triangle("Sh", 0, 1), Triangle("Eye {l}", 7, -1), Triangle("Body", 0, 0)};
    model.Meshes[3].Placements[0].Scale = 2;
    model.Meshes[3].Vertices.push_back({}); // the larger one
    const std::string text = Made(model);
    EXPECT_THAT(text, HasSubstr(CrLf("skin \"Body\"|{| v = (0,0,0),1| v = (1,0,0),1| v = (0,0,1),1| v = (2.5,0,0),1|"
                                     " v = (3,0,0),1| v = (2.5,0,0.5),1|")));
    EXPECT_THAT(text, HasSubstr("skin \"$Sh\"\r\n"));
    EXPECT_THAT(text, HasSubstr("mesh \"Eye__l_\"\r\n"));
    EXPECT_THAT(text, HasSubstr(CrLf("instance \"Body\"|{| mesh = \"Body\"| position = (0,0,0)| rotation = (0,0,0)|"
                                     " scale = 2|}|")));
    EXPECT_THAT(Notes, testing::Contains(HasSubstr("so the meshes \"Body\", \"To$p\" became one; --skin NAME")));
    EXPECT_THAT(Notes, testing::Contains("The mesh \"Eye {l}\" is called \"Eye__l_\" now."));
    const std::string chosen = Made(model, "To$p");
    EXPECT_THAT(chosen, HasSubstr("skin \"To_p\"\r\n"));
    EXPECT_THAT(chosen, HasSubstr("mesh \"Body\"\r\n"));
}

TEST_F(ANewModel, IsRefusedWithWhatIsTooMuch)
{
    ExchangeModel model{.Meshes = {Triangle("Big", 0, -1)}};
    ExchangeMesh& mesh = model.Meshes[0];
    for (uint32_t i = 3; i < 32767; ++i) {
        mesh.Vertices.push_back({.Place = {static_cast<float>(i), 2, 3}, .TexCoord = {0, 1}});
        mesh.Parts[0].Triangles.push_back({0, 1, i});
    }
    EXPECT_THAT(Made(model), HasSubstr(" f = (1,2,32767),(1,1,1),"));
    mesh.Vertices.push_back({.Place = {-1, 0, 0}});
    for (int i = 0; i < 5; ++i) {
        mesh.Parts[0].Triangles.push_back({0, 1, 32767});
    }
    EXPECT_EQ(Made(model), "The mesh \"Big\" has 32768 vertices (1 too many), 32770 faces (3 too many); a model takes "
                           "32767 of each in a mesh.");
    mesh.Vertices[5].Place.X = INFINITY;
    EXPECT_EQ(Made(model), "Places of the mesh \"Big\" are too far away.");
}
