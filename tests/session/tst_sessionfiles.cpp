// SPDX-License-Identifier: GPL-3.0-or-later
#include "notifications/NotificationManager.h"
#include "session/Session.h"
#include "support/Files.h"
#include "support/TestMain.h"

#include <QApplication>
#include <QSettings>

#include <algorithm>

namespace {

const QString user = QStringLiteral("/anna@example.com/");
const QString fileNames[] = {user + QStringLiteral("session.ini"),
                             user + QStringLiteral("teams.ini"), user + QStringLiteral("tasks.ini"),
                             user + QStringLiteral("taskInfo.ini"), QStringLiteral("/config.ini")};

QString dataPath(const QString& name = QString())
{
    return QDir::homePath() + QStringLiteral("/.tessaport") + name;
}

QByteArray fixture(const QString& name)
{
    return contentOf(QStringLiteral(TEST_SOURCE_DIR "/fixtures") + name);
}

QString dayOf(const QDate& date)
{
    return date.toString(Qt::ISODate);
}

const QString none = QStringLiteral("00:00:00");

/// All of a session that can be seen from outside; to ask for what it counts, it is told to show
/// it.
QStringList stateOf(Session& session)
{
    QStringList state{
        session.login(),
        session.password(),
        QStringLiteral("logged %1, active %2, online %3")
            .arg(session.logged())
            .arg(session.active())
            .arg(session.isOnline()),
        session.teamID() + QLatin1Char('/') + session.taskID(),
        dayOf(session.worktimeDate()),
        QStringLiteral("shown ") + session.displayWorktime().toString() + QLatin1Char(' ')
            + session.displayActivetime().toString(),
    };
    session.syncDisplayWorktime();
    state << QStringLiteral("counted ") + session.displayWorktime().toString() + QLatin1Char(' ')
            + session.todayActivetime().toString() + QStringLiteral(", 101: ")
            + session.todayActiveTime(QStringLiteral("101")).toString();
    const QList<Team> teams = session.teams();
    for (const Team& team : teams)
        state << team.id + QLatin1Char('=') + team.name;
    const QList<Task> tasks = session.allTasks();
    for (const Task& task : tasks)
        state << QStringList{task.id, task.title, dayOf(task.deadline.date()), task.block}.join(
            QLatin1Char(','));
    const TaskInfo info = session.taskInfo(QStringLiteral("101"));
    return state
        << QStringLiteral("101 by %1, texts: %2").arg(info.creatorName).arg(info.texts.size());
}

/// What is in the fixtures, with these counters today.
QStringList annasState(const QString& work, const QString& active)
{
    return {QStringLiteral("anna@example.com"),
            QStringLiteral("@Пароль, \"x\"; = \\n%"),
            QStringLiteral("logged 1, active 0, online 0"),
            QStringLiteral("17/101"),
            dayOf(QDate::currentDate()),
            QStringLiteral("shown %1 %2").arg(work, active),
            QStringLiteral("counted %1 %2, 101: %2").arg(work, active),
            QStringLiteral("17=Контент, новости"),
            QStringLiteral("205=@Дизайн \"А\""),
            QStringLiteral("2192="),
            QStringLiteral("9/Отдел 1%=Ключ с чертой"),
            QStringLiteral("101,Обзор «ноутбуков»,2025-05-12,"),
            QStringLiteral("102,Blocked,,1"),
            QStringLiteral("103,,2025-05-12,0"),
            QStringLiteral("0,Прочие непоставленные задачи,,"),
            QStringLiteral("101 by O'Neil, texts: 2")};
}

/// Whether this system tells the owner of a file from others.
bool hasModes()
{
    return !QSysInfo::kernelType().startsWith(QLatin1String("win"));
}

bool isPrivate(const QString& path)
{
    return !hasModes() || !(QFile::permissions(path) & (QFile::ReadGroup | QFile::ReadOther));
}

} // namespace

/// Loading and saving in a home of the test's own, beside files that another program wrote.
class SessionFilesTest : public QObject {
    Q_OBJECT

private slots:
    void init()
    {
        QDir(dataPath()).removeRecursively();
        for (const QString& name : fileNames)
            writeFile(dataPath(name), fixture(name));
    }

    void load_data()
    {
        QTest::addColumn<QString>("date");
        QTest::addColumn<QString>("workTime");
        QTest::addColumn<QString>("work");
        QTest::addColumn<QString>("active");
        const QString today = QDate::currentDate().toString();
        const QString yesterday = QDate::currentDate().addDays(-1).toString();
        QTest::newRow("later day") << yesterday << "01:02:59" << none << none;
        QTest::newRow("same day") << today << "01:02:59"
                                  << "01:02:00"
                                  << "00:47:00";
        QTest::newRow("damaged") << today << "25:02:59" << none << "00:47:00";
    }

