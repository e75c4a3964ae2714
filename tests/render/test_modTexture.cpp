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

using testing::ElementsAre;
using testing::Pair;

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

TEST_F(TheTextures, AreFoundWhereTheModelSaysOrBesideItAndAreMissedAlone)
{
    std::filesystem::create_directories(Folder / "sub/folder.bmp");
    for (const char* name : {"Bark.bmp", "sub/deep.bmp", "H\xC3\xA4ut.bmp", "upper.bmp"}) {
        PutFile(Folder / name, colors);
    }
    PutFile(Folder / "UPPER.BMP", bmp::Header(3, 3, 24, 0));
    PutFile(Folder / "cut.bmp", colors.substr(0, 60));
    PutFile(Folder / "empty.bmp", "");
    const struct {
        std::string ColorMap, OpacityMap;
        int16_t Texture;
    } rows[] = {
        {Folder / "Bark.bmp", "", 1},
        {"Bark.bmp", "o.bmp", 2},
        {"C:\\Art\\Bark.bmp", "", 3},
        {"TEX\\bARK.BMP", "", 4},
        {Folder / "sub\\deep.bmp", "", 5},
        {"H\xE4ut.bmp", "", 6},
        {"upper.bmp", "", 7},
        {"old\\Gr\xE4u.bmp", "alpha.bmp", 99},
        {Folder / "sub\\folder.bmp", "", 99},
        {"ends\\", "", 99},
        {"", "", 99},
        {"cut.bmp", "", 0},
        {"UPPER.BMP", "", 0},
        {"c.bmp", "alpha.bmp", 8},
        {"c.bmp", "empty.bmp", 0}, // an opacity map that cannot be read loses the colours too
    };
    for (const auto& row : rows) {
        MvmMaterial& material = Materials.Add();
        material.ColorMap = row.ColorMap;
        material.OpacityMap = row.OpacityMap;
        material.Texture = 99;
    }
    LoadTextures(Folder / "model.mvm");
    for (int32_t i = 1; i <= MaterialCount(); ++i) {
        EXPECT_EQ(Materials[i].Texture, rows[i - 1].Texture) << rows[i - 1].ColorMap;
    }
    EXPECT_TRUE(Textures[2].HasOpacity && !Textures[8].HasOpacity);
    const auto line = [](const std::string& name) { return "Texture \"" + name + "\" not found."; };
    EXPECT_THAT(scripted::Log,
                ElementsAre(line("old\\Gr\xC3\xA4u.bmp"), line("alpha.bmp"), line(Folder / "sub\\folder.bmp"),
                            line("ends\\"), testing::HasSubstr("UPPER.BMP"), line("alpha.bmp")));
    ASSERT_EQ(scripted::Messages.size(), 2U);
    EXPECT_EQ(scripted::Messages[0].Icon, BoxIcon::Stop);
    EXPECT_THAT(scripted::Messages[0].Text, testing::StartsWith("Runtime error in LoadTexture\n"));
    EXPECT_THAT(scripted::Messages[0].Text,
                testing::EndsWith(".\n\"" + Folder.Path +
                                  "cut.bmp\"\r\nMake sure your textures have power-of-two dimensions!"));
    EXPECT_THAT(scripted::Messages[1].Text,
                testing::HasSubstr("\n\"" + path + "\"\r\n")); // not that of the opacity map
    EXPECT_EQ(scripted::Progress.size(), 15U);
    EXPECT_THAT(scripted::Progress.back(), Pair(15, 15));
    EXPECT_THAT(scripted::Panels, ElementsAre(Pair("toolhelp", "Loading textures..."), Pair("toolhelp", "Ready...")));
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

TEST_F(TheTextures, StopAtTheLargestNumberAndWhenTheLoadIsToStop)
{
    Materials.Add().ColorMap = "c.bmp";
    StopRequested = true;
    LoadTextures(Folder.Path);
    EXPECT_EQ(TextureCount(), 0);
    EXPECT_EQ(scripted::Panel("toolhelp"), "Ready...");
    Textures.Items.resize(32766);
    EXPECT_EQ(LoadTexture(path, ""), 32767);
    EXPECT_EQ(LoadTexture(path, ""), 0);
    EXPECT_EQ(scripted::Log.size(), 1U);
}
