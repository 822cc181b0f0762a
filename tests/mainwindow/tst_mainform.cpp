// SPDX-License-Identifier: GPL-3.0-or-later
#include "Strip.h"

#include "dialogs/TaskForm.h"
#include "res/Resources.h"
#include "support/TestMain.h"

/// The monitor: minutes, reports, and what becomes of it when its task goes.
class MainFormTest : public QObject {
    Q_OBJECT

private slots:
    void initTestCase() { initResources(); }

    void activeMinute()
    {
        Strip strip;
        strip.invoke("setHasActivity"); // before the start: does not count
        strip.play->click();
        strip.invoke("clock", 60);
        strip.slotsPass(9, {1});
        QVERIFY(strip.reports().isEmpty());
        strip.slotsPass(1);
        QCOMPARE(strip.reports(), QList<int>({-1, 1}));
        // The active minute is on disk with the next save.
        const QByteArray saved =
            contentOf(strip.service->dataDir().filePath(QStringLiteral("a@b/session.ini")));
        QVERIFY(saved.contains("todayWorktime=00:01:00\n"));
        QVERIFY(saved.contains("todayActivetime=00:00:00\n"));
        QCOMPARE(strip.session->todayActiveTime(QStringLiteral("1")), QTime(0, 1));
        strip.invoke("clock", 10);
        strip.play->click();
        QCOMPARE(strip.session->displayWorktime(), QTime(0, 1));
        QCOMPARE(strip.session->displayActivetime(), QTime(0, 1));
    }

    void idleMinuteAfterResume()
    {
        Strip strip(true);
        QVERIFY(strip.play->isChecked() && strip.session->active());
        strip.slotsPass(10, {3, 4});
        strip.invoke("clock", 90);
        QCOMPARE(strip.session->displayActivetime(), QTime(0, 1, 30));
        strip.slotsPass(10);
        QCOMPARE(strip.reports(), QList<int>({-1, 0, 2}));
        QCOMPARE(strip.session->displayActivetime(), QTime(0, 1));
        QCOMPARE(strip.session->displayWorktime(), QTime(0, 1, 30));
        // Forced, a minute ends at once, and with a picture.
        QVERIFY(QMetaObject::invokeMethod(strip.form.get(), "sendActivity", Q_ARG(bool, true)));
        QCOMPARE(strip.reports(), QList<int>({-1, -1, 0, 0, 2}));
    }

    void stopInMidMinute()
    {
        Strip strip;
        strip.play->click();
        strip.invoke("clock", 59);
        strip.slotsPass(9, {0});
        strip.play->click();
        QCOMPARE(strip.session->displayWorktime(), QTime(0, 0));
        QCOMPARE(strip.session->displayActivetime(), QTime(0, 0));
        strip.play->click();
        strip.slotsPass(9);
        QVERIFY(strip.reports().isEmpty());
        strip.slotsPass(1);
        QCOMPARE(strip.reports(), QList<int>({-1, 0}));
    }

    void midnight()
    {
        Strip strip(true);
        strip.slotsPass(10, {0});
        strip.invoke("clock", 5);
        strip.session->setWorktimeDate(QDate::currentDate().addDays(-1));
        strip.invoke("clock");
        QCOMPARE(strip.text("lbClock"), QStringLiteral("00:00:00"));
        QCOMPARE(strip.session->todayActiveTime(QStringLiteral("1")), QTime(0, 0));
        strip.invoke("clock");
        QCOMPARE(strip.text("lbClock"), QStringLiteral("00:00:01"));
    }

    void showsItsTask()
    {
        Strip strip;
        QVERIFY(shownNotices().isEmpty());
        QCOMPARE(strip.text("lbTask"), QStringLiteral("Задача 1"));
        strip.session->setTasks({task("1"), task("2", 1)}, teamId);
        strip.session->setTaskID(QStringLiteral("2"));
        QCOMPARE(strip.text("lbTask"), QStringLiteral("Задача 2"));
        QCOMPARE(strip.part("lbTask")->toolTip(), QStringLiteral("Задача 2"));
        QVERIFY(strip.look().contains(QLatin1String(" pbTaskUrgentGrey ")));
        Task blocking = task("2", 1, "1");
        blocking.title = QStringLiteral("<b>Срочно");
        strip.session->setTasks({blocking}, teamId);
        QVERIFY(strip.look().contains(QLatin1String(" pbTaskBlocked ")));
        QVERIFY(strip.part("lbTask")->toolTip().contains(QLatin1String("&lt;b&gt;")));

        // Another user, who has none.
        strip.press("lbTask");
        const auto* const picker = visibleForm<TaskForm>();
        QVERIFY(picker);
        QCOMPARE(picker->selectedTaskId(), QStringLiteral("2"));
        {
            const QSignalBlocker blocker(strip.session);
            strip.session->reset();
            strip.session->load(QStringLiteral("c@d"), QStringLiteral("p"));
            strip.session->setTodayWorktime(QTime(3, 0));
        }
        emit strip.service->loginOk();
        QCOMPARE(strip.text("lbTask"), QStringLiteral("Выбрать задачу"));
        QCOMPARE(picker->selectedTaskId(), QString());
        QCOMPARE(strip.clock(), QStringLiteral("Сегодня: 03:00:00"));
        QVERIFY(strip.look().startsWith(QLatin1String("pbPlay_Disabled ")));
        QVERIFY(strip.look().contains(QLatin1String(" pbTask ")));
    }

