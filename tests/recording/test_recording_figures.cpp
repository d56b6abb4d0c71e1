// The window, the levels and the channels that readings of recordings rest on.
#include "recording/kaiser_window.h"
#include "recording/level_meter.h"
#include "recording/made_recording.h"
#include "recording/notch_channels.h"
#include "recording/periodograms.h"
#include "recording/recording.h"
#include "recording/segment_length.h"

#include <QtTest>

#include <cmath>
#include <complex>

namespace {

// Magnitude of the window's transform at a distance in bins, by the plain sum.
double transformAt(const std::vector<double>& window, double bins)
{
    std::complex<double> sum;
    for (std::size_t k = 0; k < window.size(); ++k) {
        const auto place = static_cast<double>(k) / static_cast<double>(window.size());
        sum += window[k] * std::polar(1.0, twoPi * bins * place);
    }
    return std::abs(sum);
}

RecordedSignal signalWith(const QVector<FrequencyBand>& gaps)
{
    RecordedSignal signal;
    signal.sampleRate = 1000.0;
    signal.length = 1000;
    signal.band = {-400.0, 400.0};
    signal.gaps = gaps;
    return signal;
}

QString textOf(const Bands& bands)
{
    QStringList texts;
    for (const FrequencyBand& band : bands) {
        texts << QStringLiteral("%1..%2").arg(band.low).arg(band.high);
    }
    return texts.join(' ');
}

RecordingView viewWith(double center, double guard)
{
    RecordingView view;
    view.center = center;
    view.guard = guard;
    view.range = {-500.0, 500.0};
    return view;
}

} // namespace

class TestRecordingFigures : public QObject
{
    Q_OBJECT

private slots:
    void sideLobesLieBelow120Decibels();
    void overlapIsWorthNinetyPercentOfTheTime();
    void oneSegmentIsWorthItsBandwidth();
    void powerAndPeakAreSharesOfFullScale();
    void thePeakIsFoundWhereverItStands();
    void densitiesAreThoseOfAPlainLoop();
    void onlyHeapsAtTheEndsAreClipped();
    void channelsLieWithinAndBesideTheNotch();
    void otherNotchesAndTheBandsEndCutTheSidesOff();
    void theMiddleOfTheRecordingIsLeftOut();
    void invertedChannelsAreMirrored();
    void segmentsFollowTheNarrowestNotch();
};

void TestRecordingFigures::sideLobesLieBelow120Decibels()
{
    for (const int length : {1024, 4096}) {
        const std::vector<double> window = kaiserWindow(length);
        const double top = transformAt(window, 0.0);
        double largest = 0.0;
        const auto search = [&](double first, double last, double step) {
            const auto steps = static_cast<int>((last - first) / step);
            for (int k = 0; k <= steps; ++k) {
                largest = std::max(largest, transformAt(window, first + k * step));
            }
        };
        search(mainLobe, 40.0, 0.05);
        search(40.0, length / 2.0, 7.31);
        QVERIFY2(20.0 * std::log10(largest / top) < -120.0,
                 qPrintable(QString::number(20.0 * std::log10(largest / top))));
        // And no wider than it must be.
        QVERIFY(20.0 * std::log10(transformAt(window, mainLobe - 0.2) / top) > -122.0);
    }
}

// Bandwidth times time is the most that there can be: 1000 bins, 999 hops of a third of 1/bin.
void TestRecordingFigures::overlapIsWorthNinetyPercentOfTheTime()
{
    const double share = independentCells(1000.0, 1000.0, 3) / (1000.0 * 1000.0 / 3.0);
    QVERIFY2(share > 0.85 && share < 0.95, qPrintable(QString::number(share)));
}

// sum of w^4 times N over the square of the sum of w^2, by Parseval.
void TestRecordingFigures::oneSegmentIsWorthItsBandwidth()
{
    const std::vector<double> window = kaiserWindow(4096);
    double squares = 0.0;
    double fourths = 0.0;
    for (const double value : window) {
        squares += value * value;
        fourths += std::pow(value, 4.0);
    }
    const double binsACell = 4096.0 * fourths / (squares * squares);
    const double cells = independentCells(10000.0, 1.0, 3);
    QVERIFY2(std::abs(cells * binsACell / 10000.0 - 1.0) < 0.01,
             qPrintable(QString::number(cells)));
}

