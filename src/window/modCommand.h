#pragma once

#include <exception>

/// How many long operations are under way, one inside the other.
[[nodiscard]] int BusyDepth();

/// Ends a command that an exception has stopped: gives the window back to the user as it was at `busyDepth`, says in a stop
/// box what went wrong, and brings the lists and the view in line with the scene. Throws nothing.
void EndFailedCommand(const char* name, const std::exception& failure, int busyDepth) noexcept;

/// Runs a command of the window; whatever the toolkit calls goes through here, since an exception must not run through it.
/// `name` stands in the box that tells of a failure.
template <typename Command>
void Perform(const char* name, Command&& command)
{
    const int depth = BusyDepth();
    try {
        command();
    } catch (const std::exception& failure) {
        EndFailedCommand(name, failure, depth);
    }
}
