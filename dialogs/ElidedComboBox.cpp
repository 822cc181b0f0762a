// SPDX-License-Identifier: GPL-3.0-or-later
#include "dialogs/ElidedComboBox.h"

#include "dialogs/ShortText.h"

#include <QItemDelegate>
#include <QListView>
#include <QStylePainter>

#include <algorithm>

namespace {

/// Draws as the box would by itself.
class RowDelegate : public QItemDelegate {
public:
    using QItemDelegate::QItemDelegate;

    QSize sizeHint(const QStyleOptionViewItem& option, const QModelIndex& index) const override
    {
        QSize size = QItemDelegate::sizeHint(option, index);
        size.setHeight(std::max(option.fontMetrics.height(), option.decorationSize.height()));
        return size;
    }

protected:
    void drawDisplay(QPainter* painter, const QStyleOptionViewItem& option, const QRect& rect,
                     const QString& text) const override
    {
        QItemDelegate::drawDisplay(painter, option, rect, inOneLine(text));
    }
};

} // namespace

void ElidedComboBox::showPopup()
{
    // With the delegate comes the list, a window of its own, for a box that may never be opened.
    if (!m_hasDelegate) {
        setItemDelegate(new RowDelegate(this));
        // Else each opening measures every row, which takes most of a second for 10,000 tasks.
        qobject_cast<QListView*>(view())->setUniformItemSizes(true);
        m_hasDelegate = true;
    }
    QComboBox::showPopup();
}

void ElidedComboBox::paintEvent(QPaintEvent*)
{
    QStylePainter painter(this);
    painter.setPen(palette().color(QPalette::Text));
    QStyleOptionComboBox option;
    initStyleOption(&option);
    painter.drawComplexControl(QStyle::CC_ComboBox, option);

    // A style sheet leaves this much behind an icon, the style beneath it less.
    constexpr int iconGap = 6;
    int room =
        style()
            ->subControlRect(QStyle::CC_ComboBox, &option, QStyle::SC_ComboBoxEditField, this)
            .width();
    if (!option.currentIcon.isNull())
        room -= option.iconSize.width() + iconGap;
    option.currentText =
        option.fontMetrics.elidedText(inOneLine(option.currentText), Qt::ElideMiddle, room);
    painter.drawControl(QStyle::CE_ComboBoxLabel, option);
}
