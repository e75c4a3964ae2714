#include "modCamera.h"

#include <cmath>
#include <numbers>

#include "modGL.h"

namespace {

constexpr int16_t perspectiveCamera = 1;

bool IsValidCamera(int16_t camera)
{
    return camera >= 1 && camera <= CameraCount;
}

/// a + b, worked out in double precision and stored as a 32-bit float.
float Sum(float a, double b)
{
    return static_cast<float>(static_cast<double>(a) + b);
}

} // namespace

void InitCameras()
{
    Cameras = {};
    Cameras[1] = {.Fov = 45, .NearPlane = 0.1F, .FarPlane = 500, .Rotation = {10, -200, 0}, .Position = {0, 0, -2}};
    const auto orthographic = [](float depth, float aboutX, float aboutY) {
        return ViewCamera{
            .NearPlane = -depth, .FarPlane = depth, .Rotation = {aboutX, aboutY, 0}, .Position = {0, 0, 1}};
    };
    Cameras[2] = orthographic(200, 10, -200);
    Cameras[3] = orthographic(200, 0, 180);
    Cameras[4] = orthographic(100, 0, 0);
    Cameras[5] = orthographic(200, 0, 90);
    Cameras[6] = orthographic(200, 0, -90);
    Cameras[7] = orthographic(200, 90, 0);
    Cameras[8] = orthographic(200, -90, 0);
}

void ApplyCamera()
{
    if (!IsValidCamera(CurrentCamera)) {
        return;
    }
    const ViewCamera& camera = Cameras[static_cast<size_t>(CurrentCamera)];
    const bool perspective = CurrentCamera == perspectiveCamera;
    glMatrixMode(GL_PROJECTION);
    glLoadIdentity();
    if (perspective) {
        gluPerspective(camera.Fov, ViewAspect, camera.NearPlane, camera.FarPlane);
    } else {
        const double halfHeight = camera.Position.Z;
        const double halfWidth = static_cast<double>(ViewAspect) * halfHeight;
        glOrtho(-halfWidth, halfWidth, -halfHeight, halfHeight, camera.NearPlane, camera.FarPlane);
    }
    glMatrixMode(GL_MODELVIEW);
    glLoadIdentity();
    glTranslatef(camera.Position.X, camera.Position.Y, perspective ? camera.Position.Z : 0.0F);
    glRotatef(camera.Rotation.X, 1, 0, 0);
    glRotatef(camera.Rotation.Y, 0, 1, 0);
}

void RotateCamera(float aboutX, float aboutY)
{
    if (!IsValidCamera(CurrentCamera)) {
        return;
    }
    Vec3& rotation = Cameras[static_cast<size_t>(CurrentCamera)].Rotation;
    rotation.X = Sum(rotation.X, static_cast<double>(aboutX) / 5);
    rotation.Y = Sum(rotation.Y, static_cast<double>(aboutY) / 5);
}

void PanCamera(float dx, float dy)
{
    if (!IsValidCamera(CurrentCamera)) {
        return;
    }
    ViewCamera& camera = Cameras[static_cast<size_t>(CurrentCamera)];
    Vec3& position = camera.Position;
    if (camera.Fov == 0) {
        position.X = Sum(position.X, static_cast<double>(dx) / 500 * static_cast<double>(position.Z));
        position.Y = Sum(position.Y, -static_cast<double>(dy) / 500 * static_cast<double>(position.Z));
    } else {
        position.X = Sum(position.X, static_cast<double>(dx) / 1000);
        position.Y = Sum(position.Y, -static_cast<double>(dy) / 1000);
    }
}

void CentreOn(const Vec3& point)
{
    if (!IsValidCamera(CurrentCamera)) {
        return;
    }
    // The modelview matrix turns about Y, then about X, then moves by the pan.
    constexpr double radians = std::numbers::pi / 180;
    ViewCamera& camera = Cameras[static_cast<size_t>(CurrentCamera)];
    const double aboutX = static_cast<double>(camera.Rotation.X) * radians;
    const double aboutY = static_cast<double>(camera.Rotation.Y) * radians;
    const double x = static_cast<double>(point.X) * std::cos(aboutY) + static_cast<double>(point.Z) * std::sin(aboutY);
    const double z = static_cast<double>(point.Z) * std::cos(aboutY) - static_cast<double>(point.X) * std::sin(aboutY);
    const double y = static_cast<double>(point.Y) * std::cos(aboutX) - z * std::sin(aboutX);
    camera.Position.X = static_cast<float>(-x);
    camera.Position.Y = static_cast<float>(-y);
}

void ZoomCamera(float amount)
{
    if (!IsValidCamera(CurrentCamera)) {
        return;
    }
    constexpr float smallestHalfHeight = 0.001F;
    ViewCamera& camera = Cameras[static_cast<size_t>(CurrentCamera)];
    if (camera.Fov != 0) {
        camera.Position.Z = Sum(camera.Position.Z, -static_cast<double>(amount));
        return;
    }
    camera.Position.Z = Sum(camera.Position.Z, static_cast<double>(amount));
    if (camera.Position.Z < smallestHalfHeight) {
        camera.Position.Z = smallestHalfHeight;
    }
}
