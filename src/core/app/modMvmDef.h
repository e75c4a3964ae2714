#pragma once

#include <array>
#include <cstdint>
#include <string>

#include "app/modArray.h"

// The one scene in memory: its records, its globals and the guards around them. Texts are bytes as the model file has
// them (Windows-1252); all coordinates are in view axes (a file triple (a, b, c) is X = a, Y = c, Z = -b).

struct Vec2 {
    float U = 0;
    float V = 0;
};

struct Vec3 {
    float X = 0;
    float Y = 0;
    float Z = 0;
};

/// One joint of the skeleton. LinkBone and MirrorBone are indices into Bones, 0 for none.
struct MvmBone {
    std::string Name{}; ///< its last two characters carry the joint number
    Vec3 Position{};
    Vec3 Rotation{};
    float Ratio = 0;         ///< shown by the bones report; nothing sets it
    std::string ExtraText{}; ///< lines of the bone block that the reader does not know, each with its CR LF
    std::string Alias{};     ///< label shown in place of Name; empty for none
    bool IsShadow = false;
    int16_t LinkBone = 0;
    int16_t MirrorBone = 0;
};

/// Texture is a number into the texture table, 0 for none.
struct MvmMaterial {
    std::string Name{};
    std::string ColorMap{};
    std::string OpacityMap{};
    std::string BumpMap{};
    int16_t Texture = 0;
};

/// An entry of a mesh's own material list. Index is a number into Materials, 0 for none.
struct MvmMeshMaterial {
    std::string Name{};
    int32_t Index = 0;
};

/// A triangle. The numbers are those of the file: 1-based, and not checked against the mesh's arrays.
struct MvmFace {
    std::array<int16_t, 3> Vertex{};
    std::array<int16_t, 3> Normal{};
    std::array<int16_t, 3> TexCoord{};
    int16_t Material = 0; ///< number into MeshMaterials, 0 for none
};

struct MvmMesh {
    std::string Name{};
    Array1<MvmMeshMaterial> MeshMaterials{};
    Array1<Vec3> Vertices{};
    Array1<Vec3> Normals{};
    Array1<Vec2> TexCoords{};
    Array1<MvmFace> Faces{};
    bool IsSkin = false;
    Array1<int16_t> VertexBones{};  ///< the bone of each vertex, 0 for none; covers all vertices while IsSkin is true
    Array1<int16_t> VertexJoints{}; ///< joint number of each vertex as the file gave it; only for a mesh read as a skin

    [[nodiscard]] int32_t MeshMaterialCount() const { return MeshMaterials.Count(); }
    [[nodiscard]] int32_t VertexCount() const { return Vertices.Count(); }
    [[nodiscard]] int32_t NormalCount() const { return Normals.Count(); }
    [[nodiscard]] int32_t TexCoordCount() const { return TexCoords.Count(); }
    [[nodiscard]] int32_t FaceCount() const { return Faces.Count(); }
};

/// A placement of the mesh whose name is Mesh.
struct MvmInstance {
    std::string Name{};
    std::string Mesh{};
    Vec3 Position{};
    Vec3 Rotation{};
    float Scale = 0;
};

/// An entry of the texture table. Its picture lies in OpenGL, where there is a context.
struct MvmTexture {
    uint32_t GLTexture = 0;  ///< name in OpenGL, 0 without a context
    bool HasOpacity = false; ///< an opacity map was merged in: draw with the alpha test
};

inline std::string FormatVersion;
inline Array1<MvmBone> Bones;
inline Array1<MvmMaterial> Materials;
inline Array1<MvmMesh> Meshes;
inline Array1<MvmInstance> Instances;
inline Array1<MvmTexture> Textures; ///< in the order of loading; materials point into it

[[nodiscard]] inline int32_t BoneCount()
{
    return Bones.Count();
}
[[nodiscard]] inline int32_t MaterialCount()
{
    return Materials.Count();
}
[[nodiscard]] inline int32_t MeshCount()
{
    return Meshes.Count();
}
[[nodiscard]] inline int32_t InstanceCount()
{
    return Instances.Count();
}

[[nodiscard]] inline int32_t TextureCount()
{
    return Textures.Count();
}

// Roles: indices into Meshes, 0 for none.
inline int16_t SkinMesh = 0;
inline int16_t ShadowMesh = 0;
inline int16_t HeadMesh = 0;
inline int16_t BodyMesh = 0;
inline int16_t TailMesh = 0;

inline int16_t ActiveBone = 0; ///< the bone that assignments go to, 0 for none
inline float SkinScale = 1;    ///< reciprocal of the skin instance's scale
inline Vec3 SkinOffset;        ///< negated position of the skin's instance
inline bool ModelOpen = false;
inline std::string CurrentFile; ///< path of the open model in the file system's encoding; empty when it has none
inline std::string LastPath;    ///< where the next file chooser starts

// What is edited and how it is shown.
inline int16_t ActiveTab = 0;   ///< 0 "Viewing", 1 "Editing"
inline int16_t EditTarget = 0;  ///< 0 skin, 1 shadow
inline int16_t DisplayMode = 2; ///< 0 normal, 1 shaded, 2 both
inline bool AliasesOn = true;   ///< labels of aliases stand in place of names

/// True when 1 <= index <= MeshCount().
[[nodiscard]] bool IsValidMesh(int32_t index);
/// True when 1 <= index <= BoneCount().
[[nodiscard]] bool IsValidBone(int32_t index);

/// True when 1 <= index <= TextureCount().
[[nodiscard]] bool IsValidTexture(int32_t index);

/// SkinMesh or ShadowMesh, by EditTarget; may be 0 or not valid.
[[nodiscard]] int16_t TargetMesh();

/// True when all three vertex numbers of the face lie inside the mesh's vertices.
[[nodiscard]] bool FaceCornersValid(const MvmMesh& mesh, const MvmFace& face);

/// Empties the texture table and frees its pictures.
void FreeTextures();
/// Forgets bones, materials, meshes, instances and textures. Roles, ActiveBone and the document state are the caller's.
void ClearModel();

/// Makes a valid mesh that is no skin yet a skin with all vertices unassigned. Does nothing to any other.
void MakeSkin(int16_t meshIndex);

/// ClearModel, and the roles, ActiveBone and the document state with it.
void ForgetModel();
