#include "weights/modSlips.h"

#include <algorithm>
#include <map>
#include <utility>

#include "app/modMvmDef.h"
#include "weights/modPlaces.h"

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
