#include <array>
#include <cmath>
#include <functional>

#include "model/modNumbers.h"
#include "modGltfRead.h"
#include "modMatrix.h"
#include "support/fresh.h"
#include "support/gltf_text.h"

using nlohmann::json;
using testing::HasSubstr;
using namespace std::string_literals;

// Files that other programs write.

namespace {

using Change = std::function<void(GltfText*)>;

std::string PlaceText(const Vec3& place)
{
    const auto rounded = [](float number) { return FloatToText(std::round(number * 1e4F) / 1e4F); };
    return rounded(place.X) + "," + rounded(place.Y) + "," + rounded(place.Z);
}

class AReader : public FreshFolder {
protected:
    /// Reads the square with a change made to it; gives what is wrong.
    std::string Read(const Change& change)
    {
        GltfText file;
        change(&file);
        return ReadText(file.Text());
    }
    std::string ReadText(const std::string& text)
    {
        Model = {};
        Error.clear();
        return ReadGltf(text, Folder.Path, &Model, &Error) ? "" : Error;
    }
    /// The corners of all triangles by their indices.
    std::string Corners() const
    {
        std::string text;
        for (const ExchangeMesh& mesh : Model.Meshes) {
            for (const ExchangePart& part : mesh.Parts) {
                for (const auto& triangle : part.Triangles) {
                    text += (text.empty() ? "" : " ") + std::to_string(triangle[0]) + std::to_string(triangle[1]) +
                            std::to_string(triangle[2]);
                }
            }
        }
        return text;
    }
    /// The corners of the first triangle of each mesh where they stand in the scene, for each of its places.
    std::string Places() const
    {
        std::string text;
        for (const ExchangeMesh& mesh : Model.Meshes) {
            for (const ExchangePlacement& placement : mesh.Placements) {
                const Matrix matrix = MatrixOf(placement.Position, placement.Rotation, placement.Scale);
                for (const uint32_t corner : mesh.Parts.at(0).Triangles.at(0)) {
                    text += (text.empty() ? "" : " ") + PlaceText(Transformed(matrix, mesh.Vertices.at(corner).Place));
                }
            }
        }
        return text;
    }
    /// The name of the bone of each vertex.
    std::string BonesOfVertices() const
    {
        std::string text;
        for (const ExchangeVertex& vertex : Model.Meshes.at(0).Vertices) {
            text += vertex.Bone < 0 ? "-" : Model.Bones.at(static_cast<size_t>(vertex.Bone)).Name;
        }
        return text;
    }
    ExchangeModel Model;
};

/// Gives the square a skin of three joints, A at the origin, B at (1,0,0), C at (0,1,0) from B.
void AddSkin(GltfText* file)
{
    file->Root["nodes"] = json::parse(R"([{"mesh": 0, "skin": 0}, {"name": "A"},
        {"name": "B", "translation": [1, 0, 0], "children": [3]}, {"name": "C", "translation": [0, 1, 0]},
        {"name": "Root", "children": [1, 2]}])");
    file->Root["scenes"][0]["nodes"] = {0, 4};
    const std::vector<float> places = {0, 0, 0, 1, 0, 0, 1, 1, 0};
    std::vector<float> matrices;
    for (size_t joint = 0; joint < 3; ++joint) {
        matrices.insert(matrices.end(), {1, 0, 0, 0, 0, 1, 0, 0, 0, 0, 1, 0});
        for (size_t axis = 0; axis < 3; ++axis) {
            matrices.push_back(-places[3 * joint + axis]);
        }
        matrices.push_back(1);
    }
    const int accessor = file->Add(matrices, "MAT4");
    file->Root["skins"] = {{{"joints", {1, 2, 3}}, {"inverseBindMatrices", accessor}}};
}

