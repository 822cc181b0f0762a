// SPDX-License-Identifier: GPL-3.0-or-later
#include "notifications/NotificationManager.h"
#include "session/Session.h"
#include "support/TestMain.h"

#include <QApplication>
#include <QSettings>
#include <QSignalSpy>

#include <memory>

/// Loading and saving in a home of the test's own, beside files that another program wrote and
/// beside what a plain writing of every key leaves.
class SessionFilesTest : public QObject {
    Q_OBJECT

private slots:
    void init();
    void firstStart();
    void laterDay();
    void sameDay();
    void damagedTimes();
    void password();
    void unchangedFilesAreNotWritten();
    void savedLikeAPlainWriting();
    void filesThatVanishedOrWereChangedComeBack();
    void changeOfAccount();
    void damagedFiles_data();
    void damagedFiles();
    void oddLogins_data();
    void oddLogins();
    void directoryIsPrivateAndNeverTheHome();
    void oldDataIsRemoved();
    void removeDirectory();
};

namespace {

const QLatin1String login("anna@example.com");
const QLatin1String fileNames[] = {QLatin1String("/session.ini"), QLatin1String("/teams.ini"),
                                   QLatin1String("/tasks.ini"), QLatin1String("/taskInfo.ini")};

QString dataPath()
{
    return QDir::homePath() + QStringLiteral("/.tessaport");
}

QString userPath(const QString& name)
{
    return dataPath() + QLatin1Char('/') + login + name;
}

QByteArray contentOf(const QString& path)
{
    QFile file(path);
    return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray("no file");
}

void writeFile(const QString& path, const QByteArray& content)
{
    QDir().mkpath(QFileInfo(path).path());
    QFile file(path);
    QVERIFY(file.open(QIODevice::WriteOnly));
    file.write(content);
}

void copyFixtures(const QString& today = QString())
{
    const QString from = QStringLiteral(TEST_SOURCE_DIR "/fixtures/");
    writeFile(dataPath() + QStringLiteral("/config.ini"),
              contentOf(from + QStringLiteral("config.ini")));
    for (const QLatin1String& name : fileNames) {
        QByteArray content = contentOf(from + login + name);
        if (!today.isEmpty())
            content.replace("Mon May 12 2025", today.toLatin1());
        writeFile(userPath(name), content);
    }
}

// Windows keeps a home private by other means.
bool isPrivate(const QString& path)
{
#ifdef Q_OS_WIN
    return QFile::exists(path);
#else
    return !(QFile::permissions(path)
             & (QFile::ReadGroup | QFile::WriteGroup | QFile::ExeGroup | QFile::ReadOther
                | QFile::WriteOther | QFile::ExeOther));
#endif
}

QString today()
{
    return QDate::currentDate().toString();
}

Task task(const QString& id, int importance = 0)
{
    return {id, QStringLiteral("Задача ") + id, {}, {}, QDateTime(), importance};
}

/// Every key of every file, each with a sync of its own.
void writePlainly(Session& session, const QStringList& detailIds, const QVariantMap& times,
                  const QString& folder)
{
    QSettings config(folder + QStringLiteral("/config.ini"), QSettings::IniFormat);
    config.setValue(QStringLiteral("lastLogin"), session.login());
    QSettings file(folder + fileNames[0], QSettings::IniFormat);
    file.setValue(QStringLiteral("password"), session.password());
    file.setValue(QStringLiteral("logged"), session.logged());
    file.setValue(QStringLiteral("active"), session.active());
    file.setValue(QStringLiteral("teamID"), session.teamID());
    file.setValue(QStringLiteral("taskID"), session.taskID());
    file.setValue(QStringLiteral("isOnline"), session.isOnline());
    file.setValue(QStringLiteral("worktimeDate"), session.worktimeDate().toString(Qt::TextDate));
    file.setValue(QStringLiteral("todayWorktime"),
                  session.displayWorktime().toString(Qt::TextDate));
    file.setValue(QStringLiteral("todayActivetime"),
                  session.todayActivetime().toString(Qt::TextDate));
    file.setValue(QStringLiteral("task2activeTimeMap"), times);
    QSettings teamsFile(folder + fileNames[1], QSettings::IniFormat);
    teamsFile.clear();
    QSettings tasksFile(folder + fileNames[2], QSettings::IniFormat);
    const QList<Team> teams = session.teams();
    for (const Team& team : teams) {
        teamsFile.setValue(team.id, team.name);
        teamsFile.sync();
        tasksFile.setValue(team.id, QVariant::fromValue(session.tasks(team.id)));
        tasksFile.sync();
    }
    QSettings detailsFile(folder + fileNames[3], QSettings::IniFormat);
    for (const QString& id : detailIds) {
        detailsFile.setValue(id, QVariant::fromValue(session.taskInfo(id)));
        detailsFile.sync();
    }
}

} // namespace

