// SPDX-License-Identifier: GPL-3.0-or-later
#include "IniFile.h"

#include <QDataStream>
#include <QFile>

#include <cctype>

namespace {

// The value in the notation of ini files that begins here, as bytes.
QByteArray unescaped(const char* at, const char* end)
{
    static const QByteArray letters = "abfnrtv";
    static const QByteArray meanings = "\a\b\f\n\r\t\v";
    QByteArray bytes;
    while (at != end && *at != '\n') {
        if (*at != '\\' || at + 1 == end) {
            if (*at != '"')
                bytes += *at;
            ++at;
            continue;
        }
        const char escape = *++at;
        const bool isHex = escape == 'x';
        if (isHex || (escape >= '0' && escape <= '7')) {
            const char* const digits = isHex ? at + 1 : at;
            for (at = digits; at != end && (isHex ? isxdigit(uchar(*at)) : isdigit(uchar(*at)));)
                ++at;
            bytes += char(QByteArray(digits, int(at - digits)).toULong(nullptr, isHex ? 16 : 8));
            continue;
        }
        const int letter = letters.indexOf(escape);
        bytes += letter < 0 ? escape : meanings.at(letter);
        ++at;
    }
    return bytes;
}

bool isPlainType(quint32 type)
{
    switch (type) {
    case QMetaType::Bool:
    case QMetaType::Int:
    case QMetaType::UInt:
    case QMetaType::LongLong:
    case QMetaType::ULongLong:
    case QMetaType::Double:
    case QMetaType::QString:
    case QMetaType::QByteArray:
    case QMetaType::QDate:
    case QMetaType::QTime:
    case QMetaType::QDateTime:
        return true;
    default:
        return false;
    }
}

// Whether a damaged value of this type is read without harm: a plain value, one of the program's
// own types, or a map of plain values.
bool isSafeToRead(const QByteArray& variant)
{
    constexpr quint32 namedType = 127;
    QDataStream stream(variant);
    stream.setVersion(QDataStream::Qt_4_0);
    quint32 type = 0;
    stream >> type;
    if (type == namedType) {
        QByteArray name;
        stream >> name;
        const int id = QMetaType::type(name.constData());
        return id == QMetaType::UnknownType || id >= QMetaType::User;
    }
    if (type != QMetaType::QVariantMap)
        return isPlainType(type) || stream.status() != QDataStream::Ok;

    quint32 count = 0;
    stream >> count;
    for (quint32 i = 0; i < count && stream.status() == QDataStream::Ok; ++i) {
        QString key;
        stream >> key >> type;
        if (stream.status() != QDataStream::Ok)
            break;
        if (!isPlainType(type))
            return false;
        QVariant value(int(type), nullptr);
        QMetaType::load(stream, int(type), value.data());
    }
    return true;
}

// Qt's own readers of other types trust what they read: one byte more or less, and a value that
// claims to be a list of billions, or a polygon, ends the program.
bool isSafeToRead(QFile&& file)
{
    if (!file.open(QIODevice::ReadOnly))
        return true;
    const QByteArray content = file.readAll();
    const QByteArray mark = "@Variant(";
    for (int at = content.indexOf(mark); at >= 0; at = content.indexOf(mark, at + 1)) {
        const char* const value = content.constData() + at + mark.size();
        const char before = at > 0 ? content.at(at - 1) : '\n';
        const bool isText = before != '=' && before != '"';
        if (!isText && !isSafeToRead(unescaped(value, content.constData() + content.size())))
            return false;
    }
    return true;
}

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
    if (!isSafeToRead(QFile(m_settings.fileName())))
        QFile::remove(m_settings.fileName());
    m_settings.sync();
    m_stamp = stampOnDisk();
}

IniFile::Stamp IniFile::stampOnDisk() const
{
    const QFileInfo file(m_settings.fileName());
    return file.exists() ? Stamp{file.size(), file.lastModified()} : Stamp{};
}
