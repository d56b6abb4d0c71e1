// The chart: what it keeps of the curves, what it draws, and that nothing makes it stumble.
#include "fit/dialogs/trace_widget.h"

#include <QChart>
#include <QChartView>
#include <QLegendMarker>
#include <QValueAxis>
#include <QtTest>

#include <limits>
#include <memory>

QT_CHARTS_USE_NAMESPACE

class TestTraceWidget : public QObject
{
    Q_OBJECT

private slots:
    void init();
    void cleanup() { widget.reset(); }
    void legendStandsAtTheBottomAndLinesAreSmooth();
    void theViewFillsTheWidget();
    void aCurveKeepsItsPointsAndItsName();
    void axesFitAllCurves();
    void aLongCurveIsKeptWholeAndDrawnByItsOutline();
    void pointsThatAreNotFiniteAreLeftOut();
    void hugeValuesAreKeptAndTheChartGoesOn();

private:
    QChart* chart() const { return widget->findChild<QChartView*>()->chart(); }
    QStringList legendTexts() const;
    double limit(Qt::Orientation axis, double (QValueAxis::*end)() const) const;

    std::unique_ptr<TraceWidget> widget;
};

void TestTraceWidget::init()
{
    widget = std::make_unique<TraceWidget>();
    widget->resize(700, 500);
    widget->show();
    QVERIFY(QTest::qWaitForWindowExposed(widget.get()));
}

QStringList TestTraceWidget::legendTexts() const
{
    QStringList texts;
    for (const QLegendMarker* marker : chart()->legend()->markers()) {
        texts.append(marker->label());
    }
    return texts;
}

double TestTraceWidget::limit(Qt::Orientation orientation, double (QValueAxis::*end)() const) const
{
    const auto* axis = qobject_cast<QValueAxis*>(chart()->axes(orientation).value(0));
    return axis == nullptr ? std::numeric_limits<double>::quiet_NaN() : (axis->*end)();
}

void TestTraceWidget::legendStandsAtTheBottomAndLinesAreSmooth()
{
    QVERIFY(chart()->legend()->isVisible());
    QCOMPARE(chart()->legend()->alignment(), Qt::AlignBottom);
    QVERIFY(widget->findChild<QChartView*>()->renderHints().testFlag(QPainter::Antialiasing));
}

void TestTraceWidget::theViewFillsTheWidget()
{
    QCOMPARE(widget->findChild<QChartView*>()->geometry(), widget->rect());
}

void TestTraceWidget::aCurveKeepsItsPointsAndItsName()
{
    // y may be longer: a direct correction has more lines than the trace has points.
    widget->addTrace({-1, 0, 2}, {10, 20, 30, 0, 0}, "Direct");
    QCOMPARE(widget->series().size(), 1);
    QCOMPARE(widget->series().first()->pointsVector(),
             QVector<QPointF>({{-1, 10}, {0, 20}, {2, 30}}));
    QCOMPARE(chart()->series(), QList<QAbstractSeries*>{widget->series().first()});
    QCOMPARE(legendTexts(), QStringList{"Direct"});
}

void TestTraceWidget::axesFitAllCurves()
{
    widget->addTrace({-1, 2}, {10, 30}, "Direct");
    QCOMPARE(limit(Qt::Horizontal, &QValueAxis::min), -1.0);
    QCOMPARE(limit(Qt::Vertical, &QValueAxis::max), 30.0);
    widget->addTrace({-5, 1}, {40, 20}, "Polynomial");
    QCOMPARE(limit(Qt::Horizontal, &QValueAxis::min), -5.0);
    QCOMPARE(limit(Qt::Horizontal, &QValueAxis::max), 2.0);
    QCOMPARE(limit(Qt::Vertical, &QValueAxis::min), 10.0);
    QCOMPARE(limit(Qt::Vertical, &QValueAxis::max), 40.0);
    QCOMPARE(chart()->axes().size(), 2);
    QCOMPARE(legendTexts(), QStringList({"Direct", "Polynomial"}));
}

void TestTraceWidget::aLongCurveIsKeptWholeAndDrawnByItsOutline()
{
    const int count = TraceWidget::maxDrawnPoints + 1;
    QVector<double> x(count);
    QVector<double> y(count, 1.0);
    for (int i = 0; i < count; ++i) {
        x[i] = i;
    }
    y[12345] = 7.0;
    widget->addTrace(x, y, "Polynomial");
    QCOMPARE(widget->series().first()->count(), count);
    QCOMPARE(chart()->series().size(), 1);
    const auto* drawn = qobject_cast<QLineSeries*>(chart()->series().first());
    QVERIFY(drawn->count() < 40000);
    QVERIFY(drawn->pointsVector().contains({12345.0, 7.0}));
    QCOMPARE(legendTexts(), QStringList{"Polynomial"});
    QCOMPARE(limit(Qt::Horizontal, &QValueAxis::max), count - 1.0);
    QCOMPARE(limit(Qt::Vertical, &QValueAxis::max), 7.0);
}

void TestTraceWidget::pointsThatAreNotFiniteAreLeftOut()
{
    const double nan = std::numeric_limits<double>::quiet_NaN();
    const double infinity = std::numeric_limits<double>::infinity();
    widget->addTrace({1, 2, 3, infinity}, {4, nan, -infinity, 5}, "Direct");
    QCOMPARE(widget->series().first()->pointsVector(), QVector<QPointF>({{1, 4}}));
    widget->addTrace({1, 2}, {nan, nan}, "Polynomial");
    QCOMPARE(widget->series().size(), 2);
    QCOMPARE(widget->series().last()->count(), 0);
    widget->grab();
}

// Their span is beyond any number, so how they are drawn is nobody's to say.
void TestTraceWidget::hugeValuesAreKeptAndTheChartGoesOn()
{
    widget->addTrace({-1e308, 0, 1e308}, {1e308, 0, -1e308}, "Direct");
    widget->addTrace({0, 1e-300}, {0, 1e-300}, "Polynomial");
    widget->resize(300, 200);
    QCOMPARE(widget->grab().size(), QSize(300, 200));
    QCOMPARE(widget->series().at(0)->pointsVector(),
             QVector<QPointF>({{-1e308, 1e308}, {0, 0}, {1e308, -1e308}}));
    QCOMPARE(widget->series().at(1)->pointsVector(), QVector<QPointF>({{0, 0}, {1e-300, 1e-300}}));
    QCOMPARE(legendTexts(), QStringList({"Direct", "Polynomial"}));
    QCOMPARE(limit(Qt::Horizontal, &QValueAxis::min), -1e308);
    QCOMPARE(limit(Qt::Horizontal, &QValueAxis::max), 1e308);
    QCOMPARE(limit(Qt::Vertical, &QValueAxis::min), -1e308);
    QCOMPARE(limit(Qt::Vertical, &QValueAxis::max), 1e308);
}

QTEST_MAIN(TestTraceWidget)
#include "test_trace_widget.moc"
