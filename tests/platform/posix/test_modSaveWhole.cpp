#include <new>

#include <sys/stat.h>
#include <sys/xattr.h>
#include <unistd.h>

#include "modFiles.h"
#include "support/apart.h"
#include "support/fresh.h"

using testing::ElementsAre;
using testing::IsSubsetOf;
using testing::UnorderedElementsAre;

namespace {

constexpr const char* oldContent = "the old content, which is the longer one";
constexpr const char* newContent = "new content";

class Saving : public FreshFolder {
protected:
    void SetUp() override
    {
        std::filesystem::create_directory(Folder / "spare");
        setenv("TMPDIR", (Folder / "spare").c_str(), 1);
    }
    void TearDown() override { unsetenv("TMPDIR"); }

    bool Save(const std::string& path, const std::string& guard = "")
    {
        Rest = {};
        Error.clear();
        const auto writeParts = [](const PartWriter& write) {
            write("new ");
            write("content");
        };
        return SaveWhole(path, guard, writeParts, &Rest, &Error);
    }

    /// A fresh folder with the file "a" in it, beside an empty one for temporary files.
    [[nodiscard]] std::string WithOld() const
    {
        for (const char* name : {"there/", "spare/"}) {
            std::filesystem::remove_all(Folder / name);
            std::filesystem::create_directory(Folder / name);
        }
        PutFile(Folder / "there/a", oldContent);
        return Folder / "there/";
    }

    SaveRest Rest;
};

/// Owner, group, mode and an attribute.
std::string KeptOf(const std::string& path)
{
    struct stat status {};
    EXPECT_EQ(stat(path.c_str(), &status), 0) << path;
    std::string note(64, '\0');
    note.resize(static_cast<size_t>(std::max<ssize_t>(getxattr(path.c_str(), "user.note", note.data(), 64), 0)));
    return std::to_string(status.st_uid) + " " + std::to_string(status.st_gid) + " " +
           std::to_string(status.st_mode & 07777U) + " " + note;
}

} // namespace

TEST_F(Saving, KeepsOwnerGroupModeAttributesAndOtherNames)
{
    const bool administrator = getuid() == 0;
    for (const bool linked : {false, true}) {
        const std::string folder = WithOld();
        const std::string path = folder + "a";
        ASSERT_EQ(chown(path.c_str(), administrator ? 1001 : getuid(), administrator ? 1002 : getgid()), 0);
        ASSERT_EQ(chmod(path.c_str(), 02764), 0);
        const bool attributes = setxattr(path.c_str(), "user.note", "of the user", 11, 0) == 0;
        if (linked) {
            std::filesystem::create_hard_link(path, folder + "second");
        }
        const std::string before = KeptOf(path);
        const auto fail = [](const PartWriter& write) {
            write("new");
            throw std::bad_alloc();
        };
        EXPECT_THROW(SaveWhole(path, path + ".old", fail, &Rest, &Error), std::bad_alloc);
        EXPECT_EQ(Content(path), oldContent);
        ASSERT_TRUE(Save(path, path + ".old")) << Error;
        EXPECT_EQ(Content(path), newContent);
        EXPECT_EQ(Content(folder + "second"), linked ? newContent : "(none)");
        EXPECT_EQ(KeptOf(path), before);
        EXPECT_EQ(before.ends_with("of the user"), attributes);
        EXPECT_EQ(NamesIn(folder).size(), linked ? 2U : 1U);
    }
}

TEST_F(Saving, WritesInPlaceWhatItCannotReplace)
{
    if (getuid() != 0) {
        GTEST_SKIP() << "Other users' files can be made by the administrator alone.";
    }
    const std::string folder = WithOld();
    const std::string path = folder + "a";
    const std::pair<uid_t, mode_t> cases[] = {{1001, 0777},   // another's file that all may write
                                              {1001, 01777},  // in a sticky folder
                                              {65534, 0555}}; // in a folder that is not writable
    ASSERT_EQ(chmod(Folder.Path.c_str(), 0755), 0);
    ASSERT_EQ(chmod((Folder / "spare").c_str(), 01777), 0);
    for (const auto& [owner, mode] : cases) {
        SCOPED_TRACE(mode);
        PutFile(path, oldContent);
        ASSERT_EQ(chown(path.c_str(), owner, 1002), 0);
        ASSERT_EQ(chmod(path.c_str(), 0666), 0);
        ASSERT_EQ(chmod(folder.c_str(), mode), 0);
        const std::string before = KeptOf(path);
        Apart([&] {
            ASSERT_TRUE(setgid(65534) == 0 && setuid(65534) == 0);
            ASSERT_TRUE(Save(path, path + ".old")) << Error;
            EXPECT_EQ(Content(path), newContent);
            EXPECT_EQ(KeptOf(path), before);
            EXPECT_THAT(NamesIn(folder), ElementsAre("a"));
            EXPECT_THAT(NamesIn(Folder / "spare"), ElementsAre());
        });
    }
}

TEST_F(Saving, NeedsNoRoomForAGuardNorForAName)
{
    const std::string folder = WithOld();
    const std::string longest(255, 'n');
    std::filesystem::create_directory(folder + "a.old");
    std::filesystem::create_symlink("a", folder + "link");
    const std::pair<std::string, std::string> cases[] = {{"a", "a.old"},
                                                         {longest, longest + ".old"}, // a new file, then an old one
                                                         {longest, longest + ".old"},
                                                         {"link", "a"}}; // a link to the very name of the guard
    for (const auto& [name, guard] : cases) {
        EXPECT_TRUE(Save(folder + name, folder + guard)) << Error;
        EXPECT_EQ(Content(folder + name), newContent);
        PutFile(folder + name, oldContent);
    }
    EXPECT_EQ(NamesIn(folder).size(), 4U);
}

