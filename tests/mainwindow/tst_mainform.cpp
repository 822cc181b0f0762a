// SPDX-License-Identifier: GPL-3.0-or-later
#include "dialogs/ScrollText.h"
#include "mainwindow/MainForm.h"
#include "notifications/NotificationManager.h"
#include "res/Resources.h"
#include "service/JsonCodec.h"
#include "service/TessaPort.h"
#include "support/TestMain.h"
#include "update/UpdateState.h"

#include <QAction>
#include <QApplication>
#include <QLabel>
#include <QPushButton>

class tst_MainForm : public QObject {
    Q_OBJECT

private slots:
    void initTestCase() { initResources(); }
    void activeMinute();
    void idleMinute();
    void stopInMidMinute();
    void midnight();
    void resume();
    void noTask();
    void blockingTask();
    void closedTask();
    void pictures();
    void overdueLabels();
    void playButton_data();
    void playButton();
};

namespace {

const QString teamId = QStringLiteral("17");

Task task(const QString& id, const QString& block = {})
{
    Task task;
    task.id = id;
    task.title = QStringLiteral("Задача ") + id;
    task.block = block;
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
        session->setTeamID(teamId);
        session->setTasks({task(QStringLiteral("1")), task(QStringLiteral("2")), unassignedTask()},
                          teamId);
        session->setTaskID(taskId);
        session->setActive(active);
        form = std::make_unique<MainForm>(service.get(), nullptr);
        play = form->findChild<QPushButton*>(QStringLiteral("pbPlay"));
    }

    void invoke(const char* slot) { QVERIFY(QMetaObject::invokeMethod(form.get(), slot)); }

    /// So many slots, with input in those of the given numbers.
    void slotsPass(int count, const QList<int>& withInput = {})
    {
        for (int i = 0; i < count; ++i) {
            if (withInput.contains(i))
                invoke("setHasActivity");
            invoke("sendActivity");
        }
    }

    void seconds(int count)
    {
        for (int i = 0; i < count; ++i)
            invoke("clock");
    }

    /// The records on disk, those of minutes by their count of active slots, pictures as -1.
    QList<int> reports() const
    {
        const QDir dir(service->dataDir().filePath(QStringLiteral("a@b/activity")));
        QList<int> result;
        for (const QString& name : dir.entryList({QStringLiteral("json*")}, QDir::Files)) {
            QFile file(dir.filePath(name));
            file.open(QIODevice::ReadOnly);
            const QVariantMap body = JsonCodec::parse(QString::fromUtf8(file.readAll()))
                                         .toMap()[QStringLiteral("body")]
                                         .toMap();
            result.append(body.value(QStringLiteral("active"), -1).toInt());
        }
        std::sort(result.begin(), result.end());
        return result;
    }

    QString text(const char* label) const
    {
        return form->findChild<QLabel*>(QLatin1String(label))->text();
    }

    QString actionText() const
    {
        return form->findChild<QAction*>(QStringLiteral("actionStartStop"))->text();
    }

    std::unique_ptr<TessaPort> service;
    Session* session = nullptr;
    std::unique_ptr<MainForm> form;
    QPushButton* play = nullptr;
};

} // namespace

void tst_MainForm::activeMinute()
{
    Strip strip;
    strip.invoke("setHasActivity"); // before the start: does not count
    strip.play->click();
    QVERIFY(strip.session->active());
    strip.seconds(60);
    strip.slotsPass(9, {0});
    QVERIFY(strip.reports().isEmpty());
    strip.slotsPass(1);
    QCOMPARE(strip.reports(), QList<int>({-1, 1}));
    QCOMPARE(strip.session->todayActivetime(), QTime(0, 1));
    QCOMPARE(strip.session->todayActiveTime(QStringLiteral("1")), QTime(0, 1));
    QCOMPARE(strip.session->displayWorktime(), QTime(0, 1));
}

