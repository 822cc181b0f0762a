// SPDX-License-Identifier: GPL-3.0-or-later
#include "service/ReportFile.h"
#include "support/TestMain.h"

class ReportFileTest : public QObject {
    Q_OBJECT

private slots:
    void age()
    {
        const QDateTime now({2020, 5, 12}, {8, 24, 59});
        const struct {
            const char* written;
            const char* pastBefore;
            qint64 past;
        } rows[] = {{"12-05-2020-08-24-59", "0", 0},
                    {"12-05-2020-08-23-59", "100", 160},
                    {"12-05-2020-08-22-59", "x", 120},
                    {"12-05-2020-08-25-59", "0", -60},
                    // The largest unsigned second is taken away, which is to add one.
                    {"yesterday", "0", now.toSecsSinceEpoch() + 1}};
        for (const auto& row : rows) {
            const QVariantMap body{{QStringLiteral("past"), QLatin1String(row.pastBefore)}};
            const QVariantMap report{{QStringLiteral("api-url"), QStringLiteral("u")},
                                     {QStringLiteral("timestamp"), QLatin1String(row.written)},
                                     {QStringLiteral("version"), QStringLiteral("0.1")},
                                     {QStringLiteral("body"), body}};
            const QVariantMap rebuilt = ReportFile::rebuildReport(report, now);
            QCOMPARE(QStringList(rebuilt.keys()).join(QLatin1Char(',')),
                     QStringLiteral("api-url,body,timestamp"));
            QCOMPARE(rebuilt[QStringLiteral("body")].toMap()[QStringLiteral("past")].toString(),
                     QString::number(row.past));
        }
    }

    void payload()
    {
        const QVariantMap body{{QStringLiteral("b"), QStringLiteral("я/~\"")},
                               {QStringLiteral("a"), QStringLiteral("1 -._+")}};
        QCOMPARE(
            ReportFile::payload(body),
            QByteArray("data=%5B%7B%22a%22%3A%221%20-._%2B%22%2C%22b%22%3A%22%D1%8F%2F~%5C%22%22"
                       "%7D%5D"));
    }

    void write()
    {
        QTemporaryDir directory;
        QVERIFY(QDir(directory.path()).mkdir(QStringLiteral("json00")));
        QVERIFY(ReportFile::first(directory.path()).isEmpty());
        const QDateTime may({2020, 5, 3}, {8, 4, 9});
        // Ordered by day before month, and without regard to case.
        QVERIFY(ReportFile::write(directory.path(), "april", may.addDays(-5)));
        QVERIFY(ReportFile::write(directory.path(), "may", may));
        QVERIFY(ReportFile::write(directory.path(), "may", may));
        QCOMPARE(QDir(directory.path()).entryList(QDir::Files).size(), 3);
        QFile first(directory.filePath(ReportFile::first(directory.path())));
        QVERIFY(first.fileName().contains(QStringLiteral("/json03-05-2020-08-04-09.")));
        QVERIFY(first.open(QIODevice::ReadOnly));
        QCOMPARE(first.readAll(), QByteArray("may"));
        QVERIFY(QFile::copy(first.fileName(), directory.filePath(QStringLiteral("JSON02"))));
        QCOMPARE(ReportFile::first(directory.path()), QStringLiteral("JSON02"));
    }
};

TESSAPORT_TEST_MAIN(ReportFileTest, QCoreApplication)

#include "tst_reportfile.moc"