/// One set of joints, all vertices alike.
template <typename Joint, typename Weight>
void AddSet(int set, const std::array<Joint, 4>& joints, const std::array<Weight, 4>& weights, GltfText* file)
{
    std::vector<Joint> allJoints;
    std::vector<Weight> allWeights;
    for (int vertex = 0; vertex < 4; ++vertex) {
        allJoints.insert(allJoints.end(), joints.begin(), joints.end());
        allWeights.insert(allWeights.end(), weights.begin(), weights.end());
    }
    file->Primitive()["attributes"]["JOINTS_" + std::to_string(set)] = file->Add(allJoints, "VEC4");
    file->Primitive()["attributes"]["WEIGHTS_" + std::to_string(set)] =
        file->Add(allWeights, "VEC4", std::is_integral_v<Weight>);
}

using Bytes = std::array<uint8_t, 4>;
using Shorts = std::array<uint16_t, 4>;
using Floats = std::array<float, 4>;

Change Skinned(const Change& change)
{
    return [=](GltfText* file) {
        AddSkin(file);
        AddSet(0, Bytes{0, 1, 2, 0}, Floats{0, 0, 1, 0}, file);
        change(file);
    };
}

Change Set(const std::string& path, const json& value)
{
    return [=](GltfText* file) { file->At(path) = value; };
}

Change SetSkinned(const std::string& path, const json& value)
{
    return Skinned(Set(path, value));
}

} // namespace

TEST_F(AReader, TakesTrianglesOfAllForms)
{
    const auto form = [](int mode, const auto& indices) {
        return [=](GltfText* file) {
            file->Primitive()["mode"] = mode;
            file->Primitive()["indices"] = file->Add(indices, "SCALAR");
        };
    };
    const std::pair<Change, std::string> cases[] = {
        {[](auto*) {}, "012 023"},
        {form(4, std::vector<uint8_t>{3, 2, 1, 0}), "321"},
        {form(4, std::vector<uint16_t>{3, 2, 1, 0, 1, 2}), "321 012"},
        {form(4, std::vector<uint32_t>{3, 2, 1, 0, 1, 2}), "321 012"},
        {form(5, std::vector<uint8_t>{0, 1, 2, 3, 0}), "012 132 230"},
        {form(6, std::vector<uint8_t>{0, 1, 2, 3}), "120 230"},
        {[](auto* file) { file->Primitive().erase("indices"); }, "012"},
        {[](auto* file) {
             json points = file->Primitive();
             points["mode"] = 0;
             file->At("/meshes/0/primitives").push_back(points);
             file->At("/meshes/0/primitives").push_back(file->Primitive());
         },
         "012 023 456 467"},
    };
    for (const auto& [change, corners] : cases) {
        EXPECT_EQ(Read(change), "");
        EXPECT_EQ(Corners(), corners);
    }
    EXPECT_THAT(Model.Notes, testing::ElementsAre("Points and lines are left out."));
    for (const auto& [indices, front] : {std::pair(std::vector<uint8_t>{0, 1, 2}, 1.0F), {{2, 1, 0}, -1.0F}}) {
        EXPECT_EQ(Read(form(4, indices)), "");
        EXPECT_EQ(Model.Meshes.at(0).Vertices[1].Normal.Z, front) << "a normal that the file lacks is its faces'";
    }
}

TEST_F(AReader, TakesNumbersOfAllForms)
{
    const std::string square = "0,0,0 1,0,0 1,1,0";
    const std::pair<Change, std::string> cases[] = {
        {[](auto* file) { // four floats apart
             file->Primitive()["attributes"]["POSITION"] =
                 file->Add(std::vector<float>{9, 0, 0, 0, 9, 1, 0, 0, 9, 1, 1, 0, 9, 0, 1, 0}, "VEC4");
             file->At("/accessors/2") = {
                 {"bufferView", 2}, {"byteOffset", 4}, {"componentType", 5126}, {"type", "VEC3"}, {"count", 4}};
             file->At("/bufferViews/2/byteStride") = 16;
         },
         square},
        {[](auto* file) { // nothing but what a sparse accessor replaces
             const int places = file->Add(std::vector<float>{1, 0, 0, 1, 1, 0, 0, 1, 0}, "VEC3");
             const int indices = file->Add(std::vector<uint16_t>{1, 2, 3}, "SCALAR");
             file->At("/accessors/0").erase("bufferView");
             file->At("/accessors/0/sparse") = {{"count", 3},
                                                {"indices", {{"bufferView", indices}, {"componentType", 5123}}},
                                                {"values", {{"bufferView", places}}}};
         },
         square},
        {[](auto* file) { // whole numbers from -1 to 1
             file->Primitive()["attributes"]["POSITION"] =
                 file->Add(std::vector<int8_t>{0, 0, 0, 127, 0, 0, 127, 127, -128, 0, 127, 0}, "VEC3", true);
         },
         "0,0,0 1,0,0 1,1,-1"},
        {[](auto* file) { // whole numbers as they are
             file->Primitive()["attributes"]["POSITION"] =
                 file->Add(std::vector<int16_t>{0, 0, 0, 500, 0, 0, 0, -32768, 0, 0, 0, 0}, "VEC3");
         },
         "0,0,0 500,0,0 0,-32768,0"},
    };
    for (const auto& [change, places] : cases) {
        EXPECT_EQ(Read(change), "");
        EXPECT_EQ(Places(), places);
    }
}

