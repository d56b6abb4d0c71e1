// Worker threads: made when they are needed, used again, refused without a trace.
#include "base/worker_threads.h"

#include "kit/system_limits.h"

#include <QtTest>

#include <atomic>
#include <future>
#include <memory>
#include <set>
#include <stdexcept>
#include <thread>
#include <vector>

class TestWorkerThreads : public QObject
{
    Q_OBJECT

private slots:
    void initTestCase();
    void workRunsOnAnotherThread();
    void anIdleThreadIsUsedAgain();
    void asManyAsAreAskedForRunAtOnce();
    void aRefusedThreadLeavesNoTrace();
    void anIdleThreadServesWhereNoFurtherOneIsToBeHad();
    void anExceptionOfTheWorkIsDropped();
    void whatTheWorkHoldsIsFreeBeforeItCountsAsDone();
    void waitingReturnsWhenAllHaveEnded();
    void theDestructorWaitsForTheWork();
    void workMayAskForWork();
    void manyMayAskAtOnce();

private:
    bool isLimited = false;
};

namespace {

// Work that goes on until it is let go.
class Gate
{
public:
    std::function<void()> wait() const
    {
        return [gate = opened] { gate.wait(); };
    }
    void open() { end.set_value(); }

private:
    std::promise<void> end;
    std::shared_future<void> opened{end.get_future()};
};

} // namespace

void TestWorkerThreads::initTestCase()
{
    isLimited = becomeOrdinaryUser() && threadLimitBinds();
}

void TestWorkerThreads::workRunsOnAnotherThread()
{
    WorkerThreads workers;
    std::thread::id worker;
    QVERIFY(workers.start([&worker] { worker = std::this_thread::get_id(); }));
    workers.waitForDone();
    QVERIFY(worker != std::thread::id());
    QVERIFY(worker != std::this_thread::get_id());
}

void TestWorkerThreads::anIdleThreadIsUsedAgain()
{
    WorkerThreads workers;
    std::set<std::thread::id> used;
    for (int round = 0; round < 100; ++round) {
        QVERIFY(workers.start([&used] { used.insert(std::this_thread::get_id()); }));
        workers.waitForDone();
    }
    QCOMPARE(used.size(), std::size_t{1});
}

void TestWorkerThreads::asManyAsAreAskedForRunAtOnce()
{
    constexpr int count = 50; // more than any machine that this is likely to run on has cores
    WorkerThreads workers;
    Gate gate;
    std::atomic<int> begun{0};
    for (int i = 0; i < count; ++i) {
        QVERIFY(workers.start([&begun, wait = gate.wait()] {
            ++begun;
            wait();
        }));
    }
    QTRY_COMPARE(begun.load(), count);
    QCOMPARE(workers.busyCount(), count);
    gate.open();
    workers.waitForDone();
    QCOMPARE(workers.busyCount(), 0);
}

void TestWorkerThreads::aRefusedThreadLeavesNoTrace()
{
    if (!isLimited) {
        QSKIP("no limit on threads binds this process");
    }
    WorkerThreads workers;
    const auto held = std::make_shared<int>();
    bool isDone = false;
    {
        const ThreadLimit limit;
        for (int attempt = 0; attempt < 3; ++attempt) {
            QVERIFY(!workers.start([held, &isDone] { isDone = true; }));
            QCOMPARE(workers.busyCount(), 0);
            QCOMPARE(held.use_count(), 1L);
        }
        workers.waitForDone(); // for nothing
    }
    QVERIFY(!isDone);
    QVERIFY(workers.start([&isDone] { isDone = true; }));
    workers.waitForDone();
    QVERIFY(isDone);
}

void TestWorkerThreads::anIdleThreadServesWhereNoFurtherOneIsToBeHad()
{
    if (!isLimited) {
        QSKIP("no limit on threads binds this process");
    }
    WorkerThreads workers;
    QVERIFY(workers.start([] {}));
    workers.waitForDone();
    const ThreadLimit limit;
    Gate gate;
    QVERIFY(workers.start(gate.wait()));
    QVERIFY(!workers.start([] {}));
    QCOMPARE(workers.busyCount(), 1);
    gate.open();
    workers.waitForDone();
    QVERIFY(workers.start([] {}));
    workers.waitForDone();
}

void TestWorkerThreads::anExceptionOfTheWorkIsDropped()
{
    WorkerThreads workers;
    QVERIFY(workers.start([] { throw std::runtime_error("no"); }));
    QVERIFY(workers.start([] { throw 7; }));
    workers.waitForDone();
    bool isDone = false;
    QVERIFY(workers.start([&isDone] { isDone = true; }));
    workers.waitForDone();
    QVERIFY(isDone);
}

void TestWorkerThreads::whatTheWorkHoldsIsFreeBeforeItCountsAsDone()
{
    WorkerThreads workers;
    for (int round = 0; round < 100; ++round) {
        const auto held = std::make_shared<int>();
        QVERIFY(workers.start([held] {}));
        workers.waitForDone();
        QCOMPARE(held.use_count(), 1L);
    }
}

void TestWorkerThreads::waitingReturnsWhenAllHaveEnded()
{
    WorkerThreads workers;
    workers.waitForDone(); // there was none
    std::atomic<int> ended{0};
    for (int i = 0; i < 20; ++i) {
        QVERIFY(workers.start([&ended] {
            std::this_thread::yield();
            ++ended;
        }));
    }
    workers.waitForDone();
    QCOMPARE(ended.load(), 20);
}

void TestWorkerThreads::theDestructorWaitsForTheWork()
{
    for (int round = 0; round < 100; ++round) {
        std::atomic<bool> hasEnded{false};
        Gate gate;
        {
            WorkerThreads workers;
            QVERIFY(workers.start([&hasEnded, wait = gate.wait()] {
                wait();
                hasEnded = true;
            }));
            gate.open();
        }
        QVERIFY(hasEnded);
    }
}

void TestWorkerThreads::workMayAskForWork()
{
    WorkerThreads workers;
    bool isDone = false;
    QVERIFY(workers.start([&] { workers.start([&isDone] { isDone = true; }); }));
    workers.waitForDone();
    QVERIFY(isDone);
}

void TestWorkerThreads::manyMayAskAtOnce()
{
    constexpr int askers = 8;
    constexpr int each = 200;
    WorkerThreads workers;
    std::atomic<int> done{0};
    std::atomic<int> refused{0};
    std::vector<std::thread> threads;
    threads.reserve(askers);
    for (int asker = 0; asker < askers; ++asker) {
        threads.emplace_back([&] {
            for (int i = 0; i < each; ++i) {
                refused += workers.start([&done] { ++done; }) ? 0 : 1;
            }
        });
    }
    for (std::thread& thread : threads) {
        thread.join();
    }
    workers.waitForDone();
    QCOMPARE(done + refused, askers * each);
    QCOMPARE(refused.load(), 0);
}

QTEST_GUILESS_MAIN(TestWorkerThreads)
#include "test_worker_threads.moc"
