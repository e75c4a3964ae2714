#include "modCommand.h"

#include <cstdio>
#include <string>

#include "app/modFrontEnd.h"
#include "app/modGuard.h"
#include "app/modMvmDef.h"
#include "main/frmMain.h"
#include "weights/modEdit.h"

int BusyDepth()
{
    const frmMain* window = MainForm();
    return window == nullptr ? 0 : window->BusyDepth();
}

void EndFailedCommand(const char* name, const std::exception& failure, int busyDepth) noexcept
{
    try {
        if (frmMain* window = MainForm()) {
            window->EndBusyDownTo(busyDepth);
        }
        ShowMessage(BoxIcon::Stop, "Runtime error in " + std::string(name) + "\n" + WordsOf(failure));
        if (LogDirty) {
            ShowInfoLog();
        }
        if (MainForm() != nullptr) {
            const int16_t bone = ActiveBone;
            FillBoneLists();
            SetActiveBone(bone);
        }
    } catch (const std::exception& again) {
        std::fprintf(stderr, "beastwright: %s failed: %s\n", name, again.what());
    }
}
