// SPDX-License-Identifier: GPL-3.0-or-later
#include "dialogs/ElidedLabel.h"

#include "dialogs/ShortText.h"

#include <QStylePainter>

namespace {

/// In characters; no label has room for more.
constexpr int longestText = 1000;

} // namespace

QString ElidedLabel::shownText(int room) const
{
    const QFontMetrics metrics = fontMetrics();
    const QString end = text().right(m_keptEnd);
    const QString start = shortText(text().chopped(end.size()), longestText);
    if (end.isEmpty() || metrics.horizontalAdvance(start + end) <= room)
        return metrics.elidedText(start + end, Qt::ElideRight, room);
    return metrics.elidedText(start, Qt::ElideRight, room - metrics.horizontalAdvance(end)) + end;
}

QSize ElidedLabel::sizeHint() const
{
    return minimumSize() == maximumSize() ? minimumSize() : QLabel::sizeHint();
}

QSize ElidedLabel::minimumSizeHint() const
{
    return minimumSize() == maximumSize() ? minimumSize() : QLabel::minimumSizeHint();
}

void ElidedLabel::paintEvent(QPaintEvent*)
{
    QStylePainter painter(this);
    painter.drawItemText(contentsRect(), int(alignment()) | Qt::TextSingleLine, palette(),
                         isEnabled(), shownText(contentsRect().width()), foregroundRole());
}
