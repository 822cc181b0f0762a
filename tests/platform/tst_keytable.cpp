// SPDX-License-Identifier: GPL-3.0-or-later
#include "platform/KeyTable.h"

#include <QtTest>

class KeyTableTest : public QObject {
    Q_OBJECT

private slots:
    void codes_data();
    void codes();
};

void KeyTableTest::codes_data()
{
    QTest::addColumn<int>("key");
    QTest::addColumn<quint32>("virtualKey");
    QTest::addColumn<quint32>("keysym");

    const auto row = [](const char* name, Qt::Key key, quint32 virtualKey, quint32 keysym) {
        QTest::newRow(name) << int(key) << virtualKey << keysym;
    };
    row("first digit", Qt::Key_0, 0x30, 0x30);
    row("last digit", Qt::Key_9, 0x39, 0x39);
    row("last letter", Qt::Key_Z, 0x5a, 0x5a);
    row("F1", Qt::Key_F1, 112, 0xffbe);
    row("F24", Qt::Key_F24, 135, 0xffd5);
    row("beyond the function keys", Qt::Key_F25, 0, 0);
    row("Backtab is Tab", Qt::Key_Backtab, 9, 0xff09);
    row("Enter is Return", Qt::Key_Enter, 13, 0xff0d);
    row("Print", Qt::Key_Print, 42, 0xff61);
    row("keypad comma", Qt::Key_Comma, 108, 0xffac);
    row("keypad slash", Qt::Key_Slash, 111, 0xffaf);
    row("VolumeDown", Qt::Key_VolumeDown, 174, 0x1008ff11);
    row("MediaPlay", Qt::Key_MediaPlay, 179, 0x1008ff14);
    row("unlisted sign", Qt::Key_Period, 0, 0);
    row("unlisted letter", Qt::Key_Eacute, 0, 0);
    row("no key", Qt::Key(0), 0, 0);
}

void KeyTableTest::codes()
{
    QFETCH(int, key);
    const platform::KeyCodes codes = platform::keyCodes(Qt::Key(key));
    QTEST(codes.virtualKey, "virtualKey");
    QTEST(codes.keysym, "keysym");
}

QTEST_APPLESS_MAIN(KeyTableTest)
#include "tst_keytable.moc"
