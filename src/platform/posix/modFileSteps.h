#pragma once

#include <cstddef>
#include <string>

#include <sys/types.h>

// The single steps of reading and writing files, one system call each; reading and saving are built on these. The
// implementation for tests lets the Nth step fail as a full or broken disk would. Results are those of the system call,
// with errno set on a failure.

int StepOpenRead(const std::string& path); ///< opens a file for reading, without waiting; gives a descriptor or -1
ssize_t StepRead(int fd, char* data, size_t size);
int StepOpenNew(const std::string& path, mode_t mode);       ///< creates a file that must not exist
int StepOpenUnnamed(const std::string& folder, mode_t mode); ///< creates a file without a name; not all systems can
int StepOpenWrite(const std::string& path);                  ///< opens a file that exists, with its content
ssize_t StepWrite(int fd, const char* data, size_t size);
int StepTruncate(int fd, size_t size);
int StepSync(int fd);
int StepClose(int fd);
int StepSetMode(int fd, mode_t mode);
int StepSetOwner(int fd, uid_t owner, gid_t group);
int StepCopyAttributes(const std::string& from, int fd); ///< extended attributes and access lists, those and no others
int StepName(int fd, const std::string& to);             ///< names a file without a name; `to` must not exist
int StepRename(const std::string& from, const std::string& to);
int StepLink(const std::string& from, const std::string& to); ///< a second name for a file; `to` must not exist
int StepDelete(const std::string& path);
