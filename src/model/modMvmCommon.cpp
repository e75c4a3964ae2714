#include "model/modMvmCommon.h"

#include <array>
#include <bit>

#include "model/modNumbers.h"

namespace {

constexpr size_t sparseLimit = 64; ///< other lines that a text may hold before they are weighed against the common ones

/// A part of a line that is read character by character, with a bit for each of its characters that is no digit. Kept in
/// registers: what works on it must be inlined.
struct Window {
    const char* Text;
    uint64_t Others; ///< without those that were passed
    unsigned At = 0; ///< the present character

    explicit Window(const char* text) : Text(text), Others(OthersOf64(text)) {}
};

/// Takes one character that is no digit; false when another one stands there.
[[gnu::always_inline]] inline bool Take(Window* window, char expected)
{
    if (window->Text[window->At] != expected) {
        return false;
    }
    ++window->At;
    window->Others &= window->Others - 1;
    return true;
}

/// Digits up to the next other character. Where the window ends before it, the last of them is left standing.
[[gnu::always_inline]] inline unsigned DigitsAhead(const Window& window)
{
    constexpr uint64_t last = uint64_t{1} << 63;
    return static_cast<unsigned>(std::countr_zero(window.Others | last)) - window.At;
}

/// A number of at most 15 digits, so that a double holds them all.
[[gnu::always_inline]] inline bool TakeFloat(Window* window, float* result)
{
    const unsigned negative = window->Text[window->At] == '-' ? 1 : 0; // no branch, since signs cannot be foretold
    window->At += negative;
    window->Others &= window->Others - negative;
    const unsigned whole = DigitsAhead(*window);
    if (whole - 1 > 7) {
        return false;
    }
    const char* at = window->Text + window->At;
    uint64_t digits = whole == 1 ? static_cast<uint64_t>(*at - '0') : DigitsValue(at, whole);
    unsigned decimals = 0;
    window->At += whole;
    if (Take(window, '.')) {
        decimals = DigitsAhead(*window);
        if (decimals - 1 > 14 - whole) {
            return false;
        }
        at = window->Text + window->At;
        unsigned left = decimals;
        if (left > 8) {
            digits = digits * wholePowers[8] + DigitsValue(at, 8);
            at += 8;
            left -= 8;
        }
        digits = digits * wholePowers[left] + DigitsValue(at, left);
        window->At += decimals;
    }
    // Both operands are exact, so the one rounding of the division gives the correctly rounded value.
    const double size = static_cast<double>(static_cast<int64_t>(digits)) / powersOfTen[decimals];
    *result = static_cast<float>(std::bit_cast<double>(std::bit_cast<uint64_t>(size) ^ uint64_t{negative} << 63));
    return true;
}

/// "a,b,...)"
template <size_t Count>
[[gnu::always_inline]] inline bool TakeFloats(Window* window, std::array<float, Count>* result)
{
    for (size_t index = 0; index < Count; ++index) {
        if (!TakeFloat(window, &(*result)[index]) || !Take(window, index + 1 < Count ? ',' : ')')) {
            return false;
        }
    }
    return true;
}

/// A whole number that fits; false for one that surely does not or that goes on.
[[gnu::always_inline]] inline bool TakeInteger(Window* window, int16_t* result)
{
    const bool negative = Take(window, '-');
    const unsigned count = DigitsAhead(*window);
    if (count - 1 > 7) {
        return false;
    }
    const auto number = static_cast<int>(DigitsValue(window->Text + window->At, count));
    window->At += count;
    *result = static_cast<int16_t>(negative ? -number : number);
    return number <= 32767;
}

/// "a,b,c)"
[[gnu::always_inline]] inline bool TakeIntegers(Window* window, std::array<int16_t, 3>* result)
{
    return TakeInteger(window, &(*result)[0]) && Take(window, ',') && TakeInteger(window, &(*result)[1]) &&
           Take(window, ',') && TakeInteger(window, &(*result)[2]) && Take(window, ')');
}

/// The end of the line when the window stands there, else nullptr.
[[gnu::always_inline]] inline const char* LineEnd(const Window& window)
{
    const char* const at = window.Text + window.At;
    return *at == '\r' ? at : nullptr;
}

const char* ReadVertexLine(const char* at, CommonLines* lines)
{
    Window window(at);
    std::array<float, 3> numbers{};
    int16_t joint = 0;
    if (!TakeFloats(&window, &numbers) || (Take(&window, ',') && !TakeInteger(&window, &joint))) {
        return nullptr;
    }
    const char* const end = LineEnd(window);
    if (end != nullptr) {
        lines->Vertices.push_back({numbers[0], numbers[2], -numbers[1]});
        lines->Joints.push_back(joint);
    }
    return end;
}

const char* ReadNormalLine(const char* at, CommonLines* lines)
{
    Window window(at);
    std::array<float, 3> numbers{};
    const char* const end = TakeFloats(&window, &numbers) ? LineEnd(window) : nullptr;
    if (end != nullptr) {
        lines->Normals.push_back({numbers[0], numbers[2], -numbers[1]});
    }
    return end;
}

const char* ReadTexCoordLine(const char* at, CommonLines* lines)
{
    Window window(at);
    std::array<float, 2> numbers{};
    const char* const end = TakeFloats(&window, &numbers) ? LineEnd(window) : nullptr;
    if (end != nullptr) {
        lines->TexCoords.push_back({numbers[0], numbers[1]});
    }
    return end;
}

const char* ReadFaceLine(const char* at, CommonLines* lines)
{
    Window window(at);
    MvmFace face;
    if (!TakeIntegers(&window, &face.Vertex) || !Take(&window, ',') || !Take(&window, '(') ||
        !TakeIntegers(&window, &face.TexCoord) || !Take(&window, ',') || !Take(&window, '(') ||
        !TakeIntegers(&window, &face.Normal) || !Take(&window, ',') || !TakeInteger(&window, &face.Material)) {
        return nullptr;
    }
    const char* const end = LineEnd(window);
    if (end != nullptr) {
        lines->Faces.push_back(face);
    }
    return end;
}

void SkipBlanks(const char** at)
{
    while (**at == ' ' || **at == '\t') {
        ++*at;
    }
}

/// Moves *at behind the key, "=" and "(" of a line and gives the key, 0 when these are not what it starts with.
char TakeKey(const char** at)
{
    constexpr uint64_t usual = 0x28203D200020; // " k = (" without its key
    if ((LoadEight(*at) & 0xFFFFFFFF00FF) == usual) {
        *at += 6;
        return (*at)[-5];
    }
    SkipBlanks(at);
    const char key = **at;
    if (key == '\r') {
        return 0;
    }
    ++*at;
    for (const char expected : {'=', '('}) {
        SkipBlanks(at);
        if (**at != expected) {
            return 0;
        }
        ++*at;
    }
    return key;
}

/// Gives the end of the line, or nullptr for a line that is not of these kinds or shapes; then nothing is changed.
const char* ReadCommonLine(const char* at, CommonLines* lines)
{
    switch (TakeKey(&at)) {
    case 'v':
        return ReadVertexLine(at, lines);
    case 'n':
        return ReadNormalLine(at, lines);
    case 't':
        return ReadTexCoordLine(at, lines);
    case 'f':
        return ReadFaceLine(at, lines);
    default:
        return nullptr;
    }
}

/// The entries from `first` to `end`, appended.
template <typename T>
void AddPart(const std::vector<T>& from, size_t first, size_t end, std::vector<T>* to)
{
    to->insert(to->end(), from.data() + first, from.data() + end);
}

} // namespace