void SessionFilesTest::init()
{
    QVERIFY(QDir(QDir::homePath()).exists());
    QVERIFY(QFile::remove(dataPath()) || QDir(dataPath()).removeRecursively());
}

void SessionFilesTest::firstStart()
{
    {
        SessionOwner owner;
        QCOMPARE(owner.dataDir().path(), dataPath());
        QCOMPARE(owner.session()->login(), QString());
        QVERIFY(owner.session()->isOnline());
        QVERIFY(!owner.session()->worktimeDate().isValid());
        QTest::ignoreMessage(QtDebugMsg, "Exit TessaPort Team Monitor OK");
    }
    QCOMPARE(QDir(dataPath()).entryList(QDir::AllEntries | QDir::Hidden | QDir::NoDotAndDotDot),
             QStringList{QStringLiteral("config.ini")});
    QCOMPARE(contentOf(dataPath() + QStringLiteral("/config.ini")).simplified(),
             QByteArray("[General] lastLogin="));

    QVERIFY(QFile::remove(dataPath() + QStringLiteral("/config.ini")));
    {
        SessionOwner owner;
        owner.setNoSave(true);
    }
    QVERIFY(QDir(dataPath()).isEmpty());
}

void SessionFilesTest::laterDay()
{
    copyFixtures();
    SessionOwner owner;
    Session& session = *owner.session();
    QCOMPARE(session.login(), QString(login));
    QCOMPARE(session.password(), QStringLiteral("@Пароль, \"x\"; = \\n%"));
    QVERIFY(session.logged());
    QVERIFY(session.active());
    QVERIFY(!session.isOnline());
    QCOMPARE(session.teamID(), QStringLiteral("17"));
    QCOMPARE(session.taskID(), QStringLiteral("101"));
    QCOMPARE(session.worktimeDate(), QDate::currentDate());
    QCOMPARE(session.displayWorktime(), QTime(0, 0));
    QCOMPARE(session.displayActivetime(), QTime(0, 0));
    QCOMPARE(session.todayActiveTime(QStringLiteral("101")), QTime(0, 0));

    QStringList teams;
    const QList<Team> loadedTeams = session.teams();
    for (const Team& team : loadedTeams)
        teams << team.id << team.name;
    QCOMPARE(
        teams,
        (QStringList{QStringLiteral("17"), QStringLiteral("Контент, новости"),
                     QStringLiteral("205"), QStringLiteral("@Дизайн \"А\""), QStringLiteral("2192"),
                     QString(), QStringLiteral("9/Отдел 1%"), QStringLiteral("Ключ с чертой")}));
    QCOMPARE(session.tasks(QStringLiteral("17")).size(), 4);
    QVERIFY(session.tasks(QStringLiteral("400")).isEmpty());
    QCOMPARE(session.tasks(QStringLiteral("9/Отдел 1%")).size(), 1);
    QCOMPARE(session.allTasks().size(), 4);
    QCOMPARE(session.blockingTasks(QStringLiteral("17")).size(), 1);
    QCOMPARE(session.taskDeadline(), QDateTime(QDate(2025, 5, 12), QTime(12, 0)));

    const TaskInfo info = session.taskInfo(QStringLiteral("101"));
    QCOMPARE(info.creatorName, QStringLiteral("O'Neil"));
    QCOMPARE(info.files.at(0).filenameOrig, QStringLiteral("Снимок.png"));
    QCOMPARE(info.files.at(0).size, QStringLiteral("12 kB?"));
    QCOMPARE(info.texts.at(0).keywords.at(0).count2, QStringLiteral("много"));
    QCOMPARE(info.texts.at(0).page.fragment(), QStringLiteral("x"));
    QVERIFY(info.texts.at(1).keywords.isEmpty());
    QVERIFY(session.taskInfo(QStringLiteral("0")).id.isEmpty());
    QVERIFY(QDir(userPath(QStringLiteral("/activity"))).exists());
}

