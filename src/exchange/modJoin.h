#pragma once

#include <array>
#include <cstdint>
#include <string>
#include <vector>

#include "modExchangeModel.h"

// Corners of a file become vertices that faces share, as models have them.

/// A triangle; numbers count from 0.
struct JoinedFace {
    std::array<int32_t, 3> Vertex{};
    std::array<int32_t, 3> TexCoord{};
    std::array<int32_t, 3> Normal{};
    int32_t Part = 0;                  ///< of the exchanged mesh
    std::array<uint32_t, 3> Corners{}; ///< indices into the exchanged mesh's vertices
};

struct JoinedMesh {
    std::vector<Vec3> Vertices{};
    std::vector<int32_t> Bones{};   ///< of each vertex, as the exchanged mesh has them
    std::vector<int32_t> Numbers{}; ///< of each vertex: the number that its corners were given, 0 for none
    std::vector<Vec2> TexCoords{};  ///< counted from the bottom of a picture, as models have them
    std::vector<Vec3> Normals{};
    std::vector<JoinedFace> Faces{};
    size_t Flat = 0; ///< triangles left out, since two corners became one vertex
};

/// For each triangle, over all parts in order, the numbers of its corners, 0 for none.
using CornerNumbers = std::vector<std::array<int32_t, 3>>;

/// The numbers that corners carry and confirm among themselves: those of a mesh that confirms at least three.
[[nodiscard]] CornerNumbers NumbersInFile(const ExchangeMesh& mesh);

/// Corners with the same number, place and bone are one vertex; so are those with the same place and bone and no
/// number. Numbered vertices come first, in the order of their numbers; the same holds for texture coordinates and
/// normals. Equal ones without numbers are one.
[[nodiscard]] JoinedMesh JoinCorners(const ExchangeMesh& mesh, const CornerNumbers& numbers);

/// A sentence when a vertex lies where no float reaches, else empty.
[[nodiscard]] std::string OutOfReach(const std::string& mesh, const std::vector<Vec3>& vertices);
/// What is more than a mesh of a model takes, as a sentence; empty when it fits.
[[nodiscard]] std::string OverLimits(const std::string& mesh, size_t vertices, size_t texCoords, size_t normals,
                                     size_t faces);
