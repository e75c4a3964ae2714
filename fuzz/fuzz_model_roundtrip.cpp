// Read, write, read, write: the two written texts are equal. Names that the format itself cannot keep are left out.

#include <algorithm>
#include <cmath>
#include <cstdio>

#include "app/modMvmDef.h"
#include "memory_file.h"
#include "model/modMvmRead.h"
#include "model/modMvmWrite.h"
#include "model/modNumbers.h"
#include "model/modStrings.h"
#include "support/model_text.h"
#include "support/scripted.h"

namespace {

bool KeepsText(const std::string& text)
{
    return text.find_first_of("{}=") == std::string::npos;
}

/// False for the few floats whose seven digits belong to a float with other digits: powers of ten such as 1E+28.
bool KeepsFloat(float value)
{
    double back = 0;
    float stored = 0;
    const std::string text = FloatToText(value);
    return LeadingNumber(text, &back) && ToFloat(back, &stored) && FloatToText(stored) == text;
}

bool KeepsVec3(const Vec3& v)
{
    return KeepsFloat(v.X) && KeepsFloat(v.Y) && KeepsFloat(v.Z);
}

/// True when every number survives a write and a read.
bool NumbersKeep()
{
    const auto place = [](const auto& record) { return KeepsVec3(record.Position) && KeepsVec3(record.Rotation); };
    return std::all_of(Bones.begin(), Bones.end(), place) && std::all_of(Instances.begin(), Instances.end(), place) &&
           std::all_of(Instances.begin(), Instances.end(), [](const auto& i) { return KeepsFloat(i.Scale); }) &&
           std::all_of(Meshes.begin(), Meshes.end(), [](const MvmMesh& mesh) {
               return std::all_of(mesh.Vertices.begin(), mesh.Vertices.end(), KeepsVec3) &&
                      std::all_of(mesh.Normals.begin(), mesh.Normals.end(), KeepsVec3) &&
                      std::all_of(mesh.TexCoords.begin(), mesh.TexCoords.end(),
                                  [](const Vec2& t) { return KeepsFloat(t.U) && KeepsFloat(t.V); });
           });
}

/// True when every name and path survives a write and a read.
bool SceneKeeps()
{
    for (const MvmMaterial& material : Materials) {
        if (!KeepsText(material.Name) || !KeepsText(material.ColorMap) || !KeepsText(material.OpacityMap) ||
            !KeepsText(material.BumpMap)) {
            return false;
        }
    }
    for (const MvmBone& bone : Bones) {
        const double joint = JointNumber(bone.Name);
        if (!KeepsText(bone.Name) || joint != std::trunc(joint)) {
            return false;
        }
    }
    for (const MvmMesh& mesh : Meshes) {
        if (!KeepsText(mesh.Name)) {
            return false;
        }
        for (const MvmMeshMaterial& material : mesh.MeshMaterials) {
            if (!KeepsText(material.Name)) {
                return false;
            }
        }
    }
    for (const MvmInstance& instance : Instances) {
        if (!KeepsText(instance.Name) || !KeepsText(instance.Mesh)) {
            return false;
        }
    }
    return true;
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size)
{
    scripted::Reset();
    if (!LoadMVM(MemoryFile(0, data, size)) || !SceneKeeps() || !NumbersKeep()) {
        return 0;
    }
    const std::string first = ModelText();
    scripted::Reset();
    if (!LoadMVM(MemoryFile(1, reinterpret_cast<const uint8_t*>(first.data()), first.size()))) {
        std::fputs("a written file does not load\n", stderr);
        __builtin_trap();
    }
    const std::string second = ModelText();
    if (first != second) {
        std::fprintf(stderr, "--- first\n%s\n--- second\n%s\n", first.c_str(), second.c_str());
        __builtin_trap();
    }
    return 0;
}
