#include <cerrno>
#include <system_error>

#include "app/modFrontEnd.h"
#include "core/model_file.h"

namespace {

using testing::ElementsAre;
using testing::HasSubstr;
using testing::StartsWith;

std::vector<std::string> BoneNames()
{
    std::vector<std::string> names;
    for (const MvmBone& bone : Bones) {
        names.push_back(bone.Name);
    }
    return names;
}

class ReadModel : public ModelFile {};

} // namespace

TEST_F(ReadModel, EndsLinesAtCrLfOrLoneCrOnly)
{
    ASSERT_TRUE(Load("bone \"A\"\r{\r\n}\rbone \"B\"\r\r\n{\r}\r\n\rbone \"C\""));
    EXPECT_THAT(BoneNames(), ElementsAre("A", "B", "C"));

    ASSERT_TRUE(LoadAnew("bone \"A\"\n{\n}\nbone \"B\"\n{\n}\n"));
    EXPECT_THAT(BoneNames(), ElementsAre("A\n{\n}\nbone")); // one line, and its braces open no second block

    // LF is no blank of a header, but of a number; CR CR LF is an empty line; a byte order mark is part of its line.
    ASSERT_TRUE(LoadAnew("\nbone \"X\"\r\xEF\xBB\xBF"
                         "bone \"Y\"\rbone \"A\"\r\r\n{\rposition=(1\n2,\n3,4)\r\nposition\n=(0,0,0)\r}"));
    EXPECT_THAT(BoneNames(), ElementsAre("A"));
    EXPECT_EQ(Bones[1].Position.X, 12);
    EXPECT_EQ(Bones[1].Position.Z, -3);
    EXPECT_EQ(Bones[1].ExtraText, "position\n=(0,0,0)\r\n");
}

TEST_F(ReadModel, TakesEveryByteAsItIs)
{
    using namespace std::string_literals;
    ASSERT_TRUE(Load("bone \"\xC4\x80\0\xFFz\"\r{\r x\0\x1A\xE9 = 1\r}\r"s));
    EXPECT_EQ(Bones[1].Name, "\xC4\x80\0\xFFz"s);
    EXPECT_EQ(Bones[1].ExtraText, " x\0\x1A\xE9 = 1\r\n"s);
}

TEST_F(ReadModel, SplitsHeadersAtSingleBlanks)
{
    const struct {
        const char* Header;
        std::vector<std::string> Names;
    } cases[] = {
        {"BONE \"Ab\"", {"Ab"}}, {"  bone \"A\"  ", {"A"}},
        {"\tbone \"A\"", {}},    {"bone\t\"A\"", {}},
        {"bone  \"A\"", {""}},   {"bone", {""}},
        {"bone \"A b\"", {"A"}}, {"bone \"A\"{", {"A{"}},
        {"bone A\"\"B", {"AB"}}, {"bones \"A\"", {}},
        {"bone{", {}},           {"bone \"A\"\t", {"A\t"}},
    };
    for (const auto& row : cases) {
        ASSERT_TRUE(LoadAnew(row.Header));
        EXPECT_EQ(BoneNames(), row.Names) << row.Header;
    }
}

TEST_F(ReadModel, OpensAndClosesBlocksAtAnyBrace)
{
    ASSERT_TRUE(Load(Lines("bone \"A\" {|position = (1,2,3) }|rotation = (4,5,6)|junk { here|{ { {|"
                           "rotation = (7,8,9)|x = \"}\" position = (0,0,0)|position=(9,9,9)|")));
    EXPECT_EQ(Bones[1].Position.X, 1); // read although it stands on the closing line
    EXPECT_EQ(Bones[1].Rotation.X, 7); // an unknown block feeds the last record
    EXPECT_EQ(Bones[1].ExtraText, "{ { {\r\n");

    ASSERT_TRUE(LoadAnew(
        Lines("}|{|position = (1,2,3)|formatversion = 3|}|fileinfo and more|{| FormatVersion = \"1 .0\" . 2 = 5|}|")));
    EXPECT_EQ(BoneCount(), 0);
    EXPECT_EQ(FormatVersion, "\"1 .0\".2");
}

TEST_F(ReadModel, KeepsUnknownLinesOfBonesOnly)
{
    ASSERT_TRUE(Load(Lines("bone \"A\"|{|\t Mass = 3|   |\"position = (1,1,1)||gone }|"
                           "material \"M\"|{| ColorMap = \"a b=c.bmp\"| opacitymap=\"o\"x\"\"|BUMPMAP| shine = 1|}|"
                           "instance \"I\"|{|mesh = \"M m\"|scale = 2.5x|color = 1|}|instance \"J\"|")));
    EXPECT_EQ(Bones[1].ExtraText, "\t Mass = 3\r\n   \r\n\"position = (1,1,1)\r\n");
    EXPECT_EQ(Materials[1].ColorMap, "a b");
    EXPECT_EQ(Materials[1].OpacityMap, "ox");
    EXPECT_EQ(Materials[1].BumpMap, "");
    EXPECT_EQ(Instances[1].Mesh, "M m");
    EXPECT_EQ(Instances[1].Scale, 2.5F);
    EXPECT_EQ(Instances[2].Scale, 0);
}

