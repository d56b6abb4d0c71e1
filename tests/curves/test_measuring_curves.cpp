// Curves measured from the window: simulated in the process, and with instruments that are lost.
#include "curves/curves_window_test.h"
#include "curves/measure_dialog.h"
#include "curves/measure_order.h"
#include "kit/background_jobs.h"
#include "kit/instrumented.h"
#include "kit/simulator_process.h"

#include <QClipboard>
#include <QPlainTextEdit>
#include <QTextBlock>

namespace {

const QStringList quick = {"curve",     "default",      "--set",      "NPR/FFT Len=4096",
                           "--notches", "2,1e6,-100,0", "--simulate", "rapp,saturation=0",
                           "--levels",  "-30:-10:5"};

QStringList endless()
{
    QStringList words = quick;
    words.last() = "-30:-10:0.01";
    return words << "--average"
                 << "1000";
}

// Theory of as many levels as there may be takes most of a minute, several under a sanitizer.
constexpr int farShorter = isInstrumented ? 30000 : 10000; // ms

QStringList withLongTheory()
{
    QStringList words = quick;
    words.last() = "-60:-10:0.0051";
    return words << "--theory"
                 << "same";
}

// With the instruments of the defaults, which are those of the simulated bench.
QStringList withInstruments()
{
    QStringList words = quick;
    const int simulate = words.indexOf("--simulate");
    words.removeAt(simulate);
    words.removeAt(simulate);
    return words;
}

// In one line.
QString commandIn(const MeasureDialog& dialog)
{
    const auto* text = dialog.findChild<QPlainTextEdit*>("command_text");
    return text->toPlainText().replace(" \\\n    ", " ");
}

} // namespace

class TestMeasuringCurves : public CurvesWindowTest
{
    Q_OBJECT

private slots:
    void init() { openWindow(); }
    void cleanup() { closeWindow(); }

    void theDialogChecksWhatIsTyped();
    void theDialogShowsTheDevicesOwnNumbers();
    void allFieldsOfTheDialogAreInTheCommand();
    void theShownCommandKeepsOptionsWhole();
    void theoriesToChooseHaveTheTypedNumbers();
    void aLongNoticeMakesTheDialogTaller();
    void anAcceptedDialogMeasures();
    void aMeasuredCurveIsNotSaved();
    void stopKeepsWhatWasMeasured();
    void stopEndsTheTheoryThatIsMadeBefore();
    void theEndWaitsForNoTheory();
    void aMissingInstrumentIsAMessage();
    void aLostInstrumentIsAMessageAndThePointsStay();
    void anInstrumentThatAnotherProgramHoldsIsTold();

private:
    ShownResult only() const { return window->results().results().value(0); }
};

void TestMeasuringCurves::theDialogChecksWhatIsTyped()
{
    MeasureDialog dialog(window.get());
    dialog.show();
    const WindowDriver hand(dialog);
    auto* measure = hand.find<QDialogButtonBox>("buttons")->button(QDialogButtonBox::Ok);
    QTRY_VERIFY(measure->isEnabled());
    QVERIFY(hand.text("check_text").startsWith("63 readings, about "));
    auto* from = hand.find<QLineEdit>("from_input");
    from->selectAll();
    QTest::keyClicks(from, "-4x");
    QVERIFY(!measure->isEnabled()); // at once, before it is checked
    QTRY_VERIFY(hand.text("check_text").contains("--levels FROM"));
    QVERIFY(!measure->isEnabled());
    QVERIFY(commandIn(dialog).contains("--levels -4x:0:2"));
    QTest::keyClick(from, Qt::Key_Backspace);
    QTRY_VERIFY(measure->isEnabled());
    hand.click("copy_button");
    QCOMPARE(QApplication::clipboard()->text(), commandIn(dialog));
}

void TestMeasuringCurves::theDialogShowsTheDevicesOwnNumbers()
{
    MeasureDialog dialog(window.get());
    dialog.show();
    const WindowDriver hand(dialog);
    auto* device = hand.find<QComboBox>("device_input");
    QVERIFY(!hand.find<QWidget>("figure_bits")->isHidden());
    device->setCurrentText("rapp");
    QVERIFY(!hand.find<QWidget>("figure_bits")->isVisible());
    QVERIFY(hand.find<QWidget>("figure_smoothness")->isVisible());
    device->setCurrentText("adc");
    QVERIFY(hand.find<QWidget>("figure_bits")->isVisible());
    QVERIFY(!hand.find<QWidget>("figure_saturation")->isVisible());
    QVERIFY(commandIn(dialog).contains("--simulate adc,bits=12,full-scale=0 "));
    hand.click("instruments_button");
    QVERIFY(!hand.isEnabled("device_box"));
    QVERIFY(!commandIn(dialog).contains("--simulate"));
}

