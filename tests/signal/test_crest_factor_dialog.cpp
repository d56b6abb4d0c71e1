// The sweep dialog, operated by clicks: its form, its numbers, and every order in which it may be
// stopped, restarted, closed and destroyed.
#include "signal/crest_factor_dialog.h"

#include "setup/measurement_setup.h"
#include "signal/calculation.h"
#include "support/process_memory.h"
#include "support/window_driver.h"

#include <QProgressBar>
#include <QTableWidget>

#include <algorithm>
#include <cmath>
#include <ctime>

namespace {

// How long the window may be away, in ms, and the seeds of a long sweep; an instrumented program is
// several times slower.
#if defined(__SANITIZE_ADDRESS__) || defined(__SANITIZE_THREAD__)
constexpr bool isInstrumented = true;
constexpr qint64 answerTime = 1000;
constexpr int manySeeds = 200;
#else
constexpr bool isInstrumented = false;
constexpr qint64 answerTime = 100;
constexpr int manySeeds = 1000;
#endif

// What the calling thread has calculated so far, in ms.
qint64 ownTime()
{
    timespec time{};
    clock_gettime(CLOCK_THREAD_CPUTIME_ID, &time);
    return qint64{time.tv_sec} * 1000 + time.tv_nsec / 1000000;
}

// Beats every millisecond and keeps how long the event loop was away in between. Other programs
// may delay a beat, but only the window itself makes its own thread calculate for long.
class Heartbeat
{
public:
    Heartbeat()
    {
        QObject::connect(&timer, &QTimer::timeout, &timer, [this] { beat(); });
        sinceLast.start();
        timer.start(1);
    }

    int beats = 0;
    int lateBeats = 0;
    qint64 longestOwn = 0; // ms of calculation

private:
    void beat()
    {
        ++beats;
        lateBeats += sinceLast.restart() > answerTime ? 1 : 0;
        const qint64 now = ownTime();
        longestOwn = std::max(longestOwn, now - ownAtLast);
        ownAtLast = now;
    }

    QTimer timer;
    QElapsedTimer sinceLast;
    qint64 ownAtLast = ownTime();
};

} // namespace

class TestCrestFactorDialog : public QObject
{
    Q_OBJECT

private slots:
    void init();
    void cleanup();

    void windowIsFixedAndModal();
    void objectsStandAtTheirPlaces_data();
    void objectsStandAtTheirPlaces();
    void outputsAreDisabledAndTheCountIsBounded();
    void aNewDialogHasBothButtonsEnabled();

    void aSingleSeedIsMinimumAndMaximum();
    void statisticsAreThoseOfTheRows();
    void theSameSweepGivesTheSameTable();
    void theRecordStaysAsItWas();
    void settingsChangedDuringASweepDoNotCount();
    void constantPhasesAreSweptAtRandom();

    void aTieKeepsTheEarlierSeed();
    void lateResultsMayTakeTheCountBelowZero();

    void stopLeavesAtMostTheCalculatingSeeds();
    void stopWithoutASweepIsHarmless();
    void stopAndStartAtOnceEndsInOrder();
    void okEndsTheSweepAndLogs();
    void theFramesCloseButtonLeavesTheSweepRunning();
    void theDialogMayBeDestroyedAtAnyMoment_data();
    void theDialogMayBeDestroyedAtAnyMoment();
    void destroyingDoesNotWaitForAWorker();
    void aThousandSeedsKeepTheWindowAnswering();
    void aSweepHoldsTheDataOfThreeWorkersAtOnce();
    void aThousandSeedsTakeNoFiles();

private:
    void sweep(int seeds);
    bool isIdle() const { return operate->isEnabled("start_button"); }
    QTableWidget* table() const { return operate->find<QTableWidget>("tableWidget"); }
    QStringList rows() const;
    // A sweep's copy of the record shares the signal's vectors until the last worker is deleted.
    bool workersAreGone() const { return setup->signal.iSamples.isDetached(); }
    int filledRows() const { return rows().filter(QRegularExpression(".")).size(); }

