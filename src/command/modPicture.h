#pragma once

#include <string>
#include <vector>

#include "modTerminal.h"

/// A picture to be painted of a model, as the window would show it.
struct PictureOrder {
    std::string Model{}, Out{}, Size = "640x480";
    std::string Camera = "Perspective", Tab = "viewing", Mode = "both", Bone{};
    bool OnShadow = false;
    std::vector<std::string> Shown{}, Hidden{}; ///< names of view flags
    int PointSize = 5;
    bool Fit = false; ///< the camera goes where the model fills the picture
};

/// Names of the cameras, in their order.
[[nodiscard]] std::vector<std::string> CameraNames();
/// Names of what can be shown and hidden.
[[nodiscard]] std::vector<std::string> ViewFlagNames();

/// Paints the picture into its file. Two programs implement it: bwrt-picture, which holds OpenGL, and bwrt, which
/// starts that one with its own arguments.
[[nodiscard]] ExitCode PaintPicture(const PictureOrder& order);
inline std::vector<std::string> ProgramArguments; ///< without the program's name
