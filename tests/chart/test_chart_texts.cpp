// Scales and words of a picture, and colours that eyes and paper tell apart.
#include "chart/chart_scale.h"
#include "chart/chart_style.h"
#include "chart/chart_texts.h"
#include "kit/contrast.h"

#include <QtTest>

#include <cmath>

namespace {

const QChar minus(0x2212);

QString inPrint(QString text)
{
    return text.replace('-', minus);
}

ChartLine lineWith(const QVector<ChartRange>& ranges)
{
    ChartLine line;
    line.ranges = ranges;
    return line;
}

} // namespace

class TestChartTexts : public QObject
{
    Q_OBJECT

private slots:
    void ticksStandAtRoundNumbers_data();
    void ticksStandAtRoundNumbers();
    void theSpanWithinKeepsItsEnds();
    void thresholdsTellTheirRange();
    void severalLinesTellTheSpanOfTheirRanges();
    void whatIsNoNprIsCalledSo();
    void namesAreNoMarkup();
    void notchesAreNamedByTheirCentre();
    void namesKeepTheirHyphens();
    void linesAreToldApartWithoutColours();
};

void TestChartTexts::ticksStandAtRoundNumbers_data()
{
    QTest::addColumn<QVector<double>>("values");
    QTest::addColumn<QVector<double>>("expected"); // low, high, step, decimals
    QTest::newRow("converter") << QVector<double>{12.4, 62.7} << QVector<double>{10, 70, 10, 0};
    QTest::newRow("narrow") << QVector<double>{-0.3, 1.4} << QVector<double>{-0.4, 1.4, 0.2, 1};
    QTest::newRow("one value") << QVector<double>{41.0} << QVector<double>{40.4, 41.6, 0.2, 1};
    QTest::newRow("none") << QVector<double>{} << QVector<double>{0, 1, 0.2, 1};
}

void TestChartTexts::ticksStandAtRoundNumbers()
{
    QFETCH(QVector<double>, values);
    QFETCH(QVector<double>, expected);
    const ChartScale scale = scaleAround(values, 9);
    QVERIFY2(std::abs(scale.low - expected[0]) < 1e-9, qPrintable(QString::number(scale.low)));
    QVERIFY2(std::abs(scale.high - expected[1]) < 1e-9, qPrintable(QString::number(scale.high)));
    QVERIFY2(std::abs(scale.step - expected[2]) < 1e-9, qPrintable(QString::number(scale.step)));
    QCOMPARE(scale.decimals, int(expected[3]));
}

void TestChartTexts::theSpanWithinKeepsItsEnds()
{
    const ChartScale scale = scaleWithin({-45.0, 0.0, -3.0}, 12);
    QCOMPARE(scale.low, -45.0);
    QCOMPARE(scale.high, 0.0);
    QCOMPARE(scale.step, 5.0);
}

void TestChartTexts::thresholdsTellTheirRange()
{
    const auto text = [](const ChartRange& range) {
        return thresholdText(41.0, {lineWith({range})}, "dBm");
    };
    QCOMPARE(text({41.0, -33.0, -7.66}),
             inPrint("above 41 dB: 25.34 dB, from -33.00 to -7.66 dBm"));
    QCOMPARE(text({41.0, -33.0, {}}), inPrint("above 41 dB: from -33.00 dBm on"));
    QCOMPARE(text({41.0, {}, -7.66}), inPrint("above 41 dB: up to -7.66 dBm"));
    QCOMPARE(thresholdText(41.0, {lineWith({{41.0, -33.0, {}}})}, "dBFS"),
             inPrint("above 41 dB: from -33.00 dBFS on"));
    QCOMPARE(text({41.0, {}, {}}), QString("above 41 dB: not crossed"));
    QCOMPARE(text({30.0, -33.0, -7.66}), QString("above 41 dB: not crossed"));
    QCOMPARE(thresholdText(40.5, {}, "dBm"), QString("above 40.5 dB: not crossed"));
}

