// SPDX-License-Identifier: GPL-3.0-or-later
#include "service/JsonCodec.h"
#include "support/TestMain.h"

#include <QDateTime>
#include <QRandomGenerator>

#include <limits>

Q_DECLARE_METATYPE(QVariant)

struct Opaque {
    int value = 0;
};
Q_DECLARE_METATYPE(Opaque)

class TestJsonCodec : public QObject {
    Q_OBJECT

private slots:
    void reads_data();
    void reads();
    void tellsBrokenText_data();
    void tellsBrokenText();
    void boundsNesting();
    void readsLongTextInOnePass();
    void writes_data();
    void writes();
    void refusesWhatCannotBeWritten();
    void writesPrettyText();
    void writesDatesInChosenFormats();
    void readsBackWhatItWrote();
    void survivesRandomText();
};

namespace {

QVariant list(const QVariantList& values)
{
    return values;
}
QVariant map(const QVariantMap& values)
{
    return values;
}

} // namespace

void TestJsonCodec::reads_data()
{
    QTest::addColumn<QString>("json");
    QTest::addColumn<QVariant>("expected");

    const auto row = [](const char* name, const QString& json, const QVariant& expected) {
        QTest::newRow(name) << json << expected;
    };
    row("null text", QString(), QVariant());
    row("null", QStringLiteral("null"), QVariant());
    row("true alone", QStringLiteral("true"), true);
    row("false alone", QStringLiteral(" \t\r\nfalse"), false);
    row("rest is ignored", QStringLiteral("12abc"), 12u);
    row("word runs on", QStringLiteral("truest"), true);

    row("zero", QStringLiteral("0"), 0u);
    row("largest uint", QStringLiteral("4294967295"), std::numeric_limits<uint>::max());
    row("beyond uint", QStringLiteral("4294967296"), Q_UINT64_C(4294967296));
    row("largest", QStringLiteral("18446744073709551615"), std::numeric_limits<qulonglong>::max());
    row("beyond all", QStringLiteral("18446744073709551616"),
        QStringLiteral("18446744073709551616"));
    row("smallest int", QStringLiteral("-2147483648"), std::numeric_limits<int>::min());
    row("below int", QStringLiteral("-2147483649"), Q_INT64_C(-2147483649));
    row("below all", QStringLiteral("-9223372036854775809"),
        QStringLiteral("-9223372036854775809"));
    row("leading zeros", QStringLiteral("007"), 7u);
    row("minus alone", QStringLiteral("-"), QStringLiteral("-"));
    row("run without form", QStringLiteral("1-2+E"), QStringLiteral("1-2+E"));
    row("exponent, no point", QStringLiteral("1e5"), QStringLiteral("1e5"));
    row("exponent and point", QStringLiteral("1.5e3"), 1500.0);
    row("negative double", QStringLiteral("-0.25"), -0.25);
    row("two points", QStringLiteral("1.2.3"), 0.0);

    row("empty string", QStringLiteral("\"\""), QString(QLatin1String("")));
    row("escapes", QStringLiteral(R"("\"\\\/\b\f\n\r\t")"), QStringLiteral("\"\\/\b\f\n\r\t"));
    row("unknown escape", QStringLiteral(R"("a\qb")"), QStringLiteral("ab"));
    row("code units", QStringLiteral(R"("\u0416\uD83D\ude00!")"), QStringLiteral("Ж😀!"));
    row("no code unit", QStringLiteral(R"("\u+12fx")"),
        QString(QChar(QChar::Null)) + QLatin1Char('x'));
    row("raw controls", QStringLiteral("\"a\nb\x01\""), QStringLiteral("a\nb\x01"));
    row("text around escapes", QStringLiteral(R"("Задача \"1\" готова")"),
        QStringLiteral("Задача \"1\" готова"));

    row("empty array", QStringLiteral("[ ]"), list({}));
    row("any commas", QStringLiteral("[,1,,2,]"), list({1u, 2u}));
    row("null element", QStringLiteral("[null true]"), list({QVariant(), true}));
    row("empty object", QStringLiteral("{,}"), map({}));
    row("no comma", QStringLiteral(R"({"a":1 "b":2})"),
        map({{QStringLiteral("a"), 1u}, {QStringLiteral("b"), 2u}}));
    row("last value wins", QStringLiteral(R"({"a":1,"a":null})"),
        map({{QStringLiteral("a"), QVariant()}}));
    row("any opening of a key", QStringLiteral(R"({1a":1,[b":2})"),
        map({{QStringLiteral("a"), 1u}, {QStringLiteral("b"), 2u}}));
    row("nested", QStringLiteral(R"({"t":[{"x":{}},[[]]]} rest)"),
        map({{QStringLiteral("t"),
              list({map({{QStringLiteral("x"), map({})}}), list({list({})})})}}));
}

void TestJsonCodec::reads()
{
    QFETCH(QString, json);
    QFETCH(QVariant, expected);
    bool success = false;
    const QVariant data = JsonCodec::parse(json, success);
    QVERIFY(success);
    QCOMPARE(data.userType(), expected.userType());
    QCOMPARE(data, expected);
}

