// SPDX-License-Identifier: GPL-3.0-or-later
#include "Program.h"
#include "support/StandIn.h"
#include "support/TestMain.h"

#include <QJsonDocument>
#include <QRandomGenerator>
#include <QRegularExpression>

namespace {

const QString strip = QStringLiteral("Tessaport");
const QString picker = QStringLiteral("Задачи");
const QRect playButton(210, 15, 40, 40);

/// The values of one key in the confirmed records of a kind, in order.
QStringList confirmed(const StandIn& standIn, const QString& kind, const QString& key)
{
    QStringList values;
    const QJsonArray entries = standIn.confirmedRecords();
    for (const QJsonValue& entry : entries) {
        if (entry[QLatin1String("kind")].toString() == kind)
            values.append(entry[QLatin1String("record")][key].toString());
    }
    return values;
}

QStringList activity(const StandIn& standIn)
{
    return confirmed(standIn, QStringLiteral("activity"), QStringLiteral("active"));
}

QStringList pictures(const StandIn& standIn)
{
    return confirmed(standIn, QStringLiteral("screenshot"), QStringLiteral("fileName"));
}

} // namespace

/// Minutes of monitoring under a fast clock, from real input to what is confirmed.
class MinutesTest : public QObject {
    Q_OBJECT

private slots:
    void minutes()
    {
        StandIn standIn(StandIn::demoData(), SERVICE_PORT);
        Home home(20);
        Program program(home);
        program.start();

        const QString signIn = QStringLiteral("Авторизация");
        QVERIFY(program.waitForActive(signIn));
        const QRect message(98, 48, 155, 18);
        const QImage noMessage = program.picture(signIn, message);
        Desktop::type("demo@example.com");
        Desktop::press("Tab");
        Desktop::type("wrong");
        Desktop::press("Return");
        QVERIFY(standIn.waitForRequests(QStringLiteral("/api_teams"), 1, patience));
        QVERIFY(waitUntil([&] { return program.picture(signIn, message) != noMessage; }));
        QVERIFY(program.window(signIn));
        QVERIFY(!program.window(strip));
        Desktop::press("ctrl+a");
        Desktop::type("demo");
        Desktop::press("Return");
        QVERIFY(program.waitFor(strip));
        QVERIFY(!program.window(signIn));

        QVERIFY(program.openTaskPicker());
        // The second task of the list that drops down.
        QVERIFY(program.clickToChange(picker, {210, 50}, {70, 66, 150, 40}));
        QVERIFY(program.click(picker, {210, 95}));
        QVERIFY(program.click(picker, {258, 121}));
        QVERIFY(program.waitForGone(picker));

        // So close to the press, the release may or may not be an input of the first minute.
        QVERIFY(program.click(strip, playButton.center()));
        QVERIFY(standIn.waitForRequests(QStringLiteral("/api_active2"), 2, patience));
        Desktop::movePointer({400, 400});
        QVERIFY(waitUntil([&] { return activity(standIn).lastIndexOf(QStringLiteral("1")) > 1; }));
        QVERIFY(program.click(strip, playButton.center()));
        QVERIFY(home.waitForLog("Monitor stopped"));
        QVERIFY(waitUntil([&] { return home.reports().isEmpty(); }));
        QVERIFY(program.chooseFromMenu("Up Return"));
        QCOMPARE(program.waitForExit(), 0);

        const QStringList active = activity(standIn);
        const QString counts = active.join(QString());
        // The way to the button may have been the input of the last one.
        QVERIFY2(QRegularExpression(QStringLiteral("^[01]0+10*1?$")).match(counts).hasMatch(),
                 qPrintable(counts));
        QCOMPARE(home.logged("Activity data prepared "), counts.size());

        const QString kind = QStringLiteral("activity");
        const QStringList tasks = confirmed(standIn, kind, QStringLiteral("task_id"));
        QCOMPARE(tasks.count(QStringLiteral("48215")), counts.size());
        // In fast seconds, what lies between writing and sending may show.
        for (const QString& past : confirmed(standIn, kind, QStringLiteral("past")))
            QVERIFY2(past.toInt() < 60, qPrintable(past));

        const QString session = home.userFile("session.ini");
        const QTime none(0, 0);
        const QTime activeTime = none.addSecs(counts.count(QLatin1Char('1')) * 60);
        QCOMPARE(Home::value(session, "todayWorktime").toString(),
                 none.addSecs(counts.size() * 60).toString(Qt::TextDate));
        QCOMPARE(Home::value(session, "todayActivetime").toString(),
                 activeTime.toString(Qt::TextDate));
        const QVariantMap byTask = Home::value(session, "task2activeTimeMap").toMap();
        QCOMPARE(byTask.value(QStringLiteral("48215")).toTime(), activeTime);
        QCOMPARE(Home::value(session, "active").toBool(), false);
        QCOMPARE(Home::value(session, "taskID").toString(), QStringLiteral("48215"));
        QCOMPARE(QDir(home.userFile("activity")).entryList(QDir::Files), QStringList());
    }

