// SPDX-License-Identifier: GPL-3.0-or-later
#include "dialogs/ScrollText.h"
#include "support/TestMain.h"

#include <QApplication>
#include <QPainter>

#include <algorithm>
#include <limits>

extern "C" void* __libc_malloc(size_t size);

namespace {

thread_local long allocations = 0;

} // namespace

// Everything that Qt takes from the heap comes by here.
extern "C" void* malloc(size_t size)
{
    ++allocations;
    return __libc_malloc(size);
}

namespace {

/// Does no more than open the two painters without which nothing can be drawn.
class Floor : public QWidget {
    void paintEvent(QPaintEvent*) override
    {
        QPainter painter(this);
        QPainter imagePainter(&m_image);
        imagePainter.setPen(painter.pen());
        imagePainter.setFont(painter.font());
    }

    QImage m_image{171, 16, QImage::Format_ARGB32_Premultiplied};
};

/// The least of several, since a repaint may also fill caches of Qt's.
long allocationsOfRepaint(QWidget& widget, QImage& canvas)
{
    long least = std::numeric_limits<long>::max();
    for (int i = 0; i < 10; ++i) {
        const long before = allocations;
        widget.render(&canvas);
        least = std::min(least, allocations - before);
    }
    return least;
}

} // namespace

class ScrollTextMemoryTest : public QObject {
    Q_OBJECT

private slots:
    void repaintAllocatesNothing()
    {
        ScrollText widget(true);
        widget.resize(171, widget.height());
        widget.setText(QStringLiteral("Сверстать страницу отчёта для бухгалтерии").repeated(20));
        QImage canvas(widget.size(), QImage::Format_ARGB32_Premultiplied);
        Floor floor;
        floor.resize(widget.size());
        floor.show();
        widget.show();
        const long least = allocationsOfRepaint(floor, canvas);
        QVERIFY(least > 0);
        // At rest, while the edge comes in, and running.
        for (const int ticks : {10, 50, 140}) {
            for (int i = 0; i < ticks; ++i)
                QMetaObject::invokeMethod(&widget, "timer_timeout");
            QCOMPARE(allocationsOfRepaint(widget, canvas), least);
        }
    }
};

TESSAPORT_TEST_MAIN(ScrollTextMemoryTest, QApplication)

#include "tst_scrolltextmemory.moc"
