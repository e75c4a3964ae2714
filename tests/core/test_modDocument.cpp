#include <filesystem>
#include <random>

#include "model/modDocument.h"
#include "model/modLostAssignments.h"
#include "model/modMvmBind.h"
#include "model/modStrings.h"
#include "modSession.h"
#include "support/fresh.h"
#include "support/system_words.h"
#include "weights/modWeights.h"

namespace {

const std::string readOnly = "Refused. Warning: Can't overwrite file.\nFile is marked read only.\n";
const std::string failed = "Failed. Stop: Runtime error in WriteMVM\n";

#ifdef _WIN32
constexpr const char* device = "con.mvm";
#else
constexpr const char* device = "/dev/full";
#endif

class Document : public ModelFile {
protected:
    Document() { AddBones({"Spine01"}); }

    /// Saves; gives how it ended and what was told.
    static std::string Saved(const std::string& path)
    {
        constexpr const char* words[] = {"Saved. ", "Refused. ", "Failed. "};
        const SaveOutcome outcome = SaveModelFile(path);
        return words[static_cast<int>(outcome)] + Told();
    }
};

} // namespace

TEST_F(Document, WhatASaveLeavesIsTold)
{
    EXPECT_EQ(CaptionFor("") + CaptionFor("/a b/c.mvm"), "BWRT 0.2.7BWRT 0.2.7 - [/a b/c.mvm]");
    PutFile(Path, "the old content");
    PutFile(Path + ".old", "of the user");
    scripted::Steps = 0;
    EXPECT_EQ(Saved(Path), "Saved. ");
    EXPECT_THAT(Folder.Names(), testing::ElementsAre("a.mvm"));
    PutFile(Path, "the old content");
    // One step fewer now, since no guard is in the way; the last one removes the guard.
    scripted::FailAt = std::exchange(scripted::Steps, 0) - 1;
    scripted::FailError = EACCES;
    EXPECT_EQ(Saved(Path),
              "Saved. Warning: Can't delete the safety copy \"" + Path + ".old\".\n" + SystemWords(EACCES) + "\n");
    const std::string saved = ModelText();
    EXPECT_EQ(Content(Path), saved);

    // A file that nothing can replace, on a disk that fails for good in the middle.
    std::filesystem::create_hard_link(Path, Folder / "second");
    Bones[1].Name = "Tail02";
    scripted::FailError = ENOSPC;
    scripted::FailAfter = true;
    std::string told;
    for (int step = 1; step < 50 && told.find(" is kept ") == std::string::npos; ++step) {
        scripted::Steps = 0;
        scripted::FailAt = step;
        told = Saved(Path);
    }
    EXPECT_EQ(told, failed + SystemWords(ENOSPC) + "\nThe old content is kept in \"" + Path + ".old\".\n");
    EXPECT_EQ(Content(Path + ".old"), saved);
}

TEST_F(Document, WhatCannotBeWrittenIsLeftAlone)
{
    PutFile(Path, "the old content");
    std::filesystem::permissions(Path, std::filesystem::perms(0444));
    scripted::Steps = 0;
    const std::pair<std::string, std::string> cases[] = {{Folder.Path, failed + "Is a directory\n"},
                                                         {device, failed + "Not a regular file\n"},
                                                         {Folder / "b/a", failed + NoFolderWords() + "\n"},
                                                         {Path + "/b", failed + SystemWords(ENOTDIR) + "\n"},
                                                         {Path, readOnly}};
    for (const auto& [path, told] : cases) {
        EXPECT_EQ(Saved(path), told) << path;
    }
    EXPECT_EQ(Content(Path), "the old content");
    EXPECT_THAT(Folder.Names(), testing::ElementsAre("a.mvm"));
}

