#include "modTerminal.h"

#include <algorithm>
#include <array>
#include <cerrno>
#include <chrono>
#include <cstdint>
#include <cstdio>
#include <string_view>
#include <utility>

#include "app/modFrontEnd.h"
#include "modProcess.h"

namespace {

using Clock = std::chrono::steady_clock;

/// The questions that a command can meet: the word of its option, and how the question begins.
constexpr std::array<std::pair<std::string_view, std::string_view>, 4> questions = {{
    {"version", "File version is not compatible"},
    {"bones", "Number of bones"},
    {"name", "Name of current mesh"},
    {"vertices", "Number of vertices"},
}};

bool outputFailed = false;
std::string panelText;
int32_t progressMaximum = 1;
int32_t progressLook = 0; ///< the value at which the clock is looked at next
Clock::time_point progressStart;
Clock::time_point progressShown;
bool progressLine = false;

void PutError(const std::string& text)
{
    std::fwrite(text.data(), 1, text.size(), stderr);
}

} // namespace

std::vector<std::string> QuestionNames()
{
    std::vector<std::string> names;
    names.reserve(questions.size());
    for (const auto& [name, beginning] : questions) {
        names.emplace_back(name);
    }
    return names;
}

void Tell(const std::string& text)
{
    ClearProgressLine();
    std::fflush(stdout); // both may go to one terminal
    const std::string lead = "bwrt: " + (FileSpokenOf.empty() ? std::string() : FileSpokenOf + ": ");
    std::string message;
    for (size_t start = 0; start < text.size();) {
        const size_t end = std::min(text.find('\n', start), text.size());
        const std::string_view line(text.data() + start, end - start);
        const size_t length = line.find_last_not_of('\r') + 1;
        if (length > 0) {
            message.append(lead).append(line.substr(0, length)).append("\n");
        }
        start = end + 1;
    }
    PutError(message);
}

void Note(const std::string& text)
{
    if (LoudnessWanted != Loudness::Quiet) {
        Tell(text);
    }
}

void Put(const std::string& text)
{
    ClearProgressLine();
    if (std::fwrite(text.data(), 1, text.size(), stdout) < text.size()) {
        outputFailed = outputFailed || errno != EPIPE;
    }
}

bool FlushOutput()
{
    if (std::fflush(stdout) != 0) {
        outputFailed = outputFailed || errno != EPIPE;
    }
    return !outputFailed;
}

void ClearProgressLine()
{
    if (progressLine) {
        PutError("\r\33[K");
        progressLine = false;
    }
}

void ShowMessage(BoxIcon icon, const std::string& text)
{
    if (LogGoesTo == LogTarget::AllKept) {
        KeptLog.push_back(text);
        return;
    }
    WasStopped = WasStopped || icon == BoxIcon::Stop;
    Warnings += icon == BoxIcon::Warning ? 1 : 0;
    if (icon != BoxIcon::Stop && LogGoesTo == LogTarget::Kept) {
        KeptLog.push_back(text);
    } else if (icon == BoxIcon::Information) {
        Note(text);
    } else {
        Tell(text);
    }
}

BoxAnswer AskYesNoCancel(BoxIcon /*icon*/, const std::string& text)
{
    const auto* const question = std::find_if(questions.begin(), questions.end(),
                                              [&](const auto& known) { return text.starts_with(known.second); });
    const std::string name(question == questions.end() ? std::string_view() : question->first);
    if (AcceptedQuestions.contains(name)) {
        Note(text + "\nYes, as --accept " + name + " says.");
        return BoxAnswer::Yes;
    }
    ++Refusals;
    Tell(text + "\nNo. With --accept " + name + " the answer is yes.");
    return BoxAnswer::No;
}

void AskWeightsAssignMode() {} // the command has set WeightsAssignMode

void SetPanelText(const std::string& key, const std::string& text)
{
    if (key == "toolhelp") {
        panelText = text;
    }
}

void ProgressBegin(int32_t maximum)
{
    progressMaximum = std::max(maximum, 1);
    const bool shown = LoudnessWanted != Loudness::Quiet && ErrorsGoToTerminal();
    progressLook = shown ? 0 : INT32_MAX;
    progressStart = progressShown = Clock::now();
}

void ProgressStep(int32_t value)
{
    if (value < progressLook) {
        return; // short steps come by the million
    }
    progressLook = value + progressMaximum / 1024;
    constexpr auto patience = std::chrono::seconds(1);
    constexpr auto pause = std::chrono::milliseconds(100);
    const Clock::time_point now = Clock::now();
    if (now - progressStart < patience || now - progressShown < pause) {
        return;
    }
    progressShown = now;
    const int64_t percent = int64_t{100} * std::clamp(value, 0, progressMaximum) / progressMaximum;
    PutError("\r\33[Kbwrt: " + FileSpokenOf + ": " + panelText + " " + std::to_string(percent) + "%");
    progressLine = true;
}

bool ProgressServe()
{
    return true;
}

void ProgressShow() {}

void ProgressEnd()
{
    ClearProgressLine();
}

void LogLine(const std::string& text)
{
    LogDirty = true;
    ++LogLines;
    switch (LogGoesTo) {
    case LogTarget::Output:
        Put(text + "\n");
        break;
    case LogTarget::Kept:
    case LogTarget::AllKept:
        KeptLog.push_back(text);
        break;
    case LogTarget::Messages:
        Tell(text);
        break;
    case LogTarget::Verbose:
        if (LoudnessWanted == Loudness::Verbose) {
            Tell(text);
        }
        break;
    }
}

void ShowInfoLog()
{
    LogDirty = false;
}

void Redraw(bool /*swap*/) {}

void SetBoneRows(int16_t /*list*/, const std::vector<BoneRow>& /*rows*/) {}

void SelectBoneRow(int16_t /*list*/, int32_t /*number*/) {}
