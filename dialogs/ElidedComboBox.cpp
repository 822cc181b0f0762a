// SPDX-License-Identifier: GPL-3.0-or-later
#include "dialogs/ElidedComboBox.h"

#include <QStylePainter>

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
    option.currentText = option.fontMetrics.elidedText(option.currentText, Qt::ElideMiddle, room);
    painter.drawControl(QStyle::CE_ComboBoxLabel, option);
}
