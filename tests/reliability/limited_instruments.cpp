// Instruments without a further thread.
#include "kit/bench_words.h"
#include "kit/top_level.h"
#include "reliability/limited_bench.h"

namespace {

const QByteArray presetEnd = "SWE:TIME 1.000000\nDISP:WIND1:TRAC:Y:RLEV -20.000\n&GTL\n";
const QString noThread = QStringLiteral("No thread for the instrument");
const QString name = QStringLiteral("ACME,42");

void answerPromptly(ScriptedInstrument& device)
{
    device.answer("*IDN?", "ACME,42\n");
    device.answer(acpQuery, "1,2,3\n");
}

QString readings(const LimitedBench& bench)
{
    return bench.operate.text("signal_power") + ' ' + bench.operate.text("npr_lower") + ' ' +
           bench.operate.text("npr_upper");
}

void awaitReadings(const LimitedBench& bench, const char* expected)
{
    await(expected, [&] { return readings(bench) == QLatin1String(expected); });
}

// One instrument's tab of the devices dialog.
class Tab
{
public:
    Tab(QWidget& dialog, int index) : operate(dialog), prefix("gam"[index])
    {
        operate.find<QTabWidget>("tabWidget")->setCurrentIndex(index);
    }

    void press(const char* job) const
    {
        expect(operate.isEnabled(named(job).constData()), job);
        operate.click(named(job).constData());
    }
    QString message() const { return operate.text(named("message").constData()); }
    bool isConnected() const { return operate.isEnabled(named("set").constData()); }

    void pressAndAwait(const char* job, const QString& answer) const
    {
        press(job);
        await(qPrintable(job + QStringLiteral(" ends with ") + answer),
              [&] { return message() == answer; });
    }

private:
    QByteArray named(const char* widget) const { return QByteArray(1, prefix) + '_' + widget; }

