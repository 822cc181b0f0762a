// SPDX-License-Identifier: GPL-3.0-or-later
#include "ServiceTest.h"
#include "service/ServiceAddress.h"
#include "support/Files.h"
#include "support/TestMain.h"

#include <QApplication>
#include <QImage>

namespace {

const QString activityPath = QStringLiteral("/api_active2");
const QString screenshotPath = QStringLiteral("/api_screenshot");
const QImage picture(64, 48, QImage::Format_RGB32);

QByteArray waitingReport(const char* taskId)
{
    const QString report = QStringLiteral(
        R"({"api-url":"%1","timestamp":"01-01-2020-00-00-00","version":"0.1","body":{)"
        R"("active":"3","email":"demo@example.com","past":"0","task_id":"%2","team_id":"1",)"
        R"("version":"1.1.0"}})");
    return report.arg(ServiceAddress::url(activityPath), QLatin1String(taskId)).toUtf8();
}

bool matches(const QByteArray& content, const QString& pattern)
{
    const QRegularExpression expression(QRegularExpression::anchoredPattern(pattern));
    return expression.match(QString::fromUtf8(content)).hasMatch();
}

QtMessageHandler testMessages = nullptr;

/// All but one of Qt's socket, which on Windows may be about to write on when its connection ends.
void passMessage(QtMsgType type, const QMessageLogContext& context, const QString& message)
{
    if (message != QLatin1String("QIODevice::write (QTcpSocket): device not open"))
        testMessages(type, context, message);
}

} // namespace

class ReportsTest : public QObject, private ServiceTest {
    Q_OBJECT

private slots:
    void initTestCase()
    {
        if (QSysInfo::kernelType().startsWith(QLatin1String("win")))
            testMessages = qInstallMessageHandler(passMessage);
    }
    void init() { QVERIFY(start()); }

    void forms()
    {
        session().setTeamID(QStringLiteral("17"));
        session().setTaskID(QStringLiteral("я&5"));
        client().sendActivity(7);
        const QByteArray content = contentOf(directory().filePath(waiting().value(0)));
        const QString form = QStringLiteral(
            R"(\{"api-url":"%1/api_active2","body":\{"active":"7","email":"demo@example.com",)"
            R"("past":"0","task_id":"я&5","team_id":"17","version":"1.1.0"\},)"
            R"("timestamp":"\d\d-\d\d-\d{4}-\d\d-\d\d-\d\d","version":"0.1"\})");
        QVERIFY2(matches(content, form.arg(ServiceAddress::baseUrl())), content.constData());

        client().sendScreenshot(picture);
        QTRY_VERIFY(directory().isEmpty());
        const SeenRequest request = standIn().requests(activityPath).value(0);
        QCOMPARE(request.method, QStringLiteral("POST"));
        const QByteArray activity = QByteArray::fromPercentEncoding(request.body);
        const QString activityForm = QStringLiteral(
            R"(data=\[\{"active":"7","email":"demo@example.com","past":"[01]","task_id":"я&5",)"
            R"("team_id":"17","version":"1.1.0"\}\])");
        QVERIFY2(matches(activity, activityForm), activity.constData());
        const QByteArray screenshot =
            QByteArray::fromPercentEncoding(standIn().requests(screenshotPath).value(0).body);
        const QString screenshotForm = QStringLiteral(
            R"(data=\[\{"email":"[^\x22]*","file":"/9j/[^\x22]*",)"
            R"("fileName":"[^\x22]*/screenshot\d\d-\d\d-\d{4}(-\d\d){3}\.jpg","past":"\d",)"
            R"("task_id":"я&5",)"
            R"("team_id":"17","version":"1.1.0"\}\])");
        QVERIFY2(matches(screenshot, screenshotForm), screenshot.constData());
    }

    // Whatever goes wrong, the record stays; and it goes out after the next one that is confirmed.
    void notConfirmed_data()
    {
        QTest::addColumn<QString>("path");
        QTest::addColumn<QString>("mode");
        for (const char* mode :
             {"refuse", "garbage", "html", "drop-before", "drop-after", "status500", "endless"})
            QTest::newRow(mode) << activityPath << mode;
        for (const char* body : {"ok", R"({"status":"no"})"})
            QTest::newRow(body) << activityPath << "answer";
        for (const char* body : {"ok ", R"({"status":"ok"})"})
            QTest::newRow(body) << screenshotPath << "answer";
    }

