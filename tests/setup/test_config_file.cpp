// The configuration file, byte for byte and with everything that comes back changed.
#include "setup/config_file.h"

#include "kit/file_content.h"
#include "kit/instrumented.h"
#include "kit/process_memory.h"
#include "kit/system_limits.h"
#include "setup/config_text.h"

#include <QTemporaryDir>
#include <QtTest>

namespace {

const char defaultText[] = R"([NPR]
SRate = 1e+08
NBW/SRate = 1
FFT Len = 131072
Notch Count = 0
Notch Width = 1e+07
Notch Offset = 1e+07
Notch Depth = -100
Notch/Carrier = 0
Phase Mode = 0
Custom = 0
Seed = 1

[TCP/IP]
Port = 1000

[Display]
Sinus(x)/x = 0

[Notch 1]
fcenter = 5e+06
fspan = 1e+06
fstart = 4.5e+06
fstop = 5.5e+06
Start = 5898
Stop = 7208
Notch Depth = -100

[User]
PhaseMag File = ""
I File = ""
Q File = ""

[Generator1]
Device = 0
Interface = 4
GPIB Addr = 20
IP Addr = "127.0.0.1"
RS232 Port = 0
RS232 BaudRate = 9600
RS232 DataBits = 8
RS232 Parity = 0
RS232 StopBits = 1
RS232 FlowControl = 0
Frequency = 0
Level = -20

[Analyzer]
Device = 0
Interface = 4
GPIB Addr = 20
IP Addr = "127.0.0.1"
RS232 Port = 0
RS232 BaudRate = 9600
RS232 DataBits = 8
RS232 Parity = 0
RS232 StopBits = 1
RS232 FlowControl = 0
Frequency = 0
Span = 100000
Level = -20
Atten = 10
AUTO Atten = 1
Res BW = 30000
Video BW = 300000
Sweeptime = 2
AUTO Swt = 1

[Generator2]
Device = 0
Interface = 4
GPIB Addr = 20
IP Addr = "127.0.0.1"
RS232 Port = 0
RS232 BaudRate = 9600
RS232 DataBits = 8
RS232 Parity = 0
RS232 StopBits = 1
RS232 FlowControl = 0
Frequency = 0
Level = -20
Atten = 0
IF Input = 1

)";

// No value is that of a new record, and no two instruments have one in common.
const char otherText[] = R"([NPR]
SRate = 6.144e+07
NBW/SRate = 0.75
FFT Len = 64
Notch Count = 7
Notch Width = 1e+06
Notch Offset = -2e+06
Notch Depth = -40.5
Notch/Carrier = 1
Phase Mode = 2
Custom = 1
Seed = 4711

[TCP/IP]
Port = 5000

[Display]
Sinus(x)/x = 1

[Notch 1]
fcenter = -5e+06
fspan = 1e+06
fstart = -5.5e+06
fstop = -4.5e+06
Start = -6
Stop = -5
Notch Depth = -60

[User]
PhaseMag File = "/home/a b/c.pmc"
I File = "i.wav"
Q File = "q.wav"

[Generator1]
Device = 3
Interface = 2
GPIB Addr = 5
IP Addr = "10.0.0.1"
RS232 Port = 1
RS232 BaudRate = 19200
RS232 DataBits = 7
RS232 Parity = 2
RS232 StopBits = 2
RS232 FlowControl = 1
Frequency = 1e+09
Level = -7.5

[Analyzer]
Device = 1
Interface = 0
GPIB Addr = 6
IP Addr = "10.0.0.2"
RS232 Port = 2
RS232 BaudRate = 38400
RS232 DataBits = 6
RS232 Parity = 3
RS232 StopBits = 3
RS232 FlowControl = 2
Frequency = 2e+09
Span = 5e+06
Level = -3
Atten = 25
AUTO Atten = 0
Res BW = 50000
Video BW = 2000
Sweeptime = 0.5
AUTO Swt = 0

[Generator2]
Device = 2
Interface = 1
GPIB Addr = 7
IP Addr = "10.0.0.3"
RS232 Port = 3
RS232 BaudRate = 57600
RS232 DataBits = 5
RS232 Parity = 4
RS232 StopBits = 4
RS232 FlowControl = 3
Frequency = 3e+09
Level = -1
Atten = 15
IF Input = 0

)";

