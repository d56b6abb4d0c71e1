// The bottom row of the window with an instrument at the other end of the line.
#include "app/remote_failure_box.h"
#include "kit/background_jobs.h"
#include "kit/bench_instrument.h"
#include "kit/bench_words.h"
#include "kit/main_window_test.h"
#include "kit/scripted_instrument.h"
#include "kit/top_level.h"
#include "remote/ko_remote_exception.h"

#include <QTemporaryDir>

class TestMainWindowMeasurement : public MainWindowTest
{
    Q_OBJECT

private slots:
    void init();
    void cleanup();

    void withoutANotchNothingCanBeMeasured();
    void pickingANotchBeforeAnyConnectionOpensABox();
    void aPickedNotchTunesTheAnalyzer();
    void whenTheRowsGoNothingCanBeMeasured_data();
    void whenTheRowsGoNothingCanBeMeasured();
    void whenTheRetuningFailsNothingCanBeMeasured();
    void aMeasurementShowsItsThreeNumbers();
    void continuousMeasurementGreysItsButtonsOut();
    void changingTheModeKeepsTheSignalValid();
    void loadingAConfigurationEndsContinuousMeasurement();
    void connectionsOfAReplacedRecordStayOpen();
    void aFailedPresetOpensNoBox();
    void aPresetKeepsAConnectionMadeMeanwhile();
    void aFailureOnTheMainThreadOpensABox();
    void anEmptyBoxFlashesUpBehindTheFailure();
    void aFailureOnAnotherThreadIsDropped();
    void aFailedReadingOnTheMainThreadOpensABox();
    void aFailedReadingOpensNoBoxAndKeepsTheLabels();
    void thePresetsConnectionsAreTheRecords();
    void aGeneratorFrequencyMovesTheTable();
    void closingEndsEveryWindow();
    void closingDuringAPresetIsNotHeldUp();

private:
    void makeNotches();
    void initAnalyzer();

    std::unique_ptr<ScriptedInstrument> device;
};

namespace {

const char droppedFailure[] =
    "QObject::connect: Cannot queue arguments of type 'KORemoteException*'";

// Counts the message boxes without a text that come up.
class EmptyBoxes : public QObject
{
public:
    EmptyBoxes() { qApp->installEventFilter(this); }
    bool eventFilter(QObject* watched, QEvent* event) override
    {
        const auto* box = qobject_cast<QMessageBox*>(watched);
        count += int(box != nullptr && event->type() == QEvent::Show && box->text().isEmpty());
        return false;
    }
    int count = 0;
};

} // namespace

void TestMainWindowMeasurement::init()
{
    device = std::make_unique<ScriptedInstrument>();
    device->answer("*IDN?", "ACME,42\n");
    device->answer(acpQuery, "-10.126,-0.5,-43.75\n");
    openWindow();
}

void TestMainWindowMeasurement::cleanup()
{
    closeWindow();
    waitForBackgroundJobs();
    device.reset();
}

void TestMainWindowMeasurement::makeNotches()
{
    operate->type("notch_count_input", "3");
    operate->type("notch_width_input", "1");
    operate->type("notch_offset_input", "10");
    operate->click("autocalc_notches_button");
    QCOMPARE(operate->rowCount(), 3);
}

void TestMainWindowMeasurement::initAnalyzer()
{
    const WindowDriver devices = openDevices(*operate, 1);
    devices.click("a_init");
    QTRY_COMPARE(devices.text("a_message"), QString("ACME,42"));
    devices.window.close();
    device->takeReceivedUpTo("&GTL\n");
}

void TestMainWindowMeasurement::withoutANotchNothingCanBeMeasured()
{
    QVERIFY(operate->isEnabled("preset_button"));
    QVERIFY(!operate->isEnabled("measure_button"));
    QVERIFY(!operate->isEnabled("measure_mode"));
    operate->type("measure_notch", "1"); // there is none to pick
    QCOMPARE(operate->text("measure_notch"), QString("0"));
}

void TestMainWindowMeasurement::pickingANotchBeforeAnyConnectionOpensABox()
{
    makeNotches();
    QString title;
    QString text;
    operate->onNext<QMessageBox>([&](QMessageBox* box) {
        title = box->windowTitle();
        text = box->text();
        box->button(QMessageBox::Ok)->click();
    });
    operate->type("measure_notch", "2");
    QTRY_COMPARE(text, QString("Analyzer is not initialized!"));
    QCOMPARE(title, QString("Remote Error"));
    QTRY_COMPARE(operate->text("measure_notch"), QString("0"));
    QVERIFY(!operate->isEnabled("measure_button"));
}

