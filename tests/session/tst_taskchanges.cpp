// SPDX-License-Identifier: GPL-3.0-or-later
#include "session/TaskChanges.h"
#include "session/TaskLists.h"

#include <QtTest>

#include <initializer_list>

using Lists = QMap<QString, QList<Task>>;
Q_DECLARE_METATYPE(Lists)

/// The comparison of two snapshots, on values alone.
class TaskChangesTest : public QObject {
    Q_OBJECT

private slots:
    void tasks_data();
    void tasks();
    void teams();
    void lookUpsFollowTheLists();
};

namespace {

const QString a = QStringLiteral("a");
const QString b = QStringLiteral("b");

QDateTime at(int hour)
{
    return hour < 0 ? QDateTime() : QDateTime(QDate(2025, 5, 12), QTime(hour, 0));
}

/// An hour below 0 stands for a date that is missing.
Task task(const char* id, const char* block = "", int comment = -1, int deadline = -1,
          const char* title = "t")
{
    return {QString::fromLatin1(id),
            QString::fromLatin1(title),
            at(deadline),
            QString::fromLatin1(block),
            at(comment),
            0};
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
    const QString title =
        change.kind == TaskChange::Removed ? change.before.title : change.after.title;
    const QString id = change.kind == TaskChange::Removed ? change.before.id : change.after.id;
    return QString::fromLatin1(names[change.kind]) + QLatin1Char(' ') + id + QLatin1Char(' ')
        + title;
}

} // namespace

void TaskChangesTest::tasks_data()
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

    row("nothing", {{a, {task("1", "1", 3, 4)}}}, a, {task("1", "1", 3, 4)}, "");
    row("0 is not blocking", {{a, {task("1", "0")}}}, a, {task("1")}, "");
    row("becomes blocking", {{a, {task("1")}}}, a, {task("1", "x")}, "blocks 1 t");
    row("other mark", {{a, {task("1", "1")}}}, a, {task("1", "2")}, "");
    row("stops blocking", {{a, {task("1", "1")}}}, a, {task("1", "0")}, "frees 1 t");
    row("newer comment", {{a, {task("1", "", 3)}}}, a, {task("1", "", 4)}, "comment 1 t");
    row("older comment", {{a, {task("1", "", 4)}}}, a, {task("1", "", 3)}, "");
    row("first comment", {{a, {task("1")}}}, a, {task("1", "", 0)}, "comment 1 t");
    row("lost comment", {{a, {task("1", "", 3)}}}, a, {task("1")}, "");
    row("new team", {}, a, {task("1"), task("2", "1"), task("0")}, "new 1 t,new blocking 2 t");
    row("new list is empty", {{a, {task("1"), task("2"), task("0")}}}, a, {}, "gone 1 t,gone 2 t");
    row("title is the present one", {{a, {task("1")}}}, a, {task("1", "1", -1, -1, "u")},
        "blocks 1 u");
    row("in another team", {{a, {}}, {b, {task("1")}}}, a, {task("1")}, "");
    row("compared with the first team", {{a, {task("1", "", 4)}}, {b, {task("1")}}}, b,
        {task("1", "", 4)}, "");
    row("and not with its own", {{a, {task("1")}}, {b, {task("1", "", 4)}}}, b, {task("1", "", 4)},
        "comment 1 t");
    row("deadline", {{a, {task("1", "", -1, 3)}}}, a, {task("1", "", -1, 2, "u")}, "deadline 1 u");
    row("deadline appears", {{a, {task("1")}}}, a, {task("1", "", -1, 0)}, "deadline 1 t");
    row("deadline goes", {{a, {task("1", "", -1, 3)}}}, a, {task("1")}, "deadline 1 t");
    row("deadline of its own team", {{a, {task("1", "", -1, 2)}}, {b, {task("1")}}}, b,
        {task("1", "", -1, 2)}, "deadline 1 t");
    row("deadline in the exempt team", {{exempt, {task("1"), task("2")}}}, exempt,
        {task("1", "1", -1, 3), task("2", "", 1)}, "blocks 1 t,comment 2 t");
    row("unassigned time", {{a, {task("0")}}}, a, {task("0", "1", 3)}, "");
    row("its deadline", {{a, {task("0")}}}, a, {task("0", "1", 3, 3)}, "deadline 0 t");
    row("in order of the passes", {{a, {task("1"), task("2", "", -1, 3), task("3")}}}, a,
        {task("4"), task("3", "", 1, 5), task("2", "1", 1, 3)},
        "new 4 t,comment 3 t,blocks 2 t,comment 2 t,gone 1 t,deadline 3 t");
    row("twice in the new list", {{a, {task("1")}}}, a,
        {task("1", "", -1, 1, "x"), task("2"), task("2"), task("1", "", -1, 2, "y")},
        "new 2 t,new 2 t,deadline 1 x,deadline 1 y");
    row("twice in the old list", {{a, {task("1"), task("1", "", -1, 2), task("2"), task("2")}}}, a,
        {task("1", "", -1, 2)}, "gone 2 t,gone 2 t,deadline 1 t");
    row("no id", {{a, {task("")}}}, a, {task(""), task("1")}, "new 1 t");
}

