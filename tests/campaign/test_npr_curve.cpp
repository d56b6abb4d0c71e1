// Peaks, ranges and limits of curves worked by hand.
#include "campaign/npr_curve.h"

#include <QtTest>

namespace {

using Value = std::optional<double>;

QVector<NprPoint> points(const QVector<double>& levels, const QVector<Value>& ratios, int notch = 1)
{
    QVector<NprPoint> all;
    for (int k = 0; k < levels.size(); ++k) {
        NprPoint point;
        point.level = levels[k];
        point.notch = notch;
        point.npr = ratios[k];
        all << point;
    }
    return all;
}

NprCurve curve(const QVector<double>& levels, const QVector<Value>& ratios,
               const QVector<double>& thresholds = {})
{
    return curvesOf(points(levels, ratios), thresholds).constFirst();
}

bool isClose(Value value, double expected)
{
    return value && std::abs(*value - expected) < 1e-9;
}

} // namespace

class TestNprCurve : public QObject
{
    Q_OBJECT

private slots:
    void thePeakIsTheVertexOfAParabola();
    void unevenStepsHaveTheSameVertex();
    void aPeakBesideAPointOfNearlyItsLevelIsItself_data();
    void aPeakBesideAPointOfNearlyItsLevelIsItself();
    void anEndOfTheCurveIsItsOwnPeak();
    void aPlateauHasItsFirstPointAsPeak();
    void aPointBesideAMissingOneIsItsOwnPeak();
    void aCurveWithoutARatioHasNoPeak();
    void rangesAreInterpolated();
    void aCurveThatNeverCrossesHasNoRange();
    void theRangeIsTheOneAroundThePeak();
    void fallingLevelsMakeTheSameCurve();
    void eachNotchHasItsCurve();
    void aLimitIsMissedBelowIt();
};

// 60 - 2 (x - 0.25)^2 at -1, 0, 1.
void TestNprCurve::thePeakIsTheVertexOfAParabola()
{
    const NprCurve found = curve({-2, -1, 0, 1}, {40.0, 56.875, 59.875, 58.875});
    QVERIFY(isClose(found.peakNpr, 60.0));
    QVERIFY(isClose(found.peakLevel, 0.25));
}

// 50 - (x - 3)^2 at 0, 2, 7.
void TestNprCurve::unevenStepsHaveTheSameVertex()
{
    const NprCurve found = curve({0, 2, 7}, {41.0, 49.0, 34.0});
    QVERIFY(isClose(found.peakNpr, 50.0));
    QVERIFY(isClose(found.peakLevel, 3.0));
}

// Two recordings at one level scatter; the parabola through them has its vertex at 307 dB.
void TestNprCurve::aPeakBesideAPointOfNearlyItsLevelIsItself_data()
{
    QTest::addColumn<double>("level");
    QTest::newRow("a little above") << -9.999;
    QTest::newRow("at its level") << -10.0;
    QTest::newRow("a little below") << -10.001;
}

void TestNprCurve::aPeakBesideAPointOfNearlyItsLevelIsItself()
{
    QFETCH(double, level);
    const NprCurve found = curve({-20, -10, level, 0}, {50.0, 60.0, 59.9, 40.0});
    QVERIFY(isClose(found.peakNpr, 60.0));
    QVERIFY(isClose(found.peakLevel, -10.0));
    const NprCurve alone = curve({level, level, level}, {50.0, 60.0, 59.9});
    QVERIFY(isClose(alone.peakNpr, 60.0));
}

void TestNprCurve::anEndOfTheCurveIsItsOwnPeak()
{
    QVERIFY(isClose(curve({0, 1, 2}, {10.0, 12.0, 15.0}).peakLevel, 2.0));
    QVERIFY(isClose(curve({0, 1, 2}, {15.0, 12.0, 10.0}).peakNpr, 15.0));
    QVERIFY(isClose(curve({7}, {3.0}).peakLevel, 7.0));
}

