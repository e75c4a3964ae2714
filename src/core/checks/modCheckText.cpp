#include "checks/modCheckText.h"

#include <algorithm>
#include <array>
#include <cstddef>
#include <cstdint>
#include <cstring>
#include <iterator>
#include <string_view>

#include "checks/modTextBody.h"
#include "checks/modTextNotes.h"
#include "checks/modTextNumbers.h"
#include "checks/modTextUsual.h"
#include "model/modStrings.h"
#include "modFiles.h"

namespace {

constexpr size_t pieceSize = size_t{256} << 10; ///< of a file

/// What stands before a "{" outside a block.
enum class Before { Nothing, Header, BrokenHeader, Text };

/// A check under way.
struct TextCheck {
    TextNotes Notes{};
    TextBlock Block{};
    bool Open = false;    ///< inside a block
    bool Unknown = false; ///< which is of no known kind
    Before Last = Before::Nothing;
    std::string Text{}; ///< the line of text that may be the header of an unknown block
    int64_t TextLine = 0;
    int64_t LastLine = 0;  ///< that is not empty
    int64_t LineFeeds = 0; ///< that end no line
    bool HasLineEnds = false;
};

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

/// Text that waited for a "{" and did not get one.
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

void CheckLine(std::string_view line, TextCheck* check)
{
    const auto lineFeeds = std::count(line.begin(), line.end(), '\n');
    if (lineFeeds > 0) {
        check->LineFeeds += lineFeeds;
        if (Finding* const fresh = NoteText("line-ends", Severity::Error, "", &check->Notes)) {
            fresh->What = "Line feeds stand in the file that are not part of a line end: lines that end in LF alone "
                          "are no lines to the game, which reads them as one with the next line.";
            fresh->Advice = "Save the file with line ends of CR LF in a text editor.";
        }
    }
    if (!check->Open) {
        CheckOutside(line, check);
        return;
    }
    if (!check->Unknown) {
        CheckBodyLine(line, &check->Block, &check->Notes);
    }
    check->Open = line.find('}') == std::string_view::npos;
}

/// Lines that each end with a CR and perhaps an LF.
void CheckLines(std::string_view lines, TextCheck* check)
{
    const char* const end = lines.data() + lines.size();
    for (const char* at = lines.data(); at != end;) {
        ++check->Notes.Line;
        const bool inMesh = check->Open && !check->Unknown && check->Block.Kind == BlockKind::Mesh;
        int changed = 0;
        const char* lineEnd = inMesh ? SkipUsualLine(at, check->Block, &changed) : nullptr;
        if (lineEnd != nullptr && changed > 0) {
            NoteDigits(changed, BlockKind::Mesh, &check->Notes);
        } else if (lineEnd == nullptr) {
            lineEnd = static_cast<const char*>(std::memchr(at, '\r', static_cast<size_t>(end - at)));
            if (lineEnd != at) {
                CheckLine({at, static_cast<size_t>(lineEnd - at)}, check);
            }
        }
        check->LastLine = lineEnd != at ? check->Notes.Line : check->LastLine;
        at = lineEnd + (end - lineEnd > 1 && lineEnd[1] == '\n' ? 2 : 1);
    }
}

/// How many bytes the whole lines at the start of `text` have. A CR at its end does not end a line yet: an LF may
/// follow.
size_t SizeOfWholeLines(std::string_view text)
{
    const size_t lineEnd = text.substr(0, text.empty() ? 0 : text.size() - 1).rfind('\r');
    return lineEnd == std::string_view::npos ? 0 : lineEnd + (text[lineEnd + 1] == '\n' ? 2 : 1);
}

/// Looks at the file in pieces, so that memory does not grow with it.
bool CheckPieces(OpenedFile* file, TextCheck* check, std::string* error)
{
    std::string buffer(pieceSize, '\0');
    size_t kept = 0; // bytes at the start of the buffer that belong to a line not looked at yet
    for (bool last = false; !last;) {
        if (kept + 1 == buffer.size()) {
            buffer.resize(2 * buffer.size()); // a line longer than the buffer
        }
        const size_t room = buffer.size() - 1 - kept;
        size_t count = 0;
        if (!ReadOn(file, buffer.data() + kept, room, &count, error)) {
            return false;
        }
        size_t filled = kept + count;
        last = count < room;
        check->HasLineEnds = check->HasLineEnds || std::memchr(buffer.data(), '\r', filled) != nullptr;
        if (last && filled > 0 && buffer[filled - 1] != '\r') {
            buffer[filled++] = '\r'; // the end of the file ends its last line
        }
        const size_t whole = last ? filled : SizeOfWholeLines({buffer.data(), filled});
        CheckLines({buffer.data(), whole}, check);
        kept = filled - whole;
        std::memmove(buffer.data(), buffer.data() + whole, kept);
    }
    return true;
}

/// What only the end of the file tells.
void CheckEnd(TextCheck* check)
{
    DropText(check);
    if (check->Open) {
        check->Notes.Line = check->LastLine;
        if (Finding* const fresh = NoteText("cut-off", Severity::Error, "", &check->Notes)) {
            fresh->What = "The file ends inside a block, so that the rest of the model is probably missing.";
            fresh->Advice = "Export the model again, or add the missing \"}\" when nothing else is missing.";
        }
    }
    if (check->LineFeeds == 0) {
        return;
    }
    std::vector<Finding>& found = check->Notes.Findings;
    const auto lineEnds = std::find_if(found.begin(), found.end(), [](const Finding& finding) {
        return finding.Code == std::string_view("line-ends");
    });
    lineEnds->Count = check->LineFeeds;
    if (!check->HasLineEnds) {
        found = {*lineEnds}; // the whole file is one line, of which nothing else is worth telling
    }
}

} // namespace

bool CheckText(const std::string& path, std::vector<Finding>* findings, std::string* error)
{
    OpenedFile file;
    TextCheck check;
    if (!OpenForReading(path, &file, error) || !CheckPieces(&file, &check, error)) {
        return false;
    }
    CheckEnd(&check);
    std::vector<Finding>& found = check.Notes.Findings;
    findings->insert(findings->end(), std::move_iterator(found.begin()), std::move_iterator(found.end()));
    return true;
}
