// SPDX-License-Identifier: GPL-3.0-or-later
#include "mainwindow/TimeText.h"
#include "support/TestMain.h"

class tst_TimeText : public QObject {
    Q_OBJECT

private slots:
    void overdue_data();
    void overdue();
    void duration_data();
    void duration();
};

void tst_TimeText::overdue_data()
{
    QTest::addColumn<QDateTime>("deadline");
    QTest::addColumn<QString>("text");
    // Seen from noon of the 15th.
    QTest::newRow("now") << QDateTime({2020, 5, 15}, {12, 0}) << QString();
    QTest::newRow("half a minute") << QDateTime({2020, 5, 15}, {11, 59, 30}) << QString();
    QTest::newRow("minutes") << QDateTime({2020, 5, 15}, {11, 45}) << "15 мин.";
    QTest::newRow("25 hours") << QDateTime({2020, 5, 14}, {11, 0}) << "1д. 1ч. ";
    QTest::newRow("two hours over midnight") << QDateTime({2020, 5, 14}, {22, 0}) << "14ч. ";
    QTest::newRow("all three") << QDateTime({2020, 5, 13}, {8, 45}) << "2д. 3ч. 15 мин.";
    QTest::newRow("exact days") << QDateTime({2020, 5, 5}, {12, 0}) << "10д. ";
    QTest::newRow("later in the day") << QDateTime({2020, 5, 13}, {12, 1}) << "1д. 23ч. 59 мин.";
}

void tst_TimeText::overdue()
{
    QFETCH(QDateTime, deadline);
    QTEST(overdueText(deadline, QDateTime({2020, 5, 15}, {12, 0})), "text");
}

void tst_TimeText::duration_data()
{
    QTest::addColumn<QTime>("time");
    QTest::addColumn<QString>("text");
    QTest::newRow("none") << QTime(0, 0) << "0мин";
    QTest::newRow("minutes") << QTime(0, 59, 59) << "59мин";
    QTest::newRow("an hour") << QTime(1, 0) << "1ч. 0мин";
    QTest::newRow("hours") << QTime(13, 7) << "13ч. 7мин";
}

void tst_TimeText::duration()
{
    QFETCH(QTime, time);
    QTEST(durationText(time), "text");
}

TESSAPORT_TEST_MAIN(tst_TimeText, QCoreApplication)

#include "tst_timetext.moc"