void TestJsonCodec::tellsBrokenText_data()
{
    QTest::addColumn<QString>("json");
    QTest::addColumn<QVariant>("expected");

    const char* const invalid[] = {
        "",   "   ",       "nul",  "tru",   "fals",     "True",     "}",
        "]",  ":",         ",",    "+1",    ".5",       "\"no end", "\"\\",
        "\"", "\"\\u12\"", "\xD0", "<html", "\"\\u123", "'a':'b'",  "\xC2\xA0\"a"};
    for (const char* json : invalid)
        QTest::newRow(json) << QString::fromUtf8(json) << QVariant();
    const char* const emptyMap[] = {"{",          "{\"a\":1", "{\"a\"}",        "{\"a\" 1}",
                                    "{\"a\":}",   "{a:1}",    "{\"a\":1,\"b",   "{\"a\":1,\"b\":[}",
                                    "{\"a\":nul", "{:}",      "{\"a\":{\"b\"}}"};
    for (const char* json : emptyMap)
        QTest::newRow(json) << QString::fromUtf8(json) << map({});
    const char* const emptyList[] = {"[", "[1,2", "[1,:]", "[1}", "[1,[2,[}]]", "[{\"a\"}]"};
    for (const char* json : emptyList)
        QTest::newRow(json) << QString::fromUtf8(json) << list({});
}

void TestJsonCodec::tellsBrokenText()
{
    QFETCH(QString, json);
    QFETCH(QVariant, expected);
    bool success = true;
    QCOMPARE(JsonCodec::parse(json, success), expected);
    QVERIFY(!success);
}

void TestJsonCodec::boundsNesting()
{
    const auto nested = [](const QString& open, const QString& close, int depth) {
        return open.repeated(depth) + close.repeated(depth);
    };
    constexpr int most = JsonCodec::maximumDepth;
    bool success = false;
    const QVariant deepest =
        JsonCodec::parse(nested(QStringLiteral("["), QStringLiteral("]"), most), success);
    QVERIFY(success);
    QCOMPARE(JsonCodec::serialize(deepest).size(), 2 * most);
    QVERIFY(JsonCodec::serialize(QVariantList{deepest}).isNull());
    QCOMPARE(JsonCodec::parse(nested(QStringLiteral("["), QStringLiteral("]"), most + 1), success),
             list({}));
    QVERIFY(!success);
    JsonCodec::parse(QStringLiteral("{\"a\":").repeated(1000000), success);
    QVERIFY(!success);
}

void TestJsonCodec::readsLongTextInOnePass()
{
    const int million = 1000000;
    QCOMPARE(
        JsonCodec::parse(QLatin1Char('[') + QString(million, QLatin1Char(',')) + QLatin1Char(']')),
        list({}));
    const QString text(5 * million, QLatin1Char('x'));
    QCOMPARE(JsonCodec::parse(QLatin1Char('"') + text + QLatin1Char('"')).toString(), text);
    QCOMPARE(JsonCodec::parse(QLatin1Char('"') + QStringLiteral("\\n").repeated(million)
                              + QLatin1Char('"'))
                 .toString(),
             QString(million, QLatin1Char('\n')));
    QCOMPARE(JsonCodec::parse(QString(million, QLatin1Char('9'))).toString().size(), million);
}

void TestJsonCodec::writes_data()
{
    QTest::addColumn<QVariant>("data");
    QTest::addColumn<QByteArray>("expected");

    const auto row = [](const char* name, const QVariant& data, const char* expected) {
        QTest::newRow(name) << data << QByteArray(expected);
    };
    row("invalid", QVariant(), "null");
    row("empty containers", list({list({}), map({}), QStringList(), QVariantHash()}),
        "[[],{},[],{}]");
    row("string list", QStringList{QStringLiteral("a"), QStringLiteral("Ж")}, R"(["a","Ж"])");
    row("map by key", map({{QStringLiteral("b"), 1}, {QStringLiteral("a"), QVariant()}}),
        R"({"a":null,"b":1})");
    row("hash", QVariantHash{{QStringLiteral("a\n"), true}}, R"({"a\n":true})");
    row("null string", QString(), R"("")");
    row("bytes", QByteArray("\"b\""), R"("\"b\"")");
    row("escapes", QStringLiteral("\\\"\b\f\n\r\t/\x01%1😀"), "\"\\\\\\\"\\b\\f\\n\\r\\t/\x01%1😀\"");
    row("six digits", 1234567.0, "1.23457e+06");
    row("whole double", 3.0, "3.0");
    row("not a number", std::numeric_limits<double>::quiet_NaN(), "nan.0");
    row("float counts as integer", 2.6f, "3");
    row("bool", false, "false");
    row("largest", std::numeric_limits<qulonglong>::max(), "18446744073709551615");
    row("smallest", std::numeric_limits<qlonglong>::min(), "-9223372036854775808");
    row("int", -5, "-5");
    row("character counts as integer", QChar(QLatin1Char('A')), "65");
    row("date and time", QDateTime({2020, 5, 12}, {8, 24, 59}), R"("Tue May 12 08:24:59 2020")");
    row("date", QDate(2020, 5, 12), R"("Tue May 12 2020")");
    row("time", QTime(8, 24, 59), R"("08:24:59.000")");
}

