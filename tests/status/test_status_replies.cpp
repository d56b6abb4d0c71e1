// Every byte of the status protocol, against blocks written out by hand.
#include "setup/measurement_setup.h"
#include "status/status_replies.h"

#include <QtTest>

namespace {

QByteArray hex(const char* text)
{
    return QByteArray::fromHex(text);
}

MeasurementSetup setupWithTwoSamples()
{
    MeasurementSetup setup;
    setup.signal = SignalData(2);
    setup.signal.iSamples = {1.0, -0.5};
    setup.signal.qSamples = {0.0, 2.0};
    return setup;
}

const char rate100MHz[] = "00000000 20bcbe4c";
const char length131072[] = "01000000 00000048";
const char notNew[] = "03000000 00000000";
const char isNew[] = "03000000 0000803f";
// Tag, then I and Q of sample 0 (1, 0) and of sample 1 (-0.5, 2).
const char twoSamples[] = "02000000 0000803f 00000000 000000bf 00000040";

} // namespace

class TestStatusReplies : public QObject
{
    Q_OBJECT

private slots:
    void greetingIsStateLengthRate();
    void greetingClearsTheFlagAndSendsNoSymbols();
    void identityIsAHundredBytes();
    void newStateIsToldOnceWithEverything();
    void newStateWithoutNewsIsOneRecord();
    void sequenceLengthOfEveryRow();
    void symbolRateIsNotTakenForSymbols();
    void symbolsBeforeACalculationAreFourBytes();
    void symbolsAreRoundedToTheNearestFloat();
    void symbolBlockOf131072SamplesHasItsSize();
    void symbolBlockNeverReadsBeyondShortVectors();
    void whatFollowsTheFirstWordIsDropped();
    void unknownTextGetsSilence_data();
    void unknownTextGetsSilence();
};

void TestStatusReplies::greetingIsStateLengthRate()
{
    MeasurementSetup setup;
    QCOMPARE(greeting(setup), hex(notNew) + hex(length131072) + hex(rate100MHz));
}

void TestStatusReplies::greetingClearsTheFlagAndSendsNoSymbols()
{
    MeasurementSetup setup = setupWithTwoSamples();
    setup.newDataFlag = true;
    QCOMPARE(greeting(setup), hex(isNew) + hex(length131072) + hex(rate100MHz));
    QVERIFY(!setup.newDataFlag);
}

void TestStatusReplies::identityIsAHundredBytes()
{
    MeasurementSetup setup;
    const QByteArray block = replyTo(QStringLiteral("GetServerID"), setup);
    QCOMPARE(block.size(), 100);
    QCOMPARE(block.left(22), hex("04000000") + QByteArray("Noise Power Ratio\0", 18));
    QCOMPARE(block.mid(22), QByteArray(78, '\0'));
}

void TestStatusReplies::newStateIsToldOnceWithEverything()
{
    MeasurementSetup setup = setupWithTwoSamples();
    setup.newDataFlag = true;
    QCOMPARE(replyTo(QStringLiteral("GetNewState"), setup),
             hex(isNew) + hex(rate100MHz) + hex(length131072) + hex(twoSamples));
    QCOMPARE(replyTo(QStringLiteral("GetNewState"), setup), hex(notNew));
}

void TestStatusReplies::newStateWithoutNewsIsOneRecord()
{
    MeasurementSetup setup = setupWithTwoSamples();
    QCOMPARE(replyTo(QStringLiteral("GetNewState"), setup), hex(notNew));
}

void TestStatusReplies::sequenceLengthOfEveryRow()
{
    MeasurementSetup setup;
    setup.fftLengthIndex = 0; // 4194304 = 2^22: exponent 127 + 22 = 0x95
    QCOMPARE(replyTo(QStringLiteral("GetSequenceLength"), setup), hex("01000000 0000804a"));
    setup.fftLengthIndex = 16; // 64 = 2^6
    QCOMPARE(replyTo(QStringLiteral("GetSequenceLength"), setup), hex("01000000 00008042"));
}

void TestStatusReplies::symbolRateIsNotTakenForSymbols()
{
    MeasurementSetup setup = setupWithTwoSamples();
    QCOMPARE(replyTo(QStringLiteral("GetSymbolRate\r\n"), setup), hex(rate100MHz));
    QCOMPARE(replyTo(QStringLiteral("GetSymbols"), setup), hex(twoSamples));
    QCOMPARE(replyTo(QStringLiteral("GetSymbolrate"), setup), hex(twoSamples));
}

void TestStatusReplies::symbolsBeforeACalculationAreFourBytes()
{
    MeasurementSetup setup;
    QCOMPARE(replyTo(QStringLiteral("GetSymbol"), setup), hex("02000000"));
}

void TestStatusReplies::symbolsAreRoundedToTheNearestFloat()
{
    SignalData data(1);
    data.iSamples[0] = 1.0 + 0x1.8p-24; // above the middle between 1 and the next float
    data.qSamples[0] = 1.0 + 0x1.0p-24; // the middle, which goes to the even one
    QCOMPARE(symbolBlock(data), hex("02000000 0100803f 0000803f"));
}

void TestStatusReplies::symbolBlockOf131072SamplesHasItsSize()
{
    QCOMPARE(symbolBlock(SignalData(131072)).size(), 1048580);
}

void TestStatusReplies::symbolBlockNeverReadsBeyondShortVectors()
{
    SignalData data(4);
    data.qSamples.resize(1);
    QCOMPARE(symbolBlock(data).size(), 12);
    data.length = -1;
    QCOMPARE(symbolBlock(data).size(), 4);
}

void TestStatusReplies::whatFollowsTheFirstWordIsDropped()
{
    MeasurementSetup setup = setupWithTwoSamples();
    setup.newDataFlag = true;
    QCOMPARE(replyTo(QStringLiteral("GetServerIDGetNewState"), setup).size(), 100);
    QVERIFY(setup.newDataFlag);
}

void TestStatusReplies::unknownTextGetsSilence_data()
{
    QTest::addColumn<QString>("request");
    QTest::newRow("lower case") << "getserverid";
    QTest::newRow("cut off") << "GetSymbo";
    QTest::newRow("blank in front") << " GetServerID";
    QTest::newRow("empty") << "";
    QTest::newRow("binary") << QString(QChar(0)) + QChar(0xFFFD) + "GetServerID";
}

void TestStatusReplies::unknownTextGetsSilence()
{
    QFETCH(QString, request);
    MeasurementSetup setup;
    QCOMPARE(replyTo(request, setup), QByteArray());
}

QTEST_APPLESS_MAIN(TestStatusReplies)
#include "test_status_replies.moc"
