#pragma once

// What follows the lines of a model: everything that names say. Used by the reader, in this order.

/// Marks the bones of the shadow skeleton by their names.
void MarkShadowBones();

/// For each mesh: finds the materials of its list, works out its role, and binds the vertices of a skin to bones by joint
/// number. Of equal names or numbers the last one counts.
void VerifyMeshes();
