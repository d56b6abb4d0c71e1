// The program itself, run as an operator runs it, among things that it has no power over: a log
// that nobody reads, a system without descriptors.
#include "kit/window_process.h"

#include <QTcpSocket>

#include <fcntl.h>
#include <memory>
#include <sys/resource.h>
#include <sys/stat.h>
#include <unistd.h>
#include <vector>

namespace {

constexpr quint16 port = 1000;
constexpr int greetingSize = 24; // bytes

// A client that waits for what it asked for.
class Client
{
public:
    // Whether it was greeted.
    bool connect()
    {
        socket.connectToHost(QStringLiteral("127.0.0.1"), port);
        return socket.waitForConnected(5000) && take(greetingSize);
    }
    bool asks(const QByteArray& request, int replySize)
    {
        socket.write(request);
        return take(replySize);
    }

    QTcpSocket socket;

private:
    bool take(int count)
    {
        while (socket.bytesAvailable() < count) {
            if (!socket.waitForReadyRead(5000)) {
                return false;
            }
        }
        return socket.read(count).size() == count;
    }
};

// The first one that is served; null when none is. A client that goes takes the next one along, so
// some may have to try again.
std::unique_ptr<Client> servedClient()
{
    std::unique_ptr<Client> client;
    const bool served = QTest::qWaitFor(
        [&client] {
            client = std::make_unique<Client>();
            return client->connect() && client->asks("GetServerID", 100);
        },
        20000);
    return served ? std::move(client) : nullptr;
}

// A pipe with a name, which holds 4 KiB and which the test alone reads.
class NamedPipe
{
public:
    NamedPipe() : path(folder.filePath("log"))
    {
        const QByteArray name = QFile::encodeName(path);
        mkfifo(name.constData(), 0600);
        descriptor = open(name.constData(), O_RDWR | O_NONBLOCK | O_CLOEXEC);
        fcntl(descriptor, F_SETPIPE_SZ, 4096);
    }
    ~NamedPipe() { close(descriptor); }
    NamedPipe(const NamedPipe&) = delete;
    NamedPipe& operator=(const NamedPipe&) = delete;

    QByteArray read() const
    {
        QByteArray piece(4096, '\0');
        const ssize_t count = ::read(descriptor, piece.data(), std::size_t(piece.size()));
        return piece.left(int(std::max<ssize_t>(count, 0)));
    }

    QTemporaryDir folder;
    const QString path;

private:
    int descriptor = -1;
};

bool allowDescriptors(const WindowProcess& program, rlim_t most)
{
    const rlimit limit = {most, most};
    return prlimit(pid_t(program.process.processId()), RLIMIT_NOFILE, &limit, nullptr) == 0;
}

} // namespace

class TestRunningProgram : public QObject
{
    Q_OBJECT

private slots:
    void init();
    void logThatNobodyReadsDelaysNothing();
    void logWhoseReaderWentEndsNothing();
    void clientWithoutADescriptorIsDroppedAndTheNextIsServed();
};

void TestRunningProgram::init()
{
    QTcpSocket other;
    other.connectToHost(QStringLiteral("127.0.0.1"), port);
    if (geteuid() != 0 || other.waitForConnected(1000)) {
        QSKIP("port 1000 can't be had");
    }
}

void TestRunningProgram::logThatNobodyReadsDelaysNothing()
{
    const NamedPipe pipe;
    const WindowProcess program(pipe.path);
    const auto client = servedClient();
    QVERIFY(client != nullptr);
    for (int i = 0; i < 500; ++i) { // lines of 20 bytes
        QVERIFY(client->asks("GetServerID", 100));
    }
    const QByteArray log = pipe.read();
    QVERIFY(log.size() > 2000);
    QVERIFY(log.endsWith('\n'));
    QVERIFY(client->asks("GetSymbolRate", 8));
    const QByteArray expected = "<<  \"GetSymbolRate\"\n"; // the lines between are lost
    QCOMPARE(pipe.read(), expected);
}

void TestRunningProgram::logWhoseReaderWentEndsNothing()
{
    auto pipe = std::make_unique<NamedPipe>();
    const WindowProcess program(pipe->path);
    const auto client = servedClient();
    QVERIFY(client != nullptr);
    pipe.reset();
    QVERIFY(client->asks("GetServerID", 100));
    QVERIFY(client->asks("GetServerID", 100));
}

void TestRunningProgram::clientWithoutADescriptorIsDroppedAndTheNextIsServed()
{
    const WindowProcess program;
    QVERIFY(servedClient() != nullptr);
    QVERIFY(allowDescriptors(program, 32));
    std::vector<std::unique_ptr<Client>> clients;
    int greeted = 0;
    for (int i = 0; i < 40; ++i) {
        clients.push_back(std::make_unique<Client>());
        greeted += clients.back()->connect() ? 1 : 0;
    }
    QVERIFY(greeted > 0);
    QVERIFY(greeted < 32);
    QCOMPARE(clients.back()->socket.state(), QAbstractSocket::UnconnectedState); // not left to wait
    clients.clear();
    QVERIFY(servedClient() != nullptr);
}

QTEST_GUILESS_MAIN(TestRunningProgram)
#include "test_running_program.moc"