void tst_MainForm::idleMinute()
{
    Strip strip;
    strip.play->click();
    strip.slotsPass(10, {3, 4});
    strip.seconds(60);
    QCOMPARE(strip.session->displayActivetime(), QTime(0, 1));
    strip.slotsPass(10);
    QCOMPARE(strip.reports(), QList<int>({-1, 0, 2}));
    QCOMPARE(strip.session->todayActivetime(), QTime(0, 1));
    QCOMPARE(strip.session->displayActivetime(), QTime(0, 1));
    strip.seconds(30);
    strip.slotsPass(10);
    QCOMPARE(strip.session->displayActivetime(), QTime(0, 1));
    QCOMPARE(strip.session->displayWorktime(), QTime(0, 1, 30));
}

void tst_MainForm::stopInMidMinute()
{
    Strip strip;
    strip.play->click();
    strip.seconds(59);
    strip.slotsPass(9, {0});
    strip.play->click();
    QVERIFY(!strip.session->active());
    QCOMPARE(strip.session->displayWorktime(), QTime(0, 0));
    QCOMPARE(strip.actionText(), QStringLiteral("Старт"));
    strip.play->click();
    QCOMPARE(strip.actionText(), QStringLiteral("Стоп"));
    strip.slotsPass(9);
    QVERIFY(strip.reports().isEmpty());
    strip.slotsPass(1);
    QCOMPARE(strip.reports(), QList<int>({-1, 0}));
}

void tst_MainForm::midnight()
{
    Strip strip;
    strip.play->click();
    strip.slotsPass(10, {0});
    strip.seconds(5);
    strip.session->setWorktimeDate(QDate::currentDate().addDays(-1));
    strip.seconds(1);
    QCOMPARE(strip.text("lbClock"), QStringLiteral("00:00:00"));
    QCOMPARE(strip.session->todayActiveTime(QStringLiteral("1")), QTime(0, 0));
    strip.seconds(1);
    QCOMPARE(strip.text("lbClock"), QStringLiteral("00:00:01"));
    // Put back by a day, the clock goes on counting.
    strip.session->setWorktimeDate(QDate::currentDate().addDays(1));
    strip.seconds(1);
    QCOMPARE(strip.text("lbClock"), QStringLiteral("00:00:02"));
}

void tst_MainForm::resume()
{
    Strip strip(true);
    QVERIFY(strip.play->isChecked());
    QVERIFY(strip.session->active());
    QCOMPARE(strip.actionText(), QStringLiteral("Стоп"));
    strip.slotsPass(10, {0, 1});
    QCOMPARE(strip.reports(), QList<int>({-1, 2}));
}

void tst_MainForm::noTask()
{
    Strip strip(false, QString());
    QCOMPARE(strip.form->findChild<ScrollText*>(QStringLiteral("lbTask"))->text(),
             QStringLiteral("Выбрать задачу"));
    QVERIFY(NotificationManager::instance()->hasNotifications());
    strip.invoke("on_actionStartStop_triggered");
    strip.play->click();
    QVERIFY(!strip.session->active());
    strip.session->setTaskID(QStringLiteral("2"));
    strip.play->click();
    QVERIFY(strip.session->active());
}

void tst_MainForm::blockingTask()
{
    Strip strip;
    strip.play->click();
    // In another team it rules out nothing.
    strip.session->setTasks({task(QStringLiteral("8"), QStringLiteral("1"))}, QStringLiteral("18"));
    QVERIFY(strip.session->active());
    const QList<Task> tasks{task(QStringLiteral("1")),
                            task(QStringLiteral("9"), QStringLiteral("1"))};
    strip.session->setTasks(tasks, teamId);
    QVERIFY(!strip.session->active());
    QVERIFY(!strip.play->isChecked());
    QVERIFY(strip.session->taskID().isEmpty());
    strip.session->setTaskID(QStringLiteral("1"));
    QVERIFY(strip.session->taskID().isEmpty());
    strip.session->setTaskID(QStringLiteral("9"));
    QCOMPARE(strip.session->taskID(), QStringLiteral("9"));
}

