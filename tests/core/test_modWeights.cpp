#include <cmath>
#include <limits>

#include "app/modFrontEnd.h"
#include "support/fresh.h"
#include "weights/modWeights.h"

using testing::ElementsAre;

namespace {

class Weights : public FreshFolder {
protected:
    /// Makes a skin and bones and writes its weights. Gives what the file holds.
    std::string Saved(const std::vector<Vec3>& places, const std::vector<int16_t>& bones, size_t boneCount) const
    {
        Bones.Items.resize(boneCount);
        AddSkin("Hide", places, bones);
        SaveWeights(file, 1);
        EXPECT_THAT(std::exchange(scripted::Messages, {}), ElementsAre(IsBox(BoxIcon::Information, "File saved.")));
        return Content(file);
    }
    /// Loads a file of these bytes into the skin.
    void Loaded(const std::string& bytes, const std::deque<BoxAnswer>& answers, int mode) const
    {
        PutFile(file, bytes);
        scripted::Questions.clear();
        scripted::Answers = answers;
        scripted::AssignModes = {mode};
        LoadWeights(file, 1);
    }
    const std::string file = Folder / "a.wif";
};

} // namespace

TEST_F(Weights, WritesEachByteInItsPlace)
{
    EXPECT_EQ(Saved({{1, -2, 0.5F}}, {0x0102}, 3), std::string("BWRT\0\0\2\0\7\0\3\0Hide                    \1\0\0\0"
                                                               "\0\0\x80\x3F\0\0\0\xC0\0\0\0\x3F\2\1",
                                                               54));
    EXPECT_EQ(scripted::Redraws, 1);
    Meshes[1].Name = "A name of more than 24 characters";
    Meshes[1].VertexBones.Clear();
    SaveWeights(file, 1);
    EXPECT_EQ(Content(file).substr(12, 24), "A name of more than 24 c");
    EXPECT_TRUE(Content(file).ends_with(std::string("\x3F\0\0", 3)));
    scripted::Messages.clear();
    PutFile(file, "old");
    SaveWeights(file, 2); // no such mesh
    Bones.Items.resize(32768);
    SaveWeights(file, 1);
    const std::string tooMany = "Runtime error in SaveWeights\nThe model has more bones than the file can tell.";
    Bones.Clear();
    SaveWeights(Folder / "none/a.wif", 1);
    EXPECT_THAT(scripted::Messages,
                ElementsAre(IsBox(BoxIcon::Stop, tooMany),
                            IsBox(BoxIcon::Stop, "Runtime error in SaveWeights\nNo such file or directory")));
    EXPECT_EQ(Content(file), "old");
}

TEST_F(Weights, AsksEachQuestionInOrder)
{
    const std::string more = "\nWould you like to continue?";
    const std::string questions[] = {
        "File version is not compatible with this version of Beastwright.\r\nChoosing \"Yes\" may cause Beastwright to "
        "become unstable.\r\n\r\nWould you like to try anyway?",
        "Number of bones in the weight information file do not match loaded number of bones." + more,
        "Name of current mesh does not match weight information file." + more,
        "Number of vertices of current mesh does not match weight information file." + more};
    const std::string good = Saved({{1, 2, 3}}, {1}, 1);
    const auto told = [&](size_t at, char value) { return good.substr(0, at) + value + good.substr(at + 1); };
    const std::pair<std::string, size_t> cases[] = {{told(4, 9), 0},    {told(6, 9), 0},    {told(8, 9), 0},
                                                    {told(10, 2), 1},   {told(12, 'X'), 2}, {told(16, 'X'), 2},
                                                    {told(12, ' '), 2}, {told(36, 2), 3},   {told(39, 1), 3}};
    const auto isQuestion = [&](size_t number) { return IsBox(BoxIcon::Warning, questions[number]); };
    for (const auto& [bytes, question] : cases) {
        for (const BoxAnswer answer : {BoxAnswer::Yes, BoxAnswer::No, BoxAnswer::Cancel}) {
            Meshes[1].VertexBones[1] = 0;
            Loaded(bytes, {answer}, 1);
            EXPECT_THAT(scripted::Questions, ElementsAre(isQuestion(question)));
            EXPECT_EQ(Meshes[1].VertexBones[1], answer == BoxAnswer::Yes ? 1 : 0);
        }
    }
    std::string all = told(4, 9);
    all[10] = all[12] = all[36] = 2;
    Loaded(all, std::deque<BoxAnswer>(4, BoxAnswer::Yes), 1);
    EXPECT_THAT(scripted::Questions, ElementsAre(isQuestion(0), isQuestion(1), isQuestion(2), isQuestion(3)));
    for (const int16_t mode : {int16_t{0}, int16_t{1}}) { // the dialog cancelled, then not
        scripted::Redraws = Meshes[1].VertexBones[1] = 0;
        Loaded(good, {}, mode);
        EXPECT_EQ(Meshes[1].VertexBones[1], mode);
        EXPECT_EQ(scripted::Redraws, mode);
    }
    EXPECT_TRUE(scripted::Questions.empty());
}

