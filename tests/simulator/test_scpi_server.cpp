// The instruments over real connections: split, joined and overlong lines, garbage, many peers,
// peers that don't read.
#include "ready_bench.h"
#include "scpi_client.h"

#include "simulator/scpi_server.h"

#include <QtTest>

namespace {

BenchModels withOptions(const QByteArray& options)
{
    BenchModels models;
    models.options = options;
    return models;
}

} // namespace

class TestScpiServer : public QObject
{
    Q_OBJECT

private slots:
    void init();
    void anAnswerIsALine();
    void linesMayComeInPieces();
    void linesMayComeTogether();
    void connectionsShareTheInstruments();
    void aHundredConnectionsAreServed();
    void anOverlongLineIsAnErrorAndNothingElse();
    void garbageIsSurvived();
    void aConnectionThatEndsInALineHarmsNobody();
    void aPeerThatNeverReadsIsDropped();
    void aFastSweepOfAFixedSignalWaitsForNothing();
    void aSweepTakesItsTime();
    void whatDoesNotWaitIsAnsweredDuringASweep();
    void theResultOfASweepIsWaitedFor();
    void ofOneClientAtATimeTheSecondWaits();
    void aDelayedAnswerComesInItsTurn();
    void aSilentInstrumentWorksAndDoesNotAnswer();
    void anInstrumentThatDropsEndsTheConnectionAtAQuestion();
    void aStrangersClientGetsAlong();
    void everyLineAndAnswerIsLogged();
    void aTakenPortIsReported();
    void theServerEndsWithConnectionsOpen();

private:
    void serve(Clients clients, AnswerManner manner);

    std::unique_ptr<Bench> bench;
    std::unique_ptr<SimulatedInstrument> instrument;
    std::unique_ptr<Sweep> sweep;
    std::unique_ptr<ScpiServer> server;
};

void TestScpiServer::init()
{
    server.reset();
    sweep.reset();
    bench = std::make_unique<Bench>(readyBench());
    instrument = std::make_unique<SimulatedInstrument>(*bench, BenchFace::GeneratorAndAnalyzer,
                                                       withOptions("B15"));
    sweep = std::make_unique<Sweep>(*instrument, nullptr, false);
    serve(Clients::Any, {});
}

void TestScpiServer::serve(Clients clients, AnswerManner manner)
{
    server = std::make_unique<ScpiServer>(*instrument, sweep.get(), clients, manner);
    QVERIFY(server->listen(QHostAddress::LocalHost, 0));
}

void TestScpiServer::anAnswerIsALine()
{
    ScpiClient client;
    QVERIFY(client.connectTo(server->port()));
    client.send("*OPC?\n");
    QTRY_COMPARE(client.socket.bytesAvailable(), qint64(2));
    QCOMPARE(client.socket.readAll(), QByteArray("1\n"));
}

void TestScpiServer::linesMayComeInPieces()
{
    ScpiClient client;
    QVERIFY(client.connectTo(server->port()));
    for (const char c : QByteArray("FREQ 125000000.000000\r\nFREQ?\r")) {
        client.send(QByteArray(1, c));
        QCoreApplication::processEvents();
    }
    QCOMPARE(client.socket.bytesAvailable(), qint64(0));
    client.send("\n");
    QCOMPARE(client.answer(), QByteArray("125000000.000000"));
}

void TestScpiServer::linesMayComeTogether()
{
    ScpiClient client;
    QVERIFY(client.connectTo(server->port()));
    client.send("INP:ATT 10.000000\n;*OPC?\n\n\nFREQ 1\nFREQ?\nPOW -2\n*OPT?;POW?\n");
    QCOMPARE(client.answer(), QByteArray("1"));
    QCOMPARE(client.answer(), QByteArray("1.000000"));
    QCOMPARE(client.answer(), QByteArray("B15;-2.000000"));
    QCOMPARE(client.ask("SYST:ERR?"), QByteArray("0,\"No error\""));
}

