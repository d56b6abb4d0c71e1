// "Auto-Calculate" and the rules of the cells, with hand-worked rows.
#include "setup/measurement_setup.h"
#include "setup/notch_editing.h"

#include <QtTest>

namespace {

// 100 MHz, 1024 bins: a bin is 97656.25 Hz, half the band is 512 bins.
constexpr double oneBin = 97656.25;

MeasurementSetup setupOf1024()
{
    MeasurementSetup setup;
    setup.fftLengthIndex = 12;
    setup.notchOffset = 0.0;
    return setup;
}

MeasurementSetup setupWithRow(double center, double width)
{
    MeasurementSetup setup = setupOf1024();
    Notch notch;
    notch.center = center;
    notch.width = width;
    notch.startFreq = center - width / 2;
    notch.stopFreq = center + width / 2;
    notch.startIndex = static_cast<qint32>(notch.startFreq / oneBin);
    notch.stopIndex = static_cast<qint32>(notch.stopFreq / oneBin);
    notch.depth = -40.0;
    setup.notches->items.append(notch);
    return setup;
}

const Notch& row(const MeasurementSetup& setup, int index = 0)
{
    return setup.notches->items.at(index);
}

} // namespace

class TestNotchEditing : public QObject
{
    Q_OBJECT

private slots:
    void threeNotchesDivideTheBandInFour();
    void countIsCutToWhatFits();
    void countZeroEmptiesTheList();
    void offsetMovesAllNotchesToTheBinBelow();
    void notchAtTheUpperEdgeIsNarrowedToItsRoom();
    void notchWithoutRoomEndsEverything();
    void absurdCountFromAFileIsBounded();
    void carriersStandEvenlyFromEdgeToEdge();
    void fewerThanTwoCarriersMakeNoRow();
    void typedCenterSnapsAndMovesTheEdges();
    void typedFrequenciesAreAbsolute();
    void centerBoundsAreNoMirrorImages();
    void widthZeroGivesOneBin();
    void typedEdgesSwapAndStayInTheBand();
    void typedBinsSwapAndStopOneBinInside();
    void startBeyondTheBandComesBackThroughTheSwap();
    void binCellsTakeOnlyWholeNumbers();
    void depthIsUnchecked();
    void lettersChangeNothing();
    void rowThatDoesNotExistChangesNothing();
    void carrierCellsMoveTheLine();
    void hiddenCarrierColumnsStoreNothing();
};

void TestNotchEditing::threeNotchesDivideTheBandInFour()
{
    MeasurementSetup setup = setupOf1024();
    setup.notchCount = 3;
    QVERIFY(autoCalculateNotches(setup));
    QCOMPARE(setup.notches->items.size(), 3);
    QCOMPARE(row(setup, 0).center, -25e6); // 256 bins exactly
    QCOMPARE(row(setup, 1).center, 0.0);
    QCOMPARE(row(setup, 2).center, 25e6);
    QCOMPARE(row(setup, 0).width, 10e6);
    QCOMPARE(row(setup, 0).startFreq, -30e6);
    QCOMPARE(row(setup, 0).stopFreq, -20e6);
    QCOMPARE(row(setup, 0).depth, -100.0);
    // 30 MHz are 307.2 bins, 20 MHz 204.8: both are cut toward the carrier.
    QCOMPARE(row(setup, 0).startIndex, -307);
    QCOMPARE(row(setup, 0).stopIndex, -204);
    QCOMPARE(row(setup, 2).startIndex, 204);
    QCOMPARE(row(setup, 2).stopIndex, 307);
}

void TestNotchEditing::countIsCutToWhatFits()
{
    MeasurementSetup setup = setupOf1024();
    setup.notchCount = 20; // 100 / 10 - 0.5 = 9.5 fit
    QVERIFY(autoCalculateNotches(setup));
    QCOMPARE(setup.notchCount, 9U);
    QCOMPARE(setup.notches->items.size(), 9);
    setup.sampleRate = 100.0;
    setup.notchWidth = 0.5;
    setup.notchCount = 300; // 100 / 0.5 - 0.5 = 199.5 fit
    QVERIFY(autoCalculateNotches(setup));
    QCOMPARE(setup.notches->items.size(), 199);
}

