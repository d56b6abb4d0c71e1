// "signal" and "trim": the numbers and the files.
#include "cli/cli_process.h"
#include "files/signal_input.h"
#include "files/waveform_output.h"
#include "kit/file_content.h"
#include "setup/config_file.h"
#include "setup/notch_editing.h"

#include <QFile>
#include <QtTest>

#include <cmath>
#include <csignal>
#include <vector>

namespace {

double numberOf(const CliRun& run, const QString& row)
{
    return QRegularExpression(row + " +(\\S+)").match(run.out).captured(1).toDouble();
}

} // namespace

class TestCliSignal : public QObject
{
    Q_OBJECT

private slots:
    void init() { cli = std::make_unique<CliProcess>(); }
    void numbersAreThoseOfTheSignal();
    void filesHaveTheBytesOfTheWindow();
    void openFormatsHoldTheSamplesInSinglePrecision();
    void aFileThatCannotBeIsToldByName();
    void aSignalThatIsNoNoiseIsTold();
    void aTrimmedSignalIsReadBackAsItWasWritten();
    void aTargetThatCannotBeIsToldAndStatusOne();
    void ctrlCEndsATrimWithoutAFile_data();
    void ctrlCEndsATrimWithoutAFile();

private:
    std::unique_ptr<CliProcess> cli;
};

// 10 lg N for all energy in one sample.
void TestCliSignal::numbersAreThoseOfTheSignal()
{
    const CliRun run = cli->run({"signal", "default", "--set", "NPR/Phase Mode=3"});
    QCOMPARE(run.status, 0);
    QVERIFY2(run.out.contains("crest factor                51.1751  dB\n"), qPrintable(run.out));
    QVERIFY2(run.out.contains("peak between samples          51.18  dB\n"), qPrintable(run.out));
}

void TestCliSignal::filesHaveTheBytesOfTheWindow()
{
    const CliRun run =
        cli->run({"signal", "default", "--notches", "9,1e6,-100,0", "--set", "NPR/NBW/SRate=0.8",
                  "--out", "cli", "--format", "text", "--format", "wav", "--format=wv"});
    QCOMPARE(run.status, 0);
    QVERIFY(run.out.endsWith("wrote cli.i and cli.q\nwrote cli.i.wav and cli.q.wav\n"
                             "wrote cli.wv\n"));
    MeasurementSetup setup;
    setup.nbwSrate = 0.8;
    setup.notchCount = 9;
    setup.notchWidth = 1e6;
    setup.notchOffset = 0.0;
    autoCalculateNotches(setup);
    setup.calculateSignal();
    for (const char* form : {".i", ".i.wav", ".wv"}) {
        saveWaveform(cli->path("window") + form, setup.signal, setup.sampleRate);
    }
    for (const char* form : {".i", ".q", ".i.wav", ".q.wav"}) {
        QCOMPARE(contentOf(cli->path("cli") + form), contentOf(cli->path("window") + form));
    }
    // Behind the date.
    const auto samples = [](const QByteArray& file) { return file.mid(file.indexOf("{LEVEL")); };
    const QByteArray wv = samples(contentOf(cli->path("cli.wv")));
    QVERIFY(wv.size() > 4 * 131072);
    QCOMPARE(wv, samples(contentOf(cli->path("window.wv"))));
}

void TestCliSignal::openFormatsHoldTheSamplesInSinglePrecision()
{
    const CliRun run =
        cli->run({"signal", "default", "--notches", "9,1e6,-100,0", "--set", "NPR/FFT Len=4096",
                  "--out", "n", "--format", "npy", "--format", "sigmf", "--format", "cf32"});
    QCOMPARE(run.status, 0);
    QVERIFY(run.out.endsWith("wrote n.npy\nwrote n.sigmf-meta and n.sigmf-data\nwrote n.cf32\n"));
    MeasurementSetup setup;
    setup.fftLengthIndex = 10;
    setup.notchCount = 9;
    setup.notchWidth = 1e6;
    setup.notchOffset = 0.0;
    autoCalculateNotches(setup);
    setup.calculateSignal();
    std::vector<float> words;
    for (int k = 0; k < 4096; ++k) {
        words.push_back(float(setup.signal.iSamples.at(k)));
        words.push_back(float(setup.signal.qSamples.at(k)));
    }
    const QByteArray samples(reinterpret_cast<const char*>(words.data()), 8 * 4096);
    QCOMPARE(contentOf(cli->path("n.cf32")), samples);
    QCOMPARE(contentOf(cli->path("n.sigmf-data")), samples);
    QCOMPARE(contentOf(cli->path("n.npy")).mid(128), samples);
    const QByteArray metadata = contentOf(cli->path("n.sigmf-meta"));
    QCOMPARE(metadata.count("core:freq_lower_edge"), 9);
    QVERIFY(metadata.contains("\"core:recorder\": \"notchbench-cli "));
}

