#include <GL/gl.h>

#include "app/modMvmDef.h"
#include "model/modBitmap.h"
#include "model/modTexture.h"
#include "modGLTexture.h"
#include "modOpenGL.h"
#include "modViewFlags.h"
#include "support/bmp.h"
#include "support/fresh.h"
#include "support/render_harness.h"

namespace {

class TheTextures : public FreshFolder {
protected:
    const std::string colors = bmp::TrueColors(4, 2, "abcdefghijklmnopqrstuvwx");
    const std::string path = Folder / "c.bmp";
    const std::string opacity = Folder / "o.bmp";

    void SetUp() override
    {
        ResetViewFlags();
        GLContext = true;
        PutFile(path, colors);
        PutFile(opacity, bmp::EightBits(4, 2, 256, bmp::Gray, "\1\2\3\4\5\6\7\x8"));
    }
    void TearDown() override { FreeTextures(); }

    static GLint Parameter(GLenum name)
    {
        GLint value = 0;
        glGetTexParameteriv(GL_TEXTURE_2D, name, &value);
        return value;
    }
};

} // namespace

TEST_F(TheTextures, ReachOpenGLWithAllLevelsAndLeaveItTogether)
{
    const int made = harness::MadeCurrent;
    ASSERT_EQ(LoadTexture(path, opacity), 1);
    ASSERT_EQ(LoadTexture(path, ""), 2);
    EXPECT_TRUE(Textures[1].HasOpacity && !Textures[2].HasOpacity);
    const GLuint names[] = {Textures[1].GLTexture, Textures[2].GLTexture};
    glBindTexture(GL_TEXTURE_2D, names[0]);
    std::string pixels(32, '\0');
    glGetTexImage(GL_TEXTURE_2D, 0, GL_RGBA, GL_UNSIGNED_BYTE, pixels.data());
    EXPECT_EQ(pixels, "cba\1fed\2ihg\3lkj\4onm\5rqp\6uts\7xwv\x8");
    GLint width = 0;
    glGetTexLevelParameteriv(GL_TEXTURE_2D, 2, GL_TEXTURE_WIDTH, &width);
    EXPECT_EQ(width, 1);
    FreeTextures();
    EXPECT_EQ(harness::MadeCurrent, made + 4);
    EXPECT_FALSE(glIsTexture(names[0]) || glIsTexture(names[1]));

    uint32_t name = 0;
    EXPECT_FALSE(MakeGLTexture({}, &name, &Error)); // OpenGL makes no empty picture
    EXPECT_EQ(Error, "invalid value");
    EXPECT_FALSE(glIsTexture(name));
    GLContext = false; // entries still count
    ASSERT_EQ(LoadTexture(path, ""), 1);
    EXPECT_EQ(Textures[1].GLTexture, 0U);
}

TEST_F(TheTextures, AreBoundWithThePresentFilters)
{
    LoadTexture(path, "");
    LoadTexture(path, opacity);
    for (const bool filter : {true, false, true}) {
        FilterTextures = filter;
        for (int16_t index = 1; index <= 2; ++index) {
            BindTexture(index);
            GLint bound = 0;
            glGetIntegerv(GL_TEXTURE_BINDING_2D, &bound);
            EXPECT_EQ(static_cast<GLuint>(bound), Textures[index].GLTexture);
            EXPECT_TRUE(glIsEnabled(GL_TEXTURE_2D));
            EXPECT_EQ(glIsEnabled(GL_ALPHA_TEST), index == 2);
            EXPECT_EQ(Parameter(GL_TEXTURE_MIN_FILTER), filter ? GL_LINEAR_MIPMAP_NEAREST : GL_NEAREST);
            EXPECT_EQ(Parameter(GL_TEXTURE_MAG_FILTER), filter ? GL_LINEAR : GL_NEAREST);
        }
    }
    for (const int index : {0, 3, -1, 2}) {
        ViewTextures = true;
        BindTexture(2);
        ViewTextures = index != 2;
        BindTexture(static_cast<int16_t>(index));
        EXPECT_FALSE(glIsEnabled(GL_TEXTURE_2D) || glIsEnabled(GL_ALPHA_TEST)) << index;
    }
}
