// SPDX-License-Identifier: GPL-3.0-or-later
#include "ServiceTest.h"
#include "service/ServiceAddress.h"
#include "support/Files.h"
#include "support/Notices.h"
#include "support/TestMain.h"

#include <QImage>

namespace {

const QString screenshotPath = QStringLiteral("/api_screenshot");

QStringList loggedLines;

void keepLine(QtMsgType, const QMessageLogContext&, const QString& line)
{
    loggedLines.append(line);
}

/// By how much the colours of the first differ from those of the second, on average.
double difference(const QImage& one, const QImage& other)
{
    qint64 sum = 0;
    for (int y = 0; y < one.height(); ++y) {
        for (int x = 0; x < one.width(); ++x)
            sum += std::abs(qGreen(one.pixel(x, y)) - qGreen(other.pixel(x, y)));
    }
    return double(sum) / (one.width() * one.height());
}

} // namespace

/// Pictures on their way to the service, and what else lies in their folder.
class PicturesTest : public QObject, private ServiceTest {
    Q_OBJECT

private slots:
    void init() { QVERIFY(start()); }

    void arriveAsTheyAre()
    {
        QImage image(160, 120, QImage::Format_RGB32);
        for (int y = 0; y < image.height(); ++y) {
            for (int x = 0; x < image.width(); ++x)
                image.setPixel(x, y, qRgb(x, (x * y) / 75, 2 * y));
        }
        const QtMessageHandler handler = qInstallMessageHandler(keepLine);
        client().sendScreenshot(image);
        qInstallMessageHandler(handler);
        QVERIFY(standIn().waitForRequests(screenshotPath, 1));
        const QJsonObject record = standIn().requests(screenshotPath).constFirst().record();
        const QByteArray file = record[QLatin1String("file")].toString().toLatin1();
        const QImage arrived = QImage::fromData(QByteArray::fromBase64(file));
        QCOMPARE(arrived.size(), image.size());
        QVERIFY2(difference(arrived, image) < 2,
                 qPrintable(QString::number(difference(arrived, image))));
        QVERIFY(loggedLines.size() > 5);
        for (const QString& line : qAsConst(loggedLines))
            QVERIFY2(line.size() < 500, qPrintable(line));
    }

    void ofOneSecond()
    {
        standIn().fail(screenshotPath, QStringLiteral("hang"));
        int second = 0;
        do {
            for (const QString& name : pictures())
                directory().remove(name);
            second = QTime::currentTime().second();
            for (int i = 0; i < 2; ++i)
                client().sendScreenshot(QImage(4, 4, QImage::Format_RGB32));
        } while (QTime::currentTime().second() != second);
        QCOMPARE(pictures().size(), 1);
    }

    void ofASecondThatComesTwice()
    {
        standIn().fail(screenshotPath, QStringLiteral("hang"));
        const QImage image(4, 4, QImage::Format_RGB32);
        const auto nameOf = [](const QDateTime& moment) {
            return moment.toString(QStringLiteral("'screenshot'dd-MM-yyyy-hh-mm-ss'.jpg'"));
        };
        // The next second may begin at any moment.
        const QDateTime now = QDateTime::currentDateTime();
        const QStringList old{nameOf(now), nameOf(now.addSecs(1))};
        for (const QString& name : old)
            writeFile(directory().filePath(name), "waits");
        client().sendScreenshot(image);
        for (const QString& name : old)
            QCOMPARE(contentOf(directory().filePath(name)), QByteArray("waits"));
        QVERIFY(standIn().waitForRequests(screenshotPath, 1));
        const QJsonObject record = standIn().requests(screenshotPath).constFirst().record();
        QCOMPARE(QImage(record[QLatin1String("fileName")].toString()).size(), image.size());
    }

    void thatThereAreNone()
    {
        client().sendScreenshot(QImage());
        QCOMPARE(shownNotices(),
                 QStringList{QStringLiteral("0 При отправке снимка экрана произошла ошибка. "
                                            "Обратитесь в техподдержку")});
        QVERIFY(directory().isEmpty());
        NotificationManager::instance()->closeAll();

        writeReport(R"("version":"0.1","body":{"fileName":"%","past":"0"})", QString());
        for (const char* warning : {"No file name", "can't be opened"})
            QTest::ignoreMessage(QtWarningMsg, QRegularExpression(QLatin1String(warning)));
        client().sendActivity(1);
        QTRY_COMPARE(shownNotices(),
                     QStringList{QStringLiteral("0 Сделать снимок экрана не удалось. "
                                                "Свяжитесь с техподдержкой.")});
        QVERIFY(standIn().waitForRequests(screenshotPath, 1));
    }

    void ofAnEarlierFormat()
    {
        write("picture.jpg", "a picture");
        writeReport(R"("body":{"file":"as it stands","past":"0","fileName":"%"})",
                    directory().filePath(QStringLiteral("picture.jpg")));
        client().sendActivity(1);
        QVERIFY(standIn().waitForRequests(screenshotPath, 1));
        const QJsonObject record = standIn().requests(screenshotPath).constFirst().record();
        QCOMPARE(record[QLatin1String("file")].toString(), QStringLiteral("as it stands"));
    }

    void whatAKilledProgramLeaves()
    {
        for (const auto& [name, age] :
             {std::pair("unfinished.old", 61), std::pair("unfinished.new", 50),
              std::pair("../session.ini.qWeRtY", 61), std::pair("../../update.json.qWeRtY", 61)}) {
            writeFile(directory().filePath(QLatin1String(name)), {}, age);
        }
        QSignalSpy loginOk(&client(), &TessaPort::loginOk);
        client().login(QStringLiteral("demo@example.com"), QStringLiteral("demo"));
        QVERIFY(loginOk.wait());
        QCOMPARE(directory().entryList(QDir::Files), QStringList{QStringLiteral("unfinished.new")});
        QVERIFY(!directory().exists(QStringLiteral("../session.ini.qWeRtY")));
        QVERIFY(!directory().exists(QStringLiteral("../../update.json.qWeRtY")));
    }

private:
    QDir directory()
    {
        return QDir(client().dataDir().filePath(QStringLiteral("demo@example.com/activity")));
    }

    QStringList pictures() { return directory().entryList({QStringLiteral("*.jpg")}); }

    void write(const char* name, const QByteArray& content)
    {
        writeFile(directory().filePath(QLatin1String(name)), content);
    }

    /// A picture's report that waits, by what else there is in it, and the picture.
    void writeReport(QByteArray rest, const QString& picture)
    {
        const QByteArray begin = R"({"timestamp":"01-01-2020-00-00-00","api-url":"%",)";
        write("json00",
              QByteArray(begin).replace("%", ServiceAddress::url(screenshotPath).toUtf8())
                  + rest.replace("%", picture.toUtf8()) + '}');
    }
};

TESSAPORT_TEST_MAIN(PicturesTest, QApplication)

#include "tst_pictures.moc"
