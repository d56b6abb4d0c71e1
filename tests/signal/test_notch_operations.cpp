// Cutting notches, keeping carriers, the skirts and the sort, with hand-worked bins.
#include "setup/measurement_setup.h"
#include "signal/notch_operations.h"

#include <QtTest>

#include <algorithm>
#include <random>

namespace {

constexpr double minus105dB = 5.623413251903491e-06;

SignalData flatSpectrum(quint32 n)
{
    SignalData data(n);
    data.magnitude.fill(1.0);
    return data;
}

Notch notchOf(qint32 start, qint32 stop, double depth)
{
    Notch notch;
    notch.startIndex = start;
    notch.stopIndex = stop;
    notch.depth = depth;
    notch.center = start;
    return notch;
}

NotchList listOf(std::initializer_list<Notch> notches)
{
    NotchList list;
    list.items = notches;
    return list;
}

// Every bin that differs from 1.0, as "first-last" runs.
QString touchedBins(const SignalData& data)
{
    QStringList runs;
    const int size = data.magnitude.size();
    for (int i = 0; i < size; ++i) {
        if (data.magnitude[i] == 1.0) {
            continue;
        }
        const int first = i;
        while (i + 1 < size && data.magnitude[i + 1] != 1.0) {
            ++i;
        }
        runs << QStringLiteral("%1-%2").arg(first).arg(i);
    }
    return runs.join(' ');
}

bool near(double value, double expected)
{
    return qAbs(value - expected) <= 1e-12 * qAbs(expected);
}

} // namespace

class TestNotchOperations : public QObject
{
    Q_OBJECT

private slots:
    void attenuateIncludesBothEnds();
    void attenuateClipsAHugeLastBin();
    void attenuateIgnoresAWrappedFirstBin();
    void attenuateOfAnEmptySignalDoesNothing();
    void emptyListChangesNothingInEitherMode();
    void notchCutsBothEdgeBins();
    void notchOverTheCarrierCutsTheCarrier();
    void notchOfOneBinCutsOneBin();
    void notchOfDepthZeroChangesNothing();
    void overlappingNotchesAddTheirDepths();
    void notchOutsideTheBandIsIgnoredOrClipped();
    void carrierStandsOneBinAboveItsIndex();
    void carriersKeepOneBinEachInAnyOrder();
    void neighbouringCarriersLeaveNoGap();
    void carrierModeIgnoresDepthAndStop();
    void sortingThePrivateCopyKeepsTheTable();
    void skirtsOfHalfTheBand();
    void skirtsFollowTheSetupsLengthNotTheSignals();
    void noSkirtsAtFullBandOrInCarrierMode();
    void sortOrdersByCenter_data();
    void sortOrdersByCenter();
    void sortKeepsEveryRowAmongEqualCenters();
    void sortSettlesTheOrderOfEqualCenters_data();
    void sortSettlesTheOrderOfEqualCenters();
};

void TestNotchOperations::attenuateIncludesBothEnds()
{
    SignalData data = flatSpectrum(16);
    data.attenuate(3, 5, 0.5);
    QCOMPARE(touchedBins(data), QStringLiteral("3-5"));
    QCOMPARE(data.magnitude[4], 0.5);
    data.attenuate(5, 5, 0.5);
    QCOMPARE(data.magnitude[5], 0.25);
}

void TestNotchOperations::attenuateClipsAHugeLastBin()
{
    SignalData data = flatSpectrum(16);
    data.attenuate(12, 0xFFFFFFFFU, 0.5);
    QCOMPARE(touchedBins(data), QStringLiteral("12-15"));
}

void TestNotchOperations::attenuateIgnoresAWrappedFirstBin()
{
    SignalData data = flatSpectrum(16);
    data.attenuate(8U + static_cast<quint32>(-9), 8, 0.5);
    QCOMPARE(touchedBins(data), QString());
}

void TestNotchOperations::attenuateOfAnEmptySignalDoesNothing()
{
    SignalData data(0);
    data.attenuate(0, 10, 0.5);
    QVERIFY(data.magnitude.isEmpty());
}

void TestNotchOperations::emptyListChangesNothingInEitherMode()
{
    SignalData data = flatSpectrum(1024);
    data.applyNotches(NotchList(), false);
    data.applyNotches(NotchList(), true);
    QCOMPARE(touchedBins(data), QString());
}

void TestNotchOperations::notchCutsBothEdgeBins()
{
    SignalData data = flatSpectrum(64);
    data.applyNotches(listOf({notchOf(-10, -6, -40.0)}), false);
    QCOMPARE(touchedBins(data), QStringLiteral("22-26"));
    QVERIFY(near(data.magnitude[22], 0.01));
    QVERIFY(near(data.magnitude[26], 0.01));
}

