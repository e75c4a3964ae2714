#include "dialogs/frmMeshes.h"

#include "app/modMvmDef.h"
#include "dialogs/frmChooser.h"
#include "modCodePage.h"

int16_t ChooseMesh(int16_t current)
{
    return ChooseRow({"frmMeshes", "Meshes", "lstMeshes"}, MeshCount(), current,
                     [](int16_t mesh) { return Utf8FromCodePage(Meshes[mesh].Name); });
}
