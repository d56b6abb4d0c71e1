// The time of day jumps an hour back: nothing waits for an hour. CTest loads a library with such a
// clock before the system's own.
#include "campaign/campaign.h"
#include "kit/main_window_test.h"
#include "kit/sweep_test.h"
#include "kit/thread_state.h"

#include <atomic>
#include <ctime>
#include <dlfcn.h>
#include <future>
#include <pthread.h>
#include <thread>

namespace {

constexpr long hour = 3600; // seconds

using MoveTimeOfDay = void(long seconds);

MoveTimeOfDay* moveTimeOfDay()
{
    return reinterpret_cast<MoveTimeOfDay*>(dlsym(RTLD_DEFAULT, "moveTimeOfDay"));
}

// Waits for a moment of the time of day, as nothing in the program should.
void waitUntil(const timespec& moment)
{
    pthread_mutex_t mutex = PTHREAD_MUTEX_INITIALIZER;
    pthread_cond_t never = PTHREAD_COND_INITIALIZER;
    pthread_mutex_lock(&mutex);
    while (pthread_cond_timedwait(&never, &mutex, &moment) == 0) {
    }
    pthread_mutex_unlock(&mutex);
}

} // namespace

class CalculationDuringAJump : public MainWindowTest
{
public:
    void run()
    {
        openWindow();
        operate->pick("fft_length_input", 2); // 1048576
        operate->click("calc_fft_button");
        moveTimeOfDay()(-hour);
        QCOMPARE(operate->text("fft_status_label"), QStringLiteral("Calculating ..."));
        QTRY_COMPARE_WITH_TIMEOUT(operate->text("fft_status_label"), QStringLiteral("Data valid"),
                                  60000);
        closeWindow();
    }
};

class TestJumpingClock : public SweepTest
{
    Q_OBJECT

private slots:
    void initTestCase();
    void whoWaitsForATimeOfDayWaitsLonger();
    void calculationEnds();
    void sweepEnds();
    void settleTimeEnds();
    void timersOfTheWindowGoOn();
};

void TestJumpingClock::initTestCase()
{
    if (moveTimeOfDay() == nullptr) {
        QSKIP("the clock isn't loaded; CTest does it");
    }
}

// Or the other tests would find nothing.
void TestJumpingClock::whoWaitsForATimeOfDayWaitsLonger()
{
    timespec soon = {};
    clock_gettime(CLOCK_REALTIME, &soon);
    soon.tv_sec += 1;
    std::atomic<bool> waits = true;
    std::thread waiting([&] {
        waitUntil(soon);
        waits = false;
    });
    moveTimeOfDay()(-hour);
    QVERIFY(std::time(nullptr) < soon.tv_sec - hour + 1);
    const bool ended = QTest::qWaitFor([&] { return !waits; }, 3000);
    moveTimeOfDay()(hour);
    waiting.join();
    QVERIFY(!ended);
}

void TestJumpingClock::calculationEnds()
{
    CalculationDuringAJump().run();
}

void TestJumpingClock::sweepEnds()
{
    openDialog();
    operate->type("seed_count_input", QStringLiteral("200"));
    operate->click("start_button");
    moveTimeOfDay()(-hour);
    QVERIFY(!isIdle());
    QTRY_VERIFY_WITH_TIMEOUT(isIdle(), 60000);
    QCOMPARE(filledRows(), 200);
    closeDialog();
}

void TestJumpingClock::settleTimeEnds()
{
    QElapsedTimer timer;
    timer.start();
    std::atomic<long> settling{0};
    const std::future<void> end = std::async(std::launch::async, [&settling] {
        settling = ownThreadId();
        Interruption().waitFor(1.0);
    });
    QTRY_VERIFY(settling != 0);
    QTRY_COMPARE(stateOfThread(settling), 'S');
    moveTimeOfDay()(-hour);
    end.wait();
    const qint64 waited = timer.elapsed();
    QVERIFY2(waited >= 1000, QByteArray::number(waited).constData());
    QVERIFY2(waited < 30000, QByteArray::number(waited).constData());
}

void TestJumpingClock::timersOfTheWindowGoOn()
{
    bool rang = false;
    QTimer::singleShot(500, this, [&rang] { rang = true; });
    moveTimeOfDay()(-hour);
    QTRY_VERIFY_WITH_TIMEOUT(rang, 30000);
}

QTEST_MAIN(TestJumpingClock)
#include "test_jumping_clock.moc"
