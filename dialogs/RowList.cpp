// SPDX-License-Identifier: GPL-3.0-or-later
#include "dialogs/RowList.h"

#include <QApplication>

QRect RowList::visualRect(const QModelIndex& index) const
{
    const QRect rect = QListWidget::visualRect(index);
    if (!m_isPlacingRows)
        return rect;
    const int page = viewport()->height();
    const QWidget* const row = indexWidget(index);
    // What has no place is hidden. Hidden, a row would give the keyboard to another one, and the
    // list would follow it there.
    return rect.intersects(viewport()->rect().adjusted(0, -page, 0, page))
            || (row && row->isAncestorOf(QApplication::focusWidget()))
        ? rect
        : QRect();
}

void RowList::updateEditorGeometries()
{
    m_isPlacingRows = true;
    QListWidget::updateEditorGeometries();
    m_isPlacingRows = false;
}

void RowList::scrollContentsBy(int dx, int dy)
{
    QListWidget::scrollContentsBy(dx, dy);
    updateEditorGeometries();
}

QWidget* newRow(QListWidget* list)
{
    // Born where it will stand, since a change of parent would style it once more.
    return new QWidget(list->viewport());
}

void setRows(QListWidget* list, int gridHeight, const QVector<QWidget*>& rows)
{
    // A visible list arranges all its rows anew for each one that comes.
    const bool isHidden = list->isHidden();
    list->hide();
    list->clear();
    list->setGridSize(QSize(0, gridHeight));
    for (QWidget* row : rows) {
        const auto item = new QListWidgetItem;
        list->insertItem(list->count(), item);
        list->setItemWidget(item, row);
        // Until the list has a place for it.
        row->hide();
        item->setData(Qt::SizeHintRole, row->sizeHint());
    }
    list->setHidden(isHidden);
}
