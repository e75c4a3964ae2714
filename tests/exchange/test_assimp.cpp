#include <cmath>
#include <map>
#include <set>
#include <tuple>

#if defined(__SANITIZE_ADDRESS__)
#include <sanitizer/lsan_interface.h>
#endif

#include "app/modMath.h"
#include "modAssimpRead.h"
#include "modImportProcess.h"
#include "modStb.h"
#include "support/fresh.h"

using namespace std::string_literals;

namespace {

const std::string models = "/usr/share/assimp/models/";

using Place = std::tuple<float, float, float>;

Place PlaceOf(const Vec3& at)
{
    return {at.X, at.Y, at.Z};
}

/// How many vertices each bone has, corners at one place of a mesh being one.
std::map<std::string, size_t> VerticesOfBones(const ExchangeModel& model)
{
    std::map<std::string, size_t> counts;
    for (const ExchangeMesh& mesh : model.Meshes) {
        std::map<Place, int32_t> bones;
        for (const ExchangeVertex& vertex : mesh.Vertices) {
            EXPECT_EQ(bones.emplace(PlaceOf(vertex.Place), vertex.Bone).first->second, vertex.Bone);
        }
        for (const auto& [place, bone] : bones) {
            ++counts[bone < 0 ? "" : model.Bones.at(static_cast<size_t>(bone)).Name];
        }
    }
    return counts;
}

size_t TriangleCount(const ExchangeModel& model)
{
    size_t count = 0;
    for (const ExchangeMesh& mesh : model.Meshes) {
        for (const ExchangePart& part : mesh.Parts) {
            count += part.Triangles.size();
        }
    }
    return count;
}

struct Box {
    Vec3 Low{INFINITY, INFINITY, INFINITY}, High{-INFINITY, -INFINITY, -INFINITY};
};

Box BoxOf(const ExchangeModel& model)
{
    Box box;
    for (const ExchangeMesh& mesh : model.Meshes) {
        for (const ExchangeVertex& vertex : mesh.Vertices) {
            for (float Vec3::*axis : {&Vec3::X, &Vec3::Y, &Vec3::Z}) {
                box.Low.*axis = std::min(box.Low.*axis, vertex.Place.*axis);
                box.High.*axis = std::max(box.High.*axis, vertex.Place.*axis);
            }
        }
    }
    return box;
}

bool IsNear(const Vec3& a, const Vec3& b, double most)
{
    return VecDistance(a, b) <= most;
}

class AForeignModel : public FreshFolder {
protected:
    ExchangeModel Read(const std::string& path)
    {
        ExchangeModel model;
        EXPECT_TRUE(ReadByAssimp(path, &model, &Error)) << path << ": " << Error;
        return model;
    }
    ExchangeModel ReadText(const std::string& name, const std::string& text)
    {
        PutFile(Folder / name, text);
        return Read(Folder / name);
    }
};

/// Two joints, one above the other, in a file with the third axis up. The skin was bound 5 to the right of where its
/// vertices are told; its node stands elsewhere.
std::string Skin(const std::string& secondJoint, const std::string& nodeOfMesh)
{
    const auto source = [](const std::string& id, const std::string& kind, const std::string& values, int count,
                           int stride) {
        const std::string number = std::to_string(count * stride);
        return "<source id='" + id + "'><" + kind + "_array id='" + id + "a' count='" + number + "'>" + values + "</" +
               kind + "_array><technique_common><accessor source='#" + id + "a' count='" + std::to_string(count) +
               "' stride='" + std::to_string(stride) + "'>" +
               (stride == 3 ? "<param name='X' type='float'/><param name='Y' type='float'/><param name='Z' "
                              "type='float'/>"
                            : "<param name='P' type='" + std::string(stride == 16 ? "float4x4" : "float") + "'/>") +
               "</accessor></technique_common></source>";
    };
    return "<?xml version='1.0'?><COLLADA version='1.4.1'><asset><unit meter='1'/><up_axis>Z_UP</up_axis></asset>"
           "<library_geometries><geometry id='g'><mesh>" +
           source("p", "float", "0 0 0 1 0 0 0 0 2", 3, 3) +
           "<vertices id='v'><input semantic='POSITION' source='#p'/></vertices><triangles count='1'><input "
           "semantic='VERTEX' source='#v' offset='0'/><p>0 1 2</p></triangles></mesh></geometry></library_geometries>"
           "<library_controllers><controller id='c'><skin source='#g'><bind_shape_matrix>1 0 0 5 0 1 0 0 0 0 1 0 0 0 0 "
           "1</bind_shape_matrix>" +
           source("j", "Name", "low high", 2, 1) +
           source("b", "float", "1 0 0 0 0 1 0 0 0 0 1 0 0 0 0 1 1 0 0 0 0 1 0 0 0 0 1 -1 0 0 0 1", 2, 16) +
           source("w", "float", "1 0.5 0.3 0.51", 4, 1) +
           "<joints><input semantic='JOINT' source='#j'/><input semantic='INV_BIND_MATRIX' source='#b'/></joints>"
           "<vertex_weights count='3'><input semantic='JOINT' source='#j' offset='0'/><input semantic='WEIGHT' "
           "source='#w' offset='1'/><vcount>1 2 2</vcount><v>0 0 0 1 1 1 0 2 1 3</v></vertex_weights></skin>"
           "</controller></library_controllers><library_visual_scenes><visual_scene id='s'>"
           "<node id='low' sid='low' type='JOINT'><node id='high' sid='high' type='JOINT'><translate>" +
           secondJoint +
           "</translate><node id='high_end' type='JOINT'/><node id='toe' type='JOINT'/></node></node><node id='m'>" +
           nodeOfMesh +
           "<instance_controller url='#c'><skeleton>#low</skeleton></instance_controller></node>"
           "</visual_scene></library_visual_scenes><scene><instance_visual_scene url='#s'/></scene></COLLADA>";
}

} // namespace

