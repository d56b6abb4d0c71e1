// The whole calculation: closed forms, an independent direct sum, and the textbook order of
// operations for the bits.
#include "base/parallel.h"
#include "files/signal_input.h"
#include "kit/file_content.h"
#include "kit/same_bits.h"
#include "kit/thread_count.h"
#include "setup/measurement_setup.h"
#include "signal/notch_operations.h"
#include "signal/reference_pipeline.h"
#include "signal/sources.h"

#include <QTemporaryDir>
#include <QtTest>

namespace {

constexpr double pi = 3.141592653589793;

MeasurementSetup smallSetup(PhaseLaw phaseMode)
{
    MeasurementSetup setup;
    setup.fftLengthIndex = 14; // 256
    setup.phaseMode = phaseMode;
    return setup;
}

void addNotch(MeasurementSetup& setup, qint32 start, qint32 stop, double depth)
{
    Notch notch;
    notch.startIndex = start;
    notch.stopIndex = stop;
    notch.depth = depth;
    setup.notches->items.append(notch);
}

// The samples of a shaped spectrum as a direct sum over its bins, in the time domain's own
// words: each bin is a rotating phasor.
std::complex<double> sampleAt(const SignalData& data, int k)
{
    std::complex<double> sum;
    const int carrier = data.length / 2;
    for (int i = 0; i < data.length; ++i) {
        const double turn = 2.0 * pi * (i - carrier) * k / data.length;
        sum += std::polar(data.magnitude[i], data.phase[i] + turn);
    }
    return sum / std::sqrt(double(data.length));
}

// Rows of the FFT lengths, the greatest first.
void addLengths(int firstRow, int lastRow)
{
    QTest::addColumn<int>("fftLengthIndex");
    for (int index = firstRow; index <= lastRow; ++index) {
        QTest::addRow("%d", 4194304 >> index) << index;
    }
}

} // namespace

class TestPipeline : public QObject
{
    Q_OBJECT

private slots:
    void longSpectraAreConvertedByAllCores(); // first: threads stay for a while
    void samplesAreTheDirectSumOfTheBins();
    void samplesHaveTheBitsOfTheLiteralOrder_data() { addLengths(4, 16); }
    void samplesHaveTheBitsOfTheLiteralOrder();
    void longSignalsHaveTheBitsOfTheLiteralOrder_data() { addLengths(0, 3); }
    void longSignalsHaveTheBitsOfTheLiteralOrder() { samplesHaveTheBitsOfTheLiteralOrder(); }
    void meanPowerIsTheMeanOfTheSquaredMagnitudes();
    void constantPhasesGiveOnePeakOfRootN();
    void parabolicPhasesGiveAConstantEnvelope_data();
    void parabolicPhasesGiveAConstantEnvelope();
    void seededPhasesGiveTheSameCrestFactorEveryTime();
    void oneLineAboveTheCarrierTurnsForward();
    void crestFactorIsPeakOverRootMeanSquare();
    void missingMagnitudePhaseFileGivesAnEmptySignal();
    void missingSampleFilesGiveAnEmptySignal();
    void absurdLengthGivesAnEmptySignal();
    void unknownPhaseModeShapesTheOldSpectrumAgain();
    void unknownSourceOnAFreshSetupStaysEmpty();
    void compensationRaisesBinsByDecibels();
    void compensationOfAnotherLengthIsSkipped();
    void compensationNeedsItsCheckBox();
    void sinxCompensationDoesNotTouchFiles();
    void magnitudeFileDrivesThePipeline();
    void oddLengthFromAFileGoesTheSameWay();
    void sampleFilesDriveThePipeline();
    void zeroSpectrumHasNoCrestFactor();
    void copyForAnotherThreadSharesNoRows();
};

void TestPipeline::longSpectraAreConvertedByAllCores()
{
    const int before = threadCount();
    if (before == 0 || usefulThreads() == 1) {
        QSKIP("a single core, or the system doesn't tell the threads of a process");
    }
    SignalData shortOne(65536); // one run for each half of the band
    shortOne.buildTransformInput();
    QCOMPARE(threadCount(), before);
    SignalData longOne(262144);
    longOne.buildTransformInput();
    QVERIFY(threadCount() > before);
}

void TestPipeline::samplesAreTheDirectSumOfTheBins()
{
    MeasurementSetup setup = smallSetup(PhaseLaw::Seeded);
    setup.nbwSrate = 0.8;
    addNotch(setup, -20, -10, -40.0);
    setup.calculateSignal();
    QCOMPARE(setup.signal.length, 256);
    for (int k = 0; k < 256; ++k) {
        const std::complex<double> expected = sampleAt(setup.signal, k);
        QVERIFY(qAbs(setup.signal.iSamples[k] - expected.real()) < 1e-12);
        QVERIFY(qAbs(setup.signal.qSamples[k] - expected.imag()) < 1e-12);
    }
}

