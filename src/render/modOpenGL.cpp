#include "modOpenGL.h"

#include <algorithm>
#include <cmath>
#include <cstring>

#include "app/modFrontEnd.h"
#include "app/modMvmDef.h"
#include "modCamera.h"
#include "modDrag.h"
#include "modGL.h"
#include "modGLState.h"
#include "modMaterialState.h"
#include "modMvmDraw.h"
#include "modTryJoint.h"
#include "modViewFlags.h"

namespace {

constexpr int labelWidth = 80;
constexpr int labelHeight = 16;
constexpr std::array<uint8_t, size_t{CameraCount}* labelWidth* labelHeight> labelResource = {
#include "cameraLabels.inc"
};

/// True when the current context knows the fixed pipeline: a core profile answers its queries with an error, and an
/// embedded one says what it is.
bool HasFixedPipeline()
{
    const auto* version = reinterpret_cast<const char*>(glGetString(GL_VERSION));
    if (version == nullptr || std::strncmp(version, "OpenGL ES", 9) == 0) {
        return false;
    }
    constexpr int mostPendingErrors = 32;
    for (int i = 0; i < mostPendingErrors && glGetError() != GL_NO_ERROR; ++i) {
    }
    GLint depth = 0;
    glGetIntegerv(GL_MODELVIEW_STACK_DEPTH, &depth);
    glEnable(GL_LIGHTING);
    glDisable(GL_LIGHTING);
    return glGetError() == GL_NO_ERROR && depth > 0;
}

/// Turns the plane Y = 0 into the one that the camera along an axis looks at.
void TurnGridToCamera()
{
    switch (CurrentCamera) {
    case 3:
    case 4:
        glRotatef(90, 1, 0, 0);
        break;
    case 5:
    case 6:
        glRotatef(90, 0, 0, 1);
        break;
    default:
        break;
    }
}

void DrawGridLines()
{
    constexpr int extent = 10;
    glLineWidth(1.2F * PixelScale);
    glPushMatrix();
    glScalef(SkinScale, SkinScale, SkinScale);
    glBegin(GL_LINES);
    for (int i = -extent; i <= extent; ++i) {
        glColor4ub(0, 0, 0, i == 0 ? 255 : 63);
        glVertex3i(-extent, 0, i);
        glVertex3i(extent, 0, i);
        glVertex3i(i, 0, -extent);
        glVertex3i(i, 0, extent);
    }
    glEnd();
    glPopMatrix();
    glLineWidth(PixelScale);
}

void DrawGrid()
{
    glPushMatrix();
    TurnGridToCamera();
    if (LineAA) {
        glEnable(GL_LINE_SMOOTH);
    }
    glBlendFunc(GL_SRC_ALPHA, GL_ONE_MINUS_SRC_ALPHA);
    glEnable(GL_BLEND);
    glDepthMask(GL_FALSE);
    if (ViewGrid) {
        DrawGridLines();
    }
    glDepthMask(GL_TRUE);
    glDisable(GL_BLEND);
    if (LineAA) {
        glDisable(GL_LINE_SMOOTH);
    }
    glPopMatrix();
}

/// A mouse position as a whole number, ties to even.
GLint WholePixel(float position)
{
    return static_cast<GLint>(std::nearbyint(std::clamp(position, -1e6F, 1e6F)));
}

void DrawRubberBand()
{
    constexpr float smallest = 4;
    if (MouseButton != 1 || ToolMode != 0 || !(std::fabs(MouseLastX - MouseStartX) > smallest) ||
        !(std::fabs(MouseLastY - MouseStartY) > smallest)) {
        return;
    }
    const GLint x0 = WholePixel(MouseStartX);
    const GLint y0 = WholePixel(MouseStartY);
    const GLint x1 = WholePixel(MouseLastX);
    const GLint y1 = WholePixel(MouseLastY);
    glColor3ub(255, 255, 255);
    glEnable(GL_LINE_STIPPLE);
    glBegin(GL_LINE_LOOP);
    glVertex2i(x0, y0);
    glVertex2i(x1, y0);
    glVertex2i(x1, y1);
    glVertex2i(x0, y1);
    glEnd();
    glDisable(GL_LINE_STIPPLE);
}

/// Where sample `i` of a picture enlarged by `scale` begins in the picture itself.
double SourceOf(int i, double scale)
{
    return i / scale;
}

/// The label of a camera enlarged by `scale`, each pixel the mean of what it covers: at a scale that is no whole
/// number, strokes of whole pixels would be thick and thin by turns.
std::vector<uint8_t> EnlargedLabel(const uint8_t* label, double scale, int width, int height)
{
    std::vector<uint8_t> enlarged;
    enlarged.reserve(static_cast<size_t>(width) * static_cast<size_t>(height));
    const auto share = [scale](int i, int source) {
        return std::max(0.0,
                        std::min(SourceOf(i + 1, scale), source + 1.0) - std::max(SourceOf(i, scale), source * 1.0));
    };
    for (int y = 0; y < height; ++y) {
        for (int x = 0; x < width; ++x) {
            double sum = 0;
            for (int v = static_cast<int>(SourceOf(y, scale)); v < std::min(labelHeight * 1.0, SourceOf(y + 1, scale));
                 ++v) {
                for (int u = static_cast<int>(SourceOf(x, scale));
                     u < std::min(labelWidth * 1.0, SourceOf(x + 1, scale)); ++u) {
                    sum += share(x, u) * share(y, v) * label[v * labelWidth + u];
                }
            }
            enlarged.push_back(static_cast<uint8_t>(std::lround(std::min(sum * scale * scale, 255.0))));
        }
    }
    return enlarged;
}

void DrawCameraLabel()
{
    if (CurrentCamera < 1 || CurrentCamera > CameraCount) {
        return;
    }
    // White on black, added so that black leaves the scene as it is.
    glBlendFunc(GL_ONE, GL_ONE_MINUS_SRC_COLOR);
    glEnable(GL_BLEND);
    glColor3f(1, 1, 1);
    glRasterPos2i(5, 21);
    const int image = (CameraCount - CurrentCamera) * labelWidth * labelHeight;
    const uint8_t* label = &CameraLabels[static_cast<size_t>(image)];
    const auto width = static_cast<int>(std::floor(labelWidth * PixelScale));
    const auto height = static_cast<int>(std::floor(labelHeight * PixelScale));
    const std::vector<uint8_t> enlarged = EnlargedLabel(label, PixelScale, width, height);
    glPixelStorei(GL_UNPACK_ALIGNMENT, 1);
    glDrawPixels(width, height, GL_LUMINANCE, GL_UNSIGNED_BYTE, enlarged.data());
    glPixelStorei(GL_UNPACK_ALIGNMENT, 4);
    glDisable(GL_BLEND);
}

void DrawFlatLayer()
{
    glDisable(GL_DEPTH_TEST);
    glMatrixMode(GL_PROJECTION);
    glLoadIdentity();
    glOrtho(0, static_cast<double>(ViewWidth) / static_cast<double>(PixelScale),
            static_cast<double>(ViewHeight) / static_cast<double>(PixelScale), 0, -1, 1);
    glMatrixMode(GL_MODELVIEW);
    glLoadIdentity();
    DrawRubberBand();
    DrawCameraLabel();
}

std::string GLText(GLenum name)
{
    const auto* text = reinterpret_cast<const char*>(glGetString(name));
    return text == nullptr ? std::string() : std::string(text);
}

} // namespace

