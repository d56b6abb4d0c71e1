// Everybody talks to the analyzer at once: continuous measurement, picks, the jobs of the devices
// dialog, presets. Each exchange is whole, in order of asking.
#include "kit/instrument_window_test.h"

class TestConversationsTakeTurns : public InstrumentWindowTest
{
    Q_OBJECT

private slots:
    void init() { openBench(); }
    void cleanup() { closeBench(); }

    void aPickInContComesAfterThePassInProgress();
    void picksInContFollowEachOther();
    void theDialogsJobsInContComeAfterThePassInProgress();
    void aPresetFromBeforeContGetsItsTurns();
    void choosingSingleWaitsForThePassAndNotForAnInit();
    void fivePresetsAreWholeAndEnd();
    void theDialogMayBeClosedWhileItWorks();
    void bothWindowsAtOnceAreServedInOrderOfAsking();

private:
    void measureContinuously();
    void awaitPassInProgress();
    QString spokenSince(int conversation) const;
    bool turnsSinceThePass(const QString& pattern) const;

    static constexpr int sweepMs = 400;
    int soFar = 0; // conversations that had ended when the pass in progress began
};

void TestConversationsTakeTurns::measureContinuously()
{
    initAnalyzer();
    pickNextNotch();
    analyzer->answer(acpQuery, "1,2,3\n", sweepMs);
    operate->pick("measure_mode", 0);
    awaitPassInProgress();
}

// Returns at the beginning of the time that the analyzer takes for its answer.
void TestConversationsTakeTurns::awaitPassInProgress()
{
    const int passes = analyzer->count(acpQuery);
    QTRY_COMPARE(analyzer->count(acpQuery), passes + 1);
    soFar = conversationsWith(*analyzer).size();
}

QString TestConversationsTakeTurns::spokenSince(int conversation) const
{
    return spokenWith(*analyzer).section(QStringLiteral(", "), conversation);
}

// Whether the conversations since the pass in progress begin like this. "..." stands for further
// passes: one may have come to its end before a busy machine let the test ask.
bool TestConversationsTakeTurns::turnsSinceThePass(const QString& pattern) const
{
    const QString further = QString(pattern).replace("...", "(pass, )*");
    return QRegularExpression('^' + further).match(spokenSince(soFar)).hasMatch();
}

void TestConversationsTakeTurns::aPickInContComesAfterThePassInProgress()
{
    measureContinuously();
    const MessageBoxes boxes;
    for (const Qt::Key key : {Qt::Key_Up, Qt::Key_Up, Qt::Key_Down}) {
        awaitPassInProgress();
        QTest::keyClick(operate->find<QSpinBox>("measure_notch"), key);
        QTRY_VERIFY(turnsSinceThePass("pass, ...tune, pass"));
    }
    QVERIFY2(!spokenWith(*analyzer).contains("torn"), qPrintable(spokenWith(*analyzer)));
    QCOMPARE(boxes.texts, QStringList());
    QCOMPARE(operate->text("measure_mode"), QString("Cont"));
}

// The next pass asks when the former has ended: as a rule it is behind the first of two picks and
// before the second, on a busy machine behind both.
void TestConversationsTakeTurns::picksInContFollowEachOther()
{
    measureContinuously();
    awaitPassInProgress();
    pickNextNotch();
    pickNextNotch();
    QTRY_VERIFY(turnsSinceThePass("pass, ...tune, ...tune, pass"));
    QVERIFY2(!spokenWith(*analyzer).contains("torn"), qPrintable(spokenWith(*analyzer)));
}

void TestConversationsTakeTurns::theDialogsJobsInContComeAfterThePassInProgress()
{
    measureContinuously();
    awaitPassInProgress();
    click("a_set");
    QTRY_VERIFY(turnsSinceThePass("pass, ...set, pass"));
    awaitPassInProgress();
    click("a_reset");
    click("a_set");
    click("a_init");
    click("a_set");
    QTRY_VERIFY(turnsSinceThePass("pass, ...reset, ...set, ...init, ...set, pass"));
    QTRY_COMPARE(messageOf("a_message"), QString("AN,1"));
    QVERIFY2(!spokenWith(*analyzer).contains("torn"), qPrintable(spokenWith(*analyzer)));
    QTRY_COMPARE(operate->text("npr_upper"), QString("3.00"));
}

