#include "modLike.h"

#include <algorithm>
#include <cmath>
#include <map>
#include <optional>
#include <set>
#include <utility>

#include "modCodePage.h"
#include "modExchangeNames.h"
#include "modFromScene.h"
#include "modLikeBones.h"
#include "modLikeMesh.h"
#include "modMatrix.h"
#include "modNumbering.h"

namespace {

constexpr size_t none = static_cast<size_t>(-1);

bool IsBoundMesh(int32_t index)
{
    return Meshes[index].IsSkin && (index == SkinMesh || index == ShadowMesh);
}

/// The mesh whose numbers most corners carry, 0 for none.
int32_t MeshByNumbers(const ExchangeMesh& mesh)
{
    std::map<uint32_t, size_t> votes;
    for (const ExchangeVertex& vertex : mesh.Vertices) {
        uint32_t salt = 0;
        if (SaltOf(vertex.Number, &salt)) {
            ++votes[salt];
        }
    }
    int32_t best = 0;
    size_t most = 0;
    for (int32_t index = 1; index <= MeshCount(); ++index) {
        const auto found = votes.find(NumberSalt(Meshes[index], index));
        if (found != votes.end() && found->second > most) {
            most = found->second;
            best = index;
        }
    }
    return best;
}

/// The mesh of the scene that each mesh of the file is, 0 for none: by name, by the numbers in it, by its role.
std::vector<int32_t> MatchMeshes(const ExchangeModel& model)
{
    const std::vector<std::string> names = MeshNamesInFiles();
    std::vector<int32_t> matches(model.Meshes.size(), 0);
    std::set<int32_t> taken;
    const auto matchAll = [&](const auto& find) {
        for (size_t i = 0; i < matches.size(); ++i) {
            const int32_t found = matches[i] == 0 ? find(model.Meshes[i]) : 0;
            if (found != 0 && taken.insert(found).second) {
                matches[i] = found;
            }
        }
    };
    const auto named = [&](const auto& fits) {
        const auto found = std::find_if(names.begin(), names.end(), fits);
        return found == names.end() ? 0 : static_cast<int32_t>(found - names.begin() + 1);
    };
    matchAll(
        [&](const ExchangeMesh& mesh) { return named([&](const std::string& name) { return name == mesh.Name; }); });
    matchAll(MeshByNumbers);
    matchAll([&](const ExchangeMesh& mesh) {
        const std::string plain = PlainName(mesh.Name);
        return named([&](const std::string& name) { return PlainName(name) == plain; });
    });
    // What is left over: the one mesh of a file, or the one that bones move, is the skin.
    const auto isSkinned = [](const ExchangeMesh& mesh) { return mesh.IsSkinned; };
    const auto skinned = std::count_if(model.Meshes.begin(), model.Meshes.end(), isSkinned);
    matchAll([&](const ExchangeMesh& mesh) {
        return model.Meshes.size() == 1 || (mesh.IsSkinned && skinned == 1) ? int32_t{SkinMesh} : 0;
    });
    return matches;
}

ExchangePlacement PlacementInScene(int32_t index)
{
    return IsBoundMesh(index) ? SkinPlacement() : PlacementsOfMesh(Meshes[index]).front();
}

Matrix MatrixOf(const ExchangePlacement& placement)
{
    return MatrixOf(placement.Position, placement.Rotation, placement.Scale);
}

double ExtentFromOrigin(int32_t index)
{
    const ExchangePlacement at = PlacementInScene(index);
    const double move = std::max({std::fabs(at.Position.X), std::fabs(at.Position.Y), std::fabs(at.Position.Z)});
    return ExtentOf(Meshes[index]) + move / std::fabs(at.Scale);
}

/// The mesh in the space of the scene's own.
ExchangeMesh InSpaceOf(const ExchangeMesh& mesh, int32_t index)
{
    ExchangeMesh result = mesh;
    const std::optional<Matrix> back = Inverse(MatrixOf(PlacementInScene(index)));
    if (!back) {
        return result;
    }
    const Matrix matrix = Multiply(*back, MatrixOf(mesh.Placements.front()));
    const double size = std::max(ExtentOf(Meshes[index]), 1e-30);
    if (AreAlike(matrix, identityMatrix, size)) {
        return result;
    }
    const std::optional<Matrix> inverse = Inverse(matrix);
    for (ExchangeVertex& vertex : result.Vertices) {
        vertex.Place = Transformed(matrix, vertex.Place);
        vertex.Normal = inverse ? TransformedNormal(*inverse, vertex.Normal) : vertex.Normal;
    }
    if (IsMirrored(matrix) && !mesh.IsSkinned) { // what turns a node over does not turn what its joints carry
        SwapSides(&result);
    }
    return result;
}

/// The name without what Blender puts behind one that is taken: ".001".
std::string WithoutCopyNumber(const std::string& name)
{
    const size_t point = name.find_last_of('.');
    const bool isCopy = point != std::string::npos && name.size() - point > 3 &&
                        name.find_first_not_of("0123456789", point + 1) == std::string::npos;
    return isCopy ? name.substr(0, point) : name;
}

/// The names that the materials of the file have in the scene (code page). Those that it lacks are in *added.
std::vector<std::string> MaterialNames(const ExchangeModel& model, std::vector<std::string>* added)
{
    std::vector<std::string> own;
    const std::vector<std::string> inFiles = MaterialNamesInFiles(&own);
    std::vector<size_t> matches(model.Materials.size(), none);
    std::set<size_t> taken;
    const auto matchAll = [&](const auto& fits) {
        for (size_t i = 0; i < matches.size(); ++i) {
            for (size_t k = 0; k < inFiles.size() && matches[i] == none; ++k) {
                matches[i] = fits(model.Materials[i].Name, inFiles[k], k) ? k : none;
            }
        }
        taken.insert(matches.begin(), matches.end());
    };
    matchAll([](const std::string& name, const std::string& inFile, size_t) { return name == inFile; });
    matchAll([](const std::string& name, const std::string& inFile, size_t) {
        return PlainName(name) == PlainName(inFile);
    });
    matchAll([&](const std::string& name, const std::string& inFile, size_t index) {
        return !taken.contains(index) && WithoutCopyNumber(name) == inFile;
    });
    std::vector<std::string> names;
    for (size_t i = 0; i < matches.size(); ++i) {
        names.push_back(matches[i] == none ? NameForModel(model.Materials[i].Name) : own[matches[i]]);
        if (matches[i] == none) {
            added->push_back(names.back());
        }
    }
    return names;
}

std::string Number(size_t count, const char* what)
{
    return std::to_string(count) + " " + what;
}

std::string Describe(const std::string& name, const MergeCounts& counts)
{
    return "\"" + Utf8FromCodePage(name) + "\": " + Number(counts.Kept, "vertices kept, ") +
           Number(counts.Moved, "moved, ") + Number(counts.Added, "new, ") + Number(counts.Gone, "gone, ") +
           Number(counts.Rebound, "with another bone; ") + Number(counts.AddedFaces, "faces new, ") +
           Number(counts.GoneFaces, "gone.");
}

/// Adds the materials that faces of the file have and the scene has not.
void AddMaterials(const std::vector<std::string>& added, std::vector<std::string>* notes)
{
    for (const std::string& name : added) {
        const auto uses = [&](const MvmMesh& mesh) {
            return std::any_of(mesh.MeshMaterials.begin(), mesh.MeshMaterials.end(),
                               [&](const MvmMeshMaterial& entry) { return entry.Name == name; });
        };
        if (std::any_of(Meshes.begin(), Meshes.end(), uses)) {
            Materials.Add().Name = name;
            notes->push_back("The material \"" + Utf8FromCodePage(name) + "\" is new; it has no textures yet.");
        }
    }
}

void TellOfRest(const ExchangeModel& model, const std::vector<int32_t>& matches, std::vector<std::string>* notes)
{
    for (size_t i = 0; i < matches.size(); ++i) {
        if (matches[i] == 0) {
            notes->push_back("The mesh \"" + model.Meshes[i].Name + "\" is none of the model and is left out.");
        }
    }
    for (int32_t index = 1; index <= MeshCount(); ++index) {
        const bool isThere = std::find(matches.begin(), matches.end(), index) != matches.end();
        if (!isThere && Meshes[index].FaceCount() > 0) {
            notes->push_back("The mesh \"" + Utf8FromCodePage(Meshes[index].Name) +
                             "\" is not in the file and stays as it is.");
        }
    }
}

} // namespace

