// The command line.
#include "simulator/simulator_options.h"

#include "kit/file_content.h"
#include "simulator/instrument_types.h"

#include <QCommandLineParser>
#include <QRegularExpression>
#include <QtTest>

namespace {

std::optional<SimulatorOptions> read(const QStringList& arguments, QString& errorText)
{
    QCommandLineParser parser;
    addSimulatorOptions(parser);
    if (!parser.parse(QStringList("notchbench-simulator") + arguments)) {
        errorText = parser.errorText();
        return {};
    }
    return readSimulatorOptions(parser, errorText);
}

SimulatorOptions good(const QStringList& arguments)
{
    QString errorText;
    const std::optional<SimulatorOptions> options = read(arguments, errorText);
    if (!options) {
        qFatal("%s", qPrintable(errorText));
    }
    return *options;
}

} // namespace

class TestSimulatorOptions : public QObject
{
    Q_OBJECT

private slots:
    void theDefaultsAreThoseOfTheHelp();
    void everyOptionIsTaken();
    void aFullScaleTakesThePlaceOfALoading();
    void limitsOfAValueAreTaken();
    void theHelpNamesEveryModelInWholeSentences();
    void theManPageNamesEveryOption();
    void aBadValueIsNamed_data();
    void aBadValueIsNamed();
};

void TestSimulatorOptions::theDefaultsAreThoseOfTheHelp()
{
    const SimulatorOptions options = good({});
    QCOMPARE(options.port, quint16(5025));
    QCOMPARE(options.signalPort, quint16(1000));
    QCOMPARE(options.wiring.chain.device.name, QString("linear"));
    QCOMPARE(options.wiring.chain.device.saturationPower, 10.0);
    QCOMPARE(options.wiring.chain.device.smoothness, 2.0);
    QCOMPARE(options.wiring.chain.device.thirdOrderIntercept, 20.0);
    QCOMPARE(options.wiring.chain.device.bits, 12);
    QCOMPARE(options.wiring.chain.device.loadingFactor, 5.0);
    QVERIFY(!options.wiring.hasMicrowave);
    QVERIFY(std::isinf(options.wiring.chain.noiseFloor) && options.wiring.chain.noiseFloor < 0.0);
    QVERIFY(!options.models.options);
    QVERIFY(!options.wiring.chain.device.fullScale);
    QVERIFY(options.generatorAddress.isEmpty() && options.analyzerAddress.isEmpty());
    QVERIFY(!options.fast && !options.serial);
    QVERIFY(!options.manner.silent && !options.manner.dropsClient && options.manner.delay == 0);
    QVERIFY(options.waveformFile.isEmpty() && !options.verbose);
}

