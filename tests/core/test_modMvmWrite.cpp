#include <clocale>
#include <cstdlib>

#include "support/fresh.h"

namespace {

class WriteModel : public ModelFile {};

} // namespace

TEST_F(WriteModel, WritesAWholeSceneToTheByte)
{
    const std::string text = Lines(
        FileInfoText +
        "material \"Bark\"|{| colormap = \"Bark.bmp\"|}||"
        "material \"\xC4\"|{| opacitymap = \"o.bmp\"| bumpmap = \"b c.bmp\"|}||material \"None\"|{|}||" +
        BoneText("Thigh07", "(0.5,-1.25,3)", "(0,0,1E-07)") +
        BoneText("$j$Hip02", "(0,0,0)", "(0,0,0)", " mass = 3|\tlimit = \"a\"|" + std::string(300'000, 'x') + "||") +
        "skin \"Beast\"|{| m = \"Bark\"| m = \"other\"|"
        " v = (0,0,0),7| v = (1,0.3333333,1234568),7| v = (0,1,0),-1| t = (0,-0.5)| t = (1,0)| n = (0,0,1)|"
        " f = (1,2,3),(4,5,6),(7,8,9),1| f = (-1,32767,-32768),(0,0,0),(0,0,0),-3|}||"
        "skin \"Beast$sh\"|{| v = (0,0,0),2|}||mesh \"$head\"|{| v = (0,0,0)|}||"
        "instance \"Beast\"|{| mesh = \"Beast\"| position = (1,2,3)| rotation = (0,0,0)| scale = 0.25|}||");
    ASSERT_TRUE(Load(text));
    EXPECT_EQ(Bones[1].Position.Y, 3);
    EXPECT_EQ(Bones[1].Position.Z, 1.25F);
    EXPECT_TRUE(WriteMVM(Path));
    EXPECT_TRUE(Content(Path) == text);
}

TEST_F(WriteModel, SettlesAfterOneRoundTrip)
{
    const struct {
        std::string Source, Written;
    } cases[] = {
        // The order of the sections is the writer's.
        {"instance I|bone B|material M|",
         "material \"M\"|{|}||" + BoneText("B") +
             "instance \"I\"|{| mesh = \"\"| position = (0,0,0)| rotation = (0,0,0)| scale = 0|}||"},
        {"fileinfo|{|formatversion = 7|author = x|}|", ""},
        {"hello|material M|{|shine = 1|}|other x|{|colormap = a|}|bye|", "material \"M\"|{| colormap = \"a\"|}||"},
        {"bone B|{|a = 1|position = (1,2,3)| b ||}|", BoneText("B", "(1,2,3)", "(0,0,0)", "a = 1| b ||")},
        {"material \"a b\"|{|ColorMap=\"x  y=z\"| opacitymap=\"o\"x\"\"|BUMPMAP|}|",
         "material \"a\"|{| colormap = \"x  y\"| opacitymap = \"ox\"|}||"},
        {"instance \"I\"|{|mesh = \"M m\"|POSITION=(1,2,3)|rotation=(4,5,6)|scale = 2.5x|color = 1|}|",
         "instance \"I\"|{| mesh = \"M m\"| position = (1,2,3)| rotation = (4,5,6)| scale = 2.5|}||"},
        {"bone B|{|position = (0.123456789,-0,1D-9)|rotation=[1,2],3]|}|bone C|{|position=(1,2)|rotation=1,2,34|}|",
         BoneText("B", "(0.1234568,0,1E-09)", "(1,2,3)") + BoneText("C", "(1,2,0)", "(0,2,3)")},
        // Any brace opens and closes; what a closing line says is read; an unknown block feeds the last record.
        {"bone \"A\" {|position = (1,2,3) }|rotation = (4,5,6)|junk { here|{ { {|"
         "rotation = (7,8,9)|x = \"}\" position = (0,0,0)|position=(9,9,9)|",
         BoneText("A", "(1,2,3)", "(7,8,9)", "{ { {||")},
        {"}|{|position = (1,2,3)|v = (1,2,3)|}|", ""},
        {"bone \"A\"|{|\t Mass = 3|   |\"position = (1,1,1)||gone }|",
         BoneText("A", "(0,0,0)", "(0,0,0)", "\t Mass = 3|   |\"position = (1,1,1)||")},
        // Skins without a role, joint numbers from the last bone.
        {BoneText("x07") + BoneText("y07") + BoneText("e") +
             "skin A|{|v = (0,0,0),7|}|skin B|{|v = (0,0,0),7|v = (0,0,0),8|v = (0,0,0)|}|",
         BoneText("x07") + BoneText("y07") + BoneText("e") +
             "mesh \"A\"|{| v = (0,0,0)|}||skin \"B\"|{| v = (0,0,0),7| v = (0,0,0),-1| v = (0,0,0),0|}||"},
        {"skin S$|", "skin \"S$\"|{|}||"},
        {"mesh M|mesh N|", "mesh \"M\"|{|}||mesh \"N\"|{|}||"},
        {"mesh M|{|v = (0,0,0)|}|", "skin \"M\"|{| v = (0,0,0),-1|}||"}, // a single mesh becomes the skin
        // Faces: by position, as numbers, and materials only up to the count.
        {"mesh \"$\"|{|m = a|m = b| F|f = (1,2,3),(4,5,6),(7,8,9),3|f=1,2,3,4,5,6,7,8,9,2|f = "
         "(1,2,3),(4,5,6),(7,8,9),-4|"
         "f = (1,2,3),(4,5,6),(7,8,9)|f = (1,2,3),(4,5,6),(7,8,9),1.5,9|f = (1.5,2.5,-2.5),(x,,4)5|"
         "f = 32767.4,-32768.5,1E3|f = (1,2,3),(4,5,6),(7,8,9),2147483647.4|f = (1,2,3),(4,5,6),(7,8,9),2|m = c|}|mesh "
         "M",
         "mesh \"$\"|{| m = \"a\"| m = \"b\"| m = \"c\"| f = (0,0,0),(0,0,0),(0,0,0),0| f = (1,2,3),(4,5,6),(7,8,9),0|"
         " f = (1,2,3),(4,5,6),(7,8,9),2| f = (1,2,3),(4,5,6),(7,8,9),-4| f = (1,2,3),(4,5,6),(7,8,9),0|"
         " f = (1,2,3),(4,5,6),(7,8,9),2| f = (2,2,-2),(0,0,45),(0,0,0),0| f = (32767,-32768,1000),(0,0,0),(0,0,0),0|"
         " f = (1,2,3),(4,5,6),(7,8,9),0| f = (1,2,3),(4,5,6),(7,8,9),2|}||mesh \"M\"|{|}||"}};
    for (const auto& row : cases) {
        const std::string expected = Lines(FileInfoText + row.Written);
        ASSERT_TRUE(LoadAnew(Lines(row.Source))) << row.Source;
        EXPECT_EQ(ModelText(), expected) << row.Source;
        ASSERT_TRUE(LoadAnew(expected)) << row.Source;
        EXPECT_EQ(ModelText(), expected) << row.Source << ", second time";
    }
}

TEST_F(WriteModel, WritesJointsFromAssignmentsOnly)
{
    AddBones({"a07", "b-1", "c.5", "d"});
    AddSkin("S", std::vector<Vec3>(5), {1, 2, 3, 4}).VertexJoints.Items = {3, 3, 3, 3}; // one more vertex
    AddSkin("S", std::vector<Vec3>(2), {5, -1});
    const auto skin = [](const std::string& joints) { return "skin \"S\"|{| v = (0,0,0)," + joints + "|}||"; };
    SkinMesh = 2;
    ShadowMesh = 1;
    EXPECT_THAT(ModelText(), testing::EndsWith(Lines(skin("7| v = (0,0,0),-1| v = (0,0,0),0.5| v = (0,0,0),0| v = "
                                                          "(0,0,0),-1") +
                                                     skin("-1| v = (0,0,0),-1"))));
}

TEST_F(WriteModel, DoesNotDependOnTheLocale)
{
    // A locale with a decimal comma made on the spot, since machines differ in those that they have.
    PutFile(Folder / "source", "LC_NUMERIC\ndecimal_point \",\"\nthousands_sep \".\"\ngrouping 3;3\nEND LC_NUMERIC\n");
    const std::string make =
        "localedef -c -i " + (Folder / "source") + " " + (Folder / "comma") + " >" + (Folder / "log");
    (void)!std::system((make + " 2>&1").c_str()); // it tells of all that the source does not name
    setenv("LOCPATH", Folder.Path.c_str(), 1);
    ASSERT_NE(std::setlocale(LC_NUMERIC, "comma"), nullptr) << Content(Folder / "log");
    ASSERT_TRUE(Load("bone B\r{\rposition=(0.5,1234.5,2,5)\r}"));
    EXPECT_THAT(ModelText(), testing::HasSubstr("(0.5,1234.5,2)"));
    std::setlocale(LC_ALL, "C");
    unsetenv("LOCPATH");
}
