// SPDX-License-Identifier: GPL-3.0-or-later
#include "platform/Processes.h"
#include "platform/StartupEntry.h"
#include "support/TestMain.h"

#include <QDir>
#include <QProcess>

/// What only Linux has.
class LinuxPlatformTest : public QObject {
    Q_OBJECT

private slots:
    void scriptIsRunningByItsName();
    void replacedProgramIsStillRunning();
    void refusedStart_data();
    void refusedStart();
    void startupEntryFile_data();
    void startupEntryFile();
    void foreignStartupEntry_data();
    void foreignStartupEntry();

private:
    /// A new file in a directory of the test's own.
    QString write(const QString& name, const QByteArray& content, QFile::Permissions permissions);

    QTemporaryDir m_directory;
};

constexpr QFile::Permissions plainFile = QFile::ReadOwner | QFile::WriteOwner;
constexpr QFile::Permissions programFile = plainFile | QFile::ExeOwner;

QString LinuxPlatformTest::write(const QString& name, const QByteArray& content,
                                 QFile::Permissions permissions)
{
    QFile file(m_directory.filePath(name));
    if (!file.open(QIODevice::WriteOnly) || file.write(content) != content.size())
        qFatal("can't write a file");
    file.setPermissions(permissions);
    return file.fileName();
}

void LinuxPlatformTest::scriptIsRunningByItsName()
{
    const QString name = QStringLiteral("tpmc-script-of-some-length.sh");
    QProcess process;
    process.start(write(name, "#!/bin/sh -e\nread line\n", programFile), QStringList());
    QVERIFY(process.waitForStarted());
    QTRY_VERIFY(platform::isProcessRunning(name));
    process.closeWriteChannel();
    QVERIFY(process.waitForFinished());
    QVERIFY(!platform::isProcessRunning(name));
}

void LinuxPlatformTest::replacedProgramIsStillRunning()
{
    const QString path = m_directory.filePath(QStringLiteral("tpmc-replaced"));
    QVERIFY(QFile::copy(QStringLiteral(PROBE), path));
    QProcess process;
    process.start(path, QStringList());
    QVERIFY(process.waitForStarted());
    QVERIFY(QFile::remove(path));
    QVERIFY(platform::isProcessRunning(QStringLiteral("tpmc-replaced")));
    process.closeWriteChannel();
    QVERIFY(process.waitForFinished());
}

void LinuxPlatformTest::refusedStart_data()
{
    QTest::addColumn<QString>("path");
    QTest::addColumn<int>("code");

    QTest::newRow("not executable") << write(QStringLiteral("text"), "text", plainFile) << 5;
    QTest::newRow("a folder") << m_directory.path() << 5;
    QTest::newRow("no program inside")
        << write(QStringLiteral("broken"), "#!/no/such/interpreter\n", programFile) << 11;
}

void LinuxPlatformTest::refusedStart()
{
    QFETCH(QString, path);
    QTEST(platform::startProgram(path, QString()), "code");
}

void LinuxPlatformTest::startupEntryFile_data()
{
    QTest::addColumn<QString>("path");
    QTest::addColumn<QByteArray>("exec");

    QTest::newRow("plain") << QStringLiteral("/opt/monitor")
                           << QByteArrayLiteral("Exec=\"/opt/monitor\"\n");
    QTest::newRow("blank and percent")
        << QStringLiteral("/opt/a 100% b") << QByteArrayLiteral("Exec=\"/opt/a 100%% b\"\n");
    QTest::newRow("quotes") << QStringLiteral("/opt/\"a\" 'b' $c `d`")
                            << QByteArrayLiteral(R"(Exec="/opt/\\"a\\" 'b' \\$c \\`d\\`")"
                                                 "\n");
    QTest::newRow("backslash") << QStringLiteral("/opt/a\\sb")
                               << QByteArrayLiteral("Exec=\"/opt/a\\\\\\\\sb\"\n");
    QTest::newRow("Cyrillic") << QString::fromUtf8("/opt/Монитор")
                              << QByteArrayLiteral("Exec=\"/opt/Монитор\"\n");
}

void LinuxPlatformTest::startupEntryFile()
{
    QFETCH(QString, path);
    QFETCH(QByteArray, exec);
    const QString name = QStringLiteral("Team/Monitor 1.0");

    QCOMPARE(platform::startupEntry(name), QString());
    platform::setStartupEntry(name, QStringLiteral("/elsewhere"));
    platform::setStartupEntry(name, path);
    QCOMPARE(platform::startupEntry(name), path);

    QFile file(QDir::home().filePath(QStringLiteral(".config/autostart/Team-Monitor-1.0.desktop")));
    QVERIFY(file.open(QIODevice::ReadOnly));
    const QByteArray content = file.readAll();
    QVERIFY2(content.contains(exec), content.constData());
    QVERIFY(content.contains("Name=Team/Monitor 1.0\n"));
    QCOMPARE(QProcess::execute(QStringLiteral("desktop-file-validate"), {file.fileName()}), 0);

    platform::removeStartupEntry(name);
    platform::removeStartupEntry(name);
    QCOMPARE(platform::startupEntry(name), QString());
}

void LinuxPlatformTest::foreignStartupEntry_data()
{
    QTest::addColumn<QByteArray>("content");
    QTest::addColumn<QString>("path");

    const QString path = QStringLiteral("/opt/a b");
    QTest::newRow("arguments, blanks, other groups")
        << QByteArrayLiteral("# note\n[Desktop Entry]\nExec = \"/opt/a b\" --hidden %U\n"
                             "[Desktop Action x]\nExec=/other\nHidden=true\n")
        << path;
    QTest::newRow("escaped blank")
        << QByteArrayLiteral("[Desktop Entry]\nExec=/opt/a\\sb\n") << QStringLiteral("/opt/a");
    QTest::newRow("switched on") << QByteArrayLiteral("[Desktop Entry]\nExec=\"/opt/a b\"\n"
                                                      "X-GNOME-Autostart-enabled=true\n")
                                 << path;
    QTest::newRow("hidden") << QByteArrayLiteral("[Desktop Entry]\nExec=/opt/x\nHidden=true\n")
                            << QString();
    QTest::newRow("switched off") << QByteArrayLiteral("[Desktop Entry]\nExec=/opt/x\n"
                                                       "X-GNOME-Autostart-enabled=false\n")
                                  << QString();
    QTest::newRow("no entry") << QByteArrayLiteral("Exec=/opt/x\n=\n\\") << QString();
    QTest::newRow("ends in mid-escape")
        << QByteArrayLiteral("[Desktop Entry]\nExec=\"/opt/x\\") << QStringLiteral("/opt/x\\");
}

void LinuxPlatformTest::foreignStartupEntry()
{
    QFETCH(QByteArray, content);
    QVERIFY(QDir(m_directory.path()).mkpath(QStringLiteral("autostart")));
    write(QStringLiteral("autostart/monitor.desktop"), content, plainFile);
    qputenv("XDG_CONFIG_HOME", m_directory.path().toLocal8Bit());
    const QString found = platform::startupEntry(QStringLiteral("monitor"));
    qunsetenv("XDG_CONFIG_HOME");
    QTEST(found, "path");
}

TESSAPORT_TEST_MAIN(LinuxPlatformTest, QCoreApplication)
#include "tst_linuxplatform.moc"