void SessionFilesTest::sameDay()
{
    copyFixtures(today());
    SessionOwner owner;
    Session session(&owner);
    QSignalSpy timeUpdated(&session, &Session::timeUpdated);
    session.load(login, QStringLiteral("typed"));
    QCOMPARE(timeUpdated.size(), 1);
    QCOMPARE(session.displayWorktime(), QTime(1, 2));
    QCOMPARE(session.displayActivetime(), QTime(0, 47));
    QCOMPARE(session.todayActivetime(), QTime(0, 47));
    QCOMPARE(session.todayActiveTime(QStringLiteral("101")), QTime(0, 47));
    QCOMPARE(session.todayActiveTime(QString()), QTime(0, 30));
    session.syncDisplayWorktime();
    QCOMPARE(session.displayWorktime(), QTime(1, 2));
}

void SessionFilesTest::damagedTimes()
{
    copyFixtures(today());
    {
        QSettings file(userPath(fileNames[0]), QSettings::IniFormat);
        file.setValue(QStringLiteral("todayWorktime"), QStringLiteral("25:00:00"));
        file.remove(QStringLiteral("todayActivetime"));
        file.setValue(QStringLiteral("task2activeTimeMap"), 7);
        file.remove(QStringLiteral("isOnline"));
    }
    SessionOwner owner;
    QCOMPARE(owner.session()->displayWorktime(), QTime(0, 0));
    QCOMPARE(owner.session()->displayActivetime(), QTime(0, 0));
    QCOMPARE(owner.session()->todayActiveTime(QStringLiteral("101")), QTime(0, 0));
    QVERIFY(owner.session()->isOnline());
}

void SessionFilesTest::password()
{
    copyFixtures();
    SessionOwner owner;
    Session typed(&owner);
    typed.load(login, QStringLiteral("typed"));
    QCOMPARE(typed.password(), QStringLiteral("typed"));
    Session stored(&owner);
    stored.load(login, QString());
    QCOMPARE(stored.password(), owner.session()->password());
}

void SessionFilesTest::unchangedFilesAreNotWritten()
{
    copyFixtures(today());
    SessionOwner owner;
    Session& session = *owner.session();
    const auto age = [] {
        const QDateTime longAgo = QDateTime::currentDateTime().addDays(-1);
        for (const QLatin1String& name : fileNames) {
            QFile file(userPath(name));
            QVERIFY(file.open(QIODevice::ReadWrite));
            QVERIFY(file.setFileTime(longAgo, QFileDevice::FileModificationTime));
        }
    };
    const auto written = [] {
        QString names;
        const QDateTime yesterday = QDateTime::currentDateTime().addSecs(-60 * 60);
        for (const QLatin1String& name : fileNames)
            names += QFileInfo(userPath(name)).lastModified() > yesterday ? name : QLatin1String();
        return names;
    };
    session.setTodayWorktime(QTime(2, 0));
    session.setTodayActivetime(QTime(2, 0));
    session.save();
    age();
    session.save();
    QCOMPARE(written(), QString());

    session.addWorkMinute();
    QCOMPARE(written(), QStringLiteral("/session.ini"));
    age();
    session.setTasks(session.tasks(QStringLiteral("17")), QStringLiteral("17"));
    session.setTeams(session.teams());
    session.setTaskInfo(QStringLiteral("101"), session.taskInfo(QStringLiteral("101")));
    session.save();
    QCOMPARE(written(), QString());

    session.setTasks({task(QStringLiteral("0"))}, QStringLiteral("205"));
    session.taskInfo(QStringLiteral("999"));
    session.save();
    QCOMPARE(written(), QStringLiteral("/tasks.ini/taskInfo.ini"));
}

