// What a check costs a user: the program's whole run.

#include <algorithm>
#include <chrono>
#include <cstdio>
#include <string>
#include <vector>

#include <fcntl.h>
#include <spawn.h>
#include <sys/resource.h>
#include <sys/wait.h>
#include <unistd.h>

#include "bench.h"
#include "generate.h"
#include "modFiles.h"
#include "modSession.h"
#include "support/model_text.h"

namespace {

struct Run {
    double Milliseconds = 0;
    double PeakBytes = 0;
};

/// Runs the command line's program with its output thrown away.
Run RunCommand(const std::vector<std::string>& arguments)
{
    std::vector<std::string> words{ProgramFolder() + "/bwrt"};
    words.insert(words.end(), arguments.begin(), arguments.end());
    std::vector<char*> pointers;
    for (std::string& word : words) {
        pointers.push_back(word.data());
    }
    pointers.push_back(nullptr);
    posix_spawn_file_actions_t actions;
    posix_spawn_file_actions_init(&actions);
    posix_spawn_file_actions_addopen(&actions, STDOUT_FILENO, "/dev/null", O_WRONLY, 0);
    pid_t child = 0;
    int status = 0;
    rusage usage{};
    const auto start = std::chrono::steady_clock::now();
    if (posix_spawn(&child, words.front().c_str(), &actions, nullptr, pointers.data(), environ) != 0 ||
        wait4(child, &status, 0, &usage) != child || !WIFEXITED(status) || WEXITSTATUS(status) > 1) {
        std::fprintf(stderr, "%s failed\n", words.front().c_str());
        std::exit(1);
    }
    posix_spawn_file_actions_destroy(&actions);
    const std::chrono::duration<double, std::milli> spent = std::chrono::steady_clock::now() - start;
    return {spent.count(), static_cast<double>(usage.ru_maxrss) * 1024};
}

double BestOf(int rounds, const std::vector<std::string>& arguments)
{
    double best = RunCommand(arguments).Milliseconds;
    for (int i = 1; i < rounds; ++i) {
        best = std::min(best, RunCommand(arguments).Milliseconds);
    }
    return best;
}

std::string Text(double value, const char* unit)
{
    char text[32];
    std::snprintf(text, sizeof text, "%.1f %s", value, unit);
    return text;
}

} // namespace

void MeasureChecks()
{
    constexpr int rounds = 9;
    const std::string sample = SOURCE_FOLDER "/samples/vorrel/vorrel.mvm";
    constexpr double wanted = 50;
    const double ofSample = BestOf(rounds, {"check", sample});
    MeasuredRows.push_back(
        {"check of the sample, against 50 ms", Text(ofSample, "ms"), Text(wanted, "ms"), ofSample / wanted, 1, true});

    FillScene(20, 90, 8, true);
    const std::string largest = TemporaryFile("check.mvm", ModelText());
    ResetSession();
    const double check = BestOf(rounds, {"check", largest});
    const double load = BestOf(rounds, {"report", "--only", "mesh-names", largest});
    MeasuredRows.push_back(
        {"check of the largest model, against its load", Text(check, "ms"), Text(load, "ms"), check / load, 3, true});

    const std::string small = SOURCE_FOLDER "/samples/tutorial/vorrel-skin.mvm";
    std::vector<std::string> thousand(1001, small);
    thousand.front() = "check";
    const double one = RunCommand({"check", small}).PeakBytes;
    const double many = RunCommand(thousand).PeakBytes;
    MeasuredRows.push_back({"memory of a thousand checks, against one", Text(many / 1e6, "MB"), Text(one / 1e6, "MB"),
                            many / one, 1.1, true});
}
