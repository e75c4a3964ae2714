#include "dialogs/frmChooser.h"

#include <algorithm>
#include <limits>

#include <QDialog>
#include <QHBoxLayout>
#include <QListWidget>
#include <QPushButton>
#include <QVBoxLayout>

#include "dialogs/modDialogParts.h"
#include "dialogs/modFit.h"
#include "modOwner.h"

int16_t ChooseRow(const ChooserNames& names, int32_t count, int16_t current,
                  const std::function<std::string(int16_t)>& label)
{
    QDialog dialog(MainWindow);
    dialog.setObjectName(QLatin1String(names.Dialog));
    dialog.setWindowTitle(QLatin1String(names.Caption));
    dialog.setFont(WindowFont());

    auto* list = new QListWidget;
    list->setObjectName(QLatin1String(names.List));
    list->setAccessibleName(QLatin1String(names.Caption));
    list->setUniformItemSizes(true);
    list->setMinimumSize(180, 200);
    KeepRowSelected(list);
    QStringList rows{QStringLiteral("NONE")};
    const int32_t last = std::min<int32_t>(count, std::numeric_limits<int16_t>::max());
    for (int32_t row = 1; row <= last; ++row) {
        rows += RowText(label(static_cast<int16_t>(row)));
    }
    list->addItems(rows);
    list->setCurrentRow(current >= 0 && current <= last ? current : 0);

    const OkCancel buttons = MakeOkCancel(&dialog);
    QObject::connect(buttons.Ok, &QPushButton::clicked, &dialog, &QDialog::accept);
    auto* layout = new QHBoxLayout(&dialog);
    layout->addWidget(list, 1);
    layout->addLayout(buttons.Column);
    list->setFocus();

    if (dialog.exec() != QDialog::Accepted) {
        return -1;
    }
    return static_cast<int16_t>(list->currentRow());
}
