#include "modDroppedWeights.h"

#include <algorithm>
#include <array>
#include <cstdio>
#include <numeric>

#include "modJoin.h"

namespace {

/// What each vertex that the corners of a mesh become has lost, 0 to 1; those that lost nothing are left out.
std::vector<float> DroppedOf(const ExchangeMesh& mesh)
{
    const JoinedMesh joined = JoinCorners(mesh, NumbersInFile(mesh));
    std::vector<float> dropped(joined.Vertices.size());
    for (const JoinedFace& face : joined.Faces) {
        for (size_t k = 0; k < 3; ++k) {
            float& share = dropped[static_cast<size_t>(face.Vertex[k])];
            share = std::max(share, mesh.Vertices[face.Corners[k]].Dropped);
        }
    }
    std::erase(dropped, 0.0F);
    return dropped;
}

std::string Percent(double share)
{
    std::array<char, 16> text{};
    (void)std::snprintf(text.data(), text.size(), "%.1f %%", 100 * share);
    return text.data();
}

} // namespace

std::string ToldWeights(const ExchangeModel& model)
{
    std::vector<float> dropped;
    for (const ExchangeMesh& mesh : model.Meshes) {
        const auto lost = [](const ExchangeVertex& vertex) { return vertex.Dropped > 0; };
        if (std::any_of(mesh.Vertices.begin(), mesh.Vertices.end(), lost)) {
            const std::vector<float> own = DroppedOf(mesh);
            dropped.insert(dropped.end(), own.begin(), own.end());
        }
    }
    if (dropped.empty()) {
        return {};
    }
    const double mean = std::accumulate(dropped.begin(), dropped.end(), 0.0) / static_cast<double>(dropped.size());
    return (dropped.size() == 1 ? "1 vertex leans" : std::to_string(dropped.size()) + " vertices lean") +
           " on several bones; the largest weight counts. Dropped: " + Percent(mean) + " of their weight on average, " +
           Percent(*std::max_element(dropped.begin(), dropped.end())) + " at most.";
}
