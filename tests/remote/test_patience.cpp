// Waiting in slices that together last as long as the limit says.
#include "remote/patience.h"

#include <QElapsedTimer>
#include <QThread>
#include <QtTest>

#include <numeric>
#include <thread>
#include <vector>

class TestPatience : public QObject
{
    Q_OBJECT

private slots:
    void theSlicesSumToTheLimit_data();
    void theSlicesSumToTheLimit();
    void aWaitThatSucceedsEndsIt();
    void aDeviceThatHasGoneIsNotWaitedFor();
    void aDeviceThatGoesMeanwhileIsWaitedForNoLonger();
    void endingItEndsAWaitSoon();
    void onceEndedItNeverWaits();
};

namespace {

bool always()
{
    return true;
}

// A wait that lasts as long as it is told, as poll() does, and keeps how long that was.
class SlowWait
{
public:
    explicit SlowWait(std::vector<int>& noted) : slices(noted) {}
    bool operator()(int ms) const
    {
        slices.push_back(ms);
        QThread::msleep(static_cast<unsigned long>(ms));
        return false;
    }

private:
    std::vector<int>& slices;
};

} // namespace

void TestPatience::theSlicesSumToTheLimit_data()
{
    QTest::addColumn<int>("limitMs");
    QTest::newRow("none") << 0;
    QTest::newRow("less than a slice") << 60;
    QTest::newRow("several slices") << 430;
}

void TestPatience::theSlicesSumToTheLimit()
{
    QFETCH(int, limitMs);
    const Patience patience;
    std::vector<int> slices;
    QElapsedTimer timer;
    timer.start();
    QVERIFY(!patience.await(limitMs, SlowWait(slices), always));
    QVERIFY2(timer.elapsed() >= limitMs, QByteArray::number(timer.elapsed()));
    QVERIFY(std::accumulate(slices.begin(), slices.end(), 0) <= limitMs);
    for (const int slice : slices) {
        QVERIFY2(slice >= 0 && slice <= 100, QByteArray::number(slice));
    }
    QVERIFY(slices.size() >= static_cast<size_t>(limitMs / 100)); // at least one is tried
    QVERIFY(!slices.empty());
}

void TestPatience::aWaitThatSucceedsEndsIt()
{
    const Patience patience;
    int waits = 0;
    QVERIFY(patience.await(
        10000, [&waits](int) { return ++waits == 3; }, always));
    QCOMPARE(waits, 3);
}

void TestPatience::aDeviceThatHasGoneIsNotWaitedFor()
{
    const Patience patience;
    int waits = 0;
    QVERIFY(!patience.await(
        10000, [&waits](int) { return ++waits > 0; }, [] { return false; }));
    QCOMPARE(waits, 0);
}

void TestPatience::aDeviceThatGoesMeanwhileIsWaitedForNoLonger()
{
    const Patience patience;
    int waits = 0;
    // A dead line lets every wait return at once, without success.
    QVERIFY(!patience.await(
        10000,
        [&waits](int) {
            ++waits;
            return false;
        },
        [&waits] { return waits < 5; }));
    QCOMPARE(waits, 5);
}

void TestPatience::endingItEndsAWaitSoon()
{
    Patience patience;
    std::vector<int> slices;
    QElapsedTimer timer;
    timer.start();
    std::thread waiting([&] { patience.await(30000, SlowWait(slices), always); });
    patience.end();
    waiting.join();
    QVERIFY2(timer.elapsed() < 10000, QByteArray::number(timer.elapsed()));
    QVERIFY(patience.hasEnded());
}

void TestPatience::onceEndedItNeverWaits()
{
    Patience patience;
    QVERIFY(!patience.hasEnded());
    patience.end();
    int waits = 0;
    QVERIFY(!patience.await(
        10000, [&waits](int) { return ++waits > 0; }, always));
    QCOMPARE(waits, 0);
}

QTEST_GUILESS_MAIN(TestPatience)
#include "test_patience.moc"
