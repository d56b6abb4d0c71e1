// The graph at its limits: borders, full tables, the shortest and the longest signal, and the
// deliberate oddities of its mouse.
#include "kit/graph_driver.h"

#include <cmath>
#include <limits>

namespace {

// But for the rounding of a line that is cut by the side of the widget.
bool isYellow(const QColor& color)
{
    return color.red() > 250 && color.green() > 250 && color.blue() == 0;
}

} // namespace

class TestGraphLimits : public QObject
{
    Q_OBJECT

private slots:
    void init();
    void cleanup();
    void screenHasTheDensityThatTheTestAsksFor();
    void wholeBandHasItsWallsAtTheSides();
    void edgeOnTheBorderStandsAndPastItStopsOneBinInside();
    void borderBetweenTwoBinsIsTruncated();
    void notchDraggedOutComesBackWithTheNextTidying();
    void rubberBandPastTheSidesEndsOneBinInside();
    void notchesPassThroughEachOther();
    void pixelsOfAShortSignalAddUpToBins();
    void onePixelOfTheLongestSignalIsManyBins();
    void fullTableIsPaintedAndTidied();
    void depthPassesTheFloorOfThePicture();
    void depthComesBackFromZeroAtOnce();
    void depthDragTidiesNothing();
    void pressWithoutAMoveTakesTheCornerOfTheLastRubberBand();
    void menuSkipsTheRowThatMovedUp();
    void cancelledMenuAsksAboutTheNextRow();
    void partialRepaintScalesToItsPart();
    void otherButtonsDragNothing();
    void carrierModeRemembersTheCursor();
    void rowsMayVanishDuringADrag();
    void absurdRowsArePainted();

private:
    std::unique_ptr<GraphDriver> operate;
};

void TestGraphLimits::init()
{
    operate = std::make_unique<GraphDriver>();
    QVERIFY(QTest::qWaitForWindowExposed(&operate->graph));
}

void TestGraphLimits::cleanup()
{
    operate.reset();
}

// The same program also runs with a scale factor in its environment.
void TestGraphLimits::screenHasTheDensityThatTheTestAsksFor()
{
    const double asked = qEnvironmentVariable("QT_SCALE_FACTOR", QStringLiteral("1")).toDouble();
    QCOMPARE(operate->graph.devicePixelRatioF(), asked);
}

void TestGraphLimits::wholeBandHasItsWallsAtTheSides()
{
    operate->setup.nbwSrate = 1.0;
    QVERIFY(isYellow(operate->pixel(0, 100)));
    QVERIFY(isYellow(operate->pixel(511, 100)));
    QCOMPARE(operate->pixel(128, 100), QColor(Qt::black));
    QCOMPARE(operate->pixel(50, 180), QColor(Qt::black)); // no floor outside the walls
}

void TestGraphLimits::edgeOnTheBorderStandsAndPastItStopsOneBinInside()
{
    operate->addNotch(100, 140, -52.0);  // right handle from 325 to 335
    operate->drag({328, 60}, {386, 60}); // 58 pixels, 116 bins
    QCOMPARE(operate->notch().stopIndex, 256);
    QCOMPARE(operate->notch().startIndex, 100);
    operate->drag({386, 60}, {387, 60});
    QCOMPARE(operate->notch().stopIndex, 255);
    QCOMPARE(operate->notch().stopFreq, 255 * 97656.25);
}

void TestGraphLimits::borderBetweenTwoBinsIsTruncated()
{
    operate->setup.fftLengthIndex = 16; // 64 bins, 8 pixels each
    operate->setup.nbwSrate = 0.8;      // border at bin 25.6
    operate->addNotch(10, 20, -52.0);   // pixels 336 to 416
    operate->drag({376, 60}, {416, 60});
    QCOMPARE(operate->notch().startIndex, 15);
    QCOMPARE(operate->notch().stopIndex, 25);
    operate->drag({400, 60}, {408, 60});
    QCOMPARE(operate->notch().startIndex, 16);
    QCOMPARE(operate->notch().stopIndex, 24); // 24.6
}

// Deliberate: only the bin that leaves on its own side is pulled in, so a notch dragged out as a
// whole has a negative width until its bins are swapped by the next drag of any notch.
void TestGraphLimits::notchDraggedOutComesBackWithTheNextTidying()
{
    operate->addNotch(-140, -100, -52.0); // pixels 186 to 206
    operate->drag({196, 60}, {12, 60});   // 368 bins down, to -508 and -468
    QCOMPARE(operate->notch().startIndex, -255);
    QCOMPARE(operate->notch().stopIndex, -468);
    QCOMPARE(operate->notch().width, -213 * 97656.25);
    operate->drag({300, 5}, {310, 10});
    QCOMPARE(operate->count(), 1);
    QCOMPARE(operate->notch().startIndex, -255);
    QCOMPARE(operate->notch().stopIndex, -255);
}

