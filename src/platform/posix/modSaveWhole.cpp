#include <algorithm>
#include <cerrno>
#include <charconv>
#include <csignal>
#include <cstdlib>
#include <optional>
#include <vector>

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include "modFiles.h"
#include "posix/modFileErrors.h"
#include "posix/modFileSteps.h"
#include "posix/modOpenedFolder.h"

namespace {

constexpr mode_t permissionBits = 07777;

/// The part of a path up to and including its last separator.
std::string FolderOf(const std::string& path)
{
    const size_t separator = path.rfind('/');
    return separator == std::string::npos ? std::string() : path.substr(0, separator + 1);
}

std::string OrHere(const std::string& folder)
{
    return folder.empty() ? "." : folder;
}

/// Follows the links at the end of a path, also to a name that does not exist yet.
bool FollowLinks(std::string* path, std::string* error)
{
    constexpr int mostLinks = 40;
    for (int links = 0; links <= mostLinks; ++links) {
        struct stat status {};
        if (lstat(path->c_str(), &status) != 0) {
            return errno == ENOENT || Fail(errno, error);
        }
        if (!S_ISLNK(status.st_mode)) {
            return true;
        }
        std::string target(4096, '\0');
        const ssize_t length = readlink(path->c_str(), target.data(), target.size());
        if (length < 0) {
            return Fail(errno, error);
        }
        target.resize(static_cast<size_t>(length));
        *path = target.starts_with('/') ? target : FolderOf(*path) + target;
    }
    return Fail(ELOOP, error);
}

bool WriteAll(int fd, std::string_view bytes)
{
    while (!bytes.empty()) {
        const ssize_t count = StepWrite(fd, bytes.data(), bytes.size());
        if (count > 0) {
            bytes.remove_prefix(static_cast<size_t>(count));
        } else if (count == 0) {
            errno = EIO; // a plain file that takes nothing and names no reason
            return false;
        } else if (errno != EINTR) {
            return false;
        }
    }
    return true;
}

/// Flushes a file that is good so far, and closes it. False, with errno of the first failure, when it is not good.
bool Finish(int fd, bool good)
{
    int failure = good ? 0 : errno;
    if (good && StepSync(fd) != 0) {
        good = false;
        failure = errno;
    }
    if (StepClose(fd) != 0 && good) {
        good = false;
        failure = errno;
    }
    errno = failure;
    return good;
}

/// Brings the names of a folder to the disk. A new name stands already, so a failure here changes nothing.
void SyncFolder(const std::string& folder)
{
    const int fd = open(OrHere(folder).c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC);
    if (fd >= 0) {
        (void)fsync(fd);
        (void)close(fd);
    }
}

// Names beside a file: ".NAME.PID.tmp", with so much of NAME as a name may have.

constexpr std::string_view temporaryEnd = ".tmp";

std::string TemporaryStart(const std::string& target)
{
    constexpr size_t longestName = 255;
    constexpr size_t roomForNumber = 12;
    const std::string name = target.substr(FolderOf(target).size());
    return "." + name.substr(0, longestName - roomForNumber - 2 - temporaryEnd.size()) + ".";
}

std::string TemporaryName(const std::string& target)
{
    return FolderOf(target) + TemporaryStart(target) + std::to_string(getpid()) + std::string(temporaryEnd);
}

/// The process that a temporary name beside the target tells; nothing for another name.
std::optional<pid_t> ProcessOf(std::string_view name, const std::string& target)
{
    const std::string start = TemporaryStart(target);
    if (!name.starts_with(start) || !name.ends_with(temporaryEnd) ||
        name.size() <= start.size() + temporaryEnd.size()) {
        return std::nullopt;
    }
    const std::string_view digits = name.substr(start.size(), name.size() - start.size() - temporaryEnd.size());
    pid_t process = 0;
    const auto read = std::from_chars(digits.data(), digits.data() + digits.size(), process);
    return read.ec == std::errc() && read.ptr == digits.data() + digits.size() ? std::optional(process) : std::nullopt;
}

/// Removes what saves of this file have left whose processes are gone.
void RemoveLeftovers(const std::string& target)
{
    const std::string folder = FolderOf(target);
    const OpenedFolder listing = OpenFolder(OrHere(folder));
    if (listing == nullptr) {
        return;
    }
    while (const dirent* entry = readdir(listing.get())) {
        const std::optional<pid_t> process = ProcessOf(entry->d_name, target);
        if (process && *process > 0 && (*process == getpid() || (kill(*process, 0) != 0 && errno == ESRCH))) {
            (void)unlink((folder + entry->d_name).c_str());
        }
    }
}

/// A save under way. Its texts are made before its first step, so that no step need end for want of memory.
struct Saving {
    std::string Target;
    std::string Folder;    ///< of the target, with a separator at its end; empty for the present one
    std::string Temporary; ///< name of a new file beside the target
    std::string GuardName; ///< asked for by the caller; may be empty
    std::string SpareName; ///< template of a guard in the folder for temporary files
    std::vector<char> Buffer = std::vector<char>(size_t{1} << 18);
    bool Exists = false;
    struct stat Old {};
    std::string Guard; ///< a copy of the old content that stands now; empty for none
    bool Torn = false; ///< the target could not be given its old content back: the guard holds it
};

std::string SpareGuardName()
{
    const char* const place = std::getenv("TMPDIR");
    const std::string folder = place != nullptr && *place == '/' ? place : "/tmp";
    return folder + "/beastwright-guard-" + std::to_string(getpid()) + "-XXXXXX";
}

/// Removes a guard that is still a second name of the target: a save ended in its middle left it. True when it did.
bool DropSecondName(const std::string& target, const struct stat& old, const std::string& guard)
{
    struct stat there {};
    const bool isSecond = !guard.empty() && old.st_nlink > 1 && lstat(guard.c_str(), &there) == 0 &&
                          there.st_dev == old.st_dev && there.st_ino == old.st_ino;
    return isSecond && target.substr(FolderOf(target).size()) != guard.substr(FolderOf(guard).size()) &&
           StepDelete(guard) == 0;
}

bool BeginSaving(const std::string& path, const std::string& guard, Saving* saving, std::string* error)
{
    saving->Target = path;
    if (!FollowLinks(&saving->Target, error)) {
        return false;
    }
    saving->Exists = stat(saving->Target.c_str(), &saving->Old) == 0;
    if (saving->Exists && DropSecondName(saving->Target, saving->Old, guard)) {
        saving->Exists = stat(saving->Target.c_str(), &saving->Old) == 0;
    }
    if (!saving->Exists && errno != ENOENT) {
        return Fail(errno, error);
    }
    if (saving->Exists && !S_ISREG(saving->Old.st_mode)) {
        return FailKind(saving->Old.st_mode, error);
    }
    if (saving->Target.ends_with('/')) {
        return Fail(EISDIR, error);
    }
    saving->Folder = FolderOf(saving->Target);
    saving->Temporary = TemporaryName(saving->Target);
    saving->GuardName = guard;
    saving->SpareName = SpareGuardName();
    saving->Guard.reserve(std::max(guard.size(), saving->SpareName.size()));
    return true;
}

/// Removes the guard. False, with errno set, when it stays.
bool DropGuard(Saving* saving)
{
    if (!saving->Guard.empty() && StepDelete(saving->Guard) != 0 && errno != ENOENT) {
        return false;
    }
    saving->Guard.clear();
    return true;
}

/// Makes way for the guard: a file or a link of its name goes. False for anything else, and for the target itself.
bool MakeWay(const Saving& saving)
{
    struct stat there {};
    if (saving.GuardName.empty() || !saving.Exists) {
        return false;
    }
    if (lstat(saving.GuardName.c_str(), &there) != 0) {
        return errno == ENOENT;
    }
    const bool itself = there.st_dev == saving.Old.st_dev && there.st_ino == saving.Old.st_ino;
    return (S_ISREG(there.st_mode) || S_ISLNK(there.st_mode)) && !itself && StepDelete(saving.GuardName) == 0;
}

/// Copies a file into an opened one, from its start on, and closes that, flushed.
bool CopyInto(int to, const std::string& path, std::vector<char>* buffer)
{
    const int from = StepOpenRead(path);
    bool good = from >= 0;
    size_t size = 0;
    for (ssize_t count = 1; good && count != 0;) {
        count = StepRead(from, buffer->data(), buffer->size());
        if (count < 0 && errno == EINTR) {
            continue;
        }
        good = count >= 0 && WriteAll(to, {buffer->data(), static_cast<size_t>(count)});
        size += good ? static_cast<size_t>(count) : 0;
    }
    const int failure = errno;
    if (from >= 0) {
        (void)close(from);
    }
    errno = failure;
    return Finish(to, good && StepTruncate(to, size) == 0);
}

/// Makes the guard a complete copy of the target in a fresh file. False, with errno set and nothing left, when it
/// fails.
bool CopyToGuard(int fd, const std::string& name, Saving* saving)
{
    if (fd < 0) {
        return false;
    }
    saving->Guard = name;
    if (CopyInto(fd, saving->Target, &saving->Buffer)) {
        return true;
    }
    const int failure = errno;
    (void)DropGuard(saving);
    errno = failure;
    return false;
}

/// A guard under its name, as a copy.
bool CopyBeside(Saving* saving)
{
    return MakeWay(*saving) &&
           CopyToGuard(StepOpenNew(saving->GuardName, S_IRUSR | S_IWUSR), saving->GuardName, saving);
}

/// A guard under its name that may be a second name for the old file, which a replacement leaves as it is.
bool LinkBeside(Saving* saving)
{
    if (!MakeWay(*saving) || StepLink(saving->Target, saving->GuardName) != 0) {
        return false;
    }
    saving->Guard = saving->GuardName;
    return true;
}

/// A guard that a file written in place needs: where it cannot stand under its name, in the folder for temporary files.
bool CopyAnywhere(Saving* saving)
{
    if (CopyBeside(saving)) {
        SyncFolder(FolderOf(saving->Guard));
        return true;
    }
    return CopyToGuard(mkstemp(saving->SpareName.data()), saving->SpareName, saving);
}

/// A new file beside the target, perhaps without a name yet.
struct NewFile {
    int Descriptor = -1;
    bool HasName = false;
};

bool OpenBeside(const Saving& saving, NewFile* file)
{
    // Nobody else may look into the new file before it has the permissions of the old one.
    const mode_t mode = saving.Exists ? S_IRUSR | S_IWUSR : 0666;
    if (access("/proc/self/fd", X_OK) == 0) { // where such a file gets its name
        file->Descriptor = StepOpenUnnamed(OrHere(saving.Folder), mode);
    }
    if (file->Descriptor < 0) {
        file->HasName = true;
        file->Descriptor = StepOpenNew(saving.Temporary, mode);
    }
    return file->Descriptor >= 0;
}

/// Gives a new file all that the old one has beside its content. The mode comes last, since a change of the owner and
/// of the access list changes it.
bool TakeOver(const Saving& saving, int fd)
{
    struct stat made {};
    if (fstat(fd, &made) != 0) {
        return false;
    }
    const bool other = made.st_uid != saving.Old.st_uid || made.st_gid != saving.Old.st_gid;
    return (!other || StepSetOwner(fd, saving.Old.st_uid, saving.Old.st_gid) == 0) &&
           StepCopyAttributes(saving.Target, fd) == 0 && StepSetMode(fd, saving.Old.st_mode & permissionBits) == 0;
}

/// Closes a new file and takes it away; errno stays.
void Discard(const Saving& saving, const NewFile& file)
{
    const int failure = errno;
    StepClose(file.Descriptor);
    if (file.HasName) {
        StepDelete(saving.Temporary);
    }
    errno = failure;
}

/// Gives the complete new file the target's name and closes it. False, with errno set and the new file gone, when it
/// fails.
bool PutInPlace(const Saving& saving, NewFile file)
{
    bool named = false;
    errno = 0;
    bool good = StepSync(file.Descriptor) == 0;
    if (good && !file.HasName) {
        named = !saving.Exists && StepName(file.Descriptor, saving.Target) == 0;
        good = named || StepName(file.Descriptor, saving.Temporary) == 0;
        file.HasName = good && !named;
    }
    int failure = errno;
    if (StepClose(file.Descriptor) != 0 && good) {
        good = false;
        failure = errno;
    }
    if (good && !named && StepRename(saving.Temporary, saving.Target) != 0) {
        good = false;
        failure = errno;
    }
    if (!good && (named || file.HasName)) {
        StepDelete(named ? saving.Target : saving.Temporary);
    }
    errno = failure;
    return good;
}

/// Writes the parts of the content to a file.
bool WriteParts(int fd, const PartMaker& make)
{
    int failure = 0;
    make([fd, &failure](std::string_view part) {
        if (failure == 0 && !WriteAll(fd, part)) {
            failure = errno;
        }
    });
    errno = failure;
    return failure == 0;
}

/// Writes a new file and puts it in place of the target. Nothing when the folder takes no new file, or when the new
/// file cannot be what the old one was: then the old one must be written in place.
std::optional<bool> Replace(const PartMaker& make, Saving* saving, std::string* error)
{
    if (saving->Exists && saving->Old.st_nlink > 1) {
        return std::nullopt; // its other names must keep the content
    }
    RemoveLeftovers(saving->Target);
    NewFile file;
    if (!OpenBeside(*saving, &file)) {
        return saving->Exists ? std::nullopt : std::optional(Fail(errno, error));
    }
    if (saving->Exists && !TakeOver(*saving, file.Descriptor)) {
        Discard(*saving, file);
        return std::nullopt;
    }
    if (!LinkBeside(saving)) {
        (void)CopyBeside(saving); // where no guard can stand, the old file does, to the moment of the replacement
    }
    try {
        if (!WriteParts(file.Descriptor, make)) {
            Discard(*saving, file);
            return Fail(errno, error);
        }
    } catch (...) {
        Discard(*saving, file);
        throw;
    }
    if (!PutInPlace(*saving, file)) {
        const bool refused = saving->Exists && (errno == EPERM || errno == EACCES);
        return refused && DropGuard(saving) ? std::nullopt : std::optional(Fail(errno, error));
    }
    SyncFolder(saving->Folder);
    return true;
}

/// Makes `bytes` the whole content of the target, which exists.
bool Overwrite(const Saving& saving, std::string_view bytes)
{
    const int fd = StepOpenWrite(saving.Target);
    return fd >= 0 && Finish(fd, WriteAll(fd, bytes) && StepTruncate(fd, bytes.size()) == 0);
}

bool WriteInPlace(const PartMaker& make, Saving* saving, std::string* error)
{
    std::string bytes;
    make([&bytes](std::string_view part) { bytes.append(part); });
    if (!CopyAnywhere(saving)) {
        return Fail(errno, error);
    }
    if (Overwrite(*saving, bytes)) {
        return true;
    }
    const int failure = errno;
    const int fd = StepOpenWrite(saving->Target);
    saving->Torn = fd < 0 || !CopyInto(fd, saving->Guard, &saving->Buffer);
    return Fail(failure, error);
}

} // namespace

bool SaveWhole(const std::string& path, const std::string& guard, const PartMaker& make, SaveRest* rest,
               std::string* error)
{
    if (!IsPath(path)) {
        return FailPath(path, error);
    }
    Saving saving;
    if (!BeginSaving(path, guard, &saving, error)) {
        return false;
    }
    bool good = false;
    try {
        const std::optional<bool> replaced = Replace(make, &saving, error);
        good = replaced ? *replaced : WriteInPlace(make, &saving, error);
    } catch (...) {
        (void)DropGuard(&saving);
        throw;
    }
    rest->Torn = saving.Torn;
    if (saving.Torn) {
        rest->Guard = saving.Guard;
    } else if (!DropGuard(&saving)) {
        Fail(errno, &rest->Why);
        rest->Guard = saving.Guard;
    }
    return good;
}
