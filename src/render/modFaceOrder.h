#pragma once

#include <vector>

#include "app/modMvmDef.h"
#include "render/modMaterialLook.h"

/// A face of a mesh with valid corners and its look.
struct LookedFace {
    const MvmFace* Face = nullptr;
    Look Shared;
};

/// Drops the faces of the mesh that GL would drop, and brings some of equal look together, so that the look changes less
/// often. Every pixel stays as in the order given: a face only changes places with faces that it shares no pixel with.
/// For filled faces without blending, under GL's present state; with `filled` false only drops.
void OrderFaces(const MvmMesh& mesh, bool filled, std::vector<LookedFace>* faces);
