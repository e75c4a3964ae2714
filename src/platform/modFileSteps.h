#pragma once

#include <cstddef>
#include <string>
#include <sys/types.h>

// The single steps of writing files, one system call each. modFiles is built on these. The real form calls the system;
// the form for tests lets the Nth step fail as a full or broken disk would. Results are those of the system call, with
// errno set on a failure.

int StepOpenNew(const std::string& path, mode_t mode); ///< creates a file that must not exist; gives a descriptor or -1
ssize_t StepWrite(int fd, const char* data, size_t size);
int StepSync(int fd);
int StepClose(int fd);
int StepSetMode(int fd, mode_t mode);
int StepRename(const std::string& from, const std::string& to);
int StepDelete(const std::string& path);
