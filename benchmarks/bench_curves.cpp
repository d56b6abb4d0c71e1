// What somebody waits for in the window of curves, offscreen, with 20 results of 200 levels and 9
// notches: the pointer over the lines up to its painted reading (at most 16 ms), switching a notch
// (16 ms), choosing another result with its bands of sigma (100 ms), a zoom, which paints
// everything anew (100 ms), and the window with all of it opened.
#include "curves/curve_plot.h"
#include "curves/made_up_result.h"
#include "curves/plot_content.h"

#include <benchmark/benchmark.h>

#include <QApplication>
#include <QMouseEvent>

namespace {

constexpr int resultTotal = 20;
constexpr int notchTotal = 9;

QVector<ShownResult> results()
{
    QVector<ShownResult> all;
    for (int k = 0; k < resultTotal; ++k) {
        ShownResult shown;
        shown.id = k + 1;
        shown.name = QString::number(k);
        shown.result = roofs(notchTotal, -40.0, -0.2, 0.2, 0.5 * k);
        all << shown;
    }
    return all;
}

// A chart on the screen.
struct Chart
{
    Chart()
    {
        choice.results = {1};
        plot.resize(1200, 800);
        plot.setContent(contentOverLevel(all, choice));
        plot.show();
        settle();
    }
    void settle()
    {
        QApplication::processEvents();
        plot.repaint();
    }

    const QVector<ShownResult> all = results();
    PlotChoice choice;
    CurvePlot plot;
};

void movePointer(benchmark::State& state)
{
    Chart chart;
    int step = 0;
    while (state.KeepRunning()) {
        const QPointF at(200 + (step += 7) % 800, 400);
        QMouseEvent move(QEvent::MouseMove, at, Qt::NoButton, Qt::NoButton, Qt::NoModifier);
        QApplication::sendEvent(&chart.plot, &move);
        chart.plot.repaint();
    }
}

void switchNotch(benchmark::State& state)
{
    Chart chart;
    int step = 0;
    while (state.KeepRunning()) {
        chart.choice.hiddenNotches = ++step % 2 == 0 ? QSet<int>() : QSet<int>{5};
        chart.plot.setContent(contentOverLevel(chart.all, chart.choice));
        chart.settle();
    }
}

void chooseResult(benchmark::State& state)
{
    Chart chart;
    int step = 0;
    while (state.KeepRunning()) {
        chart.choice.results = {1 + ++step % resultTotal};
        chart.plot.setContent(contentOverLevel(chart.all, chart.choice));
        chart.settle();
    }
}

void zoom(benchmark::State& state)
{
    Chart chart;
    int step = 0;
    while (state.KeepRunning()) {
        chart.plot.zoom(++step % 2 == 0 ? 1.25 : 0.8);
        chart.settle();
    }
}

void openAll(benchmark::State& state)
{
    while (state.KeepRunning()) {
        Chart chart;
    }
}

} // namespace

BENCHMARK(movePointer)->Unit(benchmark::kMillisecond);
BENCHMARK(switchNotch)->Unit(benchmark::kMillisecond);
BENCHMARK(chooseResult)->Unit(benchmark::kMillisecond);
BENCHMARK(zoom)->Unit(benchmark::kMillisecond);
BENCHMARK(openAll)->Unit(benchmark::kMillisecond);

int main(int argc, char* argv[])
{
    qputenv("QT_QPA_PLATFORM", "offscreen");
    const QApplication application(argc, argv);
    benchmark::Initialize(&argc, argv);
    if (benchmark::ReportUnrecognizedArguments(argc, argv)) {
        return 1;
    }
    benchmark::RunSpecifiedBenchmarks();
    return 0;
}
