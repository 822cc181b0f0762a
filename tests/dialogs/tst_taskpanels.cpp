// SPDX-License-Identifier: GPL-3.0-or-later
#include "PanelFixture.h"

#include "dialogs/PlainToolTip.h"
#include "dialogs/ScrollText.h"
#include "dialogs/TaskDescriptionForm.h"
#include "dialogs/TaskListForm.h"
#include "res/Resources.h"
#include "support/TestMain.h"
#include "support/TestServiceUrl.h"

#include <QComboBox>
#include <QDesktopWidget>
#include <QLabel>
#include <QListWidget>
#include <QPushButton>
#include <QTextBrowser>

namespace {

TaskInfo fullInfo()
{
    TaskInfo info;
    info.id = QStringLiteral("21");
    info.title = QStringLiteral("<b>Тексты");
    info.deadline = QDateTime({2020, 4, 26}, {18, 0});
    info.text = QStringLiteral("<b>Три</b> текста");
    info.files = {{{}, {}, QStringLiteral("Бриф.docx"), QStringLiteral("49357")},
                  {{}, {}, QStringLiteral("<i>Макет</i>"), QStringLiteral("много")},
                  {{}, {}, QStringLiteral("Съёмка.mov"), QStringLiteral("3221225472")},
                  {{}, {}, QStringLiteral("a"), QStringLiteral("1023")},
                  {{}, {}, QStringLiteral("b"), QStringLiteral("2251799813685248")}};
    TextTask first;
    first.title = QStringLiteral("<b>Первый");
    first.page = QUrl(QStringLiteral("https://a.org/?b=1&copy=2"));
    first.task = QStringLiteral("О нас");
    first.minCount = QStringLiteral("2500");
    first.keywords = {
        {{}, QStringLiteral("<b>редакция"), QStringLiteral("2"), QStringLiteral("1")}};
    TextTask second;
    second.page = QUrl(QStringLiteral("https://b.org/?q=\"><h1>x</h1>"));
    TextTask third;
    third.page = QUrl(QStringLiteral("file:///etc/a&b"));
    info.texts = {first, second, third};
    return info;
}

/// The texts of the labels in a list's rows, those of one row separated by "|", and a plus behind
/// those that a tool tip tells, too. A row that stands on the next one is told as such.
QStringList rowTexts(const QListWidget* list)
{
    QStringList texts;
    for (int i = 0; i < list->count(); ++i) {
        QStringList row;
        for (const QWidget* part : list->itemWidget(list->item(i))->findChildren<QWidget*>()) {
            const QString text = part->property("text").toString();
            if (!qobject_cast<const QPushButton*>(part))
                row << text + QLatin1String(part->toolTip() == plainToolTip(text) ? "+" : "");
        }
        const bool isTooHigh =
            list->itemWidget(list->item(i))->sizeHint().height() > list->gridSize().height();
        texts << row.join(QLatin1Char('|')) + QLatin1String(isTooHigh ? " too high" : "");
    }
    return texts;
}

} // namespace

/// The list of a team's tasks and the descriptions that it opens.
class TaskPanelsTest : public QObject {
    Q_OBJECT

private slots:
    void initTestCase()
    {
        initResources();
        setTestServiceUrl(QStringLiteral("https://localhost:1"));
    }
    void init()
    {
        m_description.reset();
        m_list.reset();
        m_service = std::make_unique<TwoTeams>();
        m_mainForm = std::make_unique<QuietMainForm>(m_service.get());
        m_list = std::make_unique<TaskListForm>(m_service.get(), m_mainForm.get());
        m_description = std::make_unique<TaskDescriptionForm>(QStringLiteral("21"), m_service.get(),
                                                              m_list.get());
    }

    void listsTheTasksOfTheChosenTeam()
    {
        QCOMPARE(rowTexts(list()),
                 QStringList({QStringLiteral("<h1>Макет</h1> | Истекает: 2020-04-26 18:05:00+"),
                              QStringLiteral("Текст | Истекает: +")}));
        QVERIFY(row(0)->findChild<QLabel*>()->toolTip().contains(QStringLiteral("&lt;h1&gt;")));
        auto* const button = row(1)->findChild<QPushButton*>();
        QCOMPARE(button->text(), QStringLiteral("Цели задач"));
        QCOMPARE(button->accessibleDescription(), QStringLiteral("Текст | Истекает: "));
        const QImage atRest(
            QStringLiteral(":/images/res/images/task_list_dialog/task_target_button_hovered.png"));
        QCOMPARE(button->grab().toImage().pixelColor(4, 20), atRest.pixelColor(4, 20));
        const QRect area = QApplication::desktop()->availableGeometry(m_list.get());
        const QPoint place(area.right() - 394, area.bottom() - (565 + 73));
        drag(m_list.get(), Qt::LeftButton);
        drag(m_description.get(), Qt::LeftButton);
        QCOMPARE(m_list->pos(), place);
        QCOMPARE(m_description->pos(), place - QPoint(361, 0));

        // It is built when the team changes and not before.
        session().setTasks({}, QStringLiteral("2"));
        emit session().teamsUpdated();
        QCOMPARE(list()->count(), 2);
        emit m_service->teamChanged(QStringLiteral("1"));
        QCOMPARE(rowTexts(list()).value(0), QStringLiteral("Письмо | Истекает: +"));
        QCOMPARE(m_list->windowTitle(), QStringLiteral("Задачи команды \"Первая\""));
        const auto box = m_list->findChild<QComboBox*>();
        QCOMPARE(box->currentText() + box->itemText(1), QStringLiteral("ПерваяВторая"));
        session().setTeams({{QStringLiteral("1"), QStringLiteral("<i>Она")}});
        QCOMPARE(box->currentText(), QStringLiteral("<i>Она"));
        QCOMPARE(box->toolTip(), box->itemData(0, Qt::ToolTipRole).toString());
        QVERIFY(box->toolTip().contains(QLatin1String("&lt;")));
        emit m_service->teamChanged(QStringLiteral("3"));
        QCOMPARE(list()->count(), 0);
        QCOMPARE(m_list->windowTitle(), QStringLiteral("Задачи команды \"\""));
    }

