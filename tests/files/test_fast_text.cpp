// The fast ways of text and words against the plain ones, over random and awkward texts and values.
#include "files/decimal_text.h"
#include "files/extremes.h"
#include "files/fixed_decimals.h"
#include "files/plain_lines.h"
#include "files/reference_files.h"
#include "files/signal_input.h"
#include "files/waveform_output.h"
#include "kit/file_content.h"
#include "kit/instrumented.h"

#include <QTemporaryDir>
#include <QtTest>

#include <cstring>
#include <limits>
#include <random>

namespace {

QByteArray fixedDecimals(double value)
{
    char text[longestFixedDecimals];
    return {text, static_cast<int>(putFixedDecimals(value, text) - text)};
}

bool sameBits(double a, double b)
{
    quint64 bits[2];
    std::memcpy(&bits[0], &a, sizeof(a));
    std::memcpy(&bits[1], &b, sizeof(b));
    return bits[0] == bits[1];
}

SignalData noise(int count)
{
    std::mt19937 engine(5);
    std::normal_distribution<double> sample;
    SignalData signal(static_cast<quint32>(count));
    for (int i = 0; i < count; ++i) {
        signal.iSamples[i] = sample(engine);
        signal.qSamples[i] = i % 1000 == 0 ? -0.0 : sample(engine);
    }
    return signal;
}

// The shortest of some runs, in ns.
template <class Work> qint64 leastTime(Work work)
{
    qint64 least = std::numeric_limits<qint64>::max();
    for (int run = 0; run < 5; ++run) {
        QElapsedTimer timer;
        timer.start();
        work();
        least = std::min(least, timer.nsecsElapsed());
    }
    return least;
}

struct Span
{
    double lowest;
    double highest;

    double width() const { return highest - lowest; }
    double peak() const { return std::max(std::abs(lowest), std::abs(highest)); }
};

// One sample after the other, from the first on.
Span spanOf(const QVector<double>& samples)
{
    Span span{samples[0], samples[0]};
    for (const double sample : samples) {
        if (sample < span.lowest) {
            span.lowest = sample;
        }
        if (sample > span.highest) {
            span.highest = sample;
        }
    }
    return span;
}

// A field as a person, a program or an accident might write it.
class Texts
{
public:
    explicit Texts(quint32 seed) : engine(seed) {}

    int below(int limit) { return static_cast<int>(engine() % static_cast<quint32>(limit)); }

    QByteArray number()
    {
        const double value = std::uniform_real_distribution<double>(-4.0, 4.0)(engine) *
                             std::pow(10.0, below(4) == 0 ? below(600) - 300 : 0);
        const char formats[] = {'g', 'e', 'f'};
        const char format = formats[below(3)];
        return QByteArray::number(value, format, below(format == 'f' ? 12 : 19));
    }

    QByteArray oddField()
    {
        static const QList<QByteArray> fields = {"",
                                                 "-",
                                                 "+1",
                                                 "1.",
                                                 ".5",
                                                 "-.5",
                                                 "1e5",
                                                 "1E5",
                                                 "1e+5",
                                                 "1e",
                                                 "1.e3",
                                                 "0x10",
                                                 "007",
                                                 "-0",
                                                 "-0.0",
                                                 "0",
                                                 "0.000",
                                                 "0e7",
                                                 "1e-320",
                                                 "1e400",
                                                 "nan",
                                                 "inf",
                                                 "-inf",
                                                 "NaN",
                                                 "1,5",
                                                 "1,000",
                                                 "1_0",
                                                 "1.5f",
                                                 "--1",
                                                 "1e-400",
                                                 "\t3",
                                                 "3\t",
                                                 "1.5.2",
                                                 "2147483648",
                                                 "999999999",
                                                 "1000000000",
                                                 "4.9e-324",
                                                 "1e308",
                                                 "1e309",
                                                 "0.1e1e1",
                                                 "123456789012345678901234567890",
                                                 "1\v",
                                                 "\f2",
                                                 "9007199254740993",
                                                 "0.30000000000000004",
                                                 "2.2250738585072011e-308",
                                                 "1.7976931348623157e308"};
        return fields.at(below(fields.size()));
    }

    QByteArray field() { return below(5) == 0 ? oddField() : number(); }

    QByteArray line()
    {
        static const QList<QByteArray> ends = {"\n", "\n", "\n", "\r\n", " \n", "\r\r\n", "\n\n"};
        static const QList<QByteArray> begins = {"", "", "", " ", "\t", "\r"};
        QByteArray text = begins.at(below(begins.size()));
        text += below(8) == 0 ? oddField() : QByteArray::number(below(72) - 4);
        for (int more = below(12) == 0 ? below(5) : 2; more > 0; --more) {
            text += (below(30) == 0 ? "  " : " ") + field();
        }
        return text + ends.at(below(ends.size()));
    }

