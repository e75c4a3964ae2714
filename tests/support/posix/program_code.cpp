#include <dlfcn.h>

#include "support/failing_new.h"

extern char etext; // the linker's name for the end of the program's code

void allocation::CountProgramOnly()
{
    Dl_info program{};
    (void)dladdr(reinterpret_cast<void*>(&CountProgramOnly), &program);
    From = static_cast<const char*>(program.dli_fbase);
    To = &etext;
}
