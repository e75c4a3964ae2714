#include <array>

#include "model/modMvmBody.h"
#include "model/modNumbers.h"

// The lines that make up nearly all of a large model, read in one pass over their characters.

namespace {

/// Takes one character; false when another one or the end stands there.
bool Take(const char** at, const char* end, char expected)
{
    if (*at == end || **at != expected) {
        return false;
    }
    ++*at;
    return true;
}

void SkipBlanks(const char** at, const char* end)
{
    while (*at != end && (**at == ' ' || **at == '\t')) {
        ++*at;
    }
}

bool AtLineEnd(const char* at, const char* end)
{
    return at == end || *at == '\r';
}

/// "(a,b,...)" with numbers that surely fit a float.
template <size_t Count>
bool TakeFloats(const char** at, const char* end, std::array<float, Count>* result)
{
    for (size_t index = 0; index < Count; ++index) {
        double number = 0;
        if (!Take(at, end, index == 0 ? '(' : ',') || !PlainNumber(at, end, &number)) {
            return false;
        }
        (*result)[index] = static_cast<float>(number); // 18 digits at most, so it fits
    }
    return Take(at, end, ')');
}

/// A whole number that fits; false for one that surely does not or that goes on.
bool TakeInteger(const char** at, const char* end, int16_t* result)
{
    const char* next = *at;
    const bool negative = Take(&next, end, '-');
    int number = 0;
    if (CanReadDigits(next, end)) {
        const DigitRun run = ReadDigits(next);
        if (run.Count == 0 || run.Value > 32767) {
            return false;
        }
        number = static_cast<int>(run.Value);
        next += run.Count;
    } else {
        const char* const first = next;
        for (; next != end && *next >= '0' && *next <= '9' && number <= 32767; ++next) {
            number = number * 10 + (*next - '0');
        }
        if (next == first || number > 32767) {
            return false;
        }
    }
    *result = static_cast<int16_t>(negative ? -number : number);
    *at = next;
    return true;
}

bool TakeIntegers(const char** at, const char* end, std::array<int16_t, 3>* result)
{
    return Take(at, end, '(') && TakeInteger(at, end, &(*result)[0]) && Take(at, end, ',') &&
           TakeInteger(at, end, &(*result)[1]) && Take(at, end, ',') && TakeInteger(at, end, &(*result)[2]) &&
           Take(at, end, ')');
}

const char* ReadVertexLine(const char* at, const char* end, MvmMesh* mesh)
{
    std::array<float, 3> numbers{};
    int16_t joint = 0;
    if (!TakeFloats(&at, end, &numbers)) {
        return nullptr;
    }
    if (!AtLineEnd(at, end) && !(Take(&at, end, ',') && TakeInteger(&at, end, &joint) && AtLineEnd(at, end))) {
        return nullptr;
    }
    AddVertex({numbers[0], numbers[2], -numbers[1]}, mesh);
    if (mesh->IsSkin) {
        mesh->VertexJoints.Items.back() = joint;
    }
    return at;
}

const char* ReadFaceLine(const char* at, const char* end, MvmMesh* mesh)
{
    MvmFace face;
    int16_t material = 0;
    if (!TakeIntegers(&at, end, &face.Vertex) || !Take(&at, end, ',') || !TakeIntegers(&at, end, &face.TexCoord) ||
        !Take(&at, end, ',') || !TakeIntegers(&at, end, &face.Normal) || !Take(&at, end, ',') ||
        !TakeInteger(&at, end, &material) || !AtLineEnd(at, end)) {
        return nullptr;
    }
    face.Material = material <= mesh->MeshMaterialCount() ? material : int16_t{0};
    mesh->Faces.Add(face);
    return at;
}

} // namespace

const char* ReadCommonLine(const char* at, const char* end, MvmMesh* mesh)
{
    SkipBlanks(&at, end);
    if (at == end) {
        return nullptr;
    }
    const char key = *at++;
    SkipBlanks(&at, end);
    if (!Take(&at, end, '=')) {
        return nullptr;
    }
    SkipBlanks(&at, end);
    if (key == 'v') {
        return ReadVertexLine(at, end, mesh);
    }
    if (key == 'f') {
        return ReadFaceLine(at, end, mesh);
    }
    std::array<float, 3> normal{};
    if (key == 'n' && TakeFloats(&at, end, &normal) && AtLineEnd(at, end)) {
        mesh->Normals.Add({normal[0], normal[2], -normal[1]});
        return at;
    }
    std::array<float, 2> pair{};
    if (key == 't' && TakeFloats(&at, end, &pair) && AtLineEnd(at, end)) {
        mesh->TexCoords.Add({pair[0], pair[1]});
        return at;
    }
    return nullptr;
}
