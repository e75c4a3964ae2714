#pragma once

#include <cstdint>

// What lies over the surface of a mesh. Mesh indices that are not valid draw nothing.

/// The vertices as points, by their bones; with Cull Vertices on, those that the mesh's own surface does not hide.
/// `depthStands` tells that the depth buffer holds that surface alone already, where it is filled.
void DrawVertices(int16_t mesh, bool depthStands);
/// The edges of all faces.
void DrawIsolines(int16_t mesh);
/// A line for each face corner. Texturing must be off.
void DrawNormals(int16_t mesh);
/// The joints and links of the skeleton that belongs to the edit target.
void DrawBones();
