#include "platform/modFiles.h"

#include <csignal>
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <new>
#include <sys/resource.h>
#include <sys/stat.h>
#include <unistd.h>

#include "support/scripted.h"
#include "support/temp_folder.h"

using testing::ElementsAre;
using testing::UnorderedElementsAre;

namespace {

class Files : public testing::Test {
protected:
    void SetUp() override { scripted::Reset(); }

    static mode_t ModeOf(const std::string& path)
    {
        struct stat status {};
        return stat(path.c_str(), &status) == 0 ? status.st_mode & 07777 : 0;
    }

    TempFolder Folder;
    std::string Error;
};

} // namespace

TEST_F(Files, ReadsWhatIsThere)
{
    std::string bytes;
    for (const size_t size : {size_t{0}, size_t{1}, size_t{4096}, size_t{3000000}}) {
        std::string content(size, 'x');
        if (size > 0) {
            content.back() = '\0';
        }
        PutFile(Folder / "a", content);
        ASSERT_TRUE(ReadFile(Folder / "a", &bytes, &Error));
        EXPECT_TRUE(bytes == content) << size;
    }
    // A file that does not tell its length.
    ASSERT_TRUE(ReadFile("/proc/self/status", &bytes, &Error));
    EXPECT_NE(bytes.find("Pid:"), std::string::npos);
}

TEST_F(Files, RefusesToReadAnythingButAFile)
{
    ASSERT_EQ(mkfifo((Folder / "pipe").c_str(), 0600), 0);
    PutFile(Folder / "huge", "");
    std::filesystem::resize_file(Folder / "huge", uintmax_t{1} << 31U);
    PutFile(Folder / "a", "");
    struct Case {
        std::string Path;
        std::string Words;
    };
    const Case cases[] = {
        {"", "No such file or directory"},
        {Folder / "none", "No such file or directory"},
        {(Folder / "a") + "/b", "Not a directory"},
        {(Folder / "a") + std::string(1, '\0') + "b", "Invalid argument"},
        {Folder.Path, "Is a directory"},
        {Folder / "pipe", "Not a regular file"},
        {"/dev/zero", "Not a regular file"},
        {Folder / "huge", "File too large"},
    };
    for (const Case& c : cases) {
        std::string bytes = "untouched";
        EXPECT_FALSE(ReadFile(c.Path, &bytes, &Error)) << c.Path;
        EXPECT_EQ(Error, c.Words) << c.Path;
        EXPECT_EQ(bytes, "untouched");
    }
}

TEST_F(Files, AFailingReadSaysWhy)
{
    PutFile(Folder / "a", "content");
    scripted::FailError = EIO;
    for (int step = 1;; ++step) {
        scripted::Steps = 0;
        scripted::FailAt = step;
        std::string bytes;
        Error.clear();
        const bool good = ReadFile(Folder / "a", &bytes, &Error);
        if (scripted::Steps < step) {
            EXPECT_GE(step, 3);
            EXPECT_TRUE(good);
            break;
        }
        EXPECT_FALSE(good);
        EXPECT_EQ(Error, "Input/output error");
    }
}

TEST_F(Files, ReplacingKeepsThePermissionsOfTheOldFile)
{
    PutFile(Folder / "a", "old");
    ASSERT_EQ(chmod((Folder / "a").c_str(), 0751), 0);
    ASSERT_TRUE(ReplaceFile(Folder / "a", "new", &Error));
    EXPECT_EQ(Content(Folder / "a"), "new");
    EXPECT_EQ(ModeOf(Folder / "a"), 0751U);

    const mode_t mask = umask(027);
    ASSERT_TRUE(ReplaceFile(Folder / "b\xFF name", "new", &Error));
    umask(mask);
    EXPECT_EQ(Content(Folder / "b\xFF name"), "new");
    EXPECT_EQ(ModeOf(Folder / "b\xFF name"), 0640U);
    EXPECT_THAT(Folder.Names(), UnorderedElementsAre("a", "b\xFF name"));
}

TEST_F(Files, ReplacingGoesThroughLinks)
{
    std::filesystem::create_directory(Folder / "sub");
    PutFile(Folder / "sub/a", "old");
    std::filesystem::create_symlink("sub/a", Folder / "second");
    std::filesystem::create_symlink(Folder / "second", Folder / "first");
    std::filesystem::create_symlink("sub/missing", Folder / "dangling");
    ASSERT_TRUE(ReplaceFile(Folder / "first", "new", &Error));
    EXPECT_EQ(Content(Folder / "sub/a"), "new");
    ASSERT_TRUE(ReplaceFile(Folder / "dangling", "made", &Error));
    EXPECT_EQ(Content(Folder / "sub/missing"), "made");
    for (const char* name : {"first", "second", "dangling"}) {
        EXPECT_TRUE(std::filesystem::is_symlink(Folder / name)) << name;
    }

    std::filesystem::create_symlink("loop", Folder / "loop");
    EXPECT_FALSE(ReplaceFile(Folder / "loop", "new", &Error));
    EXPECT_EQ(Error, "Too many levels of symbolic links");
}

