#include <gtest/gtest.h>

#include "support/failing_new.h"

extern "C" const char __ImageBase;

// The libraries are in the program too, behind all that is ours.
void allocation::CountProgramOnly()
{
    From = &__ImageBase;
    To = reinterpret_cast<const char*>(&testing::UnitTest::GetInstance);
}
