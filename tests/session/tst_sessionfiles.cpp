// SPDX-License-Identifier: GPL-3.0-or-later
#include "notifications/NotificationManager.h"
#include "session/Session.h"
#include "support/TestMain.h"

#include <QApplication>
#include <QSettings>

namespace {

const QString user = QStringLiteral("/anna@example.com/");
const QString fileNames[] = {user + QStringLiteral("session.ini"),
                             user + QStringLiteral("teams.ini"), user + QStringLiteral("tasks.ini"),
                             user + QStringLiteral("taskInfo.ini"), QStringLiteral("/config.ini")};

QString dataPath(const QString& name = QString())
{
    return QDir::homePath() + QStringLiteral("/.tessaport") + name;
}

QByteArray contentOf(const QString& path)
{
    QFile file(path);
    return file.open(QIODevice::ReadOnly | QIODevice::Text) ? file.readAll()
                                                            : QByteArray("no file");
}

QByteArray fixture(const QString& name)
{
    return contentOf(QStringLiteral(TEST_SOURCE_DIR "/fixtures") + name);
}

void writeFile(const QString& path, const QByteArray& content)
{
    QDir().mkpath(QFileInfo(path).path());
    QFile file(path);
    QVERIFY(file.open(QIODevice::WriteOnly));
    file.write(content);
}

/// Every key with a sync of its own.
void writePlainly(const QString& path, const QVector<QPair<QString, QVariant>>& values)
{
    QSettings settings(path, QSettings::IniFormat);
    for (const auto& [key, value] : values) {
        settings.setValue(key, value);
        settings.sync();
    }
}

} // namespace

