// The picture: what stands where, by places and colours that are computed, and its files.
#include "chart/chart_file.h"
#include "chart/chart_style.h"
#include "chart/npr_chart_view.h"

#include <QFile>
#include <QImage>
#include <QTemporaryDir>
#include <QXmlStreamReader>
#include <QtTest>

#include <cmath>

namespace {

// A tent with its top at 0 dBm, 60 dB, two dB a dB, and a band of 3 dB.
NprChartData tent()
{
    NprChartData data;
    data.device = "amplifier no. 7";
    data.date = "2026-11-21 14:00 UTC";
    ChartLine line;
    line.name = "notch 1, -32 MHz";
    for (int level = -20; level <= 20; ++level) {
        line.points.append({double(level), 60.0 - 2.0 * std::abs(level), 3.0});
    }
    line.peak = QPointF(0.0, 60.0);
    line.ranges = {{40.0, -10.0, 10.0}};
    data.lines = {line};
    data.thresholds = {40.0};
    data.limit = 25.0;
    return data;
}

// Shown at the size of a file, so that its places are those of the file.
class ShownChart
{
public:
    explicit ShownChart(const NprChartData& data) : view(22)
    {
        view.resize(chartWidth, chartHeight);
        view.show();
        view.setData(data);
        QCoreApplication::processEvents();
    }

    QPoint at(double level, double npr) const { return view.positionOf({level, npr}).toPoint(); }

    NprChartView view;
};

bool hasColour(const QImage& image, const QRect& area, const QColor& colour)
{
    for (int y = area.top(); y <= area.bottom(); ++y) {
        for (int x = area.left(); x <= area.right(); ++x) {
            if (image.pixelColor(x, y) == colour) {
                return true;
            }
        }
    }
    return false;
}

// Whether a pixel of about this colour lies within a few pixels of the place.
bool hasColourNear(const QImage& image, const QPoint& place, const QColor& colour, int reach = 3)
{
    for (int y = place.y() - reach; y <= place.y() + reach; ++y) {
        for (int x = place.x() - reach; x <= place.x() + reach; ++x) {
            const QColor there = image.pixelColor(x, y);
            if (std::abs(there.red() - colour.red()) < 12 &&
                std::abs(there.green() - colour.green()) < 12 &&
                std::abs(there.blue() - colour.blue()) < 12) {
                return true;
            }
        }
    }
    return false;
}

// A see-through colour on white.
QColor onWhite(const QColor& colour)
{
    const auto mix = [&](int part) { return qRound(255.0 + (part - 255.0) * colour.alphaF()); };
    return {mix(colour.red()), mix(colour.green()), mix(colour.blue())};
}

QString textsOfSvg(const QString& path)
{
    QFile file(path);
    QString texts;
    if (file.open(QIODevice::ReadOnly)) {
        QXmlStreamReader svg(&file);
        while (!svg.atEnd()) {
            svg.readNext();
            if (svg.isStartElement() && svg.name() == QLatin1String("text")) {
                texts += svg.readElementText() + '\n';
            }
        }
        if (svg.hasError()) {
            return svg.errorString();
        }
    }
    return texts;
}

} // namespace

class TestNprChart : public QObject
{
    Q_OBJECT

private slots:
    void init() { folder = std::make_unique<QTemporaryDir>(); }
    void levelsRiseToTheRightAndRatiosUpwards();
    void curveBandLimitAndThresholdStandAtTheirValues();
    void theRangeIsMarkedFromEndToEnd();
    void marksOfRangesStayWithinThePlot();
    void aMissingRatioInterruptsTheLine();
    void aReadingThatNoBenchMakesLeavesTheAxisAlone();
    void theoryIsDashed();
    void thePeakIsRinged();
    void theLegendIsNotCut();
    void manyLinesLeaveThePlotItsRoom();
    void aChangeOfSizeMovesTheMarks();
    void newDataTakeThePlaceOfTheOld();
    void nothingMeasuredIsAnEmptyPicture();
    void filesHaveTheirSizeAndTheirTexts();
    void whatCannotBeWrittenIsTold();

private:
    std::unique_ptr<QTemporaryDir> folder;
};

void TestNprChart::levelsRiseToTheRightAndRatiosUpwards()
{
    const ShownChart chart(tent());
    QVERIFY(chart.at(10, 40).x() > chart.at(-10, 40).x() + 400);
    QCOMPARE(chart.at(10, 40).y(), chart.at(-10, 40).y());
    QVERIFY(chart.at(0, 50).y() < chart.at(0, 30).y() - 100);
}

void TestNprChart::curveBandLimitAndThresholdStandAtTheirValues()
{
    const ShownChart chart(tent());
    const QImage image = chartImage(tent());
    const QColor line = ChartStyle::lineColour(0);
    QVERIFY(hasColourNear(image, chart.at(-5, 50), line));
    QVERIFY(hasColourNear(image, chart.at(7.5, 45), line));
    QVERIFY(!hasColourNear(image, chart.at(-5, 55), line));
    // Within the band, away from the curve; and beyond it.
    const QColor band = onWhite(ChartStyle::bandColour(0));
    QVERIFY(hasColourNear(image, chart.at(-5.2, 51.5), band, 1));
    QVERIFY(hasColourNear(image, chart.at(-4.8, 48.5), band, 1));
    QVERIFY(!hasColourNear(image, chart.at(-5.2, 55.0), band, 1));
    QVERIFY(hasColourNear(image, chart.at(-3.3, 25), ChartStyle::limitColour()));
    QVERIFY(!hasColourNear(image, chart.at(-3.3, 28), ChartStyle::limitColour()));
}

