// SPDX-License-Identifier: GPL-3.0-or-later
#include <QElapsedTimer>
#include <QJsonDocument>
#include <QNetworkAccessManager>
#include <QNetworkReply>
#include <QSignalSpy>

#include "support/StandIn.h"
#include "support/TestMain.h"

namespace {

const QByteArray wrongCredentials = R"({"status":-1,"err_msg":"Invalid email|pswd|client"})";
const QString credentials = QStringLiteral("?login=demo@example.com&password=demo");
const QString activityPath = QStringLiteral("/api_active2");
const QString screenshotPath = QStringLiteral("/api_screenshot");

QByteArray form(const QByteArray& json)
{
    return "data=" + json.toPercentEncoding();
}

QByteArray activity(const QByteArray& active = "7", const QByteArray& past = "0",
                    const QByteArray& email = "demo@example.com")
{
    return form(R"([{"active":")" + active + R"(","email":")" + email + R"(","past":")" + past
                + R"(","task_id":"48211","team_id":"1507","version":"1.1.0"}])");
}

QByteArray screenshot(const QByteArray& picture)
{
    return form(R"([{"email":"demo@example.com","file":")" + picture.toBase64()
                + R"(","fileName":"<b>","past":"0","task_id":"48211","team_id":"1507",)"
                  R"("version":"1.1.0"}])");
}

} // namespace

class TestStandIn : public QObject {
    Q_OBJECT

private slots:
    void initTestCase() { QVERIFY(m_standIn.isRunning()); }
    void init();
    void asksForCredentials_data();
    void asksForCredentials();
    void keepsReports();
    void refusesMalformedReports_data();
    void refusesMalformedReports();
    void followsTheDataFile();
    void movesDeadlines_data();
    void movesDeadlines();
    void fails_data();
    void fails();
    void hangsOnOnePathOnly();
    void showsPages();
    void comesBackWithWhatItKept();

private:
    std::unique_ptr<QNetworkReply> start(const QString& path, const QByteArray& body);
    QByteArray exchange(const QString& path, const QByteArray& body = {});

    StandIn m_standIn;
    QNetworkAccessManager m_manager;
    QNetworkReply::NetworkError m_error = QNetworkReply::NoError;
};

std::unique_ptr<QNetworkReply> TestStandIn::start(const QString& path, const QByteArray& body)
{
    QNetworkRequest request(QUrl(m_standIn.url() + path));
    request.setHeader(QNetworkRequest::ContentTypeHeader,
                      QStringLiteral("application/x-www-form-urlencoded"));
    const bool isPost = !body.isEmpty() || path.startsWith(QLatin1String("/api_task_deadline"));
    std::unique_ptr<QNetworkReply> reply(isPost ? m_manager.post(request, body)
                                                : m_manager.get(request));
    reply->ignoreSslErrors();
    return reply;
}

QByteArray TestStandIn::exchange(const QString& path, const QByteArray& body)
{
    const auto reply = start(path, body);
    QSignalSpy finished(reply.get(), &QNetworkReply::finished);
    if (!reply->isFinished() && !finished.wait(10000))
        return "no answer in time";
    m_error = reply->error();
    return reply->readAll();
}

void TestStandIn::init()
{
    m_standIn.setData(StandIn::demoData());
    m_standIn.reset();
}

void TestStandIn::asksForCredentials_data()
{
    QTest::addColumn<QString>("path");
    QTest::addColumn<QString>("further");
    QTest::addColumn<QByteArray>("start");

    QTest::newRow("sign-in") << "/api_teams"
                             << "" << QByteArray(R"([{"id":"1507","name":)");
    QTest::newRow("teams") << "/api_teams_tasks"
                           << "" << QByteArray(R"([{"id":"1507","name":)");
    QTest::newRow("details") << "/api_get_task"
                             << "&task_id=48211" << QByteArray(R"({"status":"ok","message":{)");
    QTest::newRow("unknown task") << "/api_get_task"
                                  << "&task_id=1" << QByteArray(R"({"status":"fail","message":)");
    QTest::newRow("day") << "/api_get_active"
                         << "&task_id=1507"
                         << QByteArray(R"({"today_active":0,"today_total":0,"today_task":0})");
    QTest::newRow("deadline") << "/api_task_deadline_request"
                              << "&task_id=48211&dl_date=2030-01-01&message="
                              << QByteArray(R"({"status":"ok"})");
}

