// The worker of a seed sweep: what it computes, when it stays silent, and what it keeps alive.
#include "signal/calculation.h"

#include "kit/thread_state.h"

#include <QAbstractEventDispatcher>
#include <QPointer>
#include <QtTest>

#include <cmath>

namespace {

std::shared_ptr<MeasurementSetup> shortSetup()
{
    auto setup = std::make_shared<MeasurementSetup>();
    setup->fftLengthIndex = 12; // 1024
    return setup;
}

// The result of one worker that has its turn at once; not-a-number when none came.
double resultOf(const std::shared_ptr<const MeasurementSetup>& setup, quint32 seed)
{
    double result = std::nan("");
    Calculation worker(seed, setup, std::make_shared<QSemaphore>(1));
    QObject::connect(&worker, &Calculation::calculated,
                     [&result](uint, double crestFactor) { result = crestFactor; });
    worker.start();
    worker.wait();
    return result;
}

} // namespace

class TestCalculation : public QObject
{
    Q_OBJECT

private slots:
    void resultIsThatOfTheMainWindowsCalculation();
    void resultTakesTheShapingOfTheSettings();
    void phasesAreRandomWhateverIsSet();
    void reportsOnceWithItsSeed();
    void waitsForItsTurnAndGivesItBack();
    void cancelledBeforeItsTurnStaysSilent();
    void aWorkerThatNeverBeganHasFailedAndACancelledOneHasNot();
    void keepsTheSettingsAliveUntilItEnds();
    void aWorkerThatWasNeverStartedIsDeletedInSilence();
    void anImpossibleLengthGivesNoNumber_data();
    void anImpossibleLengthGivesNoNumber();
};

void TestCalculation::resultIsThatOfTheMainWindowsCalculation()
{
    const auto setup = shortSetup();
    MeasurementSetup whole = setup->forOtherThread();
    for (const quint32 seed : {1U, 2U, 1000U}) {
        whole.seed = seed;
        whole.calculateSignal();
        QCOMPARE(std::isfinite(whole.crestFactor), true);
        const double result = resultOf(setup, seed);
        QVERIFY(result == whole.crestFactor); // to the bit
    }
}

void TestCalculation::resultTakesTheShapingOfTheSettings()
{
    const auto setup = shortSetup();
    const double flat = resultOf(setup, 1);
    setup->nbwSrate = 0.5;
    QVERIFY(resultOf(setup, 1) != flat);
    setup->nbwSrate = 1.0;
    setup->compensationTrace.fill(3.0, 1024);
    setup->compensationTrace[100] = 20.0;
    QVERIFY(resultOf(setup, 1) == flat);
    setup->compensate = true;
    QVERIFY(resultOf(setup, 1) != flat);
}

void TestCalculation::phasesAreRandomWhateverIsSet()
{
    // Deliberate, see the worker.
    const auto setup = shortSetup();
    const double random = resultOf(setup, 7);
    setup->phaseMode = PhaseLaw::Constant;
    setup->customSource = SignalSource::MagnitudePhaseFile;
    setup->seed = 99;
    QVERIFY(resultOf(setup, 7) == random);
    QVERIFY(random < 15.0); // constant phases would give 10 log10(1024) = 30.1 dB
}

void TestCalculation::reportsOnceWithItsSeed()
{
    Calculation worker(42, shortSetup(), std::make_shared<QSemaphore>(1));
    const QSignalSpy spy(&worker, &Calculation::calculated);
    worker.start();
    worker.wait();
    QCOMPARE(spy.count(), 1);
    QCOMPARE(spy.first().at(0).toUInt(), 42U);
}

void TestCalculation::waitsForItsTurnAndGivesItBack()
{
    const auto semaphore = std::make_shared<QSemaphore>(0);
    Calculation worker(1, shortSetup(), semaphore);
    const NewThreads begun;
    worker.start();
    QTRY_VERIFY(begun.areAsleep());
    QVERIFY(worker.isRunning());
    semaphore->release();
    QVERIFY(worker.wait(10000));
    QCOMPARE(semaphore->available(), 1);
}

void TestCalculation::cancelledBeforeItsTurnStaysSilent()
{
    const auto semaphore = std::make_shared<QSemaphore>(0);
    Calculation worker(1, shortSetup(), semaphore);
    const QSignalSpy spy(&worker, &Calculation::calculated);
    worker.start();
    worker.cancel();
    semaphore->release();
    QVERIFY(worker.wait(10000));
    QCOMPARE(spy.count(), 0);
    QCOMPARE(semaphore->available(), 1); // the next one is not held up
}

void TestCalculation::aWorkerThatNeverBeganHasFailedAndACancelledOneHasNot()
{
    const auto semaphore = std::make_shared<QSemaphore>(1);
    Calculation refused(1, shortSetup(), semaphore);
    QVERIFY(refused.hasFailed());
    refused.cancel();
    QVERIFY(!refused.hasFailed());

    Calculation whole(1, shortSetup(), semaphore);
    QVERIFY(whole.begin());
    QVERIFY(whole.wait(10000));
    QVERIFY(!whole.hasFailed());
    whole.cancel();
    QVERIFY(!whole.hasFailed());
}

void TestCalculation::keepsTheSettingsAliveUntilItEnds()
{
    auto setup = shortSetup();
    const std::weak_ptr<MeasurementSetup> watched = setup;
    {
        const auto semaphore = std::make_shared<QSemaphore>(0);
        Calculation worker(1, std::move(setup), semaphore);
        worker.start();
        QVERIFY(!watched.expired());
        semaphore->release(); // the destructor waits
    }
    QVERIFY(watched.expired());
}

void TestCalculation::aWorkerThatWasNeverStartedIsDeletedInSilence()
{
    auto setup = shortSetup();
    const std::weak_ptr<MeasurementSetup> watched = setup;
    auto worker =
        std::make_unique<Calculation>(1, std::move(setup), std::make_shared<QSemaphore>(1));
    const QSignalSpy spy(worker.get(), &Calculation::calculated);
    const QPointer<QObject> dispatcher = worker->eventDispatcher();
    QVERIFY(dispatcher);
    worker.reset();
    QCOMPARE(spy.count(), 0);
    QVERIFY(!dispatcher);
    QVERIFY(watched.expired());
}

void TestCalculation::anImpossibleLengthGivesNoNumber_data()
{
    QTest::addColumn<int>("fftLengthIndex");
    QTest::newRow("longer than any signal") << -5;
    QTest::newRow("longer than a number") << -1000;
    QTest::newRow("no bin") << 23;
}

void TestCalculation::anImpossibleLengthGivesNoNumber()
{
    QFETCH(int, fftLengthIndex);
    const auto setup = shortSetup();
    setup->fftLengthIndex = fftLengthIndex;
    QVERIFY(std::isnan(resultOf(setup, 1)));
}

QTEST_GUILESS_MAIN(TestCalculation)
#include "test_calculation.moc"
