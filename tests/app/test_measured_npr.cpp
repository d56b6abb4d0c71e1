// The proof of the whole program: the real window and the simulated bench in a process of its own,
// over real sockets, from "Auto-Calculate" to the labels, against closed forms.
#include "kit/converter_theory.h"
#include "kit/heartbeat.h"
#include "kit/measuring_test.h"

class TestMeasuredNpr : public MeasuringTest
{
    Q_OBJECT

private slots:
    void init() { openBench(); }
    void cleanup() { closeBench(); }

    void aLinearDeviceReadsTheNotchDepth();
    void bothSidesAndTheBandEdgeAreMeasured();
    void theMicrowaveChainAddsItsFrequency();
    void aWrongCentreReadsNothing();
    void cubicDistortionFallsTwoDecibelsPerDecibel();
    void convertersReachTheirNoisePowerRatio_data();
    void convertersReachTheirNoisePowerRatio();
    void continuousMeasurementSurvivesABenchThatComesAndGoes();
};

void TestMeasuredNpr::aLinearDeviceReadsTheNotchDepth()
{
    makeSignal(5, 1, 2, 10, -40);
    start({"--dut", "linear"});
    preset();
    const Reading reading = measure(1);
    QVERIFY2(qAbs(reading.upper + 40.0) < 0.1, qPrintable(operate->text("npr_upper")));
    QVERIFY2(qAbs(reading.lower) < 0.3, qPrintable(operate->text("npr_lower")));
    // -20 dBm over 80 MHz; 1.5 MHz of it is the reference channel: -20 + 10 log10(1.5 / 80),
    // and the notch keeps 2 of the 80 MHz almost empty: + 10 log10(80 / 78).
    QVERIFY2(qAbs(reading.power - (-37.27 + 0.11)) < 0.1,
             qPrintable(operate->text("signal_power")));
}

void TestMeasuredNpr::bothSidesAndTheBandEdgeAreMeasured()
{
    makeSignal(5, 9, 1, 0, -50);
    start({"--dut", "linear"});
    preset();
    const auto center = [this](int row) { return operate->cell(row, 0).toDouble() - 1000.0; };
    QVERIFY(center(0) < 0 && center(8) > 0);
    for (const int notch : {1, 5, 9}) {
        const Reading reading = measure(notch);
        const bool upper = center(notch - 1) >= 0;
        QVERIFY2(qAbs((upper ? reading.upper : reading.lower) + 50.0) < 0.1,
                 qPrintable(QString::number(notch)));
        QVERIFY2(qAbs(upper ? reading.lower : reading.upper) < 0.3,
                 qPrintable(QString::number(notch)));
    }
    // A notch whose edge is that of the band, typed into the table.
    operate->typeCell(8, 0, "1039.5");
    operate->click("calc_fft_button");
    QTRY_COMPARE_WITH_TIMEOUT(operate->text("fft_status_label"), QString("Data valid"), 60000);
    const Reading atEdge = measure(9);
    QVERIFY2(qAbs(atEdge.upper + 50.0) < 0.1, qPrintable(operate->text("npr_upper")));
    QVERIFY2(qAbs(atEdge.lower) < 0.3, qPrintable(operate->text("npr_lower")));
}

void TestMeasuredNpr::theMicrowaveChainAddsItsFrequency()
{
    makeSignal(5, 1, 2, 10, -40);
    showTab(2);
    devices->pick("m_type", 1);
    devices->type("m_frequency", "9000");
    devices->type("m_address", "127.0.0.2");
    devices->click("m_if_input"); // not there with this model; the level is sent all the same
    showTab(1);
    devices->type("a_frequency", "10000");
    QCOMPARE(qRound(operate->cell(0, 0).toDouble()), 10010); // the graph's middle moved along
    start({"--dut", "linear", "--microwave", "127.0.0.2"});
    preset();
    const Reading reading = measure(1);
    QVERIFY2(qAbs(reading.upper + 40.0) < 0.1, qPrintable(operate->text("npr_upper")));
    QVERIFY2(qAbs(reading.lower) < 0.3, qPrintable(operate->text("npr_lower")));
}

