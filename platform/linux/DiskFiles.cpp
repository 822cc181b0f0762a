// SPDX-License-Identifier: GPL-3.0-or-later
#include "platform/DiskFiles.h"

#include <QFile>

#include <cerrno>
#include <cstdio>
#include <fcntl.h>
#include <unistd.h>

namespace platform {

namespace {

FileOutcome failure(int error)
{
    return {qt_error_string(error), error == EEXIST};
}

/// The system's number of what stood in the way; 0 when nothing did.
int writeAll(int descriptor, const QByteArray& content)
{
    const char* const end = content.constData() + content.size();
    // A disk that fills up takes a part first, and says why with the next one.
    for (const char* rest = content.constData(); rest < end;) {
        const ssize_t written = ::write(descriptor, rest, size_t(end - rest));
        if (written > 0)
            rest += written;
        else if (written == 0 || errno != EINTR)
            return written == 0 ? ENOSPC : errno;
    }
    const bool isFlushed = ::fsync(descriptor) == 0;
    // These two mean a disk that knows no such order, which is no reason to keep the file off it.
    return isFlushed || errno == EINVAL || errno == ENOTSUP ? 0 : errno;
}

} // namespace

FileOutcome writeToDisk(const QString& path, const QByteArray& content)
{
    const QByteArray name = QFile::encodeName(path);
    const int descriptor =
        ::open(name.constData(), O_WRONLY | O_CREAT | O_TRUNC | O_CLOEXEC, S_IRUSR | S_IWUSR);
    if (descriptor < 0)
        return failure(errno);
    int error = writeAll(descriptor, content);
    if (::close(descriptor) != 0 && error == 0 && errno != EINTR)
        error = errno;
    if (error == 0)
        return {};
    ::unlink(name.constData());
    return failure(error);
}

FileOutcome renameToFreeName(const QString& path, const QString& newPath)
{
    const QByteArray from = QFile::encodeName(path);
    const QByteArray to = QFile::encodeName(newPath);
    if (::renameat2(AT_FDCWD, from.constData(), AT_FDCWD, to.constData(), RENAME_NOREPLACE) == 0)
        return {};
    if (errno != EINVAL && errno != ENOSYS)
        return failure(errno);
    // A file system, or a system, that can't: a second name does not replace anything either.
    if (::link(from.constData(), to.constData()) == 0) {
        ::unlink(from.constData());
        return {};
    }
    // One that has no second names either, as some that encrypt, or that stand for another machine.
    if (errno == EEXIST || ::access(to.constData(), F_OK) == 0)
        return failure(EEXIST);
    return ::rename(from.constData(), to.constData()) == 0 ? FileOutcome{} : failure(errno);
}

void flushDirectoryToDisk(const QString& directory)
{
    const int descriptor =
        ::open(QFile::encodeName(directory).constData(), O_RDONLY | O_DIRECTORY | O_CLOEXEC);
    if (descriptor < 0)
        return;
    ::fsync(descriptor);
    ::close(descriptor);
}

} // namespace platform