void SessionFilesTest::savedLikeAPlainWriting()
{
    QTemporaryDir plain;
    const auto compareFiles = [&plain] {
        QCOMPARE(contentOf(dataPath() + QStringLiteral("/config.ini")),
                 contentOf(plain.filePath(QStringLiteral("config.ini"))));
        for (const QLatin1String& name : fileNames)
            QCOMPARE(contentOf(userPath(name)), contentOf(plain.path() + name));
    };
    SessionOwner owner;
    Session& session = *owner.session();
    session.load(login, QStringLiteral("п%@,\n"));
    session.setTeamID(QStringLiteral("20"));
    session.setTaskID(QStringLiteral("3"));
    session.save();
    QStringList details;
    QVariantMap times;
    const auto savePlainly = [&] { writePlainly(session, details, times, plain.path()); };
    savePlainly();
    compareFiles();
    QVERIFY(!QFile::exists(userPath(QStringLiteral("/tasks.ini"))));

    const QString first = QStringLiteral("20/x");
    const QString second = QStringLiteral("General");
    session.setTeams({{first, QStringLiteral("Б")}, {second, QStringLiteral("А")}});
    session.setTasks({task(QStringLiteral("3"), 1), unassignedTask()}, first);
    QVERIFY(!QFile::exists(userPath(QStringLiteral("/tasks.ini"))));
    session.setTasks({}, second);
    QVERIFY(QFile::exists(userPath(QStringLiteral("/tasks.ini"))));
    details = QStringList{QStringLiteral("3"), QStringLiteral("x=y")};
    TaskInfo info;
    info.id = details.at(0);
    info.texts.append(
        TextTask{info.id, {}, {}, {}, QUrl(QStringLiteral("http://я")), {}, {{}, {}}});
    session.setTaskInfo(info.id, info);
    session.taskInfo(details.at(1));
    session.setTaskActiveTime(QString(), QTime(3, 0));
    times.insert(QString(), QTime(3, 0));
    session.save();
    savePlainly();
    compareFiles();

    session.setTasks({task(QStringLiteral("3"), 7), unassignedTask()}, first);
    session.setTeams({{second, QStringLiteral("А")}, {first, QStringLiteral("Б")}});
    info.files.append(Attachment());
    session.setTaskInfo(info.id, info);
    session.setTodayActivetime(QTime(3, 0));
    session.setTodayWorktime(QTime(4, 0));
    session.save();
    savePlainly();
    compareFiles();

    // What is left of the file keeps the comparison of teams going.
    session.setTeams({});
    NotificationManager::instance()->closeAll();
    session.save();
    savePlainly();
    compareFiles();
    QVERIFY(QFile::exists(userPath(fileNames[1])));
}

void SessionFilesTest::filesThatVanishedOrWereChangedComeBack()
{
    copyFixtures(today());
    SessionOwner owner;
    Session& session = *owner.session();
    session.setTodayWorktime(QTime(1, 2));
    session.setTodayActivetime(QTime(0, 47));
    session.save();
    QVector<QByteArray> contents;
    for (const QLatin1String& name : fileNames)
        contents.append(contentOf(userPath(name)));
    for (const QLatin1String& name : fileNames)
        QVERIFY(QFile::remove(userPath(name)));
    session.save();
    for (int i = 0; i < contents.size(); ++i)
        QCOMPARE(contentOf(userPath(fileNames[i])), contents.at(i));

    for (const QLatin1String& name : fileNames)
        writeFile(userPath(name), "[General]\n17=other\n205=@Invalid()\n");
    session.save();
    QCOMPARE(contentOf(userPath(fileNames[1])), contents.at(1));
    QCOMPARE(contentOf(userPath(fileNames[2])), contents.at(2));
    // What somebody else added to these two is no business of the session.
    QVERIFY(contentOf(userPath(fileNames[0])).contains("todayWorktime=01:02:00"));
    const QSettings details(userPath(fileNames[3]), QSettings::IniFormat);
    QCOMPARE(details.value(QStringLiteral("101")).value<TaskInfo>().creatorName,
             QStringLiteral("O'Neil"));

    QVERIFY(owner.removeDirectory(dataPath()));
    session.save();
    QVERIFY(QDir(userPath(QStringLiteral("/activity"))).exists());
    for (const QLatin1String& name : fileNames)
        QVERIFY(QFile::exists(userPath(name)));
    QVERIFY(isPrivate(dataPath()));
}

