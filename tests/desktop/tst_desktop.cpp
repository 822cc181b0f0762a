// SPDX-License-Identifier: GPL-3.0-or-later
#include "RealInput.h"
#include "capture/UserActivityWatcher.h"
#include "desktop/AutoRun.h"
#include "desktop/QxtGlobalShortcut.h"
#include "desktop/QxtWindowSystem.h"
#include "platform/HotKeys.h"
#include "platform/StartupEntry.h"
#include "support/TestMain.h"

#include <QGuiApplication>
#include <QProcess>
#include <QRasterWindow>
#include <QTimer>

class DesktopTest : public QObject {
    Q_OBJECT

private slots:
    void startsAtLogon();
    void hotKeyWhateverTheLocks();
    void hotKeysComeAndGo();
    void hotKeysRefused();
    void hotKeyThatCannotBeGivenBack();
    void findsWindows();
    void tellsOfEachInput();

private:
    /// What another program says that asks for the combination and ends.
    static QByteArray outcomeElsewhere(const QKeySequence& keys);

    const QKeySequence m_keys{Qt::CTRL | Qt::ALT | Qt::Key_K};
    const QKeySequence m_otherKeys{Qt::META | Qt::SHIFT | Qt::Key_J};
};

QByteArray DesktopTest::outcomeElsewhere(const QKeySequence& keys)
{
    QProcess probe;
    probe.start(QStringLiteral(PROBE), {keys.toString(QKeySequence::PortableText)});
    probe.closeWriteChannel();
    probe.waitForFinished();
    return probe.readAllStandardOutput().trimmed();
}

void DesktopTest::startsAtLogon()
{
    const QString name = QCoreApplication::applicationName();
    AutoRun autoRun(nullptr);
    QVERIFY(autoRun.enable(true));
    QVERIFY(autoRun.isEnabled());
    QCOMPARE(platform::startupEntry(name), QCoreApplication::applicationFilePath());
    platform::setStartupEntry(name, QStringLiteral("false"));
    QVERIFY(!autoRun.isEnabled());
    QVERIFY(!autoRun.enable(false));
    QCOMPARE(platform::startupEntry(name), QString());
}

void DesktopTest::hotKeyWhateverTheLocks()
{
    QxtGlobalShortcut shortcut(m_keys);
    QxtGlobalShortcut other(m_otherKeys);
    QSignalSpy activated(&shortcut, &QxtGlobalShortcut::activated);
    QSignalSpy otherActivated(&other, &QxtGlobalShortcut::activated);
    shortcut.setDisabled();
    RealInput::pressKeys(m_keys);
    RealInput::pressKeys(m_otherKeys);
    QVERIFY(otherActivated.wait());
    QVERIFY(activated.isEmpty());

    shortcut.setEnabled();
    const Qt::Key locks[] = {Qt::Key_CapsLock, Qt::Key_NumLock, Qt::Key_CapsLock, Qt::Key_NumLock};
    for (const Qt::Key lock : locks) {
        RealInput::pressKeys(lock);
        // A key that is held down for long repeats itself.
        QCoreApplication::processEvents();
        activated.clear();
        RealInput::pressKeys(m_keys);
        QTRY_VERIFY(!activated.isEmpty());
    }
}

void DesktopTest::hotKeysComeAndGo()
{
    auto first = std::make_unique<QxtGlobalShortcut>(m_otherKeys);
    QxtGlobalShortcut second(m_keys);
    first.reset();
    QCOMPARE(outcomeElsewhere(m_otherKeys), QByteArray("held"));
    QCOMPARE(outcomeElsewhere(m_keys), QByteArray("refused"));
    // Only the first of a sequence counts.
    QVERIFY(second.setShortcut(QKeySequence(m_otherKeys[0], m_keys[0])));
    QCOMPARE(outcomeElsewhere(m_keys), QByteArray("held"));
    QSignalSpy activated(&second, &QxtGlobalShortcut::activated);
    RealInput::pressKeys(m_otherKeys);
    QVERIFY(activated.wait());
}

