#pragma once

class QWidget;

/// The main window, owner of all boxes and dialogs; null before it stands and after it has gone.
inline QWidget* MainWindow = nullptr;
