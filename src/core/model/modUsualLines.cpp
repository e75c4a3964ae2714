#include "model/modUsualLines.h"

#include <array>
#include <cstddef>
#include <cstdint>

#include "model/modMvmLines.h"

// A line ends at a CR, which is part of nothing that is looked for here: no step goes beyond it.

namespace {

// Each gives the end of what it took at `at`, nullptr when something else stands there. What follows a failure is
// skipped.

const char* TakeChar(const char* at, char expected)
{
    return at != nullptr && *at == expected ? at + 1 : nullptr;
}

const char* SkipBlanks(const char* at)
{
    while (at != nullptr && (*at == ' ' || *at == '\t')) {
        ++at;
    }
    return at;
}

/// Digits, appended to *number.
const char* TakeDigits(const char* at, uint64_t* number)
{
    for (unsigned digit = 0; (digit = static_cast<unsigned>(*at - '0')) <= 9; ++at) {
        *number = *number * 10 + digit;
    }
    return at;
}

/// An optional "-" and at most 15 digits with at most one point, so that a double holds them all.
const char* TakeFloat(const char* at, float* result)
{
    constexpr std::array<double, 16> powersOfTen = {1e0, 1e1, 1e2,  1e3,  1e4,  1e5,  1e6,  1e7,
                                                    1e8, 1e9, 1e10, 1e11, 1e12, 1e13, 1e14, 1e15};
    if (at == nullptr) {
        return nullptr;
    }
    const bool negative = *at == '-';
    at += negative ? 1 : 0;
    uint64_t digits = 0;
    const char* const first = at;
    at = TakeDigits(at, &digits);
    ptrdiff_t count = at - first;
    ptrdiff_t decimals = 0;
    if (*at == '.') {
        const char* const point = at;
        at = TakeDigits(at + 1, &digits);
        decimals = at - point - 1;
        count += decimals;
    }
    if (count == 0 || count > 15) {
        return nullptr;
    }
    // Both operands are exact, so the one rounding of the division gives the correctly rounded value.
    const double size = static_cast<double>(static_cast<int64_t>(digits)) / powersOfTen[static_cast<size_t>(decimals)];
    *result = static_cast<float>(negative ? -size : size);
    return at;
}

const char* TakeInt16(const char* at, int16_t* result)
{
    if (at == nullptr) {
        return nullptr;
    }
    const bool negative = *at == '-';
    at += negative ? 1 : 0;
    uint64_t digits = 0;
    const char* const end = TakeDigits(at, &digits);
    if (end == at || end - at > 5 || digits > INT16_MAX) {
        return nullptr;
    }
    const auto number = static_cast<int32_t>(digits);
    *result = static_cast<int16_t>(negative ? -number : number);
    return end;
}

/// "a,b,...)"
template <size_t Count>
const char* TakeFloats(const char* at, std::array<float, Count>* result)
{
    for (size_t index = 0; index < Count; ++index) {
        at = TakeChar(TakeFloat(at, &(*result)[index]), index + 1 < Count ? ',' : ')');
    }
    return at;
}

/// "(a,b,c),"
const char* TakeCorner(const char* at, std::array<int16_t, 3>* corner)
{
    at = TakeChar(at, '(');
    for (size_t index = 0; index < 3; ++index) {
        at = TakeChar(TakeInt16(at, &(*corner)[index]), index < 2 ? ',' : ')');
    }
    return TakeChar(at, ',');
}

/// The present place when the line ends there.
const char* TakeEnd(const char* at)
{
    return at != nullptr && *at == '\r' ? at : nullptr;
}

const char* ReadVertex(const char* at, MvmMesh* mesh)
{
    std::array<float, 3> numbers{};
    int16_t joint = 0;
    at = TakeFloats(at, &numbers);
    if (at != nullptr && *at == ',') {
        at = TakeInt16(at + 1, &joint);
    }
    at = TakeEnd(at);
    if (at != nullptr) {
        AddVertex({numbers[0], numbers[2], -numbers[1]}, joint, mesh);
    }
    return at;
}

const char* ReadNormal(const char* at, MvmMesh* mesh)
{
    std::array<float, 3> numbers{};
    at = TakeEnd(TakeFloats(at, &numbers));
    if (at != nullptr) {
        mesh->Normals.Add({numbers[0], numbers[2], -numbers[1]});
    }
    return at;
}

const char* ReadTexCoord(const char* at, MvmMesh* mesh)
{
    std::array<float, 2> numbers{};
    at = TakeEnd(TakeFloats(at, &numbers));
    if (at != nullptr) {
        mesh->TexCoords.Add({numbers[0], numbers[1]});
    }
    return at;
}

const char* ReadFace(const char* at, MvmMesh* mesh)
{
    MvmFace face;
    at = TakeCorner(TakeCorner(TakeCorner(at, &face.Vertex), &face.TexCoord), &face.Normal);
    at = TakeEnd(TakeInt16(at, &face.Material));
    if (at != nullptr) {
        face.Material = face.Material <= mesh->MeshMaterialCount() ? face.Material : int16_t{0};
        mesh->Faces.Add(face);
    }
    return at;
}

} // namespace

const char* ReadUsualLine(const char* at, MvmMesh* mesh)
{
    at = SkipBlanks(at);
    const char key = *at;
    if (key == '\r') {
        return nullptr;
    }
    at = SkipBlanks(TakeChar(SkipBlanks(at + 1), '='));
    if (key == 'f') {
        return ReadFace(at, mesh);
    }
    at = TakeChar(at, '(');
    switch (key) {
    case 'v':
        return ReadVertex(at, mesh);
    case 'n':
        return ReadNormal(at, mesh);
    case 't':
        return ReadTexCoord(at, mesh);
    default:
        return nullptr;
    }
}
