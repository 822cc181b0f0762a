// SPDX-License-Identifier: GPL-3.0-or-later
#include "PanelFixture.h"

#include "dialogs/ScrollText.h"
#include "dialogs/ServiceTextBrowser.h"
#include "dialogs/TaskDescriptionForm.h"
#include "res/Resources.h"
#include "support/TestMain.h"

#include <QComboBox>
#include <QDesktopServices>
#include <QLabel>
#include <QListWidget>
#include <QPushButton>

namespace {

TextTask makeText(const QString& title, const QUrl& page, const QList<Keyword>& keywords = {})
{
    TextTask text;
    text.title = title;
    text.page = page;
    text.task = QStringLiteral("Требования: ") + title;
    text.minCount = QStringLiteral("2500");
    text.keywords = keywords;
    return text;
}

TaskInfo fullInfo()
{
    TaskInfo info;
    info.id = QStringLiteral("7");
    info.title = QStringLiteral("Тексты для раздела");
    info.deadline = QDateTime({2020, 4, 26}, {18, 0});
    info.text = QStringLiteral("Нужны <b>три</b> текста");
    info.executorName = QStringLiteral("Анна");
    info.files = {{QStringLiteral("1"), QStringLiteral("a.bin"), QStringLiteral("Бриф.docx"),
                   QStringLiteral("49357")},
                  {QStringLiteral("2"), QStringLiteral("b.bin"), QStringLiteral("<i>Макет</i>"),
                   QStringLiteral("много")}};
    info.texts = {
        makeText(QStringLiteral("О нас"), QUrl(QStringLiteral("https://a.org/?b=1&c=2")),
                 {{QStringLiteral("5"), QStringLiteral("редакция сайта"), QStringLiteral("2"),
                   QStringLiteral("1")}}),
        makeText(QStringLiteral("История"), QUrl(QStringLiteral("https://a.org/history")))};
    return info;
}

QStringList rowTexts(const QListWidget* list)
{
    QStringList texts;
    for (int i = 0; i < list->count(); ++i) {
        const auto labels = list->itemWidget(list->item(i))->findChildren<QLabel*>();
        QStringList row;
        for (const QLabel* label : labels)
            row << (label->textFormat() == Qt::PlainText ? label->text()
                                                         : QStringLiteral("markup"));
        texts << row.join(QLatin1Char('|'));
    }
    return texts;
}

} // namespace

/// Takes the place of the user's browser.
class Browser : public QObject {
    Q_OBJECT
public:
    Browser()
    {
        for (const char* scheme : {"http", "https", "file", "ftp"})
            QDesktopServices::setUrlHandler(QLatin1String(scheme), this, "open");
    }
    QList<QUrl> opened;
public slots:
    void open(const QUrl& url) { opened << url; }
};

class TestTaskDescriptionForm : public QObject {
    Q_OBJECT

private slots:
    void initTestCase() { initResources(); }
    void init();
    void cleanup();

    void showsEachField();
    void otherTasksChangeNothing();
    void namesEachResponsibleOnce_data();
    void namesEachResponsibleOnce();
    void readableSize_data();
    void readableSize();
    void assignmentsAndPages();
    void asksTheServiceWhenOnline();
    void textReachesNothingBeyondItself();
    void pageOfAnAssignmentStaysInItsLink();

private:
    template <class Widget> Widget* child(const char* name) const
    {
        return m_form->findChild<Widget*>(QLatin1String(name));
    }
    QString text(const char* name) const { return labelText(*m_form, name); }
    void makeForm()
    {
        m_form =
            std::make_unique<TaskDescriptionForm>(QStringLiteral("7"), m_service.get(), &m_list);
    }

    QWidget m_list;
    std::unique_ptr<SignedInService> m_service;
    std::unique_ptr<TaskDescriptionForm> m_form;
};

void TestTaskDescriptionForm::init()
{
    m_service = std::make_unique<SignedInService>();
    makeForm();
}

void TestTaskDescriptionForm::cleanup()
{
    m_form.reset();
    m_service.reset();
}

