// SPDX-License-Identifier: GPL-3.0-or-later
#include "ServiceTest.h"
#include "service/JsonCodec.h"
#include "service/ServiceAddress.h"
#include "support/TestMain.h"

#include <QApplication>
#include <QImage>

class tst_Reports : public QObject {
    Q_OBJECT

private slots:
    void activity();
    void screenshot();
    void notConfirmed_data();
    void notConfirmed();
    void backlog();
    void twoInFlight();
    void brokenFiles();
    void pictureGone();
    void unwritableDirectory();
};

namespace {

const QString activityPath = QStringLiteral("/api_active2");
const QString screenshotPath = QStringLiteral("/api_screenshot");

QImage picture()
{
    QImage image(64, 48, QImage::Format_RGB32);
    image.fill(Qt::red);
    return image;
}

QStringList reports(const ServiceTest& test)
{
    return test.activityDir().entryList({QStringLiteral("json*")}, QDir::Files);
}

void writeReport(const ServiceTest& test, const QString& name, const QVariantMap& report)
{
    QFile file(test.activityDir().filePath(name));
    QVERIFY(file.open(QIODevice::WriteOnly));
    file.write(JsonCodec::serialize(report));
}

QVariantMap waitingReport(const QString& marker)
{
    return {{QStringLiteral("api-url"), ServiceAddress::url(activityPath)},
            {QStringLiteral("timestamp"), QStringLiteral("01-01-2020-00-00-00")},
            {QStringLiteral("version"), QStringLiteral("0.1")},
            {QStringLiteral("body"),
             QVariantMap{{QStringLiteral("active"), QStringLiteral("3")},
                         {QStringLiteral("email"), QStringLiteral("demo@example.com")},
                         {QStringLiteral("past"), QStringLiteral("0")},
                         {QStringLiteral("task_id"), marker},
                         {QStringLiteral("team_id"), QStringLiteral("1")},
                         {QStringLiteral("version"), QStringLiteral("1.1.0")}}}};
}

} // namespace

void tst_Reports::activity()
{
    ServiceTest test;
    QVERIFY(test.isReady());
    test.session().setTeamID(QStringLiteral("17"));
    test.session().setTaskID(QStringLiteral("я&5"));
    test.client().sendActivity(7);

    const QStringList waiting = reports(test);
    QCOMPARE(waiting.size(), 1);
    QFile file(test.activityDir().filePath(waiting[0]));
    QVERIFY(file.open(QIODevice::ReadOnly));
    const QString content = QString::fromUtf8(file.readAll());
    const QString pattern = QStringLiteral(
        R"(^\{"api-url":"%1/api_active2","body":\{"active":"7","email":"demo@example.com",)"
        R"("past":"0","task_id":"я&5","team_id":"17","version":"1.1.0"\},)"
        R"("timestamp":"\d\d-\d\d-\d{4}-\d\d-\d\d-\d\d","version":"0.1"\}$)");
    QVERIFY2(QRegularExpression(pattern.arg(ServiceAddress::baseUrl())).match(content).hasMatch(),
             qPrintable(content));

    QTRY_VERIFY(reports(test).isEmpty());
    const auto requests = test.standIn().requests(activityPath);
    QCOMPARE(requests.size(), 1);
    QCOMPARE(requests[0].method, QStringLiteral("POST"));
    QVERIFY(requests[0].query.isEmpty());
    QCOMPARE(requests[0].headers[QStringLiteral("content-type")],
             QStringLiteral("application/x-www-form-urlencoded"));
    const QByteArray body = QByteArray::fromPercentEncoding(requests[0].body);
    const QRegularExpression wire(QStringLiteral(
        R"(^data=\[\{"active":"7","email":"demo@example.com","past":"[01]","task_id":"я&5",)"
        R"("team_id":"17","version":"1.1.0"\}\]$)"));
    QVERIFY2(wire.match(QString::fromUtf8(body)).hasMatch(), body.constData());
}

void tst_Reports::screenshot()
{
    ServiceTest test;
    QVERIFY(test.isReady());
    test.client().sendScreenshot(picture());
    QCOMPARE(test.activityDir().entryList({QStringLiteral("screenshot*.jpg")}).size(), 1);
    QTRY_VERIFY(test.activityDir().isEmpty());

    const auto requests = test.standIn().requests(screenshotPath);
    QCOMPARE(requests.size(), 1);
    const QString body = QString::fromUtf8(QByteArray::fromPercentEncoding(requests[0].body));
    const QRegularExpression wire(QStringLiteral(
        R"x(^data=\[\{"email":"[^"]*","file":"([^"]*)","fileName":"[^"]*/screenshot[^"]*.jpg",)x"
        R"("past":"\d","task_id":"","team_id":"","version":"1.1.0"\}\]$)"));
    const QRegularExpressionMatch match = wire.match(body);
    QVERIFY2(match.hasMatch(), qPrintable(body));
    QImage received;
    QVERIFY(received.loadFromData(QByteArray::fromBase64(match.captured(1).toLatin1()), "JPG"));
    QCOMPARE(received.size(), picture().size());
}

void tst_Reports::notConfirmed_data()
{
    QTest::addColumn<QString>("path");
    QTest::addColumn<QString>("mode");
    QTest::addColumn<QByteArray>("body");
    QTest::addColumn<bool>("online");
    for (const char* mode : {"refuse", "garbage", "html", "database"})
        QTest::newRow(mode) << activityPath << mode << QByteArray() << true;
    for (const char* mode : {"drop-before", "drop-after", "status500"})
        QTest::newRow(mode) << activityPath << mode << QByteArray() << false;
    QTest::newRow("plain ok for a minute") << activityPath << "answer" << QByteArray("ok") << true;
    QTest::newRow("other status") << activityPath << "answer" << QByteArray(R"({"status":"no"})")
                                  << true;
    QTest::newRow("status ok for a picture")
        << screenshotPath << "answer" << QByteArray(R"({"status":"ok"})") << true;
    QTest::newRow("ok and a line break for a picture")
        << screenshotPath << "answer" << QByteArray("ok\n") << true;
}

