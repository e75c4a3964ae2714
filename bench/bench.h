#pragma once

#include <cstdint>
#include <string>
#include <vector>

// The benchmarks: every case runs beside its reference in one process, and the last thing printed is one table.

/// A row of the table. Ours and Reference are names of registered benchmarks. With Rates set they are compared by bytes
/// a second, else by time. The ratio is reference / ours, or ours / reference with AtMost set.
struct BenchRow {
    std::string Case;
    std::string Ours;
    std::string Reference;
    double Target = 1;
    bool AtMost = false;
    bool Rates = false;
    double MostMilliseconds = 0; ///< ours must also stay below this; 0 for no bound
};

inline std::vector<BenchRow> BenchRows;

/// A row that was measured otherwise: figures and ratio as they stand.
struct MeasuredRow {
    std::string Case, Ours, Reference;
    double Ratio = 0;
    double Target = 1;
    bool AtMost = false;
};
inline std::vector<MeasuredRow> MeasuredRows;

// Each registers its cases and rows.
void RegisterModelCases();
void RegisterWeightsCases();
void RegisterFrameCases();
void RegisterExchangeCases();

/// Memory during and after the load of the largest model, and the time from the start to the first frame. Both run this
/// program again as a child.
void MeasureMemory(const std::string& self);
void MeasureStart(const std::string& self);
/// Time and memory of checks by the command line's program, which lies beside this one.
void MeasureChecks();

/// How far the commands that assign all vertices agree with the artists of other people's models.
void MeasureSegments();
/// The filter that runs nothing but MeasureSegments.
inline constexpr const char* segmentsFilter = "Segments";

// First argument of this program as a child; the second is the file.
inline constexpr const char* memoryMode = "--child-memory";
inline constexpr const char* startMode = "--child-start";
inline constexpr const char* emptyMode = "--child-empty";
/// What the children do; `argument` is the file. Gives the exit code.
int MemoryChild(const std::string& argument);
int StartChild(bool withProgram, const std::string& argument);
