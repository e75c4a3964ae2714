#pragma once

#include <cstdint>
#include <string>
#include <vector>

#include "app/modMvmDef.h"

// The record that a converted model carries beside its shape: all that the other format has no place for. Texts of the
// model are UTF-8 in it.

struct MeshRecord {
    std::string Sum{};  ///< ShapeSum of the mesh in the file; empty for a mesh that is not in it
    std::string Rest{}; ///< for MeshFromRest
};

/// The record of the open model, as JSON. `meshes` are those of Meshes, in order.
[[nodiscard]] std::string RecordOfScene(const std::vector<MeshRecord>& meshes);

/// Fills the empty scene from a record: all but the shapes of the meshes, whose records go to *meshes. False, with the
/// scene empty again, when it is no such record.
bool SceneFromRecord(const std::string& record, std::vector<MeshRecord>* meshes);
