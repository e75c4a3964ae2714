#include "modPicture.h"

#include <algorithm>
#include <array>
#include <charconv>
#include <cmath>
#include <cstddef>
#include <numbers>
#include <string_view>

#include <png.h>

#include "app/modGuard.h"
#include "app/modMvmDef.h"
#include "modCamera.h"
#include "modDrag.h"
#include "model/modStrings.h"
#include "model/modTexture.h"
#include "modModels.h"
#include "modOpenGL.h"
#include "modViewFlags.h"
#include "offscreen/modOffscreen.h"
#include "weights/modEdit.h"

void MakeViewCurrent() {} // the only context there is always is

namespace {

bool ReadSide(std::string_view text, int32_t* side)
{
    constexpr int32_t largest = 16384;
    const char* const end = text.data() + text.size();
    const auto [stop, error] = std::from_chars(text.data(), end, *side);
    return error == std::errc() && stop == end && *side >= 1 && *side <= largest;
}

bool ReadSize(const std::string& text, int32_t* width, int32_t* height)
{
    const size_t cross = text.find('x');
    const std::string_view second = std::string_view(text).substr(cross == std::string::npos ? 0 : cross + 1);
    return ReadSide(std::string_view(text).substr(0, cross), width) && ReadSide(second, height);
}

void SetFlags(const std::vector<std::string>& wanted, bool value)
{
    constexpr std::array flags = {&ViewWire,     &ViewGrid,    &ViewTextures,  &ViewLighting, &ViewBackfaces,
                                  &ViewIsolines, &ViewNormals, &ViewCullVerts, &LineAA,       &FilterTextures};
    const std::vector<std::string> names = ViewFlagNames();
    for (const std::string& name : wanted) {
        const auto at = std::find(names.begin(), names.end(), name) - names.begin();
        *flags.at(static_cast<size_t>(at)) = value;
    }
}

int16_t CameraNumber(const std::string& name)
{
    const std::vector<std::string> names = CameraNames();
    const auto at = std::find_if(names.begin(), names.end(),
                                 [&](const std::string& camera) { return LowerCase(camera) == LowerCase(name); });
    return static_cast<int16_t>(at - names.begin() + 1);
}

/// A place turned as the camera turns the scene.
Vec3 Turned(const Vec3& at, const ViewCamera& camera)
{
    constexpr float radians = std::numbers::pi_v<float> / 180;
    const float aboutX = camera.Rotation.X * radians;
    const float aboutY = camera.Rotation.Y * radians;
    const float z = at.Z * std::cos(aboutY) - at.X * std::sin(aboutY);
    return {at.X * std::cos(aboutY) + at.Z * std::sin(aboutY), at.Y * std::cos(aboutX) - z * std::sin(aboutX),
            at.Y * std::sin(aboutX) + z * std::cos(aboutX)};
}

/// Moves the camera so that the mesh stands in the middle of the picture and fills it.
void FitCamera(int16_t index)
{
    if (!IsValidMesh(index) || Meshes[index].VertexCount() == 0) {
        return;
    }
    const MvmMesh& mesh = Meshes[index];
    ViewCamera& camera = Cameras.at(static_cast<size_t>(CurrentCamera));
    Vec3 low = Turned(mesh.Vertices[1], camera);
    Vec3 high = low;
    for (const Vec3& vertex : mesh.Vertices) {
        const Vec3 at = Turned(vertex, camera);
        low = {std::min(low.X, at.X), std::min(low.Y, at.Y), std::min(low.Z, at.Z)};
        high = {std::max(high.X, at.X), std::max(high.Y, at.Y), std::max(high.Z, at.Z)};
    }
    const Vec3 middle{(low.X + high.X) / 2, (low.Y + high.Y) / 2, (low.Z + high.Z) / 2};
    constexpr float margin = 1.05F;
    // Half the height of what is seen: of the box, or at distance 1.
    const float opening = camera.Fov == 0 ? 1 : std::tan(camera.Fov * std::numbers::pi_v<float> / 360);
    float distance = 0;
    for (const Vec3& vertex : mesh.Vertices) {
        const Vec3 at = Turned(vertex, camera);
        const float half = std::max(std::fabs(at.X - middle.X) / ViewAspect, std::fabs(at.Y - middle.Y));
        distance = std::max(distance, half * margin / opening + (camera.Fov == 0 ? 0 : at.Z - middle.Z));
    }
    if (!std::isfinite(distance) || distance <= 0) {
        return;
    }
    const float depth = high.Z - low.Z + distance;
    camera.Position = {-middle.X, -middle.Y, camera.Fov == 0 ? distance : -distance - middle.Z};
    camera.NearPlane = camera.Fov == 0 ? -2 * depth - std::fabs(middle.Z) : distance / 100;
    camera.FarPlane = 2 * depth + std::fabs(middle.Z);
}

bool SavePng(const std::string& path, int32_t width, int32_t height)
{
    std::vector<uint8_t> pixels = ReadOffscreenPixels(width, height);
    png_image image{};
    image.version = PNG_IMAGE_VERSION;
    image.width = static_cast<png_uint_32>(width);
    image.height = static_cast<png_uint_32>(height);
    image.format = PNG_FORMAT_RGB;
    png_alloc_size_t size = PNG_IMAGE_PNG_SIZE_MAX(image);
    std::string bytes(size, '\0');
    if (png_image_write_to_memory(&image, bytes.data(), &size, 0, pixels.data(), 0, nullptr) == 0) {
        Tell(std::string("The picture cannot be packed: ") + image.message);
        return false;
    }
    bytes.resize(size);
    FileSpokenOf = path;
    return SaveGuarded("picture", path, {}, [&bytes](const PartWriter& write) { write(bytes); });
}

ExitCode Paint(const PictureOrder& order)
{
    int32_t width = 0;
    int32_t height = 0;
    if (!ReadSize(order.Size, &width, &height)) {
        Tell("The size \"" + order.Size + "\" is not like 640x480, with sides from 1 to 16384.");
        return ExitCode::Failed;
    }
    if (!MayWrite(order.Out, WrittenKind::Picture, {order.Model})) {
        return ExitCode::Failed;
    }
    std::string error;
    if (!MakeOffscreenContext(width, height, &error)) {
        Tell(error);
        return ExitCode::Failed;
    }
    ResetViewFlags();
    ResetDrag();
    InitCameras();
    CurrentCamera = CameraNumber(order.Camera);
    if (!InitOpenGL()) {
        return ExitCode::Failed;
    }
    ResizeViewport(width, height);
    TexturesWanted = true;
    if (!OpenModel(order.Model)) {
        return ExitCode::Failed;
    }
    ActiveTab = order.Tab == "editing" ? int16_t{1} : int16_t{0};
    DisplayMode = order.Mode == "normal" ? int16_t{0} : order.Mode == "shaded" ? int16_t{1} : int16_t{2};
    EditTarget = order.OnShadow ? int16_t{1} : int16_t{0};
    PointSize = order.PointSize;
    SetFlags(order.Shown, true);
    SetFlags(order.Hidden, false);
    if (!order.Bone.empty()) {
        ActiveBone = FindBone(order.Bone, order.OnShadow);
        if (ActiveBone < 1) {
            return ExitCode::Failed;
        }
    }
    if (order.Fit) {
        FitCamera(ActiveTab == 1 ? TargetMesh() : SkinMesh);
    }
    PaintFrame();
    return SavePng(order.Out, width, height) ? ExitCode::Done : ExitCode::Failed;
}

} // namespace

ExitCode PaintPicture(const PictureOrder& order)
{
    return ForEachModel({order.Model}, [&](const std::string&) { return Paint(order); });
}