    void load()
    {
        QFETCH(QString, date);
        QFETCH(QString, workTime);
        QFETCH(QString, work);
        QFETCH(QString, active);
        const auto sessionFile = [](const QString& date, const QString& work,
                                    const QString& active) {
            return fixture(fileNames[0])
                .replace("Mon May 12 2025", date.toLatin1())
                .replace("01:02:59", work.toLatin1())
                .replace("00:47:01", active.toLatin1());
        };
        writeFile(dataPath(fileNames[0]), sessionFile(date, workTime, QStringLiteral("00:47:01")));
        SessionOwner owner;
        Session& session = *owner.session();
        QCOMPARE(stateOf(session), annasState(work, active));
        // A date read as missing equals one that never was, or each start would tell of new
        // deadlines.
        QVERIFY(session.tasks(QStringLiteral("17")).at(1).deadline == QDateTime());

        // All is written as the other program wrote it.
        QVERIFY(owner.removeDirectory(dataPath()));
        session.save();
        for (int file = 1; file < 5; ++file)
            QCOMPARE(contentOf(dataPath(fileNames[file])), fixture(fileNames[file]));
        // On Windows in the order in which they were set.
        const auto sorted = [](const QByteArray& content) {
            QList<QByteArray> lines = content.split('\n');
            std::sort(lines.begin(), lines.end());
            return lines;
        };
        if (active != none)
            QCOMPARE(sorted(contentOf(dataPath(fileNames[0]))),
                     sorted(sessionFile(QDate::currentDate().toString(), work, active)));
        QVERIFY(QDir(dataPath(user + QStringLiteral("activity"))).exists());
    }

    void accountChange()
    {
        SessionOwner owner;
        Session& session = *owner.session();
        session.setWorktimeDate(QDate(2025, 5, 12));
        session.setTodayWorktime(QTime(1, 0));
        session.setTodayActivetime(QTime(1, 0));
        session.setTaskActiveTime(QStringLiteral("101"), QTime(1, 0));
        session.syncDisplayActivetime();
        session.setActive(true);
        session.setIsOnline(true);
        session.reset();
        QStringList nobody{QString(),
                           QString(),
                           QStringLiteral("logged 0, active 0, online 0"),
                           QStringLiteral("/"),
                           dayOf(QDate::currentDate()),
                           QStringLiteral("shown 00:00:00 00:00:00"),
                           QStringLiteral("counted 00:00:00 00:00:00, 101: 00:00:00"),
                           QStringLiteral("101 by , texts: 0")};
        QCOMPARE(stateOf(session), nobody);

        // What was typed is good, whatever is stored.
        session.load(QStringLiteral("anna@example.com"), QStringLiteral("typed"));
        QStringList expected = annasState(none, none);
        expected[1] = QStringLiteral("typed");
        QCOMPARE(stateOf(session), expected);
    }

    void unchangedFilesAreNotWritten()
    {
        SessionOwner owner;
        Session& session = *owner.session();
        const auto written = [&session] {
            QStringList names;
            const QDateTime now = QDateTime::currentDateTime();
            for (const QString& name : fileNames) {
                QFile file(dataPath(name));
                if (QFileInfo(file).lastModified() > now.addSecs(-60 * 60))
                    names += QFileInfo(file).baseName();
                file.open(QIODevice::ReadWrite);
                file.setFileTime(now.addDays(-1), QFileDevice::FileModificationTime);
            }
            // What was touched like this is looked through once.
            session.save();
            return names.join(QLatin1Char(','));
        };
        session.save();
        written();
        session.addWorkMinute();
        QCOMPARE(written(), QStringLiteral("session"));
        const QString id = QStringLiteral("17");
        session.setTasks(session.tasks(id), id);
        session.setTeams(session.teams());
        session.save();
        QCOMPARE(written(), QString());

        // A mere look leaves an empty record.
        session.taskInfo(QStringLiteral("new"));
        QList<Team> teams = session.teams();
        teams[0].name += QLatin1Char('x');
        session.setTeams(teams);
        session.save();
        QCOMPARE(written(), QStringLiteral("teams,taskInfo"));
        QVERIFY(contentOf(dataPath(fileNames[3])).contains("\nnew="));

        session.setTeams({});
        session.save();
        QCOMPARE(contentOf(dataPath(fileNames[1])), QByteArray());

        // What others changed comes back, and what they removed.
        writeFile(dataPath(fileNames[2]), "[General]\n17=other\n205=@Invalid()\n");
        QVERIFY(QFile::remove(dataPath(fileNames[3])));
        session.save();
        QCOMPARE(contentOf(dataPath(fileNames[2])), fixture(fileNames[2]));
        QVERIFY(contentOf(dataPath(fileNames[3])).contains("\nnew="));
    }

