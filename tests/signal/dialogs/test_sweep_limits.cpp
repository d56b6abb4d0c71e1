// The sweep dialog at its limits: a thousand seeds, the longest signal, and what it then takes of
// time, memory and files.
#include "kit/heartbeat.h"
#include "kit/instrumented.h"
#include "kit/process_memory.h"
#include "kit/sweep_test.h"

#include <QDir>
#include <QProgressBar>

#include <algorithm>

namespace {

// How long the window may be away, in ms, and the seeds of a long sweep; an instrumented program is
// several times slower.
constexpr qint64 answerTime = isInstrumented ? 1000 : 100;
constexpr int manySeeds = isInstrumented ? 200 : 1000;

} // namespace

class TestSweepLimits : public SweepTest
{
    Q_OBJECT

private slots:
    void init() { openDialog(); }
    void cleanup() { closeDialog(); }
    void stopLeavesAtMostTheCalculatingSeeds();
    void destroyingDoesNotWaitForAWorker();
    void aThousandSeedsKeepTheWindowAnswering();
    void aSweepHoldsTheDataOfThreeWorkersAtOnce();
    void aThousandSeedsTakeNoFiles();
};

void TestSweepLimits::stopLeavesAtMostTheCalculatingSeeds()
{
    // One calculation takes seconds, so none ends between the two clicks: a result that came before
    // "Stop" would count on top of the three.
    setup->fftLengthIndex = 0;
    setup->signal.reset(1);
    operate->type("seed_count_input", "20");
    operate->click("start_button");
    QVERIFY(!workersAreGone());
    operate->click("stop_button");
    QVERIFY(operate->isEnabled("start_button"));
    QVERIFY(!operate->isEnabled("stop_button"));
    QTRY_VERIFY_WITH_TIMEOUT(workersAreGone(), 60000);
    QVERIFY2(filledRows() <= 3, qPrintable(QString::number(filledRows())));
    QCOMPARE(operate->find<QProgressBar>("progressBar")->value(), filledRows());
    QCOMPARE(operate->find<QProgressBar>("progressBar")->maximum(), 20);
}

void TestSweepLimits::destroyingDoesNotWaitForAWorker()
{
    setup->fftLengthIndex = 0; // a calculation takes seconds
    operate->type("seed_count_input", "3");
    operate->click("start_button");
    operate.reset();
    dialog.reset();
    const QList<Calculation*> left = qApp->findChildren<Calculation*>();
    QVERIFY(std::any_of(left.begin(), left.end(), [](auto* each) { return each->isRunning(); }));
    QTRY_VERIFY_WITH_TIMEOUT(qApp->findChildren<Calculation*>().isEmpty(), 60000);
}

void TestSweepLimits::aThousandSeedsKeepTheWindowAnswering()
{
    setup->fftLengthIndex = 5; // 131072
    setup->signal.reset(1);
    operate->type("seed_count_input", QString::number(manySeeds));
    Heartbeat heartbeat(answerTime);
    QCoreApplication::processEvents();
    operate->click("start_button");
    QTRY_VERIFY_WITH_TIMEOUT(isIdle(), 240000);
    QCOMPARE(filledRows(), manySeeds);
    QTRY_VERIFY(workersAreGone());
    QVERIFY2(heartbeat.longestOwn < answerTime, qPrintable(QString::number(heartbeat.longestOwn)));
    QVERIFY2(heartbeat.lateBeats <= heartbeat.beats / 100,
             qPrintable(QString::number(heartbeat.lateBeats)));
}

void TestSweepLimits::aSweepHoldsTheDataOfThreeWorkersAtOnce()
{
    if (isInstrumented) {
        QSKIP("an instrumented program takes more memory");
    }
    if (!forgetMostMemory()) {
        QSKIP("the system doesn't tell the memory of a process");
    }
    constexpr qint64 dataOfOne = 200000; // kilobytes, at 4194304 points
    const qint64 before = mostMemory();
    setup->fftLengthIndex = 0;
    setup->signal.reset(1);
    sweep(6);
    QTRY_VERIFY(workersAreGone());
    const qint64 growth = mostMemory() - before;
    QVERIFY2(growth > dataOfOne / 2, qPrintable(QString::number(growth)));
    QVERIFY2(growth < dataOfOne * 7 / 2, qPrintable(QString::number(growth)));
}

void TestSweepLimits::aThousandSeedsTakeNoFiles()
{
    const QDir openFiles(QStringLiteral("/proc/self/fd"));
    if (!openFiles.exists()) {
        QSKIP("the system doesn't list open files");
    }
    setup->fftLengthIndex = 3;
    const uint before = openFiles.count();
    operate->type("seed_count_input", "1000");
    operate->click("start_button");
    QTRY_VERIFY(filledRows() >= 1); // the threads have begun
    QVERIFY(QDir("/proc/self/fd").count() < before + 20);
}

QTEST_MAIN(TestSweepLimits)
#include "test_sweep_limits.moc"
