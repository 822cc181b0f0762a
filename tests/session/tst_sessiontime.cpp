// SPDX-License-Identifier: GPL-3.0-or-later
#include "session/Session.h"
#include "support/TestMain.h"

#include <QSettings>
#include <QSignalSpy>

#include <memory>

/// The day's counters, step by step.
class SessionTimeTest : public QObject {
    Q_OBJECT

private slots:
    void init();
    void seconds();
    void midnight();
    void onlyALaterDateEndsTheDay_data();
    void onlyALaterDateEndsTheDay();
    void minutes();
    void wrap();
    void activeTimeFromTheService_data();
    void activeTimeFromTheService();
    void timePerTask();
    void overdue_data();
    void overdue();

private:
    std::unique_ptr<SessionOwner> m_owner;
    Session* m_session = nullptr;
};

void SessionTimeTest::init()
{
    m_owner.reset();
    QDir(QDir::home().filePath(QStringLiteral(".tessaport"))).removeRecursively();
    m_owner = std::make_unique<SessionOwner>();
    m_session = m_owner->session();
    m_session->load(QStringLiteral("anna"), QStringLiteral("p"));
    m_session->setWorktimeDate(QDate::currentDate());
}

void SessionTimeTest::seconds()
{
    QSignalSpy timeUpdated(m_session, &Session::timeUpdated);
    for (int i = 0; i < 61; ++i)
        m_session->tick();
    QCOMPARE(m_session->displayWorktime(), QTime(0, 1, 1));
    QCOMPARE(m_session->displayActivetime(), QTime(0, 1, 1));
    QCOMPARE(m_session->todayActivetime(), QTime(0, 0));
    QCOMPARE(timeUpdated.size(), 61);
    m_session->syncDisplayActivetime();
    QCOMPARE(m_session->displayWorktime(), QTime(0, 1, 1));
    QCOMPARE(m_session->displayActivetime(), QTime(0, 0));
    m_session->syncDisplayWorktime();
    QCOMPARE(m_session->displayWorktime(), QTime(0, 0));
    QCOMPARE(timeUpdated.size(), 63);
}

void SessionTimeTest::midnight()
{
    m_session->setTodayActivetime(QTime(7, 30));
    m_session->setTodayWorktime(QTime(8, 0));
    m_session->setTaskActiveTime(QStringLiteral("7"), QTime(2, 0));
    m_session->tick();
    m_session->setWorktimeDate(QDate::currentDate().addDays(-1));
    QSignalSpy timeUpdated(m_session, &Session::timeUpdated);
    m_session->tick();
    QCOMPARE(timeUpdated.size(), 1);
    QCOMPARE(m_session->displayWorktime(), QTime(0, 0));
    QCOMPARE(m_session->displayActivetime(), QTime(0, 0));
    QCOMPARE(m_session->todayActivetime(), QTime(0, 0));
    QCOMPARE(m_session->todayActiveTime(QStringLiteral("7")), QTime(0, 0));
    QCOMPARE(m_session->worktimeDate(), QDate::currentDate());
    m_session->tick();
    m_session->syncDisplayActivetime();
    QCOMPARE(m_session->displayWorktime(), QTime(0, 0, 1));
    m_session->syncDisplayWorktime();
    QCOMPARE(m_session->displayWorktime(), QTime(0, 0));
}

void SessionTimeTest::onlyALaterDateEndsTheDay_data()
{
    QTest::addColumn<QDate>("date");
    QTest::addColumn<bool>("ends");
    QTest::newRow("null") << QDate() << true;
    QTest::newRow("last year") << QDate::currentDate().addYears(-1) << true;
    QTest::newRow("today") << QDate::currentDate() << false;
    QTest::newRow("clock put back") << QDate::currentDate().addDays(1) << false;
}

void SessionTimeTest::onlyALaterDateEndsTheDay()
{
    QFETCH(QDate, date);
    QFETCH(bool, ends);
    m_session->setTodayWorktime(QTime(3, 0));
    m_session->setWorktimeDate(date);
    m_session->tick();
    QCOMPARE(m_session->displayWorktime(), ends ? QTime(0, 0) : QTime(3, 0, 1));
    QCOMPARE(m_session->worktimeDate(), ends ? QDate::currentDate() : date);
}

void SessionTimeTest::minutes()
{
    for (int i = 0; i < 60; ++i)
        m_session->tick();
    m_session->addWorkMinute();
    // An idle minute: the work time stays shown, and the active time falls back.
    m_session->syncDisplayActivetime();
    QCOMPARE(m_session->displayWorktime(), QTime(0, 1));
    QCOMPARE(m_session->displayActivetime(), QTime(0, 0));
    m_session->setTaskID(QStringLiteral("7"));
    m_session->addWorkMinute();
    m_session->addActiveMinute();
    QCOMPARE(m_session->todayActivetime(), QTime(0, 1));
    QCOMPARE(m_session->displayActivetime(), QTime(0, 0));
    QCOMPARE(m_session->displayWorktime(), QTime(0, 1));

    // The minute of work is on disk at once, and the active one with the next save.
    const QString file = m_owner->dataDir().filePath(QStringLiteral("anna/session.ini"));
    const QSettings stored(file, QSettings::IniFormat);
    QCOMPARE(stored.value(QStringLiteral("todayWorktime")).toString(), QStringLiteral("00:02:00"));
    QCOMPARE(stored.value(QStringLiteral("todayActivetime")).toString(),
             QStringLiteral("00:00:00"));
    QVERIFY(stored.value(QStringLiteral("task2activeTimeMap")).toMap().isEmpty());
    m_session->addWorkMinute();
    m_session->reset();
    m_session->load(QStringLiteral("anna"), QString());
    QCOMPARE(m_session->todayActivetime(), QTime(0, 1));
    QCOMPARE(m_session->todayActiveTime(QStringLiteral("7")), QTime(0, 1));
}

