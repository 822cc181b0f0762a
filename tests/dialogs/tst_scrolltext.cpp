// SPDX-License-Identifier: GPL-3.0-or-later
#include "dialogs/AutoScrollLineEdit.h"
#include "dialogs/ScrollText.h"
#include "dialogs/TitleText.h"
#include "support/FastClock.h"
#include "support/TestMain.h"

#include <QApplication>
#include <QScrollBar>

namespace {

constexpr int restTicks = 64;
constexpr int fade = 15;

const QString longText = QStringLiteral("Сверстать страницу отчёта для бухгалтерии");

void tick(QWidget& widget, int count = 1, const char* slot = "timer_timeout")
{
    for (int i = 0; i < count; ++i)
        QVERIFY(QMetaObject::invokeMethod(&widget, slot));
}

QImage picture(QWidget& widget)
{
    return widget.grab().toImage().convertToFormat(QImage::Format_ARGB32);
}

/// Where neither edge is soft, also when shifted by a few pixels.
QImage middle(const QImage& image, int shift = 0)
{
    return image.copy(2 * fade + shift, 0, image.width() - 4 * fade, image.height());
}

bool moves(ScrollText& widget)
{
    const QImage before = middle(picture(widget));
    tick(widget);
    return middle(picture(widget)) != before;
}

/// How dark a column is on a white ground.
int ink(const QImage& image, int column)
{
    int sum = 0;
    for (int y = 0; y < image.height(); ++y)
        sum += 255 - qGray(image.pixel(column, y));
    return sum;
}

/// A marquee as wide as the main window's, on white.
struct Marquee : ScrollText {
    explicit Marquee(const QString& text = longText, int width = 171)
        : ScrollText(false)
    {
        QPalette colours = palette();
        colours.setColor(QPalette::Window, Qt::white);
        setPalette(colours);
        setAutoFillBackground(true);
        setWidth(width);
        setText(text);
    }
    void setWidth(int width) { resize(width, height()); }
};

} // namespace

class ScrollTextTest : public QObject {
    Q_OBJECT

private slots:
    void runsOnlyWhenTooWide()
    {
        for (const QString& text : {longText, QStringLiteral("<b><i>текст и теги</i></b>")}) {
            for (const int missing : {0, 1}) {
                Marquee widget(text);
                const int advance = QFontMetrics(widget.font()).horizontalAdvance(text);
                widget.setWidth(advance - missing);
                picture(widget);
                tick(widget, restTicks);
                QCOMPARE(moves(widget), missing == 1);
            }
        }
    }

    void restsThenMovesByPixels()
    {
        Marquee widget;
        const QImage atRest = picture(widget);
        tick(widget, restTicks - 1);
        QCOMPARE(middle(picture(widget)), middle(atRest));
        for (int shift = 0; shift < 5; ++shift) {
            tick(widget);
            QCOMPARE(middle(picture(widget), -shift), middle(atRest));
        }
        // The loop closes after one text and separator, without another rest.
        const QFontMetrics metrics(widget.font());
        tick(widget, metrics.horizontalAdvance(longText + widget.separator()) - 4);
        QCOMPARE(middle(picture(widget)), middle(atRest));
        QVERIFY(moves(widget));
    }

    void edgesAreSoft()
    {
        const QString solid(100, QChar(0x2588));
        Marquee widget(solid);
        Marquee wide(solid, 2 * 171);
        const QImage hard = picture(wide);
        const auto sixteenths = [&](int column) {
            return qRound(255 / 16.0 * ink(picture(widget), column) / ink(hard, column));
        };
        for (int step = 1; step <= fade; ++step)
            QCOMPARE(sixteenths(171 - step), step);
        // The left edge is hard at rest, half soft four ticks before the end of it, then soft.
        QCOMPARE(sixteenths(9), 16);
        tick(widget, restTicks - 4);
        QCOMPARE(sixteenths(9), 13);
        tick(widget, 4);
        QCOMPARE(sixteenths(9), 10);
        // A narrow one has none.
        widget.setWidth(64);
        QCOMPARE(sixteenths(63), 16);
    }

    void restsAgainAfterAChange()
    {
        Marquee widget;
        tick(widget, restTicks);
        widget.setWidth(150);
        QVERIFY(moves(widget));
        widget.setText(longText.toUpper());
        tick(widget, restTicks - 1);
        QVERIFY(!moves(widget));
        QVERIFY(moves(widget));
        // As wide as the text for a while.
        for (const int width : {1000, 171}) {
            widget.setWidth(width);
            picture(widget);
        }
        QVERIFY(!moves(widget));
    }

