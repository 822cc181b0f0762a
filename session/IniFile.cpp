// SPDX-License-Identifier: GPL-3.0-or-later
#include "session/IniFile.h"

#include "session/SettingsFile.h"

#include <QDataStream>
#include <QFile>

namespace {

QByteArray streamOf(const QVariant& value)
{
    QByteArray content;
    QDataStream stream(&content, QIODevice::WriteOnly);
    stream << value;
    return content;
}

bool isSameContent(const QVariant& stored, const QVariant& value)
{
    const int type = value.userType();
    const int storedType = stored.userType();
    // Read back from a file, both are texts.
    if (type == QMetaType::QString || type == QMetaType::Bool)
        return (storedType == type || storedType == QMetaType::QString)
            && stored.toString() == value.toString();
    return storedType == type && streamOf(stored) == streamOf(value);
}

} // namespace

// What is damaged is dealt with before QSettings opens the file, which reads it.
IniFile::IniFile(const QString& path)
    : IniFile(path, disarmDamagedValues(path))
{
}

IniFile::IniFile(const QString& path, const QStringList& damagedKeys)
    : m_settings(path, QSettings::IniFormat)
{
    emptyValues(damagedKeys);
}

bool IniFile::takeOverChanges()
{
    if (stampOnDisk() == m_stamp)
        return false;
    const QStringList damagedKeys = disarmDamagedValues(m_settings.fileName());
    m_settings.sync();
    emptyValues(damagedKeys);
    return true;
}

void IniFile::setValue(const QString& key, const QVariant& value)
{
    // QSettings has no place for a key without a name, and slashes alone name nothing.
    if (key.count(QLatin1Char('/')) == key.size())
        return;
    if (m_settings.contains(key) && isSameContent(m_settings.value(key), value))
        return;
    m_settings.setValue(key, value);
    m_hasUnwritten = true;
}

void IniFile::clear()
{
    m_settings.clear();
    m_hasUnwritten = true;
}

void IniFile::write()
{
    if (!m_hasUnwritten)
        return;
    m_settings.sync();
    makePrivate();
    const Stamp stamp = stampOnDisk();
    // QSettings keeps what it could not write, but not a word about it.
    m_hasUnwritten = stamp == m_stamp;
    m_stamp = stamp;
}

// The last step of reading.
void IniFile::emptyValues(const QStringList& damagedKeys)
{
    for (const QString& key : damagedKeys)
        m_settings.setValue(key, QString());
    m_settings.sync();
    makePrivate();
    m_stamp = stampOnDisk();
}

// QSettings opens what it makes to everybody, and leaves what is there as it is.
void IniFile::makePrivate()
{
    QFile::setPermissions(m_settings.fileName(), QFile::ReadOwner | QFile::WriteOwner);
}

IniFile::Stamp IniFile::stampOnDisk() const
{
    const QFileInfo file(m_settings.fileName());
    return file.exists() ? Stamp{file.size(), file.lastModified()} : Stamp{};
}
