#include <QMouseEvent>
#include <QSignalBlocker>

#include "dialogs/modDialogParts.h"
#include "dialogs/modFit.h"
#include "main/frmMain.h"
#include "modCommand.h"
#include "weights/modEdit.h"

namespace {

/// A drag that ends below the list leaves the current row without selection.
void SelectCurrent(const QListWidget& list)
{
    const QModelIndex current = list.currentIndex();
    if (current.isValid() && !list.selectionModel()->isSelected(current)) {
        list.selectionModel()->select(current, QItemSelectionModel::ClearAndSelect);
    }
}

} // namespace

BoneList::BoneList(QWidget* parent) : QListWidget(parent)
{
    setUniformItemSizes(true);
    KeepRowSelected(this);
}

void BoneList::mousePressEvent(QMouseEvent* event)
{
    const int before = currentRow();
    QListWidget::mousePressEvent(event);
    MainForm()->ListDragging = true;
    if (currentRow() == before) {
        MainForm()->BoneList_Click(this);
    }
}

void BoneList::mouseMoveEvent(QMouseEvent* event)
{
    const int before = currentRow();
    QListWidget::mouseMoveEvent(event);
    SelectCurrent(*this);
    if (MainForm()->ListDragging && currentRow() == before) {
        MainForm()->BoneList_Click(this);
    }
}

void BoneList::mouseReleaseEvent(QMouseEvent* event)
{
    QListWidget::mouseReleaseEvent(event);
    SelectCurrent(*this);
    MainForm()->ListDragging = false;
}

void frmMain::BoneList_Click(const BoneList* list)
{
    if (const QListWidgetItem* item = list->currentItem()) {
        Perform("BoneList", [item] { SetActiveBone(static_cast<int16_t>(item->data(Qt::UserRole).toInt())); });
    }
}

void SetBoneRows(int16_t list, const std::vector<BoneRow>& rows)
{
    const frmMain* window = MainForm();
    if (window == nullptr) {
        return;
    }
    BoneList* widget = window->ListOf(list);
    const QSignalBlocker quiet(widget);
    widget->clear();
    for (const BoneRow& row : rows) {
        auto* item = new QListWidgetItem(RowText(row.Text), widget);
        item->setData(Qt::UserRole, row.Number);
    }
    widget->setCurrentRow(-1);
}

void SelectBoneRow(int16_t list, int32_t number)
{
    const frmMain* window = MainForm();
    if (window == nullptr) {
        return;
    }
    BoneList* widget = window->ListOf(list);
    const QSignalBlocker quiet(widget);
    for (int row = 0; row < widget->count(); row++) {
        if (widget->item(row)->data(Qt::UserRole).toInt() == number) {
            widget->setCurrentRow(row);
            return;
        }
    }
}
