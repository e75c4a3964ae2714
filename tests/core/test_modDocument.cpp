#include <csignal>
#include <random>
#include <set>
#include <utility>

#include <sched.h>
#include <sys/mount.h>
#include <sys/resource.h>
#include <sys/stat.h>
#include <unistd.h>

#include "app/modFrontEnd.h"
#include "app/modMvmDef.h"
#include "model/modDocument.h"
#include "model/modLostAssignments.h"
#include "model/modMvmBind.h"
#include "model/modMvmRead.h"
#include "model/modMvmWrite.h"
#include "model/modStrings.h"
#include "modSession.h"
#include "support/apart.h"
#include "support/fresh.h"
#include "support/model_text.h"
#include "weights/modWeights.h"

using testing::ElementsAre;
using testing::HasSubstr;
using testing::UnorderedElementsAre;

namespace {

constexpr const char* oldContent = "the old content";
constexpr const char* readOnly = "Can't overwrite file.\nFile is marked read only.";

class Document : public FreshFolder {
protected:
    void SetUp() override { Bones.Add().Name = "Spine01"; }

    /// Saves; gives the one message that tells of it and takes it away, "" for none.
    static std::string Told(SaveOutcome outcome, const std::string& path, BoxIcon icon = BoxIcon::Stop)
    {
        EXPECT_EQ(SaveModelFile(path), outcome);
        const std::vector<scripted::Box> boxes = std::exchange(scripted::Messages, {});
        EXPECT_TRUE(boxes.empty() || (boxes.size() == 1 && boxes[0].Icon == icon));
        return boxes.empty() ? "" : boxes[0].Text;
    }

    const std::string Path = Folder / "a.mvm";
};

/// Makes the folder a disk of 64 KB that only this process sees. False without the administrator's rights.
bool MountSmallDisk(const std::string& folder)
{
    return unshare(CLONE_NEWNS) == 0 && mount("", "/", nullptr, MS_REC | MS_PRIVATE, nullptr) == 0 &&
           mount("tmpfs", folder.c_str(), "tmpfs", 0, "size=64k") == 0;
}

void LimitFileSize(rlim_t size)
{
    const rlimit limit{size, size};
    std::signal(SIGXFSZ, SIG_IGN);
    ASSERT_EQ(setrlimit(RLIMIT_FSIZE, &limit), 0);
}

} // namespace

TEST_F(Document, TheCaptionHasTheVersionAndThePath)
{
    EXPECT_EQ(CaptionFor(""), "BWRT 0.2.7");
    EXPECT_EQ(CaptionFor("/a b/c.mvm"), "BWRT 0.2.7 - [/a b/c.mvm]");
}

TEST_F(Document, ASaveReplacesTheFileAndTheGuard)
{
    EXPECT_EQ(Told(SaveOutcome::Saved, Path), "");
    EXPECT_EQ(Content(Path), ModelText());
    PutFile(Path + ".old", "of the user");
    Bones[1].Name = "Tail02";
    EXPECT_EQ(Told(SaveOutcome::Saved, Path), "");
    EXPECT_EQ(Content(Path), ModelText());
    EXPECT_THAT(Content(Path), HasSubstr("Tail02"));
    EXPECT_THAT(Folder.Names(), ElementsAre("a.mvm"));
}

TEST_F(Document, AKilledSaveLeavesOneWholeContent)
{
    std::set<std::string> contents;
    for (const int32_t bones : {1, 4000}) {
        Bones.Items.resize(static_cast<size_t>(bones));
        contents.insert(ModelText());
    }
    ASSERT_EQ(SaveModelFile(Path), SaveOutcome::Saved);
    std::minstd_rand random(7);
    for (int round = 0; round < 25; ++round) {
        const pid_t child = fork();
        ASSERT_GE(child, 0);
        if (child == 0) {
            for (;;) {
                Bones.Items.resize(Bones.Count() == 1 ? 4000 : 1);
                SaveModelFile(Path);
            }
        }
        usleep(static_cast<useconds_t>(random() % 5000));
        ASSERT_EQ(kill(child, SIGKILL), 0);
        ASSERT_EQ(waitpid(child, nullptr, 0), child);
        EXPECT_TRUE(contents.contains(Content(Path))) << round;
        const std::string guard = Content(Path + ".old");
        EXPECT_TRUE(guard == "(none)" || contents.contains(guard)) << round;
    }
    // What a killed save left does not hinder the next one.
    EXPECT_EQ(SaveModelFile(Path), SaveOutcome::Saved);
    EXPECT_EQ(Content(Path), ModelText());
    EXPECT_FALSE(std::filesystem::exists(Path + ".old"));
}

