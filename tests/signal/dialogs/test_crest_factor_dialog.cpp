// The sweep dialog, operated by clicks: its form, its numbers, and every order in which it may be
// stopped, restarted, closed and destroyed.
#include "kit/sweep_test.h"

#include <QProgressBar>

#include <cmath>

class TestCrestFactorDialog : public SweepTest
{
    Q_OBJECT

private slots:
    void init() { openDialog(); }
    void cleanup() { closeDialog(); }

    void windowIsFixedAndModal();
    void objectsStandAtTheirPlaces_data();
    void objectsStandAtTheirPlaces();
    void outputsAreDisabledAndTheCountIsBounded();
    void aNewDialogHasBothButtonsEnabled();

    void aSingleSeedIsMinimumAndMaximum();
    void statisticsAreThoseOfTheRows();
    void theSameSweepGivesTheSameTable();
    void theSecondSweepCountsFromZero();
    void theRecordStaysAsItWas();
    void settingsChangedDuringASweepDoNotCount();
    void constantPhasesAreSweptAtRandom();

    void aTieKeepsTheEarlierSeed();
    void lateResultsMayTakeTheCountBelowZero();

    void stopWithoutASweepIsHarmless();
    void stopAndStartAtOnceEndsInOrder();
    void okEndsTheSweepAndLogs();
    void theFramesCloseButtonLeavesTheSweepRunning();
    void theDialogMayBeDestroyedAtAnyMoment_data();
    void theDialogMayBeDestroyedAtAnyMoment();
};

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
    const auto output = [&row](const char* label, const char* text, const char* object, QPoint at) {
        row(label, {at, QSize(91, 21)}, text);
        row(object, {at + QPoint(0, 20), QSize(91, 21)});
    };
    output("label", "Current Index", "current_index_output", {110, 0});
    output("label_3", "Seed Min CF", "seed_min_cf_output", {10, 50});
    output("label_4", "Min Crest Fact", "min_cf_output", {110, 50});
    output("label_5", "Seed Max CF", "seed_max_cf_output", {10, 100});
    output("label_6", "Max Crest Fact", "max_cf_output", {110, 100});
    output("label_7", "Mean", "mean_output", {10, 150});
    output("label_8", "StdDev", "stddev_output", {110, 150});
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
    int outputs = 0;
    for (const auto* output : dialog->findChildren<QLineEdit*>()) {
        if (output->objectName().endsWith("_output")) {
            QVERIFY2(!output->isEnabled(), qPrintable(output->objectName()));
            ++outputs;
        }
    }
    QCOMPARE(outputs, 7);
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
    for (const char* output : {"min_cf_output", "max_cf_output", "mean_output"}) {
        QCOMPARE(operate->text(output), value);
    }
    for (const char* output :
         {"seed_min_cf_output", "seed_max_cf_output", "current_index_output"}) {
        QCOMPARE(operate->text(output), QStringLiteral("1"));
    }
    QCOMPARE(operate->text("stddev_output"), QStringLiteral("0"));
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

void TestCrestFactorDialog::theSecondSweepCountsFromZero()
{
    sweep(5);
    const auto* bar = operate->find<QProgressBar>("progressBar");
    QCOMPARE(bar->value(), 5);
    operate->type("seed_count_input", "7");
    operate->click("start_button"); // results wait for a turn of the event loop
    QCOMPARE(bar->value(), 0);
    QCOMPARE(bar->maximum(), 7);
    QTRY_VERIFY(isIdle());
    QCOMPARE(bar->value(), 7);
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
    setup->phaseMode = PhaseLaw::Constant;
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

QTEST_MAIN(TestCrestFactorDialog)
#include "test_crest_factor_dialog.moc"
