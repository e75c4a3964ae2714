#include "app/modDocument.h"

#include <csignal>
#include <iostream>
#include <random>
#include <sched.h>
#include <set>
#include <sys/mount.h>
#include <sys/resource.h>
#include <sys/stat.h>
#include <sys/wait.h>
#include <unistd.h>
#include <utility>

#include "app/modMvmDef.h"
#include "model/modMvmWrite.h"
#include "support/fresh.h"
#include "weights/modWeights.h"

using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsSubsetOf;
using testing::UnorderedElementsAre;

namespace {

constexpr const char* oldContent = "the old content";

class Document : public FreshFolder {
protected:
    void SetUp() override { Bones.Add().Name = "Spine01"; }

    /// Saves; gives the one message that tells of it and takes it away, "" for none.
    static std::string Told(bool good, const std::string& path, BoxIcon icon = BoxIcon::Stop)
    {
        EXPECT_EQ(SaveModelFile(path), good);
        const std::vector<scripted::Box> boxes = std::exchange(scripted::Messages, {});
        EXPECT_TRUE(boxes.empty() || (boxes.size() == 1 && boxes[0].Icon == icon));
        return boxes.empty() ? "" : boxes[0].Text;
    }

    const std::string Path = Folder / "a.mvm";
};

/// Saves with every step failing in turn until a run reaches no failure. Each time the name must hold one whole content
/// that fits the report, and the scene must be what it was.
void SaveWithEveryFailure(bool existed, bool later, bool links)
{
    scripted::NoLinks = !links;
    const std::string before = existed ? oldContent : "(none)";
    const std::string scene = ModelText();
    for (int step = 1;; ++step) {
        SCOPED_TRACE("step " + std::to_string(step) + (existed ? ", over a file" : "") + (later ? ", and later" : "") +
                     (links ? "" : ", without links"));
        const TempFolder folder;
        const std::string path = folder / "a.mvm";
        if (existed) {
            PutFile(path, oldContent);
        }
        scripted::Messages.clear();
        scripted::Steps = 0;
        scripted::FailAt = step;
        scripted::FailAfter = later;
        const bool good = SaveModelFile(path);
        EXPECT_EQ(Content(path), good ? scene : before);
        EXPECT_EQ(ModelText(), scene);
        if (scripted::Steps < step) {
            EXPECT_TRUE(good);
            EXPECT_GE(step, existed ? 9 : 6);
            EXPECT_TRUE(scripted::Messages.empty());
            EXPECT_THAT(folder.Names(), ElementsAre("a.mvm"));
            return;
        }
        if (!good) {
            ASSERT_FALSE(scripted::Messages.empty());
            EXPECT_THAT(scripted::Messages[0].Text, HasSubstr("\nNo space left on device"));
            EXPECT_EQ(scripted::Messages[0].Icon, BoxIcon::Stop);
        }
        // What cannot be deleted stays, and the user knows; all else is gone.
        const std::string guard = Content(path + ".old");
        if (guard != "(none)") {
            EXPECT_EQ(guard, oldContent);
            ASSERT_FALSE(scripted::Messages.empty());
            EXPECT_THAT(scripted::Messages.back().Text, HasSubstr(path + ".old"));
        }
        if (!later) {
            EXPECT_THAT(folder.Names(), IsSubsetOf({"a.mvm", "a.mvm.old"}));
        }
    }
}

/// Runs `act` in a process of its own, whose limits, mounts and rights end with it.
void Apart(const std::function<void()>& act)
{
    const pid_t child = fork();
    ASSERT_GE(child, 0);
    if (child == 0) {
        act();
        std::cout << std::flush;
        _exit(testing::Test::HasFailure() ? 1 : 0);
    }
    int status = 0;
    ASSERT_EQ(waitpid(child, &status, 0), child);
    EXPECT_EQ(status, 0);
}

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
    EXPECT_EQ(Told(true, Path), "");
    EXPECT_EQ(Content(Path), ModelText());
    PutFile(Path + ".old", "of the user");
    Bones[1].Name = "Tail02";
    EXPECT_EQ(Told(true, Path), "");
    EXPECT_EQ(Content(Path), ModelText());
    EXPECT_THAT(Content(Path), HasSubstr("Tail02"));
    EXPECT_THAT(Folder.Names(), ElementsAre("a.mvm"));
}

TEST_F(Document, EveryFailureOfASaveLeavesOneWholeContent)
{
    for (const bool existed : {true, false}) {
        for (const bool later : {true, false}) {
            SaveWithEveryFailure(existed, later, true);
            SaveWithEveryFailure(existed, later, false);
        }
    }
}

