// SPDX-License-Identifier: GPL-3.0-or-later
#include "app/Log.h"
#include "support/TestMain.h"

class LogTest : public QObject {
    Q_OBJECT

private slots:
    void lines()
    {
        openLog(m_directory.filePath(QStringLiteral("log.log")));
        logMessageHandler(QtDebugMsg, m_context, QStringLiteral("Monitor started"));
        logMessageHandler(QtInfoMsg, m_context, QStringLiteral("nowhere"));
        logMessageHandler(QtWarningMsg, m_context, QStringLiteral("two\nlines"));
        const QString text = QString::fromLocal8Bit(content());
        const QRegularExpression form(
            QStringLiteral(R"(^Message\(0\) at (\d{4}-\d\d-\d\dT\d\d:\d\d:\d\dZ): )"
                           R"(Monitor started\nMessage\(1\) at \S+Z: two\nlines\n$)"));
        const QDateTime written = QDateTime::fromString(form.match(text).captured(1), Qt::ISODate);
        QVERIFY2(qAbs(written.secsTo(QDateTime::currentDateTimeUtc())) < 60, qPrintable(text));
        logFile.close();
    }

    // A full disk, for a while: what is lost stays lost, and the log goes on.
    void unwritable()
    {
        openLog(m_directory.path());
        QVERIFY(!logFile.isOpen());
        logMessageHandler(QtDebugMsg, m_context, QStringLiteral("to standard output alone"));

        openLog(m_directory.filePath(QStringLiteral("again.log")));
        logStream.setStatus(QTextStream::WriteFailed);
        logMessageHandler(QtDebugMsg, m_context, QStringLiteral("after a failure"));
        QVERIFY(content().endsWith("after a failure\n") && content().count('\n') == 1);
        logFile.close();
    }

private:
    static QByteArray content()
    {
        QFile file(logFile.fileName());
        return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray();
    }

    const QMessageLogContext m_context{"file", 1, "function", "category"};
    QTemporaryDir m_directory;
};

TESSAPORT_TEST_MAIN(LogTest, QCoreApplication)

#include "tst_log.moc"
