#include <array>
#include <cerrno>

#include "modFileListing.h"
#include "modFiles.h"
#include "modProcess.h"
#include "support/fresh.h"
#include "support/system_words.h"
#include "windows/modWindows.h"

using testing::ElementsAre;
using testing::IsSubsetOf;
using testing::UnorderedElementsAre;

namespace {

constexpr const char* oldContent = "the old content, which is the longer one";
constexpr const char* newContent = "new content";

class WindowsFiles : public FreshFolder {
protected:
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
    /// A fresh folder with the file "a" in it.
    [[nodiscard]] std::string WithOld() const
    {
        std::filesystem::remove_all(Folder / "there");
        std::filesystem::create_directory(Folder / "there");
        PutFile(Folder / "there/a", oldContent);
        return Folder / "there/";
    }
    SaveRest Rest;
};

std::string LongName(char letter)
{
    return std::string(100, letter);
}

/// A file held open by somebody who lets others do no more than this.
HANDLE HeldOpen(const std::string& path, DWORD shared)
{
    return CreateFileW(SystemPath(path).c_str(), GENERIC_READ, shared, nullptr, OPEN_EXISTING, 0, nullptr);
}

} // namespace

TEST_F(WindowsFiles, AreFoundByAnyWayOfWritingTheirPath)
{
    const std::string folder = Folder / "J\u00F6rg\\\u041C\u043E\u0434\u0435\u043B\u0438 \U0001F600";
    std::filesystem::create_directories(PathOf(folder));
    std::string turned = folder;
    std::replace(turned.begin(), turned.end(), '\\', '/');
    std::string whole = "\\\\?\\" + folder + "\\a.mvm"; // this form takes backslashes alone
    std::replace(whole.begin(), whole.end(), '/', '\\');
    const std::string paths[] = {folder + "\\a.mvm", turned + "/a.mvm", turned + "/A.MVM", folder + "\\.\\x\\..\\a.mvm",
                                 whole};
    ASSERT_TRUE(Save(paths[0])) << Error;
    for (const std::string& path : paths) {
        std::string bytes;
        EXPECT_TRUE(ReadWhole(path, &bytes, &Error)) << path << Error;
        EXPECT_EQ(bytes, newContent);
        EXPECT_TRUE(IsPlainFile(path) && IsSameFile(path, paths[0])) << path;
        EXPECT_EQ(path.substr(NameStart(path)).size(), 5U);
    }
    EXPECT_THAT(ListFiles(folder), ElementsAre("a.mvm"));
    PutFile(folder + "/\u041C\u043E\u0434.BMP", "");
    PutFile(folder + "/hidden.bmp", "");
    SetFileAttributesW(SystemPath(folder + "/hidden.bmp").c_str(), FILE_ATTRIBUTE_HIDDEN);
    EXPECT_THAT(ListFiles(turned + "/"), UnorderedElementsAre("a.mvm", "\u041C\u043E\u0434.BMP"));
    EXPECT_TRUE(IsHidden(folder + "/hidden.bmp") && IsHidden(".a") && !IsHidden(paths[0]));
    FolderNames names;
    std::string path;
    EXPECT_TRUE(FindFileAnyCase(folder + "\\", "A.mvm", &names, &path));
    for (const char* name : {"", "x\\a.mvm", "x/a.mvm", "c:a.mvm", "hidden.bmp", "nul", "nul.bmp"}) {
        EXPECT_FALSE(FindFileAnyCase(folder + "\\", name, &names, &path)) << name;
    }
}

TEST_F(WindowsFiles, MayHavePathsOfAnyLength)
{
    const std::string folder = Folder / LongName('a') + "\\" + LongName('b') + "/" + LongName('c');
    for (const size_t end : {folder.find('\\', Folder.Path.size()), folder.rfind('/'), folder.size()}) {
        ASSERT_NE(CreateDirectoryW(SystemPath(folder.substr(0, end)).c_str(), nullptr), 0);
    }
    const std::string path = folder + "\\" + LongName('d') + ".mvm";
    for (int round = 0; round < 2; ++round) {
        ASSERT_TRUE(Save(path, path + ".old")) << Error;
    }
    std::string bytes;
    EXPECT_TRUE(ReadWhole(path, &bytes, &Error)) << Error;
    EXPECT_EQ(bytes, newContent);
    EXPECT_EQ(ListFiles(folder).size(), 1U);
    EXPECT_TRUE(IsFolder(folder) && !IsReadOnly(path));
    // A name as long as names can be has no room for that of a guard.
    const std::string longest = Folder / std::string(255, 'n');
    EXPECT_TRUE(Save(longest, longest + ".old") && Save(longest, longest + ".old")) << Error;
    EXPECT_EQ(Folder.Names().size(), 2U);
    DeleteFileW(SystemPath(path).c_str());
    for (std::string inner = folder; inner.size() > Folder.Path.size(); inner.resize(inner.find_last_of("/\\"))) {
        RemoveDirectoryW(SystemPath(inner).c_str());
    }
}

