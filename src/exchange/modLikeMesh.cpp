#include "modLikeMesh.h"

#include <algorithm>
#include <limits>
#include <map>
#include <optional>
#include <utility>

#include "app/modMath.h"
#include "modLikeEntries.h"
#include "modMeshOut.h"
#include "modNumbering.h"

namespace {

std::array<int32_t, 3> Sorted(std::array<int32_t, 3> numbers)
{
    std::sort(numbers.begin(), numbers.end());
    return numbers;
}

/// `old` is one of the model, which can be no direction: then nothing that comes back is another one. Blender turns a
/// normal by up to the angle whose cosine is 1 - 1e-4 into the plane of an edge.
bool AreSameNormals(const Vec3& old, const Vec3& value)
{
    constexpr double near = 1.5e-2;
    const Vec3 unit = VecNormalize(old);
    return VecLength(unit) == 0 || VecDistance(unit, VecNormalize(value)) <= near;
}

struct Merge {
    const LikePair& Pair;
    const std::vector<std::string>& Materials;
    MergeCounts* Counts;
    JoinedMesh Joined{};
    Entries<Vec3> Vertices;
    Claims<Vec2> TexCoords;
    Claims<Vec3> Normals;
    std::vector<int32_t> References{}; ///< of each joined vertex
    std::vector<int32_t> Claimants{};  ///< of each vertex of the model: the joined vertex that is it now, or -1
    std::vector<std::vector<std::array<int32_t, 2>>> Uses{}; ///< of each vertex of the model: its faces and corners
    MvmMesh* Result;

