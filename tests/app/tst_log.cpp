// SPDX-License-Identifier: GPL-3.0-or-later
#include "app/Log.h"
#include "support/TestMain.h"

class tst_Log : public QObject {
    Q_OBJECT

private slots:
    void lines();
    void unwritable();

private:
    static QByteArray content()
    {
        QFile file(logFile.fileName());
        return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray();
    }

    QTemporaryDir m_directory;
};

void tst_Log::lines()
{
    openLog(m_directory.filePath(QStringLiteral("log.log")));
    const QMessageLogContext context("file", 1, "function", "category");
    const QDateTime before = QDateTime::currentDateTimeUtc();
    logMessageHandler(QtDebugMsg, context, QStringLiteral("Monitor started"));
    logMessageHandler(QtInfoMsg, context, QStringLiteral("nowhere"));
    logMessageHandler(QtWarningMsg, context, QStringLiteral("two\nlines"));
    const QString text = QString::fromLocal8Bit(content());
    const QRegularExpressionMatch match =
        QRegularExpression(
            QStringLiteral(
                R"(^Message\(0\) at (\d{4}-\d\d-\d\dT\d\d:\d\d:\d\dZ): Monitor started\n)"
                R"(Message\(1\) at \S+Z: two\nlines\n$)"))
            .match(text);
    QVERIFY2(match.hasMatch(), qPrintable(text));
    const QDateTime written = QDateTime::fromString(match.captured(1), Qt::ISODate);
    QVERIFY(before.secsTo(written) >= -1 && before.secsTo(written) < 60);
    logFile.close();
}

// A full disk, for a while: what is lost stays lost, and the log goes on.
void tst_Log::unwritable()
{
    openLog(m_directory.path());
    QVERIFY(!logFile.isOpen());
    logMessageHandler(QtDebugMsg, QMessageLogContext(), QStringLiteral("to standard output alone"));

    openLog(m_directory.filePath(QStringLiteral("again.log")));
    logStream.setStatus(QTextStream::WriteFailed);
    logMessageHandler(QtDebugMsg, QMessageLogContext(), QStringLiteral("after a failure"));
    QVERIFY(content().contains("after a failure"));
    QVERIFY(!content().contains("standard output"));
    logFile.close();
}

TESSAPORT_TEST_MAIN(tst_Log, QCoreApplication)

#include "tst_log.moc"
