// What must not matter to a reading of a recording, and what it tells beside.
#include "base/parallel.h"
#include "recording/made_recording.h"

#include <QCryptographicHash>
#include <QtTest>

namespace {

constexpr double rate = 1e6;
constexpr int length = 1024;

// Two unequal notches; lines few enough to be summed at any place between samples.
MadeSignal smallSignal()
{
    return {length, rate, -400, 400, {{-200, -137}, {40, 125}}, 0.0};
}

// Two notches that are each other's mirror image.
MadeSignal evenSignal()
{
    return {length, rate, -400, 400, {{-200, -137}, {137, 200}}, 0.0};
}

// With a long period, and a band that leaves the sums short.
MadeSignal longSignal()
{
    return {16384, rate, -2000, 2000, {{-1500, -1201}, {700, 999}}, 0.0};
}

RecordingRequest requestFor(const MadeSignal& signal)
{
    RecordingRequest request;
    request.signal = signal.described();
    request.sampleRate = rate;
    return request;
}

RecordingRequest requestWithSamples(const MadeSignal& signal, unsigned seed)
{
    RecordingRequest request = requestFor(signal);
    for (const Complex& sample : signal.period(seed)) {
        request.played.i << sample.real();
        request.played.q << sample.imag();
    }
    return request;
}

Wave noisy(Wave wave, double power = 1e-4)
{
    addNoise(wave, power, 5);
    return wave;
}

// NPR of noise of that power over the whole rate beside a signal of power 1.
double noiseNpr(double power, const MadeSignal& signal = smallSignal())
{
    return 10.0 * std::log10(signal.length / (signal.fullLines() * power));
}

} // namespace

class TestNotchAnalysis : public QObject
{
    Q_OBJECT

private slots:
    void aDeepNotchStaysDeepBesideTheLines();
    void gainShiftAndConstantOffsetDontMatter();
    void anotherRateIsBridged();
    void clocksApartAreTold_data();
    void clocksApartAreTold();
    void clocksALittleApartAreNotTakenForOne();
    void shortRecordingsTellTheClockByTheSignal_data();
    void shortRecordingsTellTheClockByTheSignal();
    void onePeriodOfAnotherClockIsNotReadByItsLines();
    void shortRecordingsOfAnotherSignalTellNoClock();
    void invertedRecordingsAreToldByUnequalNotches();
    void invertedRecordingsAreToldByTheSignal();
    void anotherSignalTellsNothingOfInversion();
    void realSamplesNeedTheirCarrier();
    void notchesBeyondTheRecordingAreLeftOut();
    void clippedSharesAreCounted();
    void sameBitsForAnyNumberOfThreads();
    void shortRecordingsAreRefused();
    void numbersThatAreNoneAreRefused();
    void aHashThatDiffersIsRefused();
    void readingEndsWhenItIsTold();

private:
    RecordingFolder folder;
};

void TestNotchAnalysis::aDeepNotchStaysDeepBesideTheLines()
{
    constexpr int points = 65536;
    MadeSignal signal{points, rate, -points / 2, points / 2 - 1, {{5000, 5700}}, 3e-8}; // -150 dB
    const double turns = 0.5 / points;
    RecordingRequest request = requestFor(signal);
    request.center = turns * rate;
    const Wave wave = shifted(repeated(signal.period(1), 333, 2 * points + 77), turns);
    const RecordingAnalysis analysis = folder.analyze(asCf64(wave), "cf64", request);
    QVERIFY(analysis.way == AnalysisWay::Periodograms);
    QVERIFY2(nprOf(analysis.notches.at(0)) > 110.0,
             qPrintable(QString::number(nprOf(analysis.notches.at(0)))));
}

