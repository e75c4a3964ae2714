#include "platform/modFiles.h"

#include <new>
#include <sys/stat.h>

#include "support/fresh.h"

using testing::ElementsAre;
using testing::UnorderedElementsAre;

namespace {

using Files = FreshFolder;
using PathsAndWords = std::pair<std::string, const char*>[];

mode_t ModeOf(const std::string& path)
{
    struct stat status {};
    return stat(path.c_str(), &status) == 0 ? status.st_mode & 07777 : 0;
}

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
    const PathsAndWords cases = {
        {"", "No such file or directory"},   {Folder / "none", "No such file or directory"},
        {Folder / "a/b", "Not a directory"}, {(Folder / "a") + std::string(1, '\0') + "b", "Invalid argument"},
        {Folder.Path, "Is a directory"},     {Folder / "pipe", "Not a regular file"},
        {"/dev/zero", "Not a regular file"}, {Folder / "huge", "File too large"}};
    for (const auto& [path, words] : cases) {
        std::string bytes = "untouched";
        EXPECT_FALSE(ReadFile(path, &bytes, &Error)) << path;
        EXPECT_EQ(Error, words) << path;
        EXPECT_EQ(bytes, "untouched");
    }
}

TEST_F(Files, AFailingReadSaysWhy)
{
    PutFile(Folder / "a", "content");
    scripted::FailError = EIO;
    const int steps = FailEachStep([this] {
        std::string bytes;
        Error.clear();
        const bool good = ReadFile(Folder / "a", &bytes, &Error);
        EXPECT_EQ(Error, good ? "" : "Input/output error");
        return good;
    });
    EXPECT_GE(steps, 2);
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
    const PathsAndWords cases = {
        {"", "No such file or directory"},        {std::string("a\0b", 3), "Invalid argument"},
        {Folder / "sub", "Is a directory"},       {Folder / "sub/", "Is a directory"},
        {Folder / "none/", "Is a directory"},     {Folder / "none/a", "No such file or directory"},
        {Folder / "pipe", "Not a regular file"},  {"/dev/full", "Not a regular file"},
        {Folder / "device", "Not a regular file"}};
    for (const auto& [path, words] : cases) {
        EXPECT_FALSE(ReplaceFile(path, "new", &Error)) << path;
        EXPECT_EQ(Error, words) << path;
    }
    EXPECT_THAT(Folder.Names(), UnorderedElementsAre("sub", "pipe", "device"));
}

TEST_F(Files, AFailedReplaceLeavesTheOldFile)
{
    for (const bool existed : {true, false}) {
        const int steps = FailEachStep([this, existed] {
            const TempFolder folder;
            if (existed) {
                PutFile(folder / "a", "old");
            }
            Error.clear();
            const auto writeParts = [](const PartWriter& write) {
                write("new ");
                write("content");
            };
            const bool good = ReplaceFile(folder / "a", writeParts, &Error);
            EXPECT_EQ(Error, good ? "" : "No space left on device");
            EXPECT_EQ(Content(folder / "a"), good ? "new content" : existed ? "old" : "(none)");
            EXPECT_EQ(folder.Names().size(), good || existed ? 1U : 0U);
            return good;
        });
        EXPECT_GE(steps, 6);
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
    const struct {
        const char *From, *To, *Words;
    } cases[] = {{"a", "sub", "Is a directory"},
                 {"none", "guard", "No such file or directory"},
                 {"sub", "guard", "Is a directory"},
                 {"a", "none/guard", "No such file or directory"},
                 {"link", "a", "The file itself has the name of its safety copy."}};
    for (const auto& row : cases) {
        EXPECT_FALSE(GuardFile(Folder / row.From, Folder / row.To, &Error)) << row.From;
        EXPECT_EQ(Error, row.Words);
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

    const std::pair<const char*, std::string> cases[] = {{"hide.bmp", "hide.bmp"},
                                                         {"Hide.BMP", "Hide.BMP"},
                                                         {"LINK.BMP", "link.bmp"},
                                                         {"FELL-\xC3\xA4\xC5\xA1.BMP", "Fell-\xC3\x84\xC5\xA0.bmp"},
                                                         {"CAF\xE9.bmp", "caf\xE9.bmp"},
                                                         {"CAF\xC9.bmp", ""}, // no letter in this encoding
                                                         {"FOLDER.bmp", ""},
                                                         {".secret.bmp", ""},
                                                         {"../hide.bmp", ""},
                                                         {"", ""}};
    FolderNames names;
    for (const auto& [name, found] : cases) {
        std::string path;
        EXPECT_EQ(FindFileAnyCase(Folder.Path, name, &names, &path), !found.empty()) << name;
        EXPECT_EQ(path, found.empty() ? "" : Folder / found) << name;
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
