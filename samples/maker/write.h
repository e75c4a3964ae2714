#pragma once

#include <string>
#include <vector>

#include "mesh.h"

struct Material {
    std::string name, colorMap, opacityMap;
};

/// Where a mesh stands in the scene: scene place = place in the mesh * scale + position.
struct Placement {
    std::string mesh;
    V3 position;
    double scale;
};

/// Sections of a model file, byte for byte as the program itself writes them.
std::string FileInfoText();
std::string MaterialText(const Material& material);
/// The bones, brought into the scene by the placement of the skin.
std::string BoneText(const Skeleton& skeleton, const Placement& skin);
std::string MeshText(const Mesh& mesh, const Skeleton& skeleton);
std::string InstanceText(const Placement& placement);

/// The alias file for the ordinary or the shadow bones.
std::string AliasText(const Skeleton& skeleton, bool shadow);

void WriteFile(const std::string& path, const std::string& bytes);