    std::unique_ptr<MeasurementSetup> setup; // 1024 points
    std::unique_ptr<CrestFactorDialog> dialog;
    std::unique_ptr<WindowDriver> operate;
};

void TestCrestFactorDialog::init()
{
    setup = std::make_unique<MeasurementSetup>();
    setup->fftLengthIndex = 12;
    dialog = std::make_unique<CrestFactorDialog>();
    dialog->setSetup(setup.get());
    operate = std::make_unique<WindowDriver>(*dialog);
    dialog->show();
    QVERIFY(QTest::qWaitForWindowExposed(dialog.get()));
}

// The record goes first: a late worker must not need it.
void TestCrestFactorDialog::cleanup()
{
    setup.reset();
    operate.reset();
    dialog.reset();
    QTRY_VERIFY(qApp->findChildren<Calculation*>().isEmpty());
}

void TestCrestFactorDialog::sweep(int seeds)
{
    operate->type("seed_count_input", QString::number(seeds));
    operate->click("start_button");
    QVERIFY(!operate->isEnabled("start_button"));
    QVERIFY(operate->isEnabled("stop_button"));
    QTRY_VERIFY_WITH_TIMEOUT(isIdle(), 60000);
}

QStringList TestCrestFactorDialog::rows() const
{
    QStringList texts;
    for (int row = 0; row < table()->rowCount(); ++row) {
        const QTableWidgetItem* item = table()->item(row, 0);
        texts.append(item == nullptr ? QString() : item->text());
    }
    return texts;
}

void TestCrestFactorDialog::windowIsFixedAndModal()
{
    QCOMPARE(dialog->windowTitle(), QStringLiteral("Optimize Crest Factor"));
    QCOMPARE(dialog->minimumSize(), QSize(390, 250));
    QCOMPARE(dialog->maximumSize(), QSize(390, 250));
    QVERIFY(dialog->isModal());
    QVERIFY(dialog->windowFlags().testFlag(Qt::WindowTitleHint));
    QVERIFY(dialog->windowFlags().testFlag(Qt::WindowCloseButtonHint));
    QVERIFY(
        !(dialog->windowFlags() & (Qt::WindowMinMaxButtonsHint | Qt::WindowContextHelpButtonHint)));
    QCOMPARE(dialog->locale(), QLocale(QLocale::English, QLocale::UnitedStates));
}

void TestCrestFactorDialog::objectsStandAtTheirPlaces_data()
{
    QTest::addColumn<QRect>("place");
    QTest::addColumn<QString>("text");
    const auto row = [](const char* object, QRect place, const char* text = "") {
        QTest::newRow(object) << place << QString::fromLatin1(text);
    };
    row("tableWidget", {10, 10, 151, 171});
    row("progressBar", {10, 190, 151, 21});
    row("start_button", {10, 220, 71, 23}, "Start");
    row("stop_button", {90, 220, 71, 23}, "Stop");
    row("ok_button", {310, 220, 71, 23}, "OK");
    row("container", {170, 10, 211, 201});
    row("label_2", {10, 0, 91, 21}, "Seed Count");
    row("seed_count_input", {10, 20, 91, 22});
    row("label", {110, 0, 91, 21}, "Current Index");
    row("current_index_output", {110, 20, 91, 21});
    row("label_3", {10, 50, 91, 21}, "Seed Min CF");
    row("seed_min_cf_output", {10, 70, 91, 21});
    row("label_4", {110, 50, 91, 21}, "Min Crest Fact");
    row("min_cf_output", {110, 70, 91, 21});
    row("label_5", {10, 100, 91, 21}, "Seed Max CF");
    row("seed_max_cf_output", {10, 120, 91, 21});
    row("label_6", {110, 100, 91, 21}, "Max Crest Fact");
    row("max_cf_output", {110, 120, 91, 21});
    row("label_7", {10, 150, 91, 21}, "Mean");
    row("mean_output", {10, 170, 91, 21});
    row("label_8", {110, 150, 91, 21}, "StdDev");
    row("stddev_output", {110, 170, 91, 21});
}

