#include "modJoin.h"

#include <algorithm>
#include <bit>
#include <cmath>
#include <limits>
#include <map>
#include <numeric>
#include <set>
#include <unordered_map>

#include "modNumbering.h"

namespace {

/// What makes entries one: a number and the bits of up to three floats and a bone.
using Key = std::array<uint32_t, 5>;

struct KeyHash {
    size_t operator()(const Key& key) const
    {
        uint64_t sum = 0;
        for (const uint32_t word : key) {
            sum = (sum ^ word) * 0x9E3779B97F4A7C15ULL;
            sum ^= sum >> 29U;
        }
        return sum;
    }
};

uint32_t BitsOf(float number)
{
    return std::bit_cast<uint32_t>(number + 0.0F); // one zero for both
}

/// Gives each different key an index in the order of numbers (the first word; 0 stands behind all), then of coming.
struct Distinct {
    std::unordered_map<Key, int32_t, KeyHash> Indices{};
    std::vector<Key> Keys{};

    int32_t IndexOf(const Key& key)
    {
        const auto [found, isNew] = Indices.emplace(key, static_cast<int32_t>(Keys.size()));
        if (isNew) {
            Keys.push_back(key);
        }
        return found->second;
    }
    /// The new place of each index, in that order.
    [[nodiscard]] std::vector<int32_t> Places() const
    {
        std::vector<int32_t> order(Keys.size());
        std::iota(order.begin(), order.end(), 0);
        const auto rank = [&](int32_t index) { return Keys[static_cast<size_t>(index)][0] - 1; };
        std::stable_sort(order.begin(), order.end(), [&](int32_t a, int32_t b) { return rank(a) < rank(b); });
        std::vector<int32_t> places(Keys.size());
        for (size_t i = 0; i < order.size(); ++i) {
            places[static_cast<size_t>(order[i])] = static_cast<int32_t>(i);
        }
        return places;
    }
};

/// The number of an entry that a confirmed corner carries, 0 for none.
uint32_t EntryNumber(bool isConfirmed, float number)
{
    return isConfirmed && number >= 1 && number <= INT16_MAX ? static_cast<uint32_t>(number) : 0;
}

template <typename T>
std::vector<T> Reordered(const std::vector<T>& items, const std::vector<int32_t>& places)
{
    std::vector<T> result(items.size());
    for (size_t i = 0; i < items.size(); ++i) {
        result[static_cast<size_t>(places[i])] = items[i];
    }
    return result;
}

void Renumber(const std::vector<int32_t>& places, std::array<int32_t, 3>* numbers)
{
    for (int32_t& number : *numbers) {
        number = places[static_cast<size_t>(number)];
    }
}

} // namespace

CornerNumbers NumbersInFile(const ExchangeMesh& mesh)
{
    constexpr size_t enough = 3;
    std::map<uint32_t, std::set<float>> bySalt;
    for (const ExchangeVertex& vertex : mesh.Vertices) {
        uint32_t salt = 0;
        if (SaltOf(vertex.Number, &salt)) {
            std::set<float>& numbers = bySalt[salt];
            if (numbers.size() < enough) {
                numbers.insert(vertex.Number.U);
            }
        }
    }
    // Numbers of several meshes that were joined would stand for different vertices: the best known mesh's count.
    std::map<uint32_t, size_t> votes;
    for (const ExchangeVertex& vertex : mesh.Vertices) {
        uint32_t salt = 0;
        if (SaltOf(vertex.Number, &salt) && bySalt[salt].size() >= enough) {
            ++votes[salt];
        }
    }
    const auto best =
        std::max_element(votes.begin(), votes.end(), [](const auto& a, const auto& b) { return a.second < b.second; });
    CornerNumbers numbers;
    for (const ExchangePart& part : mesh.Parts) {
        for (const auto& triangle : part.Triangles) {
            std::array<int32_t, 3>& own = numbers.emplace_back();
            for (size_t k = 0; k < 3 && best != votes.end(); ++k) {
                own[k] = NumberFrom(mesh.Vertices[triangle[k]].Number, best->first);
            }
        }
    }
    return numbers;
}

