// A program with the real window that closes at a chosen moment; test_closing runs it as a
// process of its own and judges how it ends.
#include "app/main_window.h"
#include "base/worker_threads.h"
#include "kit/background_jobs.h"
#include "kit/bench_instrument.h"
#include "kit/bench_words.h"
#include "kit/full_listener.h"
#include "kit/scripted_instrument.h"
#include "kit/stand_in_visa.h"
#include "kit/top_level.h"

#include <cstdio>
#include <ctime>
#include <thread>

namespace {

void say(const char* line)
{
    std::puts(line);
    std::fflush(stdout);
}

// From here on the process has two seconds; test_closing measures them.
void closeNow(MainWindow& window)
{
    say("closing");
    window.close();
}

bool isCalculating(const WindowDriver& operate)
{
    return operate.text("fft_status_label") == QLatin1String("Calculating ...");
}

// At the greatest length. The window says "Calculating ..." from the click on; that the job runs is
// seen by the processor time that passes while the window waits.
void startCalculating(const WindowDriver& operate)
{
    operate.pick("fft_length_input", 0);
    operate.click("calc_fft_button");
    const std::clock_t working = std::clock() + CLOCKS_PER_SEC / 20;
    if (!QTest::qWaitFor([working] { return std::clock() > working; }) || !isCalculating(operate)) {
        qFatal("it doesn't calculate");
    }
}

void closeWithNothingRunning(MainWindow& window, const WindowDriver&)
{
    window.close();
}

// The box stays until the operator ends it, even after the calculation has ended.
void closeAndWaitForTheCalculation(MainWindow& window, const WindowDriver& operate)
{
    startCalculating(operate);
    operate.onNext<QMessageBox>([&operate](QMessageBox* box) {
        const bool texts = box->text() == QLatin1String("Calculation in Progress") &&
                           box->informativeText() == QLatin1String("Closing...\nPlease Wait") &&
                           box->buttons().size() == 1 &&
                           box->buttons().constFirst()->text() == QLatin1String("Force Close") &&
                           box->defaultButton() == nullptr;
        const bool ended = QTest::qWaitFor([&operate] { return !isCalculating(operate); }, 120000);
        waitForBackgroundJobs();
        if (!texts || !ended || !box->isVisible()) {
            qFatal("the box is not as it should be");
        }
        QTest::mouseClick(box->buttons().constFirst(), Qt::LeftButton);
    });
    window.close();
}

// The end of the calculation is told by another thread, as the window's should hang by then.
void forceTheCloseOfARunningCalculation(MainWindow& window, const WindowDriver& operate)
{
    startCalculating(operate);
    operate.onNext<QMessageBox>([](QMessageBox* box) {
        QTest::mouseClick(box->buttons().constFirst(), Qt::LeftButton);
        say("forced");
        std::thread([] {
            WorkerThreads::ofProcess().waitForDone();
            say("calculated");
        }).detach();
    });
    window.close();
}

// A thousand workers, some of them calculating, when the last window closes.
void closeInTheMiddleOfASweep(MainWindow& window, const WindowDriver& operate)
{
    operate.trigger("actionOptimize_Crest_Fector");
    QWidget* dialog = QApplication::activeModalWidget();
    const WindowDriver inDialog(*dialog);
    inDialog.type("seed_count_input", "1000");
    inDialog.click("start_button");
    dialog->close();
    window.close();
}

// A reading that takes its time is on the line when the window closes.
void closeDuringAMeasurement(MainWindow& window, const WindowDriver& operate)
{
    static ScriptedInstrument device;
    device.answer("*IDN?", "ACME,42\n");
    device.answer(acpQuery, {ScriptedInstrument::Piece{200, "1,2,3\n"}});
    operate.type("notch_count_input", "3");
    operate.click("autocalc_notches_button");
    operate.click("preset_button");
    device.takeReceivedUpTo("SWE:TIME 1.000000\nDISP:WIND1:TRAC:Y:RLEV -20.000\n&GTL\n");
    waitForBackgroundJobs();
    operate.type("measure_notch", "1");
    operate.pick("measure_mode", 0);
    device.takeReceivedUpTo("ACP\n");
    window.close();
}

void closeDuringAPreset(MainWindow& window, const WindowDriver& operate)
{
    static ScriptedInstrument device;
    device.answer("*IDN?", {ScriptedInstrument::Piece{300, "ACME,42\n"}});
    operate.click("preset_button");
    device.takeReceivedUpTo("*IDN?\n");
    window.close();
}

void clickInDevices(const WindowDriver& operate, const char* button)
{
    openDevices(operate, 1).click(button);
}

// Waits for one more of these lines.
template <class Act> void awaitLine(const BenchInstrument& device, const QByteArray& line, Act act)
{
    const int before = device.count(line);
    act();
    if (!QTest::qWaitFor([&] { return device.count(line) > before; })) {
        qFatal("%s never came", line.constData());
    }
}

// The analyzer, connected and tuned to a notch. From now on it answers nothing any more.
BenchInstrument& silentAnalyzer(const WindowDriver& operate)
{
    // Never destroyed: its thread talks until the process has ended.
    static BenchInstrument& device = *new BenchInstrument(QStringLiteral("127.0.0.1"));
    device.answer("*IDN?", "ACME,42\n");
    operate.type("notch_count_input", "3");
    operate.click("autocalc_notches_button");
    awaitLine(device, "&GTL", [&] { clickInDevices(operate, "a_init"); });
    waitForBackgroundJobs();
    awaitLine(device, "&GTL", [&] { operate.type("measure_notch", "1"); });
    device.hold("*IDN?");
    return device;
}

void closeDuringAnInit(MainWindow& window, const WindowDriver& operate)
{
    awaitLine(silentAnalyzer(operate), "*IDN?", [&] { clickInDevices(operate, "a_init"); });
    closeNow(window);
}

void closeDuringASet(MainWindow& window, const WindowDriver& operate)
{
    awaitLine(silentAnalyzer(operate), "*IDN?", [&] { clickInDevices(operate, "a_set"); });
    closeNow(window);
}

// A reset asks nothing; it waits behind an init.
void closeBeforeAReset(MainWindow& window, const WindowDriver& operate)
{
    awaitLine(silentAnalyzer(operate), "*IDN?", [&] { clickInDevices(operate, "a_init"); });
    clickInDevices(operate, "a_reset");
    closeNow(window);
}

void closeDuringASilentPreset(MainWindow& window, const WindowDriver& operate)
{
    awaitLine(silentAnalyzer(operate), "*IDN?", [&] { operate.click("preset_button"); });
    closeNow(window);
}

void closeDuringASilentMeasurement(MainWindow& window, const WindowDriver& operate)
{
    awaitLine(silentAnalyzer(operate), acpQuery, [&] { operate.click("measure_button"); });
    closeNow(window);
}

void closeDuringSilentPasses(MainWindow& window, const WindowDriver& operate)
{
    awaitLine(silentAnalyzer(operate), acpQuery, [&] { operate.pick("measure_mode", 0); });
    closeNow(window);
}

// Everything at once, most of it waiting.
void closeWhileEverythingWaits(MainWindow& window, const WindowDriver& operate)
{
    awaitLine(silentAnalyzer(operate), "*IDN?", [&] { clickInDevices(operate, "a_init"); });
    for (int i = 0; i < 5; ++i) {
        operate.click("preset_button");
        operate.click("measure_button");
        clickInDevices(operate, "a_set");
        clickInDevices(operate, "a_reset");
    }
    operate.pick("measure_mode", 0);
    closeNow(window);
}

void closeDuringAConnect(MainWindow& window, const WindowDriver& operate)
{
    static const FullListener host("127.0.0.1", 5025);
    clickInDevices(operate, "a_init");
    if (!host.awaitConnecting()) {
        qFatal("nobody connects");
    }
    closeNow(window);
}

// The instrument's other connections in use: it doesn't hang up when it is told to.
void closeWhileAFormerConnectionStaysOpen(MainWindow& window, const WindowDriver& operate)
{
    static FullListener host("127.0.0.1", 5025, FullListener::Room::ForOne);
    clickInDevices(operate, "a_init");
    host.answerFirst("*IDN?\n", "ACME,42\n");
    waitForBackgroundJobs();
    clickInDevices(operate, "a_init");
    host.awaitHangUpOfFirst();
    closeNow(window);
}

// The library keeps the call until a line has come from outside, and says when it lets it go.
void closeDuringACallOfVisa(MainWindow& window, const WindowDriver& operate)
{
    static StandIn visa;
    visa.tellSessionsApart();
    visa.hold("TCPIP::127.0.0.1::INSTR", "*IDN?\n");
    const WindowDriver devices = openDevices(operate, 1);
    devices.find<QComboBox>("a_interface")->setCurrentIndex(3);
    devices.click("a_init");
    if (!QTest::qWaitFor([] { return visa.log().contains("*IDN?"); })) {
        qFatal("nobody asks");
    }
    std::thread([] {
        (void)std::getchar();
        say("released");
        visa.release();
    }).detach();
    closeNow(window);
}

// None of the other windows has a parent, and none may keep the program alive.
void closeWithEveryWindowOpen(MainWindow& window, const WindowDriver& operate)
{
    operate.trigger("actionDevices");
    operate.trigger("actionAbout");
    for (QWidget* each : QApplication::topLevelWidgets()) {
        if (each->isVisible() && !QTest::qWaitForWindowExposed(each)) {
            qFatal("a window doesn't come");
        }
    }
    window.close();
}

struct Scenario
{
    const char* name;
    void (*play)(MainWindow&, const WindowDriver&);
};

const Scenario scenarios[] = {
    {"idle", closeWithNothingRunning},
    {"wait", closeAndWaitForTheCalculation},
    {"force", forceTheCloseOfARunningCalculation},
    {"sweep", closeInTheMiddleOfASweep},
    {"measuring", closeDuringAMeasurement},
    {"presetting", closeDuringAPreset},
    {"windows", closeWithEveryWindowOpen},
    {"init", closeDuringAnInit},
    {"set", closeDuringASet},
    {"reset", closeBeforeAReset},
    {"preset", closeDuringASilentPreset},
    {"measure", closeDuringASilentMeasurement},
    {"cont", closeDuringSilentPasses},
    {"everything", closeWhileEverythingWaits},
    {"connect", closeDuringAConnect},
    {"visa", closeDuringACallOfVisa},
    {"hang up", closeWhileAFormerConnectionStaysOpen},
};

} // namespace

int main(int argc, char* argv[])
{
    QApplication application(argc, argv);
    const QString name = application.arguments().value(1);
    MainWindow window;
    const WindowDriver operate(window);
    window.show();
    for (const Scenario& scenario : scenarios) {
        if (name == QLatin1String(scenario.name)) {
            QTimer::singleShot(0, &window, [&] { scenario.play(window, operate); });
            return QApplication::exec();
        }
    }
    return 2;
}