// What a model file has no words for is written as it always was, and told.
TEST_F(Document, AssignmentsThatALoadCannotBringBackAreTold)
{
    AddBones({"Spine01", "Tail", "Other01", "$j$02", "Fin"});
    Bones.Items.erase(Bones.begin());
    Bones[4].IsShadow = true;
    for (const char* name : {"skin", "plain\xE4"}) {
        AddSkin(name, std::vector<Vec3>(6), {0, 1, 1, 2, 3, 4});
    }
    SkinMesh = 1;
    const std::string lines =
        "Log: 2 vertices of mesh \"skin\" of bone \"Spine01\" will belong to bone \"Other01\" after the next load of "
        "the model: the joint number 1 is also that bone's.\n"
        "Log: 1 vertex of mesh \"skin\" of bone \"Tail\" will belong to bone \"Fin\" after the next load of the model: "
        "the name of theirs ends in no number.\n"
        "Log: 1 vertex of mesh \"skin\" of bone \"$j$02\" will have none after the next load of the model: theirs is a "
        "shadow bone.\n"
        "Log: 5 vertices of mesh \"plain\xC3\xA4\" will have no bone after the next load of the model: the mesh is "
        "neither skin nor shadow.\n";
    EXPECT_EQ(Saved(Path), "Saved. " + lines);
    SaveWeights(Folder / "a.wif", 1);
    EXPECT_THAT(Told(), testing::EndsWith(lines));
}

/// The bone that a vertex will have after a load.
static int16_t Foretold(const std::vector<LostAssignment>& losses, int32_t mesh, int16_t bone)
{
    for (const LostAssignment& loss : losses) {
        if (loss.Mesh == mesh && (loss.Reason == LossReason::NoRole || loss.Bone == bone)) {
            return loss.Winner;
        }
    }
    return bone;
}

// What is foretold is what a load then does, whatever names and roles there are.
TEST_F(Document, LossesAreForetoldRight)
{
    std::minstd_rand random(11);
    const auto below = [&random](auto limit) { return static_cast<int16_t>(random() % static_cast<unsigned>(limit)); };
    const auto pick = [&](const std::vector<const char*>& names) { return names[random() % names.size()]; };
    for (int round = 0; round < 300; ++round) {
        scripted::Reset();
        for (auto bone = below(6); bone > 0; --bone) {
            const char* const name = pick({"A01", "B01", "B2", "C02", "$j$01", "$J$2", "x$j$02", "D", "E-1", "F 1",
                                           "\"G01", "$j$ 03", "H03", "", "I.5", "J+1", "$j$0"});
            Bones.Add() = {.Name = name, .IsShadow = HoldsAnyCase(name, "$j$")};
        }
        const auto meshes = 1 + below(3);
        for (int mesh = 0; mesh < meshes; ++mesh) {
            Meshes.Add({.Name = pick({"skin", "$s$skin", "$s$", "a b", "$s$ b", "plain"})});
            Meshes[MeshCount()].Vertices.Items.resize(8);
        }
        if (random() % 4 != 0) {
            MakeSkin(static_cast<int16_t>(1 + below(meshes)));
        }
        if (random() % 2 != 0) {
            SelectShadowMesh(below(meshes + 1));
        }
        for (MvmMesh& mesh : Meshes) {
            for (int16_t& bone : mesh.VertexBones) {
                bone = below(BoneCount() + 1);
            }
        }
        Array1<MvmMesh> before = Meshes;
        const std::vector<LostAssignment> losses = FindLostAssignments();
        ASSERT_EQ(SaveModelFile(Path), SaveOutcome::Saved);
        ResetSession();
        ASSERT_TRUE(LoadMVM(Path));
        ASSERT_EQ(MeshCount(), meshes);
        for (int32_t mesh = 1; mesh <= meshes; ++mesh) {
            std::vector<int16_t>& bones = before[mesh].VertexBones.Items;
            for (int16_t& bone : bones) {
                bone = Foretold(losses, mesh, bone);
            }
            bones.resize(Meshes[mesh].VertexBones.Items.size());
            EXPECT_EQ(Meshes[mesh].VertexBones.Items, bones) << round << " mesh " << mesh << "\n" << Content(Path);
        }
    }
}
