// The transports over VISA, against a stand-in library that records every call.
#include "remote/visa_interfaces.h"

#include "kit/remote_failure.h"
#include "kit/stand_in_visa.h"

#include <QtTest>

namespace {

constexpr int writeFailed = -1073807339; // a time-out, as VISA libraries number it

} // namespace

class TestVisa : public QObject
{
    Q_OBJECT

private slots:
    void theLibraryIsFound();
    void resourceStringsNameTheInstrument();
    void openMakesFiveCallsInOrder();
    void failuresOfOpenNameTheirStep_data();
    void failuresOfOpenNameTheirStep();
    void aCommandWaitsForItsCompletion();
    void aFailedCommandIsNamed_data();
    void aFailedCommandIsNamed();
    void anAnswerComesBackAsItCame();
    void aRefusedQueryTellsTheInstrumentsError();
    void aLostQueryIsNamed();
    void anAnswerEndsAtAZeroByte();
    void anAnswerThatFillsTheBufferIsSafe();
    void closingLeavesTheResourceManagerOpen();
    void aSessionThatCannotBeClosedClosesTheManager();
    void aManagerThatCannotBeClosedIsAFailure();
    void closingBeforeOpeningClosesNoOpenSession();
    void onlyCloseEndsASession();
    void goToLocalDiffers();
    void theCountIsThatOfTheCharacters();
};

void TestVisa::theLibraryIsFound()
{
    QTest::ignoreMessage(QtDebugMsg, "VISA loaded");
    QTest::ignoreMessage(QtDebugMsg, "VISA loaded");
    QVERIFY(visaAvailable());
}

void TestVisa::resourceStringsNameTheInstrument()
{
    QCOMPARE(GPIBInterface(0, 20).resourceString(), QString("GPIB0::20::INSTR"));
    QCOMPARE(GPIBInterface(1, 5).resourceString(), QString("GPIB1::5::INSTR"));
    QCOMPARE(VXIInterface("10.0.0.7").resourceString(), QString("TCPIP::10.0.0.7::INSTR"));
    QCOMPARE(HiSLIPInterface("10.0.0.7").resourceString(),
             QString("TCPIP::10.0.0.7::hislip0::INSTR"));
    QCOMPARE(TLNKInterface("10.0.0.7").resourceString(), QString("TLNK::10.0.0.7::INSTR"));
    QCOMPARE(VXIInterface("analyzer").resourceString(), QString("TCPIP::::INSTR"));
}

void TestVisa::openMakesFiveCallsInOrder()
{
    StandIn visa;
    GPIBInterface transport(0, 20);
    transport.open();
    QCOMPARE(visa.log(), QByteArray("viOpenDefaultRM()\n"
                                    "viOpen(7, GPIB0::20::INSTR, 0, 5000)\n"
                                    "viSetAttribute(42, 1073676314, 10000)\n"
                                    "viSetBuf(42, 3, 4000)\n"
                                    "viSetAttribute(42, 1073676333, 1)\n"));
}

void TestVisa::failuresOfOpenNameTheirStep_data()
{
    QTest::addColumn<QByteArray>("function");
    QTest::addColumn<int>("passingCalls");
    QTest::addColumn<int>("status");
    QTest::addColumn<QString>("message");
    const QByteArray attribute = "viSetAttribute";
    QTest::newRow("manager") << QByteArray("viOpenDefaultRM") << 0 << -5
                             << "Error at koOpenDefaultRM: -5";
    QTest::newRow("manager warns")
        << QByteArray("viOpenDefaultRM") << 0 << 3 << "Error at koOpenDefaultRM: 3";
    QTest::newRow("open") << QByteArray("viOpen") << 0 << writeFailed
                          << "Error at koOpen: -1073807339";
    QTest::newRow("open warns") << QByteArray("viOpen") << 0 << 3 << "(none)";
    QTest::newRow("time-out") << attribute << 0 << -1 << "Error at koSetAttribute: -1";
    QTest::newRow("time-out warns") << attribute << 0 << 1 << "(none)";
    QTest::newRow("buffer") << QByteArray("viSetBuf") << 0 << -2 << "Error at koSetBuf: -2";
    QTest::newRow("buffer warns") << QByteArray("viSetBuf") << 0 << 2 << "(none)";
    QTest::newRow("flush") << attribute << 1 << -3 << "Error at koSetAttribute: -3";
}

