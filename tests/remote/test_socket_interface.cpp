// The raw socket transport against an instrument at the other end of a real connection.
#include "remote/socket_interface.h"

#include "kit/free_port.h"
#include "kit/remote_failure.h"
#include "kit/scripted_instrument.h"
#include "kit/warning_count.h"

#include <QtTest>

class TestSocketInterface : public QObject
{
    Q_OBJECT

private slots:
    void aCommandArrivesAsOneLine();
    void anAnswerComesBackTrimmed();
    void anAnswerEndsAtAZeroByte();
    void bytesAboveAsciiAreLatin1();
    void aQuickAnswerCostsNoFullWait();
    void aLateAnswerIsWaitedFor_data();
    void aLateAnswerIsWaitedFor();
    void silenceIsAnEmptyAnswerAfterThreeSeconds();
    void anAnswerThatComesTooLateIsTheNextOneAlone();
    void ofAnAnswerInPiecesTheFirstIsTaken();
    void aConnectionThatClosesInTheMiddleLeavesWhatArrived();
    void aLineThatHasGoneAwayIsSilent();
    void aDeviceThatHangsUpIsNoticed();
    void aFloodOfTenMegabytesIsTakenInParts();
    void goToLocalIsACommandLine();
    void anotherPortIsReachedWhereItIsGiven();
    void closingDropsTheConnection();
    void itIsUsedFromOneThreadAfterTheOther();
    void anEventLoopOfTheThreadThatOpenedItHasNoPartInIt();
    void aHostNameIsNoAddress();
    void aRefusedConnectionNamesTheAddress();
    void beforeOpenItFailsInsteadOfCrashing();

private:
    static constexpr auto localhost = "127.0.0.1";
};

void TestSocketInterface::aCommandArrivesAsOneLine()
{
    ScriptedInstrument instrument;
    SocketInterface transport(localhost);
    transport.open();
    transport.sendSCPI("FREQ 1000000.000000");
    QCOMPARE(instrument.takeReceivedUpTo("\n"), QByteArray("FREQ 1000000.000000\n"));
    transport.sendSCPI("INP:ATT 10.000000\n");
    QCOMPARE(instrument.takeReceivedUpTo("\n\n"), QByteArray("INP:ATT 10.000000\n\n"));
}

void TestSocketInterface::anAnswerComesBackTrimmed()
{
    ScriptedInstrument instrument;
    instrument.answer("*IDN?", " ACME,1,2,3 \r\n");
    SocketInterface transport(localhost);
    transport.open();
    QCOMPARE(transport.querySCPI("*IDN?"), QString("ACME,1,2,3"));
    QCOMPARE(instrument.takeReceived(), QByteArray("*IDN?\n"));
}

void TestSocketInterface::anAnswerEndsAtAZeroByte()
{
    ScriptedInstrument instrument;
    instrument.answer("*IDN?", QByteArray("front\0behind\n", 13));
    SocketInterface transport(localhost);
    transport.open();
    QCOMPARE(transport.querySCPI("*IDN?"), QString("front"));
}

void TestSocketInterface::bytesAboveAsciiAreLatin1()
{
    ScriptedInstrument instrument;
    instrument.answer("*IDN?", "\xb5V\n");
    SocketInterface transport(localhost);
    transport.open();
    QCOMPARE(transport.querySCPI("*IDN?"), QString(QChar(0xb5)) + "V");
}

void TestSocketInterface::aQuickAnswerCostsNoFullWait()
{
    ScriptedInstrument instrument;
    instrument.answer("*OPC?", "1\n");
    SocketInterface transport(localhost);
    transport.open();
    QElapsedTimer timer;
    timer.start();
    for (int i = 0; i < 200; ++i) {
        QCOMPARE(transport.querySCPI("*OPC?"), QString("1"));
    }
    QVERIFY(timer.elapsed() < 20000); // a tenth of the waits at full length
}

