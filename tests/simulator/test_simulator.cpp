// The simulator as a whole, in the test's process, with a stand-in for the program: a sweep sees
// the newest signal, a microwave generator has its own address, a file is played.
#include "fake_program.h"
#include "scpi_client.h"

#include "kit/file_content.h"
#include "simulator/simulator.h"

#include <QTemporaryDir>
#include <QtTest>

#include <memory>
#include <sys/ioctl.h>

namespace {

const char measurement[] = "CALC1:MARK1:FUNC:POW:RES? ACP";

// Any free port, and no poll but those of a sweep.
SimulatorOptions quietOptions(quint16 signalPort = 1)
{
    SimulatorOptions options;
    options.port = 0;
    options.signalPort = signalPort;
    options.signalTiming = {3600000, 3600000};
    options.fast = true;
    return options;
}

bool start(Simulator& simulator)
{
    QString errorText;
    const bool started = simulator.start(errorText);
    if (!started) {
        qWarning("%s", qPrintable(errorText));
    }
    return started;
}

// Channels ten hertz wide, the upper one around the line 16 of a grid of one hertz. A quarter of
// the rate is a line whose floats are exact, so that nothing else stands above the floor.
const char setUp[] = "OUTP ON;FREQ 1e9;POW -10;FREQ:CENT 1e9;:POW:ACH:BWID 10;BWID:ACH 10;"
                     ":POW:ACH:SPAC 16;MODE ABS;:CALC:MARK:FUNC:POW:SEL ACP";
constexpr int lineCount = 64;

// A simulator that plays the program's signal, and a client of its analyzer.
struct BenchOfAProgram
{
    FakeProgram program;
    std::unique_ptr<Simulator> simulator;
    ScpiClient analyzer;

    bool isReady()
    {
        if (!program.listen()) {
            return false;
        }
        simulator = std::make_unique<Simulator>(quietOptions(program.port()));
        const auto isKnown = [this] { return program.requests.contains("GetServerID"); };
        return start(*simulator) && analyzer.connectTo(simulator->port()) &&
               QTest::qWaitFor(isKnown);
    }
};

} // namespace

class TestSimulator : public QObject
{
    Q_OBJECT

private slots:
    void aSweepSeesASignalThatWasJustCalculated();
    void whatFollowsASweepWaitsForIt();
    void otherConnectionsGoOnDuringASweep();
    void aSweepEndsWithoutTheProgramsAnswer();
    void aSweepEndsWhenTheProgramGoesAway();
    void newSignalsArePlayedByThemselves();
    void theMicrowaveGeneratorHasItsOwnAddress();
    void aFileIsPlayed();
    void aBadFileKeepsTheSimulatorFromStarting();
    void aTakenPortKeepsTheSimulatorFromStarting();
    void aTakenMicrowaveAddressKeepsTheSimulatorFromStarting();
    void instrumentsCanHaveAddressesOfTheirOwn();
    void whatHasNoAddressOfItsOwnStandsAtTheSharedOne();
    void refusalsAreTold();
    void aSerialLineSpeaksToo();
    void aSerialLineGoesWithItsSimulator();
    void aSerialLineThatNobodyReadsHoldsNobodyUp();
    void theRippleIsWrittenAsATrace();
    void aTraceThatCannotBeWrittenIsTold();
};

void TestSimulator::aSweepSeesASignalThatWasJustCalculated()
{
    BenchOfAProgram bench;
    QVERIFY(bench.isReady());
    for (const int line : {16, -16, 16}) {
        bench.program.calculateTone(lineCount, line);
        bench.analyzer.send(QByteArray(setUp) + "\nINIT:CONT OFF\nINIT;*WAI\n*CLS;:" + measurement +
                            "\n");
        QCOMPARE(bench.analyzer.answer(),
                 QByteArray(line < 0 ? "-200.000000,-10.000000,-200.000000"
                                     : "-200.000000,-200.000000,-10.000000"));
    }
}

void TestSimulator::whatFollowsASweepWaitsForIt()
{
    BenchOfAProgram bench;
    QVERIFY(bench.isReady());
    bench.program.calculateTone(lineCount, 16);
    bench.analyzer.send(QByteArray(setUp) + ";*OPC?;:INIT;*WAI;*OPC?;:" + measurement +
                        "\n*OPT?\n");
    QCOMPARE(bench.analyzer.answer(), QByteArray("1;1;-200.000000,-200.000000,-10.000000"));
    QCOMPARE(bench.analyzer.answer(), QByteArray("B15,B17,B23,B24"));
}

