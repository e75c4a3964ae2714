#include "checks/modTextOutside.h"

#include <algorithm>
#include <array>
#include <cstddef>

#include "model/modStrings.h"

namespace {

struct Keyword {
    std::string_view Word;
    BlockKind Kind;
};

constexpr std::array<Keyword, 6> keywords = {{{"fileinfo", BlockKind::FileInfo},
                                              {"bone", BlockKind::Bone},
                                              {"material", BlockKind::Material},
                                              {"mesh", BlockKind::Mesh},
                                              {"skin", BlockKind::Mesh},
                                              {"instance", BlockKind::Instance}}};

const Keyword* FindKeyword(std::string_view word)
{
    const auto* const found = std::find_if(keywords.begin(), keywords.end(),
                                           [word](const Keyword& known) { return EqualsAnyCase(word, known.Word); });
    return found != keywords.end() ? found : nullptr;
}

std::string_view WithoutBlanks(std::string_view text)
{
    const size_t first = text.find_first_not_of(' ');
    return first == std::string_view::npos ? std::string_view()
                                           : text.substr(first, text.find_last_not_of(' ') + 1 - first);
}

void NoteTextBetween(std::string_view text, TextNotes* notes)
{
    if (Finding* const fresh = NoteText("text-between", Severity::Warning, "", notes)) {
        fresh->What = "Text outside the blocks, such as " + Quoted(text) + ", is ignored, and a save drops it.";
        fresh->Advice = "Keep notes in a file of their own.";
    }
}

void NoteUnknownBlock(std::string_view header, BlockKind before, TextNotes* notes)
{
    const std::string_view word = header.substr(0, header.find_first_of(" \t{\""));
    const bool first = before == BlockKind::None;
    const std::string group = LowerCase(word.substr(0, 40)) + (first ? " first" : "");
    if (Finding* const fresh = NoteText("unknown-block", Severity::Error, group, notes)) {
        const std::string block = word.empty() ? "A block without a header" : "A block " + Quoted(word);
        fresh->What = block + " is of no known kind: its lines are " +
                      (first ? "ignored, and a save drops them." : "read as more lines of the block before it.");
        fresh->Advice = "Remove the block, or give it the header of a material, bone, mesh, skin or instance.";
    }
}

/// The name in what follows the keyword of a header, as its author meant it; *behind is what follows it.
std::string_view MeantName(std::string_view text, std::string_view* behind)
{
    text = Trimmed(text);
    const bool quoted = !text.empty() && text.front() == '"';
    text.remove_prefix(quoted ? 1 : 0);
    const size_t end = quoted ? text.find('"') : text.find_first_of(" \t\n{");
    *behind = end == std::string_view::npos ? std::string_view() : text.substr(end + (quoted ? 1 : 0));
    return text.substr(0, end);
}

/// What is wrong with the name of a header, empty when nothing is. The end of a sentence about it.
std::string FaultOfName(std::string_view meant, const std::string& read)
{
    if (read.find_first_of("{}") != std::string::npos) {
        return " is read as " + Quoted(read) + ", with the brace in the name.";
    }
    if (read.empty()) {
        return " is read as an empty name.";
    }
    return meant != read ? " is read as " + Quoted(read) + "." : std::string();
}

const char* GroupOfName(const std::string& read)
{
    return read.empty() ? "empty" : read.find_first_of("{}") != std::string::npos ? "brace" : "cut";
}

/// What follows the keyword of a header that has a name.
void CheckName(std::string_view text, const Keyword& keyword, TextNotes* notes)
{
    std::string_view rest = text;
    const std::string read = StripQuotes(TakeUpTo(' ', &rest));
    std::string_view behind;
    const std::string_view meant = MeantName(text, &behind);
    const std::string fault = FaultOfName(meant, read);
    if (fault.empty()) {
        const size_t brace = behind.find('{');
        NoteBehind(behind.substr(0, brace), "the name of a header", notes);
        NoteBehind(brace == std::string_view::npos ? "" : behind.substr(brace + 1), "the \"{\" of a block", notes);
        return;
    }
    if (Finding* const fresh = NoteText("name", Severity::Error, GroupOfName(read), notes)) {
        const std::string word(keyword.Word);
        fresh->What = meant.empty() && read.empty() ? "The header of a block " + Quoted(word) + " has no name."
                                                    : "The name " + Quoted(meant) + " of a " + word + fault;
        fresh->Advice =
            "Write the name in double quotes behind one blank, without blanks, tabs, quotes or braces in it.";
    }
}

void OpenBlock(TextCheck* check)
{
    check->Open = true;
    check->Unknown = check->Last != Before::Header;
    check->Last = Before::Nothing;
}

void CheckHeader(std::string_view line, const Keyword& keyword, TextCheck* check)
{
    DropText(check);
    check->Last = Before::Header;
    check->Block = {keyword.Kind, keyword.Word == "skin"};
    const std::string_view text = WithoutBlanks(line);
    const std::string_view rest = text.substr(std::min(text.size(), keyword.Word.size() + 1));
    if (keyword.Kind == BlockKind::FileInfo) {
        const size_t brace = rest.find('{');
        NoteBehind(rest.substr(0, brace), "a fileinfo header", &check->Notes);
        NoteBehind(brace == std::string_view::npos ? "" : rest.substr(brace + 1), "the \"{\" of a block",
                   &check->Notes);
    } else {
        CheckName(rest, keyword, &check->Notes);
    }
}

/// True for a line that is no header only for what stands before or behind its keyword.
bool IsBrokenHeader(std::string_view text)
{
    text.remove_prefix(std::min(text.size(), text.find_first_not_of("} \t\n")));
    constexpr std::string_view byteOrderMark = "\xEF\xBB\xBF";
    if (text.substr(0, byteOrderMark.size()) == byteOrderMark) {
        text = Trimmed(text.substr(byteOrderMark.size()));
    }
    return FindKeyword(text.substr(0, text.find_first_of(" \t\n\"{"))) != nullptr;
}

void NoteBrokenHeader(std::string_view text, TextCheck* check)
{
    DropText(check);
    check->Last = Before::BrokenHeader;
    if (Finding* const fresh = NoteText("name", Severity::Error, "header", &check->Notes)) {
        fresh->What = "The line " + Quoted(text) + " is no header, as more than blanks stands before its keyword or " +
                      "something else than a blank behind it: its block is not read as one.";
        fresh->Advice = "Start the line with the keyword, followed by one blank and the name in double quotes.";
    }
}

/// A line with a "{" that is no header, by its parts before and behind the brace.
void CheckOpening(std::string_view text, std::string_view behind, TextCheck* check)
{
    if (check->Last == Before::Header) {
        NoteBehind(text, "a header, on the line of its \"{\",", &check->Notes);
    } else if (check->Last == Before::Text && text.empty()) {
        const int64_t line = check->Notes.Line;
        check->Notes.Line = check->TextLine;
        NoteUnknownBlock(check->Text, check->Block.Kind, &check->Notes);
        check->Notes.Line = line;
    } else if (check->Last != Before::BrokenHeader || !text.empty()) {
        DropText(check);
        NoteUnknownBlock(text, check->Block.Kind, &check->Notes);
    }
    NoteBehind(behind, "the \"{\" of a block", &check->Notes);
}

/// A line of text outside a block without a "{".
void CheckOtherText(std::string_view text, TextCheck* check)
{
    if (text.find('}') != std::string_view::npos) {
        DropText(check);
        if (Finding* const fresh = NoteText("stray-brace", Severity::Warning, "outside", &check->Notes)) {
            fresh->What = "A \"}\" outside a block closes nothing.";
            fresh->Advice = "Remove it, or look for a \"{\" that is missing or a \"}\" that stands too early.";
        }
        if (text.find_first_not_of(" \t\n}") != std::string_view::npos) {
            NoteTextBetween(text, &check->Notes);
        }
    } else if (check->Last == Before::Header || check->Last == Before::BrokenHeader) {
        NoteTextBetween(text, &check->Notes);
    } else {
        DropText(check);
        check->Last = Before::Text;
        check->Text = text.substr(0, 100); // enough to quote
        check->TextLine = check->Notes.Line;
    }
}

} // namespace

void DropText(TextCheck* check)
{
    if (check->Last == Before::Text) {
        const int64_t line = check->Notes.Line;
        check->Notes.Line = check->TextLine;
        NoteTextBetween(check->Text, &check->Notes);
        check->Notes.Line = line;
        check->Last = Before::Nothing;
    }
}

void CheckOutside(std::string_view line, TextCheck* check)
{
    const std::string_view text = Trimmed(line);
    if (text.empty()) {
        return;
    }
    const std::string_view header = WithoutBlanks(line);
    const Keyword* const keyword = FindKeyword(header.substr(0, header.find(' ')));
    const size_t brace = line.find('{');
    if (keyword != nullptr) {
        CheckHeader(line, *keyword, check);
    } else if (IsBrokenHeader(text)) {
        NoteBrokenHeader(text, check);
    } else if (brace != std::string_view::npos) {
        CheckOpening(Trimmed(line.substr(0, brace)), line.substr(brace + 1), check);
    } else {
        CheckOtherText(text, check);
    }
    if (brace != std::string_view::npos) {
        OpenBlock(check);
    }
}
