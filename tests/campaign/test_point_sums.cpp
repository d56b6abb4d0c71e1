// Averages and their sigma worked by hand.
#include "campaign/point_sums.h"

#include <QtTest>

#include <cmath>

namespace {

constexpr double perNeper = 4.342944819; // 10 / ln 10

NumberedNotch notch(int lines)
{
    Notch row;
    row.center = -3e6;
    row.width = 2e6;
    return {4, row, lines};
}

NprPoint pointOf(const QVector<BenchReading>& readings, int lines, bool ownStimuli)
{
    PointSums sums;
    for (int k = 0; k < readings.size(); ++k) {
        sums.add(readings[k], ownStimuli || k == 0);
    }
    return sums.point(-12.5, notch(lines));
}

BenchReading plain(double reference, double notch)
{
    return {reference, notch, false, {}};
}

BenchReading known(double reference, double notch, NotchContent content)
{
    return {reference, notch, false, content};
}

bool isClose(std::optional<double> value, double expected)
{
    return value && std::abs(*value - expected) < 1e-6;
}

} // namespace

class TestPointSums : public QObject
{
    Q_OBJECT

private slots:
    void aReadingIsTurnedBack();
    void powersAreAveragedApart();
    void aNotchAboveItsSignalHasNoRatio();
    void linesDecideSigma();
    void repeatedStimuliLowerNothing();
    void readingsThatScatterMoreSaySo();
    void whatIsNoDistortionDoesNotScatter();
    void fewPeaksAreMarked();
    void overloadIsMarked();
};

// 11 mW beside 1 mW: 10 mW of signal, not 11.
void TestPointSums::aReadingIsTurnedBack()
{
    const NprPoint point = pointOf({plain(11.0, 1.0)}, 100, true);
    QVERIFY(isClose(point.npr, 10.0));
    QVERIFY(isClose(point.evmPercent(), 31.6227766));
    QVERIFY(isClose(point.power, 10.41392685));
    QCOMPARE(point.notch, 4);
    QCOMPARE(point.level, -12.5);
    QCOMPARE(point.center, -3e6);
    QCOMPARE(point.width, 2e6);
    QVERIFY(!point.passed);
}

// Mean powers 4 and 0.25: (4 - 0.25) / 0.25 = 15. The mean of the single ratios would be 19 or so.
void TestPointSums::powersAreAveragedApart()
{
    const NprPoint point = pointOf({plain(3.0, 0.1), plain(5.0, 0.4)}, 100, true);
    QVERIFY(isClose(point.npr, 10.0 * std::log10(15.0)));
}

void TestPointSums::aNotchAboveItsSignalHasNoRatio()
{
    for (const BenchReading& reading : {plain(1.0, 1.5), plain(1.0, 1.0), plain(0.0, 0.0)}) {
        const NprPoint point = pointOf({reading}, 100, true);
        QVERIFY(!point.npr && !point.sigma && !point.evmPercent());
        QCOMPARE(point.marks, QStringList{"below-zero"});
    }
}

// 100 lines and 4 stimuli: a twentieth. The reading of 101 mW is turned back by 1 %.
void TestPointSums::linesDecideSigma()
{
    const QVector<BenchReading> four(4, plain(101.0, 1.0));
    QVERIFY(isClose(pointOf(four, 100, true).sigma, perNeper / 20.0 * 1.01));
    QVERIFY(pointOf(four, 100, true).marks.isEmpty());
}

void TestPointSums::repeatedStimuliLowerNothing()
{
    const QVector<BenchReading> four(4, plain(101.0, 1.0));
    QVERIFY(isClose(pointOf(four, 100, false).sigma, perNeper / 10.0 * 1.01));
}

// 0.5, 1.5, 0.5, 1.5: a variance of 1/3, of the mean of four 1/12.
void TestPointSums::readingsThatScatterMoreSaySo()
{
    const QVector<BenchReading> four{plain(1e6, 0.5), plain(1e6, 1.5), plain(1e6, 0.5),
                                     plain(1e6, 1.5)};
    const double sigma = perNeper * std::sqrt(1.0 / 12.0);
    QVERIFY(std::abs(*pointOf(four, 1000000, true).sigma - sigma) < 1e-4);
    // Two say too little.
    QVERIFY(*pointOf(four.mid(0, 2), 1000000, true).sigma < 0.01);
}

// Half of the notch's power is noise, which doesn't scatter: half the sigma. Where a quarter each
// is stimulus and distortion: (1/16 + 2/16) / lines.
void TestPointSums::whatIsNoDistortionDoesNotScatter()
{
    const double turned = 1.0 / (1.0 - 1e-9);
    NprPoint point = pointOf({known(1e9, 1.0, {0.0, 0.5, {1.0, 0.0}})}, 100, true);
    QVERIFY(isClose(point.sigma, turned * perNeper * 0.05));
    point = pointOf({known(1e9, 1.0, {0.25, 0.5, {1.0, 0.0}})}, 100, true);
    QVERIFY(isClose(point.sigma, turned * perNeper * std::sqrt(3.0 / 1600.0)));
    point = pointOf({known(1e9, 1.0, {1.0, 0.0, {0.0, 0.0}})}, 100, true);
    QVERIFY(isClose(point.sigma, 0.0));
}

// A concentration of 0.04 against 1/100: sqrt(0.05). Over four stimuli both fall to a quarter.
void TestPointSums::fewPeaksAreMarked()
{
    const BenchReading peaky = known(1e9, 1.0, {0.0, 0.0, {1.0, 0.04}});
    NprPoint point = pointOf({peaky}, 100, true);
    QCOMPARE(point.marks, QStringList{"few-peaks"});
    QVERIFY(isClose(point.sigma, perNeper * std::sqrt(0.05)));
    point = pointOf(QVector<BenchReading>(4, peaky), 100, true);
    QCOMPARE(point.marks, QStringList{"few-peaks"});
    QVERIFY(isClose(point.sigma, perNeper * std::sqrt(0.0125)));
    point = pointOf({known(1e9, 1.0, {0.0, 0.0, {1.0, 0.009}})}, 100, true);
    QVERIFY(point.marks.isEmpty());
}

void TestPointSums::overloadIsMarked()
{
    BenchReading reading = plain(101.0, 1.0);
    reading.isOverloaded = true;
    QCOMPARE(pointOf({plain(101.0, 1.0), reading, reading}, 10, true).marks,
             QStringList{"overload"});
}

QTEST_APPLESS_MAIN(TestPointSums)
#include "test_point_sums.moc"