TEST_F(WindowsFiles, WhatIsNoFileIsRefused)
{
    std::filesystem::create_directory(Folder / "sub");
    PutFile(Folder / "a", "");
    const std::string kind = "Not a regular file";
    const std::string name = SystemWords(EINVAL);
    const struct {
        std::string Path, Reading, Saving;
        FileKind Kind;
    } cases[] = {{"", SystemWords(ENOENT), SystemWords(ENOENT), FileKind::None},
                 {Folder / "con.mvm", kind, kind, FileKind::Other},
                 {Folder / "Nul", kind, kind, FileKind::Other},
                 {"lpt1.a.b", kind, kind, FileKind::Other},
                 {"COM\u00B2", kind, kind, FileKind::Other},
                 {"\\\\.\\pipe\\beastwright", kind, kind, FileKind::Other},
                 {Folder / "sub", "Is a directory", "Is a directory", FileKind::Folder},
                 {Folder / "new\\", SystemWords(ENOENT), "Is a directory", FileKind::None},
                 {Folder / "none/a", SystemWords(ENOTDIR), SystemWords(ENOTDIR), FileKind::None},
                 {Folder / "a:second", SystemWords(ENOENT), name, FileKind::None}};
    for (const auto& row : cases) {
        SCOPED_TRACE(row.Path);
        std::string bytes;
        FileKind found = FileKind::Plain;
        EXPECT_FALSE(ReadWhole(row.Path, &bytes, &Error));
        EXPECT_EQ(Error, row.Reading);
        EXPECT_FALSE(Save(row.Path));
        EXPECT_EQ(Error, row.Saving);
        EXPECT_TRUE(KindOfFile(row.Path, &found, &Error)) << Error;
        EXPECT_EQ(found, row.Kind);
        EXPECT_FALSE(IsPlainFile(row.Path) || IsReadOnly(row.Path));
    }
    FileKind found = FileKind::Plain;
    for (const std::string& path : {Folder / "a*b", std::string("a\xFF"), std::string("a\0b", 3)}) {
        EXPECT_FALSE(KindOfFile(path, &found, &Error) || Save(path)) << path;
        EXPECT_EQ(Error, name) << path;
    }
    EXPECT_FALSE(IsDevice(SystemPath("console.mvm")) || IsDevice(SystemPath("com0")) || IsDevice(SystemPath("lpt10")));
    EXPECT_THAT(Folder.Names(), UnorderedElementsAre("sub", "a"));
}

TEST_F(WindowsFiles, SavingKeepsAttributesAndOtherNames)
{
    for (const bool linked : {false, true}) {
        const std::string folder = WithOld();
        const std::wstring path = SystemPath(folder + "a");
        if (linked) {
            std::filesystem::create_hard_link(folder + "a", folder + "second");
        }
        ASSERT_NE(SetFileAttributesW(path.c_str(), FILE_ATTRIBUTE_HIDDEN), 0);
        const DWORD before = GetFileAttributesW(path.c_str()) & ~DWORD{FILE_ATTRIBUTE_ARCHIVE};
        ASSERT_TRUE(Save(folder + "a", folder + "a.old")) << Error;
        EXPECT_EQ(GetFileAttributesW(path.c_str()) & ~DWORD{FILE_ATTRIBUTE_ARCHIVE}, before);
        EXPECT_EQ(Content(folder + "a"), newContent);
        EXPECT_EQ(Content(folder + "second"), linked ? newContent : "(none)");
        EXPECT_EQ(NamesIn(folder).size(), linked ? 2U : 1U);
    }
}

TEST_F(WindowsFiles, AReadOnlyFileStays)
{
    const std::string folder = WithOld();
    const std::wstring path = SystemPath(folder + "a");
    EXPECT_FALSE(IsReadOnly(folder + "a") || IsReadOnly(folder) || IsReadOnly(folder + "none"));
    SetFileAttributesW(path.c_str(), FILE_ATTRIBUTE_READONLY);
    EXPECT_TRUE(IsReadOnly(folder + "a"));
    EXPECT_FALSE(Save(folder + "a", folder + "a.old"));
    EXPECT_EQ(Error, SystemWords(EACCES));
    EXPECT_EQ(Content(folder + "a"), oldContent);
    EXPECT_THAT(NamesIn(folder), ElementsAre("a"));
    SetFileAttributesW(path.c_str(), FILE_ATTRIBUTE_NORMAL);
}

