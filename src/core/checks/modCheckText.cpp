#include "checks/modCheckText.h"

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <cstring>
#include <iterator>
#include <string_view>

#include "checks/modTextBody.h"
#include "checks/modTextNotes.h"
#include "checks/modTextNumbers.h"
#include "checks/modTextOutside.h"
#include "checks/modTextUsual.h"
#include "model/modLinePieces.h"
#include "modFiles.h"

namespace {

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

bool CheckPieces(OpenedFile* file, TextCheck* check, std::string* error)
{
    const auto take = [&](std::string_view lines, size_t position) {
        const bool added = position + lines.size() > file->Taken; // the CR at the end is not the file's
        check->HasLineEnds =
            check->HasLineEnds || lines.substr(0, lines.size() - (added ? 1 : 0)).find('\r') != std::string_view::npos;
        CheckLines(lines, check);
        return true;
    };
    return ReadInPieces(file, take, error);
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
