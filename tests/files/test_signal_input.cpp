// The readers of signals: good files by hand-worked numbers, and every kind of bad one.
#include "files/signal_input.h"
#include "kit/file_content.h"

#include <QTemporaryDir>
#include <QtTest>

#include <cmath>

namespace {

// Words as they stand in a sample file.
QByteArray words(const QVector<int>& values)
{
    QByteArray bytes;
    for (const int value : values) {
        bytes.append(static_cast<char>(value & 0xFF)).append(static_cast<char>(value >> 8));
    }
    return bytes;
}

} // namespace

class TestSignalInput : public QObject
{
    Q_OBJECT

private slots:
    void init() { folder = std::make_unique<QTemporaryDir>(); }
    void blanksAroundNumbersAreIgnored();
    void twoBlanksMakeAnEmptyField();
    void linesMayComeInAnyOrderAndBeAbsent();
    void textThatIsNoNumberCountsAsZero();
    void badLinesAreIgnored_data();
    void badLinesAreIgnored();
    void badLengthIsAFailedRead_data();
    void badLengthIsAFailedRead();
    void missingFileIsAFailedRead();
    void hugeLineWithoutAnEndIsSurvived();
    void fourWordsBecomeTheirSpectrum();
    void theLineAtHalfTheRateComesFirst();
    void phasesArePartsOfAHalfTurn();
    void topBitsAreDropped();
    void largestPowerOfTwoOfWordsIsUsed();
    void headerWordsAreSamples();
    void filesOfUnequalSizeAreAFailedRead();
    void filesWithoutAWordGiveOneLine();

private:
    QString write(const QString& name, const QByteArray& bytes)
    {
        putContent(folder->filePath(name), bytes);
        return folder->filePath(name);
    }
    SignalData readPmc(const QByteArray& text)
    {
        return loadMagnitudePhaseFile(write("a.pmc", text));
    }
    SignalData readSamples(const QByteArray& i, const QByteArray& q)
    {
        return loadIQFiles(write("i.wav", i), write("q.wav", q));
    }

    std::unique_ptr<QTemporaryDir> folder;
};

void TestSignalInput::blanksAroundNumbersAreIgnored()
{
    const SignalData data = readPmc("  16 \n 3 0.25 1.5 \r\n");
    QCOMPARE(data.length, 16);
    QCOMPARE(data.phase[3], 0.25);
    QCOMPARE(data.magnitude[3], 1.5);
    QCOMPARE(data.iSamples, QVector<double>(16, 0.0));
    QCOMPARE(data.qSamples, QVector<double>(16, 0.0));
}

void TestSignalInput::twoBlanksMakeAnEmptyField()
{
    const SignalData data = readPmc("16\n3  0.25 1.5\n");
    QCOMPARE(data.phase[3], 0.0);
    QCOMPARE(data.magnitude[3], 0.25);
}

void TestSignalInput::linesMayComeInAnyOrderAndBeAbsent()
{
    const SignalData data = readPmc("4\n3 -1 2\n0 1e-1 3.5 more\n3 0.5 4");
    QCOMPARE(data.phase, (QVector<double>{0.1, 0.0, 0.0, 0.5}));
    QCOMPARE(data.magnitude, (QVector<double>{3.5, 0.0, 0.0, 4.0}));
}

void TestSignalInput::textThatIsNoNumberCountsAsZero()
{
    const SignalData data = readPmc("2\nx y 7\n1 0,5 z\n");
    QCOMPARE(data.magnitude, (QVector<double>{7.0, 0.0}));
    QCOMPARE(data.phase, (QVector<double>{0.0, 0.0}));
}