void DesktopTest::hotKeysRefused()
{
    QProcess probe;
    probe.start(QStringLiteral(PROBE), {m_keys.toString(QKeySequence::PortableText)});
    QVERIFY(probe.waitForReadyRead());
    QCOMPARE(probe.readAllStandardOutput().trimmed(), QByteArray("held"));
    QxtGlobalShortcut holder(m_otherKeys);
    for (const QKeySequence& keys : {m_keys, m_otherKeys}) {
        QxtGlobalShortcut shortcut;
        QTest::ignoreMessage(QtWarningMsg, QRegularExpression(QStringLiteral("to register")));
        QVERIFY2(!shortcut.setShortcut(keys), qPrintable(keys.toString()));
        QCOMPARE(shortcut.shortcut(), keys);
        QTest::ignoreMessage(QtWarningMsg, QRegularExpression(QStringLiteral("to unregister")));
    }
    QSignalSpy activated(&holder, &QxtGlobalShortcut::activated);
    RealInput::pressKeys(m_otherKeys);
    QVERIFY(activated.wait());
    probe.closeWriteChannel();
    QVERIFY(probe.waitForFinished());
}

void DesktopTest::hotKeyThatCannotBeGivenBack()
{
    const platform::NativeKeys keys(
        platform::nativeKeyCode(Qt::Key_K),
        platform::nativeModifiers(Qt::ControlModifier | Qt::AltModifier));
    auto shortcut = std::make_unique<QxtGlobalShortcut>(m_keys);
    QVERIFY(platform::unregisterHotKey(keys));
    QTest::ignoreMessage(QtWarningMsg, "QxtGlobalShortcut failed to unregister: \"Ctrl+Alt+K\"");
    shortcut.reset();

    // A press that nobody waits for any more.
    QVERIFY(platform::registerHotKey(keys));
    QxtGlobalShortcut other(m_otherKeys);
    QSignalSpy activated(&other, &QxtGlobalShortcut::activated);
    RealInput::pressKeys(m_keys);
    RealInput::pressKeys(m_otherKeys);
    QVERIFY(activated.wait());
    QVERIFY(platform::unregisterHotKey(keys));
}

void DesktopTest::findsWindows()
{
    const QString title = QString::fromUtf8("Окно снизу");
    QRasterWindow lower;
    lower.setTitle(title);
    lower.setGeometry(100, 120, 300, 200);
    lower.show();
    QVERIFY(QTest::qWaitForWindowExposed(&lower));
    QRasterWindow upper;
    upper.setGeometry(150, 150, 200, 100);
    upper.show();
    upper.requestActivate();
    QVERIFY(QTest::qWaitForWindowActive(&upper));

    QTRY_COMPARE(QxtWindowSystem::activeWindow(), upper.winId());
    QTRY_COMPARE(QxtWindowSystem::findWindow(title), lower.winId());
    QVERIFY(QxtWindowSystem::windowTitles().contains(title));
    QCOMPARE(QxtWindowSystem::windowGeometry(lower.winId()), lower.frameGeometry());
    QCOMPARE(QxtWindowSystem::windowAt(upper.geometry().center()), upper.winId());
    QCOMPARE(QxtWindowSystem::windowAt(lower.geometry().bottomRight()), lower.winId());
    QCOMPARE(QxtWindowSystem::windowAt(QPoint(-50, -50)), WId(0));
}

void DesktopTest::tellsOfEachInput()
{
    UserActivityWatcher watcher(nullptr);
    QSignalSpy activity(&watcher, &UserActivityWatcher::wasActivity);
    auto* timer = qobject_cast<QTimer*>(watcher.property("timer").value<QObject*>());
    QVERIFY(timer);
    QSignalSpy polls(timer, &QTimer::timeout);
    QVERIFY(watcher.start());
    QCOMPARE(timer->interval(), 100);
    for (int inputs = 0; inputs <= 2; ++inputs) {
        QTRY_COMPARE(activity.count(), inputs);
        // A clock that comes round counts for nothing.
        if (inputs == 1)
            watcher.setProperty("lastEventTicks", qint64(0xffffffff));
        polls.clear();
        QTRY_VERIFY(polls.count() >= 5);
        QCOMPARE(activity.count(), inputs);
        inputs == 0 ? RealInput::movePointer() : RealInput::pressKeys(Qt::Key_X);
    }
}

TESSAPORT_TEST_MAIN(DesktopTest, QGuiApplication)
#include "tst_desktop.moc"
