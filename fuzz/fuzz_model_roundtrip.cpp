// Read, write, read, write: the two written texts are equal. Names that the format itself cannot keep are left out.

#include <cmath>
#include <cstdio>

#include "app/modMvmDef.h"
#include "memory_file.h"
#include "model/modMvmRead.h"
#include "model/modMvmWrite.h"
#include "model/modStrings.h"
#include "support/scripted.h"

namespace {

bool KeepsText(const std::string& text)
{
    return text.find_first_of("{}=") == std::string::npos;
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
    if (!LoadMVM(MemoryFile(0, data, size)) || !SceneKeeps()) {
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
