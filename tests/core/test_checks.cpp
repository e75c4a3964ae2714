#include <algorithm>
#include <random>
#include <set>

#include "checks/modCheckModel.h"
#include "checks/modDifferences.h"
#include "support/fresh.h"
#include "weights/modBoneAlias.h"

using testing::ElementsAre;
using testing::IsEmpty;

namespace {

std::vector<Finding> FindAll()
{
    std::vector<Finding> findings;
    CheckAssignments(&findings);
    CheckRecords(&findings);
    CheckShapes(&findings);
    CheckHints(&findings);
    return findings;
}

/// "code", with the number of places where it is not 1, and the first vertex or face.
std::vector<std::string> Codes(const std::vector<Finding>& findings)
{
    std::vector<std::string> codes;
    for (const Finding& finding : findings) {
        std::string text = finding.Code;
        text += finding.Count != 1 ? " x" + std::to_string(finding.Count) : "";
        text += !finding.Vertices.empty() ? " v" + std::to_string(finding.Vertices.front()) : "";
        text += !finding.Faces.empty() ? " f" + std::to_string(finding.Faces.front()) : "";
        codes.push_back(text);
        EXPECT_TRUE(std::any_of(FindingKinds().begin(), FindingKinds().end(), [&](const FindingKind& kind) {
            return std::string(kind.Code) == finding.Code;
        })) << finding.Code;
        EXPECT_TRUE(finding.What.ends_with('.') && finding.Advice.ends_with('.')) << finding.What;
    }
    return codes;
}

/// Parts of a model without a fault: two bones of each kind, a skin and a shadow of one face.
struct Parts {
    std::string Bones = "bone \"A01\"|{|}|bone \"B02\"|{|}|bone \"$j$A01\"|{|}|";
    std::string SkinHead = "skin \"S\"|{| m = \"M\"|";
    std::string SkinVertices = " v = (0,0,0),1| v = (1,0,0),1| v = (0,0,1),2| v = (1,0,1),2|";
    std::string SkinRest = " t = (0,0)| n = (0,1,0)| f = (1,2,3),(1,1,1),(1,1,1),1| f = (2,4,3),(1,1,1),(1,1,1),1|}|";
    std::string Shadow = "skin \"S$\"|{| v = (5,0,0),1| v = (6,0,0),1| v = (5,0,1),1| n = (0,1,0)|"
                         " f = (1,2,3),(0,0,0),(1,1,1),0|}|";
    std::string Instances =
        "instance \"S\"|{| mesh = \"S\"| scale = 1|}|instance \"S$\"|{| mesh = \"S$\"| scale = 1|}|";
    std::string More{};
};

struct Checks : ModelFile {
    std::vector<std::string> CodesOf(const Parts& parts)
    {
        EXPECT_TRUE(LoadAnew(CrLf("material \"M\"|{|}|" + parts.Bones + parts.SkinHead + parts.SkinVertices +
                                  parts.SkinRest + parts.Shadow + parts.Instances + parts.More)));
        return Codes(FindAll());
    }
};

} // namespace