void TestNotchEditing::countZeroEmptiesTheList()
{
    MeasurementSetup setup = setupWithRow(0.0, 1e6);
    setup.notchCount = 0;
    QVERIFY(autoCalculateNotches(setup));
    QVERIFY(setup.notches->items.isEmpty());
}

void TestNotchEditing::offsetMovesAllNotchesToTheBinBelow()
{
    MeasurementSetup setup = setupOf1024();
    setup.notchCount = 1;
    setup.notchOffset = 10e6; // 102.4 bins
    QVERIFY(autoCalculateNotches(setup));
    QCOMPARE(row(setup).center, 102 * oneBin);
    setup.notchOffset = -10e6;
    QVERIFY(autoCalculateNotches(setup));
    QCOMPARE(row(setup).center, -102 * oneBin); // toward the carrier, not down
}

void TestNotchEditing::notchAtTheUpperEdgeIsNarrowedToItsRoom()
{
    MeasurementSetup setup = setupOf1024();
    setup.notchCount = 1;
    setup.notchOffset = 460 * oneBin; // twice the 52 bins above it are room
    setup.notchWidth = 104.5 * oneBin;
    QVERIFY(autoCalculateNotches(setup));
    QCOMPARE(row(setup).width, 104 * oneBin);
    QCOMPARE(row(setup).startIndex, 408);
    QCOMPARE(row(setup).stopIndex, 512);
    setup.notchWidth = 105 * oneBin; // a bin too wide
    QVERIFY(autoCalculateNotches(setup));
    QCOMPARE(row(setup).width, 104 * oneBin);
    setup.notchWidth = 105.5 * oneBin; // more than that
    QVERIFY(!autoCalculateNotches(setup));
    QVERIFY(setup.notches->items.isEmpty());
}

void TestNotchEditing::notchWithoutRoomEndsEverything()
{
    MeasurementSetup setup = setupOf1024();
    setup.notchCount = 3;
    setup.notchOffset = 30e6; // the third notch would stand at 55 MHz, which is clipped to 50
    QVERIFY(!autoCalculateNotches(setup));
    QCOMPARE(setup.notchCount, 2U);
    QCOMPARE(setup.notches->items.size(), 2);
}

void TestNotchEditing::absurdCountFromAFileIsBounded()
{
    MeasurementSetup setup = setupOf1024();
    setup.notchCount = 0xFFFFFFFFU;
    setup.notchWidth = 0.0;
    autoCalculateNotches(setup);
    QCOMPARE(setup.notches->items.size(), 999);
    setup.notchOrCarrier = NotchOrCarrier::Carrier;
    setup.notchCount = 0xFFFFFFFFU;
    autoCalculateNotches(setup);
    QCOMPARE(setup.notches->items.size(), 999);
}

void TestNotchEditing::carriersStandEvenlyFromEdgeToEdge()
{
    MeasurementSetup setup = setupOf1024();
    setup.notchOrCarrier = NotchOrCarrier::Carrier;
    setup.notchCount = 5;
    setup.notchOffset = 1e6;
    QVERIFY(autoCalculateNotches(setup));
    QCOMPARE(setup.notches->items.size(), 5);
    const double expected[] = {-49e6, -24e6, 1e6, 26e6, 51e6};
    const int bins[] = {-501, -245, 10, 266, 522}; // -501.76, -245.76, 10.24, 266.24, 522.24
    for (int i = 0; i < 5; ++i) {
        QCOMPARE(row(setup, i).center, expected[i]);
        QCOMPARE(row(setup, i).startFreq, expected[i]);
        QCOMPARE(row(setup, i).stopFreq, expected[i]);
        QCOMPARE(row(setup, i).startIndex, bins[i]);
        QCOMPARE(row(setup, i).stopIndex, bins[i]);
        QCOMPARE(row(setup, i).width, 0.0);
        QCOMPARE(row(setup, i).depth, 0.0);
    }
}

void TestNotchEditing::fewerThanTwoCarriersMakeNoRow()
{
    MeasurementSetup setup = setupOf1024();
    setup.notchOrCarrier = NotchOrCarrier::Carrier;
    for (const quint32 count : {0U, 1U}) {
        setup.notchCount = count;
        QVERIFY(autoCalculateNotches(setup));
        QVERIFY(setup.notches->items.isEmpty());
        QCOMPARE(setup.notchCount, count);
    }
}