/// Loading and saving in a home of the test's own, beside files that another program wrote and
/// beside what a plain writing of every key leaves.
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
        QTest::addColumn<QByteArray>("workTime");
        QTest::addColumn<QTime>("work");
        QTest::addColumn<QTime>("active");
        const QString today = QDate::currentDate().toString();
        const QTime none(0, 0);
        const QTime active(0, 47);
        QTest::newRow("later day") << "Mon May 12 2025" << QByteArray("01:02:59") << none << none;
        QTest::newRow("same day") << today << QByteArray("01:02:59") << QTime(1, 2) << active;
        QTest::newRow("damaged") << today << QByteArray("25:02:59") << none << active;
    }

    void load()
    {
        QFETCH(QString, date);
        QFETCH(QByteArray, workTime);
        QByteArray content = fixture(fileNames[0]);
        content.replace("Mon May 12 2025", date.toLatin1()).replace("01:02:59", workTime);
        writeFile(dataPath(fileNames[0]), content);
        SessionOwner owner;
        Session& session = *owner.session();
        QTEST(session.displayActivetime(), "active");
        session.syncDisplayWorktime();
        QTEST(session.displayWorktime(), "work");
        QTEST(session.todayActiveTime(QStringLiteral("101")), "active");

        QCOMPARE(session.password(), QStringLiteral("@Пароль, \"x\"; = \\n%"));
        QVERIFY(session.logged() && session.active() && !session.isOnline());
        QCOMPARE(session.team(QStringLiteral("205")).name, QStringLiteral("@Дизайн \"А\""));
        QCOMPARE(session.taskDeadline(), QDateTime(QDate(2025, 5, 12), QTime(12, 0)));
        // A date read as missing equals one that never was, or each start would tell of new
        // deadlines.
        QVERIFY(session.tasks(QStringLiteral("17")).at(1).deadline == QDateTime());
        QCOMPARE(session.taskInfo(QStringLiteral("101")).texts.at(0).keywords.at(0).count2,
                 QStringLiteral("много"));

        // The records are written as the other program wrote them.
        QVERIFY(owner.removeDirectory(dataPath()));
        session.save();
        for (int file = 1; file < 5; ++file)
            QCOMPARE(contentOf(dataPath(fileNames[file])), fixture(fileNames[file]));
        QVERIFY(QDir(dataPath(user + QStringLiteral("activity"))).exists());
    }

    void unchangedFilesAreNotWritten()
    {
        SessionOwner owner;
        Session& session = *owner.session();
        const auto written = [] {
            QString names;
            const QDateTime now = QDateTime::currentDateTime();
            for (const QString& name : fileNames) {
                QFile file(dataPath(name));
                if (QFileInfo(file).lastModified() > now.addSecs(-60 * 60))
                    names += QFileInfo(file).baseName();
                file.open(QIODevice::ReadWrite);
                file.setFileTime(now.addDays(-1), QFileDevice::FileModificationTime);
            }
            return names;
        };
        session.save();
        written();
        session.addWorkMinute();
        QCOMPARE(written(), QStringLiteral("session"));
        const QString id = QStringLiteral("17");
        for (const char* files : {"taskInfo", ""}) {
            session.setTasks(session.tasks(id), id);
            session.setTeams(session.teams());
            session.setTaskInfo(id, session.taskInfo(id));
            session.save();
            QCOMPARE(written(), QLatin1String(files));
        }

        // What others changed comes back.
        writeFile(dataPath(fileNames[2]), "[General]\n17=other\n205=@Invalid()\n");
        session.save();
        QCOMPARE(contentOf(dataPath(fileNames[2])), fixture(fileNames[2]));
    }

    void savedLikeAPlainWriting()
    {
        QTemporaryDir plain;
        const auto path = [&plain](int file) { return plain.path() + fileNames[file]; };
        QDir(dataPath()).removeRecursively();
        SessionOwner owner;
        Session& session = *owner.session();
        session.load(QStringLiteral("anna@example.com"), QStringLiteral("п%@,\n"));
        session.setTaskID(QStringLiteral("3"));
        session.setWorktimeDate(QDate(2025, 5, 12));
        session.setTaskActiveTime(QString(), QTime(3, 0));
        const QString first = QStringLiteral("20/x");
        const QString second = QStringLiteral("General");
        session.setTeams({{first, QStringLiteral("Б")}, {second, QStringLiteral("А")}});
        Task task = unassignedTask();
        session.setTasks({task, Task()}, first);
        // The last team's list brings the first save.
        session.setTasks({}, second);
        task.importance = 7;
        session.setTasks({task}, first);
        session.save();

        writePlainly(
            path(0),
            {{QStringLiteral("password"), QStringLiteral("п%@,\n")},
             {QStringLiteral("logged"), false},
             {QStringLiteral("active"), false},
             {QStringLiteral("teamID"), QString()},
             {QStringLiteral("taskID"), QStringLiteral("3")},
             {QStringLiteral("isOnline"), true},
             {QStringLiteral("worktimeDate"), QStringLiteral("Mon May 12 2025")},
             {QStringLiteral("todayWorktime"), QStringLiteral("00:00:00")},
             {QStringLiteral("todayActivetime"), QStringLiteral("00:00:00")},
             {QStringLiteral("task2activeTimeMap"), QVariantMap{{QString(), QTime(3, 0)}}}});
        writePlainly(path(1), {{first, QStringLiteral("Б")}, {second, QStringLiteral("А")}});
        writePlainly(path(2),
                     {{first, QVariant::fromValue(QList<Task>{task})},
                      {second, QVariant::fromValue(QList<Task>())}});
        for (int file = 0; file < 3; ++file)
            QCOMPARE(contentOf(dataPath(fileNames[file])), contentOf(path(file)));

        session.setTeams({});
        session.save();
        QCOMPARE(contentOf(dataPath(fileNames[1])), QByteArray());
        NotificationManager::instance()->closeAll();
    }

    void damagedFiles_data()
    {
        QTest::addColumn<QByteArray>("content");
        QTest::newRow("zeros") << QByteArray(4096, '\0');
        for (const char* content :
             {"<html>=\n[[[\n=\n\"\\x",
              // A list that is cut, and one of too many.
              R"(17=@Variant(\0\0\0\x7f\0\0\0\fQList<Task>\0\0\0\0\x1\0\0))",
              R"(17=@Variant(\0\0\0\x7f\0\0\0\fQList<Task>\0\x7f\xff\xff\xff))",
              // Lists of Qt's own of too many, and a type that passes for any other.
              R"(17=@Variant(\0\0\0\v\x7f\xff\xff\xff))",
              R"(x=@Variant(\0\0\0\b\0\0\0\x1\0\0\0\0\0\0\0\v\x7f\xff\xff\xff))",
              R"(17=@Variant(\0\0\0\x34\0\x66))"})
            QTest::newRow(content) << QByteArray(content);
    }

    void damagedFiles()
    {
        QFETCH(QByteArray, content);
        // What Qt would read beyond all bounds is not even tried.
        const bool aside = content.contains("@Variant") && !content.contains("QList<Task>");
        for (int file = 0; file < 4; ++file) {
            writeFile(dataPath(fileNames[file]), content);
            if (aside)
                QTest::ignoreMessage(QtWarningMsg, QRegularExpression(QStringLiteral("put aside")));
        }
        SessionOwner owner;
        Session& session = *owner.session();
        QVERIFY(session.tasks(QStringLiteral("17")).isEmpty());
        QCOMPARE(contentOf(dataPath(user + QStringLiteral("tasks.ini.damaged"))),
                 aside ? content : QByteArray("no file"));

        session.setTaskID(QStringLiteral("4"));
        session.save();
        session.reset();
        session.load(QStringLiteral("anna@example.com"), QString());
        QCOMPARE(session.taskID(), QStringLiteral("4"));
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

#ifdef Q_OS_UNIX
        SessionOwner owner;
        QVERIFY(!(QFile::permissions(dataPath()) & (QFile::ReadGroup | QFile::ReadOther)));
#endif
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
#ifdef Q_OS_UNIX
        QVERIFY(QFile::link(dataPath(QStringLiteral("/linked")),
                            dataPath(user + QStringLiteral("team_17/a/link"))));
#endif
        SessionOwner owner;
        for (const QString& name : old)
            QVERIFY2(!QFile::exists(dataPath(name)), qPrintable(name));
        QVERIFY(!QDir(dataPath(user + QStringLiteral("team_17"))).exists());
        for (const QString& name : kept)
            QVERIFY2(QFile::exists(dataPath(name)), qPrintable(name));
    }
};

TESSAPORT_TEST_MAIN(SessionFilesTest, QApplication)

#include "tst_sessionfiles.moc"
