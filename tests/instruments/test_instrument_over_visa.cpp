// A session with an instrument over each row that goes through VISA.
#include "instruments/analyzer.h"

#include "kit/stand_in_visa.h"

#include <QtTest>

class TestInstrumentOverVisa : public QObject
{
    Q_OBJECT

private slots:
    void aSessionOverEachRow_data();
    void aSessionOverEachRow();
    void aRefusedCommandFailsTheSetup();
    void aConnectionThatCannotBeClosedIsKept();
};

void TestInstrumentOverVisa::aSessionOverEachRow_data()
{
    QTest::addColumn<int>("row");
    QTest::addColumn<QByteArray>("resource");
    QTest::addColumn<QByteArray>("local");
    const QByteArray text = "viWrite(42, &GTL;@LOC;*OPC?\n, 16, null)\nviRead(42, 20000, null)\n";
    QTest::newRow("GPIB0") << 0 << QByteArray("GPIB0::20::INSTR")
                           << QByteArray("viGpibControlREN(42, 6)\n");
    QTest::newRow("GPIB1") << 1 << QByteArray("GPIB1::20::INSTR")
                           << QByteArray("viGpibControlREN(42, 6)\n");
    QTest::newRow("TLNK") << 2 << QByteArray("TLNK::127.0.0.1::INSTR") << QByteArray();
    QTest::newRow("VXI-11") << 3 << QByteArray("TCPIP::127.0.0.1::INSTR") << text;
    QTest::newRow("HiSLIP") << 5 << QByteArray("TCPIP::127.0.0.1::hislip0::INSTR") << text;
}

void TestInstrumentOverVisa::aSessionOverEachRow()
{
    QFETCH(int, row);
    QFETCH(QByteArray, resource);
    QFETCH(QByteArray, local);
    StandIn visa;
    visa.answer("*IDN?\n", "ACME,42\n");
    Analyzer analyzer;
    analyzer.interfaceKind = static_cast<InterfaceKind>(row);
    analyzer.init();
    QVERIFY(analyzer.initialized());
    // Over VISA the line end of the answer stays.
    QCOMPARE(analyzer.deviceMessage(), QString("ACME,42\n"));
    QCOMPARE(visa.log(), "viOpenDefaultRM()\nviOpen(7, " + resource +
                             ", 0, 5000)\nviSetAttribute(42, 1073676314, 10000)\n"
                             "viSetBuf(42, 3, 4000)\nviSetAttribute(42, 1073676333, 1)\n"
                             "viWrite(42, *IDN?\n, 6, null)\nviRead(42, 20000, null)\n" +
                             local);
    analyzer.reset();
    QVERIFY(visa.log().startsWith("viWrite(42, *RST;*OPC?\n, "));
    analyzer.init();
    QVERIFY(visa.log().startsWith("viClose(42)\nviOpenDefaultRM()\n"));
}

void TestInstrumentOverVisa::aRefusedCommandFailsTheSetup()
{
    StandIn visa;
    Analyzer analyzer;
    analyzer.interfaceKind = InterfaceKind::LanVxi11;
    analyzer.init();
    visa.fail("viRead", -1073807339);
    analyzer.setup();
    QCOMPARE(analyzer.deviceMessage(), QString("Error at querySCPI: FREQ:CENT 0.00000000000"));
    QVERIFY(!analyzer.initialized());
}

void TestInstrumentOverVisa::aConnectionThatCannotBeClosedIsKept()
{
    StandIn visa;
    Analyzer analyzer;
    analyzer.interfaceKind = InterfaceKind::LanVxi11;
    analyzer.init();
    const auto former = analyzer.commands();
    visa.fail("viClose", -9); // the session
    visa.fail("viClose", -9); // and the manager
    analyzer.init();
    QCOMPARE(analyzer.deviceMessage(), QString("Error at koClose"));
    QVERIFY(!analyzer.initialized());
    QCOMPARE(analyzer.commands(), former);
}

QTEST_GUILESS_MAIN(TestInstrumentOverVisa)
#include "test_instrument_over_visa.moc"
