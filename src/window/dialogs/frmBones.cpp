#include "dialogs/frmBones.h"

#include "app/modMvmDef.h"
#include "dialogs/frmChooser.h"
#include "weights/modEdit.h"

int16_t ChooseBone(int16_t current)
{
    return ChooseRow({"frmBones", "Bones", "lstBones"}, BoneCount(), current, BoneLabel);
}
