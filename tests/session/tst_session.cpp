// SPDX-License-Identifier: GPL-3.0-or-later
#include "Sample.h"

#include "notifications/NotificationManager.h"
#include "session/Session.h"
#include "support/Notices.h"
#include "support/TestMain.h"

#include <QSettings>
#include <QSignalSpy>

#include <memory>

namespace {

const QString a = QStringLiteral("a");
const QString b = QStringLiteral("b");
const QString taskId = QStringLiteral("1");

Sample task(const char* id)
{
    return Sample(id, QByteArray("Задача ").append(id).constData()).due(1);
}

} // namespace

/// The session in memory: what a refresh does to it, and the day's counters.
class SessionTest : public QObject {
    Q_OBJECT

private slots:
    void init()
    {
        m_owner.reset();
        QDir(QDir::home().filePath(QStringLiteral(".tessaport"))).removeRecursively();
        m_owner = std::make_unique<SessionOwner>();
        m_session = m_owner->session();
        m_session->load(QStringLiteral("anna"), QStringLiteral("p"));
        const QList<Task> tasks{task("1"), task("2").blocking(), task("3"), unassignedTask()};
        m_session->setTasks(tasks, a);
        m_session->setTasks({task("1"), task("4"), unassignedTask()}, b);
        m_session->setTeams({{a, QStringLiteral("Команда a")}, {b, QStringLiteral("Команда b")}});
        m_session->setTeamID(a);
        m_session->setTaskID(taskId);

        // The first refresh is silent and unsaved; the first list of the second one gets it saved.
        const QString file = m_owner->dataDir().filePath(QStringLiteral("anna/tasks.ini"));
        QVERIFY(!QFile::exists(file));
        m_session->setTasks(tasks, a);
        QVERIFY(QFile::exists(file));
        QVERIFY(takeNotices().isEmpty());
    }

    void cleanup() { NotificationManager::instance()->closeAll(); }

    void noticesAndSignalsInOrder()
    {
        const auto ids = [this](const QString& team) {
            QStringList ids;
            const QList<Task> tasks = m_session->tasks(team);
            for (const Task& each : tasks)
                ids << each.id;
            return ids.join(QLatin1Char('+'));
        };
        QStringList events;
        connect(m_session, &Session::taskClosed, this, [&events, ids](const QString& id) {
            const int notices = QApplication::topLevelWidgets().size();
            events
                << QStringLiteral("%1 closed at notice %2 in %3").arg(id).arg(notices).arg(ids(a));
        });
        connect(m_session, &Session::overdueTimeChanged, this, [this, &events] {
            events << QStringLiteral("due in b at ")
                    + m_session->task(b, taskId).deadline.toString(QStringLiteral("h"));
        });
        connect(m_session, &Session::tasksUpdated, this,
                [&events, ids](const QString& id) { events << id + QLatin1Char(' ') + ids(id); });
        QTest::ignoreMessage(QtDebugMsg, "Task added  \"Задача 5\" \"5\"");
        QTest::ignoreMessage(QtDebugMsg, "Task blocked added  \"Задача 6\" \"6\"");
        Task moved = Sample("1", "Новое").blocking("5").commented(9).due(9);
        const QList<Task> tasks{task("5"), moved, task("6").blocking(), unassignedTask()};
        m_session->setTasks(tasks, a);
        QCOMPARE(takeNotices(),
                 (QStringList{
                     QStringLiteral("3 Добавлена новая задача \"Задача 5\" -> 5"),
                     QStringLiteral("8 Задача \"Новое\" помечена как блокирующая -> 1"),
                     QStringLiteral("5 К задаче \"Новое\" добавлен новый комментарий -> 1"),
                     QStringLiteral("10 Добавлена новая блокируюшая задача \"Задача 6\" -> 6"),
                     QStringLiteral("4 Задача \"Задача 2\" более недоступна"),
                     QStringLiteral("4 Задача \"Задача 3\" более недоступна"),
                     QStringLiteral("7 Дедлайн задачи \"Задача 1\" был изменён"),
                 }));
        // A task is closed when it is gone, right after its own notice and before the next one.
        QCOMPARE(events,
                 (QStringList{QStringLiteral("2 closed at notice 5 in 1+3+0"),
                              QStringLiteral("3 closed at notice 6 in 1+0"),
                              QStringLiteral("due in b at 9"), QStringLiteral("a 5+1+6+0")}));

        // The same list is told again, and so is the task that blocks no more.
        events.clear();
        m_session->setTasks(tasks, a);
        QCOMPARE(events, QStringList{QStringLiteral("a 5+1+6+0")});
        m_session->setTasks({task("5"), moved, Sample("6", "Иное").due(1), unassignedTask()}, a);
        QCOMPARE(
            takeNotices(),
            QStringList{QStringLiteral("9 Задача \"Иное\" более не является блокирующей -> 6")});
    }

