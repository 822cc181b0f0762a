// SPDX-License-Identifier: GPL-3.0-or-later
#include "ServiceTest.h"
#include "support/TestMain.h"
#include "update/UpdateState.h"

#include <QApplication>

class tst_Requests : public QObject {
    Q_OBJECT

private slots:
    void queries_data();
    void queries();
    void deadline_data();
    void deadline();
    void signIn();
    void refusedSignIn();
    void changeOfAccount();
    void refresh();
    void details();
    void timeSync();
    void version_data();
    void version();
    void onlineState();
};

namespace {

const QString odd = QStringLiteral("a b+c&d=e%20#ж\"<");

} // namespace

void tst_Requests::queries_data()
{
    QTest::addColumn<QString>("path");
    QTest::addColumn<QString>("argument");
    QTest::addColumn<QString>("more");
    QTest::newRow("teams and tasks") << "/api_teams_tasks" << QString() << QString();
    QTest::newRow("details") << "/api_get_task"
                             << "5"
                             << "&task_id=5";
    QTest::newRow("time") << "/api_get_active"
                          << "17"
                          << "&task_id=17";
    QTest::newRow("time with an empty team") << "/api_get_active"
                                             << ""
                                             << "&task_id=";
    QTest::newRow("time of the unassigned row") << "/api_get_active"
                                                << "0" << QString();
}

void tst_Requests::queries()
{
    QFETCH(QString, path);
    QFETCH(QString, argument);
    QFETCH(QString, more);
    ServiceTest test;
    QVERIFY(test.isReady());
    test.session().setPassword(odd);
    if (path == QLatin1String("/api_teams_tasks"))
        test.client().requestTeamsAndTasks();
    else if (path == QLatin1String("/api_get_task"))
        test.client().requestTaskInfo(argument);
    else
        test.client().requestActive(argument);
    QTRY_COMPARE(test.standIn().requests(path).size(), 1);
    const SeenRequest request = test.standIn().requests(path).first();
    QCOMPARE(request.method, QStringLiteral("GET"));
    QCOMPARE(request.query,
             QStringLiteral("login=demo@example.com&password="
                            "a%20b+c%26d%3De%20%23%D0%B6%22%3C")
                 + more);
}

void tst_Requests::deadline_data()
{
    QTest::addColumn<QTime>("time");
    QTest::addColumn<QString>("dlTime");
    QTest::newRow("no particular time") << QTime(23, 59) << QString();
    QTest::newRow("late") << QTime(23, 58) << "&dl_time=23:58";
    QTest::newRow("midnight") << QTime(0, 0) << "&dl_time=00:00";
}

void tst_Requests::deadline()
{
    QFETCH(QTime, time);
    QFETCH(QString, dlTime);
    ServiceTest test;
    QVERIFY(test.isReady());
    test.session().setTaskID(QStringLiteral("101"));
    test.client().requestDeadline({2030, 1, 2}, QStringLiteral(" ж& "), time);
    const QString path = QStringLiteral("/api_task_deadline_request");
    QTRY_COMPARE(test.standIn().requests(path).size(), 1);
    const SeenRequest request = test.standIn().requests(path).first();
    QCOMPARE(request.method, QStringLiteral("POST"));
    QVERIFY(request.body.isEmpty());
    QCOMPARE(request.headers[QStringLiteral("content-type")],
             QStringLiteral("application/x-www-form-urlencoded"));
    QCOMPARE(request.query,
             QStringLiteral("login=demo@example.com&password=demo&task_id=101&dl_date=2030-01-02")
                 + dlTime + QStringLiteral("&message=%20%D0%B6%26%20"));
    QTRY_VERIFY(NotificationManager::instance()->hasNotifications());
}

void tst_Requests::signIn()
{
    ServiceTest test;
    QVERIFY(test.isReady());
    QCOMPARE(test.session().login(), QStringLiteral("demo@example.com"));
    QCOMPARE(test.session().password(), QStringLiteral("demo"));
    QVERIFY(test.session().logged());
    QVERIFY(test.activityDir().exists());
    QCOMPARE(test.standIn().requests(QStringLiteral("/api_teams")).first().query,
             QStringLiteral("login=demo@example.com&password=demo"));
}

void tst_Requests::refusedSignIn()
{
    ServiceTest test;
    QVERIFY(test.isReady());
    QSignalSpy error(&test.client(), &TessaPort::error);
    test.client().login(QStringLiteral("demo@example.com"), QStringLiteral("wrong"));
    QVERIFY(error.wait());
    QCOMPARE(error.first().first().toInt(), 0);
    QCOMPARE(test.session().password(), QStringLiteral("demo"));

    // Without a network there is no error at all, only a change of the online state.
    QSignalSpy online(&test.client(), &TessaPort::onlineChanged);
    test.standIn().fail(QStringLiteral("/api_teams"), QStringLiteral("drop-before"));
    test.client().login(QStringLiteral("demo@example.com"), QStringLiteral("demo"));
    QVERIFY(online.wait());
    QCOMPARE(error.size(), 1);
}