Notch notchOf(qint32 start, qint32 stop, double depth)
{
    Notch notch;
    notch.startIndex = start;
    notch.stopIndex = stop;
    notch.depth = depth;
    return notch;
}

// Settings of every kind that a file holds.
QVariantList valuesOf(const MeasurementSetup& setup)
{
    return {setup.sampleRate,
            setup.nbwSrate,
            setup.fftLengthIndex,
            setup.notchCount,
            setup.notchWidth,
            setup.notchOffset,
            setup.notchDepth,
            static_cast<int>(setup.notchOrCarrier),
            static_cast<int>(setup.phaseMode),
            static_cast<int>(setup.customSource),
            setup.seed,
            setup.tcpPort,
            setup.sinxCompensation,
            setup.iFile,
            setup.qFile,
            setup.generator.device,
            static_cast<int>(setup.generator.interfaceKind),
            setup.generator.frequency,
            setup.generator.level,
            setup.analyzer.ipAddress,
            setup.analyzer.span,
            setup.analyzer.rbwCode,
            setup.analyzer.autoAttenuation,
            setup.analyzer.autoSweepTime,
            setup.analyzer.sweepTime,
            setup.analyzer.attenuation,
            setup.microwave.device,
            setup.microwave.attenuation,
            setup.microwave.ifInput,
            setup.microwave.rs232Parity};
}

} // namespace

class TestConfigFile : public QObject
{
    Q_OBJECT

private slots:
    void aHugeFileCountsAsOneWithoutASection_data();
    void aHugeFileCountsAsOneWithoutASection();
    void init();
    void defaultsWithOneNotchAreWrittenLetterForLetter();
    void everySettingComesBack();
    void everyLineIsReadAndWrittenAgain();
    void doublesKeepSixDigits();
    void notchDepthComesBackAsAWholeNumber();
    void lengthBecomesTheRowAbove_data();
    void lengthBecomesTheRowAbove();
    void bandwidthsAreRoundedToTheirSeries();
    void automaticSweepTimeMayClearTheSweepTime();
    void numbersAreCutToTheirWidth();
    void anyNonZeroIsTrue();
    void barAsExponentSignGivesZero();
    void rowWithoutANameIsSavedAsItCame_data();
    void rowWithoutANameIsSavedAsItCame();
    void lineEndsOfEveryKindAreRead_data();
    void lineEndsOfEveryKindAreRead();
    void sectionNamedAfterANotchCounts();
    void rowsAreInsertedAtTheirNumberCountedFromZero();
    void theRowNumberedZeroStandsFirst();
    void aValueThatIsNotNamedStaysFromTheRowReadBefore();
    void valueThatTheFirstRowDoesNotNameIsZero();
    void unknownSectionsAndKeysAreIgnored();
    void aFileThatExistsHasItsLineInTheLog();
    void missingFileGivesDefaults();
    void anyBytesGiveARecord();
    void anEmptiedAddressComesBackAsTheLocalOne();
    void aSettingThatIsNoNumberEndsItsSection();
    void unwritablePlaceChangesNothing();
    void aSaveReplacesTheFormerFile();
    void diskThatFillsWithTheLastBytesLeavesTheFormerFile_data();
    void diskThatFillsWithTheLastBytesLeavesTheFormerFile();
    void defaultFileGetsItsFolders();

private:
    MeasurementSetup load(const QByteArray& text);
    QString path() const { return folder->filePath("test.cfg"); }

    std::unique_ptr<QTemporaryDir> folder;
};

void TestConfigFile::init()
{
    folder = std::make_unique<QTemporaryDir>();
}

MeasurementSetup TestConfigFile::load(const QByteArray& text)
{
    putContent(path(), text);
    return loadConfig(path());
}

void TestConfigFile::defaultsWithOneNotchAreWrittenLetterForLetter()
{
    MeasurementSetup setup;
    Notch notch = notchOf(5898, 7208, -100.0);
    notch.center = 5e6;
    notch.width = 1e6;
    notch.startFreq = 4.5e6;
    notch.stopFreq = 5.5e6;
    setup.notches->items.append(notch);
    saveConfig(setup, path());
    QCOMPARE(QString(contentOf(path())), QString(defaultText));
}

