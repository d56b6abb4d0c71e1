// The serial transport against a pseudo-terminal, opened by its device name.
#include "remote/rs232_interface.h"

#include "kit/remote_failure.h"

#include <QElapsedTimer>
#include <QSerialPortInfo>
#include <QThread>
#include <QtTest>

#include <cstdlib>
#include <fcntl.h>
#include <poll.h>
#include <termios.h>
#include <unistd.h>

namespace {

// The instrument's end of the line. Reads and writes raw bytes.
class Line
{
public:
    Line() : fd(posix_openpt(O_RDWR | O_NOCTTY))
    {
        grantpt(fd);
        unlockpt(fd);
        termios raw;
        tcgetattr(fd, &raw);
        cfmakeraw(&raw);
        tcsetattr(fd, TCSANOW, &raw);
    }
    ~Line()
    {
        if (answering) {
            answering->wait();
        }
        ::close(fd);
    }

    QString name() const { return QString::fromLocal8Bit(ptsname(fd)); }

    QByteArray readLine(int limitMs = 3000) const
    {
        QByteArray line;
        char byte = 0;
        pollfd waiting{fd, POLLIN, 0};
        while (!line.endsWith('\n') && ::poll(&waiting, 1, limitMs) == 1 &&
               ::read(fd, &byte, 1) == 1) {
            line.append(byte);
        }
        return line;
    }

    void send(const QByteArray& bytes) const
    {
        QCOMPARE(::write(fd, bytes.constData(), size_t(bytes.size())), ssize_t(bytes.size()));
    }

    // Reads one line, then sends the pieces, each after its pause.
    void answerOnce(const QList<QPair<int, QByteArray>>& pieces)
    {
        answering.reset(QThread::create([this, pieces] {
            readLine();
            for (const auto& piece : pieces) {
                QThread::msleep(static_cast<unsigned long>(piece.first));
                if (::write(fd, piece.second.constData(), size_t(piece.second.size())) < 0) {
                    return;
                }
            }
        }));
        answering->start();
    }

    termios settings() const
    {
        termios present;
        tcgetattr(fd, &present);
        return present;
    }

private:
    int fd;
    std::unique_ptr<QThread> answering;
};

constexpr SerialParameters usual = {9600, 8, 0, 1, 0};

} // namespace

class TestRs232Interface : public QObject
{
    Q_OBJECT

private slots:
    void initTestCase();
    void aCommandArrivesAsOneLine();
    void anAnswerIsNotLost_data();
    void anAnswerIsNotLost();
    void silenceIsAnEmptyAnswer();
    void aSlowAnswerIsWaitedForBehindAnOldOne();
    void anAnswerEndsWithASecondOfSilence();
    void aChatteringDeviceIsCutOff();
    void anAnswerIsCutAtAMebibyte();
    void settingsReachTheLine();
    void goToLocalIsACommandLine();
    void aPortThatIsNotThereCannotBeOpened();
    void anUnopenedPortIsSilent();
    void closingBeforeOpeningIsHarmless();
    void aPortCanBeClosedAndOpenedAgain();
    void breakingOffEndsAWait_data();
    void breakingOffEndsAWait();
};

void TestRs232Interface::initTestCase()
{
    const Line line;
    RS232Interface transport(line.name(), usual);
    const QString failure = failureOf([&] { transport.open(); });
    if (failure != "(none)" && ::access("/var/lock", W_OK) != 0) {
        QSKIP("this user may not lock serial ports on this machine");
    }
    QCOMPARE(failure, QString("(none)"));
}

void TestRs232Interface::aCommandArrivesAsOneLine()
{
    const Line line;
    RS232Interface transport(line.name(), usual);
    transport.open();
    transport.sendSCPI("OUTP ON");
    QCOMPARE(line.readLine(), QByteArray("OUTP ON\n"));
}

void TestRs232Interface::anAnswerIsNotLost_data()
{
    QTest::addColumn<int>("afterMs");
    QTest::newRow("at once") << 0;
    QTest::newRow("0.2 s") << 200;
    QTest::newRow("0.8 s") << 800;
    QTest::newRow("1.4 s") << 1400;
}

void TestRs232Interface::anAnswerIsNotLost()
{
    QFETCH(int, afterMs);
    Line line;
    RS232Interface transport(line.name(), usual);
    transport.open();
    line.answerOnce({{afterMs, " who am i\r\n"}});
    QElapsedTimer timer;
    timer.start();
    QCOMPARE(transport.querySCPI("*IDN?"), QString("who am i"));
    // The wait for the written bytes and the silence that ends the answer; no wait for more.
    QVERIFY(timer.elapsed() < qMax(afterMs, 1000) + 1900);
}

void TestRs232Interface::silenceIsAnEmptyAnswer()
{
    const Line line;
    RS232Interface transport(line.name(), usual);
    transport.open();
    QElapsedTimer timer;
    timer.start();
    QCOMPARE(transport.querySCPI("*IDN?"), QString());
    QVERIFY(timer.elapsed() >= 2900);
    QVERIFY(timer.elapsed() < 5900);
}

// The old one lies ready, and is no reason to take the silence behind it for the end.
void TestRs232Interface::aSlowAnswerIsWaitedForBehindAnOldOne()
{
    Line line;
    RS232Interface transport(line.name(), usual);
    transport.open();
    line.send("old\n");
    line.answerOnce({{1500, "new\n"}});
    QCOMPARE(transport.querySCPI("*IDN?"), QString("old\nnew"));
}

