#include "checks/modTextNumbers.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <limits>
#include <string>

#include "model/modNumbers.h"

namespace {

bool IsDigit(char c)
{
    return c >= '0' && c <= '9';
}

bool BelongsToNumber(char c)
{
    return IsDigit(c) || c == '+' || c == '-' || c == '.';
}

std::string_view TakeSign(std::string_view text)
{
    text.remove_prefix(!text.empty() && (text.front() == '+' || text.front() == '-') ? 1 : 0);
    return text;
}

/// True when the text is a number from its first to its last character.
bool IsWholly(std::string_view text)
{
    text = TakeSign(text);
    size_t digits = 0;
    bool point = false;
    while (!text.empty() && (IsDigit(text.front()) || (text.front() == '.' && !point))) {
        digits += text.front() == '.' ? 0 : 1;
        point = point || text.front() == '.';
        text.remove_prefix(1);
    }
    if (digits == 0 || text.empty()) {
        return digits != 0;
    }
    if (std::string_view("EeDd").find(text.front()) == std::string_view::npos) {
        return false;
    }
    text = TakeSign(text.substr(1));
    return !text.empty() && std::all_of(text.begin(), text.end(), IsDigit);
}

/// How many digits a number has, without zeros in front, and zeros behind the last other digit.
int SignificantDigits(std::string_view number)
{
    int digits = 0;
    int last = 0;
    for (const char c : number) {
        if (IsDigit(c)) {
            digits += c != '0' || digits > 0 ? 1 : 0;
            last = c != '0' ? digits : last;
        } else if (!BelongsToNumber(c)) {
            break; // the exponent
        }
    }
    return last;
}

/// A number as a load has it, for people.
std::string ShownNumber(double value)
{
    float stored = std::numeric_limits<float>::max();
    ToFloat(value, &stored);
    return FloatToText(stored);
}

void NoteTooLarge(const TextKey& key, std::string_view text, TextNotes* notes)
{
    if (Finding* const fresh = NoteText("size", Severity::Error, key.Key, notes)) {
        fresh->What = "The number " + Quoted(text) + " of " + Quoted(key.Key) +
                      " is larger than the format can hold, so that the file does not load.";
        fresh->Advice = "Export the model again at a sensible size, or correct the number.";
    }
}

void NoteNoNumber(const TextKey& key, std::string_view text, double read, TextNotes* notes)
{
    const std::string group = std::string(key.Key).append(1, static_cast<char>('0' + static_cast<int>(key.Kind)));
    if (Finding* const fresh = NoteText("no-number", Severity::Error, group, notes)) {
        const std::string number = ShownNumber(read);
        const std::string behind = " behind " + Quoted(key.Key) + " in " + BlockWords(key.Kind);
        fresh->What = text.empty()
                          ? "A number is missing" + behind + " and is read as " + number + "."
                          : Quoted(text) + behind + " is no number of its own there and is read as " + number + ".";
        fresh->Advice = "Write every number out, with digits and a point as decimal mark.";
    }
}

/// A number that was meant as `text` and is read from `readFrom`. False when it is read as something else, which is
/// then noted.
bool ReadsAsMeant(const TextKey& key, std::string_view text, std::string_view readFrom, double* value, TextNotes* notes)
{
    double meant = 0;
    const bool isSame = text == readFrom;
    if (!LeadingNumber(readFrom, value) || (!isSame && !LeadingNumber(text, &meant))) {
        NoteTooLarge(key, text, notes);
        return false;
    }
    if (!IsWholly(text) || (!isSame && meant != *value)) {
        NoteNoNumber(key, text, *value, notes);
        return false;
    }
    return true;
}

void CheckFloat(const TextKey& key, std::string_view text, std::string_view readFrom, TextNotes* notes)
{
    double value = 0;
    float stored = 0;
    double back = 0;
    if (!ReadsAsMeant(key, text, readFrom, &value, notes)) {
        return;
    }
    if (!ToFloat(value, &stored)) {
        NoteTooLarge(key, text, notes);
        return;
    }
    // A double tells any two numbers of up to 15 digits apart, and a normal float those of up to 6.
    const int digits = SignificantDigits(text);
    const bool isNormal = stored == 0 ? value == 0 : std::isnormal(stored);
    if (digits <= 6 && isNormal) {
        return;
    }
    if ((digits > 7 && digits <= 15) || !LeadingNumber(FloatToText(stored), &back) || back != value) {
        NoteDigits(1, key.Kind, notes);
    }
}

/// False when the number is not read as a whole number that was meant.
bool CheckWhole(const TextKey& key, std::string_view text, std::string_view readFrom, double* value, TextNotes* notes)
{
    if (!ReadsAsMeant(key, text, readFrom, value, notes)) {
        return false;
    }
    if (*value != std::nearbyint(*value)) {
        if (Finding* const fresh = NoteText("rounded", Severity::Warning, key.Key, notes)) {
            fresh->What = "The number " + Quoted(text) + " of " + Quoted(key.Key) +
                          " must be a whole one and is rounded to " + ShownNumber(std::nearbyint(*value)) + ".";
            fresh->Advice = "Write whole numbers for joints and for the numbers of a face.";
        }
        *value = std::nearbyint(*value);
    }
    return true;
}

void CheckInt16(const TextKey& key, std::string_view text, std::string_view readFrom, TextNotes* notes)
{
    double value = 0;
    int16_t number = 0;
    if (CheckWhole(key, text, readFrom, &value, notes) && !RoundToInt16(value, &number)) {
        NoteTooLarge(key, text, notes);
    }
}

void CheckFaceMaterial(const TextKey& key, std::string_view text, std::string_view readFrom, const TextBlock& block,
                       TextNotes* notes)
{
    double value = 0;
    int32_t number = 0;
    if (!CheckWhole(key, text, readFrom, &value, notes)) {
        return;
    }
    if (!RoundToInt32(value, &number) || number < INT16_MIN) {
        NoteTooLarge(key, text, notes);
    } else if (number > block.MeshMaterials) {
        if (Finding* const fresh = NoteText("face-material", Severity::Warning, "", notes)) {
            fresh->What = "A face has the material number " + Quoted(text) + ", but only " +
                          std::to_string(block.MeshMaterials) +
                          " lines \"m\" stand above it in its block: it loses its material.";
            fresh->Advice = "Put a line \"m\" for each material above the faces, or correct the number.";
        }
    }
}

void NoteBehindValue(std::string_view text, const TextKey& key, TextNotes* notes)
{
    if (!text.empty()) {
        NoteBehind(text, "the value of \"" + std::string(key.Key) + "\" in " + BlockWords(key.Kind), notes);
    }
}

ptrdiff_t Pieces(std::string_view text)
{
    return std::count(text.begin(), text.end(), ',') + 1;
}

/// The joint number of a skin's vertex, of which `meant` stands inside and `behind` outside the parentheses.
void CheckJoint(const TextKey& key, std::string_view value, std::string_view meant, std::string_view behind,
                TextNotes* notes)
{
    std::string_view joint = meant;
    if (!behind.empty() && behind.front() == ',') {
        behind.remove_prefix(1);
        joint = TakeUpTo(',', &behind);
    }
    NoteBehindValue(behind, key, notes);
    const bool isRead = Pieces(value) == 4;
    CheckInt16({"joint number", key.Kind}, joint, isRead ? value.substr(value.rfind(',') + 1) : std::string_view(),
               notes);
}

} // namespace

