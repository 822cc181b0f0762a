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
    for (int i = 0; i < count; ++i) {
        QVERIFY(QMetaObject::invokeMethod(&widget, slot));
    }
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

/// On white, so that a pixel's value tells how much of the ink got through.
void useWhiteGround(QWidget& widget)
{
    QPalette colours = widget.palette();
    colours.setColor(QPalette::Window, Qt::white);
    widget.setPalette(colours);
    widget.setAutoFillBackground(true);
}

/// How dark the columns are, all in all.
int ink(const QImage& image, int from, int to)
{
    int sum = 0;
    for (int x = from; x < to; ++x) {
        for (int y = 0; y < image.height(); ++y) {
            sum += 255 - qGray(image.pixel(x, y));
        }
    }
    return sum;
}

} // namespace

class ScrollTextTest : public QObject {
    Q_OBJECT

private slots:
    void runsOnlyWhenTooWide_data();
    void runsOnlyWhenTooWide();
    void restsThenMovesByPixels_data();
    void restsThenMovesByPixels();
    void edgesAreSoft();
    void narrowHasNoSoftEdges();
    void restsAgain_data();
    void restsAgain();
    void ticksOnlyWhileVisible();
    void standsStillWithoutWidth();
    void followsTheMouseOnlyIfTold_data();
    void followsTheMouseOnlyIfTold();
    void slidesAndRests();
    void toolTipIsPlain_data();
    void toolTipIsPlain();
};

void ScrollTextTest::runsOnlyWhenTooWide_data()
{
    QTest::addColumn<QString>("text");
    QTest::addColumn<int>("missing");
    QTest::addColumn<bool>("runs");

    QTest::newRow("as wide as the text") << longText << 0 << false;
    QTest::newRow("a pixel too narrow") << longText << 1 << true;
    QTest::newRow("markup counts as text")
        << QStringLiteral("<b><i>текст и теги</i></b>") << 1 << true;
    QTest::newRow("ten thousand characters") << longText.repeated(250) << 100 << true;
}

void ScrollTextTest::runsOnlyWhenTooWide()
{
    QFETCH(QString, text);
    QFETCH(int, missing);
    ScrollText widget(false);
    widget.resize(advance(widget, text) - missing, widget.height());
    widget.setText(text);
    tick(widget, restTicks);
    QTEST(moves(widget), "runs");
    QCOMPARE(widget.text(), text);
}

void ScrollTextTest::restsThenMovesByPixels_data()
{
    QTest::addColumn<int>("ticksPastRest");
    QTest::addColumn<int>("shift");

    QTest::newRow("set") << -restTicks << 0;
    QTest::newRow("end of the rest") << 0 << 0;
    QTest::newRow("first pixel") << 1 << 1;
    QTest::newRow("seventh pixel") << 7 << 7;
}

void ScrollTextTest::restsThenMovesByPixels()
{
    QFETCH(int, ticksPastRest);
    QFETCH(int, shift);
    ScrollText widget(false);
    widget.resize(171, widget.height());
    widget.setText(longText);
    const QImage atRest = picture(widget);
    tick(widget, restTicks + ticksPastRest);
    QCOMPARE(middle(picture(widget), -shift), middle(atRest));

    // The loop closes after one text and separator, without another rest.
    tick(widget, advance(widget, longText + widget.separator()) - qMax(0, ticksPastRest));
    if (ticksPastRest >= 0) {
        QCOMPARE(middle(picture(widget)), middle(atRest));
        QVERIFY(moves(widget));
    }
}

void ScrollTextTest::edgesAreSoft()
{
    ScrollText widget(false);
    useWhiteGround(widget);
    widget.setText(QString(100, QChar(0x2588)));
    widget.resize(2 * 171, widget.height());
    const QImage hard = picture(widget);
    widget.resize(171, widget.height());
    QImage image = picture(widget);
    const auto opacity = [&](int column) {
        return double(ink(image, column, column + 1)) / ink(hard, column, column + 1);
    };

    // At rest only the right edge is soft.
    for (int step = 1; step <= fade; ++step) {
        QVERIFY(qAbs(opacity(171 - step) - step * 16 / 255.0) < 0.03);
    }
    QCOMPARE(image.copy(0, 0, 171 - fade, image.height()),
             hard.copy(0, 0, 171 - fade, image.height()));
    // The left one comes in over the last ticks of the rest, an eighth at a time.
    tick(widget, restTicks - 8);
    QCOMPARE(picture(widget), image);
    for (int eighths = 1; eighths <= 8; ++eighths) {
        tick(widget);
        image = picture(widget);
        for (int step = 3; step <= fade; ++step) {
            const double expected = 1 - (1 - step * 16 / 255.0) * eighths / 8;
            QVERIFY(qAbs(opacity(step - 1) - expected) < 0.03);
        }
    }
}

void ScrollTextTest::narrowHasNoSoftEdges()
{
    for (const int width : {64, 65}) {
        ScrollText widget(false);
        useWhiteGround(widget);
        widget.resize(width, widget.height());
        widget.setText(QString(40, QChar(0x2588)));
        tick(widget, restTicks + 5);
        const QImage image = picture(widget);
        const bool soft = ink(image, 0, 4) < ink(image, width / 2, width / 2 + 4);
        QCOMPARE(soft, width > 64);
    }
}

