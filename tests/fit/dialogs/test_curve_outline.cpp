// The drawn points of a long curve: few, in order, and with all extremes.
#include "fit/dialogs/curve_outline.h"

#include <QtTest>

#include <cmath>

class TestCurveOutline : public QObject
{
    Q_OBJECT

private slots:
    void aShortCurveIsItsOwnOutline();
    void eachGroupKeepsItsExtremesInOrder();
    void outlineIsNeverLongerThanAsked_data();
    void outlineIsNeverLongerThanAsked();
    void aSingleSpikeAmongMillionsIsKept();
};

void TestCurveOutline::aShortCurveIsItsOwnOutline()
{
    const QVector<QPointF> points = {{3, 1}, {1, 5}, {2, 2}, {0, 0}};
    QCOMPARE(curveOutline(points, 4), points);
    QVERIFY(curveOutline({}, 4).isEmpty());
}

void TestCurveOutline::eachGroupKeepsItsExtremesInOrder()
{
    // Two groups of six; of each the leftmost, rightmost, lowest and highest point.
    const QVector<QPointF> points = {{0, 5}, {1, 9}, {2, 5}, {3, 1},  {4, 5},   {5, 6},
                                     {6, 0}, {7, 1}, {8, 3}, {9, -2}, {10, 20}, {11, 4}};
    const QVector<QPointF> expected = {{0, 5}, {1, 9},  {3, 1},   {5, 6},
                                       {6, 0}, {9, -2}, {10, 20}, {11, 4}};
    QCOMPARE(curveOutline(points, 8), expected);
}

void TestCurveOutline::outlineIsNeverLongerThanAsked_data()
{
    QTest::addColumn<int>("count");
    for (const int count : {9, 15, 16, 17, 100, 999}) {
        QTest::addRow("%d points", count) << count;
    }
}

void TestCurveOutline::outlineIsNeverLongerThanAsked()
{
    QFETCH(int, count);
    QVector<QPointF> points;
    for (int i = 0; i < count; ++i) {
        points.append({double(i), std::sin(i * 0.7)});
    }
    const QVector<QPointF> outline = curveOutline(points, 8);
    QVERIFY(outline.size() <= 8);
    QCOMPARE(outline.first().x(), 0.0);
    QCOMPARE(outline.last().x(), count - 1.0);
}

void TestCurveOutline::aSingleSpikeAmongMillionsIsKept()
{
    QVector<QPointF> points;
    for (int i = 0; i < 4194304; ++i) {
        points.append({double(i), i == 3000001 ? -80.0 : 0.0});
    }
    QVERIFY(curveOutline(points, 32768).contains({3000001.0, -80.0}));
}

QTEST_APPLESS_MAIN(TestCurveOutline)
#include "test_curve_outline.moc"
