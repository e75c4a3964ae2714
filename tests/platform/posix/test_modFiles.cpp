#include <sched.h>
#include <sys/mount.h>
#include <sys/stat.h>

#include "modFileListing.h"
#include "modFiles.h"
#include "support/apart.h"
#include "support/fresh.h"

using testing::ElementsAre;
using testing::UnorderedElementsAre;

namespace {

using Files = FreshFolder;

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
        ASSERT_TRUE(ReadWhole(Folder / "a", &bytes, &Error));
        EXPECT_TRUE(bytes == content) << size;
    }
    scripted::FailError = EIO;
    for (const int step : {1, 2}) {
        scripted::FailAt = step;
        scripted::Steps = 0;
        EXPECT_FALSE(ReadWhole(Folder / "a", &bytes, &Error)) << step;
        EXPECT_EQ(std::exchange(Error, ""), "Input/output error") << step;
    }
    // A file that does not tell its length.
    ASSERT_TRUE(ReadWhole("/proc/self/status", &bytes, &Error));
    EXPECT_NE(bytes.find("Pid:"), std::string::npos);
}

TEST_F(Files, RefusesToReadAnythingButAFile)
{
    ASSERT_EQ(mkfifo((Folder / "pipe").c_str(), 0600), 0);
    PutFile(Folder / "huge", "");
    std::filesystem::resize_file(Folder / "huge", uintmax_t{1} << 31U);
    PutFile(Folder / "a", "");
    std::filesystem::create_symlink("loop", Folder / "loop");
    const struct {
        std::string Path;
        const char* Words;
        FileKind Kind;
        bool Known = true;
    } cases[] = {{"", "No such file or directory", FileKind::None},
                 {Folder / "none", "No such file or directory", FileKind::None},
                 {Folder / "a/b", "Not a directory", FileKind::None, false},
                 {Folder / "loop", "Too many levels of symbolic links", FileKind::None, false},
                 {(Folder / "a") + std::string(1, '\0') + "b", "Invalid argument", FileKind::None, false},
                 {Folder.Path, "Is a directory", FileKind::Folder},
                 {Folder / "pipe", "Not a regular file", FileKind::Other},
                 {"/dev/zero", "Not a regular file", FileKind::Other},
                 {Folder / "huge", "File too large", FileKind::Plain}};
    for (const auto& row : cases) {
        std::string bytes = "untouched";
        EXPECT_FALSE(ReadWhole(row.Path, &bytes, &Error)) << row.Path;
        EXPECT_EQ(Error, row.Words) << row.Path;
        EXPECT_EQ(bytes, "untouched");
        FileKind kind = FileKind::Other;
        EXPECT_EQ(KindOfFile(row.Path, &kind, &Error), row.Known) << row.Path;
        EXPECT_EQ(kind, row.Kind) << row.Path;
    }
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
    Apart([this] { // a disk that takes nothing, where the administrator's rights allow one
        ASSERT_EQ(chmod((Folder / "a").c_str(), 0666), 0);
        EXPECT_FALSE(IsReadOnly(Folder / "a"));
        const char* const path = Folder.Path.c_str();
        if (unshare(CLONE_NEWNS) == 0 && mount("", "/", nullptr, MS_REC | MS_PRIVATE, nullptr) == 0 &&
            mount(path, path, nullptr, MS_BIND, nullptr) == 0 &&
            mount("", path, nullptr, MS_REMOUNT | MS_BIND | MS_RDONLY, nullptr) == 0) {
            EXPECT_TRUE(IsReadOnly(Folder / "a"));
        }
    });
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