void ReadCommonLines(const char* text, size_t size, CommonLines* lines)
{
    lines->Vertices.clear();
    lines->Joints.clear();
    lines->Normals.clear();
    lines->TexCoords.clear();
    lines->Faces.clear();
    lines->Runs.clear();
    const char* const end = text + size;
    size_t common = 0;
    size_t others = 0;
    const char* at = text;
    while (at != end && (others < sparseLimit || others < common)) {
        CommonRun run;
        run.Start = static_cast<size_t>(at - text);
        run.First = {lines->Vertices.size(), lines->Normals.size(), lines->TexCoords.size(), lines->Faces.size()};
        while (at != end) {
            const char* const lineEnd = ReadCommonLine(at, lines);
            if (lineEnd == nullptr) {
                break;
            }
            ++run.Lines;
            at = BehindLine(lineEnd, end);
        }
        run.End = static_cast<size_t>(at - text);
        if (run.Lines > 0) {
            lines->Runs.push_back(run);
            common += static_cast<size_t>(run.Lines);
        }
        if (at != end) {
            at = BehindLine(FindLineEnd(at, end), end);
            ++others;
        }
    }
}

void AddCommonRun(const CommonLines& lines, size_t index, MvmMesh* mesh)
{
    const CommonCounts& first = lines.Runs[index].First;
    const CommonCounts end = index + 1 < lines.Runs.size() ? lines.Runs[index + 1].First
                                                           : CommonCounts{lines.Vertices.size(), lines.Normals.size(),
                                                                          lines.TexCoords.size(), lines.Faces.size()};
    if (mesh->IsSkin) {
        // Grown first, so that they cover the vertices also when memory ends between the three.
        mesh->VertexBones.Items.resize(mesh->Vertices.Items.size() + end.Vertices - first.Vertices);
        mesh->VertexJoints.Items.resize(mesh->Vertices.Items.size());
        AddPart(lines.Joints, first.Vertices, end.Vertices, &mesh->VertexJoints.Items);
    }
    AddPart(lines.Vertices, first.Vertices, end.Vertices, &mesh->Vertices.Items);
    AddPart(lines.Normals, first.Normals, end.Normals, &mesh->Normals.Items);
    AddPart(lines.TexCoords, first.TexCoords, end.TexCoords, &mesh->TexCoords.Items);
    const size_t firstFace = mesh->Faces.Items.size();
    AddPart(lines.Faces, first.Faces, end.Faces, &mesh->Faces.Items);
    const int32_t materials = mesh->MeshMaterialCount();
    for (size_t face = firstFace; face < mesh->Faces.Items.size(); ++face) {
        int16_t& material = mesh->Faces.Items[face].Material;
        material = material <= materials ? material : int16_t{0};
    }
}
