#include "checks/modTextBody.h"

#include <array>
#include <cstddef>
#include <string>

#include "checks/modTextNumbers.h"
#include "model/modStrings.h"

namespace {

enum class ValueForm { Version, Text, Triple, Pair, Vertex, Face, Number };

struct KnownKey {
    BlockKind Kind;
    std::string_view Key;
    ValueForm Form;
};

constexpr std::array<KnownKey, 15> knownKeys = {{{BlockKind::FileInfo, "formatversion", ValueForm::Version},
                                                 {BlockKind::Bone, "position", ValueForm::Triple},
                                                 {BlockKind::Bone, "rotation", ValueForm::Triple},
                                                 {BlockKind::Material, "colormap", ValueForm::Text},
                                                 {BlockKind::Material, "opacitymap", ValueForm::Text},
                                                 {BlockKind::Material, "bumpmap", ValueForm::Text},
                                                 {BlockKind::Mesh, "m", ValueForm::Text},
                                                 {BlockKind::Mesh, "v", ValueForm::Vertex},
                                                 {BlockKind::Mesh, "t", ValueForm::Pair},
                                                 {BlockKind::Mesh, "n", ValueForm::Triple},
                                                 {BlockKind::Mesh, "f", ValueForm::Face},
                                                 {BlockKind::Instance, "mesh", ValueForm::Text},
                                                 {BlockKind::Instance, "position", ValueForm::Triple},
                                                 {BlockKind::Instance, "rotation", ValueForm::Triple},
                                                 {BlockKind::Instance, "scale", ValueForm::Number}}};

size_t PlaceOf(BlockKind kind, std::string_view key)
{
    size_t place = 0;
    while (place < knownKeys.size() && (knownKeys[place].Kind != kind || !EqualsAnyCase(key, knownKeys[place].Key))) {
        ++place;
    }
    return place;
}

void NoteUnknownKey(std::string_view key, bool closes, const TextBlock& block, TextNotes* notes)
{
    constexpr size_t enough = 40; // of a key to tell it from others
    const std::string words = BlockWords(block.Kind);
    const std::string group = words + ' ' + LowerCase(key.substr(0, enough));
    if (Finding* const fresh = NoteText("unknown-key", Severity::Warning, group, notes)) {
        if (block.Kind == BlockKind::Bone && closes) {
            fresh->What = "The line " + Quoted(key) + " also closes its bone block, so that a save drops it.";
            fresh->Advice = "Put the \"}\" on a line of its own.";
        } else {
            fresh->What = Quoted(key) + " is no key of " + words + ": the line is ignored, and a save drops it.";
            fresh->Advice = "Correct the key; a note is better kept in another file.";
        }
    }
}

void NoteRepeated(size_t place, TextBlock* block, TextNotes* notes)
{
    const uint32_t bit = 1U << place;
    if ((block->KeysSeen & bit) != 0 && block->Kind != BlockKind::Mesh) {
        const std::string words = BlockWords(block->Kind);
        const std::string_view key = knownKeys[place].Key;
        if (Finding* const fresh = NoteText("repeated-key", Severity::Warning, words + ' ' + std::string(key), notes)) {
            fresh->What = Quoted(key) + " stands more than once in " + words + ": only the last one counts.";
            fresh->Advice = "Remove all but the line that is meant.";
        }
    }
    block->KeysSeen |= bit;
}

/// Without one double quote at each end.
std::string_view WithoutQuotes(std::string_view text)
{
    text.remove_prefix(!text.empty() && text.front() == '"' ? 1 : 0);
    text.remove_suffix(!text.empty() && text.back() == '"' ? 1 : 0);
    return text;
}

/// A name or path: `written` as it stands in the line, `value` as it is read.
void CheckTextValue(const TextKey& key, std::string_view written, std::string_view value, TextNotes* notes)
{
    const std::string_view meant = WithoutQuotes(Trimmed(written));
    const std::string read = StripQuotes(value);
    const bool closes = read.find('}') != std::string::npos;
    if (meant == read && !closes) {
        return;
    }
    const std::string group = BlockWords(key.Kind) + ' ' + std::string(key.Key) + (closes ? "}" : "");
    if (Finding* const fresh = NoteText("name", Severity::Error, group, notes)) {
        const std::string where = " behind " + Quoted(key.Key) + " in " + BlockWords(key.Kind);
        fresh->What = closes ? "The \"}\" in " + Quoted(read) + where + " closes the block there."
                             : "The text " + Quoted(meant) + where + " is read as " + Quoted(read) + ".";
        fresh->Advice = "Put the text in double quotes, without \"=\", braces and further quotes in it.";
    }
}

void CheckVersion(std::string_view value, TextNotes* notes)
{
    const std::string version = StripQuotes(value.substr(0, value.find('}')));
    if (version == "1.0.2") {
        return;
    }
    if (Finding* const fresh = NoteText("version", Severity::Warning, "", notes)) {
        fresh->What = "The file has the format version " + Quoted(version) + ", but a save always writes \"1.0.2\".";
        fresh->Advice = "Make sure that the model is meant for this version of the format.";
    }
}

void CheckBraces(std::string_view line, TextNotes* notes)
{
    bool inQuotes = false;
    for (const char c : line) {
        inQuotes = inQuotes != (c == '"');
        if (c == '{' && !inQuotes) {
            if (Finding* const fresh = NoteText("stray-brace", Severity::Warning, "inside", notes)) {
                fresh->What = "A \"{\" inside a block opens nothing, as blocks do not nest: the next \"}\" closes the "
                              "block that is open.";
                fresh->Advice = "Look for a \"}\" that is missing before this line.";
            }
            return;
        }
    }
}

void CheckNumbers(const TextKey& key, ValueForm form, std::string_view value, const TextBlock& block, TextNotes* notes)
{
    switch (form) {
    case ValueForm::Vertex:
        CheckTuple(key, value, 3, block.IsSkin, notes);
        break;
    case ValueForm::Triple:
        CheckTuple(key, value, 3, false, notes);
        break;
    case ValueForm::Pair:
        CheckTuple(key, value, 2, false, notes);
        break;
    case ValueForm::Face:
        CheckFace(key, value, block, notes);
        break;
    case ValueForm::Number:
        CheckNumber(key, value, notes);
        break;
    case ValueForm::Version:
        CheckVersion(value, notes);
        break;
    case ValueForm::Text:
        break;
    }
}

} // namespace

