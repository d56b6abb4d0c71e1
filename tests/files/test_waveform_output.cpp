// The three waveform forms, byte for byte against files worked out by hand.
#include "files/sample_words.h"
#include "files/waveform_output.h"
#include "kit/file_content.h"

#include <QDateTime>
#include <QTemporaryDir>
#include <QtTest>

#include <limits>

namespace {

SignalData signalOf(const QVector<double>& i, const QVector<double>& q)
{
    SignalData signal(static_cast<quint32>(i.size()));
    signal.iSamples = i;
    signal.qSamples = q;
    return signal;
}

} // namespace

class TestWaveformOutput : public QObject
{
    Q_OBJECT

private slots:
    void init() { folder = std::make_unique<QTemporaryDir>(); }
    void textFormScalesTheLargestPeakToTwoAndAHalf();
    void textFormOfZeroIsNotANumber();
    void wavFormHasItsHeaderAndUsesTheWiderSpan_data();
    void wavFormHasItsHeaderAndUsesTheWiderSpan();
    void wavFormTellsItsSizesInTheLog();
    void wavFormKeepsTheLowBitsOfHugeSamples();
    void wavFormOfAConstantSignalHasUndefinedSamplesButItsSize();
    void wvFormHasItsTagsAndFullScale();
    void wvFormRoundsNegativeValuesUp();
    void wvHeaderOfTheNewYearIsNotPadded();
    void wvHeaderNamesRmsLengthAndClock();
    void endingChoosesTheForm_data();
    void endingChoosesTheForm();
    void fileThatCannotBeOpenedEndsSilently();
    void shortVectorsAreNotReadBeyond();
    void wordsAreTheLowBitsOfTheTruncatedValue_data();
    void wordsAreTheLowBitsOfTheTruncatedValue();
    void longSignalsAreWrittenWhole();

private:
    QString base() const { return folder->filePath("wave"); }
    QByteArray read(const QString& suffix) const { return contentOf(base() + suffix); }

    std::unique_ptr<QTemporaryDir> folder;
};

void TestWaveformOutput::textFormScalesTheLargestPeakToTwoAndAHalf()
{
    writeIQTextFiles(signalOf({1.0, -0.5, 0.0}, {0.25, -2.0, 1.0}), base()); // factor 1.25
    QCOMPARE(read(".i"), QByteArray("1.250000\n-0.625000\n0.000000\n"));
    QCOMPARE(read(".q"), QByteArray("0.312500\n-2.500000\n1.250000\n"));
}

void TestWaveformOutput::textFormOfZeroIsNotANumber()
{
    writeIQTextFiles(signalOf({0.0}, {0.0}), base());
    QVERIFY(read(".i").contains("nan"));
}

void TestWaveformOutput::wavFormHasItsHeaderAndUsesTheWiderSpan_data()
{
    QTest::addColumn<QVector<double>>("i");
    QTest::addColumn<QVector<double>>("q");
    QTest::addColumn<QByteArray>("iWords");
    QTest::addColumn<QByteArray>("qWords");
    // Spans 2 and 4: the factors are 8191/4 = 2047.75 and 8192/4 = 2048.
    const QVector<double> narrow{1.0, -1.0};
    const QVector<double> wide{3.0, -1.0};
    const QByteArray narrowWords = QByteArray::fromHex("ff07 00f8"); // 2047, -2048
    const QByteArray wideWords = QByteArray::fromHex("ff17 00f8");   // 6143, -2048
    QTest::newRow("of I") << wide << narrow << wideWords << narrowWords;
    QTest::newRow("of Q") << narrow << wide << narrowWords << wideWords;
}

void TestWaveformOutput::wavFormHasItsHeaderAndUsesTheWiderSpan()
{
    QFETCH(QVector<double>, i);
    QFETCH(QVector<double>, q);
    writeIQWaveFiles(signalOf(i, q), base(), 100000000);
    // 8 * 2 + 36 = 52, PCM, 1 channel, 100 MHz, 400 MHz, 4, 16 bits, 16 bytes of data.
    const QByteArray header =
        QByteArray("RIFF") + QByteArray::fromHex("34000000") + "WAVEfmt " +
        QByteArray::fromHex("10000000 0100 0100 00e1f505 0084d717 0400 1000") + "data" +
        QByteArray::fromHex("10000000");
    QCOMPARE(header.size(), 44);
    QFETCH(QByteArray, iWords);
    QFETCH(QByteArray, qWords);
    QCOMPARE(read(".i.wav"), header + iWords);
    QCOMPARE(read(".q.wav"), header + qWords);
}