TEST_F(Document, AFullDiskKeepsTheOldFilesAndIsTold)
{
    Apart([this] {
        const bool disk = MountSmallDisk(Folder.Path);
        const std::string old(20'000, 'o');
        PutFile(Path, old);
        PutFile(Folder / "a.wif", old);
        if (!disk) {
            LimitFileSize(20'000);
        }
        Bones.Items.resize(1000);
        Meshes.Add().Vertices.Items.resize(4000);
        MakeSkin(1);
        const auto full = testing::EndsWith(disk ? "\nNo space left on device" : "\nFile too large");
        EXPECT_THAT(Told(SaveOutcome::Failed, Path), full);
        EXPECT_THAT(Told(SaveOutcome::Failed, Folder / "new.mvm"), full);
        SaveWeights(Folder / "a.wif", 1);
        ASSERT_EQ(scripted::Messages.size(), 1U);
        EXPECT_THAT(scripted::Messages[0].Text, full);
        EXPECT_EQ(Content(Path), old);
        EXPECT_EQ(Content(Folder / "a.wif"), old);
        EXPECT_THAT(Folder.Names(), UnorderedElementsAre("a.mvm", "a.wif"));
    });
}

TEST_F(Document, ADiskThatTakesNothingIsReadOnly)
{
    Apart([&] {
        if (MountSmallDisk(Folder.Path)) {
            PutFile(Path, oldContent);
            ASSERT_EQ(mount("", Folder.Path.c_str(), nullptr, MS_REMOUNT | MS_RDONLY, nullptr), 0);
            EXPECT_EQ(Told(SaveOutcome::Refused, Path, BoxIcon::Warning), readOnly);
            EXPECT_EQ(Content(Path), oldContent);
        }
    });
}

TEST_F(Document, WhatASaveLeavesIsTold)
{
    PutFile(Path, oldContent);
    ASSERT_EQ(SaveModelFile(Path), SaveOutcome::Saved);
    const int steps = std::exchange(scripted::Steps, 0);
    PutFile(Path, oldContent);
    scripted::FailAt = steps; // the last one removes the guard
    scripted::FailError = EACCES;
    EXPECT_EQ(Told(SaveOutcome::Saved, Path, BoxIcon::Warning),
              "Can't delete the safety copy \"" + Path + ".old\".\nPermission denied");
    EXPECT_EQ(Content(Path), ModelText());

    // A file that can be replaced by nothing, on a disk that fails for good in the middle.
    std::filesystem::create_hard_link(Path, Folder / "second");
    scripted::FailAt = 0;
    scripted::MissingSteps = {"StepOpenWrite"};
    const std::string before = Content(Path);
    EXPECT_EQ(Told(SaveOutcome::Failed, Path), "Runtime error in WriteMVM\nOperation not permitted\nThe old content "
                                               "is kept in \"" +
                                                   Path + ".old\".");
    EXPECT_EQ(Content(Path + ".old"), before);
}

TEST_F(Document, WhatCannotBeWrittenIsLeftAlone)
{
    EXPECT_EQ(Told(SaveOutcome::Failed, Folder.Path), "Runtime error in WriteMVM\nIs a directory");
    EXPECT_EQ(Told(SaveOutcome::Failed, "/dev/full"), "Runtime error in WriteMVM\nNot a regular file");
    EXPECT_EQ(Told(SaveOutcome::Failed, Folder / "none/a.mvm"), "Runtime error in WriteMVM\nNo such file or directory");
    PutFile(Path, oldContent);
    EXPECT_EQ(Told(SaveOutcome::Failed, Path + "/b"), "Runtime error in WriteMVM\nNot a directory");

    ASSERT_EQ(chmod(Path.c_str(), 0444), 0);
    scripted::Steps = 0;
    EXPECT_EQ(Told(SaveOutcome::Refused, Path, BoxIcon::Warning), readOnly);
    EXPECT_EQ(scripted::Steps, 0);
    EXPECT_EQ(Content(Path), oldContent);
    EXPECT_THAT(Folder.Names(), ElementsAre("a.mvm"));
}

// What a model file has no words for is written as it always was, and told.
TEST_F(Document, AssignmentsThatALoadCannotBringBackAreTold)
{
    Bones[1].Name = "Spine01";
    Bones.Add().Name = "Tail";
    Bones.Add().Name = "Other01";
    Bones.Add() = {.Name = "$j$02", .IsShadow = true};
    Bones.Add().Name = "Fin";
    for (const char* name : {"skin", "plain\xE4"}) {
        Meshes.Add().Name = name;
        Meshes[MeshCount()].Vertices.Items.resize(6);
        Meshes[MeshCount()].VertexBones.Items = {0, 1, 1, 2, 3, 4};
    }
    SelectSkinMesh(1);
    scripted::Messages.clear();
    Meshes[1].VertexBones.Items = {0, 1, 1, 2, 3, 4};
    Meshes[2].VertexBones.Items = {0, 1, 1, 2, 3, 4};
    const std::vector<std::string> lines = {
        "2 vertices of mesh \"skin\" of bone \"Spine01\" will belong to bone \"Other01\" after the next load of the "
        "model: the joint number 1 is also that bone's.",
        "1 vertex of mesh \"skin\" of bone \"Tail\" will belong to bone \"Fin\" after the next load of the model: the "
        "name of theirs ends in no number.",
        "1 vertex of mesh \"skin\" of bone \"$j$02\" will have none after the next load of the model: theirs is a "
        "shadow bone.",
        "5 vertices of mesh \"plain\xC3\xA4\" will have no bone after the next load of the model: the mesh is neither "
        "skin nor shadow."};
    EXPECT_EQ(Told(SaveOutcome::Saved, Path), "");
    EXPECT_EQ(scripted::Log, lines);
    scripted::Log.clear();
    SaveWeights(Folder / "a.wif", 1);
    EXPECT_EQ(scripted::Log, lines);
}

// What is foretold is what a load then does, whatever names and roles there are.
TEST_F(Document, LossesAreForetoldRight)
{
    std::minstd_rand random(11);
    const auto pick = [&random](const std::vector<const char*>& names) { return names[random() % names.size()]; };
    for (int round = 0; round < 300; ++round) {
        scripted::Reset();
        for (auto bone = random() % 6; bone > 0; --bone) {
            const char* const name = pick({"A01", "B01", "B2", "C02", "$j$01", "$J$2", "x$j$02", "D", "E-1", "F 1",
                                           "\"G01", "$j$ 03", "H03", "", "I.5", "J+1", "$j$0"});
            Bones.Add() = {.Name = name, .IsShadow = HoldsAnyCase(name, "$j$")};
        }
        for (auto mesh = 1 + random() % 3; mesh > 0; --mesh) {
            MvmMesh& made = Meshes.Add();
            made.Name = pick({"skin", "$s$skin", "$s$", "a b", "$s$ b", "plain"});
            made.Vertices.Items.resize(8);
        }
        if (random() % 4 != 0) {
            MakeSkin(static_cast<int16_t>(1 + random() % static_cast<unsigned>(MeshCount())));
        }
        if (random() % 2 != 0) {
            SelectShadowMesh(static_cast<int16_t>(random() % static_cast<unsigned>(MeshCount() + 1)));
        }
        for (MvmMesh& mesh : Meshes) {
            for (int16_t& bone : mesh.VertexBones) {
                bone = static_cast<int16_t>(random() % static_cast<unsigned>(BoneCount() + 1));
            }
        }
        std::vector<std::vector<int16_t>> expected;
        for (const MvmMesh& mesh : Meshes) {
            expected.push_back(mesh.VertexBones.Items);
        }
        for (const LostAssignment& loss : FindLostAssignments()) {
            for (int16_t& bone : expected[static_cast<size_t>(loss.Mesh - 1)]) {
                if (loss.Reason == LossReason::NoRole || bone == loss.Bone) {
                    bone = static_cast<int16_t>(-1 - loss.Winner); // so that no vertex is moved twice
                }
            }
        }
        ASSERT_EQ(SaveModelFile(Path), SaveOutcome::Saved);
        const std::string text = Content(Path);
        ResetSession();
        ASSERT_TRUE(LoadMVM(Path));
        ASSERT_EQ(static_cast<size_t>(MeshCount()), expected.size());
        for (int32_t mesh = 1; mesh <= MeshCount(); ++mesh) {
            std::vector<int16_t>& bones = expected[static_cast<size_t>(mesh - 1)];
            for (int16_t& bone : bones) {
                bone = bone < 0 ? static_cast<int16_t>(-1 - bone) : bone;
            }
            bones.resize(Meshes[mesh].VertexBones.Items.size());
            EXPECT_EQ(Meshes[mesh].VertexBones.Items, bones) << round << " mesh " << mesh << "\n" << text;
        }
    }
}
