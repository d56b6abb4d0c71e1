// A stored trace undone in the signal, from the menu to the client: a path with a known tilt is
// written as a trace file and loaded, and the samples that the client fetches are sent through
// that path again.
#include "fit/dialogs/load_trace_dialog.h"
#include "kit/background_jobs.h"
#include "kit/file_content.h"
#include "kit/free_port.h"
#include "kit/main_window_test.h"
#include "kit/sample_spectrum.h"
#include "kit/status_client.h"

#include <QPointer>
#include <QTemporaryDir>

namespace {

constexpr int lineCount = 1024; // over the default 100 MHz

// The path's gain in dB at a place from 0, the low end of the span, to 1: 6 dB of tilt with a
// hump, never above 0.
double pathGain(double place)
{
    return -8.0 + 6.0 * place + 1.5 * std::sin(5.0 * place);
}

// Amplitudes of all lines after the path, in dB against a flat 0.
double largestError(const std::vector<std::complex<double>>& samples)
{
    double largest = 0.0;
    for (int line = 0; line < lineCount; ++line) {
        const double sent = 20.0 * std::log10(amplitudeAt(samples, line - lineCount / 2));
        const double error = std::fabs(sent + pathGain(double(line) / lineCount));
        largest = error > largest ? error : largest;
    }
    return largest;
}

} // namespace

class TestTraceLoading : public MainWindowTest
{
    Q_OBJECT

private slots:
    void init();
    void cleanup();
    void aTiltIsUndoneInTheFetchedSamples_data();
    void aTiltIsUndoneInTheFetchedSamples();
    void aLoadedTraceSwitchesCompensationOnAndInvalidates();
    void aSecondTraceInvalidatesToo();
    void switchingTheCorrectionInvalidates();
    void cancelLeavesTheWindowAsItWas();
    void aCorrectionLiesIdleAtAnotherLength();
    void loadingAConfigurationClearsTheCorrection();
    void theWindowGoesWithTheDialogOpenAndTheJobRunning();

private:
    void openTrace(int points);
    void take(const char* button);
    std::vector<std::complex<double>> fetchSamples();

    std::unique_ptr<QTemporaryDir> folder;
    QPointer<LoadTraceDialog> dialog;
};

void TestTraceLoading::init()
{
    folder = std::make_unique<QTemporaryDir>();
    openWindow();
    operate->pick("fft_length_input", 12);
    calculate();
}

void TestTraceLoading::cleanup()
{
    closeWindow();
}

// A trace of the path around 2.4 GHz, its points where the lines of as many bins would lie.
void TestTraceLoading::openTrace(int points)
{
    const QString path = folder->filePath("path.txt");
    QByteArray trace;
    for (int i = 0; i < points; ++i) {
        const double place = double(i) / points;
        trace += QByteArray::number(2.4e9 + 100e6 * i / (points - 1), 'f', 3) + ';' +
                 QByteArray::number(pathGain(place), 'g', 15) + ";\n";
    }
    putContent(path, trace);
    operate->answerFileDialog(path);
    operate->trigger("actionLoad_SAN_Mag");
    dialog = window->findChild<LoadTraceDialog*>();
    QVERIFY(!dialog.isNull());
    QVERIFY(dialog->isVisible());
    QVERIFY(!dialog->isModal());
}

void TestTraceLoading::take(const char* button)
{
    const WindowDriver inDialog(*dialog);
    QTRY_VERIFY(inDialog.isEnabled(button));
    inDialog.click(button);
    QTRY_VERIFY(dialog.isNull());
}

std::vector<std::complex<double>> TestTraceLoading::fetchSamples()
{
    const quint16 port = freePort();
    operate->type("port_input", QString::number(port));
    StatusClient client;
    if (!client.isGreetedAt(port)) {
        return {};
    }
    return samplesOf(client.ask("GetSymbol", 4 + 8 * lineCount));
}

