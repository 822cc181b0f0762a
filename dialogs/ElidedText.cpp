// SPDX-License-Identifier: GPL-3.0-or-later
#include "dialogs/ElidedText.h"

#include <QAbstractItemView>
#include <QStylePainter>

void ElidedLabel::paintEvent(QPaintEvent*)
{
    QStylePainter painter(this);
    const QString shown = fontMetrics().elidedText(text(), Qt::ElideRight, contentsRect().width());
    painter.drawItemText(contentsRect(), int(alignment()), palette(), isEnabled(), shown,
                         foregroundRole());
}

void ElidedComboBox::paintEvent(QPaintEvent*)
{
    QStylePainter painter(this);
    painter.setPen(palette().color(QPalette::Text));
    QStyleOptionComboBox option;
    initStyleOption(&option);
    painter.drawComplexControl(QStyle::CC_ComboBox, option);

    // The style leaves this much behind an icon.
    constexpr int iconGap = 4;
    int room =
        style()
            ->subControlRect(QStyle::CC_ComboBox, &option, QStyle::SC_ComboBoxEditField, this)
            .width();
    if (!option.currentIcon.isNull())
        room -= option.iconSize.width() + iconGap;
    option.currentText =
        option.fontMetrics.elidedText(option.currentText, view()->textElideMode(), room);
    painter.drawControl(QStyle::CE_ComboBoxLabel, option);
}
