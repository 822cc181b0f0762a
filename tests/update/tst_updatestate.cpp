// SPDX-License-Identifier: GPL-3.0-or-later
#include "update/UpdateState.h"

#include "notifications/NotificationManager.h"
#include "session/DataDirectory.h"
#include "support/TestMain.h"
#include "update/ElevatedStart.h"

#include <QApplication>

class TestUpdateState : public QObject, private DataDirectory {
    Q_OBJECT

private slots:
    void initTestCase();
    void takesVersionFile_data();
    void takesVersionFile();
    void seesFlagsSetFromOutside();
    void putsDamagedFileAside();
    void installsDroppedProgram();

private:
    static void write(const QString& path, const QByteArray& content);
    static QByteArray read(const QString& path);

    UpdateState& m_state = *UpdateState::instance();
};

void TestUpdateState::write(const QString& path, const QByteArray& content)
{
    QFile file(path);
    QVERIFY(file.open(QIODevice::WriteOnly));
    QCOMPARE(file.write(content), content.size());
}

QByteArray TestUpdateState::read(const QString& path)
{
    QFile file(path);
    return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray();
}

void TestUpdateState::initTestCase()
{
    enterDataDirectory();
    m_state.init(this);
    QVERIFY(m_state.updateInfo().isEmpty());
    QVERIFY(!m_state.updateAtStartup() && !m_state.wasUpdated() && !m_state.forceUpdate());
}

void TestUpdateState::takesVersionFile_data()
{
    QTest::addColumn<QByteArray>("reply");
    QTest::addColumn<int>("count");
    QTest::addColumn<QString>("version");

    QTest::newRow("several") << QByteArray(
        R"([{"file":"a,b"},{"version":"1.9","a":[null,{"b":[1.5]}]},7])")
                             << 3 << QStringLiteral("1.9");
    QTest::newRow("number") << QByteArray(R"([{"version":2}])") << 1 << QStringLiteral("2");
    QTest::newRow("no version") << QByteArray(R"([{"file":"a"},7])") << 2 << QString();
    QTest::newRow("empty version wins")
        << QByteArray(R"([{"version":""},{"version":"2"}])") << 2 << QString(QLatin1String(""));
    QTest::newRow("no list") << QByteArray(R"({"version":"3"})") << 0 << QString();
    QTest::newRow("broken") << QByteArray("<html>") << 0 << QString();
    QTest::newRow("empty") << QByteArray("") << 0 << QString();
    QTest::newRow("null keeps the last") << QByteArray() << 1 << QStringLiteral("0");
}

void TestUpdateState::takesVersionFile()
{
    QFETCH(QByteArray, reply);
    m_state.setUpdateInfo(R"([{"version":"0"}])");
    m_state.setUpdateInfo(reply);
    m_state.init(this);
    QTEST(m_state.updateInfo().size(), "count");
    QTEST(m_state.latestVersion(), "version");
}

void TestUpdateState::seesFlagsSetFromOutside()
{
    const QString path = dataDir().filePath(QStringLiteral("update.json"));
    m_state.setUpdateInfo(R"([{"version":"1.2.0"}])");
    QVERIFY(!m_state.forceUpdate());
    write(path, read(path) + "forceUpdate=true\nupdateAtStartup=true\nwasUpdated=true\n");
    QVERIFY(m_state.forceUpdate() && m_state.updateAtStartup() && m_state.wasUpdated());
    QCOMPARE(m_state.latestVersion(), QStringLiteral("1.2.0"));

    m_state.setForceUpdate(false);
    m_state.setWasUpdated(false);
    QVERIFY(!m_state.forceUpdate());
    for (const char* line : {"\nforceUpdate=false", "\nwasUpdated=false", "\nupdateAtStartup=true"})
        QVERIFY2(read(path).contains(line), line);
}

void TestUpdateState::putsDamagedFileAside()
{
    const QString path = dataDir().filePath(QStringLiteral("update.json"));
    // A list of too many: behind half an escape, in another list and under another mark.
    for (const char* value :
         {R"(@Variant(\0\0\0\x\t\x7f\xff\xff\xf0))", R"(a, @Variant(\0\0\0\v\x7f\0\0\0))",
          R"(@DateTime(\0\0\0\t\0\0\x7f\xff\xff))"}) {
        const QByteArray content = QByteArray("forceUpdate=true\nupdateInfo=") + value;
        write(path, content);
        QTest::ignoreMessage(QtWarningMsg, QRegularExpression(QStringLiteral("put aside")));
        QVERIFY(!m_state.forceUpdate() && m_state.updateInfo().isEmpty());
        QCOMPARE(read(path + QStringLiteral(".damaged")), content);
    }
}

void TestUpdateState::installsDroppedProgram()
{
    NotificationManager* const notices = NotificationManager::instance();
    const QDir dropDirectory(dataDir().filePath(QStringLiteral("update")));
    const QString drop = dropDirectory.filePath(updateProgram);
    QVERIFY(QDir::setCurrent(QDir::homePath()));
    m_state.installUpdate();
    QVERIFY(!notices->hasNotifications());

    QVERIFY(dropDirectory.mkpath(QStringLiteral(".")));
    for (const QByteArray& program : {QByteArray("first"), QByteArray("second")}) {
        write(drop, program);
        m_state.installUpdate();
        QCOMPARE(read(updateProgram), program);
        QVERIFY(!QFile::exists(drop));
        QCOMPARE(notices->hasNotifications(), program == "first");
        notices->closeAll();
    }

    // A directory withstands the removal of a file, also by the superuser.
    QVERIFY(QFile::remove(updateProgram) && QDir().mkdir(updateProgram));
    write(drop, "third");
    const QString line =
        QStringLiteral("Error! Can't remove file  \"TPMC-update.exe\"  from  \"%1\"");
    QTest::ignoreMessage(QtDebugMsg, qPrintable(line.arg(dropDirectory.path())));
    m_state.installUpdate();
    QCOMPARE(read(drop), QByteArray("third"));
    QVERIFY(!notices->hasNotifications());
}

TESSAPORT_TEST_MAIN(TestUpdateState, QApplication)

#include "tst_updatestate.moc"
