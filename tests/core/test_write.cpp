#include <clocale>
#include <cstdlib>
#include <limits>

#include "app/modFrontEnd.h"
#include "core/model_file.h"
#include "model/modMvmWrite.h"
#include "model/modNumbers.h"
#include "model/modStrings.h"
#include "support/model_text.h"

namespace {

class WriteModel : public ModelFile {
protected:
    [[nodiscard]] std::string WrittenBytes() const
    {
        EXPECT_TRUE(WriteMVM(Path));
        return Content(Path);
    }
};

const std::string fileInfo = "fileinfo\r\n{\r\n formatversion = 1.0.2\r\n}\r\n\r\n";

} // namespace

TEST_F(WriteModel, WritesAWholeSceneToTheByte)
{
    const std::string text =
        fileInfo +
        Lines("material \"Bark\"|{| colormap = \"Bark.bmp\"|}||"
              "material \"\xC4\"|{| opacitymap = \"o.bmp\"| bumpmap = \"b c.bmp\"|}||"
              "material \"None\"|{|}||"
              "bone \"Thigh07\"|{| position = (0.5,-1.25,3)| rotation = (0,0,1E-07)|}||"
              "bone \"$j$Hip02\"|{| position = (0,0,0)| rotation = (0,0,0)| mass = 3|\tlimit = \"a\"||}||"
              "skin \"Beast\"|{| m = \"Bark\"| m = \"other\"|"
              " v = (0,0,0),7| v = (1,0.3333333,1234568),7| v = (0,1,0),-1| t = (0,-0.5)| t = (1,0)| n = (0,0,1)|"
              " f = (1,2,3),(4,5,6),(7,8,9),1| f = (-1,32767,-32768),(0,0,0),(0,0,0),-3|}||"
              "skin \"Beast$sh\"|{| v = (0,0,0),2|}||"
              "mesh \"$head\"|{| v = (0,0,0)|}||"
              "instance \"Beast\"|{| mesh = \"Beast\"| position = (1,2,3)| rotation = (0,0,0)| scale = 0.25|}||");
    ASSERT_TRUE(Load(text));
    EXPECT_EQ(Bones[1].Position.Y, 3);
    EXPECT_EQ(Bones[1].Position.Z, 1.25F);
    EXPECT_EQ(WrittenBytes(), text);
}

TEST_F(WriteModel, SettlesAfterOneRoundTrip)
{
    const struct {
        const char *What, *Source, *Written;
    } cases[] = {
        {"order of sections", "instance I\rbone B\rmaterial M\r",
         "material \"M\"|{|}||"
         "bone \"B\"|{| position = (0,0,0)| rotation = (0,0,0)|}||"
         "instance \"I\"|{| mesh = \"\"| position = (0,0,0)| rotation = (0,0,0)| scale = 0|}||"},
        {"format version", "fileinfo\r{\rformatversion = 7\rauthor = x\r}\r", ""},
        {"unknown keys and blocks, text between blocks",
         "hello\rmaterial M\r{\rshine = 1\r}\rother x\r{\rcolormap = a\r}\rbye\r",
         "material \"M\"|{| colormap = \"a\"|}||"},
        {"unknown lines of bones", "bone B\r{\ra = 1\rposition = (1,2,3)\r b \r\r}\r",
         "bone \"B\"|{| position = (1,2,3)| rotation = (0,0,0)|a = 1| b ||}||"},
        {"names", "material \"a b\"\r{\rcolormap=\"x  y\"\r}\r", "material \"a\"|{| colormap = \"x  y\"|}||"},
        {"digits", "bone B\r{\rposition = (0.123456789,-0,1D-9)\r}\r",
         "bone \"B\"|{| position = (0.1234568,0,1E-09)| rotation = (0,0,0)|}||"},
        {"short faces and materials above the count",
         "mesh \"$\"\r{\rf = 1,2,3\rm = a\rf = 1,2,3,4,5,6,7,8,9,2\r}\rmesh M",
         "mesh \"$\"|{| m = \"a\"| f = (1,2,3),(0,0,0),(0,0,0),0| f = (1,2,3),(4,5,6),(7,8,9),0|}||mesh \"M\"|{|}||"},
        {"skins without a role, joint numbers from the last bone",
         "skin A\r{\rv = (0,0,0),7\r}\rskin B\r{\rv = (0,0,0),7\rv = (0,0,0),8\rv = (0,0,0)\r}\r"
         "bone x07\rbone y07\rbone e\r",
         "bone \"x07\"|{| position = (0,0,0)| rotation = (0,0,0)|}||"
         "bone \"y07\"|{| position = (0,0,0)| rotation = (0,0,0)|}||"
         "bone \"e\"|{| position = (0,0,0)| rotation = (0,0,0)|}||"
         "mesh \"A\"|{| v = (0,0,0)|}||skin \"B\"|{| v = (0,0,0),7| v = (0,0,0),-1| v = (0,0,0),0|}||"},
        {"a single mesh becomes the skin", "mesh M\r{\rv = (0,0,0)\r}\r", "skin \"M\"|{| v = (0,0,0),-1|}||"}};
    for (const auto& row : cases) {
        const std::string expected = fileInfo + Lines(row.Written);
        ASSERT_TRUE(LoadAnew(row.Source)) << row.What;
        EXPECT_EQ(ModelText(), expected) << row.What;
        ASSERT_TRUE(LoadAnew(expected)) << row.What;
        EXPECT_EQ(ModelText(), expected) << row.What << ", second time";
    }
}