void SessionTimeTest::wrap()
{
    m_session->setTodayActivetime(QTime(23, 59));
    m_session->setTodayWorktime(QTime(23, 59));
    m_session->addWorkMinute();
    m_session->addActiveMinute();
    QCOMPARE(m_session->todayActivetime(), QTime(0, 0));
    m_session->syncDisplayWorktime();
    QCOMPARE(m_session->displayWorktime(), QTime(0, 0));
}

void SessionTimeTest::activeTimeFromTheService_data()
{
    QTest::addColumn<QTime>("shown");
    QTest::addColumn<QTime>("active");
    QTest::addColumn<QTime>("expected");
    QTest::newRow("other minute") << QTime(2, 30) << QTime(1, 31) << QTime(1, 31);
    QTest::newRow("only the hour differs") << QTime(2, 30) << QTime(1, 30) << QTime(2, 30);
    QTest::newRow("nothing booked") << QTime(2, 30) << QTime(0, 0) << QTime(0, 0);
}

void SessionTimeTest::activeTimeFromTheService()
{
    QFETCH(QTime, shown);
    QFETCH(QTime, active);
    QFETCH(QTime, expected);
    m_session->setTodayWorktime(shown);
    QSignalSpy timeUpdated(m_session, &Session::timeUpdated);
    m_session->setTodayActivetime(active);
    QCOMPARE(m_session->todayActivetime(), active);
    QCOMPARE(m_session->displayWorktime(), expected);
    QCOMPARE(m_session->displayActivetime(), QTime(0, 0));
    QCOMPARE(timeUpdated.size(), shown == expected ? 0 : 1);
    m_session->setTodayWorktime(QTime(4, 4));
    QCOMPARE(m_session->displayWorktime(), QTime(4, 4));
    QCOMPARE(timeUpdated.size(), shown == expected ? 0 : 1);
}

void SessionTimeTest::timePerTask()
{
    m_session->setTodayActivetime(QTime(2, 0));
    m_session->setTaskID(QStringLiteral("7"));
    m_session->addActiveMinute();
    QTest::ignoreMessage(QtDebugMsg, "Session.cpp todayActiveTime");
    QCOMPARE(m_session->todayActiveTime(QStringLiteral("7")), QTime(2, 1));
    QCOMPARE(m_session->todayActiveTime(QStringLiteral("8")), QTime(0, 0));
    m_session->setTaskActiveTime(QStringLiteral("7"), QTime(0, 5));
    QCOMPARE(m_session->todayActiveTime(QStringLiteral("7")), QTime(0, 5));
    m_session->save();
    const QSettings stored(m_owner->dataDir().filePath(QStringLiteral("anna/session.ini")),
                           QSettings::IniFormat);
    QCOMPARE(stored.value(QStringLiteral("task2activeTimeMap")).toMap().keys(),
             QStringList{QStringLiteral("7")});
}

void SessionTimeTest::overdue_data()
{
    QTest::addColumn<QString>("team");
    QTest::addColumn<QString>("task");
    QTest::addColumn<bool>("hasDeadline");
    QTest::addColumn<qint64>("expected");
    const QString team = QStringLiteral("17");
    QTest::newRow("late") << team << QStringLiteral("late") << true << qint64(90);
    QTest::newRow("ahead") << team << QStringLiteral("ahead") << true << qint64(-90);
    QTest::newRow("none") << team << QStringLiteral("none") << false << qint64(0);
    QTest::newRow("unknown") << team << QStringLiteral("x") << false << qint64(0);
    QTest::newRow("no task") << team << QString() << false << qint64(0);
    QTest::newRow("no team") << QString() << QStringLiteral("late") << false << qint64(0);
    QTest::newRow("unassigned") << QString() << QStringLiteral("0") << true << qint64(0);
}

void SessionTimeTest::overdue()
{
    QFETCH(QString, team);
    QFETCH(QString, task);
    const QDateTime now = QDateTime::currentDateTime();
    const auto due = [](const char* id, const QDateTime& deadline) {
        return Task{QString::fromLatin1(id), QString(), deadline, QString(), QDateTime(), 0};
    };
    m_session->setTasks({due("late", now.addSecs(-90)), due("ahead", now.addSecs(90)),
                         due("none", QDateTime()), unassignedTask()},
                        QStringLiteral("17"));
    m_session->setTeamID(team);
    QSignalSpy taskChanged(m_session, &Session::taskChanged);
    m_session->setTaskID(task);
    m_session->setTaskID(task);
    QCOMPARE(taskChanged.size(), task.isEmpty() ? 0 : 1);
    QTEST(m_session->taskDeadline().isValid(), "hasDeadline");
    QFETCH(qint64, expected);
    const qint64 seconds = m_session->overdueSeconds();
    QVERIFY2(qAbs(seconds - expected) <= 5, qPrintable(QString::number(seconds)));
}

TESSAPORT_TEST_MAIN(SessionTimeTest, QCoreApplication)

#include "tst_sessiontime.moc"
