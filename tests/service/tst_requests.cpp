// SPDX-License-Identifier: GPL-3.0-or-later
#include "ServiceTest.h"
#include "support/Notices.h"
#include "support/TestMain.h"

#include <functional>

class RequestsTest : public QObject, private ServiceTest {
    Q_OBJECT

private slots:
    void init() { QVERIFY(start()); }

    void wire()
    {
        const auto time = [this](const char* teamId) {
            return [this, teamId] { client().requestActive(QLatin1String(teamId)); };
        };
        const auto deadline = [this](const QTime& at) {
            return [this, at] {
                client().requestDeadline({2030, 1, 2}, QStringLiteral(" ж&50%20"), at);
            };
        };
        const QPair<std::function<void()>, const char*> rows[] = {
            {[this] { client().requestTeamsAndTasks(); }, "GET /api_teams_tasks "},
            {[this] { client().requestVersion(); }, "GET /monitor/tpmc.version"},
            {[this] { client().requestTaskInfo(QStringLiteral("5&+%41")); },
             "GET /api_get_task &task_id=5%26%2B%2541"},
            {time("17"), "GET /api_get_active &task_id=17"},
            {time(""), "GET /api_get_active &task_id="},
            // The row for time without a task.
            {time("0"), "GET /api_get_active "},
            // No time in particular.
            {deadline({23, 59}),
             "POST /api_task_deadline_request "
             "&task_id=101&dl_date=2030-01-02&message=%20%D0%B6%2650%2520"},
            {deadline({0, 0}),
             "POST /api_task_deadline_request "
             "&task_id=101&dl_date=2030-01-02&dl_time=00:00&message=%20%D0%B6%2650%2520"}};
        session().setTaskID(QStringLiteral("101"));
        session().setPassword(QStringLiteral("p%41ss a+b&c=d%20#ж\"</"));
        for (const auto& [ask, expected] : rows) {
            standIn().reset();
            ask();
            QTRY_COMPARE(standIn().requests().size(), 1);
            const SeenRequest seen = standIn().requests().last();
            // The credentials stand in front of every query.
            QString query = seen.query;
            query.replace(QStringLiteral("login=demo@example.com&password="
                                         "p%2541ss%20a%2Bb%26c%3Dd%2520%23%D0%B6%22%3C/"),
                          QStringLiteral(" "));
            QCOMPARE(seen.method + QLatin1Char(' ') + seen.path + query, QLatin1String(expected));
            QCOMPARE(seen.headers[QStringLiteral("content-type")],
                     seen.method == QLatin1String("GET")
                         ? QString()
                         : QStringLiteral("application/x-www-form-urlencoded"));
            QVERIFY(seen.body.isEmpty());
        }
    }

    void untrustedCertificate()
    {
        standIn().reset();
        // Over a connection of its own: one that is there would not be asked again.
        TessaPort other;
        other.session()->setIsOnline(true);
        QSignalSpy offline(&other, &TessaPort::onlineChanged);
        setTestVerifiesCertificates(true);
        // In the words of either system's TLS.
        QTest::ignoreMessage(QtWarningMsg,
                             QRegularExpression(QStringLiteral(
                                 "^Certificate refused: .*(self.signed|not trusted)")));
        other.requestTeamsAndTasks();
        const bool isOffline = offline.wait();
        setTestVerifiesCertificates(false);
        QVERIFY(isOffline);
        QVERIFY(standIn().requests().isEmpty());
    }

