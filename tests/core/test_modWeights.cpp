#include "app/modFrontEnd.h"
#include "core/shapes.h"
#include "support/fresh.h"
#include "weights/modWeights.h"

using testing::ElementsAre;
using testing::StartsWith;

namespace {

/// What a file raises that differs in all: in the order of the questions.
const std::vector<std::string> questions = {
    "File version is not compatible with this version of Beastwright.\r\nChoosing \"Yes\" may cause Beastwright to "
    "become unstable.\r\n\r\nWould you like to try anyway?",
    "Number of bones in the weight information file do not match loaded number of bones.\nWould you like to continue?",
    "Name of current mesh does not match weight information file.\nWould you like to continue?",
    "Number of vertices of current mesh does not match weight information file.\nWould you like to continue?"};

class Weights : public FreshFolder {
protected:
    void Write(const std::string& bytes) const { PutFile(file, bytes); }
    [[nodiscard]] std::string Read() const { return Content(file); }
    /// Adds a skin and bones and writes its weights. Gives what the file holds.
    std::string Saved(const std::vector<Vec3>& places, const std::vector<int16_t>& bones, size_t boneCount) const
    {
        Bones.Items.resize(boneCount);
        MvmMesh& mesh = Meshes.Add();
        mesh.Name = "Hide";
        mesh.IsSkin = true;
        mesh.Vertices.Items = places;
        mesh.VertexBones.Items = bones;
        SaveWeights(file, 1);
        scripted::Messages.clear();
        return Read();
    }
    const std::string file = Folder / "a.wif";
};

TEST_F(Weights, WritesEachByteInItsPlace)
{
    const std::string expected("BWRT\0\0\2\0\7\0\3\0Hide                    \1\0\0\0"
                               "\0\0\x80\x3F\0\0\0\xC0\0\0\0\x3F\2\1",
                               54);
    EXPECT_EQ(Saved({{1, -2, 0.5F}}, {0x0102}, 3), expected);
    EXPECT_EQ(scripted::Redraws, 1);
    Meshes[1].Name = "A name of more than 24 characters";
    SaveWeights(file, 1);
    EXPECT_EQ(Read().substr(12, 24), "A name of more than 24 c");
}

TEST_F(Weights, FailedSaveKeepsTheOldFile)
{
    Saved({{1, 2, 3}}, {0}, 0);
    Write("old");
    scripted::Messages.clear();
    Bones.Items.resize(32768);
    SaveWeights(file, 1);
    EXPECT_THAT(scripted::Messages, ElementsAre(IsBox(BoxIcon::Stop, StartsWith("Runtime error in SaveWeights\n"))));
    EXPECT_EQ(Read(), "old");
}

TEST_F(Weights, AsksEachQuestionInOrder)
{
    const std::string good = Saved({{1, 2, 3}}, {1}, 1);
    std::string all = good;
    all[4] = 9;
    all[10] = 2;
    all[12] = 'X';
    all[36] = 2;
    for (size_t yes = 0; yes <= questions.size(); ++yes) {
        for (const BoxAnswer refusal : {BoxAnswer::No, BoxAnswer::Cancel}) {
            Write(all);
            scripted::Questions.clear();
            scripted::Answers.assign(yes, BoxAnswer::Yes);
            scripted::Answers.push_back(refusal);
            scripted::AssignModes = {1};
            Meshes[1].VertexBones[1] = 0;
            LoadWeights(file, 1);
            ASSERT_EQ(scripted::Questions.size(), std::min(yes + 1, questions.size()));
            for (size_t i = 0; i < scripted::Questions.size(); ++i) {
                EXPECT_THAT(scripted::Questions[i], IsBox(BoxIcon::Warning, questions[i]));
            }
            EXPECT_EQ(Meshes[1].VertexBones[1], yes == questions.size() ? 1 : 0);
        }
    }
    scripted::Questions.clear();
    Write(good);
    for (const int16_t mode : {int16_t{0}, int16_t{1}}) { // the dialog cancelled, then not
        Meshes[1].VertexBones[1] = 0;
        scripted::AssignModes = {mode};
        LoadWeights(file, 1);
        EXPECT_EQ(Meshes[1].VertexBones[1], mode);
    }
    EXPECT_TRUE(scripted::Questions.empty());
    for (const std::string& name : {std::string("Hide "), std::string("A name of more than 24 characters")}) {
        Meshes[1].Name = name;
        SaveWeights(file, 1);
        scripted::Questions.clear();
        LoadWeights(file, 1);
        EXPECT_THAT(scripted::Questions, ElementsAre(IsBox(BoxIcon::Warning, questions[2]))) << name;
    }
}

TEST_F(Weights, RefusesForeignAndCutFiles)
{
    const std::string good = Saved({{1, 2, 3}}, {1}, 1);
    const auto failed = IsBox(BoxIcon::Stop, StartsWith("Runtime error in LoadWeights\n"));
    for (size_t size = 4; size < 40; ++size) {
        Write(good.substr(0, size));
        LoadWeights(file, 1);
    }
    LoadWeights(Folder.Path, 1);
    EXPECT_EQ(scripted::Messages.size(), 37U);
    EXPECT_THAT(scripted::Messages, testing::Each(failed));
    for (const std::string& foreign :
         {"bWRT" + good.substr(4), std::string("a short note"), good.substr(0, 3), std::string()}) {
        scripted::Messages.clear();
        Write(foreign);
        LoadWeights(file, 1);
        LoadWeights(file, 2); // no such mesh
        EXPECT_THAT(scripted::Messages,
                    ElementsAre(IsBox(BoxIcon::Warning, "File is not an weight information file.")));
    }
    EXPECT_TRUE(scripted::Questions.empty());
}

TEST_F(Weights, RecordsOutsideAndCutRecordsLeaveVerticesAlone)
{
    const std::vector<Vec3> places = {{1, 0, 0}, {2, 0, 0}, {3, 0, 0}, {4, 0, 0}, {5, 0, 0}};
    const std::string bytes = Saved(places, {0, 2, -1, 3, 1}, 3);
    Bones.Items.resize(2);
    for (const int mode : {1, 2}) {
        Write(bytes.substr(0, bytes.size() - 1));
        Meshes[1].VertexBones.Items = {1, 1, 1, 1, 2};
        scripted::Answers = {BoxAnswer::Yes};
        scripted::AssignModes = {mode};
        EXPECT_THAT(LogOf([this] { LoadWeights(file, 1); }),
                    ElementsAre("Cannot assign vertex 4 to bone 3, bone does not exist."));
        EXPECT_THAT(Meshes[1].VertexBones.Items, ElementsAre(0, 2, 1, 1, 2));
    }
}

TEST_F(Weights, ByPositionEqualsThePlainLoop)
{
    int changed = 0;
    for (unsigned seed = 0; seed < 400; ++seed) {
        scripted::Reset();
        std::mt19937 random(seed);
        const int kind = static_cast<int>(seed % shapes::Kinds);
        const float step = shapes::Pick(&random, {0.002F, 0.001F, 0.00199F, 1.0F});
        std::vector<Vec3> places(shapes::Count(&random));
        std::vector<int16_t> bones(places.size());
        for (Vec3& place : places) {
            place = shapes::Place(&random, kind, step);
        }
        for (int16_t& bone : bones) {
            bone = static_cast<int16_t>(static_cast<int>(random() % 9) - 2);
        }
        Saved(places, bones, 5);
        MvmMesh& mesh = Meshes[1];
        if (random() % 2 == 0) {
            for (Vec3& place : mesh.Vertices) {
                place = shapes::Place(&random, kind, step);
            }
        }
        mesh.VertexBones.Items.assign(bones.size(), 77);
        std::vector<int16_t> expected = mesh.VertexBones.Items;
        for (size_t k = 0; k < places.size(); ++k) {
            const Vec3& r = places[k];
            for (size_t v = 0; v < places.size(); ++v) {
                const Vec3& p = mesh.Vertices.Items[v];
                if (bones[k] >= 0 && bones[k] <= 5 && r.X - 0.002 < p.X && r.X + 0.002 > p.X && r.Y - 0.002 < p.Y &&
                    r.Y + 0.002 > p.Y && r.Z - 0.002 < p.Z && r.Z + 0.002 > p.Z) {
                    expected[v] = bones[k];
                }
            }
        }
        changed += static_cast<int>(expected != mesh.VertexBones.Items);
        scripted::AssignModes = {2};
        LoadWeights(file, 1);
        ASSERT_TRUE(scripted::Questions.empty());
        ASSERT_EQ(mesh.VertexBones.Items, expected) << "seed " << seed;
    }
    EXPECT_GT(changed, 200);
}

} // namespace
