// SPDX-License-Identifier: GPL-3.0-or-later
#include "desktop/AutoRun.h"

#include "platform/StartupEntry.h"
#include "support/TestMain.h"

class AutoRunTest : public QObject {
    Q_OBJECT

private slots:
    void cleanup();
    void switches();
    void whatCountsAsEnabled_data();
    void whatCountsAsEnabled();

private:
    static bool enable(bool on)
    {
        QTest::ignoreMessage(QtDebugMsg, "AutoRun enable");
        return AutoRun(nullptr).enable(on);
    }
    static bool isEnabled()
    {
        QTest::ignoreMessage(QtDebugMsg, "AutoRun isEnabled");
        return AutoRun(nullptr).isEnabled();
    }
};

void AutoRunTest::cleanup()
{
    platform::removeStartupEntry(QCoreApplication::applicationName());
}

void AutoRunTest::switches()
{
    QVERIFY(!enable(false));
    QVERIFY(!isEnabled());
    QVERIFY(enable(true));
    QVERIFY(enable(true));
    QVERIFY(isEnabled());
    QCOMPARE(platform::startupEntry(QStringLiteral("TessaPort Team Monitor")),
             QCoreApplication::applicationFilePath());
    QVERIFY(!enable(false));
    QVERIFY(!isEnabled());
}

void AutoRunTest::whatCountsAsEnabled_data()
{
    QTest::addColumn<QString>("entry");
    QTest::addColumn<bool>("enabled");

    QTest::newRow("copy at another place") << QStringLiteral("/gone/tessaport-monitor") << true;
    QTest::newRow("zero") << QStringLiteral("0") << false;
    QTest::newRow("the word") << QStringLiteral("false") << false;
}

void AutoRunTest::whatCountsAsEnabled()
{
    QFETCH(QString, entry);
    platform::setStartupEntry(QCoreApplication::applicationName(), entry);
    QTEST(isEnabled(), "enabled");
}

TESSAPORT_TEST_MAIN(AutoRunTest, QCoreApplication)
#include "tst_autorun.moc"
