#include <algorithm>
#include <array>
#include <cmath>
#include <cstdint>
#include <filesystem>
#include <map>
#include <set>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include <gtest/gtest.h>

#include "app/modMvmDef.h"
#include "model/modMvmRead.h"
#include "model/modMvmWrite.h"
#include "model/modStrings.h"
#include "platform/modFiles.h"
#include "support/scripted.h"
#include "weights/modBoneAlias.h"
#include "weights/modMirror.h"

// The sample creature and its company keep what the manual and the other tests rely on.

namespace {

const std::string root = std::string(SOURCE_FOLDER) + "/";
const std::string whole = "samples/vorrel/vorrel.mvm";
const std::string half = "samples/tutorial/vorrel-half.mvm";
const std::string skinOnly = "samples/tutorial/vorrel-skin.mvm";
constexpr int16_t maneMaterial = 5; // strips of hair, open at their edges

std::string Bytes(const std::string& path)
{
    std::string bytes;
    std::string error;
    EXPECT_TRUE(ReadFile(root + path, &bytes, &error)) << path << ": " << error;
    return bytes;
}

uint32_t LittleEndian(const std::string& bytes, size_t at, size_t count)
{
    uint32_t value = 0;
    for (size_t i = 0; i < count && at + i < bytes.size(); ++i) {
        value |= static_cast<uint32_t>(static_cast<uint8_t>(bytes[at + i])) << (8 * i);
    }
    return value;
}

using Place = std::array<float, 3>;

// The number of each vertex's mirror image; 0 where there is none.
std::vector<int32_t> Twins(const MvmMesh& mesh)
{
    std::map<Place, int32_t> places;
    for (int32_t i = 1; i <= mesh.VertexCount(); ++i) {
        const Vec3& at = mesh.Vertices[i];
        places[{at.X, at.Y, at.Z}] = i;
    }
    std::vector<int32_t> twins(static_cast<size_t>(mesh.VertexCount()) + 1);
    for (int32_t i = 1; i <= mesh.VertexCount(); ++i) {
        const Vec3& at = mesh.Vertices[i];
        const auto twin = places.find({at.X == 0 ? 0 : -at.X, at.Y, at.Z});
        twins[static_cast<size_t>(i)] = twin == places.end() ? 0 : twin->second;
    }
    return twins;
}

class Samples : public testing::Test {
protected:
    void SetUp() override { scripted::Reset(); }
    void TearDown() override { scripted::Reset(); }

    static void Load(const std::string& path)
    {
        ResetScene();
        ASSERT_TRUE(LoadMVM(root + path)) << path;
        EXPECT_TRUE(scripted::Messages.empty()) << path;
        EXPECT_TRUE(scripted::Log.empty()) << path;
    }

