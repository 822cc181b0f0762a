// SPDX-License-Identifier: GPL-3.0-or-later

// Ends the monitor of this user before the installer replaces or removes it. The monitor ends by
// itself, with everything saved, when the flag for that is in its update file and a process of the
// update program's name runs; the installer starts this program under that name.
//
// Exit codes: 0 none was running, 1 it has ended, 2 it is still there.

#include <algorithm>
#include <string>
#include <utility>
#include <vector>

#include <windows.h>

#include <tlhelp32.h>
#include <userenv.h>

namespace {

constexpr wchar_t monitorName[] = L"tessaport-monitor.exe";
// The monitor looks for the flag once a second.
constexpr DWORD politeTimeout = 15000;
constexpr DWORD windowTimeout = 3000;
constexpr DWORD lastTimeout = 5000;

enum ExitCode { NoneRunning = 0, HasEnded = 1, StillThere = 2 };

class Process {
public:
    explicit Process(DWORD id)
        : m_id(id)
        , m_handle(OpenProcess(SYNCHRONIZE | PROCESS_TERMINATE, FALSE, id))
    {
    }
    Process(Process&& other) noexcept
        : m_id(other.m_id)
        , m_handle(std::exchange(other.m_handle, nullptr))
    {
    }
    Process& operator=(Process&&) = delete;
    ~Process()
    {
        if (m_handle)
            CloseHandle(m_handle);
    }

    DWORD id() const { return m_id; }
    bool endsWithin(DWORD milliseconds) const
    {
        return m_handle && WaitForSingleObject(m_handle, milliseconds) == WAIT_OBJECT_0;
    }
    void terminate() const
    {
        if (m_handle)
            TerminateProcess(m_handle, 1);
    }

private:
    DWORD m_id;
    HANDLE m_handle;
};

std::vector<Process> monitors()
{
    std::vector<Process> result;
    DWORD ownSession = 0;
    ProcessIdToSessionId(GetCurrentProcessId(), &ownSession);
    const HANDLE snapshot = CreateToolhelp32Snapshot(TH32CS_SNAPPROCESS, 0);
    if (snapshot == INVALID_HANDLE_VALUE)
        return result;
    PROCESSENTRY32W entry = {};
    entry.dwSize = sizeof(entry);
    for (BOOL more = Process32FirstW(snapshot, &entry); more;
         more = Process32NextW(snapshot, &entry)) {
        DWORD session = 0;
        if (lstrcmpiW(entry.szExeFile, monitorName) == 0
            && ProcessIdToSessionId(entry.th32ProcessID, &session) && session == ownSession)
            result.emplace_back(entry.th32ProcessID);
    }
    CloseHandle(snapshot);
    return result;
}

bool endWithin(const std::vector<Process>& processes, DWORD milliseconds)
{
    const DWORD start = GetTickCount();
    return std::all_of(processes.begin(), processes.end(), [&](const Process& process) {
        const DWORD gone = GetTickCount() - start;
        return process.endsWithin(gone < milliseconds ? milliseconds - gone : 0);
    });
}

void setUpdateFlag()
{
    HANDLE token = nullptr;
    if (!OpenProcessToken(GetCurrentProcess(), TOKEN_QUERY, &token))
        return;
    wchar_t home[MAX_PATH] = {};
    DWORD length = MAX_PATH;
    const bool known = GetUserProfileDirectoryW(token, home, &length);
    CloseHandle(token);
    if (known) {
        const std::wstring file = std::wstring(home) + L"\\.tessaport\\update.json";
        WritePrivateProfileStringW(L"General", L"forceUpdate", L"true", file.c_str());
    }
}

BOOL CALLBACK closeWindow(HWND window, LPARAM processId)
{
    DWORD owner = 0;
    GetWindowThreadProcessId(window, &owner);
    if (owner == static_cast<DWORD>(processId) && IsWindowVisible(window))
        PostMessageW(window, WM_CLOSE, 0, 0);
    return TRUE;
}

} // namespace

int main()
{
    const std::vector<Process> processes = monitors();
    if (processes.empty())
        return NoneRunning;

    setUpdateFlag();
    if (endWithin(processes, politeTimeout))
        return HasEnded;
    // A monitor that waits for a sign-in does not look for the flag, but ends with its dialog.
    for (const Process& process : processes)
        EnumWindows(closeWindow, static_cast<LPARAM>(process.id()));
    if (endWithin(processes, windowTimeout))
        return HasEnded;
    for (const Process& process : processes)
        process.terminate();
    return endWithin(processes, lastTimeout) ? HasEnded : StillThere;
}
