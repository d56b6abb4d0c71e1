// The link alone: who gets the next turn, what a replaced record and the end of the program do.
#include "instruments/analyzer.h"
#include "instruments/instrument_link.h"

#include "base/worker_threads.h"
#include "kit/bench_instrument.h"
#include "kit/conversations.h"

#include <QElapsedTimer>
#include <QSemaphore>
#include <QtTest>

#include <thread>
#include <vector>

class TestInstrumentLink : public QObject
{
    Q_OBJECT

private slots:
    void theFirstWhoAsksIsServedAtOnce();
    void turnsComeInOrderOfAsking();
    void oneTalksAtATimeHoweverManyThreadsAsk();
    void aTurnThatIsMovedIsGivenBackOnce();
    void aRetiredLinkRefusesWhoeverWaits();
    void aConversationInProgressSurvivesTheRetirement();
    void aThreadThatWaitsIsSentAwayByTheRetirement();
    void conversationsRunOneAfterTheOther();
    void aRetiredLinkHoldsNoConversation();
    void aConversationOutlivesItsInstrument();
    void breakingOffEndsAWait_data();
    void breakingOffEndsAWait();
    void afterBreakingOffNothingIsSent();
    void askingWhatTheDeviceSaidNeverWaits();
};

namespace {

using Link = std::shared_ptr<InstrumentLink>;

void notePlace(const Link& link, QStringList& order, const char* name)
{
    link->ask([&order, name](const LinkTurn& turn) {
        order.append(QLatin1String(name) + (turn ? "" : " refused"));
    });
}

// Returns when the line has arrived, which makes its sender wait for the answer.
void awaitLine(const BenchInstrument& device, const QByteArray& line)
{
    QTRY_COMPARE(device.count(line), 1);
}

// An init in the background, whose answer the device keeps back.
class HeldInit
{
public:
    HeldInit()
    {
        device.answer("*IDN?", "ACME\n");
        device.hold("*IDN?");
        analyzer.link()->converse([this] { analyzer.init(); }, [this] { ended.release(); });
    }
    ~HeldInit() { WorkerThreads::ofProcess().waitForDone(); }

    BenchInstrument device{"127.0.0.1"};
    const Analyzer analyzer;
    QSemaphore ended;
};

} // namespace

void TestInstrumentLink::theFirstWhoAsksIsServedAtOnce()
{
    const auto link = std::make_shared<InstrumentLink>();
    QVERIFY(!link->isInUse());
    bool given = false;
    LinkTurn turn;
    link->ask([&](LinkTurn mine) {
        given = true;
        turn = std::move(mine);
    });
    QVERIFY(given);
    QVERIFY(turn);
    QVERIFY(link->isInUse());
    turn.giveBack();
    QVERIFY(!turn);
    QVERIFY(!link->isInUse());
}

void TestInstrumentLink::turnsComeInOrderOfAsking()
{
    const auto link = std::make_shared<InstrumentLink>();
    QStringList order;
    LinkTurn first = link->takeTurn();
    notePlace(link, order, "b");
    notePlace(link, order, "c");
    notePlace(link, order, "d");
    QCOMPARE(order, QStringList());
    first.giveBack();
    QCOMPARE(order, QStringList({"b", "c", "d"}));
    QVERIFY(link->takeTurn());
}

void TestInstrumentLink::oneTalksAtATimeHoweverManyThreadsAsk()
{
    const auto link = std::make_shared<InstrumentLink>();
    int talking = 0; // guarded by the turn alone, as a device is
    int conversations = 0;
    std::atomic<bool> overlap{false};
    std::vector<std::thread> threads;
    threads.reserve(8);
    for (int i = 0; i < 8; ++i) {
        threads.emplace_back([&] {
            for (int round = 0; round < 500; ++round) {
                const LinkTurn turn = link->takeTurn();
                overlap = overlap || ++talking != 1;
                ++conversations;
                --talking;
            }
        });
    }
    for (std::thread& each : threads) {
        each.join();
    }
    QVERIFY(!overlap);
    QCOMPARE(conversations, 4000);
}

