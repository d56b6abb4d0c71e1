// The client of the status server against a stand-in for the program.
#include "fake_program.h"

#include "simulator/signal_client.h"
#include "simulator/signal_replies.h"

#include <QtTest>

namespace {

// No poll of its own within the life of a test.
constexpr SignalClientTiming onlyWhenAsked{3600000, 3600000};

PlayedSignal signalOf(const QSignalSpy& received, int index)
{
    return received.at(index).at(0).value<PlayedSignal>();
}

} // namespace

class TestSignalClient : public QObject
{
    Q_OBJECT

private slots:
    void initTestCase() { qRegisterMetaType<PlayedSignal>(); }
    void theFirstContactFetchesWhatIsThere();
    void aSignalThatTheGreetingAnnouncedIsNotLost();
    void aProgramWithoutASignalGivesAnEmptyOne();
    void aNewSignalIsFetched();
    void nothingIsFetchedTwice();
    void aLongSignalArrivesWhole();
    void aSignalThatCannotBePlayedIsRefused();
    void aSlowSignalOfOneSampleIsPlayed();
    void lengthsThatCanBePlayedArePowersOfTwo();
    void aClientThatEndsSaysNothingMore();
    void aProgramThatComesBackIsFound();
    void aProgramThatStaysSilentIsContactedAnew();
    void askingNowBringsTheNewestSignal();
    void askingDuringAPollWaitsForTheNextOne();
    void askingWithoutAProgramWaitsForNothing();
    void aLostProgramEndsTheWait();
    void repliesOfAnyBytesAreRead();
};

void TestSignalClient::theFirstContactFetchesWhatIsThere()
{
    FakeProgram program;
    QVERIFY(program.listen());
    program.calculateTone(8, 1);
    program.hasNews = false; // an earlier client was told
    SignalClient client(program.port(), onlyWhenAsked);
    QSignalSpy received(&client, &SignalClient::received);
    QTRY_COMPARE(received.size(), 1);
    const PlayedSignal signal = signalOf(received, 0);
    QCOMPARE(signal.size(), 8);
    QCOMPARE(signal.sampleRate, 8.0);
    QCOMPARE(signal.iSamples[0], 1.0);
    QCOMPARE(signal.qSamples[2], 1.0);
    QCOMPARE(signal.iSamples[4], -1.0);
    QCOMPARE(program.requests, QByteArrayList({"GetSymbol", "GetServerID"}));
}

void TestSignalClient::aSignalThatTheGreetingAnnouncedIsNotLost()
{
    FakeProgram program;
    QVERIFY(program.listen());
    program.calculateTone(16, 1);
    SignalClient client(program.port(), onlyWhenAsked);
    QSignalSpy received(&client, &SignalClient::received);
    QTRY_COMPARE(received.size(), 1);
    QCOMPARE(signalOf(received, 0).size(), 16);
    QVERIFY(!program.hasNews);
}

void TestSignalClient::aProgramWithoutASignalGivesAnEmptyOne()
{
    FakeProgram program;
    QVERIFY(program.listen());
    SignalClient client(program.port(), onlyWhenAsked);
    QSignalSpy received(&client, &SignalClient::received);
    QTRY_COMPARE(received.size(), 1);
    QCOMPARE(signalOf(received, 0).size(), 0);
}

void TestSignalClient::aNewSignalIsFetched()
{
    FakeProgram program;
    QVERIFY(program.listen());
    SignalClient client(program.port(), {10, 5000});
    QSignalSpy received(&client, &SignalClient::received);
    QTRY_COMPARE(received.size(), 1);
    for (int index = 1; index <= 3; ++index) {
        program.calculateTone(64 << index, 3);
        QTRY_COMPARE(received.size(), index + 1);
        QCOMPARE(signalOf(received, index).size(), 64 << index);
        QCOMPARE(signalOf(received, index).sampleRate, double(64 << index));
    }
}