    QByteArray file(int lines)
    {
        QByteArray text = "64\n";
        for (int i = 0; i < lines; ++i) {
            text += line();
        }
        return text;
    }

private:
    std::mt19937 engine;
};

} // namespace

class TestFastText : public QObject
{
    Q_OBJECT

private slots:
    void decimalsAreThoseOfQt_data();
    void decimalsAreThoseOfQt();
    void randomDecimalsAreThoseOfQt();
    void textFilesHaveTheBytesOfThePlainLoop();
    void wordFilesHaveTheBytesOfThePlainLoop();
    void extremesAreThoseOfThePlainLoop();
    void randomTextsGiveTheValuesOfThePlainReader();
    void textsThatAreNotPlainGiveTheValuesOfThePlainReader_data();
    void textsThatAreNotPlainGiveTheValuesOfThePlainReader();
    void longFilesGiveTheValuesOfThePlainReader();
    void commonNumbersAreSure_data();
    void commonNumbersAreSure();
    void oddNumbersAreLeftToQt_data();
    void oddNumbersAreLeftToQt();
    void plainTextComesAsItsLines();
    void textThatIsNotPlainEndsTheLines();
    void readingTakesAPartOfThePlainReadersTime();
    void writingTakesAPartOfThePlainLoopsTime();

private:
    QByteArray contents(const QString& name) const { return contentOf(folder.filePath(name)); }

    void compareReaders(const QByteArray& text)
    {
        const QString path = folder.filePath("a.pmc");
        putContent(path, text);
        const SignalData expected = reference::readMagnitudePhase(path);
        const SignalData data = loadMagnitudePhaseFile(path);
        QCOMPARE(data.length, expected.length);
        for (int i = 0; i < data.length; ++i) {
            const double values[] = {data.phase[i], data.magnitude[i]};
            const double plain[] = {expected.phase[i], expected.magnitude[i]};
            QVERIFY2(sameBits(values[0], plain[0]) && sameBits(values[1], plain[1]),
                     qPrintable(QString("index %1: %2 %3, expected %4 %5")
                                    .arg(i)
                                    .arg(values[0])
                                    .arg(values[1])
                                    .arg(plain[0])
                                    .arg(plain[1])));
        }
    }

    QTemporaryDir folder;
};

void TestFastText::decimalsAreThoseOfQt_data()
{
    QTest::addColumn<double>("value");
    const double values[] = {0.0,
                             1.0,
                             2.5,
                             9.9999995,
                             9.9999994999,
                             0.0078125,
                             0.0234375,
                             5e-7,
                             4.9999999e-7,
                             5.0000001e-7,
                             1e-6,
                             1.5e-6,
                             2.5e-6,
                             0.5,
                             999.9999995,
                             999.9999994,
                             999.9999996,
                             1000.0,
                             1234567.890123,
                             1e15,
                             1e22,
                             1e300,
                             2.4999995,
                             0.1234565,
                             1e-300,
                             std::numeric_limits<double>::denorm_min(),
                             std::numeric_limits<double>::max(),
                             std::numeric_limits<double>::infinity(),
                             std::numeric_limits<double>::quiet_NaN()};
    for (const double value : values) {
        QTest::addRow("%.17g", value) << value;
        QTest::addRow("minus %.17g", value) << -value;
    }
}

void TestFastText::decimalsAreThoseOfQt()
{
    QFETCH(double, value);
    QCOMPARE(fixedDecimals(value), QString::number(value, 'f', 6).toLatin1());
}

void TestFastText::randomDecimalsAreThoseOfQt()
{
    std::mt19937_64 engine(11);
    std::uniform_real_distribution<double> sample(-2.5, 2.5);
    for (int i = 0; i < 100000; ++i) {
        // Every third lies close to a middle between two texts, or on it.
        const double middle = (double(engine() % 5000000) + 0.5) * 1e-6;
        const double value = i % 3 != 0 ? sample(engine) : std::nextafter(middle, sample(engine));
        QCOMPARE(fixedDecimals(value), QString::number(value, 'f', 6).toLatin1());
    }
    for (int sixteenths = -160000; sixteenths < 160000; sixteenths += 7) {
        const double value = sixteenths / 8192.0; // some are exact middles
        QCOMPARE(fixedDecimals(value), QString::number(value, 'f', 6).toLatin1());
    }
}