    Merge(const LikePair& pair, const std::vector<std::string>& materials, MergeCounts* counts, MvmMesh* result)
        : Pair(pair),
          Materials(materials),
          Counts(counts),
          Vertices(pair.Model.Vertices),
          TexCoords(pair.Model.TexCoords),
          Normals(pair.Model.Normals),
          Result(result)
    {}
};

/// Entries that faces of the model name which a file can hold: the others stay whatever comes back.
void KeepUnused(Merge* merge)
{
    const MvmMesh& model = merge->Pair.Model;
    const auto keepAll = [](auto* entries) { std::fill(entries->Keep.begin() + 1, entries->Keep.end(), char{1}); };
    keepAll(&merge->Vertices);
    keepAll(&merge->TexCoords.Own);
    keepAll(&merge->Normals.Own);
    merge->Uses.resize(model.Vertices.Items.size() + 1);
    const auto release = [](int32_t number, auto* entries) {
        if (entries->Old.Has(number)) {
            entries->Keep[static_cast<size_t>(number)] = 0;
        }
    };
    for (int32_t index = 1; index <= model.FaceCount(); ++index) {
        const MvmFace& face = model.Faces[index];
        if (CanTravel(model, face)) {
            for (size_t k = 0; k < 3; ++k) {
                release(face.Vertex[k], &merge->Vertices);
                release(face.TexCoord[k], &merge->TexCoords.Own);
                release(face.Normal[k], &merge->Normals.Own);
                merge->Uses[static_cast<size_t>(face.Vertex[k])].push_back({index, static_cast<int32_t>(k)});
            }
        }
    }
}

/// Gives each joined vertex the old one that it is. Of several the one nearest to the old place is it.
void ClaimVertices(Merge* merge)
{
    const MvmMesh& model = merge->Pair.Model;
    const JoinedMesh& joined = merge->Joined;
    merge->Claimants.assign(model.Vertices.Items.size() + 1, -1);
    const auto apart = [&](int32_t vertex, int32_t number) {
        return VecDistance(joined.Vertices[static_cast<size_t>(vertex)], model.Vertices[number]);
    };
    for (size_t i = 0; i < joined.Vertices.size(); ++i) {
        const int32_t number = joined.Numbers[i];
        if (number > 0) {
            int32_t& claimant = merge->Claimants[static_cast<size_t>(number)];
            const auto own = static_cast<int32_t>(i);
            claimant = claimant < 0 || apart(own, number) < apart(claimant, number) ? own : claimant;
        }
    }
    constexpr double part = 1e-6;
    const double near = part * merge->Pair.Extent;
    merge->References.resize(joined.Vertices.size());
    for (size_t i = 0; i < joined.Vertices.size(); ++i) {
        const int32_t number = joined.Numbers[i];
        if (number > 0 && merge->Claimants[static_cast<size_t>(number)] == static_cast<int32_t>(i)) {
            merge->References[i] = number;
            merge->Vertices.Keep[static_cast<size_t>(number)] = 1;
            const bool stands = apart(static_cast<int32_t>(i), number) <= near;
            if (!stands) {
                merge->Vertices.Values[static_cast<size_t>(number)] = joined.Vertices[i];
                ++merge->Counts->Moved;
            }
        } else {
            merge->Vertices.Added.push_back(joined.Vertices[i]);
            merge->References[i] = -static_cast<int32_t>(merge->Vertices.Added.size());
        }
    }
    merge->Counts->Added = merge->Vertices.Added.size();
    merge->Counts->Kept = merge->Vertices.KeptCount() - merge->Counts->Moved;
    merge->Counts->Gone = model.Vertices.Items.size() - merge->Vertices.KeptCount();
}

/// The bones that the file gives, for the vertices that were there; what it does not know stays.
void GiveOldBones(Merge* merge, std::vector<int16_t>* bones)
{
    const LikePair& pair = merge->Pair;
    for (int32_t number = 1; number <= pair.Model.VertexCount(); ++number) {
        const int32_t claimant = merge->Claimants[static_cast<size_t>(number)];
        int16_t bone = pair.Model.VertexBones.Has(number) ? pair.Model.VertexBones[number] : int16_t{0};
        if (claimant >= 0 && pair.HasBones) {
            const int32_t own = merge->Joined.Bones[static_cast<size_t>(claimant)];
            const int16_t given = own < 0 ? int16_t{0} : pair.Bones[static_cast<size_t>(own)];
            if (given != (IsValidBone(bone) ? bone : int16_t{0}) && (own < 0 || given > 0)) {
                bone = given;
                ++merge->Counts->Rebound;
            }
        }
        if (merge->Vertices.Keep[static_cast<size_t>(number)] != 0) {
            bones->push_back(bone);
        }
    }
}

/// New vertices take the bone that the file gives, else that of the nearest old one.
void GiveNewBones(const Merge& merge, std::vector<int16_t>* bones)
{
    const LikePair& pair = merge.Pair;
    std::optional<PointTree> tree;
    for (size_t i = 0; i < merge.References.size(); ++i) {
        if (merge.References[i] > 0) {
            continue;
        }
        const int32_t own = merge.Joined.Bones[i];
        int16_t bone = pair.HasBones && own >= 0 ? pair.Bones[static_cast<size_t>(own)] : int16_t{0};
        if (bone == 0) {
            if (!tree) {
                tree = TreeOfVertices(pair.Model);
            }
            const int32_t nearest =
                NearestPoint(*tree, PlaceOf(merge.Joined.Vertices[i]), std::numeric_limits<float>::max());
            bone = pair.Model.VertexBones.Has(nearest) ? pair.Model.VertexBones[nearest] : int16_t{0};
        }
        bones->push_back(bone);
    }
}

/// The numbers that a corner of an old vertex carries; where it carries none, those of the vertex's corner in the model
/// that is like it.
std::array<int32_t, 2> OldNumbers(const Merge& merge, const ExchangeVertex& corner, int32_t vertex)
{
    const auto number = [](float value) {
        return value >= INT16_MIN && value <= INT16_MAX ? static_cast<int32_t>(value) : 0;
    };
    const MvmMesh& model = merge.Pair.Model;
    if (NumberFrom(corner.Number, merge.Pair.Salt) == vertex) {
        return {ReferenceTo(number(corner.Numbers.U), model.TexCoordCount()),
                ReferenceTo(number(corner.Numbers.V), model.NormalCount())};
    }
    std::array<int32_t, 2> best{};
    int bestRank = 0;
    for (const auto& [face, place] : merge.Uses[static_cast<size_t>(vertex)]) {
        const MvmFace& own = model.Faces[face];
        const int16_t pair = own.TexCoord[static_cast<size_t>(place)];
        const int16_t normal = own.Normal[static_cast<size_t>(place)];
        const bool samePair = model.TexCoords.Has(pair) &&
                              AreSamePairs(model.TexCoords[pair], {corner.TexCoord.U, 1 - corner.TexCoord.V});
        const bool sameNormal = model.Normals.Has(normal) && AreSameNormals(model.Normals[normal], corner.Normal);
        const int rank = (samePair ? 2 : 0) + (sameNormal ? 1 : 0);
        if (rank > bestRank) {
            bestRank = rank;
            best = {samePair ? pair : 0, sameNormal ? normal : 0};
        }
    }
    return best;
}

/// A face with references in place of numbers.
struct MergedFace {
    std::array<int32_t, 3> Vertex{}, TexCoord{}, Normal{};
    int16_t Material = 0;
};

int16_t MaterialOf(Merge* merge, int32_t part, const MvmFace* old)
{
    auto& list = merge->Result->MeshMaterials.Items;
    const int32_t material = merge->Pair.File.Parts[static_cast<size_t>(part)].Material;
    const bool hadOne = old != nullptr && merge->Result->MeshMaterials.Has(old->Material);
    if (material < 0) {
        return old != nullptr ? old->Material : int16_t{0};
    }
    const std::string& name = merge->Materials[static_cast<size_t>(material)];
    if (hadOne && merge->Result->MeshMaterials[old->Material].Name == name) {
        return old->Material;
    }
    auto entry = std::find_if(list.begin(), list.end(), [&](const auto& one) { return one.Name == name; });
    if (entry == list.end()) {
        if (list.size() >= INT16_MAX) {
            return 0;
        }
        list.push_back({name, 0});
        entry = list.end() - 1;
    }
    return static_cast<int16_t>(entry - list.begin() + 1);
}

/// For each joined face the face of the model that it is, 0 for a new one.
std::vector<int32_t> MatchFaces(const Merge& merge)
{
    const MvmMesh& model = merge.Pair.Model;
    std::map<std::array<int32_t, 3>, std::vector<int32_t>> byVertices;
    for (int32_t index = model.FaceCount(); index >= 1; --index) {
        const MvmFace& face = model.Faces[index];
        if (CanTravel(model, face)) {
            byVertices[Sorted({face.Vertex[0], face.Vertex[1], face.Vertex[2]})].push_back(index); // last one first
        }
    }
    std::vector<int32_t> matches;
    for (const JoinedFace& face : merge.Joined.Faces) {
        std::array<int32_t, 3> numbers{};
        for (size_t k = 0; k < 3; ++k) {
            numbers[k] = merge.References[static_cast<size_t>(face.Vertex[k])];
        }
        const auto found = byVertices.find(Sorted(numbers));
        if (found == byVertices.end() || found->second.empty()) {
            matches.push_back(0);
            continue;
        }
        // Of two faces over the same vertices the one that looks the same way, and of those the one that has most else
        // in common.
        std::vector<int32_t>& faces = found->second;
        const int32_t part = merge.Pair.File.Parts[static_cast<size_t>(face.Part)].Material;
        const std::string* const material = part < 0 ? nullptr : &merge.Materials[static_cast<size_t>(part)];
        const auto rank = [&](int32_t index) {
            const MvmFace& old = model.Faces[index];
            const bool hasMaterial = model.MeshMaterials.Has(old.Material);
            const bool sameMaterial = hasMaterial == (material != nullptr) &&
                                      (!hasMaterial || model.MeshMaterials[old.Material].Name == *material);
            int best = 0;
            for (size_t first = 0; first < 3; ++first) {
                int equal = 0;
                int others = sameMaterial ? 2 : 0;
                for (size_t k = 0; k < 3; ++k) {
                    const size_t own = (first + k) % 3;
                    equal += old.Vertex[own] == numbers[k] ? 1 : 0;
                    const ExchangeVertex& corner = merge.Pair.File.Vertices[face.Corners[k]];
                    others += corner.Numbers.U == static_cast<float>(old.TexCoord[own]) ? 2 : 0;
                    others += corner.Numbers.V == static_cast<float>(old.Normal[own]) ? 1 : 0;
                }
                best = std::max(best, equal == 3 ? 1 + others : 0);
            }
            return best;
        };
        const auto chosen =
            std::max_element(faces.rbegin(), faces.rend(), [&](int32_t a, int32_t b) { return rank(a) < rank(b); });
        matches.push_back(*chosen);
        faces.erase(std::next(chosen).base());
    }
    return matches;
}

/// The joined face with its corners turned so that it begins where the model's face does.
MergedFace MergedFaceOf(Merge* merge, const JoinedFace& face, int32_t match,
                        const std::array<std::array<int32_t, 2>, 3>& references)
{
    const MvmFace* const old = match == 0 ? nullptr : &merge->Pair.Model.Faces[match];
    size_t shift = 0;
    for (size_t k = 0; old != nullptr && k < 3; ++k) {
        if (merge->References[static_cast<size_t>(face.Vertex[k])] == old->Vertex[0]) {
            shift = k;
        }
    }
    MergedFace result;
    for (size_t k = 0; k < 3; ++k) {
        const size_t from = (k + shift) % 3;
        result.Vertex[k] = merge->References[static_cast<size_t>(face.Vertex[from])];
        result.TexCoord[k] = references[from][0];
        result.Normal[k] = references[from][1];
    }
    result.Material = MaterialOf(merge, face.Part, old);
    return result;
}

/// What the corners of a face refer to.
std::array<std::array<int32_t, 2>, 3> ClaimCorners(Merge* merge, const JoinedFace& face, bool isSecondRound)
{
    std::array<std::array<int32_t, 2>, 3> references{};
    for (size_t k = 0; k < 3; ++k) {
        const ExchangeVertex& corner = merge->Pair.File.Vertices[face.Corners[k]];
        const int32_t number = merge->Joined.Numbers[static_cast<size_t>(face.Vertex[k])];
        const std::array<int32_t, 2> old = number > 0 ? OldNumbers(*merge, corner, number) : std::array<int32_t, 2>{};
        references[k][0] = Claim(&merge->TexCoords, old[0], Vec2{corner.TexCoord.U, 1 - corner.TexCoord.V},
                                 isSecondRound, AreSamePairs);
        references[k][1] = Claim(&merge->Normals, old[1], corner.Normal, isSecondRound, AreSameNormals);
    }
    return references;
}

/// All faces: those of the model in their order, then the new ones.
std::vector<MergedFace> MergeFaces(Merge* merge)
{
    const MvmMesh& model = merge->Pair.Model;
    const std::vector<int32_t> matches = MatchFaces(*merge);
    for (const JoinedFace& face : merge->Joined.Faces) {
        (void)ClaimCorners(merge, face, false);
    }
    std::vector<std::optional<MergedFace>> old(model.Faces.Items.size() + 1);
    std::vector<MergedFace> added;
    for (size_t i = 0; i < matches.size(); ++i) {
        const JoinedFace& face = merge->Joined.Faces[i];
        const MergedFace merged = MergedFaceOf(merge, face, matches[i], ClaimCorners(merge, face, true));
        if (matches[i] > 0) {
            old[static_cast<size_t>(matches[i])] = merged;
        } else {
            added.push_back(merged);
        }
    }
    std::vector<MergedFace> all;
    for (int32_t index = 1; index <= model.FaceCount(); ++index) {
        const MvmFace& face = model.Faces[index];
        if (old[static_cast<size_t>(index)]) {
            all.push_back(*old[static_cast<size_t>(index)]);
        } else if (!CanTravel(model, face)) {
            const bool stays = std::all_of(face.Vertex.begin(), face.Vertex.end(), [&](int16_t vertex) {
                return !model.Vertices.Has(vertex) || merge->Vertices.Keep[static_cast<size_t>(vertex)] != 0;
            });
            if (stays) {
                MergedFace& kept = all.emplace_back();
                for (size_t k = 0; k < 3; ++k) {
                    kept.Vertex[k] = ReferenceTo(face.Vertex[k], model.VertexCount());
                    kept.TexCoord[k] = ReferenceTo(face.TexCoord[k], model.TexCoordCount());
                    kept.Normal[k] = ReferenceTo(face.Normal[k], model.NormalCount());
                    const auto keep = [](int32_t number, auto* entries) {
                        if (entries->Old.Has(number)) {
                            entries->Keep[static_cast<size_t>(number)] = 1;
                        }
                    };
                    keep(face.TexCoord[k], &merge->TexCoords.Own);
                    keep(face.Normal[k], &merge->Normals.Own);
                }
                kept.Material = face.Material;
            }
        }
    }
    merge->Counts->AddedFaces = added.size();
    merge->Counts->GoneFaces = model.Faces.Items.size() - all.size();
    all.insert(all.end(), added.begin(), added.end());
    return all;
}

} // namespace

