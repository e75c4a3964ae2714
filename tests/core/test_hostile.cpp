#include <random>
#include <span>

#include "app/modFrontEnd.h"
#include "core/model_file.h"
#include "model/modMvmLines.h"
#include "model/modMvmWrite.h"
#include "model/modUsualLines.h"
#include "support/model_text.h"

namespace {

class HostileModel : public ModelFile {};

const std::string goodModel =
    "fileinfo\r\n{\r\n formatversion = 1.0.2\r\n}\r\n\r\nmaterial \"M\"\r\n{\r\n colormap = \"a.bmp\"\r\n}\r\n\r\n"
    "bone \"$j$07\"\r\n{\r\n position = (1,2,3)\r\n rotation = (1E-07,-2.5,3)\r\n mass = 3\r\n}\r\n\r\n"
    "bone \"B07\" {\r\n}\r\nskin \"S\"\r\n{\r\n m = \"M\"\r\n v = (1,2,3),7\r\n v = (4,5,6),-1\r\n t = (0.5,1)\r\n"
    " n = (0,0,1)\r\n f = (1,2,2),(1,1,1),(1,1,1),1\r\n}\r\n\r\nskin \"S$\"\r\n{\r\n v = (1,2,3),7\r\n}\r\n"
    "instance \"S\"\r\n{\r\n mesh = \"S\"\r\n position = (1,2,3)\r\n scale = 2\r\n}\r\n";

/// What a mesh holds, bit for bit.
std::string Content(const MvmMesh& mesh)
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

/// Changes a few places: another byte, one more, some fewer, a piece said twice.
void Mutate(std::string* text, std::mt19937::result_type changes, std::string_view odd, std::mt19937* random)
{
    for (; changes > 0; --changes) {
        const size_t place = (*random)() % text->size();
        const size_t length = (*random)() % 12;
        const char c = odd[(*random)() % odd.size()];
        switch ((*random)() % 4) {
        case 0:
            (*text)[place] = c;
            break;
        case 1:
            text->insert(place, 1, c);
            break;
        case 2:
            text->erase(place, std::min(length, text->size() - 1));
            break;
        default:
            text->insert((*random)() % text->size(), text->substr(place, length * 8));
        }
    }
}

MvmMesh EmptyMesh(bool isSkin)
{
    MvmMesh mesh;
    mesh.IsSkin = isSkin;
    mesh.MeshMaterials.Add();
    mesh.MeshMaterials.Add();
    return mesh;
}

/// Holds the short way against the general rules. Gives whether the short way took the line.
bool SameAsGeneralRules(const std::string& line, bool isSkin)
{
    MvmMesh quick = EmptyMesh(isSkin);
    const std::string ended = line + '\r';
    const char* const end = ReadUsualLine(ended.data(), &quick);
    if (end == nullptr) {
        EXPECT_EQ(Content(quick), Content(EmptyMesh(isSkin))) << line;
        return false;
    }
    EXPECT_EQ(end, ended.data() + line.size()) << line;
    Meshes.Items.assign(1, EmptyMesh(isSkin));
    const char* failure = nullptr;
    EXPECT_TRUE(ReadBodyLine(line, BlockKind::Mesh, &failure)) << line;
    EXPECT_EQ(Content(quick), Content(Meshes[1])) << line;
    EXPECT_EQ(line.find_first_of("{}\""), std::string::npos) << line;
    return true;
}

} // namespace