TEST_F(Files, ReplacesNothingButFiles)
{
    std::filesystem::create_directory(Folder / "sub");
    ASSERT_EQ(mkfifo((Folder / "pipe").c_str(), 0600), 0);
    std::filesystem::create_symlink("/dev/full", Folder / "device");
    struct Case {
        std::string Path;
        std::string Words;
    };
    const Case cases[] = {
        {"", "No such file or directory"},         {std::string("a\0b", 3), "Invalid argument"},
        {Folder / "sub", "Is a directory"},        {Folder / "sub/", "Is a directory"},
        {Folder / "none/", "Is a directory"},      {Folder / "none/a", "No such file or directory"},
        {Folder / "pipe", "Not a regular file"},   {"/dev/full", "Not a regular file"},
        {Folder / "device", "Not a regular file"},
    };
    for (const Case& c : cases) {
        EXPECT_FALSE(ReplaceFile(c.Path, "new", &Error)) << c.Path;
        EXPECT_EQ(Error, c.Words) << c.Path;
    }
    EXPECT_THAT(Folder.Names(), UnorderedElementsAre("sub", "pipe", "device"));
}

TEST_F(Files, AFailedReplaceLeavesTheOldFile)
{
    for (const bool existed : {true, false}) {
        for (int step = 1;; ++step) {
            const TempFolder folder;
            if (existed) {
                PutFile(folder / "a", "old");
            }
            scripted::Steps = 0;
            scripted::FailAt = step;
            Error.clear();
            const auto writeParts = [](const PartWriter& write) {
                write("new ");
                write("content");
            };
            const bool good = ReplaceFile(folder / "a", writeParts, &Error);
            if (scripted::Steps < step) {
                EXPECT_GE(step, 7);
                EXPECT_TRUE(good);
                EXPECT_EQ(Content(folder / "a"), "new content");
                break;
            }
            EXPECT_FALSE(good) << step;
            EXPECT_EQ(Error, "No space left on device") << step;
            EXPECT_EQ(Content(folder / "a"), existed ? "old" : "(none)") << step;
            EXPECT_EQ(folder.Names().size(), existed ? 1U : 0U) << step;
        }
    }
}

TEST_F(Files, ContentThatCannotBeMadeLeavesTheOldFile)
{
    PutFile(Folder / "a", "old");
    const auto writeParts = [](const PartWriter& write) {
        write("new");
        throw std::bad_alloc();
    };
    EXPECT_THROW(ReplaceFile(Folder / "a", writeParts, &Error), std::bad_alloc);
    EXPECT_EQ(Content(Folder / "a"), "old");
    EXPECT_THAT(Folder.Names(), ElementsAre("a"));
}

TEST_F(Files, AFileSizeLimitOfTheSystemIsAFailureLikeAnother)
{
    PutFile(Folder / "a", "old");
    rlimit limit{};
    ASSERT_EQ(getrlimit(RLIMIT_FSIZE, &limit), 0);
    rlimit small = limit;
    small.rlim_cur = 1000;
    const auto handler = std::signal(SIGXFSZ, SIG_IGN);
    ASSERT_EQ(setrlimit(RLIMIT_FSIZE, &small), 0);
    const bool good = ReplaceFile(Folder / "a", std::string(5000, 'x'), &Error);
    ASSERT_EQ(setrlimit(RLIMIT_FSIZE, &limit), 0);
    std::signal(SIGXFSZ, handler);
    EXPECT_FALSE(good);
    EXPECT_EQ(Error, "File too large");
    EXPECT_EQ(Content(Folder / "a"), "old");
    EXPECT_THAT(Folder.Names(), ElementsAre("a"));
}

TEST_F(Files, AGuardHoldsTheOldContent)
{
    PutFile(Folder / "a", "old");
    PutFile(Folder / "other", "of the user");
    PutFile(Folder / "plain", "an older guard");
    std::filesystem::create_symlink("other", Folder / "link");
    std::filesystem::create_hard_link(Folder / "a", Folder / "same");
    // With a second name for the file, and with a copy where the file system has no such names.
    for (const bool links : {true, false}) {
        for (const char* name : {"new", "plain", "link", "same"}) {
            scripted::NoLinks = !links;
            ASSERT_TRUE(GuardFile(Folder / "a", Folder / name, &Error)) << name << Error;
            EXPECT_EQ(Content(Folder / name), "old") << name;
            EXPECT_FALSE(std::filesystem::is_symlink(Folder / name));
            ASSERT_TRUE(ReplaceFile(Folder / "a", "changed", &Error));
            EXPECT_EQ(Content(Folder / name), "old") << name;
            PutFile(Folder / "a", "old");
            std::filesystem::remove(Folder / name);
        }
        std::filesystem::create_symlink("other", Folder / "link");
    }
    EXPECT_EQ(Content(Folder / "other"), "of the user");
    EXPECT_THAT(Folder.Names(), UnorderedElementsAre("a", "other", "link"));
}

