// The built program: what it prints, how it ends.
#include "scpi_client.h"

#include <QProcess>
#include <QTcpServer>
#include <QtTest>

#include <csignal>

namespace {

class Process : public QProcess
{
public:
    // Starts and waits for the line that tells the port; 0 when none came.
    int startListening(const QStringList& more = {})
    {
        start(SIMULATOR, QStringList{"--port", "0", "--signal-port", "1"} + more);
        const QRegularExpression pattern("^listening on 127\\.0\\.0\\.1:(\\d+)\n$");
        QByteArray output;
        (void)QTest::qWaitFor(
            [&] {
                output += readAllStandardOutput();
                return output.endsWith('\n');
            },
            20000);
        return pattern.match(output).captured(1).toInt();
    }

    void runToEnd(const QStringList& arguments)
    {
        start(SIMULATOR, arguments);
        waitForFinished(20000);
    }
};

} // namespace

class TestSimulatorProcess : public QObject
{
    Q_OBJECT

private slots:
    void aSignalEndsTheProgramCleanly_data();
    void aSignalEndsTheProgramCleanly();
    void aTakenPortEndsItWithAMessage();
    void aBadOptionEndsItWithAMessage();
    void helpTellsEveryOption();
    void versionIsTold();
    void verboseLogsEveryCommand();
    void withoutVerboseOnlyRefusalsAreTold();
};

void TestSimulatorProcess::aSignalEndsTheProgramCleanly_data()
{
    QTest::addColumn<int>("number");
    QTest::newRow("SIGTERM") << SIGTERM;
    QTest::newRow("SIGINT") << SIGINT;
}

void TestSimulatorProcess::aSignalEndsTheProgramCleanly()
{
    QFETCH(int, number);
    Process process;
    const int port = process.startListening();
    QVERIFY(port > 0);
    ScpiClient client;
    QVERIFY(client.connectTo(quint16(port)));
    QCOMPARE(client.ask("*OPC?"), QByteArray("1"));
    QCOMPARE(kill(pid_t(process.processId()), number), 0);
    QVERIFY(process.waitForFinished(10000));
    QCOMPARE(process.exitStatus(), QProcess::NormalExit);
    QCOMPARE(process.exitCode(), 0);
    QCOMPARE(process.readAllStandardError(), QByteArray());
}

void TestSimulatorProcess::aTakenPortEndsItWithAMessage()
{
    QTcpServer other;
    QVERIFY(other.listen(QHostAddress::LocalHost, 0));
    Process process;
    const QString port = QString::number(other.serverPort());
    process.runToEnd({"--port", port});
    QCOMPARE(process.exitCode(), 1);
    QCOMPARE(process.readAllStandardOutput(), QByteArray());
    const QString message = process.readAllStandardError();
    QVERIFY2(message.startsWith("notchbench-simulator: cannot listen on 127.0.0.1:" + port + ": "),
             qPrintable(message));
}

void TestSimulatorProcess::aBadOptionEndsItWithAMessage()
{
    const struct
    {
        QStringList arguments;
        const char* message;
    } rows[] = {
        {{"--bits", "many"}, "bad value for --bits: many"},
        {{"--full-scale", "0", "--loading", "5"}, "--full-scale and --loading exclude each other"},
        {{"--speed", "5"}, "Unknown option 'speed'."},
        {{"now"}, "unexpected argument: now"},
    };
    for (const auto& row : rows) {
        Process process;
        process.runToEnd(row.arguments);
        QCOMPARE(process.exitCode(), 2);
        QCOMPARE(process.readAllStandardOutput(), QByteArray());
        QCOMPARE(process.readAllStandardError(),
                 QByteArray("notchbench-simulator: ") + row.message + '\n');
    }
}

void TestSimulatorProcess::helpTellsEveryOption()
{
    Process process;
    process.runToEnd({"--help"});
    QCOMPARE(process.exitCode(), 0);
    const QByteArray help = process.readAllStandardOutput();
    for (const char* option : {"--dut",
                               "--port",
                               "--signal-port",
                               "--saturation",
                               "--smoothness",
                               "--intercept",
                               "--bits",
                               "--loading",
                               "--full-scale",
                               "--device-noise",
                               "--noise-floor",
                               "--source-notch",
                               "--ripple",
                               "--write-trace",
                               "--waveform",
                               "--generator",
                               "--analyzer",
                               "--microwave",
                               "--generator-type",
                               "--analyzer-type",
                               "--microwave-type",
                               "--opt",
                               "--serial",
                               "--delay",
                               "--silent",
                               "--drop",
                               "--fast",
                               "--verbose",
                               "--dut adc --bits 12"}) {
        QVERIFY2(help.contains(option), option);
    }
}

void TestSimulatorProcess::versionIsTold()
{
    Process process;
    process.runToEnd({"--version"});
    QCOMPARE(process.exitCode(), 0);
    const QRegularExpression form("^notchbench-simulator \\d+(\\.\\d+)+\n$");
    const QString version = process.readAllStandardOutput();
    QVERIFY2(form.match(version).hasMatch(), qPrintable(version));
}

void TestSimulatorProcess::verboseLogsEveryCommand()
{
    Process process;
    const int port = process.startListening({"--verbose"});
    QVERIFY(port > 0);
    ScpiClient client;
    QVERIFY(client.connectTo(quint16(port)));
    client.send("FREQ 5\n*OPC?\n");
    QByteArray log;
    QTRY_COMPARE((log += process.readAllStandardError()).count('\n'), 3);
    const QByteArray name = "127.0.0.1:" + QByteArray::number(client.socket.localPort());
    QCOMPARE(log, name + " << FREQ 5\n" + name + " << *OPC?\n" + name + " >> 1\n");
    process.terminate();
    QVERIFY(process.waitForFinished(10000));
}

void TestSimulatorProcess::withoutVerboseOnlyRefusalsAreTold()
{
    Process process;
    const int port = process.startListening();
    QVERIFY(port > 0);
    ScpiClient client;
    QVERIFY(client.connectTo(quint16(port)));
    QCOMPARE(client.ask("FREQ 5\nFOO\nFREQ:CENT -1\n*CLS;*OPC?"), QByteArray("1"));
    process.terminate();
    QVERIFY(process.waitForFinished(10000));
    QCOMPARE(process.readAllStandardError(),
             QByteArray("bench: -113,\"Undefined header;FOO\"\n"
                        "analyzer: -222,\"Data out of range;FREQ:CENT -1\"\n"));
}

QTEST_GUILESS_MAIN(TestSimulatorProcess)
#include "test_simulator_process.moc"