    // What a refresh does to the lists of other teams is as good as what the service sent.
    void otherTeamsFollow()
    {
        const auto saved = [this] {
            m_session->save();
            Session other(m_owner.get());
            other.load(QStringLiteral("anna"), QString());
            return other.tasks(b);
        };
        m_session->setTasks({task("1").due(8), task("2").blocking(), task("3"), unassignedTask()},
                            a);
        QCOMPARE(saved().constFirst().deadline, at(8));
        m_session->removeTask(task("4"));
        QCOMPARE(saved().size(), 2);
        m_session->setTasks({task("1").due(8), unassignedTask()}, b);
        QCOMPARE(takeNotices().size(), 1);
    }

    void listenerMayUseTheSession()
    {
        connect(m_session, &Session::taskClosed, this, [this] {
            m_session->setTaskID(QString());
            m_session->removeTask(task("1"));
            m_session->setTasks({task("7")}, QStringLiteral("c"));
            m_session->save();
        });
        QSignalSpy overdue(m_session, &Session::overdueTimeChanged);
        m_session->setTasks({task("1").due(5)}, a);
        // The task is not the chosen one any more when its deadline is compared.
        QCOMPARE(overdue.size(), 0);
        QCOMPARE(m_session->tasks(a).size(), 1);
    }

    void teams()
    {
        QCOMPARE(m_session->team(b).name, QStringLiteral("Команда b"));
        QCOMPARE(m_session->blockingTasks(a), QList<Task>{task("2")});
        const QString c = QStringLiteral("c");
        QString told;
        connect(m_session, &Session::teamsUpdated, this,
                [this, &told] { told += m_session->teams().constFirst().name; });
        m_session->setTeams({{c, c}, {b, c}, {QStringLiteral("0"), QStringLiteral("0")}});
        QCOMPARE(
            takeNotices(),
            (QStringList{QStringLiteral("1 Добавлена новая команда \"c\""),
                         QStringLiteral("1 Добавлена новая команда \"0\""),
                         QStringLiteral("2 Вы больше не являетесь членом команды \"Команда a\"")}));
        QCOMPARE(told, c);

        // The tasks of a team that is gone stay known, so that they are not new in another team.
        m_session->save();
        m_session->reset();
        m_session->load(QStringLiteral("anna"), QString());
        m_session->setTasks(m_session->tasks(b) << task("3"), b);
        QVERIFY(takeNotices().isEmpty());
    }

    void chosenTask()
    {
        QSignalSpy taskChanged(m_session, &Session::taskChanged);
        QCOMPARE(m_session->taskDeadline(), task("1").deadline);
        QVERIFY(m_session->overdueSeconds() > 0);
        // Work on no task in particular is due now.
        for (int i = 0; i < 2; ++i)
            m_session->setTaskID(unassignedTaskId);
        QCOMPARE(taskChanged, QList<QVariantList>{{QStringLiteral("0")}});
        QVERIFY(m_session->taskDeadline().isValid());
        QVERIFY(std::abs(m_session->overdueSeconds()) < 60);
    }

    void minutes()
    {
        m_session->setTodayActivetime(QTime(23, 59));
        m_session->setTodayWorktime(QTime(23, 58));
        m_session->setWorktimeDate(QDate::currentDate());
        for (int i = 0; i < 61; ++i)
            m_session->tick();
        m_session->addWorkMinute();
        QCOMPARE(times(), QStringLiteral("23:59:01 00:01:01 23:59:00 00:00:00"));
        m_session->addWorkMinute();
        m_session->addActiveMinute();
        // The minute of work is on disk at once, and the active one with the next save.
        QCOMPARE(stored("todayWorktime"), QStringLiteral("00:00:00"));
        QCOMPARE(stored("todayActivetime"), QStringLiteral("23:59:00"));
        m_session->addActiveMinute();
        m_session->addWorkMinute();
        QCOMPARE(stored("todayActivetime"), QStringLiteral("00:01:00"));
        // The day's total under the task.
        QCOMPARE(times(), QStringLiteral("23:59:01 00:01:01 00:01:00 00:01:00"));
    }