void TestNotchOperations::notchOverTheCarrierCutsTheCarrier()
{
    SignalData data = flatSpectrum(64);
    data.applyNotches(listOf({notchOf(-1, 1, -20.0)}), false);
    QCOMPARE(touchedBins(data), QStringLiteral("31-33"));
    QVERIFY(near(data.magnitude[32], 0.1));
}

void TestNotchOperations::notchOfOneBinCutsOneBin()
{
    SignalData data = flatSpectrum(64);
    data.applyNotches(listOf({notchOf(4, 4, -100.0)}), false);
    QCOMPARE(touchedBins(data), QStringLiteral("36-36"));
}

void TestNotchOperations::notchOfDepthZeroChangesNothing()
{
    SignalData data = flatSpectrum(64);
    data.applyNotches(listOf({notchOf(-4, 4, 0.0)}), false);
    QCOMPARE(touchedBins(data), QString());
}

void TestNotchOperations::overlappingNotchesAddTheirDepths()
{
    SignalData data = flatSpectrum(64);
    data.applyNotches(listOf({notchOf(0, 8, -40.0), notchOf(6, 12, -40.0)}), false);
    QVERIFY(near(data.magnitude[32 + 5], 1e-2));
    QVERIFY(near(data.magnitude[32 + 7], 1e-4));
    QVERIFY(near(data.magnitude[32 + 9], 1e-2));
}

void TestNotchOperations::notchOutsideTheBandIsIgnoredOrClipped()
{
    SignalData data = flatSpectrum(64);
    data.applyNotches(listOf({notchOf(-40, -20, -40.0)}), false);
    QCOMPARE(touchedBins(data), QString()); // its first bin wraps below the vector
    data.applyNotches(listOf({notchOf(20, 400, -40.0)}), false);
    QCOMPARE(touchedBins(data), QStringLiteral("52-63"));
}

void TestNotchOperations::carrierStandsOneBinAboveItsIndex()
{
    SignalData data = flatSpectrum(1024);
    data.applyNotches(listOf({notchOf(0, 0, 0.0)}), true);
    QCOMPARE(touchedBins(data), QStringLiteral("0-512 514-1023"));
    QVERIFY(near(data.magnitude[0], minus105dB));
    QVERIFY(near(data.magnitude[1023], minus105dB));
}

void TestNotchOperations::carriersKeepOneBinEachInAnyOrder()
{
    SignalData data = flatSpectrum(64);
    data.applyNotches(listOf({notchOf(10, 10, 0), notchOf(-10, -10, 0), notchOf(0, 0, 0)}), true);
    QCOMPARE(touchedBins(data), QStringLiteral("0-22 24-32 34-42 44-63"));
    for (const int bin : {0, 22, 24, 32, 34, 42, 44, 63}) {
        QVERIFY2(near(data.magnitude[bin], minus105dB), qPrintable(QString::number(bin)));
    }
}

void TestNotchOperations::neighbouringCarriersLeaveNoGap()
{
    SignalData data = flatSpectrum(64);
    data.applyNotches(listOf({notchOf(3, 3, 0), notchOf(4, 4, 0)}), true);
    QCOMPARE(touchedBins(data), QStringLiteral("0-35 38-63"));
}

void TestNotchOperations::carrierModeIgnoresDepthAndStop()
{
    SignalData data = flatSpectrum(64);
    data.applyNotches(listOf({notchOf(0, 20, -60.0)}), true);
    QCOMPARE(touchedBins(data), QStringLiteral("0-32 34-63"));
    QVERIFY(near(data.magnitude[40], minus105dB));
}

void TestNotchOperations::sortingThePrivateCopyKeepsTheTable()
{
    const NotchList table = listOf({notchOf(10, 10, 0), notchOf(-10, -10, 0)});
    SignalData data = flatSpectrum(64);
    data.applyNotches(table, true);
    QCOMPARE(table.items.at(0).startIndex, 10);
    QCOMPARE(table.items.at(1).startIndex, -10);
}

void TestNotchOperations::skirtsOfHalfTheBand()
{
    MeasurementSetup setup;
    setup.fftLengthIndex = 12; // 1024
    setup.nbwSrate = 0.5;
    SignalData data = flatSpectrum(1024);
    suppressOutOfBand(data, setup);
    QCOMPARE(touchedBins(data), QStringLiteral("0-256 768-1023"));
    QVERIFY(near(data.magnitude[256], minus105dB));
    QVERIFY(near(data.magnitude[768], minus105dB));
}

