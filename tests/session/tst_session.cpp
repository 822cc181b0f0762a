// SPDX-License-Identifier: GPL-3.0-or-later
#include "notifications/NotificationManager.h"
#include "session/Session.h"
#include "session/TaskChanges.h"
#include "session/TaskLists.h"
#include "support/Notices.h"
#include "support/TestMain.h"

#include <QSettings>
#include <QSignalSpy>

#include <memory>

using Lists = QMap<QString, QList<Task>>;
Q_DECLARE_METATYPE(Lists)

namespace {

const QString a = QStringLiteral("a");
const QString b = QStringLiteral("b");
const QString taskId = QStringLiteral("1");

QDateTime at(int hour)
{
    return QDateTime(QDate(2025, 5, 12), QTime(hour, 0));
}

/// A task that is told apart from others by what is called on it; hours are those of one day.
struct Sample : Task {
    explicit Sample(const char* taskId, const char* taskTitle = "t")
    {
        id = QString::fromLatin1(taskId);
        title = QString::fromUtf8(taskTitle);
    }
    Sample& blocking(const char* mark = "1")
    {
        block = QString::fromLatin1(mark);
        return *this;
    }
    Sample& commented(int hour)
    {
        lastComment = at(hour);
        return *this;
    }
    Sample& due(int hour)
    {
        deadline = at(hour);
        return *this;
    }
};

Sample task(const char* id)
{
    return Sample(id, QByteArray("Задача ").append(id).constData()).due(1);
}

TaskLists listsOf(const Lists& lists)
{
    TaskLists result;
    for (auto team = lists.begin(); team != lists.end(); ++team)
        result.setTasks(team.key(), *team);
    return result;
}

QString textOf(const TaskChange& change)
{
    static const char* const names[] = {"blocks", "frees", "comment", "new blocking",
                                        "new",    "gone",  "deadline"};
    const Task& task = change.kind == TaskChange::Removed ? change.before : change.after;
    return QLatin1String(names[change.kind]) + QLatin1Char(' ') + task.id + QLatin1Char(' ')
        + task.title;
}

} // namespace

/// The session in memory: what a refresh makes of two snapshots, and the day's counters.
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

    void changes_data()
    {
        QTest::addColumn<Lists>("known");
        QTest::addColumn<QString>("team");
        QTest::addColumn<QList<Task>>("now");
        QTest::addColumn<QString>("expected");
        const auto row = [](const char* name, const Lists& known, const QString& team,
                            const QList<Task>& now, const char* expected) {
            QTest::newRow(name) << known << team << now << QString::fromLatin1(expected);
        };
        const QString exempt = QStringLiteral("2192");

        row("0 is not blocking", {{a, {Sample("1").blocking(), Sample("2").blocking("0")}}}, a,
            {Sample("1").blocking("0"), Sample("2")}, "frees 1 t");
        row("newer comment",
            {{a, {Sample("1").commented(3), Sample("2"), Sample("3").commented(3)}}}, a,
            {Sample("1").commented(4), Sample("2").commented(0), Sample("3").commented(2)},
            "comment 1 t,comment 2 t");
        row("new team", {}, a, {Sample("1"), Sample("2").blocking(), Sample("0")},
            "new 1 t,new blocking 2 t");
        row("title is the present one", {{a, {Sample("1")}}}, a, {Sample("1", "u").blocking()},
            "blocks 1 u");
        row("in another team", {{a, {}}, {b, {Sample("1")}}}, a, {Sample("1")}, "");
        row("compared with the first team and not with its own",
            {{a, {Sample("1").commented(4), Sample("2")}},
             {b, {Sample("1"), Sample("2").commented(4)}}},
            b, {Sample("1").commented(4), Sample("2").commented(4)}, "comment 2 t");
        row("deadline of its own team",
            {{a, {Sample("1").due(2)}}, {b, {Sample("1"), Sample("2").due(3)}}}, b,
            {Sample("1").due(2), Sample("2")}, "deadline 1 t,deadline 2 t");
        row("deadline in the exempt team", {{exempt, {Sample("1"), Sample("2")}}}, exempt,
            {Sample("1").blocking().due(3), Sample("2").commented(1)}, "blocks 1 t,comment 2 t");
        row("unassigned time", {{a, {Sample("0")}}}, a,
            {Sample("0").blocking().commented(3).due(3)}, "deadline 0 t");
        row("in order of the passes", {{a, {Sample("1"), Sample("2").due(3), Sample("3")}}}, a,
            {Sample("4"), Sample("3").commented(1).due(5),
             Sample("2").blocking().commented(1).due(3)},
            "new 4 t,comment 3 t,blocks 2 t,comment 2 t,gone 1 t,deadline 3 t");
        row("twice in the new list", {{a, {Sample("1")}}}, a,
            {Sample("1", "x").due(1), Sample("2"), Sample("2"), Sample("1", "y").due(2)},
            "new 2 t,new 2 t,deadline 1 x,deadline 1 y");
        row("twice in the old list",
            {{a, {Sample("1"), Sample("1").due(2), Sample("2"), Sample("2")}}}, a,
            {Sample("1").due(2)}, "gone 2 t,gone 2 t,deadline 1 t");
    }

    void changes()
    {
        QFETCH(Lists, known);
        QFETCH(QString, team);
        QFETCH(QList<Task>, now);
        QStringList texts;
        const QVector<TaskChange> changes = compareTasks(listsOf(known), team, now);
        for (const TaskChange& change : changes)
            texts.append(textOf(change));
        QTEST(texts.join(QLatin1Char(',')), "expected");
    }

    void lookUpsFollowTheLists()
    {
        const QString one = QStringLiteral("1");
        TaskLists lists;
        lists.setTasks(b, {Sample("1", "b"), Sample("2"), Sample("0"), Sample("1", "b again")});
        lists.setTasks(a, {Sample("3"), Sample("1", "a"), Sample("0")});
        QString ids;
        const QList<Task> all = lists.allTasks();
        for (const Task& each : all)
            ids += each.id;
        QCOMPARE(ids, QStringLiteral("3102"));
        QCOMPARE(lists.findFirst(one)->title, a);
        QCOMPARE(lists.find(b, one)->title, b);
        lists.setTasks(a, {Sample("0"), Sample("3")});
        QCOMPARE(lists.findFirst(one)->title, b);
        QCOMPARE(lists.remove(Sample("1")), QStringList{b});
        QVERIFY(!lists.findFirst(one));
        // Those behind the removed one have moved up.
        QCOMPARE(lists.find(b, QStringLiteral("0"))->id, QStringLiteral("0"));
    }

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
        m_session->setTasks({task("5"), moved, task("6"), unassignedTask()}, a);
        QCOMPARE(takeNotices(),
                 QStringList{
                     QStringLiteral("9 Задача \"Задача 6\" более не является блокирующей -> 6")});
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
