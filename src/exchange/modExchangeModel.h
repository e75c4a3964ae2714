#pragma once

#include <array>
#include <cstdint>
#include <string>
#include <vector>

#include "app/modMvmDef.h"

// A model on its way between the scene and a file of another format: glTF's view of it, with one vertex for each
// different corner. All texts are UTF-8; all places are in the axes of the scene, which are glTF's. Indices count from
// 0, and -1 stands for none.

struct ExchangeBone {
    std::string Name{};
    int32_t Parent = -1; ///< index into Bones; a parent may stand behind its children
    Vec3 Head{};         ///< place in the scene
};

/// A picture as a file holds it.
struct ExchangeImage {
    std::string Name{};
    std::string Bytes{}; ///< a whole PNG or JPEG file
};

struct ExchangeMaterial {
    std::string Name{};
    int32_t Image = -1; ///< index into Images
    bool HasOpacity = false;
    std::array<float, 3> Color{1, 1, 1}; ///< red, green, blue, 0 to 1; goes over the picture
};

/// A corner of faces. Texture coordinates count from the top of a picture. The numbers are those of the model that the
/// file was made from, as TEXCOORD_1 and TEXCOORD_2 carry them; 0 where a file has none.
struct ExchangeVertex {
    Vec3 Place{};
    Vec3 Normal{};
    Vec2 TexCoord{};
    Vec2 Number{};  ///< of the vertex, and the number that confirms it
    Vec2 Numbers{}; ///< of the texture coordinate and of the normal
    int32_t Bone = -1;
    float Dropped = 0; ///< the share of its weight that other bones had in the file, 0 to 1
};

/// Triangles of one material. Corners are indices into the mesh's Vertices.
struct ExchangePart {
    int32_t Material = -1;
    std::vector<std::array<uint32_t, 3>> Triangles{};
};

/// Where a mesh stands: turned by Rotation, degrees about X, then Y, then Z, after a scale and before a move.
struct ExchangePlacement {
    std::string Name{};
    Vec3 Position{};
    Vec3 Rotation{};
    float Scale = 1;
};

struct ExchangeMesh {
    std::string Name{};
    bool IsSkinned = false;
    std::vector<int32_t> Joints{}; ///< of a skinned mesh: indices into Bones
    /// A skinned mesh has exactly one. The first is the one that tells where the vertices are in the scene.
    std::vector<ExchangePlacement> Placements{};
    std::vector<ExchangeVertex> Vertices{};
    std::vector<ExchangePart> Parts{};
};

struct ExchangeModel {
    std::vector<ExchangeBone> Bones{};
    std::vector<ExchangeMaterial> Materials{};
    std::vector<ExchangeImage> Images{};
    std::vector<ExchangeMesh> Meshes{};
    std::string Record{};             ///< JSON: what the format has no place for; empty for none
    std::vector<std::string> Notes{}; ///< what was left out or changed on the way, a sentence each
};

/// A sum over all that a mesh's file form says of its shape: vertices, triangles, and the names of its bones and
/// materials. Equal for what was written and what is read from it, and different, but for chance, for anything else.
[[nodiscard]] std::string ShapeSum(const ExchangeModel& model, const ExchangeMesh& mesh);

/// Puts the vertices of each part together, parts and vertices in the order in which triangles first name them.
void GroupByPart(ExchangeMesh* mesh);

/// Turns each triangle over: what a mirrored mesh needs for its front to stay the front.
void SwapSides(ExchangeMesh* mesh);