TEST_F(Checks, EachFaultInAModelIsFoundAndNothingElse)
{
    EXPECT_THAT(CodesOf({}), IsEmpty());
    const std::string bones = Parts().Bones;
    const std::string instances = Parts().Instances;
    const std::string vertices = Parts().SkinVertices;
    struct Case {
        Parts Model;
        std::vector<std::string> Wanted;
    };
    const Case cases[] = {
        {{.SkinVertices = " v = (0,0,0),1| v = (1,0,0),-1| v = (0,0,1),-1| v = (1,0,1),1|"}, {"unassigned x2 v2"}},
        {{.Bones = bones + "bone \"$j$C07\"|{|}|",
          .SkinVertices = " v = (0,0,0),2| v = (1,0,0),7| v = (0,0,1),2| v = (1,0,1),2|"},
         {"other-kind v2"}},
        {{.SkinVertices = " v = (0,0,0),1| v = (1,0,0),1| v = (0,0,1),41| v = (1,0,1),1|"}, {"unknown-joint v3"}},
        {{.SkinVertices = " v = (0,0,0)| v = (1,0,0),1| v = (0,0,1),1| v = (1,0,1),1|"}, {"unknown-joint v1"}},
        {{.More = "skin \"T\"|{| v = (0,0,0),1| v = (1,0,0),1| v = (0,0,1),1| n = (0,1,0)|"
                  " f = (1,2,3),(0,0,0),(1,1,1),0|}|instance \"T\"|{| mesh = \"T\"| scale = 1|}|"},
         {"skin-unused x4"}},
        {{.Bones = bones + "bone \"C02\"|{|}|"}, {"joint-shared x2"}},
        {{.Bones = bones + "bone \"C05\"|{|}|bone \"D05\"|{|}|"}, {"joint-shared x0"}},
        {{.Bones = bones + "bone \"Toe9\"|{|}|"}, {"joint-missing"}},
        {{.Bones = bones + "bone \"Toe-1\"|{|}|"}, {"joint-missing x0"}},
        {{.Bones = bones + "bone \"Toe.5\"|{|}|"}, {"joint-missing"}},
        {{.SkinHead = "mesh \"S\"|{| m = \"M\"|"}, {"no-skin"}},
        {{.Instances = "instance \"S\"|{| mesh = \"S\"| scale = 1|}|"}, {"no-instance"}},
        {{.Instances = instances + "instance \"X\"|{| mesh = \"s\"| scale = 1|}|"}, {"instance-mesh"}},
        {{.Instances = instances + "instance \"X\"|{| mesh = \"S\"|}|"}, {"scale-zero"}},
        {{.SkinHead = "skin \"S\"|{| m = \"M\"| m = \"m\"|"}, {"mesh-material"}},
        {{.More = "material \"M\"|{|}|"}, {"duplicate-name x2"}},
        {{.SkinHead = "skin \"" + std::string(25, 'n') + "\"|{| m = \"M\"|",
          .Instances = instances + "instance \"X\"|{| mesh = \"" + std::string(25, 'n') + "\"| scale = 1|}|"},
         {"instance-mesh", "long-name"}},
        {{.SkinRest = " t = (0,0)| n = (0,1,0)| f = (1,2,3),(1,1,1),(1,1,1),1| f = (1,2,5),(1,1,1),(1,1,1),1| f = "
                      "(2,4,3),(1,1,1),(1,1,1),1|}|"},
         {"face-number f2"}},
        {{.SkinRest = " t = (0,0)| n = (0,1,0)| f = (1,2,3),(1,1,2),(1,1,1),1| f = (2,4,3),(1,1,1),(1,1,1),1|}|"},
         {"face-number f1"}},
        {{.SkinRest = " t = (0,0)| n = (0,1,0)| f = (1,2,3),(1,1,1),(0,1,1),1| f = (2,4,3),(1,1,1),(1,1,1),1|}|"},
         {"face-number f1"}},
        {{.SkinRest = " t = (0,0)| n = (0,1,0)| f = (1,2,3),(1,1,1),(1,1,1),-1| f = (2,4,3),(1,1,1),(1,1,1),1|}|"},
         {"face-number f1"}},
        {{.SkinRest = " t = (0,0)| n = (0,1,0)| f = (1,2,3),(1,1,1),(1,1,1),1| f = (1,2,2),(1,1,1),(1,1,1),1| f = "
                      "(2,4,3),(1,1,1),(1,1,1),1|}|"},
         {"face-degenerate f2"}},
        {{.SkinVertices = vertices + " v = (2,0,0),1|",
          .SkinRest = " t = (0,0)| n = (0,1,0)| f = (1,2,3),(1,1,1),(1,1,1),1| f = (1,2,5),(1,1,1),(1,1,1),1| f = "
                      "(2,4,3),(1,1,1),(1,1,1),1|}|"},
         {"face-degenerate f2"}},
        {{.SkinVertices = vertices + " v = (2,0,0),1|"}, {"vertex-unused v5"}},
        {{.SkinRest = " t = (0,0)| f = (1,2,3),(1,1,1),(1,1,1),1| f = (2,4,3),(1,1,1),(1,1,1),1|}|"},
         {"normal-missing x2"}},
        {{.SkinRest = " t = (0,0)| n = (0,1,0)| n = (0,0,0)| n = (0,0.9,0)| f = (1,2,3),(1,1,1),(1,1,1),1| f = "
                      "(2,4,3),(1,1,1),(1,1,1),1|}|"},
         {"normal-length x2"}},
    };
    for (const Case& c : cases) {
        EXPECT_EQ(CodesOf(c.Model), c.Wanted) << Content(Path);
    }
    Parts many;
    for (int i = 0; i < 32768; ++i) {
        many.SkinRest.insert(0, " t = (0,0)|");
    }
    EXPECT_THAT(CodesOf(many), ElementsAre("too-many x32769"));
}

