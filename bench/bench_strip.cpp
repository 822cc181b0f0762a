// SPDX-License-Identifier: GPL-3.0-or-later
#include "bench/ByTurns.h"
#include "bench/WindowBench.h"
#include "dialogs/PanelFixture.h"
#include "mainwindow/MainForm.h"
#include "support/TestServiceUrl.h"
#include "update/UpdateState.h"

#include <QLabel>
#include <QPainter>
#include <QStaticText>

namespace {

const QString title = QStringLiteral("Сверстать страницу отчёта для бухгалтерии, правки");

/// Till everything is painted.
void settle()
{
    for (int i = 0; i < 100; ++i)
        QCoreApplication::processEvents();
}

/// The strip with an overdue task, whose time is shown, too.
class Strip {
public:
    Strip()
    {
        m_service.setNoSave(true);
        UpdateState::instance()->init(&m_service);
        Session* const session = m_service.session();
        const QString team = QStringLiteral("1");
        session->setTeams({{team, team}});
        session->setTasks(
            {makeTask("11", title.toUtf8().constData(), QDateTime::currentDateTime().addDays(-1))},
            team);
        session->setTeamID(team);
        session->setTaskID(QStringLiteral("11"));
        m_form = std::make_unique<MainForm>(&m_service, nullptr);
        m_form->show();
        settle();
    }

    QWidget& form() { return *m_form; }

private:
    SignedInService m_service;
    std::unique_ptr<MainForm> m_form;
};

/// A bare window of the strip's size.
class BareStrip : public QDialog {
public:
    BareStrip() { setFixedSize(392, 73); }
};

/// One line of text that stands still.
class StillText : public QWidget {
public:
    StillText(const QString& text, QWidget* parent)
        : QWidget(parent)
        , m_text(text)
    {
        setGeometry(34, 33, 171, 13);
    }

private:
    void paintEvent(QPaintEvent*) override { QPainter(this).drawStaticText(0, 0, m_text); }

    QStaticText m_text;
};

/// A second of the running clock; the floor repaints one label.
void secondOfClock(benchmark::State& state)
{
    BareStrip bareStrip;
    QLabel label(&bareStrip);
    label.setGeometry(258, 26, 74, 26);
    bareStrip.show();
    Strip strip;
    QTime time(0, 0);
    compareByTurns(
        state,
        [&] {
            QMetaObject::invokeMethod(&strip.form(), "clock");
            QCoreApplication::processEvents();
        },
        [&] {
            time = time.addSecs(1);
            label.setText(time.toString(QStringLiteral("hh:mm:ss")));
            QCoreApplication::processEvents();
        });
}
BENCHMARK(secondOfClock)->UseManualTime()->Unit(benchmark::kMicrosecond);

/// A step of the title of a task that does not fit; the floor repaints the same text in its place.
void scrollingTitle(benchmark::State& state)
{
    BareStrip bareStrip;
    StillText stillTitle(title, &bareStrip);
    bareStrip.show();
    Strip strip;
    QWidget* const title = strip.form().findChild<QWidget*>(QStringLiteral("lbTask"));
    const auto step = [title] {
        QMetaObject::invokeMethod(title, "timer_timeout");
        QCoreApplication::processEvents();
    };
    // Beyond the rest at the beginning.
    for (int i = 0; i < 100; ++i)
        step();
    compareByTurns(state, step, [&stillTitle] {
        stillTitle.update();
        QCoreApplication::processEvents();
    });
}
BENCHMARK(scrollingTitle)->UseManualTime()->Unit(benchmark::kMicrosecond);

} // namespace

int main(int argc, char* argv[])
{
    setTestServiceUrl(QStringLiteral("https://localhost:1"));
    return runWindowBenchmarks(argc, argv);
}