void tst_MainForm::closedTask()
{
    Strip strip;
    QSignalSpy closed(strip.session, &Session::taskClosed);
    strip.session->save(); // from now on changes are told
    strip.play->click();
    NotificationManager::instance()->closeAll();
    strip.session->setTasks({task(QStringLiteral("1"))}, teamId);
    QCOMPARE(closed.size(), 1);
    QVERIFY(strip.session->active());
    strip.session->setTasks({unassignedTask()}, teamId);
    QCOMPARE(closed.size(), 2);
    QVERIFY(!strip.session->active());
    QVERIFY(!strip.play->isCheckable());
    QCOMPARE(strip.actionText(), QStringLiteral("Старт"));
    QVERIFY(NotificationManager::instance()->hasNotifications());
}

void tst_MainForm::pictures()
{
    Strip strip;
    strip.play->click();
    strip.slotsPass(20);
    QCOMPARE(strip.reports().count(-1), 1);
    // Due, but only together with a report.
    strip.invoke("screenshotTimeout");
    strip.slotsPass(9);
    QCOMPARE(strip.reports().count(-1), 1);
    // A stop in between loses nothing of it.
    strip.play->click();
    strip.play->click();
    strip.slotsPass(10);
    QCOMPARE(strip.reports().count(-1), 2);
    strip.slotsPass(10);
    QCOMPARE(strip.reports().count(-1), 2);
}

void tst_MainForm::overdueLabels()
{
    Strip strip;
    auto* label = strip.form->findChild<QLabel*>(QStringLiteral("lbOverdueTime"));
    Task late = task(QStringLiteral("1"));
    late.deadline = QDateTime::currentDateTime().addSecs(60);
    strip.session->setTasks({late, unassignedTask()}, teamId);
    QVERIFY(label->isHidden());
    late.deadline = QDateTime::currentDateTime().addSecs(-2 * 3600 - 5);
    strip.session->setTasks({late, unassignedTask()}, teamId);
    QVERIFY(!label->isHidden());
    QCOMPARE(label->text(), QStringLiteral("2ч. "));
    QCOMPARE(label->toolTip(), late.deadline.toString(QStringLiteral("yyyy-MM-dd HH:mm:ss")));
    strip.session->setTaskID(QStringLiteral("0"));
    QVERIFY(label->isHidden());
}

void tst_MainForm::playButton_data()
{
    QTest::addColumn<QString>("taskId");
    QTest::addColumn<bool>("online");
    QTest::addColumn<bool>("active");
    QTest::addColumn<QString>("picture");
    QTest::newRow("no task") << "" << true << false << "pbPlay_Disabled.png";
    QTest::newRow("running") << "1" << true << true << "pbPause_Online_hovered_clicked.png";
    QTest::newRow("stopped") << "1" << true << false << "pbPlay_Online_hovered_clicked.png";
    QTest::newRow("running offline")
        << "1" << false << true << "pbPause_Offline_hovered_clicked.png";
    QTest::newRow("stopped offline")
        << "1" << false << false << "pbPlay_Offline_hovered_clicked.png";
}

void tst_MainForm::playButton()
{
    QFETCH(QString, taskId);
    QFETCH(bool, online);
    QFETCH(bool, active);
    QFETCH(QString, picture);
    Strip strip(active, taskId);
    strip.session->setIsOnline(online);
    QVERIFY(QMetaObject::invokeMethod(strip.form.get(), "updateOnlineState",
                                      Q_ARG(QString, QString())));
    QVERIFY(strip.play->styleSheet().contains(QStringLiteral(":/images/") + picture));
}

TESSAPORT_TEST_MAIN(tst_MainForm, QApplication)

#include "tst_mainform.moc"