bool InitOpenGL()
{
    GLContext = false;
    if (!HasFixedPipeline()) {
        ShowMessage(BoxIcon::Stop, "Initalizing OpenGL failed.");
        return false;
    }
    AlphaReference = 0.5F;
    SetBaseState();
    CameraLabels = labelResource;
    glGetIntegerv(GL_MAX_TEXTURE_SIZE, &MaxTextureSide);
    GLContext = true;
    return true;
}

void ResizeViewport(int32_t width, int32_t height)
{
    if (!GLContext) {
        return;
    }
    ViewWidth = std::max(width, 1);
    ViewHeight = std::max(height, 1);
    ViewAspect = static_cast<float>(static_cast<double>(ViewWidth) / ViewHeight);
    Redraw(true);
}

void PaintFrame()
{
    if (!GLContext) {
        return;
    }
    SetBaseState();
    glClear(GL_COLOR_BUFFER_BIT | GL_DEPTH_BUFFER_BIT);
    ApplyCamera();
    if (ModelOpen) {
        const LentPose pose;
        DrawModel();
    }
    BindMaterial(0);
    glDisable(GL_LIGHTING);
    glEnable(GL_DEPTH_TEST);
    DrawGrid();
    DrawFlatLayer();
    glFinish();
}

void ShutdownOpenGL()
{
    GLContext = false;
}

OpenGLInfo QueryOpenGLInfo()
{
    if (!GLContext) {
        return {};
    }
    MakeViewCurrent();
    return {GLText(GL_VENDOR), GLText(GL_RENDERER), GLText(GL_VERSION), GLText(GL_EXTENSIONS)};
}