TEST_F(WriteModel, WritesJointsFromAssignmentsOnly)
{
    for (const char* name : {"a07", "b-1", "c.5", "d"}) {
        Bones.Add().Name = name;
    }
    MvmMesh& mesh = Meshes.Add();
    mesh.IsSkin = true;
    for (const int16_t bone : std::initializer_list<int16_t>{1, 2, 3, 4, 5, 0, -1}) {
        mesh.Vertices.Add();
        mesh.VertexBones.Add(bone);
        mesh.VertexJoints.Add(3);
    }
    mesh.Vertices.Add(); // more vertices than assignments
    for (const bool shadow : {false, true}) {
        SkinMesh = shadow ? int16_t{0} : int16_t{1};
        ShadowMesh = shadow ? int16_t{1} : int16_t{0};
        std::string joints;
        const std::string text = ModelText();
        for (size_t at = 0; (at = text.find("0),", at)) != std::string::npos; ++at) {
            joints += text.substr(at + 2, text.find('\r', at) - at - 2);
        }
        EXPECT_EQ(joints, ",7,-1,0.5,0,-1,-1,-1,-1");
    }
    ShadowMesh = 0;
    EXPECT_EQ(ModelText().find("skin"), std::string::npos);
}

TEST_F(WriteModel, WritesNumbersThatCanBeReadAgain)
{
    const float infinite = std::numeric_limits<float>::infinity();
    Bones.Add().Position = {infinite, -infinite, std::numeric_limits<float>::quiet_NaN()};
    Bones[1].Rotation = {std::numeric_limits<float>::max(), std::numeric_limits<float>::denorm_min(), -0.0F};
    ASSERT_TRUE(LoadAnew(ModelText()));
    EXPECT_EQ(Bones[1].Position.Z, 0);
    EXPECT_GT(Bones[1].Position.X, 3e38F);
    EXPECT_LT(Bones[1].Position.Y, -3e38F);
}

TEST_F(WriteModel, DoesNotDependOnTheLocale)
{
    // A locale with a decimal comma made on the spot, since machines differ in those that they have.
    PutFile(Folder / "source", "LC_NUMERIC\ndecimal_point \",\"\nthousands_sep \".\"\ngrouping 3;3\nEND LC_NUMERIC\n");
    const std::string make =
        "localedef -c -i " + (Folder / "source") + " " + (Folder / "comma") + " >" + (Folder / "log");
    (void)!std::system((make + " 2>&1").c_str()); // it tells of all that the source does not name
    setenv("LOCPATH", Folder.Path.c_str(), 1);
    const std::string before = std::setlocale(LC_ALL, nullptr);
    ASSERT_NE(std::setlocale(LC_NUMERIC, "comma"), nullptr) << Content(Folder / "log");
    ASSERT_STREQ(std::localeconv()->decimal_point, ",");
    ASSERT_TRUE(Load("bone B\r{\rposition=(0.5,1.5,2,5)\r}"));
    EXPECT_NE(ModelText().find("(0.5,1.5,2)"), std::string::npos);
    EXPECT_EQ(FloatToText(1234.5F), "1234.5");
    std::setlocale(LC_ALL, before.c_str());
    unsetenv("LOCPATH");
}

TEST_F(WriteModel, ReportsAFailureAndLeavesTheSceneAlone)
{
    Bones.Add().Name = "B";
    EXPECT_FALSE(WriteMVM("/no/such/folder/x.mvm"));
    const auto failure = IsBox(BoxIcon::Stop, testing::MatchesRegex("Runtime error in WriteMVM\n.+"));
    EXPECT_THAT(scripted::Messages, testing::ElementsAre(failure));
    EXPECT_EQ(Bones[1].Name, "B");
}
