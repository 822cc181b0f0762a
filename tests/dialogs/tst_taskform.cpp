// SPDX-License-Identifier: GPL-3.0-or-later
#include "PanelFixture.h"

#include "dialogs/TaskForm.h"
#include "res/Resources.h"
#include "support/TestMain.h"
#include "support/TestServiceUrl.h"

#include <QComboBox>
#include <QPushButton>

#include <functional>

/// The picker of a task.
class TaskFormTest : public QObject {
    Q_OBJECT

private slots:
    void initTestCase()
    {
        initResources();
        setTestServiceUrl(QStringLiteral("https://localhost:1"));
    }
    void init()
    {
        m_picker.reset();
        m_service = std::make_unique<TwoTeams>();
        m_mainForm = std::make_unique<QuietMainForm>(m_service.get());
        m_picker = std::make_unique<TaskForm>(m_mainForm.get());
    }

    void loadsUntilAnyAnswer()
    {
        const std::function<void()> answers[] = {
            [this] { emit m_service->error(UnknownError); },
            [this] { emit session().teamsUpdated(); },
            [this] { emit session().tasksUpdated(QStringLiteral("1")); },
            [this] { emit session().taskClosed(QStringLiteral("11")); },
        };
        // Nobody listens at the address of the service.
        session().setIsOnline(true);
        QSignalSpy unanswered(m_service.get(), &TessaPort::onlineChanged);
        m_picker->reload();
        QVERIFY(unanswered.wait());
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

    void leavesOnlyBlockingTasks()
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

    void tellsTheDeadlineIfThereIsOne()
    {
        session().setTasks(
            {makeTask("22", "<b>А</b>", QDateTime({2026, 3, 9}, {7, 5})), makeTask("23", "Б")},
            QStringLiteral("2"));
        QCOMPARE(box("cbTask")->currentText(),
                 QStringLiteral("<b>А</b> | Истекает: 2026-03-09 07:05:00"));
        QVERIFY(box("cbTask")->toolTip().contains(QStringLiteral("&lt;b&gt;")));
        QCOMPARE(box("cbTask")->itemText(1), QStringLiteral("Б"));
        QVERIFY(!box("cbTask")->itemIcon(0).isNull());
    }

    void remembersTheTaskThatLeftAndNotTheTeam()
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
        buttons.last()->setFocus();
        m_picker->reload();
        QCOMPARE(picked(), QStringLiteral("2/22"));
        QCOMPARE(m_picker->focusWidget(), box("cbTeam"));
        m_picker->show();
        buttons.first()->click();
        QCOMPARE(finished.value(0).value(0).toInt(), int(QDialog::Accepted));
    }

    void followsItsPanel()
    {
        const QPoint before = m_picker->pos();
        QCOMPARE(before, middleOfScreen(*m_picker));
        drag(m_picker->findChild<QPushButton*>(), Qt::LeftButton);
        drag(m_picker.get(), Qt::RightButton);
        QCOMPARE(m_picker->pos(), before);
        drag(m_picker.get(), Qt::LeftButton);
        QCOMPARE(m_picker->pos(), before + QPoint(40, 0));
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

    std::unique_ptr<TwoTeams> m_service;
    std::unique_ptr<QuietMainForm> m_mainForm;
    std::unique_ptr<TaskForm> m_picker;
};

TESSAPORT_TEST_MAIN(TaskFormTest, QApplication)

#include "tst_taskform.moc"
