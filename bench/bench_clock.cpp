// SPDX-License-Identifier: GPL-3.0-or-later
#include "dialogs/PanelFixture.h"
#include "mainwindow/MainForm.h"
#include "res/Resources.h"
#include "support/TestMain.h"
#include "support/TestServiceUrl.h"
#include "update/UpdateState.h"

#include <benchmark/benchmark.h>

#include <QLabel>

namespace {

/// Till everything is painted.
void settle()
{
    for (int i = 0; i < 100; ++i)
        QCoreApplication::processEvents();
}

/// One label of a bare window of the strip's size is repainted.
void secondOfBareLabel(benchmark::State& state)
{
    QDialog window;
    window.setFixedSize(392, 73);
    QLabel label(&window);
    label.setGeometry(258, 26, 74, 26);
    window.show();
    settle();
    QTime time(0, 0);
    for (auto _ : state) {
        time = time.addSecs(1);
        label.setText(time.toString(QStringLiteral("hh:mm:ss")));
        QCoreApplication::processEvents();
    }
}
BENCHMARK(secondOfBareLabel);

/// With an overdue task, whose time is shown, too.
void secondOfClock(benchmark::State& state)
{
    SignedInService service;
    service.setNoSave(true);
    UpdateState::instance()->init(&service);
    Session* const session = service.session();
    const QString team = QStringLiteral("1");
    session->setTeams({{team, team}});
    session->setTasks({makeTask("11", "Текст", QDateTime::currentDateTime().addDays(-1))}, team);
    session->setTeamID(team);
    session->setTaskID(QStringLiteral("11"));
    MainForm strip(&service, nullptr);
    strip.show();
    settle();
    for (auto _ : state) {
        QMetaObject::invokeMethod(&strip, "clock");
        QCoreApplication::processEvents();
    }
}
BENCHMARK(secondOfClock);

} // namespace

int main(int argc, char* argv[])
{
    benchmark::Initialize(&argc, argv);
    TestHome home;
    QApplication application(argc, argv);
    setTestServiceUrl(QStringLiteral("https://localhost:1"));
    initResources();
    installPalette();
    installFonts();
    QFile styleSheet(QStringLiteral(":/qss/main.qss"));
    styleSheet.open(QIODevice::ReadOnly);
    application.setStyleSheet(QString::fromUtf8(styleSheet.readAll()));
    benchmark::RunSpecifiedBenchmarks();
}