void TestSignalInput::badLinesAreIgnored_data()
{
    QTest::addColumn<QByteArray>("line");
    QTest::newRow("empty") << QByteArray("");
    QTest::newRow("one field") << QByteArray("1");
    QTest::newRow("two fields") << QByteArray("1 0.5");
    QTest::newRow("index below") << QByteArray("-1 0.5 1");
    QTest::newRow("index above") << QByteArray("2 0.5 1");
    QTest::newRow("index far above") << QByteArray("2147483647 0.5 1");
    QTest::newRow("zeros") << QByteArray(100, '\0');
}

void TestSignalInput::badLinesAreIgnored()
{
    QFETCH(QByteArray, line);
    const SignalData data = readPmc("2\n" + line + "\n1 0.25 1.5\n" + line + "\n");
    QCOMPARE(data.phase, (QVector<double>{0.0, 0.25}));
    QCOMPARE(data.magnitude, (QVector<double>{0.0, 1.5}));
}

void TestSignalInput::badLengthIsAFailedRead_data()
{
    QTest::addColumn<QByteArray>("text");
    QTest::newRow("empty file") << QByteArray();
    QTest::newRow("zero") << QByteArray("0\n0 1 1\n");
    QTest::newRow("negative") << QByteArray("-4\n0 1 1\n");
    QTest::newRow("no number") << QByteArray("index phase magnitude\n0 1 1\n");
    QTest::newRow("more than 2^26") << QByteArray("67108865\n0 1 1\n");
    QTest::newRow("more than 32 bits") << QByteArray("99999999999\n0 1 1\n");
}

void TestSignalInput::badLengthIsAFailedRead()
{
    QFETCH(QByteArray, text);
    const SignalData data = readPmc(text);
    QCOMPARE(data.length, 0);
    QVERIFY(data.magnitude.isEmpty() && data.iSamples.isEmpty());
}

void TestSignalInput::missingFileIsAFailedRead()
{
    QCOMPARE(loadMagnitudePhaseFile(folder->filePath("missing")).length, 0);
    QCOMPARE(loadMagnitudePhaseFile(QString()).length, 0);
    const QString there = write("i.wav", words({1, 2}));
    QCOMPARE(loadIQFiles(there, folder->filePath("missing")).length, 0);
    QCOMPARE(loadIQFiles(QString(), there).length, 0);
}

void TestSignalInput::hugeLineWithoutAnEndIsSurvived()
{
    const SignalData data = readPmc("2\n1 0.5 1\n" + QByteArray(8000000, ' ') + "0 0.5 1");
    QCOMPARE(data.magnitude[1], 1.0);
    QCOMPARE(readPmc(QByteArray(8000000, '1')).length, 0);
}

void TestSignalInput::fourWordsBecomeTheirSpectrum()
{
    // I is 1, 0, -1, 0 and Q is 0, 0, 0, 0. Positive exponent, divided by sqrt(4): the bins are
    // 0, 1, 0, 1. In frequency order the magnitudes are 0, 1, 0, 1: mean 0.5, deviation 0.5.
    const SignalData data =
        readSamples(words({16383, 8192, 0, 8192}), words({8192, 8192, 8192, 8192}));
    QCOMPARE(data.length, 4);
    const double re[] = {0, 1, 0, 1};
    const double magnitude[] = {-1, 1, -1, 1};
    for (int i = 0; i < 4; ++i) {
        QVERIFY(qAbs(data.iSamples[i] - re[i]) < 1e-15);
        QVERIFY(qAbs(data.qSamples[i]) < 1e-15);
        QVERIFY(qAbs(data.magnitude[i] - magnitude[i]) < 1e-15);
    }
    QVERIFY(qAbs(data.phase[1]) < 1e-15);
    QVERIFY(std::isnan(data.phase[0]) || qAbs(data.phase[0]) <= 0.5); // 0/0 or tiny over tiny
}

