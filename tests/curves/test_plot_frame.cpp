#include "curves/plot_frame.h"

#include <QtTest>

class TestPlotFrame : public QObject
{
    Q_OBJECT

private slots:
    void valuesRiseFromTheBottom();
    void aRectangleBecomesItsSpanWithinTheArea();
    void zoomKeepsTheValueUnderThePointer();
    void movingKeepsTheWidth();
    void axesStayWhileLinesFillHalfOfThem();
    void spansTooNarrowForNumbersAreUseless();
    void ticksAreRoundNumbersHoweverNarrow_data();
    void ticksAreRoundNumbersHoweverNarrow();
};

namespace {

// 10 pixels a unit across, 5 up.
const PlotFrame frame{{100.0, 50.0, 400.0, 200.0}, {-40.0, 0.0, 20.0, 60.0}};

} // namespace

void TestPlotFrame::valuesRiseFromTheBottom()
{
    QCOMPARE(frame.positionOf({-40.0, 20.0}), QPointF(100.0, 250.0));
    QCOMPARE(frame.positionOf({0.0, 60.0}), QPointF(500.0, 50.0));
    QCOMPARE(frame.valueAt({300.0, 100.0}), QPointF(-20.0, 50.0));
}

void TestPlotFrame::aRectangleBecomesItsSpanWithinTheArea()
{
    const PlotSpan span = frame.spanOf({300.0, 100.0, 1000.0, 50.0});
    QCOMPARE(span.xLow, -20.0);
    QCOMPARE(span.xHigh, 0.0); // the rectangle goes on, the area doesn't
    QCOMPARE(span.yLow, 40.0);
    QCOMPARE(span.yHigh, 50.0);
}

void TestPlotFrame::zoomKeepsTheValueUnderThePointer()
{
    const PlotSpan span = frame.zoomed(0.5, {200.0, 100.0}); // at -30 and 50
    QCOMPARE(span.xLow, -35.0);
    QCOMPARE(span.xHigh, -15.0);
    QCOMPARE(span.yLow, 35.0);
    QCOMPARE(span.yHigh, 55.0);
}

void TestPlotFrame::movingKeepsTheWidth()
{
    const PlotSpan span = frame.moved(0.1, -0.5);
    QCOMPARE(span.xLow, -36.0);
    QCOMPARE(span.xHigh, 4.0);
    QCOMPARE(span.yLow, 0.0);
    QCOMPARE(span.yHigh, 40.0);
}

void TestPlotFrame::spansTooNarrowForNumbersAreUseless()
{
    QVERIFY(isUseful({-40.0, 0.0, 20.0, 60.0}));
    QVERIFY(isUseful({-20.001, -20.0, 50.0, 50.001}));
    QVERIFY(!isUseful({-20.00001, -20.0, 50.0, 50.001}));
    QVERIFY(!isUseful({0.0, -40.0, 20.0, 60.0}));
}

void TestPlotFrame::axesStayWhileLinesFillHalfOfThem()
{
    const PlotSpan present{-40.0, 0.0, 20.0, 60.0};
    QVERIFY(steadySpan(present, {-35.0, -10.0, 20.0, 40.0}) == present);
    for (const PlotSpan& wanted :
         {PlotSpan{-41.0, 0.0, 20.0, 60.0}, PlotSpan{-40.0, 0.0, 20.0, 60.5},      // beyond them
          PlotSpan{-40.0, -21.0, 20.0, 60.0}, PlotSpan{-40.0, 0.0, 41.0, 60.0}}) { // too little
        QVERIFY(steadySpan(present, wanted) == wanted);
    }
}

void TestPlotFrame::ticksAreRoundNumbersHoweverNarrow_data()
{
    QTest::addColumn<double>("low");
    QTest::addColumn<double>("high");
    QTest::addColumn<double>("step");
    QTest::addColumn<int>("decimals");
    QTest::newRow("forty") << -40.0 << 0.0 << 5.0 << 0;
    QTest::newRow("four") << -4.0 << 0.0 << 0.5 << 1;
    QTest::newRow("half") << 50.0 << 50.5 << 0.05 << 2;
    QTest::newRow("a hundredth") << 50.0 << 50.01 << 0.001 << 3;
}

void TestPlotFrame::ticksAreRoundNumbersHoweverNarrow()
{
    QFETCH(double, low);
    QFETCH(double, high);
    QFETCH(double, step);
    QFETCH(int, decimals);
    const AxisTicks ticks = ticksOf(low, high, 10);
    QVERIFY2(std::abs(ticks.step - step) < 1e-9 * step, qPrintable(QString::number(ticks.step)));
    QCOMPARE(ticks.decimals, decimals);
}

QTEST_APPLESS_MAIN(TestPlotFrame)
#include "test_plot_frame.moc"
