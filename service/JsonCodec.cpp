// SPDX-License-Identifier: GPL-3.0-or-later
#include "service/JsonCodec.h"

#include <QDateTime>
#include <QStringList>

#include <algorithm>

namespace {

bool s_prettyPrint = false;
QString s_dateTimeFormat;
QString s_dateFormat;

enum JsonToken {
    TokenNone = 0, ///< end of text, or anything unknown
    TokenCurlyOpen = 1,
    TokenCurlyClose = 2,
    TokenSquareOpen = 3,
    TokenSquareClose = 4,
    TokenColon = 5,
    TokenComma = 6,
    TokenString = 7,
    TokenNumber = 8,
    TokenTrue = 9,
    TokenFalse = 10,
    TokenNull = 11,
};

bool isNumberCharacter(QChar c)
{
    switch (c.unicode()) {
    case '+':
    case '-':
    case '.':
    case 'e':
    case 'E':
        return true;
    default:
        return c >= QLatin1Char('0') && c <= QLatin1Char('9');
    }
}

int hexDigit(QChar c)
{
    const ushort u = c.unicode();
    if (u >= '0' && u <= '9')
        return u - '0';
    if (u >= 'a' && u <= 'f')
        return u - 'a' + 10;
    if (u >= 'A' && u <= 'F')
        return u - 'A' + 10;
    return -1;
}

/// One pass over a text.
class Reader {
public:
    explicit Reader(const QString& text)
        : m_at(text.constData())
        , m_end(m_at + text.size())
    {
    }

    QVariant readValue();
    bool isSuccess() const { return m_success; }

private:
    void skipWhitespace();
    /// What comes next, which m_at then stands at.
    JsonToken peekToken();
    bool isWord(QLatin1String word) const;

    QVariant fail();
    QVariant readObject();
    QVariant readArray();
    QVariant readString();
    QVariant readNumber();
    bool readEscape(QString& result);

