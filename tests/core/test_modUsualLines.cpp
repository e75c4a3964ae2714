#include <random>

#include <gtest/gtest.h>

#include "model/modMvmLines.h"
#include "model/modUsualLines.h"

namespace {

template <typename T>
std::string BytesOf(const Array1<T>& array)
{
    return {reinterpret_cast<const char*>(array.Items.data()), array.Items.size() * sizeof(T)};
}

/// What a mesh holds, bit for bit.
std::string BytesOf(const MvmMesh& mesh)
{
    return BytesOf(mesh.Vertices) + "v" + BytesOf(mesh.Normals) + "n" + BytesOf(mesh.TexCoords) + "t" +
           BytesOf(mesh.VertexBones) + "b" + BytesOf(mesh.VertexJoints) + "j" + BytesOf(mesh.Faces);
}

} // namespace

// A line that the short way takes reads as under the general rules; one that it does not take changes nothing.
TEST(UsualLines, ReadLikeTheGeneralRules)
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
    Meshes.Clear();
}
