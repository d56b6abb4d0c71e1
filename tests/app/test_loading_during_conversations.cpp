// A configuration is loaded while an instrument of the former one still talks.
#include "kit/heartbeat.h"
#include "kit/instrument_window_test.h"
#include "kit/instrumented.h"

#include <QTemporaryDir>

class TestLoadingDuringConversations : public InstrumentWindowTest
{
    Q_OBJECT

private slots:
    void init();
    void cleanup();

    void duringAnInit();
    void whatWaitsBehindAnInitNeverBegins();
    void duringAPreset();
    void duringAPresetThatWaitsForTheGenerator();
    void duringASingleMeasurement();
    void duringContinuousMeasurement();
    void duringContinuousMeasurementThatWaitsForItsTurn();

private:
    void saveTheOther();
    void load();
    void loadDuring(const QByteArray& line, int count);
    void requireNeverConnected();
    void requireTheNewOneAnswers();

    QTemporaryDir folder;
    std::unique_ptr<BenchInstrument> other; // the analyzer of the file
};

void TestLoadingDuringConversations::init()
{
    openBench();
    other = newAnalyzer("127.0.0.3", "NEW,3\n");
    other->answer(acpQuery, "4,5,6\n");
    saveTheOther();
}

void TestLoadingDuringConversations::cleanup()
{
    closeBench();
    other.reset();
}

void TestLoadingDuringConversations::saveTheOther()
{
    typeText("a_address", "127.0.0.3");
    QFile::remove(folder.filePath("a.cfg")); // or else it is asked whether to replace it
    operate->answerFileDialog(folder.filePath("a.cfg"));
    operate->trigger("actionSave_Cfg_File");
    typeText("a_address", "127.0.0.1");
}

void TestLoadingDuringConversations::load()
{
    operate->answerFileDialog(folder.filePath("a.cfg"));
    operate->trigger("actionLoad_Cfg_File");
    QCOMPARE(messageOf("a_address"), QString("127.0.0.3"));
}

// Loads while the answer to the line is held back; it still is afterwards.
void TestLoadingDuringConversations::loadDuring(const QByteArray& line, int count)
{
    QTRY_COMPARE(analyzer->count(line), count);
    const int ended = analyzer->count("&GTL");
    Heartbeat heart(2500); // the answer would be given up after three seconds
    load();
    QTRY_VERIFY(heart.beats > 0);
    QVERIFY2(heart.lateBeats == 0, QByteArray::number(heart.longest));
    QCOMPARE(analyzer->count("&GTL"), ended);
    requireNeverConnected();
}

void TestLoadingDuringConversations::requireNeverConnected()
{
    for (const char* prefix : {"g", "a", "m"}) {
        const auto named = [prefix](const char* name) { return QByteArray(prefix) + name; };
        QCOMPARE(messageOf(named("_message")), QString());
        QVERIFY(!devicesAt(prefix).isEnabled(named("_set")));
        QVERIFY(!devicesAt(prefix).isEnabled(named("_reset")));
    }
}

void TestLoadingDuringConversations::requireTheNewOneAnswers()
{
    QCOMPARE(other->connectionCount(), 0);
    const int before = analyzer->lines().size();
    click("a_init");
    QTRY_COMPARE(messageOf("a_message"), QString("NEW,3"));
    QVERIFY(devicesAt("a_set").isEnabled("a_set"));
    pickNextNotch();
    QTRY_COMPARE(spokenWith(*other), QString("init, tune"));
    operate->click("measure_button");
    QTRY_COMPARE(operate->text("signal_power"), QString("4.00"));
    QCOMPARE(analyzer->lines().size(), before);
    QCOMPARE(analyzer->openConnections(), 1); // until the program ends
}

void TestLoadingDuringConversations::duringAnInit()
{
    analyzer->hold("*IDN?");
    click("a_init");
    loadDuring("*IDN?", 1);
    analyzer->release();
    QVERIFY(backgroundJobsEnd(10000));
    QTRY_COMPARE(spokenWith(*analyzer), QString("init"));
    requireNeverConnected();
    refreshDevices();
    requireNeverConnected();
    requireTheNewOneAnswers();
}

