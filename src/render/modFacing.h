#pragma once

#include <cstdint>
#include <vector>

#include "app/modMvmDef.h"

// Where faces lie on the window, as far as rounding in GL cannot change it.

enum class Facing : uint8_t {
    Unsure, ///< left to GL: nearly edge-on, cut by the edges of what is seen, or naming a vertex outside the mesh
    Away,   ///< wholly inside what is seen, and GL will drop it as a back face
    Front,  ///< seen from the front and wholly inside what is seen
};

/// A vertex in pixels from the middle of the window. All three are not a number for one that is not well in front of the
/// eye.
struct WindowPlace {
    double X = 0;
    double Y = 0;
    double Slack = 0; ///< how far off GL's place may be
};

struct FacesOnWindow {
    std::vector<Facing> Facings;     ///< one a face
    std::vector<WindowPlace> Places; ///< one a vertex
};

/// Looks at the faces under GL's present matrices, viewport and culling; while culling is off all are unsure. Valid until
/// the next call.
[[nodiscard]] const FacesOnWindow& LookAtFaces(const MvmMesh& mesh);

/// True when the corners run clockwise wherever they are within their slack.
[[nodiscard]] bool SurelyClockwise(const WindowPlace& a, const WindowPlace& b, const WindowPlace& c);