void TestStandIn::asksForCredentials()
{
    QFETCH(QString, path);
    QFETCH(QString, further);
    QFETCH(QByteArray, start);

    const QByteArray answer = exchange(path + credentials + further);
    QVERIFY2(answer.startsWith(start), answer.constData());
    QCOMPARE(exchange(path + QLatin1String("?login=demo@example.com&password=Demo") + further),
             wrongCredentials);
    QCOMPARE(exchange(path + QLatin1String("?login=&password=") + further), wrongCredentials);
    QCOMPARE(m_standIn.requests(path).size(), 3);
    QCOMPARE(m_standIn.requests(path).first().query, credentials.mid(1) + further);
}

void TestStandIn::keepsReports()
{
    QCOMPARE(exchange(activityPath, activity()), QByteArray(R"({"status":"ok"})"));
    QCOMPARE(exchange(activityPath, activity("0")), QByteArray(R"({"status":"ok"})"));
    // Far larger than a form that the HTTP library takes by itself.
    const QByteArray picture = QByteArray("\xff\xd8\xff\0", 4) + QByteArray(200000, '\x9a');
    QCOMPARE(exchange(screenshotPath, screenshot(picture)), QByteArray("ok"));
    QCOMPARE(exchange(activityPath, activity("10", "172800")), QByteArray(R"({"status":"ok"})"));

    const QJsonArray records = m_standIn.confirmedRecords();
    QCOMPARE(records.size(), 4);
    QCOMPARE(records[0][QLatin1String("record")][QLatin1String("active")].toString(),
             QStringLiteral("7"));
    QCOMPARE(records[2][QLatin1String("kind")].toString(), QStringLiteral("screenshot"));
    QVERIFY(!records[2][QLatin1String("record")].toObject().contains(QLatin1String("file")));
    QFile kept(m_standIn.storeDir() + QLatin1Char('/')
               + records[2][QLatin1String("picture")].toString());
    QVERIFY(kept.open(QIODevice::ReadOnly));
    QCOMPARE(kept.readAll(), picture);

    const SeenRequest seen = m_standIn.requests(screenshotPath).value(0);
    QCOMPARE(seen.method, QStringLiteral("POST"));
    QCOMPARE(seen.body, screenshot(picture));
    QCOMPARE(seen.headers.value(QStringLiteral("content-type")),
             QStringLiteral("application/x-www-form-urlencoded"));
    QCOMPARE(seen.record()[QLatin1String("fileName")].toString(), QStringLiteral("<b>"));

    // The late one belongs to an earlier day.
    QCOMPARE(
        exchange(QLatin1String("/api_get_active") + credentials + QLatin1String("&task_id=1507")),
        QByteArray(R"({"today_active":1,"today_total":2,"today_task":2})"));
}

void TestStandIn::refusesMalformedReports_data()
{
    QTest::addColumn<QByteArray>("body");
    QByteArray notEncoded = activity();
    notEncoded.replace("%3A", ":");
    QByteArray record = QByteArray::fromPercentEncoding(activity()).mid(5);

    QTest::newRow("no prefix") << activity().mid(1);
    QTest::newRow("not encoded throughout") << notEncoded;
    QTest::newRow("cut off") << activity().chopped(2);
    QTest::newRow("not JSON") << form("[{]");
    QTest::newRow("object alone") << form(record.mid(1).chopped(1));
    QTest::newRow("two objects") << form("[" + record.mid(1).chopped(1) + ",{}]");
    QTest::newRow("field missing") << form(QByteArray(record).replace(R"("past":"0",)", ""));
    QTest::newRow("field too much") << form(QByteArray(record).replace("[{", R"([{"a":"",)"));
    QTest::newRow("number for a string") << form(QByteArray(record).replace(R"("7")", "7"));
    QTest::newRow("eleven active slots") << activity("11");
    QTest::newRow("age without end") << activity("7", "9223372036854775807");
}

void TestStandIn::refusesMalformedReports()
{
    QFETCH(QByteArray, body);
    const QByteArray answer = exchange(activityPath, body);
    QVERIFY2(answer.startsWith(R"({"status":"error","message":)"), answer.constData());
    QCOMPARE(exchange(activityPath, activity("7", "0", "stranger@example.com")), wrongCredentials);
    QVERIFY(m_standIn.confirmedRecords().isEmpty());
}