TEST_F(Files, AGuardThatCannotBeMadeChangesNothing)
{
    PutFile(Folder / "a", "old");
    std::filesystem::create_directory(Folder / "sub");
    std::filesystem::create_symlink("a", Folder / "link");
    struct Case {
        std::string From;
        std::string To;
        std::string Words;
    };
    const Case cases[] = {
        {"a", "sub", "Is a directory"},
        {"none", "guard", "No such file or directory"},
        {"sub", "guard", "Is a directory"},
        {"a", "none/guard", "No such file or directory"},
        {"link", "a", "The file itself has the name of its safety copy."},
    };
    for (const Case& c : cases) {
        EXPECT_FALSE(GuardFile(Folder / c.From, Folder / c.To, &Error)) << c.From;
        EXPECT_EQ(Error, c.Words);
    }
    std::filesystem::create_hard_link(Folder / "a", Folder / "second");
    EXPECT_FALSE(GuardFile(Folder / "link", Folder / "a", &Error));
    EXPECT_THAT(Folder.Names(), ElementsAre("a", "link", "second", "sub"));
    EXPECT_EQ(Content(Folder / "a"), "old");
}

TEST_F(Files, ReadOnlyIsWhatTheOwnerMayNotWrite)
{
    PutFile(Folder / "a", "");
    EXPECT_FALSE(IsReadOnly(Folder / "a"));
    EXPECT_FALSE(IsReadOnly(Folder / "none"));
    ASSERT_EQ(chmod((Folder / "a").c_str(), 0466), 0);
    EXPECT_TRUE(IsReadOnly(Folder / "a"));
    std::filesystem::create_symlink("a", Folder / "link");
    EXPECT_TRUE(IsReadOnly(Folder / "link"));
}

TEST_F(Files, ListsPlainFilesAndFindsThemInAnyCase)
{
    for (const char* name : {"Hide.BMP", "hide.bmp", "Fell-\xC3\x84\xC5\xA0.bmp", "caf\xE9.bmp", ".secret.bmp"}) {
        PutFile(Folder / name, name);
    }
    std::filesystem::create_directory(Folder / "folder.bmp");
    std::filesystem::create_symlink("hide.bmp", Folder / "link.bmp");
    EXPECT_THAT(ListFiles(Folder.Path),
                UnorderedElementsAre("Hide.BMP", "hide.bmp", "Fell-\xC3\x84\xC5\xA0.bmp", "caf\xE9.bmp", "link.bmp"));
    EXPECT_THAT(ListFiles(Folder / "none"), ElementsAre());

    struct Case {
        const char* Name;
        const char* Found; ///< empty for none
    };
    const Case cases[] = {
        {"hide.bmp", "hide.bmp"},
        {"Hide.BMP", "Hide.BMP"},
        {"LINK.BMP", "link.bmp"},
        {"FELL-\xC3\xA4\xC5\xA1.BMP", "Fell-\xC3\x84\xC5\xA0.bmp"},
        {"CAF\xE9.bmp", "caf\xE9.bmp"},
        {"CAF\xC9.bmp", ""}, // no letter in this encoding
        {"FOLDER.bmp", ""},
        {".secret.bmp", ""},
        {"../hide.bmp", ""},
        {"", ""},
    };
    FolderNames names;
    for (const Case& c : cases) {
        std::string path;
        EXPECT_EQ(FindFileAnyCase(Folder.Path, c.Name, &names, &path), *c.Found != '\0') << c.Name;
        EXPECT_EQ(path, *c.Found != '\0' ? Folder / c.Found : "") << c.Name;
    }
}

TEST_F(Files, CopiesAndDeletes)
{
    PutFile(Folder / "a", "content");
    ASSERT_TRUE(CopyFileTo(Folder / "a", Folder / "b", &Error));
    EXPECT_EQ(Content(Folder / "b"), "content");
    ASSERT_TRUE(DeleteFile(Folder / "b", &Error));
    EXPECT_THAT(Folder.Names(), ElementsAre("a"));

    EXPECT_FALSE(CopyFileTo(Folder / "none", Folder / "b", &Error));
    EXPECT_FALSE(DeleteFile("", &Error));
    Error.clear();
    EXPECT_FALSE(DeleteFile(Folder / "none", &Error));
    EXPECT_EQ(Error, "No such file or directory");
    EXPECT_THAT(Folder.Names(), ElementsAre("a"));
}