void TestScpiServer::connectionsShareTheInstruments()
{
    ScpiClient generator;
    ScpiClient analyzer;
    QVERIFY(generator.connectTo(server->port()));
    QVERIFY(analyzer.connectTo(server->port()));
    bench->play(tone(64, 0));
    QCOMPARE(generator.ask("OUTP ON;FREQ 2e9;POW -7;*OPC?"), QByteArray("1"));
    QCOMPARE(analyzer.ask("CALC:MARK:FUNC:POW:SEL ACP;:POW:ACH:BWID 1e6;SPAC 2e6;"
                          ":FREQ:CENT 2e9;:CALC1:MARK1:FUNC:POW:RES? ACP"),
             QByteArray("-7.000000,-193.000000,-193.000000"));
    QCOMPARE(generator.ask("FREQ 1e9;*OPC?"), QByteArray("1"));
    QCOMPARE(analyzer.ask("CALC1:MARK1:FUNC:POW:RES? ACP"),
             QByteArray("-200.000000,0.000000,0.000000"));
}

void TestScpiServer::aHundredConnectionsAreServed()
{
    std::vector<ScpiClient> clients(100);
    for (ScpiClient& client : clients) {
        client.socket.connectToHost(QHostAddress::LocalHost, server->port());
    }
    int number = 0;
    for (ScpiClient& client : clients) {
        QTRY_COMPARE(client.socket.state(), QTcpSocket::ConnectedState);
        client.send("FREQ " + QByteArray::number(++number) + ";FREQ?\n");
    }
    number = 0;
    for (ScpiClient& client : clients) {
        QCOMPARE(client.answer(), QByteArray::number(++number) + ".000000");
        client.send("*OPC?\n");
    }
    for (ScpiClient& client : clients) {
        QCOMPARE(client.answer(), QByteArray("1"));
    }
}

void TestScpiServer::anOverlongLineIsAnErrorAndNothingElse()
{
    ScpiClient client;
    QVERIFY(client.connectTo(server->port()));
    client.send("FREQ 5;" + QByteArray(1 << 20, ' ') + "FREQ 6\n");
    QCOMPARE(client.ask("FREQ?"), QByteArray("1000000000.000000"));
    QVERIFY(client.ask("SYST:ERR?").startsWith("-363,\"Input buffer overrun"));
    QCOMPARE(client.ask("SYST:ERR?"), QByteArray("0,\"No error\""));
}

void TestScpiServer::garbageIsSurvived()
{
    ScpiClient client;
    QVERIFY(client.connectTo(server->port()));
    std::mt19937 random(7);
    for (int round = 0; round < 50; ++round) {
        QByteArray bytes;
        for (int k = 0; k < 5000; ++k) {
            bytes += static_cast<char>(random() & 0xFF);
        }
        client.send(bytes);
        client.send("\n;:;;::?;*;&;@;\";';[];\n");
    }
    client.send("\n*CLS\n");
    // Some of the noise may have been a question; the last answer is the one asked for here.
    client.send("*IDN?\n");
    QByteArray answer;
    QTRY_VERIFY((answer += client.socket.readAll()).endsWith("Simulated Bench,0,1.0\n"));
    QCOMPARE(client.ask("SYST:ERR?"), QByteArray("0,\"No error\""));
}

void TestScpiServer::aConnectionThatEndsInALineHarmsNobody()
{
    ScpiClient other;
    QVERIFY(other.connectTo(server->port()));
    {
        ScpiClient client;
        QVERIFY(client.connectTo(server->port()));
        client.send("*IDN?\nFREQ 1234");
        client.socket.abort();
    }
    QCOMPARE(other.ask("FREQ?"), QByteArray("1000000000.000000"));
    QTRY_VERIFY(server->findChildren<ScpiConnection*>().size() == 1);
}

void TestScpiServer::aPeerThatNeverReadsIsDropped()
{
    SimulatedInstrument many(*bench, BenchFace::Generator, withOptions(QByteArray(4000, 'x')));
    ScpiServer talkative(many, nullptr, Clients::Any, {});
    QVERIFY(talkative.listen(QHostAddress::LocalHost, 0));
    ScpiClient client;
    client.socket.setReadBufferSize(1);
    QVERIFY(client.connectTo(talkative.port()));
    for (int k = 0; k < 20000; ++k) { // 80 megabytes of answers, more than the system buffers
        client.socket.write("*OPT?\n");
    }
    QTRY_VERIFY_WITH_TIMEOUT(talkative.findChildren<ScpiConnection*>().isEmpty(), 30000);
    ScpiClient other;
    QVERIFY(other.connectTo(talkative.port()));
    QCOMPARE(other.ask("*OPC?"), QByteArray("1"));
}