void TestSignalClient::nothingIsFetchedTwice()
{
    FakeProgram program;
    QVERIFY(program.listen());
    program.calculateTone(64, 3);
    SignalClient client(program.port(), {10, 5000});
    QSignalSpy received(&client, &SignalClient::received);
    QTRY_VERIFY(program.requests.count("GetNewState") >= 5);
    QCOMPARE(received.size(), 1);
}

void TestSignalClient::aLongSignalArrivesWhole()
{
    FakeProgram program;
    QVERIFY(program.listen());
    program.calculateTone(1 << 18, 3);
    SignalClient client(program.port(), onlyWhenAsked);
    QSignalSpy received(&client, &SignalClient::received);
    QTRY_COMPARE_WITH_TIMEOUT(received.size(), 1, 20000);
    const PlayedSignal signal = signalOf(received, 0);
    QCOMPARE(signal.size(), 1 << 18);
    QCOMPARE(float(signal.qSamples.last()), program.samples.last());
}

void TestSignalClient::aSignalThatCannotBePlayedIsRefused()
{
    FakeProgram program;
    QVERIFY(program.listen());
    program.calculateTone(100, 3); // no power of two
    SignalClient client(program.port(), {10, 5000});
    QSignalSpy received(&client, &SignalClient::received);
    QSignalSpy refused(&client, &SignalClient::refused);
    QTRY_COMPARE(refused.size(), 1);
    QCOMPARE(refused[0][0].toString(), QString("cannot play 100 symbols at 100 Hz"));
    QCOMPARE(signalOf(received, 0).size(), 0);
    program.calculateTone(64, 3);
    program.sampleRate = 0.0F;
    QTRY_COMPARE(refused.size(), 2);
    program.calculateTone(64, 3);
    QTRY_COMPARE(received.size(), 3);
    QCOMPARE(signalOf(received, 2).size(), 64);
}

void TestSignalClient::aSlowSignalOfOneSampleIsPlayed()
{
    FakeProgram program;
    QVERIFY(program.listen());
    program.calculateTone(1, 0);
    program.sampleRate = 0.5F;
    SignalClient client(program.port(), onlyWhenAsked);
    QSignalSpy received(&client, &SignalClient::received);
    QTRY_COMPARE(received.size(), 1);
    QCOMPARE(signalOf(received, 0).size(), 1);
    QCOMPARE(signalOf(received, 0).sampleRate, 0.5);
}

void TestSignalClient::lengthsThatCanBePlayedArePowersOfTwo()
{
    for (const qint64 count : {1, 2, 64, 4194304, 16777216}) {
        QVERIFY(isPlayableLength(count));
    }
    for (const qint64 count : {-4, 0, 3, 6, 63, 65, 16777215, 33554432}) {
        QVERIFY(!isPlayableLength(count));
    }
}

void TestSignalClient::aClientThatEndsSaysNothingMore()
{
    FakeProgram program;
    QVERIFY(program.listen());
    auto client = std::make_unique<SignalClient>(program.port(), onlyWhenAsked);
    int settled = 0;
    connect(client.get(), &SignalClient::settled, this, [&settled] { ++settled; });
    QTRY_COMPARE(settled, 1); // it is connected
    client.reset();
    QCOMPARE(settled, 1);
}

void TestSignalClient::aProgramThatComesBackIsFound()
{
    quint16 port = 0;
    {
        FakeProgram early;
        QVERIFY(early.listen());
        port = early.port();
    }
    SignalClient client(port, {10, 5000});
    QSignalSpy received(&client, &SignalClient::received);
    FakeProgram program;
    QVERIFY(program.listen(port));
    program.calculateTone(64, 3);
    QTRY_COMPARE(received.size(), 1);
    program.stop();
    QVERIFY(program.listen(port));
    program.calculateTone(128, 3);
    QTRY_COMPARE(received.size(), 2);
    QCOMPARE(signalOf(received, 1).size(), 128);
}