void TestMeasuredNpr::aWrongCentreReadsNothing()
{
    makeSignal(5, 1, 2, 10, -40);
    devices->type("a_frequency", "5000");
    start({"--dut", "linear"});
    preset();
    QVERIFY(measure(1).power < -150.0);
}

void TestMeasuredNpr::cubicDistortionFallsTwoDecibelsPerDecibel()
{
    makeSignal(6, 1, 2, 10, -100);
    start({"--dut", "cubic", "--intercept", "20"});
    preset();
    showTab(0);
    QList<double> ratios;
    for (int level = -20; level <= 0; level += 5) {
        devices->type("g_level", QString::number(level));
        QTRY_VERIFY(devices->isEnabled("g_set"));
        devices->click("g_set");
        waitForJobs();
        ratios.append(-measure(1).upper);
    }
    for (int step = 1; step < ratios.size(); ++step) {
        const double fall = ratios[step - 1] - ratios[step];
        QVERIFY2(qAbs(fall - 10.0) < 0.2, qPrintable(QString::number(fall)));
    }
}

void TestMeasuredNpr::convertersReachTheirNoisePowerRatio_data()
{
    QTest::addColumn<int>("bits");
    for (const int bits : {6, 8, 10, 12}) {
        QTest::addRow("%d bits", bits) << bits;
    }
}

void TestMeasuredNpr::convertersReachTheirNoisePowerRatio()
{
    QFETCH(int, bits);
    // The closed form counts all noise against all signal, so the signal fills the whole band.
    // Rounding is averaged over 126000 lines and doesn't scatter; clipping alone does by 0.46 dB at
    // 4 sigma, of which 530 components clip.
    constexpr double samples = 1 << 22;
    makeSignal(0, 1, 4, 10, -100, 1.0);
    QMap<double, int> measuredOptimum;
    QMap<double, int> expectedOptimum;
    for (const int loading : {3, 4, 5, 6}) {
        start({"--dut", "adc", "--bits", QString::number(bits), "--loading",
               QString::number(loading)});
        preset();
        letTheBenchCompute();
        const double measured = -measure(1).upper;
        const ConverterNoise expected = converterNoise(bits, loading);
        QVERIFY2(qAbs(measured - expected.npr()) <
                     0.5 + 2.0 * scatterOfClipping(bits, loading, samples),
                 qPrintable(QString("loading %1: %2 dB, expected %3 dB")
                                .arg(loading)
                                .arg(measured)
                                .arg(expected.npr())));
        measuredOptimum[measured] = loading;
        expectedOptimum[expected.npr()] = loading;
    }
    QCOMPARE(measuredOptimum.last(), expectedOptimum.last());
}

void TestMeasuredNpr::continuousMeasurementSurvivesABenchThatComesAndGoes()
{
    makeSignal(10, 1, 4, 10, -40);
    start({"--dut", "linear"});
    preset();
    operate->type("measure_notch", "1");
    operate->pick("measure_mode", 0);
    for (int round = 0; round < 4; ++round) {
        for (int pass = 0; pass < 25; ++pass) {
            QVERIFY(simulator->logs("POW:RES? ACP"));
        }
        simulator->kill();
        Heartbeat heart(1000);
        QTRY_VERIFY(heart.beats >= 50); // the window goes on
        // A new bench knows nothing of the measurement: the operator brings it up and tunes anew.
        start({"--dut", "linear"});
        operate->pick("measure_mode", 1);
        preset();
        (void)measure(1);
        operate->pick("measure_mode", 0);
    }
    operate->pick("measure_mode", 1);
    preset();
    QVERIFY(qAbs(measure(1).upper + 40.0) < 0.1);
}

QTEST_MAIN(TestMeasuredNpr)
#include "test_measured_npr.moc"
