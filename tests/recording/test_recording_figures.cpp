// The window, the levels and the channels that readings of recordings rest on.
#include "recording/kaiser_window.h"
#include "recording/level_meter.h"
#include "recording/notch_channels.h"
#include "recording/recording.h"
#include "recording/segment_length.h"

#include <QtTest>

#include <cmath>
#include <complex>

namespace {

constexpr double twoPi = 6.283185307179586;

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
        for (double bins = mainLobe; bins < 40.0; bins += 0.05) {
            largest = std::max(largest, transformAt(window, bins));
        }
        for (double bins = 40.0; bins <= length / 2.0; bins += 7.31) {
            largest = std::max(largest, transformAt(window, bins));
        }
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
    std::vector<double> pairs;
    for (int k = 0; k < 1000; ++k) {
        pairs.push_back(std::cos(twoPi * k / 100.0));
        pairs.push_back(std::sin(twoPi * k / 100.0));
    }
    LevelSums carrier(*sampleTypeOf("cf64"));
    carrier.add(pairs.data(), 500);
    LevelSums rest(*sampleTypeOf("cf64"));
    rest.add(pairs.data() + 1000, 500);
    carrier += rest;
    QVERIFY(std::abs(carrier.power() - 1.0) < 1e-12);
    QCOMPARE(carrier.peak(), 1.0);
    for (std::size_t k = 1; k < pairs.size(); k += 2) {
        pairs[k] = 0.0;
    }
    LevelSums sine(*sampleTypeOf("rf64"));
    sine.add(pairs.data(), 1000);
    QVERIFY(std::abs(sine.power() - 1.0) < 1e-12);
    QVERIFY(!sine.hasClippedShare());
    pairs[700] = HUGE_VAL;
    sine.add(pairs.data(), 1000);
    QVERIFY(!sine.isFinite());
}

void TestRecordingFigures::onlyHeapsAtTheEndsAreClipped()
{
    const auto shareOf = [](const std::vector<int>& codes) {
        std::vector<double> pairs;
        for (const int code : codes) {
            pairs.push_back(code / 32768.0);
            pairs.push_back(0.0);
        }
        LevelSums sums(*sampleTypeOf("ri16"));
        sums.add(pairs.data(), static_cast<qint64>(codes.size()));
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
