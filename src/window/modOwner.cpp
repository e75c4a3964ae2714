#include "modOwner.h"

#include <QApplication>

QWidget* OwnerOfBoxes()
{
    QWidget* dialog = QApplication::activeModalWidget();
    return dialog != nullptr ? dialog : MainWindow;
}
