#include "modNewScene.h"

#include <algorithm>
#include <cmath>
#include <optional>
#include <set>
#include <utility>

#include "modCodePage.h"
#include "modExchangeNames.h"
#include "modFromScene.h"
#include "modJoin.h"
#include "modMatrix.h"
#include "modNewBones.h"
#include "modPictures.h"
#include "modRestore.h"

namespace {

/// The name itself, or with the first number behind it that makes it one of its own.
std::string Unique(const std::string& name, std::set<std::string>* taken)
{
    std::string result = name;
    for (int number = 2; !taken->insert(result).second; ++number) {
        result = name + "-" + std::to_string(number);
    }
    return result;
}

bool AddMaterials(const ExchangeModel& model, const std::string& folder, std::vector<MapFile>* files,
                  std::vector<std::string>* notes)
{
    std::set<std::string> taken;
    for (const ExchangeMaterial& material : model.Materials) {
        MvmMaterial& own = Materials.Add();
        own.Name = Unique(NameForModel(material.Name), &taken);
        std::string error;
        const bool isColored = material.Color != std::array<float, 3>{1, 1, 1};
        const bool made = material.Image >= 0 ? MakeMaps(model.Images[static_cast<size_t>(material.Image)], material,
                                                         folder, &own, files, notes, &error)
                                              : !isColored || MakeColorMap(material, folder, &own, files, &error);
        if (!made) {
            notes->push_back("The material \"" + material.Name + "\" stays without a picture: " + error);
        }
    }
    return true;
}

bool IsShadow(const ExchangeMesh& mesh, const std::vector<int16_t>& bones)
{
    size_t shadow = 0;
    size_t ordinary = 0;
    for (const ExchangeVertex& vertex : mesh.Vertices) {
        if (vertex.Bone >= 0) {
            ++(Bones[bones[static_cast<size_t>(vertex.Bone)]].IsShadow ? shadow : ordinary);
        }
    }
    return shadow + ordinary == 0 ? mesh.Name.find('$') != std::string::npos : shadow > ordinary;
}

/// Appends a mesh to another one, in the other's space.
void Append(const ExchangeMesh& mesh, ExchangeMesh* to)
{
    const auto matrixOf = [](const ExchangePlacement& placement) {
        return MatrixOf(placement.Position, placement.Rotation, placement.Scale);
    };
    const std::optional<Matrix> back = Inverse(matrixOf(to->Placements[0]));
    const Matrix matrix = back ? Multiply(*back, matrixOf(mesh.Placements[0])) : identityMatrix;
    const bool isSame = AreAlike(matrix, identityMatrix, 1);
    const std::optional<Matrix> inverse = Inverse(matrix);
    const auto first = static_cast<uint32_t>(to->Vertices.size());
    for (ExchangeVertex vertex : mesh.Vertices) {
        if (!isSame) {
            vertex.Place = Transformed(matrix, vertex.Place);
            vertex.Normal = inverse ? TransformedNormal(*inverse, vertex.Normal) : vertex.Normal;
        }
        to->Vertices.push_back(vertex);
    }
    for (ExchangePart part : mesh.Parts) {
        for (auto& triangle : part.Triangles) {
            for (uint32_t& corner : triangle) {
                corner += first;
            }
        }
        to->Parts.push_back(std::move(part));
    }
}

/// The meshes that lean on bones of one kind, as one: a model has one skin and one shadow.
std::optional<ExchangeMesh> JoinSkinned(std::vector<const ExchangeMesh*> meshes, const char* role,
                                        std::vector<std::string>* notes)
{
    if (meshes.empty()) {
        return std::nullopt;
    }
    std::stable_sort(meshes.begin(), meshes.end(), [](const ExchangeMesh* a, const ExchangeMesh* b) {
        return a->Vertices.size() > b->Vertices.size();
    });
    ExchangeMesh joined = *meshes.front();
    std::string names = "\"" + joined.Name + "\"";
    for (size_t i = 1; i < meshes.size(); ++i) {
        Append(*meshes[i], &joined);
        names += ", \"" + meshes[i]->Name + "\"";
    }
    if (meshes.size() > 1) {
        notes->push_back("A model has one " + std::string(role) + ", so the meshes " + names +
                         " became one; --skin NAME makes one of them the skin and leaves the others without bones.");
    }
    return joined;
}

/// Adds a mesh to the scene; its role and instances are the caller's.
bool AddMesh(const ExchangeMesh& mesh, const std::string& name, const std::vector<int16_t>& bones,
             std::vector<std::string>* notes, std::string* error)
{
    const JoinedMesh joined = JoinCorners(mesh, NumbersInFile(mesh));
    *error = OutOfReach(mesh.Name, joined.Vertices);
    if (!error->empty()) {
        return false;
    }
    *error = OverLimits(mesh.Name, joined.Vertices.size(), joined.TexCoords.size(), joined.Normals.size(),
                        joined.Faces.size());
    if (!error->empty()) {
        return false;
    }
    MvmMesh& own = Meshes.Add();
    own.Name = name;
    own.Vertices.Items = joined.Vertices;
    own.TexCoords.Items = joined.TexCoords;
    own.Normals.Items = joined.Normals;
    std::vector<int16_t> materials; // of each part
    for (const ExchangePart& part : mesh.Parts) {
        if (part.Material < 0) {
            materials.push_back(0);
            continue;
        }
        const std::string& material = Materials.Items[static_cast<size_t>(part.Material)].Name;
        auto& list = own.MeshMaterials.Items;
        auto entry = std::find_if(list.begin(), list.end(), [&](const auto& one) { return one.Name == material; });
        if (entry == list.end()) {
            list.push_back({material, part.Material + 1});
            entry = list.end() - 1;
        }
        materials.push_back(static_cast<int16_t>(entry - list.begin() + 1));
    }
    for (const JoinedFace& face : joined.Faces) {
        MvmFace& to = own.Faces.Add();
        for (size_t k = 0; k < 3; ++k) {
            to.Vertex[k] = static_cast<int16_t>(face.Vertex[k] + 1);
            to.TexCoord[k] = static_cast<int16_t>(face.TexCoord[k] + 1);
            to.Normal[k] = static_cast<int16_t>(face.Normal[k] + 1);
        }
        to.Material = materials[static_cast<size_t>(face.Part)];
    }
    if (mesh.IsSkinned) {
        own.IsSkin = true;
        for (const int32_t bone : joined.Bones) {
            own.VertexBones.Add(bone < 0 ? int16_t{0} : bones[static_cast<size_t>(bone)]);
        }
    }
    if (joined.Flat > 0) {
        notes->push_back(std::to_string(joined.Flat) + " triangles of \"" + mesh.Name +
                         "\" have two corners in one place and are left out.");
    }
    return true;
}

void AddInstances(const ExchangeMesh& mesh, const std::string& name, std::set<std::string>* taken)
{
    for (const ExchangePlacement& placement : mesh.Placements) {
        MvmInstance& instance = Instances.Add();
        instance.Name =
            mesh.IsSkinned ? name : Unique(placement.Name.empty() ? name : NameForModel(placement.Name), taken);
        instance.Mesh = name;
        instance.Position = placement.Position;
        instance.Rotation = placement.Rotation;
        instance.Scale = placement.Scale;
    }
}

/// The name of a skin or shadow: "$" in it is what tells them apart.
std::string RoleName(const std::string& name, bool isShadow)
{
    std::string result = NameForModel(name);
    if (isShadow) {
        return result.find('$') == std::string::npos ? "$" + result : result;
    }
    std::replace(result.begin(), result.end(), '$', '_');
    return result;
}

/// The maps that the restored materials name, for a folder that does not hold them.
void AddRestoredMaps(const ExchangeModel& model, const std::string& folder, std::vector<MapFile>* files)
{
    std::vector<std::string> own;
    const std::vector<std::string> names = MaterialNamesInFiles(&own);
    for (const ExchangeMaterial& material : model.Materials) {
        const auto at = static_cast<size_t>(std::find(names.begin(), names.end(), material.Name) - names.begin());
        if (at < Materials.Items.size() && material.Image >= 0) {
            AddNamedMaps(model.Images[static_cast<size_t>(material.Image)], Materials.Items[at], folder, files);
        }
    }
}

} // namespace