void TestNotchAnalysis::gainShiftAndConstantOffsetDontMatter()
{
    const MadeSignal signal = smallSignal();
    for (const double offset : {0.0, 0.37}) { // of the carrier, in lines
        RecordingRequest request = requestFor(signal);
        request.center = offset * rate / length;
        const Wave plain = noisy(repeated(signal.period(1), 0, 40000));
        Wave changed = plain;
        std::rotate(changed.begin(), changed.begin() + 4 * std::ptrdiff_t{length} + 311,
                    changed.end() - 64);
        changed = shifted(changed, offset / length);
        for (Complex& sample : changed) {
            sample = 0.01 * sample * std::polar(1.0, 1.2) + Complex(0.3, -0.2);
        }
        const RecordingAnalysis one =
            folder.analyze(asCf64(shifted(plain, offset / length)), "cf64", request);
        request.skipSeconds = 0.002;
        const RecordingAnalysis other = folder.analyze(asCf64(changed), "cf64", request);
        for (int k = 0; k < 2; ++k) {
            QVERIFY2(std::abs(nprOf(one.notches.at(k)) - noiseNpr(1e-4)) < 0.7,
                     qPrintable(QString::number(nprOf(one.notches.at(k)))));
            QVERIFY2(std::abs(nprOf(one.notches.at(k)) - nprOf(other.notches.at(k))) < 0.4,
                     qPrintable(QString::number(nprOf(other.notches.at(k)))));
        }
    }
}

void TestNotchAnalysis::anotherRateIsBridged()
{
    const MadeSignal signal = smallSignal();
    RecordingRequest request = requestFor(signal);
    request.sampleRate = 1.37 * rate;
    const Wave wave = noisy(signal.sampledAt(1, 0.123, 1.0 / (1.37 * length), 30000));
    const RecordingAnalysis analysis = folder.analyze(asCf64(wave), "cf64", request);
    QVERIFY(analysis.way == AnalysisWay::Periodograms);
    // The noise is spread over 1.37 times the rate.
    for (const NotchReading& reading : analysis.notches) {
        QVERIFY2(std::abs(nprOf(reading) - noiseNpr(1e-4 / 1.37)) < 0.7,
                 qPrintable(QString::number(nprOf(reading))));
    }
    QVERIFY2(std::abs(*analysis.clockError) < 1e-7,
             qPrintable(QString::number(*analysis.clockError)));
}

void TestNotchAnalysis::clocksApartAreTold_data()
{
    QTest::addColumn<double>("ppm");
    for (const double ppm : {100.0, -100.0, 31.4, -2.5, 0.25}) {
        QTest::addRow("%g ppm", ppm) << ppm;
    }
}

void TestNotchAnalysis::clocksApartAreTold()
{
    QFETCH(double, ppm);
    const MadeSignal signal = smallSignal();
    // The recorder takes more samples of a period than it should.
    const Wave wave =
        noisy(signal.sampledAt(1, 0.321, 1.0 / (length * (1.0 + 1e-6 * ppm)), 60000), 1e-5);
    const RecordingAnalysis analysis = folder.analyze(asCf64(wave), "cf64", requestFor(signal));
    QVERIFY(analysis.clockError);
    QVERIFY2(std::abs(1e6 * *analysis.clockError - ppm) < 0.1,
             qPrintable(QString::number(1e6 * *analysis.clockError)));
    for (const NotchReading& reading : analysis.notches) {
        QVERIFY2(std::abs(nprOf(reading) - noiseNpr(1e-5)) < 0.7,
                 qPrintable(QString::number(nprOf(reading))));
    }
}

void TestNotchAnalysis::clocksALittleApartAreNotTakenForOne()
{
    const MadeSignal signal = smallSignal();
    const Wave wave = noisy(signal.sampledAt(1, 0.321, 1.0 / (length * (1.0 + 2e-6)), 30000), 1e-8);
    const RecordingAnalysis analysis = folder.analyze(asCf64(wave), "cf64", requestFor(signal));
    for (const NotchReading& reading : analysis.notches) {
        QVERIFY2(std::abs(nprOf(reading) - noiseNpr(1e-8)) < 0.7,
                 qPrintable(QString::number(nprOf(reading))));
    }
}

