#include "weights/modPlaces.h"

#include <algorithm>
#include <array>
#include <bit>
#include <cstddef>
#include <numeric>

std::vector<int32_t> PlacesOf(const MvmMesh& mesh)
{
    std::vector<int32_t> order(mesh.Vertices.Items.size());
    std::iota(order.begin(), order.end(), 1);
    // Any order will do, but not-a-number has none; a zero has two signs.
    const auto bits = [](float coordinate) { return std::bit_cast<uint32_t>(coordinate + 0.0F); };
    const auto key = [&](int32_t vertex) {
        const Vec3& at = mesh.Vertices[vertex];
        return std::array{bits(at.X), bits(at.Y), bits(at.Z)};
    };
    std::stable_sort(order.begin(), order.end(), [&](int32_t a, int32_t b) { return key(a) < key(b); });
    std::vector<int32_t> places(order.size() + 1);
    for (size_t i = 0; i < order.size(); ++i) {
        const bool same = i > 0 && key(order[i - 1]) == key(order[i]);
        places[static_cast<size_t>(order[i])] = same ? places[static_cast<size_t>(order[i - 1])] : order[i];
    }
    return places;
}

std::vector<std::pair<int32_t, int32_t>> NeighboursOf(const MvmMesh& mesh, const std::vector<int32_t>& places)
{
    std::vector<std::pair<int32_t, int32_t>> neighbours;
    for (const MvmFace& face : mesh.Faces) {
        if (!FaceCornersValid(mesh, face)) {
            continue;
        }
        for (const int16_t from : face.Vertex) {
            for (const int16_t to : face.Vertex) {
                const int32_t place = places[static_cast<size_t>(from)];
                if (place != places[static_cast<size_t>(to)]) {
                    neighbours.emplace_back(place, to);
                }
            }
        }
    }
    std::sort(neighbours.begin(), neighbours.end());
    neighbours.erase(std::unique(neighbours.begin(), neighbours.end()), neighbours.end());
    return neighbours;
}
