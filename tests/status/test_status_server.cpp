// The status server without a window, met by real clients on ports that the system chooses.
#include "kit/status_client.h"
#include "kit/system_limits.h"
#include "setup/measurement_setup.h"
#include "status/status_server.h"

#include <QFile>
#include <QLoggingCategory>
#include <QSignalSpy>
#include <QTcpServer>

#include <algorithm>
#include <memory>
#include <vector>

namespace {

QByteArray hex(const char* text)
{
    return QByteArray::fromHex(text);
}

// With this limit so many further descriptors are to be had.
rlim_t descriptorLimitLeaving(int count)
{
    std::vector<std::unique_ptr<QFile>> files;
    int highest = 0;
    for (int i = 0; i < count; ++i) {
        files.push_back(std::make_unique<QFile>(QStringLiteral("/dev/null")));
        files.back()->open(QIODevice::ReadOnly);
        highest = std::max(highest, files.back()->handle());
    }
    return rlim_t(highest) + 1;
}

QStringList logged;

void collect(QtMsgType /*type*/, const QMessageLogContext& /*context*/, const QString& text)
{
    logged.append(text);
}

const char greetingBytes[] = "03000000 00000000 01000000 00000048 00000000 20bcbe4c";
const char length131072[] = "01000000 00000048";

} // namespace

class TestStatusServer : public QObject
{
    Q_OBJECT

private slots:
    void initTestCase();
    void init();
    void cleanup();
    void clientIsGreetedAndReported();
    void greetingIsOnItsWayBeforeTheClientIsReported();
    void clientThatGoesIsReportedOnce();
    void askedForNewDataTheRecordForgetsThem();
    void longBlocksArriveWhole();
    void readTakesAtMost1024Bytes();
    void requestsStandInTheLog();
    void unreadBytesOfAClientAreBounded();
    void requestSentBeforeTheGreetingIsAnswered();
    void evenOneByteSentBeforeTheGreetingIsRead();
    void clientMayBeTakenAtOnce();
    void clientThatWentBeforeItWasGreetedLeavesNothing();
    void clientWhoseEndIsKnownBeforeItIsTakenLeavesNothing();
    void unheardBytesWaitAtTheSender_data();
    void unheardBytesWaitAtTheSender();
    void secondClientTakesThePlaceOfTheFirst();
    void firstClientThatGoesTakesTheSecondAlong();
    void clientThatTakesNothingIsReadAgainOnceItHasTakenSome();
    void clientIsReadUntilMoreThan256MiBWaitForIt();
    void formerClientsAreDroppedTheOldestFirst();
    void formerClientsThatLeaveMuchUnreadAreDropped();
    void clientThatTakesTheLastDescriptorsIsDropped();
    void closedServerKeepsItsClients();
    void closedPortCanBeHadAgainAtOnce();
    void aFormerServerThatStaysOpenIsServedToo();
    void portInUseGoesUnnoticed();
    void nothingHappensWhenNothingWaits();
    void endOfTheServerIsNotReportedAsTheEndOfAClient();

private:
    std::unique_ptr<StatusClient> greetedClient();
    QList<QTcpSocket*> peers() const;
    void hearOfClientsBeforeTheyAreTaken();
    void makeBlocksOf(int samples);
    void makeBlocksOf64MiB();

    std::unique_ptr<QObject> owner;
    std::unique_ptr<MeasurementSetup> setup;
    std::unique_ptr<StatusServer> server;
    std::unique_ptr<QSignalSpy> reports;
};

void TestStatusServer::initTestCase()
{
    QLoggingCategory::setFilterRules(QStringLiteral("default.debug=false")); // of each request
}

void TestStatusServer::init()
{
    owner = std::make_unique<QObject>();
    setup = std::make_unique<MeasurementSetup>();
    server = std::make_unique<StatusServer>(*setup, owner.get());
    reports = std::make_unique<QSignalSpy>(server.get(), &StatusServer::clientChanged);
    server->listen(0);
    QVERIFY(server->port() != 0);
}

void TestStatusServer::cleanup()
{
    reports.reset();
    server.reset();
    owner.reset();
}

std::unique_ptr<StatusClient> TestStatusServer::greetedClient()
{
    auto client = std::make_unique<StatusClient>();
    if (!client->connectTo(server->port()) || client->take(24) != hex(greetingBytes)) {
        QTest::qFail("the client was not greeted", __FILE__, __LINE__);
    }
    return client;
}

