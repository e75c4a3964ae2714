#pragma once

#include <memory>
#include <string>

#include "main/frmMain.h"
#include "support/temp_folder.h"
#include "ui/dialog_steps.h"

/// The real main window on a scene as at the program's start, with a folder of its own for files. Ends the program's way.
class UiWindow {
public:
    explicit UiWindow(const std::string& commandLine = {});
    ~UiWindow();
    UiWindow(const UiWindow&) = delete;
    UiWindow& operator=(const UiWindow&) = delete;

    frmMain* operator->() const { return window.get(); }
    frmMain& operator*() const { return *window; }
    /// Shows the tab "Editing" with the bone in this row of the visible list chosen.
    void Edit(int row) const;
    /// Presses, moves and releases the left button in the view.
    void Drag(QPoint from, QPoint to, Qt::MouseButton button = Qt::LeftButton) const;

private:
    std::unique_ptr<frmMain> window;
};

/// A model with a round skin "Body" of (rings + 1) * rings vertices and radius 0.5, a smaller shadow "$Shadow", five
/// ordinary bones with the joint numbers 1 to 5 and three shadow bones. No vertex has a bone.
[[nodiscard]] std::string BallModel(int rings);

/// A step that checks the text of a message box and presses one of its buttons.
[[nodiscard]] DialogSteps::Step Box(const std::string& text, int button);
/// A step that types a path into a file chooser and accepts it.
[[nodiscard]] DialogSteps::Step Choose(const std::string& path);
/// A step that takes the row of a chooser of bones or meshes.
[[nodiscard]] DialogSteps::Step Row(const char* list, int row);