TEST_F(AForeignModel, HasThePlacesAndBonesThatOthersSee)
{
    // The figures are those of Blender's own importers, or stand in the files.
    struct Case {
        std::string File;
        size_t Meshes, Triangles, Vertices, Joints;
        Box Around;
        std::string Dropped;
    };
    const Case cases[] = {
        {"FBX/huesitos.fbx",
         1,
         120,
         62,
         9,
         {{-1.058F, 0.003491F, -5.289F}, {4.299F, 5.442F, -2.073F}},
         "48 vertices lean on several bones; the largest weight counts. Dropped: 17.1 % of their weight on average, "
         "40.8 % at most."},
        {"FBX/animation_with_skeleton.fbx",
         1,
         2112,
         1058,
         14,
         {{-36.42F, -0.9167F, -0.9167F}, {34.79F, 0.9167F, 0.9167F}},
         "1058 vertices lean on several bones; the largest weight counts. Dropped: 51.4 % of their weight on average, "
         "65.6 % at most."},
        {"FBX/spider.fbx", 19, 1368, 734, 0, {{-92.66F, -42.23F, -106.7F}, {57.94F, 37.5F, 86.69F}}, ""},
        {"FBX/global_settings.fbx", 2, 1352, 680, 0, {{-20.35F, -21.95F, -19.45F}, {36.72F, 35.12F, 37.62F}}, ""},
        {"FBX/embedded_ascii/box.FBX", 1, 12, 8, 0, {{-0.6F, 0, -0.6F}, {0.6F, 1.2F, 0.6F}}, ""},
        {"Collada/box_nested_animation.dae", 1, 12, 8, 1, {{-1, 0, -1}, {1, 2, 1}}, ""},
        {"X/Testwuson.X", 1, 3732, 2117, 37, {{-0.46F, -0.000566F, -1.622F}, {0.46F, 1.515F, 1.622F}}, "27.2 %"},
        {"OBJ/WusonOBJ.obj", 1, 3732, 2117, 0, {{-0.46F, -0.000566F, -1.622F}, {0.46F, 1.515F, 1.622F}}, ""},
    };
    for (const Case& expected : cases) {
        SCOPED_TRACE(expected.File);
        const ExchangeModel model = Read(models + expected.File);
        EXPECT_EQ(model.Meshes.size(), expected.Meshes);
        EXPECT_EQ(TriangleCount(model), expected.Triangles);
        size_t vertices = 0;
        for (const auto& [bone, count] : VerticesOfBones(model)) {
            vertices += count;
            EXPECT_EQ(bone.empty(), expected.Joints == 0);
        }
        EXPECT_EQ(vertices, expected.Vertices);
        EXPECT_EQ(static_cast<int64_t>(model.Bones.size()), expected.Joints);
        const Box box = BoxOf(model);
        const double size = VecDistance(box.Low, box.High);
        EXPECT_TRUE(IsNear(box.Low, expected.Around.Low, 1e-3 * size)) << box.Low.X << " " << box.Low.Y;
        EXPECT_TRUE(IsNear(box.High, expected.Around.High, 1e-3 * size)) << box.High.X << " " << box.High.Y;
        EXPECT_THAT(model.Notes, testing::Conditional(expected.Dropped.empty(),
                                                      testing::Each(testing::Not(testing::HasSubstr("lean"))),
                                                      testing::Contains(testing::HasSubstr(expected.Dropped))));
    }
}

