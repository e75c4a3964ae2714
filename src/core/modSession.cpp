#include "modSession.h"

#include "app/modFrontEnd.h"
#include "app/modMvmDef.h"
#include "weights/modBoneAlias.h"
#include "weights/modMirror.h"

void ResetSession()
{
    ForgetModel();
    SkinScale = 1;
    SkinOffset = {};
    LastPath.clear();
    ActiveTab = EditTarget = 0;
    DisplayMode = 2;
    FreeAliases();
    AliasesOn = true;
    MirrorVertexThreshold = MirrorBoneThreshold = DefaultThreshold;
    StopRequested = LogDirty = false;
}