TEST_F(Saving, GoesThroughLinksAndMakesWhatIsMissing)
{
    std::filesystem::create_symlink("spare/a\xFF name", Folder / "second");
    std::filesystem::create_symlink(Folder / "second", Folder / "first");
    const mode_t mask = umask(027);
    for (const char* content : {"(none)", oldContent}) {
        EXPECT_EQ(Content(Folder / "first"), content);
        ASSERT_TRUE(Save(Folder / "first"));
        EXPECT_EQ(Content(Folder / "spare/a\xFF name"), newContent);
        EXPECT_THAT(KeptOf(Folder / "first"), testing::EndsWith(" " + std::to_string(0640) + " "));
        EXPECT_TRUE(std::filesystem::is_symlink(Folder / "first") && std::filesystem::is_symlink(Folder / "second"));
        PutFile(Folder / "first", oldContent);
    }
    umask(mask);
    EXPECT_THAT(NamesIn(Folder / "spare"), ElementsAre("a\xFF name"));
}

TEST_F(Saving, WritesNothingButFiles)
{
    std::filesystem::create_directory(Folder / "sub");
    ASSERT_EQ(mkfifo((Folder / "pipe").c_str(), 0600), 0);
    std::filesystem::create_symlink("/dev/full", Folder / "device");
    std::filesystem::create_symlink("loop", Folder / "loop");
    const std::pair<std::string, const char*> cases[] = {
        {"", "No such file or directory"},         {std::string("a\0b", 3), "Invalid argument"},
        {Folder / "sub", "Is a directory"},        {Folder / "sub/", "Is a directory"},
        {Folder / "none/", "Is a directory"},      {Folder / "none/a", "No such file or directory"},
        {Folder / "pipe", "Not a regular file"},   {"/dev/full", "Not a regular file"},
        {Folder / "device", "Not a regular file"}, {Folder / "loop", "Too many levels of symbolic links"}};
    for (const auto& [path, words] : cases) {
        EXPECT_FALSE(Save(path)) << path;
        EXPECT_EQ(Error, words) << path;
    }
    EXPECT_THAT(Folder.Names(), UnorderedElementsAre("sub", "pipe", "device", "loop", "spare"));
}

// Each step fails in turn, alone or with all that follow it, on file systems of several kinds. The name holds one whole
// content that fits the answer, what stays is told, and the next save leaves nothing of it.
TEST_F(Saving, EveryFailureLeavesOneWholeContent)
{
    const std::set<std::string> missing[] = {
        {}, {"StepOpenUnnamed"}, {"StepLink"}, {"StepOpenUnnamed", "StepOpenNew"}, {"StepRename"}, {"StepSetMode"}};
    for (int situation = 0; situation < 3 * 6 * 2 * 2; ++situation) {
        const int kind = situation % 3; // no file, a file, a file with a second name
        const bool later = situation / 3 % 2 == 1;
        const bool guarded = situation / 6 % 2 == 1;
        for (int step = 1;; ++step) {
            SCOPED_TRACE("situation " + std::to_string(situation) + ", step " + std::to_string(step));
            const std::string folder = WithOld();
            const std::string path = folder + "a";
            if (kind == 0) {
                std::filesystem::remove(path);
            } else if (kind == 2) {
                std::filesystem::create_hard_link(path, folder + "second");
            }
            scripted::MissingSteps = missing[situation / 12];
            scripted::Steps = 0;
            scripted::FailAt = step;
            scripted::FailAfter = later;
            const bool good = Save(path, guarded ? path + ".old" : "");
            const bool reached = scripted::Steps >= step;
            scripted::FailAt = 0;
            scripted::MissingSteps.clear();

            EXPECT_EQ(Error.empty(), good);
            const std::string content = Content(Rest.Torn ? Rest.Guard : path);
            const char* const before = kind == 0 ? "(none)" : oldContent;
            EXPECT_TRUE(content == (good ? newContent : before) || (later && content == newContent)) << content;
            std::vector<std::string> allowed = {"a", "second"};
            if (!Rest.Guard.empty()) {
                EXPECT_NE(Content(Rest.Guard), "(none)");
                allowed.push_back("a.old");
            }
            if (!later && missing[situation / 12].empty()) {
                EXPECT_THAT(NamesIn(folder), IsSubsetOf(allowed));
                EXPECT_FALSE(Rest.Torn);
            }
            EXPECT_EQ(NamesIn(Folder / "spare").size(), Rest.Guard.starts_with(Folder / "spare") ? 1U : 0U);
            if (!reached) {
                break;
            }
            EXPECT_TRUE(Save(path, path + ".old"));
            EXPECT_THAT(NamesIn(folder), IsSubsetOf({"a", "second"}));
        }
    }
}

TEST_F(Saving, RemovesWhatDeadProcessesLeft)
{
    const std::string folder = WithOld();
    const std::string gone = ".a." + std::to_string(Apart([] {}));
    const std::vector<std::string> kept = {".a." + std::to_string(getppid()) + ".tmp", ".b.1.tmp", gone + "x.tmp", "a"};
    for (const std::string& name : kept) {
        PutFile(folder + name, "");
    }
    PutFile(folder + gone + ".tmp", "");
    ASSERT_TRUE(Save(folder + "a"));
    EXPECT_THAT(NamesIn(folder), testing::UnorderedElementsAreArray(kept));
}