void TestSignalClient::aProgramThatStaysSilentIsContactedAnew()
{
    FakeProgram program;
    program.silent = true;
    QVERIFY(program.listen());
    SignalClient client(program.port(), {10, 50});
    QTRY_VERIFY(program.connectionCount >= 3);
}

void TestSignalClient::askingNowBringsTheNewestSignal()
{
    FakeProgram program;
    QVERIFY(program.listen());
    SignalClient client(program.port(), onlyWhenAsked);
    QSignalSpy received(&client, &SignalClient::received);
    QSignalSpy settled(&client, &SignalClient::settled);
    QTRY_COMPARE(settled.size(), 1);
    program.calculateTone(64, 3);
    const quint64 poll = client.refresh();
    QVERIFY(poll != 0);
    QTRY_COMPARE(settled.size(), 2);
    QCOMPARE(settled[1][0].toULongLong(), poll);
    QCOMPARE(received.size(), 2);
    QCOMPARE(signalOf(received, 1).size(), 64);
}

// A poll that was answered before the signal was there must not count.
void TestSignalClient::askingDuringAPollWaitsForTheNextOne()
{
    FakeProgram program;
    QVERIFY(program.listen());
    SignalClient client(program.port(), onlyWhenAsked);
    QSignalSpy settled(&client, &SignalClient::settled);
    QTRY_COMPARE(settled.size(), 1);
    const quint64 first = client.refresh();
    const quint64 second = client.refresh();
    QCOMPARE(second, first + 1);
    QCOMPARE(client.refresh(), second);
    QTRY_COMPARE(settled.size(), 3);
    QCOMPARE(settled[1][0].toULongLong(), first);
    QCOMPARE(settled[2][0].toULongLong(), second);
}

void TestSignalClient::askingWithoutAProgramWaitsForNothing()
{
    quint16 port = 0;
    {
        FakeProgram early;
        QVERIFY(early.listen());
        port = early.port();
    }
    SignalClient client(port, onlyWhenAsked);
    QCOMPARE(client.refresh(), quint64(0));
}

void TestSignalClient::aLostProgramEndsTheWait()
{
    FakeProgram program;
    QVERIFY(program.listen());
    SignalClient client(program.port(), onlyWhenAsked);
    QSignalSpy settled(&client, &SignalClient::settled);
    QTRY_COMPARE(settled.size(), 1);
    program.silent = true;
    client.refresh();
    const quint64 poll = client.refresh();
    QTRY_COMPARE(program.requests.last(), QByteArray("GetNewState"));
    QCOMPARE(settled.size(), 1);
    program.stop();
    QTRY_COMPARE(settled.size(), 2);
    QCOMPARE(settled[1][0].toULongLong(), poll);
}

void TestSignalClient::repliesOfAnyBytesAreRead()
{
    for (int size = 0; size < 40; ++size) {
        QCOMPARE(signalInReply(QByteArray(size, '\x7f'), 1.0).size(), 0);
        QCOMPARE(recordValue(QByteArray(size, '\x7f'), ReplyTag::NewState, 5.0), 5.0);
    }
    QCOMPARE(signalInReply(QByteArray::fromHex("02000000"), 1.0).size(), 0);
    QCOMPARE(signalInReply(QByteArray::fromHex("020000000000803F"), 1.0).size(), 0);
    const PlayedSignal one = signalInReply(QByteArray::fromHex("0200000000000040000080BF"), 7.0);
    QCOMPARE(one.size(), 1);
    QCOMPARE(one.iSamples[0], 2.0);
    QCOMPARE(one.qSamples[0], -1.0);
    QCOMPARE(one.sampleRate, 7.0);
    QCOMPARE(serverIdentity().size(), 100);
}

QTEST_GUILESS_MAIN(TestSignalClient)
#include "test_signal_client.moc"
