// Work in the background: what it brings arrives once, in the main thread, whatever becomes of it.
#include "base/background.h"

#include "kit/background_jobs.h"
#include "kit/instrumented.h"
#include "kit/system_limits.h"

#include <QtTest>

#include <atomic>
#include <future>
#include <memory>
#include <new>
#include <stdexcept>
#include <thread>

class TestBackground : public QObject
{
    Q_OBJECT

private slots:
    void initTestCase();
    void theResultArrivesInTheMainThread();
    void anAskerThatHasGoneIsNotCalled();
    void anExceptionBringsADefaultMadeResult_data();
    void anExceptionBringsADefaultMadeResult();
    void aRefusedThreadBringsADefaultMadeResult();
    void noMemoryForAThreadBringsADefaultMadeResult();
    void anEndIsToldWhereNoMemoryIsLeft_data();
    void anEndIsToldWhereNoMemoryIsLeft();
    void whoAsksInTheLastMemoryIsAnsweredOrToldSo();
    void callsArriveInOrderOfAsking();
    void callsLeaveNothingBehind();
    void manyAtOnceAllArriveOnce();
    void aResultMayAskForTheNext();
    void withoutAnApplicationNothingIsCalled();
    void theEndOfTheApplicationWaitsForTheWork();

private:
    void arrivesDefaultMade();

    bool isLimited = false;
};

namespace {

// There is one at a time; Qt Test's own would have to outlive the tests.
class Application
{
public:
    Application() : application(count, arguments) {}

private:
    int count = 1;
    char name[5] = "test";
    char* arguments[2] = {name, nullptr};
    QCoreApplication application;
};

constexpr int unset = -1;

} // namespace

void TestBackground::initTestCase()
{
    isLimited = becomeOrdinaryUser() && threadLimitBinds();
}

void TestBackground::theResultArrivesInTheMainThread()
{
    const Application application;
    QObject asker;
    std::thread::id worker;
    std::thread::id receiver;
    QString result;
    inBackground(
        &asker,
        [&worker] {
            worker = std::this_thread::get_id();
            return QStringLiteral("done");
        },
        [&](const QString& brought) {
            receiver = std::this_thread::get_id();
            result = brought;
        });
    QVERIFY(result.isEmpty()); // never before the event loop gets round to it
    QTRY_COMPARE(result, QStringLiteral("done"));
    QVERIFY(receiver == std::this_thread::get_id());
    QVERIFY(worker != receiver);
}

void TestBackground::anAskerThatHasGoneIsNotCalled()
{
    const Application application;
    bool isCalled = false;
    auto asker = std::make_unique<QObject>();
    std::promise<void> gone;
    inBackground(
        asker.get(),
        [end = gone.get_future().share()] {
            end.wait();
            return 1;
        },
        [&isCalled](int) { isCalled = true; });
    asker.reset();
    gone.set_value();
    waitForBackgroundJobs();
    // The same, when the result is already on its way.
    asker = std::make_unique<QObject>();
    inBackground(
        asker.get(), [] { return 1; }, [&isCalled](int) { isCalled = true; });
    WorkerThreads::ofProcess().waitForDone();
    asker.reset();
    QCoreApplication::processEvents();
    QVERIFY(!isCalled);
}

void TestBackground::anExceptionBringsADefaultMadeResult_data()
{
    QTest::addColumn<int>("kind");
    QTest::newRow("no memory") << 0;
    QTest::newRow("another") << 1;
    QTest::newRow("no exception class") << 2;
}

void TestBackground::anExceptionBringsADefaultMadeResult()
{
    QFETCH(int, kind);
    const Application application;
    QObject asker;
    int result = unset;
    inBackground(
        &asker,
        [kind]() -> int {
            switch (kind) {
            case 0:
                throw std::bad_alloc();
            case 1:
                throw std::runtime_error("no");
            default:
                throw QString("no");
            }
        },
        [&result](int brought) { result = brought; });
    QTRY_COMPARE(result, 0);
}

void TestBackground::arrivesDefaultMade()
{
    const Application application;
    QObject asker;
    int result = unset;
    bool isDone = false;
    {
        const NoIdleWorkers none;
        inBackground(
            &asker,
            [&isDone] {
                isDone = true;
                return 7;
            },
            [&result](int brought) { result = brought; });
        QCOMPARE(result, unset); // never within the call
        QTRY_COMPARE(result, 0);
    }
    QVERIFY(!isDone);
    waitForBackgroundJobs();
    inBackground(
        &asker, [] { return 7; }, [&result](int brought) { result = brought; });
    QTRY_COMPARE(result, 7);
}

void TestBackground::aRefusedThreadBringsADefaultMadeResult()
{
    if (!isLimited) {
        QSKIP("no limit on threads binds this process");
    }
    const ThreadLimit limit;
    arrivesDefaultMade();
}

