#pragma once

#include <string>
#include <vector>

#include "modLikeCorners.h"

/// What a merge did to a mesh.
struct MergeCounts {
    size_t Kept = 0; ///< vertices that stand where they stood, or were not part of any face
    size_t Moved = 0;
    size_t Added = 0;
    size_t Gone = 0;
    size_t Rebound = 0; ///< vertices that were there and have another bone now
    size_t AddedFaces = 0;
    size_t GoneFaces = 0;
};

/// The model's mesh with the shape and the assignments of the file: what is the same keeps its number, its order and its
/// exact value. `materials` has the name (code page) of each material of the file. False, with *error set, when it gets
/// too large.
bool MergeMesh(const LikePair& pair, const std::vector<std::string>& materials, MvmMesh* result, MergeCounts* counts,
               std::string* error);
