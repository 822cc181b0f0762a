// SPDX-License-Identifier: GPL-3.0-or-later
#include "service/ReportFile.h"
#include "service/ServiceReply.h"
#include "service/WaitingReports.h"
#include "support/Files.h"
#include "support/TestMain.h"

#include <QTextCodec>

/// What the service is read as, and what a report is written as.
class ServiceFormsTest : public QObject {
    Q_OBJECT

private slots:
    void refusal()
    {
        const QString noDatabase = QStringLiteral("Не могу соединится с базой данных");
        const QByteArray badLogin = R"({"status":-1,"err_msg":"Invalid email|pswd|client"})";
        const QVector<QPair<QByteArray, ResultCode>> codes{
            {badLogin, InvalidCredentials},
            {badLogin + "\n", UnknownError},
            {R"({"status":"error","message":"x"})", UnknownError},
            {"\t<!DOCTYPE html><html>", InvalidUrl},
            {QTextCodec::codecForName("Windows-1251")->fromUnicode(noDatabase),
             DatabaseUnreachable}};
        for (const auto& [body, code] : codes)
            QVERIFY2(ServiceReply::refusal(body) == code, body.constData());
        for (const QByteArray& body : {noDatabase.toUtf8(), QByteArray("<!DOCTYPE html><html>"),
                                       QByteArray(R"({"status": -1})"), QByteArray()})
            QVERIFY2(!ServiceReply::refusal(body), body.constData());
    }

    void teamsAndTasks();
    void taskInfo();

    void moments()
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

    void dayTotals()
    {
        const QVector<QPair<const char*, QTime>> times{
            {"90", {1, 30}},        {"\"90\"", {1, 30}},     {"1500", {1, 0}}, {"-60", {23, 0}},
            {"2147483647", {2, 7}}, {"99999999999", {0, 0}}, {"1.5", {0, 0}}};
        for (const auto& [value, time] : times) {
            const auto totals =
                ServiceReply::dayTotals(QByteArray("{\"today_total\":") + value + "}");
            QVERIFY2(totals.total == time && totals.active == QTime(0, 0), value);
        }
    }

    void reportAge()
    {
        const QDateTime now({2020, 5, 12}, {8, 24, 59});
        const struct {
            const char* written;
            const char* pastBefore;
            qint64 past;
        } rows[] = {{"12-05-2020-08-24-59", "0", 0},
                    {"12-05-2020-08-23-59", "100", 160},
                    {"12-05-2020-08-22-59", "x", 120},
                    {"12-05-2020-08-25-59", "0", -60},
                    // The largest unsigned second is taken away, which is to add one.
                    {"yesterday", "0", now.toSecsSinceEpoch() + 1}};
        for (const auto& row : rows) {
            const QVariantMap body{{QStringLiteral("past"), QLatin1String(row.pastBefore)}};
            const QVariantMap report{{QStringLiteral("api-url"), QStringLiteral("u")},
                                     {QStringLiteral("timestamp"), QLatin1String(row.written)},
                                     {QStringLiteral("version"), QStringLiteral("0.1")},
                                     {QStringLiteral("body"), body}};
            const QVariantMap rebuilt = ReportFile::rebuildReport(report, now);
            QCOMPARE(QStringList(rebuilt.keys()).join(QLatin1Char(',')),
                     QStringLiteral("api-url,body,timestamp"));
            QCOMPARE(rebuilt[QStringLiteral("body")].toMap()[QStringLiteral("past")].toString(),
                     QString::number(row.past));
        }
    }

    void reportPayload()
    {
        const QVariantMap body{{QStringLiteral("b"), QStringLiteral("я/~\"")},
                               {QStringLiteral("a"), QStringLiteral("1 -._+")}};
        QCOMPARE(
            ReportFile::payload(body),
            QByteArray("data=%5B%7B%22a%22%3A%221%20-._%2B%22%2C%22b%22%3A%22%D1%8F%2F~%5C%22%22"
                       "%7D%5D"));

        // A picture of any size, with all bytes in it.
        QByteArray picture;
        for (int i = 0; i < 5000; ++i)
            picture += char(i * 73 + i / 256);
        for (const int size : {0, 1, 2, 3, 7, 8, 9, 4097, 5000}) {
            const QByteArray bytes = picture.left(size);
            const QVariantMap withPicture{{QStringLiteral("file"), bytes},
                                          {QStringLiteral("fileName"), QString()}};
            const QByteArray json = "[{\"file\":\"" + bytes.toBase64() + "\",\"fileName\":\"\"}]";
            QCOMPARE(ReportFile::payload(withPicture), "data=" + json.toPercentEncoding());
        }
    }

