#include <filesystem>
#include <fstream>

#include <GL/gl.h>
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "app/modFrontEnd.h"
#include "app/modMvmDef.h"
#include "model/modTexture.h"
#include "modGLTexture.h"
#include "modOpenGL.h"
#include "modViewFlags.h"
#include "support/bmp.h"
#include "support/scripted.h"

using testing::ElementsAre;
using testing::EndsWith;
using testing::IsEmpty;
using testing::Pair;
using testing::StartsWith;

namespace {

class TheTextures : public testing::Test {
protected:
    void SetUp() override
    {
        scripted::Reset();
        ResetViewFlags();
        GLContext = true;
        // A folder for each test: several may run at the same time.
        folder = testing::TempDir() + testing::UnitTest::GetInstance()->current_test_info()->name() + "/";
        std::filesystem::remove_all(folder);
        std::filesystem::create_directories(folder);
    }
    void TearDown() override
    {
        FreeTextures();
        std::filesystem::remove_all(folder);
    }

    /// Writes a file into the test's folder and gives its path.
    std::string File(const std::string& name, const std::string& bytes) const
    {
        std::filesystem::create_directories(std::filesystem::path(folder + name).parent_path());
        std::ofstream(folder + name, std::ios::binary) << bytes;
        return folder + name;
    }

    /// Adds a material and gives its number.
    static int32_t Material(const std::string& colorMap, const std::string& opacityMap = {})
    {
        MvmMaterial material;
        material.ColorMap = colorMap;
        material.OpacityMap = opacityMap;
        Materials.Add(material);
        return MaterialCount();
    }

    std::string folder;
};

const std::string colors = bmp::TrueColors(4, 2, "abcdefghijklmnopqrstuvwx");
const std::string opacity = bmp::EightBits(4, 2, 256, bmp::Gray, "\1\2\3\4\5\6\7\x8");

GLint Parameter(GLenum name)
{
    GLint value = 0;
    glGetTexParameteriv(GL_TEXTURE_2D, name, &value);
    return value;
}

std::string LevelPixels(GLint level)
{
    GLint width = 0;
    GLint height = 0;
    glGetTexLevelParameteriv(GL_TEXTURE_2D, level, GL_TEXTURE_WIDTH, &width);
    glGetTexLevelParameteriv(GL_TEXTURE_2D, level, GL_TEXTURE_HEIGHT, &height);
    std::string pixels(4 * static_cast<size_t>(width) * static_cast<size_t>(height), '\0');
    glGetTexImage(GL_TEXTURE_2D, level, GL_RGBA, GL_UNSIGNED_BYTE, pixels.data());
    return pixels;
}

} // namespace

TEST_F(TheTextures, ReachOpenGLWithAllLevels)
{
    ASSERT_EQ(LoadTexture(File("c.bmp", colors), File("o.bmp", opacity)), 1);
    EXPECT_TRUE(Textures[1].HasOpacity);
    glBindTexture(GL_TEXTURE_2D, Textures[1].GLTexture);
    EXPECT_EQ(LevelPixels(0), "cba\1fed\2ihg\3lkj\4onm\5rqp\6uts\7xwv\x8");
    EXPECT_EQ(LevelPixels(1).size(), 8U);
    EXPECT_EQ(LevelPixels(2).size(), 4U);
    EXPECT_EQ(Parameter(GL_TEXTURE_WRAP_S), GL_REPEAT);
    EXPECT_EQ(Parameter(GL_TEXTURE_WRAP_T), GL_REPEAT);
    EXPECT_EQ(glGetError(), static_cast<GLenum>(GL_NO_ERROR));
}

TEST_F(TheTextures, GetAnEntryForEachLoadAndAreForgottenTogether)
{
    const std::string path = File("c.bmp", colors);
    ASSERT_EQ(LoadTexture(path, ""), 1);
    ASSERT_EQ(LoadTexture(path, ""), 2);
    EXPECT_FALSE(Textures[2].HasOpacity);
    const GLuint names[] = {Textures[1].GLTexture, Textures[2].GLTexture};
    EXPECT_NE(names[0], names[1]);
    EXPECT_TRUE(IsValidTexture(1) && IsValidTexture(2));
    EXPECT_FALSE(IsValidTexture(0) || IsValidTexture(3) || IsValidTexture(-1));
    FreeTextures();
    EXPECT_EQ(TextureCount(), 0);
    EXPECT_FALSE(IsValidTexture(1));
    EXPECT_FALSE(glIsTexture(names[0]) || glIsTexture(names[1]));
}

