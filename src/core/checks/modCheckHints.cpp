#include <algorithm>
#include <array>
#include <cmath>
#include <cstddef>
#include <map>
#include <numeric>
#include <set>
#include <string>
#include <utility>

#include "app/modMvmDef.h"
#include "checks/modCheckModel.h"
#include "modCodePage.h"
#include "weights/modMirror.h"
#include "weights/modPlaces.h"
#include "weights/modPointTree.h"
#include "weights/modSkeleton.h"
#include "weights/modSlips.h"

namespace {

std::string LabelOf(int16_t bone)
{
    const MvmBone& named = Bones[bone];
    return QuotedName(AliasesOn && !named.Alias.empty() ? named.Alias : named.Name);
}

Finding HintFor(const char* code, const MvmMesh& mesh, int16_t bone)
{
    return {.Code = code,
            .Grade = Severity::Hint,
            .Count = 0,
            .Mesh = Utf8FromCodePage(mesh.Name),
            .Bone = Utf8FromCodePage(Bones[bone].Name)};
}

/// The lowest vertex of each piece: vertices that hang together over faces, at one place or with neighbours of the same
/// bone.
class Pieces {
public:
    explicit Pieces(int32_t count) : roots(static_cast<size_t>(count) + 1) { std::iota(roots.begin(), roots.end(), 0); }

    int32_t RootOf(int32_t vertex)
    {
        int32_t root = vertex;
        while (roots[static_cast<size_t>(root)] != root) {
            root = roots[static_cast<size_t>(root)];
        }
        while (roots[static_cast<size_t>(vertex)] != root) {
            vertex = std::exchange(roots[static_cast<size_t>(vertex)], root);
        }
        return root;
    }

