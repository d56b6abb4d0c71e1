// The lines that a chart shows of results, and what is read from them.
#include "curves/made_up_result.h"
#include "curves/plot_content.h"
#include "curves/plot_reading.h"

#include <QtTest>

namespace {

ShownResult shownAs(int id, const NprResult& result)
{
    ShownResult shown;
    shown.id = id;
    shown.name = QStringLiteral("result %1").arg(id);
    shown.result = result;
    return shown;
}

const PlotFrame frame{{0.0, 0.0, 400.0, 400.0}, {-40.0, 0.0, 30.0, 70.0}}; // 10 pixels a dB

} // namespace

class TestPlotContent : public QObject
{
    Q_OBJECT

private slots:
    void oneResultHasAColourANotch();
    void severalResultsHaveAColourEach();
    void twentyResultsAreToldApartOnWhite();
    void hiddenNotchesAndResultsStayInTheListAndOutOfSight();
    void theSpanHoldsWhatIsShown();
    void aRatioThatNoBenchReadsDoesNotWidenTheAxis();
    void aRatioThatNoBenchReadsIsHeldWhenThereAreNoOthers();
    void aPointBeyondTheAxisIsReadAtTheEdge();
    void aPointWithoutARatioPartsTheLine();
    void overFrequencyThereIsALineALevel();
    void overFrequencyAHiddenNotchIsPassedOver();
    void thePointUnderThePointerTellsItself();
    void noLineIsNearAnEmptyPlace();
    void theArrowsGoAlongAndAcross();
    void thePlaceStaysWhenItsLineGetsMorePoints();
};

void TestPlotContent::oneResultHasAColourANotch()
{
    const PlotContent content = contentOverLevel({shownAs(1, roofs(3))}, {});
    QCOMPARE(content.lines.size(), 3);
    QVERIFY(content.lines.at(0).colour != content.lines.at(1).colour);
    QCOMPARE(content.lines.at(0).points.size(), 41);
    QCOMPARE(content.thresholds, QVector<double>{41.0});
}

void TestPlotContent::severalResultsHaveAColourEach()
{
    const PlotContent content =
        contentOverLevel({shownAs(1, roofs(2)), shownAs(2, roofs(2))}, {{2}, {}});
    QCOMPARE(content.lines.size(), 4);
    QCOMPARE(content.lines.at(0).colour, content.lines.at(1).colour);
    QVERIFY(content.lines.at(1).colour != content.lines.at(2).colour);
    QVERIFY(!content.lines.at(1).isChosen);
    QVERIFY(content.lines.at(2).isChosen);
}

void TestPlotContent::twentyResultsAreToldApartOnWhite()
{
    const auto distance = [](const QColor& a, const QColor& b) {
        return std::abs(a.red() - b.red()) + std::abs(a.green() - b.green()) +
               std::abs(a.blue() - b.blue());
    };
    for (int k = 0; k < 20; ++k) {
        QVERIFY(distance(resultColour(k), Qt::white) > 100);
        for (int other = 0; other < k; ++other) {
            QVERIFY2(distance(resultColour(k), resultColour(other)) >= 40,
                     qPrintable(QString("%1 and %2").arg(other).arg(k)));
        }
    }
}

void TestPlotContent::hiddenNotchesAndResultsStayInTheListAndOutOfSight()
{
    ShownResult hidden = shownAs(2, roofs(1));
    hidden.isShown = false;
    const PlotContent content = contentOverLevel({shownAs(1, roofs(2)), hidden}, {{}, {2}});
    QCOMPARE(content.lines.size(), 3);
    QVERIFY(content.lines.at(0).isShown);
    QVERIFY(!content.lines.at(1).isShown);
    QVERIFY(!content.lines.at(2).isShown);
    QVERIFY(showsAny(content));
    QVERIFY(!showsAny(contentOverLevel({hidden}, {})));
}

void TestPlotContent::theSpanHoldsWhatIsShown()
{
    const PlotContent content = contentOverLevel({shownAs(1, roofs(1))}, {});
    QCOMPARE(content.whole.xLow, -40.0);
    QCOMPARE(content.whole.xHigh, 0.0);
    QVERIFY(content.whole.yLow <= 31.0 && content.whole.yLow > 20.0);
    QVERIFY(content.whole.yHigh >= 51.0 && content.whole.yHigh < 62.0);
}

void TestPlotContent::aRatioThatNoBenchReadsDoesNotWidenTheAxis()
{
    const PlotSpan usual = contentOverLevel({shownAs(1, roofs(1))}, {}).whole;
    for (const double ratio : {-157.0, -20.5, 150.5, 180.0}) {
        NprResult result = roofs(1);
        result.points[30].npr = ratio;
        const PlotContent content = contentOverLevel({shownAs(1, result)}, {});
        QCOMPARE(content.whole.yLow, usual.yLow);
        QCOMPARE(content.whole.yHigh, usual.yHigh);
        QCOMPARE(content.lines.constFirst().points.size(), 41);
    }
    NprResult deep = roofs(1);
    deep.points[30].npr = -19.0;
    QVERIFY(contentOverLevel({shownAs(1, deep)}, {}).whole.yLow <= -19.0);
}