    void deadlineIsReadBehindALongTitle()
    {
        const auto shown = [this](int minute) {
            session().setTasks({makeTask("21", "Очень длинное название задачи, которому нет места",
                                         QDateTime({2020, 4, 26}, {18, minute}))},
                               QStringLiteral("2"));
            m_list->bringUpToDate();
            return row(0)->grab().toImage();
        };
        QVERIFY(shown(5) != shown(6));
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
        clickRow(0);
        session().setTaskInfo(QStringLiteral("21"), fullInfo());
        clickRow(0);
        QCOMPARE(labelText(*first, "lbAttachmentsNumber"), QStringLiteral("5"));
        emit m_mainForm->hideAll();
        emit m_mainForm->hideAll();
        QVERIFY(!m_list->isVisible() && !first->isVisible());
        emit m_mainForm->showAll();
        QVERIFY(m_list->isVisible() && first->isVisible());
        // What was hidden by itself stays so.
        m_list->on_pbHide_clicked();
        emit m_mainForm->showAll();
        emit m_mainForm->hideAll();
        emit m_mainForm->showAll();
        QVERIFY(!m_list->isVisible() && !first->isVisible());
        m_list.reset();
        QVERIFY(!first);
    }

    void describesItsTask()
    {
        QCOMPARE(text("lbTaskDeadline"), QStringLiteral("..."));
        const auto icon = [](const QWidget& form) {
            const auto* label = form.findChild<QLabel*>(QStringLiteral("lbIcon"));
            return label->pixmap(Qt::ReturnByValue).toImage();
        };
        QCOMPARE(icon(*m_description), icon(*m_list));
        emit m_service->taskInfoUpdated(fullInfo());
        emit m_service->taskInfoUpdated(TaskInfo());
        const auto title = child<ScrollText>("");
        QCOMPARE(title->text(), QStringLiteral("<b>Тексты"));
        QVERIFY(title->toolTip().contains(QLatin1String("&lt;b&gt;")));
        QCOMPARE(text("lbTaskDeadline"), QStringLiteral("Истекает: 2020-04-26 18:00:00"));
        QCOMPARE(text("lbAttachmentsNumber"), QStringLiteral("5"));
        QCOMPARE(rowTexts(child<QListWidget>("listAttachments")),
                 QStringList({QStringLiteral("Бриф.docx+|48.20 KB"),
                              QStringLiteral("<i>Макет</i>+|0.00 B"),
                              QStringLiteral("Съёмка.mov+|3.00 GB"), QStringLiteral("a+|1023.00 B"),
                              QStringLiteral("b+|2048.00 TB")}));
        QCOMPARE(child<QTextBrowser>("textTask")->toPlainText(), QStringLiteral("Три текста"));
        QCOMPARE(text("lbUrl"),
                 QStringLiteral("URL: <a href=\"https://a.org/?b=1&amp;copy=2\" style=\"color:rgb("
                                "100,100,100)\">https://a.org/?b=1&amp;copy=2</a>"));
        QCOMPARE(child<QTextBrowser>("textRequirements")->toPlainText(), QStringLiteral("О нас"));
        QVERIFY(child<QLabel>("lbUrl")->openExternalLinks());
        for (const char* name : {"lbResponsible", "lbSignNumber"})
            QCOMPARE(child<QLabel>(name)->textFormat(), Qt::PlainText);
        QCOMPARE(text("lbSignNumber"), QStringLiteral("Количество знаков: 2500"));
        QCOMPARE(rowTexts(child<QListWidget>("listKeywords")),
                 QStringList(QStringLiteral("<b>редакция+|Точн. 2|Неточн. 1")));

        TaskInfo bare;
        bare.id = QStringLiteral("21");
        emit m_service->taskInfoUpdated(bare);
        QCOMPARE(text("lbAttachmentsNumber"), QStringLiteral("0"));
        QCOMPARE(child<QListWidget>("listAttachments")->count(), 0);
        QCOMPARE(text("lbTaskDeadline"), QStringLiteral("Истекает: "));

        // What is cached is for when the service can't be asked.
        session().setTaskInfo(bare.id, fullInfo());
        session().setIsOnline(true);
        QSignalSpy unanswered(m_service.get(), &TessaPort::onlineChanged);
        m_description->requestUpdateTask(bare.id);
        QVERIFY(unanswered.wait());
        QCOMPARE(text("lbAttachmentsNumber"), QStringLiteral("0"));
        session().setIsOnline(false);
        m_description->requestUpdateTask(bare.id);
        QCOMPARE(text("lbAttachmentsNumber"), QStringLiteral("5"));
        const TaskDescriptionForm another(bare.id, m_service.get(), m_list.get());
        QCOMPARE(labelText(another, "lbAttachmentsNumber"), QStringLiteral("5"));
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
        QCOMPARE(text("lbUrl"), QStringLiteral("URL: file:///etc/a&amp;b"));

        m_description->updateTask(fullInfo());
        QCOMPARE(showsTexts(), QVariant(true));
        QCOMPARE(child<QComboBox>("cbTexts")->count(), 3);
        QCOMPARE(child<QComboBox>("cbTexts")->currentText(), QStringLiteral("<b>Первый"));
        QCOMPARE(child<QComboBox>("cbTexts")->currentData(Qt::ToolTipRole).toString(),
                 plainToolTip(QStringLiteral("<b>Первый")));
        QVERIFY(text("lbUrl").contains(QStringLiteral("https://a.org")));
        child<QPushButton>("pbMainInfo")->click();
        QCOMPARE(showsTexts(), QVariant(false));

        textsButton->click();
        TaskInfo withoutTexts = fullInfo();
        withoutTexts.texts.clear();
        m_description->updateTask(withoutTexts);
        QCOMPARE(showsTexts(), QVariant(false));
        QVERIFY(!textsButton->isEnabled());
        m_description->updateTask(fullInfo());
        QVERIFY(textsButton->isEnabled());
        child<QPushButton>("pbHide")->click();
        QVERIFY(!m_description->isVisible());
    }

