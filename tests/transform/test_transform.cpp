// The transform against its textbook loop, bit for bit, and against closed forms.
#include "kit/same_bits.h"
#include "kit/thread_count.h"
#include "reference_transform.h"
#include "transform/transform.h"

#include <QtTest>

#include <limits>
#include <random>

namespace {

using Complex = std::complex<double>;

constexpr double pi = 3.141592653589793;

std::vector<Complex> noise(quint64 count, quint32 seed)
{
    std::mt19937 engine(seed);
    std::uniform_real_distribution<double> value(-1.0, 1.0);
    std::vector<Complex> x(count);
    for (Complex& element : x) {
        element = {value(engine), value(engine)};
    }
    return x;
}

ComplexBuffer bufferOf(const std::vector<Complex>& x)
{
    ComplexBuffer buffer(x.size());
    std::copy(x.begin(), x.end(), buffer.data());
    return buffer;
}

QVector<double> realNoise(int count, quint32 seed)
{
    QVector<double> values;
    for (const Complex& element : noise(static_cast<quint64>(count), seed)) {
        values.append(element.real());
    }
    return values;
}

void addLengths(int fromExponent, int toExponent)
{
    QTest::addColumn<quint64>("count");
    for (int exponent = fromExponent; exponent <= toExponent; ++exponent) {
        QTest::addRow("2^%d", exponent) << (quint64{1} << exponent);
    }
}

} // namespace

class TestTransform : public QObject
{
    Q_OBJECT

private slots:
    void longTransformsAreSharedAndOthersAreNot(); // first: threads stay for a while
    void everyLengthHasTheBitsOfTheTextbookLoop_data() { addLengths(0, 17); }
    void everyLengthHasTheBitsOfTheTextbookLoop();
    void longLengthsHaveTheBitsOfTheTextbookLoop_data() { addLengths(18, 22); }
    void longLengthsHaveTheBitsOfTheTextbookLoop() { everyLengthHasTheBitsOfTheTextbookLoop(); }
    void signedZerosAndTinyValuesKeepTheirBits();
    void wrappersHaveTheBitsOfTheTextbookLoop_data();
    void wrappersHaveTheBitsOfTheTextbookLoop();
    void longWrappersHaveTheBitsOfTheTextbookLoop_data();
    void longWrappersHaveTheBitsOfTheTextbookLoop() { wrappersHaveTheBitsOfTheTextbookLoop(); }
    void preparedTransformsHaveTheBitsOfTheTextbookLoop_data() { addLengths(0, 16); }
    void preparedTransformsHaveTheBitsOfTheTextbookLoop();
    void emptyBufferStaysEmpty();
    void singleElementStaysAsItIs();
    void twoElementsGiveScaledSumAndDifference();
    void impulseGivesFlatSpectrum();
    void toneOfNegativeExponentPeaksAtItsBin();
    void forwardThenInverseDividesByTheLength();
    void inverseWithSwappedVectorsMakesPositiveBinsPositiveFrequencies();
    void otherLengthsHaveTheBitsOfTheTextbookLoop_data();
    void otherLengthsHaveTheBitsOfTheTextbookLoop();
    void absurdBufferIsRefused();
};

void TestTransform::longTransformsAreSharedAndOthersAreNot()
{
    const int before = threadCount();
    if (before == 0) {
        QSKIP("the system doesn't tell the threads of a process");
    }
    ComplexBuffer halfAsLong(16384);
    fft(halfAsLong, 8);
    ComplexBuffer buffer(32768);
    fft(buffer, 1);
    QCOMPARE(threadCount(), before);
    fft(buffer, 2);
    QVERIFY(threadCount() > before);
}

void TestTransform::everyLengthHasTheBitsOfTheTextbookLoop()
{
    QFETCH(quint64, count);
    const std::vector<Complex> stimulus = noise(count, 7);
    std::vector<Complex> expected = stimulus;

    reference::fft(expected);
    for (const int threads : {1, 2, 3, 7}) {
        ComplexBuffer buffer = bufferOf(stimulus);
        fft(buffer, threads);
        QVERIFY2(sameBits(buffer, expected), qPrintable(QString::number(threads)));
    }
}

