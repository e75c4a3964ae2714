// Any bytes as a weights file, by index and by position, against a mesh that the first bytes make.

#include "app/modFrontEnd.h"
#include "app/modMvmDef.h"
#include "memory_file.h"
#include "support/scripted.h"
#include "weights/modWeights.h"

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size)
{
    if (size < 4) {
        return 0;
    }
    scripted::Reset();
    for (int bone = data[0] % 5; bone > 0; --bone) {
        Bones.Add();
    }
    MvmMesh& mesh = Meshes.Add();
    mesh.Name = data[1] % 2 == 0 ? "Beast" : "";
    for (int vertex = data[2] % 40; vertex > 0; --vertex) {
        mesh.Vertices.Add({static_cast<float>(vertex % 5), static_cast<float>(vertex / 5) * 0.001F, 0});
    }
    MakeSkin(1);
    const int mode = 1 + data[3] % 2;
    scripted::AssignModes.push_back(mode);
    scripted::Answers.assign(4, BoxAnswer::Yes);
    LoadWeights(MemoryFile(0, data + 4, size - 4), 1);
    for (const int16_t bone : Meshes[1].VertexBones) {
        if (bone < 0 || bone > BoneCount()) {
            __builtin_trap();
        }
    }
    return 0;
}