void TestPipeline::samplesHaveTheBitsOfTheLiteralOrder()
{
    QFETCH(int, fftLengthIndex);
    MeasurementSetup setup;
    setup.fftLengthIndex = fftLengthIndex;
    setup.seed = 17;
    setup.nbwSrate = 0.8;
    const auto n = static_cast<qint32>(setup.fftLength());
    addNotch(setup, -n / 4, -n / 8, -80.0);
    addNotch(setup, n / 16, n / 8, -30.5);
    setup.calculateSignal();

    SignalData expected;
    const double crestFactor = reference::calculate(setup, expected);
    QVERIFY(sameBits(setup.signal.phase, expected.phase));
    QVERIFY(sameBits(setup.signal.magnitude, expected.magnitude));
    QVERIFY(sameBits(setup.signal.iSamples, expected.iSamples));
    QVERIFY(sameBits(setup.signal.qSamples, expected.qSamples));
    QCOMPARE(std::signbit(setup.crestFactor), std::signbit(crestFactor));
    QVERIFY(setup.crestFactor == crestFactor);
}

void TestPipeline::meanPowerIsTheMeanOfTheSquaredMagnitudes()
{
    MeasurementSetup setup = smallSetup(PhaseLaw::Seeded);
    setup.sinxCompensation = true;
    setup.calculateSignal();
    double samplePower = 0.0;
    double binPower = 0.0;
    for (int k = 0; k < 256; ++k) {
        samplePower +=
            std::pow(setup.signal.iSamples[k], 2) + std::pow(setup.signal.qSamples[k], 2);
        binPower += std::pow(setup.signal.magnitude[k], 2);
    }
    QVERIFY(qAbs(samplePower / binPower - 1.0) < 1e-12);
}

void TestPipeline::constantPhasesGiveOnePeakOfRootN()
{
    MeasurementSetup setup;
    setup.phaseMode = PhaseLaw::Constant;
    setup.calculateSignal();
    QVERIFY(qAbs(setup.crestFactor - 51.1751) < 1e-4); // 10 log10(131072)
    QVERIFY(qAbs(std::hypot(setup.signal.iSamples[0], setup.signal.qSamples[0]) - 362.0386719675) <
            1e-9);
    QVERIFY(qAbs(setup.signal.iSamples[1]) < 1e-9);
}

void TestPipeline::parabolicPhasesGiveAConstantEnvelope_data()
{
    QTest::addColumn<int>("index");
    for (int index = 0; index <= 16; ++index) {
        QTest::addRow("2^%d", 22 - index) << index;
    }
}

void TestPipeline::parabolicPhasesGiveAConstantEnvelope()
{
    QFETCH(int, index);
    MeasurementSetup setup;
    setup.fftLengthIndex = index;
    setup.phaseMode = PhaseLaw::Parabolic;
    setup.calculateSignal();
    // 0 dB up to the rounding of the unwrapped phases, which grows with their size.
    QVERIFY2(qAbs(setup.crestFactor) < 1e-6, qPrintable(QString::number(setup.crestFactor)));
}

void TestPipeline::seededPhasesGiveTheSameCrestFactorEveryTime()
{
    MeasurementSetup first = smallSetup(PhaseLaw::Seeded);
    MeasurementSetup second = smallSetup(PhaseLaw::Seeded);
    first.calculateSignal();
    second.calculateSignal();
    QCOMPARE(first.crestFactor, second.crestFactor);
    QVERIFY(sameBits(first.signal.iSamples, second.signal.iSamples));
    // Noise-like: a complex Gaussian of 256 samples peaks at about sqrt(ln 256) = 7.4 dB.
    QVERIFY(first.crestFactor > 5.0 && first.crestFactor < 11.0);
}

void TestPipeline::oneLineAboveTheCarrierTurnsForward()
{
    MeasurementSetup setup = smallSetup(PhaseLaw::Constant);
    setup.notchOrCarrier = NotchOrCarrier::Carrier;
    addNotch(setup, 4, 4, 0.0); // the line stands at bin 5
    setup.calculateSignal();
    // 1/16 amplitude, phase pi/4, 5 turns over 256 samples; the rest is 105 dB down, all in
    // sample 0, where 255 bins add up to 255/16 * 5.6e-6.
    for (int k = 1; k < 256; ++k) {
        const double angle = pi / 4 + 2 * pi * 5 * k / 256;
        QVERIFY(qAbs(setup.signal.iSamples[k] - std::cos(angle) / 16) < 1e-6);
        QVERIFY(qAbs(setup.signal.qSamples[k] - std::sin(angle) / 16) < 1e-6);
    }
}