void TestFastText::textFilesHaveTheBytesOfThePlainLoop()
{
    const SignalData signal = noise(100000);
    const double peak = std::max(spanOf(signal.iSamples).peak(), spanOf(signal.qSamples).peak());
    writeIQTextFiles(signal, folder.filePath("fast"));
    reference::writeText(folder.filePath("plain.i"), signal.iSamples, 2.5 / peak);
    reference::writeText(folder.filePath("plain.q"), signal.qSamples, 2.5 / peak);
    QVERIFY(contents("fast.i") == contents("plain.i"));
    QVERIFY(contents("fast.q") == contents("plain.q"));
}

// The last of several pieces is a short one.
void TestFastText::wordFilesHaveTheBytesOfThePlainLoop()
{
    const SignalData signal = noise(400001);
    writeIQWaveFiles(signal, folder.filePath("fast"), 1);
    const double spanI = spanOf(signal.iSamples).width();
    const double spanQ = spanOf(signal.qSamples).width();
    const double positive = std::min(8191.0 / spanI, 8191.0 / spanQ);
    const double negative = std::min(8192.0 / spanI, 8192.0 / spanQ);
    QVERIFY(contents("fast.i.wav").mid(44) ==
            reference::wavWords(signal.iSamples, positive, negative));
    QVERIFY(contents("fast.q.wav").mid(44) ==
            reference::wavWords(signal.qSamples, positive, negative));
    writeWvFile(signal, folder.filePath("fast"), 1);
    const QByteArray wv = contents("fast.wv");
    QVERIFY(wv.mid(wv.indexOf('#') + 1) == reference::wvWords(signal) + '}');
}

void TestFastText::extremesAreThoseOfThePlainLoop()
{
    std::mt19937 engine(9);
    const double odd[] = {0.0,
                          -0.0,
                          1.0,
                          -1.0,
                          std::numeric_limits<double>::quiet_NaN(),
                          std::numeric_limits<double>::infinity()};
    for (int count = 1; count < 300; ++count) {
        QVector<double> samples(count);
        for (double& sample : samples) {
            sample = odd[engine() % (count % 2 == 0 ? 2 : 6)];
        }
        const Span plain = spanOf(samples);
        const Extremes fast = extremesOf(samples.constData(), count, {samples[0], samples[0]});
        QVERIFY(sameBits(fast.smallest, plain.lowest));
        QVERIFY(sameBits(fast.largest, plain.highest));
    }
}

void TestFastText::randomTextsGiveTheValuesOfThePlainReader()
{
    for (quint32 seed = 0; seed < 400; ++seed) {
        compareReaders(Texts(seed).file(100));
        if (QTest::currentTestFailed()) {
            return;
        }
    }
}

void TestFastText::textsThatAreNotPlainGiveTheValuesOfThePlainReader_data()
{
    QTest::addColumn<QByteArray>("text");
    const QByteArray plain = "4\n1 0.5 2.5\n";
    QTest::newRow("empty") << QByteArray();
    QTest::newRow("only a line feed") << QByteArray("\n");
    QTest::newRow("no last line feed") << QByteArray("4\n1 0.5 2.5");
    QTest::newRow("byte order mark of UTF-8") << QByteArray("\xEF\xBB\xBF") + plain;
    QTest::newRow("UTF-16") << QByteArray::fromHex(
        "fffe34000a00310020003200200033000a00"); // "4", "1 2 3"
    QTest::newRow("no-break blank") << QByteArray("4\n1\xC2\xA0 0.5 2.5\n2 0.5 3.5\xC2\xA0\n");
    QTest::newRow("other digits") << QByteArray("4\n1 \xD9\xA1 2.5\n");
    QTest::newRow("broken encoding") << QByteArray("4\n1 0.5\xFF 2.5\n2 0.5 2.5\n");
    QTest::newRow("zero byte") << QByteArray("4\n1 0.5 2.5\n2 0\0.5 1\n3 1 1\n", 28);
    QTest::newRow("odd byte far behind") << plain + QByteArray(9 << 20, ' ') + "\n2 1 1\n\x80\n";
    QTest::newRow("twenty digits") << QByteArray("4\n1 18446744073709551617 0.5\n"
                                                 "2 -36893488147419103233 1844674407370955.1617\n"
                                                 "18446744073709551617 3 3\n");
    QTest::newRow("colons") << QByteArray("4\n1:0 1 1\n2 1: 3\n3 1.: 0.:5\n: 5 5\n1 1 2:\n");
    QTest::newRow("lone carriage returns") << QByteArray("4\r\n1 0.5 2.5\r2 1 1\n");
}

void TestFastText::textsThatAreNotPlainGiveTheValuesOfThePlainReader()
{
    QFETCH(QByteArray, text);
    compareReaders(text);
}

// Several pieces of the file, so that lines lie across their borders.
void TestFastText::longFilesGiveTheValuesOfThePlainReader()
{
    compareReaders(Texts(1000).file(300000));
}

