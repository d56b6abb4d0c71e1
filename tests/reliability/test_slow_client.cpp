// Clients that make the program keep something for them: memory that they never read, descriptors
// that they never give back.
#include "app/main_window.h"
#include "kit/event_wait.h"
#include "kit/free_port.h"
#include "kit/fresh_home.h"
#include "kit/status_client.h"
#include "kit/window_driver.h"

#include <memory>
#include <vector>

namespace {

constexpr int length = 1048576; // samples
constexpr qint64 blockSize = (2LL * length + 1) * 4;
constexpr qint64 mostUnsent = qint64{256} * 1048576; // bytes

} // namespace

class TestSlowClient : public QObject
{
    Q_OBJECT

private slots:
    void init();
    void cleanup();
    void clientThatNeverReadsStopsBeingHeard();
    void requestThatWaitedIsAnsweredOnceTheClientHasRead();
    void manyClientsThatNeverReadAreBoundedTogether();
    void formerClientThatReadsSlowlyIsLeftAlone();
    void manyOpenConnectionsLeaveDescriptorsFree();

private:
    QList<QTcpSocket*> peers() const;
    qint64 unsent() const;
    bool askUntilUnheard(StatusClient& client);

    std::unique_ptr<MainWindow> window;
    std::unique_ptr<WindowDriver> operate;
    quint16 port = 0;
};

void TestSlowClient::init()
{
    forgetSavedSettings();
    window = std::make_unique<MainWindow>();
    operate = std::make_unique<WindowDriver>(*window);
    window->show();
    QVERIFY(QTest::qWaitForWindowExposed(window.get()));
    port = freePort();
    operate->type("port_input", QString::number(port));
    operate->pick("fft_length_input", 2); // 1048576: a block of 8 MiB
    operate->click("calc_fft_button");
    QTRY_COMPARE_WITH_TIMEOUT(operate->text("fft_status_label"), QStringLiteral("Data valid"),
                              60000);
}

void TestSlowClient::cleanup()
{
    operate.reset();
    window.reset();
}

// The program's ends of the connections.
QList<QTcpSocket*> TestSlowClient::peers() const
{
    return window->findChildren<QTcpSocket*>(QString(), Qt::FindDirectChildrenOnly);
}

qint64 TestSlowClient::unsent() const
{
    qint64 bytes = 0;
    for (const QTcpSocket* peer : peers()) {
        bytes += peer->bytesToWrite();
    }
    return bytes;
}

// One request after the other, each sent when the one before was read, until one stays unread.
bool TestSlowClient::askUntilUnheard(StatusClient& client)
{
    client.socket.setReadBufferSize(1000);
    for (int request = 0; request < 60; ++request) {
        client.send("GetSymbol");
        QTcpSocket* peer = peers().constLast();
        const qint64 before = peer->bytesToWrite();
        (void)eventsBring(
            [&] { return peer->bytesAvailable() > 0 || peer->bytesToWrite() > before; }, 5000);
        if (peer->bytesAvailable() > 0) {
            return true;
        }
    }
    return false;
}

void TestSlowClient::clientThatNeverReadsStopsBeingHeard()
{
    StatusClient client;
    QVERIFY(client.isGreetedAt(port));
    QVERIFY(askUntilUnheard(client));
    QVERIFY(unsent() > mostUnsent);
    QVERIFY(unsent() <= mostUnsent + blockSize);
    const QTcpSocket* peer = peers().constLast();
    for (int request = 0; request < 20; ++request) {
        const qint64 unread = peer->bytesAvailable();
        client.send("GetSymbol");
        QTRY_VERIFY(peer->bytesAvailable() > unread);
    }
    QVERIFY(unsent() <= mostUnsent + blockSize);
    operate->type("seed_input", "3");
    QCOMPARE(operate->text("seed_input"), QStringLiteral("3"));
    QCOMPARE(operate->text("tcp_status_label"), QStringLiteral("connected"));
}

void TestSlowClient::requestThatWaitedIsAnsweredOnceTheClientHasRead()
{
    StatusClient client;
    QVERIFY(client.isGreetedAt(port));
    QVERIFY(askUntilUnheard(client)); // the last request waits
    client.socket.setReadBufferSize(0);
    qint64 received = 0;
    const auto drain = [&client, &received] {
        received += client.socket.readAll().size();
        return client.socket.bytesAvailable() == 0;
    };
    const auto isAllSent = [this] {
        return unsent() == 0 && peers().constLast()->bytesAvailable() == 0;
    };
    QVERIFY(
        eventsBring([&] { return drain() && isAllSent() && received % blockSize == 0; }, 60000));
    QVERIFY(received > mostUnsent + blockSize);
    QVERIFY(client.isSilentBeforeIdentity());
}

void TestSlowClient::manyClientsThatNeverReadAreBoundedTogether()
{
    std::vector<std::unique_ptr<StatusClient>> clients;
    for (int i = 0; i < 4; ++i) {
        clients.push_back(std::make_unique<StatusClient>());
        QVERIFY(clients.back()->isGreetedAt(port));
        QVERIFY(askUntilUnheard(*clients.back()));
        QTRY_VERIFY(unsent() <= 2 * mostUnsent);
    }
    QCOMPARE(clients.back()->socket.state(), QAbstractSocket::ConnectedState);
}

void TestSlowClient::formerClientThatReadsSlowlyIsLeftAlone()
{
    StatusClient former;
    QVERIFY(former.isGreetedAt(port));
    former.socket.setReadBufferSize(1000);
    former.send("GetSymbol");
    QTRY_VERIFY(unsent() > 0);
    StatusClient present;
    QVERIFY(present.isGreetedAt(port));
    former.socket.setReadBufferSize(0);
    QCOMPARE(former.take(int(blockSize)).size(), int(blockSize));
}

void TestSlowClient::manyOpenConnectionsLeaveDescriptorsFree()
{
    std::vector<std::unique_ptr<StatusClient>> clients;
    for (int i = 0; i < 200; ++i) {
        clients.push_back(std::make_unique<StatusClient>());
        QVERIFY(clients.back()->isGreetedAt(port));
    }
    QTRY_VERIFY(peers().size() <= 33); // the present one and 32 before it
    QVERIFY(clients.back()->isSilentBeforeIdentity());
}

QTEST_MAIN(TestSlowClient)
#include "test_slow_client.moc"