void TestVisa::failuresOfOpenNameTheirStep()
{
    QFETCH(QByteArray, function);
    QFETCH(int, passingCalls);
    QFETCH(int, status);
    StandIn visa;
    for (int i = 0; i < passingCalls; ++i) {
        visa.fail(function, 0);
    }
    visa.fail(function, status);
    VXIInterface transport("127.0.0.1");
    QTEST(failureOf([&] { transport.open(); }), "message");
    // The resource manager's session stays open.
    QVERIFY(!visa.log().contains("viClose"));
}

void TestVisa::aCommandWaitsForItsCompletion()
{
    StandIn visa;
    visa.answer("*RST;*OPC?\n", "1\n");
    VXIInterface transport("127.0.0.1");
    transport.open();
    visa.log();
    transport.sendSCPI("*RST");
    QCOMPARE(visa.log(), QByteArray("viWrite(42, *RST;*OPC?\n, 11, null)\n"
                                    "viRead(42, 20000, null)\n"));
    // The line feed of the attenuation stands in front of the completion query.
    transport.sendSCPI("INP:ATT 10.000000\n");
    QVERIFY(visa.log().startsWith("viWrite(42, INP:ATT 10.000000\n;*OPC?\n, 25, null)\n"));
}

void TestVisa::aFailedCommandIsNamed_data()
{
    QTest::addColumn<QByteArray>("function");
    QTest::addColumn<int>("status");
    QTest::newRow("write fails") << QByteArray("viWrite") << writeFailed;
    QTest::newRow("write warns") << QByteArray("viWrite") << 4;
    QTest::newRow("read fails") << QByteArray("viRead") << writeFailed;
    QTest::newRow("buffer was filled") << QByteArray("viRead") << 0x3FFF0006;
    QTest::newRow("ended on a termination character") << QByteArray("viRead") << 0x3FFF0005;
}

void TestVisa::aFailedCommandIsNamed()
{
    QFETCH(QByteArray, function);
    QFETCH(int, status);
    StandIn visa;
    VXIInterface transport("127.0.0.1");
    transport.open();
    visa.fail(function, status);
    QCOMPARE(failureOf([&] { transport.sendSCPI("OUTP ON"); }),
             QString("Error at querySCPI: OUTP ON"));
    // A send never asks for the instrument's error.
    QVERIFY(!visa.log().contains("SYST:ERR"));
}

void TestVisa::anAnswerComesBackAsItCame()
{
    StandIn visa;
    visa.answer("*IDN?\n", " who,am,i \r\n");
    VXIInterface transport("127.0.0.1");
    transport.open();
    QCOMPARE(transport.querySCPI("*IDN?"), QString(" who,am,i \r\n"));
}

void TestVisa::aRefusedQueryTellsTheInstrumentsError()
{
    StandIn visa;
    visa.answer("SYST:ERR?\n", "-113,\"Undefined header\"");
    VXIInterface transport("127.0.0.1");
    transport.open();
    visa.fail("viRead", writeFailed);
    visa.log();
    QCOMPARE(failureOf([&] { transport.querySCPI("WHAT?"); }),
             QString("Instrument Error at querySCPI: -113,\"Undefined header\""));
    QVERIFY(visa.log().contains("viWrite(42, SYST:ERR?\n, 10, null)"));
}

void TestVisa::aLostQueryIsNamed()
{
    StandIn visa;
    VXIInterface transport("127.0.0.1");
    transport.open();
    visa.fail("viWrite", writeFailed);
    visa.fail("viWrite", 1);
    QCOMPARE(failureOf([&] { transport.querySCPI("*IDN?"); }),
             QString("RC Error at querySCPI: *IDN?"));
}