// The server's ends of the connections that it serves.
QList<QTcpSocket*> TestStatusServer::peers() const
{
    return owner->findChildren<QTcpSocket*>(QString(), Qt::FindDirectChildrenOnly);
}

// Of their first bytes, which the socket then holds and tells of no more.
void TestStatusServer::hearOfClientsBeforeTheyAreTaken()
{
    const auto* listening = owner->findChild<QTcpServer*>();
    connect(listening, &QTcpServer::newConnection, this,
            [listening] { QVERIFY(listening->findChild<QTcpSocket*>()->waitForReadyRead(5000)); });
}

// Of 4 bytes and two floats a sample.
void TestStatusServer::makeBlocksOf(int samples)
{
    const QVector<double> zeros(samples);
    setup->signal.iSamples = zeros;
    setup->signal.qSamples = zeros;
    setup->signal.length = samples;
}

void TestStatusServer::makeBlocksOf64MiB()
{
    makeBlocksOf(8388608);
}

void TestStatusServer::clientIsGreetedAndReported()
{
    StatusClient client;
    QVERIFY(client.connectTo(server->port()));
    QCOMPARE(client.take(24), hex(greetingBytes));
    QCOMPARE(*reports, QList<QVariantList>{{true}});
    QVERIFY(client.isSilentBeforeIdentity());
}

// Whoever hears of the client may keep the event loop busy for long.
void TestStatusServer::greetingIsOnItsWayBeforeTheClientIsReported()
{
    qint64 waiting = -1;
    connect(server.get(), &StatusServer::clientChanged, this,
            [&] { waiting = peers().constLast()->bytesToWrite(); });
    const auto client = greetedClient();
    QCOMPARE(waiting, qint64{0});
}

void TestStatusServer::clientThatGoesIsReportedOnce()
{
    const auto client = greetedClient();
    client->socket.close();
    QTRY_VERIFY(peers().isEmpty());
    const QList<QVariantList> expected = {{true}, {false}};
    QCOMPARE(*reports, expected);
}

void TestStatusServer::askedForNewDataTheRecordForgetsThem()
{
    const auto client = greetedClient();
    setup->newDataFlag = true;
    // The state, the rate, the length and a block without samples.
    QCOMPARE(client->ask("GetNewState", 28).left(8), hex("03000000 0000803f"));
    QVERIFY(!setup->newDataFlag);
}

// 4 + 8 * 20000 bytes, which are two writes of 64000 and one of 32004.
void TestStatusServer::longBlocksArriveWhole()
{
    constexpr int samples = 20000;
    setup->signal = SignalData(samples);
    setup->signal.iSamples.fill(1.0);
    setup->signal.qSamples.fill(-2.5);
    const auto client = greetedClient();
    const QByteArray expected = hex("02000000") + hex("0000803f 000020c0").repeated(samples);
    QVERIFY(client->ask("GetSymbol", expected.size()) == expected);
    QVERIFY(client->isSilentBeforeIdentity());
}

void TestStatusServer::readTakesAtMost1024Bytes()
{
    const auto client = greetedClient();
    const QByteArray first = QByteArray("GetServerID").leftJustified(1024, 'x');
    QCOMPARE(client->ask(first + "GetSequenceLength", 100).left(4), hex("04000000"));
    QCOMPARE(client->socket.bytesAvailable(), 0);
    // What lay beyond waits for more to come and is then where a request begins.
    QCOMPARE(client->ask("x", 8), hex(length131072));
}

void TestStatusServer::requestsStandInTheLog()
{
    const auto client = greetedClient();
    logged.clear();
    QLoggingCategory::setFilterRules(QString());
    const QtMessageHandler former = qInstallMessageHandler(collect);
    const bool isAnswered = client->isSilentBeforeIdentity();
    server->answerRequest(); // nothing waits
    qInstallMessageHandler(former);
    initTestCase();
    QVERIFY(isAnswered);
    QCOMPARE(logged, QStringList({"<<  \"GetServerID\"", "<<  \"\""}));
}

void TestStatusServer::unreadBytesOfAClientAreBounded()
{
    const auto client = greetedClient();
    const QTcpSocket* peer = peers().constFirst();
    qint64 mostUnread = 0;
    connect(peer, &QTcpSocket::readyRead, this,
            [&] { mostUnread = std::max(mostUnread, peer->bytesAvailable()); });
    client->send(QByteArray(8 * 1048576, 'x'));
    QTRY_COMPARE(client->socket.bytesToWrite(), 0);
    QVERIFY(mostUnread > 1000000); // it read less than it was sent
    QVERIFY(mostUnread <= 1048576);
}

