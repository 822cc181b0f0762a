// SPDX-License-Identifier: GPL-3.0-or-later
#include "dialogs/ScrollText.h"

#include "dialogs/ShortText.h"

#include <QEvent>
#include <QPainter>
#include <QtMath>

#include <algorithm>

namespace {

constexpr int tickMilliseconds = 50;
constexpr int restTicks = 64;
constexpr int fadeWidth = 15;
constexpr int widestWithoutFade = 64;
constexpr qreal textIndent = 2.0;

const QLatin1String colourAtRest("#646464");
const QLatin1String colourUnderMouse("#000000");

/// How many widths of the widget are drawn at once.
constexpr int pictureWidths = 4;

/// An image of that many logical pixels which keeps every pixel of a scaled screen.
QImage screenImage(const QSize& size, qreal ratio)
{
    return QImage(qCeil(size.width() * ratio), qCeil(size.height() * ratio),
                  QImage::Format_ARGB32_Premultiplied);
}

/// Opaque, but for the columns at either edge, whose alpha rises towards the inside.
void fillFadeMask(QImage& mask, int width, qreal ratio)
{
    mask.fill(0xff000000u);
    if (mask.isNull() || width <= widestWithoutFade)
        return;
    const auto firstLine = reinterpret_cast<QRgb*>(mask.scanLine(0));
    for (int pixel = 0; pixel < mask.width(); ++pixel) {
        const int column = qFloor(pixel / ratio);
        const int step = std::min(column, width - 1 - column) + 1;
        if (step <= fadeWidth)
            firstLine[pixel] = uint(std::max(step, 1)) << 28;
    }
    for (int line = 1; line < mask.height(); ++line)
        std::copy_n(firstLine, mask.width(), reinterpret_cast<QRgb*>(mask.scanLine(line)));
}

qreal leftFadeOpacity(int offset)
{
    if (offset >= 0)
        return 1.0;
    return offset < -7 ? 0.0 : (offset + 8) * 0.125;
}

} // namespace

ScrollText::ScrollText(bool hoverColour, QWidget* parent)
    : QWidget(parent)
    , m_hoverColour(hoverColour)
{
    m_shownText.setTextFormat(Qt::PlainText);
    setFixedHeight(QFontMetrics(font()).height());
    setSeparator(QStringLiteral("   ---   "));
    connect(&m_timer, &QTimer::timeout, this, &ScrollText::timer_timeout);
    m_timer.setInterval(tickMilliseconds);
    installEventFilter(this);
    setTextColour(colourAtRest);
}

QString ScrollText::text() const
{
    return m_text;
}

void ScrollText::setText(QString text)
{
    m_text = text;
    updateShownText();
    update();
}

QString ScrollText::separator() const
{
    return m_separator;
}

void ScrollText::setSeparator(QString separator)
{
    m_separator = separator;
    updateShownText();
    update();
}

bool ScrollText::overflows() const
{
    return m_textWidth > width() - m_margin;
}

void ScrollText::updateShownText()
{
    m_timer.stop();
    const QFontMetrics metrics(font());
    const QString line = inOneLine(m_text);
    m_textWidth = metrics.horizontalAdvance(line);
    m_scrolling = overflows();
    if (m_scrolling) {
        m_offset = -restTicks;
        m_shownText.setText(line + m_separator);
        if (isVisible())
            m_timer.start();
    } else {
        m_shownText.setText(line);
    }
    m_shownText.prepare(QTransform(), font());
    m_shownSize = QSize(metrics.horizontalAdvance(m_shownText.text()), metrics.height());
    m_picture = QImage();
}

void ScrollText::timer_timeout()
{
    // An empty text has no width to take a remainder by.
    if (m_shownSize.width() > 0)
        m_offset = (m_offset + 1) % m_shownSize.width();
    update();
}

void ScrollText::resizeEvent(QResizeEvent*)
{
    m_ratio = devicePixelRatioF();
    m_frame = screenImage(size(), m_ratio);
    m_fadeMask = screenImage(size(), m_ratio);
    fillFadeMask(m_fadeMask, width(), m_ratio);
    m_picture = QImage();
    if (overflows() != m_scrolling)
        updateShownText();
}

void ScrollText::paintEvent(QPaintEvent*)
{
    QPainter painter(this);
    if (!m_scrolling) {
        painter.drawStaticText(m_margin, (height() - m_shownSize.height()) / 2, m_shownText);
        return;
    }
    drawFrame(painter);
    // Pixel by pixel, too, which costs a fraction of an image that may have to be stretched.
    painter.scale(1 / m_ratio, 1 / m_ratio);
    painter.drawImage(0, 0, m_frame);
}

void ScrollText::drawFrame(const QPainter& widgetPainter)
{
    const int offset = std::max(m_offset, 0);
    const bool isInPicture = !m_picture.isNull() && offset >= m_pictureOffset
        && offset < m_pictureOffset + (pictureWidths - 1) * width();
    if (!isInPicture || m_picturePen != widgetPainter.pen()
        || m_pictureFont != widgetPainter.font())
        drawPicture(widgetPainter, offset);

    QPainter painter(&m_frame);
    painter.setCompositionMode(QPainter::CompositionMode_Source);
    const QPoint shown(qRound((offset - m_pictureOffset) * m_ratio), 0);
    painter.drawImage(QPoint(), m_picture, QRect(shown, m_frame.size()));
    painter.setCompositionMode(QPainter::CompositionMode_DestinationIn);
    // The edges are drawn as pieces of the mask: a clip would have to be allocated at each repaint.
    const QSize edge(qCeil(fadeWidth * m_ratio), m_fadeMask.height());
    const QRect rightEdge(QPoint(m_fadeMask.width() - edge.width(), 0), edge);
    const QRect leftEdge(QPoint(0, 0), edge);
    painter.drawImage(rightEdge, m_fadeMask, rightEdge);
    painter.setOpacity(leftFadeOpacity(m_offset));
    painter.drawImage(leftEdge, m_fadeMask, leftEdge);
}

/// The letters cost more than all else, so they are drawn for many steps at once. Not all of them:
/// a title may be of any length.
void ScrollText::drawPicture(const QPainter& widgetPainter, int offset)
{
    const int pictureWidth = pictureWidths * width();
    m_picture = screenImage(QSize(pictureWidth, height()), m_ratio);
    m_picture.fill(0u);
    m_pictureOffset = offset;
    m_picturePen = widgetPainter.pen();
    m_pictureFont = widgetPainter.font();

    QPainter painter(&m_picture);
    painter.scale(m_ratio, m_ratio);
    painter.setPen(m_picturePen);
    painter.setFont(m_pictureFont);
    for (int x = m_margin - offset; x < pictureWidth; x += m_shownSize.width())
        painter.drawStaticText(QPointF(x + textIndent, 0.0), m_shownText);
}

void ScrollText::showEvent(QShowEvent* event)
{
    m_timer.start();
    QWidget::showEvent(event);
}

void ScrollText::hideEvent(QHideEvent* event)
{
    m_timer.stop();
    QWidget::hideEvent(event);
}

bool ScrollText::eventFilter(QObject* object, QEvent* event)
{
    if (object == this && m_hoverColour) {
        if (event->type() == QEvent::Enter) {
            setTextColour(colourUnderMouse);
        } else if (event->type() == QEvent::Leave) {
            setTextColour(colourAtRest);
        }
    }
    return QObject::eventFilter(object, event);
}

void ScrollText::setTextColour(const QColor& colour)
{
    QPalette colours = palette();
    colours.setColor(QPalette::WindowText, colour);
    setPalette(colours);
}