void TestGraphLimits::rubberBandPastTheSidesEndsOneBinInside()
{
    operate->setup.nbwSrate = 1.0;
    operate->drag({10, 5}, {600, 100});
    QCOMPARE(operate->notch(0).startIndex, -492);
    QCOMPARE(operate->notch(0).stopIndex, 511);
    operate->drag({10, 5}, {-100, 100});
    QCOMPARE(operate->notch(1).startIndex, -511);
    QCOMPARE(operate->notch(1).stopIndex, -492);
}

void TestGraphLimits::notchesPassThroughEachOther()
{
    operate->addNotch(-100, -60, -52.0);
    operate->addNotch(60, 100, -52.0);
    operate->drag({216, 60}, {336, 60}); // over the second one and on
    QCOMPARE(operate->notch(0).startIndex, 140);
    QCOMPARE(operate->notch(0).stopIndex, 180);
    QCOMPARE(operate->notch(1).startIndex, 60);
    QCOMPARE(operate->notch(1).stopIndex, 100);
    QCOMPARE(operate->pixel(336, 99), QColor(Qt::yellow)); // both bottoms, out of order
    QCOMPARE(operate->pixel(296, 99), QColor(Qt::yellow));
    QCOMPARE(operate->pixel(216, 60), QColor(Qt::black));
}

void TestGraphLimits::pixelsOfAShortSignalAddUpToBins()
{
    operate->setup.fftLengthIndex = 16; // 8 pixels a bin
    operate->setup.nbwSrate = 1.0;
    operate->addNotch(10, 20, -52.0);
    operate->moveTo({376, 60});
    operate->press({376, 60});
    for (int x = 377; x <= 383; ++x) {
        operate->moveTo({x, 60}, Qt::LeftButton);
    }
    QCOMPARE(operate->notch().startIndex, 10);
    operate->moveTo({384, 60}, Qt::LeftButton);
    QCOMPARE(operate->notch().startIndex, 11);
    QCOMPARE(operate->notch().startFreq, 0.0); // frequencies wait for the release
    operate->release({384, 60});
    QCOMPARE(operate->notch().stopIndex, 21);
    QCOMPARE(operate->notch().startFreq, 11 * 1562500.0);
}

void TestGraphLimits::onePixelOfTheLongestSignalIsManyBins()
{
    operate->setup.fftLengthIndex = 0;          // 4194304 bins, 8192 a pixel
    operate->addNotch(-409600, -245760, -52.0); // pixels 206 to 226
    operate->drag({216, 60}, {217, 60});
    QCOMPARE(operate->notch().startIndex, -401408);
    QCOMPARE(operate->notch().stopIndex, -237568);
    QCOMPARE(operate->notch().startFreq, -9570312.5); // 49/512 of the sample rate
}

void TestGraphLimits::fullTableIsPaintedAndTidied()
{
    operate->setup.fftLengthIndex = 0;
    for (int row = 0; row < 998; ++row) {
        Notch notch;
        notch.startIndex = -1000000 + 2000 * row;
        notch.stopIndex = notch.startIndex + 1000;
        notch.depth = -10.0;
        operate->setup.notches->items.append(notch);
    }
    operate->addNotch(-409600, -245760, -52.0);
    QCOMPARE(operate->count(), 999);
    operate->drag({216, 60}, {217, 60});
    QCOMPARE(operate->notch(998).startIndex, -401408);
    const double binWidth = 100e6 / 4194304;
    for (int row = 0; row < 998; ++row) {
        QCOMPARE(operate->notch(row).startIndex, -1000000 + 2000 * row);
        QCOMPARE(operate->notch(row).startFreq, (-1000000 + 2000 * row) * binWidth);
    }
}

void TestGraphLimits::depthPassesTheFloorOfThePicture()
{
    operate->addNotch(-100, 0, -52.0);     // depth handle from y 98 to 108
    operate->drag({231, 103}, {231, 195}); // from -54 dB to -114 dB
    QCOMPARE(operate->notch().depth, -112.0);
    QCOMPARE(operate->pixel(231, 190), QColor(Qt::yellow)); // the floor lies at 180
}

// Deliberate: the depth follows the steps of the mouse, not its place, so it leaves 0 as soon as
// the mouse turns round, with all of the step.
void TestGraphLimits::depthComesBackFromZeroAtOnce()
{
    operate->addNotch(-100, 0, -52.0);
    operate->press({231, 103});
    operate->moveTo({231, 5}, Qt::LeftButton); // +9 dB
    QCOMPARE(operate->notch().depth, 0.0);
    operate->moveTo({231, 50}, Qt::LeftButton); // -19 dB
    QCOMPARE(operate->notch().depth, -28.0);
    operate->release({231, 50});
    QCOMPARE(operate->notch().depth, -28.0);
}

void TestGraphLimits::depthDragTidiesNothing()
{
    operate->addNotch(20, 10, -52.0);
    operate->addNotch(-100, 0, -52.0);
    QSignalSpy changed(&operate->graph, &GraphWidget::graphChanged);
    operate->drag({231, 103}, {231, 120});
    QVERIFY(operate->notch(1).depth < -52.0);
    QCOMPARE(operate->notch(0).startIndex, 20);
    QCOMPARE(operate->notch(0).stopIndex, 10);
    QCOMPARE(changed.count(), 1);
}

