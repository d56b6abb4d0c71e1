// What a campaign says to instruments, read at the other end of the line: levels, reference levels,
// lost instruments.
#include "campaign/campaign.h"
#include "campaign/instrument_bench.h"
#include "kit/bench_words.h"
#include "kit/scripted_instrument.h"
#include "setup/measurement_setup.h"

#include <QtTest>

#include <thread>

namespace {

// A generator, an analyzer that reads 20 dB in the upper channel, and a microwave generator, each
// at its address.
struct Devices
{
    ScriptedInstrument generator{5025, "127.0.0.2"};
    ScriptedInstrument analyzer{5025, "127.0.0.3"};
    ScriptedInstrument microwave{5025, "127.0.0.4"};

    Devices()
    {
        generator.answer("*IDN?", "a generator\n");
        analyzer.answer("*IDN?", "an analyzer\n");
        analyzer.answer(acpQuery, "-40.0,-0.1,-20.0\n");
        microwave.answer("*IDN?", "a microwave\n");
    }
};

MeasurementSetup setup()
{
    MeasurementSetup made;
    Notch notch;
    notch.center = 5e6;
    notch.width = 1e6;
    made.notches->insert(0, notch);
    made.generator.ipAddress = "127.0.0.2";
    made.generator.frequency = 1e9;
    made.generator.level = -25.0;
    made.analyzer.ipAddress = "127.0.0.3";
    made.analyzer.frequency = 1e9;
    made.analyzer.level = -15.0;
    made.microwave.ipAddress = "127.0.0.4";
    return made;
}

CampaignPlan plan(const QVector<double>& levels = {-30.0, -20.0}, int averages = 1)
{
    CampaignPlan made;
    made.levels = levels;
    made.averages = averages;
    made.notches = numberedNotches(setup(), 131072);
    return made;
}

// The numbers behind a command, in the order in which they came.
QVector<double> numbersOf(const QByteArray& received, const QByteArray& command)
{
    QVector<double> numbers;
    for (const QByteArray& line : received.split('\n')) {
        if (line.startsWith(command)) {
            numbers << line.mid(command.size()).toDouble();
        }
    }
    return numbers;
}

using Tell = std::function<void(const CampaignProgress&)>;

CampaignOutcome measured(const MeasurementSetup& settings, const CampaignPlan& wanted,
                         const Tell& tell = {})
{
    InstrumentBench bench(settings);
    return runCampaign(wanted, bench, Interruption(), tell);
}

} // namespace

class TestInstrumentBench : public QObject
{
    Q_OBJECT

private slots:
    void theLowestLevelGoesBeforeTheOutput();
    void theLowerOfSettingsAndPlanIsLeft();
    void theReferenceLevelKeepsItsDistance();
    void readingsAreTurnedIntoRatios();
    void aMicrowaveGeneratorSetsTheLevel();
    void anIfInputPassesTheGeneratorsLevelOn();
    void anAnswerOfTwoNumbersIsAskedForOnceMore();
    void anAnalyzerThatStaysLostEndsTheCampaign();
    void aConnectionThatClosesIsMadeAnew();
    void aGeneratorThatStaysLostEndsTheCampaign();
    void aGeneratorThatNeverSaysWhoItIsIsMeasuredWith();
    void aSilentGeneratorThatHangsUpIsLost();
    void withoutAnAnalyzerNothingIsSwitchedOn();
    void aSignalFarAboveTheReferenceLevelIsMarked();
    void theExpectedTimeCountsSweepsAndSettling();
};

