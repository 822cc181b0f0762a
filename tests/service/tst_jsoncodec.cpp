// SPDX-License-Identifier: GPL-3.0-or-later
#include "service/JsonCodec.h"
#include "support/TestMain.h"

#include <QPoint>
#include <QUrl>

#include <limits>

class TestJsonCodec : public QObject {
    Q_OBJECT

private slots:
    void reads();
    void tellsBrokenText();
    void readsDeepAndLongText();
    void writes();
    void refusesWhatCannotBeWritten();
    void writesInChosenFormats();
};

namespace {

const QString a = QStringLiteral("a");
const QString b = QStringLiteral("b");

const auto list = [](const QVariantList& values) { return QVariant(values); };
const auto map = [](const QVariantMap& values) { return QVariant(values); };

} // namespace

void TestJsonCodec::reads()
{
    const QPair<const char*, QVariant> rows[] = {
        {"null", QVariant()},
        {" \t\r\nfalse", false},
        {"truest", true},
        {"4294967295", std::numeric_limits<uint>::max()},
        {"4294967296", Q_UINT64_C(4294967296)},
        {"18446744073709551615", std::numeric_limits<qulonglong>::max()},
        {"18446744073709551616", QStringLiteral("18446744073709551616")},
        {"-2147483648", std::numeric_limits<int>::min()},
        {"-9223372036854775808", std::numeric_limits<qlonglong>::min()},
        {"-9223372036854775809", QStringLiteral("-9223372036854775809")},
        {"-", QStringLiteral("-")},
        {"12abc", 12u},
        {"1e5", QStringLiteral("1e5")},
        {"1.5E+3", 1500.0},
        {"1500.0e-3", 1.5},
        {"1.2.3", 0.0},
        {R"("\"\\\/\b\f\n\r\t")", QStringLiteral("\"\\/\b\f\n\r\t")},
        {R"("a\qЖ\u0416\uD83D\ude00!")", QStringLiteral("aЖЖ😀!")},
        {R"("\uAF09\uaf90")", QString(QChar(0xAF09)) + QChar(0xAF90)},
        {R"("\u+12fx")", QString(QChar(QChar::Null)) + QLatin1Char('x')},
        {"\"a\nb\x01\"", QStringLiteral("a\nb\x01")},
        {"[,1,,null true,]", list({1u, QVariant(), true})},
        {R"({"a":1 "b":2,"a":null})", map({{a, QVariant()}, {b, 2u}})},
        {R"({1a":1,[b":2})", map({{a, 1u}, {b, 2u}})},
        {R"({"a":[{"b":{}},[[]]]} rest)",
         map({{a, list({map({{b, map({})}}), list({list({})})})}})},
    };
    for (const auto& [json, expected] : rows) {
        bool success = false;
        const QVariant data = JsonCodec::parse(QString::fromUtf8(json), success);
        QVERIFY2(success && data.userType() == expected.userType() && data == expected, json);
    }
    bool success = false;
    QVERIFY(!JsonCodec::parse(QString(), success).isValid() && success);
}

void TestJsonCodec::tellsBrokenText()
{
    const QPair<QVariant, QList<const char*>> rows[] = {
        {QVariant(), {"",         "   ",  "nul",       "tru",   "trux",    "falsy",      "nulx",
                      "True",     "}",    "]",         ":",     ",",       "+1",         ".5",
                      "\"no end", "\"\\", "\"\\u12\"", "<html", "'a':'b'", "\xC2\xA0\"a"}},
        {map({}),
         {"{", "{\"a\":1", "{\"a\"}", "{\"a\" 1}", "{\"a\":}", "{a:1}", "{\"a\":1,\"b",
          "{\"a\":1,\"b\":[}", "{\"a\":nul", "{:}"}},
        {list({}), {"[", "[1,2", "[1,:]", "[1}", "[1,[2,[}]]", "[{\"a\"}]"}},
    };
    for (const auto& [expected, texts] : rows) {
        for (const char* json : texts) {
            bool success = true;
            const QVariant data = JsonCodec::parse(QString::fromUtf8(json), success);
            QVERIFY2(!success && data == expected, json);
        }
    }
}

