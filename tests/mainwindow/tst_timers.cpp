// SPDX-License-Identifier: GPL-3.0-or-later
#include "Strip.h"

#include "dialogs/CalendarForm.h"
#include "res/Resources.h"
#include "service/ServiceTest.h"
#include "support/FastClock.h"
#include "support/TestMain.h"

#include <QCalendarWidget>
#include <QPlainTextEdit>
#include <QTimeEdit>
#include <QToolTip>

/// What happens by itself, and when.
class TimersTest : public QObject, private ServiceTest {
    Q_OBJECT

private slots:
    void initTestCase() { initResources(); }

    /// Those who look at the strip work in another window.
    void toolTipBesideAnotherWindow()
    {
        Strip strip(false, QString());
        strip.form->show();
        QWidget other;
        other.show();
        QVERIFY(QTest::qWaitForWindowActive(&other));
        // The pointer may stand in one of these places.
        for (const int place : {10, 20})
            QTest::mouseMove(strip.play, QPoint(place, place));
        QTRY_COMPARE(QToolTip::text(), strip.play->toolTip());
        // Not papered with the picture of the button.
        const QWidgetList windows = QApplication::topLevelWidgets();
        const auto tip = std::find_if(windows.begin(), windows.end(), [](const QWidget* window) {
            return window->inherits("QTipLabel");
        });
        const QImage image = (*tip)->grab().toImage();
        QCOMPARE(image.pixel(3, 9), image.pixel(20, 9));
    }

    /// Half an hour with the monitor, and half an hour without.
    void anHour()
    {
        QVERIFY(start());
        client().setCurrentTask(QStringLiteral("1507"), QStringLiteral("48211"));
        m_strip = std::make_unique<MainForm>(&client(), nullptr);
        auto* play = m_strip->findChild<QPushButton*>(QStringLiteral("pbPlay"));
        play->click();
        UpdateState::instance()->setForceUpdate(true);
        passTime(3000, 1000);
        QVERIFY(!UpdateState::instance()->forceUpdate());
        // Each second is seen.
        const QString before = shownTime();
        passTime(1000, 1000);
        QVERIFY(shownTime() != before);

        passMinutes(29);
        QTRY_VERIFY(counted().contains(QLatin1String(" 2 syncs")));
        passTime(59000, 1000);
        QCOMPARE(shownNotices().size(), 1);
        QTRY_COMPARE(counted(), QStringLiteral("30 minutes, 31 refreshes, 2 syncs, 1 versions"));
        const QDir waiting(
            client().dataDir().filePath(QStringLiteral("demo@example.com/activity")));
        QTRY_VERIFY(waiting.entryList(QDir::Files).isEmpty());
        const int pictures = countOf("screenshot");
        QVERIFY2(pictures == 5 || pictures == 6, qPrintable(QString::number(pictures)));
        const QString query = standIn().requests(QStringLiteral("/api_get_active"))[0].query;
        QVERIFY2(query.contains(QLatin1String("task_id=1507")), qPrintable(query));

        play->click();
        const QString stopped = shownTime();
        passTime(60000, 1000);
        QCOMPARE(shownTime(), stopped);
        passMinutes(29);
        QCOMPARE(shownNotices(), QStringList());
        QTRY_COMPARE(counted(), QStringLiteral("30 minutes, 61 refreshes, 3 syncs, 2 versions"));
        QVERIFY(waiting.entryList(QDir::Files).isEmpty());
        QCOMPARE(countOf("screenshot"), pictures);
    }

    /// What was counted until the next picture, a stop takes back.
    void pictureAfterAStop()
    {
        Strip strip(true);
        passTime(240000, 1000);
        QCOMPARE(strip.reports().count(-1), 1);
        strip.play->click();
        passTime(301000, 1000);
        strip.play->click();
        passTime(299000, 1000);
        QCOMPARE(strip.reports().count(-1), 1);
        passTime(65000, 1000);
        QCOMPARE(strip.reports().count(-1), 2);
    }

    void laterDeadline()
    {
        QTimer::singleShot(0, m_strip.get(), [] {
            auto* form = visibleForm<CalendarForm>();
            QVERIFY(form);
            form->findChild<QCalendarWidget*>()->setSelectedDate({2031, 2, 3});
            form->findChild<QTimeEdit*>()->setTime({9, 30});
            form->findChild<QPlainTextEdit*>()->setPlainText(QStringLiteral("ill"));
            form->accept();
        });
        QVERIFY(QMetaObject::invokeMethod(m_strip.get(), "on_pbTimeExtend_clicked"));
        const QString path = QStringLiteral("/api_task_deadline_request");
        QVERIFY(standIn().waitForRequests(path, 1));
        const QString query = standIn().requests(path)[0].query;
        QVERIFY2(query.endsWith(QLatin1String("&dl_date=2031-02-03&dl_time=09:30&message=ill")),
                 qPrintable(query));
        QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
        for (const QWidget* window : QApplication::topLevelWidgets())
            QVERIFY(!qobject_cast<const CalendarForm*>(window));
    }

    void tenMinutesOfSilenceAreAFailure()
    {
        const QString path = QStringLiteral("/api_get_task");
        m_strip.reset();
        roundTrips();
        standIn().reset();
        standIn().fail(path, QStringLiteral("hang"));
        client().requestTaskInfo(QStringLiteral("48211"));
        QVERIFY(standIn().waitForRequests(path, 1));
        QSignalSpy offline(&client(), &TessaPort::onlineChanged);
        passTime(590000, 1000);
        QVERIFY(offline.isEmpty());
        passTime(20000, 1000);
        QCOMPARE(offline.size(), 1);
    }

private:
    /// With the refresh of each, for which the service needs time of its own.
    void passMinutes(int count)
    {
        for (int i = 0; i < count; ++i) {
            QSignalSpy refreshed(client().session(), &Session::teamsUpdated);
            passTime(60000, 1000);
            QVERIFY(!refreshed.isEmpty() || refreshed.wait());
        }
    }

    QString shownTime() const { return labelText(*m_strip, "lbClock"); }

    int countOf(const char* kind)
    {
        const QJsonArray records = standIn().confirmedRecords();
        return int(std::count_if(records.begin(), records.end(), [kind](const QJsonValue& record) {
            return record[QLatin1String("kind")] == QLatin1String(kind);
        }));
    }

    QString counted()
    {
        const auto requests = [this](const char* path) {
            return standIn().requests(QLatin1String(path)).size();
        };
        return QStringLiteral("%1 minutes, %2 refreshes, %3 syncs, %4 versions")
            .arg(countOf("activity"))
            .arg(requests("/api_teams_tasks"))
            .arg(requests("/api_get_active"))
            .arg(requests("/monitor/tpmc.version"));
    }

    std::unique_ptr<MainForm> m_strip;
};

TESSAPORT_TEST_MAIN(TimersTest, QApplication)

#include "tst_timers.moc"