void TestVisa::anAnswerEndsAtAZeroByte()
{
    StandIn visa;
    visa.answer("*IDN?\n", "short");
    VXIInterface transport("127.0.0.1");
    transport.open();
    QCOMPARE(transport.querySCPI("*IDN?"), QString("short"));
    visa.answer("*IDN?\n", "");
    QCOMPARE(transport.querySCPI("*IDN?"), QString());
}

void TestVisa::anAnswerThatFillsTheBufferIsSafe()
{
    StandIn visa;
    visa.answer("*IDN?\n", QByteArray(20000, 'x').constData());
    VXIInterface transport("127.0.0.1");
    transport.open();
    QCOMPARE(transport.querySCPI("*IDN?"), QString(20000, 'x'));
}

void TestVisa::closingLeavesTheResourceManagerOpen()
{
    StandIn visa;
    VXIInterface transport("127.0.0.1");
    transport.open();
    visa.log();
    transport.close();
    QCOMPARE(visa.log(), QByteArray("viClose(42)\n"));
    visa.fail("viClose", 5); // a warning passes
    transport.close();
    QCOMPARE(visa.log(), QByteArray("viClose(42)\n"));
}

void TestVisa::aSessionThatCannotBeClosedClosesTheManager()
{
    StandIn visa;
    VXIInterface transport("127.0.0.1");
    transport.open();
    visa.log();
    visa.fail("viClose", -1);
    transport.close();
    QCOMPARE(visa.log(), QByteArray("viClose(42)\nviGetAttribute(42, 1073676484)\nviClose(7)\n"));
}

void TestVisa::aManagerThatCannotBeClosedIsAFailure()
{
    StandIn visa;
    VXIInterface transport("127.0.0.1");
    transport.open();
    visa.fail("viClose", -1);
    visa.fail("viClose", -1);
    QCOMPARE(failureOf([&] { transport.close(); }), QString("Error at koClose"));
}

// The library is told of the session 0, which is none.
void TestVisa::closingBeforeOpeningClosesNoOpenSession()
{
    StandIn visa;
    VXIInterface open("127.0.0.1");
    open.open();
    VXIInterface transport("127.0.0.2");
    visa.log();
    QCOMPARE(failureOf([&] { transport.close(); }), QString("(none)"));
    QCOMPARE(visa.log(), QByteArray("viClose(0)\n"));
}

void TestVisa::onlyCloseEndsASession()
{
    StandIn visa;
    {
        VXIInterface transport("127.0.0.1");
        transport.open();
        transport.open();
    }
    const QByteArray calls = visa.log();
    QCOMPARE(calls.count("viOpen(7, "), 2);
    QVERIFY(!calls.contains("viClose"));
}

void TestVisa::goToLocalDiffers()
{
    StandIn visa;
    GPIBInterface gpib(0, 20);
    gpib.open();
    visa.log();
    visa.fail("viGpibControlREN", -1); // ignored
    gpib.goToLocal();
    QCOMPARE(visa.log(), QByteArray("viGpibControlREN(42, 6)\n"));

    HiSLIPInterface hislip("127.0.0.1");
    hislip.open();
    visa.log();
    hislip.goToLocal();
    QVERIFY(visa.log().startsWith("viWrite(42, &GTL;@LOC;*OPC?\n, "));
    visa.fail("viRead", writeFailed);
    QCOMPARE(failureOf([&] { hislip.goToLocal(); }), QString("Error at querySCPI: &GTL;@LOC"));

    TLNKInterface link("127.0.0.1");
    link.open();
    visa.log();
    link.goToLocal();
    QCOMPARE(visa.log(), QByteArray());
}

void TestVisa::theCountIsThatOfTheCharacters()
{
    StandIn visa;
    VXIInterface transport("127.0.0.1");
    transport.open();
    visa.log();
    // Nine characters with the line feed; however many bytes the locale makes of them.
    failureOf([&] { transport.querySCPI(QString::fromUtf8("\xc2\xb5\xf0\x9f\x8e\xb5 ABCD")); });
    QVERIFY(visa.log().contains(", 9, null)"));
}

QTEST_GUILESS_MAIN(TestVisa)
#include "test_visa.moc"