TEST_F(AReader, GivesEachVertexItsLargestJoint)
{
    struct Case {
        Change Edit;
        std::string Bones;
        std::string Note;
    };
    const auto sets = [](const auto& joints, const auto& weights) {
        return [=](GltfText* file) { AddSet(0, joints, weights, file); };
    };
    const Case cases[] = {
        {sets(Bytes{1, 0, 0, 0}, Floats{1, 0, 0, 0}), "BBBB", ""},
        {sets(Shorts{2, 1, 0, 0}, Bytes{255, 0, 0, 0}), "CCCC", ""},
        {sets(Bytes{0, 2, 0, 0}, Shorts{16384, 49151, 0, 0}), "CCCC",
         "4 vertices lean on several bones; the largest weight counts. Dropped: 25.0 % of their weight"},
        {sets(Bytes{2, 0, 0, 0}, Floats{0.5F, 0.5F, 0, 0}), "AAAA",
         "50.0 % of their weight on average, 50.0 % at most."},
        {[](auto* file) { // a corner of two triangles, apart in the file
             AddSet(0, Bytes{2, 0, 0, 0}, Floats{0.5F, 0.5F, 0, 0}, file);
             file->At("/meshes/0/primitives/0/attributes/POSITION") =
                 file->Add(std::vector<float>{0, 0, 0, 1, 0, 0, 1, 1, 0, 1, 0, 0}, "VEC3");
         },
         "AAAA", "3 vertices lean on"},
        {sets(Bytes{1, 2, 2, 0}, Floats{0.4F, 0.3F, 0.3F, 0}), "CCCC", "40.0 %"},
        {sets(Bytes{1, 2, 0, 0}, Floats{1.5F, 0.5F, 0, 0}), "BBBB", "25.0 %"},
        {sets(Bytes{1, 9, 9, 9}, Floats{0.2F, 0, 0, 0}), "BBBB", ""},
        {sets(Bytes{1, 1, 1, 1}, Floats{0, 0, 0, 0}), "----", ""},
        {[](auto* file) {
             AddSet(0, Bytes{0, 1, 0, 0}, Floats{0.3F, 0.25F, 0, 0}, file);
             AddSet(1, Bytes{1, 2, 0, 0}, Floats{0.25F, 0.2F, 0, 0}, file);
         },
         "BBBB", "50.0 %"},
        {[](auto* file) { file->At("/nodes/3/name") = "neutral_bone"; }, "----", ""},
        {[](auto* file) { file->At("/nodes/3/name") = "beastwright_unassigned"; }, "----", ""},
    };
    for (const Case& c : cases) {
        EXPECT_EQ(Read(Skinned(c.Edit)), "");
        EXPECT_EQ(BonesOfVertices(), c.Bones);
        EXPECT_EQ(Model.Notes.size(), c.Note.empty() ? 0 : 1);
        EXPECT_THAT(Model.Notes.empty() ? "" : Model.Notes[0], HasSubstr(c.Note));
    }
    EXPECT_EQ(Model.Bones.size(), 2) << "the joint of no bone is none";
    EXPECT_THAT(Read(Skinned(sets(Bytes{3, 0, 0, 0}, Floats{1, 0, 0, 0}))),
                "A vertex leans on joint 3 of a skin that has 3.");
}