    void reportFile()
    {
        QTemporaryDir home;
        // Removed meanwhile.
        const QString directory = home.filePath(QStringLiteral("anna/activity"));
        const QDateTime may({2020, 5, 3}, {8, 4, 9});
        const QVariantMap report = ReportFile::report(QStringLiteral("u"), QVariantMap(), may);
        const QString path = ReportFile::write(directory, report);
        QVERIFY(path.startsWith(directory + QStringLiteral("/json03-05-2020-08-04-09.")));
        QVERIFY(!ReportFile::write(directory, report).isEmpty());
        QCOMPARE(QDir(directory).entryList(QDir::Files).size(), 2);
        QCOMPARE(contentOf(path),
                 QByteArray(R"({"api-url":"u","body":{},"timestamp":"03-05-2020-08-04-09",)"
                            R"("version":"0.1"})"));
    }

    void leftovers()
    {
        QTemporaryDir home;
        const QDir directory(home.path());
        const auto write = [&directory](const QString& name, const QByteArray& content,
                                        bool isOld) {
            writeFile(directory.filePath(name), content, isOld ? 70 : 50);
        };
        write(QStringLiteral("unfinished.1"), {}, true);
        write(QStringLiteral("unfinished.2"), {}, false);
        for (const char* name : {"1", "2", "3"})
            write(QStringLiteral("screenshot%1.jpg").arg(QLatin1String(name)), {}, true);
        write(QStringLiteral("screenshot4.jpg"), {}, false);
        write(QStringLiteral("json1"), R"("/api_screenshot","/x/screenshot1.jpg","a.jpg"}})", true);
        // A damaged one names its picture, too.
        write(QStringLiteral("json2"), "\"/x/screenshot2.jpg", true);
        ReportFile::removeUnfinished(directory.path());
        QCOMPARE(directory.entryList(QDir::Files).join(QLatin1Char(' ')),
                 QStringLiteral("json1 json2 screenshot1.jpg screenshot2.jpg screenshot4.jpg "
                                "unfinished.2"));
    }

    // Ordered by name without regard to case, each once, and never one that is confirmed.
    void waitingReports()
    {
        QTemporaryDir home;
        const auto path = [&home](const char* name) { return home.filePath(QLatin1String(name)); };
        WaitingReports reports;
        QVERIFY(QDir().mkpath(path("json03/not to be removed like a file")));
        QTest::ignoreMessage(QtWarningMsg, QRegularExpression(QStringLiteral("can't be removed")));
        reports.remove(path("json03"));
        QCOMPARE(reports.next(home.path()), QString());
        QVERIFY(QDir(path("json03")).removeRecursively());

        for (const char* name : {"json28", "JSON05", "json03", "unfinished.json"})
            writeFile(path(name), {});
        QCOMPARE(reports.next(home.path()), path("JSON05"));
        writeFile(path("json01"), {});
        QCOMPARE(reports.next(home.path()), path("json28"));
        QCOMPARE(reports.next(home.path()), QString());
        QCOMPARE(reports.next(home.path()), path("json01"));
        reports.startAnew();
        QCOMPARE(reports.next(home.path()), path("json01"));
        reports.retryRemovals();
        QVERIFY(!QFile::exists(path("json03")));
    }
};

void ServiceFormsTest::teamsAndTasks()
{
    const auto entries = ServiceReply::teamsAndTasks(R"([{"id":17,"name":"Редакция","tasks":[
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

void ServiceFormsTest::taskInfo()
{
    const ServiceReply::Answer answer = ServiceReply::answer(
        R"({"status":"ok","message":{"id":12,"title":"Т","deadline":"2020-01-02 03:04:05",
              "text":"<a href='x'>","executor_name":"Э","creator_name":"С","auditor_name":"А",
              "files":[{"id":1,"filename":"f","filename_orig":"o","size":"many"}, 5],
              "texts":[{"id":2,"text":"x","title":"y","min_count":3000,
                        "page":"http://a/b?c=d","task":"z",
                        "keywords":[{"id":3,"keyword":"k","count":1,"count2":"2"}]}]}})");
    const TaskInfo info = ServiceReply::taskInfo(answer.message);
    QCOMPARE(info.id + info.executorName + info.creatorName + info.auditorName,
             QStringLiteral("12ЭСА"));
    QCOMPARE(info.deadline, QDateTime({2020, 1, 2}, {3, 4, 5}));
    QCOMPARE(info.files.size(), 2);
    const auto file = info.files[0];
    QCOMPARE(file.id + file.filename + file.filenameOrig + file.size, QStringLiteral("1fomany"));
    const TextTask text = info.texts.value(0);
    QCOMPARE(text.id + text.text + text.title + text.minCount + text.task,
             QStringLiteral("2xy3000z"));
    QCOMPARE(text.page, QUrl(QStringLiteral("http://a/b?c=d")));
    const Keyword keyword = text.keywords[0];
    QCOMPARE(keyword.id + keyword.keyword + keyword.count + keyword.count2, QStringLiteral("3k12"));
    QVERIFY(ServiceReply::taskInfo(5).id.isEmpty());
}

TESSAPORT_TEST_MAIN(ServiceFormsTest, QCoreApplication)

#include "tst_serviceforms.moc"
