#include <QDialog>
#include <QHBoxLayout>
#include <QPushButton>
#include <QRadioButton>
#include <QVBoxLayout>

#include "app/modFrontEnd.h"
#include "dialogs/modDialogParts.h"
#include "dialogs/modFit.h"
#include "modOwner.h"

void AskWeightsAssignMode()
{
    WeightsAssignMode = 0;
    QDialog dialog(MainWindow);
    dialog.setObjectName(QStringLiteral("frmWeights"));
    dialog.setWindowTitle(QStringLiteral("Load Weights"));
    dialog.setFont(WindowFont());

    auto* byIndex = new QRadioButton(QStringLiteral("Assign By Index"));
    byIndex->setObjectName(QStringLiteral("optAssignMode0"));
    byIndex->setChecked(true);
    auto* byPosition = new QRadioButton(QStringLiteral("Assign By Position"));
    byPosition->setObjectName(QStringLiteral("optAssignMode1"));

    const OkCancel buttons = MakeOkCancel(&dialog);
    QObject::connect(buttons.Ok, &QPushButton::clicked, &dialog, &QDialog::accept);

    auto* choices = new QVBoxLayout;
    choices->addWidget(byIndex);
    choices->addWidget(byPosition);
    choices->addStretch();
    auto* layout = new QHBoxLayout(&dialog);
    layout->addLayout(choices);
    layout->addSpacing(16);
    layout->addLayout(buttons.Column);
    layout->setSizeConstraint(QLayout::SetFixedSize);
    byIndex->setFocus();

    if (dialog.exec() == QDialog::Accepted) {
        WeightsAssignMode = byPosition->isChecked() ? 2 : 1;
    }
}
