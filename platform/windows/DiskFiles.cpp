// SPDX-License-Identifier: GPL-3.0-or-later
#include "platform/DiskFiles.h"

#include <QDir>

#include <windows.h>

namespace platform {

namespace {

// A scanner looks into a new file for some tens of milliseconds, and lets nobody rename it
// meanwhile.
constexpr int renameAttempts = 20;
constexpr DWORD renamePause = 10; // milliseconds

FileOutcome failure(DWORD error)
{
    return {qt_error_string(int(error)),
            error == ERROR_ALREADY_EXISTS || error == ERROR_FILE_EXISTS};
}

std::wstring nativeName(const QString& path)
{
    return QDir::toNativeSeparators(path).toStdWString();
}

} // namespace

FileOutcome writeToDisk(const QString& path, const QByteArray& content)
{
    const std::wstring name = nativeName(path);
    const HANDLE file = CreateFileW(name.c_str(), GENERIC_WRITE, 0, nullptr, CREATE_ALWAYS,
                                    FILE_ATTRIBUTE_NORMAL, nullptr);
    if (file == INVALID_HANDLE_VALUE)
        return failure(GetLastError());
    DWORD written = 0;
    DWORD error = ERROR_SUCCESS;
    if (!WriteFile(file, content.constData(), DWORD(content.size()), &written, nullptr))
        error = GetLastError();
    else if (written != DWORD(content.size()))
        error = ERROR_DISK_FULL;
    else if (!FlushFileBuffers(file) && GetLastError() != ERROR_INVALID_FUNCTION
             && GetLastError() != ERROR_NOT_SUPPORTED)
        error = GetLastError();
    CloseHandle(file);
    if (error == ERROR_SUCCESS)
        return {};
    DeleteFileW(name.c_str());
    return failure(error);
}

FileOutcome renameToFreeName(const QString& path, const QString& newPath)
{
    const std::wstring from = nativeName(path);
    const std::wstring to = nativeName(newPath);
    for (int attempt = 1;; ++attempt) {
        // Without flags it neither replaces nor copies.
        if (MoveFileExW(from.c_str(), to.c_str(), 0))
            return {};
        const DWORD error = GetLastError();
        const bool isHeld = error == ERROR_SHARING_VIOLATION || error == ERROR_ACCESS_DENIED;
        if (!isHeld || attempt == renameAttempts)
            return failure(error);
        Sleep(renamePause);
    }
}

// The file system's own journal keeps the names.
void flushDirectoryToDisk(const QString&) { }

} // namespace platform
