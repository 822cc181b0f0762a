// SPDX-License-Identifier: GPL-3.0-or-later
#include "ServiceTest.h"
#include "support/TestMain.h"
#include "update/UpdateState.h"

#include <QApplication>

#include <functional>

using Ask = std::function<void(TessaPort&)>;
Q_DECLARE_METATYPE(Ask)

class tst_Requests : public QObject {
    Q_OBJECT

private slots:
    void wire_data();
    void wire();
    void signIn();
    void refresh();
    void details();
    void timeSync();
    void onlineState();
};

void tst_Requests::wire_data()
{
    QTest::addColumn<Ask>("ask");
    QTest::addColumn<QString>("request");
    const auto ask = [](Ask ask) { return ask; };
    const auto row = [](const char* name, const Ask& ask, const char* request) {
        QTest::newRow(name) << ask << request;
    };
    row("teams", ask(&TessaPort::requestTeamsAndTasks), "GET /api_teams_tasks ");
    row("version", ask(&TessaPort::requestVersion), "GET /monitor/tpmc.version");
    const auto details = [](TessaPort& client) { client.requestTaskInfo(QStringLiteral("5&")); };
    row("details", details, "GET /api_get_task &task_id=5%26");
    const auto time = [](const char* id) {
        return [id](TessaPort& client) { client.requestActive(QLatin1String(id)); };
    };
    row("time", time("17"), "GET /api_get_active &task_id=17");
    row("time without a team", time(""), "GET /api_get_active &task_id=");
    row("time of the row", time("0"), "GET /api_get_active ");
    const auto deadline = [](const QTime& at) {
        return [at](TessaPort& client) {
            client.requestDeadline({2030, 1, 2}, QStringLiteral(" ж& "), at);
        };
    };
    row("no particular time", deadline({23, 59}),
        "POST /api_task_deadline_request "
        "&task_id=101&dl_date=2030-01-02&message=%20%D0%B6%26%20");
    row("midnight", deadline({0, 0}),
        "POST /api_task_deadline_request "
        "&task_id=101&dl_date=2030-01-02&dl_time=00:00&message=%20%D0%B6%26%20");
}

void tst_Requests::wire()
{
    QFETCH(Ask, ask);
    QFETCH(QString, request);
    ServiceTest test;
    QVERIFY(test.isReady());
    UpdateState::instance()->init(&test.client());
    test.session().setTaskID(QStringLiteral("101"));
    test.session().setPassword(QStringLiteral("a b+c&d=e%20#ж\"<"));
    const int before = test.standIn().requests().size();
    ask(test.client());
    QTRY_COMPARE(test.standIn().requests().size(), before + 1);
    const SeenRequest seen = test.standIn().requests().last();
    // The credentials stand in front of every query.
    QString query = seen.query;
    query.replace(QStringLiteral("login=demo@example.com&password="
                                 "a%20b+c%26d%3De%20%23%D0%B6%22%3C"),
                  QStringLiteral(" "));
    QCOMPARE(seen.method + QLatin1Char(' ') + seen.path + query, request);
    QCOMPARE(seen.headers[QStringLiteral("content-type")],
             seen.method == QLatin1String("GET")
                 ? QString()
                 : QStringLiteral("application/x-www-form-urlencoded"));
    QVERIFY(seen.body.isEmpty());
}

void tst_Requests::signIn()
{
    ServiceTest test;
    QVERIFY(test.isReady());
    QSignalSpy error(&test.client(), &TessaPort::error);
    test.client().login(QStringLiteral("demo@example.com"), QStringLiteral("wrong"));
    QVERIFY(error.wait());
    QCOMPARE(error.first().first().toInt(), 0);
    QCOMPARE(test.session().password(), QStringLiteral("demo"));

    // Another user, with the button pressed twice, and an answer for the old one still on its way.
    QJsonObject data = StandIn::demoData();
    data[QStringLiteral("accounts")] =
        QJsonArray{QJsonObject{{QStringLiteral("login"), QStringLiteral("other@example.com")},
                               {QStringLiteral("password"), QStringLiteral("p")}}};
    test.session().setTaskID(QStringLiteral("101"));
    const QString time = QStringLiteral("/api_get_active");
    test.standIn().fail(time, QStringLiteral("hang"));
    test.client().requestActive(QStringLiteral("1"));
    QTRY_COMPARE(test.standIn().requests(time).size(), 1);
    test.standIn().setData(data);
    QSignalSpy loginOk(&test.client(), &TessaPort::loginOk);
    for (int i = 0; i < 2; ++i)
        test.client().login(QStringLiteral("other@example.com"), QStringLiteral("p"));
    QVERIFY(loginOk.wait());
    test.standIn().succeed(time);
    QTest::qWait(300);
    QCOMPARE(loginOk.size(), 1);
    QCOMPARE(test.session().login(), QStringLiteral("other@example.com"));
    QVERIFY(test.session().taskID().isEmpty());
    QCOMPARE(test.session().displayWorktime(), QTime(0, 0));
    const QSettings left(
        test.client().dataDir().filePath(QStringLiteral("demo@example.com/session.ini")),
        QSettings::IniFormat);
    QCOMPARE(left.value(QStringLiteral("taskID")).toString(), QStringLiteral("101"));

    // Without a network there is no error at all.
    error.clear();
    QSignalSpy online(&test.client(), &TessaPort::onlineChanged);
    test.standIn().fail(QStringLiteral("/api_teams"), QStringLiteral("drop-before"));
    test.client().login(QStringLiteral("other@example.com"), QStringLiteral("p"));
    QVERIFY(online.wait());
    QVERIFY(error.isEmpty());
}

