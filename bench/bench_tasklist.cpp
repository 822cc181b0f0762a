// SPDX-License-Identifier: GPL-3.0-or-later
#include "bench/ByTurns.h"
#include "bench/WindowBench.h"
#include "dialogs/PanelFixture.h"
#include "dialogs/TaskListForm.h"

#include <QHBoxLayout>
#include <QLabel>
#include <QListWidget>
#include <QPushButton>

namespace {

const QString title = QStringLiteral("Сверстать карточку товара");

/// From nothing to what is seen. Taking a picture would arrange what is not seen, too.
void open(QWidget& window)
{
    window.show();
    QCoreApplication::processEvents();
    window.repaint();
}

/// The same rows in a plain list, without any style sheet.
void openPlainList(qint64 rows)
{
    QListWidget list;
    list.resize(360, 480);
    for (qint64 i = 0; i < rows; ++i) {
        const auto row = new QWidget(list.viewport());
        const auto layout = new QHBoxLayout(row);
        layout->addWidget(new QLabel(title, row));
        layout->addWidget(new QPushButton(title, row));
        const auto item = new QListWidgetItem(&list);
        list.setItemWidget(item, row);
        item->setSizeHint(row->sizeHint());
    }
    open(list);
}

void openTaskList(benchmark::State& state)
{
    SignedInService service;
    service.setNoSave(true);
    QuietMainForm mainForm(&service);
    QList<Task> tasks;
    for (int i = 0; i < state.range(0); ++i) {
        Task task;
        task.id = QString::number(i + 1);
        task.title = title;
        tasks.append(task);
    }
    const QString team = QStringLiteral("2");
    service.session()->setTeams({{QStringLiteral("1"), QStringLiteral("Первая")}, {team, team}});
    service.session()->setTasks(tasks, team);
    compareByTurns(
        state,
        [&] {
            TaskListForm form(&service, &mainForm, &mainForm);
            emit service.teamChanged(team);
            open(form);
        },
        [&state] { openPlainList(state.range(0)); });
}
BENCHMARK(openTaskList)->Arg(0)->Arg(50)->Arg(500)->UseManualTime()->Unit(benchmark::kMillisecond);

} // namespace

int main(int argc, char* argv[])
{
    return runWindowBenchmarks(argc, argv);
}
