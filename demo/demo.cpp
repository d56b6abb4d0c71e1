// Drives the main job of the real window once, with mouse and keyboard, and prints what comes out:
// settings, notches, calculation, and the first samples as a client on the network gets them.
// Takes the path of the screenshot that it leaves.
#include "demo/window_hand.h"

#include <QApplication>
#include <QLineEdit>
#include <QScreen>
#include <QTcpSocket>
#include <QTextStream>
#include <QtEndian>

namespace {

constexpr int greetingSize = 24; // bytes
constexpr int shownSamples = 4;

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

QByteArray fetchSymbols(quint16 port, int bytes)
{
    QTcpSocket client;
    client.connectToHost(QStringLiteral("127.0.0.1"), port);
    const auto arrived = [&client](int count) {
        return QTest::qWaitFor([&] { return client.bytesAvailable() >= count; }, 10000);
    };
    if (!arrived(greetingSize)) {
        return {};
    }
    client.read(greetingSize);
    client.write("GetSymbol");
    arrived(bytes);
    return client.read(bytes);
}

void printSymbols(QTextStream& out, const QByteArray& block)
{
    for (int k = 0; k < shownSamples; ++k) {
        const char* word = block.constData() + 4 + 8 * qint64{k};
        out << "  I/Q sample " << k << ":  " << qFromLittleEndian<float>(word) << "  "
            << qFromLittleEndian<float>(word + 4) << "\n";
    }
}

} // namespace

int main(int argc, char* argv[])
{
    QApplication application(argc, argv);
    QTextStream out(stdout);
    MainWindow window;
    window.show();
    if (!QTest::qWaitForWindowExposed(&window) || !makeSignal(window)) {
        out << "The calculation did not end in valid data.\n";
        return 1;
    }
    const QByteArray symbols = fetchSymbols(reachablePort(window), 4 + 8 * shownSamples);
    if (symbols.size() < 4 + 8 * shownSamples) {
        out << "No samples came over TCP.\n";
        return 1;
    }
    out << "Status:        " << part<QLabel>(window, "fft_status_label")->text() << "\n"
        << "Crest factor:  " << part<QLineEdit>(window, "crest_factor_output")->text() << "\n"
        << "Over TCP:\n";
    printSymbols(out, symbols);

    const QString screenshot = application.arguments().value(1, QStringLiteral("screenshot.png"));
    QTest::qWait(200); // the last refresh reaches the screen
    window.screen()->grabWindow(window.winId()).save(screenshot);
    out << "Screenshot:    " << screenshot << "\n";
    window.close();
    return 0;
}