TEST_F(AReader, PutsMeshesWhereNodesHaveThem)
{
    struct Case {
        json Nodes;
        std::string Places;
        size_t Meshes = 1;
    };
    const Case cases[] = {
        {{{{"mesh", 0}, {"translation", {1, 2, 3}}, {"scale", {2, 2, 2}}}}, "1,2,3 3,2,3 3,4,3"},
        {{{{"mesh", 0}, {"rotation", {0, 0, 0.70710678, 0.70710678}}}}, "0,0,0 0,1,0 -1,1,0"},
        {{{{"mesh", 0}, {"matrix", {0, 0, -3, 0, 0, 3, 0, 0, 3, 0, 0, 0, 0, 0, 5, 1}}}}, "0,0,5 0,0,2 0,3,2"},
        {{{{"mesh", 0}, {"scale", {-1, 1, 1}}}}, "0,0,0 -1,1,0 -1,0,0"}, // the front stays the front
        {{{{"mesh", 0}, {"scale", {2, 3, 1}}}}, "0,0,0 2,0,0 2,3,0"},
        {{{{"translation", {1, 0, 0}}, {"children", {1}}},
          {{"scale", {2, 2, 2}}, {"children", {2}}},
          {{"mesh", 0}, {"translation", {0, 1, 0}}}},
         "1,2,0 3,2,0 3,4,0"},
        {{{{"children", {1, 2}}}, {{"mesh", 0}}, {{"mesh", 0}, {"scale", {2, 2, 2}}}},
         "0,0,0 1,0,0 1,1,0 0,0,0 2,0,0 2,2,0"},
        {{{{"children", {1, 2}}}, {{"mesh", 0}}, {{"mesh", 0}, {"scale", {2, 2, 1}}}},
         "0,0,0 1,0,0 1,1,0 0,0,0 2,0,0 2,2,0",
         2},
        {{{{"mesh", 0}}, {{"mesh", 0}}}, "0,0,0 1,0,0 1,1,0"}, // the scene does not show the second
    };
    for (const Case& c : cases) {
        EXPECT_EQ(Read(Set("/nodes", c.Nodes)), "");
        EXPECT_EQ(Places(), c.Places);
        EXPECT_EQ(Model.Meshes.size(), c.Meshes);
    }
    EXPECT_EQ(Read([](auto* file) {
                  file->Primitive()["attributes"]["NORMAL"] = file->Add(std::vector<float>(12, 0.57735F), "VEC3");
                  file->At("/nodes/0/matrix") = {0, 0, 1, 0, 2, 0, 0, 0, 0, 4, 0, 0, 0, 0, 0, 1};
              }),
              "");
    EXPECT_EQ(PlaceText(Model.Meshes.at(0).Vertices.at(0).Normal), "0.4364,0.2182,0.8729");
    EXPECT_EQ(Read([](auto* file) {
                  file->Root.erase("scene");
                  file->Root.erase("scenes");
                  file->Root["nodes"] = {{{"children", {1}}}, {{"mesh", 0}}};
              }),
              "");
}