    static void LoadWithAliases(const std::string& path)
    {
        Load(path);
        scripted::Folder = root + "assets";
        FreeAliases();
        LoadAlias();
        ApplyAliases();
        EXPECT_TRUE(scripted::Log.empty()) << path;
    }
};

TEST_F(Samples, TheWriterReproducesEveryModelFile)
{
    for (const std::string& path : {whole, half, skinOnly, std::string("assets/presets/Vorrel.preset"),
                                    std::string("assets/presets/Longneck.preset")}) {
        Load(path);
        // Not EXPECT_EQ: a difference would print megabytes.
        EXPECT_TRUE(ModelText() == Bytes(path)) << path;
    }
}

TEST_F(Samples, TheVorrelHasAllThatAModelCanHave)
{
    Load(whole);
    const auto shadowBones =
        std::count_if(Bones.begin(), Bones.end(), [](const MvmBone& bone) { return bone.IsShadow; });
    EXPECT_GE(shadowBones, 8);
    EXPECT_GE(BoneCount() - shadowBones, 24);
    EXPECT_TRUE(std::any_of(Bones.begin(), Bones.end(), [](const MvmBone& bone) { return !bone.ExtraText.empty(); }));

    for (const int16_t role : {SkinMesh, ShadowMesh, HeadMesh, BodyMesh, TailMesh}) {
        ASSERT_TRUE(IsValidMesh(role));
        const std::string& name = Meshes[role].Name;
        const auto place =
            std::find_if(Instances.begin(), Instances.end(), [&](const MvmInstance& i) { return i.Mesh == name; });
        ASSERT_NE(place, Instances.end()) << name;
        EXPECT_EQ(place->Position.X, 0) << "mirroring needs the planes of scene and mesh to be the same";
        EXPECT_TRUE(place->Position.Y != 0 && place->Position.Z != 0 && place->Scale != 0 && place->Scale != 1) << name;
    }
    EXPECT_EQ((std::set<int16_t>{SkinMesh, ShadowMesh, HeadMesh, BodyMesh, TailMesh}).size(), 5U);
    EXPECT_GE(Meshes[SkinMesh].VertexCount(), 4000);
    EXPECT_LE(Meshes[ShadowMesh].VertexCount(), 400);

    // With instances of this kind the skeleton lies inside the skin's own box.
    EXPECT_EQ(SkinScale, 0.5F);
    for (const MvmBone& bone : Bones) {
        EXPECT_LT(std::fabs((bone.Position.X + SkinOffset.X) * SkinScale), 0.25F) << bone.Name;
        EXPECT_LT(std::fabs((bone.Position.Y + SkinOffset.Y) * SkinScale), 0.6F) << bone.Name;
        EXPECT_LT(std::fabs((bone.Position.Z + SkinOffset.Z) * SkinScale), 0.8F) << bone.Name;
    }
}

TEST_F(Samples, JointNumbersAreUniqueWithinEachKindAndBindEveryVertex)
{
    Load(whole);
    std::set<std::pair<bool, double>> numbers;
    for (const MvmBone& bone : Bones) {
        EXPECT_GT(JointNumber(bone.Name), 0) << bone.Name;
        EXPECT_TRUE(numbers.insert({bone.IsShadow, JointNumber(bone.Name)}).second) << bone.Name;
    }
    for (const int16_t role : {SkinMesh, ShadowMesh}) {
        std::set<int16_t> used;
        for (const int16_t bone : Meshes[role].VertexBones) {
            ASSERT_TRUE(IsValidBone(bone));
            ASSERT_EQ(Bones[bone].IsShadow, role == ShadowMesh);
            used.insert(bone);
        }
        const auto ofKind = std::count_if(Bones.begin(), Bones.end(),
                                          [&](const MvmBone& b) { return b.IsShadow == (role == ShadowMesh); });
        EXPECT_EQ(static_cast<std::ptrdiff_t>(used.size()), ofKind)
            << "a bone without vertices in " << Meshes[role].Name;
    }
}

TEST_F(Samples, MeshesAreClosedAndWellNumbered)
{
    Load(whole);
    for (const MvmMesh& mesh : Meshes) {
        std::map<std::pair<int16_t, int16_t>, int> edges;
        for (const MvmFace& face : mesh.Faces) {
            ASSERT_TRUE(FaceCornersValid(mesh, face)) << mesh.Name;
            ASSERT_TRUE(face.Material >= 1 && face.Material <= mesh.MeshMaterialCount()) << mesh.Name;
            for (size_t k = 0; k < 3; ++k) {
                ASSERT_TRUE(mesh.Normals.Has(face.Normal[k]) && mesh.TexCoords.Has(face.TexCoord[k])) << mesh.Name;
                if (face.Material != maneMaterial) {
                    ++edges[{face.Vertex[k], face.Vertex[(k + 1) % 3]}];
                }
            }
        }
        for (const auto& [edge, times] : edges) {
            const auto back = edges.find({edge.second, edge.first});
            ASSERT_EQ(times, 1) << mesh.Name << " at vertex " << edge.first;
            ASSERT_TRUE(back != edges.end()) << mesh.Name << " has a hole at vertex " << edge.first;
        }
    }
}

// The front of a face and its normals look to the same side; a flipped face would be culled.
TEST_F(Samples, FacesTurnTheirFrontsOutward)
{
    Load(whole);
    for (const MvmMesh& mesh : Meshes) {
        int against = 0;
        for (const MvmFace& face : mesh.Faces) {
            const Vec3& a = mesh.Vertices[face.Vertex[0]];
            const Vec3& b = mesh.Vertices[face.Vertex[1]];
            const Vec3& c = mesh.Vertices[face.Vertex[2]];
            const Vec3 u{b.X - a.X, b.Y - a.Y, b.Z - a.Z};
            const Vec3 v{c.X - a.X, c.Y - a.Y, c.Z - a.Z};
            const Vec3 out{u.Y * v.Z - u.Z * v.Y, u.Z * v.X - u.X * v.Z, u.X * v.Y - u.Y * v.X};
            float sum = 0;
            for (const int16_t normal : face.Normal) {
                const Vec3& n = mesh.Normals[normal];
                EXPECT_NEAR(n.X * n.X + n.Y * n.Y + n.Z * n.Z, 1, 0.01) << mesh.Name;
                sum += out.X * n.X + out.Y * n.Y + out.Z * n.Z;
            }
            against += sum <= 0 ? 1 : 0;
        }
        EXPECT_EQ(against, 0) << mesh.Name;
    }
}

TEST_F(Samples, MeshesAndBonesAreExactlySymmetric)
{
    LoadWithAliases(whole);
    for (const MvmMesh& mesh : Meshes) {
        const std::vector<int32_t> twins = Twins(mesh);
        for (int32_t i = 1; i <= mesh.VertexCount(); ++i) {
            ASSERT_NE(twins[static_cast<size_t>(i)], 0) << mesh.Name << " vertex " << i;
            if (mesh.IsSkin) {
                const int16_t partner = Bones[mesh.VertexBones[i]].MirrorBone;
                ASSERT_EQ(mesh.VertexBones[twins[static_cast<size_t>(i)]], partner) << mesh.Name << " vertex " << i;
            }
        }
    }
    for (const MvmBone& bone : Bones) {
        ASSERT_TRUE(IsValidBone(bone.MirrorBone)) << bone.Name;
        const MvmBone& partner = Bones[bone.MirrorBone];
        EXPECT_TRUE(partner.Position.X == -bone.Position.X && partner.Position.Y == bone.Position.Y &&
                    partner.Position.Z == bone.Position.Z)
            << bone.Name;
        EXPECT_EQ(partner.IsShadow, bone.IsShadow) << bone.Name;
        // Seen from the rear: what is called right lies at X > 0.
        EXPECT_EQ(bone.Alias.find("Right") != std::string::npos, bone.Position.X > 0) << bone.Name;
        EXPECT_EQ(bone.Alias.find("Left") != std::string::npos, bone.Position.X < 0) << bone.Name;
    }
}

TEST_F(Samples, AliasesLabelAndConnectEveryBone)
{
    LoadWithAliases(whole);
    ASSERT_EQ(AliasFileCount(), 2);
    for (const BoneAliasFile& file : AliasFiles) {
        for (const BoneAliasEntry& entry : file.Entries) {
            const auto known = [](const std::string& name) {
                return std::any_of(Bones.begin(), Bones.end(), [&](const MvmBone& bone) { return bone.Name == name; });
            };
            EXPECT_TRUE(known(entry.Bone)) << entry.Bone;
            EXPECT_TRUE(known(entry.Mirror)) << entry.Mirror;
            EXPECT_TRUE(entry.Link.empty() || known(entry.Link)) << entry.Link;
        }
    }
    // Each bone leads over its links to the one root of its kind.
    std::set<std::string> labels;
    std::set<int32_t> roots;
    for (int32_t i = 1; i <= BoneCount(); ++i) {
        EXPECT_TRUE(!Bones[i].Alias.empty() && labels.insert(Bones[i].Alias).second) << Bones[i].Name;
        int32_t at = i;
        for (int steps = 0; Bones[at].LinkBone != 0; ++steps) {
            ASSERT_LT(steps, BoneCount()) << Bones[i].Name;
            at = Bones[at].LinkBone;
            EXPECT_EQ(Bones[at].IsShadow, Bones[i].IsShadow) << Bones[i].Name;
        }
        roots.insert(at);
    }
    EXPECT_EQ(roots.size(), 2U);
}

TEST_F(Samples, TheTutorialsFilesAreTheVorrelWithoutSomeAssignments)
{
    Load(whole);
    const std::array<int16_t, 2> roles{SkinMesh, ShadowMesh};
    std::map<int16_t, std::vector<int16_t>> bones;
    for (const int16_t role : roles) {
        bones[role] = Meshes[role].VertexBones.Items;
    }
    Load(half);
    for (const int16_t role : roles) {
        const MvmMesh& mesh = Meshes[role];
        ASSERT_EQ(static_cast<size_t>(mesh.VertexCount()), bones[role].size());
        for (int32_t i = 1; i <= mesh.VertexCount(); ++i) {
            const int16_t expected = mesh.Vertices[i].X > 0 ? int16_t{0} : bones[role][static_cast<size_t>(i) - 1];
            ASSERT_EQ(mesh.VertexBones[i], expected) << mesh.Name << " vertex " << i;
        }
    }
    Load(skinOnly);
    EXPECT_EQ(BoneCount(), 0);
    EXPECT_EQ(static_cast<size_t>(Meshes[SkinMesh].VertexCount()), bones[SkinMesh].size());
}

TEST_F(Samples, MirroringCompletesTheTutorialsHalf)
{
    Load(whole);
    const std::array<std::vector<int16_t>, 2> expected{Meshes[SkinMesh].VertexBones.Items,
                                                       Meshes[ShadowMesh].VertexBones.Items};
    for (const bool reassign : {true, false}) {
        LoadWithAliases(half);
        for (const int16_t target : {int16_t{0}, int16_t{1}}) {
            EditTarget = target;
            MirrorOptions options;
            options.Reassign = reassign;
            MirrorWeights(options);
            const MvmMesh& mesh = Meshes[target == 0 ? SkinMesh : ShadowMesh];
            EXPECT_TRUE(mesh.VertexBones.Items == expected[static_cast<size_t>(target)]) << mesh.Name;
        }
    }
}

TEST_F(Samples, APresetAndTheSkinMakeANewCreature)
{
    Load("assets/presets/Vorrel.preset");
    EXPECT_EQ(MeshCount() + MaterialCount() + InstanceCount(), 0);
    ASSERT_TRUE(LoadMVM(root + skinOnly));
    ASSERT_TRUE(IsValidMesh(SkinMesh));
    const auto& assigned = Meshes[SkinMesh].VertexBones;
    EXPECT_TRUE(std::all_of(assigned.begin(), assigned.end(), [](int16_t bone) { return bone == 0; }));
    const int32_t vorrelBones = BoneCount();
    Load(whole);
    EXPECT_EQ(BoneCount(), vorrelBones);
    Load("assets/presets/Longneck.preset");
    EXPECT_NE(BoneCount(), vorrelBones);
}

TEST_F(Samples, TexturesHaveTheirHeaders)
{
    for (const std::string folder : {"samples/vorrel/", "samples/tutorial/"}) {
        Load(folder + (folder == "samples/vorrel/" ? "vorrel.mvm" : "vorrel-half.mvm"));
        std::set<uint32_t> depths;
        int opacities = 0;
        int bare = 0;
        for (const MvmMaterial& material : Materials) {
            bare += material.ColorMap.empty() ? 1 : 0;
            std::array<uint32_t, 2> size{};
            for (const bool isOpacity : {false, true}) {
                const std::string& name = isOpacity ? material.OpacityMap : material.ColorMap;
                if (name.empty()) {
                    continue;
                }
                const std::string file = Bytes(folder + name);
                const std::array<uint32_t, 2> own{LittleEndian(file, 18, 4), LittleEndian(file, 22, 4)};
                const uint32_t bits = LittleEndian(file, 28, 4);
                EXPECT_EQ(file.substr(0, 2), "BM") << name;
                EXPECT_TRUE(bits == 24 ? !isOpacity : bits == 8 && LittleEndian(file, 46, 4) == 256) << name;
                EXPECT_EQ(file.size(), (bits == 24 ? 54 + 3 * own[0] * own[1] : 54 + 1024 + own[0] * own[1])) << name;
                EXPECT_TRUE((own[0] & (own[0] - 1)) == 0 && (own[1] & (own[1] - 1)) == 0 && own[0] >= 4) << name;
                EXPECT_TRUE(!isOpacity || own == size) << name << " does not match its colour map";
                size = own;
                (isOpacity ? opacities : bare) += isOpacity ? 1 : 0;
                depths.insert(isOpacity ? 0 : bits);
            }
        }
        EXPECT_EQ(depths, (std::set<uint32_t>{0, 8, 24}));
        EXPECT_GE(opacities, 1);
        EXPECT_EQ(bare, 1) << "one material goes without a texture";
    }
}

} // namespace