void TestMeasuringCurves::allFieldsOfTheDialogAreInTheCommand()
{
    MeasureDialog dialog(window.get());
    dialog.show();
    const WindowDriver hand(dialog);
    const QVector<QPair<const char*, const char*>> typed = {{"others_input", "noise-floor=-150"},
                                                            {"notch_input", "1,3"},
                                                            {"average_input", "2"},
                                                            {"settle_input", "0.25"},
                                                            {"limit_input", "30"},
                                                            {"threshold_input", "41 50"},
                                                            {"subtract_input", "cable.json"},
                                                            {"notches_input", "5,2e6,-90"}};
    for (const auto& field : typed) {
        auto* edit = hand.find<QLineEdit>(field.first);
        edit->selectAll();
        QTest::keyClicks(edit, field.second);
    }
    QTest::keyClicks(hand.find<QComboBox>("theory_input"), "saleh,saturation=1");
    QCOMPARE(commandIn(dialog),
             QString("notchbench-cli curve default --notches 5,2e6,-90 --simulate "
                     "adc,bits=12,full-scale=0,noise-floor=-150 --levels -40:0:2 --notch 1,3 "
                     "--average 2 --settle 0.25 --limit 30 --threshold 41 --threshold 50 --theory "
                     "saleh,saturation=1 --subtract cable.json"));
    QCOMPARE(commandLineOf(dialog.words()), commandIn(dialog));
}

void TestMeasuringCurves::theShownCommandKeepsOptionsWhole()
{
    MeasureDialog dialog(window.get());
    dialog.show();
    QVERIFY(QTest::qWaitForWindowExposed(&dialog));
    const auto* text = dialog.findChild<QPlainTextEdit*>("command_text");
    QVERIFY(text->toPlainText().count('\n') >= 1);
    for (QTextBlock line = text->document()->begin(); line.isValid(); line = line.next()) {
        QCOMPARE(line.layout()->lineCount(), 1); // the field breaks none
    }
}

void TestMeasuringCurves::theoriesToChooseHaveTheTypedNumbers()
{
    MeasureDialog dialog(window.get());
    dialog.show();
    const WindowDriver hand(dialog);
    QCOMPARE(hand.rowTexts("theory_input").mid(0, 2), QStringList({"", "same"}));
    hand.find<QComboBox>("device_input")->setCurrentText("adc");
    auto* bits = hand.find<QLineEdit>("figure_bits");
    bits->selectAll();
    QTest::keyClicks(bits, "14");
    hand.pick("theory_input", 1);
    hand.click("instruments_button"); // they have no "same"
    QCOMPARE(hand.text("theory_input"), QString());
    const QStringList theories = hand.rowTexts("theory_input");
    QVERIFY(theories.contains("adc,bits=14,full-scale=0"));
    QVERIFY(theories.contains("cubic,intercept=20"));
    QVERIFY(!theories.contains("same") && !theories.contains("linear"));
    hand.pick("theory_input", theories.indexOf("cubic,intercept=20"));
    QVERIFY(commandIn(dialog).endsWith(" --theory cubic,intercept=20"));
}

void TestMeasuringCurves::aLongNoticeMakesTheDialogTaller()
{
    MeasureDialog dialog(window.get());
    dialog.show();
    const WindowDriver hand(dialog);
    auto* text = hand.find<QLabel>("check_text");
    QTRY_VERIFY(!text->text().isEmpty());
    const int before = dialog.height();
    QVERIFY(text->height() >= text->heightForWidth(text->width()));
    auto* subtract = hand.find<QLineEdit>("subtract_input");
    QTest::keyClicks(subtract, "/missing" + QString(" a long name").repeated(30));
    QTRY_VERIFY(text->text().contains("can't read result"));
    QTRY_VERIFY(text->height() >= text->heightForWidth(text->width()));
    QVERIFY(dialog.height() > before);
}

void TestMeasuringCurves::anAcceptedDialogMeasures()
{
    operate->onNext<MeasureDialog>([](MeasureDialog* dialog) {
        const WindowDriver hand(*dialog);
        auto* step = hand.find<QLineEdit>("step_input");
        step->selectAll();
        QTest::keyClicks(step, "20");
        auto* measure = hand.find<QDialogButtonBox>("buttons")->button(QDialogButtonBox::Ok);
        QTRY_VERIFY(measure->isEnabled());
        QTest::mouseClick(measure, Qt::LeftButton);
    });
    window->tell("What was before.");
    operate->click("measure_button");
    QVERIFY(!operate->find<QWidget>("message_bar")->isVisible());
    QCOMPARE(window->focusWidget(), operate->find<QWidget>("result_view"));
    QTRY_VERIFY_WITH_TIMEOUT(
        only().state == ShownResult::State::Unsaved && only().result.points.size() == 9, 60000);
}