    void openedListIsUpToDate()
    {
        // The only team is the chosen one, and no index has changed.
        session().setTeams({{QStringLiteral("1"), QStringLiteral("Первая")}});
        session().setTeamID(QStringLiteral("1"));
        TaskListForm list(m_service.get(), m_mainForm.get());
        const auto rows = list.findChild<QListWidget*>();
        list.bringUpToDate();
        QCOMPARE(rowTexts(rows),
                 QStringList(
                     {QStringLiteral("Письмо | Истекает: +"), QStringLiteral("Б | Истекает: +")}));
        QCOMPARE(list.windowTitle(), QStringLiteral("Задачи команды \"Первая\""));
        // Nothing new in it: what has been scrolled to stays.
        const QPointer<QWidget> firstRow = rows->itemWidget(rows->item(0));
        session().setTeams({{QStringLiteral("1"), QStringLiteral("Лучшая")}});
        list.bringUpToDate();
        QVERIFY(firstRow);
        QCOMPARE(list.windowTitle(), QStringLiteral("Задачи команды \"Лучшая\""));
        session().setTasks({makeTask("11", "Ответ")}, QStringLiteral("1"));
        list.bringUpToDate();
        QCOMPARE(rowTexts(rows), QStringList(QStringLiteral("Ответ | Истекает: +")));

        // Another user signs in.
        session().setTeams({{QStringLiteral("1"), QStringLiteral("Первая")},
                            {QStringLiteral("7"), QStringLiteral("Седьмая")}});
        session().setTeamID(QStringLiteral("7"));
        session().setTasks({makeTask("71", "Чужая")}, QStringLiteral("7"));
        list.bringUpToDate();
        QCOMPARE(rowTexts(rows), QStringList(QStringLiteral("Чужая | Истекает: +")));
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
        // Also by the keyboard.
        QApplication::setActiveWindow(m_list.get());
        row(180)->findChild<QPushButton*>()->setFocus();
        QVERIFY(list()->viewport()->rect().contains(row(180)->geometry()));
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
    QListWidget* list() const { return m_list->findChild<QListWidget*>(); }
    QWidget* row(int index) const { return list()->itemWidget(list()->item(index)); }
    void clickRow(int index) const { row(index)->findChild<QPushButton*>()->click(); }
    /// A part of the description.
    template <class Widget> Widget* child(const char* name) const
    {
        return m_description->findChild<Widget*>(QLatin1String(name));
    }
    QString text(const char* name) const { return labelText(*m_description, name); }

    std::unique_ptr<TwoTeams> m_service;
    std::unique_ptr<QuietMainForm> m_mainForm;
    std::unique_ptr<TaskListForm> m_list;
    std::unique_ptr<TaskDescriptionForm> m_description;
};

TESSAPORT_TEST_MAIN(TaskPanelsTest, QApplication)

#include "tst_taskpanels.moc"
