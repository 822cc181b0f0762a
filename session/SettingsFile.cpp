// SPDX-License-Identifier: GPL-3.0-or-later
#include "session/SettingsFile.h"

#include <QDataStream>
#include <QDebug>
#include <QFile>
#include <QList>
#include <QVariant>

#include <cctype>

namespace {

// What Qt's readers of these lists and maps can be nested to without an end of the stack.
constexpr int maximumDepth = 600;

bool isLineEnd(char c)
{
    return c == '\n' || c == '\r';
}

// Takes over the escape sequence after the backslash at this place; gives the place of its end.
int unescape(const QByteArray& content, int backslash, QByteArray& value)
{
    static const QByteArray letters = "abfnrtv\"?'\\";
    static const QByteArray meanings = "\a\b\f\n\r\t\v\"?'\\";
    const int first = backslash + 1;
    const char escape = first < content.size() ? content.at(first) : '\n';
    const bool isHex = escape == 'x';
    if (!isHex && (escape < '0' || escape > '7')) {
        // Qt skips the ones it does not know.
        const int letter = letters.indexOf(escape);
        if (letter >= 0)
            value += meanings.at(letter);
        return first;
    }
    const auto isDigit = [isHex](char c) {
        return isHex ? isxdigit(uchar(c)) != 0 : c >= '0' && c <= '7';
    };
    const int digits = isHex ? first + 1 : first;
    int end = digits;
    while (end < content.size() && isDigit(content.at(end)))
        ++end;
    if (end == digits)
        return first;
    const auto code = quint16(content.mid(digits, end - digits).toUInt(nullptr, isHex ? 16 : 8));
    value += code > 0xFF ? '?' : char(code);
    return end - 1;
}

// The values of an ini file, and the elements of those that are lists, out of their notation.
QList<QByteArray> valuesIn(const QByteArray& content)
{
    QList<QByteArray> values;
    QByteArray value;
    bool isKey = true;
    bool isQuoted = false;
    for (int i = 0; i < content.size(); ++i) {
        const char c = content.at(i);
        if (c == '\\') {
            i = unescape(content, i, value);
        } else if (c == '"') {
            isQuoted = !isQuoted;
        } else if (isQuoted || !(c == ',' || c == ';' || isLineEnd(c) || (c == '=' && isKey))) {
            value += c;
        } else {
            if (c != '=')
                values.append(value.trimmed());
            value.clear();
            isKey = c == ';' || isLineEnd(c);
            while (c == ';' && i + 1 < content.size() && !isLineEnd(content.at(i + 1)))
                ++i;
        }
    }
    values.append(value.trimmed());
    return values;
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

// The program's own types read damaged content without harm. So does what is cut short.
bool isHarmlessNamedType(QDataStream& stream)
{
    QByteArray name;
    stream >> name;
    const int id = QMetaType::type(name.constData());
    return id == QMetaType::UnknownType || id >= QMetaType::User;
}

bool isHarmless(QDataStream& stream, int depth)
{
    constexpr quint32 namedType = 127;
    quint32 type = 0;
    stream >> type;
    if (type == namedType)
        return depth == 0 && isHarmlessNamedType(stream);
    if (type == QMetaType::UnknownType) {
        QString filler;
        stream >> filler;
        return true;
    }
    if (isPlainType(type)) {
        QVariant value(int(type), nullptr);
        QMetaType::load(stream, int(type), value.data());
        return true;
    }
    const bool isList = type == QMetaType::QVariantList;
    if (depth == maximumDepth || !(isList || type == QMetaType::QVariantMap))
        return false;

    quint32 count = 0;
    stream >> count;
    // Room for all elements of a list is made before the first one is read.
    if (isList && count > stream.device()->bytesAvailable())
        return false;
    for (quint32 i = 0; i < count && stream.status() == QDataStream::Ok; ++i) {
        QString key;
        if (!isList)
            stream >> key;
        if (!isHarmless(stream, depth + 1))
            return false;
    }
    return true;
}

bool isHarmless(const QByteArray& value)
{
    const QByteArray variantMark = "@Variant(";
    const QByteArray dateMark = "@DateTime(";
    const bool isDate = value.startsWith(dateMark);
    if (!isDate && !value.startsWith(variantMark))
        return true;
    QDataStream stream(value.mid(isDate ? dateMark.size() : variantMark.size()));
    stream.setVersion(QDataStream::Qt_4_0);
    // Nothing that holds something else may stand in the place of a date.
    return isHarmless(stream, isDate ? maximumDepth : 0);
}

} // namespace

void putAsideIfHarmful(const QString& path)
{
    QFile file(path);
    if (!file.open(QIODevice::ReadOnly))
        return;
    const QList<QByteArray> values = valuesIn(file.readAll());
    file.close();
    for (const QByteArray& value : values) {
        if (isHarmless(value))
            continue;
        const QString asidePath = path + QStringLiteral(".damaged");
        qWarning() << "Damaged settings are put aside:" << asidePath;
        QFile::remove(asidePath);
        if (!file.rename(asidePath))
            file.remove();
        return;
    }
}
