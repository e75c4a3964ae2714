#pragma once

class QWidget;

/// The main window, owner of all dialogs; null before it stands and after it has gone.
inline QWidget* MainWindow = nullptr;

/// Who owns a box that comes up now: the dialog that is open, or the box could come up behind it, else the main window.
[[nodiscard]] QWidget* OwnerOfBoxes();