void TestChartTexts::severalLinesTellTheSpanOfTheirRanges()
{
    const ChartLine wide = lineWith({{41.0, -33.0, -7.0}});
    const ChartLine narrow = lineWith({{41.0, -32.0, -7.5}});
    const ChartLine open = lineWith({{41.0, -32.0, {}}});
    QCOMPARE(thresholdText(41.0, {wide, narrow}, "dBm"), QString("above 41 dB: 24.50 to 26.00 dB"));
    QCOMPARE(thresholdText(41.0, {wide, narrow, open}, "dBm"),
             inPrint("above 41 dB: 24.50 to 26.00 dB, or from -32.00 dBm on"));
    const ChartLine below = lineWith({{41.0, {}, {}}});
    QCOMPARE(thresholdText(41.0, {wide, narrow, below}, "dBm"),
             QString("above 41 dB: 24.50 to 26.00 dB, or not crossed"));
    QCOMPARE(thresholdText(41.0, {below, below}, "dBm"), QString("above 41 dB: not crossed"));
    const ChartLine early = lineWith({{41.0, {}, -9.5}});
    const ChartLine late = lineWith({{41.0, {}, -8.25}});
    QCOMPARE(thresholdText(41.0, {late, early}, "dBm"),
             inPrint("above 41 dB: ending at -9.50 to -8.25 dBm"));
    QCOMPARE(thresholdText(41.0, {late, below}, "dBFS"),
             inPrint("above 41 dB: ending at -8.25 dBFS, or not crossed"));
    QCOMPARE(thresholdText(41.0, {wide, wide}, "dBm"), QString("above 41 dB: 26.00 dB"));
}

void TestChartTexts::whatIsNoNprIsCalledSo()
{
    NprChartData data;
    data.device = "amplifier";
    QVERIFY(titleHtml(data).contains("NPR of amplifier"));
    QCOMPARE(ratioTitle(data), QString("NPR / dB"));
    data.isNoiseLike = false;
    QVERIFY(titleHtml(data).contains("Not an NPR (the signal isn't noise-like): amplifier"));
    QCOMPARE(ratioTitle(data), QString("Ratio / dB (not an NPR)"));
}

void TestChartTexts::namesAreNoMarkup()
{
    NprChartData data;
    data.device = "<i>A & B";
    QVERIFY(titleHtml(data).contains("&lt;i&gt;A &amp; B"));
}

// Ten lines differ in mark or colour, neighbours in both; on grey paper no two neighbours' colours
// need to differ, for their marks do.
void TestChartTexts::notchesAreNamedByTheirCentre()
{
    QCOMPARE(notchText(1, -3.2e7), inPrint("notch 1, -32 MHz"));
    QCOMPARE(notchText(12, 0.0), QString("notch 12, 0 MHz"));
    QCOMPARE(notchText(3, 1.23456e6), QString("notch 3, 1.235 MHz"));
    QCOMPARE(printed(-0.06, 1), inPrint("-0.1"));
}

// A result is named after its file, where a minus sign would be another name.
void TestChartTexts::namesKeepTheirHyphens()
{
    ChartLine line;
    line.name = "device-7, notch 1";
    QCOMPARE(legendText(line, "dBm"), QString("device-7, notch 1"));
    line.peak = QPointF(-10.0, 60.0);
    QCOMPARE(legendText(line, "dBm"),
             "device-7, notch 1: peak " + inPrint("60.00 dB at -10.00 dBm"));
}

void TestChartTexts::linesAreToldApartWithoutColours()
{
    for (int i = 0; i < 10; ++i) {
        for (int k = 0; k < i; ++k) {
            const bool sameColour = ChartStyle::lineColour(i) == ChartStyle::lineColour(k);
            const bool sameMark = ChartStyle::markShape(i, 10.0) == ChartStyle::markShape(k, 10.0);
            QVERIFY(!(sameColour && sameMark));
            QVERIFY(i - k > 4 || !sameMark);
        }
        const QColor colour = ChartStyle::lineColour(i);
        QVERIFY2(contrast(colour, Qt::white) >= 2.0, qPrintable(colour.name())); // on paper
    }
}

QTEST_APPLESS_MAIN(TestChartTexts)
#include "test_chart_texts.moc"
