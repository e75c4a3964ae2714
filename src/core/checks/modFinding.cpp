#include "checks/modFinding.h"

#include <algorithm>

namespace {

constexpr FindingKind kinds[] = {
    {"unassigned", "vertices of skin or shadow without a bone"},
    {"other-kind", "vertices that name a bone of the other kind and lose it at the load"},
    {"unknown-joint", "vertices that name a joint number that no bone has"},
    {"skin-unused", "a skin or shadow that another one took the role from"},
    {"joint-shared", "bones of one kind with one joint number"},
    {"joint-missing", "a bone without a joint number"},
    {"lost-at-save", "vertices that the next save hands to another bone or to none"},
    {"no-skin", "no mesh is the skin"},
    {"no-instance", "a skin or shadow without an instance"},
    {"instance-mesh", "an instance without a mesh"},
    {"scale-zero", "an instance of scale 0"},
    {"mesh-material", "an entry of a mesh's material list without a material"},
    {"texture", "a texture that is missing or cannot be used"},
    {"duplicate-name", "several records of one kind with one name"},
    {"long-name", "a mesh name that a weights file cuts"},
    {"too-many", "more of something than the format can number"},
    {"face-number", "faces with numbers outside the mesh's arrays"},
    {"face-degenerate", "faces without area"},
    {"vertex-unused", "vertices that no face uses"},
    {"normal-missing", "a mesh without normals"},
    {"normal-length", "normals that are not of length 1"},
    {"text-between", "text outside the blocks, which a save drops"},
    {"unknown-block", "a block of an unknown kind"},
    {"unknown-key", "lines with a key that the block does not have, which a save drops"},
    {"text-behind", "text behind a value or a header, which a save drops"},
    {"name", "a name that the format cannot keep"},
    {"repeated-key", "a key that stands twice where one counts"},
    {"no-number", "a number that is none, or a missing one"},
    {"size", "a number too large for the format"},
    {"face-material", "faces whose material a load drops"},
    {"rounded", "a whole number with a fraction"},
    {"digits", "numbers of more than seven digits, which a save changes"},
    {"version", "a format version that a save changes"},
    {"line-ends", "line ends that are none in a model file"},
    {"cut-off", "a file that ends inside a block"},
    {"stray-brace", "a brace where none belongs"},
    {"stray", "hint: a vertex whose neighbours all belong to other bones"},
    {"patch", "hint: a few vertices apart from the rest of their bone"},
    {"lopsided", "hint: vertices whose mirror images do not belong to the mirror bone"},
    {"torn-face", "hint: faces between bones that are not linked"},
};

template <typename Number>
std::string FirstFew(const std::vector<Number>& numbers)
{
    constexpr size_t most = 8;
    std::string text;
    for (size_t i = 0; i < std::min(most, numbers.size()); ++i) {
        text += (i > 0 ? ", " : "") + std::to_string(numbers[i]);
    }
    return numbers.size() > most ? text + ", ..." : text;
}

} // namespace

std::string FirstPlaces(const std::vector<int32_t>& numbers)
{
    return FirstFew(numbers);
}

std::string FirstPlaces(const std::vector<int64_t>& numbers)
{
    return FirstFew(numbers);
}

std::span<const FindingKind> FindingKinds()
{
    return kinds;
}