void TestInstrumentBench::theLowestLevelGoesBeforeTheOutput()
{
    Devices devices;
    const CampaignOutcome outcome = measured(setup(), plan());
    QVERIFY2(outcome.ending == CampaignOutcome::Ending::Done, qPrintable(outcome.failure));
    const QByteArray level = "POW -30.000000\n";
    QCOMPARE(devices.generator.takeReceivedUpTo("POW -25.000000\n*IDN?\n&GTL\n"),
             "*IDN?\n&GTL\n" + level + "OUTP ON\nIQ:STAT ON\nFREQ 1000000000.000000\n" + level +
                 "*IDN?\n&GTL\n" + level +
                 "*IDN?\n&GTL\nPOW -20.000000\n*IDN?\n&GTL\nPOW -25.000000\n*IDN?\n&GTL\n");
    QCOMPARE(outcome.bench.generator, QString("a generator"));
    QCOMPARE(outcome.bench.analyzer, QString("an analyzer"));
}

void TestInstrumentBench::theLowerOfSettingsAndPlanIsLeft()
{
    Devices devices;
    QVERIFY(measured(setup(), plan({-40.0, -35.0})).warning.isEmpty());
    const QVector<double> levels =
        numbersOf(devices.generator.takeReceivedUpTo("POW -35.000000\n*IDN?\n&GTL\n"), "POW ");
    QCOMPARE(levels.constLast(), -35.0);
    QVERIFY(!levels.contains(-25.0)); // the settings' level is above the plan's
}

// Ten decibels above, as in the settings.
void TestInstrumentBench::theReferenceLevelKeepsItsDistance()
{
    Devices devices;
    (void)measured(setup(), plan());
    const QByteArray received = devices.analyzer.takeReceivedUpTo("&GTL\n");
    QVector<double> levels = numbersOf(received, "DISP:WIND1:TRAC:Y:RLEV ");
    levels.erase(std::unique(levels.begin(), levels.end()), levels.end());
    // On the way back to -25 dBm the level falls, and the analyzer needs to hear nothing of it.
    QCOMPARE(levels, (QVector<double>{-20.0, -10.0}));
}

// 20 dB below the reference: 99 times, after turning back.
void TestInstrumentBench::readingsAreTurnedIntoRatios()
{
    Devices devices;
    const CampaignOutcome outcome = measured(setup(), plan({-30.0}, 3));
    QCOMPARE(outcome.points.size(), 1);
    QVERIFY(std::abs(*outcome.points[0].npr - 10.0 * std::log10(99.0)) < 1e-9);
    QVERIFY(std::abs(outcome.points[0].power - -40.0) < 1e-9);
    // One stimulus, whatever the readings: 983 lines.
    QVERIFY(std::abs(*outcome.points[0].sigma - 4.3429 / std::sqrt(983.0) / 0.99) < 1e-3);
}

void TestInstrumentBench::aMicrowaveGeneratorSetsTheLevel()
{
    Devices devices;
    MeasurementSetup chain = setup();
    chain.microwave.device = 1;
    chain.microwave.ifInput = false;
    chain.microwave.level = -22.0;
    const CampaignOutcome outcome = measured(chain, plan());
    QVERIFY2(outcome.ending == CampaignOutcome::Ending::Done, qPrintable(outcome.failure));
    const QByteArray received = devices.microwave.takeReceivedUpTo("POW -22.000000\n*IDN?\n&GTL\n");
    QCOMPARE(numbersOf(received, "POW "), (QVector<double>{-30.0, -30.0, -30.0, -20.0, -22.0}));
    QVERIFY(received.indexOf("POW -30") < received.indexOf("OUTP ON"));
    QCOMPARE(numbersOf(devices.generator.takeReceived(), "POW "), QVector<double>{-25.0});
}

void TestInstrumentBench::anIfInputPassesTheGeneratorsLevelOn()
{
    Devices devices;
    MeasurementSetup chain = setup();
    chain.microwave.device = 1;
    (void)measured(chain, plan());
    QCOMPARE(numbersOf(devices.generator.takeReceivedUpTo("POW -25.000000\n*IDN?\n&GTL\n"), "POW "),
             (QVector<double>{-30.0, -30.0, -30.0, -20.0, -25.0}));
    QVERIFY(numbersOf(devices.microwave.takeReceived(), "POW ").isEmpty());
}

