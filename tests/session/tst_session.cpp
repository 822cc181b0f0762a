// SPDX-License-Identifier: GPL-3.0-or-later
#include "notifications/NotificationForm.h"
#include "notifications/NotificationManager.h"
#include "session/Session.h"
#include "session/TaskChanges.h"
#include "session/TaskLists.h"
#include "support/TestMain.h"

#include <QApplication>
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
    return hour < 0 ? QDateTime() : QDateTime(QDate(2025, 5, 12), QTime(hour, 0));
}

/// An hour below 0 stands for a date that is missing.
Task entry(const char* id, const char* block = "", int comment = -1, int deadline = -1,
           const char* title = "t")
{
    return {QString::fromLatin1(id),
            QString::fromUtf8(title),
            at(deadline),
            QString::fromLatin1(block),
            at(comment),
            0};
}

Task task(const char* id, const char* block = "", int deadlineHour = 1)
{
    return entry(id, block, -1, deadlineHour, QByteArray("Задача ").append(id).constData());
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

/// The notices on screen, from below, each as its type and its text; they are closed.
QStringList takeNotices()
{
    QMap<int, QString> notices;
    const QWidgetList widgets = QApplication::topLevelWidgets();
    for (const QWidget* widget : widgets) {
        if (const auto* form = qobject_cast<const NotificationForm*>(widget))
            notices.insert(form->slot(),
                           QString::number(form->type()) + QLatin1Char(' ')
                               + form->accessibleName());
    }
    NotificationManager::instance()->closeAll();
    return notices.values();
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
        const QList<Task> tasks{task("1"), task("2", "1"), task("3"), unassignedTask()};
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

        row("0 is not blocking", {{a, {entry("1", "1"), entry("2", "0")}}}, a,
            {entry("1", "0"), entry("2")}, "frees 1 t");
        row("newer comment", {{a, {entry("1", "", 3), entry("2")}}}, a,
            {entry("1", "", 4), entry("2", "", 0)}, "comment 1 t,comment 2 t");
        row("new team", {}, a, {entry("1"), entry("2", "1"), entry("0")},
            "new 1 t,new blocking 2 t");
        row("title is the present one", {{a, {entry("1")}}}, a, {entry("1", "1", -1, -1, "u")},
            "blocks 1 u");
        row("in another team", {{a, {}}, {b, {entry("1")}}}, a, {entry("1")}, "");
        row("compared with the first team and not with its own",
            {{a, {entry("1", "", 4), entry("2")}}, {b, {entry("1"), entry("2", "", 4)}}}, b,
            {entry("1", "", 4), entry("2", "", 4)}, "comment 2 t");
        row("deadline of its own team",
            {{a, {entry("1", "", -1, 2)}}, {b, {entry("1"), entry("2", "", -1, 3)}}}, b,
            {entry("1", "", -1, 2), entry("2")}, "deadline 1 t,deadline 2 t");
        row("deadline in the exempt team", {{exempt, {entry("1"), entry("2")}}}, exempt,
            {entry("1", "1", -1, 3), entry("2", "", 1)}, "blocks 1 t,comment 2 t");
        row("unassigned time", {{a, {entry("0")}}}, a, {entry("0", "1", 3, 3)}, "deadline 0 t");
        row("in order of the passes", {{a, {entry("1"), entry("2", "", -1, 3), entry("3")}}}, a,
            {entry("4"), entry("3", "", 1, 5), entry("2", "1", 1, 3)},
            "new 4 t,comment 3 t,blocks 2 t,comment 2 t,gone 1 t,deadline 3 t");
        row("twice in the new list", {{a, {entry("1")}}}, a,
            {entry("1", "", -1, 1, "x"), entry("2"), entry("2"), entry("1", "", -1, 2, "y")},
            "new 2 t,new 2 t,deadline 1 x,deadline 1 y");
        row("twice in the old list",
            {{a, {entry("1"), entry("1", "", -1, 2), entry("2"), entry("2")}}}, a,
            {entry("1", "", -1, 2)}, "gone 2 t,gone 2 t,deadline 1 t");
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
        TaskLists lists = listsOf({{b, {entry("1", "", -1, 1, "b"), entry("2"), entry("0")}},
                                   {a, {entry("3"), entry("1", "", -1, 1, "a"), entry("0")}}});
        QString ids;
        const QList<Task> all = lists.allTasks();
        for (const Task& each : all)
            ids += each.id;
        QCOMPARE(ids, QStringLiteral("3102"));
        QCOMPARE(lists.findFirst(one)->title, a);
        QCOMPARE(lists.find(b, one)->title, b);
        lists.setTasks(a, {entry("0"), entry("3")});
        QCOMPARE(lists.findFirst(one)->title, b);
        QCOMPARE(lists.remove(entry("1")), QStringList{b});
        QVERIFY(!lists.findFirst(one));
        // Those behind the removed one have moved up.
        QCOMPARE(lists.find(b, QStringLiteral("0"))->id, QStringLiteral("0"));
    }

    void noticesAndSignalsInOrder()
    {
        QStringList events;
        connect(m_session, &Session::taskClosed, this, [&events](const QString& id) {
            events << QStringLiteral("closed ") + id
                    + QString::number(QApplication::topLevelWidgets().size());
        });
        connect(m_session, &Session::overdueTimeChanged, this,
                [&events] { events << QStringLiteral("overdue"); });
        connect(m_session, &Session::tasksUpdated, this,
                [&events](const QString& id) { events << QStringLiteral("tasks ") + id; });
        QTest::ignoreMessage(QtDebugMsg, "Task added  \"Задача 5\" \"5\"");
        QTest::ignoreMessage(QtDebugMsg, "Task blocked added  \"Задача 6\" \"6\"");
        Task moved = task("1", "5", 9);
        moved.title = QStringLiteral("Новое");
        moved.lastComment = moved.deadline;
        m_session->setTasks({task("5"), moved, task("6", "1"), unassignedTask()}, a);
        QCOMPARE(takeNotices(),
                 (QStringList{
                     QStringLiteral("3 Добавлена новая задача \"Задача 5\""),
                     QStringLiteral("8 Задача \"Новое\" помечена как блокирующая"),
                     QStringLiteral("5 К задаче \"Новое\" добавлен новый комментарий"),
                     QStringLiteral("10 Добавлена новая блокируюшая задача \"Задача 6\""),
                     QStringLiteral("4 Задача \"Задача 2\" более недоступна"),
                     QStringLiteral("4 Задача \"Задача 3\" более недоступна"),
                     QStringLiteral("7 Дедлайн задачи \"Задача 1\" был изменён"),
                 }));
        // Each task is closed right after its own notice and before the next one.
        QCOMPARE(events,
                 QStringLiteral("closed 25,closed 36,overdue,tasks a").split(QLatin1Char(',')));
    }

    void sharedDeadlineIsToldOnce()
    {
        m_session->setTasks({task("1", "", 8), task("2", "1"), task("3"), unassignedTask()}, a);
        m_session->setTasks({task("1", "", 8), task("4", "", 8), unassignedTask()}, b);
        QCOMPARE(takeNotices().size(), 2);

        // What was copied is as good as what the service sent, on disk too.
        m_session->setTasks({task("1", "", 7), task("2", "1"), task("3"), unassignedTask()}, a);
        m_session->save();
        Session other(m_owner.get());
        other.load(QStringLiteral("anna"), QString());
        QCOMPARE(other.task(b, taskId).deadline, task("1", "", 7).deadline);
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
        m_session->setTasks({task("1", "", 5)}, a);
        // The task is not the chosen one any more when its deadline is compared.
        QCOMPARE(overdue.size(), 0);
        QCOMPARE(m_session->tasks(a).size(), 1);
    }

    void teams()
    {
        const QString c = QStringLiteral("c");
        m_session->setTeams({{c, c}, {b, c}, {QStringLiteral("0"), QStringLiteral("0")}});
        QCOMPARE(
            takeNotices(),
            (QStringList{QStringLiteral("1 Добавлена новая команда \"c\""),
                         QStringLiteral("1 Добавлена новая команда \"0\""),
                         QStringLiteral("2 Вы больше не являетесь членом команды \"Команда a\"")}));

        // The tasks of a team that is gone stay known, so that they are not new in another team.
        m_session->save();
        m_session->reset();
        m_session->load(QStringLiteral("anna"), QString());
        m_session->setTasks(m_session->tasks(b) << task("3"), b);
        QVERIFY(takeNotices().isEmpty());
    }

    void minutes()
    {
        m_session->setTodayActivetime(QTime(23, 59));
        m_session->setTodayWorktime(QTime(23, 58));
        m_session->setWorktimeDate(QDate::currentDate());
        for (int i = 0; i < 61; ++i)
            m_session->tick();
        m_session->addWorkMinute();
        QCOMPARE(m_session->displayWorktime(), QTime(23, 59, 1));
        m_session->addWorkMinute();
        m_session->addActiveMinute();

        // The minute of work is on disk at once, and the active one with the next save.
        const auto stored = [this](const char* key) {
            const QString file = m_owner->dataDir().filePath(QStringLiteral("anna/session.ini"));
            return QSettings(file, QSettings::IniFormat).value(QLatin1String(key)).toString();
        };
        QCOMPARE(stored("todayWorktime"), QStringLiteral("00:00:00"));
        QCOMPARE(stored("todayActivetime"), QStringLiteral("23:59:00"));
        m_session->addActiveMinute();
        m_session->addWorkMinute();
        QCOMPARE(stored("todayActivetime"), QStringLiteral("00:01:00"));
        // The day's total under the task.
        QCOMPARE(m_session->todayActiveTime(taskId), QTime(0, 1));
    }

    void onlyALaterDateEndsTheDay()
    {
        const QDate today = QDate::currentDate();
        // The last one stands for a clock that was put back.
        for (const QDate& date : {QDate(), today.addDays(-1), today.addDays(1)}) {
            const bool ends = date != today.addDays(1);
            const QTime counted = ends ? QTime(0, 0) : QTime(3, 0);
            m_session->setTodayActivetime(QTime(3, 0));
            m_session->setTodayWorktime(QTime(3, 0));
            m_session->setTaskActiveTime(taskId, QTime(3, 0));
            m_session->setWorktimeDate(date);
            m_session->syncDisplayWorktime();
            m_session->tick();
            QCOMPARE(m_session->displayWorktime(), ends ? counted : counted.addSecs(1));
            QCOMPARE(m_session->todayActivetime(), counted);
            QCOMPARE(m_session->todayActiveTime(taskId), counted);
        }
    }

    void timesFromTheService()
    {
        m_session->setTodayWorktime(QTime(2, 30));
        // It is the minutes that are compared, and the shown work time that is pulled.
        m_session->setTodayActivetime(QTime(1, 30));
        QCOMPARE(m_session->displayWorktime(), QTime(2, 30));
        m_session->setTodayActivetime(QTime(1, 31));
        QCOMPARE(m_session->displayWorktime(), QTime(1, 31));
    }

private:
    std::unique_ptr<SessionOwner> m_owner;
    Session* m_session = nullptr;
};

TESSAPORT_TEST_MAIN(SessionTest, QApplication)

#include "tst_session.moc"