void TestTraceLoading::aTiltIsUndoneInTheFetchedSamples_data()
{
    QTest::addColumn<QByteArray>("button");
    QTest::addColumn<int>("points");
    QTest::addColumn<double>("tolerance"); // dB
    // Floats of the protocol alone stand between the direct trace and the samples.
    QTest::newRow("direct") << QByteArray("load_direct_button") << lineCount << 1e-4;
    // The last point stands at the end of the span, where no line is: the trace is stretched by
    // one part in 801.
    QTest::newRow("polynomial") << QByteArray("load_poly_button") << 801 << 0.02;
}

void TestTraceLoading::aTiltIsUndoneInTheFetchedSamples()
{
    QFETCH(QByteArray, button);
    QFETCH(int, points);
    QFETCH(double, tolerance);
    QVERIFY(largestError(fetchSamples()) > 5.0); // the flat signal comes out tilted
    openTrace(points);
    take(button);
    calculate();
    const std::vector<std::complex<double>> samples = fetchSamples();
    QCOMPARE(samples.size(), std::size_t{lineCount});
    const double error = largestError(samples);
    QVERIFY2(error < tolerance, qPrintable(QString::number(error)));
}

void TestTraceLoading::aLoadedTraceSwitchesCompensationOnAndInvalidates()
{
    QVERIFY(!operate->isEnabled("compensate_checkbox"));
    openTrace(lineCount);
    take("load_direct_button");
    QVERIFY(operate->isEnabled("compensate_checkbox"));
    QVERIFY(operate->find<QAbstractButton>("compensate_checkbox")->isChecked());
    QCOMPARE(operate->text("fft_status_label"), QStringLiteral("Data invalid"));
}

void TestTraceLoading::aSecondTraceInvalidatesToo()
{
    openTrace(lineCount);
    take("load_direct_button");
    calculate();
    openTrace(lineCount / 2);
    QCOMPARE(operate->text("fft_status_label"), QStringLiteral("Data valid"));
    take("load_direct_button");
    QCOMPARE(operate->text("fft_status_label"), QStringLiteral("Data invalid"));
}

void TestTraceLoading::switchingTheCorrectionInvalidates()
{
    openTrace(lineCount);
    take("load_direct_button");
    for (const bool on : {false, true}) {
        calculate();
        operate->click("compensate_checkbox");
        QCOMPARE(operate->find<QAbstractButton>("compensate_checkbox")->isChecked(), on);
        QCOMPARE(operate->text("fft_status_label"), QStringLiteral("Data invalid"));
    }
}

void TestTraceLoading::cancelLeavesTheWindowAsItWas()
{
    openTrace(lineCount);
    take("cancel_button");
    QVERIFY(!operate->isEnabled("compensate_checkbox"));
    QCOMPARE(operate->text("fft_status_label"), QStringLiteral("Data valid"));
}

void TestTraceLoading::aCorrectionLiesIdleAtAnotherLength()
{
    const QString flat = operate->text("crest_factor_output");
    openTrace(lineCount);
    take("load_direct_button");
    operate->pick("fft_length_input", 11);
    calculate();
    const QString corrected = operate->text("crest_factor_output");
    operate->click("compensate_checkbox"); // off
    calculate();
    QCOMPARE(operate->text("crest_factor_output"), corrected);
    operate->click("compensate_checkbox");
    operate->pick("fft_length_input", 12);
    calculate();
    QVERIFY(operate->text("crest_factor_output") != flat);
}

void TestTraceLoading::loadingAConfigurationClearsTheCorrection()
{
    openTrace(lineCount);
    take("load_direct_button");
    const QString path = folder->filePath("empty.cfg");
    putContent(path, "");
    operate->answerFileDialog(path);
    operate->trigger("actionLoad_Cfg_File");
    QVERIFY(!operate->isEnabled("compensate_checkbox"));
    QVERIFY(!operate->find<QAbstractButton>("compensate_checkbox")->isChecked());
}

void TestTraceLoading::theWindowGoesWithTheDialogOpenAndTheJobRunning()
{
    openTrace(lineCount);
    window.reset();
    QVERIFY(dialog.isNull());
    waitForBackgroundJobs();
}

QTEST_MAIN(TestTraceLoading)
#include "test_trace_loading.moc"
