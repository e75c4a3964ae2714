#include "modExchangeModel.h"

#include <array>
#include <charconv>
#include <cstring>
#include <string_view>
#include <utility>

namespace {

/// FNV-1a over words of 32 bits, with the high bits folded in, since floats differ in those.
struct Sum {
    uint64_t Value = 14695981039346656037ULL;

    void Add(uint32_t word)
    {
        Value = (Value ^ word) * 1099511628211ULL;
        Value ^= Value >> 29;
    }
    void Add(float number)
    {
        uint32_t word = 0;
        std::memcpy(&word, &number, sizeof word);
        Add(word);
    }
    void Add(const Vec3& place)
    {
        Add(place.X);
        Add(place.Y);
        Add(place.Z);
    }
    void Add(const Vec2& pair)
    {
        Add(pair.U);
        Add(pair.V);
    }
    void Add(std::string_view text)
    {
        for (const char c : text) {
            Add(static_cast<uint32_t>(static_cast<unsigned char>(c)));
        }
        Add(uint32_t{0x100});
    }
};

} // namespace

std::string ShapeSum(const ExchangeModel& model, const ExchangeMesh& mesh)
{
    std::vector<uint32_t> bones;
    for (const ExchangeBone& bone : model.Bones) {
        Sum name;
        name.Add(bone.Name);
        bones.push_back(static_cast<uint32_t>(name.Value));
    }
    Sum sum;
    for (const ExchangeVertex& vertex : mesh.Vertices) {
        sum.Add(vertex.Place);
        sum.Add(vertex.Normal);
        sum.Add(vertex.TexCoord);
        sum.Add(vertex.Number);
        sum.Add(vertex.Numbers);
        sum.Add(vertex.Bone < 0 ? uint32_t{0} : bones[static_cast<size_t>(vertex.Bone)]);
    }
    for (const ExchangePart& part : mesh.Parts) {
        sum.Add(part.Material < 0 ? std::string_view() : model.Materials[static_cast<size_t>(part.Material)].Name);
        for (const auto& triangle : part.Triangles) {
            for (const uint32_t corner : triangle) {
                sum.Add(corner);
            }
        }
    }
    std::array<char, 16> digits{};
    const auto [end, error] = std::to_chars(digits.data(), digits.data() + digits.size(), sum.Value, 16);
    return {digits.data(), end};
}

void GroupByPart(ExchangeMesh* mesh)
{
    std::vector<ExchangeVertex> grouped;
    std::vector<std::pair<int32_t, uint32_t>> places(mesh->Vertices.size(), {-1, 0}); // part, and index in `grouped`
    for (size_t part = 0; part < mesh->Parts.size(); ++part) {
        for (auto& triangle : mesh->Parts[part].Triangles) {
            for (uint32_t& corner : triangle) {
                auto& [inPart, index] = places[corner];
                if (inPart != static_cast<int32_t>(part)) {
                    inPart = static_cast<int32_t>(part);
                    index = static_cast<uint32_t>(grouped.size());
                    grouped.push_back(mesh->Vertices[corner]);
                }
                corner = index;
            }
        }
    }
    mesh->Vertices = std::move(grouped);
}

void SwapSides(ExchangeMesh* mesh)
{
    for (ExchangePart& part : mesh->Parts) {
        for (auto& triangle : part.Triangles) {
            std::swap(triangle[1], triangle[2]);
        }
    }
}
