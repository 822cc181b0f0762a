// SPDX-License-Identifier: GPL-3.0-or-later
#include "dialogs/ElidedLabel.h"

#include <QStylePainter>

void ElidedLabel::paintEvent(QPaintEvent*)
{
    QStylePainter painter(this);
    const QString shown = fontMetrics().elidedText(text(), Qt::ElideRight, contentsRect().width());
    painter.drawItemText(contentsRect(), int(alignment()) | Qt::TextSingleLine, palette(),
                         isEnabled(), shown, foregroundRole());
}