void TestStatusServer::requestSentBeforeTheGreetingIsAnswered()
{
    hearOfClientsBeforeTheyAreTaken();
    StatusClient client;
    client.socket.connectToHost(QStringLiteral("127.0.0.1"), server->port());
    QVERIFY(client.socket.waitForConnected(5000)); // the server has not had its turn
    client.send("GetServerID");
    QCOMPARE(client.take(24), hex(greetingBytes));
    QCOMPARE(client.take(100).left(4), hex("04000000"));
    QVERIFY(client.isSilentBeforeIdentity());
}

void TestStatusServer::evenOneByteSentBeforeTheGreetingIsRead()
{
    hearOfClientsBeforeTheyAreTaken();
    StatusClient client;
    client.socket.connectToHost(QStringLiteral("127.0.0.1"), server->port());
    QVERIFY(client.socket.waitForConnected(5000)); // the server has not had its turn
    client.send("x");
    QCOMPARE(client.take(24), hex(greetingBytes));
    // Still unread, it would stand before the word.
    QCOMPARE(client.ask("GetServerID", 100).left(4), hex("04000000"));
}

void TestStatusServer::clientMayBeTakenAtOnce()
{
    bool isTaken = false;
    connect(owner->findChild<QTcpServer*>(), &QTcpServer::newConnection, this, [&] {
        server->takeClient();
        isTaken = reports->count() == 1;
    });
    const auto client = greetedClient();
    QVERIFY(isTaken);
    QVERIFY(client->isSilentBeforeIdentity()); // it isn't greeted again
    QCOMPARE(reports->count(), 1);
}

void TestStatusServer::clientThatWentBeforeItWasGreetedLeavesNothing()
{
    for (int i = 0; i < 20; ++i) {
        QTcpSocket hasty;
        hasty.connectToHost(QStringLiteral("127.0.0.1"), server->port());
        QVERIFY(hasty.waitForConnected(5000));
        hasty.write("GetServerID");
        hasty.waitForBytesWritten(5000);
        hasty.abort();
    }
    const auto settled = [this] { return greetedClient()->isSilentBeforeIdentity(); };
    QTRY_VERIFY(settled());
    QTRY_VERIFY(peers().isEmpty());
    QCOMPARE(reports->constLast().constFirst().toBool(), false);
}

void TestStatusServer::clientWhoseEndIsKnownBeforeItIsTakenLeavesNothing()
{
    {
        const QObject untilItHasGone;
        const auto* listening = owner->findChild<QTcpServer*>();
        connect(listening, &QTcpServer::newConnection, &untilItHasGone, [listening] {
            QVERIFY(listening->findChild<QTcpSocket*>()->waitForDisconnected(5000));
        });
        QTcpSocket hasty;
        hasty.connectToHost(QStringLiteral("127.0.0.1"), server->port());
        QVERIFY(hasty.waitForConnected(5000));
        hasty.abort();
        QTRY_COMPARE(*reports, QList<QVariantList>{{false}});
    }
    QTRY_VERIFY(peers().isEmpty());
    QVERIFY(greetedClient()->isSilentBeforeIdentity());
}

void TestStatusServer::unheardBytesWaitAtTheSender_data()
{
    QTest::addColumn<bool>("closed");
    QTest::addColumn<bool>("anotherPort");
    QTest::newRow("former client") << false << false;
    QTest::newRow("client of a port that was closed") << true << true;
    QTest::newRow("client of a former server that stays open") << false << true;
}

void TestStatusServer::unheardBytesWaitAtTheSender()
{
    QFETCH(bool, closed);
    QFETCH(bool, anotherPort);
    constexpr int sent = 64 * 1048576; // far more than the system holds on the way
    const auto unheard = greetedClient();
    const QTcpSocket* peer = peers().constFirst();
    if (closed) {
        server->close();
    }
    if (anotherPort) {
        server->listen(0);
    }
    const auto newest = greetedClient();
    unheard->send(QByteArray(sent, 'x'));
    QTRY_COMPARE(peer->bytesAvailable(), 1048576);
    for (int i = 0; i < 20; ++i) { // the event loop turns, and whatever can move moves
        QVERIFY(newest->isSilentBeforeIdentity());
    }
    QVERIFY(unheard->socket.bytesToWrite() > sent / 2);
    QCOMPARE(peer->bytesAvailable(), 1048576);
    QCOMPARE(unheard->socket.bytesAvailable(), 0);                      // neither answered
    QCOMPARE(unheard->socket.state(), QAbstractSocket::ConnectedState); // nor closed
}

