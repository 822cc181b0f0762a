// SPDX-License-Identifier: GPL-3.0-or-later
#include "RealInput.h"
#include "platform/InputTick.h"
#include "platform/LastInput.h"
#include "support/TestMain.h"

#include <QGuiApplication>
#include <QSet>

class LastInputTest : public QObject {
    Q_OBJECT

private slots:
    void steadyTick_data();
    void steadyTick();
    void standsStillWithoutInput();
    void movesOnceForOneInput();
    void seesTheKeyboard();

private:
    /// The ticks seen by polls over that many milliseconds.
    static QSet<quint32> ticksWithin(int duration);
};

QSet<quint32> LastInputTest::ticksWithin(int duration)
{
    QSet<quint32> ticks;
    QElapsedTimer timer;
    timer.start();
    while (timer.elapsed() < duration) {
        ticks.insert(platform::lastInputTick());
        QTest::qWait(20);
    }
    return ticks;
}

void LastInputTest::steadyTick_data()
{
    QTest::addColumn<quint32>("known");
    QTest::addColumn<quint32>("reading");
    QTest::addColumn<quint32>("expected");

    constexpr quint32 day = 24 * 3600 * 1000;
    QTest::newRow("the same") << 1000u << 1000u << 1000u;
    QTest::newRow("read late") << 1000u << 1004u << 1000u;
    QTest::newRow("read early") << 1000u << 996u << 1000u;
    QTest::newRow("next input") << 1000u << 1100u << 1100u;
    QTest::newRow("held up for ten seconds") << 100000u << 90000u << 100000u;
    QTest::newRow("held up across the wrap") << 5000u << quint32(-5000) << 5000u;
    QTest::newRow("read late across the wrap") << quint32(-2) << 2u << quint32(-2);
    QTest::newRow("input after the wrap") << quint32(-2) << 100u << 100u;
    QTest::newRow("input after thirty days") << 1000u << 1000 + 30 * day << 1000 + 30 * day;
}

void LastInputTest::steadyTick()
{
    QFETCH(quint32, known);
    QFETCH(quint32, reading);
    platform::InputTick tick;
    tick.update(known);
    tick.update(reading);
    QTEST(tick.value(), "expected");
}

void LastInputTest::standsStillWithoutInput()
{
    QCOMPARE(ticksWithin(3000).size(), 1);
}

void LastInputTest::movesOnceForOneInput()
{
    const quint32 before = platform::lastInputTick();
    QTest::qWait(200);
    RealInput::movePointer();
    QTRY_VERIFY(platform::lastInputTick() > before);
    QCOMPARE(ticksWithin(1000).size(), 1);
}

void LastInputTest::seesTheKeyboard()
{
    const quint32 before = platform::lastInputTick();
    QTest::qWait(200);
    RealInput::pressKeys(QKeySequence(Qt::Key_X));
    QTRY_VERIFY(platform::lastInputTick() > before);
}

TESSAPORT_TEST_MAIN(LastInputTest, QGuiApplication)
#include "tst_lastinput.moc"
