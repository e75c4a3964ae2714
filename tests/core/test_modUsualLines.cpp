#include <random>
#include <span>

#include <gtest/gtest.h>

#include "model/modMvmLines.h"
#include "model/modUsualLines.h"

namespace {

/// What a mesh holds, bit for bit.
std::string BytesOf(const MvmMesh& mesh)
{
    std::string text;
    const auto put = [&text](const auto& array) {
        const auto bytes = std::as_bytes(std::span(array.Items));
        text += std::to_string(bytes.size()) + ":";
        text.append(reinterpret_cast<const char*>(bytes.data()), bytes.size());
    };
    put(mesh.Vertices);
    put(mesh.Normals);
    put(mesh.TexCoords);
    put(mesh.VertexBones);
    put(mesh.VertexJoints);
    put(mesh.Faces);
    return text;
}

} // namespace

// A line that the short way takes reads as under the general rules; one that it does not take changes nothing.
TEST(UsualLines, ReadLikeTheGeneralRules)
{
    std::mt19937 random(3);
    const std::string_view odd = "0123456789.,()-+eEdD \t\n=vntfm{}\"x";
    const std::vector<std::string> seeds = {" v = (1.5,-22.25,3),7",
                                            "\t v\t=  (123456789.123456789,-0,0.00000000000000001),-1",
                                            " v = (9007199254740993,0.1,999999999999999),32767",
                                            "t=(0.123456,0.654321)",
                                            " n = (-0.5773503,0.5773503,-0.5773503)",
                                            " f = (1,22,333),(4444,5555,32767),(-1,-32767,0),2",
                                            " f = (1,2,3),(4,5,6),(7,8,9),3",
                                            " v = (1,2,3),32768",
                                            "v = (1234567.12345678,.5,5.)",
                                            " f = (1,2,3),(4,5,6),(7,8,99999),1"};
    const std::vector<bool> usual = {true, false, false, true, true, true, true, false, true, false};
    for (size_t round = 0; round < 60'000; ++round) {
        std::string line = seeds[round % seeds.size()];
        for (auto changes = round < seeds.size() ? 0 : random() % 3; changes > 0; --changes) {
            const size_t place = random() % line.size();
            line.replace(place, random() % 2, random() % 3, odd[random() % odd.size()]);
        }
        MvmMesh quick;
        quick.IsSkin = round % 2 == 0;
        quick.MeshMaterials.Items.resize(2);
        MvmMesh general = quick;
        const std::string ended = line + '\r';
        const char* const end = ReadUsualLine(ended.data(), &quick);
        if (round < seeds.size()) {
            EXPECT_EQ(end != nullptr, usual[round]) << line;
        }
        if (end != nullptr) {
            ASSERT_EQ(end, ended.data() + line.size()) << line;
            ASSERT_EQ(line.find_first_of("{}\""), std::string::npos) << line;
            Meshes.Items = {general};
            const char* failure = nullptr;
            ASSERT_TRUE(ReadBodyLine(line, BlockKind::Mesh, &failure)) << line;
            general = Meshes[1];
        }
        ASSERT_EQ(BytesOf(quick), BytesOf(general)) << line;
    }
    Meshes.Clear();
}
