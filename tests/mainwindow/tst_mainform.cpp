// SPDX-License-Identifier: GPL-3.0-or-later
#include "dialogs/AboutForm.h"
#include "dialogs/PanelFixture.h"
#include "dialogs/TaskListForm.h"
#include "mainwindow/MainForm.h"
#include "mainwindow/TimeText.h"
#include "notifications/NotificationManager.h"
#include "res/Resources.h"
#include "service/TessaPort.h"
#include "support/TestMain.h"
#include "update/UpdateState.h"

#include <QAction>
#include <QApplication>
#include <QJsonDocument>
#include <QLabel>
#include <QListWidget>
#include <QPushButton>
#include <QToolTip>

namespace {

const QString teamId = QStringLiteral("17");

Task task(const QString& id)
{
    Task task;
    task.id = id;
    task.title = QStringLiteral("Задача ") + id;
    return task;
}

/// A strip over a signed-in session with a chosen task, and no service to be reached: every report
/// stays on disk.
struct Strip {
    explicit Strip(bool active = false, const QString& taskId = QStringLiteral("1"))
    {
        NotificationManager::instance()->closeAll();
        QDir(QDir::homePath() + QStringLiteral("/.tessaport")).removeRecursively();
        service = std::make_unique<TessaPort>();
        UpdateState::instance()->init(service.get());
        session = service->session();
        session->load(QStringLiteral("a@b"), QStringLiteral("p"));
        session->setWorktimeDate(QDate::currentDate());
        session->setTeams({{teamId, QStringLiteral("Команда")}});
        session->setTeamID(teamId);
        session->setTasks({task(QStringLiteral("1")), task(QStringLiteral("2")), unassignedTask()},
                          teamId);
        session->setTaskID(taskId);
        session->setActive(active);
        form = std::make_unique<MainForm>(service.get(), nullptr);
        action = form->findChild<QAction*>(QStringLiteral("actionStartStop"));
        play = form->findChild<QPushButton*>(QStringLiteral("pbPlay"));
    }

    void invoke(const char* slot, int count = 1)
    {
        for (int i = 0; i < count; ++i)
            QVERIFY(QMetaObject::invokeMethod(form.get(), slot));
    }

    /// So many slots, with input in those of the given numbers.
    void slotsPass(int count, const QList<int>& withInput = {})
    {
        for (int i = 0; i < count; ++i) {
            if (withInput.contains(i))
                invoke("setHasActivity");
            invoke("sendActivity");
        }
    }

    /// The records on disk, those of minutes by their count of active slots, pictures as -1.
    QList<int> reports() const
    {
        const QDir dir(service->dataDir().filePath(QStringLiteral("a@b/activity")));
        QList<int> result;
        for (const QString& name : dir.entryList({QStringLiteral("json*")}, QDir::Files)) {
            QFile file(dir.filePath(name));
            file.open(QIODevice::ReadOnly);
            const QJsonValue body = QJsonDocument::fromJson(file.readAll())[QLatin1String("body")];
            result.append(body[QLatin1String("active")].toString(QStringLiteral("-1")).toInt());
        }
        std::sort(result.begin(), result.end());
        return result;
    }

