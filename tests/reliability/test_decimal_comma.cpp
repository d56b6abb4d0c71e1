// The whole program under a locale whose numbers have a decimal comma: the same files, the same
// words to the instruments, the same cells.
#include "app/main_window.h"
#include "files/sample_output.h"
#include "files/signal_input.h"
#include "files/waveform_output.h"
#include "kit/file_content.h"
#include "kit/fresh_home.h"
#include "kit/window_driver.h"
#include "remote/analyzer_commands.h"
#include "remote/generator_commands.h"
#include "setup/config_file.h"
#include "simulator/scpi_session.h"
#include "simulator/wv_file.h"

#include <QDateTime>
#include <QProcess>
#include <QTemporaryDir>

#include <clocale>
#include <memory>

namespace {

// A transport that keeps what was sent and always answers the same.
class NotingTransport : public KORemoteInterface
{
public:
    explicit NotingTransport(QStringList& log) : sent(log) {}

    void sendSCPI(const QString& command) override { sent << command; }
    QString querySCPI(const QString& /*command*/) override { return "-10.5,-45.25,-44.75"; }
    void open() override {}
    void close() override {}
    void goToLocal() override {}

private:
    QStringList& sent;
};

std::unique_ptr<QTemporaryDir>& localeFolder()
{
    static auto folder = std::make_unique<QTemporaryDir>();
    return folder;
}

} // namespace

class TestDecimalComma : public QObject
{
    Q_OBJECT

public:
    static void initMain();

private slots:
    void initTestCase();
    void init();
    void configurationHasAPoint();
    void signalFilesHaveAPoint();
    void instrumentsAreToldWithAPoint();
    void answersAreReadWithAPoint();
    void simulatorSpeaksWithAPoint();
    void windowShowsAndTakesAPoint();

private:
    QByteArray read(const char* name) const;

    std::unique_ptr<QTemporaryDir> folder;
};

// The locale is made for this process alone, before anything has asked for one.
void TestDecimalComma::initMain()
{
    const QString path = localeFolder()->filePath("de_DE.UTF-8");
    QProcess::execute("localedef", {"-f", "UTF-8", "-i", "de_DE", path});
    qputenv("LOCPATH", QFile::encodeName(localeFolder()->path()));
    qputenv("LC_ALL", "de_DE.UTF-8");
}

void TestDecimalComma::initTestCase()
{
    if (*std::localeconv()->decimal_point != ',') {
        QSKIP("the sources of locales (Debian package locales) are missing");
    }
    QCOMPARE(QLocale().decimalPoint(), QChar(','));
}

void TestDecimalComma::init()
{
    folder = std::make_unique<QTemporaryDir>();
}

QByteArray TestDecimalComma::read(const char* name) const
{
    return contentOf(folder->filePath(name));
}

void TestDecimalComma::configurationHasAPoint()
{
    MeasurementSetup setup;
    setup.nbwSrate = 0.8;
    setup.generator.level = -12.25;
    Notch notch;
    notch.center = 1.5;
    setup.notches->insert(0, notch);
    saveConfig(setup, folder->filePath("a.cfg"));
    QVERIFY(read("a.cfg").contains("\nNBW/SRate = 0.8\n"));
    QVERIFY(read("a.cfg").contains("\nfcenter = 1.5\n"));
    const MeasurementSetup back = loadConfig(folder->filePath("a.cfg"));
    QCOMPARE(back.nbwSrate, 0.8);
    QCOMPARE(back.generator.level, -12.25);
    QCOMPARE(back.notches->items.at(0).center, 1.5);
}

