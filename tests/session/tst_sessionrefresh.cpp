// SPDX-License-Identifier: GPL-3.0-or-later
#include "notifications/NotificationForm.h"
#include "notifications/NotificationManager.h"
#include "session/Session.h"
#include "support/TestMain.h"

#include <QApplication>
#include <QSignalSpy>

#include <algorithm>
#include <memory>

/// What a refresh makes of two snapshots: the notices on screen, the signals, the lists and the
/// files, in their order.
class SessionRefreshTest : public QObject {
    Q_OBJECT

private slots:
    void init();
    void cleanup() { NotificationManager::instance()->closeAll(); }
    void firstRefreshIsSilent();
    void noticesAndSignalsInOrder();
    void addedTasksAreLogged();
    void sharedDeadlineIsToldOnce();
    void deadlineOfTheChosenTask_data();
    void deadlineOfTheChosenTask();
    void movedTask();
    void listenerMayUseTheSession();
    void teams();
    void teamThatIsGoneStaysInTheFile();

private:
    void refresh(const QMap<QString, QList<Task>>& lists);

    std::unique_ptr<SessionOwner> m_owner;
    Session* m_session = nullptr;
};

namespace {

const QString a = QStringLiteral("a");
const QString b = QStringLiteral("b");

Task task(const char* id, const char* block = "", int deadlineHour = 1)
{
    return {QString::fromLatin1(id),
            QStringLiteral("Задача ") + QString::fromLatin1(id),
            QDateTime(QDate(2025, 5, 12), QTime(deadlineHour, 0)),
            QString::fromLatin1(block),
            QDateTime(),
            0};
}

/// The notices on screen, from below, each as its type and its text; they are closed.
QStringList takeNotices()
{
    QVector<NotificationForm*> forms;
    const QWidgetList widgets = QApplication::topLevelWidgets();
    for (QWidget* widget : widgets) {
        if (auto* form = qobject_cast<NotificationForm*>(widget))
            forms.append(form);
    }
    std::sort(forms.begin(), forms.end(),
              [](const auto* x, const auto* y) { return x->slot() < y->slot(); });
    QStringList notices;
    for (const NotificationForm* form : qAsConst(forms))
        notices << QString::number(form->type()) + QLatin1Char(' ') + form->accessibleName();
    NotificationManager::instance()->closeAll();
    return notices;
}

QString tasksFile()
{
    return QDir::homePath() + QStringLiteral("/.tessaport/anna/tasks.ini");
}

} // namespace

void SessionRefreshTest::init()
{
    m_owner.reset();
    QDir(QDir::home().filePath(QStringLiteral(".tessaport"))).removeRecursively();
    m_owner = std::make_unique<SessionOwner>();
    m_session = m_owner->session();
    m_session->load(QStringLiteral("anna"), QStringLiteral("p"));
    if (qstrcmp(QTest::currentTestFunction(), "firstRefreshIsSilent") == 0)
        return;
    const QMap<QString, QList<Task>> lists{
        {a, {task("1"), task("2", "1"), task("3"), unassignedTask()}},
        {b, {task("1"), task("4"), unassignedTask()}},
    };
    refresh(lists);
    m_session->save();
    m_session->setTeamID(a);
    m_session->setTaskID(QStringLiteral("1"));
    QVERIFY(takeNotices().isEmpty());
}

void SessionRefreshTest::refresh(const QMap<QString, QList<Task>>& lists)
{
    QList<Team> teams;
    for (auto team = lists.begin(); team != lists.end(); ++team) {
        m_session->setTasks(*team, team.key());
        teams.append({team.key(), QStringLiteral("Команда ") + team.key()});
    }
    m_session->setTeams(teams);
}

void SessionRefreshTest::firstRefreshIsSilent()
{
    QSignalSpy tasksUpdated(m_session, &Session::tasksUpdated);
    QSignalSpy teamsUpdated(m_session, &Session::teamsUpdated);
    const QMap<QString, QList<Task>> lists{{a, {task("1")}}, {b, {unassignedTask()}}};
    refresh(lists);
    QCOMPARE(tasksUpdated.size(), 2);
    QCOMPARE(tasksUpdated.at(1).at(0).toString(), b);
    QCOMPARE(teamsUpdated.size(), 1);
    QVERIFY(!QFile::exists(tasksFile()));

    // The teams are known by now, so the first list of the second refresh is what gets saved.
    m_session->setTasks(lists[a], a);
    QVERIFY(QFile::exists(tasksFile()));
    QVERIFY(takeNotices().isEmpty());
    m_session->setTasks({task("1"), task("2")}, a);
    QCOMPARE(takeNotices().size(), 1);
}

void SessionRefreshTest::noticesAndSignalsInOrder()
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
             (QStringList{QStringLiteral("closed 25"), QStringLiteral("closed 36"),
                          QStringLiteral("overdue"), QStringLiteral("tasks a")}));
    QCOMPARE(m_session->task(b, QStringLiteral("1")).deadline, moved.deadline);
    QCOMPARE(m_session->task(b, QStringLiteral("1")).title, task("1").title);
}