// Deliberate: a press sets one corner of the rubber band, the other waits for a move.
void TestGraphLimits::pressWithoutAMoveTakesTheCornerOfTheLastRubberBand()
{
    operate->press({266, 5});
    operate->release({266, 5});
    QCOMPARE(operate->count(), 0); // the first band has a corner above the top level
    operate->drag({266, 5}, {286, 100});
    QCOMPARE(operate->count(), 1);
    operate->press({300, 5});
    operate->release({300, 5});
    QCOMPARE(operate->count(), 2);
    QCOMPARE(operate->notch(1).startIndex, 60);
    QCOMPARE(operate->notch(1).stopIndex, 88);
    QCOMPARE(operate->notch(1).depth, -52.0);
}

// Deliberate: after a deletion the loop goes on with the next number.
void TestGraphLimits::menuSkipsTheRowThatMovedUp()
{
    operate->addNotch(-100, -20, -52.0);
    operate->addNotch(-98, -22, -52.0);
    operate->addNotch(-96, -24, -52.0);
    QSignalSpy changed(&operate->graph, &GraphWidget::graphChanged);
    const QList<Qt::Key> deleteAll{Qt::Key_Return, Qt::Key_Return, Qt::Key_Return};
    QCOMPARE(operate->rightClick({226, 60}, deleteAll).size(), 2);
    QCOMPARE(changed.count(), 2);
    QCOMPARE(operate->count(), 1);
    QCOMPARE(operate->notch().startIndex, -98);
}

void TestGraphLimits::cancelledMenuAsksAboutTheNextRow()
{
    operate->addNotch(-100, -20, -52.0);
    operate->addNotch(-98, -22, -52.0);
    operate->addNotch(-96, -24, -52.0);
    QCOMPARE(operate->rightClick({226, 60}, {Qt::Key_Escape, Qt::Key_Return}).size(), 2);
    QCOMPARE(operate->count(), 2);
    QCOMPARE(operate->notch(0).startIndex, -100);
    QCOMPARE(operate->notch(1).startIndex, -96);
}

// Deliberate: hit testing uses the last paint, and that of an exposed part is scaled to the part.
void TestGraphLimits::partialRepaintScalesToItsPart()
{
    operate->addNotch(-100, -60, -52.0);
    QCoreApplication::processEvents();
    operate->graph.repaint(QRect(0, 0, 256, 200));
    operate->moveTo({108, 60});
    QCOMPARE(operate->graph.cursor().shape(), Qt::SizeAllCursor);
    operate->moveTo({216, 60});
    QCOMPARE(operate->graph.cursor().shape(), Qt::ArrowCursor);
    operate->paint();
    operate->moveTo({216, 60});
    QCOMPARE(operate->graph.cursor().shape(), Qt::SizeAllCursor);
}

void TestGraphLimits::otherButtonsDragNothing()
{
    operate->addNotch(-100, -60, -52.0);
    for (const Qt::MouseButton button : {Qt::MiddleButton, Qt::RightButton}) {
        QTest::mousePress(&operate->graph, button, Qt::NoModifier, {216, 60});
        operate->moveTo({246, 60}, button);
        QCOMPARE(operate->notch().startIndex, -100);
    }
}

void TestGraphLimits::carrierModeRemembersTheCursor()
{
    operate->addNotch(-100, -60, -52.0);
    operate->setup.notchOrCarrier = NotchOrCarrier::Carrier;
    operate->moveTo({216, 60});
    operate->setup.notchOrCarrier = NotchOrCarrier::Notch;
    QCOMPARE(operate->pixel(216, 60), QColor(50, 50, 50));
}

void TestGraphLimits::rowsMayVanishDuringADrag()
{
    operate->addNotch(-100, -60, -52.0);
    QSignalSpy changed(&operate->graph, &GraphWidget::graphChanged);
    operate->press({216, 60});
    operate->setup.notches->clear();
    operate->moveTo({246, 60}, Qt::LeftButton);
    operate->release({246, 60});
    QCOMPARE(operate->count(), 0);
    QCOMPARE(changed.count(), 1);
}

void TestGraphLimits::absurdRowsArePainted()
{
    constexpr qint32 least = std::numeric_limits<qint32>::min();
    constexpr qint32 most = std::numeric_limits<qint32>::max();
    operate->addNotch(least, most, -1e300);
    operate->addNotch(most, least, std::numeric_limits<double>::infinity());
    operate->addNotch(0, 0, std::nan(""));
    QVERIFY(operate->pixel(256, 195).green() > 100); // the carrier
    operate->setup.nbwSrate = 1e300;
    operate->drag({100, 5}, {200, 100});
    QCOMPARE(operate->count(), 4);
}

QTEST_MAIN(TestGraphLimits)
#include "test_graph_limits.moc"
