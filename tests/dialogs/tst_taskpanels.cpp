// SPDX-License-Identifier: GPL-3.0-or-later
#include "PanelFixture.h"

#include "dialogs/ElidedComboBox.h"
#include "dialogs/ElidedLabel.h"
#include "dialogs/PlainToolTip.h"
#include "dialogs/ServiceTextBrowser.h"
#include "dialogs/TaskDescriptionForm.h"
#include "dialogs/TaskForm.h"
#include "dialogs/TaskListForm.h"
#include "res/Resources.h"
#include "support/TestMain.h"

#include <QBuffer>
#include <QComboBox>
#include <QDesktopServices>
#include <QDesktopWidget>
#include <QLabel>
#include <QListWidget>
#include <QPushButton>

#include <functional>

namespace {

TaskInfo fullInfo()
{
    TaskInfo info;
    info.id = QStringLiteral("21");
    info.deadline = QDateTime({2020, 4, 26}, {18, 0});
    info.text = QStringLiteral("<b>Три</b> текста");
    info.files = {{{}, {}, QStringLiteral("Бриф.docx"), QStringLiteral("49357")},
                  {{}, {}, QStringLiteral("<i>Макет</i>"), QStringLiteral("много")},
                  {{}, {}, QStringLiteral("Съёмка.mov"), QStringLiteral("3221225472")}};
    TextTask first;
    first.page = QUrl(QStringLiteral("https://a.org/?b=1&copy=2"));
    first.task = QStringLiteral("О нас");
    first.minCount = QStringLiteral("2500");
    first.keywords = {{{}, QStringLiteral("редакция"), QStringLiteral("2"), QStringLiteral("1")}};
    TextTask second;
    second.page = QUrl(QStringLiteral("https://b.org/?q=\"><h1>x</h1>"));
    TextTask third;
    third.page = QUrl(QStringLiteral("file:///etc/passwd"));
    info.texts = {first, second, third};
    return info;
}

/// The texts of the labels in a list's rows, those of one row separated by "|".
QStringList rowTexts(const QListWidget* list)
{
    QStringList texts;
    for (int i = 0; i < list->count(); ++i) {
        QStringList row;
        for (const QWidget* part : list->itemWidget(list->item(i))->findChildren<QWidget*>()) {
            if (!qobject_cast<const QPushButton*>(part))
                row << part->property("text").toString();
        }
        texts << row.join(QLatin1Char('|'));
    }
    return texts;
}

} // namespace

/// The picker of a task, the list of a team's tasks and the descriptions that it opens.
class TaskPanelsTest : public QObject {
    Q_OBJECT

public slots:
    /// Takes the place of the user's browser.
    void open(const QUrl& url) { m_opened << url; }

private slots:
    void initTestCase() { initResources(); }
    void init()
    {
        m_service = std::make_unique<SignedInService>();
        m_mainForm = std::make_unique<QuietMainForm>(m_service.get());
        session().setTeams({{QStringLiteral("1"), QStringLiteral("Первая")},
                            {QStringLiteral("2"), QStringLiteral("Вторая")}});
        session().setTasks({makeTask("11", "Письмо"), makeTask("12", "Б")}, QStringLiteral("1"));
        session().setTasks({makeTask("21", "<h1>Макет</h1>", QDateTime({2020, 4, 26}, {18, 5})),
                            makeTask("22", "Текст"), unassignedTask()},
                           QStringLiteral("2"));
        session().setTeamID(QStringLiteral("2"));
        session().setTaskID(QStringLiteral("22"));
        m_picker = std::make_unique<TaskForm>(m_mainForm.get());
        m_list = std::make_unique<TaskListForm>(m_service.get(), m_mainForm.get());
        m_description = std::make_unique<TaskDescriptionForm>(QStringLiteral("21"), m_service.get(),
                                                              m_list.get());
    }
    void cleanup()
    {
        m_description.reset();
        m_list.reset();
        m_picker.reset();
        m_mainForm.reset();
        m_service.reset();
    }

    void pickerLoadsUntilAnyAnswer()
    {
        const std::function<void()> answers[] = {
            [this] { emit m_service->error(UnknownError); },
            [this] { emit session().teamsUpdated(); },
            [this] { emit session().tasksUpdated(QStringLiteral("1")); },
            [this] { emit session().taskClosed(QStringLiteral("11")); },
        };
        session().setIsOnline(true);
        for (const auto& answer : answers) {
            m_picker->reload();
            QCOMPARE(labelText(*m_picker, "lbLoading"), QStringLiteral("Загрузка..."));
            QVERIFY(!box("cbTeam")->isEnabled() && !box("cbTask")->isEnabled());
            answer();
            QCOMPARE(labelText(*m_picker, "lbLoading"), QString());
            QVERIFY(box("cbTeam")->isEnabled() && box("cbTask")->isEnabled());
            QCOMPARE(picked(), QStringLiteral("2/22"));
        }
    }

