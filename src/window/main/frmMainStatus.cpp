#include <algorithm>
#include <chrono>
#include <cmath>
#include <cstdlib>

#include <QLabel>
#include <QLineEdit>
#include <QMenu>
#include <QProgressBar>

#include "app/modFrontEnd.h"
#include "main/frmMain.h"
#include "main/frmMainMenu.h"
#include "modEvents.h"

namespace {

using Clock = std::chrono::steady_clock;

int32_t progressMaximum = 1;
Clock::time_point lastPump;
int32_t lastLook = 0; ///< the value at which the clock was read
int32_t lastStep = 0; ///< the value of the last step; 0 before the first one

bool PumpIsDue()
{
    return Clock::now() - lastPump >= std::chrono::microseconds(PumpInterval);
}

void PumpWhenDue()
{
    if (PumpIsDue()) {
        PumpEvents();
        lastPump = Clock::now();
    }
}

} // namespace

void SetPanelText(const std::string& key, const std::string& text)
{
    if (const frmMain* window = MainForm()) {
        window->panels[key == "progress" ? 1 : 0]->setText(QString::fromStdString(text));
    }
}

void ProgressBegin(int32_t maximum)
{
    progressMaximum = std::max(maximum, 1);
    lastPump = Clock::now();
    lastLook = 0;
    lastStep = 0;
    if (frmMain* window = MainForm()) {
        window->BeginBusy();
        window->pgbProgress->setRange(0, progressMaximum);
        window->pgbProgress->setValue(0);
        window->pgbProgress->show();
        window->txtProgress->show();
    }
}

void ProgressStep(int32_t value)
{
    const int32_t held = std::clamp(value, 1, progressMaximum);
    const bool last = held == progressMaximum;
    lastStep = held;
    // Short steps come by the million, so the clock is read some thousand times in an operation at most.
    const bool close = std::abs(held - lastLook) < progressMaximum / 4096;
    if (!last && close) {
        return;
    }
    lastLook = held;
    if (!last && !PumpIsDue()) {
        return;
    }
    if (MainForm() != nullptr) {
        ProgressShow();
        PumpWhenDue();
    }
}

bool ProgressServe()
{
    if (MainForm() != nullptr) {
        PumpWhenDue();
    }
    return !StopRequested;
}

void ProgressShow()
{
    const frmMain* window = MainForm();
    if (window == nullptr || lastStep == 0) {
        return;
    }
    // A bar paints as it takes its value, and the window with it; both wait for the next round of events instead.
    window->pgbProgress->setUpdatesEnabled(false);
    window->pgbProgress->setValue(lastStep);
    window->pgbProgress->setUpdatesEnabled(true);
    const double percent = static_cast<double>(lastStep) / progressMaximum * 100;
    window->txtProgress->setText(QString::number(std::lrint(percent)) + QLatin1Char('%'));
}

void ProgressEnd()
{
    if (frmMain* window = MainForm()) {
        window->pgbProgress->hide();
        window->txtProgress->hide();
        window->EndBusy();
    }
}

void frmMain::BeginBusy()
{
    if (busyDepth++ > 0) {
        return;
    }
    for (const MenuEntry& entry : MenuTable()) {
        if (!entry.WhileBusy && Entry(entry.Name)->isEnabled()) {
            heldEntries.push_back(Entry(entry.Name));
            heldEntries.back()->setEnabled(false);
        }
    }
    if (fraEditing->isAncestorOf(focusWidget())) {
        heldFocus = focusWidget();
    }
    fraEditing->setEnabled(false);
}

void frmMain::EndAllBusy()
{
    if (busyDepth > 0) {
        busyDepth = 1;
        EndBusy();
    }
}

void frmMain::EndBusyDownTo(int depth)
{
    while (busyDepth > depth) {
        EndBusy();
    }
    if (busyDepth == 0) {
        pgbProgress->hide();
        txtProgress->hide();
        if (EndAfterStop()) {
            return;
        }
    }
}

void frmMain::EndBusy()
{
    if (busyDepth == 0 || --busyDepth > 0) {
        return;
    }
    for (QAction* entry : heldEntries) {
        entry->setEnabled(true);
    }
    heldEntries.clear();
    fraEditing->setEnabled(true);
    if (heldFocus != nullptr) {
        heldFocus->setFocus();
        heldFocus = nullptr;
    }
}