    void signIn()
    {
        QSignalSpy error(&client(), &TessaPort::error);
        client().login(QStringLiteral("demo@example.com"), QStringLiteral("wrong"));
        QVERIFY(error.wait());
        QCOMPARE(error.first().first().toInt(), 0);
        QCOMPARE(session().password(), QStringLiteral("demo"));

        // Another user, asked for twice.
        session().setTaskID(QStringLiteral("101"));
        QSignalSpy loginOk(&client(), &TessaPort::loginOk);
        for (int i = 0; i < 2; ++i)
            client().login(QStringLiteral("anna@example.com"), QStringLiteral("demo"));
        QVERIFY(loginOk.wait());
        roundTrips();
        QCOMPARE(loginOk.size(), 1);
        QCOMPARE(session().login(), QStringLiteral("anna@example.com"));
        QVERIFY(session().taskID().isEmpty());
        const QSettings left(
            client().dataDir().filePath(QStringLiteral("demo@example.com/session.ini")),
            QSettings::IniFormat);
        QCOMPARE(left.value(QStringLiteral("taskID")).toString(), QStringLiteral("101"));

        // Without a network there is no error at all.
        error.clear();
        QSignalSpy online(&client(), &TessaPort::onlineChanged);
        standIn().fail(QStringLiteral("/api_teams"), QStringLiteral("drop-before"));
        client().login(QStringLiteral("anna@example.com"), QStringLiteral("demo"));
        QVERIFY(online.wait());
        QVERIFY(error.isEmpty());
    }

    void refresh()
    {
        QStringList order;
        connect(&session(), &Session::tasksUpdated, this,
                [&](const QString& teamId) { order.append(teamId); });
        connect(&session(), &Session::teamsUpdated, this,
                [&] { order.append(QStringLiteral("teams")); });
        client().requestTeamsAndTasks();
        QTRY_VERIFY(order.contains(QStringLiteral("teams")));
        QCOMPARE(order.size(), session().teams().size() + 1);
        QCOMPARE(order.last(), QStringLiteral("teams"));
        int wanted = 0;
        for (const Team& team : session().teams()) {
            QCOMPARE(session().tasks(team.id).last().id, QStringLiteral("0"));
            if (team.id != QLatin1String("2192"))
                wanted += session().tasks(team.id).size() - 1;
        }
        QTRY_COMPARE(standIn().requests(QStringLiteral("/api_get_task")).size(), wanted);

        // A list may be long.
        order.clear();
        standIn().fail(QStringLiteral("/api_teams_tasks"), QStringLiteral("answer"), 1, 0,
                       R"([{"id":"17","name":"n"},)" + QByteArray(4 << 20, ' ') + "]");
        client().requestTeamsAndTasks();
        QTRY_COMPARE(order, (QStringList{QStringLiteral("17"), QStringLiteral("teams")}));

        // What is no list takes the teams away, and leaves the tasks.
        const QString teamId = session().teams()[0].id;
        standIn().fail(QStringLiteral("/api_teams_tasks"), QStringLiteral("garbage"), 1);
        order.clear();
        client().requestTeamsAndTasks();
        QTRY_COMPARE(order, QStringList{QStringLiteral("teams")});
        QVERIFY(session().teams().isEmpty());
        QVERIFY(!session().tasks(teamId).isEmpty());
    }

    void details()
    {
        const QString path = QStringLiteral("/api_get_task");
        QSignalSpy updated(&client(), &TessaPort::taskInfoUpdated);
        client().requestTaskInfo(QStringLiteral("0"));

        // Kept under the id of the reply, whatever was asked for.
        standIn().fail(path, QStringLiteral("answer"), 1, 0,
                       R"({"status":"ok","message":{"id":"8","title":"t"}})");
        client().requestTaskInfo(QStringLiteral("7"));
        QTRY_COMPARE(updated.size(), 1);
        QCOMPARE(updated[0][0].value<TaskInfo>().id, QStringLiteral("8"));
        QCOMPARE(session().taskInfo(QStringLiteral("8")).title, QStringLiteral("t"));
        QVERIFY(session().taskInfo(QStringLiteral("7")).id.isEmpty());

        standIn().fail(path, QStringLiteral("answer"), 1, 0, R"({"status":"no","message":"m"})");
        client().requestTaskInfo(QStringLiteral("7"));
        QTRY_COMPARE(shownNotices().size(), 1);
        QCOMPARE(updated.size(), 1);

        // A failed request answers with an empty record, also where there are details.
        standIn().fail(path, QStringLiteral("status500"), 1);
        client().requestTaskInfo(QStringLiteral("8"));
        QTRY_COMPARE(updated.size(), 2);
        QVERIFY(updated[1][0].value<TaskInfo>().id.isEmpty());
        QCOMPARE(standIn().requests(path).size(), 3);
    }

