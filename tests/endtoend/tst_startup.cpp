// SPDX-License-Identifier: GPL-3.0-or-later
#include "Program.h"
#include "support/StandIn.h"
#include "support/TestMain.h"

namespace {

constexpr qint64 largestLog = 104857600;

const QString strip = QStringLiteral("Tessaport");

} // namespace

/// How the program starts and ends, and what it does about what it finds then.
class StartupTest : public QObject {
    Q_OBJECT

private slots:
    void cleanRemovesData();
    void cancelledSignIn_data();
    void cancelledSignIn();
    void secondInstance();
    void brokenFiles();
    void closesForUpdate();
    void handsOverToUpdate();
};

void StartupTest::cleanRemovesData()
{
    Home home;
    home.signIn("1507", "48211", false);
    Home::write(home.userFile("activity/json"), "{}");
    Program program(home);
    program.start({QStringLiteral("--clean")});
    QCOMPARE(program.waitForExit(), 0);
    QVERIFY(!QFileInfo::exists(home.file("")));
}

void StartupTest::cancelledSignIn_data()
{
    QTest::addColumn<qint64>("logSize");
    QTest::addColumn<bool>("isKept");
    QTest::newRow("largest log that is kept") << largestLog << true;
    QTest::newRow("a byte more") << largestLog + 1 << false;
}

void StartupTest::cancelledSignIn()
{
    QFETCH(const qint64, logSize);
    QFETCH(const bool, isKept);
    Home home;
    Home::write(home.file("cached/folder/file"), "old");
    const QString log = home.file("log.log");
    Home::write(log, {});
    QVERIFY(QFile::resize(log, logSize));

    Program program(home);
    // Not the argument that it looks at.
    program.start({QStringLiteral("--Clean"), QStringLiteral("--clean")});
    QVERIFY(program.waitForActive(QStringLiteral("Авторизация")));
    Desktop::press("Escape");
    QCOMPARE(program.waitForExit(), 0);
    QCOMPARE(QFileInfo(log).size() > logSize, isKept);
    QVERIFY(QFileInfo(log).size() > 0);
    QVERIFY(!QFileInfo::exists(home.file("cached")));
    const QString config = home.file("config.ini");
    QCOMPARE(Home::value(config, "lastLogin"), QVariant(QString()));
}

void StartupTest::secondInstance()
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

void StartupTest::brokenFiles()
{
    StandIn standIn(StandIn::demoData(), SERVICE_PORT);
    Home home(20);
    home.signIn("1507", "48211", true);
    Home::setValue(home.userFile("session.ini"), "todayWorktime", QStringLiteral("late"));
    const QByteArray garbage("[General\n\0\xff\xfe%%%=@Variant(\0\0\0\x7f\0\0\0\x0bQList<Task>\n",
                             50);
    Home::write(home.file("update.json"), garbage);
    Home::write(home.userFile("teams.ini"), garbage);
    Home::write(
        home.userFile("tasks.ini"),
        "[General]\n1507=@Variant(\\0\\0\\0\\x7f\\0\\0\\0\\vQList<Task>\\0\\x7f\\xff\\xff\\xff)\n");
    Home::write(home.userFile("taskInfo.ini"),
                "[General]\n48211=@Variant(\\0\\0\\0\\x7f\\0\\0\\0\\tTaskInfo\\0)\n");

    // Two reports that can't be and one that can, in the order in which they go out.
    const QByteArray report = R"({"api-url":")" + standIn.url().toLatin1()
        + R"(/api_active2","body":{"active":"7","email":"demo@example.com","past":"0",)"
          R"("task_id":"48211","team_id":"1507","version":"1.1.0"},)"
          R"("timestamp":"13-05-2024-18-00-00","version":"0.1"})";
    Home::write(home.userFile("activity/json01-05-2024-00-00-00.a"), report.left(40));
    Home::write(home.userFile("activity/json02-05-2024-00-00-00.b"), {});
    Home::write(home.userFile("activity/json13-05-2024-18-00-00.c"), report);

    Program program(home);
    program.start();
    QVERIFY(waitUntil([&] { return home.reports().isEmpty(); }));
    QVERIFY(program.isRunning());
    QCOMPARE(home.logged("Error!  Invalid activity file! "), 2);
    const QJsonArray records = standIn.confirmedRecords();
    QVERIFY(std::any_of(records.begin(), records.end(), [](const QJsonValue& entry) {
        return entry[QLatin1String("record")][QLatin1String("active")] == QLatin1String("7")
            && entry[QLatin1String("record")][QLatin1String("past")].toString().toInt() > 15 * 3600;
    }));
}

void StartupTest::closesForUpdate()
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

void StartupTest::handsOverToUpdate()
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

TESSAPORT_TEST_MAIN(StartupTest, QGuiApplication)

#include "tst_startup.moc"
