// SPDX-License-Identifier: GPL-3.0-or-later
#include "service/JsonCodec.h"

#include <QDateTime>
#include <QStringList>

namespace {

bool s_prettyPrint = false;
QString s_dateTimeFormat;
QString s_dateFormat;

/// Appends values to one text. Each operation gives false at a value that can't be written, and
/// the text is void from there on.
class Writer {
public:
    bool writeValue(const QVariant& data, int level);
    QByteArray text() const { return m_text; }

private:
    bool writeArray(const QVariantList& list, int level);
    template <typename Map> bool writeObject(const Map& map, int level);
    bool writeScalar(const QVariant& data);
    void writeString(const QString& string);
    void breakLine(int level);

    QByteArray m_text;
};

bool Writer::writeValue(const QVariant& data, int level)
{
    if (!data.isValid()) {
        m_text += "null";
        return true;
    }
    switch (data.userType()) {
    case QMetaType::QVariantList:
    case QMetaType::QStringList:
        return level < JsonCodec::maximumDepth && writeArray(data.toList(), level);
    case QMetaType::QVariantHash:
        return level < JsonCodec::maximumDepth && writeObject(data.toHash(), level);
    case QMetaType::QVariantMap:
        return level < JsonCodec::maximumDepth && writeObject(data.toMap(), level);
    default:
        return writeScalar(data);
    }
}

bool Writer::writeArray(const QVariantList& list, int level)
{
    if (list.isEmpty()) {
        m_text += "[]";
        return true;
    }
    char before = '[';
    for (const QVariant& value : list) {
        m_text += before;
        before = ',';
        breakLine(level + 1);
        if (!writeValue(value, level + 1))
            return false;
    }
    breakLine(level);
    m_text += ']';
    return true;
}

template <typename Map> bool Writer::writeObject(const Map& map, int level)
{
    if (map.isEmpty()) {
        m_text += "{}";
        return true;
    }
    char before = '{';
    for (auto pair = map.constBegin(); pair != map.constEnd(); ++pair) {
        m_text += before;
        before = ',';
        breakLine(level + 1);
        writeString(pair.key());
        m_text += s_prettyPrint ? ": " : ":";
        if (!writeValue(pair.value(), level + 1))
            return false;
    }
    breakLine(level);
    m_text += '}';
    return true;
}

bool Writer::writeScalar(const QVariant& data)
{
    switch (data.userType()) {
    case QMetaType::QString:
        writeString(data.toString());
        return true;
    case QMetaType::QByteArray: {
        // The variant would turn it into a text up to the first NUL byte.
        const QByteArray utf8 = data.toByteArray();
        writeString(QString::fromUtf8(utf8.constData(), utf8.size()));
        return true;
    }
    case QMetaType::Double: {
        const QByteArray number = QByteArray::number(data.toDouble(), 'g', 6);
        m_text += number;
        if (!number.contains('.') && !number.contains('e'))
            m_text += ".0";
        return true;
    }
    case QMetaType::Bool:
        m_text += data.toBool() ? "true" : "false";
        return true;
    case QMetaType::ULongLong:
        m_text += QByteArray::number(data.toULongLong());
        return true;
    default:
        break;
    }

    if (data.canConvert<qlonglong>()) {
        m_text += QByteArray::number(data.toLongLong());
        return true;
    }
    if (data.canConvert<long>()) {
        m_text += QByteArray::number(qlonglong(data.value<long>()));
        return true;
    }
    if (data.userType() == QMetaType::QDateTime) {
        const QDateTime dateTime = data.toDateTime();
        writeString(s_dateTimeFormat.isEmpty() ? dateTime.toString(Qt::TextDate)
                                               : dateTime.toString(s_dateTimeFormat));
        return true;
    }
    if (data.userType() == QMetaType::QDate) {
        const QDate date = data.toDate();
        // The format of date and time decides here, too; see docs/decisions.md.
        writeString(s_dateTimeFormat.isEmpty() ? date.toString(Qt::TextDate)
                                               : date.toString(s_dateFormat));
        return true;
    }
    if (data.canConvert<QString>()) {
        writeString(data.toString());
        return true;
    }
    return false;
}

void Writer::writeString(const QString& string)
{
    // What is escaped is ASCII, which is never a piece of another character in UTF-8.
    const QByteArray utf8 = string.toUtf8();
    m_text += '"';
    const char* run = utf8.constData();
    const char* const end = run + utf8.size();
    for (const char* at = run; at != end; ++at) {
        char escaped = 0;
        switch (*at) {
        case '\\':
        case '"':
            escaped = *at;
            break;
        case '\b':
            escaped = 'b';
            break;
        case '\f':
            escaped = 'f';
            break;
        case '\n':
            escaped = 'n';
            break;
        case '\r':
            escaped = 'r';
            break;
        case '\t':
            escaped = 't';
            break;
        default:
            continue;
        }
        m_text.append(run, int(at - run));
        m_text += '\\';
        m_text += escaped;
        run = at + 1;
    }
    m_text.append(run, int(end - run));
    m_text += '"';
}

void Writer::breakLine(int level)
{
    if (!s_prettyPrint)
        return;
    m_text += '\n';
    m_text.append(4 * level, ' ');
}

} // namespace

QByteArray JsonCodec::serialize(const QVariant& data)
{
    bool success = true;
    return serialize(data, success);
}

QByteArray JsonCodec::serialize(const QVariant& data, bool& success)
{
    Writer writer;
    success = writer.writeValue(data, 0);
    return success ? writer.text() : QByteArray();
}

void JsonCodec::setPrettyPrint(bool prettyPrint)
{
    s_prettyPrint = prettyPrint;
}

void JsonCodec::setDateTimeFormat(const QString& format)
{
    s_dateTimeFormat = format;
}

void JsonCodec::setDateFormat(const QString& format)
{
    s_dateFormat = format;
}
