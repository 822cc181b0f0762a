// SPDX-License-Identifier: GPL-3.0-or-later
#include "bench/ByTurns.h"
#include "service/JsonCodec.h"
#include "service/ServiceReply.h"
#include "session/Session.h"

#include <QCoreApplication>
#include <QSettings>
#include <QTemporaryDir>

#include <memory>

namespace {

constexpr int teamCount = 20;

/// A signed-in session in a home of its own, with this many tasks, all of them saved.
class Fixture {
public:
    explicit Fixture(int taskCount)
        : m_taskCount(taskCount)
    {
        qputenv("HOME", m_home.path().toLocal8Bit());
        m_owner = std::make_unique<SessionOwner>();
        m_owner->setNoSave(true);
        session().load(QStringLiteral("anna@example.com"), QStringLiteral("p"));
        // The first save makes the files whose presence turns the comparison on.
        refresh(body(""));
        for (int i = 0; i < m_taskCount; ++i) {
            TaskInfo info;
            info.id = QString::number(100000 + i);
            info.text = QStringLiteral("Обзор ноутбуков").repeated(10);
            session().setTaskInfo(info.id, info);
        }
        session().save();
    }

    Session& session() { return *m_owner->session(); }

    /// What the service sends, with this text at the end of the titles.
    QByteArray body(const char* titleEnd) const
    {
        QByteArray body = "[";
        for (int team = 0; team < teamCount; ++team) {
            body += team == 0 ? "" : ",";
            body +=
                "{\"id\":\"" + QByteArray::number(1 + team) + "\",\"name\":\"Команда\",\"tasks\":[";
            for (int i = team; i < m_taskCount; i += teamCount) {
                body += i == team ? "" : ",";
                body += "{\"id\":\"" + QByteArray::number(100000 + i)
                    + "\",\"title\":\"Обзор ноутбуков, часть " + titleEnd
                    + "\",\"deadline\":\"2030-05-12 12:00:00\",\"block\":\"0\","
                      "\"last_comment\":\"2025-05-12 12:00:00\",\"importance\":1}";
            }
            body += "]}";
        }
        return body + "]";
    }

    /// Does with it what the service client does, short of asking for more details.
    void refresh(const QByteArray& body)
    {
        QList<Team> teams;
        const QList<ServiceReply::TeamWithTasks> lists = ServiceReply::teamsAndTasks(body);
        for (const ServiceReply::TeamWithTasks& list : lists) {
            session().setTasks(list.tasks, list.team.id);
            for (const Task& task : list.tasks)
                benchmark::DoNotOptimize(session().taskInfo(task.id).id.isEmpty());
            teams.append(list.team);
        }
        session().setTeams(teams);
    }

private:
    const int m_taskCount;
    QTemporaryDir m_home;
    std::unique_ptr<SessionOwner> m_owner;
};

// The floor of a save: one small ini file, which goes to disk as a whole.
void writeOneFile(benchmark::State& state)
{
    const QTemporaryDir directory;
    QSettings settings(directory.filePath(QStringLiteral("one.ini")), QSettings::IniFormat);
    int minute = 0;
    for (auto _ : state) {
        settings.setValue(QStringLiteral("todayWorktime"), ++minute);
        settings.sync();
    }
}
BENCHMARK(writeOneFile)->UseRealTime()->Unit(benchmark::kMicrosecond);

// The minute of a running monitor: nothing but the counters changed.
void saveCounters(benchmark::State& state)
{
    Fixture fixture(int(state.range(0)));
    for (auto _ : state)
        fixture.session().addWorkMinute();
}
BENCHMARK(saveCounters)->Arg(0)->Arg(500)->Arg(5000)->UseRealTime()->Unit(benchmark::kMicrosecond);

void saveAfterOneNewDetail(benchmark::State& state)
{
    Fixture fixture(int(state.range(0)));
    TaskInfo info;
    info.id = QStringLiteral("100000");
    for (auto _ : state) {
        info.title += QLatin1Char('x');
        fixture.session().setTaskInfo(info.id, info);
        fixture.session().save();
    }
}
BENCHMARK(saveAfterOneNewDetail)->Arg(500)->Arg(5000)->UseRealTime()->Unit(benchmark::kMicrosecond);

// What a start reads, with the look for damage that comes before.
void load(benchmark::State& state)
{
    Fixture fixture(int(state.range(0)));
    for (auto _ : state) {
        fixture.session().reset();
        fixture.session().load(QStringLiteral("anna@example.com"), QStringLiteral("p"));
    }
}
BENCHMARK(load)->Arg(500)->Arg(5000)->Unit(benchmark::kMicrosecond);

// Parse, compare and store: ten times the tasks should take about ten times as long.

// The usual refresh: the service sends what is known already.
void refreshUnchanged(benchmark::State& state)
{
    Fixture fixture(int(state.range(0)));
    const QByteArray body = fixture.body("");
    for (auto _ : state)
        fixture.refresh(body);
}
BENCHMARK(refreshUnchanged)->Arg(1000)->Arg(10000)->Unit(benchmark::kMicrosecond);

// All tasks change and are stored; none of that is told by a notice. The floor is to parse alone.
void refreshAllChanged(benchmark::State& state)
{
    Fixture fixture(int(state.range(0)));
    const QByteArray bodies[] = {fixture.body("1"), fixture.body("2")};
    int round = 0;
    compareByTurns(
        state, [&] { fixture.refresh(bodies[++round % 2]); },
        [&] { benchmark::DoNotOptimize(JsonCodec::parseUtf8(bodies[round % 2])); });
}
BENCHMARK(refreshAllChanged)
    ->Arg(1000)
    ->Arg(10000)
    ->Arg(100000)
    ->UseManualTime()
    ->Unit(benchmark::kMicrosecond);

} // namespace

int main(int argc, char* argv[])
{
    QCoreApplication application(argc, argv);
    QCoreApplication::setOrganizationName(QStringLiteral("TessaPort"));
    QCoreApplication::setApplicationName(QStringLiteral("bench_session"));
    qInstallMessageHandler([](QtMsgType, const QMessageLogContext&, const QString&) {});
    benchmark::Initialize(&argc, argv);
    benchmark::RunSpecifiedBenchmarks();
    return 0;
}