    /// Twenty pixels a second, after three seconds at rest; the same for a new text.
    void runsByItselfWhileVisible()
    {
        Marquee widget;
        widget.show();
        for (const QString& text : {longText.toUpper(), longText}) {
            widget.setText(text);
            const QImage atRest = picture(widget);
            passTime(3000, 5);
            QCOMPARE(middle(picture(widget)), middle(atRest));
            passTime(500, 5);
            QVERIFY(middle(picture(widget)) != middle(atRest));
        }
        widget.hide();
        const QImage hidden = picture(widget);
        passTime(1000, 5);
        QCOMPARE(picture(widget), hidden);
        // It goes on from there.
        widget.show();
        passTime(500, 5);
        QVERIFY(picture(widget) != hidden);
    }

    /// A title that fits is not even repainted, also when it is shown again.
    void titleTicksOnlyWhenTooWide()
    {
        struct Title : TitleText {
            Title()
                : TitleText(false)
            {
            }
            void paintEvent(QPaintEvent* event) override
            {
                ++paints;
                TitleText::paintEvent(event);
            }
            int paints = 0;
        };
        Title still, moving;
        still.resize(500, 16);
        moving.resize(171, 16);
        for (Title* title : {&still, &moving})
            title->setText(longText);
        for (int showing = 0; showing < 2; ++showing) {
            for (Title* title : {&still, &moving}) {
                title->hide();
                title->show();
            }
            const auto seesMovingPaint = [&](int times) {
                const int last = moving.paints + times;
                return QTest::qWaitFor([&] { return moving.paints >= last; });
            };
            QVERIFY(seesMovingPaint(5));
            still.paints = 0;
            QVERIFY(seesMovingPaint(10));
            QCOMPARE(still.paints, 0);
        }
    }

    void standsStillWithoutWidth()
    {
        Marquee widget{QString()};
        widget.setSeparator(QString());
        const QImage empty = picture(widget);
        tick(widget, 3);
        QCOMPARE(picture(widget), empty);
    }

    void linesStandBehindOneAnother()
    {
        QString lines = longText;
        lines.replace(QLatin1Char(' '), QLatin1Char('\n'));
        for (const int width : {171, 500}) {
            Marquee widget(lines, width), oneLine(longText, width);
            QCOMPARE(picture(widget), picture(oneLine));
            QCOMPARE(widget.text(), lines);
        }
    }

    void followsTheMouseOnlyIfTold()
    {
        const QColor atRest(0x64, 0x64, 0x64);
        for (const bool hoverColour : {true, false}) {
            ScrollText widget(hoverColour);
            const auto colour = [&] { return widget.palette().color(widget.foregroundRole()); };
            for (const QEvent::Type type : {QEvent::Enter, QEvent::Leave}) {
                QEvent event(type);
                QApplication::sendEvent(&widget, &event);
                QCOMPARE(colour(), hoverColour && type == QEvent::Enter ? QColor(0, 0, 0) : atRest);
            }
        }
    }

    /// By itself, twenty steps a second, after a second at either end.
    void slidesInItsTime()
    {
        AutoScrollLineEdit widget;
        widget.setFixedSize(100, 40);
        const QScrollBar* const bar = widget.verticalScrollBar();
        widget.setPlainText(longText.repeated(4));
        picture(widget);
        passTime(900, 5);
        QCOMPARE(bar->value(), 0);
        passTime(700, 5);
        QVERIFY2(bar->value() > 5 && bar->value() < 16, qPrintable(QString::number(bar->value())));
        for (int i = 0; i < 2 * bar->maximum() && bar->value() < bar->maximum(); ++i)
            passTime(50, 5);
        passTime(800, 5);
        QCOMPARE(bar->value(), bar->maximum());
        passTime(700, 5);
        QVERIFY(bar->value() < bar->maximum() - 5);
        QCOMPARE(widget.textInteractionFlags(), Qt::NoTextInteraction);

        AutoScrollLineEdit oneLine;
        oneLine.setFixedSize(100, 40);
        oneLine.setPlainText(QStringLiteral("одна строка"));
        picture(oneLine);
        passTime(3000, 50);
        QCOMPARE(oneLine.verticalScrollBar()->value(), 0);
    }
};

TESSAPORT_TEST_MAIN(ScrollTextTest, QApplication)

#include "tst_scrolltext.moc"
