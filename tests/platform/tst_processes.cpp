// SPDX-License-Identifier: GPL-3.0-or-later
#include "platform/Processes.h"
#include "support/TestMain.h"

#include <QDir>
#include <QProcess>

class ProcessesTest : public QObject {
    Q_OBJECT

private slots:
    void initTestCase();
    void runningByExactName_data();
    void runningByExactName();
    void startsFromWorkingDirectory();
    void missingProgram();

private:
    QTemporaryDir m_directory;
};

void ProcessesTest::initTestCase()
{
    QVERIFY(m_directory.isValid());
    QVERIFY(QDir::setCurrent(m_directory.path()));
}

void ProcessesTest::runningByExactName_data()
{
    QTest::addColumn<QString>("started");
    QTest::addColumn<QString>("asked");
    QTest::addColumn<bool>("running");

    const QString name = QStringLiteral("TPMC-probe.exe");
    const QString longName = QStringLiteral("TPMC probe of a name beyond all bounds.exe");
    QTest::newRow("same") << name << name << true;
    QTest::newRow("other case") << name << QStringLiteral("TPMC-Probe.exe") << false;
    QTest::newRow("beginning only") << name << QStringLiteral("TPMC-probe") << false;
    QTest::newRow("long") << longName << longName << true;
    QTest::newRow("long, cut off") << longName << longName.left(15) << false;
    QTest::newRow("long, other end") << longName << longName + QLatin1Char('e') << false;
    QTest::newRow("empty") << name << QString() << false;
}

void ProcessesTest::runningByExactName()
{
    QFETCH(QString, started);
    QFETCH(QString, asked);
    QFETCH(bool, running);

    QVERIFY(QFile::copy(QStringLiteral(PROBE), started));
    QVERIFY(!platform::isProcessRunning(asked));

    QProcess process;
    process.start(QDir::current().filePath(started), QStringList());
    QVERIFY(process.waitForStarted());
    QCOMPARE(platform::isProcessRunning(asked), running);

    process.closeWriteChannel();
    QVERIFY(process.waitForFinished());
    QVERIFY(!platform::isProcessRunning(asked));
    QVERIFY(QFile::remove(started));
}

void ProcessesTest::startsFromWorkingDirectory()
{
    const QString name = QStringLiteral("writer.exe");
    QVERIFY(QFile::copy(QStringLiteral(PROBE), name));
    QVERIFY(platform::startProgram(name, QStringLiteral("--one \"two words\"")) > 31);

    QFile written(QStringLiteral("arguments.txt"));
    QTRY_COMPARE(written.size(), qint64(qstrlen("--one\ntwo words\n")));
    QVERIFY(written.open(QIODevice::ReadOnly | QIODevice::Text));
    QCOMPARE(written.readAll(), QByteArrayLiteral("--one\ntwo words\n"));
}

void ProcessesTest::missingProgram()
{
    QCOMPARE(platform::startProgram(QStringLiteral("no-such-program.exe"), QString()), 2);
    QCOMPARE(platform::startProgram(m_directory.filePath(QStringLiteral("none.exe")), QString()),
             2);
}

TESSAPORT_TEST_MAIN(ProcessesTest, QCoreApplication)
#include "tst_processes.moc"
