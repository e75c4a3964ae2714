// Steps back and forward, also with every allocation of every command failing in turn.
#include <random>

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
#include "weights/modSegments.h"
#include "weights/modWeights.h"

namespace {

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

void Assign(int32_t vertex, int16_t bone)
{
    RunStep("Assign", [&] {
        Touch(ScenePart::Assignments, 1);
        Meshes[1].VertexBones[vertex] = bone;
    });
}

const std::pair<const char*, void (*)(int16_t)> commands[] = {
    {"assign", [](int16_t mesh) { ReplaceBone(mesh, 0, 1); }},
    {"re-assign", [](int16_t mesh) { ReplaceBone(mesh, 1, 2); }},
    {"unassign all", [](int16_t mesh) { UnassignAll(mesh); }},
    {"swap", [](int16_t mesh) { SwapBones(mesh, 1, 2); }},
    {"auto-assign", [](int16_t mesh) { AutoAssign(mesh); }},
    {"auto-assign by segments", [](int16_t mesh) { AutoAssignBySegments(mesh); }},
    {"normals", [](int16_t mesh) { RegenerateNormals(mesh); }},
    {"rename", [](int16_t mesh) { RenameMesh(mesh, "another long name of mesh " + std::to_string(mesh)); }},
    {"select skin", [](int16_t mesh) { SelectSkinMesh(mesh); }},
    {"select shadow", [](int16_t mesh) { SelectShadowMesh(mesh); }},
};

struct Undo : FreshFolder {
    Undo() { MakeScene(); }
};

/// Lets each allocation fail in turn: `check` hears its number, whether it was reached and whether it was thrown on.
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
            EXPECT_TRUE(thrown || scripted::Messages.back().Text.ends_with("\nThere is not enough memory.")) << number;
        }
        UndoStep();
        EXPECT_EQ(SceneBytes(), before) << number;
    });
}

} // namespace

TEST_F(Undo, HoldsWhenMemoryEndsInEveryCommand)
{
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
        {"mirror", [] { MirrorWeights({.LeftToRight = true, .Reassign = true, .Unassign = true}); }},
        {"weights by order", [&] { loadWeights(1); }},
        {"weights by position", [&] { loadWeights(2); }},
        {"aliases", loadAliases},
        {"lists", FillBoneLists},
        {"save", [&] { SaveModelFile(Folder / "a.mvm"); }},
        {"save weights", [&] { SaveWeights(Folder / "b.wif", 1); }},
    };
    for (const auto& [name, operation] : operations) {
        FailEachOfStep(name, operation);
    }
    for (const auto& [name, command] : commands) {
        for (const int16_t mesh : {int16_t{1}, int16_t{2}}) {
            FailEachOfStep(name, [mesh, act = command] { act(mesh); });
        }
    }
    for (void (*report)() : {ReportMeshes, ReportMaterials, ReportInstances, ReportBones, ReportMeshNames,
                             ReportMaterialNames, ReportInstanceNames, ReportBoneNames, ReportTextureFilenames}) {
        FailEachOfStep("report", report);
    }
    EXPECT_THAT(Folder.Names(), testing::ElementsAre("a.mvm", "a.wif", "alias", "b.wif"));
}

TEST_F(Undo, HoldsWhenMemoryEndsInAliasesAndLoads)
{
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

TEST_F(Undo, GoesThroughRandomCommandsBothWays)
{
    std::minstd_rand random(5);
    std::vector<std::string> states = {SceneBytes()};
    size_t at = 0;
    for (int round = 0; round < 4000; ++round) {
        switch (random() % 4) {
        case 0:
            EXPECT_EQ(UndoStep().has_value(), at > 0);
            at -= at > 0 ? 1 : 0;
            break;
        case 1:
            EXPECT_EQ(RedoStep().has_value(), at + 1 < states.size());
            at += at + 1 < states.size() ? 1 : 0;
            break;
        default:
            RunStep("step",
                    [&] { commands[random() % std::size(commands)].second(static_cast<int16_t>(1 + random() % 2)); });
            if (SceneBytes() != states[at]) {
                states.resize(++at);
                states.push_back(SceneBytes());
            }
        }
        ASSERT_EQ(SceneBytes(), states[at]) << round;
    }
    EXPECT_GT(states.size(), 5U);
}

TEST_F(Undo, TellsWhatAStepDid)
{
    ActiveBone = 2;
    RunStep("Three", [] {
        ReplaceBone(1, 0, 1);
        ReplaceBone(2, 0, 1);
        ActiveBone = 1;
        EditTarget = 1;
    });
    RunStep("Nothing", [] { ReplaceBone(1, 9, 1); });
    const auto back = UndoStep();
    ASSERT_TRUE(back);
    EXPECT_EQ(back->Label, "Three");
    EXPECT_THAT((std::array{back->Vertices, int{back->ActiveBone}, int{back->EditTarget}}),
                testing::ElementsAre(6, 2, 0));
    const auto forward = RedoStep();
    ASSERT_TRUE(forward);
    EXPECT_TRUE(forward->ActiveBone == 1 && forward->EditTarget == 1);
    EXPECT_FALSE(RedoStep());
}

TEST_F(Undo, KnowsTheStateThatWasSaved)
{
    EXPECT_TRUE(IsSceneChanged()); // it was in no file yet
    Assign(1, 1);
    ASSERT_EQ(SaveModelFile(Folder / "a.mvm"), SaveOutcome::Saved);
    EXPECT_FALSE(IsSceneChanged());
    Assign(1, 2);
    EXPECT_TRUE(IsSceneChanged());
    UndoStep();
    EXPECT_FALSE(IsSceneChanged());
    UndoStep();
    EXPECT_TRUE(IsSceneChanged());
    Assign(1, 1); // the same assignment on another way
    EXPECT_TRUE(IsSceneChanged());
    ASSERT_TRUE(LoadMVM(Folder / "a.mvm"));
    EXPECT_FALSE(UndoStep());
    EXPECT_TRUE(IsSceneChanged());
}

TEST_F(Undo, StaysWithinItsMemory)
{
    const size_t usual = StepMemoryLimit;
    Meshes[1].VertexBones.Items.assign(30000, 0);
    for (int32_t vertex = 1; vertex <= 10000; ++vertex) {
        Assign(vertex, 1);
    }
    EXPECT_LT(StepMemory(), size_t{10000} * 200);
    StepMemoryLimit = StepMemory() / 2;
    Assign(20000, 1);
    EXPECT_LE(StepMemory(), StepMemoryLimit);
    MarkSceneSaved();
    while (UndoStep()) {
    }
    const int32_t left = CountBoneVerts(1, 1);
    EXPECT_GT(left, 4900);
    EXPECT_LT(left, 5100);
    EXPECT_TRUE(IsSceneChanged());
    while (RedoStep()) {
    }
    EXPECT_EQ(CountBoneVerts(1, 1), 10001);
    EXPECT_FALSE(IsSceneChanged());
    StepMemoryLimit = usual;
    const size_t before = StepMemory();
    Meshes[1].Normals.Items.resize(30000);
    Meshes[1].Name.resize(100'000);
    RunStep("Both", [] {
        RegenerateNormals(1);
        RenameMesh(1, "short");
    });
    EXPECT_GE(StepMemory(), before + 30000 * sizeof(Vec3) + 100'000);
}
