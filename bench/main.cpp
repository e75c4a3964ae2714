// Runs all cases in this process, with the real main window, and prints the table.

#include <algorithm>
#include <cstdio>
#include <filesystem>
#include <map>
#include <string_view>

#include <benchmark/benchmark.h>

#include <QApplication>

#include "bench.h"
#include "generate.h"
#include "main/frmMain.h"
#include "modSetup.h"

namespace {

/// The best of a benchmark's repetitions.
struct Result {
    double Milliseconds = 0;
    double BytesPerSecond = 0;
};

/// Says what runs and keeps the results; other processes of the machine can only slow a repetition down, so the best
/// one counts.
class TableReporter : public benchmark::BenchmarkReporter {
public:
    std::map<std::string, Result> Results;
    int Failed = 0; ///< runs that ended with an error; they have no row in the table

    bool ReportContext(const Context&) override { return true; }

    void ReportRuns(const std::vector<Run>& runs) override
    {
        for (const Run& run : runs) {
            if (run.run_type != Run::RT_Iteration) {
                continue;
            }
            if (run.error_occurred) {
                std::printf("%s: %s\n", run.run_name.function_name.c_str(), run.error_message.c_str());
                ++Failed;
                continue;
            }
            const double milliseconds = run.real_accumulated_time * 1000 / static_cast<double>(run.iterations);
            std::printf("%-50s %12.3f ms\n", run.run_name.function_name.c_str(), milliseconds);
            Keep(run, milliseconds);
        }
        std::fflush(stdout);
    }

private:
    void Keep(const Run& run, double milliseconds)
    {
        const auto [place, isNew] = Results.try_emplace(run.run_name.function_name);
        if (isNew || milliseconds < place->second.Milliseconds) {
            const auto rate = run.counters.find("bytes_per_second");
            const bool seconds = rate != run.counters.end() && run.cpu_accumulated_time > 0;
            // The counter is by processor time; the wait for disk and drawing counts too.
            const double bytes = seconds ? rate->second.value * run.cpu_accumulated_time : 0;
            place->second = {milliseconds, bytes / run.real_accumulated_time};
        }
    }
};

std::string Figure(double value, const char* unit)
{
    char text[48];
    std::snprintf(text, sizeof text, value < 10 ? "%.2f %s" : "%.0f %s", value, unit);
    return text;
}

/// Prints a row and gives whether it holds.
bool PrintRow(const MeasuredRow& row, double milliseconds, double mostMilliseconds)
{
    std::string target = (row.AtMost ? "<= " : ">= ") + Figure(row.Target, "");
    bool holds = row.AtMost ? row.Ratio <= row.Target : row.Ratio >= row.Target;
    if (mostMilliseconds > 0) {
        target += "and < " + Figure(mostMilliseconds, "ms");
        holds = holds && milliseconds < mostMilliseconds;
    }
    std::printf("%-58s %14s %14s %9.2f  %-24s %s\n", row.Case.c_str(), row.Ours.c_str(), row.Reference.c_str(),
                row.Ratio, target.c_str(), holds ? "holds" : "MISSED");
    return holds;
}

std::string FigureOf(const Result& result, bool rates)
{
    return rates ? Figure(result.BytesPerSecond / 1e6, "MB/s") : Figure(result.Milliseconds, "ms");
}

/// Gives the number of rows that do not hold. Rows whose benchmarks were filtered out are left out.
int PrintTable(const std::map<std::string, Result>& results)
{
    std::printf("\n%-58s %14s %14s %9s  %-24s\n", "case", "ours", "reference", "ratio", "target");
    int missed = 0;
    for (const BenchRow& row : BenchRows) {
        const auto ours = results.find(row.Ours);
        const auto reference = results.find(row.Reference);
        if (ours == results.end() || reference == results.end()) {
            continue;
        }
        const double advantage = row.Rates ? ours->second.BytesPerSecond / reference->second.BytesPerSecond
                                           : reference->second.Milliseconds / ours->second.Milliseconds;
        const MeasuredRow measured{row.Case,
                                   FigureOf(ours->second, row.Rates),
                                   FigureOf(reference->second, row.Rates),
                                   row.AtMost ? 1 / advantage : advantage,
                                   row.Target,
                                   row.AtMost};
        missed += PrintRow(measured, ours->second.Milliseconds, row.MostMilliseconds) ? 0 : 1;
    }
    for (const MeasuredRow& row : MeasuredRows) {
        missed += PrintRow(row, 0, 0) ? 0 : 1;
    }
    std::printf("\n%d missed\n", missed);
    return missed;
}

int RunAll(int argc, char** argv)
{
    std::vector<char*> arguments(argv, argv + argc);
    std::string repetitions = "--benchmark_repetitions=3";
    arguments.insert(arguments.begin() + 1, repetitions.data());
    auto count = static_cast<int>(arguments.size());
    benchmark::Initialize(&count, arguments.data());
    if (benchmark::ReportUnrecognizedArguments(count, arguments.data())) {
        return 2;
    }

    int ownArguments = 1;
    const QApplication application(ownArguments, argv);
    PrepareApplication();
    QApplication::setQuitOnLastWindowClosed(false);
    const bool everything = benchmark::GetBenchmarkFilter().empty();
    if (everything) {
        const std::string self = std::filesystem::canonical("/proc/self/exe").string();
        MeasureMemory(self);
        MeasureStart(self);
        MeasureChecks();
    }
    if (everything || benchmark::GetBenchmarkFilter() == segmentsFilter) {
        MeasureSegments();
    }

    frmMain window;
    window.Start("");
    RegisterModelCases();
    RegisterWeightsCases();
    RegisterFrameCases();
    RegisterExchangeCases();
    TableReporter reporter;
    benchmark::RunSpecifiedBenchmarks(&reporter);
    RemoveFiles();
    const int missed = PrintTable(reporter.Results);
    std::printf("%d failed\n", reporter.Failed);
    return missed == 0 && reporter.Failed == 0 ? 0 : 1;
}

} // namespace

int main(int argc, char** argv)
{
    if (argc > 2) {
        const std::string_view mode = argv[1];
        if (mode == memoryMode) {
            return MemoryChild(argv[2]);
        }
        if (mode == startMode || mode == emptyMode) {
            return StartChild(mode == startMode, argv[2]);
        }
    }
    return RunAll(argc, argv);
}