void TestConversationsTakeTurns::aPresetFromBeforeContGetsItsTurns()
{
    generator->hold("*IDN?");
    operate->click("preset_button");
    QTRY_COMPARE(generator->count("*IDN?"), 1);
    pickNextNotch();
    analyzer->answer(acpQuery, "1,2,3\n", sweepMs);
    operate->pick("measure_mode", 0);
    awaitPassInProgress();
    QVERIFY(!operate->isEnabled("preset_button"));
    generator->release();
    QTRY_COMPARE(countWith(*analyzer, "channel power"), 1);
    // Its two steps with the analyzer wait for one pass each, or for none where they come between.
    QVERIFY2(turnsSinceThePass("pass, ...set, ...channel power"), qPrintable(spokenSince(soFar)));
    QTRY_COMPARE(spokenWith(*generator), QString("init, set"));
    QTRY_VERIFY(spokenWith(*analyzer).contains("channel power, pass"));
}

void TestConversationsTakeTurns::choosingSingleWaitsForThePassAndNotForAnInit()
{
    measureContinuously();
    awaitPassInProgress();
    analyzer->hold("*IDN?");
    const int asked = analyzer->count("*IDN?");
    click("a_init");
    QTRY_COMPARE(analyzer->count("*IDN?"), asked + 1);
    operate->pick("measure_mode", 1);
    QVERIFY(turnsSinceThePass("...pass$")); // the init still waits for its answer
    QVERIFY(operate->isEnabled("measure_button"));
    analyzer->release();
    QVERIFY(backgroundJobsEnd(10000));
    operate->click("measure_button");
    QTRY_VERIFY(turnsSinceThePass("pass, ...init, pass"));
    QVERIFY(backgroundJobsEnd(10000));
    // The pass that had asked before the pause measures nothing when its turn has come.
    QTRY_VERIFY(turnsSinceThePass("pass, ...init, pass$"));
}

void TestConversationsTakeTurns::fivePresetsAreWholeAndEnd()
{
    analyzer->hold("*IDN?");
    for (int i = 0; i < 5; ++i) {
        operate->click("preset_button");
    }
    QTRY_COMPARE(analyzer->count("*IDN?"), 1);
    analyzer->release();
    QVERIFY(backgroundJobsEnd(15000));
    QTRY_COMPARE(countWith(*analyzer, "channel power"), 5);
    QCOMPARE(countWith(*analyzer, "init"), 5);
    QCOMPARE(countWith(*analyzer, "set"), 5);
    QCOMPARE(conversationsWith(*analyzer).size(), 15);
    QVERIFY(spokenWith(*analyzer).endsWith("channel power"));
    QTRY_COMPARE(countWith(*generator, "set"), 5);
    QCOMPARE(countWith(*generator, "init"), 5);
    QCOMPARE(conversationsWith(*generator).size(), 10);
    QTRY_COMPARE(analyzer->openConnections(), 1);
    QTRY_COMPARE(generator->openConnections(), 1);
    refreshDevices();
    QCOMPARE(messageOf("a_message"), QString("AN,1"));
    QCOMPARE(messageOf("g_message"), QString("GEN,2"));
}

void TestConversationsTakeTurns::theDialogMayBeClosedWhileItWorks()
{
    initAnalyzer();
    analyzer->hold("*IDN?");
    click("a_init");
    click("a_set");
    QTRY_COMPARE(analyzer->count("*IDN?"), 2);
    QCOMPARE(messageOf("a_message"), QString("pending..."));
    QTest::mouseClick(devicesAt("a").find<QPushButton>("ok_button"), Qt::LeftButton);
    QVERIFY(!devicesAt("a").window.isHidden()); // brought up again, it still works
    QCOMPARE(messageOf("a_message"), QString("pending..."));
    QTest::mouseClick(devicesAt("a").find<QPushButton>("ok_button"), Qt::LeftButton);
    analyzer->release();
    QVERIFY(backgroundJobsEnd(10000));
    QTRY_COMPARE(spokenWith(*analyzer), QString("init, init, set"));
    QCOMPARE(messageOf("a_message"), QString("AN,1"));
    QVERIFY(devicesAt("a_set").isEnabled("a_set"));
}

void TestConversationsTakeTurns::bothWindowsAtOnceAreServedInOrderOfAsking()
{
    initAnalyzer();
    pickNextNotch();
    QTRY_COMPARE(countWith(*analyzer, "tune"), 1);
    soFar = conversationsWith(*analyzer).size();
    analyzer->hold("*IDN?");
    click("a_init");
    operate->click("measure_button");
    click("a_reset");
    operate->click("measure_button");
    click("a_set");
    operate->click("preset_button");
    operate->click("measure_button");
    QTRY_COMPARE(analyzer->count("*IDN?"), 2);
    analyzer->release();
    QVERIFY(backgroundJobsEnd(10000));
    QTRY_COMPARE(spokenSince(soFar),
                 QString("init, pass, reset, pass, set, init, pass, set, channel power"));
    QTRY_COMPARE(messageOf("a_message"), QString("AN,1"));
}

QTEST_MAIN(TestConversationsTakeTurns)
#include "test_conversations_take_turns.moc"