    void savedAtTheEndUnlessToldNotTo()
    {
        for (const bool isSaved : {false, true}) {
            {
                SessionOwner owner;
                owner.setNoSave(!isSaved);
                owner.session()->setTaskID(QStringLiteral("4"));
            }
            QCOMPARE(contentOf(dataPath(fileNames[0])).contains("taskID=4\n"), isSaved);
        }
    }

    void writtenAgainAfterAFailure()
    {
        SessionOwner owner;
        const QString directory = dataPath(user).chopped(1);
        QVERIFY(QDir(directory).removeRecursively());
        writeFile(directory, "in the way");
        owner.session()->setTaskID(QStringLiteral("4"));
        owner.session()->save();
        QVERIFY(QFile::remove(directory));
        owner.session()->save();
        QVERIFY(contentOf(dataPath(fileNames[0])).contains("taskID=4\n"));
    }

    void damagedValues_data()
    {
        QTest::addColumn<QByteArray>("value");
        // What passes for any type, lists of too many, a mark that is not ours, cut values.
        for (const char* value :
             {R"(@Variant(\0\0\0\x34\0\x66))", R"(@Variant(\0\0\0\v\x7f\xff\xff\xff))",
              R"(@Variant(\0\0\0\b\0\0\0\x1\0\0\0\0\0\0\0\v\x7f\xff\xff\xff))",
              R"(@Variant(\0\0\0\x7f\0\0\0\rQVariantList\0\x7f\xff\xff\xff))",
              R"(@DateTime(\0\0\0\n\xff\xff\xff\xff))",
              R"(@Variant(\0\0\0\x7f\0\0\0\fQList<Task>\0\x7f\xff\xff\xff))",
              R"(@Variant(\0\0\0\x7f\0\0\0\fQList<Task>\0\0\0\0\x1\0\0))",
              R"(@Variant(\0\0\0\x7f\0\0\0\tTaskInfo\0\0\0\0\x4\0\x31\0\x30))",
              R"(@Variant(\0\0\0\b\0\0\0\x2\0\0\0\0\0\0\0\xf\0+\a\xa0))",
              // The same in other notations.
              R"r(  "\x40Vari\x61nt(\0\0\0\v\x7f\xff\xff\xff)" )r",
              R"(""\x100000040\q\126ariant(\0\0\0\v\x7f\xff\xff\xff))",
              R"(_, \100Variant(\0\0\0\v\x7f\xff\xff\xff), @@a)",
              "\\\n\\@\\200100Variant(\\0\\0\\0\\v\\x7f\\xff\\xff\\xff); @"})
            QTest::newRow(value) << QByteArray(value);
        // A list in a list in a list, deeper than any stack.
        QTest::newRow("nested") << "@Variant(" + QByteArray(R"(\0\0\0\t\0\0\0\x1)").repeated(200000)
                + ')';
    }

    // One damaged value costs that value, and is told once.
    void damagedValues()
    {
        QFETCH(QByteArray, value);
        const QByteArray keys[] = {"task2activeTimeMap=", "17=", "17=", "101="};
        for (int file = 0; file < 4; ++file) {
            QByteArray content = fixture(fileNames[file]);
            content.replace("Mon May 12 2025", QDate::currentDate().toString().toLatin1());
            const int at = content.indexOf('\n' + keys[file]) + 1 + keys[file].size();
            content.replace(at, content.indexOf('\n', at) - at, value);
            writeFile(dataPath(fileNames[file]), content);
            QTest::ignoreMessage(
                QtWarningMsg,
                QRegularExpression(QStringLiteral("A damaged value is left out: \"")
                                   + QString::fromLatin1(keys[file].chopped(1))));
        }
        // A kill has left it.
        writeFile(dataPath(fileNames[0]) + QStringLiteral(".check"), "half of a cop");
        QStringList expected = annasState(QStringLiteral("01:02:00"), QStringLiteral("00:47:00"));
        expected[6].replace(QStringLiteral("101: 00:47:00"), QStringLiteral("101: 00:00:00"));
        expected[7] = QStringLiteral("17=");
        expected.erase(expected.begin() + 11, expected.begin() + 14);
        expected.last() = QStringLiteral("101 by , texts: 0");
        SessionOwner owner;
        Session& session = *owner.session();
        QCOMPARE(stateOf(session), expected);

        // What is empty now is of its type with the next save.
        session.save();
        const auto stored = [](int file, const char* key) {
            const QSettings settings(dataPath(fileNames[file]), QSettings::IniFormat);
            return QByteArray(settings.value(QLatin1String(key)).typeName());
        };
        QCOMPARE(stored(0, "task2activeTimeMap"), QByteArray("QVariantMap"));
        QCOMPARE(stored(2, "17"), QByteArray("QList<Task>"));
        QCOMPARE(stored(3, "101"), QByteArray("TaskInfo"));
        const QStringList names =
            QDir(dataPath(user)).entryList(QDir::AllEntries | QDir::NoDotAndDotDot);
        QCOMPARE(names.join(QLatin1Char(' ')),
                 QStringLiteral("activity session.ini taskInfo.ini tasks.ini teams.ini"));
    }

