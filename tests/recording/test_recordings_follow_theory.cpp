// Recordings of devices that are calculated here, against closed forms.
#include "kit/converter_theory.h"
#include "recording/made_recording.h"

#include <QtTest>

namespace {

constexpr double rate = 1e8;

// Gaussian-like and as wide as the rate, three notches of one percent.
MadeSignal fullBand()
{
    constexpr int length = 65536;
    return {
        length, rate, -length / 2, length / 2 - 1, {{-20000, -19345}, {3000, 3655}, {20000, 20655}},
        0.0};
}

RecordingRequest requestFor(const MadeSignal& signal)
{
    RecordingRequest request;
    request.signal = signal.described();
    request.sampleRate = signal.sampleRate;
    return request;
}

// Powers in the notches over those beside them, as they average.
double meanNpr(const QVector<RecordingAnalysis>& analyses)
{
    double beside = 0.0;
    double within = 0.0;
    for (const RecordingAnalysis& analysis : analyses) {
        for (const NotchReading& reading : analysis.notches) {
            beside += reading.beside;
            within += reading.within;
        }
    }
    return 10.0 * std::log10((beside - within) / within);
}

} // namespace

class TestRecordingsFollowTheory : public QObject
{
    Q_OBJECT

private slots:
    void convertersReadWhatTheirBitsAndLoadingAllow_data();
    void convertersReadWhatTheirBitsAndLoadingAllow();
    void cubicDistortionIsStrongestInTheMiddle();
    void noiseReadsAtItsDensity();
    void bothWaysAgree();
    void readingsScatterAsTheyTell();

private:
    RecordingFolder folder;
};

void TestRecordingsFollowTheory::convertersReadWhatTheirBitsAndLoadingAllow_data()
{
    QTest::addColumn<int>("bits");
    QTest::addColumn<double>("loading");
    QTest::addColumn<int>("seeds"); // more where few samples clip
    QTest::addColumn<bool>("hasOffset");
    for (const int bits : {6, 8, 10, 12, 14}) {
        for (const bool hasOffset : {false, true}) {
            const QByteArray name =
                QByteArray::number(bits) + (hasOffset ? " bits, beside the lines" : " bits");
            QTest::newRow((name + ", clipping").constData()) << bits << 3.0 << 4 << hasOffset;
            QTest::newRow((name + ", rarely clipping").constData())
                << bits << 3.5 << 8 << hasOffset;
            QTest::newRow((name + ", rounding").constData()) << bits << 8.0 << 1 << hasOffset;
        }
    }
}

void TestRecordingsFollowTheory::convertersReadWhatTheirBitsAndLoadingAllow()
{
    QFETCH(int, bits);
    QFETCH(double, loading);
    QFETCH(int, seeds);
    QFETCH(bool, hasOffset);
    const MadeSignal signal = fullBand();
    RecordingRequest request = requestFor(signal);
    QVector<RecordingAnalysis> analyses;
    for (int seed = 1; seed <= seeds; ++seed) {
        const Wave wave = signal.period(static_cast<unsigned>(seed));
        QByteArray bytes = asCi16(quantised(wave, bits, loading));
        const char* type = "ci16";
        if (hasOffset) {
            const Wave converted = quantised(wave, bits, loading);
            bytes = asCf64(shifted(converted, 0.37 / signal.length));
            type = "cf64";
            request.center = 0.37 * rate / signal.length;
        }
        analyses << folder.analyze(bytes, type, request);
    }
    QVERIFY(analyses.first().way ==
            (hasOffset ? AnalysisWay::Periodograms : AnalysisWay::WholePeriods));
    // Three notches of 655 lines scatter by 0.1 dB. The energies of n clipped samples are spread
    // like squares of exponentials, relative variance 6/n: 1400 samples 0.28 dB, 490 samples 0.48
    // dB.
    QVERIFY2(std::abs(meanNpr(analyses) - converterNoise(bits, loading).npr()) < (seeds > 4 ? 1.2
                                                                                  : seeds > 1
                                                                                      ? 0.9
                                                                                      : 0.5),
             qPrintable(QString("%1 dB, theory %2 dB")
                            .arg(meanNpr(analyses))
                            .arg(converterNoise(bits, loading).npr())));
}

