// SPDX-License-Identifier: GPL-3.0-or-later
#include "dialogs/AutoScrollLineEdit.h"
#include "dialogs/PlainToolTip.h"
#include "dialogs/ScrollText.h"
#include "support/TestMain.h"

#include <QApplication>
#include <QScrollBar>
#include <QTextDocument>

#include <functional>

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

int advance(const QWidget& widget, const QString& text)
{
    return QFontMetrics(widget.font()).horizontalAdvance(text);
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

using Change = std::function<void(Marquee&)>;

} // namespace

Q_DECLARE_METATYPE(Change)

class ScrollTextTest : public QObject {
    Q_OBJECT

private slots:
    void runsOnlyWhenTooWide()
    {
        const QStringList texts{longText, QStringLiteral("<b><i>текст и теги</i></b>"),
                                longText.repeated(250)};
        for (const QString& text : texts) {
            for (const int missing : {0, 1}) {
                Marquee widget(text);
                widget.setWidth(advance(widget, text) - missing);
                picture(widget);
                tick(widget, restTicks);
                QCOMPARE(moves(widget), missing == 1);
                QCOMPARE(widget.text(), text);
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
        tick(widget, advance(widget, longText + widget.separator()) - 4);
        QCOMPARE(middle(picture(widget)), middle(atRest));
        QVERIFY(moves(widget));
    }

    void edgesAreSoft()
    {
        const QString solid(100, QChar(0x2588));
        Marquee widget(solid);
        Marquee wide(solid, 2 * 171);
        const QImage hard = picture(wide);
        QImage image = picture(widget);
        const auto isOpaqueBy = [&](int column, double opacity) {
            return qAbs(double(ink(image, column)) / ink(hard, column) - opacity) < 0.03;
        };
        // At rest only the right edge is soft.
        for (int step = 1; step <= fade; ++step)
            QVERIFY(isOpaqueBy(171 - step, step * 16 / 255.0));
        QCOMPARE(image.copy(0, 0, 171 - fade, image.height()),
                 hard.copy(0, 0, 171 - fade, image.height()));
        // The left one comes in over the last ticks of the rest, an eighth at a time.
        tick(widget, restTicks - 8);
        QCOMPARE(picture(widget), image);
        for (int eighths = 1; eighths <= 8; ++eighths) {
            tick(widget);
            image = picture(widget);
            for (int step = 3; step <= fade; ++step)
                QVERIFY(isOpaqueBy(step - 1, 1 - (1 - step * 16 / 255.0) * eighths / 8));
        }
        // A narrow one has none.
        for (const int width : {64, 65}) {
            Marquee narrow(solid, width);
            image = picture(narrow);
            QCOMPARE(isOpaqueBy(width - 1, 1), width == 64);
        }
    }

    void restsAgain_data()
    {
        QTest::addColumn<Change>("change");
        QTest::addColumn<bool>("rests");

        const auto row = [](const char* name, bool rests, const Change& change) {
            QTest::newRow(name) << change << rests;
        };
        row("another text", true, [](Marquee& w) { w.setText(longText.toUpper()); });
        row("another separator", true,
            [](Marquee& w) { w.setProperty("separator", QStringLiteral(" * ")); });
        row("still too narrow", false, [](Marquee& w) { w.setWidth(150); });
        row("wide enough for a while", true, [](Marquee& w) {
            w.setWidth(1000);
            picture(w);
            w.setWidth(171);
        });
    }
    void restsAgain()
    {
        QFETCH(Change, change);
        Marquee widget;
        tick(widget, restTicks);
        QVERIFY(moves(widget));
        change(widget);
        const bool rests = !moves(widget);
        QTEST(rests, "rests");
        tick(widget, restTicks - 1);
        QVERIFY(moves(widget));
    }

    void ticksOnlyWhileVisible()
    {
        Marquee widget;
        tick(widget, restTicks);
        QImage last = middle(picture(widget));
        widget.show();
        QTRY_VERIFY(middle(picture(widget)) != last);
        widget.hide();
        last = middle(picture(widget));
        QTest::qWait(200);
        QCOMPARE(middle(picture(widget)), last);
        widget.show();
        QTRY_VERIFY(middle(picture(widget)) != last);
    }

    void standsStillWithoutWidth()
    {
        Marquee widget{QString()};
        widget.setSeparator(QString());
        const QImage empty = picture(widget);
        tick(widget, 3);
        QCOMPARE(picture(widget), empty);
    }

    void followsTheMouseOnlyIfTold()
    {
        const QColor atRest(0x64, 0x64, 0x64);
        for (const bool hoverColour : {true, false}) {
            ScrollText widget(hoverColour);
            const auto colour = [&] { return widget.palette().color(widget.foregroundRole()); };
            QCOMPARE(colour(), atRest);
            QEvent enter(QEvent::Enter);
            QApplication::sendEvent(&widget, &enter);
            QCOMPARE(colour(), hoverColour ? QColor(0, 0, 0) : atRest);
            QEvent leave(QEvent::Leave);
            QApplication::sendEvent(&widget, &leave);
            QCOMPARE(colour(), atRest);
        }
    }

    void slidesAndRests()
    {
        AutoScrollLineEdit widget;
        widget.setFixedSize(100, 40);
        widget.setPlainText(QStringLiteral("одна строка"));
        const QScrollBar* const bar = widget.verticalScrollBar();
        picture(widget);
        tick(widget, 3);
        tick(widget, 3, "border_timer_timeout");
        QCOMPARE(bar->value(), 0);

        widget.setPlainText(longText.repeated(4));
        picture(widget);
        const int end = bar->maximum();
        QVERIFY(end > 10);
        tick(widget, 5);
        QCOMPARE(bar->value(), 0);
        for (int round = 0; round < 2; ++round) {
            for (const bool forward : {true, false}) {
                tick(widget, 1, "border_timer_timeout");
                QCOMPARE(bar->value(), forward ? 1 : end - 1);
                tick(widget, 4);
                QCOMPARE(bar->value(), forward ? 5 : end - 5);
                tick(widget, end);
                QCOMPARE(bar->value(), forward ? end : 0);
            }
        }
    }

    void toolTipIsPlain()
    {
        const QString endless(10000, QLatin1Char('x'));
        for (const QString& text :
             {longText, QStringLiteral("5 < 7 & co"), QStringLiteral("<b>срочно</b> & <img src=x>"),
              QString(longText + QLatin1Char(' ')).repeated(5).trimmed(), endless}) {
            const QString tip = plainToolTip(text);
            QTextDocument reader;
            Qt::mightBeRichText(tip) ? reader.setHtml(tip) : reader.setPlainText(tip);
            QCOMPARE(reader.toPlainText(),
                     text == endless ? text.left(1000) + QChar(0x2026) : text);
        }
        QCOMPARE(plainToolTip(longText), longText);
    }
};

TESSAPORT_TEST_MAIN(ScrollTextTest, QApplication)

#include "tst_scrolltext.moc"
