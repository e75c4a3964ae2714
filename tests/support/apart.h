#pragma once

#include <functional>
#include <iostream>

#include <sys/wait.h>
#include <unistd.h>

#include <gtest/gtest.h>

/// Runs `act` in a process of its own, whose limits, mounts and rights end with it. Gives the process's number.
inline pid_t Apart(const std::function<void()>& act)
{
    const pid_t child = fork();
    if (child == 0) {
        act();
        std::cout << std::flush;
        _exit(testing::Test::HasFailure() ? 1 : 0);
    }
    int status = 0;
    EXPECT_EQ(waitpid(child, &status, 0), child);
    EXPECT_EQ(status, 0);
    return child;
}