void TestSimulatorOptions::everyOptionIsTaken()
{
    const SimulatorOptions options = good({"--port",
                                           "0",
                                           "--signal-port",
                                           "2000",
                                           "--dut",
                                           "adc",
                                           "--saturation",
                                           "-3.5",
                                           "--smoothness=1.5",
                                           "--intercept",
                                           "-7",
                                           "--bits",
                                           "8",
                                           "--loading",
                                           "4.25",
                                           "--noise-floor",
                                           "-150",
                                           "--waveform",
                                           "x.wv",
                                           "--microwave",
                                           "127.0.0.2",
                                           "--opt",
                                           "B24",
                                           "--device-noise=-140",
                                           "--source-notch",
                                           "50",
                                           "--ripple",
                                           "1.5,2e7",
                                           "--write-trace",
                                           "t.txt",
                                           "--generator",
                                           "127.0.0.3",
                                           "--analyzer",
                                           "127.0.0.4",
                                           "--generator-type",
                                           "PHD(B)",
                                           "--analyzer-type",
                                           "NOR",
                                           "--microwave-type",
                                           "ZUB",
                                           "--serial",
                                           "--fast",
                                           "--silent",
                                           "--drop",
                                           "--delay",
                                           "1.5",
                                           "--verbose"});
    QCOMPARE(options.port, quint16(0));
    QCOMPARE(options.signalPort, quint16(2000));
    QCOMPARE(options.wiring.chain.device.name, QString("adc"));
    QCOMPARE(options.wiring.chain.device.saturationPower, -3.5);
    QCOMPARE(options.wiring.chain.device.smoothness, 1.5);
    QCOMPARE(options.wiring.chain.device.thirdOrderIntercept, -7.0);
    QCOMPARE(options.wiring.chain.device.bits, 8);
    QCOMPARE(options.wiring.chain.device.loadingFactor, 4.25);
    QCOMPARE(options.wiring.chain.noiseFloor, -150.0);
    QCOMPARE(options.waveformFile, QString("x.wv"));
    QCOMPARE(options.microwaveAddress, QString("127.0.0.2"));
    QVERIFY(options.wiring.hasMicrowave);
    QCOMPARE(*options.models.options, QByteArray("B24"));
    QCOMPARE(options.wiring.chain.deviceNoise, -140.0);
    QCOMPARE(options.wiring.chain.sourceNotch, 50.0);
    QCOMPARE(options.wiring.chain.ripple.peakToPeak, 1.5);
    QCOMPARE(options.wiring.chain.ripple.period, 2e7);
    QCOMPARE(options.traceFile, QString("t.txt"));
    QCOMPARE(options.generatorAddress, QString("127.0.0.3"));
    QCOMPARE(options.analyzerAddress, QString("127.0.0.4"));
    QCOMPARE(options.models.generator->name, "PHD(B)");
    QCOMPARE(options.models.analyzer->name, "NOR");
    QCOMPARE(options.models.microwave->name, "ZUB");
    QVERIFY(options.serial && options.fast);
    QVERIFY(options.manner.silent && options.manner.dropsClient);
    QCOMPARE(options.manner.delay, 1500);
    QVERIFY(options.verbose);
}

void TestSimulatorOptions::aFullScaleTakesThePlaceOfALoading()
{
    QCOMPARE(*good({"--full-scale", "-6"}).wiring.chain.device.fullScale, -6.0);
    QVERIFY(!good({"--loading", "4"}).wiring.chain.device.fullScale);
}

void TestSimulatorOptions::limitsOfAValueAreTaken()
{
    QCOMPARE(good({"--port", "65535"}).port, quint16{65535});
    QCOMPARE(good({"--signal-port", "1"}).signalPort, quint16{1});
    QCOMPARE(good({"--signal-port", "65535"}).signalPort, quint16{65535});
    QCOMPARE(good({"--bits", "1"}).wiring.chain.device.bits, 1);
    QCOMPARE(good({"--bits", "24"}).wiring.chain.device.bits, 24);
    QCOMPARE(good({"--delay", "0"}).manner.delay, 0);
    QCOMPARE(good({"--delay", "3600"}).manner.delay, 3600000);
    QCOMPARE(good({"--source-notch", "0"}).wiring.chain.sourceNotch, 0.0);
}

void TestSimulatorOptions::theHelpNamesEveryModelInWholeSentences()
{
    QCommandLineParser parser;
    addSimulatorOptions(parser);
    const QString help = parser.helpText().simplified();
    QVERIFY(help.contains("has its ranges: RIGL, LYR, ALTAIR, DENB, ORI, PHD(A), PHD(B), CYG, "
                          "KAU(A) or KAU(B) (default: the words of all)."));
    QVERIFY(help.contains("options of a model: ARA, HYA, ANTA, MUS, DOR, CRU, IND, GRU or NOR "
                          "(default: the widest ranges)."));
    QVERIFY(help.contains("has its ranges: TAU or ZUB (default: the words of both)."));
    // An option, perhaps the name of its value, and the sentence's first letter.
    const QRegularExpression start("(?<!,) (?=(?:-[hv], )?--[a-z-]+ (?:<[A-Z,]+> )?[A-Z])");
    const QStringList options = help.split(start).mid(1);
    QVERIFY(options.size() > 20);
    for (const QString& option : options) {
        QVERIFY2(option.endsWith('.'), qPrintable(option));
    }
}

