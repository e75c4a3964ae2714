#include <cerrno>
#include <clocale>
#include <random>
#include <sstream>

#include "app/modFrontEnd.h"
#include "model/modMvmBind.h"
#include "model/modMvmLines.h"
#include "model/modUsualLines.h"
#include "support/fresh.h"
#include "support/system_words.h"

using testing::ElementsAre;
using testing::Pair;
using namespace std::string_literals;

TEST_F(ModelFile, SplitsHeadersAtSingleBlanksAndLinesAtCrOnly)
{
    const auto check = [this](const std::string& header, const std::string& names) {
        ASSERT_TRUE(LoadAnew(header));
        std::string found;
        for (const MvmBone& bone : Bones) {
            found += bone.Name + "/";
        }
        EXPECT_EQ(found, names) << header;
    };
    const std::pair<const char*, const char*> cases[] = {{"BONE \"Ab\"", "Ab/"}, {"  bone \"A\"  ", "A/"},
                                                         {"\tbone \"A\"", ""},   {"bone\t\"A\"", ""},
                                                         {"bone  \"A\"", "/"},   {"bone", "/"},
                                                         {"bone \"A b\"", "A/"}, {"bone \"A\"{", "A{/"},
                                                         {"bone A\"\"B", "AB/"}, {"bones \"A\"", ""},
                                                         {"bone{", ""},          {"bone \"A\"\t", "A\t/"},
                                                         {"  \rbone B", "B/"},   {"\xEF\xBB\xBF bone A", ""}};
    for (const auto& [header, names] : cases) {
        check(header, names);
    }
    check("bone \"\xC4\0\xFFz\"\r"s, "\xC4\0\xFFz/"s);
    check("bone \"A\"\r{\r\n}\rbone \"B\"\r\r\n{\r}\r\n\rbone \"C\"", "A/B/C/");
    check("bone \"A\"\n{\n}\nbone \"B\"\n{\n}\n", "A\n{\n}\nbone/"); // one line, and its braces open no second block
    check("\nbone \"X\"\rbone \"A\"\r\r\n{\rposition=(1\n2,\n3,4)\r\nposition\n=(0,0,0)\0\x1A\r}"s, "A/");
    // LF is a blank of numbers only.
    EXPECT_TRUE(Bones[1].Position.X == 12 && Bones[1].Position.Z == -3);
    EXPECT_EQ(Bones[1].ExtraText, "position\n=(0,0,0)\0\x1A\r\n"s);
    ASSERT_TRUE(Load(CrLf("fileinfo and more|{| FormatVersion = \"1 .0\" . 2 = 5|author = 3|}|")));
    EXPECT_EQ(FormatVersion, "\"1 .0\".2");
}

TEST_F(ModelFile, TellsOfWhatIsNoModel)
{
    const std::string lf = " Its lines end in LF alone; those of a model file end in CR LF.";
    const std::string none = "Log: \"" + Path + "\" holds no material, bone, mesh or instance.";
    const std::string empty = " A save would replace it by an empty model.\n";
    EXPECT_TRUE(LoadAnew("bone A\rodd\ntext\r") && Told().empty());
    EXPECT_TRUE(LoadAnew("a note\r"));
    EXPECT_EQ(Told(), none + " It is no model file." + empty);
    EXPECT_TRUE(LoadAnew("a note\nof two lines\n"));
    EXPECT_EQ(Told(), none + lf + empty);
    EXPECT_TRUE(LoadAnew("bone A\nbone B\n"));
    EXPECT_EQ(Told(),
              "Log: \"" + Path + "\" was read as a single line." + lf + " A save would leave nothing of the rest.\n");
}