void TestRecordingFigures::powerAndPeakAreSharesOfFullScale()
{
    std::vector<double> re;
    std::vector<double> im;
    for (int k = 0; k < 1000; ++k) {
        re.push_back(std::cos(twoPi * k / 100.0));
        im.push_back(std::sin(twoPi * k / 100.0));
    }
    LevelSums carrier(*sampleTypeOf("cf64"));
    carrier.add(re.data(), im.data(), 333);
    LevelSums rest(*sampleTypeOf("cf64"));
    rest.add(re.data() + 333, im.data() + 333, 667);
    carrier += rest;
    QVERIFY(std::abs(carrier.power() - 1.0) < 1e-12);
    QCOMPARE(carrier.peak(), 1.0);
    const std::vector<double> zeros(1000);
    LevelSums sine(*sampleTypeOf("rf64"));
    sine.add(re.data(), zeros.data(), 1000);
    QVERIFY(std::abs(sine.power() - 1.0) < 1e-12);
    QVERIFY(!sine.hasClippedShare());
    re[350] = HUGE_VAL;
    sine.add(re.data(), zeros.data(), 1000);
    QVERIFY(!sine.isFinite());
}

// In every place of the lanes that are summed side by side, and behind the last whole ones.
void TestRecordingFigures::thePeakIsFoundWhereverItStands()
{
    constexpr int samples = 19;
    const std::vector<double> quiet(samples, 0.25);
    for (std::size_t place = 0; place < samples; ++place) {
        for (const double value : {0.75, -0.75}) {
            std::vector<double> loud = quiet;
            loud[place] = value;
            LevelSums inPhase(*sampleTypeOf("cf64"));
            inPhase.add(loud.data(), quiet.data(), samples);
            QCOMPARE(inPhase.peak(), 0.75);
            LevelSums quadrature(*sampleTypeOf("cf64"));
            quadrature.add(quiet.data(), loud.data(), samples);
            QCOMPARE(quadrature.peak(), 0.75);
            QCOMPARE(quadrature.power(), 0.125 + 0.5 / samples);
        }
    }
}

// Every bin of a noisy recording, against sums that are written as the definition says.
void TestRecordingFigures::densitiesAreThoseOfAPlainLoop()
{
    constexpr int length = 1024;
    constexpr int segments = 7;
    constexpr int first = 5;
    constexpr double rate = 2e6;
    Wave wave(first + length + (segments - 1) * (length / 3) + 200);
    addNoise(wave, 0.5, 3);
    RecordingFolder folder;
    const SampleReader reader(
        openRecording(folder.write("noise.cf64", asCf64(wave)), sampleTypeOf("cf64")));
    const PowerDensity density =
        powerDensity(reader, rate, first, length, [](qint64, qint64) { return true; });
    QCOMPARE(density.segments, qint64{segments});
    const std::vector<double> window = kaiserWindow(length);
    double windowPower = 0.0;
    for (const double value : window) {
        windowPower += value * value;
    }
    for (int bin = 0; bin < length; ++bin) {
        double expected = 0.0;
        for (int segment = 0; segment < segments; ++segment) {
            Complex sum;
            for (int k = 0; k < length; ++k) {
                const std::size_t at =
                    static_cast<std::size_t>(segment) * (length / 3) + static_cast<std::size_t>(k);
                const int turn = static_cast<int>(qint64{bin} * k % length);
                sum += wave[static_cast<std::size_t>(first) + at] *
                       window[static_cast<std::size_t>(k)] *
                       std::polar(1.0, -twoPi * turn / length);
            }
            expected += std::norm(sum) / (windowPower * rate * segments);
        }
        const double found = density.bins[static_cast<std::size_t>(bin)];
        QVERIFY2(std::abs(found / expected - 1.0) < 1e-9, qPrintable(QString::number(bin)));
    }
}

