#include "weights/modEdit.h"

#include <algorithm>
#include <vector>

#include "app/modMvmDef.h"
#include "app/modStatus.h"
#include "platform/modCodePage.h"
#include "platform/modDialogs.h"
#include "render/modRedraw.h"
#include "weights/modBoneAlias.h"
#include "weights/modBoneRows.h"

namespace {

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

int16_t TargetMesh()
{
    return EditTarget == 0 ? SkinMesh : ShadowMesh;
}

void SelectSkinMesh(int16_t mesh)
{
    SkinMesh = mesh;
    if (!IsValidMesh(mesh)) {
        SkinOffset = {};
        SkinScale = 1;
    } else {
        MakeSkin(mesh);
        if (const MvmInstance* instance = FindInstance(Meshes[mesh])) {
            SkinOffset = {-instance->Position.X, -instance->Position.Y, -instance->Position.Z};
            SkinScale = 1 / instance->Scale;
        }
    }
    Redraw(true);
}

void SelectShadowMesh(int16_t mesh)
{
    ShadowMesh = mesh;
    if (IsValidMesh(mesh)) {
        MakeSkin(mesh);
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
    const std::string oldName = Meshes[mesh].Name;
    Meshes[mesh].Name = newName;
    for (MvmInstance& instance : Instances) {
        if (instance.Mesh == oldName) {
            instance.Name = instance.Mesh = newName;
        }
    }
    // A blank ends a header's name, "=" ends the value that links an instance to it, quotes are dropped, and braces open
    // and close blocks.
    if (newName.find_first_of(" =\"{}") != std::string::npos) {
        LogLine("A model file cannot keep the name \"" + Utf8FromCodePage(newName) +
                "\": it holds a blank, an equals sign, a double quote or a brace.");
        ShowInfoLog();
    }
}

std::string BoneLabel(int16_t bone)
{
    const MvmBone& named = Bones[bone];
    return Utf8FromCodePage(AliasesOn && !named.Alias.empty() ? named.Alias : named.Name);
}

void FillBoneLists()
{
    std::vector<BoneRow> rows[2] = {{{"NONE", 0}}, {{"NONE", 0}}};
    // A bone above the range of an assignment cannot be made active.
    const int32_t last = std::min<int32_t>(BoneCount(), INT16_MAX);
    for (int32_t bone = 1; bone <= last; ++bone) {
        rows[Bones[bone].IsShadow ? 1 : 0].push_back({BoneLabel(static_cast<int16_t>(bone)), bone});
    }
    SetBoneRows(0, rows[0]);
    SetBoneRows(1, rows[1]);
    SetActiveBone(0);
}

void SetActiveBone(int16_t bone)
{
    ActiveBone = bone;
    SelectBoneRow(EditTarget, bone);
    UpdateBoneStatus();
    Redraw(true);
}

void UpdateBoneStatus()
{
    const int32_t count = CountBoneVerts(TargetMesh(), ActiveBone);
    SetPanelText("progress", std::to_string(count) + " verts assigned to bone " + std::to_string(ActiveBone));
}

int32_t CountBoneVerts(int16_t mesh, int16_t bone)
{
    if (!IsValidMesh(mesh)) {
        return 0;
    }
    const Array1<int16_t>& bones = Meshes[mesh].VertexBones;
    return static_cast<int32_t>(std::count(bones.begin(), bones.end(), bone));
}

void ReplaceBone(int16_t mesh, int16_t from, int16_t to)
{
    if (IsValidMesh(mesh)) {
        Array1<int16_t>& bones = Meshes[mesh].VertexBones;
        std::replace(bones.begin(), bones.end(), from, to);
    }
}

void UnassignAll(int16_t mesh)
{
    if (IsValidMesh(mesh)) {
        Array1<int16_t>& bones = Meshes[mesh].VertexBones;
        std::fill(bones.begin(), bones.end(), int16_t{0});
    }
}

void SwapBones(int16_t mesh, int16_t a, int16_t b)
{
    if (!IsValidMesh(mesh)) {
        return;
    }
    for (int16_t& bone : Meshes[mesh].VertexBones) {
        if (bone == a) {
            bone = b;
        } else if (bone == b) {
            bone = a;
        }
    }
}
