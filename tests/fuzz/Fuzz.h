// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QByteArray>
#include <QTemporaryDir>

#include <cstdint>
#include <cstdlib>

/// What libFuzzer drew, for a reader of bytes.
inline QByteArray bytes(const uint8_t* data, size_t size)
{
    return QByteArray(reinterpret_cast<const char*>(data), int(size));
}

/// Where files are written thousands of times a second: in memory.
inline QString folder()
{
    static const QTemporaryDir directory(QStringLiteral("/dev/shm/fuzz-XXXXXX"));
    return directory.path();
}

/// Libfuzzer takes the input down that breaks what has to hold.
inline void require(bool holds)
{
    if (!holds)
        std::abort();
}

inline void ignoreMessage(QtMsgType, const QMessageLogContext&, const QString&) { }

extern "C" inline int LLVMFuzzerInitialize(int*, char***)
{
    qInstallMessageHandler(ignoreMessage);
    return 0;
}
