#pragma once

// GL state that the frame and the picking start from. The toolkit shares the context's thread and may change state
// between two paints, so nothing that was set in an earlier frame is trusted.

inline float AlphaReference = 0.5F; ///< reference of the alpha test; DrawAssignments lowers it to 0.01 for good

/// Sets the state that holds for the life of the context and puts everything that a frame switches for a while back to
/// rest: viewport of the view, culling, depth test, polygon offset, alpha test reference, blending off, solid faces.
void SetBaseState();
/// Lowers the alpha test's reference to 0.01, also for all later frames of this context.
void LowerAlphaReference();
