// Text into pipes, sockets, terminals and files that take it, take a part of it or take nothing.
#include "base/dropping_output.h"

#include <QTemporaryFile>
#include <QtTest>

#include <cerrno>
#include <csignal>
#include <cstdlib>
#include <fcntl.h>
#include <memory>
#include <sys/socket.h>
#include <sys/wait.h>
#include <unistd.h>

namespace {

// The two ends of a way for text; what is written into one is read from the other.
class Ends
{
public:
    explicit Ends(const QByteArray& kind)
    {
        if (kind == "pipe") {
            valid = pipe(descriptors) == 0;
        } else if (kind == "socket") {
            valid = socketpair(AF_UNIX, SOCK_STREAM, 0, descriptors) == 0;
        } else {
            descriptors[0] = posix_openpt(O_RDWR | O_NOCTTY);
            valid = grantpt(descriptors[0]) == 0 && unlockpt(descriptors[0]) == 0;
            descriptors[1] = open(ptsname(descriptors[0]), O_RDWR | O_NOCTTY);
        }
        valid = valid && descriptors[1] >= 0;
        fcntl(descriptors[0], F_SETFL, O_NONBLOCK);
    }
    ~Ends()
    {
        closeReader();
        ::close(descriptors[1]);
    }
    Ends(const Ends&) = delete;
    Ends& operator=(const Ends&) = delete;

    void closeReader() { ::close(std::exchange(descriptors[0], -1)); }

    // All that waits, with the line ends that were written.
    QByteArray read() const
    {
        QByteArray all;
        QByteArray piece(65536, '\0');
        ssize_t count = 0;
        while ((count = ::read(descriptors[0], piece.data(), std::size_t(piece.size()))) > 0) {
            all += piece.left(int(count));
        }
        return all.replace("\r\n", "\n");
    }

    int descriptors[2] = {-1, -1};
    bool valid = false;
};

const QByteArray line = QByteArray(99, 'x') + '\n';

} // namespace

class TestDroppingOutput : public QObject
{
    Q_OBJECT

private slots:
    void linesArriveAsTheyAre_data() { allKinds(); }
    void linesArriveAsTheyAre();
    void whatNobodyReadsIsDroppedAndWritingGoesOn_data() { allKinds(); }
    void whatNobodyReadsIsDroppedAndWritingGoesOn();
    void ofALineThatIsDroppedWholeNothingStays();
    void flagsThatOthersShareStay_data() { allKinds(); }
    void flagsThatOthersShareStay();
    void fullPipeOfAnotherUserIsNotWaitedFor();
    void fileIsAppendedToWhereItStands();
    void readerThatWentIsNoFailure();
    void messagesOfTheProgramWaitForNobody();

private:
    static void allKinds();
};

void TestDroppingOutput::allKinds()
{
    QTest::addColumn<QByteArray>("kind");
    for (const char* kind : {"pipe", "socket", "terminal"}) {
        QTest::newRow(kind) << QByteArray(kind);
    }
}

void TestDroppingOutput::linesArriveAsTheyAre()
{
    QFETCH(QByteArray, kind);
    const Ends ends(kind);
    QVERIFY(ends.valid);
    DroppingOutput output(ends.descriptors[1]);
    output.write("one\n");
    output.write("two\n");
    QCOMPARE(ends.read(), QByteArray("one\ntwo\n"));
}

// The alarm ends the test if a write waits.
void TestDroppingOutput::whatNobodyReadsIsDroppedAndWritingGoesOn()
{
    QFETCH(QByteArray, kind);
    const Ends ends(kind);
    DroppingOutput output(ends.descriptors[1]);
    alarm(60);
    for (int i = 0; i < 20000; ++i) { // 2 MB, more than each of them holds
        output.write(line);
    }
    const QByteArray first = ends.read();
    output.write("last\n");
    alarm(0);
    QVERIFY(first.size() >= 100);
    QVERIFY(first.size() < 2000000);
    const QByteArrayList lines = (first + ends.read()).split('\n');
    QCOMPARE(lines.at(lines.size() - 2), QByteArray("last")); // on a line of its own
    for (const QByteArray& whole : lines.mid(0, lines.size() - 3)) {
        QCOMPARE(whole + '\n', line);
    }
}

