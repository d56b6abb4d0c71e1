// Subtraction worked by hand.
#include "campaign/subtraction.h"

#include <QtTest>

namespace {

NprPoint point(double level, double center, std::optional<double> npr, double sigma = 0.1)
{
    NprPoint made;
    made.level = level;
    made.notch = 1;
    made.center = center;
    made.width = 1e6;
    made.npr = npr;
    made.sigma = sigma;
    return made;
}

bool isClose(std::optional<double> value, double expected)
{
    return value && std::abs(*value - expected) < 1e-6;
}

} // namespace

class TestSubtraction : public QObject
{
    Q_OBJECT

private slots:
    void powersAreSubtracted();
    void littleMarginIsMarked();
    void nothingLeftKeepsTheBound();
    void aBenchWithoutARatioIsNoMargin();
    void anotherOrderIsTheSame();
    void otherPlacesAreRefused_data();
    void otherPlacesAreRefused();
    void refusalsAreKnownBeforehand();
    void everyPlaceIsFoundAsByLookingAtAll();
    void aLongCurveIsSubtractedAtOnce();
};

// 40 dB and 50 dB: 1e-4 - 1e-5 = 9e-5, 40.4576 dB. Sigma sqrt((10 x 0.1)^2 + 0.1^2) / 9.
void TestSubtraction::powersAreSubtracted()
{
    QVector<NprPoint> points{point(-10, 2e6, 40.0)};
    QVERIFY(subtractBench({point(-10, 2e6, 50.0)}, points).isEmpty());
    QVERIFY(isClose(points[0].npr, 40.45757491));
    QVERIFY(isClose(points[0].sigma, std::sqrt(1.01) / 9.0));
    QVERIFY(points[0].marks.isEmpty());
}

// 43 - 40.1 dB is 2.9 dB; 43.1 - 40 dB is enough.
void TestSubtraction::littleMarginIsMarked()
{
    QVector<NprPoint> points{point(-10, 2e6, 40.1), point(-5, 2e6, 40.0)};
    QVERIFY(subtractBench({point(-10, 2e6, 43.0), point(-5, 2e6, 43.1)}, points).isEmpty());
    QCOMPARE(points[0].marks, QStringList{"margin"});
    QVERIFY(points[1].marks.isEmpty());
    QVERIFY(isClose(points[1].npr, -10.0 * std::log10(1e-4 - std::pow(10.0, -4.31))));
}

void TestSubtraction::nothingLeftKeepsTheBound()
{
    QVector<NprPoint> points{point(-10, 2e6, 50.0)};
    QVERIFY(subtractBench({point(-10, 2e6, 49.0)}, points).isEmpty());
    QVERIFY(isClose(points[0].npr, 50.0));
    QCOMPARE(points[0].marks, QStringList{"margin"});
}

void TestSubtraction::aBenchWithoutARatioIsNoMargin()
{
    QVector<NprPoint> points{point(-10, 2e6, 20.0), point(-5, 2e6, {})};
    QVERIFY(subtractBench({point(-10, 2e6, {}), point(-5, 2e6, 30.0)}, points).isEmpty());
    QVERIFY(isClose(points[0].npr, 20.0));
    QCOMPARE(points[0].marks, QStringList{"margin"});
    QVERIFY(!points[1].npr);
}

// Notches are matched by centre and width, for numbers say nothing between two configurations.
void TestSubtraction::anotherOrderIsTheSame()
{
    QVector<NprPoint> points{point(-10, 2e6, 40.0), point(-10, 7e6, 30.0)};
    points[1].notch = 2;
    QVERIFY(subtractBench(
                {point(-5, 2e6, 10.0), point(-10, 7e6 + 0.4, 40.0), point(-10, 2e6, 50.0)}, points)
                .isEmpty());
    QVERIFY(isClose(points[0].npr, 40.45757491));
    QVERIFY(isClose(points[1].npr, 30.45757491));
}

void TestSubtraction::otherPlacesAreRefused_data()
{
    QTest::addColumn<double>("level");
    QTest::addColumn<double>("center");
    QTest::addColumn<double>("width");
    QTest::newRow("level") << -10.5 << 2e6 << 1e6;
    QTest::newRow("notch") << -10.0 << 3e6 << 1e6;
    QTest::newRow("bandwidth") << -10.0 << 2e6 << 2e6;
}

