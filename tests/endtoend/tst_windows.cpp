// SPDX-License-Identifier: GPL-3.0-or-later
#include "Program.h"
#include "support/StandIn.h"
#include "support/TestMain.h"

namespace {

const QString strip = QStringLiteral("Tessaport");
const QString picker = QStringLiteral("Задачи");
const QString signIn = QStringLiteral("Авторизация");

const QPoint playButton(230, 35);

void change(QJsonArray& objects, int index, const QString& key, const QJsonValue& value)
{
    QJsonObject object = objects[index].toObject();
    object[key] = value;
    objects[index] = object;
}

} // namespace

/// The windows on a desktop, by a real pointer: notices, menu, account.
class WindowsTest : public QObject {
    Q_OBJECT

private slots:
    void init() { Desktop::movePointer({300, 300}); }

    void changesAtService()
    {
        QJsonObject data = StandIn::demoData();
        StandIn standIn(data, SERVICE_PORT);
        Home home;
        home.signIn("1507", "48211", true);
        // The user's browser.
        home.addProgram("xdg-open", "echo \"$1\" >>\"$HOME/pages\"");
        Program program(home);
        program.start();
        QVERIFY(home.waitForLog("Monitor started"));
        // That the monitor runs again; it goes by itself. What is there at first raises none.
        QVERIFY(program.waitForNotices(1));
        QVERIFY(refresh(program));
        QVERIFY(refresh(program));
        QVERIFY(program.waitForNotices(0));

        QJsonArray teams = data[QLatin1String("teams")].toArray();
        QJsonArray tasks = teams.at(0)[QLatin1String("tasks")].toArray();
        change(tasks, 0, QStringLiteral("last_comment"), QStringLiteral("+1m"));
        change(tasks, 1, QStringLiteral("deadline"), QStringLiteral("+2d"));
        // The last task goes, and another one comes.
        change(tasks, 4, QStringLiteral("id"), QStringLiteral("48299"));
        change(teams, 0, QStringLiteral("tasks"), tasks);
        teams.append(QJsonObject{{QStringLiteral("id"), QStringLiteral("1700")},
                                 {QStringLiteral("name"), QStringLiteral("Новая команда")},
                                 {QStringLiteral("tasks"), QJsonArray()}});
        data[QLatin1String("teams")] = teams;
        standIn.setData(data);
        QVERIFY(program.openTaskPicker());
        // Comment, new task, removed task, deadline, team; two of them go by themselves.
        QVector<QRect> stack;
        QVERIFY(waitUntil([&] {
            stack = program.notices();
            return stack.size() == 5;
        }));
        Desktop::press("Escape");
        QVERIFY(program.waitForGone(picker));
        const QRect stripPlace = program.window(strip)->geometry;
        for (int i = 0; i < stack.size(); ++i)
            QCOMPARE(stack[i].bottomRight(), stripPlace.topRight() - QPoint(0, i * 100 + 1));
        QVERIFY(program.waitForNotices(3));
        QVERIFY(waitUntil([&] { return program.notices() == stack.mid(0, 3); }));
        QCOMPARE(home.logged("Monitor stopped"), 0);

        // The lowest leads to its task, and the others come down.
        Desktop::click(stack.first().center());
        QVERIFY(program.waitForNotices(2));
        QVERIFY(waitUntil([&] { return program.notices() == stack.mid(0, 2); }));
        const QString pages = QDir(home.path()).filePath(QStringLiteral("pages"));
        QVERIFY(waitUntil([&] { return content(pages).endsWith('\n'); }));
        QCOMPARE(QString::fromUtf8(content(pages)),
                 standIn.url() + QStringLiteral("/task?id=48211\n"));

        // A blocking task leaves no other to work on.
        change(tasks, 3, QStringLiteral("block"), QStringLiteral("1"));
        change(teams, 0, QStringLiteral("tasks"), tasks);
        data[QLatin1String("teams")] = teams;
        standIn.setData(data);
        QVERIFY(refresh(program));
        QVERIFY(program.waitForNotices(3));
        QVERIFY(home.waitForLog("Monitor stopped"));
        QVERIFY(program.click(strip, playButton));
        QVERIFY(refresh(program));
        QCOMPARE(home.logged("Monitor started"), 1);
    }

    void accountAndExit()
    {
        StandIn standIn(StandIn::demoData(), SERVICE_PORT);
        Home home;
        home.signIn("1507", "48215", true);
        Program program(home);
        program.start();
        QVERIFY(home.waitForLog("Monitor started"));
        QVERIFY(program.waitForNotices(1));

        QVERIFY(program.chooseFromMenu("Down Down Down Return"));
        QVERIFY(program.waitForActive(signIn));
        QCOMPARE(home.logged("Monitor stopped"), 1);
        Desktop::press("ctrl+a");
        Desktop::type("anna@example.com");
        Desktop::press("Tab");
        Desktop::type("demo");
        Desktop::press("Return");
        QVERIFY(home.waitForLog("Login as  \"anna@example.com\""));
        QVERIFY(program.waitForGone(signIn));
        QVERIFY(program.isRunning());
        const auto taskOf = [&](const char* sessionFile) {
            return Home::value(home.file(sessionFile), "taskID").toString();
        };
        QCOMPARE(taskOf("demo@example.com/session.ini"), QStringLiteral("48215"));

        // Her first task, by the keyboard.
        QVERIFY(program.openTaskPicker());
        Desktop::press("Return");
        QVERIFY(program.waitForGone(picker));
        QVERIFY(program.click(strip, playButton));
        QVERIFY(home.waitForLog("Monitor started", 2));
        QVERIFY(program.chooseFromMenu("Up Return"));
        QCOMPARE(program.waitForExit(), 0);
        QVERIFY(home.log().endsWith(": Exit TessaPort Team Monitor OK\n"));
        QCOMPARE(taskOf("anna@example.com/session.ini"), QStringLiteral("48211"));

        program.start();
        QVERIFY(program.waitForNotices(1));
        QCOMPARE(home.logged("Monitor started"), 3);
        QVERIFY(!program.window(signIn));
    }

private:
    /// Has the service asked now, as a user does, and not at the end of the minute.
    static bool refresh(const Program& program)
    {
        if (!program.openTaskPicker())
            return false;
        Desktop::press("Escape");
        return program.waitForGone(picker);
    }
};

TESSAPORT_TEST_MAIN(WindowsTest, QGuiApplication)

#include "tst_windows.moc"