void TestMainWindowMeasurement::aPickedNotchTunesTheAnalyzer()
{
    makeNotches();
    initAnalyzer();
    operate->type("measure_notch", "3");
    const QByteArray sent = device->takeReceivedUpTo("&GTL\n");
    QVERIFY(sent.startsWith("FREQ:CENT "));
    QVERIFY(sent.contains("\nPOW:ACH:SPAC "));
    QVERIFY(operate->isEnabled("measure_button"));
    QVERIFY(operate->isEnabled("measure_mode"));
    const auto rows = operate->find<QTableView>("main_table")->selectionModel()->selectedRows();
    QCOMPARE(rows.size(), 1);
    QCOMPARE(rows.at(0).row(), 2);
}

void TestMainWindowMeasurement::whenTheRowsGoNothingCanBeMeasured_data()
{
    QTest::addColumn<bool>("byCount");
    QTest::newRow("a count of 0") << true;
    QTest::newRow("carriers") << false;
}

void TestMainWindowMeasurement::whenTheRowsGoNothingCanBeMeasured()
{
    QFETCH(bool, byCount);
    makeNotches();
    initAnalyzer();
    operate->type("measure_notch", "3");
    QVERIFY(operate->isEnabled("measure_button"));
    if (byCount) {
        operate->type("notch_count_input", "0");
        operate->click("autocalc_notches_button");
    } else {
        operate->pick("nc_combobox", 1);
    }
    QCOMPARE(operate->rowCount(), 0);
    QCOMPARE(operate->text("measure_notch"), QString("0"));
    QVERIFY(!operate->isEnabled("measure_button"));
    QVERIFY(!operate->isEnabled("measure_mode"));
}

// Fewer rows pick another notch, and its tuning finds no analyzer.
void TestMainWindowMeasurement::whenTheRetuningFailsNothingCanBeMeasured()
{
    makeNotches();
    initAnalyzer();
    operate->type("measure_notch", "3");
    const WindowDriver devices = openDevices(*operate, 1);
    devices.find<QComboBox>("a_interface")->setCurrentIndex(0); // needs VISA, which is not there
    devices.click("a_init");
    QTRY_COMPARE(devices.text("a_message"), QString("Could not load VISA"));
    QString text;
    operate->onNext<QMessageBox>([&](QMessageBox* box) {
        text = box->text();
        box->button(QMessageBox::Ok)->click();
    });
    operate->type("notch_count_input", "2");
    operate->click("autocalc_notches_button");
    QTRY_COMPARE(text, QString("Analyzer is not initialized!"));
    QTRY_COMPARE(operate->text("measure_notch"), QString("0"));
    QVERIFY(!operate->isEnabled("measure_button"));
    QVERIFY(!operate->isEnabled("measure_mode"));
}

void TestMainWindowMeasurement::aMeasurementShowsItsThreeNumbers()
{
    makeNotches();
    initAnalyzer();
    operate->type("measure_notch", "1");
    operate->click("measure_button");
    QTRY_COMPARE(operate->text("signal_power"), QString("-10.13"));
    QCOMPARE(operate->text("npr_lower"), QString("-0.50"));
    QCOMPARE(operate->text("npr_upper"), QString("-43.75"));
    QVERIFY(operate->isEnabled("measure_button"));
}

void TestMainWindowMeasurement::continuousMeasurementGreysItsButtonsOut()
{
    makeNotches();
    initAnalyzer();
    operate->type("measure_notch", "1");
    operate->pick("measure_mode", 0);
    QVERIFY(!operate->isEnabled("measure_button"));
    QVERIFY(!operate->isEnabled("preset_button"));
    QTRY_COMPARE(operate->text("npr_upper"), QString("-43.75"));
    device->answer(acpQuery, "1,2,3\n");
    QTRY_COMPARE(operate->text("npr_upper"), QString("3.00"));
    operate->pick("measure_mode", 1);
    QVERIFY(operate->isEnabled("measure_button"));
    QVERIFY(operate->isEnabled("preset_button"));
    // From now on only requests measure; one pass may have been on its way.
    device->takeReceived();
    for (int request = 0; request < 50; ++request) {
        operate->click("measure_button");
        waitForBackgroundJobs();
    }
    const auto passes = device->takeReceived().count("ACP");
    QVERIFY2(passes == 50 || passes == 51, QByteArray::number(passes));
}

void TestMainWindowMeasurement::changingTheModeKeepsTheSignalValid()
{
    makeNotches();
    initAnalyzer();
    operate->click("calc_fft_button");
    QTRY_COMPARE_WITH_TIMEOUT(operate->text("fft_status_label"), QString("Data valid"), 20000);
    operate->type("measure_notch", "1");
    operate->pick("measure_mode", 0);
    operate->pick("measure_mode", 1);
    QCOMPARE(operate->text("fft_status_label"), QString("Data valid"));
}

