#include "dialogs/frmMirror.h"

#include <QCheckBox>
#include <QDialog>
#include <QHBoxLayout>
#include <QLabel>
#include <QPushButton>
#include <QRadioButton>
#include <QVBoxLayout>

#include "dialogs/modDialogParts.h"
#include "dialogs/modFit.h"
#include "modCommand.h"
#include "modOwner.h"
#include "weights/modMirror.h"

void ShowMirrorDialog()
{
    QDialog dialog(MainWindow);
    dialog.setObjectName(QStringLiteral("frmMirror"));
    dialog.setWindowTitle(QStringLiteral("Mirror Weights"));
    dialog.setFont(WindowFont());

    auto* leftToRight = new QRadioButton(QStringLiteral("Left To Right"));
    leftToRight->setObjectName(QStringLiteral("optMirror0"));
    leftToRight->setChecked(true);
    auto* rightToLeft = new QRadioButton(QStringLiteral("Right To Left"));
    rightToLeft->setObjectName(QStringLiteral("optMirror1"));
    auto* reassign = new QCheckBox(QStringLiteral("Keep Existing Weights"));
    reassign->setObjectName(QStringLiteral("chkReassign"));
    reassign->setChecked(true);
    auto* unassign = new QCheckBox(QStringLiteral("Un-assign if no match found"));
    unassign->setObjectName(QStringLiteral("chkUnassign"));
    unassign->setEnabled(false);
    QObject::connect(reassign, &QCheckBox::toggled, unassign, &QCheckBox::setDisabled);
    auto* note = new QLabel(QStringLiteral("Note: Mirroring assumes the creature is viewed from the rear."));
    note->setObjectName(QStringLiteral("labMisc"));
    note->setWordWrap(true);

    const OkCancel buttons = MakeOkCancel(&dialog);
    QObject::connect(buttons.Ok, &QPushButton::clicked, &dialog, [&] {
        Perform("MirrorWeights", [&] {
            MirrorWeights({.LeftToRight = leftToRight->isChecked(),
                           .Reassign = reassign->isChecked(),
                           .Unassign = unassign->isChecked()});
        });
        dialog.accept();
    });

    auto* choices = new QVBoxLayout;
    for (QWidget* widget : {static_cast<QWidget*>(leftToRight), static_cast<QWidget*>(rightToLeft),
                            static_cast<QWidget*>(reassign), static_cast<QWidget*>(unassign)}) {
        choices->addWidget(widget);
    }
    auto* upper = new QHBoxLayout;
    upper->addLayout(choices);
    upper->addSpacing(16);
    upper->addLayout(buttons.Column);
    auto* layout = new QVBoxLayout(&dialog);
    layout->addLayout(upper);
    layout->addWidget(note);
    layout->setSizeConstraint(QLayout::SetFixedSize);
    leftToRight->setFocus();
    dialog.exec();
}
