// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QDateTime>
#include <QFileInfo>
#include <QSettings>
#include <QString>
#include <QStringList>
#include <QVariant>

/// One of the program's ini files. What is set reaches the disk with the next write(), whole or not
/// at all, and only if there is something new in it. A failure to write is silent; the next write()
/// tries again. A damaged value is read as an empty text; see SettingsFile.h. The file is readable
/// by its user alone.
class IniFile {
public:
    explicit IniFile(const QString& path);

    bool isOnDisk() const { return QFileInfo::exists(m_settings.fileName()); }
    QStringList keys() const { return m_settings.allKeys(); }
    QVariant value(const QString& key, const QVariant& defaultValue = QVariant()) const
    {
        return m_settings.value(key, defaultValue);
    }

    /// Whether the file was changed or removed by something else since it was last read or
    /// written here; then its present content is taken over. Costs little when it was not.
    bool takeOverChanges();
    /// Sets what is not there yet, or there with another content.
    void setValue(const QString& key, const QVariant& value);
    void clear();
    void write();

private:
    /// Tells one state of the file from another, without a look inside.
    struct Stamp {
        qint64 size = -1; ///< -1: no file
        QDateTime modified;
        bool operator==(const Stamp& other) const
        {
            return size == other.size && modified == other.modified;
        }
    };

    IniFile(const QString& path, const QStringList& damagedKeys);

    Stamp stampOnDisk() const;
    void emptyValues(const QStringList& damagedKeys);
    void makePrivate();

    QSettings m_settings;
    Stamp m_stamp;
    bool m_hasUnwritten = false;
};
