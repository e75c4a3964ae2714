#include "app/modMvmDef.h"

#include "render/modTexture.h"

bool IsValidMesh(int32_t index)
{
    return Meshes.Has(index);
}

bool IsValidBone(int32_t index)
{
    return Bones.Has(index);
}

bool FaceCornersValid(const MvmMesh& mesh, const MvmFace& face)
{
    return mesh.Vertices.Has(face.Vertex[0]) && mesh.Vertices.Has(face.Vertex[1]) && mesh.Vertices.Has(face.Vertex[2]);
}

void ClearModel()
{
    FormatVersion.clear();
    Meshes.Clear();
    Bones.Clear();
    Materials.Clear();
    Instances.Clear();
    FreeTextures();
}

void MakeSkin(int16_t meshIndex)
{
    if (!IsValidMesh(meshIndex) || Meshes[meshIndex].IsSkin) {
        return;
    }
    MvmMesh& mesh = Meshes[meshIndex];
    mesh.IsSkin = true;
    mesh.VertexBones.Items.assign(mesh.Vertices.Items.size(), 0);
}

void ResetScene()
{
    ClearModel();
    SkinMesh = ShadowMesh = HeadMesh = BodyMesh = TailMesh = 0;
    ActiveBone = 0;
    SkinScale = 1;
    SkinOffset = {};
    ModelOpen = false;
    CurrentFile.clear();
    LastPath.clear();
    ActiveTab = 0;
    EditTarget = 0;
    DisplayMode = 2;
}
