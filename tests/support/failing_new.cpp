#include "support/failing_new.h"

#include <cstdlib>
#include <new>

void* operator new(std::size_t size)
{
    const auto* caller = static_cast<const char*>(__builtin_return_address(0));
    const bool counts = allocation::FailAt != 0 &&
                        (allocation::From == nullptr || (caller >= allocation::From && caller < allocation::To));
    const bool fails = counts && ++allocation::Seen == allocation::FailAt;
    void* memory = fails ? nullptr : std::malloc(size == 0 ? 1 : size);
    if (memory == nullptr) {
        throw std::bad_alloc();
    }
    return memory;
}

void* operator new(std::size_t size, const std::nothrow_t& /*quiet*/) noexcept
{
    return std::malloc(size == 0 ? 1 : size);
}

void operator delete(void* memory) noexcept
{
    std::free(memory);
}

void operator delete(void* memory, std::size_t /*size*/) noexcept
{
    std::free(memory);
}