void TestInstrumentBench::anAnswerOfTwoNumbersIsAskedForOnceMore()
{
    Devices devices;
    // The preset at the new connection comes between the two; the answer is mended by then.
    devices.analyzer.answer(acpQuery, "-40.0,-0.1\n");
    std::thread mender([&devices] {
        while (devices.analyzer.connectionCount() < 2) {
            std::this_thread::yield();
        }
        devices.analyzer.answer(acpQuery, "-40.0,-0.1,-20.0\n");
    });
    const CampaignOutcome outcome = measured(setup(), plan());
    mender.join();
    QVERIFY2(outcome.ending == CampaignOutcome::Ending::Done, qPrintable(outcome.failure));
    QCOMPARE(outcome.points.size(), 2);
    QCOMPARE(devices.analyzer.connectionCount(), 2);
}

void TestInstrumentBench::anAnalyzerThatStaysLostEndsTheCampaign()
{
    Devices devices;
    const CampaignOutcome outcome = measured(setup(), plan({-30.0, -20.0, -10.0}),
                                             [&devices](const CampaignProgress& progress) {
                                                 if (progress.readings == 2) {
                                                     devices.analyzer.answer(acpQuery, "-40.0\n");
                                                 }
                                             });
    QCOMPARE(outcome.ending, CampaignOutcome::Ending::Failed);
    QVERIFY2(outcome.failure.startsWith("analyzer 127.0.0.3: "), qPrintable(outcome.failure));
    QVERIFY(outcome.failure.contains("three numbers"));
    QCOMPARE(outcome.points.size(), 2);
    QCOMPARE(devices.analyzer.connectionCount(), 2); // one more try
    // The generator is left at its level all the same, and never got more than was asked for.
    const QVector<double> levels =
        numbersOf(devices.generator.takeReceivedUpTo("POW -25.000000\n*IDN?\n&GTL\n"), "POW ");
    QCOMPARE(levels.constLast(), -25.0);
    QCOMPARE(*std::max_element(levels.begin(), levels.end()), -10.0);
}

void TestInstrumentBench::aConnectionThatClosesIsMadeAnew()
{
    Devices devices;
    const QList<ScriptedInstrument::Piece> closes{{0, "", true}};
    std::thread mender;
    const CampaignOutcome outcome =
        measured(setup(), plan(), [&](const CampaignProgress& progress) {
            if (progress.readings == 1) {
                devices.analyzer.answer("INIT;*WAI", closes);
                mender = std::thread([&devices] {
                    while (devices.analyzer.connectionCount() < 2) {
                        std::this_thread::yield();
                    }
                    devices.analyzer.answer("INIT;*WAI", QByteArray());
                });
            }
        });
    mender.join();
    QVERIFY2(outcome.ending == CampaignOutcome::Ending::Done, qPrintable(outcome.failure));
    QCOMPARE(outcome.points.size(), 2);
    QCOMPARE(devices.analyzer.connectionCount(), 2);
    // All of the analyzer's settings were sent again before it was read.
    const QByteArray received = devices.analyzer.takeReceived();
    QCOMPARE(received.count("POW:ACH:MODE REL"), 2);
}

void TestInstrumentBench::aGeneratorThatStaysLostEndsTheCampaign()
{
    auto devices = std::make_unique<Devices>();
    const CampaignOutcome outcome =
        measured(setup(), plan(), [&devices](const CampaignProgress& progress) {
            if (progress.readings == 1) {
                devices->generator.answer("*IDN?", {{0, "", true}});
            }
        });
    QCOMPARE(outcome.ending, CampaignOutcome::Ending::Failed);
    QVERIFY2(outcome.failure.startsWith("signal generator 127.0.0.2: "),
             qPrintable(outcome.failure));
    QCOMPARE(outcome.points.size(), 1);
    QVERIFY2(outcome.warning.contains("could not be set back"), qPrintable(outcome.warning));
}

