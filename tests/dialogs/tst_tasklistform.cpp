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

class TestTaskListForm : public QObject {
    Q_OBJECT

private slots:
    void initTestCase() { initResources(); }
    void init()
    {
        m_service = std::make_unique<SignedInService>();
        m_mainForm = std::make_unique<QuietMainForm>(m_service.get());
        Session* const session = m_service->session();
        session->setTeams({{QStringLiteral("1"), QStringLiteral("Первая")},
                           {QStringLiteral("2"), QStringLiteral("Вторая")}});
        session->setTasks({makeTask("11", "Письмо")}, QStringLiteral("1"));
        session->setTasks({makeTask("21", "<h1>Макет</h1>", QDateTime({2020, 4, 26}, {18, 5})),
                           makeTask("22", "Текст"), unassignedTask()},
                          QStringLiteral("2"));
        makeForm("2");
    }
    void cleanup()
    {
        m_form.reset();
        m_mainForm.reset();
        m_service.reset();
    }

    void listsTheTasksOfTheChosenTeam()
    {
        QCOMPARE(rowTexts(),
                 QStringList({QStringLiteral("<h1>Макет</h1> | Истекает: 2020-04-26 18:05:00"),
                              QStringLiteral("Текст | Истекает: ")}));
        QVERIFY(row(0)->findChild<QLabel*>()->toolTip().contains(QStringLiteral("&lt;h1&gt;")));
        QCOMPARE(m_form->windowTitle(), QStringLiteral("Задачи команды \"Вторая\""));
        const QRect area = QApplication::desktop()->availableGeometry(m_form.get());
        QCOMPARE(m_form->pos(), QPoint(area.right() - 394, area.bottom() - (565 + 73)));
        QVERIFY(!m_form->isModal());

        emit m_service->teamChanged(QStringLiteral("1"));
        QCOMPARE(rowTexts(), QStringList(QStringLiteral("Письмо | Истекает: ")));
        emit m_service->teamChanged(QStringLiteral("3"));
        QCOMPARE(list()->count(), 0);
        QCOMPARE(m_form->windowTitle(), QStringLiteral("Задачи команды \"\""));
    }

    void isBuiltWhenTheTeamChangesAndNotBefore()
    {
        m_service->session()->setTasks({}, QStringLiteral("2"));
        emit m_service->session()->teamsUpdated();
        QCOMPARE(list()->count(), 2);

        makeForm("1");
        QCOMPARE(list()->count(), 0);
        teams()->setCurrentIndex(1);
        teams()->setCurrentIndex(0);
        QCOMPARE(list()->count(), 1);
    }

    void rowButtonTogglesTheDescription()
    {
        m_form->show();
        clickRow(0);
        const QPointer<TaskDescriptionForm> first = visibleForm<TaskDescriptionForm>();
        QVERIFY(first && !first->isModal());
        QCOMPARE(first->geometry().topRight() + QPoint(1, 0), m_form->pos());
        clickRow(1);
        QVERIFY(!first->isVisible());
        QVERIFY(visibleForm<TaskDescriptionForm>());
        clickRow(1);
        QVERIFY(!visibleForm<TaskDescriptionForm>());

        emit m_service->teamChanged(QStringLiteral("1"));
        emit m_service->teamChanged(QStringLiteral("2"));
        clickRow(0);
        QCOMPARE(visibleForm<TaskDescriptionForm>(), first.data());
        m_form->on_pbHide_clicked();
        QVERIFY(!m_form->isVisible() && !first->isVisible());
        m_form.reset();
        QVERIFY(!first);
    }

    void showAllBringsBackWhatHideAllTookAway()
    {
        emit m_mainForm->hideAll();
        emit m_mainForm->showAll();
        QVERIFY(!m_form->isVisible());

        m_form->show();
        clickRow(0);
        clickRow(1);
        TaskDescriptionForm* const open = visibleForm<TaskDescriptionForm>();
        emit m_mainForm->hideAll();
        emit m_mainForm->hideAll();
        QVERIFY(!m_form->isVisible() && !open->isVisible());
        emit m_mainForm->showAll();
        QVERIFY(m_form->isVisible());
        QCOMPARE(visibleForm<TaskDescriptionForm>(), open);
    }

private:
    void makeForm(const char* teamId)
    {
        m_service->session()->setTeamID(QLatin1String(teamId));
        m_form = std::make_unique<TaskListForm>(m_service.get(), m_mainForm.get());
    }
    QListWidget* list() const { return m_form->findChild<QListWidget*>(); }
    QComboBox* teams() const { return m_form->findChild<QComboBox*>(); }
    QWidget* row(int index) const { return list()->itemWidget(list()->item(index)); }
    QStringList rowTexts() const
    {
        QStringList texts;
        for (int i = 0; i < list()->count(); ++i)
            texts << labelText(*row(i), "lbTask");
        return texts;
    }
    void clickRow(int index) const { row(index)->findChild<QPushButton*>()->click(); }

    std::unique_ptr<SignedInService> m_service;
    std::unique_ptr<QuietMainForm> m_mainForm;
    std::unique_ptr<TaskListForm> m_form;
};

TESSAPORT_TEST_MAIN(TestTaskListForm, QApplication)
#include "tst_tasklistform.moc"