void TestNotchOperations::skirtsFollowTheSetupsLengthNotTheSignals()
{
    MeasurementSetup setup;
    setup.fftLengthIndex = 13; // 512, while the signal came from a file of 1024
    setup.nbwSrate = 0.5;
    SignalData data = flatSpectrum(1024);
    suppressOutOfBand(data, setup);
    QCOMPARE(touchedBins(data), QStringLiteral("0-128 384-512"));
}

void TestNotchOperations::noSkirtsAtFullBandOrInCarrierMode()
{
    MeasurementSetup setup;
    setup.fftLengthIndex = 12;
    SignalData data = flatSpectrum(1024);
    suppressOutOfBand(data, setup);
    setup.nbwSrate = 0.5;
    setup.notchOrCarrier = NotchOrCarrier::Carrier;
    suppressOutOfBand(data, setup);
    QCOMPARE(touchedBins(data), QString());
}

void TestNotchOperations::sortOrdersByCenter_data()
{
    QTest::addColumn<int>("count");
    for (const int count : {0, 1, 2, 3, 4, 5, 10, 999}) {
        QTest::addRow("%d", count) << count;
    }
}

void TestNotchOperations::sortOrdersByCenter()
{
    QFETCH(int, count);
    std::mt19937 engine(static_cast<quint32>(count));
    for (int shape = 0; shape < 3; ++shape) { // shuffled, ascending, descending
        NotchList list;
        for (int i = 0; i < count; ++i) {
            Notch notch;
            notch.center = shape == 2 ? -i : i;
            notch.startIndex = 7 * i;
            list.items.append(notch);
        }
        if (shape == 0) {
            std::shuffle(list.items.begin(), list.items.end(), engine);
        }
        list.sort();
        QCOMPARE(list.items.size(), count);
        for (int i = 0; i < count; ++i) {
            const int original = shape == 2 ? count - 1 - i : i;
            QCOMPARE(list.items.at(i).startIndex, 7 * original); // whole records move
        }
    }
}

void TestNotchOperations::sortKeepsEveryRowAmongEqualCenters()
{
    NotchList list;
    for (int i = 0; i < 200; ++i) {
        Notch notch;
        notch.center = i % 3;
        notch.startIndex = i;
        list.items.append(notch);
    }
    list.sort();
    QList<qint32> rows;
    for (int i = 0; i < 200; ++i) {
        QVERIFY(i == 0 || list.items.at(i - 1).center <= list.items.at(i).center);
        rows.append(list.items.at(i).startIndex);
    }
    std::sort(rows.begin(), rows.end());
    for (int i = 0; i < 200; ++i) {
        QCOMPARE(rows.at(i), i);
    }
}

void TestNotchOperations::sortSettlesTheOrderOfEqualCenters_data()
{
    QTest::addColumn<QVector<int>>("centers");
    QTest::addColumn<QVector<int>>("order"); // the former places of the rows
    QTest::newRow("two") << QVector<int>{1, 1} << QVector<int>{0, 1};
    QTest::newRow("three") << QVector<int>{1, 1, 1} << QVector<int>{0, 1, 2};
    // Row 2 goes to the end as the pivot (0 1 3 2), the ends of the others are exchanged (3 1 0 2),
    // and the pivot takes the place of row 1.
    QTest::newRow("four") << QVector<int>{1, 1, 1, 1} << QVector<int>{3, 2, 0, 1};
    // 0 1 4 3 2, then 3 1 4 0 2 and 3 4 1 0 2, and the pivot takes the place of row 1.
    QTest::newRow("five") << QVector<int>{1, 1, 1, 1, 1} << QVector<int>{3, 4, 2, 0, 1};
    // Median of three: 5 1 2 3 4 0 with pivot 3. Split: 1 3 | 2 0 4 5, whose median of three is
    // 5 0 4 2 with pivot 4; split: 5 2 | 4 | 0.
    QTest::newRow("two by two") << QVector<int>{1, 0, 1, 0, 1, 0} << QVector<int>{1, 3, 5, 2, 4, 0};
}

void TestNotchOperations::sortSettlesTheOrderOfEqualCenters()
{
    QFETCH(QVector<int>, centers);
    QFETCH(QVector<int>, order);
    NotchList list;
    for (int row = 0; row < centers.size(); ++row) {
        list.items.append(notchOf(row, row, 0.0));
        list.items.last().center = centers.at(row);
    }
    list.sort();
    QVector<int> sorted;
    for (const Notch& notch : qAsConst(list.items)) {
        sorted.append(notch.startIndex);
    }
    QCOMPARE(sorted, order);
}

QTEST_APPLESS_MAIN(TestNotchOperations)
#include "test_notch_operations.moc"