void TestSimulator::otherConnectionsGoOnDuringASweep()
{
    BenchOfAProgram bench;
    QVERIFY(bench.isReady());
    bench.program.silent = true;
    ScpiClient generator;
    QVERIFY(generator.connectTo(bench.simulator->port()));
    bench.analyzer.send("INIT;*WAI;*OPC?\n");
    QTRY_VERIFY(bench.program.requests.contains("GetNewState"));
    QCOMPARE(generator.ask("*OPC?"), QByteArray("1"));
    QCOMPARE(bench.analyzer.socket.bytesAvailable(), qint64(0));
}

void TestSimulator::aSweepEndsWithoutTheProgramsAnswer()
{
    BenchOfAProgram bench;
    QVERIFY(bench.isReady());
    bench.program.silent = true;
    QCOMPARE(bench.analyzer.ask("INIT;*WAI;*OPC?"), QByteArray("1"));
}

void TestSimulator::aSweepEndsWhenTheProgramGoesAway()
{
    BenchOfAProgram bench;
    QVERIFY(bench.isReady());
    bench.program.silent = true;
    bench.analyzer.send("INIT;*WAI;*OPC?\n");
    QTRY_VERIFY(bench.program.requests.contains("GetNewState"));
    bench.program.stop();
    QCOMPARE(bench.analyzer.answer(), QByteArray("1"));
    QCOMPARE(bench.analyzer.ask("INIT;*WAI;*OPC?"), QByteArray("1"));
}

void TestSimulator::newSignalsArePlayedByThemselves()
{
    FakeProgram program;
    QVERIFY(program.listen());
    SimulatorOptions options = quietOptions(program.port());
    options.signalTiming = {10, 5000};
    Simulator simulator(options);
    QSignalSpy log(&simulator, &Simulator::logged);
    QVERIFY(start(simulator));
    ScpiClient analyzer;
    QVERIFY(analyzer.connectTo(simulator.port()));
    program.calculateTone(lineCount, 16);
    analyzer.send(QByteArray(setUp) + '\n');
    QTRY_COMPARE(analyzer.ask(measurement), QByteArray("-200.000000,-200.000000,-10.000000"));
    QVERIFY(log.contains({QString("playing 64 samples at 64 Hz")}));
}

void TestSimulator::theMicrowaveGeneratorHasItsOwnAddress()
{
    FakeProgram program;
    QVERIFY(program.listen());
    program.calculateTone(lineCount, 16);
    SimulatorOptions options = quietOptions(program.port());
    options.wiring.hasMicrowave = true;
    options.microwaveAddress = "127.0.0.2";
    Simulator simulator(options);
    QVERIFY(start(simulator));
    ScpiClient analyzer;
    ScpiClient microwave;
    QVERIFY(analyzer.connectTo(simulator.port()));
    QVERIFY(microwave.connectTo(simulator.port(), "127.0.0.2"));
    QCOMPARE(microwave.ask("FREQ 2e10;*OPC?"), QByteArray("1"));
    analyzer.send(QByteArray(setUp) + ";:FREQ:CENT 21e9;:INIT\n");
    QCOMPARE(analyzer.ask(measurement), QByteArray("-200.000000,-200.000000,-200.000000"));
    QCOMPARE(microwave.ask("OUTP ON;*OPC?"), QByteArray("1"));
    QCOMPARE(analyzer.ask(measurement), QByteArray("-200.000000,-200.000000,-10.000000"));
    QCOMPARE(analyzer.ask("FREQ?"), QByteArray("1000000000.000000"));
}

// Two samples of one sign are the carrier.
void TestSimulator::aFileIsPlayed()
{
    QTemporaryDir folder;
    SimulatorOptions options = quietOptions();
    options.waveformFile = folder.filePath("carrier.wv");
    putContent(options.waveformFile,
               "{CLOCK:1000}{WAVEFORM-9:#" + QByteArray::fromHex("0010000000100000") + "}");
    Simulator simulator(options);
    QVERIFY(start(simulator));
    ScpiClient analyzer;
    QVERIFY(analyzer.connectTo(simulator.port()));
    analyzer.send(QByteArray(setUp) + ";:INIT;*WAI\n");
    QCOMPARE(analyzer.ask(measurement), QByteArray("-10.000000,-200.000000,-200.000000"));
}