void TestTaskDescriptionForm::showsEachField()
{
    QCOMPARE(text("lbTaskDeadline"), QStringLiteral("..."));
    m_service->session()->setTaskInfo(QStringLiteral("7"), fullInfo());
    makeForm();
    QCOMPARE(m_form->findChild<ScrollText*>()->text(), QStringLiteral("Тексты для раздела"));
    QCOMPARE(text("lbTaskDeadline"), QStringLiteral("Истекает: 2020-04-26 18:00:00"));
    QCOMPARE(text("lbResponsible"), QStringLiteral("Ответственные: Анна"));
    QCOMPARE(text("lbAttachmentsNumber"), QStringLiteral("2"));
    QCOMPARE(
        rowTexts(child<QListWidget>("listAttachments")),
        QStringList({QStringLiteral("Бриф.docx|48.20 KB"), QStringLiteral("<i>Макет</i>|0.00 B")}));
    QCOMPARE(child<QTextBrowser>("textTask")->toPlainText(), QStringLiteral("Нужны три текста"));
    QCOMPARE(text("lbUrl"),
             QStringLiteral("URL: <a href=\"https://a.org/?b=1&c=2\" "
                            "style=\"color:rgb(100,100,100)\">https://a.org/?b=1&c=2</a>"));
    QCOMPARE(child<QTextBrowser>("textRequirements")->toPlainText(),
             QStringLiteral("Требования: О нас"));
    QCOMPARE(text("lbSignNumber"), QStringLiteral("Количество знаков: 2500"));
    QCOMPARE(rowTexts(child<QListWidget>("listKeywords")),
             QStringList(QStringLiteral("редакция сайта|Точн. 2|Неточн. 1")));
}

void TestTaskDescriptionForm::otherTasksChangeNothing()
{
    emit m_service->taskInfoUpdated(fullInfo());
    TaskInfo other;
    other.id = QStringLiteral("8");
    emit m_service->taskInfoUpdated(other);
    emit m_service->taskInfoUpdated(TaskInfo());
    QCOMPARE(text("lbAttachmentsNumber"), QStringLiteral("2"));

    TaskInfo same;
    same.id = QStringLiteral("7");
    emit m_service->taskInfoUpdated(same);
    QCOMPARE(text("lbAttachmentsNumber"), QStringLiteral("0"));
    QCOMPARE(child<QListWidget>("listAttachments")->count(), 0);
    QCOMPARE(text("lbTaskDeadline"), QStringLiteral("Истекает: "));
}

void TestTaskDescriptionForm::namesEachResponsibleOnce_data()
{
    QTest::addColumn<QString>("executor");
    QTest::addColumn<QString>("creator");
    QTest::addColumn<QString>("auditor");
    QTest::addColumn<QString>("names");
    const QString none;
    const QString a = QStringLiteral("А");
    const QString b = QStringLiteral("Б");
    const QString c = QStringLiteral("В");
    QTest::newRow("none") << none << none << none << none;
    QTest::newRow("three") << a << b << c << QStringLiteral("А, Б, В");
    QTest::newRow("one in three") << a << a << a << a;
    QTest::newRow("no executor") << none << b << none << b;
    QTest::newRow("only auditor") << none << none << c << c;
    QTest::newRow("auditor is creator") << a << b << b << QStringLiteral("А, Б");
    QTest::newRow("auditor is executor") << a << b << a << QStringLiteral("А, Б");
}

void TestTaskDescriptionForm::namesEachResponsibleOnce()
{
    QFETCH(QString, executor);
    QFETCH(QString, creator);
    QFETCH(QString, auditor);
    QFETCH(QString, names);
    TaskInfo info;
    info.id = QStringLiteral("7");
    info.executorName = executor;
    info.creatorName = creator;
    info.auditorName = auditor;
    m_form->updateTask(info);
    QCOMPARE(text("lbResponsible"), QStringLiteral("Ответственные: ") + names);
}

void TestTaskDescriptionForm::readableSize_data()
{
    QTest::addColumn<float>("size");
    QTest::addColumn<QString>("text");
    QTest::newRow("nothing") << 0.0F << QStringLiteral("0.00 B");
    QTest::newRow("below a step") << 1023.0F << QStringLiteral("1023.00 B");
    QTest::newRow("a step") << 1024.0F << QStringLiteral("1.00 KB");
    QTest::newRow("between") << 1536.0F << QStringLiteral("1.50 KB");
    QTest::newRow("two steps") << 1572864.0F << QStringLiteral("1.50 MB");
    QTest::newRow("three steps") << 1073741824.0F << QStringLiteral("1.00 GB");
    QTest::newRow("beyond the last unit") << 2251799813685248.0F << QStringLiteral("2048.00 TB");
    QTest::newRow("negative") << -2048.0F << QStringLiteral("-2048.00 B");
}

void TestTaskDescriptionForm::readableSize()
{
    QFETCH(float, size);
    QTEST(TaskDescriptionForm::size_human(size), "text");
}

