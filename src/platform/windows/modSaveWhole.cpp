#include <algorithm>
#include <charconv>
#include <optional>
#include <vector>

#include "modFiles.h"
#include "windows/modFileErrors.h"
#include "windows/modFileSteps.h"

namespace {

bool WriteAll(HANDLE file, std::string_view bytes)
{
    while (!bytes.empty()) {
        size_t count = 0;
        if (!StepWrite(file, bytes.data(), bytes.size(), &count)) {
            return false;
        }
        if (count == 0) {
            SetLastError(ERROR_WRITE_FAULT); // a plain file that takes nothing and names no reason
            return false;
        }
        bytes.remove_prefix(count);
    }
    return true;
}

/// Flushes a file that is good so far, and closes it. False, with the last error that of the first failure, when it is
/// not good.
bool Finish(HANDLE file, bool good)
{
    DWORD failure = good ? 0 : GetLastError();
    if (good && !StepSync(file)) {
        good = false;
        failure = GetLastError();
    }
    if (!StepClose(file) && good) {
        good = false;
        failure = GetLastError();
    }
    SetLastError(failure);
    return good;
}

/// Deletes a file and leaves the last error as it is.
void Discard(const std::wstring& path)
{
    const DWORD failure = GetLastError();
    (void)StepDelete(path);
    SetLastError(failure);
}

// Names beside a file: ".NAME.PID.tmp", with so much of NAME as a name may have.

constexpr std::wstring_view temporaryEnd = L".tmp";
constexpr size_t longestName = 255;

std::wstring TemporaryStart(const std::wstring& target)
{
    constexpr size_t roomForNumber = 12;
    const std::wstring name = target.substr(WideNameStart(target));
    return L"." + name.substr(0, longestName - roomForNumber - 2 - temporaryEnd.size()) + L".";
}

std::wstring NameBeside(const std::wstring& target, std::wstring_view end)
{
    return target.substr(0, WideNameStart(target)) + TemporaryStart(target) + std::to_wstring(GetCurrentProcessId()) +
           std::wstring(end);
}

/// The process that a temporary name beside the target tells; 0 for another name.
DWORD ProcessOf(std::wstring_view name, const std::wstring& start)
{
    if (!name.starts_with(start) || !name.ends_with(temporaryEnd) ||
        name.size() <= start.size() + temporaryEnd.size()) {
        return 0;
    }
    const std::string digits = Utf8Text(name.substr(start.size(), name.size() - start.size() - temporaryEnd.size()));
    DWORD process = 0;
    const auto read = std::from_chars(digits.data(), digits.data() + digits.size(), process);
    return read.ec == std::errc() && read.ptr == digits.data() + digits.size() ? process : 0;
}

bool IsGone(DWORD process)
{
    const OwnedHandle opened(OpenProcess(PROCESS_QUERY_LIMITED_INFORMATION, FALSE, process));
    DWORD code = STILL_ACTIVE;
    return opened ? GetExitCodeProcess(opened.Value, &code) != 0 && code != STILL_ACTIVE
                  : GetLastError() == ERROR_INVALID_PARAMETER;
}

/// Removes what saves of this file have left whose processes are gone.
void RemoveLeftovers(const std::wstring& target)
{
    const std::wstring folder = target.substr(0, WideNameStart(target));
    const std::wstring start = TemporaryStart(target);
    WIN32_FIND_DATAW entry{};
    const FoundFiles listing(folder + L"*" + std::wstring(temporaryEnd), &entry);
    for (bool more = listing.Any(); more; more = listing.Next(&entry)) {
        const DWORD process = ProcessOf(entry.cFileName, start);
        if (process != 0 && (process == GetCurrentProcessId() || IsGone(process))) {
            (void)DeleteFileW((folder + entry.cFileName).c_str());
        }
    }
}

/// A copy of the old content, or the old file itself under another name.
struct Guard {
    std::wstring Path; ///< empty for none
    std::string Told;  ///< the same as the user knows it
};

/// A save under way. Its texts are made before its first step, so that no step need end for want of memory.
struct Saving {
    std::wstring Target;
    std::wstring Temporary; ///< name of a new file beside the target
    Guard Wanted;           ///< asked for by the caller
    Guard Spare;            ///< where the guard cannot have that name
    std::vector<char> Buffer = std::vector<char>(size_t{1} << 18);
    bool Exists = false;
    BY_HANDLE_FILE_INFORMATION Old{};
    const Guard* Stands = nullptr; ///< the guard that stands now; null for none
    bool Torn = false;             ///< the target could not be given its old content back: the guard holds it
};

/// Makes the target that to which a link leads. Not all links show by their attributes: what is opened tells its path.
bool FollowLink(std::wstring* target)
{
    const DWORD attributes = GetFileAttributesW(target->c_str());
    if (attributes == INVALID_FILE_ATTRIBUTES) {
        return true;
    }
    const bool isLink = (attributes & FILE_ATTRIBUTE_REPARSE_POINT) != 0;
    const OwnedHandle file(CreateFileW(target->c_str(), FILE_READ_ATTRIBUTES,
                                       FILE_SHARE_READ | FILE_SHARE_WRITE | FILE_SHARE_DELETE, nullptr, OPEN_EXISTING,
                                       FILE_FLAG_BACKUP_SEMANTICS, nullptr));
    const DWORD size = file ? GetFinalPathNameByHandleW(file.Value, nullptr, 0, FILE_NAME_NORMALIZED) : 0;
    std::wstring path(size, L'\0');
    const DWORD length = size > 0 ? GetFinalPathNameByHandleW(file.Value, path.data(), size, FILE_NAME_NORMALIZED) : 0;
    if (length == 0 || length >= size) {
        return !isLink;
    }
    path.resize(length);
    *target = path;
    return true;
}

bool BeginSaving(const std::string& path, const std::string& guard, Saving* saving, std::string* error)
{
    saving->Target = SystemPath(path);
    if (saving->Target.empty()) {
        return FailPath(path, error);
    }
    if (IsDevice(saving->Target)) {
        return FailKind(false, error);
    }
    if (!FollowLink(&saving->Target)) {
        return Fail(GetLastError(), error);
    }
    saving->Exists = Status(saving->Target, &saving->Old);
    if (!saving->Exists && GetLastError() != ERROR_FILE_NOT_FOUND && !path.ends_with('/') && !path.ends_with('\\')) {
        return Fail(GetLastError(), error);
    }
    if (saving->Exists ? IsFolder(saving->Old) : path.ends_with('/') || path.ends_with('\\')) {
        return FailKind(true, error);
    }
    if (saving->Exists && (saving->Old.dwFileAttributes & FILE_ATTRIBUTE_READONLY) != 0) {
        return Fail(ERROR_ACCESS_DENIED, error);
    }
    // Behind a colon stands a second content of a file.
    if (saving->Target.find(L':', WideNameStart(saving->Target)) != std::wstring::npos) {
        return Fail(ERROR_INVALID_NAME, error);
    }
    saving->Temporary = NameBeside(saving->Target, temporaryEnd);
    const std::wstring spare = NameBeside(saving->Target, L".old");
    saving->Spare = {spare, Utf8Text(spare)};
    saving->Wanted = {guard.empty() ? std::wstring() : SystemPath(guard), guard};
    return true;
}

/// Makes way for the guard under its name: a file or a link goes. False for anything else, and for the target itself.
bool MakeWay(const Saving& saving)
{
    const std::wstring& path = saving.Wanted.Path;
    if (path.empty() || IsDevice(path) || path.size() - WideNameStart(path) > longestName) {
        return false;
    }
    const DWORD attributes = GetFileAttributesW(path.c_str());
    if (attributes == INVALID_FILE_ATTRIBUTES) {
        return GetLastError() == ERROR_FILE_NOT_FOUND;
    }
    BY_HANDLE_FILE_INFORMATION there{};
    const bool link = (attributes & FILE_ATTRIBUTE_REPARSE_POINT) != 0;
    const bool itself = !link && Status(path, &there) && IsSame(there, saving.Old) && saving.Old.nNumberOfLinks == 1;
    return (attributes & FILE_ATTRIBUTE_DIRECTORY) == 0 && !itself && StepDelete(path);
}

/// Removes the guard. False, with the last error set, when it stays.
bool DropGuard(Saving* saving)
{
    if (saving->Stands != nullptr && !StepDelete(saving->Stands->Path) && !IsMissing(GetLastError())) {
        return false;
    }
    saving->Stands = nullptr;
    return true;
}

/// Copies a file into an opened one, from its start on, and closes that, flushed.
bool CopyInto(HANDLE to, const std::wstring& path, std::vector<char>* buffer)
{
    HANDLE const from = StepOpenRead(path);
    bool good = from != INVALID_HANDLE_VALUE;
    for (size_t count = 1; good && count != 0;) {
        good = StepRead(from, buffer->data(), buffer->size(), &count) && WriteAll(to, {buffer->data(), count});
    }
    good = good && StepCut(to);
    const DWORD failure = GetLastError();
    if (from != INVALID_HANDLE_VALUE) {
        (void)CloseHandle(from);
    }
    SetLastError(failure);
    return Finish(to, good);
}

/// Makes a guard of the save a complete copy of the target. False, with the last error set and nothing left, when it
/// fails.
bool CopyToGuard(const Guard& guard, Saving* saving)
{
    HANDLE const file = StepOpenNew(guard.Path, FILE_ATTRIBUTE_NORMAL);
    if (file == INVALID_HANDLE_VALUE) {
        return false;
    }
    if (!CopyInto(file, saving->Target, &saving->Buffer)) {
        Discard(guard.Path);
        return false;
    }
    saving->Stands = &guard;
    return true;
}

/// The guard that a file written in place needs: where it cannot stand under its name, in the folder for temporary
/// files.
bool CopyAnywhere(Saving* saving)
{
    if (MakeWay(*saving) && CopyToGuard(saving->Wanted, saving)) {
        return true;
    }
    const std::wstring folder = WideText(TemporaryFolder());
    constexpr int mostTries = 100;
    for (int number = 0; number < mostTries; ++number) {
        const std::wstring path =
            folder + L"beastwright-guard-" + std::to_wstring(GetCurrentProcessId()) + L"-" + std::to_wstring(number);
        saving->Spare = {path, Utf8Text(path)};
        if (CopyToGuard(saving->Spare, saving)) {
            return true;
        }
        if (GetLastError() != ERROR_FILE_EXISTS) {
            break;
        }
    }
    return false;
}

/// Gives the complete new file the target's name. False, with the last error set and the new file gone, when it fails.
bool PutInPlace(Saving* saving)
{
    if (!saving->Exists) {
        if (!StepRename(saving->Temporary, saving->Target)) {
            Discard(saving->Temporary);
            return false;
        }
        return true;
    }
    const Guard& backup = MakeWay(*saving) ? saving->Wanted : saving->Spare;
    if (StepReplace(saving->Target, saving->Temporary, backup.Path)) {
        saving->Stands = &backup;
        return true;
    }
    const DWORD failure = GetLastError();
    BY_HANDLE_FILE_INFORMATION there{};
    if (!Status(saving->Target, &there) && GetLastError() == ERROR_FILE_NOT_FOUND && Status(backup.Path, &there)) {
        // It ended in its middle.
        saving->Torn = !StepRename(backup.Path, saving->Target);
        saving->Stands = saving->Torn ? &backup : nullptr;
    }
    SetLastError(failure);
    Discard(saving->Temporary);
    return false;
}

/// Writes the parts of the content to a file.
bool WriteParts(HANDLE file, const PartMaker& make)
{
    DWORD failure = 0;
    make([file, &failure](std::string_view part) {
        if (failure == 0 && !WriteAll(file, part)) {
            failure = GetLastError();
        }
    });
    SetLastError(failure);
    return failure == 0;
}

/// Writes a new file and puts it in place of the target. Nothing when the folder takes no new file, or when the old one
/// can be written but not replaced: then it must be written in place.
std::optional<bool> Replace(const PartMaker& make, Saving* saving, std::string* error)
{
    if (saving->Exists && saving->Old.nNumberOfLinks > 1) {
        return std::nullopt; // its other names must keep the content
    }
    RemoveLeftovers(saving->Target);
    HANDLE const file = StepOpenNew(saving->Temporary, FILE_ATTRIBUTE_NORMAL);
    if (file == INVALID_HANDLE_VALUE) {
        return saving->Exists ? std::nullopt : std::optional(Fail(GetLastError(), error));
    }
    bool open = true;
    try {
        const bool good = WriteParts(file, make);
        open = false;
        if (!Finish(file, good)) {
            Discard(saving->Temporary);
            return Fail(GetLastError(), error);
        }
        if (PutInPlace(saving)) {
            return true;
        }
    } catch (...) {
        if (open) {
            (void)StepClose(file);
        }
        Discard(saving->Temporary);
        throw;
    }
    const DWORD failure = GetLastError();
    const bool refused = failure == ERROR_ACCESS_DENIED || failure == ERROR_NOT_SUPPORTED ||
                         failure == ERROR_INVALID_FUNCTION || failure == ERROR_CALL_NOT_IMPLEMENTED;
    return saving->Exists && refused && !saving->Torn ? std::nullopt : std::optional(Fail(failure, error));
}

bool WriteInPlace(const PartMaker& make, Saving* saving, std::string* error)
{
    std::string bytes;
    make([&bytes](std::string_view part) { bytes.append(part); });
    if (!CopyAnywhere(saving)) {
        return Fail(GetLastError(), error);
    }
    HANDLE const file = StepOpenWrite(saving->Target);
    if (file == INVALID_HANDLE_VALUE) {
        return Fail(GetLastError(), error);
    }
    if (Finish(file, WriteAll(file, bytes) && StepCut(file))) {
        return true;
    }
    const DWORD failure = GetLastError();
    HANDLE const again = StepOpenWrite(saving->Target);
    saving->Torn = again == INVALID_HANDLE_VALUE || !CopyInto(again, saving->Stands->Path, &saving->Buffer);
    return Fail(failure, error);
}

} // namespace

bool SaveWhole(const std::string& path, const std::string& guard, const PartMaker& make, SaveRest* rest,
               std::string* error)
{
    Saving saving;
    if (!BeginSaving(path, guard, &saving, error)) {
        return false;
    }
    bool good = false;
    try {
        const std::optional<bool> replaced = Replace(make, &saving, error);
        good = replaced ? *replaced : WriteInPlace(make, &saving, error);
    } catch (...) {
        if (!saving.Torn) {
            (void)DropGuard(&saving);
        }
        throw;
    }
    rest->Torn = saving.Torn;
    if (saving.Torn || !DropGuard(&saving)) {
        if (!saving.Torn) {
            Fail(GetLastError(), &rest->Why);
        }
        rest->Guard = saving.Stands->Told;
    }
    return good;
}
