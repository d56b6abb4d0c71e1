// Makes the pictures of the window of curves: takes the folder that they go to. The curves are
// measured on simulated devices, so they come out the same every time.
#include "curves/curve_plot.h"
#include "curves/curves_window.h"
#include "curves/measure_dialog.h"
#include "look/house_look.h"

#include <QApplication>
#include <QDialogButtonBox>
#include <QDir>
#include <QPushButton>
#include <QTemporaryDir>
#include <QtTest>

namespace {

constexpr int patience = 120000; // ms

QStringList wordsFor(const char* device)
{
    return {"curve",    "default", "--notches",   "3,1e6,-100,0", "--simulate", device,
            "--levels", "-45:0:1", "--threshold", "41",           "--average",  "4"};
}

bool measure(CurvesWindow& window, const char* device, const QString& path)
{
    const int row = window.results().rowCount();
    window.measure(wordsFor(device));
    return QTest::qWaitFor(
               [&] {
                   return window.results().rowCount() > row &&
                          window.results().results().at(row).state == ShownResult::State::Unsaved;
               },
               patience) &&
           window.save({window.results().results().at(row)}, path);
}

bool grab(QWidget& widget, const QString& path)
{
    QCoreApplication::processEvents();
    return widget.grab().save(path);
}

bool showWindow(const QDir& folder)
{
    const QTemporaryDir results;
    CurvesWindow window;
    window.resize(1100, 620);
    window.show();
    const bool measured =
        measure(window, "adc,bits=12,full-scale=0", results.filePath("converter 12 bits.json")) &&
        measure(window, "adc,bits=10,full-scale=0", results.filePath("converter 10 bits.json"));
    auto* plot = window.findChild<CurvePlot*>();
    QCoreApplication::processEvents();
    const QPoint at = plot->frame().positionOf({-18.0, 43.5}).toPoint();
    QTest::mouseMove(window.windowHandle(), plot->mapTo(&window, at));
    return measured && QTest::qWaitFor([plot] { return plot->cursor().isSome(); }, patience) &&
           grab(window, folder.filePath("curves_window.png"));
}

bool showDialog(const QDir& folder)
{
    MeasureDialog dialog;
    dialog.show();
    auto* measure = dialog.findChild<QDialogButtonBox*>("buttons")->button(QDialogButtonBox::Ok);
    return QTest::qWaitFor([measure] { return measure->isEnabled(); }, patience) &&
           grab(dialog, folder.filePath("curves_measure.png"));
}

} // namespace

int main(int argc, char* argv[])
{
    prepareHouseLook();
    QApplication application(argc, argv);
    applyHouseLook(application);
    const QDir folder(QApplication::arguments().value(1));
    return showWindow(folder) && showDialog(folder) ? 0 : 1;
}
