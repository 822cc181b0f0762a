// SPDX-License-Identifier: GPL-3.0-or-later
#include "platform/DiskFiles.h"
#include "platform/InputTick.h"
#include "platform/KeyTable.h"
#include "platform/Processes.h"
#include "support/Files.h"
#include "support/TestMain.h"

#include <QCryptographicHash>
#include <QProcess>

class PlatformTest : public QObject {
    Q_OBJECT

private slots:
    void keyCodes();
    void steadyTick();
    void runningByExactName();
    void filesOnDisk();
};

void PlatformTest::keyCodes()
{
    const QPair<Qt::Key, platform::KeyCodes> rows[] = {
        {Qt::Key_9, {0x39, 0x39}},      {Qt::Key_Z, {0x5a, 0x5a}},
        {Qt::Key_F24, {135, 0xffd5}},   {Qt::Key_F25, {0, 0}},
        {Qt::Key_Backtab, {9, 0xff09}}, {Qt::Key_Print, {42, 0xff61}},
        {Qt::Key_Slash, {111, 0xffaf}}, {Qt::Key_MediaPlay, {179, 0x1008ff14}},
        {Qt::Key_Eacute, {0, 0}},
    };
    for (const auto& [key, codes] : rows) {
        QCOMPARE(platform::keyCodes(key).virtualKey, codes.virtualKey);
        QCOMPARE(platform::keyCodes(key).keysym, codes.keysym);
    }
    // What the systems call their keys does not change: the table as a whole.
    QByteArray table;
    for (const auto& [first, last] : {std::pair(Qt::Key_Space, Qt::Key_Z),
                                      std::pair(Qt::Key_Escape, Qt::Key_MediaTogglePlayPause)}) {
        for (int key = first; key <= last; ++key) {
            const platform::KeyCodes codes = platform::keyCodes(Qt::Key(key));
            table +=
                QByteArray::number(codes.virtualKey) + ' ' + QByteArray::number(codes.keysym) + ' ';
        }
    }
    const QByteArray digest = QCryptographicHash::hash(table, QCryptographicHash::Md5).toHex();
    QVERIFY2(digest == "2da36b8ee7ef031262958c88aff58fa0", table.constData());
}

void PlatformTest::steadyTick()
{
    constexpr quint32 month = 30u * 24 * 3600 * 1000;
    // What is known, the next reading, and what is known then.
    const quint32 rows[][3] = {
        {1000, 1004, 1000}, // read late
        {1000, 1100, 1100}, // another input
        {1000, 1000 + month, 1000 + month},
        {100000, 90000, 100000}, // the program was held up
        {5000, quint32(-5000), 5000}, // and the clock came round
        {quint32(-2), 2, quint32(-2)},
        {quint32(-2), 100, 100},
    };
    for (const auto& [known, reading, expected] : rows) {
        platform::InputTick tick;
        tick.update(known);
        tick.update(reading);
        QCOMPARE(tick.value(), expected);
    }
}

void PlatformTest::runningByExactName()
{
    QVERIFY(!platform::isProcessRunning(QString()));
    for (const QString& name : {QStringLiteral("TPMC-update.exe"),
                                QStringLiteral("TPMC probe of a name beyond all bounds.exe")}) {
        const QString path = QDir::home().filePath(name);
        QVERIFY(QFile::copy(QStringLiteral(PROBE), path));
        QVERIFY(!platform::isProcessRunning(name));
        QProcess process;
        process.start(path, QStringList());
        QVERIFY(process.waitForStarted());
        QVERIFY(platform::isProcessRunning(name));
        for (const QString& other : {name.toUpper(), name.left(13), name.mid(1), name + name})
            QVERIFY2(!platform::isProcessRunning(other), qPrintable(other));
        // Where the system lets a program be removed, it runs on.
        QFile::remove(path);
        QVERIFY(platform::isProcessRunning(name));
        process.closeWriteChannel();
        QVERIFY(process.waitForFinished());
        QVERIFY(!platform::isProcessRunning(name));
    }
}

void PlatformTest::filesOnDisk()
{
    const auto path = [](const char* name) { return QDir::home().filePath(QLatin1String(name)); };
    QVERIFY(platform::writeToDisk(path("old"), "longer").succeeded());
    QVERIFY(platform::writeToDisk(path("old"), "old").succeeded());
    QVERIFY(platform::writeToDisk(path("new"), "new").succeeded());
    QVERIFY(!platform::writeToDisk(path("nowhere/file"), "x").failure.isEmpty());

    const platform::FileOutcome taken = platform::renameToFreeName(path("new"), path("old"));
    QVERIFY(taken.isNameTaken && !taken.succeeded());
    QCOMPARE(contentOf(path("old")), QByteArray("old"));
    QCOMPARE(contentOf(path("new")), QByteArray("new"));

    const platform::FileOutcome missing = platform::renameToFreeName(path("gone"), path("free"));
    QVERIFY(!missing.isNameTaken && !missing.succeeded());
    QVERIFY(platform::renameToFreeName(path("new"), path("free")).succeeded());
    QCOMPARE(contentOf(path("free")), QByteArray("new"));
    QVERIFY(!QFile::exists(path("new")));
}

TESSAPORT_TEST_MAIN(PlatformTest, QCoreApplication)
#include "tst_platform.moc"
