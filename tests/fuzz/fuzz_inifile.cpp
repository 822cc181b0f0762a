// SPDX-License-Identifier: GPL-3.0-or-later
#include "Fuzz.h"
#include "session/IniFile.h"
#include "session/Records.h"

#include <QFile>

/// An ini file with anything in it is read without harm, and takes a new value that stays.
extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size)
{
    static int count = 0;
    static const bool areRegistered = (registerRecords(), true);
    Q_UNUSED(areRegistered)
    // A name of its own each time: QSettings remembers what it has read under a name.
    const QString path = folder() + QStringLiteral("/%1.ini").arg(++count);
    QFile file(path);
    require(file.open(QIODevice::WriteOnly));
    file.write(bytes(data, size));
    file.close();
    {
        IniFile ini(path);
        const QStringList keys = ini.keys();
        for (const QString& key : keys) {
            const QVariant value = ini.value(key);
            value.toString();
            value.toMap();
            value.value<QList<Task>>();
            value.value<TaskInfo>();
        }
        const QString key = QStringLiteral("todayWorktime");
        const QString value = QStringLiteral("01:02:00");
        ini.setValue(key, value);
        ini.write();
        require(IniFile(path).value(key).toString() == value);
    }
    file.remove();
    QFile::remove(path + QStringLiteral(".damaged"));
    return 0;
}