void TestPlotContent::aRatioThatNoBenchReadsIsHeldWhenThereAreNoOthers()
{
    NprResult result = roofs(1, -20.0, -18.0);
    for (NprPoint& point : result.points) {
        point.npr = 200.0 + point.level;
    }
    result.curves.clear();
    const PlotSpan span = contentOverLevel({shownAs(1, result)}, {}).whole;
    QVERIFY(span.yLow <= 180.0 && span.yLow > 170.0);
    QVERIFY(span.yHigh >= 182.0 && span.yHigh < 190.0);
}

void TestPlotContent::aPointBeyondTheAxisIsReadAtTheEdge()
{
    NprResult result = roofs(1);
    result.points[30].npr = -157.0; // -10 dBm, 300 pixels from the left
    const PlotContent content = contentOverLevel({shownAs(1, result)}, {});
    QCOMPARE(seenPosition({-10.0, -157.0}, frame), QPointF(300.0, 400.0));
    QCOMPARE(seenPosition({-10.0, 200.0}, frame), QPointF(300.0, 0.0));
    QCOMPARE(seenPosition({-10.0, 20.0}, frame), QPointF(300.0, 500.0)); // below, and credible
    const PlotPlace place = placeNear({302.0, 395.0}, 10.0, content, frame);
    QCOMPARE(place.point, 30);
    QVERIFY(readingTexts(place, content)
                .contains("NPR " + QString(QChar(0x2212)) + "157.00 dB, sigma 0.25 dB"));
}

void TestPlotContent::aPointWithoutARatioPartsTheLine()
{
    NprResult result = roofs(1);
    result.points[10].npr.reset();
    const PlotContent content = contentOverLevel({shownAs(1, result)}, {});
    QCOMPARE(content.lines.size(), 2);
    QCOMPARE(content.lines.at(0).points.size(), 10);
    QCOMPARE(content.lines.at(1).points.size(), 30);
}

void TestPlotContent::overFrequencyThereIsALineALevel()
{
    const PlotContent content = contentOverFrequency({shownAs(1, roofs(3, -22.0, -20.0))}, {});
    QCOMPARE(content.lines.size(), 3);
    const PlotLine& loudest = content.lines.constLast();
    QCOMPARE(loudest.points.size(), 3);
    QCOMPARE(loudest.points.at(0).value, QPointF(-10.0, 51.0)); // MHz
    QCOMPARE(loudest.points.at(2).value, QPointF(10.0, 53.0));
    QVERIFY(loudest.detail.contains("20.00 dBm"));
    QVERIFY(content.xTitle.contains("blue: lowest level, red: highest"));
    QVERIFY(content.lines.constFirst().colour.blue() > content.lines.constFirst().colour.red());
    QVERIFY(loudest.colour.red() > loudest.colour.blue());
}

void TestPlotContent::overFrequencyAHiddenNotchIsPassedOver()
{
    const PlotContent content = contentOverFrequency({shownAs(1, roofs(3))}, {{}, {2}});
    QCOMPARE(content.lines.size(), 41);
    QCOMPARE(content.lines.at(0).points.size(), 2);
    QCOMPARE(content.lines.at(0).points.at(1).value, QPointF(10.0, 33.0)); // notch 3 at -40 dBm
}

void TestPlotContent::thePointUnderThePointerTellsItself()
{
    const PlotContent content = contentOverLevel({shownAs(1, roofs(2))}, {});
    // At -20 dBm notch 2 has 52 dB, 180 pixels below the top.
    const PlotPlace place = placeNear({201.0, 179.0}, 10.0, content, frame);
    QVERIFY(place.isSome());
    const QString text = readingTexts(place, content).join('|');
    QCOMPARE(text, "result 1|notch 2, 0 MHz|level " + QString(QChar(0x2212)) +
                       "20.00 dBm|NPR 52.00 dB, sigma 0.25 dB|EVM 0.251 %");
}

void TestPlotContent::noLineIsNearAnEmptyPlace()
{
    const PlotContent content = contentOverLevel({shownAs(1, roofs(2))}, {});
    QVERIFY(!placeNear({20.0, 20.0}, 10.0, content, frame).isSome());
    QVERIFY(!placeNear({201.0, 179.0}, 10.0, contentOverLevel({}, {}), frame).isSome());
}

void TestPlotContent::theArrowsGoAlongAndAcross()
{
    const PlotContent content = contentOverLevel({shownAs(1, roofs(3))}, {{}, {2}});
    const PlotPlace first = besidePlace({}, 1, content);
    QCOMPARE(first.line, 0);
    QCOMPARE(besidePlace(first, -1, content).point, 0);
    const PlotPlace third = besidePlace(first, 3, content);
    QCOMPARE(third.point, 3);
    const PlotPlace other = otherLinePlace(third, 1, content);
    QCOMPARE(other.line, 2); // notch 2 is hidden
    QCOMPARE(other.point, 3);
    QCOMPARE(otherLinePlace(other, 1, content).line, 0);
    QVERIFY(!otherLinePlace({}, 1, contentOverLevel({}, {})).isSome());
}

void TestPlotContent::thePlaceStaysWhenItsLineGetsMorePoints()
{
    const PlotContent before = contentOverLevel({shownAs(1, roofs(2, -40, -30))}, {});
    const PlotContent after = contentOverLevel({shownAs(1, roofs(2))}, {});
    QCOMPARE(samePlace({1, 4}, before, after).point, 4);
    QVERIFY(!samePlace({1, 4}, before, contentOverLevel({shownAs(1, roofs(1))}, {})).isSome());
}

QTEST_APPLESS_MAIN(TestPlotContent)
#include "test_plot_content.moc"