TEST_F(ReadModel, FillsFacesByPosition)
{
    const struct {
        const char* Line;
        std::array<int16_t, 10> Numbers; // vertices, texture coordinates, normals, material
    } cases[] = {{" F", {0, 0, 0, 0, 0, 0, 0, 0, 0, 0}},
                 {" f = (1,2,3),(4,5,6),(7,8,9),3", {1, 2, 3, 4, 5, 6, 7, 8, 9, 0}},
                 {"f=1,2,3,4,5,6,7,8,9,1", {1, 2, 3, 4, 5, 6, 7, 8, 9, 1}},
                 {" f = (1,2,3),(4,5,6),(7,8,9),-4", {1, 2, 3, 4, 5, 6, 7, 8, 9, -4}},
                 {" f = (1,2,3),(4,5,6),(7,8,9)", {1, 2, 3, 4, 5, 6, 7, 8, 9, 0}},
                 {" f = (1,2,3),(4,5,6),(7,8,9),2.5,9", {1, 2, 3, 4, 5, 6, 7, 8, 9, 2}},
                 {" f = (1.5,2.5,-2.5),(x,,4)5", {2, 2, -2, 0, 0, 45, 0, 0, 0, 0}},
                 {" f = 32767.4,-32768.5,1E3", {32767, -32768, 1000, 0, 0, 0, 0, 0, 0, 0}},
                 {" f = (1,2,3),(4,5,6),(7,8,9),2", {1, 2, 3, 4, 5, 6, 7, 8, 9, 2}},
                 {" f = (1,2,3),(4,5,6),(7,8,9),2147483647.4", {1, 2, 3, 4, 5, 6, 7, 8, 9, 0}}};
    for (const auto& row : cases) {
        ASSERT_TRUE(LoadAnew(Lines("mesh \"M\" {|m = a|m = b|" + std::string(row.Line) + "|m = c|}|"))) << row.Line;
        ASSERT_EQ(Meshes[1].FaceCount(), 1);
        const MvmFace& face = Meshes[1].Faces[1];
        EXPECT_THAT(
            (std::array<int16_t, 10>{face.Vertex[0], face.Vertex[1], face.Vertex[2], face.TexCoord[0], face.TexCoord[1],
                                     face.TexCoord[2], face.Normal[0], face.Normal[1], face.Normal[2], face.Material}),
            testing::ElementsAreArray(row.Numbers))
            << row.Line;
    }
}

TEST_F(ReadModel, StopsAtAFailureAndKeepsWhatWasRead)
{
    const struct {
        const char* Line;
        int Faces, Vertices;
    } cases[] = {{"v", 1, 1},          {"position = x", 1, 1},      {"v = (1,2,3),99999", 1, 2},
                 {"t = ", 1, 1},       {"v = (1E39,0,0),3", 1, 1},  {"v = (1,2,3),32767.5", 1, 2},
                 {"v = (", 1, 1},      {"v = (0,0,1E400),3", 1, 1}, {"f = 1,2,3,4,5,6,7,8,9,3E9", 2, 1},
                 {"n = 1", 1, 1},      {"v = (1,2,3),1E300", 1, 2}, {"f = 1,2,3,4,5,6,7,8,9,-40000", 2, 1},
                 {"f = 1,32768", 2, 1}};
    for (const auto& row : cases) {
        const bool good = row.Line[0] == 'p'; // a mesh does not know it
        ASSERT_EQ(LoadAnew(Lines("bone \"$j$07\"|skin \"S\"|{|v = (1,2,3),7|f = 1,2,3|" + std::string(row.Line) +
                                 "|m = late|}|bone \"late\"|")),
                  good)
            << row.Line;
        const MvmMesh& mesh = Meshes[1];
        EXPECT_EQ(mesh.FaceCount(), row.Faces) << row.Line;
        for (const int32_t count : {mesh.VertexCount(), mesh.VertexBones.Count(), mesh.VertexJoints.Count()}) {
            EXPECT_EQ(count, row.Vertices) << row.Line;
        }
        EXPECT_EQ(mesh.MeshMaterialCount(), good ? 1 : 0) << row.Line;
        EXPECT_EQ(BoneCount(), good ? 2 : 1);
        EXPECT_EQ(Bones[1].IsShadow, good);
        EXPECT_EQ(SkinMesh, good ? 1 : 0);
        EXPECT_EQ(scripted::Panel("toolhelp"), good ? "Ready..." : "Loading geometry...");
        EXPECT_FALSE(LoadRunning);
        if (!good) {
            const auto failure = IsBox(BoxIcon::Stop, StartsWith("Runtime error in LoadMVM\nLine 6: "));
            EXPECT_THAT(scripted::Messages, ElementsAre(failure));
        }
    }
    ASSERT_FALSE(LoadAnew(Lines("instance \"I\" {||scale = 1E39|")));
    EXPECT_THAT(LastMessage(), HasSubstr("Line 3: "));
    EXPECT_EQ(InstanceCount(), 1);
}

