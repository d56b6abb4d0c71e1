// Makes the pictures of README and manual from the real windows: takes the folder that they go to.
#include "demo/window_hand.h"

#include "fit/dialogs/load_trace_dialog.h"
#include "look/house_look.h"
#include "setup/measurement_setup.h"

#include <QAction>
#include <QApplication>
#include <QComboBox>
#include <QDir>
#include <QMouseEvent>
#include <QSpinBox>
#include <QTabWidget>
#include <QTcpSocket>
#include <QTemporaryDir>
#include <QTextStream>

#include <cmath>

namespace {

// The window without the traces of the hand: no focus, no selected text.
bool save(MainWindow& window, const QString& path)
{
    if (QWidget* focused = QApplication::focusWidget()) {
        focused->clearFocus();
    }
    QCoreApplication::processEvents();
    return window.grab().save(path);
}

void makeNotches(MainWindow& window, const char* count, const char* width, const char* depth)
{
    type(window, "nbw_srate_input", QStringLiteral("0.8"));
    type(window, "notch_count_input", QLatin1String(count));
    type(window, "notch_width_input", QLatin1String(width));
    type(window, "notch_offset_input", QStringLiteral("0"));
    type(window, "notch_depth_input", QLatin1String(depth));
    click(window, "autocalc_notches_button");
}

void sendMouse(QWidget& graph, QEvent::Type event, QPointF share, Qt::MouseButtons held)
{
    const QPointF place(graph.width() * share.x(), graph.height() * share.y());
    const Qt::MouseButton button = event == QEvent::MouseMove ? Qt::NoButton : Qt::LeftButton;
    QMouseEvent mouse(event, place, graph.mapToGlobal(place.toPoint()), button, held,
                      Qt::NoModifier);
    QApplication::sendEvent(&graph, &mouse);
    QCoreApplication::processEvents();
}

bool showNineNotches(MainWindow& window, const QDir& folder)
{
    makeNotches(window, "9", "1", "-80");
    QTcpSocket client;
    client.connectToHost(QStringLiteral("127.0.0.1"), reachablePort(window));
    const bool ready = calculate(window) && QTest::qWaitFor([&client] {
                           return client.bytesAvailable() > 0; // the window has taken the client
                       });
    return ready && save(window, folder.filePath(QStringLiteral("main_window.png")));
}

bool showEditing(MainWindow& window, const QDir& folder)
{
    makeNotches(window, "3", "10", "-60");
    auto* graph = part<QWidget>(window, "graph_widget");
    sendMouse(*graph, QEvent::MouseButtonPress, {0.79, 0.04}, Qt::LeftButton);
    sendMouse(*graph, QEvent::MouseMove, {0.86, 0.75}, Qt::LeftButton);
    const bool saved = save(window, folder.filePath(QStringLiteral("graph_editing.png")));
    sendMouse(*graph, QEvent::MouseButtonRelease, {0.86, 0.75}, Qt::NoButton);
    return saved;
}

bool showCarriers(MainWindow& window, const QDir& folder)
{
    part<QComboBox>(window, "nc_combobox")->setCurrentIndex(1);
    type(window, "notch_count_input", QStringLiteral("11"));
    click(window, "autocalc_notches_button");
    return calculate(window) && save(window, folder.filePath(QStringLiteral("carriers.png")));
}

QWidget* visibleWindow(const char* title)
{
    for (QWidget* each : QApplication::topLevelWidgets()) {
        if (each->isVisible() && each->windowTitle() == QLatin1String(title)) {
            return each;
        }
    }
    return nullptr;
}

bool grabAndClose(const char* title, const QDir& folder, const char* name)
{
    QWidget* dialog = visibleWindow(title);
    const bool saved =
        dialog != nullptr && dialog->grab().save(folder.filePath(QLatin1String(name)));
    if (dialog != nullptr) {
        dialog->close();
    }
    return saved;
}

bool showDevices(MainWindow& window, const QDir& folder)
{
    bool saved = true;
    static const char* const names[] = {"devices_generator.png", "devices_analyzer.png",
                                        "devices_microwave.png"};
    for (int tab = 0; tab < 3; ++tab) {
        window.findChild<QAction*>(QStringLiteral("actionDevices"))->trigger();
        QWidget* dialog = visibleWindow("Devices");
        dialog->findChild<QTabWidget*>(QStringLiteral("tabWidget"))->setCurrentIndex(tab);
        QCoreApplication::processEvents();
        saved = grabAndClose("Devices", folder, names[tab]) && saved;
    }
    return saved;
}

bool showSerialLine(MainWindow& window, const QDir& folder)
{
    window.findChild<QAction*>(QStringLiteral("actionDevices"))->trigger();
    QWidget* dialog = visibleWindow("Devices");
    auto* link = dialog->findChild<QLabel*>(QStringLiteral("g_rs232configure"));
    emit link->linkActivated(QStringLiteral("#g_rs232configure"));
    QCoreApplication::processEvents();
    dialog->close();
    return grabAndClose("RS232 Configuration", folder, "rs232.png");
}

bool showSweep(MainWindow& window, const QDir& folder)
{
    window.findChild<QAction*>(QStringLiteral("actionOptimize_Crest_Fector"))->trigger();
    QWidget* dialog = QApplication::activeModalWidget();
    dialog->findChild<QSpinBox*>(QStringLiteral("seed_count_input"))->setValue(40);
    auto* start = dialog->findChild<QAbstractButton*>(QStringLiteral("start_button"));
    QTest::mouseClick(start, Qt::LeftButton);
    const bool ended = QTest::qWaitFor([start] { return start->isEnabled(); }, 60000);
    const bool saved = ended && dialog->grab().save(folder.filePath(QStringLiteral("sweep.png")));
    dialog->close();
    return saved;
}

// A path with a tilt, some ripple and a little noise, as an analyzer stores it.
void writeTrace(const QString& path, double sampleRate)
{
    QFile file(path);
    file.open(QIODevice::WriteOnly);
    const int points = 1001;
    unsigned noise = 1;
    for (int i = 0; i < points; ++i) {
        const double place = double(i) / (points - 1);
        noise = noise * 1664525U + 1013904223U;
        const double level = -38.0 - 3.0 * place + 0.4 * std::sin(18.0 * place) +
                             0.1 * (double(noise >> 8) / (1U << 24) - 0.5);
        file.write(QByteArray::number(950e6 + sampleRate * place, 'f', 0) + ';' +
                   QByteArray::number(level, 'f', 2) + '\n');
    }
}

bool showTrace(const QDir& folder)
{
    const QTemporaryDir place;
    MeasurementSetup setup;
    setup.signal.length = static_cast<qint32>(setup.fftLength());
    writeTrace(place.filePath(QStringLiteral("path.txt")), setup.sampleRate);
    auto* dialog = new LoadTraceDialog(place.filePath(QStringLiteral("path.txt")), &setup);
    dialog->show();
    auto* last = dialog->findChild<QAbstractButton*>(QStringLiteral("load_poly_button"));
    const bool ready = QTest::qWaitFor([last] { return last->isEnabled(); }, 20000);
    QTest::qWait(300); // the chart lays its legend out a little later
    return ready && grabAndClose("Load SAN Mag", folder, "trace.png");
}

bool showAbout(MainWindow& window, const QDir& folder)
{
    window.findChild<QAction*>(QStringLiteral("actionAbout"))->trigger();
    QCoreApplication::processEvents();
    return grabAndClose("Information about Notchbench", folder, "about.png");
}

} // namespace

int main(int argc, char* argv[])
{
    prepareHouseLook();
    QApplication application(argc, argv);
    applyHouseLook(application);
    // Made absolute first: the window moves the process to the home directory.
    const QString folderName = QApplication::arguments().value(1, QStringLiteral("."));
    const QDir folder(QDir(folderName).absolutePath());
    MainWindow window;
    window.show();
    if (!QTest::qWaitForWindowExposed(&window) || !showNineNotches(window, folder) ||
        !showEditing(window, folder) || !showSweep(window, folder) ||
        !showCarriers(window, folder) || !showDevices(window, folder) ||
        !showSerialLine(window, folder) || !showTrace(folder) || !showAbout(window, folder)) {
        QTextStream(stderr) << "The pictures could not be made.\n";
        return 1;
    }
    return 0;
}