void TestSubtraction::otherPlacesAreRefused()
{
    QFETCH(double, level);
    QFETCH(double, center);
    QFETCH(double, width);
    NprPoint other = point(level, center, 50.0);
    other.width = width;
    QVector<NprPoint> points{point(-10, 2e6, 40.0)};
    QVERIFY(subtractBench({other}, points).contains("-10 dBm"));
    QVERIFY(isClose(points[0].npr, 40.0));
}

void TestSubtraction::refusalsAreKnownBeforehand()
{
    const auto resultOf = [](const QString& rate, const QString& share) {
        NprResult made;
        made.config["NPR"] = {{"SRate", rate}, {"NBW/SRate", share}};
        made.points = {point(-10, 2e6, 50.0), point(-5, 2e6, 50.0)};
        return made;
    };
    const NprResult wanted = resultOf("1e+08", "0.8");
    CampaignPlan plan;
    plan.levels = {-5.0, -10.0};
    plan.notches = {NumberedNotch{1, Notch(), 10}};
    plan.notches[0].notch.center = 2e6;
    plan.notches[0].notch.width = 1e6;
    QCOMPARE(objectionToSubtracting(wanted, wanted, plan), QString());
    QCOMPARE(objectionToSubtracting(resultOf("1.6e+08", "0.5"), wanted, plan), QString());
    QCOMPARE(objectionToSubtracting(resultOf("1e+08", "0.5"), wanted, plan),
             QString("its noise is 5e+07 Hz wide and not 8e+07 Hz"));
    QVERIFY(!objectionToSubtracting(NprResult(), wanted, plan).isEmpty());
    NprResult recorded = wanted;
    recorded.levelUnit = LevelUnit::Dbfs;
    QCOMPARE(objectionToSubtracting(recorded, wanted, plan),
             QString("its levels are in dBFS and not in dBm"));
    plan.levels << 0.0;
    QVERIFY(objectionToSubtracting(wanted, wanted, plan).contains("no point at 0 dBm"));
    plan.levels = {-5.0};
    plan.notches[0].notch.width = 2e6;
    QVERIFY(objectionToSubtracting(wanted, wanted, plan).contains("2e+06 Hz wide"));
}

// Levels to a millionth of a dB, centres and widths to a millionth of the width: by offsets around
// these bounds, in cells of levels above and below 0.
void TestSubtraction::everyPlaceIsFoundAsByLookingAtAll()
{
    QVector<NprPoint> bench;
    for (const double level : {-20.0, -1e-6, 0.0, 3e-6, 10.1}) {
        for (const double center : {-2e6, 0.0, 1e6, 1e6 + 3.0}) {
            bench << point(level, center, 50.0);
        }
    }
    const BenchPoints points(bench);
    for (const NprPoint& one : bench) {
        for (const double levels : {-1.1e-6, -0.9e-6, 0.0, 0.9e-6, 1.1e-6}) {
            for (const double hertz : {-1.1, -0.9, 0.0, 0.9, 1.1}) {
                NprPoint place = point(one.level + levels, one.center + hertz, {});
                place.width += hertz / 2.0;
                const bool isThere =
                    std::any_of(bench.begin(), bench.end(), [&place](const NprPoint& other) {
                        return std::abs(other.level - place.level) < 1e-6 &&
                               std::abs(other.center - place.center) <= 1.0 &&
                               std::abs(other.width - place.width) <= 1.0;
                    });
                const NprPoint* found = points.at(place);
                QCOMPARE(found != nullptr, isThere);
                QVERIFY(found == nullptr || std::abs(found->level - place.level) < 1e-6);
                QVERIFY(found == nullptr || std::abs(found->center - place.center) <= 1.0);
            }
        }
    }
}

// The window of curves does it at every news. Each point against each takes many seconds.
void TestSubtraction::aLongCurveIsSubtractedAtOnce()
{
    QVector<NprPoint> bench;
    QVector<NprPoint> points;
    for (int step = 0; step < 10000; ++step) {
        for (int notch = 0; notch < 10; ++notch) {
            bench << point(0.01 * step, 1e7 * notch, 50.0);
            points << point(0.01 * step, 1e7 * notch, 40.0);
        }
    }
    const BenchPoints without(bench);
    QElapsedTimer clock;
    clock.start();
    QCOMPARE(subtractBench(without, points), QString());
    QVERIFY(clock.elapsed() < 2000);
    QVERIFY(isClose(points.constLast().npr, 40.45757491));
}

QTEST_APPLESS_MAIN(TestSubtraction)
#include "test_subtraction.moc"
