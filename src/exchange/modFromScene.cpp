#include "modFromScene.h"

#include <algorithm>
#include <cmath>
#include <string_view>
#include <unordered_map>

#include "checks/modCheckModel.h"
#include "modCodePage.h"
#include "modExchangeNames.h"
#include "modFileListing.h"
#include "modMeshOut.h"
#include "modMeshRest.h"
#include "modNumbering.h"
#include "modPictures.h"
#include "modRecord.h"

namespace {

bool IsFinite(const Vec3& triple)
{
    return std::isfinite(triple.X) && std::isfinite(triple.Y) && std::isfinite(triple.Z);
}

float UsableScale(float scale)
{
    return std::isnormal(scale) && std::isfinite(1 / scale) ? scale : 1;
}

/// The parents that the links of the alias files make; a link that would close a circle is none.
std::vector<int32_t> ParentsOfBones()
{
    std::vector<int32_t> parents(static_cast<size_t>(BoneCount()), -1);
    for (int32_t bone = 1; bone <= BoneCount(); ++bone) {
        int32_t above = IsValidBone(Bones[bone].LinkBone) ? Bones[bone].LinkBone - 1 : -1;
        for (int32_t seen = above; seen >= 0; seen = parents[static_cast<size_t>(seen)]) {
            if (seen == bone - 1) {
                above = -1;
                break;
            }
        }
        parents[static_cast<size_t>(bone) - 1] = above;
    }
    return parents;
}

void AddBones(ExchangeModel* model)
{
    const std::vector<std::string> names = BoneNamesInFiles();
    const std::vector<int32_t> parents = ParentsOfBones();
    for (size_t bone = 0; bone < names.size(); ++bone) {
        model->Bones.push_back({names[bone], parents[bone], Bones.Items[bone].Position});
    }
}

void AddMaterials(const std::string& folder, ExchangeModel* model)
{
    std::vector<std::string> own;
    FolderNames files;
    std::unordered_map<std::string, int32_t> images; // by both maps: materials may share a picture
    for (const std::string& name : MaterialNamesInFiles(&own)) {
        ExchangeMaterial material;
        material.Name = name;
        const size_t index = model->Materials.size();
        if (index < Materials.Items.size() && !Materials.Items[index].ColorMap.empty()) {
            const MvmMaterial& maps = Materials.Items[index];
            const auto [found, isNew] = images.emplace(maps.ColorMap + '\n' + maps.OpacityMap, -1);
            ExchangeImage image;
            if (isNew && PngOfMaterial(maps, folder, &files, &image)) {
                found->second = static_cast<int32_t>(model->Images.size());
                model->Images.push_back(std::move(image));
            }
            material.Image = found->second;
            material.HasOpacity = material.Image >= 0 && !maps.OpacityMap.empty();
        }
        model->Materials.push_back(std::move(material));
    }
}

/// The bones that a mesh may lean on: those of its kind, and whatever others its vertices have.
std::vector<int32_t> JointsOf(const ExchangeMesh& mesh, bool ofShadow)
{
    std::vector<char> wanted(Bones.Items.size());
    for (size_t bone = 0; bone < wanted.size(); ++bone) {
        wanted[bone] = Bones.Items[bone].IsShadow == ofShadow ? 1 : 0;
    }
    for (const ExchangeVertex& vertex : mesh.Vertices) {
        if (vertex.Bone >= 0) {
            wanted[static_cast<size_t>(vertex.Bone)] = 1;
        }
    }
    std::vector<int32_t> joints;
    for (size_t bone = 0; bone < wanted.size(); ++bone) {
        if (wanted[bone] != 0) {
            joints.push_back(static_cast<int32_t>(bone));
        }
    }
    return joints;
}

/// The material in the file of each number into a mesh's material list.
std::vector<int32_t> MaterialsOfMesh(const MvmMesh& mesh, const std::unordered_map<std::string, int32_t>& byName)
{
    std::vector<int32_t> result;
    for (const MvmMeshMaterial& entry : mesh.MeshMaterials) {
        const bool known = entry.Index >= 1 && entry.Index <= MaterialCount();
        result.push_back(known ? entry.Index - 1 : byName.at(entry.Name));
    }
    return result;
}

void AddMeshes(ExchangeModel* model, std::vector<MeshRecord>* records)
{
    std::vector<std::string> names;
    (void)MaterialNamesInFiles(&names);
    std::unordered_map<std::string, int32_t> byName;
    for (size_t i = 0; i < names.size(); ++i) {
        byName[names[i]] = static_cast<int32_t>(i);
    }
    const std::vector<std::string> meshNames = MeshNamesInFiles();
    for (int32_t index = 1; index <= MeshCount(); ++index) {
        const MvmMesh& mesh = Meshes[index];
        const bool isSkinned = mesh.IsSkin && (index == SkinMesh || index == ShadowMesh);
        const uint32_t salt = NumberSalt(mesh.Name, index);
        ExchangeMesh exchanged;
        exchanged.Name = meshNames[static_cast<size_t>(index) - 1];
        std::vector<int16_t> materials;
        std::vector<int32_t> left;
        MeshToExchange(mesh, salt, isSkinned, &exchanged, &materials, &left);
        GroupByPart(&exchanged);
        const std::vector<int32_t> inFile = MaterialsOfMesh(mesh, byName);
        for (size_t part = 0; part < materials.size(); ++part) {
            const int16_t number = materials[part];
            exchanged.Parts[part].Material =
                mesh.MeshMaterials.Has(number) ? inFile[static_cast<size_t>(number) - 1] : -1;
        }
        if (!left.empty()) {
            model->Notes.push_back(Counted(static_cast<int64_t>(left.size()), "face", "faces") + " of \"" +
                                   Utf8FromCodePage(mesh.Name) + "\" " +
                                   Verb(static_cast<int64_t>(left.size()), "stays", "stay") +
                                   " behind, in the record alone: a vertex is named twice, or is not there.");
        }
        const size_t placed = PlacementsOfMesh(mesh).size();
        if (isSkinned && placed > 1) {
            model->Notes.push_back("\"" + Utf8FromCodePage(mesh.Name) + "\" is placed " + std::to_string(placed) +
                                   " times; only the record has more than the first place.");
        }
        if (isSkinned) {
            exchanged.Placements = {SkinPlacement()};
            exchanged.Placements[0].Name = exchanged.Name;
            exchanged.Joints = JointsOf(exchanged, index == ShadowMesh);
        } else {
            exchanged.Placements = PlacementsOfMesh(mesh);
        }
        MeshRecord& record = records->emplace_back();
        record.Rest = RestOfMesh(mesh, exchanged, salt, materials, left);
        if (!exchanged.Parts.empty()) {
            record.Sum = ShapeSum(*model, exchanged);
            model->Meshes.push_back(std::move(exchanged));
        }
    }
}

template <typename T>
std::vector<std::string> NamesOf(const Array1<T>& records)
{
    std::vector<std::string> names;
    for (const T& record : records) {
        names.push_back(record.Name);
    }
    return names;
}

/// Says how many records have another name in the file.
template <typename T>
void TellOfNames(const Array1<T>& records, const std::vector<std::string>& inFile, const char* kind,
                 std::vector<std::string>* notes)
{
    size_t changed = 0;
    for (size_t i = 0; i < records.Items.size(); ++i) {
        changed += Utf8FromCodePage(records.Items[i].Name) != inFile[i] ? 1 : 0;
    }
    if (changed > 0) {
        notes->push_back("The file has other names for " + std::to_string(changed) + " of the " + kind +
                         ": it keeps none that is empty, doubled, or longer than 63 bytes.");
    }
}

} // namespace

