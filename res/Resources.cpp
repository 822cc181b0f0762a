// SPDX-License-Identifier: GPL-3.0-or-later
#include "res/Resources.h"

#include <QApplication>
#include <QDebug>
#include <QFile>
#include <QFontDatabase>
#include <QPainter>
#include <QPalette>
#include <QResource>
#include <QStyleFactory>
#include <QTranslator>
#include <QtMath>

namespace {

constexpr int fontPixelSize = 12;

QString addFont(const QString& resource)
{
    // Where they lie in the program; by its name, the file would be copied for each use.
    const QResource font(resource);
    const int id = QFontDatabase::addApplicationFontFromData(QByteArray::fromRawData(
        reinterpret_cast<const char*>(font.data()), static_cast<int>(font.size())));
    const QStringList families = QFontDatabase::applicationFontFamilies(id);
    if (families.isEmpty()) {
        qWarning() << "The font" << resource << "can't be loaded";
        return {};
    }
    return families.first();
}

} // namespace

void initResources()
{
    Q_INIT_RESOURCE(resources);
    Q_INIT_RESOURCE(fonts);
    Q_INIT_RESOURCE(translations);
}

void installFonts()
{
    addFont(QStringLiteral(":/fonts/res/fonts/TAHOMABD.TTF"));
    const QString family = addFont(QStringLiteral(":/fonts/res/fonts/TAHOMA.TTF"));
    if (family.isEmpty())
        return;
    QFont font(family);
    font.setPixelSize(fontPixelSize);
    // Its outlines are not made for two colours, which Windows may be set to.
    font.setStyleStrategy(QFont::PreferAntialias);
    QApplication::setFont(font);
}

void installTranslation()
{
    auto* translator = new QTranslator(QCoreApplication::instance());
    if (!translator->load(QStringLiteral(":/translations/qtbase_ru.qm")))
        qWarning("The Russian texts of Qt can't be loaded");
    QCoreApplication::installTranslator(translator);
}

void installPalette()
{
    const QColor panel(0xF5, 0xF3, 0xEE);
    const QColor field(Qt::white);
    const QColor text(0x26, 0x26, 0x26);
    const QColor faint(0x9A, 0x97, 0x91);
    const QColor gold(0xF4, 0xD4, 0x83);
    const QColor link(0x85, 0x68, 0x29);

    QPalette palette(panel);
    for (const QPalette::ColorRole role :
         {QPalette::WindowText, QPalette::Text, QPalette::ButtonText, QPalette::HighlightedText}) {
        palette.setColor(role, text);
        palette.setColor(QPalette::Disabled, role, faint);
    }
    palette.setColor(QPalette::Base, field);
    palette.setColor(QPalette::AlternateBase, panel);
    palette.setColor(QPalette::Highlight, gold);
    palette.setColor(QPalette::PlaceholderText, faint);
    palette.setColor(QPalette::Link, link);
    palette.setColor(QPalette::LinkVisited, link);

    QApplication::setStyle(QStyleFactory::create(QStringLiteral("Fusion")));
    QApplication::setPalette(palette);
}

QPixmap picture(const QString& resource)
{
    if (qApp->devicePixelRatio() > 1) {
        QString twin = resource;
        twin.insert(twin.lastIndexOf(QLatin1Char('.')), QLatin1String("@2x"));
        if (QFile::exists(twin))
            return QPixmap(twin);
    }
    return QPixmap(resource);
}

QImage panelImage(const QString& resource)
{
    return picture(resource).toImage();
}

void paintPanel(QPainter& painter, const QImage& panel)
{
    painter.setRenderHints(QPainter::Antialiasing | QPainter::SmoothPixmapTransform);
    painter.drawImage(QRectF(painter.viewport()), panel, QRectF(panel.rect()));
}

void paintPanel(QPainter& painter, const QImage& panel, QImage& stretched)
{
    const QRect place = painter.viewport();
    const qreal ratio = painter.device()->devicePixelRatioF();
    const QSize pixels(qCeil(place.width() * ratio), qCeil(place.height() * ratio));
    if (pixels == panel.size()) {
        paintPanel(painter, panel);
        return;
    }
    if (stretched.size() != pixels) {
        stretched = QImage(pixels, QImage::Format_ARGB32_Premultiplied);
        stretched.fill(Qt::transparent);
        QPainter stretching(&stretched);
        stretching.scale(ratio, ratio);
        stretching.setRenderHints(QPainter::Antialiasing | QPainter::SmoothPixmapTransform);
        stretching.drawImage(QRectF(place), panel, QRectF(panel.rect()));
    }
    painter.scale(1 / ratio, 1 / ratio);
    painter.drawImage(0, 0, stretched);
}

QImage shortenedPanel(const QImage& panel, int rows, qreal scale)
{
    // The title with the line below it; the corners and the shadow.
    const int head = qRound(40 * scale);
    const int foot = qRound(20 * scale);
    QImage image(panel.width(), rows, QImage::Format_ARGB32_Premultiplied);
    image.fill(Qt::transparent);
    QPainter painter(&image);
    painter.setRenderHint(QPainter::SmoothPixmapTransform);
    const auto draw = [&](int from, int fromRows, int to, int toRows) {
        painter.drawImage(QRect(0, to, image.width(), toRows), panel,
                          QRect(0, from, panel.width(), fromRows));
    };
    draw(0, head, 0, head);
    draw(head, panel.height() - head - foot, head, rows - head - foot);
    draw(panel.height() - foot, foot, rows - foot, foot);
    return image;
}
