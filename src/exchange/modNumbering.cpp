#include "modNumbering.h"

#include <cmath>

namespace {

constexpr uint32_t range = uint32_t{1} << 22;
constexpr float highest = 1 << 20;

uint32_t Mixed(uint32_t number)
{
    number ^= number >> 16;
    number *= 0x7FEB352DU;
    number ^= number >> 15;
    number *= 0x846CA68BU;
    number ^= number >> 16;
    return number;
}

bool IsWhole(float value, float least, float most)
{
    return value >= least && value <= most && value == std::floor(value);
}

} // namespace

uint32_t NumberSalt(const MvmMesh& mesh, int32_t meshIndex)
{
    uint32_t sum = Mixed(static_cast<uint32_t>(meshIndex));
    for (const char c : mesh.Name) {
        sum = Mixed(sum ^ static_cast<unsigned char>(c)) + 1;
    }
    sum = Mixed(sum ^ static_cast<uint32_t>(mesh.VertexCount())) + 1;
    for (const MvmFace& face : mesh.Faces) {
        for (const int16_t vertex : face.Vertex) {
            sum = Mixed(sum ^ static_cast<uint16_t>(vertex)) + 1;
        }
    }
    return sum % range;
}

Vec2 ConfirmedNumber(int32_t number, uint32_t salt)
{
    return {static_cast<float>(number), static_cast<float>(1 + (Mixed(static_cast<uint32_t>(number)) + salt) % range)};
}

bool SaltOf(const Vec2& numbers, uint32_t* salt)
{
    if (!IsWhole(numbers.U, 1, highest) || !IsWhole(numbers.V, 1, static_cast<float>(range))) {
        return false;
    }
    *salt = (static_cast<uint32_t>(numbers.V) - 1 - Mixed(static_cast<uint32_t>(numbers.U))) % range;
    return true;
}

int32_t NumberFrom(const Vec2& numbers, uint32_t salt)
{
    uint32_t found = 0;
    return SaltOf(numbers, &found) && found == salt ? static_cast<int32_t>(numbers.U) : 0;
}
