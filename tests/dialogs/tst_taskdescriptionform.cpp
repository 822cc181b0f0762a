// SPDX-License-Identifier: GPL-3.0-or-later
#include "PanelFixture.h"

#include "dialogs/ServiceTextBrowser.h"
#include "dialogs/TaskDescriptionForm.h"
#include "res/Resources.h"
#include "support/TestMain.h"

#include <QComboBox>
#include <QDesktopServices>
#include <QLabel>
#include <QListWidget>
#include <QPushButton>

class TestTaskDescriptionForm : public QObject {
    Q_OBJECT

public slots:
    /// Takes the place of the user's browser.
    void open(const QUrl& url) { m_opened << url; }

private slots:
    void initTestCase() { initResources(); }
    void init()
    {
        m_service = std::make_unique<SignedInService>();
        m_form =
            std::make_unique<TaskDescriptionForm>(QStringLiteral("7"), m_service.get(), &m_list);
    }
    void cleanup()
    {
        m_form.reset();
        m_service.reset();
    }

    void showsWhatIsKnownOfItsTask()
    {
        QCOMPARE(text("lbTaskDeadline"), QStringLiteral("..."));
        emit m_service->taskInfoUpdated(fullInfo());
        emit m_service->taskInfoUpdated(TaskInfo());
        QCOMPARE(text("lbTaskDeadline"), QStringLiteral("Истекает: 2020-04-26 18:00:00"));
        QCOMPARE(text("lbAttachmentsNumber"), QStringLiteral("2"));
        QCOMPARE(rowTexts("listAttachments"),
                 QStringList({QStringLiteral("Бриф.docx|48.20 KB"),
                              QStringLiteral("<i>Макет</i>|0.00 B")}));
        QCOMPARE(child<QTextBrowser>("textTask")->toPlainText(), QStringLiteral("Три текста"));
        QCOMPARE(text("lbUrl"),
                 QStringLiteral("URL: <a href=\"https://a.org/?b=1&c=2\" "
                                "style=\"color:rgb(100,100,100)\">https://a.org/?b=1&c=2</a>"));
        QCOMPARE(child<QTextBrowser>("textRequirements")->toPlainText(), QStringLiteral("О нас"));
        QCOMPARE(text("lbSignNumber"), QStringLiteral("Количество знаков: 2500"));
        QCOMPARE(rowTexts("listKeywords"),
                 QStringList(QStringLiteral("редакция|Точн. 2|Неточн. 1")));

        TaskInfo bare;
        bare.id = QStringLiteral("7");
        emit m_service->taskInfoUpdated(bare);
        QCOMPARE(text("lbAttachmentsNumber"), QStringLiteral("0"));
        QCOMPARE(child<QListWidget>("listAttachments")->count(), 0);
        QCOMPARE(text("lbTaskDeadline"), QStringLiteral("Истекает: "));
    }

    void namesEachResponsibleOnce_data()
    {
        QTest::addColumn<QString>("names");
        QTest::newRow("||") << "";
        QTest::newRow("A|B|C") << "A, B, C";
        QTest::newRow("A|A|A") << "A";
        QTest::newRow("|B|") << "B";
        QTest::newRow("||C") << "C";
        QTest::newRow("A|B|B") << "A, B";
        QTest::newRow("A|B|A") << "A, B";
    }
    void namesEachResponsibleOnce()
    {
        QFETCH(QString, names);
        const QStringList people =
            QString::fromLatin1(QTest::currentDataTag()).split(QLatin1Char('|'));
        TaskInfo info = fullInfo();
        info.executorName = people[0];
        info.creatorName = people[1];
        info.auditorName = people[2];
        m_form->updateTask(info);
        QCOMPARE(text("lbResponsible"), QStringLiteral("Ответственные: ") + names);
    }

    void readableSize()
    {
        const auto size = &TaskDescriptionForm::size_human;
        QCOMPARE(size(1023), QStringLiteral("1023.00 B"));
        QCOMPARE(size(1024), QStringLiteral("1.00 KB"));
        QCOMPARE(size(1572864), QStringLiteral("1.50 MB"));
        QCOMPARE(size(2251799813685248), QStringLiteral("2048.00 TB"));
        QCOMPARE(size(-2048), QStringLiteral("-2048.00 B"));
    }