void TestWaveformOutput::wavFormTellsItsSizesInTheLog()
{
    QTest::ignoreMessage(QtDebugMsg, "I File Size: 50"); // fails without it
    QTest::ignoreMessage(QtDebugMsg, "Q File Size: 50");
    writeIQWaveFiles(signalOf({1.0, 2.0, 3.0}, {1.0, 2.0, 3.0}), base(), 1);
}

void TestWaveformOutput::wavFormKeepsTheLowBitsOfHugeSamples()
{
    // Spans of 1: 8191 * 1000000 = 124984 * 65536 + 48576, and 8192 * 1000000 = 125000 * 65536.
    writeIQWaveFiles(signalOf({1000000.0, 1000001.0}, {-1000001.0, -1000000.0}), base(), 1);
    QCOMPARE(read(".i.wav").mid(44), QByteArray::fromHex("c0bd bfdd")); // 48576, 48576 + 8191
    QCOMPARE(read(".q.wav").mid(44), QByteArray::fromHex("00e0 0000")); // -8192, 0
}

void TestWaveformOutput::wavFormOfAConstantSignalHasUndefinedSamplesButItsSize()
{
    writeIQWaveFiles(signalOf({1.0, 1.0}, {1.0, 1.0}), base(), 1);
    QCOMPARE(read(".i.wav").size(), 48);
    QCOMPARE(read(".i.wav").mid(44), QByteArray(4, '\0')); // the low bits of an infinite value
    writeIQWaveFiles(signalOf({1.0}, {1.0}), base(), 1);
    QCOMPARE(read(".i.wav").size(), 46);
}

void TestWaveformOutput::wvFormHasItsTagsAndFullScale()
{
    writeWvFile(signalOf({3.0, 0.0}, {4.0, -5.0}), base(), 100000000); // scale 32767/5
    const QByteArray bytes = read(".wv");
    const int data = bytes.indexOf('#') + 1;
    QVERIFY(bytes.startsWith("{TYPE:PHD-WV,0}{COPYRIGHT:"));
    QVERIFY(bytes.left(data).endsWith("{LEVEL OFFS:5.000,0.000}{SAMPLES:2}             "
                                      "{CLOCK:100000000}{WAVEFORM-9:#"));
    // 3 * 6553.4 = 19660.2, 4 * 6553.4 = 26213.6, 0, -32767 + 0.5 truncated to -32766.
    QCOMPARE(bytes.mid(data), QByteArray::fromHex("cc4c 6666 0000 0280") + "}");
}

void TestWaveformOutput::wvFormRoundsNegativeValuesUp()
{
    // Scale 1: the words are the samples plus a half, truncated.
    writeWvFile(signalOf({-1.7, -1.2, 1.7, 32767.0}, {1.4, 1.5, -0.4, 0.0}), base(), 1);
    const QByteArray bytes = read(".wv");
    QCOMPARE(bytes.mid(bytes.indexOf('#') + 1),
             QByteArray::fromHex("ffff 0100 0000 0200 0200 0000 ff7f 0000") + "}");
}

void TestWaveformOutput::wvHeaderOfTheNewYearIsNotPadded()
{
    const QDateTime now(QDate(2027, 1, 1), QTime(0, 0, 1));
    QVERIFY(wvHeader(now, 1.0, 64, 1).contains("{DATE:2027-1-1;0:0:1}"));
}

void TestWaveformOutput::wvHeaderNamesRmsLengthAndClock()
{
    const QDateTime now(QDate(2026, 3, 5), QTime(7, 4, 9));
    QCOMPARE(wvHeader(now, 0.7071, 131072, 100000000),
             QByteArray("{TYPE:PHD-WV,0}{COPYRIGHT:2026 Kelmar&Ostrin PHD}             "
                        "{DATE:2026-3-5;7:4:9}{LEVEL OFFS:0.707,0.000}{SAMPLES:131072}             "
                        "{CLOCK:100000000}{WAVEFORM-524289:#"));
}

void TestWaveformOutput::endingChoosesTheForm_data()
{
    QTest::addColumn<QString>("ending");
    QTest::addColumn<QStringList>("files");
    const QStringList text{"wave.i", "wave.q"};
    const QStringList wav{"wave.i.wav", "wave.q.wav"};
    QTest::newRow(".i") << ".i" << text;
    QTest::newRow(".Q") << ".Q" << text;
    QTest::newRow(".i.wav") << ".i.wav" << wav;
    QTest::newRow(".Q.WAV") << ".Q.WAV" << wav;
    QTest::newRow(".wv") << ".wv" << QStringList{"wave.wv"};
    QTest::newRow(".WV") << ".WV" << QStringList{"wave.wv"};
    QTest::newRow(".wav") << ".wav" << QStringList();
    QTest::newRow(".txt") << ".txt" << QStringList();
    QTest::newRow("none") << "" << QStringList();
}

