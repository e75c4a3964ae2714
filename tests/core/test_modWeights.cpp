#include <cmath>
#include <numeric>

#include "app/modFrontEnd.h"
#include "model/modLostAssignments.h"
#include "support/fresh.h"
#include "support/system_words.h"
#include "weights/modWeights.h"

using testing::ElementsAre;

struct Weights : FreshFolder {
    /// Makes a skin and bones and writes its weights. Gives what the file holds.
    std::string Saved(const std::vector<Vec3>& places, const std::vector<int16_t>& bones, size_t boneCount) const
    {
        Bones.Items.resize(boneCount);
        AddSkin("Hide", places, bones);
        SaveWeights(file, 1);
        EXPECT_TRUE(Told().starts_with("Information: File saved.\n"));
        return Content(file);
    }
    /// Loads a file of these bytes into the skin.
    void Loaded(const std::string& bytes, const std::deque<BoxAnswer>& answers, int mode) const
    {
        PutFile(file, bytes);
        scripted::Answers = answers;
        scripted::AssignModes = {mode};
        LoadWeights(file, 1);
        LoadWeights(file, 2); // no such mesh
    }
    const std::string file = Folder / "a.wif";
};

TEST_F(Weights, WritesEachByteInItsPlace)
{
    EXPECT_EQ(Saved({{1, -2, 0.5F}}, {0x0102}, 3), std::string("BWRT\0\0\2\0\7\0\3\0Hide                    \1\0\0\0"
                                                               "\0\0\x80\x3F\0\0\0\xC0\0\0\0\x3F\2\1",
                                                               54));
    EXPECT_EQ(scripted::Redraws, 1);
    Meshes[1].Name = "A name of more than 24 characters";
    Meshes[1].VertexBones.Clear();
    SaveWeights(file, 1);
    const std::string bytes = Content(file);
    EXPECT_EQ(bytes.substr(12, 24) + bytes.substr(52), std::string("A name of more than 24 c\0\0", 26));
    Told();
    SaveWeights(file, 2); // no such mesh
    SaveWeights(Folder / "none/a.wif", 1);
    Bones.Items.resize(32768);
    SaveWeights(file, 1);
    EXPECT_EQ(Told(), "Stop: Runtime error in SaveWeights\n" + NoFolderWords() +
                          "\n"
                          "Stop: Runtime error in SaveWeights\nThe model has more bones than the file can tell.\n");
    EXPECT_EQ(Content(file), bytes);
}

TEST_F(Weights, AsksEachQuestionInOrder)
{
    const std::string more = "\nWould you like to continue?\n";
    const std::string questions[] = {
        "Warning: File version is not compatible with this version of Beastwright.\r\nChoosing \"Yes\" may cause "
        "Beastwright to become unstable.\r\n\r\nWould you like to try anyway?\n",
        "Warning: Number of bones in the weight information file do not match loaded number of bones." + more,
        "Warning: Name of current mesh does not match weight information file." + more,
        "Warning: Number of vertices of current mesh does not match weight information file." + more};
    const std::string good = Saved({{1, 2, 3}}, {1}, 1);
    const std::tuple<size_t, size_t, char> cases[] = {{4, 0, 9},    {6, 0, 9},    {8, 0, 9},  {10, 1, 2}, {12, 2, 'X'},
                                                      {16, 2, 'X'}, {12, 2, ' '}, {36, 3, 2}, {39, 3, 1}};
    for (const auto& [at, question, value] : cases) {
        for (const BoxAnswer answer : {BoxAnswer::Yes, BoxAnswer::No, BoxAnswer::Cancel}) {
            Meshes[1].VertexBones[1] = 0;
            Loaded(std::string(good).replace(at, 1, 1, value), {answer}, 1);
            EXPECT_EQ(Told(), questions[question]);
            EXPECT_EQ(Meshes[1].VertexBones[1], answer == BoxAnswer::Yes ? 1 : 0);
        }
    }
    std::string all = good;
    all[4] = all[10] = all[12] = all[36] = 2;
    Loaded(all, std::deque<BoxAnswer>(4, BoxAnswer::Yes), 1);
    EXPECT_EQ(Told(), questions[0] + questions[1] + questions[2] + questions[3]);
    for (const int16_t mode : {int16_t{0}, int16_t{1}}) { // the dialog cancelled, then not
        scripted::Redraws = Meshes[1].VertexBones[1] = 0;
        Loaded(good, {}, mode);
        EXPECT_TRUE(Meshes[1].VertexBones[1] == mode && scripted::Redraws == mode && Told().empty());
    }
}

TEST_F(Weights, RefusesForeignAndCutFilesAndRecords)
{
    const std::string good = Saved({{1, 0, 0}, {2, 0, 0}, {3, 0, 0}, {4, 0, 0}, {5, 0, 0}}, {0, 2, -1, 3, 1}, 2);
    const std::string failed = "Stop: Runtime error in LoadWeights\n";
    LoadWeights(Folder.Path, 1);
    EXPECT_EQ(Told(), failed + "Is a directory\n");
    for (const std::string& bytes : {std::string(), "bWRT" + good.substr(4), good.substr(0, 4), good.substr(0, 39)}) {
        Loaded(bytes, {}, 1);
        EXPECT_EQ(Told(), bytes.starts_with("BWRT") ? failed + "The file ends within its header.\n"
                                                    : "Warning: File is not an weight information file.\n");
    }
    std::swap(Meshes[1].Vertices[1], Meshes[1].Vertices[2]);
    for (const int mode : {1, 2}) { // in the order of the file, by position
        Meshes[1].VertexBones.Items = {1, 1, 1, 1, 2};
        Loaded(good.substr(0, good.size() - 1), {}, mode);
        EXPECT_FALSE(LogDirty);
        EXPECT_EQ(Told(), "Log: Cannot assign vertex 4 to bone 3, bone does not exist.\n");
        EXPECT_THAT(Meshes[1].VertexBones.Items, ElementsAre(mode == 1 ? 0 : 2, mode == 1 ? 2 : 0, 1, 1, 2));
    }
}

TEST_F(Weights, ByPositionTheLastRecordNearbyCounts)
{
    Bones.Items.resize(9);
    MvmMesh mesh = {
        .Vertices = {{{0, 0, 0}, {0.0019F, -0.0019F, 0.0019F}, {5, 0.0021F, 5}, {4, 0, 0}, {INFINITY, 0, 0}}},
        .VertexBones = {{7, 7, 7, 7, 7}}};
    const Vec3 places[] = {{0, 0, 0},      {5, 0, 5},       {4.001F, 0, 0}, {4.003F, 0, 0}, {0, -0.0038F, 0.0019F},
                           {4, 0, 0.001F}, {INFINITY, 0, 0}};
    std::vector<WeightsVertex> records;
    for (const Vec3& place : places) {
        records.push_back({place, static_cast<int16_t>(records.size() + 1)});
    }
    AssignByPosition(records, &mesh);
    EXPECT_THAT(mesh.VertexBones.Items, ElementsAre(1, 5, 7, 6, 7));
}

TEST_F(Weights, LostOnesAreToldInFortyLines)
{
    AddBones(std::vector<std::string>(45, "B"));
    MvmMesh& mesh = AddSkin("S", {}, std::vector<int16_t>(45));
    std::iota(mesh.VertexBones.begin(), mesh.VertexBones.end(), int16_t{1});
    SkinMesh = 1;
    LogLostAssignments();
    EXPECT_EQ(scripted::Log.size(), 41U);
    EXPECT_EQ(scripted::Log.back(), "The same holds for 4 more vertices.");
}