bool MergeMesh(const LikePair& pair, const std::vector<std::string>& materials, MvmMesh* result, MergeCounts* counts,
               std::string* error)
{
    *result = {};
    result->Name = pair.Model.Name;
    result->MeshMaterials = pair.Model.MeshMaterials;
    result->IsSkin = pair.Model.IsSkin;
    Merge merge(pair, materials, counts, result);
    merge.Joined = JoinCorners(pair.File, OldVertices(pair));
    *error = OutOfReach(pair.File.Name, merge.Joined.Vertices);
    if (!error->empty()) {
        return false;
    }
    KeepUnused(&merge);
    ClaimVertices(&merge);
    const std::vector<MergedFace> faces = MergeFaces(&merge);
    *error = OverLimits(pair.File.Name, merge.Vertices.Count(), merge.TexCoords.Own.Count(), merge.Normals.Own.Count(),
                        faces.size());
    if (!error->empty()) {
        return false;
    }
    std::vector<int16_t> bones;
    GiveOldBones(&merge, &bones);
    GiveNewBones(merge, &bones);
    merge.Vertices.Settle();
    merge.TexCoords.Own.Settle();
    merge.Normals.Own.Settle();
    result->Vertices.Items = merge.Vertices.All();
    result->TexCoords.Items = merge.TexCoords.Own.All();
    result->Normals.Items = merge.Normals.Own.All();
    for (const MergedFace& face : faces) {
        MvmFace& own = result->Faces.Add();
        for (size_t k = 0; k < 3; ++k) {
            own.Vertex[k] = NumberOf(merge.Vertices, face.Vertex[k]);
            own.TexCoord[k] = NumberOf(merge.TexCoords.Own, face.TexCoord[k]);
            own.Normal[k] = NumberOf(merge.Normals.Own, face.Normal[k]);
        }
        own.Material = face.Material;
    }
    if (result->IsSkin) {
        result->VertexBones.Items = std::move(bones);
    }
    return true;
}