TEST_F(TheTextures, AreFoundWhereTheModelSaysOrBesideIt)
{
    File("Bark.bmp", colors);
    File("sub/deep.bmp", colors);
    File("H\xC3\xA4ut.bmp", colors);
    File("UPPER.BMP", bmp::Header(3, 3, 24, 0));
    File("upper.bmp", colors);
    for (const std::string& map : {
             folder + "Bark.bmp",
             std::string("Bark.bmp"),
             std::string("C:\\Art\\Bark.bmp"),
             std::string("art/Bark.bmp"),
             std::string("TEX\\bARK.BMP"),
             std::string("tex/BARK.bmp"),
             folder + "sub\\deep.bmp",
             std::string("H\xE4ut.bmp"),
             std::string("upper.bmp"),
         }) {
        scripted::Reset();
        Material(map);
        LoadTextures(folder + "model.mvm");
        EXPECT_EQ(Materials[1].Texture, 1) << map;
        EXPECT_THAT(scripted::Log, IsEmpty()) << map;
    }
}

TEST_F(TheTextures, ThatAreMissingGoToTheLogAndChangeNothingElse)
{
    File("c.bmp", colors);
    std::filesystem::create_directories(folder + "folder.bmp");
    Materials[Material("old\\H\xE4ut.bmp", "alpha.bmp")].Texture = 7;
    Material("c.bmp", "alpha.bmp");
    Material("folder.bmp");
    Material("ends\\");
    Material("");
    Materials[5].Texture = 3;
    LoadTextures(folder);
    EXPECT_THAT(scripted::Log, ElementsAre("Texture \"old\\H\xC3\xA4ut.bmp\" not found.",
                                           "Texture \"alpha.bmp\" not found.", "Texture \"alpha.bmp\" not found.",
                                           "Texture \"folder.bmp\" not found.", "Texture \"ends\\\" not found."));
    EXPECT_EQ(Materials[1].Texture, 7);
    EXPECT_EQ(Materials[2].Texture, 1);
    EXPECT_FALSE(Textures[1].HasOpacity);
    EXPECT_EQ(Materials[3].Texture, 0);
    EXPECT_EQ(Materials[5].Texture, 3);
    EXPECT_THAT(scripted::Messages, IsEmpty());
}

TEST_F(TheTextures, ThatFailDoNotStopTheOthers)
{
    const std::string cut = File("cut.bmp", colors.substr(0, colors.size() - 1));
    const std::string three = File("three.bmp", bmp::Header(3, 4, 24, 0));
    const std::string narrow = File("narrow.bmp", bmp::Header(2, 2, 8, 256));
    const std::string good = File("good.bmp", colors);
    for (const char* const name : {"cut.bmp", "three.bmp", "good.bmp"}) {
        Materials[Material(name)].Texture = 9;
    }
    Materials[Material("good.bmp", "narrow.bmp")].Texture = 9;
    LoadTextures(folder);
    EXPECT_EQ(Materials[1].Texture, 0);
    EXPECT_EQ(Materials[2].Texture, 0);
    EXPECT_EQ(Materials[3].Texture, 1);
    EXPECT_EQ(Materials[4].Texture, 0) << "an opacity map that does not fit loses the colours too";
    EXPECT_EQ(TextureCount(), 1);

    ASSERT_EQ(scripted::Messages.size(), 1U);
    EXPECT_EQ(scripted::Messages[0].Icon, BoxIcon::Stop);
    EXPECT_THAT(scripted::Messages[0].Text, StartsWith("Runtime error in LoadTexture\n"));
    EXPECT_THAT(scripted::Messages[0].Text,
                EndsWith(".\n\"" + cut + "\"\r\nMake sure your textures have power-of-two dimensions!"));
    EXPECT_THAT(scripted::Log, ElementsAre("Bitmap \"" + three + "\" does not have power of two dimensions.",
                                           "Texture \"" + narrow + "\" width does not match \"" + good + "\"."));
    EXPECT_THAT(scripted::Progress, ElementsAre(Pair(4, 1), Pair(4, 2), Pair(4, 3), Pair(4, 4)));
    EXPECT_THAT(scripted::Panels, ElementsAre(Pair("toolhelp", "Loading textures..."), Pair("toolhelp", "Ready...")));
}