void TestSimulator::aBadFileKeepsTheSimulatorFromStarting()
{
    SimulatorOptions options = quietOptions();
    options.waveformFile = "/nowhere/at/all.wv";
    Simulator simulator(options);
    QString errorText;
    QVERIFY(!simulator.start(errorText));
    QVERIFY(errorText.startsWith("/nowhere/at/all.wv: "));
}

void TestSimulator::aTakenPortKeepsTheSimulatorFromStarting()
{
    Simulator first(quietOptions());
    QVERIFY(start(first));
    SimulatorOptions options = quietOptions();
    options.port = first.port();
    Simulator second(options);
    QString errorText;
    QVERIFY(!second.start(errorText));
    QVERIFY(
        errorText.startsWith(QStringLiteral("cannot listen on 127.0.0.1:%1: ").arg(first.port())));
}

void TestSimulator::aTakenMicrowaveAddressKeepsTheSimulatorFromStarting()
{
    SimulatorOptions options = quietOptions();
    options.wiring.hasMicrowave = true;
    options.microwaveAddress = "127.0.0.1";
    Simulator simulator(options);
    QString errorText;
    QVERIFY(!simulator.start(errorText));
    QVERIFY(errorText.startsWith("cannot listen on 127.0.0.1:"));
}

void TestSimulator::instrumentsCanHaveAddressesOfTheirOwn()
{
    FakeProgram program;
    QVERIFY(program.listen());
    program.calculateTone(lineCount, 16);
    SimulatorOptions options = quietOptions(program.port());
    options.generatorAddress = "127.0.0.2";
    options.analyzerAddress = "127.0.0.3";
    options.models.generator = findType(generatorTypes(), "ALTAIR");
    Simulator simulator(options);
    QVERIFY(start(simulator));
    const QString port = QString::number(simulator.port());
    QCOMPARE(simulator.places(), QStringList({"generator listening on 127.0.0.2:" + port,
                                              "analyzer listening on 127.0.0.3:" + port}));
    ScpiClient generator;
    ScpiClient analyzer;
    ScpiClient nobody;
    QVERIFY(generator.connectTo(simulator.port(), "127.0.0.2"));
    QVERIFY(analyzer.connectTo(simulator.port(), "127.0.0.3"));
    nobody.socket.connectToHost("127.0.0.1", simulator.port());
    QTRY_COMPARE(nobody.socket.error(), QTcpSocket::ConnectionRefusedError);
    QCOMPARE(generator.ask("L:ON;:IQ:ON;:RF 1e9;:L -10;*OPC?"), QByteArray("1"));
    analyzer.send("CALC:MARK:FUNC:POW:SEL ACP;:FREQ:CENT 1e9;:POW:ACH:BWID 10;BWID:ACH 10;"
                  ":POW:ACH:SPAC 16;MODE ABS;:INIT;*WAI\n");
    QCOMPARE(analyzer.ask(measurement), QByteArray("-200.000000,-200.000000,-10.000000"));
    analyzer.send("OUTP OFF\n");
    QVERIFY(analyzer.ask("SYST:ERR?").startsWith("-113,"));
    QCOMPARE(generator.ask("SYST:ERR?"), QByteArray("0,\"No error\""));
}

void TestSimulator::whatHasNoAddressOfItsOwnStandsAtTheSharedOne()
{
    SimulatorOptions options = quietOptions();
    options.generatorAddress = "127.0.0.2";
    Simulator simulator(options);
    QVERIFY(start(simulator));
    ScpiClient analyzer;
    QVERIFY(analyzer.connectTo(simulator.port()));
    QCOMPARE(analyzer.ask("*IDN?"), QByteArray("Notchbench,Simulated Analyzer,0,1.0"));
}

void TestSimulator::refusalsAreTold()
{
    Simulator simulator(quietOptions());
    QSignalSpy told(&simulator, &Simulator::told);
    QVERIFY(start(simulator));
    ScpiClient client;
    QVERIFY(client.connectTo(simulator.port()));
    QCOMPARE(client.ask("FREQ:CENT -4200000.00000000000;*OPC?"), QByteArray("1"));
    QCOMPARE(told.size(), 1);
    QCOMPARE(told[0][0].toString(),
             QString("analyzer: -222,\"Data out of range;FREQ:CENT -4200000.00000000000\""));
}

