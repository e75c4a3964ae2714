#include "weights/modSlips.h"

#include <algorithm>
#include <array>
#include <map>
#include <numeric>
#include <utility>

#include "app/modMvmDef.h"

namespace {

/// For each vertex the lowest one at its place; entry 0 is not used.
std::vector<int32_t> PlacesOf(const MvmMesh& mesh)
{
    std::vector<int32_t> order(mesh.Vertices.Items.size());
    std::iota(order.begin(), order.end(), 1);
    const auto key = [&mesh](int32_t vertex) {
        const Vec3& at = mesh.Vertices[vertex];
        return std::array{at.X, at.Y, at.Z};
    };
    std::stable_sort(order.begin(), order.end(), [&](int32_t a, int32_t b) { return key(a) < key(b); });
    std::vector<int32_t> places(order.size() + 1);
    for (size_t i = 0; i < order.size(); ++i) {
        const bool same = i > 0 && key(order[i - 1]) == key(order[i]);
        places[static_cast<size_t>(order[i])] = same ? places[static_cast<size_t>(order[i - 1])] : order[i];
    }
    return places;
}

/// Pairs of a place and a neighbouring vertex, ordered, each once.
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

} // namespace

std::vector<Slip> FindSlips(int16_t mesh)
{
    std::vector<Slip> slips;
    if (!IsValidMesh(mesh) || Meshes[mesh].VertexBones.Count() < Meshes[mesh].VertexCount()) {
        return slips;
    }
    const MvmMesh& skin = Meshes[mesh];
    const std::vector<int32_t> places = PlacesOf(skin);
    const auto neighbours = NeighboursOf(skin, places);
    for (int32_t vertex = 1; vertex <= skin.VertexCount(); ++vertex) {
        const int16_t bone = skin.VertexBones[vertex];
        const int32_t place = places[static_cast<size_t>(vertex)];
        std::map<int16_t, int32_t> votes;
        for (auto at = std::lower_bound(neighbours.begin(), neighbours.end(), std::pair(place, 0));
             at != neighbours.end() && at->first == place; ++at) {
            ++votes[skin.VertexBones[at->second]];
        }
        if (bone == 0 || votes.empty() || votes.contains(bone) || votes.contains(0)) {
            continue;
        }
        const auto most = std::max_element(votes.begin(), votes.end(),
                                           [](const auto& a, const auto& b) { return a.second < b.second; });
        slips.push_back({.Vertex = vertex, .Bone = bone, .Among = most->first});
    }
    return slips;
}

int32_t NextUnassigned(int16_t mesh, int32_t vertex)
{
    if (!IsValidMesh(mesh)) {
        return 0;
    }
    const Array1<int16_t>& bones = Meshes[mesh].VertexBones;
    for (int32_t step = 1; step <= bones.Count(); ++step) {
        const int32_t at = (std::max(vertex, 0) + step - 1) % bones.Count() + 1;
        if (bones[at] == 0) {
            return at;
        }
    }
    return 0;
}
