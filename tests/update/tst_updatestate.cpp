// SPDX-License-Identifier: GPL-3.0-or-later
#include "session/DataDirectory.h"
#include "support/TestMain.h"
#include "support/TestServiceUrl.h"
#include "update/ElevatedStart.h"
#include "update/UpdateState.h"

#include <QDesktopServices>
#include <QFile>
#include <QGuiApplication>
#include <QRegularExpression>

class TestUpdateState : public QObject, private DataDirectory {
    Q_OBJECT

public slots:
    void openedPage(const QUrl& url) { m_openedPages.append(url); }

private slots:
    void initTestCase();
    void startsEmpty();
    void takesVersionFile_data();
    void takesVersionFile();
    void keepsEntriesOnNullReply();
    void seesFlagsSetFromOutside();
    void leavesUnchangedFileAlone();
    void putsDamagedFileAside();
    void startsUpdateProgram();
    void leadsToPageWithoutUpdateProgram();
    void knowsWhatIsNoProgram();

private:
    UpdateState& state() { return *UpdateState::instance(); }
    QString path() const { return dataDir().filePath(QStringLiteral("update.json")); }
    QByteArray content() const;
    void setContent(const QByteArray& content) const;

    QList<QUrl> m_openedPages;
};

QByteArray TestUpdateState::content() const
{
    QFile file(path());
    return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray();
}

void TestUpdateState::setContent(const QByteArray& content) const
{
    // As another program does it that wants the file to be whole at any moment.
    QFile file(path() + QLatin1String(".new"));
    QVERIFY(file.open(QIODevice::WriteOnly));
    QCOMPARE(file.write(content), content.size());
    file.close();
    QFile::remove(path());
    QVERIFY(file.rename(path()));
}

void TestUpdateState::initTestCase()
{
    enterDataDirectory();
    state().init(this);
    QVERIFY(QDir::setCurrent(dataDir().path()));
    setTestServiceUrl(QStringLiteral("https://service.test"));
    QDesktopServices::setUrlHandler(QStringLiteral("https"), this, "openedPage");
}

void TestUpdateState::startsEmpty()
{
    QCOMPARE(state().updateInfo(), QVariantList());
    QCOMPARE(state().latestVersion(), QString());
    QVERIFY(!state().updateAtStartup());
    QVERIFY(!state().wasUpdated());
    QVERIFY(!state().forceUpdate());
}

void TestUpdateState::takesVersionFile_data()
{
    QTest::addColumn<QByteArray>("reply");
    QTest::addColumn<int>("count");
    QTest::addColumn<QString>("version");

    QTest::newRow("one") << QByteArray(R"([{"version":"1.2.0"}])") << 1 << QStringLiteral("1.2.0");
    QTest::newRow("several") << QByteArray(
        R"([{"file":"a,b"},{"version":"1.9","имя":["Ж",null,{"n":[1.5,[]]}]},{"version":"2"}])")
                             << 3 << QStringLiteral("1.9");
    QTest::newRow("number") << QByteArray(R"([{"version":2}])") << 1 << QStringLiteral("2");
    QTest::newRow("no version") << QByteArray(R"([{"file":"a"},7])") << 2 << QString();
    QTest::newRow("empty version wins")
        << QByteArray(R"([{"version":""},{"version":"2"}])") << 2 << QString(QLatin1String(""));
    QTest::newRow("empty list") << QByteArray("[]") << 0 << QString();
    QTest::newRow("no list") << QByteArray(R"({"version":"3"})") << 0 << QString();
    QTest::newRow("broken") << QByteArray("<html>") << 0 << QString();
    QTest::newRow("empty") << QByteArray("") << 0 << QString();
}

void TestUpdateState::takesVersionFile()
{
    QFETCH(QByteArray, reply);
    QFETCH(int, count);
    QFETCH(QString, version);

    state().setUpdateInfo(R"([{"version":"0"},{},{},{}])");
    state().setUpdateInfo(reply);
    state().init(this);
    QCOMPARE(state().updateInfo().size(), count);
    QCOMPARE(state().latestVersion(), version);
}

void TestUpdateState::keepsEntriesOnNullReply()
{
    state().setUpdateInfo(R"([{"version":"1.2.0"}])");
    state().setUpdateInfo(QByteArray());
    QCOMPARE(state().latestVersion(), QStringLiteral("1.2.0"));
}