void TestConfigFile::everySettingComesBack()
{
    MeasurementSetup setup;
    setup.sampleRate = 61.44e6;
    setup.nbwSrate = 0.75;
    setup.fftLengthIndex = 16;
    setup.notchCount = 7;
    setup.notchWidth = 1e6;
    setup.notchOffset = -2e6;
    setup.notchDepth = -40.5;
    setup.notchOrCarrier = NotchOrCarrier::Carrier;
    setup.phaseMode = PhaseLaw::Parabolic;
    setup.customSource = SignalSource::MagnitudePhaseFile;
    setup.seed = 4711;
    setup.tcpPort = 5000;
    setup.sinxCompensation = true;
    setup.phaseMagFile = "/home/a b/ü.pmc";
    setup.iFile = "i.wav";
    setup.qFile = "with \"quotes\" inside";
    setup.generator.device = 3;
    setup.generator.interfaceKind = InterfaceKind::LanHislip;
    setup.generator.frequency = 1e9;
    setup.generator.level = -7.5;
    setup.analyzer.ipAddress = "10.1.2.3";
    setup.analyzer.span = 5e6;
    setup.analyzer.rbwCode = 20;
    setup.analyzer.autoAttenuation = false;
    setup.analyzer.autoSweepTime = false;
    setup.analyzer.sweepTime = 0.5;
    setup.analyzer.attenuation = 25;
    setup.microwave.device = 1;
    setup.microwave.attenuation = 15;
    setup.microwave.ifInput = false;
    setup.microwave.rs232Parity = 2;
    setup.notches->items.append(notchOf(-5, 5, -60.0));

    saveConfig(setup, path());
    const MeasurementSetup loaded = loadConfig(path());
    const QVariantList back = valuesOf(loaded);
    const QVariantList defaults = valuesOf(MeasurementSetup());
    QCOMPARE(back, valuesOf(setup));
    for (int k = 0; k < back.size(); ++k) {
        QVERIFY2(back.at(k) != defaults.at(k), qPrintable(QString::number(k)));
    }
    QCOMPARE(loaded.notches->items.size(), 1);
    QCOMPARE(loaded.notches->items.at(0).startIndex, -5);
    QCOMPARE(loaded.notches->items.at(0).depth, -60.0);
}

void TestConfigFile::everyLineIsReadAndWrittenAgain()
{
    QCOMPARE(configTextOf(load(otherText)), QString(otherText));
}

void TestConfigFile::doublesKeepSixDigits()
{
    MeasurementSetup setup;
    setup.sampleRate = 1234567890.0;
    saveConfig(setup, path());
    QCOMPARE(loadConfig(path()).sampleRate, 1.23457e9);
}

void TestConfigFile::notchDepthComesBackAsAWholeNumber()
{
    for (const auto& depths :
         {qMakePair(-40.0, -40.0), qMakePair(-40.5, 0.0), qMakePair(-1e6, 0.0)}) {
        MeasurementSetup setup;
        setup.notches->items.append(notchOf(0, 1, depths.first));
        saveConfig(setup, path());
        QCOMPARE(loadConfig(path()).notches->items.at(0).depth, depths.second);
    }
}

void TestConfigFile::lengthBecomesTheRowAbove_data()
{
    QTest::addColumn<QByteArray>("length");
    QTest::addColumn<int>("row");
    QTest::newRow("131072") << QByteArray("131072") << 5;
    QTest::newRow("100000") << QByteArray("100000") << 5;
    QTest::newRow("64") << QByteArray("64") << 16;
    QTest::newRow("0") << QByteArray("0") << 0;
    QTest::newRow("-3") << QByteArray("-3") << 0;
    QTest::newRow("no whole number") << QByteArray("1e+05") << 0;
}

void TestConfigFile::lengthBecomesTheRowAbove()
{
    QFETCH(QByteArray, length);
    QFETCH(int, row);
    QCOMPARE(load("[NPR]\nFFT Len = " + length + "\n").fftLengthIndex, row);
}

