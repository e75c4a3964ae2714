#pragma once

#include <cstdint>
#include <set>
#include <string>
#include <vector>

// What the commands say. Results go to standard output; messages to standard error, each line behind the program's name
// and the file that it speaks of. All texts are UTF-8.

enum class ExitCode { Done = 0, Findings = 1, Failed = 2 };

enum class Loudness {
    Quiet,  ///< warnings and failures alone
    Usual,  ///< also what went well
    Verbose ///< also the lines of the log
};
inline Loudness LoudnessWanted = Loudness::Usual;

inline std::string FileSpokenOf; ///< the file that messages name; empty for none
inline bool WasStopped = false;  ///< a stop box was shown
inline int64_t Warnings = 0;     ///< warning boxes shown so far
inline int64_t Refusals = 0;     ///< questions answered with No so far

/// Where the lines of the log go.
enum class LogTarget {
    Verbose,  ///< to standard error when the user wants all
    Messages, ///< to standard error
    Output,   ///< to standard output
    Kept,     ///< to KeptLog, and with them the warnings that boxes would show
    AllKept   ///< to KeptLog, and with them all that boxes would show
};
inline LogTarget LogGoesTo = LogTarget::Verbose;
inline std::vector<std::string> KeptLog;
inline int64_t LogLines = 0; ///< written so far

/// Questions of the core that are answered with Yes; all others are answered with No and told.
inline std::set<std::string> AcceptedQuestions;
/// The words for AcceptedQuestions.
[[nodiscard]] std::vector<std::string> QuestionNames();

/// A message, whatever the user wants to hear.
void Tell(const std::string& text);
/// A message that is left out when the user wants it quiet.
void Note(const std::string& text);
/// Writes to standard output.
void Put(const std::string& text);
/// Whether everything got out so far. A reader who has gone counts as served.
[[nodiscard]] bool FlushOutput();
/// Takes the progress line off the terminal.
void ClearProgressLine();
