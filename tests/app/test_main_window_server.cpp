// The status server of the window, met by real clients on real sockets.
#include "kit/free_port.h"
#include "kit/main_window_test.h"
#include "kit/status_client.h"

#include <QProcess>
#include <QTcpServer>

#include <cstring>

namespace {

QByteArray hex(const char* text)
{
    return QByteArray::fromHex(text);
}

// Only a privileged process may listen on port 1000 on this platform.
bool mayUsePort1000()
{
    QTcpServer server;
    return server.listen(QHostAddress::Any, 1000);
}

float floatAt(const QByteArray& bytes, int offset)
{
    float value = 0.0F;
    std::memcpy(&value, bytes.constData() + offset, sizeof(value));
    return value;
}

const char notNew[] = "03000000 00000000";
const char rate100MHz[] = "00000000 20bcbe4c";
const char length64[] = "01000000 00008042";

} // namespace

class TestMainWindowServer : public MainWindowTest
{
    Q_OBJECT

private slots:
    void init();
    void cleanup();
    void listensOnPort1000AtStart();
    void loadedPortAndStartPortAreBothServed();
    void startPortIsNeitherShownNorSaved();
    void greetingComesUnasked();
    void newStateCarriesTheSamplesOnce();
    void changeBeforeThePollForgetsTheResult();
    void bigBlockArrivesWhole();
    void splitRequestIsNotRecognised();
    void joinedRequestsGetOneReply();
    void unknownTextKeepsTheConnection();
    void hugeRequestKeepsTheWindowAlive();
    void disconnectionShowsOnTheScreen();
    void slotsOfTheWindowReachTheServer();
    void secondClientTakesThePlaceOfTheFirst();
    void firstClientThatGoesTakesTheSecondAlong();
    void clientsThatComeAndGoLeaveNothingBehind();
    void clientStaysConnectedThroughAPortChange();
    void portInUseGoesUnnoticed();
    void clientInTheMiddleOfABlockMayVanish();
    void theSessionOfTheManualFetchesTheSignal();

private:
    void calculate64();
    QTcpSocket* windowsEndOf(const StatusClient& client) const;

    quint16 port = 0;
};

void TestMainWindowServer::init()
{
    openWindow();
    port = freePort();
    operate->type("port_input", QString::number(port));
    operate->pick("fft_length_input", 16); // 64
}

void TestMainWindowServer::cleanup()
{
    closeWindow();
}

void TestMainWindowServer::calculate64()
{
    operate->pick("phase_mode_combobox", 3); // constant: sample 0 is sqrt(64) at pi/4
    operate->click("calc_fft_button");
    QTRY_COMPARE(operate->text("fft_status_label"), QStringLiteral("Data valid"));
}

QTcpSocket* TestMainWindowServer::windowsEndOf(const StatusClient& client) const
{
    for (auto* socket : window->findChildren<QTcpSocket*>()) {
        if (socket->peerPort() == client.socket.localPort()) {
            return socket;
        }
    }
    return nullptr;
}

void TestMainWindowServer::listensOnPort1000AtStart()
{
    cleanup();
    forgetSavedSettings();
    if (!mayUsePort1000()) {
        QSKIP("port 1000 needs a privileged process or is taken");
    }
    window = std::make_unique<MainWindow>();
    StatusClient client;
    QVERIFY(client.connectTo(1000));
    QCOMPARE(client.take(24), hex(notNew) + hex("01000000 00000048") + hex(rate100MHz));
}

void TestMainWindowServer::loadedPortAndStartPortAreBothServed()
{
    cleanup(); // saves the port of init
    const quint16 startPort = freePort();
    window = std::make_unique<MainWindow>(nullptr, startPort);
    operate = std::make_unique<WindowDriver>(*window);
    QCOMPARE(operate->text("port_input"), QString::number(port));
    StatusClient client;
    QVERIFY(client.isGreetedAt(port));
    QVERIFY(client.isSilentBeforeIdentity());
    StatusClient other;
    QVERIFY(other.isGreetedAt(startPort));
    QVERIFY(other.isSilentBeforeIdentity());
}

void TestMainWindowServer::startPortIsNeitherShownNorSaved()
{
    cleanup();
    forgetSavedSettings();
    const quint16 startPort = freePort();
    window = std::make_unique<MainWindow>(nullptr, startPort);
    operate = std::make_unique<WindowDriver>(*window);
    QCOMPARE(operate->text("port_input"), QStringLiteral("1000"));
    StatusClient client;
    QVERIFY(client.isGreetedAt(startPort));
    cleanup();
    window = std::make_unique<MainWindow>(nullptr, startPort);
    operate = std::make_unique<WindowDriver>(*window);
    QCOMPARE(operate->text("port_input"), QStringLiteral("1000"));
}

void TestMainWindowServer::greetingComesUnasked()
{
    StatusClient client;
    QVERIFY(client.connectTo(port));
    QCOMPARE(client.take(24), hex(notNew) + hex(length64) + hex(rate100MHz));
    QVERIFY(client.isSilentBeforeIdentity());
    QCOMPARE(operate->text("tcp_status_label"), QStringLiteral("connected"));
}