void TestSocketInterface::aLateAnswerIsWaitedFor_data()
{
    QTest::addColumn<int>("afterMs");
    QTest::newRow("at once") << 0;
    QTest::newRow("0.2 s") << 200;
    QTest::newRow("0.8 s") << 800;
    QTest::newRow("1.4 s") << 1400;
    QTest::newRow("2.7 s") << 2700;
}

void TestSocketInterface::aLateAnswerIsWaitedFor()
{
    QFETCH(int, afterMs);
    ScriptedInstrument instrument;
    instrument.answer("*IDN?", {{afterMs, "here\n"}});
    SocketInterface transport(localhost);
    transport.open();
    QCOMPARE(transport.querySCPI("*IDN?"), QString("here"));
}

void TestSocketInterface::silenceIsAnEmptyAnswerAfterThreeSeconds()
{
    ScriptedInstrument instrument;
    SocketInterface transport(localhost);
    transport.open();
    QElapsedTimer timer;
    timer.start();
    QCOMPARE(transport.querySCPI("*IDN?"), QString());
    QVERIFY(timer.elapsed() >= 2900);
    QVERIFY(timer.elapsed() < 5900);
}

void TestSocketInterface::anAnswerThatComesTooLateIsTheNextOneAlone()
{
    ScriptedInstrument instrument;
    instrument.answer("NEWEST?", "newest\n");
    SocketInterface transport(localhost);
    transport.open();
    QCOMPARE(transport.querySCPI("SLOW?"), QString());
    instrument.say("old\n");
    QCOMPARE(transport.querySCPI("LATE?"), QString("old"));
    instrument.say("new\n");
    QCOMPARE(transport.querySCPI("NEWEST?"), QString("new"));
    QCOMPARE(transport.querySCPI("LATE?"), QString("newest"));
    QCOMPARE(instrument.takeReceivedUpTo("LATE?\n"), QByteArray("SLOW?\nLATE?\nNEWEST?\nLATE?\n"));
}

void TestSocketInterface::ofAnAnswerInPiecesTheFirstIsTaken()
{
    ScriptedInstrument instrument;
    instrument.answer("*IDN?", "first,");
    SocketInterface transport(localhost);
    transport.open();
    QCOMPARE(transport.querySCPI("*IDN?"), QString("first,"));
    instrument.say("second\n");
    QCOMPARE(transport.querySCPI("*OPC?"), QString("second"));
}

void TestSocketInterface::aConnectionThatClosesInTheMiddleLeavesWhatArrived()
{
    ScriptedInstrument instrument;
    instrument.answer("*IDN?", {{50, "half an ans", true}});
    SocketInterface transport(localhost);
    transport.open();
    QCOMPARE(transport.querySCPI("*IDN?"), QString("half an ans"));
}

void TestSocketInterface::aLineThatHasGoneAwayIsSilent()
{
    const WarningCount warnings;
    SocketInterface transport(localhost);
    {
        ScriptedInstrument instrument;
        transport.open();
    }
    QElapsedTimer timer;
    timer.start();
    QCOMPARE(transport.querySCPI("*IDN?"), QString());
    QCOMPARE(transport.querySCPI("*IDN?"), QString());
    QCOMPARE(failureOf([&] { transport.sendSCPI("*RST"); }), QString("(none)"));
    QVERIFY(timer.elapsed() < 2900); // a wait would take three seconds
    QCOMPARE(warnings.value(), 0);
}

void TestSocketInterface::aDeviceThatHangsUpIsNoticed()
{
    ScriptedInstrument instrument;
    instrument.answer("good bye", {{0, "so long\n", true}});
    SocketInterface transport(localhost);
    QVERIFY(transport.hasHungUp()); // nothing is open yet
    transport.open();
    QVERIFY(!transport.hasHungUp());
    transport.sendSCPI("good bye");
    QTRY_COMPARE(instrument.openConnections(), 0);
    QTRY_VERIFY(transport.hasHungUp());
}