TEST_F(ModelFile, StopsAtAFailureAndKeepsWhatWasRead)
{
    const std::string isShort = "A value is too short for coordinates.";
    const std::string isLarge = "A number is too large.";
    const std::string isOutside = "A whole number is out of range.";
    const std::tuple<std::string, int, int, std::vector<std::string>> cases[] = {
        {isShort, 1, 1, {"v", "v = (", "t = ", "n = 1", "}|instance I {|rotation = x"}},
        {isLarge, 1, 1, {"t = (1E39,0)", "v = (0,0,1E400),3", "v = (1E39,0,0)", "}|instance I {|scale=1E39"}},
        {isOutside, 1, 2, {"v = (1,2,3),99999", "v = (1,2,3),32767.5"}},
        {isLarge, 1, 2, {"v = (1,2,3),1E400"}},
        {isOutside, 2, 1, {"f = 1,32768", "f=1,2,3,4,5,6,7,8,9,3E9", "f=1,2,3,4,5,6,7,8,9,-40000"}},
        {isLarge, 2, 1, {"f = 1,2,3,4,5,6,7,8,9,1E400"}}};
    for (const auto& [why, faces, vertices, lines] : cases) {
        for (const std::string& line : lines) {
            EXPECT_FALSE(LoadAnew(CrLf("bone $j$07|skin S|{|v = (1,2,3),7|f = 1,2,3|" + line + "|m = x|}|bone late|")));
            const std::string place = line[0] == '}' ? "Line 8: " : "Line 6: ";
            EXPECT_EQ(Told(), "Stop: Runtime error in LoadMVM\n" + place + why + "\n") << line;
            const MvmMesh& mesh = Meshes[1];
            EXPECT_THAT((std::array{mesh.VertexCount(), mesh.VertexBones.Count(), mesh.VertexJoints.Count()}),
                        testing::Each(vertices))
                << line;
            EXPECT_EQ(mesh.FaceCount(), faces) << line;
            EXPECT_TRUE(BoneCount() == 1 && !Bones[1].IsShadow && SkinMesh == 0 && !LoadRunning);
            EXPECT_EQ(scripted::Panel("toolhelp"), "Loading geometry...");
        }
    }
}

TEST_F(ModelFile, ReadsLinesThatLieAcrossThePiecesOfAFile)
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
    scripted::Reset();
    PutFile(Path, "bone \"A\"\r\n" + std::string(1'000'000, '\r') + "bone \"B\"\r\n");
    scripted::FailAt = 3; // behind the open and the first piece
    scripted::FailError = EIO;
    EXPECT_FALSE(LoadMVM(Path) || LoadMVM(Folder / "none"));
    EXPECT_EQ(BoneCount(), 1);
    const std::string failed = "Stop: Runtime error in LoadMVM\n";
    EXPECT_EQ(Told(), failed + SystemWords(EIO) + "\n" + failed + SystemWords(ENOENT) + "\n");
}

TEST_F(ModelFile, StepsThroughTheFileUntilStopped)
{
    const std::string line = "bone which means nothing today\r\n"; // 32 bytes
    ASSERT_TRUE(Load(line + line + line + line + line + line + line + line));
    EXPECT_THAT(scripted::Progress, ElementsAre(Pair(256, 0), Pair(256, 128), Pair(256, 256)));
    std::string steps;
    for (const auto& [key, step] : scripted::Panels) {
        steps += step;
    }
    EXPECT_EQ(steps,
              "Loading geometry...Loading textures...Ready...Verifying shadow bones...Verifying meshes...Ready...");
    scripted::Reset();
    StopRequested = true;
    EXPECT_FALSE(Load(line + line) || Load("") || LoadRunning);
    StopRequested = false;
    LoadRunning = true; // no load inside another one
    EXPECT_TRUE(!LoadMVM(Path) && LoadRunning);
    LoadRunning = false;
    EXPECT_EQ(std::to_string(BoneCount()) + Told(), "1");
}