void TestConfigFile::bandwidthsAreRoundedToTheirSeries()
{
    const MeasurementSetup setup = load("[Analyzer]\nRes BW = 40000\nVideo BW = 0\n");
    QCOMPARE(setup.analyzer.resolutionBandwidth(), 50000U);
    QCOMPARE(setup.analyzer.videoBandwidth(), 0U);
}

void TestConfigFile::automaticSweepTimeMayClearTheSweepTime()
{
    const double sweepTime = load("[Analyzer]\nSweeptime = 3\nAUTO Swt = 1\n").analyzer.sweepTime;
    QVERIFY(sweepTime == 0.0 || sweepTime == 3.0);
    QCOMPARE(load("[Analyzer]\nAUTO Swt = 1\n").analyzer.sweepTime, 0.0);
    QCOMPARE(load("[Analyzer]\nSweeptime = 3\nAUTO Swt = 0\n").analyzer.sweepTime, 3.0);
}

void TestConfigFile::numbersAreCutToTheirWidth()
{
    QCOMPARE(load("[TCP/IP]\nPort = 70000\n").tcpPort, quint16{4464});
    QCOMPARE(load("[NPR]\nSeed = -1\n").seed, 4294967295U);
}

void TestConfigFile::anyNonZeroIsTrue()
{
    QVERIFY(load("[Display]\nSinus(x)/x = 2\n").sinxCompensation);
    QVERIFY(!load("[Display]\nSinus(x)/x = 0\n").sinxCompensation);
}

void TestConfigFile::barAsExponentSignGivesZero()
{
    QCOMPARE(load("[NPR]\nSRate = 1e|08\n").sampleRate, 0.0);
}

void TestConfigFile::rowWithoutANameIsSavedAsItCame_data()
{
    QTest::addColumn<QByteArray>("line");
    QTest::newRow("notch or carrier") << QByteArray("Notch/Carrier = 2\n");
    QTest::newRow("phase law") << QByteArray("Phase Mode = 4\n");
    QTest::newRow("source") << QByteArray("Custom = 3\n");
    QTest::newRow("below 0") << QByteArray("Custom = -1\n");
    QTest::newRow("greatest") << QByteArray("Phase Mode = 2147483647\n");
    QTest::newRow("least") << QByteArray("Notch/Carrier = -2147483648\n");
}

void TestConfigFile::rowWithoutANameIsSavedAsItCame()
{
    QFETCH(QByteArray, line);
    saveConfig(load("[NPR]\n" + line), path());
    QVERIFY(contentOf(path()).contains('\n' + line));
}

void TestConfigFile::lineEndsOfEveryKindAreRead_data()
{
    QTest::addColumn<QByteArray>("end");
    QTest::newRow("LF") << QByteArray("\n");
    QTest::newRow("CR") << QByteArray("\r");
    QTest::newRow("CR LF") << QByteArray("\r\n");
    QTest::newRow("empty lines") << QByteArray("\n\n\r\n");
}

void TestConfigFile::lineEndsOfEveryKindAreRead()
{
    QFETCH(QByteArray, end);
    const MeasurementSetup setup =
        load("[NPR]" + end + "Seed = 5" + end + "Phase Mode = 2" + end + "Custom = 1");
    QCOMPARE(setup.seed, 5U);
    QCOMPARE(setup.phaseMode, PhaseLaw::Parabolic);
    QCOMPARE(setup.customSource,
             SignalSource::Internal); // a last line without a line end isn't part of its section
}

void TestConfigFile::sectionNamedAfterANotchCounts()
{
    const MeasurementSetup setup = load("[Old Notch 3]\nStart = 4\n");
    QCOMPARE(setup.notches->items.size(), 1);
    QCOMPARE(setup.notches->items.at(0).startIndex, 4);
}

// Twenty rows numbered 1. The first one read stays first, and each later one pushes those after it
// along. Sections are read in the order of the hash.
void TestConfigFile::rowsAreInsertedAtTheirNumberCountedFromZero()
{
    QByteArray text;
    for (int row = 0; row < 20; ++row) {
        text += "[" + QByteArray(1, char('a' + row)) +
                " Notch 1]\nStart = " + QByteArray::number(row) + "\n\n";
    }
    QVector<qint32> expected;
    const QStringList read = parseConfigText(text).keys();
    for (const QString& name : read) {
        expected.insert(qMin(1, expected.size()), name.at(0).unicode() - u'a');
    }
    QVector<qint32> actual;
    const MeasurementSetup setup = load(text);
    for (const Notch& notch : qAsConst(setup.notches->items)) {
        actual.append(notch.startIndex);
    }
    QCOMPARE(actual, expected);
}