void TestFastText::commonNumbersAreSure_data()
{
    QTest::addColumn<QByteArray>("text");
    QTest::addColumn<double>("expected");
    QTest::newRow("whole") << QByteArray("42") << 42.0;
    QTest::newRow("zero") << QByteArray("0") << 0.0;
    QTest::newRow("decimals") << QByteArray("-0.125") << -0.125;
    QTest::newRow("all digits of a double") << QByteArray("0.30000000000000004") << 0.1 + 0.2;
    QTest::newRow("largest exact") << QByteArray("9007199254740991") << 9007199254740991.0;
    QTest::newRow("exponent") << QByteArray("-2.5e-07") << -2.5e-7;
    QTest::newRow("capital exponent") << QByteArray("1E5") << 1e5;
}

void TestFastText::commonNumbersAreSure()
{
    QFETCH(QByteArray, text);
    QFETCH(double, expected);
    const QByteArray line = text + " 7";
    TextRange rest{line.constData(), line.constData() + line.size()};
    double value = 0.0;
#ifndef __cpp_lib_to_chars
    if (text.size() > 16 || text.toUpper().contains('E')) {
        QSKIP("this library leaves such numbers to Qt");
    }
#endif
    QVERIFY(takeSureDouble(rest, value));
    QCOMPARE(value, expected);
    QCOMPARE(QByteArray(rest.begin), QByteArray(" 7"));
}

void TestFastText::oddNumbersAreLeftToQt_data()
{
    QTest::addColumn<QByteArray>("text");
    for (const char* text : {"", "-", "+1", ".5", "1.", "x", "-0", "-0.0", "1e-300", "1e300"}) {
        QTest::newRow(text) << QByteArray(text);
    }
}

void TestFastText::oddNumbersAreLeftToQt()
{
    QFETCH(QByteArray, text);
    TextRange rest{text.constData(), text.constData() + text.size()};
    double value = 0.0;
    QVERIFY(!takeSureDouble(rest, value));
}

void TestFastText::plainTextComesAsItsLines()
{
    QFile file(folder.filePath("plain"));
    QVERIFY(file.open(QIODevice::ReadWrite));
    file.write("one ~\r\n\t2\n\nlast");
    file.seek(0);
    PlainLines pieces(file);
    TextRange lines{};
    QByteArrayList found;
    while (pieces.next(lines)) {
        while (lines.size() > 0) {
            const TextRange line = takeLine(lines);
            found << QByteArray(line.begin, static_cast<int>(line.size()));
        }
    }
    QCOMPARE(found, (QByteArrayList{"one ~\r", "\t2", "", "last"}));
    QVERIFY(pieces.isPlain());
}

void TestFastText::textThatIsNotPlainEndsTheLines()
{
    for (const char odd : {'\0', '\x08', '\x0E', '\x1F', '\x7F', '\x80', '\xFF'}) {
        QFile file(folder.filePath("odd"));
        QVERIFY(file.open(QIODevice::ReadWrite | QIODevice::Truncate));
        file.write(QByteArray("1\n2") + odd + "\n");
        file.seek(0);
        PlainLines pieces(file);
        TextRange lines{};
        QVERIFY(!pieces.next(lines));
        QVERIFY2(!pieces.isPlain(), QByteArray::number(odd));
    }
}

void TestFastText::readingTakesAPartOfThePlainReadersTime()
{
    if (isInstrumented || !isOptimised) {
        QSKIP("our code is slowed down, and not that of Qt");
    }
    const QString path = folder.filePath("long.pmc");
    QByteArray text = "200000\n";
    for (int line = 0; line < 200000; ++line) {
        text += QByteArray::number(line) + " -0.39269908169872414 1.4142135623730951\n";
    }
    putContent(path, text);
    const qint64 plain = leastTime([&] { reference::readMagnitudePhase(path); });
    const qint64 fast = leastTime([&] { loadMagnitudePhaseFile(path); });
    QVERIFY2(fast < plain / 2, qPrintable(QString("%1 of %2 ns").arg(fast).arg(plain)));
}

void TestFastText::writingTakesAPartOfThePlainLoopsTime()
{
    if (isInstrumented || !isOptimised) {
        QSKIP("our code is slowed down, and not that of Qt");
    }
    const SignalData signal = noise(200000);
    const qint64 plain = leastTime([&] {
        reference::writeText(folder.filePath("p.i"), signal.iSamples, 0.5);
        reference::writeText(folder.filePath("p.q"), signal.qSamples, 0.5);
    });
    const qint64 fast = leastTime([&] { writeIQTextFiles(signal, folder.filePath("f")); });
    QVERIFY2(fast < plain / 2, qPrintable(QString("%1 of %2 ns").arg(fast).arg(plain)));
}

QTEST_APPLESS_MAIN(TestFastText)
#include "test_fast_text.moc"
