// SPDX-License-Identifier: GPL-3.0-or-later
#include "app/Application.h"
#include "capture/DesktopGrab.h"
#include "support/TestMain.h"

#include <QPainter>
#include <QScreen>
#include <QWidget>

#include <algorithm>

namespace {

/// A monitor that is red at its first pixel, blue at its last one, and white between.
MonitorPicture monitor(const QRect& place)
{
    QImage picture(place.size(), QImage::Format_RGB32);
    picture.fill(Qt::white);
    picture.setPixelColor(0, 0, Qt::red);
    picture.setPixelColor(picture.width() - 1, picture.height() - 1, Qt::blue);
    return {place.topLeft(), picture};
}

/// A window that is red at its first unit and blue at its last.
class MarkedWindow : public QWidget {
protected:
    void paintEvent(QPaintEvent*) override
    {
        QPainter painter(this);
        painter.fillRect(rect(), Qt::white);
        painter.fillRect(0, 0, 1, 1, Qt::red);
        painter.fillRect(width() - 1, height() - 1, 1, 1, Qt::blue);
    }
};

} // namespace

class DesktopGrabTest : public QObject {
    Q_OBJECT

private slots:
    void monitorsInTheirPlaces()
    {
        // On all sides, of odd sizes, with gaps between.
        const QVector<QRect> monitors{
            {0, 0, 1920, 1080}, {-1281, -3, 1281, 801}, {1920, 500, 1367, 767}, {7, 1080, 333, 55}};
        QVector<MonitorPicture> pictures;
        QRect desktop;
        for (const QRect& place : monitors) {
            pictures << monitor(place);
            desktop |= place;
        }
        const QImage picture = assembledDesktop(pictures);
        QCOMPARE(picture.size(), desktop.size());
        int covered = 0;
        for (const QRect& place : monitors) {
            const QRect inside = place.translated(-desktop.topLeft());
            QCOMPARE(picture.pixelColor(inside.topLeft()), QColor(Qt::red));
            QCOMPARE(picture.pixelColor(inside.bottomRight()), QColor(Qt::blue));
            covered += place.width() * place.height();
        }
        // What is left of the desktop is black, and nothing else is.
        int black = 0;
        for (int y = 0; y < picture.height(); ++y) {
            const auto line = reinterpret_cast<const QRgb*>(picture.constScanLine(y));
            black += int(std::count(line, line + picture.width(), qRgb(0, 0, 0)));
        }
        QCOMPARE(black, picture.width() * picture.height() - covered);
    }

    void oneOrNone()
    {
        const MonitorPicture only = monitor({100, 50, 641, 481});
        QCOMPARE(assembledDesktop({only}).cacheKey(), only.picture.cacheKey());
        QVERIFY(assembledDesktop({}).isNull());
    }

    /// To the last pixel, however the desktop is scaled.
    void theScreenAsItIs()
    {
        const QScreen* const screen = QGuiApplication::primaryScreen();
        const qreal ratio = screen->devicePixelRatio();
        const QRect place(100, 90, 61, 47);
        MarkedWindow window;
        window.setWindowFlags(Qt::Window | Qt::FramelessWindowHint | Qt::WindowStaysOnTopHint);
        window.setGeometry(place);
        window.show();
        const auto pixel = [](QPointF at) { return grabDesktop().pixelColor(at.toPoint()); };
        QTRY_COMPARE(pixel(QPointF(place.topLeft()) * ratio), QColor(Qt::red));
        const QPointF end(place.right() + 1, place.bottom() + 1);
        QCOMPARE(pixel(end * ratio - QPointF(1, 1)), QColor(Qt::blue));

        const QImage picture = grabDesktop();
        const QByteArray size = qgetenv("DESKTOP_SIZE");
        if (!size.isEmpty())
            QCOMPARE(QByteArray::number(picture.width()) + 'x'
                         + QByteArray::number(picture.height()),
                     size);
        QCOMPARE(picture.devicePixelRatio(), 1.0);
    }
};

TESSAPORT_TEST_MAIN(DesktopGrabTest, Application)

#include "tst_desktopgrab.moc"
