#include "memory_file.h"

#include <array>
#include <cstdlib>

#include <sys/mman.h>
#include <unistd.h>

std::string MemoryFile(int slot, const uint8_t* data, size_t size)
{
    static std::array<int, 4> descriptors{-1, -1, -1, -1};
    int& descriptor = descriptors[static_cast<size_t>(slot)];
    if (descriptor < 0) {
        descriptor = memfd_create("fuzz", MFD_CLOEXEC);
    }
    if (descriptor < 0 || ftruncate(descriptor, 0) != 0 ||
        pwrite(descriptor, data, size, 0) != static_cast<ssize_t>(size)) {
        std::abort();
    }
    return "/proc/self/fd/" + std::to_string(descriptor);
}
