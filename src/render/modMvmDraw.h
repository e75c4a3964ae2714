#pragma once

/// Draws the model into the frame: the passes of the tab that is on top. The camera's matrices must be loaded.
void DrawModel();
/// Places the two lights, which stand still in the scene.
void SetupLights();