TEST_F(Weights, RefusesForeignAndCutFiles)
{
    const std::string good = Saved({{1, 2, 3}}, {1}, 1);
    LoadWeights(Folder.Path, 1);
    EXPECT_THAT(scripted::Messages, ElementsAre(IsBox(BoxIcon::Stop, "Runtime error in LoadWeights\nIs a directory")));
    const auto foreign = IsBox(BoxIcon::Warning, "File is not an weight information file.");
    const auto cut = IsBox(BoxIcon::Stop, "Runtime error in LoadWeights\nThe file ends within its header.");
    for (const size_t size : {0U, 3U, 4U, 39U}) {
        scripted::Messages.clear();
        Loaded(good.substr(0, size), {}, 1);
        LoadWeights(file, 2); // no such mesh
        EXPECT_THAT(scripted::Messages, ElementsAre(size < 4 ? foreign : cut));
    }
    Loaded("bWRT" + good.substr(4), {}, 1);
    EXPECT_THAT(scripted::Messages.back(), foreign);
    scripted::Messages.clear();
    Loaded(good.substr(0, 40), {}, 1);
    EXPECT_TRUE(scripted::Messages.empty());
}

TEST_F(Weights, RecordsOutsideAndCutRecordsLeaveVerticesAlone)
{
    const std::string bytes = Saved({{1, 0, 0}, {2, 0, 0}, {3, 0, 0}, {4, 0, 0}, {5, 0, 0}}, {0, 2, -1, 3, 1}, 2);
    for (const int mode : {1, 2}) {
        Meshes[1].VertexBones.Items = {1, 1, 1, 1, 2};
        EXPECT_THAT(LogOf([&] { Loaded(bytes.substr(0, bytes.size() - 1), {}, mode); }),
                    ElementsAre("Cannot assign vertex 4 to bone 3, bone does not exist."));
        EXPECT_THAT(Meshes[1].VertexBones.Items, ElementsAre(0, 2, 1, 1, 2));
    }
}

TEST_F(Weights, ByPositionTheLastRecordNearbyCounts)
{
    Bones.Items.resize(9);
    const float inf = std::numeric_limits<float>::infinity();
    MvmMesh mesh = {.Vertices = {{{0, 0, 0}, {0.0019F, -0.0019F, 0.0019F}, {5, 0.0021F, 5}, {4, 0, 0}, {inf, 0, 0}}},
                    .VertexBones = {{7, 7, 7, 7, 7}}};
    AssignByPosition({{{0, 0, 0}, 1},
                      {{5, 0, 5}, 2},
                      {{4.001F, 0, 0}, 3},
                      {{4.003F, 0, 0}, 4},
                      {{0, -0.0038F, 0.0019F}, 5},
                      {{4, -0.001F, 0.001F}, 6},
                      {{inf, 0, 0}, 8}},
                     &mesh);
    EXPECT_THAT(mesh.VertexBones.Items, ElementsAre(1, 5, 7, 6, 7));
    // The sums are told from the record, in double precision: just inside and just outside.
    for (const auto& [place, bone] : {std::pair{0.002F, 1}, std::pair{std::nextafter(0.002F, 0.0F), 2}}) {
        const bool inside = static_cast<double>(place) < 0.002;
        mesh = {.Vertices = {{{0, place, 0}}}, .VertexBones = {{7}}};
        AssignByPosition({{{0, 0, 0}, static_cast<int16_t>(bone)}}, &mesh);
        EXPECT_EQ(mesh.VertexBones[1], inside ? bone : 7);
    }
}
