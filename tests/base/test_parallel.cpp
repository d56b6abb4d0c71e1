// Pieces of a job on several cores: each once, whatever else the machine does.
#include "base/parallel.h"

#include "base/worker_threads.h"

#include <QtTest>

#include <chrono>
#include <condition_variable>
#include <mutex>
#include <stdexcept>
#include <thread>
#include <vector>

class TestParallel : public QObject
{
    Q_OBJECT

private slots:
    void everyPieceIsTakenOnce();
    void asManyThreadsWorkAsAreAskedFor_data();
    void asManyThreadsWorkAsAreAskedFor();
    void theCallerWaitsForNoAssistantThatHasNotBegun();
    void aFailureReachesTheCaller();
    void runsCoverAllNumbersOnce();
    void whoWorksAloneAsksNobody();
};

namespace {

std::vector<int> takenBy(int threads)
{
    std::vector<int> taken(1000);
    inParallel(taken.size(), threads, [&](Pieces& pieces) {
        for (quint64 piece = 0; pieces.take(piece);) {
            ++taken[piece];
        }
    });
    return taken;
}

// Where workers wait for each other.
class Meeting
{
public:
    // Waits until that many have come, ten seconds at most.
    void await(int count)
    {
        std::unique_lock<std::mutex> lock(mutex);
        ++arrived;
        changed.notify_all();
        changed.wait_for(lock, std::chrono::seconds(10), [&] { return arrived >= count; });
    }

    int count() const
    {
        const std::lock_guard<std::mutex> lock(mutex);
        return arrived;
    }

private:
    mutable std::mutex mutex;
    std::condition_variable changed;
    int arrived = 0;
};

} // namespace

void TestParallel::everyPieceIsTakenOnce()
{
    for (const int threads : {1, 2, 3, 16}) {
        QVERIFY(takenBy(threads) == std::vector<int>(1000, 1));
    }
}

void TestParallel::asManyThreadsWorkAsAreAskedFor_data()
{
    QTest::addColumn<quint64>("pieces");
    QTest::addColumn<int>("threads");
    QTest::addColumn<int>("working");
    QTest::newRow("the caller alone") << quint64{100} << 1 << 1;
    QTest::newRow("two") << quint64{100} << 2 << 2;
    QTest::newRow("five") << quint64{100} << 5 << 5;
    QTest::newRow("no more than there are pieces") << quint64{3} << 16 << 3;
}

void TestParallel::asManyThreadsWorkAsAreAskedFor()
{
    QFETCH(quint64, pieces);
    QFETCH(int, threads);
    QFETCH(int, working);
    WorkerThreads& assistants = WorkerThreads::ofProcess();
    assistants.waitForDone();
    const auto caller = std::this_thread::get_id();
    Meeting meeting;
    int called = 0;
    inParallel(pieces, threads, [&](Pieces&) {
        meeting.await(working);
        if (std::this_thread::get_id() == caller) {
            called = assistants.busyCount();
        }
    });
    QCOMPARE(meeting.count(), working);
    QVERIFY2(called < working, QByteArray::number(called)); // some may be done already
}

// An assistant that is still on its way when the pieces have run out is called off.
void TestParallel::theCallerWaitsForNoAssistantThatHasNotBegun()
{
    for (int round = 0; round < 1000; ++round) {
        std::vector<int> taken(2);
        inParallel(2, 16, [&](Pieces& pieces) {
            for (quint64 piece = 0; pieces.take(piece);) {
                ++taken[piece];
            }
        });
        QVERIFY(taken == std::vector<int>(2, 1));
    }
}

void TestParallel::aFailureReachesTheCaller()
{
    for (const int threads : {1, 4}) {
        QVERIFY_EXCEPTION_THROWN(
            inParallel(100, threads, [](Pieces&) { throw std::runtime_error("no"); }),
            std::runtime_error);
    }
}

void TestParallel::runsCoverAllNumbersOnce()
{
    for (const std::size_t count : {0U, 1U, 32767U, 32768U, 32769U, 100000U}) {
        std::vector<int> met(count);
        inRuns(count, [&met](quint64 first, quint64 last) {
            for (quint64 i = first; i < last; ++i) {
                ++met[i];
            }
        });
        QVERIFY(met == std::vector<int>(count, 1));
    }
}

void TestParallel::whoWorksAloneAsksNobody()
{
    const int several = usefulThreads();
    {
        const WorkAlone alone;
        QCOMPARE(usefulThreads(), 1);
        int others = 0;
        std::thread([&others] { others = usefulThreads(); }).join();
        QCOMPARE(others, several);
        {
            const WorkAlone inner;
        }
        QCOMPARE(usefulThreads(), 1);
    }
    QCOMPARE(usefulThreads(), several);
}

QTEST_APPLESS_MAIN(TestParallel)
#include "test_parallel.moc"