void NoteDigits(int64_t count, BlockKind kind, TextNotes* notes)
{
    size_t& place = notes->Digits[static_cast<size_t>(kind)];
    if (place != 0) {
        AddPlaces(count, notes->Line, &notes->Findings[place - 1]);
        return;
    }
    Finding& fresh = notes->Findings.emplace_back();
    place = notes->Findings.size();
    fresh = {"digits", Severity::Warning, count, {notes->Line}};
    fresh.What = "Numbers in " + BlockWords(kind) +
                 " have more digits than the seven that a save writes, so that it changes them a little.";
    fresh.Advice = "Nothing needs to be done unless the last digits matter; then keep the original file.";
}

void CheckTuple(const TextKey& key, std::string_view value, size_t count, bool joint, TextNotes* notes)
{
    if (value.size() < 2) {
        if (Finding* const fresh = NoteText("no-number", Severity::Error, "short", notes)) {
            fresh->What = "No numbers stand behind " + Quoted(key.Key) + " in " + BlockWords(key.Kind) +
                          ", so that the file does not load.";
            fresh->Advice = "Write the numbers in parentheses with commas between them.";
        }
        return;
    }
    std::string_view read = value.substr(1, value.size() - 2);
    const size_t brace = value.find('}');
    std::string_view meant = value.substr(0, brace);
    meant.remove_prefix(meant.starts_with('(') || meant.starts_with('[') ? 1 : 0);
    const size_t end = meant.find(')');
    std::string_view behind;
    if (end != std::string_view::npos) {
        behind = meant.substr(end + 1);
        meant = meant.substr(0, end);
    } else if (brace == std::string_view::npos && meant.ends_with(']')) {
        meant.remove_suffix(1);
    }
    const auto expected = static_cast<ptrdiff_t>(count);
    if (Pieces(meant) == 2 * expected && meant.find('.') == std::string_view::npos) {
        const size_t second = meant.find(',', meant.find(',') + 1);
        double first = 0;
        LeadingNumber(meant, &first);
        NoteNoNumber(key, meant.substr(0, second), first, notes);
        return;
    }
    for (size_t index = 0; index < count; ++index) {
        const std::string_view text = TakeUpTo(',', &meant);
        CheckFloat(key, text, TakeUpTo(',', &read), notes);
    }
    if (joint) {
        CheckJoint(key, value, behind.empty() ? TakeUpTo(',', &meant) : std::string_view(), behind, notes);
    } else {
        NoteBehindValue(behind, key, notes);
    }
    NoteBehindValue(meant, key, notes);
}

void CheckFace(const TextKey& key, std::string_view value, const TextBlock& block, TextNotes* notes)
{
    std::string numbers(value);
    std::erase_if(numbers, [](char c) { return c == '(' || c == ')'; });
    std::string_view read = numbers;
    std::string_view meant = read.substr(0, read.find('}'));
    for (int index = 0; index < 9; ++index) {
        const std::string_view text = TakeUpTo(',', &meant);
        CheckInt16(key, text, TakeUpTo(',', &read), notes);
    }
    const std::string_view material = TakeUpTo(',', &meant);
    CheckFaceMaterial(key, material, TakeUpTo(',', &read), block, notes);
    NoteBehindValue(meant, key, notes);
}

void CheckNumber(const TextKey& key, std::string_view value, TextNotes* notes)
{
    CheckFloat(key, value.substr(0, value.find('}')), value, notes);
}
