#include "dialogs/modDialogParts.h"

#include <QDialog>
#include <QListWidget>
#include <QPushButton>
#include <QVBoxLayout>

OkCancel MakeOkCancel(QDialog* dialog)
{
    auto* ok = new QPushButton(QStringLiteral("OK"));
    ok->setObjectName(QStringLiteral("cmdOK"));
    ok->setDefault(true);
    auto* cancel = new QPushButton(QStringLiteral("Cancel"));
    cancel->setObjectName(QStringLiteral("cmdCancel"));
    QObject::connect(cancel, &QPushButton::clicked, dialog, &QDialog::reject);
    auto* column = new QVBoxLayout;
    column->addWidget(ok);
    column->addWidget(cancel);
    column->addStretch();
    return {ok, column};
}

void KeepRowSelected(QListWidget* list)
{
    QObject::connect(list, &QListWidget::itemSelectionChanged, list, [list] {
        if (QListWidgetItem* row = list->currentItem(); row != nullptr && list->selectedItems().isEmpty()) {
            row->setSelected(true);
        }
    });
}
