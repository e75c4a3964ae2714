#include "model/modMvmBind.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <limits>
#include <string_view>
#include <unordered_map>
#include <utility>
#include <vector>

#include "app/modFrontEnd.h"
#include "app/modMvmDef.h"
#include "app/modUndo.h"
#include "modCodePage.h"
#include "model/modStrings.h"

namespace {

constexpr int32_t maxIndex = std::numeric_limits<int16_t>::max();

// Two characters make whole numbers from -9 to 99; a bone whose name ends in any other number binds no vertex.
constexpr int lowestJoint = -9;
constexpr int highestJoint = 99;

/// The last bone for each joint number, 0 for none. Bones that no assignment can hold are not in it.
using JointTable = std::array<int16_t, highestJoint - lowestJoint + 1>;

struct JointTables {
    JointTable Ordinary{};
    JointTable Shadow{};
};

using MaterialNumbers = std::unordered_map<std::string_view, int32_t>;

JointTables LastBonesByJoint()
{
    JointTables tables;
    for (int32_t bone = 1; bone <= std::min(BoneCount(), maxIndex); ++bone) {
        const double joint = JointNumber(Bones[bone].Name);
        if (joint == std::floor(joint)) {
            JointTable& table = Bones[bone].IsShadow ? tables.Shadow : tables.Ordinary;
            table[static_cast<size_t>(static_cast<int>(joint) - lowestJoint)] = static_cast<int16_t>(bone);
        }
    }
    return tables;
}

MaterialNumbers LastMaterialsByName()
{
    MaterialNumbers numbers;
    for (int32_t material = 1; material <= MaterialCount(); ++material) {
        numbers[Materials[material].Name] = material;
    }
    return numbers;
}

void TakeRole(int16_t index, const MvmMesh& mesh)
{
    const bool marked = mesh.Name.find('$') != std::string::npos;
    if (mesh.IsSkin) {
        (marked ? ShadowMesh : SkinMesh) = index;
    } else if (marked) {
        HeadMesh = HoldsAnyCase(mesh.Name, "head") ? index : HeadMesh;
        BodyMesh = HoldsAnyCase(mesh.Name, "body") ? index : BodyMesh;
        TailMesh = HoldsAnyCase(mesh.Name, "tail") ? index : TailMesh;
    }
}

void BindVertices(const JointTables& tables, bool toOrdinary, bool toShadow, MvmMesh* mesh)
{
    JointTable bones{};
    for (size_t joint = 0; joint < bones.size(); ++joint) {
        bones[joint] =
            std::max(toOrdinary ? tables.Ordinary[joint] : int16_t{0}, toShadow ? tables.Shadow[joint] : int16_t{0});
    }
    // A mesh that became a skin after its load has no joint numbers.
    const int32_t count = std::min({mesh->VertexCount(), mesh->VertexJoints.Count(), mesh->VertexBones.Count()});
    for (int32_t vertex = 1; vertex <= count; ++vertex) {
        const int joint = mesh->VertexJoints[vertex];
        if (joint < lowestJoint || joint > highestJoint) {
            continue;
        }
        const int16_t bone = bones[static_cast<size_t>(joint - lowestJoint)];
        if (bone != 0) {
            mesh->VertexBones[vertex] = bone;
        }
    }
}

/// The first instance that places the mesh; tells the user when there is none.
const MvmInstance* FindInstance(const MvmMesh& mesh)
{
    for (const MvmInstance& instance : Instances) {
        if (instance.Mesh == mesh.Name) {
            return &instance;
        }
    }
    ShowMessage(BoxIcon::Warning, "No instance with the name \"" + Utf8FromCodePage(mesh.Name) +
                                      "\" found.\nPlease rename the skin to match the instance name.");
    return nullptr;
}

} // namespace

void MarkShadowBones()
{
    for (MvmBone& bone : Bones) {
        bone.IsShadow = bone.IsShadow || HoldsAnyCase(bone.Name, "$j$");
    }
}

void VerifyMeshes()
{
    const JointTables tables = LastBonesByJoint();
    const MaterialNumbers materials = LastMaterialsByName();
    for (int32_t index = 1; index <= MeshCount(); ++index) {
        MvmMesh& mesh = Meshes[index];
        for (MvmMeshMaterial& entry : mesh.MeshMaterials) {
            const auto material = materials.find(entry.Name);
            if (material != materials.end()) {
                entry.Index = material->second;
            }
        }
        if (index > maxIndex) {
            continue; // a role cannot hold it
        }
        TakeRole(static_cast<int16_t>(index), mesh);
        if (mesh.IsSkin && (index == SkinMesh || index == ShadowMesh)) {
            BindVertices(tables, index == SkinMesh, index == ShadowMesh, &mesh);
        }
    }
}

void SelectSkinMesh(int16_t mesh)
{
    Touch(ScenePart::Roles, mesh);
    MakeSkin(mesh);
    SkinMesh = mesh;
    if (!IsValidMesh(mesh)) {
        SkinOffset = {};
        SkinScale = 1;
    } else if (const MvmInstance* instance = FindInstance(Meshes[mesh])) {
        SkinOffset = {-instance->Position.X, -instance->Position.Y, -instance->Position.Z};
        SkinScale = 1 / instance->Scale;
    }
    Redraw(true);
}

void SelectShadowMesh(int16_t mesh)
{
    Touch(ScenePart::Roles, mesh);
    MakeSkin(mesh);
    ShadowMesh = mesh;
    if (IsValidMesh(mesh)) {
        FindInstance(Meshes[mesh]);
    }
    Redraw(true);
}

void RenameMesh(int16_t mesh, const std::string& name)
{
    const std::string newName = CodePageFromUtf8(name.substr(0, name.find_first_of("\r\n")));
    if (!IsValidMesh(mesh) || newName.empty()) {
        return;
    }
    Touch(ScenePart::Names, mesh);
    // All texts are made before the first record changes.
    const std::string& oldName = Meshes[mesh].Name;
    std::vector<std::pair<MvmInstance*, std::array<std::string, 2>>> changes;
    for (MvmInstance& instance : Instances) {
        if (instance.Mesh == oldName) {
            changes.push_back({&instance, {newName, newName}});
        }
    }
    std::string meshName = newName;
    Meshes[mesh].Name.swap(meshName);
    for (auto& [instance, names] : changes) {
        instance->Name.swap(names[0]);
        instance->Mesh.swap(names[1]);
    }
    // A blank ends a header's name, "=" ends the value that links an instance to it, quotes are dropped, and braces
    // open and close blocks.
    if (newName.find_first_of(" =\"{}") != std::string::npos) {
        LogLine("A model file cannot keep the name \"" + Utf8FromCodePage(newName) +
                "\": it holds a blank, an equals sign, a double quote or a brace.");
        ShowInfoLog();
    }
}
