// The scale of the graph with hand-worked pixels.
#include "graph/graph_geometry.h"
#include "setup/measurement_setup.h"

#include <QtTest>

#include <limits>

class TestGraphGeometry : public QObject
{
    Q_OBJECT

private slots:
    void binsSpanTheWidth();
    void pixelsBecomeBins();
    void levelsSpanFourFifthsOfTheHeight();
    void depthsDropTheirFractions();
    void pixelsBecomeDepths();
    void bandEdgeIsTruncated();
    void handlesLieAroundTheBody();
    void tidyingSwapsClipsAndFollows();
    void extremeValuesStayDefined();
};

void TestGraphGeometry::binsSpanTheWidth()
{
    const GraphGeometry geometry({600, 200}, 1024);
    QCOMPARE(geometry.xOfBin(-512), 0);
    QCOMPARE(geometry.xOfBin(0), 300);
    QCOMPARE(geometry.xOfBin(512), 600);
    QCOMPARE(geometry.xOfBin(100), 358);  // 600 (1 + 200/1024) / 2 = 358.59
    QCOMPARE(geometry.xOfBin(-100), 241); // 241.41
}

void TestGraphGeometry::pixelsBecomeBins()
{
    const GraphGeometry geometry({600, 200}, 1024);
    QCOMPARE(geometry.binAt(0), -512);
    QCOMPARE(geometry.binAt(300), 0);
    QCOMPARE(geometry.binAt(600), 512);
    QCOMPARE(geometry.binAt(450), 256);
    QCOMPARE(geometry.binAt(301), 1);  // 1.7
    QCOMPARE(geometry.binAt(299), -1); // toward the carrier
}

void TestGraphGeometry::levelsSpanFourFifthsOfTheHeight()
{
    const GraphGeometry geometry({600, 200}, 1024);
    QCOMPARE(geometry.yOfLevel(0.0), 100);
    QCOMPARE(geometry.yOfLevel(1.0), 0);
    QCOMPARE(geometry.yOfLevel(-1.0), 200);
    // The single-precision 0.8 is a little above 0.8: 100 - 80.0000012.
    QCOMPARE(geometry.yOfLevel(GraphGeometry::topLevel), 19);
    QCOMPARE(geometry.yOfLevel(GraphGeometry::floorLevel), 180);
}

void TestGraphGeometry::depthsDropTheirFractions()
{
    QVERIFY(qAbs(GraphGeometry::levelOfDepth(0.0) - GraphGeometry::topLevel) < 1e-7);
    QVERIFY(qAbs(GraphGeometry::levelOfDepth(-105.0) - GraphGeometry::floorLevel) < 1e-6);
    QVERIFY(qAbs(GraphGeometry::levelOfDepth(-52.5) - (0.8 - 52 * 1.6 / 105)) < 1e-6);
    QCOMPARE(GraphGeometry::levelOfDepth(-40.9), GraphGeometry::levelOfDepth(-40.0));
}

void TestGraphGeometry::pixelsBecomeDepths()
{
    const GraphGeometry geometry({600, 200}, 1024);
    QCOMPARE(geometry.depthAt(100), -52); // -0.8 / 0.015238 = -52.5
    QCOMPARE(geometry.depthAt(0), 13);    // 0.2 / 0.015238 = 13.1
    QCOMPARE(geometry.depthAt(20), 0);
    QCOMPARE(geometry.depthAt(200), -118);
}

void TestGraphGeometry::bandEdgeIsTruncated()
{
    MeasurementSetup setup;
    setup.fftLengthIndex = 16; // 64
    QCOMPARE(bandEdge(setup), 32U);
    setup.nbwSrate = 0.8;
    QCOMPARE(bandEdge(setup), 25U); // 25.6
}

void TestGraphGeometry::handlesLieAroundTheBody()
{
    const GraphGeometry geometry({600, 200}, 1024);
    Notch notch;
    notch.startIndex = -256;
    notch.stopIndex = 256;
    notch.depth = -52.0; // level 0.0076: y = 99.2
    geometry.placeHandles(notch);
    QCOMPARE(notch.bodyRect, QRectF(QPointF(151, 17), QPointF(449, 98)));
    QCOMPARE(notch.leftHandleRect, QRectF(141, 17, 10, 71));
    QCOMPARE(notch.rightHandleRect, QRectF(449, 17, 10, 71));
    QCOMPARE(notch.depthHandleRect, QRectF(161, 98, 278, 10));
}

void TestGraphGeometry::tidyingSwapsClipsAndFollows()
{
    MeasurementSetup setup;
    setup.fftLengthIndex = 12; // 1024 bins of 97656.25 Hz
    setup.nbwSrate = 0.5;      // band edge at 256
    Notch crossed;
    crossed.startIndex = 20;
    crossed.stopIndex = 10;
    Notch wide;
    wide.startIndex = -300;
    wide.stopIndex = 300;
    setup.notches->items = {crossed, wide};
    tidyNotches(setup);
    QCOMPARE(setup.notches->items.at(0).startIndex, 10);
    QCOMPARE(setup.notches->items.at(0).stopIndex, 20);
    QCOMPARE(setup.notches->items.at(0).startFreq, 976562.5);
    QCOMPARE(setup.notches->items.at(0).center, 15 * 97656.25);
    QCOMPARE(setup.notches->items.at(0).width, 976562.5);
    QCOMPARE(setup.notches->items.at(1).startIndex, -255); // one inside the edge
    QCOMPARE(setup.notches->items.at(1).stopIndex, 255);
}

// The undefined behaviour sanitizer looks on.
void TestGraphGeometry::extremeValuesStayDefined()
{
    for (const QSize size : {QSize(0, 0), QSize(1, 1), QSize(600, 200)}) {
        for (const quint32 length : {0U, 1U, 4194304U, 0xFFFFFFFFU}) {
            const GraphGeometry geometry(size, length);
            (void)geometry.binAt(std::numeric_limits<int>::min());
            (void)geometry.depthAt(std::numeric_limits<int>::max());
            Notch notch;
            notch.startIndex = std::numeric_limits<qint32>::min();
            notch.stopIndex = std::numeric_limits<qint32>::max();
            notch.depth = -std::numeric_limits<double>::infinity();
            geometry.placeHandles(notch);
            QVERIFY(size.width() == 0 || length == 0 || geometry.xOfBin(0) == size.width() / 2);
        }
    }
}

QTEST_APPLESS_MAIN(TestGraphGeometry)
#include "test_graph_geometry.moc"