TEST_F(AForeignModel, HasTheSkeletonAndTheLargestWeights)
{
    const ExchangeModel model = Read(models + "FBX/huesitos.fbx");
    EXPECT_THAT(VerticesOfBones(model), (std::map<std::string, size_t>{{"Bone", 17},
                                                                       {"Bone.001", 6},
                                                                       {"Bone.002", 4},
                                                                       {"Bone.003", 6},
                                                                       {"Bone.004", 4},
                                                                       {"Bone.006", 8},
                                                                       {"Bone.007", 8},
                                                                       {"Bone.008", 9}}));
    std::map<std::string, std::string> parents;
    for (const ExchangeBone& bone : model.Bones) {
        parents[bone.Name] = bone.Parent < 0 ? "" : model.Bones.at(static_cast<size_t>(bone.Parent)).Name;
        EXPECT_FALSE(bone.Name.ends_with("_end"));
        if (bone.Name == "Bone.006") {
            EXPECT_TRUE(IsNear(bone.Head, {3.144F, 2.112F, -4.501F}, 1e-3));
        }
    }
    EXPECT_EQ(parents["Bone.006"] + parents["Bone.004"] + parents["Bone.003"] + parents["Bone"],
              "Bone.005Bone.002Bone.001");
    // Three meshes of one creature, told in places of their own: every bone lies within it.
    const ExchangeModel creature = Read(models + "X/BCN_Epileptic.X");
    const Box box = BoxOf(creature);
    EXPECT_EQ(creature.Bones.size(), 54U);
    for (const ExchangeBone& bone : creature.Bones) {
        EXPECT_TRUE(bone.Head.X > box.Low.X && bone.Head.Y > box.Low.Y && bone.Head.Z > box.Low.Z &&
                    bone.Head.X < box.High.X && bone.Head.Y < box.High.Y && bone.Head.Z < box.High.Z)
            << bone.Name;
    }
}

TEST_F(AForeignModel, StandsAsItWasBoundInWhateverPoseItIsSaved)
{
    const ExchangeModel rest = ReadText("rest.dae", Skin("0 0 1", "<translate>9 9 9</translate>"));
    ASSERT_EQ(rest.Bones.size(), 3U); // the tip of a chain is none
    EXPECT_EQ(rest.Bones[2].Name, "toe");
    EXPECT_TRUE(IsNear(rest.Bones[1].Head, {0, 1, 0}, 1e-6)) << rest.Bones[1].Head.X;
    const std::vector<ExchangeVertex>& vertices = rest.Meshes.at(0).Vertices;
    EXPECT_TRUE(IsNear(vertices.at(0).Place, {5, 0, 0}, 1e-6)) << vertices[0].Place.X;
    EXPECT_TRUE(IsNear(vertices.at(2).Place, {5, 2, 0}, 1e-6)) << vertices[2].Place.Y;
    EXPECT_EQ(vertices[0].Bone, 0);
    EXPECT_EQ(vertices[1].Bone, 0); // the first of two that are equal
    EXPECT_EQ(vertices[2].Bone, 1);
    const ExchangeModel posed = ReadText("posed.dae", Skin("0 7 0", ""));
    for (const size_t bone : {0U, 1U}) {
        EXPECT_TRUE(IsNear(VecSub(posed.Bones[bone].Head, posed.Meshes.at(0).Vertices[2].Place),
                           VecSub(rest.Bones[bone].Head, vertices[2].Place), 1e-6));
    }
    // A node that mirrors: faces keep looking where their normals do.
    const ExchangeModel mirrored = ReadText("mirrored.dae", Skin("0 7 0", "<scale>-2 1 1</scale>"));
    for (const ExchangeModel* model : {&rest, &mirrored}) {
        const ExchangeMesh& mesh = model->Meshes.at(0);
        const auto& triangle = mesh.Parts.at(0).Triangles.at(0);
        const auto place = [&](size_t corner) { return mesh.Vertices[triangle[corner]].Place; };
        EXPECT_GT(VecDot(FaceNormal(place(2), place(1), place(0)), mesh.Vertices[0].Normal), 0.99);
    }
}

