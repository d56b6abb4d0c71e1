// Samples between the samples of periodic signals, against the sines that they are samples of.
#include "transform/interpolation.h"

#include <QtTest>

#include <cmath>

namespace {

constexpr double pi = 3.141592653589793;

struct Samples
{
    QVector<double> re;
    QVector<double> im;
};

Samples tone(int count, int line)
{
    Samples samples;
    for (int n = 0; n < count; ++n) {
        samples.re << std::cos(2.0 * pi * line * n / count);
        samples.im << std::sin(2.0 * pi * line * n / count);
    }
    return samples;
}

double distance(const QVector<double>& one, const QVector<double>& other)
{
    double largest = one.size() == other.size() ? 0.0 : 1e9;
    for (int k = 0; k < std::min(one.size(), other.size()); ++k) {
        largest = std::max(largest, std::abs(one[k] - other[k]));
    }
    return largest;
}

} // namespace

class TestInterpolation : public QObject
{
    Q_OBJECT

private slots:
    void tonesStayThemselves_data();
    void tonesStayThemselves();
    void samplesThatWereThereStay();
    void factorOneChangesNothing();
    void nothingStaysNothing();
};

void TestInterpolation::tonesStayThemselves_data()
{
    QTest::addColumn<int>("count");
    QTest::addColumn<int>("line");
    QTest::addColumn<int>("factor");
    QTest::newRow("one sample") << 1 << 0 << 4;
    QTest::newRow("two samples") << 2 << -1 << 4;
    QTest::newRow("the carrier") << 64 << 0 << 4;
    QTest::newRow("the highest line") << 64 << 31 << 4;
    QTest::newRow("the lowest line") << 64 << -32 << 4;
    QTest::newRow("twice as many") << 64 << -7 << 2;
    QTest::newRow("long") << 4096 << 1234 << 4;
}

void TestInterpolation::tonesStayThemselves()
{
    QFETCH(int, count);
    QFETCH(int, line);
    QFETCH(int, factor);
    Samples samples = tone(count, line);
    interpolate(samples.re, samples.im, factor);
    const Samples expected = tone(count * factor, line);
    QVERIFY(distance(samples.re, expected.re) < 1e-10);
    QVERIFY(distance(samples.im, expected.im) < 1e-10);
}

void TestInterpolation::samplesThatWereThereStay()
{
    QVector<double> re;
    QVector<double> im;
    for (int k = 0; k < 256; ++k) {
        re << (k * 37) % 101;
        im << (k * 53) % 89;
    }
    const QVector<double> reBefore = re;
    const QVector<double> imBefore = im;
    interpolate(re, im, 4);
    for (int k = 0; k < 256; ++k) {
        QVERIFY(std::abs(re[4 * k] - reBefore[k]) < 1e-10);
        QVERIFY(std::abs(im[4 * k] - imBefore[k]) < 1e-10);
    }
}

void TestInterpolation::factorOneChangesNothing()
{
    Samples samples = tone(8, 3);
    const Samples before = samples;
    interpolate(samples.re, samples.im, 1);
    QVERIFY(samples.re == before.re && samples.im == before.im);
}

void TestInterpolation::nothingStaysNothing()
{
    QVector<double> re;
    QVector<double> im;
    interpolate(re, im, 4);
    QVERIFY(re.isEmpty() && im.isEmpty());
}

QTEST_APPLESS_MAIN(TestInterpolation)
#include "test_interpolation.moc"