// The other end as a program has it that opens the line by its name.
void TestSimulator::aSerialLineSpeaksToo()
{
    SimulatorOptions options = quietOptions();
    options.serial = true;
    Simulator simulator(options);
    QVERIFY(start(simulator));
    QCOMPARE(simulator.places().size(), 2);
    const QRegularExpression form("^serial line on (/\\S+)$");
    const QString name = form.match(simulator.places()[1]).captured(1);
    for (int program = 0; program < 2; ++program) {
        QFile line(name);
        QVERIFY(line.open(QIODevice::ReadWrite | QIODevice::Unbuffered));
        line.write("FREQ 5;FREQ?\r\n*IDN?\n");
        const QByteArray expected = "5.000000\nNotchbench,Simulated Bench,0,1.0\n";
        QByteArray answer;
        // The file blocks, so it is read only when all has come.
        int waiting = 0;
        QTRY_VERIFY(ioctl(line.handle(), FIONREAD, &waiting) == 0 && waiting == expected.size());
        QCOMPARE(line.read(waiting), expected);
    }
    ScpiClient client; // the same instruments
    QVERIFY(client.connectTo(simulator.port()));
    QCOMPARE(client.ask("FREQ?"), QByteArray("5.000000"));
}

void TestSimulator::aSerialLineGoesWithItsSimulator()
{
    SimulatorOptions options = quietOptions();
    options.serial = true;
    auto simulator = std::make_unique<Simulator>(options);
    QVERIFY(start(*simulator));
    const QString name = simulator->places()[1].section(' ', -1);
    QVERIFY(QFile::exists(name));
    simulator.reset();
    QVERIFY(!QFile::exists(name));
}

void TestSimulator::aSerialLineThatNobodyReadsHoldsNobodyUp()
{
    SimulatorOptions options = quietOptions();
    options.serial = true;
    options.models.options = QByteArray(4000, 'x');
    Simulator simulator(options);
    QVERIFY(start(simulator));
    QFile line(simulator.places()[1].section(' ', -1));
    QVERIFY(line.open(QIODevice::ReadWrite | QIODevice::Unbuffered));
    ScpiClient client;
    QVERIFY(client.connectTo(simulator.port()));
    for (int k = 0; k < 600; ++k) { // more than a megabyte of answers
        line.write("*OPT?\n");
        QCoreApplication::processEvents();
    }
    QCOMPARE(client.ask("*OPC?"), QByteArray("1"));
}

void TestSimulator::theRippleIsWrittenAsATrace()
{
    QTemporaryDir folder;
    FakeProgram program;
    QVERIFY(program.listen());
    SimulatorOptions options = quietOptions(program.port());
    options.signalTiming = {10, 5000};
    options.wiring.chain.ripple = {2.0, 16.0};
    options.traceFile = folder.filePath("trace.txt");
    Simulator simulator(options);
    QVERIFY(start(simulator));
    program.calculateTone(lineCount, 16);
    QTRY_VERIFY(QFile::exists(options.traceFile));
    QFile trace(options.traceFile);
    QVERIFY(trace.open(QIODevice::ReadOnly));
    const QList<QByteArray> lines = trace.readAll().trimmed().split('\n');
    QCOMPARE(lines.size(), lineCount);
    QCOMPARE(lines[0], QByteArray("-32.000;1.000000"));
    QCOMPARE(lines[24], QByteArray("-8.000;-1.000000"));
    QCOMPARE(lines[36].split(';')[0], QByteArray("4.000"));
    QVERIFY(std::abs(lines[36].split(';')[1].toDouble()) < 1e-6);
    QCOMPARE(lines[63].split(';')[0], QByteArray("31.000"));
}

void TestSimulator::aTraceThatCannotBeWrittenIsTold()
{
    FakeProgram program;
    QVERIFY(program.listen());
    SimulatorOptions options = quietOptions(program.port());
    options.signalTiming = {10, 5000};
    options.traceFile = "/nowhere/trace.txt";
    Simulator simulator(options);
    QSignalSpy told(&simulator, &Simulator::told);
    QVERIFY(start(simulator));
    program.calculateTone(lineCount, 16);
    QTRY_COMPARE(told.size(), 1);
    QVERIFY(told[0][0].toString().startsWith("/nowhere/trace.txt: "));
}

QTEST_GUILESS_MAIN(TestSimulator)
#include "test_simulator.moc"
