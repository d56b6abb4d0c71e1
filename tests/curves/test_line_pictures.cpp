// Kept pictures of lines show what drawing them shows.
#include "curves/line_drawing.h"
#include "curves/line_pictures.h"

#include <QPainter>
#include <QtTest>

#include <cmath>

namespace {

const PlotFrame frame{{30.0, 20.0, 331.0, 217.0}, {-40.0, 0.0, 30.0, 60.0}};

PlotLine lineOf(int notch, const QVector<QPointF>& values, bool isChosen = false,
                double sigma = 0.5)
{
    const QVector<QColor> colours = {Qt::red, Qt::blue, Qt::darkGreen, Qt::black};
    PlotLine line;
    line.result = 1;
    line.notch = notch;
    line.colour = colours.at(notch % colours.size());
    line.isChosen = isChosen;
    for (const QPointF& value : values) {
        line.points << PlotPoint{value, sigma, value.x()};
    }
    return line;
}

// Flat, steep, up and down, beyond the axes, upright, of one point.
QVector<PlotLine> manyLines()
{
    QVector<QPointF> waves;
    QVector<QPointF> zigzag;
    for (int k = 0; k <= 60; ++k) {
        const double x = -45.0 + 50.0 * k / 60;
        waves << QPointF(x, 45.0 + 12.0 * std::sin(0.7 * x));
        zigzag << QPointF(x, k % 2 == 0 ? 20.0 : 70.0);
    }
    QVector<PlotLine> lines{lineOf(0, waves, true),
                            lineOf(1, {{-100.0, 40.0}, {50.0, 41.0}}),
                            lineOf(2, zigzag),
                            lineOf(3, {{-20.0, 10.0}, {-20.0, 80.0}}),
                            lineOf(4, {{-10.0, 50.0}}),
                            lineOf(5, {{-38.0, 58.0}, {-37.9, 31.0}, {-1.0, 59.9}}, true, 3.0)};
    lines << lineOf(7, {{-35.0, 45.0}, {-34.5, -157.0}, {-5.0, 50.0}, {-0.1, 300.0}}, true);
    lines << lineOf(8, {{-25.0, -157.0}});
    lines << lineOf(6, waves);
    lines.last().kind = PlotLine::Kind::Theory;
    return lines;
}

QImage emptyPicture()
{
    QImage picture(400, 260, QImage::Format_RGB32);
    picture.fill(Qt::white);
    return picture;
}

// Each line on a transparent sheet over the axes' rectangle, one sheet upon the other, chosen ones
// last.
QImage drawn(const QVector<PlotLine>& lines, double density = 1.0, const PlotFrame& on = frame)
{
    const QRect area = on.area.toAlignedRect();
    QImage picture = emptyPicture();
    for (const bool isChosen : {false, true}) {
        for (const PlotLine& line : lines) {
            if (line.isShown && line.isChosen == isChosen) {
                QImage sheet(area.size(), QImage::Format_ARGB32_Premultiplied);
                sheet.fill(Qt::transparent);
                QPainter painter(&sheet);
                painter.setRenderHint(QPainter::Antialiasing);
                painter.translate(-area.topLeft());
                drawLine(painter, line, on, density);
                painter.end();
                QPainter(&picture).drawImage(area.topLeft(), sheet);
            }
        }
    }
    return picture;
}

QImage painted(LinePictures& pictures, const QVector<PlotLine>& lines, double density = 1.0)
{
    QImage picture = emptyPicture();
    pictures.paint(picture, lines, frame, density);
    return picture;
}

// Of one colour of one pixel. Each line that lies over others may round once more.
int largestDifference(const QImage& a, const QImage& b)
{
    int largest = 0;
    for (int y = 0; y < a.height(); ++y) {
        for (int x = 0; x < a.width(); ++x) {
            const QRgb p = a.pixel(x, y);
            const QRgb q = b.pixel(x, y);
            largest = std::max({largest, std::abs(qRed(p) - qRed(q)),
                                std::abs(qGreen(p) - qGreen(q)), std::abs(qBlue(p) - qBlue(q))});
        }
    }
    return largest;
}

constexpr int rounding = 3;

} // namespace

class TestLinePictures : public QObject
{
    Q_OBJECT

private slots:
    void theyShowWhatDrawingShows_data();
    void theyShowWhatDrawingShows();
    void aHiddenLineIsGoneAndComesBack();
    void aChangedLineIsDrawnAnew();
    void aLineThatIsNoMoreIsForgotten();
    void aLineOfOnePointIsSeen();
    void aReadingBeyondTheAxisIsAnArrowAtTheEdge();
    void linesForWhichThereIsNoRoomAreDrawn();
    void axesThatAreLargerThanThePictureAreCutOff();
    void axesBesideThePictureAndNoneAtAllPaintNothing();
};

void TestLinePictures::theyShowWhatDrawingShows_data()
{
    QTest::addColumn<double>("density");
    QTest::newRow("usual") << 1.0;
    QTest::newRow("dense") << 1.5;
    QTest::newRow("twice") << 2.0;
}

void TestLinePictures::theyShowWhatDrawingShows()
{
    QFETCH(double, density);
    LinePictures pictures;
    const QImage expected = drawn(manyLines(), density);
    QVERIFY(largestDifference(expected, emptyPicture()) > 100);
    for (int turn = 0; turn < 2; ++turn) { // drawn, then kept
        QVERIFY(largestDifference(painted(pictures, manyLines(), density), expected) <= rounding);
    }
}