    void serviceAwayAndKills()
    {
        // A team whose tasks have no times that a new start of the service would move.
        QJsonObject data = StandIn::demoData();
        data[QLatin1String("teams")] = QJsonArray{data[QLatin1String("teams")].toArray().at(2)};
        StandIn standIn(data, SERVICE_PORT);
        Home home(30);
        home.signIn("2192", "30002", true);
        Desktop::movePointer({200, 200});
        Program program(home);
        program.start();
        QVERIFY(waitUntil([&] { return !pictures(standIn).isEmpty(); }));

        const QImage online = program.picture(strip, playButton);
        QVERIFY(!online.isNull());
        standIn.stop();
        QVERIFY(home.waitForLog("Online state is  false"));
        QVERIFY(waitUntil([&] { return program.picture(strip, playButton) != online; }));
        QVERIFY(waitUntil([&] { return home.reports().size() >= 2; }));

        constexpr int kills = 3;
        for (int i = 0; i < kills; ++i) {
            // Anywhere in a minute, which takes two seconds under this clock.
            QTest::qWait(QRandomGenerator::global()->bounded(2000));
            program.kill();
            const QStringList waiting = home.reports();
            for (const QString& name : waiting) {
                const QByteArray report = content(home.userFile("activity/") + name);
                QVERIFY2(QJsonDocument::fromJson(report).isObject(), report.constData());
            }
            program.start();
            QVERIFY(waitUntil([&] { return home.reports().size() > waiting.size(); }));
            const QStringList kept = home.reports();
            for (const QString& name : waiting)
                QVERIFY2(kept.contains(name), qPrintable(name));
        }

        QVERIFY(standIn.start());
        QVERIFY(home.waitForLog("Online state is  true"));
        QVERIFY(waitUntil([&] { return program.picture(strip, playButton) == online; }));
        QVERIFY(program.click(strip, playButton.center()));
        QVERIFY(home.waitForLog("Monitor stopped"));
        QVERIFY(waitUntil([&] { return home.reports().isEmpty(); }));
        QVERIFY(program.chooseFromMenu("Up Return"));
        QCOMPARE(program.waitForExit(), 0);

        // A kill right between a line of the log and its file may take the record of that moment.
        const int minutes = home.logged("Activity data prepared ");
        const QString worktime =
            Home::value(home.userFile("session.ini"), "todayWorktime").toString();
        for (const auto& [made, kept] :
             {std::pair(minutes, activity(standIn).size()),
              std::pair(home.logged("Screenshot prepared"), pictures(standIn).size())})
            QVERIFY2(kept <= made && kept >= made - kills,
                     qPrintable(QStringLiteral("%1 of %2").arg(kept).arg(made)));
        const int counted = QTime(0, 0).secsTo(QTime::fromString(worktime)) / 60;
        QVERIFY2(std::abs(counted - minutes) <= kills, qPrintable(worktime));
        QCOMPARE(home.logged("Monitor started"), kills + 1);
    }
};

TESSAPORT_TEST_MAIN(MinutesTest, QGuiApplication)

#include "tst_minutes.moc"
