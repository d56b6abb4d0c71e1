// A stored trace on its whole way: read, fitted and drawn by the window, taken into the record, and
// a signal made with it.
#include "base/worker_threads.h"
#include "fit/dialogs/load_trace_dialog.h"
#include "fuzz/input_file.h"
#include "setup/measurement_setup.h"

#include <QAbstractButton>
#include <QApplication>
#include <QPixmap>
#include <QPointer>

#include <cstdlib>

namespace {

constexpr int samples = 64;

// Reading, and then fitting, each end with an event for the window.
void awaitJobs()
{
    for (int job = 0; job < 2; ++job) {
        WorkerThreads::ofProcess().waitForDone();
        QApplication::processEvents();
    }
}

// The best that the window offers.
void clickFirstEnabled(const QWidget& window)
{
    for (const char* name : {"load_poly_button", "load_direct_button", "cancel_button"}) {
        auto* button = window.findChild<QAbstractButton*>(QLatin1String(name));
        if (button->isEnabled()) {
            button->click();
            return;
        }
    }
    std::abort();
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    static int argc = 1;
    static char name[] = "fuzz";
    static char* argv[] = {name, nullptr};
    qputenv("QT_QPA_PLATFORM", "offscreen");
    // Never freed: when it ends, Qt's offscreen plugin loses its screen and all fonts drawn with.
    static const auto* const application = new QApplication(argc, argv);
    (void)application;
    const InputFile input(bytesOf(data, size));
    MeasurementSetup setup;
    setup.fftLengthIndex = 16; // 64
    setup.signal.reset(samples);
    const QPointer<LoadTraceDialog> window = new LoadTraceDialog(input.path(), &setup);
    window->show();
    awaitJobs();
    (void)window->grab();
    clickFirstEnabled(*window);
    QApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
    setup.calculateSignal();
    if (window || setup.signal.length != samples ||
        (setup.traceLoaded && setup.compensationTrace.size() != samples)) {
        std::abort();
    }
    return 0;
}
