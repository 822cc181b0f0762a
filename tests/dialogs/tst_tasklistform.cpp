// SPDX-License-Identifier: GPL-3.0-or-later
#include "PanelFixture.h"

#include "dialogs/TaskDescriptionForm.h"
#include "dialogs/TaskListForm.h"
#include "res/Resources.h"
#include "support/TestMain.h"

#include <QComboBox>
#include <QDesktopWidget>
#include <QLabel>
#include <QListWidget>
#include <QPushButton>

namespace {

Task makeTask(const QString& id, const QString& title, const QDateTime& deadline = {})
{
    Task task;
    task.id = id;
    task.title = title;
    task.deadline = deadline;
    return task;
}

TaskInfo makeInfo(const QString& id, const QString& title)
{
    TaskInfo info;
    info.id = id;
    info.title = title;
    return info;
}

} // namespace

class TestTaskListForm : public QObject {
    Q_OBJECT

private slots:
    void initTestCase() { initResources(); }
    void init();
    void cleanup();

    void listsTheTasksOfTheTeam();
    void followsTheChosenTeam();
    void listOfTheFirstTeamWaitsForAChange();
    void staysWhenTheSameTeamsComeAgain();
    void rowButtonTogglesTheDescription();
    void hideAllTakesAwayAndShowAllBringsBack();
    void keyboardFocusStaysInView();
    void standsOnTheMainWindowAndLocksNothing();
    void markupOfTheServiceIsText();

private:
    void makeForm(const QString& teamId);
    QListWidget* list() const { return m_form->findChild<QListWidget*>(); }
    QComboBox* teams() const { return m_form->findChild<QComboBox*>(); }
    QWidget* row(int index) const { return list()->itemWidget(list()->item(index)); }
    QStringList rowTexts() const;
    void clickRow(int index) const { row(index)->findChild<QPushButton*>()->click(); }

    std::unique_ptr<SignedInService> m_service;
    std::unique_ptr<QuietMainForm> m_mainForm;
    std::unique_ptr<TaskListForm> m_form;
};

void TestTaskListForm::init()
{
    m_service = std::make_unique<SignedInService>();
    m_mainForm = std::make_unique<QuietMainForm>(m_service.get());
    Session* session = m_service->session();
    session->setTeams({{QStringLiteral("1"), QStringLiteral("Первая")},
                       {QStringLiteral("2"), QStringLiteral("Вторая")}});
    session->setTasks({makeTask(QStringLiteral("11"), QStringLiteral("Письмо"))},
                      QStringLiteral("1"));
    session->setTasks(
        {makeTask(QStringLiteral("21"), QStringLiteral("Макет"), QDateTime({2020, 4, 26}, {18, 5})),
         makeTask(QStringLiteral("22"), QStringLiteral("Текст")), unassignedTask()},
        QStringLiteral("2"));
    session->setTaskInfo(QStringLiteral("21"),
                         makeInfo(QStringLiteral("21"), QStringLiteral("Цели макета")));
    session->setTaskInfo(QStringLiteral("22"),
                         makeInfo(QStringLiteral("22"), QStringLiteral("Цели текста")));
}

void TestTaskListForm::cleanup()
{
    m_form.reset();
    m_mainForm.reset();
    m_service.reset();
}

void TestTaskListForm::makeForm(const QString& teamId)
{
    m_service->session()->setTeamID(teamId);
    m_form = std::make_unique<TaskListForm>(m_service.get(), m_mainForm.get());
}

QStringList TestTaskListForm::rowTexts() const
{
    QStringList texts;
    for (int i = 0; i < list()->count(); ++i)
        texts << row(i)->findChild<QLabel*>(QStringLiteral("lbTask"))->text();
    return texts;
}

void TestTaskListForm::listsTheTasksOfTheTeam()
{
    makeForm(QStringLiteral("2"));
    QCOMPARE(rowTexts(),
             QStringList({QStringLiteral("Макет | Истекает: 2020-04-26 18:05:00"),
                          QStringLiteral("Текст | Истекает: ")}));
    QCOMPARE(m_form->windowTitle(), QStringLiteral("Задачи команды \"Вторая\""));
    QCOMPARE(teams()->toolTip(), QStringLiteral("Вторая"));

    m_form->show();
    const auto label = row(0)->findChild<QLabel*>();
    const auto button = row(0)->findChild<QPushButton*>();
    QCOMPARE(label->size(), QSize(265, 16));
    QCOMPARE(button->size(), QSize(84, 24));
    QVERIFY(button->mapTo(m_form.get(), QPoint(84, 0)).x() <= 15 + 377);
    QCOMPARE(row(1)->mapTo(m_form.get(), QPoint()) - row(0)->mapTo(m_form.get(), QPoint()),
             QPoint(0, 26));
}

