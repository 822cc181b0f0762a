// SPDX-License-Identifier: GPL-3.0-or-later
#include "bench/WindowBench.h"
#include "notifications/NotificationManager.h"
#include "session/Session.h"

#include <QApplication>
#include <QScreen>

#include <memory>
#include <vector>

#include <malloc.h>

namespace {

const QString team = QStringLiteral("1");

double allocatedMegabytes()
{
    const struct mallinfo2 info = mallinfo2();
    return double(info.uordblks + info.hblkhd) / 1e6;
}

void paint()
{
    QCoreApplication::sendPostedEvents();
    QCoreApplication::processEvents();
}

/// As many windows without anything in them as there are notices on the screen.
void showBareWindows(benchmark::State& state)
{
    const int room = QGuiApplication::primaryScreen()->availableGeometry().bottom() / 100;
    for (auto _ : state) {
        std::vector<std::unique_ptr<QWidget>> windows;
        for (int i = 0; i < room; ++i) {
            windows.push_back(std::make_unique<QWidget>(nullptr, Qt::FramelessWindowHint));
            windows.back()->resize(250, 100);
            windows.back()->show();
        }
        paint();
    }
    state.counters["windows"] = room;
}
BENCHMARK(showBareWindows)->Unit(benchmark::kMillisecond);

/// A user's tasks are all taken away at once. Counts what the notices hold beside their time.
void removeTasks(benchmark::State& state)
{
    QList<Task> tasks;
    for (int i = 0; i < state.range(0); ++i) {
        Task task;
        task.id = QString::number(i + 1);
        task.title = QStringLiteral("Сверстать карточку товара");
        tasks.append(task);
    }
    SessionOwner owner;
    Session& session = *owner.session();
    session.reset();
    session.load(QStringLiteral("anna@example.com"), QStringLiteral("p"));
    session.setTeams({{team, QStringLiteral("Команда")}});
    double megabytes = 0;
    for (auto _ : state) {
        state.PauseTiming();
        // Without the file that it then saves, a list is the first one, of which nothing is told.
        QFile::remove(owner.dataDir().filePath(QStringLiteral("anna@example.com/tasks.ini")));
        session.setTasks(tasks, team);
        for (NotificationManager* const notices = NotificationManager::instance();
             notices->hasNotifications(); notices->showPending())
            notices->closeAll();
        paint();
        const double before = allocatedMegabytes();
        state.ResumeTiming();
        session.setTasks({}, team);
        paint();
        megabytes = allocatedMegabytes() - before;
    }
    owner.setNoSave(true);
    state.counters["megabytes"] = megabytes;
}
BENCHMARK(removeTasks)->Arg(10)->Arg(500)->Iterations(5)->Unit(benchmark::kMillisecond);

} // namespace

int main(int argc, char* argv[])
{
    qInstallMessageHandler([](QtMsgType, const QMessageLogContext&, const QString&) {});
    return runWindowBenchmarks(argc, argv);
}