void TestMainWindowMeasurement::loadingAConfigurationEndsContinuousMeasurement()
{
    const QTemporaryDir folder;
    const QString file = folder.filePath("a.cfg");
    makeNotches();
    operate->answerFileDialog(file);
    operate->trigger("actionSave_Cfg_File");
    initAnalyzer();
    operate->type("measure_notch", "1");
    operate->pick("measure_mode", 0);
    QTRY_COMPARE(operate->text("npr_upper"), QString("-43.75"));
    operate->answerFileDialog(file);
    operate->trigger("actionLoad_Cfg_File");
    QCOMPARE(operate->text("measure_mode"), QString("Single"));
    QCOMPARE(operate->text("measure_notch"), QString("0"));
    QVERIFY(operate->isEnabled("preset_button"));
    // Never connected: the next notch asks for it.
    QString text;
    operate->onNext<QMessageBox>([&](QMessageBox* box) {
        text = box->text();
        box->button(QMessageBox::Ok)->click();
    });
    operate->type("measure_notch", "1");
    QTRY_COMPARE(text, QString("Analyzer is not initialized!"));
}

void TestMainWindowMeasurement::connectionsOfAReplacedRecordStayOpen()
{
    const QTemporaryDir folder;
    const QString file = folder.filePath("a.cfg");
    operate->answerFileDialog(file);
    operate->trigger("actionSave_Cfg_File");
    initAnalyzer();
    QTRY_COMPARE(device->openConnections(), 1);
    operate->answerFileDialog(file);
    operate->trigger("actionLoad_Cfg_File");
    initAnalyzer();
    QTRY_COMPARE(device->connectionCount(), 2);
    QCOMPARE(device->openConnections(), 2);
}

void TestMainWindowMeasurement::aFailedPresetOpensNoBox()
{
    const WindowDriver devices = openDevices(*operate, 1);
    devices.find<QComboBox>("a_interface")->setCurrentIndex(0); // needs VISA, which is not there
    QTest::ignoreMessage(QtWarningMsg, droppedFailure);
    operate->click("preset_button");
    QVERIFY(backgroundJobsEnd(10000));
    QVERIFY(QApplication::activeModalWidget() == nullptr);
    // What the job found out stands in the record, and the next refresh shows it.
    devices.type("a_level", "-10");
    QCOMPARE(devices.text("a_message"), QString("Could not load VISA"));
}

void TestMainWindowMeasurement::aPresetKeepsAConnectionMadeMeanwhile()
{
    device.reset();
    BenchInstrument slow("127.0.0.1");
    BenchInstrument microwave("127.0.0.2");
    QVERIFY(slow.isListening() && microwave.isListening());
    slow.answer("*IDN?", "slow\n");
    slow.hold("*IDN?");
    microwave.answer("*IDN?", "MW\n");
    operate->click("preset_button");
    QTRY_COMPARE(slow.count("*IDN?"), 1);
    const WindowDriver devices = openDevices(*operate, 2);
    devices.pick("m_type", 2);
    devices.type("m_address", "127.0.0.2");
    devices.click("m_init");
    QTRY_COMPARE(devices.text("m_message"), QString("MW"));
    QCOMPARE(slow.count("*IDN?"), 1); // the preset is still where it was
    slow.release();
    QVERIFY(backgroundJobsEnd(10000));
    devices.click("m_if_input"); // a preset is followed by no refresh of its own
    QCOMPARE(devices.text("g_message"), QString("slow"));
    QCOMPARE(devices.text("m_message"), QString("MW"));
    QVERIFY(devices.isEnabled("m_set"));
    QCOMPARE(microwave.openConnections(), 1);
    closeWindow(); // before the instruments
    waitForBackgroundJobs();
}

void TestMainWindowMeasurement::aFailureOnTheMainThreadOpensABox()
{
    QString title;
    QString text;
    operate->onNext<QMessageBox>([&](QMessageBox* box) {
        title = box->windowTitle();
        text = box->text();
        box->button(QMessageBox::Ok)->click();
    });
    KORemoteException failure("the far end is on fire");
    emit window->remoteError(&failure);
    QTRY_COMPARE(text, QString("the far end is on fire"));
    QCOMPARE(title, QString("Error"));
}

void TestMainWindowMeasurement::anEmptyBoxFlashesUpBehindTheFailure()
{
    EmptyBoxes empty;
    operate->onNext<QMessageBox>([&](QMessageBox* box) {
        QCOMPARE(empty.count, 0);
        box->button(QMessageBox::Ok)->click();
    });
    KORemoteException failure("no answer");
    emit window->remoteError(&failure);
    QCOMPARE(empty.count, 1);
    QVERIFY(QApplication::activeModalWidget() == nullptr);
}

