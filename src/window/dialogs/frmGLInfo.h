#pragma once

/// Shows what the OpenGL of the view says about itself, modally.
void ShowGLInfoDialog();
