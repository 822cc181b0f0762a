// SPDX-License-Identifier: GPL-3.0-or-later
#include "service/ServiceReply.h"
#include "support/TestMain.h"

#include <QTextCodec>

class tst_ServiceReply : public QObject {
    Q_OBJECT

private slots:
    void refusal_data();
    void refusal();
    void teamsAndTasks();
    void taskInfo();
    void moments();
    void dayTotals_data();
    void dayTotals();
};

void tst_ServiceReply::refusal_data()
{
    QTest::addColumn<QByteArray>("body");
    QTest::addColumn<int>("code"); // -1: usable

    const QByteArray badLogin = R"({"status":-1,"err_msg":"Invalid email|pswd|client"})";
    QTest::newRow("bad login") << badLogin << 0;
    QTest::newRow("bad login and a line break") << badLogin + "\n" << 6;
    QTest::newRow("another refusal") << QByteArray(R"({"status":-1,"err_msg":"x"})") << 6;
    QTest::newRow("error") << QByteArray(R"({"status":"error","message":"x"})") << 6;
    QTest::newRow("page") << QByteArray("\t<!DOCTYPE html><html>") << 4;
    QTest::newRow("page without the tab") << QByteArray("<!DOCTYPE html><html>") << -1;
    const QString noDatabase = QStringLiteral("Не могу соединится с базой данных");
    QTest::newRow("no database")
        << QTextCodec::codecForName("Windows-1251")->fromUnicode(noDatabase) << 5;
    QTest::newRow("no database in UTF-8") << noDatabase.toUtf8() << -1;
    QTest::newRow("blank in the status") << QByteArray(R"({"status": -1})") << -1;
    QTest::newRow("empty") << QByteArray() << -1;
    QTest::newRow("ok") << QByteArray(R"({"status":"ok"})") << -1;
}

void tst_ServiceReply::refusal()
{
    QFETCH(QByteArray, body);
    QFETCH(int, code);
    QCOMPARE(ServiceReply::refusal(body).value_or(-1), code);
}

void tst_ServiceReply::teamsAndTasks()
{
    const auto entries = ServiceReply::teamsAndTasks(u8R"([{"id":17,"name":"Редакция","tasks":[
                {"id":"5","title":"<b>a</b>","deadline":"2020-05-12 08:24:59","block":1,
                 "last_comment":"never","importance":"2","more":null},
                {"id":6,"title":7,"deadline":"tomorrow"}]},
             {"name":"no id","tasks":[{"id":"9"}]},
             {"id":"18","name":"Пусто"}])");
    QCOMPARE(entries.size(), 2);
    QCOMPARE(entries[0].team.id, QStringLiteral("17"));
    QCOMPARE(entries[0].team.name, QStringLiteral("Редакция"));
    QCOMPARE(entries[0].tasks.size(), 3);
    const Task first = entries[0].tasks[0];
    QCOMPARE(first.title, QStringLiteral("<b>a</b>"));
    QCOMPARE(first.deadline, QDateTime({2020, 5, 12}, {8, 24, 59}));
    QCOMPARE(first.block, QStringLiteral("1"));
    QVERIFY(!first.lastComment.isValid());
    QCOMPARE(first.importance, 2);
    QCOMPARE(entries[0].tasks[1].id, QStringLiteral("6"));
    QVERIFY(!entries[0].tasks[1].deadline.isValid());
    QCOMPARE(entries[0].tasks[2].title, QStringLiteral("Прочие непоставленные задачи"));
    QCOMPARE(entries[1].tasks.size(), 1);
    QCOMPARE(entries[1].tasks[0].id, QStringLiteral("0"));

    for (const char* body : {"", "[]", "{}", "[1,2]", "<html>", "[[["})
        QVERIFY2(ServiceReply::teamsAndTasks(body).isEmpty(), body);
}