TEST_F(ReadModel, ReportsPathsThatCannotBeRead)
{
    for (const std::string& path : {std::string(), Folder / "none.mvm", Folder.Path, std::string("/dev/zero")}) {
        scripted::Reset();
        EXPECT_FALSE(LoadMVM(path)) << path;
        const auto failure = IsBox(BoxIcon::Stop, testing::MatchesRegex("Runtime error in LoadMVM\n.+"));
        EXPECT_THAT(scripted::Messages, ElementsAre(failure));
        EXPECT_FALSE(LoadRunning);
    }
}

TEST_F(ReadModel, ReadsLinesThatLieAcrossThePiecesOfAFile)
{
    // Lines of all lengths with both line ends, so that every place of a line falls on the end of a piece.
    std::string text = "skin \"S\" {\r\n";
    int vertices = 0;
    for (; text.size() < 900'000; ++vertices) {
        text += " v = (" + std::to_string(vertices) + ",2,3),7" + (vertices % 3 == 0 ? "\r" : "\r\n") +
                std::string(static_cast<size_t>(vertices) % 7, '\r');
    }
    text += std::string(600'000, 'x') + "\r\n v = (1,2,3),8\r\n n = 1";
    ASSERT_FALSE(Load(text));
    ASSERT_EQ(Meshes[1].VertexCount(), vertices + 1);
    for (int v = 0; v < vertices; ++v) {
        ASSERT_EQ(Meshes[1].Vertices[v + 1].X, static_cast<float>(v));
    }
    EXPECT_EQ(Meshes[1].VertexJoints[vertices + 1], 8);
}

TEST_F(ReadModel, KeepsWhatStoodBeforeAReadError)
{
    PutFile(Path, "bone \"A\"\r\n" + std::string(1'000'000, '\r') + "bone \"B\"\r\n");
    scripted::FailAt = 3; // behind the open and the first piece
    scripted::FailError = EIO;
    EXPECT_FALSE(LoadMVM(Path));
    EXPECT_THAT(BoneNames(), ElementsAre("A"));
    EXPECT_EQ(LastMessage(), "Runtime error in LoadMVM\n" + std::generic_category().message(EIO));
}

TEST_F(ReadModel, StepsThroughTheFile)
{
    ASSERT_TRUE(Load(""));
    EXPECT_TRUE(scripted::Progress.empty());
    EXPECT_THAT(scripted::Panels,
                ElementsAre(testing::Pair("toolhelp", "Loading geometry..."),
                            testing::Pair("toolhelp", "Loading textures..."), testing::Pair("toolhelp", "Ready..."),
                            testing::Pair("toolhelp", "Verifying shadow bones..."),
                            testing::Pair("toolhelp", "Verifying meshes..."), testing::Pair("toolhelp", "Ready...")));

    std::string text;
    for (int line = 0; line < 100; ++line) {
        text += "some line that means nothing\r\n";
    }
    ASSERT_TRUE(LoadAnew(text));
    int expected = 0;
    for (const auto& [maximum, value] : scripted::Progress) {
        EXPECT_EQ(maximum, 3000);
        EXPECT_EQ(value, expected); // every multiple is met, since lines are shorter
        expected += 128;
    }
    EXPECT_EQ(expected, 3000 / 128 * 128 + 128);
}

TEST_F(ReadModel, EndsWithoutAMessageWhenStoppedOrInsideAnotherLoad)
{
    StopRequested = true;
    EXPECT_FALSE(Load("bone \"A\"\r\nbone \"B\"\r\n"));
    EXPECT_EQ(BoneCount(), 1);
    EXPECT_FALSE(LoadRunning);
    StopRequested = false;
    LoadRunning = true;
    EXPECT_FALSE(LoadMVM(Path));
    EXPECT_TRUE(LoadRunning);
    LoadRunning = false;
    EXPECT_EQ(BoneCount(), 1);
    EXPECT_TRUE(scripted::Messages.empty());
}
