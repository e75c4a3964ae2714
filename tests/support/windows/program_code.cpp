#include <gtest/gtest.h>

#include "support/failing_new.h"

extern "C" const char __ImageBase;

// The libraries are in the program too, behind the layers below the windows; those lie among the toolkit's functions.
void allocation::CountProgramOnly()
{
    From = &__ImageBase;
    To = reinterpret_cast<const char*>(&testing::UnitTest::GetInstance);
}