TEST_F(AReader, PutsSkinsWhereTheyWereBound)
{
    struct Case {
        Change Edit;
        std::string Places;
        std::string Heads;
        bool IsPosed = false;
    };
    const std::string square = "0,0,0 1,0,0 1,1,0";
    const std::string heads = "A 0,0,0 B 1,0,0 C 1,1,0 ";
    const Case cases[] = {
        {[](auto*) {}, square, heads},
        {Set("/nodes/0/translation", {5, 5, 5}), square, heads}, // a skin's own node says nothing
        {Set("/nodes/4/translation", {0, 0, 5}), "0,0,5 1,0,5 1,1,5", "A 0,0,5 B 1,0,5 C 1,1,5 "},
        {Set("/nodes/4/scale", {2, 2, 2}), "0,0,0 2,0,0 2,2,0", "A 0,0,0 B 2,0,0 C 2,2,0 "},
        {Set("/nodes/4/scale", {1, 2, 1}), "0,0,0 1,0,0 1,2,0", "A 0,0,0 B 1,0,0 C 1,2,0 "},
        {Set("/nodes/4/rotation", {1, 0, 0, 0}), "0,0,0 1,0,0 1,-1,0", "A 0,0,0 B 1,0,0 C 1,-1,0 "},
        {Set("/nodes/2/rotation", {0, 0, 1, 0}), square, heads, true},
        {Set("/nodes/3/translation", {0, 7, 0}), square, heads, true},
        {[](auto* file) { file->At("/skins/0").erase("inverseBindMatrices"); }, "1,1,0 2,1,0 2,2,0", heads},
    };
    for (const Case& c : cases) {
        EXPECT_EQ(Read(Skinned(c.Edit)), "");
        EXPECT_EQ(Places(), c.Places);
        std::string found;
        for (const ExchangeBone& bone : Model.Bones) {
            found += bone.Name + " " + PlaceText(bone.Head) + " ";
        }
        EXPECT_EQ(found, c.Heads);
        EXPECT_EQ(!Model.Notes.empty() && Model.Notes[0].starts_with("The skeleton stands in a pose;"), c.IsPosed);
        EXPECT_EQ(Model.Bones.at(2).Parent, 1);
        EXPECT_EQ(Model.Bones[1].Parent, -1);
    }
}

TEST_F(AReader, TellsWhatIsLeftOut)
{
    EXPECT_EQ(
        Read([](auto* file) {
            file->Root["animations"] = {{{"channels", json::array()}, {"samplers", json::array()}}};
            file->Root["cameras"] = {{{"type", "perspective"}, {"perspective", {{"yfov", 1}, {"znear", 1}}}}};
            file->Root["extensions"]["KHR_lights_punctual"]["lights"] = {{{"type", "point"}}};
            file->Root["extensionsRequired"] = {"KHR_materials_unlit"};
            file->Primitive()["targets"] = {{{"POSITION", 0}}};
            file->Root["materials"] = json::parse(
                R"([{"name": "M", "alphaMode": "BLEND", "pbrMetallicRoughness": {"baseColorFactor": [2, 0.5, 0, 1],
                           "baseColorTexture": {"index": 7}}}])");
            file->Primitive()["material"] = 0;
        }),
        "");
    EXPECT_THAT(Model.Notes, testing::UnorderedElementsAre("Animations are left out.", "Morph targets are left out.",
                                                           "Lights are left out.", "Cameras are left out."));
    EXPECT_TRUE(Model.Materials.at(0).HasOpacity && Model.Materials[0].Image == -1);
    EXPECT_EQ(Model.Materials[0].Color[0], 1);
    EXPECT_NEAR(Model.Materials[0].Color[1], 0.735, 5e-4); // half the light, as it is shown
}