void TestRs232Interface::anAnswerEndsWithASecondOfSilence()
{
    Line line;
    RS232Interface transport(line.name(), usual);
    transport.open();
    line.answerOnce({{100, "one,"}, {700, "two,"}, {700, "three"}, {1600, "late"}});
    QCOMPARE(transport.querySCPI("*IDN?"), QString("one,two,three"));
}

void TestRs232Interface::aChatteringDeviceIsCutOff()
{
    Line line;
    SerialParameters impatient = usual;
    impatient.longestAnswerMs = 1000;
    RS232Interface transport(line.name(), impatient);
    transport.open();
    QList<QPair<int, QByteArray>> chatter;
    for (int i = 0; i < 20; ++i) {
        chatter.append({200, "x"});
    }
    line.answerOnce(chatter);
    const QString answer = transport.querySCPI("*IDN?");
    QVERIFY2(answer.size() >= 2 && answer.size() < 15, qPrintable(answer));
}

// The rest comes within the silence that would end a shorter one.
void TestRs232Interface::anAnswerIsCutAtAMebibyte()
{
    Line line;
    RS232Interface transport(line.name(), usual);
    transport.open();
    line.answerOnce({{0, QByteArray(1024 * 1024, 'x')}, {900, "rest"}});
    const QString answer = transport.querySCPI("*IDN?");
    QCOMPARE(answer.size(), 1024 * 1024);
}

void TestRs232Interface::settingsReachTheLine()
{
    const Line line;
    {
        RS232Interface transport(line.name(), {19200, 8, 0, 1, 1});
        transport.open();
        QCOMPARE(cfgetospeed(std::make_unique<termios>(line.settings()).get()), speed_t(B19200));
        QVERIFY((line.settings().c_cflag & CRTSCTS) != 0);
        QVERIFY((line.settings().c_cflag & CSTOPB) == 0);
    }
    RS232Interface transport(line.name(), {4800, 8, 0, 2, 2});
    transport.open();
    QCOMPARE(cfgetospeed(std::make_unique<termios>(line.settings()).get()), speed_t(B4800));
    QVERIFY((line.settings().c_cflag & CRTSCTS) == 0);
    QVERIFY((line.settings().c_iflag & IXON) != 0);
    QVERIFY((line.settings().c_cflag & CSTOPB) != 0);
}

void TestRs232Interface::goToLocalIsACommandLine()
{
    const Line line;
    RS232Interface transport(line.name(), usual);
    transport.open();
    transport.goToLocal();
    QCOMPARE(line.readLine(), QByteArray("&GTL\n"));
}

void TestRs232Interface::aPortThatIsNotThereCannotBeOpened()
{
    RS232Interface named("/dev/there-is-no-such-port", usual);
    QCOMPARE(failureOf([&] { named.open(); }), QString("Error at openSerial"));
    RS232Interface unreported(QSerialPortInfo(), usual);
    QCOMPARE(failureOf([&] { unreported.open(); }), QString("Error at openSerial"));
}

void TestRs232Interface::anUnopenedPortIsSilent()
{
    RS232Interface transport("/dev/there-is-no-such-port", usual);
    QElapsedTimer timer;
    timer.start();
    QCOMPARE(failureOf([&] { transport.sendSCPI("*RST"); }), QString("(none)"));
    QCOMPARE(transport.querySCPI("*IDN?"), QString());
    transport.close();
    QVERIFY(timer.elapsed() < 2500); // a wait would take three seconds
}

void TestRs232Interface::closingBeforeOpeningIsHarmless()
{
    const Line line;
    RS232Interface transport(line.name(), usual);
    transport.close();
    transport.open();
    transport.sendSCPI("*RST");
    QCOMPARE(line.readLine(), QByteArray("*RST\n"));
}

void TestRs232Interface::aPortCanBeClosedAndOpenedAgain()
{
    const Line line;
    RS232Interface transport(line.name(), usual);
    transport.open();
    transport.close();
    transport.open();
    transport.sendSCPI("*RST");
    QCOMPARE(line.readLine(), QByteArray("*RST\n"));
}

void TestRs232Interface::breakingOffEndsAWait_data()
{
    QTest::addColumn<QByteArray>("begun");
    QTest::addColumn<QString>("answer");
    QTest::newRow("for an answer") << QByteArray() << QString();
    // What has arrived is given back, as after the silence that ends an answer.
    QTest::newRow("for the end of an answer") << QByteArray("who ") << QString("who");
}

void TestRs232Interface::breakingOffEndsAWait()
{
    QFETCH(QByteArray, begun);
    const Line line;
    RS232Interface transport(line.name(), usual);
    transport.open();
    QString answer("(none)");
    QElapsedTimer timer;
    QScopedPointer<QThread> asking(QThread::create([&] { answer = transport.querySCPI("*IDN?"); }));
    asking->start();
    QCOMPARE(line.readLine(), QByteArray("*IDN?\n"));
    line.send(begun);
    QVERIFY(!asking->wait(300)); // it waits, in either state
    timer.start();
    transport.breakOff();
    QVERIFY(asking->wait());
    QVERIFY2(timer.elapsed() < 600, QByteArray::number(timer.elapsed()));
    QTEST(answer, "answer");
    QVERIFY(transport.isBrokenOff());
}

QTEST_GUILESS_MAIN(TestRs232Interface)
#include "test_rs232_interface.moc"
