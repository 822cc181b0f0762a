// SPDX-License-Identifier: GPL-3.0-or-later
#include "PanelFixture.h"

#include "dialogs/PlainToolTip.h"
#include "dialogs/TaskForm.h"
#include "res/Resources.h"
#include "support/TestMain.h"

#include <QComboBox>
#include <QPushButton>
#include <QSignalSpy>

namespace {

Task makeTask(const QString& id, const QString& title = {}, const QString& block = {})
{
    Task task;
    task.id = id;
    task.title = title;
    task.block = block;
    return task;
}

/// Its icons tell tasks apart by their size.
class IconMainForm : public QuietMainForm {
public:
    using QuietMainForm::QuietMainForm;
    QIcon taskIcon(const Task& task) const override
    {
        QPixmap pixmap(8 + task.importance, 8);
        pixmap.fill(Qt::black);
        return QIcon(pixmap);
    }
};

} // namespace

Q_DECLARE_METATYPE(QList<Task>)

class TaskFormTest : public QObject {
    Q_OBJECT

private slots:
    void initTestCase() { initResources(); }
    void init();
    void cleanup();

    void fillsAtOnceOffline();
    void loadsUntilAnyAnswer_data();
    void loadsUntilAnyAnswer();
    void showsTheTasksThatMayBePicked_data();
    void showsTheTasksThatMayBePicked();
    void remembersTaskThatLeft();
    void forgetsTeamThatLeft();
    void dropsPickThatWasNotConfirmed();
    void closesByItsButtons_data();
    void closesByItsButtons();
    void staysUsableWithoutTeams();

private:
    Session& session() { return *m_service->session(); }
    QComboBox* box(const char* name) { return m_form->findChild<QComboBox*>(QLatin1String(name)); }
    QStringList texts(const char* name)
    {
        QStringList result;
        for (int i = 0; i < box(name)->count(); ++i) {
            result.append(box(name)->itemText(i));
        }
        return result;
    }
    QString picked()
    {
        return m_form->selectedTeamId() + QLatin1Char('/') + m_form->selectedTaskId();
    }

    std::unique_ptr<SignedInService> m_service;
    std::unique_ptr<IconMainForm> m_mainForm;
    std::unique_ptr<TaskForm> m_form;
};

void TaskFormTest::init()
{
    m_service = std::make_unique<SignedInService>();
    session().setTeams({{QStringLiteral("1"), QStringLiteral("Первая")},
                        {QStringLiteral("2"), QStringLiteral("Вторая")}});
    session().setTasks({makeTask(QStringLiteral("11")), makeTask(QStringLiteral("12"))},
                       QStringLiteral("1"));
    session().setTasks({makeTask(QStringLiteral("21")), makeTask(QStringLiteral("22"))},
                       QStringLiteral("2"));
    session().setTeamID(QStringLiteral("2"));
    session().setTaskID(QStringLiteral("22"));
    m_mainForm = std::make_unique<IconMainForm>(m_service.get());
    m_form = std::make_unique<TaskForm>(m_mainForm.get());
}

void TaskFormTest::cleanup()
{
    m_form.reset();
    m_mainForm.reset();
    m_service.reset();
}

void TaskFormTest::fillsAtOnceOffline()
{
    QCOMPARE(labelText(*m_form, "lbLoading"), QString());
    QVERIFY(box("cbTeam")->isEnabled() && box("cbTask")->isEnabled());
    QCOMPARE(texts("cbTeam"), QStringList({QStringLiteral("Первая"), QStringLiteral("Вторая")}));
    QCOMPARE(picked(), QStringLiteral("2/22"));
    QCOMPARE(box("cbTeam")->toolTip(), QStringLiteral("Вторая"));
    QCOMPARE(box("cbTeam")->itemData(0, Qt::ToolTipRole).toString(), QStringLiteral("Первая"));
    QCOMPARE(m_form->windowModality(), Qt::WindowModal);
}

void TaskFormTest::loadsUntilAnyAnswer_data()
{
    QTest::addColumn<int>("answer");
    QTest::newRow("error") << 0;
    QTest::newRow("teams") << 1;
    QTest::newRow("tasks") << 2;
    QTest::newRow("closed task") << 3;
}

void TaskFormTest::loadsUntilAnyAnswer()
{
    QFETCH(int, answer);
    session().setIsOnline(true);
    m_form->reload();
    QCOMPARE(labelText(*m_form, "lbLoading"), QStringLiteral("Загрузка..."));
    QVERIFY(!box("cbTeam")->isEnabled() && !box("cbTask")->isEnabled());
    switch (answer) {
    case 0:
        emit m_service->error(TessaPort::UnknownError);
        break;
    case 1:
        emit session().teamsUpdated();
        break;
    case 2:
        emit session().tasksUpdated(QStringLiteral("1"));
        break;
    default:
        emit session().taskClosed(QStringLiteral("11"));
    }
    QCOMPARE(labelText(*m_form, "lbLoading"), QString());
    QVERIFY(box("cbTeam")->isEnabled() && box("cbTask")->isEnabled());
    QCOMPARE(picked(), QStringLiteral("2/22"));
}