bool SceneFromExchange(const ExchangeModel& model, const NewSceneOptions& options, std::vector<MapFile>* files,
                       std::vector<std::string>* notes, std::string* error)
{
    if (options.Skin.empty() && RestoreScene(model)) {
        AddRestoredMaps(model, options.Folder, files);
        return true;
    }
    if (!model.Record.empty()) {
        notes->emplace_back("The file was changed since it was made from a model; what only the model holds (texts of "
                            "bones, bump maps, the names of its pictures) is not taken over. --like MODEL keeps it.");
    }
    std::vector<int16_t> bones;
    if (!AddNewBones(model, &bones, notes, error)) {
        return false;
    }
    AddMaterials(model, options.Folder, files, notes);
    std::vector<const ExchangeMesh*> skins;
    std::vector<const ExchangeMesh*> shadows;
    std::vector<ExchangeMesh> plain;
    bool isFound = options.Skin.empty();
    for (const ExchangeMesh& mesh : model.Meshes) {
        const bool isWanted = !options.Skin.empty() && mesh.Name == options.Skin;
        isFound = isFound || isWanted;
        if (mesh.IsSkinned && IsShadow(mesh, bones)) {
            shadows.push_back(&mesh);
        } else if (isWanted || (mesh.IsSkinned && options.Skin.empty())) {
            skins.push_back(&mesh);
        } else {
            plain.push_back(mesh);
            plain.back().IsSkinned = false;
        }
    }
    if (!isFound) {
        *error = "There is no mesh \"" + options.Skin + "\".";
        return false;
    }
    std::set<std::string> meshNames;
    std::set<std::string> instanceNames;
    const auto add = [&](const ExchangeMesh& mesh, const std::string& wanted) {
        const std::string name = Unique(wanted, &meshNames);
        if (name != CodePageFromUtf8(mesh.Name)) {
            notes->push_back("The mesh \"" + mesh.Name + "\" is called \"" + Utf8FromCodePage(name) + "\" now.");
        }
        AddInstances(mesh, name, &instanceNames);
        return AddMesh(mesh, name, bones, notes, error);
    };
    for (const bool isShadow : {false, true}) {
        std::optional<ExchangeMesh> joined =
            JoinSkinned(isShadow ? shadows : skins, isShadow ? "shadow" : "skin", notes);
        if (joined) {
            joined->IsSkinned = true;
            if (!add(*joined, RoleName(joined->Name, isShadow))) {
                return false;
            }
            (isShadow ? ShadowMesh : SkinMesh) = static_cast<int16_t>(MeshCount());
        }
    }
    for (const ExchangeMesh& mesh : plain) {
        if (!add(mesh, NameForModel(mesh.Name))) {
            return false;
        }
    }
    if (MeshCount() > INT16_MAX) {
        *error = "It has more meshes than a model can hold.";
        return false;
    }
    return true;
}