    const QChar* m_at;
    const QChar* const m_end;
    int m_depth = 0;
    bool m_success = true;
};

void Reader::skipWhitespace()
{
    for (; m_at != m_end; ++m_at) {
        switch (m_at->unicode()) {
        case ' ':
        case '\t':
        case '\n':
        case '\r':
            break;
        default:
            return;
        }
    }
}

bool Reader::isWord(QLatin1String word) const
{
    return m_end - m_at >= word.size()
        && std::equal(word.begin(), word.end(), m_at,
                      [](char expected, QChar c) { return c == QLatin1Char(expected); });
}

JsonToken Reader::peekToken()
{
    skipWhitespace();
    if (m_at == m_end)
        return TokenNone;
    switch (m_at->unicode()) {
    case '{':
        return TokenCurlyOpen;
    case '}':
        return TokenCurlyClose;
    case '[':
        return TokenSquareOpen;
    case ']':
        return TokenSquareClose;
    case ':':
        return TokenColon;
    case ',':
        return TokenComma;
    case '"':
        return TokenString;
    case 't':
        return isWord(QLatin1String("true")) ? TokenTrue : TokenNone;
    case 'f':
        return isWord(QLatin1String("false")) ? TokenFalse : TokenNone;
    case 'n':
        return isWord(QLatin1String("null")) ? TokenNull : TokenNone;
    default:
        return *m_at == QLatin1Char('-') || (*m_at >= QLatin1Char('0') && *m_at <= QLatin1Char('9'))
            ? TokenNumber
            : TokenNone;
    }
}

QVariant Reader::fail()
{
    m_success = false;
    return QVariant();
}

QVariant Reader::readValue()
{
    switch (peekToken()) {
    case TokenCurlyOpen:
    case TokenSquareOpen: {
        if (m_depth == JsonCodec::maximumDepth)
            return fail();
        ++m_depth;
        const QVariant container = *m_at == QLatin1Char('{') ? readObject() : readArray();
        --m_depth;
        return container;
    }
    case TokenString:
        return readString();
    case TokenNumber:
        return readNumber();
    case TokenTrue:
        m_at += 4;
        return true;
    case TokenFalse:
        m_at += 5;
        return false;
    case TokenNull:
        m_at += 4;
        return QVariant();
    default:
        return fail();
    }
}

QVariant Reader::readObject()
{
    ++m_at;
    QVariantMap map;
    for (;;) {
        switch (peekToken()) {
        case TokenNone:
            m_success = false;
            return QVariantMap();
        case TokenComma:
            ++m_at;
            continue;
        case TokenCurlyClose:
            ++m_at;
            return map;
        default:
            break;
        }

        // On purpose without a look at the character that opens the key.
        const QString key = readString().toString();
        if (!m_success)
            return QVariantMap();
        if (peekToken() != TokenColon) {
            m_success = false;
            return QVariantMap();
        }
        ++m_at;
        QVariant value = readValue();
        if (!m_success)
            return QVariantMap();
        map[key] = std::move(value);
    }
}

QVariant Reader::readArray()
{
    ++m_at;
    QVariantList list;
    for (;;) {
        switch (peekToken()) {
        case TokenNone:
            m_success = false;
            return QVariantList();
        case TokenComma:
            ++m_at;
            continue;
        case TokenSquareClose:
            ++m_at;
            return list;
        default:
            break;
        }
        const QVariant value = readValue();
        if (!m_success)
            return QVariantList();
        list.append(value);
    }
}

QVariant Reader::readString()
{
    QString result(QLatin1String(""));
    const QChar* run = ++m_at;
    for (; m_at != m_end; ++m_at) {
        if (*m_at == QLatin1Char('"')) {
            result.append(run, int(m_at - run));
            ++m_at;
            return result;
        }
        if (*m_at != QLatin1Char('\\'))
            continue;
        result.append(run, int(m_at - run));
        ++m_at;
        if (m_at == m_end || !readEscape(result))
            return fail();
        run = m_at + 1;
    }
    return fail();
}

/// Reads what follows a backslash, and stops at its last character.
bool Reader::readEscape(QString& result)
{
    switch (m_at->unicode()) {
    case '"':
    case '\\':
    case '/':
        result += *m_at;
        return true;
    case 'b':
        result += QLatin1Char('\b');
        return true;
    case 'f':
        result += QLatin1Char('\f');
        return true;
    case 'n':
        result += QLatin1Char('\n');
        return true;
    case 'r':
        result += QLatin1Char('\r');
        return true;
    case 't':
        result += QLatin1Char('\t');
        return true;
    case 'u':
        break;
    default:
        // An unknown escape is dropped on purpose.
        return true;
    }

    if (m_end - m_at <= 4)
        return false;
    int unit = 0;
    for (int i = 1; i <= 4; ++i) {
        const int digit = hexDigit(m_at[i]);
        unit = digit < 0 || unit < 0 ? -1 : unit * 16 + digit;
    }
    result += QChar(ushort(std::max(unit, 0)));
    m_at += 4;
    return true;
}

QVariant Reader::readNumber()
{
    const QChar* const first = m_at;
    m_at = std::find_if_not(first, m_end, isNumberCharacter);
    const QString number(first, int(m_at - first));

    bool isNumber = false;
    if (number.contains(QLatin1Char('.'))) {
        const double value = number.toDouble(&isNumber);
        return isNumber ? value : 0.0;
    }
    if (number.startsWith(QLatin1Char('-'))) {
        const int value = number.toInt(&isNumber);
        if (isNumber)
            return value;
        const qlonglong longValue = number.toLongLong(&isNumber);
        return isNumber ? QVariant(longValue) : QVariant(number);
    }
    const uint value = number.toUInt(&isNumber);
    if (isNumber)
        return value;
    const qulonglong longValue = number.toULongLong(&isNumber);
    return isNumber ? QVariant(longValue) : QVariant(number);
}

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
    case QMetaType::QByteArray:
        writeString(data.toString());
        return true;
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
        // On purpose by the format of date and time, here too.
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

QVariant JsonCodec::parse(const QString& json)
{
    bool success = true;
    return parse(json, success);
}

QVariant JsonCodec::parse(const QString& json, bool& success)
{
    success = true;
    if (json.isNull())
        return QVariant();
    Reader reader(json);
    QVariant data = reader.readValue();
    success = reader.isSuccess();
    return data;
}

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