TEST_F(Document, AKilledSaveLeavesOneWholeContent)
{
    std::set<std::string> contents;
    for (const int32_t bones : {1, 4000}) {
        Bones.Items.resize(static_cast<size_t>(bones));
        contents.insert(ModelText());
    }
    ASSERT_TRUE(SaveModelFile(Path));
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
    EXPECT_TRUE(SaveModelFile(Path));
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
        EXPECT_THAT(Told(false, Path), full);
        EXPECT_THAT(Told(false, Folder / "new.mvm"), full);
        SaveWeights(Folder / "a.wif", 1);
        ASSERT_EQ(scripted::Messages.size(), 1U);
        EXPECT_THAT(scripted::Messages[0].Text, full);
        EXPECT_EQ(Content(Path), old);
        EXPECT_EQ(Content(Folder / "a.wif"), old);
        EXPECT_THAT(Folder.Names(), UnorderedElementsAre("a.mvm", "a.wif"));
    });
}

TEST_F(Document, AFolderOrADiskThatTakesNothingKeepsItsFilesAndIsTold)
{
    PutFile(Path, oldContent);
    ASSERT_EQ(chmod(Path.c_str(), 0666), 0);
    const auto save = [this](const std::string& words, BoxIcon icon) {
        EXPECT_EQ(Told(false, Path, icon), words);
        EXPECT_THAT(Told(false, Folder / "new.mvm"), HasSubstr("Runtime error in WriteMVM\n"));
        EXPECT_EQ(Content(Path), oldContent);
        EXPECT_THAT(Folder.Names(), ElementsAre("a.mvm"));
    };
    Apart([&] {
        ASSERT_EQ(chmod(Folder.Path.c_str(), 0555), 0);
        ASSERT_TRUE(getuid() != 0 || setuid(65534) == 0);
        save("Can't make a safety copy of the file.\nPermission denied", BoxIcon::Stop);
    });
    ASSERT_EQ(chmod(Folder.Path.c_str(), 0755), 0);
    Apart([&] {
        if (MountSmallDisk(Folder.Path)) {
            PutFile(Path, oldContent);
            ASSERT_EQ(mount("", Folder.Path.c_str(), nullptr, MS_REMOUNT | MS_RDONLY, nullptr), 0);
            save("Can't overwrite file.\nFile is marked read only.", BoxIcon::Warning);
        }
    });
}

TEST_F(Document, AGuardThatStaysIsToldAfterAGoodSave)
{
    PutFile(Path, oldContent);
    ASSERT_TRUE(SaveModelFile(Path));
    PutFile(Path, oldContent);
    scripted::FailAt = std::exchange(scripted::Steps, 0);
    scripted::FailError = EACCES;
    EXPECT_EQ(Told(true, Path, BoxIcon::Warning),
              "Can't delete the safety copy \"" + Path + ".old\".\nPermission denied");
    EXPECT_EQ(Content(Path), ModelText());
}

TEST_F(Document, WhatCannotBeReplacedIsLeftAlone)
{
    EXPECT_EQ(Told(false, Folder.Path), "Runtime error in WriteMVM\nIs a directory");
    EXPECT_EQ(Told(false, "/dev/full"), "Runtime error in WriteMVM\nNot a regular file");
    EXPECT_EQ(Told(false, Folder / "none/a.mvm"), "Runtime error in WriteMVM\nNo such file or directory");

    PutFile(Path, oldContent);
    std::filesystem::create_directory(Path + ".old");
    EXPECT_EQ(Told(false, Path), "Can't make a safety copy of the file.\nIs a directory");

    ASSERT_EQ(chmod(Path.c_str(), 0444), 0);
    scripted::Steps = 0;
    EXPECT_EQ(Told(false, Path, BoxIcon::Warning), "Can't overwrite file.\nFile is marked read only.");
    EXPECT_EQ(scripted::Steps, 0);
    EXPECT_EQ(Content(Path), oldContent);
    EXPECT_THAT(Folder.Names(), ElementsAre("a.mvm", "a.mvm.old"));
}

TEST_F(Document, ASaveGoesThroughALinkAndKeepsHiddenFilesWhole)
{
    std::filesystem::create_directory(Folder / "sub");
    PutFile(Folder / "sub/real.mvm", oldContent);
    std::filesystem::create_symlink("sub/real.mvm", Path);
    ASSERT_TRUE(SaveModelFile(Path));
    EXPECT_TRUE(std::filesystem::is_symlink(Path));
    EXPECT_EQ(Content(Folder / "sub/real.mvm"), ModelText());
    EXPECT_THAT(Folder.Names(), UnorderedElementsAre("a.mvm", "sub"));

    // A link to the very name that the guard would take.
    PutFile(Folder / "b.mvm.old", oldContent);
    std::filesystem::create_symlink("b.mvm.old", Folder / "b.mvm");
    EXPECT_FALSE(SaveModelFile(Folder / "b.mvm"));
    EXPECT_EQ(Content(Folder / "b.mvm"), oldContent);

    PutFile(Folder / ".hidden.mvm", oldContent);
    scripted::Steps = 0;
    scripted::FailAt = 3; // behind the two steps of the guard
    EXPECT_FALSE(SaveModelFile(Folder / ".hidden.mvm"));
    EXPECT_EQ(Content(Folder / ".hidden.mvm"), oldContent);
}