void TestNotchAnalysis::shortRecordingsTellTheClockByTheSignal_data()
{
    QTest::addColumn<double>("ppm");
    QTest::addColumn<bool>("isInverted");
    QTest::addColumn<double>("center"); // lines
    QTest::newRow("100 ppm") << 100.0 << false << 0.0;
    QTest::newRow("-31.4 ppm, inverted, beside the middle") << -31.4 << true << 200.37;
    QTest::newRow("none") << 0.0 << false << 0.0;
}

// Less than a period, which can't be compared with itself.
void TestNotchAnalysis::shortRecordingsTellTheClockByTheSignal()
{
    QFETCH(double, ppm);
    QFETCH(bool, isInverted);
    QFETCH(double, center);
    const MadeSignal signal = longSignal();
    RecordingRequest request = requestWithSamples(signal, 1);
    request.center = center * rate / signal.length;
    Wave wave = signal.sampledAt(1, 0.321, 1.0 / (signal.length * (1.0 + 1e-6 * ppm)), 12000);
    for (Complex& sample : wave) {
        sample = isInverted ? std::conj(sample) : sample;
    }
    wave = noisy(shifted(wave, center / signal.length), 1e-3);
    const RecordingAnalysis analysis = folder.analyze(asCf64(wave), "cf64", request);
    QVERIFY(analysis.way == AnalysisWay::Periodograms);
    QVERIFY(analysis.clockError);
    QVERIFY2(std::abs(1e6 * *analysis.clockError - ppm) < 0.5,
             qPrintable(QString::number(1e6 * *analysis.clockError)));
    for (const NotchReading& reading : analysis.notches) {
        QVERIFY2(std::abs(nprOf(reading) - noiseNpr(1e-3, signal)) < 1.0,
                 qPrintable(QString::number(nprOf(reading))));
    }
}

// The lines of the one period that there is would leak into the notches at 60 dB.
void TestNotchAnalysis::onePeriodOfAnotherClockIsNotReadByItsLines()
{
    const MadeSignal signal = longSignal();
    const RecordingRequest request = requestWithSamples(signal, 1);
    for (const double ppm : {0.0, 2.0}) {
        const double step = 1.0 / (signal.length * (1.0 + 1e-6 * ppm));
        const Wave wave = noisy(signal.sampledAt(1, 0.1, step, signal.length + 100), 1e-7);
        const RecordingAnalysis analysis = folder.analyze(asCf64(wave), "cf64", request);
        QVERIFY(analysis.way ==
                (ppm == 0.0 ? AnalysisWay::WholePeriods : AnalysisWay::Periodograms));
        for (const NotchReading& reading : analysis.notches) {
            QVERIFY2(std::abs(nprOf(reading) - noiseNpr(1e-7, signal)) < 1.0,
                     qPrintable(QString::number(nprOf(reading))));
        }
    }
}

void TestNotchAnalysis::shortRecordingsOfAnotherSignalTellNoClock()
{
    const MadeSignal signal = longSignal();
    const RecordingRequest request = requestWithSamples(signal, 2);
    const Wave wave = noisy(repeated(signal.period(1), 77, 12000));
    QVERIFY(!folder.analyze(asCf64(wave), "cf64", request).clockError);
}

void TestNotchAnalysis::invertedRecordingsAreToldByUnequalNotches()
{
    const MadeSignal signal = smallSignal();
    Wave wave = noisy(repeated(signal.period(1), 100, 20000));
    RecordingAnalysis analysis = folder.analyze(asCf64(wave), "cf64", requestFor(signal));
    QCOMPARE(analysis.isInverted, std::optional<bool>(false));
    for (Complex& sample : wave) {
        sample = std::conj(sample);
    }
    analysis = folder.analyze(asCf64(wave), "cf64", requestFor(signal));
    QCOMPARE(analysis.isInverted, std::optional<bool>(true));
    for (const NotchReading& reading : analysis.notches) {
        QVERIFY2(std::abs(nprOf(reading) - noiseNpr(1e-4)) < 0.7,
                 qPrintable(QString::number(nprOf(reading))));
    }
}