TEST_F(ModelFile, BindsToTheLastBoneOfItsKindWithTheNumber)
{
    // Names of bones, then what stands behind a vertex and its bone.
    const std::pair<std::vector<std::string>, std::vector<std::pair<const char*, int>>> cases[] = {
        {{}, {{",0", 0}}},
        {{"Toe9", "A01", "B107"}, {{"", 1}, {",0", 1}, {",9", 0}, {",1", 2}, {",7,8", 1}, {",107", 0}}},
        {{"A00", "Root", "x-1", "x-9"}, {{"", 2}, {",-1", 3}, {",-9", 4}, {",-10", 0}, {",-32768", 0}}},
        {{"A07", "x7.", "C17", "$j$07", "x.5"}, {{",7", 2}, {",6.5", 0}, {",7.5", 0}, {",0.5", 0}, {",17", 3}}},
        {{"A08", "B99"}, {{",7.5", 1}, {",99", 2}, {",100", 0}, {",32767", 0}, {",-1", 0}}}};
    for (const auto& [names, bound] : cases) {
        for (const auto& [joint, bone] : bound) {
            scripted::Reset();
            AddBones(names);
            ASSERT_TRUE(Load("skin \"S\" {\r\n v = (1,2,3)"s + joint + "\r\n}\r\n"));
            EXPECT_EQ(Meshes[1].VertexBones[1], bone) << joint << testing::PrintToString(names);
        }
    }
    // A mesh with both roles takes the later bone of both kinds.
    scripted::Reset();
    AddBones({"A01", "$j$01", "$j$02", "B02"});
    ASSERT_TRUE(Load("skin S$ {\rv = (0,0,0),1\rv = (0,0,0),2\r}\r"));
    VerifyMeshes();
    EXPECT_THAT(Meshes[1].VertexBones.Items, ElementsAre(2, 4));
}

TEST_F(ModelFile, WorksOutRolesAndMaterialsFromNames)
{
    AddBones({"A01", "$J$B01"});
    ASSERT_TRUE(Load(CrLf("mesh head|skin S1 {|v = (0,0,0),1|}|skin S$h {|v = (0,0,0),1|}|mesh my$HEADbody|mesh $Tail|"
                          "mesh $tail2|skin S2 {|v=(0,0,0),1|m = A|m = \"B\"|m = a|}|mesh $|"
                          "material \"A\"|material B|material \"A\"|")));
    EXPECT_THAT((std::array{SkinMesh, ShadowMesh, HeadMesh, BodyMesh, TailMesh}), ElementsAre(7, 3, 4, 4, 6));
    // The first was bound while it held the role.
    EXPECT_TRUE(Meshes[2].VertexBones[1] == 1 && Meshes[3].VertexBones[1] == 2 && Meshes[7].VertexBones[1] == 1);
    const auto& list = Meshes[7].MeshMaterials;
    EXPECT_THAT((std::array{list[1].Index, list[2].Index, list[3].Index}), ElementsAre(3, 2, 0));
    // No index reaches the last ones: a bone above the range binds nothing, a mesh above it gets no role.
    Meshes.Items.assign(32768, {.IsSkin = true});
    Bones.Items.assign(32768, {.Name = "A01"});
    Meshes[32767] = {.Vertices = {{{}, {}}}, .IsSkin = true, .VertexBones = {{0, 0}}, .VertexJoints = {{1}}};
    VerifyMeshes();
    EXPECT_EQ(SkinMesh, 32767);
    EXPECT_THAT(Meshes[32767].VertexBones.Items, ElementsAre(32767, 0));
}

// Each case of the file: its name, a model, what is written of it behind the file info, and what is told of it.
TEST_F(ModelFile, WritesAndTellsWhatTheCasesSay)
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
        const std::string written = CrLf(FileInfoText) + parts[2];
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

