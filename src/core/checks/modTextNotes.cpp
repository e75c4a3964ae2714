#include "checks/modTextNotes.h"

#include <algorithm>

#include "modCodePage.h"

namespace {

constexpr int mostGroups = 30; ///< of a code
constexpr size_t longestQuote = 40;

bool IsControl(char c)
{
    const auto byte = static_cast<unsigned char>(c);
    return byte < 0x20 || byte == 0x7F || byte == 0x81 || byte == 0x8D || byte == 0x8F || byte == 0x90 || byte == 0x9D;
}

} // namespace

void AddPlaces(int64_t count, int64_t line, Finding* finding)
{
    finding->Count += count;
    if (finding->Lines.size() < MostPlaces && (finding->Lines.empty() || finding->Lines.back() != line)) {
        finding->Lines.push_back(line);
    }
}

Finding* NoteText(const char* code, Severity grade, std::string_view group, TextNotes* notes)
{
    const std::string name = std::string(code).append(1, ' ').append(group);
    auto place = notes->Groups.find(name);
    const bool tooMany = place == notes->Groups.end() && ++notes->GroupsOf[code] > mostGroups;
    if (tooMany) {
        place = notes->Groups.find(code);
    }
    if (place != notes->Groups.end()) {
        AddPlaces(1, notes->Line, &notes->Findings[place->second]);
        return nullptr;
    }
    notes->Groups.emplace(tooMany ? code : name, notes->Findings.size());
    Finding& fresh = notes->Findings.emplace_back();
    fresh.Code = code;
    fresh.Grade = grade;
    fresh.Lines.push_back(notes->Line);
    if (tooMany) {
        fresh.What = "More lines have the same fault with other names.";
        fresh.Advice = "Correct what is listed first, then check the file again.";
        return nullptr;
    }
    return &fresh;
}

std::string Quoted(std::string_view bytes)
{
    std::string shown(bytes.substr(0, longestQuote));
    std::replace_if(shown.begin(), shown.end(), IsControl, '?');
    return '"' + Utf8FromCodePage(shown) + (bytes.size() > longestQuote ? "...\"" : "\"");
}

std::string_view Trimmed(std::string_view text)
{
    const size_t first = text.find_first_not_of(" \t\n");
    return first == std::string_view::npos ? std::string_view()
                                           : text.substr(first, text.find_last_not_of(" \t\n") + 1 - first);
}

std::string_view TakeUpTo(char separator, std::string_view* rest)
{
    const size_t end = rest->find(separator);
    const std::string_view piece = rest->substr(0, end);
    rest->remove_prefix(end == std::string_view::npos ? rest->size() : end + 1);
    return piece;
}

void NoteBehind(std::string_view text, std::string_view what, TextNotes* notes)
{
    if (text.find_first_of("{}") != std::string_view::npos) {
        if (Finding* const fresh = NoteText("stray-brace", Severity::Warning, "beside", notes)) {
            fresh->What = "A second brace stands on the line of a brace, where it opens or closes nothing.";
            fresh->Advice = "Put every brace on a line of its own and remove those that are too many.";
        }
    }
    if (text.find_first_not_of(" \t\n{}") != std::string_view::npos) {
        if (Finding* const fresh = NoteText("text-behind", Severity::Warning, what, notes)) {
            fresh->What = "The text " + Quoted(Trimmed(text)) + " behind " + std::string(what) +
                          " is ignored, and a save drops it.";
            fresh->Advice = "Remove the text, or put it on a line of its own when it belongs to the model.";
        }
    }
}
