// Every device under test from end to end: the real window calculates, the simulated bench fetches
// the signal from its status server, and the labels show what theory says.
#include "dut/theory.h"
#include "fit/dialogs/load_trace_dialog.h"
#include "kit/measuring_test.h"

#include <QPointer>
#include <QTemporaryDir>

namespace {

// 131072 lines over 100 MHz, of which 80 MHz are filled, with a notch from 8 to 12 MHz.
constexpr int lineCount = 131072;

int lineAt(double megahertz)
{
    return static_cast<int>(megahertz / 100.0 * lineCount);
}

LinePowers stimulus()
{
    LinePowers lines(lineCount, 0.0);
    const auto carrier = lines.begin() + lineCount / 2;
    std::fill(carrier + lineAt(-40.0), carrier + lineAt(40.0), 1.0);
    std::fill(carrier + lineAt(8.0), carrier + lineAt(12.0), 0.0);
    return lines;
}

// Channels 3 MHz wide, the reference 4.8 MHz below the notch.
const ChannelLines notch{lineAt(8.5), lineAt(3.0)};
const ChannelLines reference{lineAt(3.7), lineAt(3.0)};

double theoryOf(const Gain& gain)
{
    return deviceReading(stimulus(), distortionOrders(gain), reference, notch);
}

double converterTheory(int bits, double loading)
{
    return converterReading(stimulus(), bits, loading, reference, notch);
}

// 0.1 dB and three sigmas of a single reading: 3932 lines scatter by 0.07 dB, and none of the cases
// here leaves its distortion to few peaks.
constexpr double tolerance = 0.1 + 3.0 * 0.07;

} // namespace

class TestTheoryInTheWindow : public MeasuringTest
{
    Q_OBJECT

private slots:
    void init() { openBench(); }
    void cleanup() { closeBench(); }

    void everyDeviceReadsItsTheory_data();
    void everyDeviceReadsItsTheory();
    void aWrittenRippleIsCorrected();
};

// The generator plays at -20 dBm.
void TestTheoryInTheWindow::everyDeviceReadsItsTheory_data()
{
    QTest::addColumn<QStringList>("options");
    QTest::addColumn<double>("theory");
    const auto add = [](const char* options, double theory) {
        QTest::newRow(options) << QString(options).split(' ') << theory;
    };
    add("--dut rapp --saturation -14 --smoothness 2", theoryOf(rappGain(6, 2)));
    add("--dut rapp --saturation -20 --smoothness 1", theoryOf(rappGain(0, 1)));
    add("--dut soft --saturation -16", theoryOf(softLimiterGain(4)));
    add("--dut saleh --saturation -10", theoryOf(salehGain(10)));
    add("--dut cubic --intercept 0", theoryOf(cubicGain(20)));
    // A full scale of -10.97 dBm is 4 times the rms of a component at -20 dBm: 3.01 dB - 20 lg 4.
    add("--dut adc --bits 8 --full-scale -10.97", converterTheory(8, 4.0));
    add("--dut adc --bits 10 --loading 5", converterTheory(10, 5.0));
}

void TestTheoryInTheWindow::everyDeviceReadsItsTheory()
{
    QFETCH(QStringList, options);
    QFETCH(double, theory);
    makeSignal(5, 1, 4, 10, -100);
    start(options);
    preset();
    letTheBenchCompute();
    const double measured = -measure(1).upper;
    QVERIFY2(qAbs(measured - theory) < tolerance,
             qPrintable(QString("%1 dB, theory %2 dB").arg(measured).arg(theory)));
    QVERIFY(simulator->refusals().isEmpty());
}

// The far neighbour of the reference lies near the top of a ripple of 2 dB over 20 MHz, the
// reference half-way down; with the bench's own trace loaded both read alike.
void TestTheoryInTheWindow::aWrittenRippleIsCorrected()
{
    const QTemporaryDir folder;
    const QString trace = folder.filePath("ripple.txt");
    makeSignal(5, 1, 4, 10, -40);
    start({"--dut", "linear", "--ripple", "2,2e7", "--write-trace", trace});
    preset();
    letTheBenchCompute();
    QVERIFY(qAbs(measure(1).lower - 1.0) < 0.1);
    operate->answerFileDialog(trace);
    operate->trigger("actionLoad_SAN_Mag");
    QPointer<LoadTraceDialog> dialog = window->findChild<LoadTraceDialog*>();
    QVERIFY(!dialog.isNull());
    QTRY_VERIFY_WITH_TIMEOUT(WindowDriver(*dialog).isEnabled("load_direct_button"), 30000);
    WindowDriver(*dialog).click("load_direct_button");
    QTRY_VERIFY(dialog.isNull());
    calculate();
    letTheBenchCompute();
    const Reading corrected = measure(1);
    QVERIFY2(qAbs(corrected.lower) < 0.02, qPrintable(QString::number(corrected.lower)));
    QVERIFY2(qAbs(corrected.upper + 40.0) < 0.1, qPrintable(QString::number(corrected.upper)));
}

QTEST_MAIN(TestTheoryInTheWindow)
#include "test_theory_in_the_window.moc"