TEST_F(WindowsFiles, AFileThatIsHeldOpenIsReadAndStays)
{
    for (const bool linked : {false, true}) {
        const std::string folder = WithOld();
        if (linked) {
            std::filesystem::create_hard_link(folder + "a", folder + "second");
        }
        const auto names = NamesIn(folder);
        {
            const OwnedHandle held(HeldOpen(folder + "a", FILE_SHARE_READ));
            ASSERT_TRUE(held);
            std::string bytes;
            EXPECT_TRUE(ReadWhole(folder + "a", &bytes, &Error)) << Error;
            EXPECT_FALSE(IsReadOnly(folder + "a"));
            EXPECT_FALSE(Save(folder + "a", folder + "a.old"));
            EXPECT_NE(Error, "");
            EXPECT_EQ(Rest.Guard, "");
            EXPECT_EQ(Content(folder + "a"), oldContent);
            EXPECT_EQ(NamesIn(folder), names);
        }
        const OwnedHandle held(HeldOpen(folder + "a", 0));
        std::string bytes;
        EXPECT_FALSE(ReadWhole(folder + "a", &bytes, &Error));
        EXPECT_NE(Error, "");
    }
    const std::string folder = WithOld();
    const OwnedHandle held(HeldOpen(folder + "a", FILE_SHARE_READ | FILE_SHARE_DELETE));
    EXPECT_TRUE(Save(folder + "a", folder + "a.old")) << Error;
    EXPECT_EQ(Content(folder + "a"), newContent);
}

// Each step fails in turn, alone or with all that follow it, on file systems of several kinds. The name holds one whole
// content that fits the answer, what stays is told, and the next save leaves nothing of it.
TEST_F(WindowsFiles, EveryFailureOfASaveLeavesOneWholeContent)
{
    const std::set<std::string> missing[] = {{}, {"StepOpenNew"}, {"StepReplace"}};
    for (int situation = 0; situation < 3 * 3 * 2 * 2 * 2; ++situation) {
        const int kind = situation % 3; // no file, a file, a file with a second name
        const bool later = situation / 3 % 2 == 1;
        const bool guarded = situation / 6 % 2 == 1;
        const bool broken = situation / 12 % 2 == 1;
        const std::set<std::string>& without = missing[situation / 24];
        for (int step = 1;; ++step) {
            SCOPED_TRACE("situation " + std::to_string(situation) + ", step " + std::to_string(step));
            const std::string folder = WithOld();
            const std::string path = folder + "a";
            if (kind == 0) {
                std::filesystem::remove(path);
            } else if (kind == 2) {
                std::filesystem::create_hard_link(path, folder + "second");
            }
            scripted::MissingSteps = without;
            scripted::BreakReplacement = broken;
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
            EXPECT_TRUE(content == (good ? newContent : before)) << content;
            std::vector<std::string> allowed = {"a", "second"};
            if (!Rest.Guard.empty()) {
                EXPECT_NE(Content(Rest.Guard), "(none)");
                allowed.push_back(Rest.Guard.substr(NameStart(Rest.Guard)));
            }
            if (!later && without.empty()) {
                EXPECT_THAT(NamesIn(folder), IsSubsetOf(allowed));
                EXPECT_FALSE(Rest.Torn);
            }
            const bool spare = !Rest.Guard.empty() && !Rest.Guard.starts_with(folder);
            if (spare) {
                std::filesystem::remove(Rest.Guard);
            }
            if (!reached) {
                break;
            }
            EXPECT_TRUE(Save(path, path + ".old")) << Error;
            EXPECT_EQ(Content(path), newContent);
        }
    }
}

TEST_F(WindowsFiles, WhatDeadProcessesLeftGoes)
{
    const std::string folder = WithOld();
    const std::string own = ".a." + std::to_string(GetCurrentProcessId());
    const std::vector<std::string> kept = {".a.x.tmp", ".b.999999996.tmp", ".a.999999996x.tmp", own + "x.tmp", "a"};
    for (const std::string& name : kept) {
        PutFile(folder + name, "");
    }
    PutFile(folder + ".a.999999996.tmp", "");
    ASSERT_TRUE(Save(folder + "a"));
    EXPECT_THAT(NamesIn(folder), testing::UnorderedElementsAreArray(kept));
}
