#include "modAssignmentColors.h"

#include <algorithm>
#include <cstddef>
#include <cstdint>

namespace {

std::vector<Color4> vertexColors;

} // namespace

const std::vector<Color4>& ColorsOfVertices(const MvmMesh& mesh, const AssignmentColors& colors)
{
    const size_t known = std::min(mesh.VertexBones.Items.size(), mesh.Vertices.Items.size());
    vertexColors.assign(mesh.Vertices.Items.size(), colors.Unassigned);
    for (size_t i = 0; i < known; ++i) {
        const int16_t bone = mesh.VertexBones.Items[i];
        if (bone >= 1) {
            vertexColors[i] = bone == ActiveBone ? colors.Active : colors.Other;
        }
    }
    return vertexColors;
}