void TestInstrumentLink::aTurnThatIsMovedIsGivenBackOnce()
{
    const auto link = std::make_shared<InstrumentLink>();
    QStringList order;
    LinkTurn turn = link->takeTurn();
    LinkTurn other = std::move(turn);
    QVERIFY(other);
    LinkTurn kept;
    link->ask([&](LinkTurn mine) {
        order.append("b");
        kept = std::move(mine); // goes on talking
    });
    notePlace(link, order, "c");
    other.giveBack();
    other.giveBack();
    turn.giveBack(); // NOLINT(bugprone-use-after-move): has nothing left to give back
    QCOMPARE(order, QStringList("b"));
    kept.giveBack();
    QCOMPARE(order, QStringList({"b", "c"}));
}

void TestInstrumentLink::aRetiredLinkRefusesWhoeverWaits()
{
    const auto link = std::make_shared<InstrumentLink>();
    QStringList order;
    LinkTurn first = link->takeTurn();
    notePlace(link, order, "b");
    notePlace(link, order, "c");
    link->retire();
    QCOMPARE(order, QStringList({"b refused", "c refused"}));
    first.giveBack();
    notePlace(link, order, "d");
    QCOMPARE(order.last(), QString("d refused"));
    QVERIFY(!link->takeTurn());
    QVERIFY(link->isRetired());
    QVERIFY(!link->isInUse());
}

void TestInstrumentLink::aConversationInProgressSurvivesTheRetirement()
{
    HeldInit init;
    awaitLine(init.device, "*IDN?");
    init.analyzer.link()->retire();
    init.device.release();
    QVERIFY(init.ended.tryAcquire(1, 5000));
    QTRY_COMPARE(spokenWith(init.device), QString("init"));
    QCOMPARE(init.analyzer.deviceMessage(), QString("ACME")); // nobody asks a replaced record
    QCOMPARE(init.device.openConnections(), 1);
}

void TestInstrumentLink::aThreadThatWaitsIsSentAwayByTheRetirement()
{
    const auto link = std::make_shared<InstrumentLink>();
    const LinkTurn first = link->takeTurn();
    std::atomic<int> refused{0};
    std::vector<std::thread> threads;
    threads.reserve(4);
    for (int i = 0; i < 4; ++i) {
        threads.emplace_back([&] { refused += link->takeTurn() ? 0 : 1; });
    }
    link->retire(); // before, between or after their asking
    for (std::thread& each : threads) {
        each.join();
    }
    QCOMPARE(refused.load(), 4);
}

void TestInstrumentLink::conversationsRunOneAfterTheOther()
{
    const auto link = std::make_shared<InstrumentLink>();
    QSemaphore mayGoOn;
    QSemaphore ended;
    QStringList order;
    for (const char* name : {"a", "b", "c"}) {
        link->converse(
            [&order, &mayGoOn, name] {
                mayGoOn.acquire();
                order.append(name);
            },
            [&ended] { ended.release(); });
    }
    QCOMPARE(link->pendingConversations(), 3);
    mayGoOn.release(1);
    QVERIFY(ended.tryAcquire(1, 5000));
    QTRY_COMPARE(link->pendingConversations(), 2);
    mayGoOn.release(2);
    QVERIFY(ended.tryAcquire(2, 5000));
    QTRY_COMPARE(link->pendingConversations(), 0);
    WorkerThreads::ofProcess().waitForDone();
    QCOMPARE(order, QStringList({"a", "b", "c"}));
    QVERIFY(!link->isInUse());
}

void TestInstrumentLink::aRetiredLinkHoldsNoConversation()
{
    const auto link = std::make_shared<InstrumentLink>();
    std::atomic<int> calls{0};
    LinkTurn first = link->takeTurn();
    link->converse([&calls] { ++calls; }, [&calls] { ++calls; }); // waits
    QCOMPARE(link->pendingConversations(), 1);
    link->retire();
    QCOMPARE(link->pendingConversations(), 0);
    link->converse([&calls] { ++calls; }, [&calls] { ++calls; }); // comes too late
    QCOMPARE(link->pendingConversations(), 0);
    first.giveBack();
    WorkerThreads::ofProcess().waitForDone();
    QCOMPARE(calls.load(), 0);
}

