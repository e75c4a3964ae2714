#pragma once

// The test's own operator new, which can be told to fail.
namespace allocation {

inline int FailAt = 0; ///< the allocation that fails, 1 for the next one; 0 for none
inline int Seen = 0;   ///< allocations since FailAt was set, while it is not 0

/// When set, only the program's own code counts: what lies between the two places.
inline const char* From = nullptr;
inline const char* To = nullptr;
void CountProgramOnly(); ///< sets them

inline void FailNext(int number)
{
    Seen = 0;
    FailAt = number;
}

} // namespace allocation
