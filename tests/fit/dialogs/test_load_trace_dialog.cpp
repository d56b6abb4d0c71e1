// The trace dialog, operated by clicks, on files that the test writes.
#include "fit/dialogs/load_trace_dialog.h"
#include "fit/dialogs/trace_widget.h"
#include "kit/background_jobs.h"
#include "kit/file_content.h"
#include "kit/heartbeat.h"
#include "kit/instrumented.h"
#include "kit/window_driver.h"
#include "setup/measurement_setup.h"

#include <QChartView>
#include <QPointer>
#include <QTemporaryDir>

#include <cmath>

namespace {

// Counts how often a widget is painted.
class Paints : public QObject
{
public:
    bool eventFilter(QObject*, QEvent* event) override
    {
        count += event->type() == QEvent::Paint ? 1 : 0;
        return false;
    }

    int count = 0;
};

} // namespace

class TestLoadTraceDialog : public QObject
{
    Q_OBJECT

private slots:
    void init();
    void cleanup();
    void theFormIsAsLaidOut();
    void labelsShowThePointsAndTheSpan();
    void directComesBeforeThePolynomial();
    void loadDirectStoresTheTracePointByPoint();
    void loadPolynomialStoresTheCurveAtTheLines();
    void cancelKeepsTheRecord_data();
    void cancelKeepsTheRecord();
    void aFileThatOffersNothingLeavesOnlyCancel_data();
    void aFileThatOffersNothingLeavesOnlyCancel();
    void signalsFromFilesAreOfferedNothing_data();
    void signalsFromFilesAreOfferedNothing();
    void aSinglePointInsideOffersAPolynomialOfNoNumbers();
    void aFitThatFailsLeavesDirectUsable();
    void morePointsThanLinesStopAtTheLines();
    void aDialogClosedDuringTheJobIsNotTouched();
    void closingTheDialogEndsTheReading();
    void closingTheDialogEndsTheFit();
    void chartIsUpHalfASecondAfterTheFit();
    void theLongestSignalKeepsTheWindowAnswering();

private:
    QString writeTrace(const QByteArray& content);
    static QByteArray tiltedTrace(int points, double centre, double span);
    void openDialog(const QString& fileName);
    const QVector<QtCharts::QLineSeries*>& curves() const
    {
        return operate->find<TraceWidget>("trace")->series();
    }
    bool isUntouched() const
    {
        return setup->compensationTrace.isEmpty() && !setup->traceLoaded && !setup->compensate;
    }

    std::unique_ptr<QTemporaryDir> folder;
    std::unique_ptr<MeasurementSetup> setup; // 1024 lines over 100 MHz
    QPointer<LoadTraceDialog> dialog;
    std::unique_ptr<WindowDriver> operate;
};

void TestLoadTraceDialog::init()
{
    folder = std::make_unique<QTemporaryDir>();
    setup = std::make_unique<MeasurementSetup>();
    setup->fftLengthIndex = 12;
    setup->signal.reset(1024);
}

void TestLoadTraceDialog::cleanup()
{
    operate.reset();
    delete dialog;
    waitForBackgroundJobs();
    setup.reset();
}

QString TestLoadTraceDialog::writeTrace(const QByteArray& content)
{
    QString path = folder->filePath(QStringLiteral("trace.txt"));
    putContent(path, content);
    return path;
}

// From -15 dB at the low end to -5 dB at the high end.
QByteArray TestLoadTraceDialog::tiltedTrace(int points, double centre, double span)
{
    QByteArray content;
    for (int i = 0; i < points; ++i) {
        const double place = double(i) / (points - 1);
        content += QByteArray::number(centre + (place - 0.5) * span, 'g', 15) + ';' +
                   QByteArray::number(-15.0 + 10.0 * place, 'g', 15) + ";\r\n";
    }
    return content;
}

void TestLoadTraceDialog::openDialog(const QString& fileName)
{
    dialog = new LoadTraceDialog(fileName, setup.get());
    operate = std::make_unique<WindowDriver>(*dialog);
    dialog->show();
    QVERIFY(QTest::qWaitForWindowExposed(dialog));
}

