// SPDX-License-Identifier: GPL-3.0-or-later
#include "mainwindow/TimeText.h"
#include "support/TestMain.h"

class TimeTextTest : public QObject {
    Q_OBJECT

private slots:
    void overdue()
    {
        const QPair<QDateTime, const char*> rows[] = {
            {{{2020, 5, 15}, {12, 0}}, ""},
            {{{2020, 5, 15}, {11, 59, 30}}, ""},
            {{{2020, 5, 15}, {11, 45}}, "15 мин."},
            {{{2020, 5, 14}, {22, 0}}, "14ч. "},
            {{{2020, 5, 14}, {11, 0}}, "1д. 1ч. "},
            {{{2020, 5, 13}, {12, 1}}, "1д. 23ч. 59 мин."},
            {{{2020, 5, 13}, {8, 45}}, "2д. 3ч. 15 мин."},
            {{{2020, 5, 5}, {12, 0}}, "10д. "}};
        for (const auto& [deadline, text] : rows)
            QCOMPARE(overdueText(deadline, QDateTime({2020, 5, 15}, {12, 0})),
                     QString::fromUtf8(text));
    }

    void duration()
    {
        const QPair<QTime, const char*> rows[] = {
            {{0, 0}, "0мин"}, {{0, 59, 59}, "59мин"}, {{1, 0}, "1ч. 0мин"}, {{13, 7}, "13ч. 7мин"}};
        for (const auto& [time, text] : rows)
            QCOMPARE(durationText(time), QString::fromUtf8(text));
    }
};

TESSAPORT_TEST_MAIN(TimeTextTest, QCoreApplication)

#include "tst_timetext.moc"
