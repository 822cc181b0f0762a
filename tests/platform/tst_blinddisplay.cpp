// SPDX-License-Identifier: GPL-3.0-or-later
#include "platform/HotKeys.h"
#include "platform/LastInput.h"
#include "platform/WindowSystem.h"
#include "support/TestMain.h"

#include <QGuiApplication>

/// A display that isn't X11.
class BlindDisplayTest : public QObject {
    Q_OBJECT

private slots:
    void lastInputStaysAndIsSaidOnce();
    void hotKeysAreRefused();
    void windowsAreNone();
};

void BlindDisplayTest::lastInputStaysAndIsSaidOnce()
{
    QTest::ignoreMessage(QtWarningMsg,
                         "LastInput: the display can't tell of input; nobody will seem active");
    QCOMPARE(platform::lastInputTick(), 0u);
    QCOMPARE(platform::lastInputTick(), 0u);
}

void BlindDisplayTest::hotKeysAreRefused()
{
    const platform::NativeKeys keys(platform::nativeKeyCode(Qt::Key_K),
                                    platform::nativeModifiers(Qt::ControlModifier));
    QVERIFY(!platform::registerHotKey(keys));
    QVERIFY(!platform::unregisterHotKey(keys));
}

void BlindDisplayTest::windowsAreNone()
{
    QVERIFY(platform::desktopWindows().isEmpty());
    QCOMPARE(platform::activeDesktopWindow(), WId(0));
    QCOMPARE(platform::desktopWindowTitle(1), QString());
    QVERIFY(platform::desktopWindowGeometry(1).isNull());
}

TESSAPORT_TEST_MAIN(BlindDisplayTest, QGuiApplication)
#include "tst_blinddisplay.moc"
