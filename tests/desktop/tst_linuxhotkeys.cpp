// SPDX-License-Identifier: GPL-3.0-or-later
#include "desktop/QxtGlobalShortcut.h"
#include "platform/HotKeys.h"
#include "support/TestMain.h"

#include <QGuiApplication>
#include <QProcess>

namespace {

void run(const QString& program, const QStringList& arguments)
{
    if (QProcess::execute(program, arguments) != 0)
        qFatal("%s failed", qPrintable(program));
}

/// Keyboards as they are set up in one country and another; the menu key leads to the next one.
void setKeyboard(const char* layouts)
{
    run(QStringLiteral("setxkbmap"),
        {QStringLiteral("-layout"), QString::fromLatin1(layouts), QStringLiteral("-option"),
         QString(), QStringLiteral("-option"), QStringLiteral("grp:menu_toggle")});
}

void press(const char* keys)
{
    run(QStringLiteral("xdotool"), {QStringLiteral("key"), QString::fromLatin1(keys)});
}

constexpr char menuKey[] = "135";

} // namespace

/// Hot keys by the X server, on keyboards of several layouts. Keys are pressed by their place.
class LinuxHotKeysTest : public QObject {
    Q_OBJECT

private slots:
    void cleanup() { setKeyboard("us"); }

    void letterOfTheFirstLayoutThatHasIt()
    {
        const struct {
            const char* layouts;
            Qt::Key key;
            const char* press;
        } rows[] = {
            {"us,de", Qt::Key_Z, "ctrl+52"}, // where de has Y
            {"us,fr", Qt::Key_Q, "ctrl+24"}, // where fr has A
            {"fr", Qt::Key_1, "ctrl+10"}, // with Shift only
            {"ru,us", Qt::Key_K, "ctrl+45"},
            {"ru", Qt::Key_P, "ctrl+33"}, // not a letter of it at all
            {"ru", Qt::Key_M, "ctrl+58"},
        };
        for (const auto& [layouts, key, keys] : rows) {
            setKeyboard(layouts);
            QxtGlobalShortcut shortcut;
            QVERIFY2(shortcut.setShortcut(Qt::CTRL | key), layouts);
            QSignalSpy activated(&shortcut, &QxtGlobalShortcut::activated);
            // Whichever layout is on.
            for (int i = 0; i < 2; ++i) {
                press(menuKey);
                activated.clear();
                press(keys);
                QVERIFY2(activated.count() > 0 || activated.wait(), keys);
            }
        }
    }

    void refused()
    {
        const platform::NativeKeys keys('K', platform::nativeModifiers(Qt::ControlModifier));
        QVERIFY(platform::registerHotKey(keys));
        // The server would grant the same key once more.
        QVERIFY(!platform::registerHotKey({'k', keys.second}));
        QVERIFY(platform::unregisterHotKey(keys));

        for (const QKeySequence& missing :
             {QKeySequence(Qt::CTRL | Qt::Key_Eacute), QKeySequence()}) {
            QxtGlobalShortcut shortcut;
            QTest::ignoreMessage(QtWarningMsg, QRegularExpression(QStringLiteral("to register")));
            QVERIFY(!shortcut.setShortcut(missing));
            if (!missing.isEmpty())
                QTest::ignoreMessage(QtWarningMsg,
                                     QRegularExpression(QStringLiteral("to unregister")));
        }
    }
};

TESSAPORT_TEST_MAIN(LinuxHotKeysTest, QGuiApplication)
#include "tst_linuxhotkeys.moc"