void TestDecimalComma::signalFilesHaveAPoint()
{
    SignalData signal(1);
    signal.iSamples[0] = 0.6;
    signal.qSamples[0] = 0.8;
    saveWaveform(folder->filePath("s.i"), signal, 1e8);
    QCOMPARE(read("s.i"), QByteArray("1.875000\n"));
    saveWaveform(folder->filePath("s.wv"), signal, 1e8);
    QVERIFY(read("s.wv").contains("{LEVEL OFFS:1.000,0.000}"));
    MeasurementSetup setup;
    setup.signal = signal;
    setup.sampleRate = 1e6 + 0.5;
    QVERIFY(writeSigmfFiles(setup, "bench", folder->filePath("s")));
    QVERIFY(read("s.sigmf-meta").contains("\"core:sample_rate\": 1000000.5"));
    QString errorText;
    QCOMPARE(loadWaveform(folder->filePath("s.wv"), errorText).sampleRate, 1e8);

    putContent(folder->filePath("s.pmc"), "2\n1 0.25 1.5\n");
    const SignalData spectrum = loadMagnitudePhaseFile(folder->filePath("s.pmc"));
    QCOMPARE(spectrum.phase, (QVector<double>{0.0, 0.25}));
    QCOMPARE(spectrum.magnitude, (QVector<double>{0.0, 1.5}));
}

void TestDecimalComma::instrumentsAreToldWithAPoint()
{
    QStringList sent;
    AnalyzerCommands analyzer(std::make_unique<NotingTransport>(sent));
    analyzer.setCenterFrequency(1000000000.5);
    analyzer.setReferenceLevel(-20.5);
    analyzer.setSweepTime(0.25);
    analyzer.setAttenuation(10.0);
    GeneratorCommands generator(std::make_unique<NotingTransport>(sent), 0);
    generator.setFrequency(1234567.5);
    generator.setLevel(-0.125);
    QCOMPARE(sent, (QStringList{"FREQ:CENT 1000000000.50000000000",
                                "DISP:WIND1:TRAC:Y:RLEV -20.500", "SWE:TIME 0.250000",
                                "INP:ATT 10.000000\n", "FREQ 1234567.500000", "POW -0.125000"}));
}

void TestDecimalComma::answersAreReadWithAPoint()
{
    QStringList sent;
    AnalyzerCommands analyzer(std::make_unique<NotingTransport>(sent));
    QCOMPARE(analyzer.measureChannelPower(), (std::array<double, 3>{-10.5, -45.25, -44.75}));
}

void TestDecimalComma::simulatorSpeaksWithAPoint()
{
    Bench bench{BenchWiring()};
    SimulatedInstrument instrument(bench, BenchFace::GeneratorAndAnalyzer);
    ScpiSession session(instrument);
    for (const ScpiUnit& unit :
         scpiUnits("CALC:MARK:FUNC:POW:SEL ACP;:POW:ACH:BWID 1.5E6;SPAC 2.5E6;"
                   ":FREQ:CENT 1.5E6;CENT?;:CALC:MARK:FUNC:POW:RES? ACP")) {
        session.run(unit);
    }
    QCOMPARE(session.takeAnswers(), QByteArray("1500000.000000;-200.000000,0.000000,0.000000"));
}

void TestDecimalComma::windowShowsAndTakesAPoint()
{
    forgetSavedSettings();
    MainWindow window;
    const WindowDriver operate(window);
    window.show();
    QVERIFY(QTest::qWaitForWindowExposed(&window));
    QCOMPARE(operate.text("sample_rate_input").section(' ', 0, 0), QStringLiteral("100.000000"));
    QCOMPARE(operate.text("noise_bw_output"), QStringLiteral("100.000000"));
    operate.type("sample_rate_input", "50.5");
    QCOMPARE(operate.text("noise_bw_output"), QStringLiteral("50.500000"));
    operate.type("sample_rate_input", "100");
    operate.type("notch_count_input", "1");
    operate.click("autocalc_notches_button");
    QCOMPARE(operate.rowCount(), 1);
    operate.typeCell(0, 1, "2.5");
    QCOMPARE(operate.cell(0, 1), QStringLiteral("2.499390")); // 3276 whole bins of 762.94 Hz
    QVERIFY(operate.cell(0, 6).endsWith(".00"));
}

QTEST_MAIN(TestDecimalComma)
#include "test_decimal_comma.moc"