void TestLoadingDuringConversations::whatWaitsBehindAnInitNeverBegins()
{
    initAnalyzer();
    pickNextNotch();
    analyzer->hold("*IDN?");
    click("a_init");
    click("a_set");
    operate->click("measure_button");
    click("a_reset");
    operate->click("preset_button");
    loadDuring("*IDN?", 2);
    analyzer->release();
    QVERIFY(backgroundJobsEnd(10000));
    QTRY_COMPARE(spokenWith(*analyzer), QString("init, tune, init"));
    QCOMPARE(generator->connectionCount(), 0);
    requireNeverConnected();
    requireTheNewOneAnswers();
}

void TestLoadingDuringConversations::duringAPreset()
{
    analyzer->hold("*IDN?");
    operate->click("preset_button");
    loadDuring("*IDN?", 1);
    analyzer->release();
    QVERIFY(backgroundJobsEnd(10000));
    QTRY_COMPARE(spokenWith(*analyzer), QString("init"));
    QCOMPARE(generator->connectionCount(), 0); // the rest of it is dropped
    refreshDevices();
    requireNeverConnected();
    operate->click("preset_button");
    QVERIFY(backgroundJobsEnd(10000));
    QTRY_COMPARE(spokenWith(*other), QString("init, set, channel power"));
    QTRY_COMPARE(spokenWith(*generator), QString("init, set"));
    QCOMPARE(spokenWith(*analyzer), QString("init"));
}

void TestLoadingDuringConversations::duringAPresetThatWaitsForTheGenerator()
{
    generator->hold("*IDN?");
    operate->click("preset_button");
    QTRY_COMPARE(generator->count("*IDN?"), 1);
    QTRY_COMPARE(spokenWith(*analyzer), QString("init"));
    load();
    QCOMPARE(generator->count("&GTL"), 0);
    requireNeverConnected();
    generator->release();
    QVERIFY(backgroundJobsEnd(10000));
    QTRY_COMPARE(spokenWith(*generator), QString("init"));
    QCOMPARE(spokenWith(*analyzer), QString("init"));
    refreshDevices();
    requireNeverConnected();
    requireTheNewOneAnswers();
}

// The former measurement comes to its end, and nobody sees it.
void TestLoadingDuringConversations::duringASingleMeasurement()
{
    initAnalyzer();
    pickNextNotch();
    const QString before = operate->text("signal_power");
    analyzer->hold(acpQuery);
    operate->click("measure_button");
    loadDuring(acpQuery, 1);
    QCOMPARE(operate->text("signal_power"), before);
    analyzer->release();
    QVERIFY(backgroundJobsEnd(10000));
    QTRY_COMPARE(spokenWith(*analyzer), QString("init, tune, pass"));
    QCOMPARE(operate->text("signal_power"), before);
    requireTheNewOneAnswers();
    refreshDevices();
    QCOMPARE(operate->text("signal_power"), QString("4.00"));
    QCOMPARE(messageOf("a_message"), QString("NEW,3"));
}

// There the load waits for the pass in progress, which nobody sees all the same.
void TestLoadingDuringConversations::duringContinuousMeasurement()
{
    initAnalyzer();
    pickNextNotch();
    operate->pick("measure_mode", 0);
    QTRY_COMPARE(operate->text("signal_power"), QString("-10.13"));
    // Long enough for the load to begin meanwhile, and shorter than the program waits.
    analyzer->answer(acpQuery, "7,7,7\n", isInstrumented ? 2500 : 800);
    const int passes = analyzer->count(acpQuery);
    QTRY_COMPARE(analyzer->count(acpQuery), passes + 1); // the first, or the second slow one
    QCoreApplication::processEvents(); // of the pass before, which may just have ended
    const QString before = operate->text("signal_power");
    load();
    QCOMPARE(operate->text("measure_mode"), QString("Single"));
    QCOMPARE(operate->text("signal_power"), before);
    QTRY_VERIFY(analyzer->lines().last().text == "&GTL");
    QVERIFY(!spokenWith(*analyzer).contains("torn"));
    requireNeverConnected();
    requireTheNewOneAnswers();
}

void TestLoadingDuringConversations::duringContinuousMeasurementThatWaitsForItsTurn()
{
    initAnalyzer();
    pickNextNotch();
    analyzer->hold("*IDN?");
    click("a_init");
    operate->pick("measure_mode", 0);
    loadDuring("*IDN?", 2);
    analyzer->release();
    QVERIFY(backgroundJobsEnd(10000));
    QTRY_COMPARE(spokenWith(*analyzer), QString("init, tune, init"));
    requireNeverConnected();
    requireTheNewOneAnswers();
}

QTEST_MAIN(TestLoadingDuringConversations)
#include "test_loading_during_conversations.moc"
