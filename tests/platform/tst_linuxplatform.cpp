// SPDX-License-Identifier: GPL-3.0-or-later
#include "platform/DiskFiles.h"
#include "platform/Display.h"
#include "platform/HotKeys.h"
#include "platform/LastInput.h"
#include "platform/Processes.h"
#include "platform/StartupEntry.h"
#include "platform/Termination.h"
#include "support/Files.h"
#include "support/TestMain.h"

#include <QGuiApplication>
#include <QProcess>

#include <cerrno>
#include <csignal>

// A file system on which a file can be given another name in the plain way only.

extern "C" int renameat2(int, const char*, int, const char*, unsigned) noexcept
{
    errno = EINVAL;
    return -1;
}

extern "C" int link(const char*, const char*) noexcept
{
    errno = EPERM;
    return -1;
}

/// What only Linux has, as on a display that isn't X11.
class LinuxPlatformTest : public QObject {
    Q_OBJECT

private slots:
    void runningScript();
    void startProgram();
    void startupEntryFile();
    void foreignStartupEntry();
    void blindDisplay();
    void waylandSession();
    void fileOfItsUserAlone();
    void plainRename();
    void signalsEndTheProgram();

private:
    static QString write(const QString& name, const QByteArray& content);
};

/// A new executable file.
QString LinuxPlatformTest::write(const QString& name, const QByteArray& content)
{
    const QString path = QDir::home().filePath(name);
    writeFile(path, content);
    QFile::setPermissions(path, QFile::ReadOwner | QFile::WriteOwner | QFile::ExeOwner);
    return path;
}

void LinuxPlatformTest::runningScript()
{
    const QString name = QStringLiteral("tpmc-script-of-some-length.sh");
    // Wine gives its programs their name, and the path as Windows has it.
    const QString underWine = QStringLiteral("tpmc.exe");
    const QPair<QString, QStringList> rows[] = {
        {name, {write(name, "#!/bin/sh -e\nread line\n")}},
        {underWine,
         {QStringLiteral("sh"),
          write(QStringLiteral("Z:\\tpmc.exe"), "printf tpmc.exe >/proc/$$/comm\nread line\n")}}};
    for (const auto& [program, command] : rows) {
        QProcess process;
        process.start(command.constFirst(), command.mid(1));
        QTRY_VERIFY(platform::isProcessRunning(program));
        process.closeWriteChannel();
        QVERIFY(process.waitForFinished());
        QVERIFY(!platform::isProcessRunning(program));
    }
}

void LinuxPlatformTest::startProgram()
{
    const auto code = [](const QString& file) { return platform::startProgram(file, QString()); };
    QVERIFY(code(QStringLiteral("true")) > 31);
    QCOMPARE(code(QStringLiteral("no-such-program.exe")), 2);
    QCOMPARE(code(QStringLiteral("/etc/passwd")), 11);
    QCOMPARE(code(QDir::homePath()), 11);
    QCOMPARE(code(write(QStringLiteral("broken"), "#!/no/such/interpreter\n")), 11);
}

void LinuxPlatformTest::startupEntryFile()
{
    const QString name = QStringLiteral("Team/Monitor 1.0");
    const struct {
        const char* path;
        const char* tryExec;
        const char* exec;
    } rows[] = {
        {"/opt/монитор", "TryExec=/opt/монитор", R"(Exec="/opt/монитор")"},
        {"/opt/a 100% b", "TryExec=/opt/a 100% b", R"(Exec="/opt/a 100%% b")"},
        {"/opt/\"a\" 'b' $c `d`", "TryExec=/opt/\"a\" 'b' $c `d`",
         R"(Exec="/opt/\\"a\\" 'b' \\$c \\`d\\`")"},
        {R"(/opt/a\sb)", R"(TryExec=/opt/a\\sb)", R"(Exec="/opt/a\\\\sb")"},
        {"/opt/a\tb\nc", R"(TryExec=/opt/a\tb\nc)", R"(Exec="/opt/a\tb\nc")"},
    };
    for (const auto& [path, tryExec, exec] : rows) {
        platform::setStartupEntry(name, QStringLiteral("/elsewhere"));
        platform::setStartupEntry(name, QString::fromUtf8(path));
        QCOMPARE(platform::startupEntry(name), QString::fromUtf8(path));
        const QString entry =
            QDir::home().filePath(QStringLiteral(".config/autostart/Team-Monitor-1.0.desktop"));
        const QList<QByteArray> lines = contentOf(entry).split('\n');
        QVERIFY2(lines.contains(tryExec) && lines.contains(exec), exec);
        QCOMPARE(QProcess::execute(QStringLiteral("desktop-file-validate"), {entry}), 0);
    }
    platform::removeStartupEntry(name);
    QCOMPARE(platform::startupEntry(name), QString());
}