void TestCrestFactorDialog::objectsStandAtTheirPlaces()
{
    QFETCH(QRect, place);
    QFETCH(QString, text);
    const auto* widget = operate->find<QWidget>(QTest::currentDataTag());
    QCOMPARE(widget->geometry(), place);
    const bool inContainer = place.y() <= 170 && widget->objectName() != "tableWidget" &&
                             widget->objectName() != "container";
    QCOMPARE(widget->parentWidget()->objectName(),
             inContainer ? QStringLiteral("container") : QStringLiteral("CrestFactorDialog"));
    if (!text.isEmpty()) {
        QCOMPARE(widget->property("text").toString(), text);
    }
}

void TestCrestFactorDialog::outputsAreDisabledAndTheCountIsBounded()
{
    const auto* count = operate->find<QSpinBox>("seed_count_input");
    QCOMPARE(count->minimum(), 1);
    QCOMPARE(count->maximum(), 1000);
    for (const auto* output : dialog->findChildren<QLineEdit*>()) {
        if (output->objectName().endsWith("_output")) {
            QVERIFY2(!output->isEnabled(), qPrintable(output->objectName()));
        }
    }
    QCOMPARE(table()->editTriggers(), QAbstractItemView::NoEditTriggers);
    QVERIFY(operate->find<QProgressBar>("progressBar")->isTextVisible());
    QCOMPARE(operate->find<QProgressBar>("progressBar")->value(), 0);
}

void TestCrestFactorDialog::aNewDialogHasBothButtonsEnabled()
{
    QVERIFY(operate->isEnabled("start_button"));
    QVERIFY(operate->isEnabled("stop_button"));
}

void TestCrestFactorDialog::aSingleSeedIsMinimumAndMaximum()
{
    sweep(1);
    QCOMPARE(table()->rowCount(), 1);
    QCOMPARE(table()->columnCount(), 1);
    QCOMPARE(table()->horizontalHeaderItem(0)->text(), QStringLiteral("Crest Factor"));
    const QString value = rows().first();
    QVERIFY(value.toDouble() > 5.0 && value.toDouble() < 15.0);
    QCOMPARE(operate->text("min_cf_output"), value);
    QCOMPARE(operate->text("max_cf_output"), value);
    QCOMPARE(operate->text("mean_output"), value);
    QCOMPARE(operate->text("stddev_output"), QStringLiteral("0"));
    QCOMPARE(operate->text("seed_min_cf_output"), QStringLiteral("1"));
    QCOMPARE(operate->text("seed_max_cf_output"), QStringLiteral("1"));
    QCOMPARE(operate->text("current_index_output"), QStringLiteral("1"));
    QCOMPARE(operate->find<QProgressBar>("progressBar")->value(), 1);
    QCOMPARE(operate->find<QProgressBar>("progressBar")->maximum(), 1);
    QVERIFY(!operate->isEnabled("stop_button"));
}

void TestCrestFactorDialog::statisticsAreThoseOfTheRows()
{
    sweep(20);
    double sum = 0.0;
    double squares = 0.0;
    int lowest = 0;
    int highest = 0;
    const QStringList texts = rows();
    QCOMPARE(texts.size(), 20);
    for (int row = 0; row < 20; ++row) {
        const double value = texts.at(row).toDouble();
        sum += value;
        squares += value * value;
        lowest = value < texts.at(lowest).toDouble() ? row : lowest;
        highest = value > texts.at(highest).toDouble() ? row : highest;
    }
    QCOMPARE(operate->text("seed_min_cf_output"), QString::number(lowest + 1));
    QCOMPARE(operate->text("seed_max_cf_output"), QString::number(highest + 1));
    QCOMPARE(operate->text("min_cf_output"), texts.at(lowest));
    QCOMPARE(operate->text("max_cf_output"), texts.at(highest));
    // The rows show six digits, so their statistics are good to five places.
    const double mean = sum / 20;
    QVERIFY(std::fabs(operate->text("mean_output").toDouble() - mean) < 1e-4);
    const double deviation = std::sqrt(squares / 20 - mean * mean);
    QVERIFY(std::fabs(operate->text("stddev_output").toDouble() - deviation) < 1e-3);
}

void TestCrestFactorDialog::theSameSweepGivesTheSameTable()
{
    sweep(40);
    const QStringList first = rows();
    sweep(40);
    QCOMPARE(rows(), first);
}