// y = x - a x |x|^2: (1 - 2a)^2 / (2 a^2 (3/4 - (f/B)^2)). Each percent of the band in a notch of
// its own raises that by 0.10 dB, in other ones by 0.04 dB.
void TestRecordingsFollowTheory::cubicDistortionIsStrongestInTheMiddle()
{
    constexpr int length = 65536;
    constexpr int half = length / 8; // room for three times the band
    constexpr int gapLines = 164;    // one percent
    constexpr double a = 0.01;
    MadeSignal signal{length, rate, -half, half, {}, 0.0};
    const QVector<double> places{-0.45, -0.2, 0.0, 0.3, 0.45};
    for (const double place : places) {
        const int middle = static_cast<int>(place * 2 * half);
        signal.gaps.push_back({middle - gapLines / 2, middle + gapLines / 2 - 1});
    }
    QVector<double> beside(places.size());
    QVector<double> within(places.size());
    for (unsigned seed = 1; seed <= 4; ++seed) {
        Wave wave = signal.period(seed);
        for (Complex& sample : wave) {
            sample -= a * sample * std::norm(sample);
        }
        const RecordingAnalysis analysis = folder.analyze(asCf64(wave), "cf64", requestFor(signal));
        for (int k = 0; k < places.size(); ++k) {
            beside[k] += analysis.notches.at(k).beside;
            within[k] += analysis.notches.at(k).within;
        }
    }
    for (int k = 0; k < places.size(); ++k) {
        const double expected = 10.0 * std::log10((1 - 2 * a) * (1 - 2 * a) /
                                                  (2 * a * a * (0.75 - places[k] * places[k]))) +
                                0.26;
        const double found = 10.0 * std::log10((beside[k] - within[k]) / within[k]);
        // 4 times 164 lines: 0.17 dB, three of them; the rest is the rule of thumb's.
        QVERIFY2(
            std::abs(found - expected) < 0.7,
            qPrintable(QString("%1: %2 dB, theory %3 dB").arg(places[k]).arg(found).arg(expected)));
    }
}

void TestRecordingsFollowTheory::noiseReadsAtItsDensity()
{
    const MadeSignal signal = fullBand();
    constexpr double power = 1e-4;
    constexpr int periods = 5;
    Wave wave = repeated(quantised(signal.period(3), 8, 4.0), 777, periods * signal.length + 555);
    addNoise(wave, power, 9);
    const RecordingAnalysis analysis = folder.analyze(asCf64(wave), "cf64", requestFor(signal));
    QVERIFY(analysis.way == AnalysisWay::WholePeriods);
    QCOMPARE(analysis.averages, qint64{periods});
    for (const NotchReading& reading : analysis.notches) {
        // 656 lines, four degrees of freedom each: 2 %, three of them.
        QVERIFY2(std::abs(*reading.noise / (power / rate) - 1.0) < 0.06,
                 qPrintable(QString::number(*reading.noise * rate)));
        // What is left is the converter: k = 4 at 8 bits.
        const double distortion =
            10.0 * std::log10((reading.beside - reading.within) / *reading.distortion);
        QVERIFY2(std::abs(distortion - converterNoise(8, 4.0).npr()) < 0.7,
                 qPrintable(QString::number(distortion)));
    }
}

void TestRecordingsFollowTheory::bothWaysAgree()
{
    const MadeSignal signal = fullBand();
    Wave wave = repeated(quantised(signal.period(5), 8, 3.5), 123, 4 * signal.length + 99);
    addNoise(wave, 1e-5, 4);
    RecordingRequest request = requestFor(signal);
    const RecordingAnalysis lines = folder.analyze(asCf64(wave), "cf64", request);
    constexpr double turns = 0.37 / 65536.0;
    request.center = turns * rate;
    const RecordingAnalysis density = folder.analyze(asCf64(shifted(wave, turns)), "cf64", request);
    QVERIFY(lines.way == AnalysisWay::WholePeriods && density.way == AnalysisWay::Periodograms);
    for (int k = 0; k < signal.described().gaps.size(); ++k) {
        const NotchReading& one = lines.notches.at(k);
        const NotchReading& other = density.notches.at(k);
        // They see the same distortion, so they are nearer than their sigmas.
        QVERIFY2(std::abs(nprOf(one) - nprOf(other)) < 2.0 * sigmaOf(other),
                 qPrintable(QString("%1 dB, %2 dB").arg(nprOf(one)).arg(nprOf(other))));
        QVERIFY(sigmaOf(one) > 0.1 && sigmaOf(one) < 0.25);
    }
}

void TestRecordingsFollowTheory::readingsScatterAsTheyTell()
{
    // Short ones, so that the signal beside the notch scatters too.
    MadeSignal signal{16384, rate, -8192, 8191, {{2000, 2400}}, 0.0};
    RecordingRequest request = requestFor(signal);
    request.center = 0.41 * rate / signal.length;
    constexpr int count = 60;
    double sum = 0.0;
    double squares = 0.0;
    double told = 0.0;
    for (unsigned seed = 1; seed <= count; ++seed) {
        Wave wave = repeated(signal.period(seed), 0, 10000);
        addNoise(wave, 1e-3, 1000 + seed);
        const RecordingAnalysis analysis =
            folder.analyze(asCf64(shifted(wave, 0.41 / signal.length)), "cf64", request);
        const double npr = nprOf(analysis.notches.at(0));
        sum += npr / count;
        squares += npr * npr / count;
        told += sigmaOf(analysis.notches.at(0)) / count;
    }
    const double scatter = std::sqrt((squares - sum * sum) * count / (count - 1));
    QVERIFY2(std::abs(sum - 30.0) < 0.3, qPrintable(QString::number(sum)));
    // A standard deviation from 60 values is known to 9 %, three of them.
    QVERIFY2(std::abs(scatter / told - 1.0) < 0.3,
             qPrintable(QString("%1 dB, told %2 dB").arg(scatter).arg(told)));
}

QTEST_APPLESS_MAIN(TestRecordingsFollowTheory)
#include "test_recordings_follow_theory.moc"
