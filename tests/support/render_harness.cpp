#include "support/render_harness.h"

#include <algorithm>
#include <cmath>
#include <cstdlib>
#include <memory>

#include <GL/gl.h>

#include <QGuiApplication>
#include <QOffscreenSurface>
#include <QOpenGLContext>
#include <QOpenGLFramebufferObject>

#include "app/modFrontEnd.h"
#include "app/modMvmDef.h"
#include "modCamera.h"
#include "modDrag.h"
#include "model/modBitmap.h"
#include "modOpenGL.h"
#include "modViewFlags.h"
#include "support/scripted.h"

static std::unique_ptr<QOpenGLFramebufferObject> framebuffer;

void MakeViewCurrent()
{
    ++harness::MadeCurrent;
}

namespace harness {

int Picture::Count(const Rgb& color) const
{
    return static_cast<int>(std::ranges::count_if(Pixels, [&color](const Rgb& at) { return Near(at, color); }));
}

void SizeView(int width, int height)
{
    framebuffer = std::make_unique<QOpenGLFramebufferObject>(width, height, QOpenGLFramebufferObject::Depth,
                                                             GL_TEXTURE_2D, GL_RGB8);
    ASSERT_TRUE(framebuffer->bind());
    ResizeViewport(width, height);
}

Picture Grab()
{
    Picture picture{ViewWidth, {}};
    picture.Pixels.resize(static_cast<size_t>(ViewWidth) * static_cast<size_t>(ViewHeight));
    glPixelStorei(GL_PACK_ALIGNMENT, 1);
    glReadPixels(0, 0, ViewWidth, ViewHeight, GL_RGB, GL_UNSIGNED_BYTE, picture.Pixels.data());
    return picture;
}

Picture Paint()
{
    PaintFrame();
    return Grab();
}

bool Near(const Rgb& a, const Rgb& b)
{
    return std::ranges::equal(a, b, [](int x, int y) { return std::abs(x - y) <= 2; });
}

void OpenSquare()
{
    MvmMesh& mesh = Meshes.Add();
    mesh.Vertices.Items = {{-0.5F, -0.5F, 0}, {0.5F, -0.5F, 0}, {0.5F, 0.5F, 0}, {-0.5F, 0.5F, 0}};
    mesh.Normals.Items = {{0, 0, 1}};
    mesh.Faces.Items = {{{1, 2, 3}, {1, 1, 1}, {}, 0}, {{1, 3, 4}, {1, 1, 1}, {}, 0}};
    MakeSkin(SkinMesh = 1);
    ModelOpen = true;
}

void BuildCreature(std::mt19937* random, int rings, int segments)
{
    const auto below = [random](uint32_t end) { return static_cast<int16_t>((*random)() % end); };
    const auto lump = [&below] { return 0.45F + 0.0015F * below(100); };
    for (const int texture : {1, 2, 3, 0, 99}) {
        Materials.Add().Texture = static_cast<int16_t>(texture);
    }
    for (const bool opacity : {false, true, false}) {
        Bitmap bitmap{16, 16, {}};
        for (int i = 0; i < 16 * 16; ++i) {
            const auto color = static_cast<uint8_t>(below(256));
            bitmap.Pixels.insert(bitmap.Pixels.end(),
                                 {color, 128, 90, static_cast<uint8_t>(opacity ? i / 4 * 9 : 255)});
        }
        std::string error;
        Textures.Add().HasOpacity = opacity;
        EXPECT_TRUE(MakeGLTexture(bitmap, &Textures.Items.back().GLTexture, &error));
    }
    for (int16_t i = 0; i < 12; ++i) {
        Bones.Add({.Position = {lump() - 0.5F, lump() * static_cast<float>(i % 5) - 1, lump()},
                   .IsShadow = i % 4 == 3,
                   .LinkBone = i == 4       ? int16_t{77}
                               : i % 3 == 0 ? int16_t{0}
                                            : i});
    }
    ActiveBone = 2;
    MvmMesh& mesh = Meshes.Add();
    for (const int32_t index : {1, 2, 3, 4, 5, 0, 88}) {
        mesh.MeshMaterials.Add().Index = index;
    }
    for (int i = 0; i < (rings + 1) * segments; ++i) {
        // Off the poles and the axes, so that no face is seen exactly edge-on. Next to textured ones of that kind the
        // software rasterizer fills some pixels otherwise for arrays than for single calls, even when each face is
        // drawn alone with corners of its own and without polygon offset; the cause in it is not known.
        const int ring = i / segments;
        const float up = 0.1F + 2.94F * static_cast<float>(ring) / static_cast<float>(rings);
        const float round = 0.07F + 6.2832F * static_cast<float>(i % segments) / static_cast<float>(segments);
        const Vec3 way{std::sin(up) * std::cos(round), std::cos(up), std::sin(up) * std::sin(round)};
        const float size = lump();
        mesh.Vertices.Add({way.X * size, way.Y * size, way.Z * size});
        mesh.Normals.Add(way);
        mesh.TexCoords.Add({round, up});
        const auto a = static_cast<int16_t>(i + 1);
        const auto b = static_cast<int16_t>((i + 1) % segments == 0 ? a + 1 - segments : a + 1);
        const auto c = static_cast<int16_t>(a + segments);
        const auto d = static_cast<int16_t>(b + segments);
        for (const std::array<int16_t, 3>& corners : {std::array{a, b, c}, std::array{b, d, c}}) {
            MvmFace face{corners, corners, corners, static_cast<int16_t>(below(2) == 0 ? 1 : below(9) - 1)};
            std::swap(face.Vertex[0], face.Vertex[below(10) == 0 ? 1 : 0]);
            if (below(20) == 0) {
                face.Normal[1] = -3;
                face.TexCoord[2] = 32000;
            }
            int16_t& corner = face.Vertex[static_cast<size_t>(below(3))];
            corner = below(33) == 0 ? static_cast<int16_t>(-below(100)) : corner;
            mesh.Faces.Add(face); // those of the last ring name vertices that are not there
        }
    }
    MakeSkin(SkinMesh = 1);
    for (int16_t& bone : mesh.VertexBones) {
        bone = static_cast<int16_t>(below(5) - 1);
    }
    ModelOpen = true;
}

void RenderTest::SetUp()
{
    scripted::Reset();
    ResetViewFlags();
    ResetDrag();
    InitCameras();
    CurrentCamera = 4;
    ASSERT_TRUE(InitOpenGL());
    SizeView(200, 160);
}

void RenderTest::TearDown()
{
    EXPECT_EQ(glGetError(), static_cast<GLenum>(GL_NO_ERROR));
}

} // namespace harness

int main(int argc, char** argv)
{
    testing::InitGoogleTest(&argc, argv);
    QSurfaceFormat format;
    format.setProfile(QSurfaceFormat::CompatibilityProfile);
    QSurfaceFormat::setDefaultFormat(format);
    const QGuiApplication application(argc, argv);
    QOffscreenSurface surface;
    surface.create();
    QOpenGLContext context;
    if (!context.create() || !context.makeCurrent(&surface)) {
        qFatal("no OpenGL context");
    }
    const int result = RUN_ALL_TESTS();
    framebuffer.reset();
    return result;
}