void TestSignalInput::theLineAtHalfTheRateComesFirst()
{
    // I is 1, -1, 1, -1: all of it in bin 2, with 4 / sqrt(4). Magnitudes 2, 0, 0, 0 have the mean
    // 0.5 and the deviation sqrt((2.25 + 3 * 0.25) / 4) = sqrt(3) / 2.
    const SignalData data =
        readSamples(words({16383, 0, 16383, 0}), words({8192, 8192, 8192, 8192}));
    QVERIFY(qAbs(data.magnitude[0] - std::sqrt(3.0)) < 1e-15);
    for (int i = 1; i < 4; ++i) {
        QVERIFY(qAbs(data.magnitude[i] + std::sqrt(1.0 / 3.0)) < 1e-15);
    }
}

void TestSignalInput::phasesArePartsOfAHalfTurn()
{
    // (1 + j) at sample 0 alone: every line has (1 + j) / 2, an angle of pi / 4.
    const QByteArray impulse = words({16383, 8192, 8192, 8192});
    const SignalData data = readSamples(impulse, impulse);
    for (const double phase : data.phase) {
        QVERIFY(qAbs(phase - 0.25) < 1e-15);
    }
    // (1 - j): the sign of the quotient.
    const SignalData other = readSamples(impulse, words({0, 8192, 8192, 8192}));
    for (const double phase : other.phase) {
        QVERIFY(qAbs(phase + 0.25) < 1e-15);
    }
}

void TestSignalInput::topBitsAreDropped()
{
    const QByteArray plain = words({0, 8000, 123, 16383, 1, 2, 3, 4});
    const QByteArray marked =
        words({0xC000, 0x8000 + 8000, 0x4000 + 123, 0xC000 + 16383, 0x4001, 0x8002, 3, 0xC004});
    const SignalData a = readSamples(plain, plain);
    const SignalData b = readSamples(marked, marked);
    QCOMPARE(a.length, 8);
    QCOMPARE(a.iSamples, b.iSamples);
    // The mean of the samples stands at bin 0, times sqrt(8): (-1 - 192/8192 - 8069/8192 + 1
    // - 8191/8192 - 8190/8192 - 8189/8192 - 8188/8192) / sqrt(8).
    QVERIFY(qAbs(a.iSamples[0] + (41019.0 / 8192.0) / std::sqrt(8.0)) < 1e-14);
}

void TestSignalInput::largestPowerOfTwoOfWordsIsUsed()
{
    const QByteArray bytes(1000000, '\x21');
    QCOMPARE(readSamples(bytes, bytes).length, 262144);
    const QByteArray odd(17, '\x21');
    QCOMPARE(readSamples(odd, odd).length, 8);
}

void TestSignalInput::headerWordsAreSamples()
{
    // 44 bytes of header and 2 * 32 of samples: 32 words are used, the first 22 of the header.
    QByteArray bytes = QByteArray("RIFF") + QByteArray(40, '\x20') + QByteArray(64, '\x10');
    const SignalData data = readSamples(bytes, bytes);
    QCOMPARE(data.length, 32);
    bytes.replace(44 + 20, 44, QByteArray(44, '\x7f')); // the last 22 words are cut off
    QCOMPARE(readSamples(bytes, bytes).iSamples, data.iSamples);
    bytes[0] = 'X';
    QVERIFY(readSamples(bytes, bytes).iSamples != data.iSamples);
}

void TestSignalInput::filesOfUnequalSizeAreAFailedRead()
{
    QCOMPARE(readSamples(words({1, 2, 3, 4}), words({1, 2, 3})).length, 0);
}

void TestSignalInput::filesWithoutAWordGiveOneLine()
{
    for (const QByteArray& bytes : {QByteArray(), QByteArray("x")}) {
        const SignalData data = readSamples(bytes, bytes);
        QCOMPARE(data.length, 1);
        QCOMPARE(data.iSamples, (QVector<double>{-1.0})); // a missing word counts as 0
        QCOMPARE(data.magnitude.size(), 1);
    }
}

QTEST_GUILESS_MAIN(TestSignalInput)
#include "test_signal_input.moc"