void TestScpiServer::aFastSweepOfAFixedSignalWaitsForNothing()
{
    sweep = std::make_unique<Sweep>(*instrument, nullptr, true);
    serve(Clients::Any, {});
    ScpiClient other;
    QVERIFY(other.connectTo(server->port()));
    QElapsedTimer time;
    time.start();
    QCOMPARE(other.ask("SWE:TIME 100;:INIT;*WAI;*OPC?"), QByteArray("1"));
    QVERIFY(time.elapsed() < 10000);
}

void TestScpiServer::aSweepTakesItsTime()
{
    ScpiClient client;
    QVERIFY(client.connectTo(server->port()));
    QElapsedTimer time;
    time.start();
    client.send("SWE:TIME 0.300000\nINIT:CONT OFF\nINIT;*WAI\n*CLS;*OPT?\n");
    QCOMPARE(client.answer(), QByteArray("B15"));
    QVERIFY2(time.elapsed() >= 300, qPrintable(QString::number(time.elapsed())));
    QCOMPARE(client.ask("*OPT?"), QByteArray("B15"));
}

void TestScpiServer::whatDoesNotWaitIsAnsweredDuringASweep()
{
    ScpiClient client;
    ScpiClient other;
    QVERIFY(client.connectTo(server->port()) && other.connectTo(server->port()));
    QCOMPARE(client.ask("*CLS;:SWE:TIME 100;:INIT;*OPC;*ESR?"), QByteArray("0"));
    QVERIFY(sweep->isRunning());
    QCOMPARE(other.ask("*WAI;*OPC?"), QByteArray("1")); // it began none
    client.send("*OPC?\n");
    QCOMPARE(other.ask("*OPT?"), QByteArray("B15"));
    QCOMPARE(client.socket.bytesAvailable(), qint64(0));
    // A new sweep takes the place of the old one.
    QCOMPARE(other.ask("SWE:TIME 0.01;:INIT;*WAI;*OPT?"), QByteArray("B15"));
    QCOMPARE(client.answer(), QByteArray("1"));
    QCOMPARE(client.ask("*ESR?"), QByteArray("1"));
}

void TestScpiServer::theResultOfASweepIsWaitedFor()
{
    ScpiClient client;
    QVERIFY(client.connectTo(server->port()));
    bench->play(tone(64, 0));
    QElapsedTimer time;
    time.start();
    client.send("CALC:MARK:FUNC:POW:SEL ACP;:POW:ACH:BWID 1e6;SPAC 2e6;:SWE:TIME 0.2;:INIT\n");
    QCOMPARE(client.ask("CALC1:MARK1:FUNC:POW:RES? ACP").count(','), 2);
    QVERIFY(time.elapsed() >= 200);
}

void TestScpiServer::ofOneClientAtATimeTheSecondWaits()
{
    serve(Clients::OneAtATime, {});
    ScpiClient second;
    ScpiClient third;
    {
        ScpiClient first;
        QVERIFY(first.connectTo(server->port()));
        QCOMPARE(first.ask("*OPC?"), QByteArray("1"));
        QVERIFY(second.connectTo(server->port()));
        second.send("*OPT?\n");
        QVERIFY(third.connectTo(server->port()));
        third.socket.abort(); // who gives up is passed over
        QCOMPARE(first.ask("*OPC?"), QByteArray("1"));
        QCOMPARE(second.socket.bytesAvailable(), qint64(0));
        first.socket.abort();
    }
    QCOMPARE(second.answer(), QByteArray("B15"));
    QCOMPARE(second.ask("*OPC?"), QByteArray("1"));
    second.socket.abort();
    ScpiClient fourth;
    QVERIFY(fourth.connectTo(server->port()));
    QCOMPARE(fourth.ask("*OPC?"), QByteArray("1"));
}