TEST_F(AReader, RefusesDamage)
{
    const auto version = [](const char* text) { return Set("/asset/version", text); };
    const std::string damaged = "It is no glTF file, or a damaged one: ";
    const std::string tree = "Its tree of nodes is damaged.";
    const auto accessor = [](int index) { return "Its accessor " + std::to_string(index) + " is damaged."; };
    const auto buffer = [](const json& uri, int64_t length = 60) {
        return Set("/buffers", {{{"byteLength", length}, {"uri", uri}}});
    };
    const json huge = uint64_t{1} << 62;
    PutFile(Folder / "short.bin", std::string(59, '\0'));
    const std::pair<Change, std::string> cases[] = {
        {version("1.0"), "It is of version \"1.0\" of glTF; version 2.0 can be read."},
        {Set("/asset/minVersion", "2.1"), "version"},
        {Set("/asset", {}), ""},
        {Set("/extensionsRequired", {"KHR_draco_mesh_compression"}),
         "It cannot be read without the extension \"KHR_draco_mesh_compression\"."},
        {Set("/scenes/0/nodes", {1}), tree},
        {Set("/scenes/0/nodes", {-1}), tree},
        {Set("/scenes/0/nodes", {0, 0}), tree},
        {Set("/nodes/0/children", {0}), tree},
        {Set("/nodes", {{{"children", {1, 2}}}, {{"children", {2}}}, {{"mesh", 0}}}), tree},
        {Set("/nodes/0/scale", {1e300, 1, 1}), "is not finite"},
        {Set("/nodes/0/translation", {0, 1e39, 0}), "is not finite"},
        {Set("/nodes/0/mesh", 1), "Node 0 names a mesh or a skin that is not there."},
        {Set("/nodes/0/skin", 0), "Node 0 names a mesh or a skin that is not there."},
        {Set("/nodes/0/mesh", "0"), ""},
        {Set("/nodes/0/mesh", -5), "It holds no mesh with a triangle."},
        {Set("/meshes/0/primitives", json::array()), ""},
        {Set("/meshes/0/primitives/0/attributes", {{"NORMAL", 0}}), "It holds no mesh with a triangle."},
        {Set("/meshes/0/primitives/0/mode", 1), "It holds no mesh with a triangle."},
        {Set("/meshes/0/primitives/0/attributes/POSITION", 2), accessor(2)},
        {Set("/meshes/0/primitives/0/attributes/POSITION", -1), accessor(-1)},
        {Set("/meshes/0/primitives/0/attributes/POSITION", 1), accessor(1)},
        {Set("/meshes/0/primitives/0/attributes/NORMAL", 1), accessor(1)},
        {Set("/meshes/0/primitives/0/indices", 0), accessor(0)},
        {Set("/meshes/0/primitives/0/indices", 99), ""},
        {Set("/accessors/0/bufferView", 2), ""},
        {Set("/accessors/0/byteOffset", 4), accessor(0)},
        {Set("/accessors/0/byteOffset", huge), accessor(0)},
        {Set("/accessors/0/count", 5), accessor(0)},
        {Set("/accessors/0/count", huge), "It holds more vertices than a model can."},
        {Set("/accessors/0/count", -1), ""},
        {Set("/accessors/0/count", 0), ""},
        {Set("/accessors/0/componentType", 5130), ""},
        {Set("/accessors/0/type", "VEC2"), accessor(0)},
        {Set("/accessors/1/count", 60), accessor(1)},
        {Set("/accessors/0", {{"componentType", 5126}, {"type", "VEC3"}, {"count", 100}}), accessor(0)},
        {Set("/accessors/0/sparse", {{"count", 1},
                                     {"indices", {{"bufferView", 1}, {"componentType", 5125}}},
                                     {"values", {{"bufferView", 0}}}}),
         accessor(0)},
        {Set("/bufferViews/0/byteLength", 61), "Its buffer view 0 lies outside of its buffer."},
        {Set("/bufferViews/0/byteLength", huge), "Its buffer view 0 lies outside of its buffer."},
        {Set("/bufferViews/0/byteOffset", huge), "Its buffer view 0 lies outside of its buffer."},
        {Set("/bufferViews/0/buffer", 1), "Its buffer view 0 lies outside of its buffer."},
        {Set("/bufferViews/0/buffer", -1), "Its buffer view 0 lies outside of its buffer."},
        {Set("/bufferViews/0/byteStride", 8), ""},
        {buffer("../x.bin"), "It names \"../x.bin\", which is outside of its folder."},
        {buffer("a/%2e%2e/../x.bin"), "outside of its folder."},
        {buffer("%2E%2E/x.bin"), "outside of its folder."},
        {buffer("/etc/passwd"), "It names \"/etc/passwd\", which is outside of its folder."},
        {buffer("C:\\x.bin"), "outside of its folder."},
        {buffer("http://example.org/x.bin"), "outside of its folder."},
        {buffer("none.bin"), damaged},
        {buffer("short.bin"), damaged},
        {buffer("data:application/octet-stream;base64,AAAA"), damaged},
        {buffer("", -60), damaged},
        {Set("/images", {{{"uri", "../secret.png"}}}), "It names \"../secret.png\", which is outside of its folder."},
        {[](auto* file) { file->Bytes.replace(4, 4, "\0\0\x80\x7F", 4); },
         "Its accessor 0 holds a number that is not finite."},
        {[](auto* file) { file->Bytes[48] = 4; }, "A triangle names vertex 4 of 4."},
        {[](auto* file) { file->Primitive()["attributes"]["NORMAL"] = file->Add(std::vector<float>(9), "VEC3"); },
         "A mesh has more or fewer entries of NORMAL than vertices."},
        {Skinned([](auto* file) {
             file->Primitive()["attributes"]["JOINTS_0"] = file->Add(std::vector<uint8_t>(12), "VEC4");
         }),
         "A mesh has more or fewer weights than vertices."},
        {[](auto* file) { // 5000 times the same 2000 vertices
             file->Primitive()["attributes"]["POSITION"] = file->Add(std::vector<float>(6000), "VEC3");
             file->At("/meshes/0/primitives") = std::vector<json>(5000, file->Primitive());
         },
         "It holds more vertices than a model can."},
        {Skinned([](auto* file) {
             for (int set = 1; set < 17; ++set) {
                 file->Primitive()["attributes"]["JOINTS_" + std::to_string(set)] = 3;
                 file->Primitive()["attributes"]["WEIGHTS_" + std::to_string(set)] = 4;
             }
         }),
         "A mesh has more than 16 sets of joints."},
        {SetSkinned("/skins/0/joints", {1, 2, 99}), "A skin has no joints, or one that is no node."},
        {SetSkinned("/skins/0/joints", json::array()), ""},
        {SetSkinned("/skins/0/inverseBindMatrices", 0), accessor(0)},
        {SetSkinned("/accessors/2/count", 2), "A skin has fewer matrices than joints."},
    };
    for (const auto& [change, text] : cases) {
        GltfText file;
        change(&file);
        SCOPED_TRACE(file.Text());
        const std::string error = ReadText(file.Text());
        EXPECT_NE(error, "");
        EXPECT_THAT(error, HasSubstr(text));
    }
    for (const std::string& text :
         {""s, "x"s, "{}"s, "glTF"s, "\xEF\xBB\xBF"s, "{\"asset\": {\"version\": \"2.0\"}, \"a\": \"\xFF\"}"s}) {
        EXPECT_NE(ReadText(text), "");
    }
    for (const std::string& bracket : {"["s, "{\"a\":"s}) {
        std::string text = "{\"a\": \"[[\\\"[[\", \"b\": ";
        for (int i = 0; i < 100000; ++i) {
            text += bracket;
        }
        EXPECT_EQ(ReadText(text), "Its text is nested more than 64 deep.");
    }
}

