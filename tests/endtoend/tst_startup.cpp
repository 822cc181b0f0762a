// SPDX-License-Identifier: GPL-3.0-or-later
#include "Program.h"
#include "support/StandIn.h"
#include "support/TestMain.h"

#include <QSharedMemory>

#include <unistd.h>

namespace {

const QString strip = QStringLiteral("Tessaport");
const QString signIn = QStringLiteral("Авторизация");

/// The lock of another copy in the same home; with no mark, that of all users of the machine.
std::unique_ptr<QSharedMemory> heldLock(const Home& home, const QString& userMark)
{
    qputenv("TMPDIR", home.path().toLocal8Bit());
    auto lock = std::make_unique<QSharedMemory>(
        QStringLiteral("SingleAppLockTessaPort Team Monitor") + userMark);
    if (!lock->create(1))
        qWarning() << lock->errorString();
    qunsetenv("TMPDIR");
    return lock;
}

} // namespace

/// How the program starts and ends, and what it does about what it finds then.
class StartupTest : public QObject {
    Q_OBJECT

private slots:
    // Neither a display nor the lock is asked for.
    void cleanRemovesData()
    {
        Home home;
        home.signIn("1507", "48211", false);
        Home::write(home.userFile("activity/json"), "{}");
        const auto lock = heldLock(home, QString::number(getuid()));
        Program program(home);
        program.setVariable("DISPLAY");
        program.start({QStringLiteral("--clean")});
        QCOMPARE(program.waitForExit(), 0);
        QVERIFY(!QFileInfo::exists(home.file("")));
    }

    void answersWithoutStarting()
    {
        Home home;
        Program program(home);
        program.setVariable("DISPLAY");
        program.start({QStringLiteral("--version")});
        QCOMPARE(program.waitForExit(), 0);
        QCOMPARE(program.output(), QByteArray("TessaPort Team Monitor 1.1.0\n"));
        program.start({QStringLiteral("--help")});
        QCOMPARE(program.waitForExit(), 0);
        QVERIFY(program.output().contains("--clean") && program.output().contains("--version"));
        QVERIFY(!QFileInfo::exists(home.file("")));
    }

    void cancelledSignIn()
    {
        // The largest log that is kept, and a byte more.
        constexpr qint64 largest = 104857600;
        for (const qint64 size : {largest, largest + 1}) {
            Home home;
            Home::write(home.file("cached/folder/file"), "old");
            const QString log = home.file("log.log");
            Home::write(log, {});
            QVERIFY(QFile::resize(log, size));

            Program program(home);
            // Not the argument that it looks at.
            program.start({QStringLiteral("--Clean"), QStringLiteral("--clean")});
            QVERIFY(program.waitForActive(signIn));
            Desktop::press("Escape");
            QCOMPARE(program.waitForExit(), 0);
            QCOMPARE(QFileInfo(log).size() > size, size == largest);
            QVERIFY(QFileInfo(log).size() > 0);
            QVERIFY(!QFileInfo::exists(home.file("cached")));
            QCOMPARE(Home::value(home.file("config.ini"), "lastLogin"), QVariant(QString()));
        }
    }

    // Signed in by hand; then the menu, and the end as the system brings it about.
    void fromSignInToTheEnd()
    {
        StandIn standIn(StandIn::demoData(), SERVICE_PORT);
        Home home;
        const auto lockOfAll = heldLock(home, QString());
        Program program(home);
        program.start();
        QVERIFY(program.waitForActive(signIn));
        // What the style sheet draws: the background of a field.
        QVERIFY(waitUntil([&] {
            const QImage field = program.picture(signIn, {100, 75, 200, 16});
            return !field.isNull() && field.pixelColor(100, 8) == QColor(Qt::white);
        }));
        Desktop::type("demo@example.com");
        Desktop::press("Tab");
        Desktop::type("demo");
        Desktop::press("Return");
        QVERIFY(program.waitFor(strip));

        QVERIFY(program.chooseFromMenu("Up Up Up Return"));
        const QString entry =
            home.path() + QStringLiteral("/.config/autostart/TessaPort-Team-Monitor.desktop");
        QVERIFY(waitUntil([&] { return QFileInfo::exists(entry); }));

        // Its last window is closed, and it lives on.
        QVERIFY(program.waitForActive(strip));
        Desktop::press("alt+F4");
        QVERIFY(program.waitForGone(strip));
        const QString update = home.file("update.json");
        Home::setValue(update, "forceUpdate", true);
        QVERIFY(waitUntil([&] { return !Home::value(update, "forceUpdate").toBool(); }));
        program.terminate();
        QCOMPARE(program.waitForExit(), 0);
        QVERIFY(home.log().trimmed().endsWith("Exit TessaPort Team Monitor OK"));
    }