    void damagedFiles()
    {
        for (const QByteArray& content :
             {QByteArray(4096, '\0'), QByteArray("<html>=\n[[[\n=\n\"\\x"), QByteArray("\\"),
              QByteArray("17=@Variant(\\0\\0")}) {
            for (int file = 0; file < 4; ++file)
                writeFile(dataPath(fileNames[file]), content);
            SessionOwner owner;
            Session& session = *owner.session();
            QVERIFY(session.tasks(QStringLiteral("17")).isEmpty());
            session.setTaskID(QStringLiteral("4"));
            session.save();
            session.reset();
            session.load(QStringLiteral("anna@example.com"), QString());
            QCOMPARE(session.taskID(), QStringLiteral("4"));
        }
    }

    void directoryIsPrivateAndNeverTheHome()
    {
        QVERIFY(QDir(dataPath()).removeRecursively());
        const QString homeFile = QDir::homePath() + QStringLiteral("/json-of-mine");
        writeFile(homeFile, "x");
        writeFile(dataPath(), "in the way");
        {
            SessionOwner owner;
            owner.session()->load(QStringLiteral("anna"), QStringLiteral("p"));
            owner.session()->save();
            QVERIFY(owner.removeDirectory(owner.dataDir().absolutePath()));
        }
        QCOMPARE(contentOf(homeFile), QByteArray("x"));
        QVERIFY(QFile::remove(homeFile) && QFile::remove(dataPath()));

        SessionOwner owner;
        QVERIFY(isPrivate(dataPath()));
    }

    void filesArePrivate()
    {
        QFile::setPermissions(dataPath(fileNames[4]), QFile::ReadOwner | QFile::ReadOther);
        QVERIFY(QFile::remove(dataPath(fileNames[0])));
        SessionOwner owner;
        QVERIFY(isPrivate(dataPath(fileNames[4])));
        owner.session()->save();
        for (const char* id : {"4", "5"}) {
            owner.session()->setTaskID(QLatin1String(id));
            owner.session()->save();
            for (const QString& name : fileNames)
                QVERIFY2(isPrivate(dataPath(name)), qPrintable(name));
        }
    }

    void oldDataIsRemoved()
    {
        const QStringList old = {
            QStringLiteral("/json12.old"),       QStringLiteral("/.tessaport.db"),
            QStringLiteral("/comments.data"),    QStringLiteral("/session.json"),
            user + QStringLiteral("tasks.json"), user + QStringLiteral("team_17/a/.hidden")};
        const QStringList kept = {QStringLiteral("/ajson"), QStringLiteral("/jsondir/x"),
                                  QStringLiteral("/linked/x"), user + QStringLiteral("team_1/x"),
                                  user + QStringLiteral("activity/json1")};
        for (const QString& name : old + kept)
            writeFile(dataPath(name), "x");
        QVERIFY(QFile::link(dataPath(QStringLiteral("/linked")),
                            dataPath(user + QStringLiteral("team_17/a/link")))
                || !hasModes());
        QSettings().setValue(QStringLiteral("old"), 1);
        SessionOwner owner;
        QVERIFY(!QSettings().contains(QStringLiteral("old")));
        for (const QString& name : old)
            QVERIFY2(!QFile::exists(dataPath(name)), qPrintable(name));
        QVERIFY(!QDir(dataPath(user + QStringLiteral("team_17"))).exists());
        for (const QString& name : kept)
            QVERIFY2(QFile::exists(dataPath(name)), qPrintable(name));
    }
};

TESSAPORT_TEST_MAIN(SessionFilesTest, QApplication)

#include "tst_sessionfiles.moc"
