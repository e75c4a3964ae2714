#pragma once

#include <cstdint>

/// Gives each unassigned vertex of the mesh to the bone (of the shadow to the shadow bone) whose segments, from its
/// joint to the joints that link to it, are nearest; a bone that none links to goes straight on. The border to the next
/// bone lies before its joint by a share of the vertex's distance: the thicker the body, the farther. Where there are
/// bones on both sides, a vertex of one never goes to a bone of the other. Warns like AutoAssign; ends with Redraw.
void AutoAssignBySegments(int16_t mesh);