void tst_ServiceReply::taskInfo()
{
    const ServiceReply::Answer answer = ServiceReply::answer(
        u8R"({"status":"ok","message":{"id":12,"title":"Т","deadline":"2020-01-02 03:04:05",
             "text":"<a href='x'>", "executor_name":"Э","creator_name":"С","auditor_name":"А",
             "files":[{"id":1,"filename":"f","filename_orig":"o","size":"many"}, 5],
             "texts":[{"id":2,"text":"x","title":"y","min_count":3000,"page":"http://a/b?c=d",
                       "task":"z","keywords":[{"id":3,"keyword":"k","count":1,"count2":"2"}]}]}})");
    const TaskInfo info = ServiceReply::taskInfo(answer.message);
    QCOMPARE(info.id, QStringLiteral("12"));
    QCOMPARE(info.deadline, QDateTime({2020, 1, 2}, {3, 4, 5}));
    QCOMPARE(info.executorName + info.creatorName + info.auditorName, QStringLiteral("ЭСА"));
    QCOMPARE(info.files.size(), 2);
    QCOMPARE(info.files[0].filenameOrig, QStringLiteral("o"));
    QCOMPARE(info.files[0].size, QStringLiteral("many"));
    QVERIFY(info.files[1].id.isEmpty());
    QCOMPARE(info.texts.size(), 1);
    QCOMPARE(info.texts[0].minCount, QStringLiteral("3000"));
    QCOMPARE(info.texts[0].page, QUrl(QStringLiteral("http://a/b?c=d")));
    QCOMPARE(info.texts[0].keywords[0].count + info.texts[0].keywords[0].count2,
             QStringLiteral("12"));

    QVERIFY(ServiceReply::taskInfo(QStringLiteral("text")).id.isEmpty());
    QVERIFY(ServiceReply::taskInfo(QVariantList{1}).files.isEmpty());
}

void tst_ServiceReply::moments()
{
    const char* const texts[] = {
        "2020-02-29 23:59:59", "2021-02-29 00:00:00",  "2020-05-12 24:00:00",
        "2020-05-12 08:60:00", "2020-05-12T08:24:59",  "2020-05-12 08:24:5x",
        " 020-05-12 08:24:59", "+020-05-12 08:24:59",  "0000-05-12 08:24:59",
        "2020-05-12  8:24:59", "2020-05-12 08:24:590", "٢٠٢٠-05-12 08:24:59"};
    for (const char* text : texts) {
        const QVariantMap message{{QStringLiteral("deadline"), QString::fromUtf8(text)}};
        const QString format = QStringLiteral("yyyy-MM-dd HH:mm:ss");
        const QDateTime expected = QDateTime::fromString(QString::fromUtf8(text), format);
        QVERIFY2(ServiceReply::taskInfo(message).deadline == expected, text);
    }
}

void tst_ServiceReply::dayTotals_data()
{
    QTest::addColumn<QByteArray>("value");
    QTest::addColumn<QTime>("time");
    QTest::newRow("number") << QByteArray("90") << QTime(1, 30);
    QTest::newRow("text") << QByteArray(R"("90")") << QTime(1, 30);
    QTest::newRow("a day") << QByteArray("1440") << QTime(0, 0);
    QTest::newRow("more than a day") << QByteArray("1500") << QTime(1, 0);
    QTest::newRow("negative") << QByteArray("-60") << QTime(23, 0);
    QTest::newRow("the largest number") << QByteArray("2147483647") << QTime(2, 7);
    QTest::newRow("too large") << QByteArray("99999999999") << QTime(0, 0);
    QTest::newRow("fraction") << QByteArray("1.5") << QTime(0, 0);
    QTest::newRow("null") << QByteArray("null") << QTime(0, 0);
}

void tst_ServiceReply::dayTotals()
{
    QFETCH(QByteArray, value);
    QFETCH(QTime, time);
    const auto totals = ServiceReply::dayTotals("{\"today_total\":" + value + "}");
    QCOMPARE(totals.total, time);
    QCOMPARE(totals.active, QTime(0, 0));
}

TESSAPORT_TEST_MAIN(tst_ServiceReply, QCoreApplication)

#include "tst_servicereply.moc"