void TestMeasuringCurves::aMeasuredCurveIsNotSaved()
{
    window->measure(quick);
    QVERIFY(operate->find<QWidget>("running_bar")->isVisible());
    QVERIFY(!operate->isEnabled("measure_button"));
    QTRY_VERIFY_WITH_TIMEOUT(!operate->find<QWidget>("running_bar")->isVisible(), 60000);
    QCOMPARE(only().state, ShownResult::State::Unsaved);
    QCOMPARE(only().result.points.size(), 10);
    QCOMPARE(only().result.bench.simulated.value_or(""), QString("rapp,saturation=0"));
    QCOMPARE(only().result.curves.size(), 2);
    QVERIFY(operate->isEnabled("measure_button"));
}

void TestMeasuringCurves::stopKeepsWhatWasMeasured()
{
    window->measure(endless());
    QTRY_VERIFY_WITH_TIMEOUT(only().result.points.size() > 2, 60000);
    QCOMPARE(only().state, ShownResult::State::Running);
    operate->click("stop_button");
    QTRY_VERIFY_WITH_TIMEOUT(!operate->find<QWidget>("running_bar")->isVisible(), 60000);
    QCOMPARE(only().state, ShownResult::State::Unsaved);
    QVERIFY(only().result.points.size() > 2);
    QVERIFY(!operate->find<QWidget>("message_bar")->isVisible()); // it is no failure
}

void TestMeasuringCurves::stopEndsTheTheoryThatIsMadeBefore()
{
    window->measure(withLongTheory());
    QCOMPARE(operate->text("running_text"), QString("Making the signal..."));
    operate->click("stop_button");
    QTRY_VERIFY_WITH_TIMEOUT(!operate->find<QWidget>("running_bar")->isVisible(), farShorter);
    QVERIFY(!operate->find<QWidget>("message_bar")->isVisible()); // it is no failure
    QCOMPARE(window->results().rowCount(), 0);
}

void TestMeasuringCurves::theEndWaitsForNoTheory()
{
    window->measure(withLongTheory());
    QVERIFY(window->close());
    QVERIFY(backgroundJobsEnd(farShorter));
}

void TestMeasuringCurves::aMissingInstrumentIsAMessage()
{
    window->measure(withInstruments());
    // Not the warning about the carrier, which stands there before.
    QTRY_VERIFY_WITH_TIMEOUT(operate->text("message_text").contains("127.0.0.1"), 60000);
    QVERIFY(operate->find<QWidget>("message_bar")->isVisible());
    QTRY_VERIFY_WITH_TIMEOUT(!operate->find<QWidget>("running_bar")->isVisible(), 60000);
    QVERIFY(operate->text("message_text").contains("The measurement ended"));
    QVERIFY(!operate->text("message_text").contains("is kept"));
    QCOMPARE(window->results().rowCount(), 0); // nothing was measured, nothing is to be saved
    QVERIFY(window->close());
}

void TestMeasuringCurves::aLostInstrumentIsAMessageAndThePointsStay()
{
    SimulatorProcess simulator(1000, {});
    QVERIFY(simulator.isReady());
    QStringList words = withInstruments();
    words.last() = "-30:-10:0.1";
    window->measure(words << "--settle"
                          << "0.05");
    QTRY_VERIFY_WITH_TIMEOUT(only().result.points.size() > 1, 60000);
    simulator.kill();
    // Not the warning about the carrier, which stands there before.
    QTRY_VERIFY_WITH_TIMEOUT(operate->text("message_text").contains("What was measured is kept"),
                             60000);
    QVERIFY(operate->find<QWidget>("message_bar")->isVisible());
    QCOMPARE(only().state, ShownResult::State::Unsaved);
    QVERIFY(only().result.points.size() > 1);
}

void TestMeasuringCurves::anInstrumentThatAnotherProgramHoldsIsTold()
{
    SimulatorProcess simulator(1000, {});
    QVERIFY(simulator.isReady());
    // A program that connects and goes on holding the connection.
    QProcess holder;
    holder.start("python3", {"-c", "import socket, sys\n"
                                   "held = socket.create_connection(('127.0.0.1', 5025))\n"
                                   "print('held', flush=True)\n"
                                   "sys.stdin.read()\n"});
    QTRY_VERIFY_WITH_TIMEOUT(holder.canReadLine(), 20000);
    MeasureDialog dialog(window.get());
    dialog.show();
    const WindowDriver hand(dialog);
    hand.click("instruments_button");
    QTRY_VERIFY2(hand.text("check_text").contains("Another program of this machine"),
                 qPrintable(hand.text("check_text")));
    holder.closeWriteChannel();
    QVERIFY(holder.waitForFinished());
}

QTEST_MAIN(TestMeasuringCurves)
#include "test_measuring_curves.moc"
