// Any bytes as a model file: places that lie in the file, sentences in one line, and a load that fails only where
// something was found.

#include <algorithm>
#include <cstdio>
#include <functional>
#include <string>
#include <vector>

#include "checks/modCheckText.h"
#include "memory_file.h"
#include "model/modMvmRead.h"
#include "support/scripted.h"

namespace {

bool IsSentence(const std::string& text)
{
    return !text.empty() && text.back() == '.' &&
           std::none_of(text.begin(), text.end(), [](char c) { return static_cast<unsigned char>(c) < 0x20; });
}

bool IsSound(const Finding& finding, int64_t lastLine)
{
    const std::vector<int64_t>& lines = finding.Lines;
    return IsSentence(finding.What) && IsSentence(finding.Advice) && !lines.empty() && lines.size() <= MostPlaces &&
           finding.Count >= static_cast<int64_t>(lines.size()) &&
           std::adjacent_find(lines.begin(), lines.end(), std::greater_equal<>()) == lines.end() && lines.front() > 0 &&
           lines.back() <= lastLine;
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size)
{
    scripted::Reset();
    const std::string path = MemoryFile(0, data, size);
    std::vector<Finding> findings;
    std::string error;
    if (!CheckText(path, &findings, &error)) {
        __builtin_trap();
    }
    const int64_t lastLine = 1 + std::count(data, data + size, '\r');
    for (const Finding& finding : findings) {
        if (!IsSound(finding, lastLine)) {
            std::fprintf(stderr, "%s: %s %s\n", finding.Code, finding.What.c_str(), finding.Advice.c_str());
            __builtin_trap();
        }
    }
    if (findings.empty() && !LoadMVM(path)) {
        std::fputs("nothing found in a file that does not load\n", stderr);
        __builtin_trap();
    }
    return 0;
}
