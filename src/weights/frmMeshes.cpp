#include "weights/frmMeshes.h"

#include "app/modMvmDef.h"
#include "platform/modCodePage.h"
#include "weights/frmChooser.h"

int16_t ChooseMesh(int16_t current)
{
    return ChooseRow({"frmMeshes", "Meshes", "lstMeshes"}, MeshCount(), current,
                     [](int16_t mesh) { return Utf8FromCodePage(Meshes[mesh].Name); });
}