void TestMainWindowServer::newStateCarriesTheSamplesOnce()
{
    StatusClient client;
    QVERIFY(client.isGreetedAt(port));
    calculate64();
    const QByteArray reply = client.ask("GetNewState", 24 + 4 + 64 * 8);
    QCOMPARE(reply.left(28),
             hex("03000000 0000803f") + hex(rate100MHz) + hex(length64) + hex("02000000"));
    QCOMPARE(floatAt(reply, 28), 5.656854F); // 8 cos(pi/4)
    QCOMPARE(floatAt(reply, 32), 5.656854F);
    for (int word = 2; word < 128; ++word) {
        QVERIFY(qAbs(floatAt(reply, 28 + 4 * word)) < 1e-12F);
    }
    QCOMPARE(client.ask("GetNewState", 8), hex(notNew));
    QVERIFY(client.isSilentBeforeIdentity());
    QCOMPARE(client.ask("GetSymbol", 4 + 64 * 8), reply.mid(24));
}

void TestMainWindowServer::changeBeforeThePollForgetsTheResult()
{
    StatusClient client;
    QVERIFY(client.isGreetedAt(port));
    calculate64();
    operate->type("nbw_srate_input", "0.9");
    QCOMPARE(client.ask("GetNewState", 8), hex(notNew));
    QVERIFY(client.isSilentBeforeIdentity());
}

void TestMainWindowServer::bigBlockArrivesWhole()
{
    operate->pick("fft_length_input", 5); // 131072
    StatusClient client;
    QVERIFY(client.isGreetedAt(port));
    operate->click("calc_fft_button");
    QTRY_COMPARE(operate->text("fft_status_label"), QStringLiteral("Data valid"));
    const QByteArray block = client.ask("GetSymbol", 1048580);
    QCOMPARE(block.size(), 1048580);
    QCOMPARE(block.left(4), hex("02000000"));
    QVERIFY(client.isSilentBeforeIdentity());
    // Unit mean power: the squares of all words add up to the number of samples.
    double power = 0.0;
    for (int word = 1; word <= 262144; ++word) {
        power += double(floatAt(block, 4 * word)) * double(floatAt(block, 4 * word));
    }
    QVERIFY(qAbs(power / 131072 - 1.0) < 1e-6);
}

void TestMainWindowServer::splitRequestIsNotRecognised()
{
    StatusClient client;
    QVERIFY(client.isGreetedAt(port));
    const QSignalSpy reads(windowsEndOf(client), &QTcpSocket::readyRead);
    client.send("GetServ");
    QTRY_COMPARE(reads.count(), 1);
    client.send("erID");
    QTRY_COMPARE(reads.count(), 2);
    QVERIFY(client.isSilentBeforeIdentity());
}

void TestMainWindowServer::joinedRequestsGetOneReply()
{
    StatusClient client;
    QVERIFY(client.isGreetedAt(port));
    QCOMPARE(client.ask("GetServerIDGetNewState", 100).left(4), hex("04000000"));
    QVERIFY(client.isSilentBeforeIdentity());
    QCOMPARE(client.ask("GetSymbolRate\r\n", 8), hex(rate100MHz));
    QVERIFY(client.isSilentBeforeIdentity());
}

void TestMainWindowServer::unknownTextKeepsTheConnection()
{
    StatusClient client;
    QVERIFY(client.isGreetedAt(port));
    const QSignalSpy reads(windowsEndOf(client), &QTcpSocket::readyRead);
    client.send("getserverid");
    QTRY_COMPARE(reads.count(), 1);
    QVERIFY(client.isSilentBeforeIdentity());
    QCOMPARE(client.ask("GetSequenceLength", 8), hex(length64));
}

void TestMainWindowServer::hugeRequestKeepsTheWindowAlive()
{
    StatusClient client;
    QVERIFY(client.isGreetedAt(port));
    const QSignalSpy reads(windowsEndOf(client), &QTcpSocket::readyRead);
    client.send(QByteArray(8 * 1024 * 1024, 'x'));
    QTRY_VERIFY(reads.count() >= 10);
    operate->type("seed_input", "3");
    QCOMPARE(operate->text("seed_input"), QStringLiteral("3"));
    QCOMPARE(operate->text("tcp_status_label"), QStringLiteral("connected"));
}

void TestMainWindowServer::disconnectionShowsOnTheScreen()
{
    StatusClient client;
    QVERIFY(client.connectTo(port));
    QTRY_COMPARE(operate->text("tcp_status_label"), QStringLiteral("connected"));
    client.socket.close();
    QTRY_COMPARE(operate->text("tcp_status_label"), QStringLiteral("not connected"));
    StatusClient next;
    QVERIFY(next.isGreetedAt(port));
    QTRY_COMPARE(operate->text("tcp_status_label"), QStringLiteral("connected"));
}

