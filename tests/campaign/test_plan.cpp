// Levels and the numbers of notches.
#include "campaign/plan.h"
#include "setup/measurement_setup.h"

#include <QtTest>

#include <limits>

class TestPlan : public QObject
{
    Q_OBJECT

private slots:
    void levelsGoFromOneEndToTheOther();
    void aLastStepThatDoesNotMeetTheEndIsLeftOut();
    void levelsMayFall();
    void oneLevelIsACampaignToo();
    void impossibleStepsGiveNoLevels();
    void theMostReadingsCanBeCounted();
    void notchesAreNumberedByRisingCentre();
    void linesAreThoseOfTheChannelInTheNotch();
    void aReferenceInAnotherNotchIsFilledThatMuchLess();
    void carriersAreNoNotches();
    void theSameNotchMayHaveLostDigitsInAFile();
};

void TestPlan::levelsGoFromOneEndToTheOther()
{
    QCOMPARE(levelSteps(-40.0, -37.0, 1.0), (QVector<double>{-40.0, -39.0, -38.0, -37.0}));
    QCOMPARE(levelSteps(0.0, 1.0, 0.1).size(), 11);
}

void TestPlan::aLastStepThatDoesNotMeetTheEndIsLeftOut()
{
    QCOMPARE(levelSteps(0.0, 5.0, 2.0), (QVector<double>{0.0, 2.0, 4.0}));
}

void TestPlan::levelsMayFall()
{
    QCOMPARE(levelSteps(0.0, -1.0, -0.5), (QVector<double>{0.0, -0.5, -1.0}));
    QCOMPARE(levelSteps(0.0, -1.0, 0.5), (QVector<double>{0.0, -0.5, -1.0}));
}

void TestPlan::oneLevelIsACampaignToo()
{
    QCOMPARE(levelSteps(-3.0, -3.0, 1.0), QVector<double>{-3.0});
}

void TestPlan::impossibleStepsGiveNoLevels()
{
    const double infinity = std::numeric_limits<double>::infinity();
    QVERIFY(levelSteps(0.0, 1.0, 0.0).isEmpty());
    QVERIFY(levelSteps(0.0, 1.0, std::nan("")).isEmpty());
    QVERIFY(levelSteps(0.0, infinity, 1.0).isEmpty());
    QVERIFY(levelSteps(-infinity, 0.0, 1.0).isEmpty());
    QVERIFY(levelSteps(infinity, infinity, 1.0).isEmpty());
    QVERIFY(levelSteps(0.0, 10000.0, 1.0).isEmpty());
    QCOMPARE(levelSteps(0.0, 9999.0, 1.0).size(), 10000);
}

void TestPlan::theMostReadingsCanBeCounted()
{
    CampaignPlan plan;
    plan.levels.fill(0.0, mostLevels);
    plan.notches.fill(NumberedNotch(), 999);
    plan.averages = 100000;
    QCOMPARE(plan.readingCount(), qint64{999000000000});
}

void TestPlan::notchesAreNumberedByRisingCentre()
{
    MeasurementSetup setup;
    for (const double center : {5e6, -7e6, 1e6}) {
        Notch notch;
        notch.center = center;
        notch.width = 1e6;
        setup.notches->insert(0, notch);
    }
    const QVector<NumberedNotch> notches = numberedNotches(setup, 131072);
    QCOMPARE(notches.size(), 3);
    QCOMPARE(notches[0].number, 1);
    QCOMPARE(notches[0].notch.center, -7e6);
    QCOMPARE(notches[1].notch.center, 1e6);
    QCOMPARE(notches[2].number, 3);
    QCOMPARE(notches[2].notch.center, 5e6);
}

// 100 MHz over 1000 points: lines of 100 kHz. The channel is 750 kHz wide: 4.625 to 5.375 MHz.
void TestPlan::linesAreThoseOfTheChannelInTheNotch()
{
    MeasurementSetup setup;
    Notch notch;
    notch.center = 5e6;
    notch.width = 1e6;
    setup.notches->insert(0, notch);
    QCOMPARE(numberedNotches(setup, 1000).constFirst().lines, 7); // 47 to 53
}

// 100 MHz over 1024 points. The reference channel of a notch of 10 MHz at 20 MHz is 4.25 to 11.75
// MHz; one of 6 MHz at 5 MHz reaches from 2 to 8 MHz and takes one half of it. Lines are 97.7 kHz
// apart, 77 of them in the channel.
void TestPlan::aReferenceInAnotherNotchIsFilledThatMuchLess()
{
    SignalData signal(1024);
    signal.magnitude.fill(1.0, 1024);
    Notch notch;
    notch.center = 20e6;
    notch.width = 10e6;
    const NumberedNotch numbered{1, notch, 77};
    QVERIFY(std::abs(referenceFilling(numbered, signal, 1e8) - 1.0) < 0.02);
    for (int line = 512 + 21; line <= 512 + 81; ++line) {
        signal.magnitude[line] = 1e-5;
    }
    QVERIFY(std::abs(referenceFilling(numbered, signal, 1e8) - 0.5) < 0.02);
    for (double& magnitude : signal.magnitude) {
        magnitude *= 7.0;
    }
    QVERIFY(std::abs(referenceFilling(numbered, signal, 1e8) - 0.5) < 0.02);
}

void TestPlan::carriersAreNoNotches()
{
    MeasurementSetup setup;
    setup.notches->insert(0, Notch());
    setup.notchOrCarrier = NotchOrCarrier::Carrier;
    QVERIFY(numberedNotches(setup, 1024).isEmpty());
}

void TestPlan::theSameNotchMayHaveLostDigitsInAFile()
{
    QVERIFY(isSameNotch(-3.2e7, 1e6, -3.2e7 + 0.5, 1e6));
    QVERIFY(!isSameNotch(-3.2e7, 1e6, -3.2e7 + 100.0, 1e6));
    QVERIFY(!isSameNotch(-3.2e7, 1e6, -3.2e7, 2e6));
}

QTEST_APPLESS_MAIN(TestPlan)
#include "test_plan.moc"