void TaskChangesTest::tasks()
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

void TaskChangesTest::teams()
{
    const auto teams = [](std::initializer_list<const char*> ids) {
        QList<Team> result;
        for (const char* id : ids)
            result.append({QString::fromLatin1(id), QStringLiteral("n")});
        return result;
    };
    QString text;
    const QVector<TeamChange> changes =
        compareTeams(teams({"1", "2", "3", "4"}), teams({"9", "3", "8", "1"}));
    for (const TeamChange& change : changes)
        text += QLatin1Char(change.kind == TeamChange::Added ? '+' : '-') + change.team.id;
    QCOMPARE(text, QStringLiteral("+9+8-2-4"));
    QVERIFY(compareTeams(teams({"1", "2"}), teams({"2", "1"})).isEmpty());
}

void TaskChangesTest::lookUpsFollowTheLists()
{
    TaskLists lists = listsOf({{b, {task("1", "", -1, 1, "b"), task("2"), task("0")}},
                               {a, {task("3"), task("1", "", -1, 1, "a"), task("0")}}});
    const auto idsOf = [](const QList<Task>& tasks) {
        QString ids;
        for (const Task& one : tasks)
            ids += one.id;
        return ids;
    };
    QCOMPARE(idsOf(lists.allTasks()), QStringLiteral("3102"));
    QCOMPARE(lists.findFirst(QStringLiteral("1"))->title, a);
    QCOMPARE(lists.find(b, QStringLiteral("1"))->title, b);
    QVERIFY(!lists.find(a, QStringLiteral("2")));
    QVERIFY(!lists.find(QStringLiteral("c"), QStringLiteral("1")));

    QCOMPARE(lists.copyDeadline(a, task("1", "", 5, 7)), QStringList{b});
    QCOMPARE(lists.find(b, QStringLiteral("1"))->deadline, at(7));
    QVERIFY(!lists.find(b, QStringLiteral("1"))->lastComment.isValid());
    QCOMPARE(lists.find(a, QStringLiteral("1"))->deadline, at(1));
    QVERIFY(lists.copyDeadline(a, task("1", "", 5, 7)).isEmpty());

    lists.setTasks(a, {task("0"), task("3")});
    QCOMPARE(lists.findFirst(QStringLiteral("1"))->title, b);
    QCOMPARE(lists.remove(task("1")), QStringList{b});
    QVERIFY(!lists.findFirst(QStringLiteral("1")));
    QVERIFY(lists.remove(task("1")).isEmpty());
    QCOMPARE(idsOf(lists.tasks(b)), QStringLiteral("20"));
    QCOMPARE(lists.find(b, QStringLiteral("0"))->id, QStringLiteral("0"));

    lists.setTasks(b, {task("1")});
    QCOMPARE(lists.findFirst(QStringLiteral("1"))->id, QStringLiteral("1"));
    QVERIFY(!lists.findFirst(QStringLiteral("2")));
    QCOMPARE(lists.remove(task("0")), QStringList{a});
    lists.clear();
    QVERIFY(!lists.findFirst(QStringLiteral("3")));
    QCOMPARE(lists.teamCount(), 0);
}

QTEST_APPLESS_MAIN(TaskChangesTest)

#include "tst_taskchanges.moc"