void TestInstrumentLink::aConversationOutlivesItsInstrument()
{
    QSemaphore mayGoOn;
    QSemaphore ended;
    std::weak_ptr<InstrumentLink> watched;
    QString second;
    {
        const auto analyzer = std::make_unique<Analyzer>();
        watched = analyzer->link();
        InstrumentLink* link = analyzer->link().get();
        link->converse([&mayGoOn] { mayGoOn.acquire(); }, [&ended] { ended.release(); });
        link->converse([&second] { second = "served"; }, [&ended] { ended.release(); });
    }
    QVERIFY(!watched.expired());
    mayGoOn.release();
    QVERIFY(ended.tryAcquire(2, 5000));
    QCOMPARE(second, QString("served"));
    WorkerThreads::ofProcess().waitForDone();
    QVERIFY(watched.expired());
}

void TestInstrumentLink::breakingOffEndsAWait_data()
{
    QTest::addColumn<bool>("beforeTheConnection");
    QTest::newRow("for an answer") << false;
    QTest::newRow("that has not begun") << true;
}

void TestInstrumentLink::breakingOffEndsAWait()
{
    QFETCH(bool, beforeTheConnection);
    BenchInstrument device("127.0.0.1"); // says nothing, which takes three seconds
    const Analyzer analyzer;
    QSemaphore mayGoOn;
    QSemaphore ended;
    analyzer.link()->converse(
        [&] {
            mayGoOn.acquire();
            analyzer.init();
        },
        [&ended] { ended.release(); });
    if (!beforeTheConnection) {
        mayGoOn.release();
        awaitLine(device, "*IDN?");
    }
    QElapsedTimer timer;
    timer.start();
    analyzer.link()->breakOff();
    QVERIFY2(timer.elapsed() < 2500, QByteArray::number(timer.elapsed())); // doesn't wait itself
    mayGoOn.release();
    QVERIFY(ended.tryAcquire(1, 2500));
    QVERIFY(!analyzer.initialized());
    QCOMPARE(device.count("&GTL"), 0);
    QCOMPARE(device.connectionCount(), beforeTheConnection ? 0 : 1);
    WorkerThreads::ofProcess().waitForDone();
}

void TestInstrumentLink::afterBreakingOffNothingIsSent()
{
    BenchInstrument device("127.0.0.1");
    device.answer("*IDN?", "ACME\n");
    const Analyzer analyzer;
    LinkTurn turn = analyzer.link()->takeTurn();
    analyzer.init();
    QTRY_COMPARE(spokenWith(device), QString("init"));
    analyzer.link()->breakOff();
    analyzer.setup();
    analyzer.reset();
    analyzer.init();
    QVERIFY(!analyzer.initialized());
    turn.giveBack();
    QVERIFY(!analyzer.link()->takeTurn());
    QTRY_COMPARE(device.openConnections(), 0); // the last one dropped it
    QCOMPARE(device.lines().size(), 2);
    QCOMPARE(device.connectionCount(), 1);
}

void TestInstrumentLink::askingWhatTheDeviceSaidNeverWaits()
{
    HeldInit init;
    const Analyzer& analyzer = init.analyzer;
    awaitLine(init.device, "*IDN?");
    // All of this happens while the device keeps its answer back.
    QVERIFY(!analyzer.initialized());
    QCOMPARE(analyzer.deviceMessage(), QString());
    QVERIFY(analyzer.remote() != nullptr);
    QVERIFY(analyzer.link()->isInUse());
    QVERIFY(!analyzer.link()->isRetired());
    QCOMPARE(analyzer.link()->pendingConversations(), 1);
    QVERIFY(!init.ended.tryAcquire());
    init.device.release();
    QVERIFY(init.ended.tryAcquire(1, 5000));
    QVERIFY(analyzer.initialized());
}

QTEST_GUILESS_MAIN(TestInstrumentLink)
#include "test_instrument_link.moc"