// A pipe takes a short line whole or not at all.
void TestDroppingOutput::ofALineThatIsDroppedWholeNothingStays()
{
    const Ends ends("pipe");
    DroppingOutput output(ends.descriptors[1]);
    alarm(60);
    for (int i = 0; i < 2000; ++i) {
        output.write(line);
    }
    alarm(0);
    const QByteArray taken = ends.read();
    QVERIFY(taken.size() < 2000 * line.size());
    output.write("last\n");
    QCOMPARE(taken, line.repeated(taken.size() / line.size()));
    QCOMPARE(ends.read(), QByteArray("last\n"));
}

void TestDroppingOutput::flagsThatOthersShareStay()
{
    QFETCH(QByteArray, kind);
    const Ends ends(kind);
    const int before = fcntl(ends.descriptors[1], F_GETFL);
    DroppingOutput output(ends.descriptors[1]);
    output.write(line);
    QCOMPARE(fcntl(ends.descriptors[1], F_GETFL), before);
}

// Such a pipe can't be opened again.
void TestDroppingOutput::fullPipeOfAnotherUserIsNotWaitedFor()
{
    const Ends ends("pipe");
    const uid_t self = geteuid();
    if (self == 0 && setresuid(65534, 65534, 0) != 0) {
        QSKIP("the rights of this process can't be taken away");
    }
    auto output = std::make_unique<DroppingOutput>(ends.descriptors[1]);
    QCOMPARE(setresuid(self, self, self), 0);
    alarm(60);
    for (int i = 0; i < 20000; ++i) {
        output->write(line);
    }
    alarm(0);
    const QByteArray taken = ends.read();
    QVERIFY(taken.size() > 10000);
    QCOMPARE(taken.size() % line.size(), 0);
}

void TestDroppingOutput::fileIsAppendedToWhereItStands()
{
    QTemporaryFile file;
    QVERIFY(file.open());
    QCOMPARE(::write(file.handle(), "before\n", 7), ssize_t{7});
    DroppingOutput output(file.handle());
    output.write(line);
    QCOMPARE(::write(file.handle(), "after\n", 6), ssize_t{6});
    file.seek(0);
    QCOMPARE(file.readAll(), "before\n" + line + "after\n");
}

void TestDroppingOutput::readerThatWentIsNoFailure()
{
    std::signal(SIGPIPE, SIG_IGN);
    Ends ends("pipe");
    DroppingOutput output(ends.descriptors[1]);
    output.write(line);
    ends.closeReader();
    output.write(line);
    QCOMPARE(::write(ends.descriptors[1], "x", 1), ssize_t{-1}); // the descriptor is still there
    QCOMPARE(errno, EPIPE);
}

// In a process of its own, whose standard error output nobody reads; the alarm ends it if it waits.
void TestDroppingOutput::messagesOfTheProgramWaitForNobody()
{
    const Ends ends("pipe");
    const pid_t child = fork();
    if (child == 0) {
        dup2(ends.descriptors[1], STDERR_FILENO);
        alarm(60);
        dropMessagesThatWait();
        for (int i = 0; i < 20000; ++i) {
            qWarning("%s", line.constData());
        }
        _exit(7);
    }
    int status = 0;
    QCOMPARE(waitpid(child, &status, 0), child);
    QVERIFY(WIFEXITED(status));
    QCOMPARE(WEXITSTATUS(status), 7);
    QVERIFY(ends.read().startsWith(line));
}

QTEST_GUILESS_MAIN(TestDroppingOutput)
#include "test_dropping_output.moc"