void TestLoadTraceDialog::theFormIsAsLaidOut()
{
    openDialog(folder->filePath("missing.txt"));
    QCOMPARE(dialog->windowTitle(), QStringLiteral("Load SAN Mag"));
    QCOMPARE(dialog->size(), QSize(738, 565));
    QVERIFY(dialog->windowFlags().testFlag(Qt::WindowTitleHint));
    QVERIFY(dialog->windowFlags().testFlag(Qt::WindowCloseButtonHint));
    QVERIFY(
        !(dialog->windowFlags() & (Qt::WindowMinMaxButtonsHint | Qt::WindowContextHelpButtonHint)));
    QVERIFY(dialog->testAttribute(Qt::WA_DeleteOnClose));
    QCOMPARE(operate->text("length"), QStringLiteral("---"));
    QCOMPARE(operate->text("sample_rate"), QStringLiteral("---"));
    QCOMPARE(operate->text("length_label"), QStringLiteral("Length:"));
    QCOMPARE(operate->text("sample_rate_label"), QStringLiteral("Sample Rate:"));
    const struct
    {
        const char* button;
        const char* text;
        int minimumWidth;
        bool enabled;
    } buttons[] = {
        {"load_poly_button", "Load Polynomial", 100, false},
        {"load_direct_button", "Load Direct", 100, false},
        {"cancel_button", "Cancel", 50, true},
    };
    for (const auto& expected : buttons) {
        const auto* button = operate->find<QPushButton>(expected.button);
        QCOMPARE(button->text(), QString::fromLatin1(expected.text));
        QCOMPARE(button->minimumWidth(), expected.minimumWidth);
        QCOMPARE(button->isEnabled(), expected.enabled);
        QVERIFY(button->height() <= 20);
        QVERIFY(button->height() >= button->fontMetrics().height());
    }
    QVERIFY(operate->find<QLabel>("length")->parentWidget()->height() <= 33);
    QVERIFY(operate->find<QLabel>("length")->geometry().bottom() <= 33);
}

void TestLoadTraceDialog::labelsShowThePointsAndTheSpan()
{
    openDialog(writeTrace(tiltedTrace(1001, 1.05e9, 100e6)));
    QTRY_COMPARE(operate->text("length"), QStringLiteral("1001"));
    // Deliberate: the span stands under "Sample Rate:".
    QCOMPARE(operate->text("sample_rate"), QStringLiteral("1e+08 Hz"));
}

void TestLoadTraceDialog::directComesBeforeThePolynomial()
{
    dialog = new LoadTraceDialog(writeTrace(tiltedTrace(1001, 1.05e9, 100e6)), setup.get());
    operate = std::make_unique<WindowDriver>(*dialog);
    const QSignalSpy poly(dialog, &LoadTraceDialog::polyLoaded);
    bool polyWasOfferedFirst = false;
    connect(dialog, &LoadTraceDialog::directLoaded, this,
            [&] { polyWasOfferedFirst = operate->isEnabled("load_poly_button"); });
    QTRY_COMPARE(poly.count(), 1);
    QVERIFY(!polyWasOfferedFirst);
    QVERIFY(operate->isEnabled("load_direct_button"));
    QVERIFY(operate->isEnabled("load_poly_button"));
    QCOMPARE(curves().size(), 2);
    QCOMPARE(curves().at(0)->name(), QStringLiteral("Direct"));
    QCOMPARE(curves().at(1)->name(), QStringLiteral("Polynomial"));
    // Trace and lines run over the same span, from the centre.
    QCOMPARE(curves().at(0)->count(), 1001);
    QCOMPARE(curves().at(0)->at(0), QPointF(-50e6, 15.0));
    QCOMPARE(curves().at(1)->count(), 1024);
    QCOMPARE(curves().at(1)->at(0).x(), -50e6);
    QVERIFY(std::fabs(curves().at(1)->at(512).y() - 10.0) < 1e-6);
}

void TestLoadTraceDialog::loadDirectStoresTheTracePointByPoint()
{
    openDialog(writeTrace("0;-10\n1;-20\n2;-30\n"));
    QTRY_VERIFY(operate->isEnabled("load_direct_button"));
    operate->click("load_direct_button");
    QCOMPARE(setup->compensationTrace.size(), 1024);
    QCOMPARE(setup->compensationTrace.mid(0, 5), QVector<double>({10, 20, 30, 0, 0}));
    QVERIFY(setup->traceLoaded);
    QVERIFY(setup->compensate);
    QTRY_VERIFY(dialog.isNull());
}

void TestLoadTraceDialog::loadPolynomialStoresTheCurveAtTheLines()
{
    openDialog(writeTrace(tiltedTrace(501, 2e9, 100e6)));
    QTRY_VERIFY(operate->isEnabled("load_poly_button"));
    operate->click("load_poly_button");
    QCOMPARE(setup->compensationTrace.size(), 1024);
    for (int i = 0; i < 1024; ++i) {
        const double level = -15.0 + 10.0 * i / 1024.0;
        QVERIFY(std::fabs(setup->compensationTrace.at(i) + level) < 1e-6);
    }
    QVERIFY(setup->traceLoaded);
    QVERIFY(setup->compensate);
    QTRY_VERIFY(dialog.isNull());
}