void TestNprChart::theRangeIsMarkedFromEndToEnd()
{
    const ShownChart chart(tent());
    const QImage image = chartImage(tent());
    const QColor line = ChartStyle::lineColour(0);
    const QPoint below(0, 8); // the bar of the first line
    QVERIFY(hasColourNear(image, chart.at(-9.5, 40) + below, line));
    QVERIFY(hasColourNear(image, chart.at(0, 40) + below, line));
    QVERIFY(hasColourNear(image, chart.at(9.5, 40) + below, line));
    QVERIFY(!hasColourNear(image, chart.at(14, 40) + below, line));
    QVERIFY(!hasColourNear(image, chart.at(-14, 40) + below, line));
}

// The threshold is the lowest ratio, so that its line is the axis. Below that, between two numbers,
// nothing stands.
void TestNprChart::marksOfRangesStayWithinThePlot()
{
    NprChartData data = tent();
    data.limit.reset();
    data.thresholds = {20.0};
    ChartLine& line = data.lines.first();
    for (ChartPoint& point : line.points) {
        point.sigma.reset();
    }
    line.ranges = {{20.0, -10.0, 10.0}};
    const ChartLine another = line;
    data.lines.insert(1, 11, another);
    const QPoint axis = ShownChart(data).at(2, 20);
    const QImage image = chartImage(data);
    for (int i = 0; i < 4; ++i) {
        QVERIFY(!hasColour(image, {axis.x(), axis.y() + 4, 40, 30}, ChartStyle::lineColour(i)));
    }
}

void TestNprChart::aMissingRatioInterruptsTheLine()
{
    NprChartData data = tent();
    for (int i = 5; i < 10; ++i) { // -15 to -11 dBm
        data.lines[0].points[i].npr.reset();
    }
    const ShownChart chart(data);
    const QImage image = chartImage(data);
    QVERIFY(!hasColourNear(image, chart.at(-13, 34), ChartStyle::lineColour(0)));
    QVERIFY(hasColourNear(image, chart.at(-17.5, 25.0 + 0.0), ChartStyle::lineColour(0), 6));
    QVERIFY(hasColourNear(image, chart.at(-5, 50), ChartStyle::lineColour(0)));
}

void TestNprChart::aReadingThatNoBenchMakesLeavesTheAxisAlone()
{
    NprChartData data = tent();
    data.lines[0].points[10].npr = -157.0; // -10 dBm
    data.lines[0].points[30].npr = 190.0;
    data.lines[0].peak = QPointF(10.0, 190.0);
    const ShownChart chart(data);
    const ShownChart usual(tent());
    const auto height = [](const ShownChart& its) { return its.at(0, 20).y() - its.at(0, 60).y(); };
    QVERIFY(height(chart) > 0.9 * height(usual)); // the legend may have a row more
    const QImage image = chartImage(data);
    const QColor line = ChartStyle::lineColour(0);
    // From 17 to 63 dB with the band: the axis goes from 10 to 70 dB, and half a step beyond.
    QVERIFY(hasColourNear(image, chart.at(-10, 10) - QPoint(0, 10), line, 1));
    QVERIFY(hasColourNear(image, chart.at(10, 75) + QPoint(0, 10), line, 1));
    const QString file = folder->filePath("beyond.svg");
    QVERIFY(saveChart(data, file));
    QVERIFY(textsOfSvg(file).contains("reading beyond the axis"));
    QVERIFY(saveChart(tent(), file));
    QVERIFY(!textsOfSvg(file).contains("reading beyond the axis"));
}

void TestNprChart::theoryIsDashed()
{
    NprChartData data = tent();
    data.theories = {{"theory", {{-20.0, 35.0}, {20.0, 35.0}}}};
    const ShownChart chart(data);
    const QImage image = chartImage(data);
    const int y = chart.at(0, 35).y();
    int changes = 0;
    bool wasDark = false;
    for (int x = chart.at(-4, 35).x(); x < chart.at(4, 35).x(); ++x) {
        const bool isDark = hasColourNear(image, {x, y}, ChartStyle::textColour(), 1);
        changes += isDark != wasDark ? 1 : 0;
        wasDark = isDark;
    }
    QVERIFY2(changes > 10, qPrintable(QString::number(changes)));
}

void TestNprChart::thePeakIsRinged()
{
    const ShownChart chart(tent());
    const QImage image = chartImage(tent());
    const QColor ring = ChartStyle::lineColour(0).darker(120);
    const QPoint radius(10, 0); // 0.45 of letters of 22 pixels
    QVERIFY(hasColourNear(image, chart.at(0, 60) + radius, ring, 2));
    QVERIFY(hasColourNear(image, chart.at(0, 60) - radius, ring, 2));
}