void TestStatusServer::secondClientTakesThePlaceOfTheFirst()
{
    const auto first = greetedClient();
    const auto second = greetedClient();
    // What the first sends makes the server read the second, which has said nothing.
    first->send("GetServerID");
    const QTcpSocket* peerOfFirst = peers().constFirst();
    QTRY_COMPARE(peerOfFirst->bytesAvailable(), 11);
    QVERIFY(second->isSilentBeforeIdentity());
    QCOMPARE(first->socket.bytesAvailable(), 0);
    QCOMPARE(first->socket.state(), QAbstractSocket::ConnectedState);
    const QList<QVariantList> expected = {{true}, {true}};
    QCOMPARE(*reports, expected);
}

void TestStatusServer::firstClientThatGoesTakesTheSecondAlong()
{
    const auto first = greetedClient();
    const auto second = greetedClient();
    first->socket.close();
    QTRY_COMPARE(second->socket.state(), QAbstractSocket::UnconnectedState);
    QTRY_VERIFY(peers().isEmpty());
    QVERIFY(greetedClient()->isSilentBeforeIdentity());
}

void TestStatusServer::clientThatTakesNothingIsReadAgainOnceItHasTakenSome()
{
    makeBlocksOf64MiB();
    const auto client = greetedClient();
    client->socket.setReadBufferSize(1000);
    const QTcpSocket* peer = peers().constFirst();
    // Four blocks less what the system's buffers hold, and one more, are above the bound.
    for (int request = 0; request < 5; ++request) {
        const qint64 before = peer->bytesToWrite();
        client->send("GetSymbol");
        QTRY_VERIFY(peer->bytesToWrite() > before);
    }
    const qint64 held = peer->bytesToWrite();
    QVERIFY(held > qint64{256} * 1048576);
    client->send("GetSequenceLength");
    QTRY_COMPARE(peer->bytesAvailable(), 17); // it stays unread
    QVERIFY(peer->bytesToWrite() <= held);    // and unanswered
    client->socket.setReadBufferSize(0);
    QByteArray tail;
    const auto endOfReplies = [&] { return tail = (tail + client->socket.readAll()).right(8); };
    QTRY_COMPARE_WITH_TIMEOUT(endOfReplies(), hex(length131072), 60000);
    QCOMPARE(peer->bytesAvailable(), 0);
}

// How much the system's buffers take isn't known, so each block is made to fill what is left.
void TestStatusServer::clientIsReadUntilMoreThan256MiBWaitForIt()
{
    constexpr qint64 bound = qint64{256} * 1048576;
    const auto client = greetedClient();
    client->socket.setReadBufferSize(1000);
    const QTcpSocket* peer = peers().constFirst();
    const QSignalSpy heard(peer, &QTcpSocket::readyRead);
    const auto ask = [&](const char* request) {
        const int before = heard.count();
        client->send(request);
        return QTest::qWaitFor([&] { return heard.count() > before; }, 30000);
    };
    for (qint64 left = bound; left >= 4; left = bound - peer->bytesToWrite()) {
        makeBlocksOf(static_cast<int>(std::min<qint64>(left - 4, 67108864) / 8));
        QVERIFY(ask("GetSymbol"));
        QCOMPARE(peer->bytesAvailable(), 0);
    }
    QVERIFY(ask("GetSymbolRate")); // 8 bytes, of which less than 4 fit
    QCOMPARE(peer->bytesAvailable(), 0);
    QVERIFY(ask("GetSymbolRate"));
    QCOMPARE(peer->bytesAvailable(), 13);
}

void TestStatusServer::formerClientsAreDroppedTheOldestFirst()
{
    std::vector<std::unique_ptr<StatusClient>> clients;
    clients.reserve(35);
    for (int i = 0; i < 35; ++i) {
        clients.push_back(greetedClient());
    }
    // The newest and 32 before it.
    QTRY_COMPARE(clients.at(0)->socket.state(), QAbstractSocket::UnconnectedState);
    QTRY_COMPARE(clients.at(1)->socket.state(), QAbstractSocket::UnconnectedState);
    QCOMPARE(clients.at(2)->socket.state(), QAbstractSocket::ConnectedState);
    QCOMPARE(peers().size(), 33);
    QVERIFY(clients.back()->isSilentBeforeIdentity());
    QCOMPARE(reports->count(), 35); // of none that it had gone
}

