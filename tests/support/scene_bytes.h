#pragma once

#include <string>
#include <type_traits>

#include "app/modMvmDef.h"

/// All that commands can change in the scene, byte by byte: two scenes are the same when their bytes are.
inline std::string SceneBytes()
{
    std::string bytes;
    const auto put = [&bytes](const auto& value) {
        static_assert(std::is_trivially_copyable_v<std::decay_t<decltype(value)>>);
        bytes.append(reinterpret_cast<const char*>(&value), sizeof(value));
    };
    const auto text = [&](const std::string& value) {
        put(value.size());
        bytes += value;
    };
    for (const MvmMesh& mesh : Meshes) {
        text(mesh.Name);
        put(mesh.IsSkin);
        put(mesh.VertexBones.Count());
        for (const int16_t bone : mesh.VertexBones) {
            put(bone);
        }
        put(mesh.NormalCount());
        for (const Vec3& normal : mesh.Normals) {
            put(normal);
        }
        for (const MvmFace& face : mesh.Faces) {
            put(face);
        }
    }
    for (const MvmInstance& instance : Instances) {
        text(instance.Name);
        text(instance.Mesh);
    }
    for (const MvmBone& bone : Bones) {
        text(bone.Name);
        text(bone.Alias);
        put(bone.LinkBone);
        put(bone.MirrorBone);
    }
    for (const int16_t role : {SkinMesh, ShadowMesh, HeadMesh, BodyMesh, TailMesh}) {
        put(role);
    }
    put(SkinScale);
    put(SkinOffset);
    return bytes;
}
