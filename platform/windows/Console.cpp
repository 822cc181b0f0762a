// SPDX-License-Identifier: GPL-3.0-or-later
#include "platform/Console.h"

#include <windows.h>

void platform::writeToConsole(const QString& text)
{
    HANDLE output = GetStdHandle(STD_OUTPUT_HANDLE);
    if (GetFileType(output) == FILE_TYPE_UNKNOWN) {
        if (!AttachConsole(ATTACH_PARENT_PROCESS))
            return;
        output = GetStdHandle(STD_OUTPUT_HANDLE);
    }

    DWORD mode = 0;
    DWORD written = 0;
    // A console has its own idea of what bytes mean.
    if (GetConsoleMode(output, &mode)) {
        const std::wstring wide = text.toStdWString();
        WriteConsoleW(output, wide.c_str(), DWORD(wide.size()), &written, nullptr);
    } else {
        const QByteArray bytes = text.toUtf8();
        WriteFile(output, bytes.constData(), DWORD(bytes.size()), &written, nullptr);
    }
}
