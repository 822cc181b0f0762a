// SPDX-License-Identifier: GPL-3.0-or-later
#include "TextPictures.h"

#include <QBuffer>
#include <QImageReader>
#include <QPainter>
#include <QRegularExpression>
#include <QStyle>
#include <QTextFormat>
#include <QWidget>

#include <algorithm>

namespace {

/// A few bytes may stand for a picture that fills the memory.
constexpr qint64 mostPixels = 32 * 1024 * 1024;
constexpr qreal longestSide = 4096;

/// Empty when the address is another one than "data:".
QByteArray dataOf(const QString& address)
{
    const QByteArray bytes = QByteArray::fromPercentEncoding(address.toUtf8());
    const int comma = bytes.indexOf(',');
    if (comma < 0 || !address.startsWith(QLatin1String("data:"), Qt::CaseInsensitive))
        return {};
    const QByteArray data = bytes.mid(comma + 1);
    return bytes.left(comma).trimmed().endsWith(";base64") ? QByteArray::fromBase64(data) : data;
}

/// Formats that can't name a file in their turn, as a drawing can.
bool isPlainFormat(const QByteArray& format)
{
    static const QByteArray formats[] = {"png", "jpeg", "jpg", "gif", "bmp", "webp"};
    return std::find(std::begin(formats), std::end(formats), format) != std::end(formats);
}

} // namespace

TextPictures::TextPictures(QWidget* widget)
    : QObject(widget)
    , m_widget(widget)
{
}

QString TextPictures::takeFrom(const QString& richText)
{
    static const QRegularExpression source(
        QStringLiteral(R"re(\bsrc\s*=\s*(?|"(data:[^"]*+)"|'(data:[^']*+)'|(data:[^\s>]*+)))re"),
        QRegularExpression::CaseInsensitiveOption);
    m_addresses.clear();
    m_pictures.clear();
    m_pixels = 0;
    QString result;
    int end = 0;
    auto sources = source.globalMatch(richText);
    while (sources.hasNext()) {
        const QRegularExpressionMatch match = sources.next();
        const QString name = QStringLiteral("picture:%1").arg(m_addresses.size());
        m_addresses.insert(name, match.captured(1));
        result += richText.midRef(end, match.capturedStart() - end) + QLatin1String("src=\"") + name
            + QLatin1Char('"');
        end = match.capturedEnd();
    }
    return result + richText.midRef(end);
}

QPixmap TextPictures::picture(const QString& name)
{
    QPixmap& picture = m_pictures[name];
    if (picture.isNull())
        picture = decoded(m_addresses.value(name, name));
    if (picture.isNull())
        picture = m_widget->style()->standardPixmap(QStyle::SP_FileIcon, nullptr, m_widget);
    return picture;
}

QPixmap TextPictures::decoded(const QString& address)
{
    QByteArray data = dataOf(address);
    QBuffer buffer(&data);
    QImageReader reader(&buffer);
    if (data.isEmpty() || !isPlainFormat(reader.format()))
        return {};
    const qint64 pixels = qint64(reader.size().width()) * reader.size().height();
    if (!reader.size().isValid() || m_pixels + pixels > mostPixels)
        return {};
    m_pixels += pixels;
    return QPixmap::fromImageReader(&reader);
}

QSizeF TextPictures::intrinsicSize(QTextDocument*, int, const QTextFormat& format)
{
    const QTextImageFormat image = format.toImageFormat();
    const QPixmap pixmap = picture(image.name());
    QSizeF size = QSizeF(pixmap.size()) / pixmap.devicePixelRatio();
    // A side that is not told is 0, and follows the other one.
    if (image.width() > 0 && image.height() > 0)
        size = QSizeF(image.width(), image.height());
    else if (image.width() > 0)
        size *= image.width() / size.width();
    else if (image.height() > 0)
        size *= image.height() / size.height();
    return size.boundedTo(QSizeF(longestSide, longestSide));
}

void TextPictures::drawObject(QPainter* painter, const QRectF& rect, QTextDocument*, int,
                              const QTextFormat& format)
{
    const QPixmap pixmap = picture(format.toImageFormat().name());
    painter->save();
    painter->setRenderHint(QPainter::SmoothPixmapTransform);
    painter->drawPixmap(rect, pixmap, pixmap.rect());
    painter->restore();
}
