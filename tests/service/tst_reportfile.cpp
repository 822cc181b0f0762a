// SPDX-License-Identifier: GPL-3.0-or-later
#include "service/JsonCodec.h"
#include "service/ReportFile.h"
#include "support/TestMain.h"

class tst_ReportFile : public QObject {
    Q_OBJECT

private slots:
    void age_data();
    void age();
    void picture();
    void payload();
    void write();
    void first_data();
    void first();
};

void tst_ReportFile::age_data()
{
    QTest::addColumn<QString>("written");
    QTest::addColumn<QString>("pastBefore");
    QTest::addColumn<qint64>("past");
    QTest::newRow("fresh") << "12-05-2020-08-24-59"
                           << "0" << 0LL;
    QTest::newRow("a minute") << "12-05-2020-08-23-59"
                              << "0" << 60LL;
    QTest::newRow("already old") << "12-05-2020-08-23-59"
                                 << "100" << 160LL;
    QTest::newRow("clock set back") << "12-05-2020-08-25-59"
                                    << "0" << -60LL;
    QTest::newRow("no number") << "12-05-2020-08-23-59"
                               << "x" << 60LL;
    // The largest unsigned second is taken away, which is to add one.
    const qint64 now = QDateTime({2020, 5, 12}, {8, 24, 59}).toSecsSinceEpoch();
    QTest::newRow("unreadable") << "yesterday"
                                << "0" << now + 1;
}

void tst_ReportFile::age()
{
    QFETCH(QString, written);
    QFETCH(QString, pastBefore);
    QFETCH(qint64, past);
    const QDateTime now({2020, 5, 12}, {8, 24, 59});
    QVariantMap report{{QStringLiteral("api-url"), QStringLiteral("u")},
                       {QStringLiteral("timestamp"), written},
                       {QStringLiteral("version"), QStringLiteral("0.1")},
                       {QStringLiteral("extra"), 1},
                       {QStringLiteral("body"), QVariantMap{{QStringLiteral("past"), pastBefore}}}};
    const QVariantMap rebuilt = ReportFile::rebuildReport(report, now);
    QCOMPARE(rebuilt.keys(),
             QStringList(
                 {QStringLiteral("api-url"), QStringLiteral("body"), QStringLiteral("timestamp")}));
    QCOMPARE(rebuilt[QStringLiteral("body")].toMap()[QStringLiteral("past")].toString(),
             QString::number(past));
}

void tst_ReportFile::picture()
{
    QTemporaryDir directory;
    QFile picture(directory.filePath(QStringLiteral("screenshot.jpg")));
    QVERIFY(picture.open(QIODevice::WriteOnly));
    const QByteArray bytes = QByteArray::fromHex("ffd8ffe000fffefd");
    picture.write(bytes);
    picture.close();

    const QDateTime now = QDateTime::currentDateTime();
    const QVariantMap body{{QStringLiteral("fileName"), picture.fileName()},
                           {QStringLiteral("email"), QStringLiteral("e")}};
    QVariantMap report = ReportFile::report(QStringLiteral("u"), body, now);
    const auto file = [&] {
        return ReportFile::rebuildReport(report, now)[QStringLiteral("body")].toMap().value(
            QStringLiteral("file"));
    };
    QCOMPARE(file().toString().toLatin1(), bytes.toBase64());

    QVERIFY(picture.remove());
    QTest::ignoreMessage(QtWarningMsg, QRegularExpression(QStringLiteral("can't be opened")));
    QVERIFY(!file().isValid());
}

void tst_ReportFile::payload()
{
    const QVariantMap body{{QStringLiteral("b"), QStringLiteral("я/~\"")},
                           {QStringLiteral("a"), QStringLiteral("1 -._+")}};
    QCOMPARE(ReportFile::payload(body),
             QByteArray("data=%5B%7B%22a%22%3A%221%20-._%2B%22%2C%22b%22%3A%22%D1%8F%2F~%5C%22%22"
                        "%7D%5D"));
}

void tst_ReportFile::write()
{
    QTemporaryDir directory;
    const QDateTime now({2020, 5, 3}, {8, 4, 9});
    QStringList names;
    for (int i = 0; i < 2; ++i) {
        const auto file = ReportFile::write(directory.path(), "content", now);
        QVERIFY(file);
        QVERIFY(!file->isOpen());
        names.append(QFileInfo(file->fileName()).fileName());
        QVERIFY2(names[i].startsWith(QStringLiteral("json03-05-2020-08-04-09.")),
                 qPrintable(names[i]));
    }
    QVERIFY(names[0] != names[1]);
    QCOMPARE(QDir(directory.path()).entryList(QDir::Files).size(), 2);
    QFile written(directory.filePath(names[0]));
    QVERIFY(written.open(QIODevice::ReadOnly));
    QCOMPARE(written.readAll(), QByteArray("content"));

    QTest::ignoreMessage(QtWarningMsg, QRegularExpression(QStringLiteral("can't be written")));
    QVERIFY(!ReportFile::write(directory.filePath(QStringLiteral("missing")), "content", now));
}

void tst_ReportFile::first_data()
{
    QTest::addColumn<QStringList>("names");
    QTest::addColumn<QString>("first");
    QTest::newRow("none")
        << QStringLiteral("screenshot01.jpg unfinished.1 xjson").split(QLatin1Char(' ')) << "";
    QTest::newRow("day of the month first")
        << QStringLiteral("json28-04-2020-10-00-00.a json03-05-2020-10-00-00.a")
               .split(QLatin1Char(' '))
        << "json03-05-2020-10-00-00.a";
    QTest::newRow("case ignored") << QStringLiteral("jsonB JSONa jsonC").split(QLatin1Char(' '))
                                  << "JSONa";
}

void tst_ReportFile::first()
{
    QFETCH(QStringList, names);
    QTemporaryDir directory;
    for (const QString& name : names)
        QVERIFY(QFile(directory.filePath(name)).open(QIODevice::WriteOnly));
    QVERIFY(QDir(directory.path()).mkdir(QStringLiteral("json00")));
    QTEST(ReportFile::first(directory.path()), "first");
}

TESSAPORT_TEST_MAIN(tst_ReportFile, QCoreApplication)

#include "tst_reportfile.moc"