void TestNprCurve::aPlateauHasItsFirstPointAsPeak()
{
    const NprCurve found = curve({0, 1, 2}, {10.0, 10.0, 10.0});
    QVERIFY(isClose(found.peakLevel, 0.0));
    QVERIFY(isClose(found.peakNpr, 10.0));
}

void TestNprCurve::aPointBesideAMissingOneIsItsOwnPeak()
{
    const NprCurve found = curve({0, 1, 2}, {10.0, 12.0, Value()});
    QVERIFY(isClose(found.peakLevel, 1.0));
    QVERIFY(isClose(found.peakNpr, 12.0));
}

void TestNprCurve::aCurveWithoutARatioHasNoPeak()
{
    const NprCurve found = curve({0, 1}, {Value(), Value()}, {41.0});
    QVERIFY(!found.peakNpr && !found.peakLevel);
    QVERIFY(!found.ranges[0].from && !found.ranges[0].to && !found.ranges[0].range());
}

// Between 30 and 50 dB the threshold of 41 lies at 11/20 of the step.
void TestNprCurve::rangesAreInterpolated()
{
    const NprCurve found = curve({-20, -10, 0, 10}, {30.0, 50.0, 51.0, 31.0}, {41.0, 50.0});
    QCOMPARE(found.ranges.size(), 2);
    QVERIFY(isClose(found.ranges[0].from, -14.5));
    QVERIFY(isClose(found.ranges[0].to, 5.0));
    QVERIFY(isClose(found.ranges[0].range(), 19.5));
    QVERIFY(isClose(found.ranges[1].from, -10.0));
    QVERIFY(isClose(found.ranges[1].to, 0.5));
}

void TestNprCurve::aCurveThatNeverCrossesHasNoRange()
{
    const NprCurve found = curve({-20, -10, 0}, {45.0, 50.0, 30.0}, {41.0, 60.0});
    QVERIFY(!found.ranges[0].from);
    QVERIFY(isClose(found.ranges[0].to, -5.5));
    QVERIFY(!found.ranges[0].range());
    QVERIFY(!found.ranges[1].from && !found.ranges[1].to);
}

void TestNprCurve::theRangeIsTheOneAroundThePeak()
{
    const NprCurve found = curve({0, 1, 2, 3, 4, 5}, {45.0, 39.0, 43.0, 50.0, 40.0, 44.0}, {41.0});
    QVERIFY(isClose(found.ranges[0].from, 1.5));
    QVERIFY(isClose(found.ranges[0].to, 3.9));
}

void TestNprCurve::fallingLevelsMakeTheSameCurve()
{
    const NprCurve found = curve({10, 0, -10, -20}, {31.0, 51.0, 50.0, 30.0}, {41.0});
    QVERIFY(isClose(found.ranges[0].from, -14.5));
    QVERIFY(isClose(found.ranges[0].to, 5.0));
}

void TestNprCurve::eachNotchHasItsCurve()
{
    const QVector<NprPoint> both =
        points({0, 1}, {20.0, 21.0}, 2) + points({0, 1}, {30.0, 29.0}, 1);
    const QVector<NprCurve> curves = curvesOf(both, {});
    QCOMPARE(curves.size(), 2);
    QCOMPARE(curves[0].notch, 1);
    QVERIFY(isClose(curves[0].peakNpr, 30.0));
    QVERIFY(isClose(curves[1].peakNpr, 21.0));
    QVERIFY(curvesOf({}, {41.0}).isEmpty());
}

void TestNprCurve::aLimitIsMissedBelowIt()
{
    QVector<NprPoint> three = points({0, 1, 2}, {40.0, 41.0, Value()});
    QVERIFY(!hasMissedLimit(three));
    applyLimit(three, 41.0);
    QCOMPARE(*three[0].passed, false);
    QCOMPARE(*three[1].passed, true);
    QCOMPARE(*three[2].passed, false);
    QVERIFY(hasMissedLimit(three));
    applyLimit(three, 10.0);
    three.removeLast();
    QVERIFY(!hasMissedLimit(three));
}

QTEST_APPLESS_MAIN(TestNprCurve)
#include "test_npr_curve.moc"
