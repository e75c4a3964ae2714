#include "modSignals.h"

#include <array>
#include <csignal>

#include <fcntl.h>
#include <unistd.h>

namespace {

std::array<int, 2> ends = {-1, -1};

/// Nothing but a write to a pipe is safe in here.
extern "C" void PassOn(int number)
{
    const auto byte = static_cast<unsigned char>(number);
    (void)!write(ends[1], &byte, 1);
}

} // namespace

int CatchEndSignals()
{
    if (pipe2(ends.data(), O_CLOEXEC | O_NONBLOCK) != 0) {
        return -1;
    }
    struct sigaction action {};
    action.sa_handler = PassOn;
    action.sa_flags = SA_RESTART;
    for (const int number : {SIGTERM, SIGHUP, SIGINT}) {
        // What the program was started to ignore, as by nohup, stays ignored.
        struct sigaction before {};
        if (sigaction(number, nullptr, &before) == 0 && before.sa_handler != SIG_IGN) {
            sigaction(number, &action, nullptr);
        }
    }
    return ends[0];
}

int TakeEndSignal()
{
    unsigned char byte = 0;
    return read(ends[0], &byte, 1) == 1 ? byte : 0;
}
