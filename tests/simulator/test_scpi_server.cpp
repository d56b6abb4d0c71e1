// The instruments over real connections: split, joined and overlong lines, garbage, many peers,
// peers that don't read.
#include "ready_bench.h"
#include "scpi_client.h"

#include "simulator/scpi_server.h"

#include <QtTest>

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
    void aSweepOfAFixedSignalWaitsForNothing();
    void everyLineAndAnswerIsLogged();
    void aTakenPortIsReported();
    void theServerEndsWithConnectionsOpen();

private:
    std::unique_ptr<Bench> bench;
    std::unique_ptr<ScpiServer> server;
};

void TestScpiServer::init()
{
    server.reset();
    bench = std::make_unique<Bench>(readyBench());
    server = std::make_unique<ScpiServer>(*bench, BenchFace::GeneratorAndAnalyzer, "B15", nullptr);
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
    QCOMPARE(analyzer.ask("FREQ:CENT 2e9;:CALC1:MARK1:FUNC:POW:RES? ACP"),
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
    ScpiServer talkative(*bench, BenchFace::GeneratorAndAnalyzer, QByteArray(4000, 'x'), nullptr);
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

void TestScpiServer::aSweepOfAFixedSignalWaitsForNothing()
{
    ScpiClient client;
    QVERIFY(client.connectTo(server->port()));
    QCOMPARE(client.ask("INIT;*WAI;*OPC?"), QByteArray("1"));
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
    ScpiServer second(*bench, BenchFace::Microwave, "", nullptr);
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