void TestJsonCodec::writes()
{
    QFETCH(QVariant, data);
    QFETCH(QByteArray, expected);
    bool success = false;
    QCOMPARE(JsonCodec::serialize(data, success), expected);
    QVERIFY(success);
}

void TestJsonCodec::refusesWhatCannotBeWritten()
{
    const QVariant opaque = QVariant::fromValue(Opaque{});
    const QVariantMap inMap{{QStringLiteral("a"), 1}, {QStringLiteral("b"), opaque}};
    const QVariant refused[] = {opaque, list({1, opaque}), inMap, list({inMap, list({})})};
    for (const QVariant& data : refused) {
        bool success = true;
        QVERIFY(JsonCodec::serialize(data, success).isNull());
        QVERIFY(!success);
    }
}

void TestJsonCodec::writesPrettyText()
{
    JsonCodec::setPrettyPrint(true);
    const QByteArray text = JsonCodec::serialize(
        map({{QStringLiteral("a"), list({1, list({})})}, {QStringLiteral("b"), map({})}}));
    JsonCodec::setPrettyPrint(false);
    QCOMPARE(text, QByteArray("{\n    \"a\": [\n        1,\n        []\n    ],\n    \"b\": {}\n}"));
}

void TestJsonCodec::writesDatesInChosenFormats()
{
    const QVariant dates = list({QDateTime({2020, 5, 12}, {8, 24, 59}), QDate(2020, 5, 12)});
    JsonCodec::setDateFormat(QStringLiteral("dd.MM.yyyy"));
    const QByteArray dateFormatAlone = JsonCodec::serialize(dates);
    JsonCodec::setDateTimeFormat(QStringLiteral("hh:mm"));
    const QByteArray bothFormats = JsonCodec::serialize(dates);
    JsonCodec::setDateFormat(QString());
    JsonCodec::setDateTimeFormat(QString());
    QCOMPARE(dateFormatAlone, QByteArray(R"(["Tue May 12 08:24:59 2020","Tue May 12 2020"])"));
    QCOMPARE(bothFormats, QByteArray(R"(["08:24","12.05.2020"])"));
}

void TestJsonCodec::readsBackWhatItWrote()
{
    QString everyUnit;
    for (int unit = 1; unit < 0xD800; ++unit)
        everyUnit += QChar(unit);
    const QVariant data =
        map({{QStringLiteral("\"ключ\"\n"), everyUnit},
             {QStringLiteral("list"),
              list({QStringLiteral("Задача «Отчёт»\\"), 1.5, -7, 7u, QVariant()})}});
    QCOMPARE(JsonCodec::parse(QString::fromUtf8(JsonCodec::serialize(data))), data);

    const QVariant loneSurrogate = QString(QChar(0xD800)) + QLatin1Char('"');
    QCOMPARE(JsonCodec::parse(QString::fromUtf8(JsonCodec::serialize(loneSurrogate)))
                 .toString()
                 .right(1),
             QStringLiteral("\""));
}

void TestJsonCodec::survivesRandomText()
{
    const QString pieces[] = {
        QStringLiteral("{"),     QStringLiteral("}"),      QStringLiteral("["),
        QStringLiteral("]"),     QStringLiteral(":"),      QStringLiteral(","),
        QStringLiteral("\""),    QStringLiteral("\\"),     QStringLiteral("\\u00"),
        QStringLiteral("\\uD8"), QStringLiteral("true"),   QStringLiteral("fals"),
        QStringLiteral("null"),  QStringLiteral("-1.5"),   QStringLiteral("42"),
        QStringLiteral(" "),     QStringLiteral("\"k\":"), QStringLiteral("Ж"),
    };
    QRandomGenerator random(20200512);
    int whole = 0;
    for (int round = 0; round < 20000; ++round) {
        QString text;
        for (int i = random.bounded(40); i >= 0; --i)
            text += pieces[random.bounded(int(std::size(pieces)))];
        bool success = false;
        const QVariant data = JsonCodec::parse(text, success);
        if (!success) {
            QVERIFY2(!data.isValid() || data == list({}) || data == map({}), qUtf8Printable(text));
            continue;
        }
        ++whole;
        const QByteArray written = JsonCodec::serialize(data);
        const QString readAgain = QString::fromUtf8(written.constData(), written.size());
        QCOMPARE(JsonCodec::serialize(JsonCodec::parse(readAgain)), written);
    }
    QVERIFY(whole > 1000);
}

TESSAPORT_TEST_MAIN(TestJsonCodec, QCoreApplication)

#include "tst_jsoncodec.moc"
