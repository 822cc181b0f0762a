// SPDX-License-Identifier: GPL-3.0-or-later
#include "dialogs/ElidedComboBox.h"
#include "dialogs/ElidedLabel.h"
#include "dialogs/PlainToolTip.h"
#include "dialogs/ServiceTextBrowser.h"
#include "support/Files.h"
#include "support/TestMain.h"

#include <QAbstractItemView>
#include <QApplication>
#include <QBuffer>
#include <QDesktopServices>
#include <QPainter>

/// What shows texts of the service, whatever they hold.
class TextsTest : public QObject {
    Q_OBJECT

public slots:
    /// Takes the place of the user's browser.
    void open(const QUrl& url) { m_opened << url; }

private slots:
    void textsInABoxStandInOneLine()
    {
        const auto pictures = [](const QString& text) {
            ElidedComboBox box;
            box.setStyleSheet(QStringLiteral("combobox-popup: 0;"));
            box.addItem(text);
            box.resize(200, 22);
            box.showPopup();
            return QVector<QImage>{box.grab().toImage(), box.view()->grab().toImage()};
        };
        const QVector<QImage> inOneLine = pictures(QStringLiteral("А  Б"));
        QCOMPARE(pictures(QStringLiteral("А\r\nБ")), inOneLine);
        const QVector<QImage> others = pictures(QStringLiteral("А  В"));
        QVERIFY(others[0] != inOneLine[0] && others[1] != inOneLine[1]);
    }

    void longTextsEndWithinTheirRoom()
    {
        ElidedLabel label;
        ElidedComboBox box;
        QPixmap icon(16, 16);
        icon.fill(Qt::transparent);
        box.addItem(QIcon(icon), QString());
        const auto edge = [&](QWidget& widget) {
            QStyleOptionComboBox option;
            option.initFrom(&widget);
            const int right = &widget == &box
                ? box.style()
                      ->subControlRect(QStyle::CC_ComboBox, &option, QStyle::SC_ComboBoxEditField,
                                       &box)
                      .right()
                : widget.width() - 1;
            return widget.grab({right, 4, 1, 10}).toImage();
        };
        for (int width = 150; width < 160; ++width) {
            label.setFixedSize(width, 18);
            box.setFixedSize(width, 22);
            label.setText(QString());
            box.setItemText(0, QString());
            const QImage blank[] = {edge(label), edge(box)};
            const QString text(60, QLatin1Char('M'));
            label.setText(text);
            box.setItemText(0, text);
            QCOMPARE(edge(label), blank[0]);
            QCOMPARE(edge(box), blank[1]);
            QCOMPARE(label.text() + box.currentText(), text + text);
            // The end of it, which tells the deadline, is seen.
            const QImage before = box.grab().toImage();
            box.setItemText(0, text + QLatin1Char('1'));
            QVERIFY(box.grab().toImage() != before);
        }
    }

    void textReachesNothingBeyondItself()
    {
        QTemporaryDir directory;
        const QString file = directory.filePath(QStringLiteral("picture.png"));
        QImage picture(400, 300, QImage::Format_RGB32);
        picture.fill(Qt::red);
        QVERIFY(picture.save(file));
        ServiceTextBrowser text;
        text.resize(500, 400);
        for (const QString& source : {file, QUrl::fromLocalFile(file).toString()}) {
            text.setText(QStringLiteral("<p><img src=\"%1\"></p>").arg(source));
            QVERIFY(text.grab().toImage().pixelColor(200, 150) != Qt::red);
        }

        const QString sheet = directory.filePath(QStringLiteral("sheet.css"));
        writeFile(sheet, "p { color: #123456 }");
        for (const QString& source : {sheet, QUrl::fromLocalFile(sheet).toString()}) {
            text.setText(QStringLiteral("<style>@import url(%1);</style><p>a</p>").arg(source));
            QVERIFY(!text.toHtml().contains(QLatin1String("#123456")));
        }

        // What is in the text stays, however long, unless it would fill the memory or its format
        // might be one that names files in its turn.
        for (const QByteArray format : {"BMP", "PPM", "PNG"}) {
            const bool isHuge = format == "PNG";
            QImage inner(isHuge ? QSize(8000, 8000) : QSize(300, 300),
                         isHuge ? QImage::Format_Mono : QImage::Format_RGB32);
            inner.fill(isHuge ? 1 : QColor(Qt::red).rgb());
            QBuffer buffer;
            QVERIFY(inner.save(&buffer, format.constData()));
            text.setText(QStringLiteral(
                             "<img width=400 height=300 src=\"data:image/png;base64,%1\"><b>b</b>")
                             .arg(QString::fromLatin1(buffer.data().toBase64())));
            QCOMPARE(text.grab().toImage().pixelColor(200, 150) == Qt::red, format == "BMP");
            QVERIFY(text.toPlainText().endsWith(QLatin1Char('b')));
        }

        for (const char* scheme : {"https", "file", "ftp"})
            QDesktopServices::setUrlHandler(QLatin1String(scheme), this, "open");
        for (const char* link : {"https://example.org/a", "file:///etc/passwd", "ftp://x/y", "#a"})
            emit text.anchorClicked(QUrl(QLatin1String(link)));
        QCOMPARE(m_opened, QList<QUrl>({QUrl(QStringLiteral("https://example.org/a"))}));

        // A click leaves the text where it is.
        text.setText(QStringLiteral("<a href=\"ftp://x/y\">текст задачи</a>"));
        text.show();
        QTest::mouseClick(text.viewport(), Qt::LeftButton, {}, {20, 15});
        QCOMPARE(text.toPlainText(), QStringLiteral("текст задачи"));
    }

    void textsAreBounded()
    {
        ServiceTextBrowser text;
        text.setText(QStringLiteral("слово ").repeated(1000000));
        QVERIFY(text.toPlainText().size() < 200000);
        // Each of these would take minutes, or for ever, to be arranged.
        for (const char* costly :
             {"<table><tr><td>", "<ul><li>", "<img style='float:left'>", "<p>"}) {
            const QString source = QString::fromLatin1(costly).repeated(4000);
            text.setText(source);
            QCOMPARE(text.toPlainText(), source);
        }
        for (const char* absurd : {"<table cellpadding=100000000><tr><td>a</table>",
                                   "<p style='font-size: 300000pt'>a</p>"}) {
            text.setText(QLatin1String(absurd));
            QCOMPARE(text.toPlainText(), QLatin1String(absurd));
        }
    }

    void longToolTipsWrap()
    {
        const QString smile = QString::fromUtf8("\xF0\x9F\x98\x80");
        for (const QString& whole :
             {QStringLiteral("слово ").repeated(500), QStringLiteral("безпробелов").repeated(500),
              QStringLiteral("а") + smile.repeated(1000)}) {
            QTextDocument document;
            document.setHtml(plainToolTip(whole));
            document.setTextWidth(400);
            QVERIFY(document.idealWidth() <= 400);
            QString shown = document.toPlainText();
            shown.remove(QChar(0x200B)).chop(1);
            QVERIFY(shown.size() > 900 && whole.startsWith(shown));
            QVERIFY(!shown.at(shown.size() - 1).isHighSurrogate());
        }
        QCOMPARE(plainToolTip(QStringLiteral("Одна строка")), QStringLiteral("Одна строка"));
    }

private:
    QList<QUrl> m_opened;
};

TESSAPORT_TEST_MAIN(TextsTest, QApplication)

#include "tst_texts.moc"
