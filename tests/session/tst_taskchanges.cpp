// SPDX-License-Identifier: GPL-3.0-or-later
#include "session/TaskChanges.h"
#include "session/TaskLists.h"

#include <QtTest>

#include <initializer_list>

using Lists = QMap<QString, QList<Task>>;
Q_DECLARE_METATYPE(Lists)

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
    const Task& task = change.kind == TaskChange::Removed ? change.before : change.after;
    return QLatin1String(names[change.kind]) + QLatin1Char(' ') + task.id + QLatin1Char(' ')
        + task.title;
}

} // namespace

/// The comparison of two snapshots, on values alone.
class TaskChangesTest : public QObject {
    Q_OBJECT

private slots:
    void tasks_data()
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

        row("0 is not blocking", {{a, {task("1", "1"), task("2", "0")}}}, a,
            {task("1", "0"), task("2")}, "frees 1 t");
        row("newer comment", {{a, {task("1", "", 3), task("2")}}}, a,
            {task("1", "", 4), task("2", "", 0)}, "comment 1 t,comment 2 t");
        row("new team", {}, a, {task("1"), task("2", "1"), task("0")}, "new 1 t,new blocking 2 t");
        row("title is the present one", {{a, {task("1")}}}, a, {task("1", "1", -1, -1, "u")},
            "blocks 1 u");
        row("in another team", {{a, {}}, {b, {task("1")}}}, a, {task("1")}, "");
        row("compared with the first team and not with its own",
            {{a, {task("1", "", 4), task("2")}}, {b, {task("1"), task("2", "", 4)}}}, b,
            {task("1", "", 4), task("2", "", 4)}, "comment 2 t");
        row("deadline of its own team",
            {{a, {task("1", "", -1, 2)}}, {b, {task("1"), task("2", "", -1, 3)}}}, b,
            {task("1", "", -1, 2), task("2")}, "deadline 1 t,deadline 2 t");
        row("deadline in the exempt team", {{exempt, {task("1"), task("2")}}}, exempt,
            {task("1", "1", -1, 3), task("2", "", 1)}, "blocks 1 t,comment 2 t");
        row("unassigned time", {{a, {task("0")}}}, a, {task("0", "1", 3, 3)}, "deadline 0 t");
        row("in order of the passes", {{a, {task("1"), task("2", "", -1, 3), task("3")}}}, a,
            {task("4"), task("3", "", 1, 5), task("2", "1", 1, 3)},
            "new 4 t,comment 3 t,blocks 2 t,comment 2 t,gone 1 t,deadline 3 t");
        row("twice in the new list", {{a, {task("1")}}}, a,
            {task("1", "", -1, 1, "x"), task("2"), task("2"), task("1", "", -1, 2, "y")},
            "new 2 t,new 2 t,deadline 1 x,deadline 1 y");
        row("twice in the old list", {{a, {task("1"), task("1", "", -1, 2), task("2"), task("2")}}},
            a, {task("1", "", -1, 2)}, "gone 2 t,gone 2 t,deadline 1 t");
    }

    void tasks()
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
        TaskLists lists = listsOf({{b, {task("1", "", -1, 1, "b"), task("2"), task("0")}},
                                   {a, {task("3"), task("1", "", -1, 1, "a"), task("0")}}});
        QString ids;
        const QList<Task> all = lists.allTasks();
        for (const Task& each : all)
            ids += each.id;
        QCOMPARE(ids, QStringLiteral("3102"));
        QCOMPARE(lists.findFirst(one)->title, a);
        QCOMPARE(lists.find(b, one)->title, b);
        lists.setTasks(a, {task("0"), task("3")});
        QCOMPARE(lists.findFirst(one)->title, b);
        QCOMPARE(lists.remove(task("1")), QStringList{b});
        QVERIFY(!lists.findFirst(one));
        // Those behind the removed one have moved up.
        QCOMPARE(lists.find(b, QStringLiteral("0"))->id, QStringLiteral("0"));
    }
};

QTEST_APPLESS_MAIN(TaskChangesTest)

#include "tst_taskchanges.moc"
