#include <algorithm>
#include <array>
#include <cmath>
#include <map>
#include <set>
#include <string>
#include <utility>
#include <vector>

#include "app/modMath.h"
#include "app/modMvmDef.h"
#include "model/modBitmap.h"
#include "model/modMvmRead.h"
#include "model/modMvmWrite.h"
#include "model/modStrings.h"
#include "modSession.h"
#include "support/fresh.h"
#include "support/model_text.h"
#include "weights/modBoneAlias.h"
#include "weights/modMirror.h"

// The sample creature and its company keep what the manual and the other tests rely on.

namespace {

const std::string root = std::string(SOURCE_FOLDER) + "/";
const std::string whole = "samples/vorrel/vorrel.mvm";
const std::string half = "samples/tutorial/vorrel-half.mvm";
const std::string skinOnly = "samples/tutorial/vorrel-skin.mvm";
const std::string vorrelPreset = "assets/presets/Vorrel.preset";
const std::string longneckPreset = "assets/presets/Longneck.preset";
constexpr int16_t maneMaterial = 5; // strips of hair, open at their edges

class Samples : public Fresh {
protected:
    static void Load(const std::string& path)
    {
        ResetSession();
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
    for (const std::string& path : {whole, half, skinOnly, vorrelPreset, longneckPreset}) {
        Load(path);
        // Not EXPECT_EQ: a difference would print megabytes.
        EXPECT_TRUE(ModelText() == Content(root + path)) << path;
    }
}

TEST_F(Samples, TheVorrelHasAllThatAModelCanHave)
{
    Load(whole);
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

// The front of a face and its normals look to the same side; a flipped face would be culled.
TEST_F(Samples, MeshesAreClosedAndTurnTheirFrontsOutward)
{
    Load(whole);
    for (const MvmMesh& mesh : Meshes) {
        SCOPED_TRACE(mesh.Name);
        std::set<std::pair<int16_t, int16_t>> edges;
        for (const MvmFace& face : mesh.Faces) {
            ASSERT_TRUE(FaceCornersValid(mesh, face));
            ASSERT_TRUE(face.Material >= 1 && face.Material <= mesh.MeshMaterialCount());
            const auto& [a, b, c] = face.Vertex;
            const Vec3 out = FaceNormal(mesh.Vertices[c], mesh.Vertices[b], mesh.Vertices[a]);
            double along = 0;
            for (size_t k = 0; k < 3; ++k) {
                ASSERT_TRUE(mesh.Normals.Has(face.Normal[k]) && mesh.TexCoords.Has(face.TexCoord[k]));
                EXPECT_NEAR(VecLength(mesh.Normals[face.Normal[k]]), 1, 0.005);
                along += VecDot(out, mesh.Normals[face.Normal[k]]);
                if (face.Material != maneMaterial) {
                    ASSERT_TRUE(edges.insert({face.Vertex[k], face.Vertex[(k + 1) % 3]}).second) << "vertex " << a;
                }
            }
            EXPECT_GT(along, 0) << "vertex " << a;
        }
        for (const auto& [from, to] : edges) {
            ASSERT_TRUE(edges.contains({to, from})) << "a hole at vertex " << from;
        }
    }
}

TEST_F(Samples, AliasesLabelConnectAndMirrorEveryBone)
{
    LoadWithAliases(whole);
    ASSERT_EQ(AliasFileCount(), 2);
    std::set<std::string> names = {""}; // a root has no link
    for (const MvmBone& bone : Bones) {
        names.insert(bone.Name);
    }
    for (const BoneAliasFile& file : AliasFiles) {
        for (const BoneAliasEntry& entry : file.Entries) {
            for (const std::string& name : {entry.Bone, entry.Mirror, entry.Link}) {
                EXPECT_TRUE(names.contains(name)) << name;
            }
        }
    }
    // Each bone leads over its links to the one root of its kind, and has its own mirror image.
    std::set<std::string> labels;
    std::set<int32_t> roots;
    for (int32_t i = 1; i <= BoneCount(); ++i) {
        const MvmBone& bone = Bones[i];
        SCOPED_TRACE(bone.Name);
        EXPECT_TRUE(!bone.Alias.empty() && labels.insert(bone.Alias).second);
        // Seen from the rear: what is called right lies at X > 0.
        EXPECT_EQ(bone.Alias.find("Right") != std::string::npos, bone.Position.X > 0);
        EXPECT_EQ(bone.Alias.find("Left") != std::string::npos, bone.Position.X < 0);
        ASSERT_TRUE(IsValidBone(bone.MirrorBone));
        const Vec3& twin = Bones[bone.MirrorBone].Position;
        EXPECT_TRUE(twin.X == -bone.Position.X && twin.Y == bone.Position.Y && twin.Z == bone.Position.Z);
        EXPECT_EQ(Bones[bone.MirrorBone].IsShadow, bone.IsShadow);
        int32_t at = i;
        for (int steps = 0; Bones[at].LinkBone != 0; ++steps) {
            ASSERT_LT(steps, BoneCount());
            at = Bones[at].LinkBone;
            EXPECT_EQ(Bones[at].IsShadow, bone.IsShadow);
        }
        roots.insert(at);
    }
    EXPECT_EQ(roots.size(), 2U);
}

TEST_F(Samples, TheTutorialsFilesAreTheVorrelWithoutSomeAssignments)
{
    Load(whole);
    const MvmMesh skin = Meshes[SkinMesh];
    const MvmMesh shadow = Meshes[ShadowMesh];
    for (const bool reassign : {true, false}) {
        LoadWithAliases(half);
        for (const MvmMesh* full : {&skin, &shadow}) {
            EditTarget = full == &skin ? int16_t{0} : int16_t{1};
            const MvmMesh& mesh = Meshes[EditTarget == 0 ? SkinMesh : ShadowMesh];
            ASSERT_EQ(mesh.VertexCount(), full->VertexCount());
            for (int32_t i = 1; i <= mesh.VertexCount(); ++i) {
                const int16_t expected = mesh.Vertices[i].X > 0 ? int16_t{0} : full->VertexBones[i];
                ASSERT_EQ(mesh.VertexBones[i], expected) << mesh.Name << " vertex " << i;
            }
            // Mirroring completes it.
            MirrorWeights({.Reassign = reassign});
            EXPECT_TRUE(mesh.VertexBones.Items == full->VertexBones.Items) << mesh.Name;
        }
    }
    Load(skinOnly);
    EXPECT_EQ(BoneCount(), 0);
    EXPECT_EQ(Meshes[SkinMesh].VertexCount(), skin.VertexCount());
}

TEST_F(Samples, APresetAndTheSkinMakeANewCreature)
{
    Load(vorrelPreset);
    EXPECT_EQ(MeshCount() + MaterialCount() + InstanceCount(), 0);
    ASSERT_TRUE(LoadMVM(root + skinOnly));
    ASSERT_TRUE(IsValidMesh(SkinMesh));
    const std::vector<int16_t>& assigned = Meshes[SkinMesh].VertexBones.Items;
    EXPECT_EQ(assigned, std::vector<int16_t>(assigned.size()));
    const int32_t vorrelBones = BoneCount();
    Load(whole);
    EXPECT_EQ(BoneCount(), vorrelBones);
    Load(longneckPreset);
    EXPECT_NE(BoneCount(), vorrelBones);
}

TEST_F(Samples, TexturesAreOfEveryKind)
{
    for (const std::string& model : {whole, half}) {
        Load(model);
        const std::string folder = root + std::string(DirectoryOf(model));
        std::map<std::string, int> kinds;
        for (const MvmMaterial& material : Materials) {
            if (material.ColorMap.empty()) {
                ++kinds["bare"];
                continue;
            }
            Bitmap bitmap;
            std::string error;
            const std::string opacity = material.OpacityMap.empty() ? "" : folder + material.OpacityMap;
            EXPECT_EQ(LoadBitmap(folder + material.ColorMap, opacity, &bitmap, &error), BitmapResult::Done) << error;
            const std::string bytes = Content(folder + material.ColorMap);
            EXPECT_TRUE(bytes.starts_with("BM"));
            ++kinds[bytes.at(28) == 8 ? "8-bit" : "24-bit"];
            kinds["opacity"] += opacity.empty() ? 0 : 1;
        }
        EXPECT_TRUE(scripted::Log.empty());
        EXPECT_EQ(kinds["bare"], 1) << "one material goes without a texture";
        EXPECT_TRUE(kinds["8-bit"] > 0 && kinds["24-bit"] > 0 && kinds["opacity"] > 0);
    }
}

} // namespace