    void versions()
    {
        const struct {
            const char* own;
            const char* published;
            bool isNewer;
        } rows[] = {{"1.1.0", "1.1.0", false},
                    {"1.1.0", "1.2", true},
                    {"1.1.0", "", false},
                    // As texts.
                    {"1.10.0", "1.9.0", true},
                    {"1.9.0", "1.10.0", false}};
        for (const auto& row : rows) {
            QCoreApplication::setApplicationVersion(QLatin1String(row.own));
            const QByteArray file = QByteArray(R"([{"version":"%"}])").replace("%", row.published);
            standIn().fail(QStringLiteral("/monitor/tpmc.version"), QStringLiteral("answer"), 1, 0,
                           file);
            QSignalSpy available(&client(), &TessaPort::updateAvailable);
            client().requestVersion();
            QVERIFY(available.wait());
            QCOMPARE(available.first().first().toBool(), row.isNewer);
            QCOMPARE(shownNotices().size(), int(row.isNewer));
            NotificationManager::instance()->closeAll();
        }
        QCoreApplication::setApplicationVersion(QStringLiteral("1.1.0"));
    }

    void timeSync()
    {
        const QString path = QStringLiteral("/api_get_active");
        standIn().fail(path, QStringLiteral("answer"), 1, 0,
                       R"({"today_active":"61","today_total":125,"today_task":30})");
        // The totals are of today, also for counters that are not yet.
        session().setWorktimeDate(QDate::currentDate().addDays(-1));
        session().setTaskActiveTime(QStringLiteral("17"), QTime(5, 0));
        QSignalSpy timeUpdated(&session(), &Session::timeUpdated);
        QTime atSignal;
        connect(&client(), &TessaPort::timesUpdated, this,
                [&] { atSignal = session().todayActiveTime(QString()); });
        client().requestActive(QStringLiteral("17"));
        QTRY_COMPARE(atSignal, QTime(0, 30));
        QCOMPARE(timeUpdated.size(), 1);
        session().tick();
        QCOMPARE(session().todayActivetime(), QTime(1, 1));
        QCOMPARE(session().displayWorktime(), QTime(2, 5, 1));
        QCOMPARE(session().displayActivetime(), QTime(0, 0, 1));
        QCOMPARE(session().todayActiveTime(QStringLiteral("17")), QTime(0, 0));

        // What is no JSON counts as three zeros.
        standIn().fail(path, QStringLiteral("garbage"), 1);
        client().requestActive(QStringLiteral("0"));
        QTRY_COMPARE(session().todayActivetime(), QTime(0, 0));
    }

    void onlineState()
    {
        const QString path = QStringLiteral("/api_get_active");
        QSignalSpy onlineChanged(&client(), &TessaPort::onlineChanged);
        QSignalSpy error(&client(), &TessaPort::error);
        standIn().fail(path, QStringLiteral("status500"));
        for (int i = 1; i <= 2; ++i) {
            client().requestActive(QStringLiteral("1"));
            QTRY_COMPARE(standIn().requests(path).size(), i);
            QTRY_VERIFY(!session().isOnline());
        }
        // A refusal is an answer: the service is there.
        standIn().fail(path, QStringLiteral("refuse"), 1);
        client().requestActive(QStringLiteral("1"));
        QTRY_COMPARE(error.size(), 1);
        QCOMPARE(error[0][0].toInt(), 6);
        QTRY_VERIFY(session().isOnline());
        QCOMPARE(onlineChanged[0][0].toString(), QString());
        // A name that can't be found is a failed connection.
        for (const auto& [url, reason] :
             {std::pair("https://no-such-host.invalid", "Ошибка соединения. "),
              std::pair("no-such-protocol://localhost", "Сайт недоступен. ")}) {
            session().setIsOnline(true);
            onlineChanged.clear();
            setTestServiceUrl(QLatin1String(url));
            client().requestActive(QStringLiteral("1"));
            QTRY_COMPARE(onlineChanged.size(), 1);
            QCOMPARE(onlineChanged[0][0].toString(), QString::fromUtf8(reason));
        }
    }
};

TESSAPORT_TEST_MAIN(RequestsTest, QApplication)

#include "tst_requests.moc"