void TestTaskListForm::followsTheChosenTeam()
{
    makeForm(QStringLiteral("2"));
    emit m_service->teamChanged(QStringLiteral("1"));
    QCOMPARE(rowTexts(), QStringList(QStringLiteral("Письмо | Истекает: ")));
    QCOMPARE(m_form->windowTitle(), QStringLiteral("Задачи команды \"Первая\""));

    emit m_service->teamChanged(QStringLiteral("3"));
    QCOMPARE(teams()->currentIndex(), -1);
    QCOMPARE(list()->count(), 0);
    QCOMPARE(m_form->windowTitle(), QStringLiteral("Задачи команды \"\""));
}

void TestTaskListForm::listOfTheFirstTeamWaitsForAChange()
{
    makeForm(QStringLiteral("1"));
    QCOMPARE(teams()->currentIndex(), 0);
    QCOMPARE(list()->count(), 0);
    teams()->setCurrentIndex(1);
    QCOMPARE(list()->count(), 2);
    teams()->setCurrentIndex(0);
    QCOMPARE(list()->count(), 1);
}

void TestTaskListForm::staysWhenTheSameTeamsComeAgain()
{
    makeForm(QStringLiteral("2"));
    const QPointer<QWidget> before = row(0);
    m_service->session()->setTasks({}, QStringLiteral("2"));
    emit m_service->session()->teamsUpdated();
    QCOMPARE(teams()->currentIndex(), 1);
    QCOMPARE(list()->count(), 2);
    QVERIFY(before);
}

void TestTaskListForm::rowButtonTogglesTheDescription()
{
    makeForm(QStringLiteral("2"));
    m_form->show();
    QCOMPARE(visibleForm<TaskDescriptionForm>(), nullptr);

    clickRow(0);
    const QPointer<TaskDescriptionForm> first = visibleForm<TaskDescriptionForm>();
    QVERIFY(first);
    QVERIFY(!first->isModal());
    QCOMPARE(first->geometry().topRight() + QPoint(1, 0), m_form->pos());

    clickRow(1);
    QVERIFY(!first->isVisible());
    QVERIFY(visibleForm<TaskDescriptionForm>());
    clickRow(1);
    QCOMPARE(visibleForm<TaskDescriptionForm>(), nullptr);

    emit m_service->teamChanged(QStringLiteral("1"));
    emit m_service->teamChanged(QStringLiteral("2"));
    clickRow(0);
    QCOMPARE(visibleForm<TaskDescriptionForm>(), first.data());
    m_form->on_pbHide_clicked();
    QVERIFY(!m_form->isVisible());
    QVERIFY(!first->isVisible());
    m_form.reset();
    QVERIFY(!first);
}

void TestTaskListForm::hideAllTakesAwayAndShowAllBringsBack()
{
    makeForm(QStringLiteral("2"));
    emit m_mainForm->hideAll();
    emit m_mainForm->showAll();
    QVERIFY(!m_form->isVisible());

    m_form->show();
    clickRow(0);
    TaskDescriptionForm* const closed = visibleForm<TaskDescriptionForm>();
    clickRow(1);
    TaskDescriptionForm* const open = visibleForm<TaskDescriptionForm>();
    emit m_mainForm->hideAll();
    emit m_mainForm->hideAll();
    QVERIFY(!m_form->isVisible());
    QVERIFY(!open->isVisible());
    emit m_mainForm->showAll();
    QVERIFY(m_form->isVisible());
    QVERIFY(open->isVisible());
    QVERIFY(!closed->isVisible());

    m_form->on_pbHide_clicked();
    emit m_mainForm->showAll();
    QVERIFY(!m_form->isVisible());
    QVERIFY(!open->isVisible());
}

void TestTaskListForm::keyboardFocusStaysInView()
{
    QList<Task> tasks;
    for (int i = 0; i < 50; ++i)
        tasks << makeTask(QString::number(i + 1), QStringLiteral("Задача"));
    m_service->session()->setTasks(tasks, QStringLiteral("2"));
    makeForm(QStringLiteral("2"));
    m_form->show();
    QApplication::setActiveWindow(m_form.get());
    for (const int index : {49, 0, 30}) {
        row(index)->findChild<QPushButton*>()->setFocus();
        QVERIFY(list()->viewport()->rect().contains(row(index)->geometry()));
    }
}

void TestTaskListForm::standsOnTheMainWindowAndLocksNothing()
{
    makeForm(QStringLiteral("2"));
    const QRect area = QApplication::desktop()->availableGeometry(m_form.get());
    QCOMPARE(m_form->pos(), QPoint(area.right() - 394, area.bottom() - (565 + 73)));
    QVERIFY(!m_form->isModal());
}

void TestTaskListForm::markupOfTheServiceIsText()
{
    const QString markup = QStringLiteral("<img src=\"x\"><h1>A</h1>");
    m_service->session()->setTasks({makeTask(QStringLiteral("21"), markup)}, QStringLiteral("2"));
    makeForm(QStringLiteral("2"));
    const auto label = row(0)->findChild<QLabel*>();
    QCOMPARE(label->textFormat(), Qt::PlainText);
    QVERIFY(label->text().startsWith(markup));
    QVERIFY(label->toolTip().contains(QStringLiteral("&lt;h1&gt;")));
}

TESSAPORT_TEST_MAIN(TestTaskListForm, QApplication)
#include "tst_tasklistform.moc"