    void pickerLeavesOnlyBlockingTasks()
    {
        QList<Task> tasks{makeTask("21", "А"), makeTask("22", "Б"), makeTask("23", "В")};
        const auto shown = [&](const char* firstBlock, const char* lastBlock) {
            tasks.first().block = QLatin1String(firstBlock);
            tasks.last().block = QLatin1String(lastBlock);
            session().setTasks(tasks, QStringLiteral("2"));
            return box("cbTask")->count();
        };
        QCOMPARE(shown("0", ""), 3);
        QCOMPARE(shown("yes", "1"), 2);
        QCOMPARE(shown("0", "1"), 1);
        QCOMPARE(picked(), QStringLiteral("2/23"));
    }

    void pickerTellsTheDeadlineIfThereIsOne()
    {
        session().setTasks(
            {makeTask("22", "<b>А</b>", QDateTime({2026, 3, 9}, {7, 5})), makeTask("23", "Б")},
            QStringLiteral("2"));
        QCOMPARE(box("cbTask")->currentText(),
                 QStringLiteral("<b>А</b> | Истекает: 2026-03-09 07:05:00"));
        QVERIFY(box("cbTask")->toolTip().contains(QStringLiteral("&lt;b&gt;")));
        QCOMPARE(box("cbTask")->itemText(1), QStringLiteral("Б"));
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
        }
    }

    void pickerRemembersTheTaskThatLeftAndNotTheTeam()
    {
        const QList<Task> tasks = session().tasks(QStringLiteral("2"));
        session().setTasks({tasks.first()}, QStringLiteral("2"));
        QCOMPARE(picked(), QStringLiteral("2/21"));
        session().setTasks(tasks, QStringLiteral("2"));
        QCOMPARE(picked(), QStringLiteral("2/22"));

        const QList<Team> teams = session().teams();
        session().setTeams({teams.first()});
        QCOMPARE(picked(), QStringLiteral("1/11"));
        session().setTeams(teams);
        QCOMPARE(picked(), QStringLiteral("1/11"));
        session().setTeams({});
        QCOMPARE(picked(), QStringLiteral("/"));
    }

    void deadlineIsReadBehindALongTitle()
    {
        ElidedLabel label;
        label.setFixedSize(200, 18);
        const auto picture = [&](const char* end) {
            label.setText(QString(60, QLatin1Char('M')) + QLatin1String(end));
            return label.grab().toImage();
        };
        QCOMPARE(picture(" | 18:05"), picture(" | 18:06"));
        label.setKeptEnd(8);
        QVERIFY(picture(" | 18:05") != picture(" | 18:06"));
        // As the rows have it.
        session().setTasks({makeTask("21", "Очень длинное название задачи, которому нет места",
                                     QDateTime({2020, 4, 26}, {18, 5}))},
                           QStringLiteral("2"));
        m_list->bringUpToDate();
        const QImage early = row(0)->grab().toImage();
        session().setTasks({makeTask("21", "Очень длинное название задачи, которому нет места",
                                     QDateTime({2020, 4, 26}, {18, 6}))},
                           QStringLiteral("2"));
        m_list->bringUpToDate();
        QVERIFY(row(0)->grab().toImage() != early);
    }

    void pickCountsWhenItIsConfirmed()
    {
        QSignalSpy finished(m_picker.get(), &QDialog::finished);
        const auto buttons = m_picker->findChildren<QPushButton*>(QStringLiteral("pbTessaport"));
        box("cbTeam")->setCurrentIndex(0);
        box("cbTask")->setCurrentIndex(1);
        emit session().teamsUpdated();
        QCOMPARE(picked(), QStringLiteral("1/12"));
        m_picker->show();
        buttons.last()->click();
        QVERIFY(!m_picker->isVisible());
        QVERIFY(finished.isEmpty());
        m_picker->reload();
        QCOMPARE(picked(), QStringLiteral("2/22"));
        m_picker->show();
        buttons.first()->click();
        QCOMPARE(finished.value(0).value(0).toInt(), int(QDialog::Accepted));
    }

    void pickerFollowsItsPanel()
    {
        const QPoint before = m_picker->pos();
        drag(m_picker->findChild<QPushButton*>(), Qt::LeftButton);
        drag(m_picker.get(), Qt::RightButton);
        QCOMPARE(m_picker->pos(), before);
        drag(m_picker.get(), Qt::LeftButton);
        QCOMPARE(m_picker->pos(), before + QPoint(40, 0));
    }

    void listsTheTasksOfTheChosenTeam()
    {
        QCOMPARE(rowTexts(list()),
                 QStringList({QStringLiteral("<h1>Макет</h1> | Истекает: 2020-04-26 18:05:00"),
                              QStringLiteral("Текст | Истекает: ")}));
        QVERIFY(row(0)->findChild<QLabel*>()->toolTip().contains(QStringLiteral("&lt;h1&gt;")));
        const QRect area = QApplication::desktop()->availableGeometry(m_list.get());
        QCOMPARE(m_list->pos(), QPoint(area.right() - 394, area.bottom() - (565 + 73)));

        // It is built when the team changes and not before.
        session().setTasks({}, QStringLiteral("2"));
        emit session().teamsUpdated();
        QCOMPARE(list()->count(), 2);
        emit m_service->teamChanged(QStringLiteral("1"));
        QCOMPARE(rowTexts(list()).value(0), QStringLiteral("Письмо | Истекает: "));
        QCOMPARE(m_list->windowTitle(), QStringLiteral("Задачи команды \"Первая\""));
        emit m_service->teamChanged(QStringLiteral("3"));
        QCOMPARE(list()->count(), 0);
        QCOMPARE(m_list->windowTitle(), QStringLiteral("Задачи команды \"\""));
    }

    void rowButtonTogglesTheDescription()
    {
        m_list->show();
        clickRow(0);
        const QPointer<TaskDescriptionForm> first = visibleForm<TaskDescriptionForm>();
        QVERIFY(first);
        QCOMPARE(first->geometry().topRight() + QPoint(1, 0), m_list->pos());
        clickRow(1);
        clickRow(1);
        QVERIFY(!visibleForm<TaskDescriptionForm>());

        // It is the same one after another list.
        emit m_service->teamChanged(QStringLiteral("1"));
        emit m_service->teamChanged(QStringLiteral("2"));
        clickRow(0);
        QCOMPARE(visibleForm<TaskDescriptionForm>(), first.data());
        emit m_mainForm->hideAll();
        emit m_mainForm->hideAll();
        QVERIFY(!m_list->isVisible() && !first->isVisible());
        emit m_mainForm->showAll();
        QVERIFY(m_list->isVisible() && first->isVisible());
        // What was hidden by itself stays so.
        m_list->on_pbHide_clicked();
        emit m_mainForm->showAll();
        QVERIFY(!m_list->isVisible() && !first->isVisible());
        m_list.reset();
        QVERIFY(!first);
    }

    void describesItsTask()
    {
        QCOMPARE(text("lbTaskDeadline"), QStringLiteral("..."));
        emit m_service->taskInfoUpdated(fullInfo());
        emit m_service->taskInfoUpdated(TaskInfo());
        QCOMPARE(text("lbTaskDeadline"), QStringLiteral("Истекает: 2020-04-26 18:00:00"));
        QCOMPARE(text("lbAttachmentsNumber"), QStringLiteral("3"));
        QCOMPARE(rowTexts(child<QListWidget>("listAttachments")),
                 QStringList({QStringLiteral("Бриф.docx|48.20 KB"),
                              QStringLiteral("<i>Макет</i>|0.00 B"),
                              QStringLiteral("Съёмка.mov|3.00 GB")}));
        QCOMPARE(child<QTextBrowser>("textTask")->toPlainText(), QStringLiteral("Три текста"));
        QCOMPARE(text("lbUrl"),
                 QStringLiteral("URL: <a href=\"https://a.org/?b=1&amp;copy=2\" style=\"color:rgb("
                                "100,100,100)\">https://a.org/?b=1&amp;copy=2</a>"));
        QCOMPARE(child<QTextBrowser>("textRequirements")->toPlainText(), QStringLiteral("О нас"));
        QCOMPARE(text("lbSignNumber"), QStringLiteral("Количество знаков: 2500"));
        QCOMPARE(rowTexts(child<QListWidget>("listKeywords")),
                 QStringList(QStringLiteral("редакция|Точн. 2|Неточн. 1")));

        TaskInfo bare;
        bare.id = QStringLiteral("21");
        emit m_service->taskInfoUpdated(bare);
        QCOMPARE(text("lbAttachmentsNumber"), QStringLiteral("0"));
        QCOMPARE(child<QListWidget>("listAttachments")->count(), 0);
        QCOMPARE(text("lbTaskDeadline"), QStringLiteral("Истекает: "));

        // What is cached is for when the service can't be asked.
        session().setTaskInfo(bare.id, fullInfo());
        session().setIsOnline(true);
        m_description->requestUpdateTask(bare.id);
        QCOMPARE(text("lbAttachmentsNumber"), QStringLiteral("0"));
        session().setIsOnline(false);
        m_description->requestUpdateTask(bare.id);
        QCOMPARE(text("lbAttachmentsNumber"), QStringLiteral("3"));
    }

    void namesEachResponsibleOnce()
    {
        // Executor, creator and auditor.
        const char* const rows[][2] = {{"||", ""},       {"A|B|C", "A, B, C"}, {"A|A|A", "A"},
                                       {"|B|", "B"},     {"||C", "C"},         {"A|B|B", "A, B"},
                                       {"A|B|A", "A, B"}};
        for (const auto& [people, names] : rows) {
            const QStringList parts = QString::fromLatin1(people).split(QLatin1Char('|'));
            TaskInfo info = fullInfo();
            info.executorName = parts[0];
            info.creatorName = parts[1];
            info.auditorName = parts[2];
            m_description->updateTask(info);
            QCOMPARE(text("lbResponsible"),
                     QStringLiteral("Ответственные: ") + QLatin1String(names));
        }
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
        const auto showsTexts = [this] {
            const bool shows = child<QWidget>("copyrightTasksWidget")->isVisible();
            return shows != child<QWidget>("mainWidget")->isVisible() ? QVariant(shows)
                                                                      : QVariant();
        };
        const auto textsButton = child<QPushButton>("pbCopyrightTasks");
        m_description->show();
        m_description->updateTask(fullInfo());
        QCOMPARE(showsTexts(), QVariant(false));
        textsButton->click();
        QCOMPARE(showsTexts(), QVariant(true));
        child<QComboBox>("cbTexts")->setCurrentIndex(1);
        QVERIFY(text("lbUrl").contains(QStringLiteral("https://b.org")));
        // What stands in the address stays in the link.
        QCOMPARE(text("lbUrl").count(QLatin1Char('"')), 4);
        QCOMPARE(text("lbUrl").count(QLatin1Char('<')), 2);
        child<QComboBox>("cbTexts")->setCurrentIndex(2);
        QCOMPARE(text("lbUrl"), QStringLiteral("URL: file:///etc/passwd"));

        m_description->updateTask(fullInfo());
        QCOMPARE(showsTexts(), QVariant(true));
        QCOMPARE(child<QComboBox>("cbTexts")->count(), 3);
        QVERIFY(text("lbUrl").contains(QStringLiteral("https://a.org")));
        child<QPushButton>("pbMainInfo")->click();
        QCOMPARE(showsTexts(), QVariant(false));

        textsButton->click();
        TaskInfo withoutTexts = fullInfo();
        withoutTexts.texts.clear();
        m_description->updateTask(withoutTexts);
        QCOMPARE(showsTexts(), QVariant(false));
        QVERIFY(!textsButton->isEnabled());
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
        QFile sheetFile(sheet);
        QVERIFY(sheetFile.open(QIODevice::WriteOnly));
        sheetFile.write("p { color: #123456 }");
        sheetFile.close();
        for (const QString& source : {sheet, QUrl::fromLocalFile(sheet).toString()}) {
            text.setText(QStringLiteral("<style>@import url(%1);</style><p>a</p>").arg(source));
            QVERIFY(!text.toHtml().contains(QLatin1String("#123456")));
        }

        // What is in the text stays, however long, unless it would fill the memory.
        for (const bool isHuge : {false, true}) {
            QImage inner(isHuge ? QSize(8000, 8000) : QSize(300, 300),
                         isHuge ? QImage::Format_Mono : QImage::Format_RGB32);
            inner.fill(isHuge ? 1 : QColor(Qt::red).rgb());
            QBuffer buffer;
            QVERIFY(inner.save(&buffer, isHuge ? "PNG" : "BMP"));
            text.setText(QStringLiteral(
                             "<img width=400 height=300 src=\"data:image/png;base64,%1\"><b>b</b>")
                             .arg(QString::fromLatin1(buffer.data().toBase64())));
            QCOMPARE(text.grab().toImage().pixelColor(200, 150) == Qt::red, !isHuge);
            QVERIFY(text.toPlainText().endsWith(QLatin1Char('b')));
        }

        for (const char* scheme : {"https", "file", "ftp"})
            QDesktopServices::setUrlHandler(QLatin1String(scheme), this, "open");
        for (const char* link : {"https://example.org/a", "file:///etc/passwd", "ftp://x/y", "#a"})
            emit text.anchorClicked(QUrl(QLatin1String(link)));
        QCOMPARE(m_opened, QList<QUrl>({QUrl(QStringLiteral("https://example.org/a"))}));
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

    void openedListIsUpToDate()
    {
        // The only team is the chosen one, and no index has changed.
        session().setTeams({{QStringLiteral("1"), QStringLiteral("Первая")}});
        session().setTeamID(QStringLiteral("1"));
        TaskListForm list(m_service.get(), m_mainForm.get());
        const auto rows = list.findChild<QListWidget*>();
        list.bringUpToDate();
        QCOMPARE(
            rowTexts(rows),
            QStringList({QStringLiteral("Письмо | Истекает: "), QStringLiteral("Б | Истекает: ")}));
        QCOMPARE(list.windowTitle(), QStringLiteral("Задачи команды \"Первая\""));
        // Nothing new: what has been scrolled to stays.
        const QPointer<QWidget> firstRow = rows->itemWidget(rows->item(0));
        list.bringUpToDate();
        QVERIFY(firstRow);
        session().setTasks({makeTask("11", "Ответ")}, QStringLiteral("1"));
        list.bringUpToDate();
        QCOMPARE(rowTexts(rows), QStringList(QStringLiteral("Ответ | Истекает: ")));

        // Another user signs in.
        session().setTeams({{QStringLiteral("1"), QStringLiteral("Первая")},
                            {QStringLiteral("7"), QStringLiteral("Седьмая")}});
        session().setTeamID(QStringLiteral("7"));
        session().setTasks({makeTask("71", "Чужая")}, QStringLiteral("7"));
        list.bringUpToDate();
        QCOMPARE(rowTexts(rows), QStringList(QStringLiteral("Чужая | Истекает: ")));
        QCOMPARE(list.findChild<QComboBox*>()->currentText(), QStringLiteral("Седьмая"));
    }

    void showsTheRowsNearThePartInView()
    {
        QList<Task> tasks;
        for (int i = 0; i < 200; ++i)
            tasks << makeTask(qPrintable(QString::number(1000 + i)), "Письмо");
        session().setTasks(tasks, QStringLiteral("2"));
        m_list->bringUpToDate();
        m_list->show();
        const auto shown = [this] {
            QCoreApplication::processEvents();
            QList<bool> rows;
            for (const int index : {0, 25, 100, 199})
                rows << row(index)->isVisible();
            return rows;
        };
        QCOMPARE(shown(), QList<bool>({true, true, false, false}));
        list()->scrollToItem(list()->item(100), QAbstractItemView::PositionAtTop);
        QCOMPARE(shown(), QList<bool>({false, false, true, false}));
        QCOMPARE(row(100)->mapTo(list()->viewport(), QPoint()), QPoint());
        list()->scrollToBottom();
        QCOMPARE(shown(), QList<bool>({false, false, false, true}));
        clickRow(199);
        QVERIFY(visibleForm<TaskDescriptionForm>());
    }

    void escapeClosesTheListWithItsDescription()
    {
        m_list->show();
        clickRow(0);
        QVERIFY(visibleForm<TaskDescriptionForm>());
        QTest::keyClick(m_list.get(), Qt::Key_Escape);
        QVERIFY(!m_list->isVisible() && !visibleForm<TaskDescriptionForm>());
    }

private:
    Session& session() { return *m_service->session(); }
    QComboBox* box(const char* name)
    {
        return m_picker->findChild<QComboBox*>(QLatin1String(name));
    }
    QString picked()
    {
        return m_picker->selectedTeamId() + QLatin1Char('/') + m_picker->selectedTaskId();
    }
    QListWidget* list() const { return m_list->findChild<QListWidget*>(); }
    QWidget* row(int index) const { return list()->itemWidget(list()->item(index)); }
    void clickRow(int index) const { row(index)->findChild<QPushButton*>()->click(); }
    /// A part of the description.
    template <class Widget> Widget* child(const char* name) const
    {
        return m_description->findChild<Widget*>(QLatin1String(name));
    }
    QString text(const char* name) const { return labelText(*m_description, name); }

    std::unique_ptr<SignedInService> m_service;
    std::unique_ptr<QuietMainForm> m_mainForm;
    std::unique_ptr<TaskForm> m_picker;
    std::unique_ptr<TaskListForm> m_list;
    std::unique_ptr<TaskDescriptionForm> m_description;
    QList<QUrl> m_opened;
};

TESSAPORT_TEST_MAIN(TaskPanelsTest, QApplication)

#include "tst_taskpanels.moc"