void TestCrestFactorDialog::theRecordStaysAsItWas()
{
    setup->seed = 17;
    sweep(3);
    QCOMPARE(setup->seed, 17U);
    QCOMPARE(setup->signal.length, 0);
    QCOMPARE(setup->crestFactor, 0.0);
}

void TestCrestFactorDialog::settingsChangedDuringASweepDoNotCount()
{
    sweep(10);
    const QStringList expected = rows();
    operate->click("start_button");
    setup->fftLengthIndex = 10;
    setup->notches->insert(1, Notch());
    QTRY_VERIFY(isIdle());
    QCOMPARE(rows(), expected);
}

void TestCrestFactorDialog::constantPhasesAreSweptAtRandom()
{
    sweep(5);
    const QStringList random = rows();
    setup->phaseMode = 3;
    sweep(5);
    QCOMPARE(rows(), random);
}

void TestCrestFactorDialog::aTieKeepsTheEarlierSeed()
{
    sweep(1);
    const double value = operate->text("max_cf_output").toDouble();
    dialog->calcFinished(5, value + 1.0);
    dialog->calcFinished(6, value + 1.0);
    QCOMPARE(operate->text("seed_max_cf_output"), QStringLiteral("5"));
    dialog->calcFinished(7, value - 1.0);
    dialog->calcFinished(8, value - 1.0);
    QCOMPARE(operate->text("seed_min_cf_output"), QStringLiteral("7"));
    QCOMPARE(operate->text("current_index_output"), QStringLiteral("8"));
}

void TestCrestFactorDialog::lateResultsMayTakeTheCountBelowZero()
{
    // Deliberate: results of a stopped sweep count in the next one. Seed 900 has no row there.
    sweep(2);
    dialog->calcFinished(900, 30.0);
    dialog->calcFinished(2, 29.0);
    QCOMPARE(table()->rowCount(), 2);
    QCOMPARE(rows().at(1), QStringLiteral("29"));
    QCOMPARE(operate->text("seed_max_cf_output"), QStringLiteral("900"));
    QVERIFY(isIdle());
    sweep(2); // and the next sweep counts from the start
    QCOMPARE(operate->find<QProgressBar>("progressBar")->value(), 2);
    QVERIFY(operate->text("max_cf_output").toDouble() < 29.0);
}

void TestCrestFactorDialog::stopLeavesAtMostTheCalculatingSeeds()
{
    // One calculation takes hundreds of milliseconds, so none ends between the two clicks: a result
    // that came before "Stop" would count on top of the three.
    setup->fftLengthIndex = 1; // 2097152
    setup->signal.reset(1);
    operate->type("seed_count_input", "1000");
    operate->click("start_button");
    QVERIFY(!workersAreGone());
    operate->click("stop_button");
    QVERIFY(operate->isEnabled("start_button"));
    QVERIFY(!operate->isEnabled("stop_button"));
    QTRY_VERIFY_WITH_TIMEOUT(workersAreGone(), 60000);
    QVERIFY2(filledRows() <= 3, qPrintable(QString::number(filledRows())));
    QCOMPARE(operate->find<QProgressBar>("progressBar")->value(), filledRows());
    QCOMPARE(operate->find<QProgressBar>("progressBar")->maximum(), 1000);
}

void TestCrestFactorDialog::stopWithoutASweepIsHarmless()
{
    operate->click("stop_button");
    QVERIFY(operate->isEnabled("start_button"));
    sweep(2);
}

void TestCrestFactorDialog::stopAndStartAtOnceEndsInOrder()
{
    operate->type("seed_count_input", "300");
    for (int round = 0; round < 5; ++round) {
        operate->click("start_button");
        operate->click("stop_button");
    }
    sweep(300);
    // Late results may bring "Start" back early; the sweep itself still fills its rows.
    QTRY_COMPARE(filledRows(), 300);
    const QStringList restarted = rows();
    sweep(300);
    QTRY_COMPARE(rows(), restarted);
}