void TestSimulatorOptions::theManPageNamesEveryOption()
{
    QCommandLineParser parser;
    addSimulatorOptions(parser);
    QString page = contentOf(NOTCHBENCH_SOURCE_DIR "/packaging/notchbench-simulator.1");
    page.remove('\\'); // of its hyphens
    const QRegularExpression option("^  (?:-\\w, )?(--[a-z-]+)",
                                    QRegularExpression::MultilineOption);
    auto options = option.globalMatch(parser.helpText());
    QVERIFY(options.hasNext());
    while (options.hasNext()) {
        const QString name = options.next().captured(1);
        const bool isNamed = page.contains(QRegularExpression(name + "\\b(?!-)"));
        // Qt's own, the same as --help here.
        QVERIFY2(isNamed || name == "--help-all", qPrintable(name));
    }
}

void TestSimulatorOptions::aBadValueIsNamed_data()
{
    QTest::addColumn<QStringList>("arguments");
    QTest::addColumn<QString>("message");
    const struct
    {
        QStringList arguments;
        const char* message;
    } rows[] = {
        {{"--port", "65536"}, "bad value for --port: 65536"},
        {{"--port", "-1"}, "bad value for --port: -1"},
        {{"--port", "5.5"}, "bad value for --port: 5.5"},
        {{"--port", ""}, "bad value for --port: "},
        {{"--signal-port", "0"}, "bad value for --signal-port: 0"},
        {{"--dut", "tube"}, "bad value for --dut: tube"},
        {{"--bits", "0"}, "bad value for --bits: 0"},
        {{"--bits", "25"}, "bad value for --bits: 25"},
        {{"--loading", "0"}, "bad value for --loading: 0"},
        {{"--loading", "nan"}, "bad value for --loading: nan"},
        {{"--smoothness", "0"}, "bad value for --smoothness: 0"},
        {{"--intercept", "inf"}, "bad value for --intercept: inf"},
        {{"--noise-floor", "quiet"}, "bad value for --noise-floor: quiet"},
        {{"--microwave", "nowhere"}, "bad value for --microwave: nowhere"},
        {{"--generator", "here"}, "bad value for --generator: here"},
        {{"--analyzer", ""}, "bad value for --analyzer: "},
        {{"--generator-type", "TAU"}, "bad value for --generator-type: TAU"},
        {{"--analyzer-type", "ara"}, "bad value for --analyzer-type: ara"},
        {{"--microwave-type", ""}, "bad value for --microwave-type: "},
        {{"--ripple", "1"}, "bad value for --ripple: 1"},
        {{"--ripple", "1,0"}, "bad value for --ripple: 1,0"},
        {{"--source-notch", "-3"}, "bad value for --source-notch: -3"},
        {{"--full-scale", "high"}, "bad value for --full-scale: high"},
        {{"--full-scale", "0", "--loading", "5"}, "--full-scale and --loading exclude each other"},
        {{"--delay", "-1"}, "bad value for --delay: -1"},
        {{"--delay", "3600.5"}, "bad value for --delay: 3600.5"},
        {{"--bits"}, "Missing value after '--bits'."},
        {{"file.wv"}, "unexpected argument: file.wv"},
        {{"--frequency", "5"}, "Unknown option 'frequency'."},
    };
    for (const auto& row : rows) {
        QTest::newRow(row.message) << row.arguments << QString(row.message);
    }
}

void TestSimulatorOptions::aBadValueIsNamed()
{
    QFETCH(QStringList, arguments);
    QString errorText;
    QVERIFY(!read(arguments, errorText));
    QTEST(errorText, "message");
}

QTEST_GUILESS_MAIN(TestSimulatorOptions)
#include "test_simulator_options.moc"
