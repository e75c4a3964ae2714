// Any bytes as a model file: a load or a message, and a scene that can be written, counted and reported afterwards.

#include "app/modMvmDef.h"
#include "dialogs/modReports.h"
#include "memory_file.h"
#include "model/modMvmRead.h"
#include "model/modMvmWrite.h"
#include "support/model_text.h"
#include "support/scripted.h"
#include "weights/modEdit.h"
#include "weights/modMvmXTools.h"

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size)
{
    scripted::Reset();
    if (!LoadMVM(MemoryFile(0, data, size)) && scripted::Messages.empty()) {
        __builtin_trap();
    }
    (void)ModelText();
    FillBoneLists();
    UpdateBoneStatus();
    ReportMeshes();
    ReportMaterials();
    ReportInstances();
    ReportBones();
    for (int16_t mesh = 1; mesh <= MeshCount() && mesh <= 4; ++mesh) {
        if (Meshes[mesh].VertexCount() <= 2000 && Meshes[mesh].FaceCount() <= 2000) {
            RegenerateNormals(mesh);
        }
    }
    (void)ModelText();
    return 0;
}