void TestPipeline::crestFactorIsPeakOverRootMeanSquare()
{
    SignalData data(4);
    data.iSamples = {3.0, 0.0, 1.0, 0.0};
    data.qSamples = {4.0, 1.0, 0.0, 1.0};
    // Peak 5, mean square (25 + 3) / 4 = 7: 20 log10(5 / sqrt(7)).
    QVERIFY(qAbs(data.crestFactor() - 5.5284196865778083) < 1e-12);
}

void TestPipeline::missingMagnitudePhaseFileGivesAnEmptySignal()
{
    MeasurementSetup setup = smallSetup(PhaseLaw::Seeded);
    setup.calculateSignal();
    setup.customSource = SignalSource::MagnitudePhaseFile;
    setup.phaseMagFile = QStringLiteral("/nonexistent/file.pmc");
    setup.calculateSignal();
    QCOMPARE(setup.signal.length, 0);
    QVERIFY(setup.signal.iSamples.isEmpty());
    QVERIFY(setup.crestFactor == 0.0);
}

void TestPipeline::missingSampleFilesGiveAnEmptySignal()
{
    MeasurementSetup setup = smallSetup(PhaseLaw::Seeded);
    setup.calculateSignal();
    setup.customSource = SignalSource::IQFiles;
    setup.iFile = QStringLiteral("/nonexistent/i.wav");
    setup.qFile = QStringLiteral("/nonexistent/q.wav");
    setup.calculateSignal();
    QCOMPARE(setup.signal.length, 0);
    QVERIFY(setup.signal.iSamples.isEmpty());
    QVERIFY(setup.crestFactor == 0.0);
}

void TestPipeline::absurdLengthGivesAnEmptySignal()
{
    for (const int index : {-8, 40}) { // 2^30, as a configuration file can ask for, and none
        MeasurementSetup setup = smallSetup(PhaseLaw::Seeded);
        setup.calculateSignal();
        setup.fftLengthIndex = index;
        setup.calculateSignal();
        QCOMPARE(setup.signal.length, 0);
        QVERIFY(setup.crestFactor == 0.0);
    }
}

void TestPipeline::unknownPhaseModeShapesTheOldSpectrumAgain()
{
    MeasurementSetup setup = smallSetup(PhaseLaw::Seeded);
    addNotch(setup, 10, 20, -20.0);
    setup.calculateSignal();
    setup.phaseMode = PhaseLaw(4);
    setup.calculateSignal();
    QCOMPARE(setup.signal.length, 256);
    QVERIFY(qAbs(setup.signal.magnitude[128 + 15] - 0.01) < 1e-15); // twice 20 dB
    QCOMPARE(setup.signal.magnitude[128], 1.0);
}

void TestPipeline::unknownSourceOnAFreshSetupStaysEmpty()
{
    MeasurementSetup setup = smallSetup(PhaseLaw::Seeded);
    setup.customSource = SignalSource(3);
    setup.calculateSignal();
    QCOMPARE(setup.signal.length, 0);
}

void TestPipeline::compensationRaisesBinsByDecibels()
{
    MeasurementSetup setup = smallSetup(PhaseLaw::Constant);
    setup.compensate = true;
    setup.compensationTrace = QVector<double>(256, 0.0);
    setup.compensationTrace[0] = 20.0;
    setup.compensationTrace[255] = -40.0;
    setup.calculateSignal();
    QVERIFY(qAbs(setup.signal.magnitude[0] - 10.0) < 1e-14);
    QVERIFY(qAbs(setup.signal.magnitude[255] - 0.01) < 1e-17);
    QCOMPARE(setup.signal.magnitude[128], 1.0);
}

void TestPipeline::compensationOfAnotherLengthIsSkipped()
{
    MeasurementSetup setup = smallSetup(PhaseLaw::Constant);
    setup.compensate = true;
    setup.calculateSignal();
    QCOMPARE(setup.signal.magnitude, QVector<double>(256, 1.0));
    setup.compensationTrace = QVector<double>(255, 6.0);
    setup.calculateSignal();
    QCOMPARE(setup.signal.magnitude, QVector<double>(256, 1.0));
}

void TestPipeline::compensationNeedsItsCheckBox()
{
    MeasurementSetup setup = smallSetup(PhaseLaw::Constant);
    setup.compensationTrace = QVector<double>(256, 6.0);
    setup.calculateSignal();
    QCOMPARE(setup.signal.magnitude, QVector<double>(256, 1.0));
}