void tst_Requests::changeOfAccount()
{
    ServiceTest test;
    QVERIFY(test.isReady());
    test.session().setTaskID(QStringLiteral("101"));
    QJsonObject data = StandIn::demoData();
    data[QStringLiteral("accounts")] =
        QJsonArray{QJsonObject{{QStringLiteral("login"), QStringLiteral("other@example.com")},
                               {QStringLiteral("password"), QStringLiteral("p")}}};
    test.standIn().setData(data);
    QSignalSpy loginOk(&test.client(), &TessaPort::loginOk);
    test.client().login(QStringLiteral("other@example.com"), QStringLiteral("p"));
    QVERIFY(loginOk.wait());
    QCOMPARE(test.session().login(), QStringLiteral("other@example.com"));
    QVERIFY(test.session().taskID().isEmpty());
    const QSettings left(
        test.client().dataDir().filePath(QStringLiteral("demo@example.com/session.ini")),
        QSettings::IniFormat);
    QCOMPARE(left.value(QStringLiteral("taskID")).toString(), QStringLiteral("101"));
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
    const QString path = QStringLiteral("/api_get_task");
    QTRY_COMPARE(test.standIn().requests(path).size(), wanted);

    // Once they have come, nothing is asked for again; and what is no list takes the teams away.
    QTRY_VERIFY(!test.session()
                     .taskInfo(test.session().tasks(test.session().teams()[0].id)[0].id)
                     .id.isEmpty());
    QTest::qWait(200);
    test.standIn().fail(QStringLiteral("/api_teams_tasks"), QStringLiteral("garbage"), 1);
    order.clear();
    test.client().requestTeamsAndTasks();
    QTRY_COMPARE(order, QStringList{QStringLiteral("teams")});
    QVERIFY(test.session().teams().isEmpty());
    order.clear();
    test.client().requestTeamsAndTasks();
    QTRY_VERIFY(order.contains(QStringLiteral("teams")));
    QTest::qWait(200);
    QCOMPARE(test.standIn().requests(path).size(), wanted);
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
    test.standIn().fail(QStringLiteral("/api_get_active"), QStringLiteral("answer"), 1, 0,
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
    test.standIn().fail(QStringLiteral("/api_get_active"), QStringLiteral("garbage"), 1);
    test.client().requestActive(QStringLiteral("0"));
    QTRY_COMPARE(test.session().todayActivetime(), QTime(0, 0));
}

void tst_Requests::version_data()
{
    QTest::addColumn<QByteArray>("body");
    QTest::addColumn<bool>("available");
    QTest::newRow("same") << QByteArray(R"([{"version":"1.1.0"}])") << false;
    QTest::newRow("newer") << QByteArray(R"([{"x":1},{"version":"1.2"}])") << true;
    QTest::newRow("older as text") << QByteArray(R"([{"version":"1.10.0"}])") << true;
    QTest::newRow("earlier as text") << QByteArray(R"([{"version":"1.0.99"}])") << false;
    QTest::newRow("no list") << QByteArray("{}") << false;
    QTest::newRow("empty") << QByteArray() << false;
}

void tst_Requests::version()
{
    QFETCH(QByteArray, body);
    QFETCH(bool, available);
    ServiceTest test;
    QVERIFY(test.isReady());
    UpdateState::instance()->init(&test.client());
    test.standIn().fail(QStringLiteral("/monitor/tpmc.version"), QStringLiteral("answer"), 1, 0,
                        body);
    QSignalSpy updateAvailable(&test.client(), &TessaPort::updateAvailable);
    test.client().requestVersion();
    QVERIFY(updateAvailable.wait());
    QCOMPARE(updateAvailable[0][0].toBool(), available);
    QCOMPARE(NotificationManager::instance()->hasNotifications(), available);
    QVERIFY(test.standIn().requests(QStringLiteral("/monitor/tpmc.version"))[0].query.isEmpty());
}

void tst_Requests::onlineState()
{
    ServiceTest test;
    QVERIFY(test.isReady());
    QSignalSpy onlineChanged(&test.client(), &TessaPort::onlineChanged);
    test.standIn().fail(QStringLiteral("/api_get_active"), QStringLiteral("status500"));
    for (int i = 1; i <= 2; ++i) {
        test.client().requestActive(QStringLiteral("1"));
        QTRY_COMPARE(test.standIn().requests(QStringLiteral("/api_get_active")).size(), i);
        QTRY_VERIFY(!test.session().isOnline());
    }
    QTest::qWait(100);
    QCOMPARE(onlineChanged.size(), 1);
    QVERIFY(onlineChanged[0][0].toString().isEmpty());

    // A refusal is an answer: the service is there.
    QSignalSpy error(&test.client(), &TessaPort::error);
    test.standIn().fail(QStringLiteral("/api_get_active"), QStringLiteral("refuse"), 1);
    test.client().requestActive(QStringLiteral("1"));
    QTRY_COMPARE(onlineChanged.size(), 2);
    QVERIFY(test.session().isOnline());
    QCOMPARE(error.size(), 1);
    QCOMPARE(error[0][0].toInt(), 6);

    // A name that can't be found is a failed connection.
    setTestServiceUrl(QStringLiteral("https://no-such-host.invalid"));
    test.client().requestActive(QStringLiteral("1"));
    QTRY_COMPARE(onlineChanged.size(), 3);
    QCOMPARE(onlineChanged[2][0].toString(), QStringLiteral("Ошибка соединения. "));
}

TESSAPORT_TEST_MAIN(tst_Requests, QApplication)

#include "tst_requests.moc"