void TestLoadTraceDialog::cancelKeepsTheRecord_data()
{
    QTest::addColumn<bool>("hasCorrection");
    QTest::newRow("without a correction") << false;
    QTest::newRow("with one") << true;
}

void TestLoadTraceDialog::cancelKeepsTheRecord()
{
    QFETCH(bool, hasCorrection);
    const QVector<double> before = hasCorrection ? QVector<double>{1, 2} : QVector<double>();
    setup->compensationTrace = before;
    setup->traceLoaded = hasCorrection;
    setup->compensate = hasCorrection;
    openDialog(writeTrace(tiltedTrace(501, 2e9, 100e6)));
    QTRY_VERIFY(operate->isEnabled("load_poly_button"));
    operate->click("cancel_button");
    QTRY_VERIFY(dialog.isNull());
    QCOMPARE(setup->compensationTrace, before);
    QCOMPARE(setup->traceLoaded, hasCorrection);
    QCOMPARE(setup->compensate, hasCorrection);
}

void TestLoadTraceDialog::aFileThatOffersNothingLeavesOnlyCancel_data()
{
    QTest::addColumn<QString>("name");
    QTest::newRow("missing") << QStringLiteral("missing.txt");
    QTest::newRow("empty") << QStringLiteral("trace.txt");
    QTest::newRow("a folder") << QStringLiteral(".");
}

void TestLoadTraceDialog::aFileThatOffersNothingLeavesOnlyCancel()
{
    QFETCH(QString, name);
    writeTrace("");
    openDialog(folder->filePath(name));
    waitForBackgroundJobs();
    QCOMPARE(operate->text("length"), QStringLiteral("---"));
    QVERIFY(!operate->isEnabled("load_direct_button"));
    QVERIFY(!operate->isEnabled("load_poly_button"));
    operate->click("cancel_button");
    QTRY_VERIFY(dialog.isNull());
    QVERIFY(isUntouched());
}

void TestLoadTraceDialog::signalsFromFilesAreOfferedNothing_data()
{
    QTest::addColumn<int>("customSource");
    QTest::newRow("magnitude and phase") << 1;
    QTest::newRow("samples") << 2;
}

void TestLoadTraceDialog::signalsFromFilesAreOfferedNothing()
{
    QFETCH(int, customSource);
    setup->customSource = static_cast<SignalSource>(customSource);
    openDialog(writeTrace(tiltedTrace(501, 2e9, 100e6)));
    waitForBackgroundJobs();
    QCOMPARE(operate->text("length"), QStringLiteral("---"));
    QCOMPARE(operate->text("sample_rate"), QStringLiteral("---"));
    QVERIFY(!operate->isEnabled("load_direct_button"));
    QVERIFY(!operate->isEnabled("load_poly_button"));
    QVERIFY(curves().isEmpty());
}

void TestLoadTraceDialog::aSinglePointInsideOffersAPolynomialOfNoNumbers()
{
    openDialog(writeTrace(tiltedTrace(101, 1e9, 60e6)));
    QTRY_VERIFY(operate->isEnabled("load_poly_button"));
    QCOMPARE(curves().size(), 2);
    operate->click("load_poly_button");
    QCOMPARE(setup->compensationTrace.size(), 1024);
    QVERIFY(!std::isfinite(setup->compensationTrace.first()));
}

void TestLoadTraceDialog::aFitThatFailsLeavesDirectUsable()
{
    // The middle of 1 GHz and infinity is infinite: the first point lies below all lines and the
    // second, infinity less infinity, nowhere. So the first point to fit is 1 and the last is 0.
    openDialog(writeTrace("1e9;-10\ninf;-20\n"));
    const QSignalSpy poly(dialog, &LoadTraceDialog::polyLoaded);
    QTRY_VERIFY(operate->isEnabled("load_direct_button"));
    waitForBackgroundJobs();
    QCOMPARE(poly.count(), 0);
    QVERIFY(!operate->isEnabled("load_poly_button"));
    QVERIFY(QApplication::activeModalWidget() == nullptr);
    QCOMPARE(operate->text("length"), QStringLiteral("2"));
    operate->click("load_direct_button");
    QCOMPARE(setup->compensationTrace.mid(0, 3), QVector<double>({10, 20, 0}));
    QVERIFY(setup->traceLoaded);
    QVERIFY(setup->compensate);
    QTRY_VERIFY(dialog.isNull());
}

