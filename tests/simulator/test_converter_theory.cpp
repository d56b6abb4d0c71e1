// The converter's noise power ratio against the theory of quantisation and clipping of Gaussian
// noise.
//
// The stimulus has the values of the Gaussian distribution itself, one of each of equal
// probability in random order, so that the few values beyond full scale come in their right
// number; cutting the notch changes each value a little. Two to the power of 22 values a component
// leave a spread of about 0.2 dB where clipping rules (12 bits at 4 sigma: some 500 clipped
// values, of which the cut draws a part anew) and below 0.1 dB elsewhere; 0.5 dB is allowed.
#include "kit/converter_theory.h"
#include "ready_bench.h"

#include <QtTest>

namespace {

constexpr int lineCount = 1 << 22;
constexpr Band notch{100000, 116383};

// The values whose upper tails are (k + 1/2)/count, by Newton's rule from the one before.
QVector<double> gaussianValues(int count)
{
    QVector<double> values(count);
    double x = 0.0;
    for (int k = count / 2 - 1; k >= 0; --k) {
        const double tail = (k + 0.5) / count;
        double change = 1.0;
        while (std::abs(change) > 1e-9) {
            change = (upperTail(x) - tail) / normalDensity(x);
            x += change;
        }
        values[k] = x;
        values[count - 1 - k] = -x;
    }
    return values;
}

void shuffle(QVector<double>& values, std::mt19937& random)
{
    for (int k = values.size() - 1; k > 0; --k) {
        std::swap(values[k], values[int(random() % unsigned(k + 1))]);
    }
}

PlayedSignal gaussianNoiseWithNotch()
{
    PlayedSignal signal = silence(lineCount);
    std::mt19937 random(1);
    signal.iSamples = gaussianValues(lineCount);
    signal.qSamples = signal.iSamples;
    shuffle(signal.iSamples, random);
    shuffle(signal.qSamples, random);
    toSpectrum(signal);
    forLines(lineCount, notch, [&](int k) {
        signal.iSamples[k] = 0.0;
        signal.qSamples[k] = 0.0;
    });
    toSamples(signal);
    return signal;
}

} // namespace

class TestConverterTheory : public QObject
{
    Q_OBJECT

private slots:
    void nprFollowsTheTheory_data();
    void nprFollowsTheTheory();

private:
    const PlayedSignal signal = gaussianNoiseWithNotch();
};

void TestConverterTheory::nprFollowsTheTheory_data()
{
    QTest::addColumn<int>("bits");
    QTest::addColumn<double>("loading");
    for (const int bits : {6, 8, 10, 12}) {
        for (const double loading : {3.0, 4.0, 5.0, 6.0}) {
            QTest::addRow("%d bits at %.0f sigma", bits, loading) << bits << loading;
        }
    }
}

void TestConverterTheory::nprFollowsTheTheory()
{
    QFETCH(int, bits);
    QFETCH(double, loading);
    BenchWiring wiring;
    wiring.chain.device.name = "adc";
    wiring.chain.device.bits = bits;
    wiring.chain.device.loadingFactor = loading;
    Bench bench = readyBench(wiring);
    bench.play(signal);
    const double width = notch.last - notch.first + 1;
    const double center = (notch.first + notch.last + 1) / 2.0;
    tune(bench, center - 1.2 * width, 0.75 * width, 1.2 * width);
    const double npr = upperNpr(bench);
    const double expected = converterNoise(bits, loading).npr();
    qInfo("%.3f dB, theory %.3f dB", npr, expected);
    QVERIFY(std::abs(npr - expected) < 0.5);
}

QTEST_APPLESS_MAIN(TestConverterTheory)
#include "test_converter_theory.moc"
