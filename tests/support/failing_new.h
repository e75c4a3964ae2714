#pragma once

#include <cstdint>

// The test's own operator new, which can be told to fail.
namespace allocation {

inline int FailAt = 0; ///< the allocation that fails, 1 for the next one; 0 for none
inline int Seen = 0;   ///< allocations since FailAt was set, while it is not 0

inline void FailNext(int number)
{
    Seen = 0;
    FailAt = number;
}

} // namespace allocation
