// A program with the real window that closes at a chosen moment; test_closing runs it as a
// process of its own and judges how it ends.
#include "app/main_window.h"
#include "kit/background_jobs.h"
#include "kit/scripted_instrument.h"
#include "kit/window_driver.h"

namespace {

bool isCalculating(const WindowDriver& operate)
{
    return operate.text("fft_status_label") == QLatin1String("Calculating ...");
}

void closeWithNothingRunning(MainWindow& window, const WindowDriver&)
{
    window.close();
}

// The box stays until the operator ends it, even after the calculation has ended.
void closeAndWaitForTheCalculation(MainWindow& window, const WindowDriver& operate)
{
    operate.pick("fft_length_input", 0);
    operate.click("calc_fft_button");
    QTest::qWait(50);
    operate.onNext<QMessageBox>([&operate](QMessageBox* box) {
        const bool texts = box->text() == QLatin1String("Calculation in Progress") &&
                           box->informativeText() == QLatin1String("Closing...\nPlease Wait") &&
                           box->buttons().size() == 1 &&
                           box->buttons().constFirst()->text() == QLatin1String("Force Close") &&
                           box->defaultButton() == nullptr;
        const bool ended = QTest::qWaitFor([&operate] { return !isCalculating(operate); }, 120000);
        QTest::qWait(100);
        if (!texts || !ended || !box->isVisible()) {
            qFatal("the box is not as it should be");
        }
        QTest::mouseClick(box->buttons().constFirst(), Qt::LeftButton);
    });
    window.close();
}

void forceTheCloseOfARunningCalculation(MainWindow& window, const WindowDriver& operate)
{
    operate.pick("fft_length_input", 0);
    operate.click("calc_fft_button");
    QTest::qWait(50);
    operate.onNext<QMessageBox>(
        [](QMessageBox* box) { QTest::mouseClick(box->buttons().constFirst(), Qt::LeftButton); });
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
    device.answer("*CLS;:CALC1:MARK1:FUNC:POW:RES? ACP",
                  {ScriptedInstrument::Piece{200, "1,2,3\n"}});
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

// None of the other windows has a parent, and none may keep the program alive.
void closeWithEveryWindowOpen(MainWindow& window, const WindowDriver& operate)
{
    operate.trigger("actionDevices");
    operate.trigger("actionAbout");
    QTest::qWait(50);
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
