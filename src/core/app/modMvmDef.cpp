#include "app/modMvmDef.h"

#include "app/modFrontEnd.h"
#include "app/modUndo.h"

bool IsValidMesh(int32_t index)
{
    return Meshes.Has(index);
}

bool IsValidBone(int32_t index)
{
    return Bones.Has(index);
}

int16_t TargetMesh()
{
    return EditTarget == 0 ? SkinMesh : ShadowMesh;
}

bool FaceCornersValid(const MvmMesh& mesh, const MvmFace& face)
{
    return mesh.Vertices.Has(face.Vertex[0]) && mesh.Vertices.Has(face.Vertex[1]) && mesh.Vertices.Has(face.Vertex[2]);
}

bool IsValidTexture(int32_t index)
{
    return Textures.Has(index);
}

void FreeTextures()
{
    for (const MvmTexture& texture : Textures) {
        if (texture.GLTexture != 0) {
            DeleteGLTexture(texture.GLTexture);
        }
    }
    Textures.Clear();
}

void ClearModel()
{
    ForgetSteps();
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
    Touch(ScenePart::Assignments, meshIndex);
    MvmMesh& mesh = Meshes[meshIndex];
    mesh.VertexBones.Items.assign(mesh.Vertices.Items.size(), 0);
    mesh.IsSkin = true;
}

void ForgetModel()
{
    ClearModel();
    SkinMesh = ShadowMesh = HeadMesh = BodyMesh = TailMesh = 0;
    ActiveBone = 0;
    ModelOpen = false;
    CurrentFile.clear();
}
