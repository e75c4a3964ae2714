// Memory that ends: every allocation of every operation fails in turn.
#include "app/modUndo.h"
#include "dialogs/modReports.h"
#include "model/modDocument.h"
#include "model/modMvmBind.h"
#include "support/failing_new.h"
#include "support/fresh.h"
#include "support/scene_bytes.h"
#include "weights/modBoneAlias.h"
#include "weights/modEdit.h"
#include "weights/modMirror.h"
#include "weights/modMvmXTools.h"
#include "weights/modWeights.h"

namespace {

using Memory = FreshFolder;

/// A small scene in which every operation has something to do.
void MakeScene()
{
    scripted::Reset();
    for (const char* name : {"Hip01", "Leg with a long name 02", "Arm with a long name 03", "$j$04"}) {
        Bones.Add() = {.Name = name, .Position = {static_cast<float>(BoneCount()), 0, 0}, .IsShadow = name[0] == '$'};
    }
    Bones[3].Position.X = -2;
    for (const char* name : {"a skin with a long name", "$s$ a shadow with a long name"}) {
        AddSkin(name, {{2, 1, 2}, {-2, 1, 2}, {4, 1, 2}, {-4, 1, 2}, {6, 1, 2}, {-6, 1, 2}}, {0, 1, 0, 3, 2, 0});
        Meshes[MeshCount()].Faces.Add().Vertex = {1, 2, 3};
        Instances.Add() = {.Name = name, .Mesh = name, .Scale = 1};
    }
    Materials.Add() = {.Name = "a material with a long name", .ColorMap = "a map with a long name.bmp"};
    SelectSkinMesh(1);
    SelectShadowMesh(2);
    AliasFiles.Add() = {.Name = Meshes[1].Name};
    AliasFiles[1].Entries.Add() = {.Bone = "Hip01", .Alias = "a hip with a long name", .Mirror = Bones[2].Name};
    ActiveBone = 1;
    ModelOpen = true;
}

/// Lets each allocation fail in turn: `check` hears its number, whether it was reached and whether an exception came out.
void FailEach(const std::function<void()>& operation, const std::function<void(int, bool, bool)>& check)
{
    int number = 1;
    for (bool failed = true; failed; ++number) {
        ASSERT_LT(number, 5000);
        MakeScene();
        bool thrown = false;
        allocation::FailNext(number);
        try {
            operation();
        } catch (const std::bad_alloc&) {
            thrown = true;
        }
        failed = allocation::Seen >= number;
        allocation::FailNext(0);
        check(number, failed, thrown);
    }
    EXPECT_GT(number, 2); // it had something to fail at
}

/// Runs the operation as a command of a window would run it.
void FailEachOfStep(const char* name, const std::function<void()>& operation)
{
    SCOPED_TRACE(name);
    MakeScene();
    const std::string before = SceneBytes();
    const auto step = [&] {
        scripted::Answers = {BoxAnswer::Yes, BoxAnswer::Yes};
        RunStep("step", operation);
    };
    FailEach(step, [&](int number, bool failed, bool thrown) {
        if (failed && (thrown || !scripted::Messages.empty())) {
            EXPECT_EQ(SceneBytes(), before) << number;
        }
        UndoStep();
        EXPECT_EQ(SceneBytes(), before) << number;
    });
}

} // namespace

TEST_F(Memory, OfEveryCommand)
{
    MakeScene();
    const std::string weights = Folder / "a.wif";
    UnassignAll(1);
    ReplaceBone(1, 0, 2);
    SaveWeights(weights, 1);
    std::filesystem::create_directory(Folder / "alias");
    PutFile(Folder / "alias/vorrel.alias", "Hip01;Hip;;;1\r\nwrong\r\n");
    const auto loadWeights = [&](int mode) {
        scripted::AssignModes = {mode};
        LoadWeights(weights, 1);
    };
    const auto loadAliases = [&] {
        scripted::Folder = Folder.Path;
        LoadAlias();
    };
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
        {"weights by order", [&] { loadWeights(1); }},
        {"weights by position", [&] { loadWeights(2); }},
        {"aliases", loadAliases},
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
        {"save", [&] { SaveModelFile(Folder / "a.mvm"); }},
        {"save weights", [&] { SaveWeights(Folder / "b.wif", 1); }},
    };
    for (const auto& [name, operation] : operations) {
        FailEachOfStep(name, operation);
    }
    EXPECT_THAT(Folder.Names(), testing::ElementsAre("a.mvm", "a.wif", "alias", "b.wif"));
}

TEST_F(Memory, OfAliasesAndLoads)
{
    MakeScene();
    const std::string before = SceneBytes();
    FailEach(ApplyAliases, [&](int number, bool, bool thrown) { EXPECT_EQ(SceneBytes() == before, thrown) << number; });
    ASSERT_EQ(SaveModelFile(Folder / "a.mvm"), SaveOutcome::Saved);
    bool loaded = false;
    const auto load = [&] {
        loaded = false;
        ClearModel();
        loaded = LoadMVM(Folder / "a.mvm");
    };
    FailEach(load, [&](int number, bool failed, bool) { EXPECT_EQ(loaded && MeshCount() == 2, !failed) << number; });
}
