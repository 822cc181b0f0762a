// SPDX-License-Identifier: GPL-3.0-or-later
#include "notifications/NotificationManager.h"
#include "session/DataDirectory.h"
#include "support/TestMain.h"
#include "update/ElevatedStart.h"
#include "update/UpdateState.h"

#include <QApplication>
#include <QFile>

class TestUpdateInstallation : public QObject, private DataDirectory {
    Q_OBJECT

private slots:
    void initTestCase();
    void init();
    void doesNothingWithoutDrop_data();
    void doesNothingWithoutDrop();
    void tellsOfFirstInstallation();
    void replacesOldProgramSilently();
    void keepsDropWhenOldProgramStays();

private:
    QDir drop() const { return QDir(dataDir().filePath(QStringLiteral("update"))); }
    QString dropped() const { return drop().filePath(updateProgram); }
    static void write(const QString& path, const QByteArray& content);
    static QByteArray read(const QString& path);
    static bool isNoticeShown() { return NotificationManager::instance()->hasNotifications(); }
};

void TestUpdateInstallation::write(const QString& path, const QByteArray& content)
{
    QFile file(path);
    QVERIFY(file.open(QIODevice::WriteOnly));
    QCOMPARE(file.write(content), content.size());
}

QByteArray TestUpdateInstallation::read(const QString& path)
{
    QFile file(path);
    return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray();
}

void TestUpdateInstallation::initTestCase()
{
    enterDataDirectory();
    UpdateState::instance()->init(this);
}

void TestUpdateInstallation::init()
{
    NotificationManager::instance()->closeAll();
    QDir workingDirectory(QDir::home().filePath(QStringLiteral("working")));
    QVERIFY(workingDirectory.removeRecursively());
    QVERIFY(workingDirectory.mkpath(QStringLiteral(".")));
    QVERIFY(QDir::setCurrent(workingDirectory.path()));
    QVERIFY(drop().removeRecursively());
    QVERIFY(drop().mkpath(QStringLiteral(".")));
}

void TestUpdateInstallation::doesNothingWithoutDrop_data()
{
    QTest::addColumn<bool>("hasDropDirectory");
    QTest::newRow("no drop directory") << false;
    QTest::newRow("empty drop directory") << true;
}

void TestUpdateInstallation::doesNothingWithoutDrop()
{
    QFETCH(bool, hasDropDirectory);
    if (!hasDropDirectory)
        QVERIFY(drop().removeRecursively());
    write(updateProgram, "old");
    UpdateState::instance()->installUpdate();
    QCOMPARE(read(updateProgram), QByteArray("old"));
    QVERIFY(!isNoticeShown());
}

void TestUpdateInstallation::tellsOfFirstInstallation()
{
    write(dropped(), "new");
    QVERIFY(QFile::setPermissions(dropped(), QFile::ReadOwner | QFile::ExeOwner));
    UpdateState::instance()->installUpdate();
    QCOMPARE(read(updateProgram), QByteArray("new"));
    QVERIFY(QFileInfo(updateProgram).isExecutable());
    QVERIFY(!QFile::exists(dropped()));
    QVERIFY(isNoticeShown());
}

void TestUpdateInstallation::replacesOldProgramSilently()
{
    write(updateProgram, "old");
    write(dropped(), "new");
    UpdateState::instance()->installUpdate();
    QCOMPARE(read(updateProgram), QByteArray("new"));
    QVERIFY(!QFile::exists(dropped()));
    QVERIFY(!isNoticeShown());
}

void TestUpdateInstallation::keepsDropWhenOldProgramStays()
{
    // A directory withstands the removal of a file, also by the superuser.
    QVERIFY(QDir().mkdir(updateProgram));
    write(dropped(), "new");
    const QString line =
        QStringLiteral("Error! Can't remove file  \"TPMC-update.exe\"  from  \"%1\"");
    QTest::ignoreMessage(QtDebugMsg, qPrintable(line.arg(drop().path())));
    UpdateState::instance()->installUpdate();
    QCOMPARE(read(dropped()), QByteArray("new"));
    QVERIFY(!isNoticeShown());
}

TESSAPORT_TEST_MAIN(TestUpdateInstallation, QApplication)

#include "tst_updateinstallation.moc"