TEST_F(HostileModel, ShortWayReadsLikeTheGeneralRules)
{
    std::mt19937 random(3);
    const std::string_view odd = "0123456789.,()-+eEdD \t\n=vntfm{}\"x";
    const std::vector<std::string> seeds = {" v = (1.5,-22.25,3),7",
                                            "v=(0.1,0.2,0.3)",
                                            "\t v\t=  (123456789.123456789,-0,0.00000000000000001),-1",
                                            " v = (9007199254740993,0.1,999999999999999999),32767",
                                            " t = (0.123456,0.654321)",
                                            " n = (-0.5773503,0.5773503,-0.5773503)",
                                            " f = (1,22,333),(4444,5555,32767),(-1,-32767,0),2",
                                            " f = (1,2,3),(4,5,6),(7,8,9),3",
                                            " f = (1,2,3),(4,5,6),(7,8,9),-5",
                                            " v = (1,2,3),32768",
                                            " f = (1,2,3),(4,5,6),(7,8,99999),1"};
    int taken = 0;
    for (int round = 0; round < 200'000; ++round) {
        std::string line = seeds[random() % seeds.size()];
        Mutate(&line, random() % 4, odd, &random);
        taken += SameAsGeneralRules(line, round % 2 == 0) ? 1 : 0;
        ASSERT_FALSE(HasFailure()) << line;
    }
    EXPECT_GT(taken, 20'000); // the comparison means something
    EXPECT_TRUE(SameAsGeneralRules(seeds[0], true));
}

TEST_F(HostileModel, LoadsEveryPrefix)
{
    ASSERT_TRUE(LoadAnew(goodModel));
    for (size_t length = 0; length < goodModel.size(); ++length) {
        const bool loaded = LoadAnew(std::string_view(goodModel).substr(0, length));
        EXPECT_EQ(loaded, scripted::Messages.empty() || scripted::Messages[0].Icon != BoxIcon::Stop) << length;
        const std::string text = ModelText();
        EXPECT_TRUE(text.starts_with("fileinfo"));
    }
}

TEST_F(HostileModel, LoadsRandomMutations)
{
    std::mt19937 random(5);
    const std::string odd = std::string("\0\xFF", 2) + "\r\n{}=\"(), \t0123456789.-eE$";
    for (int round = 0; round < 1000; ++round) {
        std::string model = goodModel;
        Mutate(&model, random() % 12 + 1, odd, &random);
        LoadAnew(model);
        for (const MvmMesh& mesh : Meshes) {
            ASSERT_TRUE(!mesh.IsSkin || mesh.VertexBones.Count() == mesh.VertexCount());
        }
        // What was read can be written, and what was written is read without a failure and stays as it is.
        const std::string first = ModelText();
        ASSERT_TRUE(LoadAnew(first)) << LastMessage();
    }
}

TEST_F(HostileModel, LoadsShapesThatInviteQuadraticWork)
{
    std::string blocks;
    for (int block = 0; block < 100'000; ++block) {
        blocks += "other\r{\rv = (1,2,3),7\r}\r";
    }
    ASSERT_TRUE(LoadAnew("skin \"S\"\r" + blocks));
    EXPECT_EQ(Meshes[1].VertexCount(), 100'000); // more than faces can address

    std::string materials = "mesh M\r{\r";
    for (int material = 0; material < 50'000; ++material) {
        materials += "m = M" + std::to_string(material) + "\r";
    }
    materials += "}\r";
    for (int material = 0; material < 50'000; ++material) {
        materials += "material M" + std::to_string(material) + "\r";
    }
    ASSERT_TRUE(LoadAnew(materials));
    EXPECT_EQ(Meshes[1].MeshMaterials[50'000].Index, 50'000);

    std::string bones;
    for (int bone = 0; bone < 40'000; ++bone) {
        bones += "bone B07\r{\rmass = 1\r}\r";
    }
    ASSERT_TRUE(LoadAnew(bones + "skin S\r{\rv = (0,0,0),7\r}\r"));
    EXPECT_EQ(Meshes[1].VertexBones[1], 32'767); // the last that an assignment can hold

    constexpr size_t megabyte = 1'000'000;
    for (const char filler : {' ', '1', '(', ',', '=', '"', '\n', '{', 'x'}) {
        LoadAnew("mesh M\r{\rv = (1,2,3" + std::string(megabyte, filler) + ")\rn = (1,2,3)\r");
        EXPECT_EQ(MeshCount(), 1);
    }
}