void TestStandIn::followsTheDataFile()
{
    QCOMPARE(exchange(QStringLiteral("/monitor/tpmc.version")),
             QByteArray(R"([{"version":"1.1.0"}])"));
    QJsonObject data = StandIn::demoData();
    data[QLatin1String("version")] = QStringLiteral("1.2.0");
    data[QLatin1String("today")] = QJsonObject{{QStringLiteral("today_total"), 90}};
    m_standIn.setData(data);
    const QString day = QLatin1String("/api_get_active") + credentials;
    QCOMPARE(exchange(day), QByteArray(R"({"today_total":90})"));
    QCOMPARE(exchange(QStringLiteral("/monitor/tpmc.version")),
             QByteArray(R"([{"version":"1.2.0"}])"));

    for (const QByteArray& broken : {QByteArray("{\"teams\":"), QByteArray("[]"), QByteArray()}) {
        QFile file(m_standIn.dataFile());
        QVERIFY(file.open(QIODevice::WriteOnly));
        file.write(broken);
        file.close();
        QCOMPARE(exchange(day), QByteArray(R"({"today_total":90})"));
    }
    QVERIFY(QFile::remove(m_standIn.dataFile()));
    QCOMPARE(exchange(day), QByteArray(R"({"today_total":90})"));
}

void TestStandIn::movesDeadlines_data()
{
    QTest::addColumn<QString>("query");
    QTest::addColumn<QByteArray>("deadline");

    QTest::newRow("day") << "dl_date=2028-02-29&message=" << QByteArray("2028-02-29 23:59:00");
    QTest::newRow("time") << "dl_date=2028-02-29&dl_time=18:30&message=%D0%BD%D0%B5+%20"
                          << QByteArray("2028-02-29 18:30:00");
    QTest::newRow("no such day") << "dl_date=2029-02-29&message=" << QByteArray();
    QTest::newRow("no such time") << "dl_date=2028-02-29&dl_time=24:00&message=" << QByteArray();
    QTest::newRow("no message") << "dl_date=2028-02-29" << QByteArray();
}

void TestStandIn::movesDeadlines()
{
    QFETCH(QString, query);
    QFETCH(QByteArray, deadline);
    const QString task = credentials + QLatin1String("&task_id=48211");
    const QByteArray answer =
        exchange(QLatin1String("/api_task_deadline_request") + task + QLatin1Char('&') + query);
    if (deadline.isEmpty()) {
        QVERIFY2(answer.startsWith(R"({"status":"fail","message":)"), answer.constData());
        QVERIFY(m_standIn.confirmedRecords().isEmpty());
        return;
    }
    const QByteArray moved = R"("deadline":")" + deadline + '"';
    QVERIFY(exchange(QLatin1String("/api_get_task") + task).contains(moved));
    QCOMPARE(exchange(QLatin1String("/api_teams_tasks") + credentials).count(moved), 1);
    QCOMPARE(m_standIn.confirmedRecords().size(), 1);
}

void TestStandIn::fails_data()
{
    using Error = QNetworkReply::NetworkError;
    QTest::addColumn<QString>("mode");
    QTest::addColumn<Error>("error");
    QTest::addColumn<QByteArray>("start");
    QTest::addColumn<bool>("isKept");
    QTest::addColumn<bool>("isRead");

    const QByteArray ok = R"({"status":"ok"})";
    const QByteArray database =
        "\xcd\xe5 \xec\xee\xe3\xf3 \xf1\xee\xe5\xe4\xe8\xed\xe8\xf2\xf1\xff";
    const Error none = QNetworkReply::NoError;
    const Error closed = QNetworkReply::RemoteHostClosedError;
    QTest::newRow("refuse") << "refuse" << none << QByteArray(R"({"status":-1,)") << false << true;
    QTest::newRow("garbage") << "garbage" << none << QByteArray("\xff") << false << true;
    QTest::newRow("html") << "html" << none << QByteArray("\t<!DOCTYPE") << false << true;
    QTest::newRow("database") << "database" << none << database << false << true;
    QTest::newRow("own answer") << "answer" << none << QByteArray("mine") << false << true;
    QTest::newRow("status") << "status500" << QNetworkReply::InternalServerError
                            << QByteArray("Internal") << false << true;
    QTest::newRow("before reading") << "drop-before" << closed << QByteArray() << false << false;
    QTest::newRow("after reading") << "drop-after" << closed << QByteArray() << false << true;
    QTest::newRow("after keeping") << "drop-kept" << closed << QByteArray() << true << true;
    QTest::newRow("hang to its end") << "hang" << closed << QByteArray() << false << true;
    QTest::newRow("delay") << "delay" << none << ok << true << true;
}