    void turnsItsPages()
    {
        const auto mainPage = child<QWidget>("mainWidget");
        const auto textsPage = child<QWidget>("copyrightTasksWidget");
        const auto textsButton = child<QPushButton>("pbCopyrightTasks");
        m_form->show();
        m_form->updateTask(fullInfo());
        QVERIFY(mainPage->isVisible() && !textsPage->isVisible());
        textsButton->click();
        QVERIFY(textsPage->isVisible() && !mainPage->isVisible());
        child<QComboBox>("cbTexts")->setCurrentIndex(1);
        QVERIFY(text("lbUrl").contains(QStringLiteral("https://b.org")));
        // What stands in the address stays in the link.
        QCOMPARE(text("lbUrl").count(QLatin1Char('"')), 4);
        QCOMPARE(text("lbUrl").count(QLatin1Char('<')), 2);

        m_form->updateTask(fullInfo());
        QVERIFY(textsPage->isVisible());
        QCOMPARE(child<QComboBox>("cbTexts")->count(), 2);
        QVERIFY(text("lbUrl").contains(QStringLiteral("https://a.org")));

        TaskInfo withoutTexts = fullInfo();
        withoutTexts.texts.clear();
        m_form->updateTask(withoutTexts);
        QVERIFY(mainPage->isVisible() && !textsPage->isVisible());
        QVERIFY(!textsButton->isEnabled());

        m_form->updateTask(fullInfo());
        textsButton->click();
        child<QPushButton>("pbMainInfo")->click();
        QVERIFY(mainPage->isVisible() && !textsPage->isVisible());
    }

    void asksTheServiceWhenOnline()
    {
        m_service->session()->setTaskInfo(QStringLiteral("7"), fullInfo());
        m_service->session()->setIsOnline(true);
        m_form->requestUpdateTask(QStringLiteral("7"));
        // Nobody listens there, so that the request turns the client offline.
        QTRY_VERIFY(!m_service->session()->isOnline());
        QCOMPARE(text("lbAttachmentsNumber"), QStringLiteral("..."));
        m_form->requestUpdateTask(QStringLiteral("7"));
        QCOMPARE(text("lbAttachmentsNumber"), QStringLiteral("2"));
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

        for (const char* scheme : {"https", "file", "ftp"})
            QDesktopServices::setUrlHandler(QLatin1String(scheme), this, "open");
        for (const char* link : {"https://example.org/a", "file:///etc/passwd", "ftp://x/y", "#a"})
            emit text.anchorClicked(QUrl(QLatin1String(link)));
        QCOMPARE(m_opened, QList<QUrl>({QUrl(QStringLiteral("https://example.org/a"))}));
    }

private:
    static TaskInfo fullInfo()
    {
        TaskInfo info;
        info.id = QStringLiteral("7");
        info.deadline = QDateTime({2020, 4, 26}, {18, 0});
        info.text = QStringLiteral("<b>Три</b> текста");
        info.files = {{{}, {}, QStringLiteral("Бриф.docx"), QStringLiteral("49357")},
                      {{}, {}, QStringLiteral("<i>Макет</i>"), QStringLiteral("много")}};
        TextTask first;
        first.page = QUrl(QStringLiteral("https://a.org/?b=1&c=2"));
        first.task = QStringLiteral("О нас");
        first.minCount = QStringLiteral("2500");
        first.keywords = {
            {{}, QStringLiteral("редакция"), QStringLiteral("2"), QStringLiteral("1")}};
        TextTask second;
        second.page = QUrl(QStringLiteral("https://b.org/?q=\"><h1>x</h1>"));
        info.texts = {first, second};
        return info;
    }
    template <class Widget> Widget* child(const char* name) const
    {
        return m_form->findChild<Widget*>(QLatin1String(name));
    }
    QString text(const char* name) const { return labelText(*m_form, name); }
    QStringList rowTexts(const char* listName) const
    {
        const auto list = child<QListWidget>(listName);
        QStringList texts;
        for (int i = 0; i < list->count(); ++i) {
            QStringList row;
            const auto labels = list->itemWidget(list->item(i))->findChildren<QLabel*>();
            for (const QLabel* label : labels)
                row << label->text();
            texts << row.join(QLatin1Char('|'));
        }
        return texts;
    }

    QWidget m_list;
    std::unique_ptr<SignedInService> m_service;
    std::unique_ptr<TaskDescriptionForm> m_form;
    QList<QUrl> m_opened;
};

TESSAPORT_TEST_MAIN(TestTaskDescriptionForm, QApplication)
#include "tst_taskdescriptionform.moc"
