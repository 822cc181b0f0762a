// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QFile>

#include <malloc.h>

/// A figure of /proc/self/status, in bytes.
inline qint64 processBytes(const QByteArray& name)
{
    QFile status(QStringLiteral("/proc/self/status"));
    if (!status.open(QIODevice::ReadOnly))
        return 0;
    const QByteArray text = status.readAll();
    const int at = text.indexOf(name + ':');
    return at < 0 ? 0
                  : text.mid(at + name.size() + 1).trimmed().split(' ').first().toLongLong() * 1024;
}

/// By how much the memory of the process grows at most during a call.
template <class Work> qint64 peakBytes(const Work& work)
{
    // What is free already would hide what is taken.
    malloc_trim(0);
    QFile marks(QStringLiteral("/proc/self/clear_refs"));
    if (marks.open(QIODevice::WriteOnly))
        marks.write("5");
    marks.close();
    const qint64 before = processBytes("VmRSS");
    work();
    return processBytes("VmHWM") - before;
}