void TestUpdateState::seesFlagsSetFromOutside()
{
    state().setUpdateInfo(R"([{"version":"1.2.0"}])");
    QVERIFY(!state().forceUpdate());
    QVERIFY(content().startsWith("[General]\n"));
    setContent(content() + "forceUpdate=true\nupdateAtStartup=true\nwasUpdated=true\n");
    QVERIFY(state().forceUpdate());
    QVERIFY(state().updateAtStartup());
    QVERIFY(state().wasUpdated());
    QCOMPARE(state().latestVersion(), QStringLiteral("1.2.0"));

    state().setForceUpdate(false);
    state().setWasUpdated(false);
    QVERIFY(!state().forceUpdate());
    QVERIFY(content().contains("forceUpdate=false"));
    QVERIFY(content().contains("wasUpdated=false"));
    QVERIFY(content().contains("updateAtStartup=true"));
}

void TestUpdateState::leavesUnchangedFileAlone()
{
    QVERIFY(!state().forceUpdate());
    QFile file(path());
    QVERIFY(file.open(QIODevice::ReadWrite));
    const QDateTime longAgo({2020, 5, 12}, {8, 24, 59});
    QVERIFY(file.setFileTime(longAgo, QFileDevice::FileModificationTime));
    file.close();
    for (int second = 0; second < 10; ++second)
        QVERIFY(!state().forceUpdate());
    QCOMPARE(QFileInfo(path()).lastModified(), longAgo);
}

void TestUpdateState::putsDamagedFileAside()
{
    // The same list of too many, as a value, in a list and under another mark.
    for (const char* damaged :
         {R"(@Variant(\0\0\0\t\x7f\xff\xff\xf0))", R"(a, @Variant(\0\0\0\v\x7f\0\0\0))",
          R"(@DateTime(\0\0\0\t\0\0\x7f\xff\xff))"}) {
        const QByteArray broken = QByteArray("[General]\nforceUpdate=true\nupdateInfo=") + damaged;
        setContent(broken);
        QTest::ignoreMessage(QtWarningMsg, QRegularExpression(QStringLiteral("put aside")));
        QVERIFY(!state().forceUpdate());
        QCOMPARE(state().updateInfo(), QVariantList());
        QFile aside(path() + QStringLiteral(".damaged"));
        QVERIFY(aside.open(QIODevice::ReadOnly));
        QCOMPARE(aside.readAll(), broken);
    }
}

void TestUpdateState::startsUpdateProgram()
{
    QVERIFY(QFile::copy(QStringLiteral(PROBE), updateProgram));
    QVERIFY(runElevated(updateProgram, QStringLiteral("--install-only")) > 31);
    QFile arguments(QStringLiteral("arguments.txt"));
    QTRY_VERIFY(arguments.size() > 0);
    QVERIFY(arguments.open(QIODevice::ReadOnly));
    QCOMPARE(arguments.readAll().trimmed(), QByteArray("--install-only"));
    QVERIFY(QFile::remove(updateProgram));
    QVERIFY(m_openedPages.isEmpty());
}

void TestUpdateState::leadsToPageWithoutUpdateProgram()
{
    QTest::ignoreMessage(QtWarningMsg, R"(Eror runWinAppAsAdmin "TPMC-update.exe" 2)");
    QCOMPARE(runElevated(updateProgram, QString()), 2);
    QCOMPARE(m_openedPages, QList<QUrl>{QUrl(QStringLiteral("https://service.test/monitor/"))});
}

void TestUpdateState::knowsWhatIsNoProgram()
{
    m_openedPages.clear();
    QVERIFY(QDir().mkdir(updateProgram));
#ifdef Q_OS_WIN
    // As when the user says no, which is nothing to tell.
    QCOMPARE(runElevated(updateProgram, QString()), 5);
    QVERIFY(m_openedPages.isEmpty());
#else
    QTest::ignoreMessage(QtWarningMsg, R"(Eror runWinAppAsAdmin "TPMC-update.exe" 11)");
    QCOMPARE(runElevated(updateProgram, QString()), 11);
    QCOMPARE(m_openedPages.size(), 1);
#endif
}

TESSAPORT_TEST_MAIN(TestUpdateState, QGuiApplication)

#include "tst_updatestate.moc"