using Change = std::function<void(ScrollText&)>;
Q_DECLARE_METATYPE(Change)

void ScrollTextTest::restsAgain_data()
{
    QTest::addColumn<Change>("change");
    QTest::addColumn<bool>("rests");

    QTest::newRow("another text") << Change([](ScrollText& w) { w.setText(longText.toUpper()); })
                                  << true;
    QTest::newRow("another separator")
        << Change([](ScrollText& w) { w.setProperty("separator", QStringLiteral(" * ")); }) << true;
    QTest::newRow("still too narrow")
        << Change([](ScrollText& w) { w.resize(150, w.height()); }) << false;
    QTest::newRow("wide enough for a while") << Change([](ScrollText& w) {
        w.resize(1000, w.height());
        picture(w);
        w.resize(171, w.height());
    }) << true;
}

void ScrollTextTest::restsAgain()
{
    QFETCH(Change, change);
    ScrollText widget(false);
    widget.resize(171, widget.height());
    widget.setText(longText);
    tick(widget, restTicks);
    QVERIFY(moves(widget));

    change(widget);
    const bool rests = !moves(widget);
    QTEST(rests, "rests");
    tick(widget, restTicks - 1);
    QVERIFY(moves(widget));
}

void ScrollTextTest::ticksOnlyWhileVisible()
{
    ScrollText widget(false);
    widget.resize(171, widget.height());
    widget.setText(longText);
    tick(widget, restTicks);
    QImage last = middle(picture(widget));
    widget.show();
    QTRY_VERIFY(middle(picture(widget)) != last);
    widget.hide();
    last = picture(widget);
    QTest::qWait(200);
    QCOMPARE(picture(widget), last);
    widget.show();
    QTRY_VERIFY(middle(picture(widget)) != middle(last));
}

void ScrollTextTest::standsStillWithoutWidth()
{
    ScrollText widget(false);
    widget.setSeparator(QString());
    widget.resize(171, widget.height());
    const QImage empty = picture(widget);
    tick(widget, 3);
    QCOMPARE(picture(widget), empty);
    widget.setText(longText);
    widget.resize(0, widget.height());
    tick(widget, restTicks + 3);
    QVERIFY(picture(widget).isNull());
}

void ScrollTextTest::followsTheMouseOnlyIfTold_data()
{
    QTest::addColumn<bool>("hoverColour");
    QTest::addColumn<QColor>("underMouse");

    QTest::newRow("follows") << true << QColor(0, 0, 0);
    QTest::newRow("does not") << false << QColor(0x64, 0x64, 0x64);
}

void ScrollTextTest::followsTheMouseOnlyIfTold()
{
    QFETCH(bool, hoverColour);
    QFETCH(QColor, underMouse);
    const QColor atRest(0x64, 0x64, 0x64);
    ScrollText widget(hoverColour);
    const auto colour = [&](QPalette::ColorGroup group) {
        return widget.palette().color(group, widget.foregroundRole());
    };
    QEvent enter(QEvent::Enter);
    QEvent leave(QEvent::Leave);
    for (const auto group : {QPalette::Active, QPalette::Inactive, QPalette::Disabled}) {
        QCOMPARE(colour(group), atRest);
        QApplication::sendEvent(&widget, &enter);
        QCOMPARE(colour(group), underMouse);
        QApplication::sendEvent(&widget, &leave);
        QCOMPARE(colour(group), atRest);
    }
}

void ScrollTextTest::slidesAndRests()
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
        tick(widget, 1, "border_timer_timeout");
        QCOMPARE(bar->value(), 1);
        tick(widget, 4);
        QCOMPARE(bar->value(), 5);
        tick(widget, end);
        QCOMPARE(bar->value(), end);
        tick(widget, 1, "border_timer_timeout");
        QCOMPARE(bar->value(), end - 1);
        tick(widget, 4);
        QCOMPARE(bar->value(), end - 5);
        tick(widget, end);
        QCOMPARE(bar->value(), 0);
    }
}

void ScrollTextTest::toolTipIsPlain_data()
{
    QTest::addColumn<QString>("text");
    QTest::addColumn<QString>("shown");

    const QString markup = QStringLiteral("<b>срочно</b> & <img src=x>");
    const QString wrapping = QString(longText + QLatin1Char(' ')).repeated(5).trimmed();
    QTest::newRow("plain") << longText << longText;
    QTest::newRow("almost markup") << QStringLiteral("5 < 7 & co") << QStringLiteral("5 < 7 & co");
    QTest::newRow("markup") << markup << markup;
    QTest::newRow("long") << wrapping << wrapping;
    QTest::newRow("endless") << QString(10000, QLatin1Char('x'))
                             << QString(1000, QLatin1Char('x')) + QChar(0x2026);
}

void ScrollTextTest::toolTipIsPlain()
{
    QFETCH(QString, text);
    const QString tip = plainToolTip(text);
    QTextDocument reader;
    if (Qt::mightBeRichText(tip)) {
        reader.setHtml(tip);
    } else {
        reader.setPlainText(tip);
    }
    QTEST(reader.toPlainText(), "shown");
}

TESSAPORT_TEST_MAIN(ScrollTextTest, QApplication)

#include "tst_scrolltext.moc"