void TestMainWindowServer::slotsOfTheWindowReachTheServer()
{
    StatusClient client;
    QVERIFY(client.isGreetedAt(port));
    window->new_connection(); // nobody waits
    window->read_connection();
    QVERIFY(client.isSilentBeforeIdentity());
    window->disconnected();
    QCOMPARE(operate->text("tcp_status_label"), QStringLiteral("not connected"));
    QTRY_COMPARE(client.socket.state(), QTcpSocket::UnconnectedState);
}

void TestMainWindowServer::secondClientTakesThePlaceOfTheFirst()
{
    StatusClient first;
    QVERIFY(first.isGreetedAt(port));
    StatusClient second;
    QVERIFY(second.isGreetedAt(port));
    // What the first sends is read from the second's buffer, where nothing is.
    const QSignalSpy reads(windowsEndOf(first), &QTcpSocket::readyRead);
    first.send("GetServerID");
    QTRY_COMPARE(reads.count(), 1);
    QVERIFY(second.isSilentBeforeIdentity());
    QCOMPARE(first.socket.bytesAvailable(), 0);
    QCOMPARE(first.socket.state(), QTcpSocket::ConnectedState);
}

void TestMainWindowServer::firstClientThatGoesTakesTheSecondAlong()
{
    StatusClient first;
    QVERIFY(first.isGreetedAt(port));
    StatusClient second;
    QVERIFY(second.isGreetedAt(port));
    first.socket.close();
    QTRY_COMPARE(operate->text("tcp_status_label"), QStringLiteral("not connected"));
    QTRY_COMPARE(second.socket.state(), QTcpSocket::UnconnectedState);
    second.send("GetServerID");
    StatusClient third;
    QVERIFY(third.isGreetedAt(port));
    QVERIFY(third.isSilentBeforeIdentity());
}

void TestMainWindowServer::clientsThatComeAndGoLeaveNothingBehind()
{
    for (int round = 0; round < 20; ++round) {
        StatusClient first;
        StatusClient second;
        QVERIFY(first.connectTo(port));
        QVERIFY(second.connectTo(port));
        second.send("GetNewState");
        if (round % 2 == 0) {
            second.socket.abort();
        }
        first.socket.abort();
    }
    QTRY_COMPARE(operate->text("tcp_status_label"), QStringLiteral("not connected"));
    QTRY_VERIFY(window->findChildren<QTcpSocket*>().size() <= 1);
}

void TestMainWindowServer::clientStaysConnectedThroughAPortChange()
{
    StatusClient client;
    QVERIFY(client.isGreetedAt(port));
    const quint16 otherPort = freePort();
    const QPointer<QTcpServer> formerServer = window->findChildren<QTcpServer*>().constLast();
    QCOMPARE(formerServer->serverPort(), port);
    operate->type("port_input", QString::number(otherPort));
    QTRY_VERIFY(formerServer.isNull());
    QVERIFY(client.isSilentBeforeIdentity());
    QCOMPARE(operate->text("tcp_status_label"), QStringLiteral("connected"));
    StatusClient next;
    QVERIFY(next.isGreetedAt(otherPort));
}

void TestMainWindowServer::portInUseGoesUnnoticed()
{
    QTcpServer other;
    QVERIFY(other.listen(QHostAddress::Any));
    operate->type("port_input", QString::number(other.serverPort()));
    QCOMPARE(operate->text("tcp_status_label"), QStringLiteral("not connected"));
    operate->type("port_input", QString::number(port));
    StatusClient client;
    QVERIFY(client.isGreetedAt(port));
}

void TestMainWindowServer::clientInTheMiddleOfABlockMayVanish()
{
    operate->pick("fft_length_input", 2); // 1048576: a block of 8 MiB
    operate->click("calc_fft_button");
    QTRY_COMPARE_WITH_TIMEOUT(operate->text("fft_status_label"), QStringLiteral("Data valid"),
                              60000);
    StatusClient client;
    QVERIFY(client.isGreetedAt(port));
    client.socket.setReadBufferSize(1000);
    client.send("GetSymbol");
    QTRY_VERIFY(windowsEndOf(client)->bytesToWrite() > 0);
    client.socket.abort();
    QTRY_COMPARE(operate->text("tcp_status_label"), QStringLiteral("not connected"));
}

void TestMainWindowServer::theSessionOfTheManualFetchesTheSignal()
{
    QFile page(QStringLiteral(NOTCHBENCH_SOURCE_DIR "/docs/manual/status_protocol.html"));
    QVERIFY(page.open(QIODevice::ReadOnly));
    QString session = QString::fromUtf8(page.readAll()).section("<pre>", 1).section("</pre>", 0, 0);
    session.replace("&lt;", "<").replace("1000)", QString::number(port) + ')');
    calculate64();
    QProcess script;
    script.start("python3",
                 {"-c", session + "\nprint(tag, len(samples), rate, round(samples[0], 4))\n"});
    QTRY_COMPARE_WITH_TIMEOUT(script.state(), QProcess::NotRunning, 30000);
    QCOMPARE(script.readAllStandardOutput().trimmed(), QByteArray("2 128 100000000.0 5.6569"));
}

QTEST_MAIN(TestMainWindowServer)
#include "test_main_window_server.moc"
