// SPDX-License-Identifier: GPL-3.0-or-later
#include "dialogs/RowList.h"

#include <QApplication>
#include <QLayout>

namespace {

/// Where the rows of the list stand. To style it later would style all rows with it.
QWidget* styledViewport(const QListWidget* list)
{
    list->ensurePolished();
    return list->viewport();
}

} // namespace

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

// Born where it will stand, since a change of parent would style it once more.
Row::Row(QListWidget* list)
    : QWidget(styledViewport(list))
{
    hide();
}

void Row::setVisible(bool visible)
{
    // To become one of the list's shows a row, which styles and arranges what is in it, far from
    // the part in view, too.
    QWidget::setVisible(visible && m_isInList);
}

bool Row::event(QEvent* event)
{
    return isStyledTooSoon(event) || QWidget::event(event);
}

void Row::childEvent(QChildEvent* event)
{
    if (event->added())
        event->child()->installEventFilter(this);
}

bool Row::eventFilter(QObject*, QEvent* event)
{
    return isStyledTooSoon(event);
}

bool Row::isStyledTooSoon(const QEvent* event) const
{
    // Each widget asks for it as soon as it is there.
    return event->type() == QEvent::PolishRequest && isHidden();
}

void setRows(QListWidget* list, int gridHeight, const QVector<Row*>& rows)
{
    // A visible list arranges all its rows anew for each one that comes.
    const bool isHidden = list->isHidden();
    list->hide();
    list->clear();
    list->setGridSize(QSize(0, gridHeight));
    for (Row* row : rows) {
        const auto item = new QListWidgetItem;
        list->insertItem(list->count(), item);
        list->setItemWidget(item, row);
        row->m_isInList = true;
        item->setData(Qt::SizeHintRole, row->layout()->sizeHint());
    }
    list->setHidden(isHidden);
}