    void Join(int32_t a, int32_t b)
    {
        const auto [low, high] = std::minmax({RootOf(a), RootOf(b)});
        roots[static_cast<size_t>(high)] = low;
    }

private:
    std::vector<int32_t> roots;
};

struct Piece {
    int32_t Shell = 0; ///< lowest vertex of all that hang together
    std::set<int32_t> Places{};
    std::vector<int32_t> Vertices{};
    std::map<int16_t, int32_t> Beside{}; ///< bones of its neighbours, with how many there are
};

struct Skin {
    int16_t Index = 0;
    const MvmMesh& Mesh;
    std::vector<int32_t> Places;
    std::vector<std::pair<int32_t, int32_t>> Neighbours;
};

template <typename Visit>
void ForNeighbours(const Skin& skin, int32_t place, const Visit& visit)
{
    for (auto at = std::lower_bound(skin.Neighbours.begin(), skin.Neighbours.end(), std::pair(place, 0));
         at != skin.Neighbours.end() && at->first == place; ++at) {
        visit(at->second);
    }
}

/// Joins the vertices at one place, and those of neighbouring places, where `belong` says so of the pair.
template <typename Belong>
Pieces Joined(const Skin& skin, const Belong& belong)
{
    const int32_t count = skin.Mesh.VertexCount();
    Pieces pieces(count);
    for (int32_t vertex = 1; vertex <= count; ++vertex) {
        const int32_t place = skin.Places[static_cast<size_t>(vertex)];
        if (belong(vertex, place)) {
            pieces.Join(vertex, place);
        }
        ForNeighbours(skin, place, [&](int32_t neighbour) {
            if (belong(vertex, neighbour)) {
                pieces.Join(vertex, neighbour);
            }
        });
    }
    return pieces;
}

std::vector<Piece> PiecesOf(const Skin& skin, std::map<int32_t, size_t>* shellSizes)
{
    const Array1<int16_t>& bones = skin.Mesh.VertexBones;
    Pieces shells = Joined(skin, [](int32_t /*a*/, int32_t /*b*/) { return true; });
    Pieces pieces = Joined(skin, [&](int32_t a, int32_t b) { return bones[a] == bones[b]; });
    std::map<int32_t, Piece> byRoot;
    for (int32_t vertex = 1; vertex <= skin.Mesh.VertexCount(); ++vertex) {
        const int32_t place = skin.Places[static_cast<size_t>(vertex)];
        const int32_t shell = shells.RootOf(vertex);
        (*shellSizes)[shell] += place == vertex ? 1 : 0;
        if (!IsValidBone(bones[vertex])) {
            continue;
        }
        Piece& piece = byRoot[pieces.RootOf(vertex)];
        piece.Shell = shell;
        piece.Places.insert(place);
        piece.Vertices.push_back(vertex);
        ForNeighbours(skin, place, [&](int32_t neighbour) {
            if (IsValidBone(bones[neighbour]) && bones[neighbour] != bones[vertex]) {
                ++piece.Beside[bones[neighbour]];
            }
        });
    }
    std::vector<Piece> result;
    result.reserve(byRoot.size());
    for (auto& [root, piece] : byRoot) {
        result.push_back(std::move(piece));
    }
    return result;
}

int16_t MostOf(const std::map<int16_t, int32_t>& bones)
{
    return std::max_element(bones.begin(), bones.end(),
                            [](const auto& a, const auto& b) { return a.second < b.second; })
        ->first;
}

/// Single vertices, then small pieces that are no shells of their own.
void CheckPieces(const Skin& skin, std::vector<Finding>* findings)
{
    std::set<int32_t> strays;
    for (const Slip& slip : FindSlips(skin.Index)) {
        strays.insert(slip.Vertex);
        Finding finding = HintFor("stray", skin.Mesh, slip.Bone);
        AddPlace(slip.Vertex, &finding.Vertices, &finding);
        finding.What = "Vertex " + std::to_string(slip.Vertex) + " of mesh " + QuotedName(skin.Mesh.Name) +
                       " belongs to " + LabelOf(slip.Bone) + ", all its neighbours to others, most to " +
                       LabelOf(slip.Among) + ".";
        finding.Advice = "Look at it with the key N in the window, and give it to the bone of its neighbours.";
        findings->push_back(std::move(finding));
    }
    std::map<int32_t, size_t> shellSizes;
    const std::vector<Piece> pieces = PiecesOf(skin, &shellSizes);
    const auto boneOf = [&](const Piece& piece) { return skin.Mesh.VertexBones[piece.Vertices.front()]; };
    std::map<int16_t, const Piece*> largest;
    for (const Piece& piece : pieces) {
        const Piece*& held = largest[boneOf(piece)];
        held = held == nullptr || held->Places.size() < piece.Places.size() ? &piece : held;
    }
    // Below a tenth of the largest. In another shell than that one, such as a mane along the neck, bones have small
    // pieces by nature; there it must be a small part of the shell too.
    constexpr size_t smallPart = 10;
    for (const Piece& piece : pieces) {
        const int16_t bone = boneOf(piece);
        const Piece& mainland = *largest[bone];
        const size_t compared = piece.Shell == mainland.Shell
                                    ? mainland.Places.size()
                                    : std::min(mainland.Places.size(), shellSizes[piece.Shell]);
        const bool small = piece.Places.size() * smallPart < compared;
        if (!small || piece.Beside.empty() || strays.contains(piece.Vertices.front())) {
            continue;
        }
        Finding finding = HintFor("patch", skin.Mesh, bone);
        for (const int32_t vertex : piece.Vertices) {
            AddPlace(vertex, &finding.Vertices, &finding);
        }
        finding.What = Counted(finding.Count, "vertex", "vertices") + " of mesh " + QuotedName(skin.Mesh.Name) + " (" +
                       FirstPlaces(finding.Vertices) + ") " + (finding.Count == 1 ? "belongs" : "belong") + " to " +
                       LabelOf(bone) + " but " + Verb(finding.Count, "lies", "lie") +
                       " apart from the rest of it, most beside " + LabelOf(MostOf(piece.Beside)) + ".";
        finding.Advice = "Give them to the bone beside them unless this is meant.";
        findings->push_back(std::move(finding));
    }
}

void CheckSides(const Skin& skin, std::vector<Finding>* findings)
{
    const MvmMesh& mesh = skin.Mesh;
    const std::vector<int16_t> partners = MirrorPartners(skin.Index == ShadowMesh, MirrorBoneThreshold);
    std::vector<TreeNode> nodes;
    // Of the vertices of one bone at one place, one speaks for all.
    std::set<std::pair<int32_t, int16_t>> seen;
    for (int32_t vertex = 1; vertex <= mesh.VertexCount(); ++vertex) {
        const Vec3& at = mesh.Vertices[vertex];
        const int16_t bone = mesh.VertexBones[vertex];
        if (IsValidBone(bone) && seen.insert({skin.Places[static_cast<size_t>(vertex)], bone}).second) {
            nodes.push_back({.At = {-at.X, at.Y, at.Z}, .Index = bone});
        }
    }
    const PointTree tree = BuildPointTree(std::move(nodes));
    std::map<std::pair<int16_t, int16_t>, Finding> lopsided; // by bone and the bone of the other side
    for (int32_t vertex = 1; vertex <= mesh.VertexCount(); ++vertex) {
        const int16_t bone = mesh.VertexBones[vertex];
        const Vec3& at = mesh.Vertices[vertex];
        const int16_t partner = IsValidBone(bone) ? partners[static_cast<size_t>(bone)] : int16_t{0};
        // What stands in the middle is its own mirror image.
        if (partner == 0 || !(std::fabs(at.X) >= MirrorVertexThreshold)) {
            continue;
        }
        const OpenBox box = BoxAround(PlaceOf(at), MirrorVertexThreshold);
        const auto other =
            static_cast<int16_t>(HighestInside(tree, box, [](const TreeNode& /*image*/) { return true; }));
        const auto agrees = [partner](const TreeNode& image) { return image.Index == partner; };
        if (other != 0 && other != partner && HighestInside(tree, box, agrees) == 0) {
            Finding& finding = lopsided.try_emplace({bone, other}, HintFor("lopsided", mesh, bone)).first->second;
            AddPlace(vertex, &finding.Vertices, &finding);
        }
    }
    for (auto& [bones, finding] : lopsided) {
        const int16_t partner = partners[static_cast<size_t>(bones.first)];
        finding.What = Counted(finding.Count, "vertex", "vertices") + " of mesh " + QuotedName(mesh.Name) + " (" +
                       FirstPlaces(finding.Vertices) + ") " + (finding.Count == 1 ? "belongs" : "belong") + " to " +
                       LabelOf(bones.first) + ", but on the other side the same place belongs to " +
                       LabelOf(bones.second) + " and not to " + LabelOf(partner) + ".";
        finding.Advice = "Correct the side that is wrong, or mirror the other one.";
        findings->push_back(std::move(finding));
    }
}

/// True when two bones are linked, link to the same bone, or have one bone between them.
bool AreNear(const std::vector<int16_t>& links, int16_t a, int16_t b)
{
    const auto linkOf = [&](int16_t bone) { return links[static_cast<size_t>(bone)]; };
    const int16_t fromA = linkOf(a);
    const int16_t fromB = linkOf(b);
    return fromA == b || fromB == a || (fromA != 0 && (fromA == fromB || linkOf(fromA) == b)) ||
           (fromB != 0 && linkOf(fromB) == a);
}

void CheckTornFaces(const Skin& skin, std::vector<Finding>* findings)
{
    const std::vector<int16_t> links = LinksOf(skin.Index == ShadowMesh);
    std::map<std::pair<int16_t, int16_t>, Finding> torn;
    for (int32_t index = 1; index <= skin.Mesh.FaceCount(); ++index) {
        const MvmFace& face = skin.Mesh.Faces[index];
        if (!FaceCornersValid(skin.Mesh, face)) {
            continue;
        }
        for (size_t k = 0; k < 3; ++k) {
            const auto [a, b] =
                std::minmax(skin.Mesh.VertexBones[face.Vertex[k]], skin.Mesh.VertexBones[face.Vertex[(k + 1) % 3]]);
            if (a == b || !IsValidBone(a) || !IsValidBone(b) || AreNear(links, a, b)) {
                continue;
            }
            Finding& finding = torn.try_emplace({a, b}, HintFor("torn-face", skin.Mesh, a)).first->second;
            if (finding.Faces.empty() || finding.Faces.back() != index) {
                AddPlace(index, &finding.Faces, &finding);
            }
        }
    }
    for (auto& [bones, finding] : torn) {
        finding.What = Counted(finding.Count, "face", "faces") + " of mesh " + QuotedName(skin.Mesh.Name) + " (" +
                       FirstPlaces(finding.Faces) + ") " + (finding.Count == 1 ? "spans" : "span") + " " +
                       LabelOf(bones.first) + " and " + LabelOf(bones.second) +
                       ", which are not linked, and will be torn when these move apart.";
        finding.Advice = "Give the corners to bones that are linked, or put a vertex of the bone between there.";
        findings->push_back(std::move(finding));
    }
}

} // namespace

void CheckHints(std::vector<Finding>* findings)
{
    for (const int16_t role : {SkinMesh, ShadowMesh}) {
        if (!IsValidMesh(role) || Meshes[role].VertexBones.Count() < Meshes[role].VertexCount() ||
            (role == ShadowMesh && SkinMesh == ShadowMesh)) {
            continue;
        }
        const MvmMesh& mesh = Meshes[role];
        Skin skin{.Index = role, .Mesh = mesh, .Places = PlacesOf(mesh), .Neighbours = {}};
        skin.Neighbours = NeighboursOf(mesh, skin.Places);
        CheckPieces(skin, findings);
        CheckSides(skin, findings);
        CheckTornFaces(skin, findings);
    }
}
