// SPDX-License-Identifier: GPL-3.0-or-later
#include "service/ServiceReply.h"
#include "support/TestMain.h"

#include <QTextCodec>

class tst_ServiceReply : public QObject {
    Q_OBJECT

private slots:
    void refusal();
    void teamsAndTasks();
    void taskInfo();
    void moments();
    void dayTotals();
};

void tst_ServiceReply::refusal()
{
    const QString noDatabase = QStringLiteral("Не могу соединится с базой данных");
    const QByteArray badLogin = R"({"status":-1,"err_msg":"Invalid email|pswd|client"})";
    const QVector<QPair<QByteArray, int>> codes{
        {badLogin, 0},
        {badLogin + "\n", 6},
        {R"({"status":"error","message":"x"})", 6},
        {"\t<!DOCTYPE html><html>", 4},
        {QTextCodec::codecForName("Windows-1251")->fromUnicode(noDatabase), 5}};
    for (const auto& [body, code] : codes)
        QVERIFY2(ServiceReply::refusal(body) == code, body.constData());
    for (const QByteArray& body : {noDatabase.toUtf8(), QByteArray("<!DOCTYPE html><html>"),
                                   QByteArray(R"({"status": -1})"), QByteArray()})
        QVERIFY2(!ServiceReply::refusal(body), body.constData());
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
    QCOMPARE(entries[0].team.id + entries[0].team.name, QStringLiteral("17Редакция"));
    QCOMPARE(entries[0].tasks.size(), 3);
    const Task first = entries[0].tasks[0];
    QCOMPARE(first.title + first.block + QString::number(first.importance),
             QStringLiteral("<b>a</b>12"));
    QCOMPARE(first.deadline, QDateTime({2020, 5, 12}, {8, 24, 59}));
    QVERIFY(!first.lastComment.isValid());
    QCOMPARE(entries[0].tasks[1].id, QStringLiteral("6"));
    QVERIFY(entries[0].tasks[2].hasSameContent(unassignedTask()));
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
    QCOMPARE(info.id + info.executorName + info.creatorName + info.auditorName,
             QStringLiteral("12ЭСА"));
    QCOMPARE(info.deadline, QDateTime({2020, 1, 2}, {3, 4, 5}));
    QCOMPARE(info.files.size(), 2);
    QCOMPARE(info.files[0].filename + info.files[0].filenameOrig + info.files[0].size,
             QStringLiteral("fomany"));
    const TextTask text = info.texts.value(0);
    QCOMPARE(text.text + text.title + text.minCount + text.task, QStringLiteral("xy3000z"));
    QCOMPARE(text.page, QUrl(QStringLiteral("http://a/b?c=d")));
    QCOMPARE(text.keywords[0].count + text.keywords[0].count2, QStringLiteral("12"));
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

void tst_ServiceReply::dayTotals()
{
    const QVector<QPair<const char*, QTime>> times{
        {"90", {1, 30}},        {"\"90\"", {1, 30}},     {"1500", {1, 0}}, {"-60", {23, 0}},
        {"2147483647", {2, 7}}, {"99999999999", {0, 0}}, {"1.5", {0, 0}}};
    for (const auto& [value, time] : times) {
        const auto totals = ServiceReply::dayTotals(QByteArray("{\"today_total\":") + value + "}");
        QVERIFY2(totals.total == time && totals.active == QTime(0, 0), value);
    }
}

TESSAPORT_TEST_MAIN(tst_ServiceReply, QCoreApplication)

#include "tst_servicereply.moc"