void TestTransform::signedZerosAndTinyValuesKeepTheirBits()
{
    const double tiny = std::numeric_limits<double>::denorm_min();
    const double values[] = {0.0, -0.0, tiny, -tiny, 1e-300, -1e300, 1.0, -1.0};
    for (quint64 count : {1U, 2U, 4U, 64U, 1024U, 8192U, 65536U}) {
        std::vector<Complex> expected(count);
        for (quint64 i = 0; i < count; ++i) {
            expected[i] = {values[i % 8], values[(i / 3) % 8]};
        }
        ComplexBuffer buffer = bufferOf(expected);

        reference::fft(expected);
        fft(buffer);

        QVERIFY2(sameBits(buffer, expected), qPrintable(QString::number(count)));
    }
}

void TestTransform::wrappersHaveTheBitsOfTheTextbookLoop_data()
{
    QTest::addColumn<int>("count");
    for (const int count : {1, 2, 64, 1024, 2048, 4096, 16384, 32768, 65536, 131072}) {
        QTest::addRow("%d", count) << count;
    }
}

void TestTransform::longWrappersHaveTheBitsOfTheTextbookLoop_data()
{
    QTest::addColumn<int>("count");
    QTest::newRow("4194304") << 4194304;
}

void TestTransform::wrappersHaveTheBitsOfTheTextbookLoop()
{
    QFETCH(int, count);
    const QVector<double> re = realNoise(count, 1);
    const QVector<double> im = realNoise(count, 2);

    QVector<double> forwardRe = re;
    QVector<double> forwardIm = im;
    QVector<double> expectedRe = re;
    QVector<double> expectedIm = im;
    forwardTransform(forwardRe, forwardIm, static_cast<quint32>(count));
    reference::forwardTransform(expectedRe, expectedIm);
    QVERIFY(sameBits(forwardRe, expectedRe));
    QVERIFY(sameBits(forwardIm, expectedIm));

    QVector<double> inverseRe = re;
    QVector<double> inverseIm = im;
    expectedRe = re;
    expectedIm = im;
    inverseTransform(inverseRe, inverseIm, static_cast<quint32>(count));
    reference::inverseTransform(expectedRe, expectedIm);
    QVERIFY(sameBits(inverseRe, expectedRe));
    QVERIFY(sameBits(inverseIm, expectedIm));
}

void TestTransform::preparedTransformsHaveTheBitsOfTheTextbookLoop()
{
    QFETCH(quint64, count);
    for (const int threads : {1, 3}) {
        const PreparedTransform transform(count, threads);
        for (const quint32 seed : {3, 4}) { // nothing of a run stays for the next one
            std::vector<Complex> expected = noise(count, seed);
            std::vector<double> re;
            std::vector<double> im;
            for (const Complex& value : expected) {
                re.push_back(value.real());
                im.push_back(value.imag());
            }
            reference::fft(expected);
            transform.run({re.data(), im.data()});
            ComplexBuffer found(count);
            for (quint64 k = 0; k < count; ++k) {
                found[k] = {re[k], im[k]};
            }
            QVERIFY2(sameBits(found, expected), qPrintable(QString::number(threads)));
        }
    }
}

void TestTransform::emptyBufferStaysEmpty()
{
    ComplexBuffer buffer(0);
    fft(buffer);
    QCOMPARE(buffer.size(), quint64{0});
}

void TestTransform::singleElementStaysAsItIs()
{
    ComplexBuffer buffer(1);
    buffer[0] = {3.25, -7.5};
    fft(buffer);
    QCOMPARE(buffer[0].real(), 3.25);
    QCOMPARE(buffer[0].imag(), -7.5);
}

void TestTransform::twoElementsGiveScaledSumAndDifference()
{
    ComplexBuffer buffer(2);
    buffer[0] = {3.0, 1.0};
    buffer[1] = {1.0, 5.0};
    fft(buffer);
    // (4 + 6j) / sqrt(2) and (2 - 4j) / sqrt(2), exact to one rounding of the factor.
    QVERIFY(qAbs(buffer[0].real() - 2.8284271247461903) < 1e-15);
    QVERIFY(qAbs(buffer[0].imag() - 4.242640687119286) < 2e-15);
    QVERIFY(qAbs(buffer[1].real() - 1.4142135623730951) < 1e-15);
    QVERIFY(qAbs(buffer[1].imag() + 2.8284271247461903) < 1e-15);
}

