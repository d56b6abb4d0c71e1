// Status as the standard has it.
#include "scpi_session_test.h"

class TestStatusModel : public ScpiSessionTest
{
    Q_OBJECT

private slots:
    void init() { startAnew(); }
    void anInstrumentTellsThatItWasSwitchedOn();
    void eachClassOfErrorHasItsBit_data();
    void eachClassOfErrorHasItsBit();
    void eventsAreTakenByWhoAsks();
    void theStatusByteSumsUp();
    void serviceIsRequestedForWhatIsEnabled();
    void clearingLeavesTheEnableRegisters();
    void aResetLeavesStatusAndErrors();
    void completionIsToldWhenTheSweepHasEnded();
    void clearingForgetsAWaitingCompletion();
    void theSelfTestPasses();
};

void TestStatusModel::anInstrumentTellsThatItWasSwitchedOn()
{
    ScpiSession session = main();
    QCOMPARE(tell(session, "*ESR?"), QByteArray("128"));
    QCOMPARE(tell(session, "*ESR?"), QByteArray("0"));
}

void TestStatusModel::eachClassOfErrorHasItsBit_data()
{
    QTest::addColumn<QByteArray>("line");
    QTest::addColumn<QByteArray>("events");
    QTest::newRow("-113") << QByteArray("FOO") << QByteArray("32");
    QTest::newRow("-109") << QByteArray("FREQ") << QByteArray("32");
    QTest::newRow("-222") << QByteArray("FREQ -1") << QByteArray("16");
    QTest::newRow("-241") << QByteArray() << QByteArray("16");
}

void TestStatusModel::eachClassOfErrorHasItsBit()
{
    QFETCH(QByteArray, line);
    QFETCH(QByteArray, events);
    ScpiSession session = main();
    tell(session, "*CLS");
    if (line.isEmpty()) {
        session.refuse(ScpiError::HardwareMissing, "FOO");
    }
    tell(session, line);
    QCOMPARE(tell(session, "*ESR?"), events);
}

void TestStatusModel::eventsAreTakenByWhoAsks()
{
    ScpiSession one = main();
    ScpiSession two = main();
    tell(one, "*CLS;FOO");
    QCOMPARE(tell(two, "*ESR?"), QByteArray("32"));
    QCOMPARE(tell(one, "*ESR?"), QByteArray("0"));
}

// 4: errors are queued, 16: an answer waits, 32: an enabled event.
void TestStatusModel::theStatusByteSumsUp()
{
    ScpiSession session = main();
    QCOMPARE(tell(session, "*CLS;*STB?"), QByteArray("0"));
    QCOMPARE(tell(session, "*OPC?;*STB?"), QByteArray("1;16"));
    QCOMPARE(tell(session, "FOO;*STB?"), QByteArray("4"));
    QCOMPARE(tell(session, "*ESE 32;*STB?"), QByteArray("36"));
    QCOMPARE(tell(session, "SYST:ERR?;*STB?").right(2), QByteArray("48"));
    QCOMPARE(tell(session, "*STB?"), QByteArray("32")); // asking takes nothing away
}

void TestStatusModel::serviceIsRequestedForWhatIsEnabled()
{
    ScpiSession session = main();
    QCOMPARE(tell(session, "*CLS;*SRE 4;*SRE?"), QByteArray("4"));
    QCOMPARE(tell(session, "*STB?"), QByteArray("0"));
    QCOMPARE(tell(session, "FOO;*STB?"), QByteArray("68"));
    QCOMPARE(tell(session, "*SRE 64;*STB?"), QByteArray("4")); // its own bit can't ask
}

void TestStatusModel::clearingLeavesTheEnableRegisters()
{
    ScpiSession session = main();
    tell(session, "*ESE 17;*SRE 32;FOO;*CLS");
    QCOMPARE(tell(session, "*ESE?;*SRE?"), QByteArray("17;32"));
    QCOMPARE(tell(session, "*ESR?;SYST:ERR?"), QByteArray("0;") + noError);
}

void TestStatusModel::aResetLeavesStatusAndErrors()
{
    ScpiSession session = main();
    tell(session, "*CLS;*ESE 5;FOO;*RST");
    QCOMPARE(tell(session, "*ESE?;*ESR?"), QByteArray("5;32"));
    QVERIFY(tell(session, "SYST:ERR?").startsWith("-113,"));
}

void TestStatusModel::completionIsToldWhenTheSweepHasEnded()
{
    ScpiSession session = main();
    QCOMPARE(tell(session, "*CLS;*OPC;*ESR?"), QByteArray("1"));
    mainInstrument.beginSweep();
    QCOMPARE(tell(session, "*OPC;*ESR?"), QByteArray("0"));
    mainInstrument.endSweep();
    QCOMPARE(tell(session, "*ESR?"), QByteArray("1"));
    mainInstrument.beginSweep();
    mainInstrument.endSweep();
    QCOMPARE(tell(session, "*ESR?"), QByteArray("0"));
}

void TestStatusModel::clearingForgetsAWaitingCompletion()
{
    ScpiSession session = main();
    mainInstrument.beginSweep();
    tell(session, "*OPC;*CLS");
    mainInstrument.endSweep();
    QCOMPARE(tell(session, "*ESR?"), QByteArray("0"));
}

void TestStatusModel::theSelfTestPasses()
{
    ScpiSession session = main();
    QCOMPARE(tell(session, "*TST?"), QByteArray("0"));
}

QTEST_APPLESS_MAIN(TestStatusModel)
#include "test_status_model.moc"