TEST_F(TheTextures, ThatNameAnUnreadableOpacityMapFailUnderTheNameOfTheColors)
{
    const std::string path = File("c.bmp", colors);
    EXPECT_EQ(LoadTexture(path, folder + "gone.bmp"), 0);
    ASSERT_EQ(scripted::Messages.size(), 1U);
    EXPECT_THAT(scripted::Messages[0].Text, testing::HasSubstr("\n\"" + path + "\"\r\n"));
    EXPECT_EQ(TextureCount(), 0);
}

TEST_F(TheTextures, AreBoundWithThePresentFilters)
{
    File("c.bmp", colors);
    File("o.bmp", opacity);
    Material("c.bmp");
    Material("c.bmp", "o.bmp");
    LoadTextures(folder);

    BindTexture(1);
    GLint bound = 0;
    glGetIntegerv(GL_TEXTURE_BINDING_2D, &bound);
    EXPECT_EQ(static_cast<GLuint>(bound), Textures[1].GLTexture);
    EXPECT_TRUE(glIsEnabled(GL_TEXTURE_2D));
    EXPECT_FALSE(glIsEnabled(GL_ALPHA_TEST));
    EXPECT_EQ(Parameter(GL_TEXTURE_MIN_FILTER), GL_LINEAR_MIPMAP_NEAREST);
    EXPECT_EQ(Parameter(GL_TEXTURE_MAG_FILTER), GL_LINEAR);

    FilterTextures = false;
    BindTexture(2);
    EXPECT_TRUE(glIsEnabled(GL_ALPHA_TEST));
    EXPECT_EQ(Parameter(GL_TEXTURE_MIN_FILTER), GL_NEAREST);
    EXPECT_EQ(Parameter(GL_TEXTURE_MAG_FILTER), GL_NEAREST);

    for (const int16_t index : {int16_t{0}, int16_t{3}, int16_t{-1}}) {
        BindTexture(2);
        BindTexture(index);
        EXPECT_FALSE(glIsEnabled(GL_TEXTURE_2D) || glIsEnabled(GL_ALPHA_TEST)) << index;
    }
    BindTexture(2);
    ViewTextures = false;
    BindTexture(2);
    EXPECT_FALSE(glIsEnabled(GL_TEXTURE_2D) || glIsEnabled(GL_ALPHA_TEST));
}

TEST_F(TheTextures, AreCountedButNotMadeWithoutAContext)
{
    GLContext = false;
    File("c.bmp", colors);
    Material("c.bmp");
    Material("none.bmp");
    LoadTextures(folder);
    EXPECT_EQ(Materials[1].Texture, 1);
    EXPECT_EQ(Textures[1].GLTexture, 0U);
    EXPECT_EQ(scripted::Log.size(), 1U);
    FreeTextures();
    EXPECT_EQ(TextureCount(), 0);
    GLContext = true;
}

TEST_F(TheTextures, StopAtTheLargestNumber)
{
    Textures.Items.resize(32766);
    const std::string path = File("c.bmp", colors);
    EXPECT_EQ(LoadTexture(path, ""), 32767);
    EXPECT_EQ(LoadTexture(path, ""), 0);
    EXPECT_EQ(TextureCount(), 32767);
    EXPECT_EQ(scripted::Log.size(), 1U);
}

TEST_F(TheTextures, AreNotLoadedOnceTheLoadIsToStop)
{
    File("c.bmp", colors);
    Material("c.bmp");
    StopRequested = true;
    LoadTextures(folder);
    EXPECT_EQ(TextureCount(), 0);
    EXPECT_EQ(scripted::Panel("toolhelp"), "Ready...");
}