    std::unique_ptr<TessaPort> service;
    Session* session = nullptr;
    std::unique_ptr<MainForm> form;
    QAction* action = nullptr;
    QPushButton* play = nullptr;
};

} // namespace

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
        strip.slotsPass(9, {0});
        QVERIFY(strip.reports().isEmpty());
        strip.slotsPass(1);
        QCOMPARE(strip.reports(), QList<int>({-1, 1}));
        QCOMPARE(strip.session->todayActiveTime(QStringLiteral("1")), QTime(0, 1));
        QCOMPARE(strip.session->displayWorktime(), QTime(0, 1));
    }

    void idleMinuteAfterResume()
    {
        Strip strip(true);
        QVERIFY(strip.play->isChecked() && strip.session->active());
        QCOMPARE(strip.action->text(), QStringLiteral("Стоп"));
        strip.slotsPass(10, {3, 4});
        strip.invoke("clock", 90);
        QCOMPARE(strip.session->displayActivetime(), QTime(0, 1, 30));
        strip.slotsPass(10);
        QCOMPARE(strip.reports(), QList<int>({-1, 0, 2}));
        QCOMPARE(strip.session->displayActivetime(), QTime(0, 1));
        QCOMPARE(strip.session->displayWorktime(), QTime(0, 1, 30));
    }

    void toolTipBesideAnotherWindow()
    {
        Strip strip(false, QString());
        strip.form->show();
        QWidget other;
        other.show();
        QVERIFY(QTest::qWaitForWindowActive(&other));
        QTest::mouseMove(strip.play, QPoint(20, 20));
        QTRY_COMPARE(QToolTip::text(), strip.play->toolTip());
        // Not papered with the picture of the button.
        const QWidgetList windows = QApplication::topLevelWidgets();
        const auto tip = std::find_if(windows.begin(), windows.end(), [](const QWidget* window) {
            return window->inherits("QTipLabel");
        });
        const QImage image = (*tip)->grab().toImage();
        QCOMPARE(image.pixel(3, 9), image.pixel(20, 9));
    }

    void stopInMidMinute()
    {
        Strip strip;
        strip.play->click();
        strip.invoke("clock", 59);
        strip.slotsPass(9, {0});
        strip.play->click();
        QCOMPARE(strip.session->displayWorktime(), QTime(0, 0));
        QCOMPARE(strip.action->text(), QStringLiteral("Старт"));
        strip.play->click();
        strip.slotsPass(9);
        QVERIFY(strip.reports().isEmpty());
        strip.slotsPass(1);
        QCOMPARE(strip.reports(), QList<int>({-1, 0}));
    }

    void midnight()
    {
        Strip strip(true);
        const auto* shown = strip.form->findChild<QLabel*>(QStringLiteral("lbClock"));
        strip.slotsPass(10, {0});
        strip.invoke("clock", 5);
        strip.session->setWorktimeDate(QDate::currentDate().addDays(-1));
        strip.invoke("clock");
        QCOMPARE(shown->text(), QStringLiteral("00:00:00"));
        QCOMPARE(strip.session->todayActiveTime(QStringLiteral("1")), QTime(0, 0));
        strip.invoke("clock");
        QCOMPARE(shown->text(), QStringLiteral("00:00:01"));
    }

    void timesFromTheService()
    {
        Strip strip;
        strip.session->setTodayActivetime(QTime(1, 31));
        strip.session->setTodayWorktime(QTime(2, 30));
        emit strip.service->timesUpdated();
        QCOMPARE(strip.form->findChild<QLabel*>(QStringLiteral("lbClock"))->text(),
                 QStringLiteral("02:30:00"));
    }

    void noTask()
    {
        Strip strip(false, QString());
        QVERIFY(strip.play->styleSheet().contains(QLatin1String("pbPlay_Disabled")));
        strip.invoke("on_actionStartStop_triggered");
        strip.play->click();
        QVERIFY(!strip.session->active());
    }

    void blockingTask()
    {
        Strip strip(true);
        // In another team it rules out nothing.
        Task blocking = task(QStringLiteral("9"));
        blocking.block = QStringLiteral("1");
        strip.session->setTasks({blocking}, QStringLiteral("18"));
        QVERIFY(strip.session->active());
        strip.session->setTasks({task(QStringLiteral("1")), blocking}, teamId);
        QVERIFY(!strip.session->active() && !strip.play->isChecked());
        strip.session->setTaskID(QStringLiteral("1"));
        QVERIFY(strip.session->taskID().isEmpty());
        strip.session->setTaskID(blocking.id);
        QCOMPARE(strip.session->taskID(), blocking.id);
    }

    void closedTask()
    {
        Strip strip(true);
        strip.session->save(); // from now on changes are told
        strip.session->setTasks({task(QStringLiteral("1"))}, teamId);
        QVERIFY(strip.session->active());
        strip.session->setTasks({unassignedTask()}, teamId);
        QVERIFY(!strip.session->active() && !strip.play->isCheckable());
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

    void overdueLabels()
    {
        Strip strip;
        auto* label = strip.form->findChild<QLabel*>(QStringLiteral("lbOverdueTime"));
        Task late = task(QStringLiteral("1"));
        late.deadline = QDateTime::currentDateTime().addSecs(60);
        strip.session->setTasks({late, unassignedTask()}, teamId);
        QVERIFY(label->isHidden());
        late.deadline = QDateTime::currentDateTime().addSecs(-2 * 3600 - 5);
        strip.session->setTasks({late, unassignedTask()}, teamId);
        QCOMPARE(label->isHidden() ? QString() : label->text(), QStringLiteral("2ч. "));
        strip.session->setTaskID(QStringLiteral("2")); // has none
        QVERIFY(label->isHidden());
        strip.session->setTaskID(unassignedTaskId);
        QVERIFY(label->isHidden());
    }

    void savedAsRunningWithoutATask()
    {
        Strip strip(true, QString());
        QVERIFY(!strip.session->active());
        QCOMPARE(strip.action->text(), QStringLiteral("Старт"));
        strip.session->setTaskID(QStringLiteral("1"));
        QVERIFY(!strip.session->active() && !strip.play->isChecked());
    }

    void trayClicks()
    {
        Strip strip;
        strip.form->show();
        const auto click = [&](QSystemTrayIcon::ActivationReason reason) {
            QMetaObject::invokeMethod(strip.form.get(), "trayActivated",
                                      Q_ARG(QSystemTrayIcon::ActivationReason, reason));
            return strip.form->isVisible() && !strip.form->isMinimized();
        };
        QVERIFY(!click(QSystemTrayIcon::Trigger));
        QVERIFY(!click(QSystemTrayIcon::DoubleClick)); // of the same two clicks
        QVERIFY(click(QSystemTrayIcon::DoubleClick));
        QVERIFY(!click(QSystemTrayIcon::Trigger));
        QVERIFY(click(QSystemTrayIcon::Trigger));
        QVERIFY(click(QSystemTrayIcon::Context));
    }

    /// Runs on a desktop with a tray and on one without.
    void hidesWithAWayBack()
    {
        const bool hasTray = QSystemTrayIcon::isSystemTrayAvailable();
        Strip strip;
        strip.form->show();
        QTest::mousePress(strip.form->findChild<QLabel*>(QStringLiteral("lbComment")),
                          Qt::LeftButton);
        const auto* list = visibleForm<TaskListForm>();
        QVERIFY(list);
        strip.form->findChild<QPushButton*>(QStringLiteral("pbMinimize"))->click();
        QCOMPARE(strip.form->isVisible(), !hasTray);
        QCOMPARE(strip.form->isMinimized(), !hasTray);
        QVERIFY(!list->isVisible());
        // As the tray's menu does it, and the desktop.
        if (hasTray)
            strip.invoke("on_actionToggleVisible_triggered");
        else
            strip.form->showNormal();
        QVERIFY(strip.form->isVisible() && !strip.form->isMinimized() && list->isVisible());
    }

    void opensItsWindows()
    {
        Strip strip;
        strip.form->show();
        QVERIFY(!visibleForm<TaskListForm>());
        QTest::mousePress(strip.form->findChild<QLabel*>(QStringLiteral("lbComment")),
                          Qt::LeftButton);
        // The only team's, which no change of an index has built.
        auto* list = visibleForm<TaskListForm>();
        QVERIFY(list);
        QCOMPARE(list->findChild<QListWidget*>()->count(), 2);
        QTest::mousePress(strip.form->findChild<QLabel*>(QStringLiteral("lbComment")),
                          Qt::LeftButton);
        QVERIFY(!list->isVisible());

        for (int i = 0; i < 2; ++i) {
            strip.invoke("on_actionAbout_triggered");
            auto* about = visibleForm<AboutForm>();
            QVERIFY(about && !about->isMinimized());
            QCOMPARE(about->findChild<QLabel*>(QStringLiteral("lbUpdateInfo"))->text(),
                     QStringLiteral("Проверка обновления..."));
            about->showMinimized();
        }
    }

    void playButton()
    {
        const QRegularExpression url(QStringLiteral(R"(url\((.*?)\))"));
        QVector<QImage> looks;
        for (const char* state : {"Pause_Online", "Play_Online", "Pause_Offline", "Play_Offline"}) {
            const QString name = QLatin1String(state);
            Strip strip(name.startsWith(QLatin1String("Pause")));
            strip.session->setIsOnline(name.endsWith(QLatin1String("Online")));
            QVERIFY(QMetaObject::invokeMethod(strip.form.get(), "updateOnlineState",
                                              Q_ARG(QString, QString())));
            QStringList pictures;
            auto match = url.globalMatch(strip.play->styleSheet());
            while (match.hasNext()) {
                pictures.append(match.next().captured(1));
                QVERIFY2(QFile::exists(pictures.last()), qPrintable(pictures.last()));
            }
            const QString picture = QStringLiteral(":/images/pb%1_hovered_clicked.png").arg(name);
            QVERIFY2(pictures.contains(picture), state);
            looks.append(strip.play->grab().toImage());
            strip.play->setEnabled(false);
            looks.append(strip.play->grab().toImage());
        }
        for (const QImage& look : qAsConst(looks))
            QCOMPARE(looks.count(look), 1);
    }

    void overdueTexts()
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

    void durationTexts()
    {
        const QPair<QTime, const char*> rows[] = {
            {{0, 0}, "0мин"}, {{0, 59, 59}, "59мин"}, {{1, 0}, "1ч. 0мин"}, {{13, 7}, "13ч. 7мин"}};
        for (const auto& [time, text] : rows)
            QCOMPARE(durationText(time), QString::fromUtf8(text));
    }
};

TESSAPORT_TEST_MAIN(MainFormTest, QApplication)

#include "tst_mainform.moc"