bool MergeIntoScene(const ExchangeModel& model, bool* isDoubtful, std::vector<std::string>* notes, std::string* error)
{
    std::vector<int16_t> bones;
    MatchBones(model, &bones, isDoubtful, notes);
    const std::vector<int32_t> matches = MatchMeshes(model);
    std::vector<std::string> added;
    const std::vector<std::string> materials = MaterialNames(model, &added);
    std::vector<std::pair<int32_t, MvmMesh>> merged;
    for (size_t i = 0; i < matches.size(); ++i) {
        if (matches[i] == 0) {
            continue;
        }
        const int32_t index = matches[i];
        const ExchangeMesh inFile = InSpaceOf(model.Meshes[i], index);
        const LikePair pair{.File = inFile,
                            .Model = Meshes[index],
                            .Salt = NumberSalt(Meshes[index], index),
                            .Bones = bones,
                            .HasBones = inFile.IsSkinned && IsBoundMesh(index),
                            .Extent = ExtentFromOrigin(index)};
        MergeCounts counts;
        MvmMesh result;
        if (!MergeMesh(pair, materials, &result, &counts, error)) {
            return false;
        }
        notes->push_back(Describe(result.Name, counts));
        merged.emplace_back(index, std::move(result));
    }
    if (merged.empty()) {
        *error = "It has no mesh of the model.";
        return false;
    }
    for (auto& [index, mesh] : merged) {
        Meshes[index] = std::move(mesh);
    }
    AddMaterials(added, notes);
    TellOfRest(model, matches, notes);
    return true;
}