void TestPipeline::sinxCompensationDoesNotTouchFiles()
{
    QTemporaryDir dir;
    MeasurementSetup setup = smallSetup(PhaseLaw::Seeded);
    setup.customSource = SignalSource::MagnitudePhaseFile;
    setup.phaseMagFile = dir.filePath("flat.pmc");
    putContent(setup.phaseMagFile, "4\n0 0.5 1\n1 0.5 1\n2 0.5 1\n3 0.5 1\n");
    setup.sinxCompensation = true;
    setup.calculateSignal();
    QCOMPARE(setup.signal.magnitude, QVector<double>(4, 1.0));
}

void TestPipeline::magnitudeFileDrivesThePipeline()
{
    QTemporaryDir dir;
    MeasurementSetup setup;
    setup.customSource = SignalSource::MagnitudePhaseFile;
    setup.phaseMagFile = dir.filePath("line.pmc");
    // One line, one bin above the carrier, phase 0.
    putContent(setup.phaseMagFile, "4\n3 0.0 2.0\n");
    setup.calculateSignal();
    // 2/sqrt(4) = 1 turning once over the four samples; a constant envelope.
    const double expectedI[] = {1, 0, -1, 0};
    const double expectedQ[] = {0, 1, 0, -1};
    for (int k = 0; k < 4; ++k) {
        QVERIFY(qAbs(setup.signal.iSamples[k] - expectedI[k]) < 1e-15);
        QVERIFY(qAbs(setup.signal.qSamples[k] - expectedQ[k]) < 1e-15);
    }
    QVERIFY(qAbs(setup.crestFactor) < 1e-12);
}

void TestPipeline::oddLengthFromAFileGoesTheSameWay()
{
    QTemporaryDir dir;
    for (const int length : {1, 3, 5, 7, 1001}) {
        MeasurementSetup setup;
        addNotch(setup, -3, 3, -20.0);
        setup.customSource = SignalSource::MagnitudePhaseFile;
        setup.phaseMagFile = dir.filePath("odd.pmc");
        putContent(setup.phaseMagFile, QByteArray::number(length) + "\n0 0.1 1.0\n");
        setup.calculateSignal();
        SignalData expected(static_cast<quint32>(length));
        expected.phase[0] = 0.1;
        // The first of half + 3 bins is inside the notch where half is at most 3.
        expected.magnitude[0] = length == 7 ? std::pow(10.0, -1.0) : 1.0;
        reference::makeSamples(expected);
        QCOMPARE(setup.signal.length, length);
        QVERIFY2(sameBits(setup.signal.iSamples, expected.iSamples), QByteArray::number(length));
        QVERIFY2(sameBits(setup.signal.qSamples, expected.qSamples), QByteArray::number(length));
    }
}

void TestPipeline::sampleFilesDriveThePipeline()
{
    QTemporaryDir dir;
    MeasurementSetup setup = smallSetup(PhaseLaw::Seeded);
    setup.customSource = SignalSource::IQFiles;
    setup.iFile = dir.filePath("i.wav");
    setup.qFile = dir.filePath("q.wav");
    for (const QString& path : {setup.iFile, setup.qFile}) {
        QByteArray words;
        for (int k = 0; k < 64; ++k) { // 14 bits, the lower byte first
            const int word = k * (path == setup.iFile ? 2731 : 5987) % 16384;
            words.append(static_cast<char>(word & 0xFF));
            words.append(static_cast<char>(word >> 8));
        }
        putContent(path, words);
    }
    setup.calculateSignal();
    QCOMPARE(setup.signal.length, 64);
    QCOMPARE(setup.signal.magnitude, loadIQFiles(setup.iFile, setup.qFile).magnitude);
    for (int k = 0; k < 64; ++k) {
        const std::complex<double> expected = sampleAt(setup.signal, k);
        QVERIFY(qAbs(setup.signal.iSamples[k] - expected.real()) < 1e-12);
        QVERIFY(qAbs(setup.signal.qSamples[k] - expected.imag()) < 1e-12);
    }
}

void TestPipeline::zeroSpectrumHasNoCrestFactor()
{
    QTemporaryDir dir;
    MeasurementSetup setup;
    setup.customSource = SignalSource::MagnitudePhaseFile;
    setup.phaseMagFile = dir.filePath("zero.pmc");
    putContent(setup.phaseMagFile, "8\n");
    setup.calculateSignal();
    QCOMPARE(setup.signal.length, 8);
    QVERIFY(std::isnan(setup.crestFactor));
}

void TestPipeline::copyForAnotherThreadSharesNoRows()
{
    MeasurementSetup setup = smallSetup(PhaseLaw::Seeded);
    addNotch(setup, 1, 2, -3.0);
    const MeasurementSetup copy = setup.forOtherThread();
    setup.notches->items[0].startIndex = 99;
    QCOMPARE(copy.notches->items.at(0).startIndex, 1);
    QVERIFY(copy.notches->model() == nullptr);
}

QTEST_APPLESS_MAIN(TestPipeline)
#include "test_pipeline.moc"
