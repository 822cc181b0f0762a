// SPDX-License-Identifier: GPL-3.0-or-later
#include "dialogs/ScrollText.h"

#include <benchmark/benchmark.h>

#include <QApplication>
#include <QPainter>

namespace {

[[maybe_unused]] thread_local long allocations = 0;

} // namespace

#ifdef __GLIBC__
extern "C" void* __libc_malloc(size_t size);

// Whatever is made by new comes by here, and what Qt's containers hold.
extern "C" void* malloc(size_t size)
{
    ++allocations;
    return __libc_malloc(size);
}
#endif

namespace {

/// Does no more than open the two painters without which nothing can be drawn.
class Floor : public QWidget {
    void paintEvent(QPaintEvent*) override
    {
        QPainter painter(this);
        QPainter imagePainter(&m_image);
        imagePainter.setPen(painter.pen());
        imagePainter.setFont(painter.font());
    }

    QImage m_image{171, 16, QImage::Format_ARGB32_Premultiplied};
};

/// Counts what each repaint allocates beside its time.
void repaint(benchmark::State& state, QWidget& widget)
{
    widget.resize(171, 16);
    widget.show();
    QImage canvas(widget.size(), QImage::Format_ARGB32_Premultiplied);
    // The first one fills caches of Qt's.
    widget.render(&canvas);
    [[maybe_unused]] const long before = allocations;
    for (auto _ : state)
        widget.render(&canvas);
#ifdef __GLIBC__
    state.counters["allocations"] =
        benchmark::Counter(double(allocations - before), benchmark::Counter::kAvgIterations);
#endif
}

void repaintFloor(benchmark::State& state)
{
    Floor floor;
    repaint(state, floor);
}
BENCHMARK(repaintFloor);

/// The argument is how long the marquee has been going: at rest, with the edge half in, running.
void repaintMarquee(benchmark::State& state)
{
    ScrollText marquee(true);
    marquee.setText(QStringLiteral("Сверстать страницу отчёта для бухгалтерии").repeated(20));
    for (int i = 0; i < state.range(0); ++i)
        QMetaObject::invokeMethod(&marquee, "timer_timeout");
    repaint(state, marquee);
}
BENCHMARK(repaintMarquee)->Arg(10)->Arg(60)->Arg(200);

} // namespace

int main(int argc, char* argv[])
{
    benchmark::Initialize(&argc, argv);
    QApplication application(argc, argv);
    benchmark::RunSpecifiedBenchmarks();
}
