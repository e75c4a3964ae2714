#pragma once

#include <cstdint>

#include "app/modMvmDef.h"

// The model in the frame. Mesh indices that are not valid draw nothing.

void DrawModel();
void DrawMesh(int16_t mesh);
void DrawAssignments(int16_t mesh);
/// With Cull Vertices on, the vertices are tested against the mesh's surface alone. `depthStands` tells that the depth
/// buffer holds just that already, where the surface is filled.
void DrawVertices(int16_t mesh, bool depthStands);
void DrawDepthOnly(int16_t mesh);
/// Draws the faces with the alpha tests of their materials, for their depth alone. The caller masks the colours.
void DrawSurfaceDepth(const MvmMesh& mesh);
void DrawIsolines(int16_t mesh);
void DrawNormals(int16_t mesh);
void DrawBones();

/// Turns a material into GL state. Any number outside 1 to MaterialCount stands for no material.
void BindMaterial(int32_t material);
void SetupLights();