TEST_F(AForeignModel, BringsItsMaterialsFromItsOwnFolder)
{
    std::string png;
    ASSERT_TRUE(EncodePng(std::vector<uint8_t>(16, 128), 2, 2, 4, &png));
    std::filesystem::create_directory(PathOf(Folder / "in"));
    PutFile(Folder / "in/BARK.png", png);
    PutFile(Folder / "in/moss.tga", "none of ours");
    PutFile(Folder / "leaf.png", png);
    PutFile(Folder / "outside.mtl", "newmtl Outside\nKd 1 0 0\n");
    PutFile(Folder / "in/m.mtl", "newmtl Bark\nKd 0 0 0\nmap_Kd ..\\Tex\\Bark.PNG\nnewmtl Leaf\nKd 0.5 0.25 2\nmap_Kd "
                                 "../leaf.png\nnewmtl Moss\nKd 0 1 0\nmap_Kd moss.tga\n");
    const std::string shape = "v 0 0 0\nv 1 0 0\nv 1 1 0\nv 0 1 0\nvt 0.25 0.75\n";
    const ExchangeModel model =
        ReadText("in/a.obj", "mtllib m.mtl\no Thing\xFF\n" + shape +
                                 "usemtl Bark\nf 1/1 2/1 3/1 4/1\nusemtl Leaf\nf 1/1 2/1 3/1\nusemtl Bark\nf 2/1 3/1 "
                                 "4/1\nusemtl Moss\nf 1/1 3/1 4/1\np 1\n");
    ASSERT_EQ(model.Meshes.size(), 1U);
    const ExchangeMesh& mesh = model.Meshes[0];
    EXPECT_EQ(mesh.Name, "Thing?");
    ASSERT_EQ(mesh.Parts.size(), 3U);
    EXPECT_EQ(mesh.Parts[0].Triangles.size(), 3U);
    EXPECT_EQ(mesh.Vertices.at(0).TexCoord.V, 0.25F);
    EXPECT_TRUE(IsNear(mesh.Vertices[0].Normal, {0, 0, 1}, 1e-6));
    ASSERT_EQ(model.Materials.size(), 3U);
    EXPECT_EQ(model.Materials[0].Name, "Bark");
    EXPECT_TRUE(model.Materials[0].HasOpacity);
    EXPECT_THAT(model.Materials[0].Color, testing::ElementsAre(1, 1, 1));
    EXPECT_THAT(model.Materials[1].Color, testing::ElementsAre(0.5F, 0.25F, 1));
    ASSERT_EQ(model.Images.size(), 1U);
    EXPECT_EQ(model.Images[0].Name, "Bark");
    EXPECT_EQ(model.Images[0].Bytes, png);
    EXPECT_THAT(model.Notes,
                testing::UnorderedElementsAre(
                    "The picture \"leaf.png\" of the material \"Leaf\" was left out: it is not beside the file.",
                    "The picture \"moss.tga\" of the material \"Moss\" was left out: it is neither PNG nor JPEG.",
                    "1 point, line or damaged face was left out."));
    for (const std::string& library : {"../outside.mtl"s, "in/../../outside.mtl"s, Folder / "outside.mtl"}) {
        const ExchangeModel outside =
            ReadText("in/b.obj", "mtllib " + library + "\n" + shape + "usemtl Outside\nf 1/1 2/1 3/1\n");
        EXPECT_THAT(outside.Materials.at(0).Color, testing::Not(testing::ElementsAre(1, 0, 0))) << library;
    }
    const ExchangeModel embedded = Read(models + "FBX/embedded_ascii/box.FBX");
    ASSERT_EQ(embedded.Images.size(), 1U);
    EXPECT_EQ(embedded.Images[0].Name, "uv_test");
    int32_t width = 0;
    int32_t height = 0;
    EXPECT_TRUE(PictureSize(embedded.Images[0].Bytes, &width, &height));
    EXPECT_EQ(width, 512);
}

