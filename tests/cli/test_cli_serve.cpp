// "serve": the signal over the status protocol, until a signal ends it.
#include "cli/cli_process.h"
#include "kit/sample_spectrum.h"
#include "kit/status_client.h"
#include "setup/measurement_setup.h"

#include <QTcpServer>
#include <QtTest>

#include <csignal>

namespace {

// Starts on a free port and waits for the line that tells it; 0 when none came.
quint16 startServing(CliProcess& cli)
{
    cli.process.start(NOTCHBENCH_CLI, {"serve", "default", "--port", "0", "--set",
                                       "NPR/FFT Len=4096", "--set", "NPR/SRate=5e7"});
    QByteArray out;
    (void)QTest::qWaitFor(
        [&] {
            out += cli.process.readAllStandardOutput();
            return out.endsWith('\n');
        },
        20000);
    const QRegularExpression line("^serving 4096 samples at 50000000 Hz on port (\\d+)\n$");
    return line.match(out).captured(1).toUShort();
}

} // namespace

class TestCliServe : public QObject
{
    Q_OBJECT

private slots:
    void aClientFetchesTheSamples();
    void aSignalEndsItWithStatusZero_data();
    void aSignalEndsItWithStatusZero();
    void aPortThatIsTakenIsStatusThree();
};

void TestCliServe::aClientFetchesTheSamples()
{
    CliProcess cli;
    const quint16 port = startServing(cli);
    QVERIFY(port > 0);
    StatusClient client;
    QVERIFY(client.connectTo(port));
    // New state, 4096 samples, 50 MHz.
    QCOMPARE(client.take(24),
             QByteArray::fromHex("030000000000803f 0100000000008045 0000000020bc3e4c"));
    const auto samples = samplesOf(client.ask("GetSymbol", 4 + 8 * 4096));
    MeasurementSetup setup;
    setup.fftLengthIndex = 10;
    setup.calculateSignal();
    QCOMPARE(samples.size(), std::size_t{4096});
    for (std::size_t i = 0; i < samples.size(); ++i) {
        QCOMPARE(samples[i].real(), double(float(setup.signal.iSamples.at(int(i)))));
        QCOMPARE(samples[i].imag(), double(float(setup.signal.qSamples.at(int(i)))));
    }
    QVERIFY(client.isSilentBeforeIdentity());
}

void TestCliServe::aSignalEndsItWithStatusZero_data()
{
    QTest::addColumn<int>("number");
    QTest::newRow("SIGTERM") << SIGTERM;
    QTest::newRow("SIGINT") << SIGINT;
    QTest::newRow("SIGHUP") << SIGHUP;
}

void TestCliServe::aSignalEndsItWithStatusZero()
{
    QFETCH(int, number);
    CliProcess cli;
    QVERIFY(startServing(cli) > 0);
    QCOMPARE(kill(pid_t(cli.process.processId()), number), 0);
    QVERIFY(cli.process.waitForFinished(10000));
    QCOMPARE(cli.process.exitStatus(), QProcess::NormalExit);
    QCOMPARE(cli.process.exitCode(), 0);
    QCOMPARE(cli.process.readAllStandardError(), QByteArray());
}

void TestCliServe::aPortThatIsTakenIsStatusThree()
{
    QTcpServer other;
    QVERIFY(other.listen(QHostAddress::Any, 0));
    CliProcess cli;
    const CliRun run =
        cli.run({"serve", "default", "--set", QString("TCP/IP/Port=%1").arg(other.serverPort())});
    QCOMPARE(run.status, 3);
    QVERIFY(run.err.startsWith(
        QString("notchbench-cli: can't listen on port %1: ").arg(other.serverPort())));
}

QTEST_GUILESS_MAIN(TestCliServe)
#include "test_cli_serve.moc"