void TestBackground::noMemoryForAThreadBringsADefaultMadeResult()
{
    if (isInstrumented) {
        QSKIP("a sanitizer needs the whole address space");
    }
    const LargeStacks stacks;
    const MemoryLimit limit(LargeStacks::size / 2);
    arrivesDefaultMade();
}

void TestBackground::anEndIsToldWhereNoMemoryIsLeft_data()
{
    QTest::addColumn<bool>("isDone");
    QTest::newRow("of work that is done") << true;
    QTest::newRow("of work that isn't") << false;
}

void TestBackground::anEndIsToldWhereNoMemoryIsLeft()
{
    QFETCH(bool, isDone);
    if (isInstrumented) {
        QSKIP("a sanitizer needs the whole address space");
    }
    const Application application;
    QObject asker;
    std::unique_ptr<LastMemory> last;
    int result = unset;
    inBackground(
        &asker,
        [&last, isDone] {
            last = std::make_unique<LastMemory>(0, LastMemory::smallestOfAll);
            if (!isDone) {
                throw std::bad_alloc();
            }
            return 7;
        },
        [&result](int brought) { result = brought; });
    WorkerThreads::ofProcess().waitForDone();
    last.reset();
    QTRY_COMPARE(result, isDone ? 7 : 0);
}

void TestBackground::whoAsksInTheLastMemoryIsAnsweredOrToldSo()
{
    if (isInstrumented) {
        QSKIP("a sanitizer needs the whole address space");
    }
    const Application application;
    QObject asker;
    int refusals = 0;
    int answers = 0;
    for (std::size_t left = 0; left < 4096; left += 64) {
        bool isRefused = false;
        int arrivals = 0;
        {
            const LastMemory last(left, LastMemory::smallestOfAll);
            try {
                inBackground(
                    &asker, [] { return 7; }, [&arrivals](int) { ++arrivals; });
            } catch (const std::bad_alloc&) {
                isRefused = true;
            }
            WorkerThreads::ofProcess().waitForDone();
        }
        QCoreApplication::processEvents();
        QCOMPARE(arrivals, isRefused ? 0 : 1);
        refusals += isRefused ? 1 : 0;
        answers += arrivals;
    }
    QVERIFY(refusals > 0);
    QVERIFY(answers > 0);
}

void TestBackground::callsArriveInOrderOfAsking()
{
    const Application application;
    QObject asker;
    QVector<int> arrived;
    QVector<int> asked;
    for (int i = 0; i < 100; ++i) {
        asked.append(i);
        CallHome(&asker, [&arrived, i] { arrived.append(i); }).send();
    }
    QVERIFY(arrived.isEmpty());
    QTRY_COMPARE(arrived, asked);
}

void TestBackground::callsLeaveNothingBehind()
{
    const Application application;
    QObject asker;
    int arrived = 0;
    const auto call = [&] {
        CallHome(&asker, [&arrived] { ++arrived; }).send();
        QCoreApplication::processEvents();
    };
    call();
    const int before = QCoreApplication::instance()->children().size();
    for (int i = 0; i < 10; ++i) {
        call();
    }
    QCOMPARE(arrived, 11);
    QCOMPARE(QCoreApplication::instance()->children().size(), before);
}

void TestBackground::manyAtOnceAllArriveOnce()
{
    constexpr int count = 200;
    const Application application;
    QObject asker;
    QVector<int> arrivals(count);
    for (int i = 0; i < count; ++i) {
        inBackground(
            &asker, [i] { return i; }, [&arrivals](int brought) { ++arrivals[brought]; });
    }
    waitForBackgroundJobs();
    QCOMPARE(arrivals, QVector<int>(count, 1));
}

void TestBackground::aResultMayAskForTheNext()
{
    const Application application;
    QObject asker;
    int result = unset;
    inBackground(
        &asker, [] { return 20; },
        [&](int first) {
            inBackground(
                &asker, [first] { return first + 1; }, [&result](int second) { result = second; });
        });
    QTRY_COMPARE(result, 21);
}

void TestBackground::withoutAnApplicationNothingIsCalled()
{
    bool isCalled = false;
    QObject asker;
    CallHome(&asker, [&isCalled] { isCalled = true; }).send();
    const Application application;
    QCoreApplication::processEvents();
    QVERIFY(!isCalled);
}

void TestBackground::theEndOfTheApplicationWaitsForTheWork()
{
    std::atomic<bool> hasEnded{false};
    for (int round = 0; round < 2; ++round) { // also that of the next application
        hasEnded = false;
        QObject asker;
        {
            const Application application;
            std::promise<void> start;
            inBackground(
                &asker,
                [&hasEnded, begin = start.get_future().share()] {
                    begin.wait();
                    for (int turn = 0; turn < 1000; ++turn) {
                        std::this_thread::yield();
                    }
                    hasEnded = true;
                    return 0;
                },
                [](int) {});
            start.set_value();
        }
        QVERIFY(hasEnded);
    }
}

QTEST_APPLESS_MAIN(TestBackground)
#include "test_background.moc"