// It is asked when it is connected and when it is set, and never again.
void TestInstrumentBench::aGeneratorThatNeverSaysWhoItIsIsMeasuredWith()
{
    Devices devices;
    devices.generator.answer("*IDN?", QByteArray());
    const CampaignOutcome outcome = measured(setup(), plan());
    QVERIFY2(outcome.ending == CampaignOutcome::Ending::Done, qPrintable(outcome.failure));
    QVERIFY2(outcome.warning.isEmpty(), qPrintable(outcome.warning));
    QCOMPARE(outcome.points.size(), 2);
    QCOMPARE(devices.generator.connectionCount(), 1);
    const QByteArray received =
        devices.generator.takeReceivedUpTo("POW -20.000000\n&GTL\nPOW -25.000000\n&GTL\n");
    QVERIFY(received.endsWith("POW -20.000000\n&GTL\nPOW -25.000000\n&GTL\n"));
    QCOMPARE(received.count("*IDN?"), 2);
}

void TestInstrumentBench::aSilentGeneratorThatHangsUpIsLost()
{
    Devices devices;
    devices.generator.answer("*IDN?", QByteArray());
    const QList<ScriptedInstrument::Piece> closes{{0, "", true}};
    devices.generator.answer("POW -20.000000", closes);
    const CampaignOutcome outcome =
        measured(setup(), plan({-30.0, -20.0, -19.0}), [&](const CampaignProgress& progress) {
            if (progress.readings == 1) {
                devices.generator.answer("OUTP ON", closes); // no new connection stays either
            }
            if (progress.readings == 2) { // unless it was noticed at once
                QTRY_COMPARE(devices.generator.openConnections(), 0);
            }
        });
    QCOMPARE(outcome.ending, CampaignOutcome::Ending::Failed);
    QVERIFY2(outcome.failure.startsWith("signal generator 127.0.0.2: "),
             qPrintable(outcome.failure));
    QVERIFY(outcome.points.size() == 1 || outcome.points.size() == 2);
    QVERIFY2(outcome.warning.contains("could not be set back"), qPrintable(outcome.warning));
}

void TestInstrumentBench::withoutAnAnalyzerNothingIsSwitchedOn()
{
    Devices devices;
    MeasurementSetup lost = setup();
    lost.analyzer.ipAddress = "127.0.0.9";
    const CampaignOutcome outcome = measured(lost, plan());
    QCOMPARE(outcome.ending, CampaignOutcome::Ending::Failed);
    QVERIFY2(outcome.failure.startsWith("analyzer 127.0.0.9: "), qPrintable(outcome.failure));
    QVERIFY(outcome.points.isEmpty() && outcome.warning.isEmpty());
    QVERIFY(devices.generator.takeReceived().isEmpty());
}

// -40 dBm in 0.75 MHz are -18.8 dBm over the 99 MHz of the signal; more than 10 dB above the
// reference level of -30 dBm at the generator's -40, not above that of -20 at its -30.
void TestInstrumentBench::aSignalFarAboveTheReferenceLevelIsMarked()
{
    Devices devices;
    const CampaignOutcome outcome = measured(setup(), plan({-40.0, -30.0}));
    QCOMPARE(outcome.points.size(), 2);
    QCOMPARE(outcome.points[0].marks, QStringList{"overload"});
    QVERIFY(outcome.points[1].marks.isEmpty());
}

void TestInstrumentBench::theExpectedTimeCountsSweepsAndSettling()
{
    MeasurementSetup settings = setup();
    settings.analyzer.sweepTime = 2.0;
    CampaignPlan slow = plan({-30.0, -20.0, -10.0}, 10);
    slow.settleSeconds = 5.0;
    const double seconds = InstrumentBench(settings).expectedSeconds(slow);
    QVERIFY(seconds > 30 * 2.0 + 3 * 5.0 && seconds < 30 * 2.2 + 3 * 5.0);
}

QTEST_GUILESS_MAIN(TestInstrumentBench)
#include "test_instrument_bench.moc"
