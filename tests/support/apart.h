#pragma once

#include <functional>
#include <iostream>

#include <sys/wait.h>
#include <unistd.h>

#include <gtest/gtest.h>

inline void Await(pid_t child)
{
    int status = 0;
    ASSERT_EQ(waitpid(child, &status, 0), child);
    EXPECT_EQ(status, 0);
}

/// Runs `act` in a process of its own, whose limits, mounts and rights end with it.
inline void Apart(const std::function<void()>& act)
{
    const pid_t child = fork();
    ASSERT_GE(child, 0);
    if (child == 0) {
        act();
        std::cout << std::flush;
        _exit(testing::Test::HasFailure() ? 1 : 0);
    }
    Await(child);
}