    const WindowDriver operate;
    const char prefix;
};

void bringUpInTheShortage(const LimitedBench& bench)
{
    answerPromptly(bench.device);
    QWidget* devices = &openDevices(bench.operate).window;
    WindowDriver(*devices).pick("m_type", 1);
    for (const int index : {0, 1, 2}) {
        const Tab tab(*devices, index);
        for (const char* job : {"init", "set", "reset"}) {
            if (qstrcmp(job, "init") != 0) {
                tab.pressAndAwait("init", name);
            }
            const Shortage shortage(bench.kind);
            tab.pressAndAwait(job, noThread);
            expect(!tab.isConnected(), "the connection is given up");
        }
        tab.pressAndAwait("init", name);
        tab.pressAndAwait("set", name);
        tab.press("reset");
        await("the reset", [&tab] { return tab.message() == name; });
    }
    devices->close();
}

// Further jobs wait behind one that is on the line, and nobody is there for them when it has ended.
void waitBehindAJobInTheShortage(const LimitedBench& bench)
{
    bench.device.answer("*IDN?", {ScriptedInstrument::Piece{500, "ACME,42\n"}});
    QWidget* devices = &openDevices(bench.operate).window;
    const Tab tab(*devices, 0);
    {
        tab.press("init");
        bench.device.takeReceivedUpTo("*IDN?\n");
        const Shortage shortage(bench.kind);
        for (int job = 0; job < 20; ++job) {
            tab.press("init");
        }
        await("the end of all jobs", [&tab] { return tab.message() == noThread; });
        expect(!tab.isConnected(), "the connection is given up");
    }
    answerPromptly(bench.device);
    tab.pressAndAwait("init", name);
    expect(tab.isConnected(), "the connection stands");
    devices->close();
}

void presetInTheShortage(const LimitedBench& bench)
{
    answerPromptly(bench.device);
    QWidget* devices = &openDevices(bench.operate).window;
    const Tab analyzer(*devices, 1);
    const WindowDriver inDevices(*devices);
    {
        const Shortage shortage(bench.kind);
        bench.operate.click("preset_button");
        expect(bench.operate.isEnabled("preset_button"), "it can be pressed again");
        inDevices.type("a_level", "-21"); // a preset doesn't refresh the window, a change does
        expect(analyzer.message() == noThread, "the analyzer's message tells it");
        inDevices.type("a_level", "-20");
    }
    expect(bench.device.takeReceived().isEmpty(), "nothing was sent");
    bench.operate.click("preset_button");
    expect(bench.device.takeReceivedUpTo(presetEnd).endsWith(presetEnd), "the preset runs");
    waitForBackgroundJobs();
    inDevices.type("a_level", "-21");
    expect(analyzer.message() == name, "the analyzer's message tells it");
    devices->close();
}

// Brings the analyzer up and picks the first of three notches.
void pickANotch(const LimitedBench& bench)
{
    answerPromptly(bench.device);
    bench.operate.type("notch_count_input", "3");
    bench.operate.click("autocalc_notches_button");
    bench.operate.click("preset_button");
    expect(bench.device.takeReceivedUpTo(presetEnd).endsWith(presetEnd), "the preset runs");
    waitForBackgroundJobs();
    bench.operate.type("measure_notch", "1");
    bench.device.takeReceivedUpTo("&GTL\n");
}

void measureInTheShortage(const LimitedBench& bench)
{
    pickANotch(bench);
    bench.operate.click("measure_button");
    awaitReadings(bench, "1.00 2.00 3.00");
    waitForBackgroundJobs();
    bench.device.takeReceivedUpTo("&GTL\n");
    bench.device.answer(acpQuery, "4,5,6\n");
    {
        const Shortage shortage(bench.kind);
        for (int attempt = 0; attempt < 2; ++attempt) {
            bench.operate.click("measure_button");
            QCoreApplication::processEvents();
            expect(QApplication::activeModalWidget() == nullptr, "there is no box");
            expect(bench.operate.isEnabled("measure_button"), "it can be pressed again");
        }
        expect(readings(bench) == QLatin1String("1.00 2.00 3.00"), "the labels keep");
        expect(bench.device.takeReceived().isEmpty(), "nothing was sent");
    }
    bench.operate.click("measure_button");
    awaitReadings(bench, "4.00 5.00 6.00");
}

// The thread of "Cont" is refused when the window is made, and again when it is asked for.
void measureContinuouslyAfterTheShortage(const LimitedBench& bench)
{
    bench.lasting.reset();
    pickANotch(bench);
    {
        const Shortage shortage(bench.kind);
        bench.operate.pick("measure_mode", 0);
        QCoreApplication::processEvents();
        expect(bench.operate.text("measure_mode") == QLatin1String("Cont"), "the mode is taken");
        expect(bench.device.takeReceived().isEmpty(), "nothing is measured");
        bench.operate.pick("measure_mode", 1);
    }
    bench.operate.click("measure_button");
    awaitReadings(bench, "1.00 2.00 3.00");
    bench.device.answer(acpQuery, "4,5,6\n");
    bench.operate.pick("measure_mode", 0);
    awaitReadings(bench, "4.00 5.00 6.00");
}

// The thread is there, and a shortage is nothing to it.
void measureContinuouslyInTheShortage(const LimitedBench& bench)
{
    pickANotch(bench);
    bench.operate.pick("measure_mode", 0);
    awaitReadings(bench, "1.00 2.00 3.00");
    const Shortage shortage(bench.kind);
    bench.device.answer(acpQuery, "4,5,6\n");
    awaitReadings(bench, "4.00 5.00 6.00");
    bench.operate.pick("measure_mode", 1);
}

} // namespace

const QVector<LimitedScenario> instrumentScenarios = {
    {"jobs", bringUpInTheShortage, false},
    {"waiting jobs", waitBehindAJobInTheShortage, false},
    {"preset", presetInTheShortage, false},
    {"measure", measureInTheShortage, false},
    {"cont", measureContinuouslyInTheShortage, false},
    {"cont at start", measureContinuouslyAfterTheShortage, true},
};
