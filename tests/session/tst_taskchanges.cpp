// SPDX-License-Identifier: GPL-3.0-or-later
#include "Sample.h"

#include "session/TaskChanges.h"
#include "session/TaskLists.h"
#include "support/TestMain.h"

using Lists = QMap<QString, QList<Task>>;
Q_DECLARE_METATYPE(Lists)

namespace {

const QString a = QStringLiteral("a");
const QString b = QStringLiteral("b");

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

/// What differs between two refreshes, and where a task is found.
class TaskChangesTest : public QObject {
    Q_OBJECT

private slots:
    void changes_data()
    {
        QTest::addColumn<Lists>("known");
        QTest::addColumn<QString>("team");
        QTest::addColumn<QList<Task>>("now");
        QTest::addColumn<QStringList>("expected");
        const auto row = [](const char* name, const Lists& known, const QString& team,
                            const QList<Task>& now, std::initializer_list<const char*> expected) {
            QStringList texts;
            for (const char* text : expected)
                texts.append(QLatin1String(text));
            QTest::newRow(name) << known << team << now << texts;
        };
        const QString exempt = QStringLiteral("2192");

        row("0 is not blocking", {{a, {Sample("1").blocking(), Sample("2").blocking("0")}}}, a,
            {Sample("1").blocking("0"), Sample("2")}, {"frees 1 t"});
        row("newer comment",
            {{a, {Sample("1").commented(3), Sample("2"), Sample("3").commented(3)}}}, a,
            {Sample("1").commented(4), Sample("2").commented(0), Sample("3").commented(2)},
            {"comment 1 t", "comment 2 t"});
        row("new team", {}, a, {Sample("1"), Sample("2").blocking(), Sample("0")},
            {"new 1 t", "new blocking 2 t"});
        row("title is the present one", {{a, {Sample("1")}}}, a, {Sample("1", "u").blocking()},
            {"blocks 1 u"});
        row("in another team", {{a, {}}, {b, {Sample("1")}}}, a, {Sample("1")}, {});
        row("compared with the first team and not with its own",
            {{a, {Sample("1").commented(4), Sample("2")}},
             {b, {Sample("1"), Sample("2").commented(4)}}},
            b, {Sample("1").commented(4), Sample("2").commented(4)}, {"comment 2 t"});
        row("deadline of its own team",
            {{a, {Sample("1").due(2)}}, {b, {Sample("1"), Sample("2").due(3)}}}, b,
            {Sample("1").due(2), Sample("2")}, {"deadline 1 t", "deadline 2 t"});
        row("deadline in the exempt team", {{exempt, {Sample("1"), Sample("2")}}}, exempt,
            {Sample("1").blocking().due(3), Sample("2").commented(1)},
            {"blocks 1 t", "comment 2 t"});
        row("unassigned time", {{a, {Sample("0")}}}, a,
            {Sample("0").blocking().commented(3).due(3)}, {"deadline 0 t"});
        row("in order of the passes", {{a, {Sample("1"), Sample("2").due(3), Sample("3")}}}, a,
            {Sample("4"), Sample("3").commented(1).due(5),
             Sample("2").blocking().commented(1).due(3)},
            {"new 4 t", "comment 3 t", "blocks 2 t", "comment 2 t", "gone 1 t", "deadline 3 t"});
        row("twice in the new list", {{a, {Sample("1")}}}, a,
            {Sample("1", "x").due(1), Sample("2"), Sample("2"), Sample("1", "y").due(2)},
            {"new 2 t", "new 2 t", "deadline 1 x", "deadline 1 y"});
        row("twice in the old list",
            {{a, {Sample("1"), Sample("1").due(2), Sample("2"), Sample("2")}}}, a,
            {Sample("1").due(2)}, {"gone 2 t", "gone 2 t", "deadline 1 t"});
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
        QTEST(texts, "expected");
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
};

TESSAPORT_TEST_MAIN(TaskChangesTest, QCoreApplication)

#include "tst_taskchanges.moc"