void tst_Requests::refresh()
{
    ServiceTest test;
    QVERIFY(test.isReady());
    QStringList order;
    connect(&test.session(), &Session::tasksUpdated, this,
            [&](const QString& teamId) { order.append(teamId); });
    connect(&test.session(), &Session::teamsUpdated, this,
            [&] { order.append(QStringLiteral("teams")); });
    test.client().requestTeamsAndTasks();
    QTRY_VERIFY(order.contains(QStringLiteral("teams")));
    QCOMPARE(order.size(), test.session().teams().size() + 1);
    QCOMPARE(order.last(), QStringLiteral("teams"));
    int wanted = 0;
    for (const Team& team : test.session().teams()) {
        QCOMPARE(test.session().tasks(team.id).last().id, QStringLiteral("0"));
        if (team.id != QLatin1String("2192"))
            wanted += test.session().tasks(team.id).size() - 1;
    }
    QTRY_COMPARE(test.standIn().requests(QStringLiteral("/api_get_task")).size(), wanted);

    // What is no list takes the teams away, and leaves the tasks.
    const QString teamId = test.session().teams()[0].id;
    test.standIn().fail(QStringLiteral("/api_teams_tasks"), QStringLiteral("garbage"), 1);
    order.clear();
    test.client().requestTeamsAndTasks();
    QTRY_COMPARE(order, QStringList{QStringLiteral("teams")});
    QVERIFY(test.session().teams().isEmpty());
    QVERIFY(!test.session().tasks(teamId).isEmpty());
}

void tst_Requests::details()
{
    ServiceTest test;
    QVERIFY(test.isReady());
    const QString path = QStringLiteral("/api_get_task");
    QSignalSpy updated(&test.client(), &TessaPort::taskInfoUpdated);
    test.client().requestTaskInfo(QStringLiteral("0"));

    // Kept under the id of the reply, whatever was asked for.
    test.standIn().fail(path, QStringLiteral("answer"), 1, 0,
                        R"({"status":"ok","message":{"id":"8","title":"t"}})");
    test.client().requestTaskInfo(QStringLiteral("7"));
    QTRY_COMPARE(updated.size(), 1);
    QCOMPARE(updated[0][0].value<TaskInfo>().id, QStringLiteral("8"));
    QCOMPARE(test.session().taskInfo(QStringLiteral("8")).title, QStringLiteral("t"));
    QVERIFY(test.session().taskInfo(QStringLiteral("7")).id.isEmpty());

    test.standIn().fail(path, QStringLiteral("answer"), 1, 0, R"({"status":"no","message":"m"})");
    test.client().requestTaskInfo(QStringLiteral("7"));
    QTRY_VERIFY(NotificationManager::instance()->hasNotifications());
    QCOMPARE(updated.size(), 1);

    // A failed request answers with an empty record, also where there are details.
    test.standIn().fail(path, QStringLiteral("status500"), 1);
    test.client().requestTaskInfo(QStringLiteral("8"));
    QTRY_COMPARE(updated.size(), 2);
    QVERIFY(updated[1][0].value<TaskInfo>().id.isEmpty());
    QCOMPARE(test.standIn().requests(path).size(), 3);
}

void tst_Requests::timeSync()
{
    ServiceTest test;
    QVERIFY(test.isReady());
    const QString path = QStringLiteral("/api_get_active");
    test.standIn().fail(path, QStringLiteral("answer"), 1, 0,
                        R"({"today_active":"61","today_total":125,"today_task":30})");
    QSignalSpy timeUpdated(&test.session(), &Session::timeUpdated);
    test.client().requestActive(QStringLiteral("17"));
    QTRY_COMPARE(test.session().todayActivetime(), QTime(1, 1));
    QCOMPARE(test.session().displayWorktime(), QTime(2, 5));
    QCOMPARE(test.session().displayActivetime(), QTime(0, 0));
    QCOMPARE(timeUpdated.size(), 1);
    QCOMPARE(test.session().todayActiveTime(QStringLiteral("17")), QTime(0, 0));
    QCOMPARE(test.session().todayActiveTime(QString()), QTime(0, 30));

    // What is no JSON counts as three zeros.
    test.standIn().fail(path, QStringLiteral("garbage"), 1);
    test.client().requestActive(QStringLiteral("0"));
    QTRY_COMPARE(test.session().todayActivetime(), QTime(0, 0));
}

void tst_Requests::onlineState()
{
    ServiceTest test;
    QVERIFY(test.isReady());
    const QString path = QStringLiteral("/api_get_active");
    QSignalSpy onlineChanged(&test.client(), &TessaPort::onlineChanged);
    QSignalSpy error(&test.client(), &TessaPort::error);
    test.standIn().fail(path, QStringLiteral("status500"));
    for (int i = 1; i <= 2; ++i) {
        test.client().requestActive(QStringLiteral("1"));
        QTRY_COMPARE(test.standIn().requests(path).size(), i);
        QTRY_VERIFY(!test.session().isOnline());
    }
    // A refusal is an answer: the service is there.
    test.standIn().fail(path, QStringLiteral("refuse"), 1);
    test.client().requestActive(QStringLiteral("1"));
    QTRY_COMPARE(error.size(), 1);
    QCOMPARE(error[0][0].toInt(), 6);
    QTRY_VERIFY(test.session().isOnline());
    // A name that can't be found is a failed connection.
    setTestServiceUrl(QStringLiteral("https://no-such-host.invalid"));
    test.client().requestActive(QStringLiteral("1"));
    QTRY_COMPARE(onlineChanged.size(), 3);
    QCOMPARE(onlineChanged[0][0].toString(), QString());
    QCOMPARE(onlineChanged[2][0].toString(), QStringLiteral("Ошибка соединения. "));
}

TESSAPORT_TEST_MAIN(tst_Requests, QApplication)

#include "tst_requests.moc"
