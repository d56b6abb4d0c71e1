// Single lines against the sum that defines them, and against the whole transform.
#include "transform/some_lines.h"

#include "transform/transform.h"

#include <QtTest>

#include <cmath>
#include <complex>

namespace {

using Complex = std::complex<double>;

constexpr double pi = 3.141592653589793;

struct Period
{
    QVector<double> re;
    QVector<double> im;
};

Period scrambled(int count)
{
    Period period{QVector<double>(count), QVector<double>(count)};
    quint32 state = 7;
    for (int n = 0; n < count; ++n) {
        state = state * 1664525U + 1013904223U;
        period.re[n] = double(state >> 8) / 8388608.0 - 1.0;
        state = state * 1664525U + 1013904223U;
        period.im[n] = double(state >> 8) / 8388608.0 - 1.0;
    }
    return period;
}

// The definition, term by term.
double plainPower(const Period& period, SomeLines::Range range)
{
    const int count = period.re.size();
    double power = 0.0;
    for (int k = range.first; k < range.first + range.count; ++k) {
        Complex sum = 0.0;
        for (int n = 0; n < count; ++n) {
            const double turns = double((qint64{k} * n) % count) / count;
            sum += Complex(period.re[n], period.im[n]) * std::polar(1.0, -2.0 * pi * turns);
        }
        power += std::norm(sum / double(count));
    }
    return power;
}

} // namespace

class TestSomeLines : public QObject
{
    Q_OBJECT

private slots:
    void linesAreThoseOfTheDefinition_data();
    void linesAreThoseOfTheDefinition();
    void aLoneLineIsFoundWhereItIs();
    void aWeakLineIsNotDrownedByStrongOnes();
    void longRangesAgreeWithTheWholeTransform_data();
    void longRangesAgreeWithTheWholeTransform();
    void rangesMayBeEmpty();
};

void TestSomeLines::linesAreThoseOfTheDefinition_data()
{
    QTest::addColumn<int>("count");
    for (const int count : {32, 64, 128, 256, 512, 1024, 2048}) {
        QTest::newRow(qPrintable(QString::number(count))) << count;
    }
}

void TestSomeLines::linesAreThoseOfTheDefinition()
{
    QFETCH(int, count);
    const Period period = scrambled(count);
    const QVector<SomeLines::Range> ranges{{0, 1}, {-3, 7}, {-count / 2, 5}, {count / 2 - 4, 4}};
    const QVector<double> powers =
        SomeLines(count, ranges).powers(period.re.constData(), period.im.constData());
    for (int range = 0; range < ranges.size(); ++range) {
        const double expected = plainPower(period, ranges[range]);
        QVERIFY(std::abs(powers[range] - expected) < 1e-12 * expected);
    }
}

void TestSomeLines::aLoneLineIsFoundWhereItIs()
{
    constexpr int count = 4096;
    Period tone{QVector<double>(count), QVector<double>(count)};
    for (int n = 0; n < count; ++n) {
        tone.re[n] = 3.0 * std::cos(2.0 * pi * (-700.0 * n / count));
        tone.im[n] = 3.0 * std::sin(2.0 * pi * (-700.0 * n / count));
    }
    const QVector<double> powers = SomeLines(count, {{-701, 1}, {-700, 1}, {-699, 1}, {700, 1}})
                                       .powers(tone.re.constData(), tone.im.constData());
    QVERIFY(std::abs(powers[1] - 9.0) < 1e-11);
    QVERIFY(powers[0] < 1e-22 && powers[2] < 1e-22 && powers[3] < 1e-22);
}

// 200 dB below: what a deep notch beside a full band asks for, with room to spare.
void TestSomeLines::aWeakLineIsNotDrownedByStrongOnes()
{
    constexpr int count = 65536;
    Period lines{QVector<double>(count, 0.0), QVector<double>(count, 0.0)};
    for (int k = 0; k < count; ++k) {
        const int offset = k < count / 2 ? k : k - count;
        const double amplitude = std::abs(offset) < 600 ? 1e-10 : 1.0;
        lines.re[k] = amplitude * std::cos(1.7 * k * k);
        lines.im[k] = amplitude * std::sin(1.7 * k * k);
    }
    inverseTransform(lines.im, lines.re, count);
    // The inverse divides by count^(3/2); a line's power is then 1/count^3.
    const double expected = 1199.0 * 1e-20 / std::pow(count, 3.0);
    const double power =
        SomeLines(count, {{-599, 1199}}).powers(lines.re.constData(), lines.im.constData())[0];
    QVERIFY2(std::abs(power / expected - 1.0) < 1e-3,
             qPrintable(QString::number(power / expected)));
}

void TestSomeLines::longRangesAgreeWithTheWholeTransform_data()
{
    QTest::addColumn<int>("count");
    for (const int count : {131072, 262144, 524288}) { // the longer ones in several blocks
        QTest::newRow(qPrintable(QString::number(count))) << count;
    }
}

// The twiddles of the whole transform come from a recurrence over its whole length.
void TestSomeLines::longRangesAgreeWithTheWholeTransform()
{
    QFETCH(int, count);
    const Period period = scrambled(count);
    const SomeLines::Range range{-40000, 70001};
    const double power =
        SomeLines(count, {range}).powers(period.re.constData(), period.im.constData())[0];
    Period whole = period;
    forwardTransform(whole.im, whole.re, quint32(count)); // quadrature first: the opposite exponent
    double expected = 0.0;
    for (int k = range.first; k < range.first + range.count; ++k) {
        const int at = (k + count) % count;
        expected += (whole.re[at] * whole.re[at] + whole.im[at] * whole.im[at]) / count;
    }
    QVERIFY2(std::abs(power - expected) < 1e-9 * expected,
             qPrintable(QString::number(power / expected - 1)));
}

void TestSomeLines::rangesMayBeEmpty()
{
    const Period period = scrambled(64);
    QVERIFY(SomeLines(64, {}).powers(period.re.constData(), period.im.constData()).isEmpty());
    QCOMPARE(SomeLines(64, {{5, 0}}).powers(period.re.constData(), period.im.constData()),
             QVector<double>{0.0});
}

QTEST_APPLESS_MAIN(TestSomeLines)
#include "test_some_lines.moc"
