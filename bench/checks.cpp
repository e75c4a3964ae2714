// What a check costs a user: the program's whole run.

#include <algorithm>
#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <string>
#include <vector>

#include <sys/wait.h>

#include "bench.h"
#include "generate.h"
#include "modFiles.h"
#include "modSession.h"
#include "support/model_text.h"

namespace {

/// The words of a call of the command line's program for a shell.
std::string CommandLine(const std::vector<std::string>& arguments)
{
    std::string line = "'" + ProgramFolder() + "/bwrt'";
    for (const std::string& argument : arguments) {
        line += " '" + argument + "'";
    }
    return line;
}

double Milliseconds(const std::vector<std::string>& arguments)
{
    const auto start = std::chrono::steady_clock::now();
    const int status = std::system((CommandLine(arguments) + " >/dev/null").c_str());
    const std::chrono::duration<double, std::milli> spent = std::chrono::steady_clock::now() - start;
    if (!WIFEXITED(status) || WEXITSTATUS(status) > 1) {
        std::fprintf(stderr, "bwrt failed\n");
        std::exit(1);
    }
    return spent.count();
}

/// The most memory that a call held. A small program must be its parent: the figure of a process counts from before it
/// becomes another program.
double PeakBytes(const std::vector<std::string>& arguments)
{
    FILE* const output = popen(("/usr/bin/time -f %M " + CommandLine(arguments) + " 2>&1 >/dev/null").c_str(), "r");
    double kilobytes = 0;
    char line[512];
    while (output != nullptr && std::fgets(line, sizeof line, output) != nullptr) {
        kilobytes = std::atof(line); // the last one, behind what the program says
    }
    if (output == nullptr || pclose(output) < 0 || kilobytes <= 0) {
        std::fprintf(stderr, "/usr/bin/time failed\n");
        std::exit(1);
    }
    return kilobytes * 1024;
}

double BestOf(int rounds, const std::vector<std::string>& arguments)
{
    double best = Milliseconds(arguments);
    for (int i = 1; i < rounds; ++i) {
        best = std::min(best, Milliseconds(arguments));
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
    const double one = PeakBytes({"check", small});
    const double many = PeakBytes(thousand);
    MeasuredRows.push_back({"memory of a thousand checks, against one", Text(many / 1e6, "MB"), Text(one / 1e6, "MB"),
                            many / one, 1.2, true});
}
