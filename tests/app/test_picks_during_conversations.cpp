// A notch is picked while the instruments are being brought up.
#include "kit/instrument_window_test.h"

class TestPicksDuringConversations : public InstrumentWindowTest
{
    Q_OBJECT

private slots:
    void init() { openBench(); }
    void cleanup() { closeBench(); }

    void duringAPresetThatWaitsForAnotherInstrument_data();
    void duringAPresetThatWaitsForAnotherInstrument();
    void duringTheAnalyzersInit_data();
    void duringTheAnalyzersInit();
    void duringTheAnalyzersOwnStepOfAPreset();
    void severalPicksDuringAPresetTuneOneAfterTheOther();
    void aMeasurementDuringAnInitShowsItsAnswer();

private:
    void measureAndSee();
};

// The answer, and nothing before it.
void TestPicksDuringConversations::measureAndSee()
{
    const QString before = operate->text("signal_power");
    operate->click("measure_button");
    QTRY_VERIFY(operate->text("signal_power") != before);
    QCOMPARE(operate->text("signal_power"), QString("-10.13"));
    QCOMPARE(operate->text("npr_lower"), QString("-0.50"));
    QCOMPARE(operate->text("npr_upper"), QString("-43.75"));
}

void TestPicksDuringConversations::duringAPresetThatWaitsForAnotherInstrument_data()
{
    QTest::addColumn<bool>("repeated");
    QTest::newRow("the first") << false;
    QTest::newRow("a repeated one") << true;
}

void TestPicksDuringConversations::duringAPresetThatWaitsForAnotherInstrument()
{
    QFETCH(bool, repeated);
    if (repeated) {
        preset();
    }
    const QString before = repeated ? spokenWith(*analyzer) + ", " : QString();
    const int connection = analyzer->connectionCount() + 1;
    const MessageBoxes boxes;
    generator->hold("*IDN?");
    const int asked = generator->count("*IDN?");
    operate->click("preset_button");
    QTRY_COMPARE(generator->count("*IDN?"), asked + 1);

    pickNextNotch();
    QTRY_COMPARE(spokenWith(*analyzer), before + "init, tune");
    QCOMPARE(conversationsWith(*analyzer).last().connection, connection);
    measureAndSee();
    QCOMPARE(generator->count("*IDN?"), asked + 1); // it still waits

    generator->release();
    QVERIFY(backgroundJobsEnd(10000));
    // The later steps set the analyzer back, as ever.
    QTRY_COMPARE(spokenWith(*analyzer), before + "init, tune, pass, set, channel power");
    QCOMPARE(operate->text("measure_notch"), QString("1"));
    QCOMPARE(boxes.texts, QStringList());
}

void TestPicksDuringConversations::duringTheAnalyzersInit_data()
{
    QTest::addColumn<bool>("repeated");
    QTest::newRow("the first") << false;
    QTest::newRow("a repeated one") << true;
}

void TestPicksDuringConversations::duringTheAnalyzersInit()
{
    QFETCH(bool, repeated);
    if (repeated) {
        initAnalyzer();
    }
    const QString before = repeated ? spokenWith(*analyzer) + ", " : QString();
    const int connection = analyzer->connectionCount() + 1;
    const int asked = analyzer->count("*IDN?");
    const MessageBoxes boxes;
    analyzer->answer("*IDN?", "AN,1\n", 500);
    click("a_init");
    QTRY_COMPARE(analyzer->count("*IDN?"), asked + 1);
    pickNextNotch();
    QTRY_COMPARE(spokenWith(*analyzer), before + "init, tune");
    QCOMPARE(conversationsWith(*analyzer).last().connection, connection);
    QTRY_COMPARE(messageOf("a_message"), QString("AN,1"));
    measureAndSee();
    QCOMPARE(boxes.texts, QStringList());
    QCOMPARE(operate->text("measure_notch"), QString("1"));
}

void TestPicksDuringConversations::duringTheAnalyzersOwnStepOfAPreset()
{
    const MessageBoxes boxes;
    analyzer->answer("*IDN?", "AN,1\n", 300);
    operate->click("preset_button");
    QTRY_COMPARE(analyzer->count("*IDN?"), 1);
    pickNextNotch();
    QVERIFY(backgroundJobsEnd(10000));
    QTRY_COMPARE(spokenWith(*analyzer), QString("init, tune, set, channel power"));
    QCOMPARE(boxes.texts, QStringList());
}

void TestPicksDuringConversations::severalPicksDuringAPresetTuneOneAfterTheOther()
{
    const MessageBoxes boxes;
    generator->hold("*IDN?");
    operate->click("preset_button");
    QTRY_COMPARE(generator->count("*IDN?"), 1);
    pickNextNotch();
    pickNextNotch();
    pickNextNotch();
    QTRY_COMPARE(spokenWith(*analyzer), QString("init, tune, tune, tune"));
    generator->release();
    QVERIFY(backgroundJobsEnd(10000));
    QCOMPARE(boxes.texts, QStringList());
}

void TestPicksDuringConversations::aMeasurementDuringAnInitShowsItsAnswer()
{
    initAnalyzer();
    pickNextNotch();
    analyzer->hold("*IDN?");
    const int asked = analyzer->count("*IDN?");
    click("a_init");
    QTRY_COMPARE(analyzer->count("*IDN?"), asked + 1);
    const QString before = operate->text("signal_power");
    operate->click("measure_button");
    analyzer->release();
    QTRY_VERIFY(operate->text("signal_power") != before);
    QCOMPARE(operate->text("signal_power"), QString("-10.13"));
    QTRY_COMPARE(spokenWith(*analyzer), QString("init, tune, init, pass"));
}

QTEST_MAIN(TestPicksDuringConversations)
#include "test_picks_during_conversations.moc"