TEST_F(ModelFile, TurnsTheAxesAndWritesJointsFromAssignmentsOnly)
{
    const std::string bone =
        "bone \"a07\"|{| position = (0.5,-1.25,3)| rotation = (0,0,0)|" + std::string(300'000, 'x') + "||}||";
    ASSERT_TRUE(Load(CrLf(FileInfoText + bone)));
    EXPECT_TRUE(Bones[1].Position.Y == 3 && Bones[1].Position.Z == 1.25F);
    EXPECT_TRUE(ModelText() == CrLf(FileInfoText + bone));
    AddBones({"b-1", "c.5", "d"});
    AddSkin("S", std::vector<Vec3>(5), {1, 2, 3, 4}).VertexJoints.Items = {3, 3, 3, 3}; // one more vertex
    AddSkin("S", std::vector<Vec3>(2), {5, -1});
    SkinMesh = 2;
    ShadowMesh = 1;
    EXPECT_THAT(ModelText(),
                testing::EndsWith(CrLf("skin \"S\"|{| v = (0,0,0),7| v = (0,0,0),-1| v = (0,0,0),0.5| v = (0,0,0),0|"
                                       " v = (0,0,0),-1|}||skin \"S\"|{| v = (0,0,0),-1| v = (0,0,0),-1|}||")));
}

TEST_F(ModelFile, DoesNotDependOnTheLocale)
{
#ifdef _WIN32
    ASSERT_NE(std::setlocale(LC_NUMERIC, "German"), nullptr);
#else
    // A locale with a decimal comma made on the spot, since machines differ in those that they have.
    PutFile(Folder / "source", "LC_NUMERIC\ndecimal_point \",\"\nthousands_sep \".\"\ngrouping 3;3\nEND LC_NUMERIC\n");
    const std::string make = "localedef -c -i " + (Folder / "source") + " " + (Folder / "comma") + " >/dev/null 2>&1";
    (void)!std::system(make.c_str()); // it tells of all that the source does not name
    setenv("LOCPATH", Folder.Path.c_str(), 1);
    ASSERT_NE(std::setlocale(LC_NUMERIC, "comma"), nullptr);
#endif
    ASSERT_TRUE(Load("bone B\r{\rposition=(0.5,1234.5,2,5)\r}"));
    EXPECT_THAT(ModelText(), testing::HasSubstr("(0.5,1234.5,2)"));
    std::setlocale(LC_ALL, "C");
}

template <typename T>
static std::string BytesOf(const Array1<T>& array)
{
    return {reinterpret_cast<const char*>(array.Items.data()), array.Items.size() * sizeof(T)};
}

/// What a mesh holds, bit for bit.
static std::string BytesOf(const MvmMesh& mesh)
{
    return BytesOf(mesh.Vertices) + "v" + BytesOf(mesh.Normals) + "n" + BytesOf(mesh.TexCoords) + "t" +
           BytesOf(mesh.VertexBones) + "b" + BytesOf(mesh.VertexJoints) + "j" + BytesOf(mesh.Faces);
}

// A line that the short way takes reads as under the general rules; one that it does not take changes nothing.
TEST_F(ModelFile, TakesUsualLinesLikeTheGeneralRules)
{
    std::mt19937 random(3);
    const std::string_view odd = "0123456789.,()-+eEdD \t\n=vntfm{}\"x";
    const std::pair<bool, std::string> seeds[] = {{true, " v = (1.5,-22.25,3),7"},
                                                  {true, " n = (-0.5773503,0.5773503,-0.5773503)"},
                                                  {true, "t\t=(0.123456,.5)"},
                                                  {true, " v = (999999999999999,5.,1)"},
                                                  {true, " f = (1,22,333),(4444,5555,32767),(-1,-32767,0),2"},
                                                  {true, " f = (1,2,3),(4,5,6),(7,8,9),3"},
                                                  {false, " v = (9007199254740993,0.00000000000000001,1)"},
                                                  {false, " v = (1,2,3),32768"},
                                                  {false, " f = (1,2,3),(4,5,6),(7,8,99999),1"}};
    for (size_t round = 0; round < 60'000; ++round) {
        auto [usual, line] = seeds[round % std::size(seeds)];
        for (auto changes = round < std::size(seeds) ? 0 : random() % 3; changes > 0; --changes) {
            line.replace(random() % line.size(), random() % 2, random() % 3, odd[random() % odd.size()]);
        }
        MvmMesh quick;
        quick.IsSkin = round % 2 == 0;
        quick.MeshMaterials.Items.resize(2);
        MvmMesh general = quick;
        const std::string ended = line + '\r';
        const char* const end = ReadUsualLine(ended.data(), &quick);
        EXPECT_TRUE(round >= std::size(seeds) || usual == (end != nullptr)) << line;
        if (end != nullptr) {
            ASSERT_TRUE(*end == '\r' && line.find_first_of("{}\"") == std::string::npos) << line;
            Meshes.Items = {general};
            const char* failure = nullptr;
            ASSERT_TRUE(ReadBodyLine(line, BlockKind::Mesh, &failure)) << line;
            general = Meshes[1];
        }
        ASSERT_EQ(BytesOf(quick), BytesOf(general)) << line;
    }
}
