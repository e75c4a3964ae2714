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

/// A whole number of at most five digits that fits.
bool TakeInteger(const char** at, const char* end, int16_t* result)
{
    const char* next = *at;
    const bool negative = Take(&next, end, '-');
    int number = 0;
    const char* const first = next;
    while (next != end && *next >= '0' && *next <= '9' && next - first < 5) {
        number = number * 10 + (*next - '0');
        ++next;
    }
    if (next == first || number > 32767) {
        return false;
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

bool ReadVertexLine(const char* at, const char* end, MvmMesh* mesh)
{
    std::array<float, 3> numbers{};
    int16_t joint = 0;
    if (!TakeFloats(&at, end, &numbers)) {
        return false;
    }
    if (at != end && !(Take(&at, end, ',') && TakeInteger(&at, end, &joint) && at == end)) {
        return false;
    }
    AddVertex({numbers[0], numbers[2], -numbers[1]}, mesh);
    if (mesh->IsSkin) {
        mesh->VertexJoints.Items.back() = joint;
    }
    return true;
}

bool ReadFaceLine(const char* at, const char* end, MvmMesh* mesh)
{
    MvmFace face;
    int16_t material = 0;
    if (!TakeIntegers(&at, end, &face.Vertex) || !Take(&at, end, ',') || !TakeIntegers(&at, end, &face.TexCoord) ||
        !Take(&at, end, ',') || !TakeIntegers(&at, end, &face.Normal) || !Take(&at, end, ',') ||
        !TakeInteger(&at, end, &material) || at != end) {
        return false;
    }
    face.Material = material <= mesh->MeshMaterialCount() ? material : int16_t{0};
    mesh->Faces.Add(face);
    return true;
}

} // namespace

bool ReadCommonLine(std::string_view line, MvmMesh* mesh)
{
    const char* at = line.data();
    const char* const end = at + line.size();
    SkipBlanks(&at, end);
    if (at == end) {
        return false;
    }
    const char key = *at++;
    SkipBlanks(&at, end);
    if (!Take(&at, end, '=')) {
        return false;
    }
    SkipBlanks(&at, end);
    if (key == 'v') {
        return ReadVertexLine(at, end, mesh);
    }
    if (key == 'f') {
        return ReadFaceLine(at, end, mesh);
    }
    std::array<float, 3> normal{};
    if (key == 'n' && TakeFloats(&at, end, &normal) && at == end) {
        mesh->Normals.Add({normal[0], normal[2], -normal[1]});
        return true;
    }
    std::array<float, 2> pair{};
    if (key == 't' && TakeFloats(&at, end, &pair) && at == end) {
        mesh->TexCoords.Add({pair[0], pair[1]});
        return true;
    }
    return false;
}
