// SPDX-License-Identifier: GPL-3.0-or-later
#include "ServiceTest.h"
#include "support/Notices.h"
#include "support/TestMain.h"

#include <QDesktopServices>
#include <QPushButton>

#include <functional>

/// What the user, the windows and the browser hear of an exchange, beside the data that it brings.
class ExchangesTest : public QObject, private ServiceTest {
    Q_OBJECT

public slots:
    void openPage(const QUrl& url) { m_pages.append(url.toString()); }

private slots:
    void init() { QVERIFY(start()); }

    void failuresAndSuccesses()
    {
        const auto refresh = [this] { client().requestTeamsAndTasks(); };
        const auto details = [this] { client().requestTaskInfo(QStringLiteral("7")); };
        const auto deadline = [this] { client().requestDeadline({2030, 1, 2}, QString(), {1, 2}); };
        const auto version = [this] { client().requestVersion(); };
        const char* const no = R"({"status":"no","message":"m"})";
        const struct {
            std::function<void()> ask;
            const char* path;
            const char* mode;
            const char* answer;
            const char* heard;
        } rows[] = {
            {refresh, "/api_teams_tasks", "refuse", "", "error 6"},
            {refresh, "/api_teams_tasks", "html", "", "error 4"},
            {details, "/api_get_task", "database", "", "error 5"},
            {details, "/api_get_task", "answer", no, "0 Ошибка получения данных по задаче: m"},
            {deadline, "/api_task_deadline_request", "refuse", "", "error 6"},
            {deadline, "/api_task_deadline_request", "answer", no, "0 Ошибка переноса задачи:m"},
            {deadline, "/api_task_deadline_request", "answer", R"({"status":"ok"})",
             "0 Запрос на продление задачи успешно отправлен"},
            {deadline, "/api_task_deadline_request", "status500", "",
             "0 Запрос на продление задачи не удалось отправить, повторите попытку позже."},
            {version, "/monitor/tpmc.version", "database", "", "error 5"},
            {version, "/monitor/tpmc.version", "answer", R"([{"version":"9"}])",
             "6 Доступно новое обновление Tessaport Team 9"},
        };
        QStringList errors;
        connect(&client(), &TessaPort::error, this,
                [&errors](int code) { errors.append(QStringLiteral("error %1").arg(code)); });
        for (const auto& row : rows) {
            standIn().reset();
            standIn().fail(QString::fromLatin1(row.path), QString::fromLatin1(row.mode), -1, 0,
                           row.answer);
            row.ask();
            QTRY_COMPARE(shownNotices() + errors, QStringList{QString::fromUtf8(row.heard)});
            NotificationManager::instance()->closeAll();
            errors.clear();
        }
    }

    void detailsAreAskedForOnce()
    {
        const QString path = QStringLiteral("/api_get_task");
        QSignalSpy teamsUpdated(&session(), &Session::teamsUpdated);
        client().requestTeamsAndTasks();
        QTRY_COMPARE(teamsUpdated.size(), 1);
        int wanted = 0;
        for (const Team& team : session().teams()) {
            if (team.id != teamWithoutDeadlines)
                wanted += session().tasks(team.id).size() - 1;
        }
        QTRY_COMPARE(standIn().requests(path).size(), wanted);
        roundTrips();
        client().requestTeamsAndTasks();
        QTRY_COMPARE(teamsUpdated.size(), 2);
        roundTrips();
        QCOMPARE(standIn().requests(path).size(), wanted);
    }

    void anotherUsersAnswers()
    {
        // A minute, so that there is a time to tell of.
        client().sendActivity(1);
        QVERIFY(standIn().waitForRecords(1));
        const QStringList paths{QStringLiteral("/api_teams_tasks"), QStringLiteral("/api_get_task"),
                                QStringLiteral("/api_get_active")};
        for (const QString& path : paths)
            standIn().fail(path, QStringLiteral("hang"));
        client().requestTeamsAndTasks();
        client().requestTaskInfo(QStringLiteral("48211"));
        client().requestActive(QStringLiteral("1507"));
        for (const QString& path : paths)
            QTRY_COMPARE(standIn().requests(path).size(), 1);
        QSignalSpy loginOk(&client(), &TessaPort::loginOk);
        client().login(QStringLiteral("anna@example.com"), QStringLiteral("demo"));
        QVERIFY(loginOk.wait());

        for (const QString& path : paths)
            standIn().succeed(path);
        roundTrips();
        QVERIFY(session().teams().isEmpty() && session().tasks(QStringLiteral("1507")).isEmpty());
        QVERIFY(session().taskInfo(QStringLiteral("48211")).id.isEmpty());
        QCOMPARE(session().displayWorktime(), QTime(0, 0));
    }

    void aTeamIsToldOfWhenItChanges()
    {
        QSignalSpy teamChanged(&client(), &TessaPort::teamChanged);
        for (const auto& [team, task] : {std::pair("1", "5"), std::pair("1", "6")}) {
            client().setCurrentTask(QLatin1String(team), QLatin1String(task));
            QCOMPARE(session().teamID() + session().taskID(),
                     QLatin1String(team) + QLatin1String(task));
        }
        QCOMPARE(teamChanged, QList<QVariantList>{{QStringLiteral("1")}});
    }

    void anEmptyMessageIsSent()
    {
        client().requestDeadline({2030, 1, 2}, QLatin1String(""), {23, 59});
        const QString path = QStringLiteral("/api_task_deadline_request");
        QVERIFY(standIn().waitForRequests(path, 1));
        QVERIFY(standIn().requests(path).constFirst().query.endsWith(QLatin1String("&message=")));
    }

    void pages()
    {
        QDesktopServices::setUrlHandler(QStringLiteral("https"), this, "openPage");
        QPushButton button;
        button.setProperty("task_id", QStringLiteral("5"));
        button.setProperty("id", QStringLiteral("6"));
        connect(&button, &QPushButton::clicked, &client(), qOverload<>(&TessaPort::openTaskUrl));
        button.click();
        client().openTaskUrl(QStringLiteral("7"));
        client().openUrl(QStringLiteral("https://a/b?c"));
        QDesktopServices::unsetUrlHandler(QStringLiteral("https"));
        QCOMPARE(m_pages,
                 QStringList({standIn().url() + QStringLiteral("/task?id=5"),
                              standIn().url() + QStringLiteral("/task?id=7"),
                              QStringLiteral("https://a/b?c")}));
    }

private:
    QStringList m_pages;
};

TESSAPORT_TEST_MAIN(ExchangesTest, QApplication)

#include "tst_exchanges.moc"
