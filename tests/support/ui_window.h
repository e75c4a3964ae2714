#pragma once

#include <memory>
#include <string>

#include "app/modFrontEnd.h"
#include "app/modMvmDef.h"
#include "dialogs/frmLog.h"
#include "main/frmMain.h"
#include "main/frmMainMenu.h"
#include "main/modApp.h"
#include "modCamera.h"
#include "modDrag.h"
#include "modEvents.h"
#include "modFiles.h"
#include "modViewFlags.h"
#include "support/temp_folder.h"
#include "support/ui_script.h"

/// The real main window on a scene as at the program's start, with a folder of its own for files. Ends the program's
/// way.
class UiWindow : QObject {
public:
    /// Takes a command line, or the text of a model, which it opens as a.mvm of the folder.
    explicit UiWindow(const std::string& model = {});
    ~UiWindow() override;

    frmMain* operator->() const { return window.get(); }
    frmMain& operator*() const { return *window; }
    /// Starts a command by its widget: an entry or a button by its name, "tab 1", "row 2" in the visible list of bones,
    /// "key C" or "wheel 120" on the view or on a widget that is named behind it, "press left 10,10", "move 20,20" and
    /// "release left 20,20" in the view. The dialogs that it opens must be those of the script.
    void Do(const std::string& trigger, std::deque<Step> dialogs = {}) const;
    /// Shows the tab "Editing" with the bone in this row of the visible list chosen.
    void Edit(int row) const;
    /// Presses, moves and releases a button in the view.
    void Drag(QPoint from, QPoint to, Qt::MouseButton button = Qt::LeftButton) const;
    /// Turns the wheel over a widget, as if from the window system: only such events travel on to the parents.
    static void Wheel(QWidget* widget, int distance);
    /// Whether the view is painted anew because of what `act` does. Waits longer for what it should see.
    bool Paints(const std::function<void()>& act, bool expected = true);

    TempFolder Folder;
    int Frames = 0; ///< pictures that the view has painted since the last call of Paints

protected:
    bool eventFilter(QObject* watched, QEvent* event) override;

private:
    std::unique_ptr<frmMain> window;
};

inline const std::string Question = "! Any changes to open files will be lost.|Continue? > ";

/// The text of the Info Log, null while there is none.
[[nodiscard]] QPlainTextEdit* LogField();

/// Five bones with joints, of which two for shadows, a skin "Body" of four vertices, the first of bone 1, a shadow of
/// two, a mesh "Plain" that is no skin and has no instance, and a material whose texture is missing.
[[nodiscard]] std::string SmallModel();
/// A model with a flat skin of side * side vertices, 0.15 from one to the next, and five bones. No vertex has a bone.
[[nodiscard]] std::string BoardModel(int side);
