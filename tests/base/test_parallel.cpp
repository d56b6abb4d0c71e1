// Pieces of a job on several cores: each once, whatever else the machine does.
#include "base/parallel.h"

#include <QtTest>

#include <stdexcept>
#include <thread>
#include <vector>

class TestParallel : public QObject
{
    Q_OBJECT

private slots:
    void everyPieceIsTakenOnce();
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

} // namespace

void TestParallel::everyPieceIsTakenOnce()
{
    for (const int threads : {1, 2, 3, 16}) {
        QVERIFY(takenBy(threads) == std::vector<int>(1000, 1));
    }
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
    }
    QCOMPARE(usefulThreads(), several);
}

QTEST_APPLESS_MAIN(TestParallel)
#include "test_parallel.moc"
