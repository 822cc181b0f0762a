// SPDX-License-Identifier: GPL-3.0-or-later
#include "support/StandIn.h"
#include "support/TestMain.h"

#include <QNetworkAccessManager>
#include <QNetworkReply>
#include <QSignalSpy>

/// What the other tests take for granted of the stand-in.
class TestStandIn : public QObject {
    Q_OBJECT

private slots:
    void initTestCase() { QVERIFY(m_standIn.isRunning()); }
    void init();
    void answers_data();
    void answers();
    void keepsAndShowsReports();
    void fails_data();
    void fails();

private:
    QByteArray exchange(const QString& path, const QByteArray& body = {});

    StandIn m_standIn;
    QNetworkAccessManager m_manager;
    QNetworkReply::NetworkError m_error = QNetworkReply::NoError;
};

namespace {

const QByteArray ok = R"({"status":"ok"})";
const QString credentials = QStringLiteral("?login=demo@example.com&password=demo");
const QString activityPath = QStringLiteral("/api_active2");

/// A report with one more field of this name.
QByteArray report(const QByteArray& field, const QByteArray& value, const QByteArray& past = "0")
{
    const QByteArray record = R"([{")" + field + R"(":")" + value
        + R"(","email":"demo@example.com","past":")" + past
        + R"(","task_id":"48211","team_id":"1507","version":"1.1.0"}])";
    return "data=" + record.toPercentEncoding();
}

} // namespace

QByteArray TestStandIn::exchange(const QString& path, const QByteArray& body)
{
    QNetworkRequest request(QUrl(m_standIn.url() + path));
    request.setHeader(QNetworkRequest::ContentTypeHeader,
                      QStringLiteral("application/x-www-form-urlencoded"));
    const bool isPost = !body.isEmpty() || path.startsWith(QLatin1String("/api_task_deadline"));
    const std::unique_ptr<QNetworkReply> reply(isPost ? m_manager.post(request, body)
                                                      : m_manager.get(request));
    reply->ignoreSslErrors();
    QSignalSpy(reply.get(), &QNetworkReply::finished).wait(10000);
    m_error = reply->error();
    return reply->readAll();
}

void TestStandIn::init()
{
    m_standIn.setData(StandIn::demoData());
    m_standIn.reset();
}

void TestStandIn::answers_data()
{
    QTest::addColumn<QString>("query");
    QTest::addColumn<QByteArray>("start");
    QTest::newRow("/api_teams") << "" << QByteArray(R"([{"id":"1507","name":)");
    QTest::newRow("/api_teams_tasks") << "" << QByteArray(R"([{"id":"1507","name":)");
    QTest::newRow("/api_get_task")
        << "&task_id=48211" << QByteArray(R"({"status":"ok","message":{)");
    QTest::newRow("/api_get_active") << "&task_id=1507" << QByteArray(R"({"today_active":0,)");
    QTest::newRow("/api_task_deadline_request")
        << "&task_id=48211&dl_date=2030-01-01&message=" << ok;
}

void TestStandIn::answers()
{
    QFETCH(QString, query);
    QFETCH(QByteArray, start);
    const QString path = QString::fromLatin1(QTest::currentDataTag());
    QVERIFY(exchange(path + credentials + query).startsWith(start));
    QCOMPARE(exchange(path + QLatin1String("?login=demo@example.com&password=Demo") + query),
             QByteArray(R"({"status":-1,"err_msg":"Invalid email|pswd|client"})"));
}

void TestStandIn::keepsAndShowsReports()
{
    // Far larger than a form that the HTTP library takes by itself.
    const QByteArray picture = QByteArray("\xff\xd8\xff\0", 4) + QByteArray(200000, '\x9a');
    QByteArray pictureReport = report("file", picture.toBase64());
    pictureReport.replace("%22past%22", "%22fileName%22%3A%22x%22%2C%22past%22");
    QCOMPARE(exchange(QStringLiteral("/api_screenshot"), pictureReport), QByteArray("ok"));
    QCOMPARE(exchange(activityPath, report("active", "7")), ok);
    QCOMPARE(exchange(activityPath, report("active", "10", "172800")), ok);
    for (const QByteArray& malformed :
         {report("active", "7").mid(1), report("active", "7").chopped(2), report("active", "11"),
          report("passive", "7"), report("active", "7", "never")})
        QVERIFY(exchange(activityPath, malformed).startsWith(R"({"status":"error")"));

    // It comes back with what it kept; the late report belongs to an earlier day.
    m_standIn.stop();
    QVERIFY(m_standIn.start());
    QCOMPARE(m_standIn.confirmedRecords().size(), 3);
    QVERIFY(exchange(QLatin1String("/api_get_active") + credentials)
                .startsWith(R"({"today_active":1,"today_total":1,)"));
    QVERIFY(exchange(QStringLiteral("/monitor/")).contains("/picture/000001-screenshot.jpg"));
    QCOMPARE(exchange(QStringLiteral("/picture/000001-screenshot.jpg")), picture);
}

void TestStandIn::fails_data()
{
    QTest::addColumn<QNetworkReply::NetworkError>("error");
    QTest::addColumn<QByteArray>("start");
    const auto row = [](const char* mode, const QByteArray& start,
                        QNetworkReply::NetworkError error = QNetworkReply::NoError) {
        QTest::newRow(mode) << error << start;
    };
    row("refuse", R"({"status":-1,)");
    row("garbage", "\xff");
    row("html", "\t<!DOCTYPE");
    row("database", "\xcd\xe5 \xec\xee\xe3\xf3");
    row("answer", "mine");
    row("status500", "Internal", QNetworkReply::InternalServerError);
    for (const char* mode : {"drop-before", "drop-after", "drop-kept", "hang"})
        row(mode, QByteArray(), QNetworkReply::RemoteHostClosedError);
}

void TestStandIn::fails()
{
    QFETCH(QByteArray, start);
    const QString mode = QString::fromLatin1(QTest::currentDataTag());
    m_standIn.fail(activityPath, mode, -1, 100, "mine");
    const QByteArray answer = exchange(activityPath, report("active", "7"));
    QTEST(m_error, "error");
    QVERIFY2(answer.startsWith(start) && answer.isEmpty() == start.isEmpty(), answer.constData());
    QCOMPARE(!m_standIn.confirmedRecords().isEmpty(), mode == QLatin1String("drop-kept"));
    QCOMPARE(m_standIn.requests(activityPath).first().body.isEmpty(),
             mode == QLatin1String("drop-before"));
    m_standIn.succeed(activityPath);
    QCOMPARE(exchange(activityPath, report("active", "7")), ok);
}

TESSAPORT_TEST_MAIN(TestStandIn, QCoreApplication)

#include "tst_standin.moc"