std::vector<std::string> BoneNamesInFiles()
{
    return ExchangeNames(NamesOf(Bones), "Bone");
}

std::vector<std::string> MaterialNamesInFiles(std::vector<std::string>* names)
{
    *names = NamesOf(Materials);
    for (const MvmMesh& mesh : Meshes) {
        for (const MvmMeshMaterial& entry : mesh.MeshMaterials) {
            const bool known = entry.Index >= 1 && entry.Index <= MaterialCount();
            if (!known && std::find(names->begin(), names->end(), entry.Name) == names->end()) {
                names->push_back(entry.Name);
            }
        }
    }
    return ExchangeNames(*names, "Material");
}

std::vector<std::string> MeshNamesInFiles()
{
    return ExchangeNames(NamesOf(Meshes), "Mesh");
}

ExchangePlacement SkinPlacement()
{
    ExchangePlacement placement;
    if (IsValidMesh(SkinMesh)) {
        for (const MvmInstance& instance : Instances) {
            if (instance.Mesh == Meshes[SkinMesh].Name) {
                placement.Position = instance.Position;
                placement.Scale = UsableScale(instance.Scale);
                break;
            }
        }
    }
    return placement;
}

std::vector<ExchangePlacement> PlacementsOfMesh(const MvmMesh& mesh)
{
    std::vector<ExchangePlacement> placements;
    for (const MvmInstance& instance : Instances) {
        if (instance.Mesh == mesh.Name) {
            placements.push_back({ExchangeNames({instance.Name}, "Instance").front(), instance.Position,
                                  instance.Rotation, UsableScale(instance.Scale)});
        }
    }
    if (placements.empty()) {
        placements.push_back({ExchangeNames({mesh.Name}, "Mesh").front()});
    }
    return placements;
}

bool AllFinite(std::string* error)
{
    const auto fail = [&](const char* kind, const std::string& name) {
        *error = std::string("The ") + kind + " \"" + Utf8FromCodePage(name) + "\" holds a number that is not finite.";
        return false;
    };
    for (const MvmBone& bone : Bones) {
        if (!IsFinite(bone.Position) || !IsFinite(bone.Rotation)) {
            return fail("bone", bone.Name);
        }
    }
    for (const MvmMesh& mesh : Meshes) {
        const bool pairs = std::all_of(mesh.TexCoords.begin(), mesh.TexCoords.end(),
                                       [](const Vec2& pair) { return std::isfinite(pair.U) && std::isfinite(pair.V); });
        if (!pairs || !std::all_of(mesh.Vertices.begin(), mesh.Vertices.end(), IsFinite) ||
            !std::all_of(mesh.Normals.begin(), mesh.Normals.end(), IsFinite)) {
            return fail("mesh", mesh.Name);
        }
    }
    for (const MvmInstance& instance : Instances) {
        if (!IsFinite(instance.Position) || !IsFinite(instance.Rotation) || !std::isfinite(instance.Scale)) {
            return fail("instance", instance.Name);
        }
    }
    return true;
}

bool ExchangeFromScene(const std::string& folder, ExchangeModel* model, std::string* error)
{
    if (!AllFinite(error)) {
        return false;
    }
    std::vector<MeshRecord> records;
    AddBones(model);
    AddMaterials(folder, model);
    AddMeshes(model, &records);
    if (model->Meshes.empty()) {
        *error = "The model has no mesh with a face.";
        return false;
    }
    std::vector<std::string> names;
    TellOfNames(Bones, BoneNamesInFiles(), "bones", &model->Notes);
    TellOfNames(Materials, MaterialNamesInFiles(&names), "materials", &model->Notes);
    TellOfNames(Meshes, MeshNamesInFiles(), "meshes", &model->Notes);
    model->Record = RecordOfScene(records);
    return true;
}