void TestCliSignal::aFileThatCannotBeIsToldByName()
{
    const CliRun run = cli->run({"signal", "default", "--set", "NPR/FFT Len=256", "--out",
                                 "missing/n", "--format", "sigmf"});
    QCOMPARE(run.status, 3);
    QVERIFY2(run.err.endsWith("can't write missing/n.sigmf-meta and missing/n.sigmf-data; is there "
                              "such a folder, and room on its disk?\n"),
             qPrintable(run.err));
}

void TestCliSignal::aSignalThatIsNoNoiseIsTold()
{
    const CliRun run = cli->run({"signal", "default", "--set", "NPR/Phase Mode=2"});
    QCOMPARE(run.status, 0);
    QVERIFY(QRegularExpression("\nnoise-like +no\n").match(run.out).hasMatch());
    QCOMPARE(run.err, QString("notchbench-cli: warning: the signal isn't noise-like; what you "
                              "measure with it isn't NPR\n"));
}

void TestCliSignal::aTrimmedSignalIsReadBackAsItWasWritten()
{
    const QStringList notches{"--notches", "9,1e6,-100,0", "--set", "NPR/NBW/SRate=0.8"};
    const CliRun trim =
        cli->run(QStringList{"trim", "default", "--target", "9", "--out", "t.pmc"} + notches);
    QCOMPARE(trim.err, QString());
    QCOMPARE(trim.status, 0);
    const CliRun again = cli->run(QStringList{"signal", "default", "--set", "NPR/Custom=1", "--set",
                                              "User/PhaseMag File=t.pmc"} +
                                  notches);
    QCOMPARE(again.status, 0);
    // What is 100 dB down, below the band and in the notches, is cut twice.
    QVERIFY(std::abs(numberOf(again, "crest factor") - numberOf(trim, "crest factor")) < 0.001);
    const double peak = numberOf(trim, "peak between samples");
    QVERIFY(peak <= 9.0 && peak > 8.9);
    QVERIFY(std::abs(numberOf(again, "peak between samples") - peak) < 0.011);
    const SignalData written = loadMagnitudePhaseFile(cli->path("t.pmc"));
    QCOMPARE(written.length, 131072);
    QCOMPARE(written.magnitude.at(70000), 1.0); // a line of the band
}

void TestCliSignal::aTargetThatCannotBeIsToldAndStatusOne()
{
    const CliRun run = cli->run({"trim", "default", "--set", "NPR/FFT Len=256", "--set",
                                 "NPR/NBW/SRate=0.8", "--target", "0.2", "--out", "t.pmc"});
    QCOMPARE(run.status, 1);
    QCOMPARE(run.errLines().size(), 2); // the other one: no longer noise
    QVERIFY2(run.errLines().at(1).contains("the target of 0.20 dB can't be reached; t.pmc has "),
             qPrintable(run.err));
    QVERIFY(QFile::exists(cli->path("t.pmc")));
}

void TestCliSignal::ctrlCEndsATrimWithoutAFile_data()
{
    QTest::addColumn<int>("number");
    QTest::addColumn<int>("status");
    QTest::newRow("Ctrl+C") << SIGINT << 130;
    QTest::newRow("SIGTERM") << SIGTERM << 143;
}

void TestCliSignal::ctrlCEndsATrimWithoutAFile()
{
    QFETCH(int, number);
    QFETCH(int, status);
    cli->process.start(NOTCHBENCH_CLI, {"trim", "-", "--target", "0.2", "--out", "t.pmc"});
    QVERIFY(cli->process.waitForStarted());
    // It waits for its configuration, so it catches signals by the time that it has read this.
    cli->process.write("[NPR]\nFFT Len = 1048576\nx\n");
    cli->process.closeWriteChannel();
    cli->process.setReadChannel(QProcess::StandardError);
    QVERIFY(cli->process.waitForReadyRead(20000)); // the warning of the bad line
    QCOMPARE(kill(pid_t(cli->process.processId()), number), 0);
    QVERIFY(cli->process.waitForFinished(240000));
    QCOMPARE(cli->process.exitStatus(), QProcess::NormalExit);
    QCOMPARE(cli->process.exitCode(), status);
    QVERIFY(!QFile::exists(cli->path("t.pmc")));
}

QTEST_GUILESS_MAIN(TestCliSignal)
#include "test_cli_signal.moc"