void TestNotchEditing::typedCenterSnapsAndMovesTheEdges()
{
    MeasurementSetup setup = setupWithRow(0.0, 20 * oneBin);
    QVERIFY(editNotchCell(setup, 0, 0, QStringLiteral("5"))); // 51.2 bins
    QCOMPARE(row(setup).center, 51 * oneBin);
    QCOMPARE(row(setup).width, 20 * oneBin);
    QCOMPARE(row(setup).startFreq, 41 * oneBin);
    QCOMPARE(row(setup).stopFreq, 61 * oneBin);
    QCOMPARE(row(setup).startIndex, 41);
    QCOMPARE(row(setup).stopIndex, 61);
}

// With a carrier of 1 GHz 995 and 1005 MHz are 51.2 bins below and above.
void TestNotchEditing::typedFrequenciesAreAbsolute()
{
    MeasurementSetup setup = setupWithRow(0.0, 20 * oneBin);
    setup.generator.frequency = 1e9;
    QVERIFY(editNotchCell(setup, 0, 0, QStringLiteral("995")));
    QCOMPARE(row(setup).center, -51 * oneBin);
    QVERIFY(editNotchCell(setup, 0, 3, QStringLiteral("1005")));
    QCOMPARE(row(setup).stopIndex, 51);
    QVERIFY(editNotchCell(setup, 0, 2, QStringLiteral("995")));
    QCOMPARE(row(setup).startIndex, -51);
    QCOMPARE(row(setup).center, 0.0);
    setup.notchOrCarrier = NotchOrCarrier::Carrier;
    QVERIFY(editNotchCell(setup, 0, 0, QStringLiteral("1005")));
    QCOMPARE(row(setup).center, 51 * oneBin);
}

void TestNotchEditing::centerBoundsAreNoMirrorImages()
{
    MeasurementSetup setup = setupWithRow(0.0, 20 * oneBin);
    QVERIFY(editNotchCell(setup, 0, 0, QStringLiteral("-1000")));
    QCOMPARE(row(setup).center, -502 * oneBin); // lower edge at the band edge, -512
    QCOMPARE(row(setup).startIndex, -512);
    QVERIFY(editNotchCell(setup, 0, 0, QStringLiteral("1000")));
    QCOMPARE(row(setup).center, 522 * oneBin); // upper edge a width outside, at 532
    QCOMPARE(row(setup).stopIndex, 532);
}

void TestNotchEditing::widthZeroGivesOneBin()
{
    MeasurementSetup setup = setupWithRow(51 * oneBin, 20 * oneBin);
    QVERIFY(editNotchCell(setup, 0, 1, QStringLiteral("0")));
    QCOMPARE(row(setup).width, 0.0);
    QCOMPARE(row(setup).startIndex, 51);
    QCOMPARE(row(setup).stopIndex, 51);
}

void TestNotchEditing::typedEdgesSwapAndStayInTheBand()
{
    MeasurementSetup setup = setupWithRow(0.0, 20 * oneBin);
    QVERIFY(editNotchCell(setup, 0, 2, QStringLiteral("5"))); // above the stop at 10 bins
    QCOMPARE(row(setup).startIndex, 10);
    QCOMPARE(row(setup).stopIndex, 51);
    QCOMPARE(row(setup).startFreq, 10 * oneBin);
    QCOMPARE(row(setup).stopFreq, 51 * oneBin);
    QCOMPARE(row(setup).width, 41 * oneBin);
    QCOMPARE(row(setup).center, 30.5 * oneBin);
    QVERIFY(editNotchCell(setup, 0, 3, QStringLiteral("80")));
    QCOMPARE(row(setup).stopFreq, 50e6);
    QCOMPARE(row(setup).stopIndex, 512);
    QVERIFY(editNotchCell(setup, 0, 2, QStringLiteral("-80")));
    QCOMPARE(row(setup).startIndex, -512);
}

