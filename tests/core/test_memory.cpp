// Memory that ends: every allocation of every operation fails in turn.
#include <filesystem>

#include "app/modMvmDef.h"
#include "app/modUndo.h"
#include "dialogs/modReports.h"
#include "model/modDocument.h"
#include "model/modMvmBind.h"
#include "model/modMvmRead.h"
#include "support/failing_new.h"
#include "support/fresh.h"
#include "support/model_text.h"
#include "support/scene_bytes.h"
#include "weights/modBoneAlias.h"
#include "weights/modEdit.h"
#include "weights/modMirror.h"
#include "weights/modMvmXTools.h"
#include "weights/modWeights.h"

namespace {

class Memory : public FreshFolder {};

/// A small scene in which every operation has something to do.
void MakeScene()
{
    scripted::Reset();
    for (const char* name : {"Hip01", "Leg with a long name 02", "Arm with a long name 03", "$j$04"}) {
        Bones.Add() = {.Name = name, .Position = {static_cast<float>(BoneCount()), 0, 0}, .IsShadow = name[0] == '$'};
    }
    Bones[3].Position.X = -2;
    for (const char* name : {"a skin with a long name", "$s$ a shadow with a long name"}) {
        MvmMesh& mesh = Meshes.Add();
        mesh.Name = name;
        for (int v = 0; v < 6; ++v) {
            mesh.Vertices.Add({static_cast<float>(v % 2 == 0 ? v + 2 : -v - 1), 1, 2});
        }
        mesh.Faces.Add().Vertex = {1, 2, 3};
        Instances.Add() = {.Name = mesh.Name, .Mesh = mesh.Name, .Scale = 1};
    }
    Materials.Add() = {.Name = "a material with a long name", .ColorMap = "a map with a long name.bmp"};
    SelectSkinMesh(1);
    SelectShadowMesh(2);
    Meshes[1].VertexBones.Items = {0, 1, 0, 3, 2, 0};
    AliasFiles.Add() = {.Name = Meshes[1].Name};
    AliasFiles[1].Entries.Add() = {.Bone = "Hip01", .Alias = "a hip with a long name", .Mirror = Bones[2].Name};
    ActiveBone = 1;
    ModelOpen = true;
}

/// Runs the operation as a command of a window would run it, with each of its allocations failing in turn.
void FailEachAllocation(const std::string& name, const std::function<void()>& operation)
{
    SCOPED_TRACE(name);
    int number = 1;
    for (bool failed = true; failed; ++number) {
        ASSERT_LT(number, 5000);
        MakeScene();
        const std::string before = SceneBytes();
        scripted::Messages.clear();
        scripted::Answers = {BoxAnswer::Yes, BoxAnswer::Yes};
        bool thrown = false;
        allocation::FailNext(number);
        try {
            RunStep("step", operation);
        } catch (const std::bad_alloc&) {
            thrown = true;
        }
        failed = allocation::Seen >= number;
        allocation::FailNext(0);
        if (failed && (thrown || !scripted::Messages.empty())) {
            EXPECT_EQ(SceneBytes(), before) << number;
        }
        UndoStep();
        EXPECT_EQ(SceneBytes(), before) << number;
    }
    EXPECT_GT(number, 2); // it had something to fail at
}

} // namespace

TEST_F(Memory, OfEveryChange)
{
    MakeScene();
    const std::string weights = Folder / "a.wif";
    UnassignAll(1);
    ReplaceBone(1, 0, 2);
    SaveWeights(weights, 1);
    const std::pair<const char*, std::function<void()>> operations[] = {
        {"pick, re-assign, unassign", [] { ReplaceBone(1, 1, 2); }},
        {"unassign all", [] { UnassignAll(1); }},
        {"swap", [] { SwapBones(1, 1, 2); }},
        {"mirror", [] { MirrorWeights({.LeftToRight = true, .Reassign = true, .Unassign = true}); }},
        {"auto-assign", [] { AutoAssign(1); }},
        {"normals", [] { RegenerateNormals(1); }},
        {"rename", [] { RenameMesh(1, "another long name of a mesh"); }},
        {"select skin", [] { SelectSkinMesh(2); }},
        {"select shadow", [] { SelectShadowMesh(1); }},
    };
    for (const auto& [name, operation] : operations) {
        FailEachAllocation(name, operation);
    }
    for (const int mode : {1, 2}) {
        FailEachAllocation("weights", [&] {
            scripted::AssignModes = {mode};
            LoadWeights(weights, 1);
        });
    }
}

TEST_F(Memory, OfWhatOnlyReads)
{
    const std::pair<const char*, std::function<void()>> operations[] = {
        {"lists", FillBoneLists},
        {"meshes", ReportMeshes},
        {"materials", ReportMaterials},
        {"instances", ReportInstances},
        {"bones", ReportBones},
        {"mesh names", ReportMeshNames},
        {"material names", ReportMaterialNames},
        {"instance names", ReportInstanceNames},
        {"bone names", ReportBoneNames},
        {"texture names", ReportTextureFilenames},
    };
    for (const auto& [name, operation] : operations) {
        FailEachAllocation(name, operation);
    }
}

TEST_F(Memory, OfAliases)
{
    std::filesystem::create_directory(Folder / "alias");
    PutFile(Folder / "alias/vorrel.alias", "Hip01;Hip;;;1\r\nwrong\r\n");
    const auto load = [&] {
        scripted::Folder = Folder.Path;
        LoadAlias();
    };
    FailEachAllocation("load", load);
    for (int number = 1; allocation::Seen >= number || number == 1; ++number) {
        MakeScene();
        const std::string before = SceneBytes();
        allocation::FailNext(number);
        try {
            ApplyAliases();
        } catch (const std::bad_alloc&) {
            EXPECT_EQ(SceneBytes(), before);
        }
        allocation::FailAt = 0;
    }
}

TEST_F(Memory, OfFiles)
{
    const std::string path = Folder / "a.mvm";
    MakeScene();
    ASSERT_EQ(SaveModelFile(path), SaveOutcome::Saved);
    const std::string whole = ModelText();
    for (const std::string& name : {std::string("save"), std::string("save weights")}) {
        FailEachAllocation(name, [&] {
            PutFile(path, "old");
            name == "save" ? static_cast<void>(SaveModelFile(path)) : SaveWeights(Folder / "b.wif", 1);
        });
        EXPECT_THAT(Folder.Names(), testing::Not(testing::Contains(testing::HasSubstr(".tmp"))));
    }
    PutFile(path, whole);
    for (int number = 1; allocation::Seen >= number || number == 1; ++number) {
        scripted::Reset();
        bool loaded = false;
        allocation::FailNext(number);
        try {
            loaded = LoadMVM(path);
        } catch (const std::bad_alloc&) { // of the message
        }
        const bool failed = allocation::Seen >= number;
        allocation::FailAt = 0;
        EXPECT_EQ(loaded && MeshCount() == 2, !failed) << number;
    }
}
