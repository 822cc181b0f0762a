// SPDX-License-Identifier: GPL-3.0-or-later
#include "Program.h"
#include "support/StandIn.h"
#include "support/TestMain.h"

namespace {

const QString strip = QStringLiteral("Tessaport");

} // namespace

/// How the program starts and ends, and what it does about what it finds then.
class StartupTest : public QObject {
    Q_OBJECT

private slots:
    void cleanRemovesData()
    {
        Home home;
        home.signIn("1507", "48211", false);
        Home::write(home.userFile("activity/json"), "{}");
        Program program(home);
        program.start({QStringLiteral("--clean")});
        QCOMPARE(program.waitForExit(), 0);
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
            QVERIFY(program.waitForActive(QStringLiteral("Авторизация")));
            Desktop::press("Escape");
            QCOMPARE(program.waitForExit(), 0);
            QCOMPARE(QFileInfo(log).size() > size, size == largest);
            QVERIFY(QFileInfo(log).size() > 0);
            QVERIFY(!QFileInfo::exists(home.file("cached")));
            QCOMPARE(Home::value(home.file("config.ini"), "lastLogin"), QVariant(QString()));
        }
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
};

TESSAPORT_TEST_MAIN(StartupTest, QGuiApplication)

#include "tst_startup.moc"
