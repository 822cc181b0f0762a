// SPDX-License-Identifier: GPL-3.0-or-later
#include "capture/UserActivityWatcher.h"

#include "RealInput.h"
#include "platform/LastInput.h"
#include "support/TestMain.h"

#include <QGuiApplication>
#include <QPointer>
#include <QTimer>

class UserActivityWatcherTest : public QObject {
    Q_OBJECT

private slots:
    void pollsOnlyOnceStarted();
    void comparesWithTheTickBefore();
    void onePerInput();
    void sharedOneGoesWithAnyOther();
    void stopIsInert();
};

void UserActivityWatcherTest::pollsOnlyOnceStarted()
{
    UserActivityWatcher watcher(nullptr);
    const auto* timer = qobject_cast<QTimer*>(watcher.property("timer").value<QObject*>());
    QVERIFY(timer);
    QCOMPARE(timer->parent(), &watcher);
    QCOMPARE(timer->interval(), 100);
    QVERIFY(!timer->isActive());
    QVERIFY(watcher.start());
    QVERIFY(timer->isActive());
    QCOMPARE(int(watcher.property("lastEventTicks").type()), int(QMetaType::LongLong));
}

void UserActivityWatcherTest::comparesWithTheTickBefore()
{
    // Where nobody has touched anything yet, the tick may be 0.
    RealInput::movePointer();
    QTRY_VERIFY(platform::lastInputTick() > 0);
    UserActivityWatcher watcher(nullptr);
    QSignalSpy activity(&watcher, &UserActivityWatcher::wasActivity);
    const auto poll = [&](const QVariant& before) {
        watcher.setProperty("lastEventTicks", before);
        watcher.emitWasActivity();
        return activity.count();
    };
    QVERIFY(watcher.start());
    const qint64 tick = watcher.property("lastEventTicks").toLongLong();

    QCOMPARE(poll(tick), 0);
    QCOMPARE(poll(tick - 1), 1);
    QCOMPARE(poll(tick - 100000), 2);
    // The clock has come round: this poll tells nothing, the next ones are as ever.
    QCOMPARE(poll(qint64(0xffffffff)), 2);
    QCOMPARE(watcher.property("lastEventTicks").toLongLong(), tick);
    QCOMPARE(poll(tick - 1), 3);
    QCOMPARE(poll(QStringLiteral("no number")), 4);
}

void UserActivityWatcherTest::onePerInput()
{
    UserActivityWatcher* const watcher = UserActivityWatcher::instance();
    QSignalSpy activity(watcher, &UserActivityWatcher::wasActivity);
    QVERIFY(watcher->start());
    QTest::qWait(1000);
    QCOMPARE(activity.count(), 0);
    for (int inputs = 1; inputs <= 3; ++inputs) {
        RealInput::movePointer();
        QTRY_COMPARE(activity.count(), inputs);
        QTest::qWait(500);
        QCOMPARE(activity.count(), inputs);
    }
}

void UserActivityWatcherTest::sharedOneGoesWithAnyOther()
{
    const QPointer<UserActivityWatcher> shared = UserActivityWatcher::instance();
    QCOMPARE(UserActivityWatcher::instance(), shared.data());
    delete new UserActivityWatcher(nullptr);
    QVERIFY(!shared);

    const QPointer<UserActivityWatcher> next = UserActivityWatcher::instance();
    delete next;
    QVERIFY(UserActivityWatcher::instance());
}

void UserActivityWatcherTest::stopIsInert()
{
    QVERIFY(!UserActivityWatcher::stop());
}

TESSAPORT_TEST_MAIN(UserActivityWatcherTest, QGuiApplication)
#include "tst_useractivitywatcher.moc"
