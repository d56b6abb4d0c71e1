// The program's main job on full-size input, from a configuration to the client: nine notches at
// 4194304 points, then signals from files that a script makes.
#include "kit/free_port.h"
#include "kit/main_window_test.h"
#include "kit/sample_spectrum.h"
#include "kit/status_client.h"

#include <QProcess>
#include <QTemporaryDir>

#include <cmath>

class TestMainJob : public MainWindowTest
{
    Q_OBJECT

private slots:
    void init();
    void cleanup();
    void nineNotchesAtFullLengthReachTheClient();
    void scriptedFilesBecomeSignals();

private:
    std::unique_ptr<QTemporaryDir> folder;
};

void TestMainJob::init()
{
    folder = std::make_unique<QTemporaryDir>();
    openWindow();
}

void TestMainJob::cleanup()
{
    closeWindow();
}

void TestMainJob::nineNotchesAtFullLengthReachTheClient()
{
    operate->answerFileDialog(QStringLiteral(NOTCHBENCH_TEST_DATA "/nine_notches_4194304.cfg"));
    operate->trigger("actionLoad_Cfg_File");
    QCOMPARE(operate->rowCount(), 9);
    QCOMPARE(operate->text("fft_length_input"), QStringLiteral("4194304"));
    const quint16 port = freePort();
    operate->type("port_input", QString::number(port));
    calculate();
    // Noise of 4 million samples peaks near sqrt(ln 4194304) = 11.8 dB.
    const double crestFactor = operate->text("crest_factor_output").section(' ', 0, 0).toDouble();
    QVERIFY2(crestFactor > 10.5 && crestFactor < 13.5,
             qPrintable(operate->text("crest_factor_output")));

    StatusClient client;
    QVERIFY(client.connectTo(port));
    QCOMPARE(client.take(24).left(8), QByteArray::fromHex("030000000000803f"));
    client.socket.setReadBufferSize(0);
    const auto samples = samplesOf(client.ask("GetSymbol", 33554436));
    QCOMPARE(samples.size(), std::size_t{4194304});
    // A float carries 24 bits, so the floor of a bin stands near 1e-8 of full scale; bins inside
    // a notch of -80 dB must read 1e-4, those between the notches 1.
    for (int row = 0; row < 9; ++row) {
        const int start = operate->cell(row, 4).toInt();
        const int stop = operate->cell(row, 5).toInt();
        const double depth = std::pow(10.0, operate->cell(row, 6).toDouble() / 20);
        QVERIFY(qAbs(amplitudeAt(samples, (start + stop) / 2) / depth - 1.0) < 0.01);
        QVERIFY(qAbs(amplitudeAt(samples, stop + 1) - 1.0) < 1e-4);
    }
}

void TestMainJob::scriptedFilesBecomeSignals()
{
    QProcess script;
    script.start(QStringLiteral("python3"),
                 {QStringLiteral(NOTCHBENCH_TEST_DATA "/make_signal_inputs.py"),
                  QStringLiteral("4096"), folder->path()});
    QVERIFY(script.waitForFinished());
    QCOMPARE(script.exitCode(), 0);

    operate->click("mp_load_ratio_button");
    operate->answerFileDialog(folder->filePath("signal.pmc"));
    operate->click("le_custom_file_button");
    calculate();
    QVERIFY(operate->text("crest_factor_output").endsWith(QLatin1String(" dB")));

    operate->click("iq_load_ratio_button");
    operate->answerFileDialog(folder->filePath("i.wav"));
    operate->click("i_file_button");
    operate->answerFileDialog(folder->filePath("q.wav"));
    operate->click("q_file_button");
    calculate();
    QVERIFY(operate->text("crest_factor_output").endsWith(QLatin1String(" dB")));
}

QTEST_MAIN(TestMainJob)
#include "test_main_job.moc"