void TestCrestFactorDialog::okEndsTheSweepAndLogs()
{
    setup->fftLengthIndex = 5;
    operate->type("seed_count_input", "1000");
    operate->click("start_button");
    QTest::ignoreMessage(QtDebugMsg, "close CrestFactorDialog");
    operate->click("ok_button");
    QVERIFY(!dialog->isVisible());
    // Deliberate: after a sweep that OK has ended it takes "Stop" to come back to "Start".
    dialog->show();
    QVERIFY(!operate->isEnabled("start_button"));
    operate->click("stop_button");
    QVERIFY(operate->isEnabled("start_button"));
}

void TestCrestFactorDialog::theFramesCloseButtonLeavesTheSweepRunning()
{
    operate->type("seed_count_input", "50");
    operate->click("start_button");
    dialog->close();
    QTRY_VERIFY(isIdle());
    QCOMPARE(filledRows(), 50);
    dialog->show(); // the numbers stay on display
    QCOMPARE(operate->find<QProgressBar>("progressBar")->value(), 50);
}

void TestCrestFactorDialog::theDialogMayBeDestroyedAtAnyMoment_data()
{
    QTest::addColumn<int>("resultsBefore");
    QTest::newRow("at once") << 0;
    QTest::newRow("with the first result") << 1;
    QTest::newRow("in the middle") << 40;
}

void TestCrestFactorDialog::theDialogMayBeDestroyedAtAnyMoment()
{
    QFETCH(int, resultsBefore);
    setup->fftLengthIndex = 8; // 16384
    operate->type("seed_count_input", "300");
    operate->click("start_button");
    QTRY_VERIFY(filledRows() >= resultsBefore);
    setup.reset();
    operate.reset();
    dialog.reset(); // cleanup waits until the application has got rid of all workers
}

void TestCrestFactorDialog::destroyingDoesNotWaitForAWorker()
{
    setup->fftLengthIndex = 0; // a calculation takes seconds
    operate->type("seed_count_input", "3");
    operate->click("start_button");
    QElapsedTimer timer;
    timer.start();
    operate.reset();
    dialog.reset();
    QVERIFY2(timer.elapsed() < 200, qPrintable(QString::number(timer.elapsed())));
    QTRY_VERIFY_WITH_TIMEOUT(qApp->findChildren<Calculation*>().isEmpty(), 60000);
}

void TestCrestFactorDialog::aThousandSeedsKeepTheWindowAnswering()
{
    setup->fftLengthIndex = 5; // 131072
    setup->signal.reset(1);
    operate->type("seed_count_input", QString::number(manySeeds));
    Heartbeat heartbeat;
    QCoreApplication::processEvents();
    operate->click("start_button");
    QTRY_VERIFY_WITH_TIMEOUT(isIdle(), 240000);
    QCOMPARE(filledRows(), manySeeds);
    QTRY_VERIFY(workersAreGone());
    QVERIFY2(heartbeat.longestOwn < answerTime, qPrintable(QString::number(heartbeat.longestOwn)));
    QVERIFY2(heartbeat.lateBeats <= heartbeat.beats / 100,
             qPrintable(QString::number(heartbeat.lateBeats)));
}

void TestCrestFactorDialog::aSweepHoldsTheDataOfThreeWorkersAtOnce()
{
    if (isInstrumented) {
        QSKIP("an instrumented program takes more memory");
    }
    if (!forgetMostMemory()) {
        QSKIP("the system doesn't tell the memory of a process");
    }
    constexpr qint64 dataOfOne = 200 * 1000; // kilobytes, at 4194304 points
    const qint64 before = mostMemory();
    setup->fftLengthIndex = 0;
    setup->signal.reset(1);
    sweep(6);
    QTRY_VERIFY(workersAreGone());
    const qint64 growth = mostMemory() - before;
    QVERIFY2(growth > dataOfOne / 2, qPrintable(QString::number(growth)));
    QVERIFY2(growth < dataOfOne * 7 / 2, qPrintable(QString::number(growth)));
}

void TestCrestFactorDialog::aThousandSeedsTakeNoFiles()
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

QTEST_MAIN(TestCrestFactorDialog)
#include "test_crest_factor_dialog.moc"