void TestTransform::impulseGivesFlatSpectrum()
{
    ComplexBuffer buffer(64);
    buffer[0] = {1.0, 0.0};
    fft(buffer);
    for (quint64 k = 0; k < 64; ++k) {
        QCOMPARE(buffer[k].real(), 0.125);
        QCOMPARE(buffer[k].imag(), 0.0);
    }
}

void TestTransform::toneOfNegativeExponentPeaksAtItsBin()
{
    constexpr quint64 count = 256;
    constexpr quint64 bin = 19;
    ComplexBuffer buffer(count);
    for (quint64 n = 0; n < count; ++n) {
        buffer[n] = std::polar(1.0, -2.0 * pi * double(n * bin) / double(count));
    }
    fft(buffer);
    // All energy in one bin: sqrt(N) = 16 there, and rounding of about N eps elsewhere.
    for (quint64 k = 0; k < count; ++k) {
        QVERIFY(std::abs(buffer[k] - Complex(k == bin ? 16.0 : 0.0, 0.0)) < 1e-12);
    }
}

void TestTransform::forwardThenInverseDividesByTheLength()
{
    constexpr int count = 1024;
    const QVector<double> re = realNoise(count, 3);
    const QVector<double> im = realNoise(count, 4);
    QVector<double> backRe = re;
    QVector<double> backIm = im;
    forwardTransform(backRe, backIm, count);
    inverseTransform(backRe, backIm, count);
    // The twiddles of the recurrence drift by some hundred rounding errors over 512 steps.
    for (int i = 0; i < count; ++i) {
        QVERIFY(qAbs(backRe[i] - re[i] / count) < 1e-15);
        QVERIFY(qAbs(backIm[i] - im[i] / count) < 1e-15);
    }
}

void TestTransform::inverseWithSwappedVectorsMakesPositiveBinsPositiveFrequencies()
{
    constexpr int count = 64;
    QVector<double> i(count, 0.0);
    QVector<double> q(count, 0.0);
    i[1] = 64.0 * 8.0; // N sqrt(N): one turn of amplitude 1
    inverseTransform(q, i, count);
    for (int k = 0; k < count; ++k) {
        const double angle = 2.0 * pi * k / count;
        QVERIFY(qAbs(i[k] - std::cos(angle)) < 1e-14);
        QVERIFY(qAbs(q[k] - std::sin(angle)) < 1e-14);
    }
}

void TestTransform::otherLengthsHaveTheBitsOfTheTextbookLoop_data()
{
    QTest::addColumn<int>("count");
    for (const int count : {3, 5, 6, 7, 12, 1000, 4095, 4097, 6000}) {
        QTest::addRow("%d", count) << count;
    }
}

// Without the butterflies that would leave the data; the address sanitizer looks for those.
void TestTransform::otherLengthsHaveTheBitsOfTheTextbookLoop()
{
    QFETCH(int, count);
    QVector<double> re = realNoise(count, 5);
    QVector<double> im = realNoise(count, 6);
    QVector<double> expectedRe = re;
    QVector<double> expectedIm = im;
    forwardTransform(re, im, static_cast<quint32>(count));
    reference::forwardTransform(expectedRe, expectedIm);
    QVERIFY(sameBits(re, expectedRe));
    QVERIFY(sameBits(im, expectedIm));
    inverseTransform(re, im, static_cast<quint32>(count));
    reference::inverseTransform(expectedRe, expectedIm);
    QVERIFY(sameBits(re, expectedRe));
    QVERIFY(sameBits(im, expectedIm));
}

void TestTransform::absurdBufferIsRefused()
{
    QVERIFY_EXCEPTION_THROWN(ComplexBuffer(quint64{1} << 60), std::bad_alloc);
}

QTEST_APPLESS_MAIN(TestTransform)
#include "test_transform.moc"
