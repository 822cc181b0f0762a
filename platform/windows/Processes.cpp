// SPDX-License-Identifier: GPL-3.0-or-later
#include "platform/Processes.h"

#include <QSysInfo>

#include <memory>
#include <string>
#include <type_traits>

#include <windows.h>

#include <shellapi.h>
#include <tlhelp32.h>

namespace platform {

namespace {

struct HandleCloser {
    void operator()(HANDLE handle) const { CloseHandle(handle); }
};
using UniqueHandle = std::unique_ptr<std::remove_pointer_t<HANDLE>, HandleCloser>;

// The systems on which elevation has to be asked for. Those after them are not among them: there
// the update program's own manifest asks.
const wchar_t* startVerb()
{
    QT_WARNING_PUSH
    QT_WARNING_DISABLE_DEPRECATED
    switch (QSysInfo::windowsVersion()) {
    case QSysInfo::WV_VISTA:
    case QSysInfo::WV_WINDOWS7:
    case QSysInfo::WV_WINDOWS8:
        return L"runas";
    default:
        return L"open";
    }
    QT_WARNING_POP
}

} // namespace

bool isProcessRunning(const QString& fileName)
{
    const HANDLE snapshot = CreateToolhelp32Snapshot(TH32CS_SNAPPROCESS, 0);
    if (snapshot == INVALID_HANDLE_VALUE)
        return false;
    const UniqueHandle owner(snapshot);

    const std::wstring wanted = fileName.toStdWString();
    PROCESSENTRY32W process = {};
    process.dwSize = sizeof(process);
    for (BOOL more = Process32FirstW(snapshot, &process); more;
         more = Process32NextW(snapshot, &process)) {
        if (wanted == process.szExeFile)
            return true;
    }
    return false;
}

int startProgram(const QString& file, const QString& arguments)
{
    const HINSTANCE result =
        ShellExecuteW(nullptr, startVerb(), file.toStdWString().c_str(),
                      arguments.toStdWString().c_str(), nullptr, SW_SHOWNORMAL);
    // A number in the guise of a handle.
    return static_cast<int>(reinterpret_cast<INT_PTR>(result));
}

} // namespace platform