void SessionFilesTest::changeOfAccount()
{
    copyFixtures(today());
    SessionOwner owner;
    Session& session = *owner.session();
    session.taskInfo(QStringLiteral("555"));
    session.save();
    session.reset();
    QVERIFY(session.login().isEmpty() && session.password().isEmpty());
    QVERIFY(session.teamID().isEmpty() && session.taskID().isEmpty());
    QVERIFY(!session.active() && !session.logged() && !session.isOnline());
    QCOMPARE(session.displayWorktime(), QTime(0, 0));
    QVERIFY(session.teams().isEmpty() && session.allTasks().isEmpty());
    const QByteArray before = contentOf(userPath(fileNames[0]));

    session.load(QStringLiteral("boris"), QStringLiteral("b"));
    session.setLogged(true);
    QVERIFY(session.teams().isEmpty());
    QVERIFY(session.isOnline() == false);
    session.save();
    QCOMPARE(contentOf(userPath(fileNames[0])), before);
    QVERIFY(contentOf(dataPath() + QStringLiteral("/boris/session.ini")).contains("password=b"));
    QVERIFY(contentOf(dataPath() + QStringLiteral("/config.ini")).contains("lastLogin=boris"));

    session.save();
    session.reset();
    session.load(login, QStringLiteral("new"));
    QCOMPARE(session.displayWorktime(), QTime(1, 2));
    QCOMPARE(session.teams().size(), 4);
    QCOMPARE(session.password(), QStringLiteral("new"));
    QVERIFY(contentOf(userPath(fileNames[3])).contains("\n555="));
}

void SessionFilesTest::damagedFiles_data()
{
    QTest::addColumn<QByteArray>("content");
    QTest::newRow("empty") << QByteArray();
    QTest::newRow("zeros") << QByteArray(4096, '\0');
    QTest::newRow("no ini") << QByteArray("<html>=\n[[[\n=\n\"\\x");
    QTest::newRow("huge list") << QByteArray("[General]\n17=\"@Variant(\\0\\0\\0\\x7f\\0\\0\\0\\f"
                                             "QList<Task>\\0\\x7f\\xff\\xff\\xff)\"\n");
    QTest::newRow("huge list of Qt's")
        << QByteArray("[General]\n17=\"@Variant(\\0\\0\\0\\v\\x7f\\xff\\xff\\xff)\"\n");
    QTest::newRow("type that passes for any other") << QByteArray(
        "[General]\n17=@Variant(\\0\\0\\0\\x34\\0\\x66)\n101=@Variant(\\0\\0\\0\\x34\\0\\x66)\n");
    QTest::newRow("huge list in a map") << QByteArray(
        "[General]\ntask2activeTimeMap=@Variant(\\0\\0\\0\\b\\0\\0\\0\\x1\\0\\0\\0\\0\\0"
        "\\0\\0\\v\\x7f\\xff\\xff\\xff)\n");
    QTest::newRow("cut list") << QByteArray("[General]\n17=\"@Variant(\\0\\0\\0\\x7f\\0\\0\\0\\f"
                                            "QList<Task>\\0\\0\\0\\0\\x1\\0\\0)\"\n");
    QTest::newRow("other types") << QByteArray("[General]\n17=1, 2\n101=@Size(1 2)\nlogged=@\n"
                                               "taskID=@Variant(\\0\\0\\0\\n)\nactive=\n");
}

void SessionFilesTest::damagedFiles()
{
    QFETCH(QByteArray, content);
    copyFixtures();
    for (const QLatin1String& name : fileNames)
        writeFile(userPath(name), content);
    SessionOwner owner;
    Session& session = *owner.session();
    QCOMPARE(session.login(), QString(login));
    QVERIFY(session.tasks(QStringLiteral("17")).isEmpty());
    QVERIFY(session.taskInfo(QStringLiteral("101")).id.isEmpty());
    QCOMPARE(session.displayWorktime(), QTime(0, 0));

    session.setLogged(true);
    session.setTaskID(QStringLiteral("4"));
    session.save();
    session.reset();
    session.load(login, QString());
    QVERIFY(session.logged());
    QCOMPARE(session.taskID(), QStringLiteral("4"));
}

void SessionFilesTest::oddLogins_data()
{
    QTest::addColumn<QString>("name");
    QTest::newRow("parent") << QStringLiteral("../x");
    QTest::newRow("nested") << QStringLiteral("a/b");
    QTest::newRow("quotes") << QStringLiteral("\"ф\" :*?.");
    QTest::newRow("long") << QString(5000, QLatin1Char('x'));
    QTest::newRow("empty") << QString();
}