namespace {

/// A square of n by n places, each of them a vertex, in the plane Y = 0 with the middle in X = 0; the left half and the
/// right half belong to two bones of a chain of four: far left, left, right, far right.
void MakeSheet(int n)
{
    AddBones({"FarL01", "NearL02", "NearR03", "FarR04"});
    const float places[] = {-3, -1, 1, 3};
    for (int32_t bone = 1; bone <= 4; ++bone) {
        Bones[bone].Position.X = places[bone - 1];
        Bones[bone].LinkBone = static_cast<int16_t>(bone == 1 ? 2 : bone == 3 ? 2 : bone == 4 ? 3 : 0);
        Bones[bone].MirrorBone = static_cast<int16_t>(5 - bone);
    }
    MvmMesh& mesh = Meshes.Add({.Name = "Sheet", .IsSkin = true});
    for (int row = 0; row < n; ++row) {
        for (int column = 0; column < n; ++column) {
            const float x = static_cast<float>(column) - static_cast<float>(n - 1) / 2;
            mesh.Vertices.Add({x, 0, static_cast<float>(row)});
            const int quarter = column * 4 / n;
            mesh.VertexBones.Add(static_cast<int16_t>(quarter + 1));
            if (row > 0 && column > 0) {
                const auto d = static_cast<int16_t>(row * n + column + 1);
                const auto b = static_cast<int16_t>(d - n);
                mesh.Faces.Add({.Vertex = {static_cast<int16_t>(b - 1), b, d}});
                mesh.Faces.Add({.Vertex = {static_cast<int16_t>(b - 1), d, static_cast<int16_t>(d - 1)}});
            }
        }
    }
    SkinMesh = 1;
}

std::vector<std::string> Hints()
{
    std::vector<Finding> findings;
    CheckHints(&findings);
    return Codes(findings);
}

} // namespace

TEST_F(Checks, SlipsOfTheHandAreHinted)
{
    MakeSheet(12);
    MvmMesh& mesh = Meshes[1];
    EXPECT_THAT(Hints(), IsEmpty());
    const auto at = [](int row, int column) { return row * 12 + column + 1; };
    struct Case {
        std::vector<int> Vertices;
        int16_t Bone;
        std::vector<std::string> Wanted;
    };
    const std::string mirrorOfThis = "lopsided v" + std::to_string(at(5, 10));
    const Case cases[] = {
        {{at(5, 1)}, 2, {"stray v62", "lopsided v71", "lopsided v62"}},
        {{at(5, 1), at(5, 2)}, 2, {"lopsided x2 v70", "lopsided x2 v62"}}, // hangs together with the bone itself
        {{at(5, 0), at(6, 0)}, 2, {"patch x2 v61", "lopsided x2 v72", "lopsided x2 v61"}},
        {{at(5, 0), at(6, 0), at(5, 11), at(6, 11)}, 0, {}},
        {{at(5, 6)}, 2, {"lopsided x2 v66"}}, // one vertex too far
    };
    const Array1<int16_t> right = mesh.VertexBones;
    for (const Case& c : cases) {
        mesh.VertexBones = right;
        for (const int vertex : c.Vertices) {
            mesh.VertexBones[vertex] = c.Bone;
        }
        std::vector<std::string> hints = Hints();
        std::sort(hints.begin(), hints.end());
        std::vector<std::string> wanted = c.Wanted;
        std::sort(wanted.begin(), wanted.end());
        EXPECT_EQ(hints, wanted) << c.Vertices.front();
    }
    // Bones at both ends of the chain are too far from each other to share a face.
    mesh.VertexBones = right;
    mesh.VertexBones[at(0, 2)] = 4;
    EXPECT_THAT(Hints(), testing::Contains(testing::StartsWith("torn-face")));
    // A shell of its own is no patch.
    mesh.VertexBones = right;
    for (const Vec3& place : {Vec3{0, 9, 0}, Vec3{0, 9, 1}, Vec3{0.001F, 9.5F, 0}}) {
        mesh.Vertices.Add(place);
        mesh.VertexBones.Add(2);
    }
    const auto first = static_cast<int16_t>(mesh.VertexCount() - 2);
    mesh.Faces.Add({.Vertex = {first, static_cast<int16_t>(first + 1), static_cast<int16_t>(first + 2)}});
    EXPECT_THAT(Hints(), IsEmpty());
}