void TestWaveformOutput::endingChoosesTheForm()
{
    QFETCH(QString, ending);
    QFETCH(QStringList, files);
    const bool isSaved = saveWaveform(base() + ending, signalOf({1.0, -1.0}, {0.5, 0.0}), 1e8);
    QCOMPARE(isSaved, !files.isEmpty());
    QCOMPARE(QDir(folder->path()).entryList(QDir::Files, QDir::Name), files);
}

void TestWaveformOutput::fileThatCannotBeOpenedEndsSilently()
{
    const SignalData signal = signalOf({1.0}, {1.0});
    for (const char* ending : {".i", ".i.wav", ".wv"}) {
        QVERIFY(!saveWaveform(folder->filePath("missing/wave") + ending, signal, 1e8));
    }
    // The second of two files is in the way.
    QVERIFY(QDir(folder->path()).mkdir("wave.q"));
    QVERIFY(!saveWaveform(base() + ".i", signal, 1e8));
    QCOMPARE(read(".i"), QByteArray("no file"));
    QVERIFY(QDir(folder->path()).mkdir("wave.q.wav"));
    QVERIFY(!saveWaveform(base() + ".i.wav", signal, 1e8));
    QCOMPARE(read(".i.wav"), QByteArray("no file"));
    QVERIFY(!saveWaveform(QString(), signal, 1e8));
}

void TestWaveformOutput::shortVectorsAreNotReadBeyond()
{
    SignalData signal = signalOf({1.0, 2.0, 3.0}, {1.0});
    writeWvFile(signal, base(), 1);
    writeIQWaveFiles(signal, base(), 1);
    writeIQTextFiles(signal, base());
    QVERIFY(read(".wv").endsWith('}'));
}

void TestWaveformOutput::wordsAreTheLowBitsOfTheTruncatedValue_data()
{
    QTest::addColumn<double>("value");
    QTest::addColumn<int>("word");
    QTest::newRow("1.9") << 1.9 << 1;
    QTest::newRow("-1.9") << -1.9 << 0xFFFF;
    QTest::newRow("65537") << 65537.0 << 1;
    QTest::newRow("beyond 2^31") << 2147483655.0 << 7;
    QTest::newRow("below -2^31") << -2147483657.0 << 0xFFF7;
    QTest::newRow("beyond 32 bits") << 4294967296.0 * 4 + 7 << 7;
    QTest::newRow("beyond 64 bits") << 1e30 << 0;
    QTest::newRow("infinite") << -std::numeric_limits<double>::infinity() << 0;
    QTest::newRow("not a number") << std::numeric_limits<double>::quiet_NaN() << 0;
}

void TestWaveformOutput::wordsAreTheLowBitsOfTheTruncatedValue()
{
    QFETCH(double, value);
    QFETCH(int, word);
    QCOMPARE(int{truncatedWord(value)}, word);
    // The same among others, which may all be converted at once.
    const double values[] = {1.0, value, -2.0};
    QByteArray words(6, '\0');
    truncateToWords(values, 3, words.data());
    const char bytes[] = {1,
                          0,
                          static_cast<char>(word & 0xFF),
                          static_cast<char>(word >> 8),
                          static_cast<char>(0xFE),
                          static_cast<char>(0xFF)};
    QCOMPARE(words, QByteArray(bytes, 6));
}

void TestWaveformOutput::longSignalsAreWrittenWhole()
{
    constexpr int count = 400001; // more than one piece of the buffer, and not a whole number
    QVector<double> i(count);
    for (int k = 0; k < count; ++k) {
        i[k] = k % 2 == 0 ? 1.0 : -1.0;
    }
    writeIQWaveFiles(signalOf(i, i), base(), 1); // spans of 2: 4095 and -4096
    const QByteArray bytes = read(".i.wav");
    QCOMPARE(bytes.size(), 44 + 2 * count);
    for (int k = 0; k < count; ++k) {
        QCOMPARE(bytes.mid(44 + 2 * k, 2), QByteArray::fromHex(k % 2 == 0 ? "ff0f" : "00f0"));
    }
}

QTEST_GUILESS_MAIN(TestWaveformOutput)
#include "test_waveform_output.moc"