    void accountAndExit()
    {
        Desktop::movePointer({300, 300});
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
        QVERIFY(program.waitForGone(QStringLiteral("Задачи")));
        QVERIFY(program.click(strip, {230, 35}));
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

    void inAWaylandSession()
    {
        Home home;
        Program program(home);
        program.setVariable("XDG_SESSION_TYPE", "wayland");
        program.start();
        QVERIFY(program.waitForActive(QStringLiteral("Ошибка")));
        Desktop::press("Tab Return");
        QCOMPARE(program.waitForExit(), 0);
        QVERIFY(home.log().contains("Z: 1\n"));

        program.start();
        QVERIFY(program.waitForActive(QStringLiteral("Ошибка")));
        Desktop::press("Return");
        QVERIFY(program.waitForActive(signIn));
        QVERIFY(home.log().contains("Z: 0\n"));
    }

    void secondInstance()
    {
        StandIn standIn(StandIn::demoData(), SERVICE_PORT);
        Home home;
        home.signIn("1507", "48211", true);
        Program first(home);
        first.start();
        QVERIFY(first.waitFor(strip));
        const QString session = home.userFile("session.ini");
        const QByteArray before = content(session);

        Home::write(home.file("cached/file"), "old");
        Program second(home);
        second.start();
        QVERIFY(second.waitForActive(QStringLiteral("TessaPort Team Monitor")));
        Desktop::press("Return");
        QCOMPARE(second.waitForExit(), 1);

        QVERIFY(first.isRunning());
        QVERIFY(first.window(strip));
        QCOMPARE(home.logged("TessaPort Team Monitor 1.1.0 started"), 2);
        QVERIFY(!QFileInfo::exists(home.file("cached")));
        // It may have written down more than there was.
        const QList<QByteArray> after = content(session).split('\n');
        for (const QByteArray& line : before.split('\n'))
            QVERIFY2(after.contains(line), line.constData());

        // The lock of one that was killed is no hindrance.
        first.kill();
        first.start();
        QVERIFY(first.waitFor(strip));
    }

    void closesForUpdate()
    {
        StandIn standIn(StandIn::demoData(), SERVICE_PORT);
        Home home;
        home.signIn("1507", "48211", true);
        Program program(home);
        program.start();
        QVERIFY(program.waitFor(strip));

        const QString update = QDir(home.path()).filePath(QStringLiteral("TPMC-update.exe"));
        QVERIFY(QFile::copy(QStringLiteral("/bin/sleep"), update));
        BoundProcess process;
        process.start(update, {QStringLiteral("300")});
        QVERIFY(process.waitForStarted(patience));
        Home::setValue(home.file("update.json"), "forceUpdate", true);
        QCOMPARE(program.waitForExit(), 0);
        process.kill();
        process.waitForFinished(patience);
        // It goes on with what it was doing when it is started again.
        QVERIFY(Home::value(home.userFile("session.ini"), "active").toBool());
    }

    void handsOverToUpdate()
    {
        Home home;
        home.addProgram("TPMC-update.exe", "printf '%s' \"$*\" >\"$HOME/told\"");
        const QString told = QDir(home.path()).filePath(QStringLiteral("told"));
        Home::setValue(home.file("update.json"), "updateAtStartup", true);
        Program program(home);
        program.start();
        QCOMPARE(program.waitForExit(), 0);
        QVERIFY(waitUntil([&] { return QFileInfo(told).size() > 0; }));
        QCOMPARE(content(told), QByteArray("--install-only"));
        QVERIFY(!QFileInfo::exists(home.file("log.log")));
    }

    // There is none yet; it comes to where it will be looked for the next time.
    void carriesOnWithoutUpdate()
    {
        Home home;
        home.addProgram("xdg-open", ":");
        Home::setValue(home.file("update.json"), "updateAtStartup", true);
        Home::write(home.file("update/TPMC-update.exe"), "new");
        Program program(home);
        program.start();
        QVERIFY(program.waitFor(signIn));
        QCOMPARE(content(home.path() + QStringLiteral("/TPMC-update.exe")), QByteArray("new"));
    }
};

TESSAPORT_TEST_MAIN(StartupTest, QGuiApplication)

#include "tst_startup.moc"
