#include <GL/gl.h>

#include "app/modMvmDef.h"
#include "model/modBitmap.h"
#include "model/modTexture.h"
#include "modGLTexture.h"
#include "modOpenGL.h"
#include "modViewFlags.h"
#include "support/bmp.h"
#include "support/fresh.h"

using testing::ElementsAre;
using testing::IsEmpty;
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

    /// Adds a material that has a texture already.
    static void AddMaterial(const std::string& colorMap, const std::string& opacityMap = {}, int16_t texture = 9)
    {
        Materials.Add({.Name = {}, .ColorMap = colorMap, .OpacityMap = opacityMap, .BumpMap = {}, .Texture = texture});
    }
    static std::vector<int16_t> TexturesOfMaterials()
    {
        std::vector<int16_t> numbers;
        for (const MvmMaterial& material : Materials) {
            numbers.push_back(material.Texture);
        }
        return numbers;
    }

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
    ASSERT_EQ(LoadTexture(path, opacity), 1);
    ASSERT_EQ(LoadTexture(path, ""), 2);
    EXPECT_TRUE(Textures[1].HasOpacity && !Textures[2].HasOpacity);
    const GLuint names[] = {Textures[1].GLTexture, Textures[2].GLTexture};
    EXPECT_NE(names[0], names[1]);
    glBindTexture(GL_TEXTURE_2D, names[0]);
    std::string pixels(32, '\0');
    glGetTexImage(GL_TEXTURE_2D, 0, GL_RGBA, GL_UNSIGNED_BYTE, pixels.data());
    EXPECT_EQ(pixels, "cba\1fed\2ihg\3lkj\4onm\5rqp\6uts\7xwv\x8");
    GLint width = 0;
    glGetTexLevelParameteriv(GL_TEXTURE_2D, 2, GL_TEXTURE_WIDTH, &width);
    EXPECT_EQ(width, 1);
    EXPECT_EQ(Parameter(GL_TEXTURE_WRAP_S), GL_REPEAT);
    EXPECT_EQ(Parameter(GL_TEXTURE_WRAP_T), GL_REPEAT);
    EXPECT_EQ(Parameter(GL_TEXTURE_MIN_FILTER), GL_LINEAR_MIPMAP_NEAREST);
    EXPECT_TRUE(IsValidTexture(1) && IsValidTexture(2) && !IsValidTexture(0) && !IsValidTexture(3));
    FreeTextures();
    EXPECT_EQ(TextureCount(), 0);
    EXPECT_FALSE(glIsTexture(names[0]) || glIsTexture(names[1]));

    uint32_t name = 0;
    EXPECT_FALSE(MakeGLTexture({}, &name, &Error)); // OpenGL makes no empty picture
    EXPECT_EQ(Error, "invalid value");
    EXPECT_FALSE(glIsTexture(name));
    GLContext = false; // entries still count
    ASSERT_EQ(LoadTexture(path, ""), 1);
    EXPECT_EQ(Textures[1].GLTexture, 0U);
    EXPECT_EQ(glGetError(), static_cast<GLenum>(GL_NO_ERROR));
}

TEST_F(TheTextures, AreFoundWhereTheModelSaysOrBesideIt)
{
    std::filesystem::create_directory(Folder / "sub");
    for (const char* name : {"Bark.bmp", "sub/deep.bmp", "H\xC3\xA4ut.bmp", "upper.bmp"}) {
        PutFile(Folder / name, colors);
    }
    PutFile(Folder / "UPPER.BMP", bmp::Header(3, 3, 24, 0));
    for (const std::string& map : {Folder / "Bark.bmp", std::string("Bark.bmp"), std::string("C:\\Art\\Bark.bmp"),
                                   std::string("art/Bark.bmp"), std::string("TEX\\bARK.BMP"), Folder / "sub\\deep.bmp",
                                   std::string("H\xE4ut.bmp"), std::string("upper.bmp")}) {
        scripted::Reset();
        AddMaterial(map);
        LoadTextures(Folder / "model.mvm");
        EXPECT_EQ(Materials[1].Texture, 1) << map;
        EXPECT_THAT(scripted::Log, IsEmpty()) << map;
    }
}

TEST_F(TheTextures, ThatAreMissingOrFailDoNotStopTheOthers)
{
    PutFile(Folder / "cut.bmp", colors.substr(0, colors.size() - 1));
    PutFile(Folder / "three.bmp", bmp::Header(3, 4, 24, 0));
    PutFile(Folder / "narrow.bmp", bmp::Header(2, 2, 8, 256));
    std::filesystem::create_directory(Folder / "folder.bmp");
    AddMaterial("old\\H\xE4ut.bmp", "alpha.bmp", 7);
    AddMaterial("folder.bmp");
    AddMaterial("ends\\");
    AddMaterial("");
    AddMaterial("cut.bmp");
    AddMaterial("three.bmp");
    AddMaterial("c.bmp", "alpha.bmp");
    AddMaterial("c.bmp", "narrow.bmp"); // an opacity map that does not fit loses the colours too
    LoadTextures(Folder.Path);
    EXPECT_THAT(TexturesOfMaterials(), ElementsAre(7, 9, 9, 9, 0, 0, 1, 0));
    EXPECT_FALSE(Textures[1].HasOpacity);
    EXPECT_THAT(scripted::Log,
                ElementsAre("Texture \"old\\H\xC3\xA4ut.bmp\" not found.", "Texture \"alpha.bmp\" not found.",
                            "Texture \"folder.bmp\" not found.", "Texture \"ends\\\" not found.",
                            "Bitmap \"" + Folder.Path + "three.bmp\" does not have power of two dimensions.",
                            "Texture \"alpha.bmp\" not found.",
                            "Texture \"" + Folder.Path + "narrow.bmp\" width does not match \"" + path + "\"."));
    EXPECT_EQ(LoadTexture(path, Folder / "gone.bmp"), 0);
    const auto failure = [](const std::string& file) {
        return IsBox(BoxIcon::Stop,
                     testing::AllOf(testing::StartsWith("Runtime error in LoadTexture\n"),
                                    testing::EndsWith(".\n\"" + file +
                                                      "\"\r\nMake sure your textures have power-of-two dimensions!")));
    };
    EXPECT_THAT(scripted::Messages, ElementsAre(failure(Folder / "cut.bmp"), testing::_));
    EXPECT_THAT(scripted::Messages[1].Text, testing::HasSubstr("\n\"" + path + "\"\r\n"));
    EXPECT_EQ(scripted::Progress.size(), 8U);
    EXPECT_THAT(scripted::Progress.back(), Pair(8, 8));
    EXPECT_THAT(scripted::Panels, ElementsAre(Pair("toolhelp", "Loading textures..."), Pair("toolhelp", "Ready...")));
}

TEST_F(TheTextures, AreBoundWithThePresentFilters)
{
    LoadTexture(path, "");
    LoadTexture(path, opacity);
    for (const bool filter : {true, false}) {
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
    AddMaterial("c.bmp");
    StopRequested = true;
    LoadTextures(Folder.Path);
    EXPECT_EQ(TextureCount(), 0);
    EXPECT_EQ(scripted::Panel("toolhelp"), "Ready...");
    Textures.Items.resize(32766);
    EXPECT_EQ(LoadTexture(path, ""), 32767);
    EXPECT_EQ(LoadTexture(path, ""), 0);
    EXPECT_EQ(TextureCount(), 32767);
    EXPECT_EQ(scripted::Log.size(), 1U);
}
