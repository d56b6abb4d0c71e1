// Those who help the caller with the pieces of a job.
#include "base/parallel.h"

#include <QtTest>

#include <chrono>
#include <future>
#include <stdexcept>
#include <thread>

class TestAssistants : public QObject
{
    Q_OBJECT

private slots:
    void theFailureOfAnAssistantAloneReachesTheCaller();
    void theCallersOwnFailureComesFirst();
    void theCallerWaitsForAnAssistantThatHasBegun();
};

namespace {

// One job for the caller and one assistant, who meet before either ends.
template <class Caller, class Assistant> void together(Caller caller, Assistant assistant)
{
    const auto callersThread = std::this_thread::get_id();
    std::promise<void> begun;
    std::shared_future<void> hasBegun(begun.get_future());
    inParallel(2, 2, [&](Pieces&) {
        if (std::this_thread::get_id() == callersThread) {
            hasBegun.wait_for(std::chrono::seconds(10));
            caller();
        } else {
            begun.set_value();
            assistant();
        }
    });
}

// The text of the failure that the job ends with; empty without one.
template <class Job> QString failureOf(Job job)
{
    try {
        job();
    } catch (const std::runtime_error& failure) {
        return QString::fromLatin1(failure.what());
    }
    return {};
}

} // namespace

void TestAssistants::theFailureOfAnAssistantAloneReachesTheCaller()
{
    QCOMPARE(failureOf([] { together([] {}, [] { throw std::runtime_error("assistant"); }); }),
             QString("assistant"));
}

void TestAssistants::theCallersOwnFailureComesFirst()
{
    QCOMPARE(failureOf([] {
                 together([] { throw std::runtime_error("caller"); },
                          [] { throw std::runtime_error("assistant"); });
             }),
             QString("caller"));
}

void TestAssistants::theCallerWaitsForAnAssistantThatHasBegun()
{
    for (int round = 0; round < 20; ++round) {
        int done = 0; // unguarded: the end of the job is the guard
        together([] {},
                 [&done] {
                     for (int turn = 0; turn < 1000; ++turn) {
                         std::this_thread::yield();
                     }
                     done = 1;
                 });
        QCOMPARE(done, 1);
    }
}

QTEST_APPLESS_MAIN(TestAssistants)
#include "test_assistants.moc"
