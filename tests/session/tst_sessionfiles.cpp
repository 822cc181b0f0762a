// SPDX-License-Identifier: GPL-3.0-or-later
#include "StoredSession.h"

#include "support/TestMain.h"

#include <QApplication>
#include <QSettings>

#include <algorithm>

namespace {

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
    void init() { writeFixtures(); }

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
        QCOMPARE(stateOf(session),
                 annasState(none, none)
                     .replaceInStrings(QRegularExpression(QStringLiteral("^@Пароль.*")),
                                       QStringLiteral("typed")));
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
    }

    void whatOthersChangedOrRemovedComesBack()
    {
        SessionOwner owner;
        Session& session = *owner.session();
        session.taskInfo(QStringLiteral("new"));
        session.save();
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
            user + QStringLiteral("tasks.json"), user + QStringLiteral("team_17/a/.hidden"),
            user + QStringLiteral("teams.json"), user + QStringLiteral("session.json")};
        const QStringList kept = {QStringLiteral("/ajson"),
                                  QStringLiteral("/jsondir/x"),
                                  QStringLiteral("/linked/x"),
                                  user + QStringLiteral("team_1/x"),
                                  user + QStringLiteral("activity/json1"),
                                  user + QStringLiteral("team_9/Отдел 1%/x")};
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