// Whatever goes wrong, the record stays; and it goes out after the next one that is confirmed.
void tst_Reports::notConfirmed()
{
    QFETCH(QString, path);
    QFETCH(QString, mode);
    QFETCH(QByteArray, body);
    QFETCH(bool, online);
    ServiceTest test;
    QVERIFY(test.isReady());
    test.standIn().fail(path, mode, -1, 0, body);
    const bool isPicture = path == screenshotPath;
    QSignalSpy onlineChanged(&test.client(), &TessaPort::onlineChanged);
    if (isPicture)
        test.client().sendScreenshot(picture());
    else
        test.client().sendActivity(1);
    QTRY_VERIFY(!test.standIn().requests(path).isEmpty());
    QTRY_COMPARE(onlineChanged.isEmpty(), online);
    QTest::qWait(50);
    QCOMPARE(reports(test).size(), 1);

    test.standIn().succeed(path);
    test.client().sendActivity(2);
    QTRY_VERIFY(test.activityDir().isEmpty());
    QCOMPARE(test.standIn().confirmedRecords().size(), 2);
    QVERIFY(test.session().isOnline());
}

void tst_Reports::backlog()
{
    ServiceTest test;
    QVERIFY(test.isReady());
    for (const char* day : {"28", "03", "15"}) {
        const QString name = QLatin1String(day);
        writeReport(test, QStringLiteral("json%1-01-2020-00-00-00.x").arg(name),
                    waitingReport(name));
    }
    test.client().sendActivity(1);
    QTRY_VERIFY(reports(test).isEmpty());
    QStringList order;
    for (const QJsonValue& value : test.standIn().confirmedRecords()) {
        const QJsonObject record = value.toObject()[QStringLiteral("record")].toObject();
        order.append(record[QStringLiteral("task_id")].toString());
        if (!order.last().isEmpty())
            QVERIFY(record[QStringLiteral("past")].toString().toLongLong() > 86400);
    }
    QCOMPARE(order, QStringLiteral(",03,15,28").split(QLatin1Char(',')));
}

void tst_Reports::twoInFlight()
{
    ServiceTest test;
    QVERIFY(test.isReady());
    writeReport(test, QStringLiteral("json01.x"), waitingReport(QStringLiteral("waiting")));
    test.standIn().fail(screenshotPath, QStringLiteral("hang"));
    test.client().sendScreenshot(picture());
    test.client().sendActivity(1);
    // The minute is confirmed, but the chain has to wait for the picture.
    QTRY_COMPARE(reports(test).size(), 2);
    QTest::qWait(200);
    QCOMPARE(test.standIn().requests(activityPath).size(), 1);
    test.standIn().succeed(screenshotPath);
    QTRY_VERIFY(test.activityDir().isEmpty());
    QCOMPARE(test.standIn().requests(activityPath).size(), 2);
}

void tst_Reports::brokenFiles()
{
    ServiceTest test;
    QVERIFY(test.isReady());
    // Far more than fit a call stack if each were removed inside the removal of the one before.
    for (int i = 0; i < 500; ++i)
        writeReport(test, QStringLiteral("json0%1").arg(i, 4, 10, QLatin1Char('0')), {});
    QFile truncated(test.activityDir().filePath(QStringLiteral("json1")));
    QVERIFY(truncated.open(QIODevice::WriteOnly));
    truncated.write(R"({"api-url":"https://localhost)");
    truncated.close();
    writeReport(test, QStringLiteral("json2"), waitingReport(QStringLiteral("good")));
    test.client().sendActivity(1);
    QTRY_VERIFY_WITH_TIMEOUT(reports(test).isEmpty(), 30000);
    QCOMPARE(test.standIn().confirmedRecords().size(), 2);
}

void tst_Reports::pictureGone()
{
    ServiceTest test;
    QVERIFY(test.isReady());
    test.standIn().fail(screenshotPath, QStringLiteral("refuse"), 1);
    test.client().sendScreenshot(picture());
    QTRY_COMPARE(test.standIn().requests(screenshotPath).size(), 1);
    const QStringList pictures = test.activityDir().entryList({QStringLiteral("*.jpg")});
    QCOMPARE(pictures.size(), 1);
    QVERIFY(test.activityDir().remove(pictures[0]));

    QTest::ignoreMessage(QtWarningMsg, QRegularExpression(QStringLiteral("can't be opened")));
    test.client().sendActivity(1);
    QTRY_COMPARE(test.standIn().requests(screenshotPath).size(), 2);
    QVERIFY(!test.standIn().requests(screenshotPath)[1].record().contains(QStringLiteral("file")));
}

void tst_Reports::unwritableDirectory()
{
    ServiceTest test;
    QVERIFY(test.isReady());
    // A file in the place of the directory can't be written into by anybody.
    QDir directory = test.activityDir();
    QVERIFY(directory.removeRecursively());
    QVERIFY(QFile(directory.path()).open(QIODevice::WriteOnly));
    QTest::ignoreMessage(QtWarningMsg, QRegularExpression(QStringLiteral("can't be written")));
    test.client().sendActivity(5);
    QTRY_COMPARE(test.standIn().confirmedRecords().size(), 1);
}

TESSAPORT_TEST_MAIN(tst_Reports, QApplication)

#include "tst_reports.moc"