    void notConfirmed()
    {
        QFETCH(QString, path);
        QFETCH(QString, mode);
        const bool isEndless = mode == QLatin1String("endless");
        if (isEndless)
            QTest::ignoreMessage(QtWarningMsg, QRegularExpression(QStringLiteral("too long")));
        standIn().fail(path, mode, -1, 0, QTest::currentDataTag());
        QSignalSpy onlineChanged(&client(), &TessaPort::onlineChanged);
        if (path == screenshotPath)
            client().sendScreenshot(picture);
        else
            client().sendActivity(1);
        QTRY_VERIFY(!standIn().requests(path).isEmpty());
        const bool isAway = mode.startsWith(QLatin1String("drop")) || isEndless
            || mode == QLatin1String("status500");
        QTRY_COMPARE(!onlineChanged.isEmpty(), isAway);
        QTest::qWait(50);
        QCOMPARE(waiting().size(), 1);
        // The network layer would send it again by itself.
        QCOMPARE(standIn().requests(path).size(), 1);

        standIn().succeed(path);
        client().sendActivity(2);
        QTRY_VERIFY(directory().isEmpty());
        QCOMPARE(standIn().confirmedRecords().size(), 2);
    }

    void backlog()
    {
        // Far more than fit a call stack if each were removed inside the removal of the one before.
        for (int i = 0; i < 500; ++i)
            write(QStringLiteral("json0%1").arg(i), R"({"api-url")");
        for (const char* day : {"28", "03", "15"})
            write(QStringLiteral("json%1-01-2020").arg(QLatin1String(day)), waitingReport(day));
        client().sendActivity(1);
        QTRY_VERIFY_WITH_TIMEOUT(directory().isEmpty(), 30000);
        QString order;
        for (const QJsonValue& value : standIn().confirmedRecords())
            order += value[QLatin1String("record")][QLatin1String("task_id")].toString();
        QCOMPARE(order, QStringLiteral("031528"));
    }

    void twoInFlight()
    {
        write(QStringLiteral("json01.x"), waitingReport("waiting"));
        standIn().fail(screenshotPath, QStringLiteral("hang"));
        client().sendScreenshot(picture);
        client().sendActivity(1);
        // The minute is confirmed, but the chain has to wait for the picture.
        QTRY_COMPARE(waiting().size(), 2);
        QTest::qWait(200);
        QCOMPARE(standIn().requests(activityPath).size(), 1);
        standIn().succeed(screenshotPath);
        QTRY_VERIFY(directory().isEmpty());
    }

    void aheadOfQuestions()
    {
        const QString path = QStringLiteral("/api_get_task");
        standIn().fail(path, QStringLiteral("delay"), -1, 200);
        for (int i = 0; i < 60; ++i)
            client().requestTaskInfo(QStringLiteral("48211"));
        client().sendActivity(1);
        QTRY_VERIFY(directory().isEmpty());
        QVERIFY2(standIn().requests(path).size() < 40, "the report came behind the questions");
    }

    void pictureGone()
    {
        standIn().fail(screenshotPath, QStringLiteral("refuse"), 1);
        client().sendScreenshot(picture);
        QTRY_COMPARE(standIn().requests(screenshotPath).size(), 1);
        QVERIFY(directory().remove(directory().entryList({QStringLiteral("*.jpg")}).value(0)));
        QTest::ignoreMessage(QtWarningMsg, QRegularExpression(QStringLiteral("can't be opened")));
        client().sendActivity(1);
        QTRY_COMPARE(standIn().requests(screenshotPath).size(), 2);
        QVERIFY(!standIn().requests(screenshotPath)[1].record().contains(QStringLiteral("file")));
    }

