// What somebody waits for in the window of curves, offscreen, with 20 results of 200 levels and 9
// notches, each up to the painted window: the pointer over the lines with its reading (at most 16
// ms), switching a notch, switching a result (16 ms each), choosing another result with its bands
// of sigma, a zoom, which paints everything anew (100 ms each). Processor time counts. The start is
// that of a process of its own: this program, with the scenario's name.
#include "curves/curves_window.h"
#include "first_paint.h"

#include "curves/curve_plot.h"
#include "curves/made_up_result.h"
#include "look/house_look.h"
#include "run_benchmarks.h"

#include <benchmark/benchmark.h>

#include <QApplication>
#include <QListWidget>
#include <QMouseEvent>
#include <QTableView>
#include <QTemporaryDir>

namespace {

constexpr int resultTotal = 20;
constexpr int notchTotal = 9;

QStringList writeResults(const QTemporaryDir& folder)
{
    QStringList paths;
    for (int k = 0; k < resultTotal; ++k) {
        paths << writeResult(folder.filePath(QString("%1.json").arg(k)),
                             roofs(notchTotal, -40.0, -0.2, 0.2, 0.5 * k));
    }
    return paths;
}

// The window with all results open and the last one chosen.
struct Opened
{
    Opened()
    {
        window.resize(1600, 900);
        window.show();
        window.open(writeResults(folder));
        while (window.results().rowCount() < resultTotal) {
            QApplication::processEvents(QEventLoop::WaitForMoreEvents);
        }
        settle();
    }
    static void settle()
    {
        QApplication::processEvents();
        QApplication::processEvents(); // the chart's own layout comes one turn later
    }

    QTemporaryDir folder;
    CurvesWindow window;
    CurvePlot& plot = *window.findChild<CurvePlot*>("plot");
    QListWidget& notches = *window.findChild<QListWidget*>("notch_list");
    QTableView& results = *window.findChild<QTableView*>("result_view");
};

void movePointer(benchmark::State& state)
{
    const Opened opened;
    int step = 0;
    while (state.KeepRunning()) {
        const QPointF at(200 + (step += 7) % 800, 400);
        QMouseEvent move(QEvent::MouseMove, at, Qt::NoButton, Qt::NoButton, Qt::NoModifier);
        QApplication::sendEvent(&opened.plot, &move);
        Opened::settle();
    }
}

void switchNotch(benchmark::State& state)
{
    const Opened opened;
    int step = 0;
    while (state.KeepRunning()) {
        opened.notches.item(4)->setCheckState(++step % 2 == 0 ? Qt::Checked : Qt::Unchecked);
        Opened::settle();
    }
}

void switchResult(benchmark::State& state)
{
    const Opened opened;
    QAbstractItemModel& model = *opened.results.model();
    int step = 0;
    while (state.KeepRunning()) {
        model.setData(model.index(7, 0), ++step % 2 == 0 ? Qt::Checked : Qt::Unchecked,
                      Qt::CheckStateRole);
        Opened::settle();
    }
}

void chooseResult(benchmark::State& state)
{
    const Opened opened;
    int step = 0;
    while (state.KeepRunning()) {
        opened.results.selectRow(++step % resultTotal);
        Opened::settle();
    }
}

void zoom(benchmark::State& state)
{
    const Opened opened;
    int step = 0;
    while (state.KeepRunning()) {
        opened.plot.zoom(++step % 2 == 0 ? 1.25 : 0.8);
        Opened::settle();
    }
}

int paintOnce()
{
    CurvesWindow window;
    PaintWatch watch;
    window.findChild<CurvePlot*>("plot")->installEventFilter(&watch);
    window.show();
    return QApplication::exec();
}

} // namespace

BENCHMARK(movePointer)->Unit(benchmark::kMillisecond);
BENCHMARK(switchNotch)->Unit(benchmark::kMillisecond);
BENCHMARK(switchResult)->Unit(benchmark::kMillisecond);
BENCHMARK(chooseResult)->Unit(benchmark::kMillisecond);
BENCHMARK(zoom)->Unit(benchmark::kMillisecond);
BENCHMARK(startToFirstPaint)->UseManualTime()->Iterations(10)->Unit(benchmark::kMillisecond);

int main(int argc, char* argv[])
{
    qputenv("QT_QPA_PLATFORM", "offscreen");
    prepareHouseLook();
    QApplication application(argc, argv);
    applyHouseLook(application);
    if (application.arguments().value(1) == QLatin1String("paintOnce")) {
        return paintOnce();
    }
    return runBenchmarks(argc, argv);
}