void TestStatusServer::formerClientsThatLeaveMuchUnreadAreDropped()
{
    makeBlocksOf64MiB();
    const auto first = greetedClient();
    const auto second = greetedClient();
    second->socket.setReadBufferSize(1000);
    for (int request = 0; request < 5; ++request) {
        const qint64 before = peers().constLast()->bytesToWrite();
        second->send("GetSymbol");
        QTRY_VERIFY(peers().constLast()->bytesToWrite() > before);
    }
    const auto third = greetedClient();
    QTRY_COMPARE(peers().size(), 1);
    QVERIFY(third->isSilentBeforeIdentity());
    QTRY_COMPARE(first->socket.state(), QAbstractSocket::UnconnectedState);
}

// Each takes one descriptor here and one of the process that it is tested in.
void TestStatusServer::clientThatTakesTheLastDescriptorsIsDropped()
{
    {
        const LoweredLimit tenLeft(RLIMIT_NOFILE, descriptorLimitLeaving(10));
        QVERIFY(greetedClient()->isSilentBeforeIdentity());
    }
    QTRY_VERIFY(peers().isEmpty());
    StatusClient surplus;
    {
        const LoweredLimit nineLeft(RLIMIT_NOFILE, descriptorLimitLeaving(9));
        QVERIFY(surplus.connectTo(server->port()));
        QTRY_COMPARE(surplus.socket.state(), QAbstractSocket::UnconnectedState);
    }
    QCOMPARE(surplus.socket.bytesAvailable(), 0);
    QCOMPARE(reports->count(), 2); // of the one before
    QVERIFY(greetedClient()->isSilentBeforeIdentity());
}

void TestStatusServer::closedServerKeepsItsClients()
{
    const auto client = greetedClient();
    const quint16 formerPort = server->port();
    server->close();
    server->listen(0);
    QTRY_COMPARE(owner->findChildren<QTcpServer*>().size(), 1); // the closed one is gone
    QVERIFY(client->isSilentBeforeIdentity());
    StatusClient late;
    late.socket.connectToHost(QStringLiteral("127.0.0.1"), formerPort);
    QTRY_COMPARE(late.socket.error(), QAbstractSocket::ConnectionRefusedError);
    QVERIFY(greetedClient()->isSilentBeforeIdentity());
}

void TestStatusServer::closedPortCanBeHadAgainAtOnce()
{
    const quint16 port = server->port();
    server->close();
    QCOMPARE(server->port(), quint16{0});
    server->listen(port);
    QCOMPARE(server->port(), port);
    QVERIFY(greetedClient()->isSilentBeforeIdentity());
}

void TestStatusServer::aFormerServerThatStaysOpenIsServedToo()
{
    const quint16 formerPort = server->port();
    server->listen(0);
    QVERIFY(server->port() != formerPort);
    const auto newer = greetedClient();
    QVERIFY(newer->isSilentBeforeIdentity());
    StatusClient former;
    QVERIFY(former.isGreetedAt(formerPort));
    QVERIFY(former.isSilentBeforeIdentity());
}

void TestStatusServer::portInUseGoesUnnoticed()
{
    QTcpServer other;
    QVERIFY(other.listen(QHostAddress::Any));
    server->close();
    server->listen(other.serverPort());
    QCOMPARE(server->port(), quint16{0});
    QCOMPARE(reports->count(), 0);
}

void TestStatusServer::nothingHappensWhenNothingWaits()
{
    StatusServer silent(*setup, owner.get());
    QCOMPARE(silent.port(), quint16{0});
    silent.takeClient();
    silent.answerRequest();
    silent.dropClient();
    silent.close();
    QVERIFY(peers().isEmpty());
    QVERIFY(greetedClient()->isSilentBeforeIdentity()); // the other one serves
}

void TestStatusServer::endOfTheServerIsNotReportedAsTheEndOfAClient()
{
    const auto first = greetedClient();
    const auto second = greetedClient();
    int ends = 0;
    connect(server.get(), &StatusServer::clientChanged, this, [&ends] { ++ends; });
    server.reset();
    QVERIFY(peers().isEmpty());
    QTRY_COMPARE(first->socket.state(), QAbstractSocket::UnconnectedState);
    QTRY_COMPARE(second->socket.state(), QAbstractSocket::UnconnectedState);
    QCOMPARE(ends, 0);
}

QTEST_GUILESS_MAIN(TestStatusServer)
#include "test_status_server.moc"
