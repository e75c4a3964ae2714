#pragma once

#include <cstdint>
#include <string>
#include <vector>

#include "app/modMvmDef.h"

/// A record of a weights file: where a vertex lay and the number of its bone.
struct WeightsVertex {
    Vec3 Position;
    int16_t Bone = 0;
};
/// Gives each vertex of a skin the bone of the last record that lies within 0.002 of it in each axis. Records with
/// a bone below 0 are passed over, those with one above the skeleton go to the Info Log.
void AssignByPosition(const std::vector<WeightsVertex>& records, MvmMesh* mesh);

/// Writes the assignments of a valid mesh to a weights file, whole or not at all; says "File saved." or what failed.
void SaveWeights(const std::string& file, int16_t mesh);
/// Reads a weights file into a valid mesh after the questions that it raises. Ends with Redraw.
void LoadWeights(const std::string& file, int16_t mesh);
/// True when a weights file holds fewer whole records than its header tells.
[[nodiscard]] bool IsCutOff(const std::string& file, int32_t* records, int32_t* told);