void TestConfigFile::theRowNumberedZeroStandsFirst()
{
    QByteArray text = "[Notch 0]\nStart = 77\n\n";
    for (char name = 'a'; name < 'u'; ++name) {
        text += "[" + QByteArray(1, name) + " Notch 9]\nStart = 9\n\n";
    }
    const MeasurementSetup setup = load(text);
    QCOMPARE(setup.notches->items.size(), 21);
    QCOMPARE(setup.notches->items.at(0).startIndex, 77);
}

// Both are appended, so the one read first stands first.
void TestConfigFile::aValueThatIsNotNamedStaysFromTheRowReadBefore()
{
    const MeasurementSetup setup =
        load("[Notch 8]\nStart = 4\nfcenter = 5\n\n[Notch 9]\nStop = 6\nfspan = 7\n\n");
    QCOMPARE(setup.notches->items.size(), 2);
    const Notch& first = setup.notches->items.at(0);
    const Notch& second = setup.notches->items.at(1);
    QCOMPARE(first.startIndex == 4, first.stopIndex == 0); // either may be the first
    QCOMPARE(second.startIndex, 4);
    QCOMPARE(second.center, 5.0);
    QCOMPARE(second.stopIndex, 6);
    QCOMPARE(second.width, 7.0);
}

void TestConfigFile::valueThatTheFirstRowDoesNotNameIsZero()
{
    const MeasurementSetup setup = load("[Notch 1]\nfcenter = 5\nStart = 4\n");
    QCOMPARE(setup.notches->items.size(), 1);
    const Notch& notch = setup.notches->items.at(0);
    QCOMPARE(notch.center, 5.0);
    QCOMPARE(notch.startIndex, 4);
    QCOMPARE(notch.stopFreq, 0.0);
    QCOMPARE(notch.startFreq, 0.0);
    QCOMPARE(notch.width, 0.0);
    QCOMPARE(notch.depth, 0.0);
    QCOMPARE(notch.stopIndex, 0);
}

void TestConfigFile::unknownSectionsAndKeysAreIgnored()
{
    const MeasurementSetup setup = load("[Other]\nSeed = 9\n[NPR]\nseed = 8\nSeed = 7\n");
    QCOMPARE(setup.seed, 7U);
}

void TestConfigFile::aFileThatExistsHasItsLineInTheLog()
{
    QTest::ignoreMessage(QtDebugMsg, "File Exists"); // fails without it
    QCOMPARE(load("").seed, 1U);
}

void TestConfigFile::missingFileGivesDefaults()
{
    const MeasurementSetup setup = loadConfig(folder->filePath("missing.cfg"));
    QCOMPARE(setup.sampleRate, 1e8);
    QCOMPARE(loadConfig(folder->path()).sampleRate, 1e8); // a folder
}

void TestConfigFile::anyBytesGiveARecord()
{
    QByteArray bytes("[NPR]\nSeed = 5\n[\xff\xfe\0[[", 20);
    for (int i = 0; i < 256; ++i) {
        bytes.append(static_cast<char>(i));
    }
    QCOMPARE(load(bytes).seed, 5U);
}

// An empty text is written, and not found again.
void TestConfigFile::anEmptiedAddressComesBackAsTheLocalOne()
{
    MeasurementSetup setup;
    setup.analyzer.ipAddress.clear();
    setup.analyzer.rs232Port = 3; // behind it
    saveConfig(setup, path());
    QVERIFY(contentOf(path()).contains("\nIP Addr = \"\"\n"));
    const MeasurementSetup loaded = loadConfig(path());
    QCOMPARE(loaded.analyzer.ipAddress, QString("127.0.0.1"));
    QCOMPARE(loaded.analyzer.rs232Port, 3U);
}