void TestScpiServer::aDelayedAnswerComesInItsTurn()
{
    AnswerManner manner;
    manner.delay = 200;
    serve(Clients::Any, manner);
    ScpiClient client;
    QVERIFY(client.connectTo(server->port()));
    QElapsedTimer time;
    time.start();
    client.send("FREQ 5\n*OPT?\nFREQ?\n");
    QCOMPARE(client.answer(), QByteArray("B15"));
    QVERIFY(time.elapsed() >= 200);
    QCOMPARE(client.answer(), QByteArray("5.000000"));
    QVERIFY(time.elapsed() >= 400);
}

void TestScpiServer::aSilentInstrumentWorksAndDoesNotAnswer()
{
    AnswerManner manner;
    manner.silent = true;
    serve(Clients::Any, manner);
    ScpiClient client;
    QVERIFY(client.connectTo(server->port()));
    client.send("*IDN?\nFREQ 5\n");
    QTRY_COMPARE(bench->settings.generator.frequency, 5.0);
    QCOMPARE(client.socket.bytesAvailable(), qint64(0));
}

void TestScpiServer::anInstrumentThatDropsEndsTheConnectionAtAQuestion()
{
    AnswerManner manner;
    manner.dropsClient = true;
    serve(Clients::OneAtATime, manner);
    for (int round = 0; round < 3; ++round) {
        ScpiClient client;
        QVERIFY(client.connectTo(server->port()));
        client.send("FREQ " + QByteArray::number(round + 5) + '\n');
        QTRY_COMPARE(bench->settings.generator.frequency, round + 5.0);
        QCOMPARE(client.socket.state(), QTcpSocket::ConnectedState);
        client.send("*IDN?\n");
        QTRY_COMPARE(client.socket.state(), QTcpSocket::UnconnectedState);
        QCOMPARE(client.socket.readAll(), QByteArray());
    }
}

// What a library of instruments asks whoever stands behind a raw socket.
void TestScpiServer::aStrangersClientGetsAlong()
{
    ScpiClient client;
    QVERIFY(client.connectTo(server->port()));
    QCOMPARE(client.ask("*CLS\n*IDN?\r"), QByteArray("Notchbench,Simulated Bench,0,1.0"));
    QCOMPARE(client.ask("*ESR?"), QByteArray("0"));
    QCOMPARE(client.ask("*STB?"), QByteArray("0"));
    QCOMPARE(client.ask("freq:cent 1.5E+09;*opc?"), QByteArray("1"));
    QCOMPARE(client.ask("SENSE:FREQUENCY:CENTER?"), QByteArray("1500000000.000000"));
    QCOMPARE(client.ask("SYST:ERR?"), QByteArray("0,\"No error\""));
}

void TestScpiServer::everyLineAndAnswerIsLogged()
{
    QSignalSpy log(server.get(), &ScpiServer::logged);
    ScpiClient client;
    QVERIFY(client.connectTo(server->port()));
    client.send("FREQ 5\n\x01\n*OPC?\n");
    QTRY_COMPARE(log.size(), 4);
    const QString name = QStringLiteral("127.0.0.1:%1").arg(client.socket.localPort());
    QCOMPARE(log[0][0].toString(), name + " << FREQ 5");
    QCOMPARE(log[1][0].toString(), name + " << .");
    QCOMPARE(log[2][0].toString(), name + " << *OPC?");
    QCOMPARE(log[3][0].toString(), name + " >> 1");
}

void TestScpiServer::aTakenPortIsReported()
{
    ScpiServer second(*instrument, nullptr, Clients::Any, {});
    QVERIFY(!second.listen(QHostAddress::LocalHost, server->port()));
    QVERIFY(!second.errorText().isEmpty());
}

void TestScpiServer::theServerEndsWithConnectionsOpen()
{
    ScpiClient client;
    QVERIFY(client.connectTo(server->port()));
    QCOMPARE(client.ask("*OPC?"), QByteArray("1"));
    server.reset();
    QTRY_COMPARE(client.socket.state(), QTcpSocket::UnconnectedState);
}

QTEST_GUILESS_MAIN(TestScpiServer)
#include "test_scpi_server.moc"
