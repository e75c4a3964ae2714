#include <clocale>
#include <cstdlib>
#include <sstream>

#include "support/fresh.h"

using WriteModel = ModelFile;

// Each case of the file: its name, a model, what is written of it behind the file info, and what is told of it.
TEST_F(WriteModel, WritesAndTellsWhatTheCasesSay)
{
    std::istringstream cases(Content(SOURCE_FOLDER "/tests/core/models.txt") + "===\n");
    std::string parts[4];
    size_t part = 0;
    for (std::string line; std::getline(cases, line);) {
        if (!line.starts_with("===")) {
            part += line == "---" ? 1 : 0;
            parts[part] += line == "---" ? "" : line + (part < 3 ? "\r\n" : "\n");
            continue;
        }
        SCOPED_TRACE(parts[0]);
        const std::string written = Lines(FileInfoText) + parts[2];
        for (const std::string& source : {parts[1], written}) { // it settles
            ASSERT_TRUE(LoadAnew(source));
            EXPECT_TRUE(WriteMVM(Path));
            EXPECT_EQ(Content(Path), written);
            EXPECT_EQ(Told(), parts[3]);
        }
        std::fill(parts, parts + 4, "");
        parts[0] = line;
        part = 1;
    }
}

TEST_F(WriteModel, TurnsTheAxesAndWritesJointsFromAssignmentsOnly)
{
    const std::string bone = BoneText("a07", "(0.5,-1.25,3)", "(0,0,0)", std::string(300'000, 'x') + "||");
    ASSERT_TRUE(Load(Lines(FileInfoText + bone)));
    EXPECT_TRUE(Bones[1].Position.Y == 3 && Bones[1].Position.Z == 1.25F);
    EXPECT_TRUE(ModelText() == Lines(FileInfoText + bone));
    AddBones({"b-1", "c.5", "d"});
    AddSkin("S", std::vector<Vec3>(5), {1, 2, 3, 4}).VertexJoints.Items = {3, 3, 3, 3}; // one more vertex
    AddSkin("S", std::vector<Vec3>(2), {5, -1});
    SkinMesh = 2;
    ShadowMesh = 1;
    EXPECT_THAT(ModelText(),
                testing::EndsWith(Lines("skin \"S\"|{| v = (0,0,0),7| v = (0,0,0),-1| v = (0,0,0),0.5| v = (0,0,0),0|"
                                        " v = (0,0,0),-1|}||skin \"S\"|{| v = (0,0,0),-1| v = (0,0,0),-1|}||")));
}

TEST_F(WriteModel, DoesNotDependOnTheLocale)
{
    // A locale with a decimal comma made on the spot, since machines differ in those that they have.
    PutFile(Folder / "source", "LC_NUMERIC\ndecimal_point \",\"\nthousands_sep \".\"\ngrouping 3;3\nEND LC_NUMERIC\n");
    const std::string make = "localedef -c -i " + (Folder / "source") + " " + (Folder / "comma");
    (void)!std::system((make + " >/dev/null 2>&1").c_str()); // it tells of all that the source does not name
    setenv("LOCPATH", Folder.Path.c_str(), 1);
    ASSERT_NE(std::setlocale(LC_NUMERIC, "comma"), nullptr);
    ASSERT_TRUE(Load("bone B\r{\rposition=(0.5,1234.5,2,5)\r}"));
    EXPECT_THAT(ModelText(), testing::HasSubstr("(0.5,1234.5,2)"));
    std::setlocale(LC_ALL, "C");
    unsetenv("LOCPATH");
}