    // Whose session was saved as running.
    void anotherUserInMidMinute()
    {
        Strip strip(true);
        strip.slotsPass(9, {0});
        emit strip.service->loginOk();
        QVERIFY(strip.session->active() && strip.play->isChecked());
        strip.slotsPass(9);
        QVERIFY(strip.reports().isEmpty());
        strip.slotsPass(1);
        QCOMPARE(strip.reports(), QList<int>({-1, 0}));
    }

    void noTask()
    {
        // Also when it was saved as running.
        for (const bool wasActive : {false, true}) {
            Strip strip(wasActive, QString());
            QCOMPARE(shownNotices(),
                     QStringList(QStringLiteral("0 Выберите задачу для начала работы.")));
            QCOMPARE(strip.look(),
                     QStringLiteral("pbPlay_Disabled pbAttention_Active_normal "
                                    "trayNotactive_attention pbTask Старт"));
            strip.invoke("on_actionStartStop_triggered");
            strip.invoke("onStartTimerShortcut_activated");
            strip.play->click();
            QVERIFY(!strip.session->active());
            strip.session->setTaskID(QStringLiteral("1"));
            QVERIFY(!strip.session->active() && !strip.play->isChecked());
        }
    }

    void blockingTask()
    {
        Strip strip(true);
        // In another team it rules out nothing.
        const Task blocking = task("9", 0, "1");
        strip.session->setTasks({blocking}, QStringLiteral("18"));
        QVERIFY(strip.session->active());
        strip.session->setTasks({task("1", 1), blocking}, teamId);
        QVERIFY(!strip.session->active() && !strip.play->isChecked());
        QVERIFY(strip.look().contains(QLatin1String(" pbTask ")));
        strip.session->setTaskID(QStringLiteral("1"));
        QVERIFY(strip.session->taskID().isEmpty());
        strip.session->setTaskID(blocking.id);
        QCOMPARE(strip.session->taskID(), blocking.id);
    }

    void closedTask()
    {
        const QString stopped = QStringLiteral("0 Запись активности остановлена!");
        for (const bool isRunning : {true, false}) {
            Strip strip(isRunning);
            strip.session->save(); // from now on changes are told
            strip.session->setTasks({task("1")}, teamId);
            QCOMPARE(strip.session->active(), isRunning);
            strip.session->setTasks({unassignedTask()}, teamId);
            QVERIFY(!strip.session->active() && !strip.play->isCheckable());
            QCOMPARE(shownNotices().contains(stopped), isRunning);
        }
    }

    void pictures()
    {
        Strip strip(true);
        strip.slotsPass(20);
        QCOMPARE(strip.reports().count(-1), 1);
        // Due, but only together with a report; a stop in between loses nothing of it.
        strip.invoke("screenshotTimeout");
        strip.slotsPass(9);
        strip.play->click();
        strip.play->click();
        QCOMPARE(strip.reports().count(-1), 1);
        strip.slotsPass(20);
        QCOMPARE(strip.reports().count(-1), 2);
    }

    void endsForAnUpdateAlone()
    {
        Strip strip;
        UpdateState::instance()->setForceUpdate(true);
        strip.invoke("checkNeedCloseToUpdate");
        QVERIFY(!UpdateState::instance()->forceUpdate());

        QEventLoop loop;
        QTimer::singleShot(0, strip.form.get(), [&] { strip.invoke("on_actionExit_triggered"); });
        QTimer::singleShot(10000, &loop, [&] { loop.exit(1); });
        QCOMPARE(loop.exec(), 0);
    }
};

TESSAPORT_TEST_MAIN(MainFormTest, QApplication)

#include "tst_mainform.moc"
