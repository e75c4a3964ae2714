#pragma once

#include <cstddef>
#include <string>
#include <sys/types.h>

// The single steps of reading and writing files, one system call each. modFiles is built on these. The real form calls the system;
// the form for tests lets the Nth step fail as a full or broken disk would. Results are those of the system call, with
// errno set on a failure.

int StepOpenRead(const std::string& path); ///< opens a file for reading, without waiting; gives a descriptor or -1
ssize_t StepRead(int fd, char* data, size_t size);
int StepOpenNew(const std::string& path, mode_t mode); ///< creates a file that must not exist; gives a descriptor or -1
ssize_t StepWrite(int fd, const char* data, size_t size);
int StepSync(int fd);
int StepClose(int fd);
int StepSetMode(int fd, mode_t mode);
int StepRename(const std::string& from, const std::string& to);
int StepLink(const std::string& from, const std::string& to); ///< a second name for a file; `to` must not exist
int StepDelete(const std::string& path);