void SessionRefreshTest::addedTasksAreLogged()
{
    QTest::ignoreMessage(QtDebugMsg, "Task added  \"Задача 5\" \"5\"");
    QTest::ignoreMessage(QtDebugMsg, "Task blocked added  \"Задача 6\" \"6\"");
    m_session->setTasks(m_session->tasks(b) << task("5") << task("6", "1"), b);
    QCOMPARE(takeNotices().size(), 2);
}

void SessionRefreshTest::sharedDeadlineIsToldOnce()
{
    QSignalSpy overdue(m_session, &Session::overdueTimeChanged);
    m_session->setTasks({task("1", "", 8), task("2", "1"), task("3"), unassignedTask()}, a);
    m_session->setTasks({task("1", "", 8), task("4"), unassignedTask()}, b);
    QCOMPARE(takeNotices().size(), 1);
    QCOMPARE(overdue.size(), 1);

    // What was copied is as good as what the service sent, on disk too.
    m_session->save();
    Session other(m_owner.get());
    other.load(QStringLiteral("anna"), QString());
    QCOMPARE(other.task(b, QStringLiteral("1")).deadline, task("1", "", 8).deadline);
}

void SessionRefreshTest::deadlineOfTheChosenTask_data()
{
    QTest::addColumn<QString>("team");
    QTest::addColumn<QString>("chosen");
    QTest::addColumn<int>("notices");
    QTest::addColumn<int>("signalCount");
    const QString exempt = QStringLiteral("2192");
    QTest::newRow("chosen") << a << QStringLiteral("1") << 1 << 1;
    QTest::newRow("another") << a << QStringLiteral("3") << 1 << 0;
    QTest::newRow("exempt") << exempt << QStringLiteral("9") << 0 << 0;
}

void SessionRefreshTest::deadlineOfTheChosenTask()
{
    QFETCH(QString, team);
    QFETCH(QString, chosen);
    m_session->setTasks({task("9")}, QStringLiteral("2192"));
    takeNotices();
    m_session->setTaskID(chosen);
    QSignalSpy overdue(m_session, &Session::overdueTimeChanged);
    QList<Task> tasks = m_session->tasks(team);
    tasks.first().deadline = QDateTime();
    m_session->setTasks(tasks, team);
    QTEST(takeNotices().size(), "notices");
    QTEST(overdue.size(), "signalCount");
}

void SessionRefreshTest::movedTask()
{
    QSignalSpy closed(m_session, &Session::taskClosed);
    m_session->setTasks({task("2", "1"), task("1"), unassignedTask()}, a);
    m_session->setTasks({task("1"), unassignedTask()}, b);
    QCOMPARE(closed.size(), 2);
    // Gone from b means gone from everywhere, until b or another team lists it again.
    m_session->setTasks({unassignedTask()}, b);
    QVERIFY(m_session->task(a, QStringLiteral("1")).id.isEmpty());
    QCOMPARE(m_session->tasks(a).size(), 2);
    takeNotices();
    m_session->setTasks({task("1"), task("2", "1"), unassignedTask()}, a);
    QCOMPARE(takeNotices(), QStringList{QStringLiteral("3 Добавлена новая задача \"Задача 1\"")});
}

void SessionRefreshTest::listenerMayUseTheSession()
{
    connect(m_session, &Session::taskClosed, this, [this](const QString& id) {
        m_session->setTaskID(QString());
        QVERIFY(m_session->task(a, id).id.isEmpty());
        m_session->removeTask(task("1"));
        m_session->setTasks({task("7")}, QStringLiteral("c"));
        m_session->save();
    });
    QSignalSpy overdue(m_session, &Session::overdueTimeChanged);
    m_session->setTasks({task("1", "", 5)}, a);
    // The task is not the chosen one any more when its deadline is compared.
    QCOMPARE(overdue.size(), 0);
    QCOMPARE(m_session->tasks(a).size(), 1);
    QCOMPARE(m_session->tasks(b).size(), 2);
}

void SessionRefreshTest::teams()
{
    m_session->setTeams({{b, QStringLiteral("Другое имя")}, {QStringLiteral("c"), b}});
    QCOMPARE(
        takeNotices(),
        (QStringList{QStringLiteral("1 Добавлена новая команда \"b\""),
                     QStringLiteral("2 Вы больше не являетесь членом команды \"Команда a\"")}));
    QCOMPARE(m_session->team(b).name, QStringLiteral("Другое имя"));
    QVERIFY(m_session->team(a).id.isEmpty());
}

void SessionRefreshTest::teamThatIsGoneStaysInTheFile()
{
    m_session->setTeams({{b, QStringLiteral("Команда b")}});
    takeNotices();
    m_session->save();
    m_session->reset();
    m_session->load(QStringLiteral("anna"), QString());
    QCOMPARE(m_session->teams().size(), 1);
    QCOMPARE(m_session->tasks(a).size(), 4);
    // And its tasks are still known, so that they are not new in another team.
    m_session->setTasks(m_session->tasks(b) << task("3"), b);
    QVERIFY(takeNotices().isEmpty());
}

TESSAPORT_TEST_MAIN(SessionRefreshTest, QApplication)

#include "tst_sessionrefresh.moc"
