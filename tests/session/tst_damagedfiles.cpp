// SPDX-License-Identifier: GPL-3.0-or-later
#include "StoredSession.h"

#include "support/TestMain.h"

#include <QCoreApplication>
#include <QRegularExpression>
#include <QSettings>

/// Loading files that are not as they were written.
class DamagedFilesTest : public QObject {
    Q_OBJECT

private slots:
    void init() { writeFixtures(); }

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
        const auto allOf = [](const char* start) {
            return QRegularExpression(QLatin1Char('^') + QLatin1String(start)
                                      + QStringLiteral(".*"));
        };
        const QStringList expected =
            annasState(QStringLiteral("01:02:00"), QStringLiteral("00:47:00"))
                .replaceInStrings(QStringLiteral("101: 00:47:00"), QStringLiteral("101: 00:00:00"))
                .replaceInStrings(allOf("17="), QStringLiteral("17="))
                .replaceInStrings(allOf("101 by"), QStringLiteral("101 by , texts: 0"))
                .filter(QRegularExpression(QStringLiteral("^(?!10\\d,)")));
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
};

TESSAPORT_TEST_MAIN(DamagedFilesTest, QCoreApplication)

#include "tst_damagedfiles.moc"
