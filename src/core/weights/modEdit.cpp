#include "weights/modEdit.h"

#include <algorithm>
#include <vector>

#include "app/modFrontEnd.h"
#include "app/modMvmDef.h"
#include "app/modUndo.h"
#include "modCodePage.h"

std::string BoneLabel(int16_t bone)
{
    const MvmBone& named = Bones[bone];
    return Utf8FromCodePage(AliasesOn && !named.Alias.empty() ? named.Alias : named.Name);
}

void FillBoneLists()
{
    std::vector<BoneRow> rows[2] = {{{.Text = "NONE"}}, {{.Text = "NONE"}}};
    // A bone above the range of an assignment cannot be made active.
    const int32_t last = std::min<int32_t>(BoneCount(), INT16_MAX);
    for (int32_t bone = 1; bone <= last; ++bone) {
        rows[Bones[bone].IsShadow ? 1 : 0].push_back({.Text = BoneLabel(static_cast<int16_t>(bone)), .Number = bone});
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
        Touch(ScenePart::Assignments, mesh);
        Array1<int16_t>& bones = Meshes[mesh].VertexBones;
        std::replace(bones.begin(), bones.end(), from, to);
    }
}

void UnassignAll(int16_t mesh)
{
    if (IsValidMesh(mesh)) {
        Touch(ScenePart::Assignments, mesh);
        Array1<int16_t>& bones = Meshes[mesh].VertexBones;
        std::fill(bones.begin(), bones.end(), int16_t{0});
    }
}

void SwapBones(int16_t mesh, int16_t a, int16_t b)
{
    if (!IsValidMesh(mesh)) {
        return;
    }
    Touch(ScenePart::Assignments, mesh);
    for (int16_t& bone : Meshes[mesh].VertexBones) {
        if (bone == a) {
            bone = b;
        } else if (bone == b) {
            bone = a;
        }
    }
}