void TestSocketInterface::aFloodOfTenMegabytesIsTakenInParts()
{
    ScriptedInstrument instrument;
    instrument.answer("*IDN?", QByteArray(10 * 1024 * 1024, 'x'));
    SocketInterface transport(localhost);
    transport.open();
    const QString answer = transport.querySCPI("*IDN?");
    QVERIFY(!answer.isEmpty());
    QCOMPARE(answer.count('x'), answer.size());
    QVERIFY(answer.size() <= 10 * 1024 * 1024);
}

void TestSocketInterface::goToLocalIsACommandLine()
{
    ScriptedInstrument instrument;
    SocketInterface transport(localhost);
    transport.open();
    transport.goToLocal();
    QCOMPARE(instrument.takeReceivedUpTo("\n"), QByteArray("&GTL\n"));
}

void TestSocketInterface::anotherPortIsReachedWhereItIsGiven()
{
    const quint16 port = freePort();
    ScriptedInstrument instrument(port);
    instrument.answer("*IDN?", "ACME\n");
    SocketInterface transport(localhost, port);
    transport.open();
    QCOMPARE(transport.querySCPI("*IDN?"), QString("ACME"));
}

void TestSocketInterface::closingDropsTheConnection()
{
    ScriptedInstrument instrument;
    SocketInterface transport(localhost);
    transport.open();
    QTRY_COMPARE(instrument.openConnections(), 1);
    transport.close();
    QTRY_COMPARE(instrument.openConnections(), 0);
    transport.open();
    QTRY_COMPARE(instrument.connectionCount(), 2);
}

void TestSocketInterface::itIsUsedFromOneThreadAfterTheOther()
{
    ScriptedInstrument instrument;
    instrument.answer("*IDN?", "me\n");
    SocketInterface transport(localhost);
    QScopedPointer<QThread> opening(QThread::create([&] { transport.open(); }));
    opening->start();
    QVERIFY(opening->wait());
    for (int i = 0; i < 3; ++i) {
        QString answer;
        QScopedPointer<QThread> using_(
            QThread::create([&] { answer = transport.querySCPI("*IDN?"); }));
        using_->start();
        QVERIFY(using_->wait());
        QCOMPARE(answer, QString("me"));
    }
    QCOMPARE(transport.querySCPI("*IDN?"), QString("me"));
}

void TestSocketInterface::anEventLoopOfTheThreadThatOpenedItHasNoPartInIt()
{
    ScriptedInstrument instrument;
    instrument.answer("*IDN?", "me\n");
    const WarningCount warnings;
    SocketInterface transport(localhost);
    transport.open();
    QStringList answers;
    QScopedPointer<QThread> user(QThread::create([&] {
        for (int i = 0; i < 20; ++i) {
            answers << transport.querySCPI("*IDN?");
        }
    }));
    user->start();
    QTRY_VERIFY(user->isFinished()); // the event loop of the opening thread runs meanwhile
    QCOMPARE(answers, QStringList(QVector<QString>(20, "me").toList()));
    QCOMPARE(warnings.value(), 0);
}

void TestSocketInterface::aHostNameIsNoAddress()
{
    SocketInterface transport("localhost");
    QCOMPARE(failureOf([&] { transport.open(); }), QString("Unable to connect to Host: "));
}

void TestSocketInterface::aRefusedConnectionNamesTheAddress()
{
    SocketInterface transport("127.0.0.3");
    QCOMPARE(failureOf([&] { transport.open(); }), QString("Unable to connect to Host: 127.0.0.3"));
    transport.close();
}

void TestSocketInterface::beforeOpenItFailsInsteadOfCrashing()
{
    SocketInterface transport(localhost);
    transport.close();
    QCOMPARE(failureOf([&] { transport.sendSCPI("*RST"); }), QString("Error at sendSCPI: *RST"));
    QCOMPARE(failureOf([&] { transport.querySCPI("*IDN?"); }), QString("Error at sendSCPI: *IDN?"));
}

QTEST_GUILESS_MAIN(TestSocketInterface)
#include "test_socket_interface.moc"