void LinuxPlatformTest::foreignStartupEntry()
{
    const QPair<const char*, const char*> rows[] = {
        {"#\n[Desktop Entry]\nExec = \"/a b\" --hidden %U\n[Other]\nHidden=true\n", "/a b"},
        {"[Desktop Entry]\nExec=/opt/a\\sb\nX-GNOME-Autostart-enabled=true\n", "/opt/a"},
        {"[Desktop Entry]\nExec=/opt/x\nX-GNOME-Autostart-enabled=false\n", ""},
        {"[Desktop Entry]\nExec=/opt/x\nHidden=true\n", ""},
        {"[Desktop Entry]\nExec=\"/opt/x\\", "/opt/x\\"},
    };
    QVERIFY(QDir::home().mkpath(QStringLiteral(".config/autostart")));
    for (const auto& [content, path] : rows) {
        write(QStringLiteral(".config/autostart/monitor.desktop"), content);
        QCOMPARE(platform::startupEntry(QStringLiteral("monitor")), QLatin1String(path));
    }
}

void LinuxPlatformTest::blindDisplay()
{
    QTest::ignoreMessage(QtWarningMsg, QRegularExpression(QStringLiteral("^LastInput: ")));
    QCOMPARE(platform::lastInputTick(), 0u);
    QVERIFY(!platform::registerHotKey({platform::nativeKeyCode(Qt::Key_K), 0}));
}

void LinuxPlatformTest::waylandSession()
{
    const struct {
        const char* display;
        const char* sessionType;
        const char* usersPlugin;
        bool seesAll;
        const char* plugin;
    } rows[] = {
        {"", "x11", nullptr, true, ""},
        {"wayland-0", "", nullptr, false, "xcb"},
        {"", "wayland", nullptr, false, "xcb"},
        {"wayland-0", "wayland", "wayland", false, ""},
    };
    for (const auto& [display, sessionType, usersPlugin, seesAll, plugin] : rows) {
        qputenv("WAYLAND_DISPLAY", display);
        qputenv("XDG_SESSION_TYPE", sessionType);
        qunsetenv("QT_QPA_PLATFORM");
        if (usersPlugin)
            qputenv("QT_QPA_PLATFORM", usersPlugin);
        QCOMPARE(platform::seesWholeDesktop(), seesAll);
        QCOMPARE(platform::windowsPlugin(), QByteArray(plugin));
    }
}

void LinuxPlatformTest::fileOfItsUserAlone()
{
    const QString path = QDir::home().filePath(QStringLiteral("record"));
    QVERIFY(platform::writeToDisk(path, "x").succeeded());
    QVERIFY(!(QFile::permissions(path) & (QFile::ReadGroup | QFile::ReadOther)));
}

void LinuxPlatformTest::plainRename()
{
    const QString from = write(QStringLiteral("from"), "from");
    const QString taken = write(QStringLiteral("taken"), "taken");
    QVERIFY(platform::renameToFreeName(from, taken).isNameTaken);
    QCOMPARE(contentOf(taken), QByteArray("taken"));
    const QString free = QDir::home().filePath(QStringLiteral("free"));
    QVERIFY(platform::renameToFreeName(from, free).succeeded());
    QCOMPARE(contentOf(free), QByteArray("from"));
    const platform::FileOutcome missing = platform::renameToFreeName(from, from + free);
    QVERIFY(!missing.succeeded() && !missing.isNameTaken);
}

void LinuxPlatformTest::signalsEndTheProgram()
{
    int ends = 0, expected = 0;
    // Who starts it with one of them ignored wants it ignored.
    for (const auto hangUp : {SIG_IGN, SIG_DFL}) {
        std::signal(SIGHUP, hangUp);
        platform::watchTermination(this, [&ends] { ++ends; });
        for (const int signal : {SIGHUP, SIGTERM, SIGINT}) {
            std::raise(signal);
            expected += signal != SIGHUP || hangUp == SIG_DFL;
            QTRY_COMPARE(ends, expected);
        }
    }
}

TESSAPORT_TEST_MAIN(LinuxPlatformTest, QGuiApplication)
#include "tst_linuxplatform.moc"