void TestConfigFile::aSettingThatIsNoNumberEndsItsSection()
{
    for (const double value : {qInf(), -qInf(), qQNaN()}) {
        MeasurementSetup setup;
        setup.sampleRate = 5e6; // before it
        setup.notchDepth = value;
        setup.seed = 9; // behind it
        setup.tcpPort = 5000;
        saveConfig(setup, path());
        const MeasurementSetup loaded = loadConfig(path());
        QCOMPARE(loaded.sampleRate, 5e6);
        QCOMPARE(loaded.notchDepth, -100.0);
        QCOMPARE(loaded.seed, 1U);
        QCOMPARE(loaded.tcpPort, quint16{5000});
    }
}

void TestConfigFile::unwritablePlaceChangesNothing()
{
    saveConfig(MeasurementSetup(), folder->filePath("missing/folder/a.cfg"));
    saveConfig(MeasurementSetup(), folder->path());
    QVERIFY(QDir(folder->path()).isEmpty());
}

// What stands in the folder beside the file is part of the promise: no half-written rest.
void TestConfigFile::aSaveReplacesTheFormerFile()
{
    MeasurementSetup setup;
    saveConfig(setup, path());
    setup.seed = 9;
    saveConfig(setup, path());
    QCOMPARE(loadConfig(path()).seed, 9U);
    QCOMPARE(QDir(folder->path()).entryList(QDir::Files | QDir::Hidden), QStringList{"test.cfg"});
}

void TestConfigFile::diskThatFillsWithTheLastBytesLeavesTheFormerFile_data()
{
    QTest::addColumn<int>("rows");
    QTest::newRow("less than a buffer") << 0;
    QTest::newRow("many buffers") << 2000;
}

void TestConfigFile::diskThatFillsWithTheLastBytesLeavesTheFormerFile()
{
    QFETCH(int, rows);
    MeasurementSetup setup;
    for (int row = 0; row < rows; ++row) {
        setup.notches->insert(row, Notch());
    }
    saveConfig(setup, path());
    const auto size = static_cast<rlim_t>(QFileInfo(path()).size());
    QVERIFY(size > 1000);
    setup.seed = 9; // as long as 1
    for (const rlim_t missing : {1U, 100U, 1000U}) {
        const FileSizeLimit limit(size - missing);
        saveConfig(setup, path());
        QCOMPARE(loadConfig(path()).seed, 1U);
    }
    const FileSizeLimit limit(size);
    saveConfig(setup, path());
    QCOMPARE(loadConfig(path()).seed, 9U);
    QCOMPARE(QDir(folder->path()).entryList(QDir::Files | QDir::Hidden), QStringList{"test.cfg"});
}

void TestConfigFile::defaultFileGetsItsFolders()
{
    const QByteArray place = qgetenv("XDG_DATA_HOME");
    qputenv("XDG_DATA_HOME", folder->filePath("a/b/c").toLocal8Bit());
    MeasurementSetup setup;
    setup.seed = 77;
    saveDefaultConfig(setup, "Notchbench.cfg");
    const quint32 seed = loadDefaultConfig("Notchbench.cfg").seed;
    qputenv("XDG_DATA_HOME", place);
    QCOMPARE(seed, 77U);
}

void TestConfigFile::aHugeFileCountsAsOneWithoutASection_data()
{
    QTest::addColumn<qint64>("size");
    QTest::addColumn<quint32>("seed");
    QTest::newRow("16 MiB") << qint64{16} * 1048576 << 7U;
    QTest::newRow("a byte more") << qint64{16} * 1048576 + 1 << 1U;
    QTest::newRow("300 MB") << qint64{300000000} << 1U;
}

void TestConfigFile::aHugeFileCountsAsOneWithoutASection()
{
    QFETCH(qint64, size);
    QFETCH(quint32, seed);
    QFile file(folder->filePath("huge.cfg"));
    QVERIFY(file.open(QIODevice::WriteOnly));
    file.write("[NPR]\nSeed = 7\n");
    QVERIFY(file.resize(size)); // zeros behind
    file.close();
    const bool isMeasured = forgetMostMemory();
    const qint64 before = mostMemory();
    QCOMPARE(loadConfig(file.fileName()).seed, seed);
    QVERIFY(!isMeasured || isInstrumented || mostMemory() - before < 300 * qint64{1024});
}

QTEST_GUILESS_MAIN(TestConfigFile)
#include "test_config_file.moc"
