// SPDX-License-Identifier: GPL-3.0-or-later
#include "PanelFixture.h"

#include "dialogs/PlainToolTip.h"
#include "dialogs/TaskForm.h"
#include "res/Resources.h"
#include "support/TestMain.h"

#include <QComboBox>
#include <QPushButton>
#include <QSignalSpy>

#include <functional>

namespace {

Task makeTask(const char* id, const QString& title = {}, const QString& block = {})
{
    Task task;
    task.id = QLatin1String(id);
    task.title = title;
    task.block = block;
    return task;
}

/// Its icons tell tasks apart by their width.
class IconMainForm : public QuietMainForm {
public:
    using QuietMainForm::QuietMainForm;
    QIcon taskIcon(const Task& task) const override { return QPixmap(1 + task.id.toInt(), 8); }
};

} // namespace

Q_DECLARE_METATYPE(QList<Task>)

class TaskFormTest : public QObject {
    Q_OBJECT

private slots:
    void initTestCase() { initResources(); }
    void init()
    {
        m_service = std::make_unique<SignedInService>();
        session().setTeams({{QStringLiteral("1"), QStringLiteral("Первая")},
                            {QStringLiteral("2"), QStringLiteral("Вторая")}});
        session().setTasks({makeTask("11"), makeTask("12")}, QStringLiteral("1"));
        session().setTasks({makeTask("21"), makeTask("22")}, QStringLiteral("2"));
        session().setTeamID(QStringLiteral("2"));
        session().setTaskID(QStringLiteral("22"));
        m_mainForm = std::make_unique<IconMainForm>(m_service.get());
        m_form = std::make_unique<TaskForm>(m_mainForm.get());
    }
    void cleanup()
    {
        m_form.reset();
        m_mainForm.reset();
        m_service.reset();
    }

    void fillsAtOnceOffline()
    {
        verifyReady();
        QCOMPARE(texts(teams()), QStringList({QStringLiteral("Первая"), QStringLiteral("Вторая")}));
        QCOMPARE(teams()->toolTip(), QStringLiteral("Вторая"));
        QCOMPARE(teams()->itemData(0, Qt::ToolTipRole).toString(), QStringLiteral("Первая"));
        QCOMPARE(m_form->windowModality(), Qt::WindowModal);
    }

    void loadsUntilAnyAnswer()
    {
        const QVector<std::function<void()>> answers{
            [this] { emit m_service->error(TessaPort::UnknownError); },
            [this] { emit session().teamsUpdated(); },
            [this] { emit session().tasksUpdated(QStringLiteral("1")); },
            [this] { emit session().taskClosed(QStringLiteral("11")); },
        };
        session().setIsOnline(true);
        for (const auto& answer : answers) {
            m_form->reload();
            QCOMPARE(labelText(*m_form, "lbLoading"), QStringLiteral("Загрузка..."));
            QVERIFY(!teams()->isEnabled() && !tasks()->isEnabled());
            answer();
            verifyReady();
        }
    }

    void showsTheTasksThatMayBePicked_data()
    {
        QTest::addColumn<QList<Task>>("shown");
        QTest::addColumn<QStringList>("expected");

        Task dated = makeTask("1", QStringLiteral("Отчёт"), QStringLiteral("0"));
        dated.deadline = QDateTime(QDate(2026, 3, 9), QTime(7, 5));
        const Task plain = makeTask("2", QStringLiteral("Вёрстка"));
        const Task blocking = makeTask("3", QStringLiteral("Срочно"), QStringLiteral("1"));
        const Task alsoBlocking = makeTask("4", QStringLiteral("Тоже"), QStringLiteral("да"));
        const QString markup = QStringLiteral("<b>Жирный</b> & длинный ").repeated(20);
        const QString urgent = blocking.title;

        QTest::newRow("no blocking task")
            << QList<Task>{plain, dated, unassignedTask()}
            << QStringList{plain.title, QStringLiteral("Отчёт | Истекает: 2026-03-09 07:05:00"),
                           QStringLiteral("Прочие непоставленные задачи")};
        QTest::newRow("one blocking task")
            << QList<Task>{plain, dated, blocking, unassignedTask()} << QStringList{urgent};
        QTest::newRow("two blocking tasks") << QList<Task>{alsoBlocking, plain, blocking}
                                            << QStringList{alsoBlocking.title, urgent};
        QTest::newRow("markup") << QList<Task>{makeTask("5", markup)} << QStringList{markup};
        QTest::newRow("none") << QList<Task>() << QStringList();
    }
    void showsTheTasksThatMayBePicked()
    {
        QFETCH(QList<Task>, shown);
        session().setTasks(shown, QStringLiteral("2"));
        QTEST(texts(tasks()), "expected");
        for (int row = 0; row < tasks()->count(); ++row) {
            const int id = tasks()->itemData(row).toInt();
            QCOMPARE(tasks()->itemIcon(row).availableSizes().value(0).width(), 1 + id);
            QCOMPARE(tasks()->itemData(row, Qt::ToolTipRole).toString(),
                     plainToolTip(tasks()->itemText(row)));
        }
    }

