#include "modSignals.h"

// The system ends a program by messages to its windows.

int CatchEndSignals()
{
    return -1;
}

int TakeEndSignal()
{
    return 0;
}
