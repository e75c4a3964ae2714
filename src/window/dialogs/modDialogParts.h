#pragma once

class QDialog;
class QListWidget;
class QPushButton;
class QVBoxLayout;

/// The buttons "OK", the default one, and "Cancel", which rejects the dialog, in a column of their own.
struct OkCancel {
    QPushButton* Ok;
    QVBoxLayout* Column;
};
[[nodiscard]] OkCancel MakeOkCancel(QDialog* dialog);

/// A click with Ctrl takes the mark off the selected row. This puts it back, so that the list shows which row counts.
void KeepRowSelected(QListWidget* list);
