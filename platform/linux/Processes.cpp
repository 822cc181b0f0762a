// SPDX-License-Identifier: GPL-3.0-or-later
#include "platform/Processes.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QProcess>
#include <QStandardPaths>
#include <QStringList>

#include <dirent.h>
#include <fcntl.h>
#include <limits.h>
#include <unistd.h>

#include <algorithm>
#include <memory>

namespace platform {

namespace {

// The numbers that ShellExecute gives for the same outcomes.
constexpr int started = 42;
constexpr int fileNotFound = 2;
constexpr int badFormat = 11;

struct DirectoryCloser {
    void operator()(DIR* directory) const { closedir(directory); }
};
using Directory = std::unique_ptr<DIR, DirectoryCloser>;

/// The first bytes of a file of the process; empty when the process is gone or keeps it secret.
QByteArray readProcessFile(int procDirectory, const QByteArray& path)
{
    const int file = openat(procDirectory, path.constData(), O_RDONLY | O_CLOEXEC);
    if (file < 0)
        return {};
    char content[PATH_MAX];
    const ssize_t size = read(file, content, sizeof content);
    close(file);
    return QByteArray(content, int(std::max<ssize_t>(size, 0)));
}

/// What stands behind the last slash, or backslash, as the programs for Windows have it that run
/// under Wine.
QByteArray baseName(const QByteArray& path)
{
    return path.mid(std::max(path.lastIndexOf('/'), path.lastIndexOf('\\')) + 1);
}

bool isExecutableOf(int procDirectory, const QByteArray& pid, const QByteArray& fileName)
{
    char target[PATH_MAX];
    const QByteArray link = pid + "/exe";
    const ssize_t size = readlinkat(procDirectory, link.constData(), target, sizeof target);
    if (size <= 0)
        return false;
    QByteArray path = QByteArray::fromRawData(target, int(size));
    // What the kernel adds once the file has been replaced or removed.
    const QByteArray deleted = QByteArrayLiteral(" (deleted)");
    if (path.endsWith(deleted))
        path.chop(deleted.size());
    return baseName(path) == fileName;
}

/// For a process that doesn't show its executable, and for scripts and Wine programs, whose
/// executable is the interpreter.
bool isNamedInCommandLine(int procDirectory, const QByteArray& pid, const QByteArray& fileName)
{
    // The kernel keeps no more than these of a name.
    constexpr int keptLength = 15;
    if (readProcessFile(procDirectory, pid + "/comm") != fileName.left(keptLength) + '\n')
        return false;

    // An interpreter and its one option may stand before the file.
    const QList<QByteArray> arguments =
        readProcessFile(procDirectory, pid + "/cmdline").split('\0').mid(0, 3);
    return std::any_of(arguments.cbegin(), arguments.cend(),
                       [&fileName](const QByteArray& text) { return baseName(text) == fileName; });
}

/// The file that a command of this name means; empty when there is none.
QString findProgram(const QString& file)
{
    if (QFileInfo::exists(file))
        return QFileInfo(file).absoluteFilePath();
    return file.contains(QLatin1Char('/')) ? QString() : QStandardPaths::findExecutable(file);
}

} // namespace

bool isProcessRunning(const QString& fileName)
{
    const QByteArray wanted = QFile::encodeName(fileName);
    const Directory proc(opendir("/proc"));
    if (!proc || wanted.isEmpty())
        return false;

    const int procDirectory = dirfd(proc.get());
    while (const dirent* entry = readdir(proc.get())) {
        if (entry->d_name[0] < '1' || entry->d_name[0] > '9')
            continue;
        const QByteArray pid(entry->d_name);
        if (isExecutableOf(procDirectory, pid, wanted)
            || isNamedInCommandLine(procDirectory, pid, wanted))
            return true;
    }
    return false;
}

int startProgram(const QString& file, const QString& arguments)
{
    const QString program = findProgram(file);
    if (program.isEmpty())
        return fileNotFound;
    const QFileInfo info(program);
    // Not "refused": nobody was asked, and somebody should be told.
    if (!info.isFile() || !info.isExecutable())
        return badFormat;
    const bool success =
        QProcess::startDetached(program, QProcess::splitCommand(arguments), QDir::currentPath());
    return success ? started : badFormat;
}

} // namespace platform
