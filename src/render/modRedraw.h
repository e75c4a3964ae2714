#pragma once

/// Asks for a new frame of the 3D view. Several requests inside one event may become one frame. The window implements
/// it; tests have a form that counts.
void Redraw(bool swap);
