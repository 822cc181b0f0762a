// SPDX-License-Identifier: GPL-3.0-or-later
#include "support/StandIn.h"
#include "support/TestMain.h"

#include <QElapsedTimer>
#include <QNetworkAccessManager>
#include <QNetworkReply>
#include <QSignalSpy>
#include <QSslSocket>

namespace {

const QByteArray ok = R"({"status":"ok"})";
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

/// What the other tests take for granted of the stand-in.
class StandInTest : public QObject {
    Q_OBJECT

private slots:
    void initTestCase() { QVERIFY(m_standIn.isRunning()); }

    void init()
    {
        m_standIn.setData(StandIn::demoData());
        m_standIn.reset();
    }

    void keepsAndShowsReports()
    {
        // Far larger than a form that the HTTP library takes by itself, and padded.
        const QByteArray picture =
            QByteArray("\xff\xd8\xff\0", 4) + QByteArray(200000, '\x9a') + 'x';
        QByteArray pictureReport = report("file", picture.toBase64());
        pictureReport.replace("%22past%22", "%22fileName%22%3A%22x%22%2C%22past%22");
        QCOMPARE(exchange(QStringLiteral("/api_screenshot"), pictureReport), QByteArray("ok"));
        QCOMPARE(exchange(activityPath, report("active", "7")), ok);
        QCOMPARE(exchange(activityPath, report("active", "0")), ok);
        QCOMPARE(exchange(activityPath, report("active", "10", "172800")), ok);
        // It comes back with what it kept; the late report belongs to an earlier day.
        m_standIn.stop();
        QVERIFY(m_standIn.start());
        QCOMPARE(m_standIn.confirmedRecords().size(), 4);
        QVERIFY(exchange(QStringLiteral("/api_get_active?login=demo@example.com&password=demo"))
                    .startsWith(R"({"today_active":1,"today_total":2,)"));
        QVERIFY(exchange(QStringLiteral("/monitor/")).contains("/picture/000001-screenshot.jpg"));
        QCOMPARE(exchange(QStringLiteral("/picture/000001-screenshot.jpg")), picture);
    }

    void refusesMalformedReports()
    {
        for (const QByteArray& malformed :
             {report("active", "7").mid(1), report("active", "7").chopped(2),
              report("active", "11"), report("passive", "7"), report("active", "7", "never"),
              report("active", "7").replace("email", "more%22%3A%221%22%2C%22email"),
              report("active", "7").replace("%227%22", "7"),
              report("active", "7").replace("%2C%22version%22%3A%221.1.0%22", "")})
            QVERIFY(exchange(activityPath, malformed).startsWith(R"({"status":"error")"));
        QVERIFY(m_standIn.confirmedRecords().isEmpty());
    }

    void tellsWhatItDoesNotServe()
    {
        QCOMPARE(exchange(QStringLiteral("/api_active")), QByteArray("unknown path"));
        QCOMPARE(exchange(activityPath), QByteArray("wrong method"));
        QVector<QStringList> seen;
        for (const SeenRequest& request : m_standIn.requests())
            seen.append({request.method, request.path, request.fault});
        const QString get = QStringLiteral("GET");
        QCOMPARE(seen,
                 QVector<QStringList>(
                     {{get, QStringLiteral("/api_active"), QStringLiteral("unknown path")},
                      {get, activityPath, QStringLiteral("wrong method")}}));
        QCOMPARE(exchange(QStringLiteral("/standin/fail?path=/api_active&mode=hang"), "x"),
                 QByteArray(R"({"status":"error","message":"no such path: /api_active"})"));
    }

    void letsOnlyWhatIsLateIntoTheStore()
    {
        m_standIn.fail(activityPath, QStringLiteral("delay"), 1, 300);
        QElapsedTimer late;
        late.start();
        QCOMPARE(exchange(activityPath, report("active", "1")), ok);
        QVERIFY(late.elapsed() >= 300);
        // And not because the network layer sent it again.
        QCOMPARE(m_standIn.requests(activityPath).size(), 1);

        // By hand, since the network layer would send it again.
        m_standIn.fail(activityPath, QStringLiteral("hang"));
        QSslSocket hanging;
        hanging.setPeerVerifyMode(QSslSocket::VerifyNone);
        hanging.connectToHostEncrypted(QStringLiteral("localhost"), QUrl(m_standIn.url()).port());
        const QByteArray body = report("active", "2");
        hanging.write("POST /api_active2 HTTP/1.1\r\nHost: localhost\r\nContent-Length: "
                      + QByteArray::number(body.size()) + "\r\n\r\n" + body);
        QVERIFY(m_standIn.waitForRequests(activityPath, 2));
        m_standIn.reset();
        QTRY_COMPARE(hanging.state(), QAbstractSocket::UnconnectedState);
        QVERIFY(m_standIn.confirmedRecords().isEmpty());
    }

private:
    /// What comes back; without a body it is asked by GET.
    QByteArray exchange(const QString& path, const QByteArray& body = {})
    {
        QNetworkRequest request(QUrl(m_standIn.url() + path));
        request.setHeader(QNetworkRequest::ContentTypeHeader,
                          QStringLiteral("application/x-www-form-urlencoded"));
        const std::unique_ptr<QNetworkReply> reply(body.isEmpty() ? m_manager.get(request)
                                                                  : m_manager.post(request, body));
        reply->ignoreSslErrors();
        QSignalSpy(reply.get(), &QNetworkReply::finished).wait(10000);
        return reply->readAll();
    }

    StandIn m_standIn;
    QNetworkAccessManager m_manager;
};

TESSAPORT_TEST_MAIN(StandInTest, QCoreApplication)

#include "tst_standin.moc"