TEST_F(AReader, RefusesDamagedFramesOfBinaryFiles)
{
    GltfText file;
    file.Root["buffers"] = {{{"byteLength", file.Bytes.size()}}};
    std::string text = file.Text();
    text.resize((text.size() + 3) / 4 * 4, ' ');
    const auto word = [](size_t number) {
        std::string bytes;
        for (unsigned shift = 0; shift < 32; shift += 8) {
            bytes += static_cast<char>(number >> shift & 0xFFU);
        }
        return bytes;
    };
    const std::string whole = "glTF" + word(2) + word(28 + text.size() + file.Bytes.size()) + word(text.size()) +
                              "JSON" + text + word(file.Bytes.size()) + "BIN\0"s + file.Bytes;
    EXPECT_EQ(ReadText(whole), "");
    EXPECT_EQ(Corners(), "012 023");
    for (size_t size = 0; size < whole.size(); ++size) {
        ASSERT_NE(ReadText(whole.substr(0, size)), "") << size;
    }
    for (const size_t at : {size_t{4}, size_t{8}, size_t{12}, size_t{16}, 20 + text.size(), 24 + text.size()}) {
        for (const size_t number :
             {size_t{0}, size_t{1}, size_t{19}, size_t{0x7FFFFFFF}, size_t{0xFFFFFFF0}, size_t{0xFFFFFFFF}}) {
            std::string lie = whole;
            EXPECT_NE(ReadText(lie.replace(at, 4, word(number))), "") << at << " " << number;
        }
    }
}