void TestNotchEditing::typedBinsSwapAndStopOneBinInside()
{
    MeasurementSetup setup = setupWithRow(0.0, 20 * oneBin);
    QVERIFY(editNotchCell(setup, 0, 5, QStringLiteral("-30"))); // below the start at -10
    QCOMPARE(row(setup).startIndex, -30);
    QCOMPARE(row(setup).stopIndex, -10);
    QCOMPARE(row(setup).width, 20 * oneBin);
    QCOMPARE(row(setup).center, -20 * oneBin);
    QVERIFY(editNotchCell(setup, 0, 5, QStringLiteral("512"))); // the edge itself may stand
    QCOMPARE(row(setup).stopIndex, 512);
    QVERIFY(editNotchCell(setup, 0, 5, QStringLiteral("513")));
    QCOMPARE(row(setup).stopIndex, 511);
    QVERIFY(editNotchCell(setup, 0, 4, QStringLiteral("-600")));
    QCOMPARE(row(setup).startIndex, -511);
}

void TestNotchEditing::startBeyondTheBandComesBackThroughTheSwap()
{
    MeasurementSetup setup = setupWithRow(0.0, 20 * oneBin);
    QVERIFY(editNotchCell(setup, 0, 4, QStringLiteral("600")));
    QCOMPARE(row(setup).startIndex, 10);
    QCOMPARE(row(setup).stopIndex, 511);
}

void TestNotchEditing::binCellsTakeOnlyWholeNumbers()
{
    MeasurementSetup setup = setupWithRow(0.0, 20 * oneBin);
    QVERIFY(editNotchCell(setup, 0, 5, QStringLiteral("7.5"))); // a number, but no whole one
    QCOMPARE(row(setup).stopIndex, 0);
}

void TestNotchEditing::depthIsUnchecked()
{
    MeasurementSetup setup = setupWithRow(0.0, 20 * oneBin);
    QVERIFY(editNotchCell(setup, 0, 6, QStringLiteral("12.5")));
    QCOMPARE(row(setup).depth, 12.5);
    QCOMPARE(row(setup).startIndex, -10);
}

void TestNotchEditing::lettersChangeNothing()
{
    for (int column = 0; column < 7; ++column) {
        MeasurementSetup setup = setupWithRow(51 * oneBin, 20 * oneBin);
        QVERIFY(!editNotchCell(setup, 0, column, QStringLiteral("ten")));
        QCOMPARE(row(setup).center, 51 * oneBin);
        QCOMPARE(row(setup).stopIndex, 61);
        QCOMPARE(row(setup).depth, -40.0);
    }
}

void TestNotchEditing::rowThatDoesNotExistChangesNothing()
{
    MeasurementSetup setup = setupWithRow(51 * oneBin, 20 * oneBin);
    QVERIFY(!editNotchCell(setup, 1, 0, QStringLiteral("5")));
    QVERIFY(!editNotchCell(setup, -1, 0, QStringLiteral("5")));
    QCOMPARE(setup.notches->items.size(), 1);
}

void TestNotchEditing::carrierCellsMoveTheLine()
{
    MeasurementSetup setup = setupWithRow(0.0, 0.0);
    setup.notchOrCarrier = NotchOrCarrier::Carrier;
    QVERIFY(editNotchCell(setup, 0, 4, QStringLiteral("100")));
    QCOMPARE(row(setup).startIndex, 100);
    QCOMPARE(row(setup).stopIndex, 100);
    QCOMPARE(row(setup).center, 100 * oneBin);
    QCOMPARE(row(setup).startFreq, 100 * oneBin);
    QVERIFY(editNotchCell(setup, 0, 0, QStringLiteral("-5")));
    QCOMPARE(row(setup).startIndex, -51);
    QCOMPARE(row(setup).stopIndex, -51);
    QCOMPARE(row(setup).center, -51 * oneBin);
}

void TestNotchEditing::hiddenCarrierColumnsStoreNothing()
{
    MeasurementSetup setup = setupWithRow(51 * oneBin, 0.0);
    setup.notchOrCarrier = NotchOrCarrier::Carrier;
    QVERIFY(editNotchCell(setup, 0, 6, QStringLiteral("-3")));
    QCOMPARE(row(setup).depth, -40.0);
    QVERIFY(editNotchCell(setup, 0, 1, QStringLiteral("3")));
    QCOMPARE(row(setup).width, 0.0);
}

QTEST_APPLESS_MAIN(TestNotchEditing)
#include "test_notch_editing.moc"
