// What an operator waits for while editing a full table of 999 notches, offscreen: a repaint of the
// graph at 1600x800 (at most 10 ms), one step of a drag with its repaint (16 ms, a frame), and a
// refresh of the whole window up to the painted screen (20 ms). The rows come in table order, as
// "Auto-Calculate" makes them, and out of order, where the outline doubles back.
#include "app/main_window.h"
#include "graph/graph_widget.h"
#include "run_benchmarks.h"
#include "setup/measurement_setup.h"

#include <benchmark/benchmark.h>

#include <QAbstractButton>
#include <QApplication>
#include <QMouseEvent>
#include <QSpinBox>
#include <QTemporaryDir>

namespace {

constexpr int rowCount = 999;

enum RowOrder { Ascending, Shuffled };

// Row r of the band, 100 bins from row to row, every notch 40 bins wide.
MeasurementSetup fullTable(RowOrder order)
{
    MeasurementSetup setup; // 131072 bins
    for (int row = 0; row < rowCount; ++row) {
        const int place = order == Ascending ? row : row * 500 % rowCount;
        Notch notch;
        notch.startIndex = (place - rowCount / 2) * 100;
        notch.stopIndex = notch.startIndex + 40;
        notch.depth = -1.0 - row % 105;
        setup.notches->items.append(notch);
    }
    return setup;
}

void showGraph(GraphWidget& graph, MeasurementSetup& setup)
{
    graph.setSetup(&setup);
    graph.resize(1600, 800);
    graph.show();
    QApplication::processEvents();
}

void repaintGraph(benchmark::State& state)
{
    MeasurementSetup setup = fullTable(RowOrder(state.range(0)));
    GraphWidget graph;
    showGraph(graph, setup);
    while (state.KeepRunning()) {
        graph.repaint();
    }
}

void send(GraphWidget& graph, QEvent::Type type, QPointF position)
{
    QMouseEvent event(type, position, graph.mapToGlobal(position.toPoint()), Qt::LeftButton,
                      Qt::LeftButton, Qt::NoModifier);
    QApplication::sendEvent(&graph, &event);
}

void dragStep(benchmark::State& state)
{
    MeasurementSetup setup = fullTable(RowOrder(state.range(0)));
    setup.notches->items.last().stopIndex += 4000; // wide enough to be taken by its body
    GraphWidget graph;
    showGraph(graph, setup);
    const QPointF start = setup.notches->items.constLast().bodyRect.center();
    send(graph, QEvent::MouseButtonPress, start);
    int step = 0;
    while (state.KeepRunning()) {
        send(graph, QEvent::MouseMove, start + QPointF(++step % 2 == 0 ? 5 : -5, 0));
        graph.repaint();
    }
    send(graph, QEvent::MouseButtonRelease, start);
}

void hoverStep(benchmark::State& state)
{
    MeasurementSetup setup = fullTable(RowOrder(state.range(0)));
    GraphWidget graph;
    showGraph(graph, setup);
    int step = 0;
    while (state.KeepRunning()) {
        send(graph, QEvent::MouseMove, QPointF(step = (step + 7) % 1600, 200));
        graph.repaint();
    }
}

void refreshWindow(benchmark::State& state)
{
    MainWindow window;
    window.show();
    window.findChild<QDoubleSpinBox*>(QStringLiteral("notch_offset_input"))->setValue(0.0);
    window.findChild<QDoubleSpinBox*>(QStringLiteral("notch_width_input"))->setValue(0.001);
    window.findChild<QSpinBox*>(QStringLiteral("notch_count_input"))->setValue(rowCount);
    window.findChild<QAbstractButton*>(QStringLiteral("autocalc_notches_button"))->click();
    window.resize(static_cast<int>(state.range(0)), static_cast<int>(state.range(1)));
    QApplication::processEvents();
    if (window.findChild<QSpinBox*>(QStringLiteral("measure_notch"))->maximum() != rowCount) {
        state.SkipWithError("the table did not fill");
    }
    while (state.KeepRunning()) {
        window.notifyPropertyChanged();
        QApplication::processEvents();
    }
}

} // namespace

BENCHMARK(repaintGraph)->Arg(Ascending)->Arg(Shuffled)->Unit(benchmark::kMillisecond);
BENCHMARK(dragStep)->Arg(Ascending)->Arg(Shuffled)->Unit(benchmark::kMillisecond);
BENCHMARK(hoverStep)->Arg(Ascending)->Unit(benchmark::kMillisecond);
BENCHMARK(refreshWindow)->Args({829, 449})->Args({1600, 900})->Unit(benchmark::kMillisecond);

int main(int argc, char* argv[])
{
    const QTemporaryDir home; // the window reads and writes the settings of its home
    qputenv("HOME", home.path().toLocal8Bit());
    qputenv("XDG_DATA_HOME", home.path().toLocal8Bit());
    qputenv("QT_QPA_PLATFORM", "offscreen");
    const QApplication application(argc, argv);
    return runBenchmarks(argc, argv);
}
