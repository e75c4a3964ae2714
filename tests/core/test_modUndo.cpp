// Steps back and forward.
#include <random>

#include "app/modMvmDef.h"
#include "app/modUndo.h"
#include "model/modDocument.h"
#include "model/modMvmBind.h"
#include "model/modMvmRead.h"
#include "support/fresh.h"
#include "support/scene_bytes.h"
#include "weights/modEdit.h"
#include "weights/modMvmXTools.h"

namespace {

class Undo : public FreshFolder {
protected:
    Undo()
    {
        for (const char* name : {"A01", "B02", "$j$03"}) {
            Bones.Add().Name = name;
        }
        for (const char* name : {"one", "two"}) {
            MvmMesh& mesh = Meshes.Add();
            mesh.Name = name;
            mesh.Vertices.Items = {{1, 0, 0}, {0, 1, 0}, {0, 0, 1}, {1, 1, 1}, {2, 2, 2}, {3, 3, 3}};
            mesh.Normals.Items = {{0, 0, 1}};
            mesh.Faces.Add() = {.Vertex = {1, 2, 3}, .Normal = {1, 1, 1}};
            Instances.Add() = {.Name = mesh.Name, .Mesh = mesh.Name, .Position = {1, 2, 3}, .Scale = 2};
        }
    }
    ~Undo() override { StepMemoryLimit = size_t{256} << 20; }
};

void Assign(int32_t vertex, int16_t bone)
{
    RunStep("Assign", [&] {
        Touch(ScenePart::Assignments, 1);
        Meshes[1].VertexBones[vertex] = bone;
    });
}

} // namespace

TEST_F(Undo, GoesThroughRandomCommandsBothWays)
{
    const std::vector<std::function<void(int16_t)>> commands = {
        [](int16_t n) { SelectSkinMesh(n); },
        [](int16_t n) { SelectShadowMesh(n); },
        [](int16_t n) { ReplaceBone(n, 0, 1); },
        [](int16_t n) { ReplaceBone(n, 1, 2); },
        [](int16_t n) { SwapBones(n, 1, 2); },
        [](int16_t n) { UnassignAll(n); },
        [](int16_t n) { RegenerateNormals(n); },
        [](int16_t n) { RenameMesh(n, "name " + std::to_string(n)); },
        [](int16_t n) {
            Touch(ScenePart::Assignments, n);
            if (Meshes[n].VertexBones.Has(2)) {
                Meshes[n].VertexBones[2] ^= 1;
            }
        },
    };
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
            RunStep("step", [&] { commands[random() % commands.size()](static_cast<int16_t>(1 + random() % 2)); });
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
    MakeSkin(1);
    ActiveBone = 2;
    RunStep("Three", [] {
        ReplaceBone(1, 0, 1);
        ReplaceBone(2, 0, 1); // no skin: nothing
        ActiveBone = 1;
        EditTarget = 1;
    });
    RunStep("Nothing", [] { ReplaceBone(1, 2, 1); });
    const auto back = UndoStep();
    ASSERT_TRUE(back);
    EXPECT_EQ(back->Label, "Three");
    EXPECT_EQ(back->Vertices, 6);
    EXPECT_EQ(back->ActiveBone, 2);
    EXPECT_EQ(back->EditTarget, 0);
    const auto forward = RedoStep();
    ASSERT_TRUE(forward);
    EXPECT_EQ(forward->ActiveBone, 1);
    EXPECT_EQ(forward->EditTarget, 1);
    EXPECT_FALSE(RedoStep());
}

TEST_F(Undo, KnowsTheStateThatWasSaved)
{
    MakeSkin(1);
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
    Meshes[1].Vertices.Items.resize(30000);
    MakeSkin(1);
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
}