// Nine lines and their peaks: nothing of the legend touches the edges of the picture.
void TestNprChart::theLegendIsNotCut()
{
    NprChartData data = tent();
    for (int i = 1; i < 9; ++i) {
        data.lines.append(data.lines.constFirst());
        data.lines.last().name = QString("notch %1, 123.456 MHz").arg(i);
    }
    const QImage image = chartImage(data);
    for (int x = 0; x < image.width(); ++x) {
        QCOMPARE(image.pixelColor(x, 0), QColor(Qt::white));
        QCOMPARE(image.pixelColor(x, image.height() - 1), QColor(Qt::white));
    }
    for (int y = 0; y < image.height(); ++y) {
        QCOMPARE(image.pixelColor(0, y), QColor(Qt::white));
        QCOMPARE(image.pixelColor(image.width() - 1, y), QColor(Qt::white));
    }
    // The last line's sample of the legend lies below the plot.
    const ShownChart chart(data);
    QRect below = image.rect();
    below.setTop(chart.at(0, 20).y() + 60);
    QVERIFY(hasColour(image, below, ChartStyle::lineColour(5)));
}

void TestNprChart::manyLinesLeaveThePlotItsRoom()
{
    NprChartData data = tent();
    for (int i = 2; i <= 60; ++i) {
        data.lines.append(data.lines.constFirst());
        data.lines.last().name = QString("notch %1").arg(i);
    }
    const ShownChart chart(data);
    QVERIFY(chart.at(0, 20).y() - chart.at(0, 60).y() > 250);
    const QString file = folder->filePath("many.svg");
    QVERIFY(saveChart(data, file));
    const QStringList texts = textsOfSvg(file).split('\n').filter("notch ");
    QVERIFY(texts.size() > 10);
    QVERIFY(texts.size() <= 40);
    QVERIFY(textsOfSvg(file).contains(QString("\nand %1 more\n").arg(60 - texts.size())));
}

void TestNprChart::aChangeOfSizeMovesTheMarks()
{
    ShownChart chart(tent());
    chart.view.resize(900, 600);
    QCoreApplication::processEvents();
    const QImage image = chart.view.grab().toImage();
    QVERIFY(hasColourNear(image, chart.at(0, 60) + QPoint(10, 0),
                          ChartStyle::lineColour(0).darker(120), 2));
}

void TestNprChart::newDataTakeThePlaceOfTheOld()
{
    ShownChart chart(tent());
    NprChartData data = tent();
    data.limit.reset();
    chart.view.setData(data);
    QCoreApplication::processEvents();
    const QImage image = chart.view.grab().toImage();
    QVERIFY(!hasColourNear(image, chart.at(-3.3, 25), ChartStyle::limitColour()));
    QVERIFY(hasColourNear(image, chart.at(-5, 50), ChartStyle::lineColour(0)));
}

void TestNprChart::nothingMeasuredIsAnEmptyPicture()
{
    const QImage image = chartImage({});
    QCOMPARE(image.size(), QSize(1600, 1000));
    QVERIFY(!hasColour(image, image.rect(), ChartStyle::lineColour(0)));
    QVERIFY(hasColour(chartImage(tent()), image.rect(), ChartStyle::lineColour(0)));
}

void TestNprChart::filesHaveTheirSizeAndTheirTexts()
{
    const QString png = folder->filePath("curve.PNG");
    QVERIFY(saveChart(tent(), png));
    QCOMPARE(QImage(png).size(), QSize(1600, 1000));
    QCOMPARE(QImage(png).convertToFormat(QImage::Format_RGB32), chartImage(tent()));

    const QString svg = folder->filePath("curve.svg");
    QVERIFY(saveChart(tent(), svg));
    const QString texts = textsOfSvg(svg);
    const QChar minus(0x2212);
    for (const QString& text :
         {QString("NPR of amplifier no. 7"), QString("2026-11-21 14:00 UTC"), QString("NPR / dB"),
          QString("Level of the signal / dBm"), QString("60.00 dB at 0.00 dBm"),
          QString("limit 25 dB"), QString("above 40 dB: 20.00 dB, from -10.00 to 10.00 dBm"),
          QString("notch 1, -32 MHz: peak 60.00 dB at 0.00 dBm")}) {
        const QString inPrint = QString(text).replace('-', minus);
        QVERIFY2(texts.contains(text) || texts.contains(inPrint), qPrintable(text + '\n' + texts));
    }
}

void TestNprChart::whatCannotBeWrittenIsTold()
{
    QVERIFY(!saveChart(tent(), folder->filePath("curve.pdf")));
    QVERIFY(!saveChart(tent(), folder->filePath("none/curve.png")));
    QVERIFY(!saveChart(tent(), "/dev/full.svg/x.svg"));
    QVERIFY(isChartFile("a.svg") && isChartFile("a.Png") && !isChartFile("a.jpg"));
}

QTEST_MAIN(TestNprChart)
#include "test_npr_chart.moc"