void SessionFilesTest::oddLogins()
{
    QFETCH(QString, name);
    SessionOwner owner;
    if (name.isEmpty())
        QTest::ignoreMessage(QtWarningMsg, "QDir::mkdir: Empty or null file name");
    owner.session()->load(name, QStringLiteral("p"));
    owner.session()->setTeams({{QStringLiteral("/"), name}, {QString(), name}});
    owner.session()->taskInfo(QString());
    owner.session()->save();
    QCOMPARE(owner.session()->login(), name);
    QVERIFY(!QFile::exists(QStringLiteral("/teams.ini")));
}

void SessionFilesTest::directoryIsPrivateAndNeverTheHome()
{
    QVERIFY(QDir().mkdir(dataPath()));
    QVERIFY(QFile::setPermissions(dataPath(),
                                  QFile::ReadOwner | QFile::WriteOwner | QFile::ExeOwner
                                      | QFile::ReadGroup | QFile::ReadOther | QFile::ExeOther));
    {
        SessionOwner owner;
        QVERIFY(isPrivate(dataPath()));
        QVERIFY(owner.removeDirectory(owner.dataDir().absolutePath()));
    }
    QVERIFY(QDir(dataPath()).removeRecursively());

    const QString homeFile = QDir::homePath() + QStringLiteral("/json-of-mine");
    writeFile(homeFile, "x");
    writeFile(dataPath(), "in the way");
    {
        SessionOwner owner;
        owner.session()->load(login, QStringLiteral("p"));
        owner.session()->save();
        QVERIFY(owner.removeDirectory(owner.dataDir().absolutePath()));
        QCOMPARE(owner.dataDir().path(), dataPath());
    }
    QCOMPARE(contentOf(homeFile), QByteArray("x"));
    QVERIFY(!QFile::exists(QDir::homePath() + QStringLiteral("/config.ini")));
    QVERIFY(QFile::remove(homeFile));
}

void SessionFilesTest::oldDataIsRemoved()
{
    copyFixtures();
    const QStringList old = {QStringLiteral("/json"),
                             QStringLiteral("/json12.old"),
                             QStringLiteral("/.tessaport.db"),
                             QStringLiteral("/comments.data"),
                             QStringLiteral("/session.json"),
                             QStringLiteral("/anna@example.com/session.json"),
                             QStringLiteral("/anna@example.com/tasks.json"),
                             QStringLiteral("/anna@example.com/teams.json"),
                             QStringLiteral("/anna@example.com/team_17/a/b"),
                             QStringLiteral("/anna@example.com/team_2192/.hidden")};
    const QStringList kept = {QStringLiteral("/ajson"), QStringLiteral("/jsondir/x"),
                              QStringLiteral("/anna@example.com/team_/x"),
                              QStringLiteral("/anna@example.com/team_1/x"),
                              QStringLiteral("/anna@example.com/activity/json1")};
    for (const QString& name : old + kept)
        writeFile(dataPath() + name, "x");
    QSettings native;
    native.setValue(QStringLiteral("left"), 1);
    native.sync();

    SessionOwner owner;
    for (const QString& name : old)
        QVERIFY2(!QFile::exists(dataPath() + name), qPrintable(name));
    QVERIFY(!QDir(userPath(QStringLiteral("/team_17"))).exists());
    for (const QString& name : kept)
        QVERIFY2(QFile::exists(dataPath() + name), qPrintable(name));
    QVERIFY(!native.contains(QStringLiteral("left")));
}

void SessionFilesTest::removeDirectory()
{
    SessionOwner owner;
    owner.setNoSave(true);
    QTemporaryDir other;
    writeFile(other.filePath(QStringLiteral("kept")), "x");
    const QString path = dataPath() + QStringLiteral("/cached");
    QVERIFY(owner.removeDirectory(path));
    QVERIFY(owner.removeDirectory(QString()));
    writeFile(path + QStringLiteral("/a/b/.hidden"), "x");
    writeFile(path + QStringLiteral("/Ж"), "x");
#ifdef Q_OS_UNIX
    QVERIFY(QFile::link(other.path(), path + QStringLiteral("/a/link")));
    QVERIFY(QFile::link(QStringLiteral("/nowhere"), path + QStringLiteral("/broken")));
#endif
    QVERIFY(owner.removeDirectory(path));
    QVERIFY(!QFile::exists(path));
    QVERIFY(QFile::exists(other.filePath(QStringLiteral("kept"))));
}

TESSAPORT_TEST_MAIN(SessionFilesTest, QApplication)

#include "tst_sessionfiles.moc"
