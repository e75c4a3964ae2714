#pragma once

#include <cstdint>
#include <map>
#include <string>
#include <vector>

#include <assimp/scene.h>

#include "modExchangeModel.h"

using Matrix = aiMatrix4x4t<double>;
using Vector = aiVector3t<double>;

/// A node that has meshes, and how it stands in the scene.
struct MeshNode {
    const aiNode* Node = nullptr;
    Matrix ToScene{};
    std::string Name{};
};

/// The bones of a scene in the pose that its meshes were bound in.
struct Skeleton {
    std::map<std::string, Matrix> Bound{};           ///< how each bone of a mesh stood, by the scene's name
    std::map<std::string, int32_t> Index{};          ///< of each bone of a mesh, in the model
    std::map<const aiMesh*, Matrix> MeshesToScene{}; ///< of the meshes with bones, in that pose
};

/// Finds the bones of all meshes and puts them, with those that hang between and below them, into the model.
/// `toScene` is what the scene's root stands in.
Skeleton TakeBones(const aiScene& scene, const Matrix& toScene, const std::vector<MeshNode>& nodes,
                   ExchangeModel* model);

/// Gives each vertex of a mesh, the parts one after the other, its bone: the one with the largest weight, the first on a
/// tie.
void TakeWeights(const std::vector<const aiMesh*>& parts, const Skeleton& skeleton, ExchangeMesh* mesh);
