// SPDX-License-Identifier: GPL-3.0-or-later
#include "support/Files.h"
#include "update/UpdateState.h"

#include "notifications/NotificationManager.h"
#include "session/DataDirectory.h"
#include "support/Notices.h"
#include "support/TestMain.h"
#include "update/ElevatedStart.h"

#include <QApplication>

class UpdateStateTest : public QObject, private DataDirectory {
    Q_OBJECT

private slots:
    void initTestCase()
    {
        enterDataDirectory();
        m_state.init(this);
        QVERIFY(m_state.updateInfo().isEmpty());
        QVERIFY(!m_state.updateAtStartup() && !m_state.wasUpdated() && !m_state.forceUpdate());
    }

    void takesVersionFile()
    {
        const struct {
            QByteArray reply;
            int count;
            QString version;
        } rows[] = {
            {R"([{"file":"a,b"},{"version":"1.9","a":[null,{"b":[1.5]}]},7])", 3,
             QStringLiteral("1.9")},
            {R"([{"version":2}])", 1, QStringLiteral("2")},
            {R"([{"file":"a"},7])", 2, QString()},
            // The first one wins, also when it is empty.
            {R"([{"version":""},{"version":"2"}])", 2, QString()},
            {R"({"version":"3"})", 0, QString()},
            {"<html>", 0, QString()},
            {"", 0, QString()},
            // Null keeps the last one.
            {QByteArray(), 1, QStringLiteral("0")},
        };
        for (const auto& [reply, count, version] : rows) {
            m_state.setUpdateInfo(R"([{"version":"0"}])");
            m_state.setUpdateInfo(reply);
            m_state.init(this);
            QCOMPARE(m_state.updateInfo().size(), count);
            QCOMPARE(m_state.latestVersion(), version);
        }
    }

    void seesFlagsSetFromOutside()
    {
        const QString path = dataDir().filePath(QStringLiteral("update.json"));
        m_state.setUpdateInfo(R"([{"version":"1.2.0"}])");
        QVERIFY(!m_state.forceUpdate());
        writeFile(path,
                  contentOf(path) + "forceUpdate=true\nupdateAtStartup=true\nwasUpdated=true\n");
        QVERIFY(m_state.forceUpdate() && m_state.updateAtStartup() && m_state.wasUpdated());
        QCOMPARE(m_state.latestVersion(), QStringLiteral("1.2.0"));

        m_state.setForceUpdate(false);
        m_state.setWasUpdated(false);
        QVERIFY(!m_state.forceUpdate());
        for (const char* line :
             {"\nforceUpdate=false", "\nwasUpdated=false", "\nupdateAtStartup=true"})
            QVERIFY2(contentOf(path).contains(line), line);
        // A value that makes the file no longer.
        writeFile(path, contentOf(path).replace("forceUpdate=false", "forceUpdate=true "), 60);
        QVERIFY(m_state.forceUpdate());
    }

    void leavesOutDamagedValue()
    {
        const QString path = dataDir().filePath(QStringLiteral("update.json"));
        // A list of too many: behind half an escape, in another list and under another mark.
        for (const char* value :
             {R"(@Variant(\0\0\0\x\t\x7f\xff\xff\xf0))", R"(a, @Variant(\0\0\0\v\x7f\0\0\0))",
              R"(@DateTime(\0\0\0\t\0\0\x7f\xff\xff))"}) {
            writeFile(path, QByteArray("forceUpdate=true\nupdateInfo=") + value);
            QTest::ignoreMessage(QtWarningMsg, QRegularExpression(QStringLiteral("is left out")));
            QVERIFY(m_state.forceUpdate() && m_state.updateInfo().isEmpty());
        }
    }

    void installsDroppedProgram()
    {
        const QDir dropDirectory(dataDir().filePath(QStringLiteral("update")));
        const QString drop = dropDirectory.filePath(updateProgram);
        QVERIFY(QDir::setCurrent(QDir::homePath()));
        m_state.installUpdate();
        QCOMPARE(shownNotices(), QStringList());

        QVERIFY(dropDirectory.mkpath(QStringLiteral(".")));
        for (const QByteArray& program : {QByteArray("first"), QByteArray("second")}) {
            writeFile(drop, program);
            m_state.installUpdate();
            QCOMPARE(contentOf(updateProgram), program);
            QVERIFY(!QFile::exists(drop));
            // A replacement adds none to the one of the first installation.
            QCOMPARE(shownNotices(),
                     QStringList{QStringLiteral("0 Обновление успешно установлено")});
        }

        // A directory withstands the removal of a file, also by the superuser.
        QVERIFY(QFile::remove(updateProgram) && QDir().mkdir(updateProgram));
        writeFile(drop, "third");
        const QString line =
            QStringLiteral("Error! Can't remove file  \"TPMC-update.exe\"  from  \"%1\"");
        QTest::ignoreMessage(QtDebugMsg, qPrintable(line.arg(dropDirectory.path())));
        m_state.installUpdate();
        QCOMPARE(contentOf(drop), QByteArray("third"));
        QCOMPARE(shownNotices().size(), 1);
    }

private:
    UpdateState& m_state = *UpdateState::instance();
};

TESSAPORT_TEST_MAIN(UpdateStateTest, QApplication)

#include "tst_updatestate.moc"