std::string BlockWords(BlockKind kind)
{
    switch (kind) {
    case BlockKind::FileInfo:
        return "a fileinfo block";
    case BlockKind::Bone:
        return "a bone block";
    case BlockKind::Material:
        return "a material block";
    case BlockKind::Mesh:
        return "a mesh or skin block";
    case BlockKind::Instance:
        return "an instance block";
    case BlockKind::None:
        break;
    }
    return "a block";
}

void CheckBodyLine(std::string_view line, TextBlock* block, TextNotes* notes)
{
    constexpr std::string_view closing = "the \"}\" of a block";
    CheckBraces(line, notes);
    const size_t brace = line.find('}');
    const bool closes = brace != std::string_view::npos;
    const std::string_view behindBrace = closes ? line.substr(brace + 1) : std::string_view();
    if (line.substr(0, brace).find_first_not_of(" \t\n{") == std::string_view::npos) {
        NoteBehind(behindBrace, closing, notes);
        return;
    }
    const std::string stripped = StripWhitespace(line);
    std::string_view rest = stripped;
    const std::string_view key = TakeUpTo('=', &rest);
    const size_t place = PlaceOf(block->Kind, key);
    if (place == knownKeys.size()) {
        if (block->Kind != BlockKind::Bone || closes) {
            NoteUnknownKey(key, closes, *block, notes);
        }
        return;
    }
    NoteRepeated(place, block, notes);
    const TextKey textKey{knownKeys[place].Key, block->Kind};
    const bool furtherPiece = rest.find('=') != std::string_view::npos;
    const std::string_view value = TakeUpTo('=', &rest);
    if (knownKeys[place].Form == ValueForm::Text) {
        block->MeshMaterials += block->Kind == BlockKind::Mesh ? 1 : 0;
        const size_t equals = line.find('=');
        CheckTextValue(textKey, equals == std::string_view::npos ? "" : line.substr(equals + 1), value, notes);
        return;
    }
    CheckNumbers(textKey, knownKeys[place].Form, value, *block, notes);
    NoteBehind(behindBrace, closing, notes);
    if (furtherPiece) {
        NoteBehind("=" + std::string(rest), "the value of \"" + std::string(textKey.Key) + "\"", notes);
    }
}