void TestMainWindowMeasurement::aFailureOnAnotherThreadIsDropped()
{
    // The type is unknown to the meta type system, on purpose.
    QCOMPARE(QMetaType::type("KORemoteException*"), int(QMetaType::UnknownType));
    KORemoteException failure("far away");
    QTest::ignoreMessage(QtWarningMsg, droppedFailure);
    const std::unique_ptr<QThread> other(
        QThread::create([&] { emit window->remoteError(&failure); }));
    other->start();
    QVERIFY(other->wait());
    QCoreApplication::processEvents();
    QVERIFY(QApplication::activeModalWidget() == nullptr);
}

void TestMainWindowMeasurement::aFailedReadingOnTheMainThreadOpensABox()
{
    NPRMeasurementThread measurement;
    connectRemoteFailure(&measurement, &NPRMeasurementThread::measurementError, window.get());
    Analyzer unreachable;
    unreachable.interfaceKind = InterfaceKind::Gpib0;
    measurement.setAnalyzer(unreachable);
    QString text;
    operate->onNext<QMessageBox>([&](QMessageBox* box) {
        text = box->text();
        box->button(QMessageBox::Ok)->click();
    });
    measurement.measureOnce();
    QCOMPARE(text, QString("Could not load VISA"));
}

void TestMainWindowMeasurement::aFailedReadingOpensNoBoxAndKeepsTheLabels()
{
    makeNotches();
    initAnalyzer();
    operate->type("measure_notch", "1");
    operate->click("measure_button");
    QTRY_COMPARE(operate->text("npr_upper"), QString("-43.75"));
    const WindowDriver devices = openDevices(*operate, 1);
    devices.find<QComboBox>("a_interface")->setCurrentIndex(0);
    devices.click("a_init");
    QTRY_COMPARE(devices.text("a_message"), QString("Could not load VISA"));
    QTest::ignoreMessage(QtWarningMsg, droppedFailure);
    operate->click("measure_button");
    QVERIFY(backgroundJobsEnd(10000));
    QVERIFY(QApplication::activeModalWidget() == nullptr);
    QCOMPARE(operate->text("npr_upper"), QString("-43.75"));
    QVERIFY(operate->isEnabled("measure_button"));
}

void TestMainWindowMeasurement::thePresetsConnectionsAreTheRecords()
{
    makeNotches();
    operate->click("preset_button");
    QVERIFY(device->takeReceivedUpTo("RLEV -20.000\n&GTL\n").contains("SENS:DET1:FUNC RMS\n"));
    QVERIFY(backgroundJobsEnd(10000));
    operate->type("measure_notch", "1");
    QVERIFY(device->takeReceivedUpTo("&GTL\n").startsWith("FREQ:CENT"));
    operate->click("measure_button");
    QTRY_COMPARE(operate->text("npr_upper"), QString("-43.75"));
    QCOMPARE(device->connectionCount(), 2); // analyzer and generator, once each
    const WindowDriver devices = openDevices(*operate);
    devices.type("g_level", "-10"); // a preset is followed by no refresh of its own
    QVERIFY(devices.isEnabled("g_set"));
    QVERIFY(devices.isEnabled("a_set"));
    QVERIFY(!devices.isEnabled("m_set"));
}

void TestMainWindowMeasurement::aGeneratorFrequencyMovesTheTable()
{
    makeNotches();
    const double before = operate->cell(0, 0).toDouble();
    openDevices(*operate).type("g_frequency", "1000");
    QCOMPARE(operate->cell(0, 0).toDouble(), before + 1000.0);
}

void TestMainWindowMeasurement::closingEndsEveryWindow()
{
    const WindowDriver devices = openDevices(*operate);
    QVERIFY(devices.window.isVisible());
    operate->trigger("actionAbout");
    window->close();
    QCoreApplication::processEvents();
    for (const QWidget* each : QApplication::topLevelWidgets()) {
        QVERIFY2(!each->isVisible(), qPrintable(each->windowTitle()));
    }
}

void TestMainWindowMeasurement::closingDuringAPresetIsNotHeldUp()
{
    device->answer("*IDN?", QList<ScriptedInstrument::Piece>()); // three seconds of waiting
    operate->click("preset_button");
    QTRY_VERIFY(device->connectionCount() > 0);
    QElapsedTimer timer;
    timer.start();
    window->close();
    closeWindow();
    QVERIFY(timer.elapsed() < 2500);
    waitForBackgroundJobs();
}

QTEST_MAIN(TestMainWindowMeasurement)
#include "test_main_window_measurement.moc"