void TestRecordingFigures::onlyHeapsAtTheEndsAreClipped()
{
    const auto shareOf = [](const std::vector<int>& codes) {
        std::vector<double> re;
        re.reserve(codes.size());
        for (const int code : codes) {
            re.push_back(code / 32768.0);
        }
        const std::vector<double> im(re.size());
        LevelSums sums(*sampleTypeOf("ri16"));
        sums.add(re.data(), im.data(), static_cast<qint64>(codes.size()));
        return sums.clippedShare();
    };
    QCOMPARE(shareOf({-2048, -2048, -2048, -5, 0, 3, 7, 2047, 2047, 2047, 2046, 1}), 0.5);
    QCOMPARE(shareOf({-3, -2, -2, -1, -1, -1, 0, 1, 1, 2}), 0.0);
    QCOMPARE(shareOf({0, 0, 0}), 0.0);
    QCOMPARE(shareOf({-1, 1, 1, 1}), 0.0); // two values tell nothing
}

void TestRecordingFigures::channelsLieWithinAndBesideTheNotch()
{
    const NotchChannels channels = channelsOf(signalWith({{100.0, 140.0}}), 0, viewWith(20.0, 3.0));
    QCOMPARE(textOf(channels.within), QString("123..157"));
    QCOMPARE(textOf(channels.beside), QString("77..117 163..203"));
    QVERIFY(channels.isRecorded);
    QVERIFY(!channelsOf(signalWith({{100.0, 140.0}}), 0, viewWith(370.0, 3.0)).isRecorded);
}

void TestRecordingFigures::otherNotchesAndTheBandsEndCutTheSidesOff()
{
    const RecordedSignal signal = signalWith({{300.0, 380.0}, {250.0, 280.0}});
    const NotchChannels channels = channelsOf(signal, 0, viewWith(0.0, 2.0));
    QCOMPARE(textOf(channels.beside), QString("218..248 282..298 382..398"));
}

void TestRecordingFigures::theMiddleOfTheRecordingIsLeftOut()
{
    const NotchChannels channels = channelsOf(signalWith({{-20.0, 20.0}}), 0, viewWith(0.0, 1.0));
    QCOMPARE(textOf(channels.within), QString("-19..-1 1..19"));
    QCOMPARE(textOf(channels.beside), QString("-61..-21 21..61"));
}

void TestRecordingFigures::invertedChannelsAreMirrored()
{
    RecordingView view = viewWith(50.0, 2.0);
    view.isInverted = true;
    const RecordedSignal signal = signalWith({{100.0, 140.0}});
    const NotchChannels channels = channelsOf(signal, 0, view);
    QCOMPARE(textOf(channels.within), QString("-88..-52"));
    QCOMPARE(textOf(channels.beside), QString("-132..-92 -48..-8"));
    QVERIFY(tellsInversion(signal, 0));
    QVERIFY(!tellsInversion(signalWith({{100.0, 140.0}, {-120.0, -110.0}}), 0));
}

void TestRecordingFigures::segmentsFollowTheNarrowestNotch()
{
    QCOMPARE(segmentLengthFor({"a", 1 << 24, 1e8, 4e6}), 4096);
    QCOMPARE(segmentLengthFor({"a", 1 << 24, 1e8, 3e6}), 8192);
    QCOMPARE(segmentLengthFor({"a", 1 << 24, 1e8, 9e7}), 1024);
    // A short one gets some averages as long as there are bins enough.
    QCOMPARE(segmentLengthFor({"a", 8192, 1e8, 4e6}), 2048);
    QVERIFY_EXCEPTION_THROWN(segmentLengthFor({"a", 1000, 1e8, 4e6}), RecordingError);
    QVERIFY_EXCEPTION_THROWN(segmentLengthFor({"a", 1 << 24, 1e8, 1.0}), RecordingError);
}

QTEST_APPLESS_MAIN(TestRecordingFigures)
#include "test_recording_figures.moc"
