// Drives a whole measurement on the real window once, with mouse and keyboard, and prints what
// comes out: settings, notches, calculation, preset, and the reading of one notch from whatever
// instruments answer on the default address. Takes the path of the screenshot that it leaves, and
// the port where those instruments look for the signal.
#include "base/worker_threads.h"
#include "demo/window_hand.h"
#include "look/house_look.h"

#include <QApplication>
#include <QLineEdit>
#include <QMessageBox>
#include <QScreen>
#include <QTextStream>
#include <QTimer>

#include <algorithm>

namespace {

bool makeSignal(MainWindow& window)
{
    type(window, "nbw_srate_input", "0.8");
    type(window, "notch_count_input", "9");
    type(window, "notch_width_input", "1");
    type(window, "notch_offset_input", "0");
    type(window, "notch_depth_input", "-80");
    click(window, "autocalc_notches_button");
    return calculate(window);
}

// The instruments fetch the samples from this very thread, so it goes on while the jobs run.
bool jobsEnd()
{
    const bool ended =
        QTest::qWaitFor([] { return WorkerThreads::ofProcess().busyCount() == 0; }, 30000);
    QCoreApplication::processEvents(); // their results arrive
    return ended;
}

bool measureNotch(MainWindow& window, const QString& number)
{
    // Without instruments picking the notch opens a box, which would wait for an operator.
    QTimer::singleShot(5000, &window, [] {
        if (auto* box = qobject_cast<QMessageBox*>(QApplication::activeModalWidget())) {
            box->close();
        }
    });
    click(window, "preset_button");
    const bool preset = jobsEnd();
    type(window, "measure_notch", number);
    click(window, "measure_button");
    return preset && jobsEnd();
}

// Whether clients of that port reach this window. A former server goes a little later.
bool isOffered(MainWindow& window, const QString& port)
{
    return QTest::qWaitFor(
        [&window, &port] {
            const QList<QTcpServer*> servers = window.findChildren<QTcpServer*>();
            return std::any_of(servers.begin(), servers.end(), [&port](const QTcpServer* server) {
                return server->isListening() && QString::number(server->serverPort()) == port;
            });
        },
        100);
}

void printLabel(QTextStream& out, const char* caption, MainWindow& window, const char* name)
{
    out << caption << part<QLabel>(window, name)->text() << "\n";
}

} // namespace

int main(int argc, char* argv[])
{
    prepareHouseLook();
    QApplication application(argc, argv);
    applyHouseLook(application);
    const QStringList arguments = application.arguments();
    QTextStream out(stdout);
    MainWindow window;
    window.show();
    if (!QTest::qWaitForWindowExposed(&window)) {
        return 1;
    }
    const QString port = arguments.value(2, QStringLiteral("1000"));
    if (!isOffered(window, port)) {
        type(window, "port_input", port);
    }
    if (!isOffered(window, port)) {
        out << "The status server can't have port " << port << "; is another program there?\n";
        return 1;
    }
    if (!makeSignal(window) || !measureNotch(window, QStringLiteral("7"))) {
        out << "The measurement did not come to its end.\n";
        return 1;
    }
    QTest::qWait(200); // the last refresh reaches the screen
    printLabel(out, "Status:        ", window, "fft_status_label");
    out << "Crest factor:  " << part<QLineEdit>(window, "crest_factor_output")->text() << "\n";
    printLabel(out, "Signal power:  ", window, "signal_power");
    printLabel(out, "NPR lower:     ", window, "npr_lower");
    printLabel(out, "NPR upper:     ", window, "npr_upper");
    const QString screenshot = arguments.value(1, QStringLiteral("screenshot.png"));
    window.screen()->grabWindow(window.winId()).save(screenshot);
    out << "Screenshot:    " << screenshot << "\n";
    window.close();
    return 0;
}