void TestLinePictures::aHiddenLineIsGoneAndComesBack()
{
    LinePictures pictures;
    QVector<PlotLine> lines = manyLines();
    const QImage whole = painted(pictures, lines);
    const qint64 kept = pictures.keptPixels();
    lines[2].isShown = false;
    QVERIFY(largestDifference(painted(pictures, lines), drawn(lines)) <= rounding);
    QCOMPARE(pictures.keptPixels(), kept);
    lines[2].isShown = true;
    QCOMPARE(painted(pictures, lines), whole);
}

void TestLinePictures::aChangedLineIsDrawnAnew()
{
    LinePictures pictures;
    QVector<PlotLine> lines = manyLines();
    painted(pictures, lines);
    lines[0].isChosen = false;
    lines[1].points << PlotPoint{{60.0, 30.0}, {}, 60.0};
    lines[2].colour = Qt::magenta;
    QVERIFY(largestDifference(painted(pictures, lines), drawn(lines)) <= rounding);
}

void TestLinePictures::aLineThatIsNoMoreIsForgotten()
{
    LinePictures pictures;
    painted(pictures, manyLines());
    QVERIFY(pictures.keptPixels() > 0);
    painted(pictures, {});
    QCOMPARE(pictures.keptPixels(), qint64{0});
}

void TestLinePictures::aLineOfOnePointIsSeen()
{
    LinePictures pictures;
    const PlotLine line = lineOf(1, {{-20.0, 45.0}});
    const QPoint at = frame.positionOf({-20.0, 45.0}).toPoint();
    QCOMPARE(painted(pictures, {line}).pixelColor(at), QColor(Qt::blue));
}

void TestLinePictures::aReadingBeyondTheAxisIsAnArrowAtTheEdge()
{
    LinePictures pictures;
    const QImage picture =
        painted(pictures, {lineOf(1, {{-30.0, -157.0}}), lineOf(2, {{-10.0, 170.0}})});
    const int low = qRound(frame.positionOf({-30.0, 0.0}).x());
    const int bottom = qRound(frame.area.bottom());
    QCOMPARE(picture.pixelColor(low, bottom - 5), QColor(Qt::blue));
    QCOMPARE(picture.pixelColor(low - 2, bottom - 7), QColor(Qt::blue)); // wide at its back
    QCOMPARE(picture.pixelColor(low - 3, bottom - 2), QColor(Qt::white));
    QCOMPARE(picture.pixelColor(low, bottom - 11), QColor(Qt::white));
    const int high = qRound(frame.positionOf({-10.0, 0.0}).x());
    const int top = qRound(frame.area.top());
    QCOMPARE(picture.pixelColor(high, top + 5), QColor(Qt::darkGreen));
    QCOMPARE(picture.pixelColor(high, top + 11), QColor(Qt::white));
    // Below the axis, but a ratio that a bench can read: whoever zoomed knows.
    const PlotLine usual = lineOf(1, {{-20.0, 20.0}});
    QCOMPARE(painted(pictures, {usual}), emptyPicture());
}

// Bands over all of the axes' rectangle, of 71827 pixels each; 8 million are kept.
void TestLinePictures::linesForWhichThereIsNoRoomAreDrawn()
{
    LinePictures pictures;
    QVector<PlotLine> lines;
    for (int notch = 0; notch < 130; ++notch) {
        lines << lineOf(notch, {{-50.0, 45.0}, {10.0, 45.0}}, true, 100.0);
    }
    lines << lineOf(131, {{-40.0, 55.0}, {0.0, 55.0}}, true, 0.0);
    const QImage picture = painted(pictures, lines);
    QVERIFY(pictures.keptPixels() < 8'100'000);
    const QPoint at = frame.positionOf({-20.0, 55.0}).toPoint();
    QCOMPARE(picture.pixelColor(at), QColor(Qt::black));
}

void TestLinePictures::axesThatAreLargerThanThePictureAreCutOff()
{
    PlotFrame large = frame;
    large.area = {-20.0, 120.0, 700.0, 500.0};
    QVector<PlotLine> lines = manyLines();
    lines.removeLast(); // its dashes begin where the sheet does
    LinePictures pictures;
    QImage picture = emptyPicture();
    pictures.paint(picture, lines, large, 1.0);
    QVERIFY(picture != emptyPicture());
    // Lines that leave the sheet elsewhere round their slopes elsewhere.
    QVERIFY(largestDifference(picture, drawn(lines, 1.0, large)) <= 2 * rounding);
}

void TestLinePictures::axesBesideThePictureAndNoneAtAllPaintNothing()
{
    LinePictures pictures;
    for (const QRectF& area : {QRectF(500.0, 300.0, 200.0, 100.0), QRectF(30.0, 20.0, 0.0, 0.0),
                               QRectF(30.0, 20.0, -10.0, -10.0)}) {
        PlotFrame beside = frame;
        beside.area = area;
        QImage picture = emptyPicture();
        pictures.paint(picture, manyLines(), beside, 1.0);
        QCOMPARE(picture, emptyPicture());
    }
}

QTEST_MAIN(TestLinePictures)
#include "test_line_pictures.moc"