JoinedMesh JoinCorners(const ExchangeMesh& mesh, const CornerNumbers& numbers)
{
    JoinedMesh joined;
    Distinct vertices;
    Distinct pairs;
    Distinct normals;
    size_t index = 0;
    for (size_t part = 0; part < mesh.Parts.size(); ++part) {
        for (const auto& triangle : mesh.Parts[part].Triangles) {
            const std::array<int32_t, 3>& own = numbers[index++];
            JoinedFace face;
            face.Part = static_cast<int32_t>(part);
            face.Corners = triangle;
            for (size_t k = 0; k < 3; ++k) {
                const ExchangeVertex& corner = mesh.Vertices[triangle[k]];
                const bool isConfirmed = own[k] > 0 && corner.Number.U == static_cast<float>(own[k]);
                const Vec2 pair{corner.TexCoord.U, 1 - corner.TexCoord.V};
                face.Vertex[k] =
                    vertices.IndexOf({static_cast<uint32_t>(own[k]), BitsOf(corner.Place.X), BitsOf(corner.Place.Y),
                                      BitsOf(corner.Place.Z), static_cast<uint32_t>(corner.Bone)});
                if (static_cast<size_t>(face.Vertex[k]) == joined.Vertices.size()) {
                    joined.Vertices.push_back(corner.Place);
                    joined.Bones.push_back(corner.Bone);
                    joined.Numbers.push_back(own[k]);
                }
                face.TexCoord[k] =
                    pairs.IndexOf({EntryNumber(isConfirmed, corner.Numbers.U), BitsOf(pair.U), BitsOf(pair.V)});
                if (static_cast<size_t>(face.TexCoord[k]) == joined.TexCoords.size()) {
                    joined.TexCoords.push_back(pair);
                }
                face.Normal[k] = normals.IndexOf({EntryNumber(isConfirmed, corner.Numbers.V), BitsOf(corner.Normal.X),
                                                  BitsOf(corner.Normal.Y), BitsOf(corner.Normal.Z)});
                if (static_cast<size_t>(face.Normal[k]) == joined.Normals.size()) {
                    joined.Normals.push_back(corner.Normal);
                }
            }
            if (face.Vertex[0] == face.Vertex[1] || face.Vertex[1] == face.Vertex[2] ||
                face.Vertex[2] == face.Vertex[0]) {
                ++joined.Flat;
            } else {
                joined.Faces.push_back(face);
            }
        }
    }
    const std::array<std::vector<int32_t>, 3> places = {vertices.Places(), pairs.Places(), normals.Places()};
    joined.Vertices = Reordered(joined.Vertices, places[0]);
    joined.Bones = Reordered(joined.Bones, places[0]);
    joined.Numbers = Reordered(joined.Numbers, places[0]);
    joined.TexCoords = Reordered(joined.TexCoords, places[1]);
    joined.Normals = Reordered(joined.Normals, places[2]);
    for (JoinedFace& face : joined.Faces) {
        Renumber(places[0], &face.Vertex);
        Renumber(places[1], &face.TexCoord);
        Renumber(places[2], &face.Normal);
    }
    return joined;
}

std::string OutOfReach(const std::string& mesh, const std::vector<Vec3>& vertices)
{
    const bool good = std::all_of(vertices.begin(), vertices.end(), [](const Vec3& place) {
        return std::isfinite(place.X) && std::isfinite(place.Y) && std::isfinite(place.Z);
    });
    return good ? std::string() : "Places of the mesh \"" + mesh + "\" are too far away.";
}

std::string OverLimits(const std::string& mesh, size_t vertices, size_t texCoords, size_t normals, size_t faces)
{
    constexpr size_t most = INT16_MAX;
    std::string text;
    const auto add = [&](size_t count, const char* what) {
        if (count > most) {
            text += (text.empty() ? "" : ", ") + std::to_string(count) + " " + what + " (" +
                    std::to_string(count - most) + " too many)";
        }
    };
    add(vertices, "vertices");
    add(texCoords, "texture coordinates");
    add(normals, "normals");
    add(faces, "faces");
    return text.empty() ? text : "The mesh \"" + mesh + "\" has " + text + "; a model takes 32767 of each in a mesh.";
}