void TestNotchAnalysis::invertedRecordingsAreToldByTheSignal()
{
    const MadeSignal signal = evenSignal();
    const RecordingRequest request = requestWithSamples(signal, 1);
    Wave wave = noisy(repeated(signal.period(1), 100, 20000));
    QCOMPARE(folder.analyze(asCf64(wave), "cf64", request).isInverted, std::optional<bool>(false));
    for (Complex& sample : wave) {
        sample = std::conj(sample);
    }
    QCOMPARE(folder.analyze(asCf64(wave), "cf64", request).isInverted, std::optional<bool>(true));
}

void TestNotchAnalysis::anotherSignalTellsNothingOfInversion()
{
    const MadeSignal signal = evenSignal();
    const RecordingRequest request = requestWithSamples(signal, 2);
    const Wave wave = noisy(repeated(signal.period(1), 100, 20000));
    QCOMPARE(folder.analyze(asCf64(wave), "cf64", request).isInverted, std::optional<bool>());
}

void TestNotchAnalysis::realSamplesNeedTheirCarrier()
{
    // At twice the rate of the signal, carrier at a quarter of that.
    const MadeSignal signal = smallSignal();
    RecordingRequest request = requestFor(signal);
    request.sampleRate = 2.0 * rate;
    for (const double line : {512.0, 512.3}) {
        request.center = line * rate / length;
        Wave wave = shifted(signal.sampledAt(1, 0.1, 0.5 / length, 40000), line / (2.0 * length));
        addNoise(wave, 1e-4, 8);
        const RecordingAnalysis analysis = folder.analyze(asRf32(wave), "rf32", request);
        QVERIFY(analysis.way ==
                (line == 512.0 ? AnalysisWay::WholePeriods : AnalysisWay::Periodograms));
        // A sine of amplitude 1 is full scale, and so is the signal of power 1.
        QVERIFY2(std::abs(10.0 * std::log10(analysis.power)) < 0.8,
                 qPrintable(QString::number(analysis.power)));
        // Real noise of half the power on one side of half the rate: as dense over the rate.
        for (const NotchReading& reading : analysis.notches) {
            QVERIFY2(std::abs(nprOf(reading) - noiseNpr(1e-4)) < 0.8,
                     qPrintable(QString::number(nprOf(reading))));
        }
    }
}

void TestNotchAnalysis::notchesBeyondTheRecordingAreLeftOut()
{
    const MadeSignal signal = smallSignal();
    RecordingRequest request = requestFor(signal);
    request.center = 0.4 * rate; // the upper notch would reach beyond half the rate
    const Wave wave = noisy(repeated(shifted(signal.period(1), 0.4), 0, 20000));
    const RecordingAnalysis analysis = folder.analyze(asCf64(wave), "cf64", request);
    QVERIFY(analysis.notches.at(0).isRecorded);
    QVERIFY(!analysis.notches.at(1).isRecorded);
}

void TestNotchAnalysis::clippedSharesAreCounted()
{
    const MadeSignal signal = smallSignal();
    const Wave wave = repeated(signal.period(1), 0, 20000);
    // Full scale at 2 sigma: 2.3 % beyond each end, 4.6 % of the components.
    const RecordingAnalysis clipped =
        folder.analyze(asCi16(quantised(wave, 12, 2.0)), "ci16", requestFor(signal));
    QVERIFY2(std::abs(*clipped.clippedShare - 0.0455) < 0.01,
             qPrintable(QString::number(*clipped.clippedShare)));
    QCOMPARE(clipped.peak, 1.0);
    // sigma of a component is half of full scale: -6 + 3 dB, less what is cut.
    QVERIFY(std::abs(10.0 * std::log10(clipped.power) + 3.3) < 0.3);
    const RecordingAnalysis whole =
        folder.analyze(asCi16(quantised(wave, 8, 40.0)), "ci16", requestFor(signal));
    QCOMPARE(*whole.clippedShare, 0.0);
    const RecordingAnalysis floating =
        folder.analyze(asCf32(quantised(wave, 8, 2.0)), "cf32", requestFor(signal));
    QVERIFY(!floating.clippedShare);
}

