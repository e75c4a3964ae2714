#pragma once

#include <array>
#include <cstdint>

#include "app/modMvmDef.h"

/// One camera. Fov is in degrees and 0 for an orthographic camera; Rotation in degrees about X, then Y. Position.X and
/// .Y are the pan; .Z is the distance along Z (perspective) or the half height of the visible box (orthographic).
struct ViewCamera {
    float Fov = 0;
    float NearPlane = 0;
    float FarPlane = 0;
    Vec3 Rotation;
    Vec3 Position;
};

inline constexpr int16_t CameraCount = 8;
inline std::array<ViewCamera, CameraCount + 1> Cameras; ///< 1 to 8; entry 0 is not used
inline int16_t CurrentCamera = 0;                       ///< 1 to 8; 0 until the main window has loaded
inline float ViewAspect = 1;

/// Fills the table with its defaults.
void InitCameras();
/// Loads projection and modelview of the current camera into GL and leaves the modelview matrix selected.
void ApplyCamera();
/// Turns the current camera by mouse distances in pixels.
void RotateCamera(float aboutX, float aboutY);
/// Moves the picture with the mouse; distances in pixels.
void PanCamera(float dx, float dy);
/// Pans so that a point of the scene stands in the middle of the picture.
void CentreOn(const Vec3& point);
/// A positive amount moves away from the model.
void ZoomCamera(float amount);