void TestLoadTraceDialog::morePointsThanLinesStopAtTheLines()
{
    openDialog(writeTrace(tiltedTrace(3000, 1e9, 300e6)));
    QTRY_COMPARE(operate->text("length"), QStringLiteral("1024"));
    QTRY_VERIFY(operate->isEnabled("load_direct_button"));
    operate->click("load_direct_button");
    QCOMPARE(setup->compensationTrace.size(), 1024);
}

void TestLoadTraceDialog::aDialogClosedDuringTheJobIsNotTouched()
{
    openDialog(writeTrace(tiltedTrace(501, 2e9, 100e6)));
    delete dialog; // before anything of the job has arrived
    waitForBackgroundJobs();
    QVERIFY(isUntouched());

    // At some place in the middle, and with its results already on their way.
    openDialog(writeTrace(tiltedTrace(1001, 2e9, 100e6)));
    dialog->close();
    waitForBackgroundJobs();
    QTRY_VERIFY(dialog.isNull());
    QVERIFY(isUntouched());
}

void TestLoadTraceDialog::closingTheDialogEndsTheReading()
{
    // A file of zeros, so large that it would be read for many minutes.
    QFile file(writeTrace(""));
    QVERIFY(file.open(QIODevice::ReadWrite));
    if (!file.resize(qint64{1} << 40)) {
        QSKIP("no room for a file of a terabyte, not even of zeros");
    }
    openDialog(file.fileName());
    QCOMPARE(WorkerThreads::ofProcess().busyCount(), 1);
    dialog->close();
    const bool ended = backgroundJobsEnd(10000);
    file.resize(0); // or else the reading goes on
    QVERIFY(ended);
    QVERIFY(isUntouched());
}

void TestLoadTraceDialog::closingTheDialogEndsTheFit()
{
    if (isInstrumented) {
        QSKIP("an instrumented program takes its time for each piece of the fit");
    }
    setup->fftLengthIndex = 0;
    setup->signal.reset(4194304); // a fit of seconds
    openDialog(writeTrace(tiltedTrace(1001, 1e9, 100e6)));
    QTRY_VERIFY(operate->isEnabled("load_direct_button"));
    QVERIFY(WorkerThreads::ofProcess().busyCount() > 0);
    dialog->close();
    QVERIFY(backgroundJobsEnd(1000));
    QVERIFY(isUntouched());
}

void TestLoadTraceDialog::chartIsUpHalfASecondAfterTheFit()
{
    if (isInstrumented) {
        QSKIP("an instrumented program takes minutes to paint all points");
    }
    setup->fftLengthIndex = 5;
    setup->signal.reset(131072);
    openDialog(writeTrace(tiltedTrace(1001, 1e9, 100e6)));
    // From the arrival of the fit, in one turn of the event loop, to the painted chart.
    QElapsedTimer sinceTheFit;
    qint64 shownAfter = -1;
    connect(dialog, &LoadTraceDialog::polyLoaded, this, [&] {
        dialog->grab();
        shownAfter = sinceTheFit.elapsed();
    });
    auto* timer = new QTimer(dialog);
    connect(timer, &QTimer::timeout, this, [&] { sinceTheFit.start(); });
    timer->start(0);
    QTRY_VERIFY(shownAfter >= 0);
    QCOMPARE(curves().last()->count(), 131072);
    QVERIFY2(shownAfter < 500, qPrintable(QString::number(shownAfter)));
}

void TestLoadTraceDialog::theLongestSignalKeepsTheWindowAnswering()
{
    setup->fftLengthIndex = 0;
    setup->signal.reset(4194304);
    openDialog(writeTrace(tiltedTrace(1001, 1e9, 100e6)));
    Paints paints;
    dialog->findChild<QtCharts::QChartView*>()->viewport()->installEventFilter(&paints);
    connect(dialog, &LoadTraceDialog::polyLoaded, this, [&] { paints.count = 0; });
    Heartbeat heartbeat(2000);
    QTRY_VERIFY_WITH_TIMEOUT(operate->isEnabled("load_poly_button"), 60000);
    QTRY_VERIFY(paints.count > 0);
    QCOMPARE(curves().last()->count(), 4194304);
    paints.count = 0;
    dialog->resize(900, 700);
    QTRY_VERIFY(paints.count > 0);
    const int beatsBefore = heartbeat.beats;
    QTRY_VERIFY(heartbeat.beats > beatsBefore); // which tells how long the last paint took
    QVERIFY2(heartbeat.longest < (isInstrumented ? 10000 : 2000),
             qPrintable(QString::number(heartbeat.longest)));
    operate->click("load_poly_button");
    QCOMPARE(setup->compensationTrace.size(), 4194304);
}

QTEST_MAIN(TestLoadTraceDialog)
#include "test_load_trace_dialog.moc"
