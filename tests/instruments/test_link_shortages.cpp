// Conversations for which there is no thread or no memory, and turns that are moved onto
// themselves.
#include "instruments/instrument_link.h"

#include "base/worker_threads.h"
#include "kit/system_limits.h"

#include <QSemaphore>
#include <QtTest>

#include <new>

class TestLinkShortages : public QObject
{
    Q_OBJECT

private slots:
    void initTestCase() { isLimited = becomeOrdinaryUser() && threadLimitBinds(); }
    void aConversationWithoutMemoryEndsInTheMessage();
    void aConversationWithoutAThreadEndsInTheMessage();
    void aTurnMovedOntoItselfIsKept();

private:
    bool isLimited = false;
};

void TestLinkShortages::aConversationWithoutMemoryEndsInTheMessage()
{
    const auto link = std::make_shared<InstrumentLink>();
    link->setInitialized();
    QSemaphore ended;
    link->converse([] { throw std::bad_alloc(); }, [&ended] { ended.release(); });
    QVERIFY(ended.tryAcquire(1, 5000));
    WorkerThreads::ofProcess().waitForDone();
    QCOMPARE(link->deviceMessage(), QString("Not enough memory"));
    QVERIFY(!link->initialized());
    QCOMPARE(link->pendingConversations(), 0);
    QVERIFY(!link->isInUse());
}

void TestLinkShortages::aConversationWithoutAThreadEndsInTheMessage()
{
    if (!isLimited) {
        QSKIP("no limit on threads binds this process");
    }
    const auto link = std::make_shared<InstrumentLink>();
    link->setInitialized();
    int talks = 0;
    int ends = 0;
    {
        const ThreadLimit limit;
        const NoIdleWorkers none;
        link->converse([&talks] { ++talks; }, [&ends] { ++ends; });
        QCOMPARE(ends, 1); // at once
        QCOMPARE(link->deviceMessage(), QString("No thread for the instrument"));
        QVERIFY(!link->initialized());
        QCOMPARE(link->pendingConversations(), 0);
        QVERIFY(!link->isInUse());
    }
    WorkerThreads::ofProcess().waitForDone();
    QCOMPARE(talks, 0);
    link->converse([&talks] { ++talks; }, [] {});
    WorkerThreads::ofProcess().waitForDone();
    QCOMPARE(talks, 1);
}

void TestLinkShortages::aTurnMovedOntoItselfIsKept()
{
    const auto link = std::make_shared<InstrumentLink>();
    LinkTurn turn = link->takeTurn();
    LinkTurn& same = turn;
    turn = std::move(same);
    QVERIFY(turn);
    QVERIFY(link->isInUse());
}

QTEST_GUILESS_MAIN(TestLinkShortages)
#include "test_link_shortages.moc"