void TestTaskDescriptionForm::assignmentsAndPages()
{
    const auto mainPage = child<QWidget>("mainWidget");
    const auto textsPage = child<QWidget>("copyrightTasksWidget");
    const auto textsButton = child<QPushButton>("pbCopyrightTasks");
    m_form->show();
    m_form->updateTask(fullInfo());
    QVERIFY(mainPage->isVisible());
    textsButton->click();
    QVERIFY(textsPage->isVisible());
    QVERIFY(!mainPage->isVisible());

    child<QComboBox>("cbTexts")->setCurrentIndex(1);
    QVERIFY(text("lbUrl").contains(QStringLiteral("https://a.org/history")));
    QCOMPARE(child<QListWidget>("listKeywords")->count(), 0);

    m_form->updateTask(fullInfo());
    QVERIFY(textsPage->isVisible());
    QCOMPARE(child<QComboBox>("cbTexts")->currentIndex(), 0);
    QCOMPARE(child<QComboBox>("cbTexts")->count(), 2);
    QVERIFY(text("lbUrl").contains(QStringLiteral("https://a.org/?b=1")));

    TaskInfo withoutTexts = fullInfo();
    withoutTexts.texts.clear();
    m_form->updateTask(withoutTexts);
    QVERIFY(mainPage->isVisible());
    QVERIFY(!textsPage->isVisible());
    QVERIFY(!textsButton->isEnabled());

    m_form->updateTask(fullInfo());
    QVERIFY(textsButton->isEnabled());
    textsButton->click();
    child<QPushButton>("pbMainInfo")->click();
    QVERIFY(mainPage->isVisible());
    QVERIFY(!textsPage->isVisible());
}

void TestTaskDescriptionForm::asksTheServiceWhenOnline()
{
    m_service->session()->setTaskInfo(QStringLiteral("7"), fullInfo());
    m_service->session()->setIsOnline(true);
    m_form->requestUpdateTask(QStringLiteral("7"));
    QCOMPARE(text("lbAttachmentsNumber"), QStringLiteral("..."));
    // Nobody listens there, so that the request turns the client offline.
    QTRY_VERIFY(!m_service->session()->isOnline());
    QCOMPARE(text("lbAttachmentsNumber"), QStringLiteral("..."));

    m_form->requestUpdateTask(QStringLiteral("7"));
    QCOMPARE(text("lbAttachmentsNumber"), QStringLiteral("2"));
}

void TestTaskDescriptionForm::textReachesNothingBeyondItself()
{
    QTemporaryDir directory;
    const QString file = directory.filePath(QStringLiteral("picture.png"));
    QImage picture(400, 300, QImage::Format_RGB32);
    picture.fill(Qt::red);
    QVERIFY(picture.save(file));
    const auto inBytes = [&picture] {
        QByteArray bytes;
        QBuffer buffer(&bytes);
        picture.save(&buffer, "PNG");
        return QString::fromLatin1(bytes.toBase64());
    }();

    Browser browser;
    ServiceTextBrowser text;
    text.resize(500, 400);
    const auto redPixel = [&text] { return text.grab().toImage().pixelColor(200, 150) == Qt::red; };
    for (const QString& source : {file, QUrl::fromLocalFile(file).toString()}) {
        text.setText(QStringLiteral("<p><img src=\"%1\"></p>").arg(source));
        QVERIFY(!redPixel());
    }
    text.setText(QStringLiteral("<p><img src=\"data:image/png;base64,%1\"></p>").arg(inBytes));
    QVERIFY(redPixel());

    for (const char* link :
         {"https://example.org/a", "file:///etc/passwd", "ftp://x/y", "next", "#a"})
        emit text.anchorClicked(QUrl(QLatin1String(link)));
    QCOMPARE(browser.opened, QList<QUrl>({QUrl(QStringLiteral("https://example.org/a"))}));
    QVERIFY(!text.openLinks());
}

void TestTaskDescriptionForm::pageOfAnAssignmentStaysInItsLink()
{
    TaskInfo info = fullInfo();
    for (const char* page : {"https://a.org/\"><h1>x</h1>", "https://a.org/?q=\"><h1>x</h1>",
                             "\"><img src=x>", "https://u\":\"@a.org/#\"><b>"}) {
        info.texts.first().page = QUrl(QLatin1String(page));
        m_form->updateTask(info);
        QCOMPARE(text("lbUrl").count(QLatin1Char('"')), 4);
        QCOMPARE(text("lbUrl").count(QLatin1Char('<')), 2);
    }
}

TESSAPORT_TEST_MAIN(TestTaskDescriptionForm, QApplication)
#include "tst_taskdescriptionform.moc"