void TestStandIn::fails()
{
    QFETCH(QString, mode);
    QFETCH(QNetworkReply::NetworkError, error);
    QFETCH(QByteArray, start);
    QFETCH(bool, isKept);
    QFETCH(bool, isRead);

    m_standIn.fail(activityPath, mode, -1, 100, "mine");
    QElapsedTimer timer;
    timer.start();
    const QByteArray answer = exchange(activityPath, activity());
    QCOMPARE(m_error, error);
    QVERIFY2(answer.startsWith(start) && answer.isEmpty() == start.isEmpty(),
             answer.toHex().constData());
    QCOMPARE(!m_standIn.confirmedRecords().isEmpty(), isKept);
    if (mode == QLatin1String("delay") || mode == QLatin1String("hang"))
        QVERIFY(timer.elapsed() >= 100);
    const SeenRequest seen = m_standIn.requests(activityPath).value(0);
    QCOMPARE(seen.fault, mode);
    QCOMPARE(seen.body, isRead ? activity() : QByteArray());

    m_standIn.succeed(activityPath);
    QCOMPARE(exchange(activityPath, activity()), QByteArray(R"({"status":"ok"})"));

    if (error == QNetworkReply::RemoteHostClosedError)
        return; // would be sent again unseen
    m_standIn.fail(activityPath, mode, 1, 0, "mine");
    QVERIFY(exchange(activityPath, activity()).startsWith(start));
    QCOMPARE(exchange(activityPath, activity()), QByteArray(R"({"status":"ok"})"));
}

void TestStandIn::hangsOnOnePathOnly()
{
    m_standIn.fail(activityPath, QStringLiteral("hang"));
    const auto hanging = start(activityPath, activity());
    QSignalSpy finished(hanging.get(), &QNetworkReply::finished);
    QVERIFY(m_standIn.waitForRequests(activityPath, 1));
    QCOMPARE(exchange(screenshotPath, screenshot("x")), QByteArray("ok"));
    QVERIFY(!hanging->isFinished());
    m_standIn.succeed(activityPath);
    QVERIFY(finished.count() == 1 || finished.wait(10000));
    QCOMPARE(hanging->readAll(), QByteArray(R"({"status":"ok"})"));
    QVERIFY(m_standIn.waitForRecords(2));
}

void TestStandIn::showsPages()
{
    QJsonObject data = StandIn::demoData();
    data[QLatin1String("details")] = QJsonObject{
        {QStringLiteral("48211"), QJsonObject{{QStringLiteral("title"), QStringLiteral("<i>&")}}}};
    m_standIn.setData(data);
    exchange(activityPath, activity("3"));
    exchange(screenshotPath, screenshot("\xff\xd8picture"));

    for (const char* path : {"/", "/monitor/", "/monitor", "/task?id=48211"}) {
        const QByteArray page = exchange(QLatin1String(path));
        QCOMPARE(page.count("<i class=\"on\">"), 3);
        QVERIFY(page.contains("/picture/000002-screenshot.jpg"));
        QVERIFY(!page.contains("http://") && !page.contains("https://"));
    }
    QVERIFY(exchange(QStringLiteral("/task?id=48211")).contains("<h1>&lt;i&gt;&amp;</h1>"));
    QCOMPARE(exchange(QStringLiteral("/picture/000002-screenshot.jpg")),
             QByteArray("\xff\xd8picture"));
    exchange(QStringLiteral("/picture/000001-activity.jpg"));
    QCOMPARE(m_error, QNetworkReply::ContentNotFoundError);
    QVERIFY(exchange(QStringLiteral("/task?id=%3Cb%3E")).contains("&lt;b&gt;"));
    QCOMPARE(m_error, QNetworkReply::ContentNotFoundError);
}

void TestStandIn::comesBackWithWhatItKept()
{
    exchange(activityPath, activity());
    const QString address = m_standIn.url();
    m_standIn.stop();
    exchange(activityPath, activity());
    QCOMPARE(m_error, QNetworkReply::ConnectionRefusedError);
    QVERIFY(m_standIn.start());
    QCOMPARE(m_standIn.url(), address);
    exchange(activityPath, activity());
    const QJsonArray records = m_standIn.confirmedRecords();
    QCOMPARE(records.size(), 2);
    QCOMPARE(records[1][QLatin1String("n")].toInt(), 2);
    QVERIFY(exchange(QLatin1String("/api_get_active") + credentials)
                .startsWith(R"({"today_active":2,)"));
}

TESSAPORT_TEST_MAIN(TestStandIn, QCoreApplication)
#include "tst_standin.moc"