    void remembersTaskThatLeft()
    {
        const QList<Task> before = session().tasks(QStringLiteral("2"));
        session().setTasks({before.first()}, QStringLiteral("2"));
        QCOMPARE(picked(), QStringLiteral("2/21"));
        session().setTasks(before, QStringLiteral("2"));
        QCOMPARE(picked(), QStringLiteral("2/22"));

        // Until the user picks another one.
        session().setTasks({before.first(), makeTask("23")}, QStringLiteral("2"));
        tasks()->setCurrentIndex(1);
        session().setTasks(before + QList<Task>{makeTask("23")}, QStringLiteral("2"));
        QCOMPARE(picked(), QStringLiteral("2/23"));
    }

    void forgetsTeamThatLeft()
    {
        const QList<Team> before = session().teams();
        session().setTeams({before.first()});
        QCOMPARE(picked(), QStringLiteral("1/11"));
        QCOMPARE(teams()->toolTip(), QStringLiteral("Вторая"));
        session().setTeams(before);
        QCOMPARE(picked(), QStringLiteral("1/11"));
    }

    void dropsPickThatWasNotConfirmed()
    {
        teams()->setCurrentIndex(0);
        tasks()->setCurrentIndex(1);
        emit session().teamsUpdated();
        QCOMPARE(picked(), QStringLiteral("1/12"));
        QCOMPARE(session().taskID(), QStringLiteral("22"));
        m_form->reload();
        QCOMPARE(picked(), QStringLiteral("2/22"));
    }

    void closesByItsButtons_data()
    {
        QTest::addColumn<QString>("by");
        QTest::addColumn<int>("accepted");
        QTest::addColumn<int>("rejected");

        QTest::newRow("Ok") << QStringLiteral("Ок") << 1 << 0;
        QTest::newRow("Cancel") << QStringLiteral("Отмена") << 0 << 0;
        QTest::newRow("Esc") << QString() << 0 << 1;
    }
    void closesByItsButtons()
    {
        QFETCH(QString, by);
        QSignalSpy accepted(m_form.get(), &QDialog::accepted);
        QSignalSpy rejected(m_form.get(), &QDialog::rejected);
        m_form->show();
        if (by.isEmpty())
            QTest::keyClick(m_form.get(), Qt::Key_Escape);
        const auto buttons = m_form->findChildren<QPushButton*>(QStringLiteral("pbTessaport"));
        for (QPushButton* const button : buttons) {
            if (button->text() == by)
                button->click();
        }
        QVERIFY(!m_form->isVisible());
        QTEST(int(accepted.size()), "accepted");
        QTEST(int(rejected.size()), "rejected");
    }

    void staysUsableWithoutTeams()
    {
        session().setTeams({});
        QCOMPARE(picked(), QStringLiteral("/"));
        QSignalSpy accepted(m_form.get(), &QDialog::accepted);
        m_form->findChild<QPushButton*>(QStringLiteral("pbTessaport"))->click();
        QCOMPARE(accepted.size(), 1);
    }

private:
    Session& session() { return *m_service->session(); }
    QComboBox* teams() { return m_form->findChild<QComboBox*>(QStringLiteral("cbTeam")); }
    QComboBox* tasks() { return m_form->findChild<QComboBox*>(QStringLiteral("cbTask")); }
    static QStringList texts(const QComboBox* box)
    {
        QStringList result;
        for (int i = 0; i < box->count(); ++i)
            result.append(box->itemText(i));
        return result;
    }
    QString picked()
    {
        return m_form->selectedTeamId() + QLatin1Char('/') + m_form->selectedTaskId();
    }
    void verifyReady()
    {
        QCOMPARE(labelText(*m_form, "lbLoading"), QString());
        QVERIFY(teams()->isEnabled() && tasks()->isEnabled());
        QCOMPARE(picked(), QStringLiteral("2/22"));
    }

    std::unique_ptr<SignedInService> m_service;
    std::unique_ptr<IconMainForm> m_mainForm;
    std::unique_ptr<TaskForm> m_form;
};

TESSAPORT_TEST_MAIN(TaskFormTest, QApplication)

#include "tst_taskform.moc"