void TestJsonCodec::readsDeepAndLongText()
{
    constexpr int most = JsonCodec::maximumDepth;
    bool success = true;
    for (const auto& [open, close] : {std::pair("[", "]"), std::pair(R"({"a":)", "}")}) {
        const QByteArray empty = QByteArray(1, *open) + close;
        const QByteArray deepest =
            QByteArray(open).repeated(most - 1) + empty + QByteArray(close).repeated(most - 1);
        const QVariant data = JsonCodec::parse(QString::fromLatin1(deepest));
        QCOMPARE(JsonCodec::serialize(data), deepest);
        QVERIFY(JsonCodec::serialize(list({data})).isNull());
        QVERIFY(JsonCodec::serialize(map({{a, data}})).isNull());
        QVERIFY(JsonCodec::serialize(QVariantHash{{a, data}}).isNull());
        JsonCodec::parse(QString::fromLatin1('[' + deepest + ']'), success);
        QVERIFY(!success);
    }
    JsonCodec::parse(QStringLiteral("{\"a\":").repeated(1000000), success);
    QVERIFY(!success);
    const QString escapes = QStringLiteral("\\n").repeated(1000000);
    const QVariant text = JsonCodec::parse(QLatin1Char('"') + escapes + QLatin1Char('"'));
    QCOMPARE(text.toString().size(), 1000000);
}

void TestJsonCodec::writes()
{
    const QPair<QVariant, const char*> rows[] = {
        {QVariant(), "null"},
        {list({list({}), map({}), QStringList(), QVariantHash()}), "[[],{},[],{}]"},
        {map({{b, 1}, {a, QVariant()}}), R"({"a":null,"b":1})"},
        {QVariantHash{{QStringLiteral("a\n"), true}}, R"({"a\n":true})"},
        {QStringLiteral("\\\"\b\f\n\r\t/\x01%1😀"), "\"\\\\\\\"\\b\\f\\n\\r\\t/\x01%1😀\""},
        {QByteArray("Ж"), "\"Ж\""},
        {QStringList{b, a}, R"(["b","a"])"},
        {1234567.0, "1.23457e+06"},
        {3.0, "3.0"},
        {-0.5, "-0.5"},
        {false, "false"},
        {std::numeric_limits<double>::quiet_NaN(), "nan.0"},
        {2.6f, "3"},
        {std::numeric_limits<qulonglong>::max(), "18446744073709551615"},
        {std::numeric_limits<qlonglong>::min(), "-9223372036854775808"},
        {QChar(QLatin1Char('A')), "65"},
        {QDateTime({2020, 5, 12}, {8, 24, 59}), R"("Tue May 12 08:24:59 2020")"},
        {QTime(8, 24, 59), R"("08:24:59.000")"},
        {QUrl(QStringLiteral("https://localhost/?a=%D0%96")), R"("https://localhost/?a=Ж")"},
    };
    for (const auto& [data, expected] : rows)
        QCOMPARE(JsonCodec::serialize(data), QByteArray(expected));
    QCOMPARE(JsonCodec::serialize(QByteArray("a\0b", 3)), QByteArray("\"a\0b\"", 5));
}

void TestJsonCodec::refusesWhatCannotBeWritten()
{
    const QVariant point = QPoint();
    for (const QVariant& data : {point, list({1, point}), list({map({{a, 1}, {b, point}}), 1})}) {
        bool success = true;
        QVERIFY(JsonCodec::serialize(data, success).isNull());
        QVERIFY(!success);
    }
}

void TestJsonCodec::writesInChosenFormats()
{
    const QDateTime moment({2020, 5, 12}, {8, 24, 59});
    JsonCodec::setDateFormat(QStringLiteral("dd.MM.yyyy"));
    const QByteArray byDateFormat = JsonCodec::serialize(moment.date());
    JsonCodec::setDateTimeFormat(QStringLiteral("hh:mm"));
    JsonCodec::setPrettyPrint(true);
    const QByteArray pretty = JsonCodec::serialize(
        list({moment, moment.date(), map({{a, list({1, map({})})}, {b, list({})}})}));
    JsonCodec::setPrettyPrint(false);
    JsonCodec::setDateFormat(QString());
    JsonCodec::setDateTimeFormat(QString());

    QCOMPARE(byDateFormat, QByteArray(R"("Tue May 12 2020")"));
    QCOMPARE(pretty, QByteArray(R"([
    "08:24",
    "12.05.2020",
    {
        "a": [
            1,
            {}
        ],
        "b": []
    }
])"));
}

TESSAPORT_TEST_MAIN(TestJsonCodec, QCoreApplication)

#include "tst_jsoncodec.moc"