    // The service is asked by its address as it was built in, and answers in Qt's spelling of it.
    void addressInCapitals()
    {
        setTestServiceUrl(standIn().url().replace(QLatin1String("https://localhost"),
                                                  QLatin1String("HTTPS://LocalHost")));
        client().sendActivity(1);
        QTRY_VERIFY(!standIn().confirmedRecords().isEmpty());
        QTRY_VERIFY(directory().isEmpty());
    }

    // A service may well send one in an id, and then gets it back.
    void nulCharacter()
    {
        session().setTaskID(QStringLiteral("5") + QChar(0));
        client().sendActivity(1);
        QTRY_COMPARE(standIn().requests(activityPath).size(), 1);
        QVERIFY(standIn().requests(activityPath)[0].body.contains("%3A%225%00%22"));
    }

    // Something that QFile can't remove stands in the picture's place when it is confirmed.
    void pictureStays()
    {
        standIn().fail(screenshotPath, QStringLiteral("hang"));
        client().sendScreenshot(picture);
        QTRY_COMPARE(standIn().requests(screenshotPath).size(), 1);
        const QString path =
            directory().filePath(directory().entryList({QStringLiteral("*.jpg")}).value(0));
        QVERIFY(QFile::remove(path) && QDir().mkpath(path + QStringLiteral("/x")));
        QTest::ignoreMessage(QtWarningMsg, QRegularExpression(QStringLiteral("can't be removed")));
        standIn().succeed(screenshotPath);
        QTRY_VERIFY(waiting().isEmpty());

        QVERIFY(QDir(path).removeRecursively());
        writeFile(path, {});
        client().sendActivity(1);
        QVERIFY(!QFile::exists(path));
    }

    void directoryGone()
    {
        standIn().fail(activityPath, QStringLiteral("refuse"));
        standIn().fail(screenshotPath, QStringLiteral("refuse"));
        QVERIFY(directory().removeRecursively());
        client().sendActivity(5);
        QCOMPARE(waiting().size(), 1);
        QVERIFY(directory().removeRecursively());
        client().sendScreenshot(picture);
        QCOMPARE(waiting().size(), 1);
        QCOMPARE(directory().entryList({QStringLiteral("*.jpg")}).size(), 1);
    }

    // A file in the place of the directory can't be written into by anybody.
    void fromMemory()
    {
        const auto expect = [](const char* warning) {
            QTest::ignoreMessage(QtWarningMsg, QRegularExpression(QLatin1String(warning)));
        };
        QVERIFY(directory().removeRecursively());
        writeFile(directory().path(), {});
        expect("Screenshot can't be written: +\"Not a directory|can't be written");
        client().sendScreenshot(picture);
        QTRY_COMPARE(standIn().confirmedRecords().size(), 1);
        QVERIFY(standIn().requests(screenshotPath)[0].record().contains(QStringLiteral("file")));

        // What neither takes is named.
        standIn().fail(activityPath, QStringLiteral("refuse"));
        for (const char* warning : {"can't be written", "can't be written", "is lost.*active.*5"})
            expect(warning);
        client().sendActivity(5);
        QTRY_COMPARE(standIn().requests(activityPath).size(), 1);
        standIn().fail(activityPath, QStringLiteral("hang"));

        // There is room again by the time the service fails, when another user is signed in.
        expect("can't be written");
        client().sendActivity(6);
        QTRY_COMPARE(standIn().requests(activityPath).size(), 2);
        QSignalSpy loginOk(&client(), &TessaPort::loginOk);
        client().login(QStringLiteral("anna@example.com"), QStringLiteral("demo"));
        QVERIFY(loginOk.wait());
        QVERIFY(QFile::remove(directory().path()));
        standIn().stop();
        QTRY_COMPARE(waiting().size(), 1);
        const QByteArray report = contentOf(directory().filePath(waiting().value(0)));
        QVERIFY(report.contains(R"("active":"6")"));
    }

private:
    QDir directory()
    {
        return QDir(client().dataDir().filePath(QStringLiteral("demo@example.com/activity")));
    }
    QStringList waiting() { return directory().entryList({QStringLiteral("json*")}); }
    void write(const QString& name, const QByteArray& content)
    {
        writeFile(directory().filePath(name), content);
    }
};

TESSAPORT_TEST_MAIN(ReportsTest, QApplication)

#include "tst_reports.moc"