TEST_F(Checks, SlipsPlantedIntoTheSampleAreNamed)
{
    scripted::Folder = SOURCE_FOLDER "/assets";
    ASSERT_TRUE(LoadMVM(SOURCE_FOLDER "/samples/vorrel/vorrel.mvm"));
    LoadAlias();
    ApplyAliases();
    EXPECT_THAT(Codes(FindAll()), IsEmpty());
    MvmMesh& mesh = Meshes[SkinMesh];
    const Array1<int16_t> right = mesh.VertexBones;
    std::mt19937 random(7);
    constexpr int trials = 20;
    for (size_t size = 1; size <= 4; ++size) {
        int named = 0;
        for (int trial = 0; trial < trials; ++trial) {
            mesh.VertexBones = right;
            // Neighbours over faces, beginning with a corner of a face by chance.
            std::set<int16_t> slip{mesh.Faces[1 + static_cast<int32_t>(random() % 15000)].Vertex[0]};
            for (const MvmFace& face : mesh.Faces) {
                const bool touches = std::any_of(face.Vertex.begin(), face.Vertex.end(),
                                                 [&](int16_t corner) { return slip.contains(corner); });
                for (size_t k = 0; touches && k < 3 && slip.size() < size; ++k) {
                    slip.insert(face.Vertex[k]);
                }
            }
            const int16_t old = right[*slip.begin()];
            int16_t bone = old;
            while (bone == old || Bones[bone].IsShadow) {
                bone = static_cast<int16_t>(1 + random() % 37);
            }
            for (const int16_t vertex : slip) {
                mesh.VertexBones[vertex] = bone;
            }
            std::vector<Finding> findings;
            CheckHints(&findings);
            named += std::any_of(findings.begin(), findings.end(), [&](const Finding& finding) {
                return std::any_of(slip.begin(), slip.end(), [&](int16_t vertex) {
                    return std::find(finding.Vertices.begin(), finding.Vertices.end(), vertex) !=
                           finding.Vertices.end();
                });
            });
        }
        EXPECT_GE(named, 18) << "slips of " << size;
    }
}

TEST_F(Checks, DifferencesAreToldByName)
{
    const std::string bones = "bone \"A01\"|{| position = (1,2,3)|}|bone \"B02\"|{|}|";
    const std::string mesh = "skin \"S\"|{| v = (0,0,0),1| v = (1,0,0),1| v = (2,0,0),2| v = (3,0,0),-1|}|";
    const std::string instance = "instance \"S\"|{| mesh = \"S\"| scale = 1|}|";
    const auto compare = [&](const std::string& now) {
        EXPECT_TRUE(LoadAnew(CrLf(bones + mesh + instance)));
        const KeptModel old = TakeModel();
        EXPECT_TRUE(Load(CrLf(now)));
        const ModelDifferences differences = CompareModels(old);
        std::vector<std::string> lines;
        for (const RecordDifference& record : differences.Records) {
            lines.push_back(record.Name + ": " + testing::PrintToString(record.Changes));
        }
        for (const VertexDifference& vertices : differences.Vertices) {
            lines.push_back(std::to_string(vertices.OldCount) + ">" + std::to_string(vertices.NewCount) + " " +
                            testing::PrintToString(vertices.Moved) + " " + std::to_string(vertices.NotCompared));
        }
        for (const AssignmentDifference& move : differences.Assignments) {
            lines.push_back(move.From + ">" + move.To + " " + testing::PrintToString(move.Vertices));
        }
        if (!differences.SameOrder) {
            lines.emplace_back("order");
        }
        return lines;
    };
    EXPECT_THAT(compare(bones + mesh + instance), IsEmpty());
    EXPECT_THAT(compare("bone \"B02\"|{|}|bone \"A01\"|{| position = (1,2,3)|}|" + mesh + instance),
                ElementsAre("order"));
    EXPECT_THAT(compare("bone \"A01\"|{| position = (1,2,4)|}|bone \"C03\"|{|}|" + mesh + instance),
                ElementsAre("A01: { \"position (1,2,3) -> (1,2,4)\" }", "C03: { \"added\" }", "B02: { \"removed\" }",
                            "B02> { 3 }"));
    EXPECT_THAT(compare("bone \"B02\"|{|}|" + mesh + instance), ElementsAre("A01: { \"removed\" }", "A01> { 1, 2 }"));
    EXPECT_THAT(
        compare(bones + "skin \"S\"|{| v = (0,0,0),2| v = (1,0,5),1| v = (2,0,0),-1| v = (3,0,0),-1|}|" + instance),
        ElementsAre("4>4 { 2 } 0", "A01>B02 { 1 }", "B02> { 3 }"));
    EXPECT_THAT(compare(bones + "skin \"S\"|{| v = (9,0,0),2| v = (3,0,0),1| v = (2,0,0),2|}|" + instance),
                ElementsAre("4>3 {} 1", ">A01 { 2 }"));
    EXPECT_THAT(compare(bones + "mesh \"S\"|{| v = (0,0,0)| v = (1,0,0)| v = (2,0,0)| v = (3,0,0)|}|mesh "
                                "\"Q\"|{|}|instance \"S\"|{| mesh = "
                                "\"T\"| scale = 2|}|"),
                ElementsAre("S: { \"is no skin any more\" }", "Q: { \"added\" }",
                            "S: { \"mesh \\\"S\\\" -> \\\"T\\\"\", \"scale 1 -> 2\" }", "A01> { 1, 2 }", "B02> { 3 }"));
}