    void onlyALaterDateBeginsTheDay()
    {
        const QDate today = QDate::currentDate();
        // The last one stands for a clock that was put back.
        for (const QDate& date : {QDate(), today.addDays(-1), today.addDays(1)}) {
            const bool begins = date != today.addDays(1);
            m_session->setTodayActivetime(QTime(3, 0));
            m_session->setTodayWorktime(QTime(3, 0));
            m_session->setTaskActiveTime(taskId, QTime(3, 0));
            m_session->syncDisplayActivetime();
            m_session->setWorktimeDate(date);
            QSignalSpy timeUpdated(m_session, &Session::timeUpdated);
            m_session->tick();
            QCOMPARE(m_session->worktimeDate(), begins ? today : date);
            QCOMPARE(times(),
                     begins ? QStringLiteral("00:00:00 00:00:00 00:00:00 00:00:00")
                            : QStringLiteral("03:00:01 03:00:01 03:00:00 03:00:00"));
            m_session->syncDisplayWorktime();
            m_session->syncDisplayActivetime();
            QCOMPARE(m_session->displayWorktime(), m_session->todayActivetime());
            QCOMPARE(timeUpdated.size(), 3);
            QVERIFY(!m_session->beginDay());
        }
    }

    // Summer time, a clock put right, a night of sleep: a second is what a tick brings, and not
    // what the clock says.
    void clockMayJump()
    {
        const QByteArray zone = qgetenv("TZ");
        const int noon = QDateTime::currentDateTimeUtc().time().hour() - 12;
        m_session->setTodayWorktime(QTime(0, 59, 58));
        for (const int hours : {0, 1, -1, -6}) {
            qputenv("TZ", "TST" + QByteArray::number(noon + hours));
            if (hours == 0)
                m_session->setWorktimeDate(QDate::currentDate());
            m_session->tick();
        }
        zone.isNull() ? qunsetenv("TZ") : qputenv("TZ", zone);
        QCOMPARE(m_session->displayWorktime(), QTime(1, 0, 2));
    }

    void timesFromTheService()
    {
        QSignalSpy timeUpdated(m_session, &Session::timeUpdated);
        m_session->setTodayWorktime(QTime(2, 30));
        // It is the minutes that are compared, and the shown work time that is pulled.
        m_session->setTodayActivetime(QTime(1, 30));
        QCOMPARE(times(), QStringLiteral("02:30:00 00:00:00 01:30:00 00:00:00"));
        QCOMPARE(timeUpdated.size(), 0);
        m_session->setTodayActivetime(QTime(1, 31));
        QCOMPARE(times(), QStringLiteral("01:31:00 00:00:00 01:31:00 00:00:00"));
        QCOMPARE(timeUpdated.size(), 1);
    }

private:
    /// The notices on screen, which are closed.
    static QStringList takeNotices()
    {
        const QStringList notices = shownNotices();
        NotificationManager::instance()->closeAll();
        return notices;
    }

    /// Work and active time shown, active time counted, and that of the task.
    QString times() const
    {
        QStringList texts;
        for (const QTime& time : {m_session->displayWorktime(), m_session->displayActivetime(),
                                  m_session->todayActivetime(), m_session->todayActiveTime(taskId)})
            texts.append(time.toString());
        return texts.join(QLatin1Char(' '));
    }

    /// A value in the user's file.
    QString stored(const char* key) const
    {
        const QString file = m_owner->dataDir().filePath(QStringLiteral("anna/session.ini"));
        return QSettings(file, QSettings::IniFormat).value(QLatin1String(key)).toString();
    }

    std::unique_ptr<SessionOwner> m_owner;
    Session* m_session = nullptr;
};

TESSAPORT_TEST_MAIN(SessionTest, QApplication)

#include "tst_session.moc"
