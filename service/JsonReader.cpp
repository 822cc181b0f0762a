// SPDX-License-Identifier: GPL-3.0-or-later
#include "service/JsonCodec.h"

#include <QSet>

#include <algorithm>

namespace {

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

/// The end when there is none.
const QChar* find(QLatin1Char c, const QChar* begin, const QChar* end)
{
    const auto index = QStringView(begin, end).indexOf(c);
    return index < 0 ? end : begin + index;
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
    /// Lists repeat the keys of their elements, which then share one text.
    QSet<QString> m_keys;
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

        // Without a look at the character that opens the key; see docs/decisions.md.
        const QString key = *m_keys.insert(readString().toString());
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
    ++m_at;
    const QChar* quote = nullptr;
    for (;;) {
        // The quote is looked for anew only behind an escaped one, so that each character is
        // looked at once, however many escapes there are.
        if (!quote || quote < m_at)
            quote = find(QLatin1Char('"'), m_at, m_end);
        const QChar* const backslash = find(QLatin1Char('\\'), m_at, quote);
        // Most texts have no escape, and no room to grow is left behind them.
        if (result.isEmpty())
            result = QString(m_at, int(backslash - m_at));
        else
            result.append(m_at, int(backslash - m_at));
        m_at = backslash;
        if (m_at == m_end)
            return fail();
        ++m_at;
        if (backslash == quote)
            return result;
        if (m_at == m_end || !readEscape(result))
            return fail();
        ++m_at;
    }
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
        // An unknown escape is dropped; see docs/decisions.md.
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

QVariant JsonCodec::parseUtf8(const QByteArray& json)
{
    return parse(QString::fromUtf8(json.constData(), json.size()));
}