TEST_F(AForeignModel, ThatIsDamagedIsRefusedOrReadButNeverHarms)
{
#if defined(__SANITIZE_ADDRESS__)
    const __lsan::ScopedDisabler ownLeaks; // Assimp loses what it had when it gives a file up
#endif
    for (const char* file : {"FBX/huesitos.fbx", "Collada/box_nested_animation.dae", "X/anim_test.x"}) {
        const std::string whole = Content(models + file);
        const std::string path = Folder / std::string("a") + std::string(file).substr(std::string(file).rfind('.'));
        for (size_t i = 0; i < 16; ++i) {
            std::string bytes = whole.substr(0, whole.size() * (i + 1) / 17);
            bytes[(bytes.size() - 1) * 7 / 8] ^= static_cast<char>(1 << (i % 8));
            PutFile(path, bytes);
            ExchangeModel model;
            Error.clear();
            const bool read = ReadByAssimp(path, &model, &Error);
            EXPECT_EQ(read, Error.empty());
            for (const ExchangeMesh& mesh : model.Meshes) {
                for (const ExchangeVertex& vertex : mesh.Vertices) {
                    EXPECT_LT(vertex.Bone, static_cast<int32_t>(model.Bones.size()));
                }
            }
        }
    }
    EXPECT_EQ(Folder.Names().size(), 3U);
    ExchangeModel none;
    for (const auto& [name, text] : std::vector<std::pair<std::string, std::string>>{
             {"a.obj", "v 1e39 0 0\nv 1 0 0\nv 1 1 0\nf 1 2 3\n"}, {"b.obj", "p 1\n"}, {"c.glb", "glTF"}}) {
        PutFile(Folder / name, text);
        EXPECT_FALSE(ReadByAssimp(Folder / name, &none, &Error)) << name;
    }
    EXPECT_FALSE(ReadByAssimp(Folder / "none.fbx", &none, &Error));
}

TEST_F(AForeignModel, IsReadByAProgramOfItsOwn)
{
    std::string glb;
    std::string messages;
    ASSERT_TRUE(RunImporter(IMPORTER, models + "FBX/huesitos.fbx", &glb, &messages, &Error)) << Error;
    EXPECT_FALSE(glb.empty());
    EXPECT_THAT(messages, testing::StartsWith("1 animation was left out.\n1 light was"));
    EXPECT_FALSE(RunImporter(IMPORTER, models + "OBJ/point_cloud.obj", &glb, &messages, &Error));
    EXPECT_EQ(Error, "There is no mesh in it.");
    EXPECT_FALSE(RunImporter(Folder / "none", "", &glb, &messages, &Error));
    EXPECT_THAT(Error, testing::StartsWith("This build reads no format but glTF"));
    const std::vector<std::pair<std::string, std::string>> ends = {{"exit 127", "The program that reads"},
                                                                   {"kill -KILL $$", "The file was given up"},
                                                                   {"kill -ABRT $$", "The file is damaged"},
                                                                   {"exit 2", "The file cannot be read."}};
    for (const auto& [script, words] : ends) {
        PutFile(Folder / "program", "#!/bin/sh\n" + script + "\n");
        std::filesystem::permissions(Folder / "program", std::filesystem::perms::owner_all);
        EXPECT_FALSE(RunImporter(Folder / "program", "", &glb, &messages, &Error));
        EXPECT_THAT(Error, testing::StartsWith(words));
    }
}
