// SPDX-License-Identifier: GPL-3.0-or-later
#include "session/IniFile.h"

#include "session/SettingsFile.h"

#include <QDataStream>

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
    // Read back from a file, both are texts.
    if (type == QMetaType::QString || type == QMetaType::Bool)
        return stored.toString() == value.toString();
    return stored.userType() == type && streamOf(stored) == streamOf(value);
}

} // namespace

IniFile::IniFile(const QString& path)
    : m_settings(path, QSettings::IniFormat)
{
    read();
}

bool IniFile::takeOverChanges()
{
    if (stampOnDisk() == m_stamp)
        return false;
    read();
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
    const Stamp stamp = stampOnDisk();
    // QSettings keeps what it could not write, but not a word about it.
    m_hasUnwritten = stamp == m_stamp;
    m_stamp = stamp;
}

void IniFile::read()
{
    putAsideIfHarmful(m_settings.fileName());
    m_settings.sync();
    m_stamp = stampOnDisk();
}

IniFile::Stamp IniFile::stampOnDisk() const
{
    const QFileInfo file(m_settings.fileName());
    return file.exists() ? Stamp{file.size(), file.lastModified()} : Stamp{};
}