void TestNotchAnalysis::sameBitsForAnyNumberOfThreads()
{
    const MadeSignal signal = smallSignal();
    for (const double offset : {0.0, 0.37}) {
        RecordingRequest request = requestFor(signal);
        request.center = offset * rate / length;
        const QByteArray bytes =
            asCf32(shifted(noisy(repeated(signal.period(1), 0, 700000)), offset / length));
        const RecordingAnalysis shared = folder.analyze(bytes, "cf32", request);
        RecordingAnalysis alone;
        {
            const WorkAlone one;
            alone = folder.analyze(bytes, "cf32", request);
        }
        for (int k = 0; k < 2; ++k) {
            QVERIFY(shared.notches.at(k).within == alone.notches.at(k).within);
            QVERIFY(shared.notches.at(k).beside == alone.notches.at(k).beside);
        }
        QVERIFY(shared.power == alone.power);
    }
}

void TestNotchAnalysis::shortRecordingsAreRefused()
{
    const MadeSignal signal = smallSignal();
    RecordingRequest request = requestFor(signal);
    const Wave wave = signal.period(1);
    for (const int samples : {0, 1, 1000}) {
        QVERIFY_EXCEPTION_THROWN(
            folder.analyze(asCf32(repeated(wave, 0, samples)), "cf32", request), RecordingError);
    }
    request.skipSeconds = 1.0;
    QVERIFY_EXCEPTION_THROWN(folder.analyze(asCf32(repeated(wave, 0, 5000)), "cf32", request),
                             RecordingError);
}

void TestNotchAnalysis::numbersThatAreNoneAreRefused()
{
    const MadeSignal signal = smallSignal();
    for (const double number : {std::nan(""), HUGE_VAL, 1e200}) {
        Wave wave = repeated(signal.period(1), 0, 20000);
        wave[17000] = {0.0, number};
        try {
            folder.analyze(asCf64(wave), "cf64", requestFor(signal));
            QFAIL("taken");
        } catch (const RecordingError& error) {
            QVERIFY2(error.text.contains("not finite"), qPrintable(error.text));
        }
    }
    QVERIFY_EXCEPTION_THROWN(folder.analyze(QByteArray(160000, '\0'), "cf32", requestFor(signal)),
                             RecordingError);
}

void TestNotchAnalysis::aHashThatDiffersIsRefused()
{
    const MadeSignal signal = smallSignal();
    const QByteArray bytes = asCf32(repeated(signal.period(1), 0, 300000));
    Recording recording;
    recording.name = "noise";
    recording.paths = QStringList{folder.write("hashed", "head" + bytes + "tail")};
    recording.type = sampleTypeOf("cf32");
    recording.offset = 4;
    recording.samples = 300000;
    recording.sha512 =
        QCryptographicHash::hash("head" + bytes + "tail", QCryptographicHash::Sha512).toHex();
    const auto go = [](qint64, qint64) { return true; };
    QVERIFY(analyzeNotches(SampleReader(recording), requestFor(signal), go).averages > 0);
    recording.sha512[0] = recording.sha512.at(0) == '0' ? '1' : '0';
    const SampleReader changed(recording);
    QVERIFY_EXCEPTION_THROWN(analyzeNotches(changed, requestFor(signal), go), RecordingError);
}

void TestNotchAnalysis::readingEndsWhenItIsTold()
{
    const MadeSignal signal = smallSignal();
    const QString path = folder.write("long", asCf32(repeated(signal.period(1), 0, 20000)));
    const SampleReader reader(openRecording(path, sampleTypeOf("cf32")));
    QVERIFY_EXCEPTION_THROWN(
        analyzeNotches(reader, requestFor(signal), [](qint64, qint64) { return false; }),
        ReadingStopped);
}

QTEST_GUILESS_MAIN(TestNotchAnalysis)
#include "test_notch_analysis.moc"
