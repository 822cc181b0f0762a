// SPDX-License-Identifier: GPL-3.0-or-later
#include "RowList.h"

#include <QListWidget>

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
        item->setData(Qt::SizeHintRole, row->sizeHint());
    }
    list->setHidden(isHidden);
}