void TaskFormTest::showsTheTasksThatMayBePicked_data()
{
    QTest::addColumn<QList<Task>>("tasks");
    QTest::addColumn<QStringList>("texts");

    Task dated = makeTask(QStringLiteral("1"), QStringLiteral("Отчёт"), QStringLiteral("0"));
    dated.deadline = QDateTime(QDate(2026, 3, 9), QTime(7, 5));
    const Task plain = makeTask(QStringLiteral("2"), QStringLiteral("Вёрстка"));
    const Task blocking =
        makeTask(QStringLiteral("3"), QStringLiteral("Срочно"), QStringLiteral("1"));
    const Task alsoBlocking =
        makeTask(QStringLiteral("4"), QStringLiteral("Тоже"), QStringLiteral("да"));
    const QString markup = QStringLiteral("<b>Жирный</b> & длинный ").repeated(20);

    QTest::newRow("no blocking task")
        << QList<Task>{plain, dated, unassignedTask()}
        << QStringList{QStringLiteral("Вёрстка"),
                       QStringLiteral("Отчёт | Истекает: 2026-03-09 07:05:00"),
                       QStringLiteral("Прочие непоставленные задачи")};
    QTest::newRow("one blocking task") << QList<Task>{plain, dated, blocking, unassignedTask()}
                                       << QStringList{QStringLiteral("Срочно")};
    QTest::newRow("two blocking tasks")
        << QList<Task>{alsoBlocking, plain, blocking}
        << QStringList{QStringLiteral("Тоже"), QStringLiteral("Срочно")};
    QTest::newRow("markup") << QList<Task>{makeTask(QStringLiteral("5"), markup)}
                            << QStringList{markup};
    QTest::newRow("none") << QList<Task>() << QStringList();
}

void TaskFormTest::showsTheTasksThatMayBePicked()
{
    QFETCH(QList<Task>, tasks);
    QFETCH(QStringList, texts);
    for (int i = 0; i < tasks.size(); ++i) {
        tasks[i].importance = i;
    }
    session().setTasks(tasks, QStringLiteral("2"));
    QCOMPARE(this->texts("cbTask"), texts);
    for (int row = 0; row < box("cbTask")->count(); ++row) {
        const QString id = box("cbTask")->itemData(row).toString();
        const int importance = int(tasks.indexOf(makeTask(id)));
        QCOMPARE(box("cbTask")->itemIcon(row).availableSizes().value(0).width(), 8 + importance);
        const QString tip = box("cbTask")->itemData(row, Qt::ToolTipRole).toString();
        QCOMPARE(tip, plainToolTip(texts[row]));
    }
}

void TaskFormTest::remembersTaskThatLeft()
{
    const QList<Task> before = session().tasks(QStringLiteral("2"));
    session().setTasks({before.first()}, QStringLiteral("2"));
    QCOMPARE(picked(), QStringLiteral("2/21"));
    session().setTasks(before, QStringLiteral("2"));
    QCOMPARE(picked(), QStringLiteral("2/22"));

    session().setTasks({before.first()}, QStringLiteral("2"));
    session().setTasks({before.first(), makeTask(QStringLiteral("23"))}, QStringLiteral("2"));
    box("cbTask")->setCurrentIndex(1);
    session().setTasks(before + QList<Task>{makeTask(QStringLiteral("23"))}, QStringLiteral("2"));
    QCOMPARE(picked(), QStringLiteral("2/23"));
}

void TaskFormTest::forgetsTeamThatLeft()
{
    const QList<Team> before = session().teams();
    session().setTeams({before.first()});
    QCOMPARE(picked(), QStringLiteral("1/11"));
    QCOMPARE(box("cbTeam")->toolTip(), QStringLiteral("Вторая"));
    session().setTeams(before);
    QCOMPARE(picked(), QStringLiteral("1/11"));
}

void TaskFormTest::dropsPickThatWasNotConfirmed()
{
    box("cbTeam")->setCurrentIndex(0);
    QCOMPARE(texts("cbTask").size(), 2);
    box("cbTask")->setCurrentIndex(1);
    emit session().teamsUpdated();
    QCOMPARE(picked(), QStringLiteral("1/12"));
    QCOMPARE(session().taskID(), QStringLiteral("22"));
    m_form->reload();
    QCOMPARE(picked(), QStringLiteral("2/22"));
}

void TaskFormTest::closesByItsButtons_data()
{
    QTest::addColumn<QString>("by");
    QTest::addColumn<int>("accepted");
    QTest::addColumn<int>("rejected");

    QTest::newRow("Ok") << QStringLiteral("Ок") << 1 << 0;
    QTest::newRow("Cancel") << QStringLiteral("Отмена") << 0 << 0;
    QTest::newRow("Esc") << QString() << 0 << 1;
}

void TaskFormTest::closesByItsButtons()
{
    QFETCH(QString, by);
    QSignalSpy accepted(m_form.get(), &QDialog::accepted);
    QSignalSpy rejected(m_form.get(), &QDialog::rejected);
    m_form->show();
    QVERIFY(QTest::qWaitForWindowActive(m_form.get()));
    if (by.isEmpty()) {
        QTest::keyClick(QApplication::focusWidget(), Qt::Key_Escape);
    }
    const auto buttons = m_form->findChildren<QPushButton*>(QStringLiteral("pbTessaport"));
    QCOMPARE(buttons.size(), 2);
    for (QPushButton* const button : buttons) {
        if (button->text() == by) {
            button->click();
        }
    }
    QVERIFY(!m_form->isVisible());
    QTEST(int(accepted.size()), "accepted");
    QTEST(int(rejected.size()), "rejected");
}

void TaskFormTest::staysUsableWithoutTeams()
{
    session().setTeams({});
    QCOMPARE(picked(), QStringLiteral("/"));
    QCOMPARE(box("cbTask")->count(), 0);
    QSignalSpy accepted(m_form.get(), &QDialog::accepted);
    m_form->findChild<QPushButton*>(QStringLiteral("pbTessaport"))->click();
    QCOMPARE(accepted.size(), 1);
}

TESSAPORT_TEST_MAIN(TaskFormTest, QApplication)

#include "tst_taskform.moc"
