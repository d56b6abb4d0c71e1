// The graph under a real mouse: what is painted, and what drags, clicks and the menu do.
#include "kit/graph_driver.h"

namespace {

// Goes before the answers to the menu, which start later.
void releaseOverTheNextMenu()
{
    QTimer::singleShot(0, [] {
        QWidget* menu = QApplication::activePopupWidget();
        QVERIFY(menu != nullptr);
        QTest::mouseRelease(menu, Qt::LeftButton, {}, {-50, -50});
    });
}

} // namespace

class TestGraphWidget : public QObject
{
    Q_OBJECT

private slots:
    void init();
    void cleanup();
    void bandIsOutlinedAndTheCarrierGreen();
    void hoveredNotchIsHighlighted();
    void aNotchBesideTheBandIsPaintedOver();
    void carrierModeDrawsACombAndIgnoresTheMouse();
    void bodyDragMovesBothEdges();
    void edgeDragMovesOneEdge();
    void leftEdgePastTheRightOneIsSwappedAtTheRelease();
    void dragPastTheBandEndsOneBinInside();
    void depthSticksAtZeroAndHasNoFloor();
    void rubberBandAddsANotch();
    void rubberBandFromRightToLeftIsSwapped();
    void rubberBandAboveTheTopAddsNothingButReports();
    void clickOnNothingReports();
    void lastOfOverlappingNotchesIsDragged();
    void cursorShowsWhatADragWouldDo();
    void menuDeletesTheNotch();
    void menuOpensOnNotchesOnly();
    void aDragWhoseReleaseGoesToTheMenuEndsWithIt();
    void aRubberBandWhoseReleaseGoesToTheMenuEndsWithIt();
    void aNotchDeletedDuringItsDragIsGone();
    void aDragOfAHeldButtonGoesOnAfterTheMenu();
    void withoutASetupNothingHappens();

private:
    std::unique_ptr<GraphDriver> operate;
};

void TestGraphWidget::init()
{
    operate = std::make_unique<GraphDriver>();
    QVERIFY(QTest::qWaitForWindowExposed(&operate->graph));
}

void TestGraphWidget::cleanup()
{
    operate.reset();
}

void TestGraphWidget::bandIsOutlinedAndTheCarrierGreen()
{
    operate->addNotch(-100, -60, -52.0);                    // pixels 206 to 226
    QCOMPARE(operate->pixel(50, 180), QColor(Qt::yellow));  // floor below the band
    QCOMPARE(operate->pixel(128, 100), QColor(Qt::yellow)); // lower band edge
    QCOMPARE(operate->pixel(384, 100), QColor(Qt::yellow));
    QCOMPARE(operate->pixel(300, 19), QColor(Qt::yellow)); // top of the band
    QCOMPARE(operate->pixel(216, 99), QColor(Qt::yellow)); // bottom of the notch
    QCOMPARE(operate->pixel(216, 60), QColor(Qt::black));  // inside it
    QCOMPARE(operate->pixel(60, 60), QColor(Qt::black));   // outside the band
    const QColor carrier = operate->pixel(256, 100);
    QVERIFY(carrier.green() > 100 && carrier.red() < 20 && carrier.blue() < 20);
}

void TestGraphWidget::hoveredNotchIsHighlighted()
{
    operate->addNotch(-100, -60, -52.0);
    operate->moveTo({216, 60});
    QCOMPARE(operate->pixel(216, 60), QColor(50, 50, 50));
    operate->moveTo({300, 60});
    QCOMPARE(operate->pixel(216, 60), QColor(Qt::black));
}

// The band ends at bin -128, pixel 192; the notch stands on pixels 156 to 176.
void TestGraphWidget::aNotchBesideTheBandIsPaintedOver()
{
    operate->setup.nbwSrate = 0.25;
    operate->addNotch(-200, -160, -52.0);
    operate->moveTo({166, 60});
    QCOMPARE(operate->pixel(192, 100), QColor(Qt::yellow)); // the band's edge
    QCOMPARE(operate->pixel(166, 60), QColor(Qt::black));   // no highlight
    QCOMPARE(operate->pixel(166, 99), QColor(Qt::black));   // no outline
}

void TestGraphWidget::carrierModeDrawsACombAndIgnoresTheMouse()
{
    operate->setup.notchOrCarrier = NotchOrCarrier::Carrier;
    operate->addNotch(100, 100, 0.0);
    QCOMPARE(operate->pixel(306, 100), QColor(Qt::yellow));
    QCOMPARE(operate->pixel(300, 180), QColor(Qt::yellow)); // the floor runs through
    QCOMPARE(operate->pixel(128, 100), QColor(Qt::black));  // no band edge
    QSignalSpy changed(&operate->graph, &GraphWidget::graphChanged);
    operate->drag({306, 100}, {350, 100});
    operate->drag({100, 5}, {200, 150});
    QCOMPARE(changed.count(), 0);
    QCOMPARE(operate->count(), 1);
    QCOMPARE(operate->notch().startIndex, 100);
}

void TestGraphWidget::bodyDragMovesBothEdges()
{
    operate->addNotch(-100, -60, -52.0);
    QSignalSpy changed(&operate->graph, &GraphWidget::graphChanged);
    operate->drag({216, 60}, {246, 70});
    QCOMPARE(operate->notch().startIndex, -40);
    QCOMPARE(operate->notch().stopIndex, 0);
    QCOMPARE(operate->notch().depth, -52.0);
    QCOMPARE(operate->notch().startFreq, -40 * 97656.25); // the frequencies caught up
    QCOMPARE(changed.count(), 1);
}

void TestGraphWidget::edgeDragMovesOneEdge()
{
    operate->addNotch(-100, -20, -52.0); // pixels 206 to 246, body 207 to 245
    operate->drag({202, 60}, {192, 60});
    QCOMPARE(operate->notch().startIndex, -120);
    QCOMPARE(operate->notch().stopIndex, -20);
    operate->drag({250, 60}, {260, 60});
    QCOMPARE(operate->notch().startIndex, -120);
    QCOMPARE(operate->notch().stopIndex, 0);
}

void TestGraphWidget::leftEdgePastTheRightOneIsSwappedAtTheRelease()
{
    operate->addNotch(-100, -20, -52.0);
    operate->drag({202, 60}, {262, 60}); // 120 bins to the right
    QCOMPARE(operate->notch().startIndex, -20);
    QCOMPARE(operate->notch().stopIndex, 20);
    QCOMPARE(operate->notch().startFreq, -20 * 97656.25);
    QCOMPARE(operate->notch().stopFreq, 20 * 97656.25);
}

void TestGraphWidget::dragPastTheBandEndsOneBinInside()
{
    operate->addNotch(100, 140, -52.0); // pixels 306 to 326
    operate->drag({316, 60}, {500, 60});
    QCOMPARE(operate->notch().stopIndex, 255);
}

void TestGraphWidget::depthSticksAtZeroAndHasNoFloor()
{
    operate->addNotch(-100, 0, -52.0); // depth handle from y 98 to 108
    operate->drag({231, 103}, {231, 195});
    QVERIFY(operate->notch().depth < -105.0);
    const double deep = operate->notch().depth;
    QSignalSpy changed(&operate->graph, &GraphWidget::graphChanged);
    const int y = static_cast<int>(operate->notch().depthHandleRect.center().y());
    QTest::mousePress(&operate->graph, Qt::LeftButton, Qt::NoModifier, {231, y});
    operate->moveTo({231, 0}, Qt::LeftButton);
    QTest::mouseRelease(&operate->graph, Qt::LeftButton, Qt::NoModifier, {231, 0});
    QVERIFY(deep < 0.0);
    QCOMPARE(operate->notch().depth, 0.0);
    QCOMPARE(changed.count(), 1);
}

void TestGraphWidget::rubberBandAddsANotch()
{
    QSignalSpy changed(&operate->graph, &GraphWidget::graphChanged);
    operate->press({266, 5});
    operate->moveTo({286, 100}, Qt::LeftButton);
    const QColor outline = operate->pixel(266, 60); // white, shared with the pixel beside it
    QVERIFY2(outline.red() > 100 && outline.red() == outline.green() &&
                 outline.red() == outline.blue(),
             qPrintable(outline.name()));
    QCOMPARE(operate->pixel(276, 60), QColor(Qt::black)); // inside
    operate->release({286, 100});
    QCOMPARE(operate->count(), 1);
    QCOMPARE(operate->notch().startIndex, 20);
    QCOMPARE(operate->notch().stopIndex, 60);
    QCOMPARE(operate->notch().depth, -52.0);
    QCOMPARE(operate->notch().center, 40 * 97656.25);
    QCOMPARE(changed.count(), 1);
}

void TestGraphWidget::rubberBandFromRightToLeftIsSwapped()
{
    operate->drag({286, 5}, {266, 100});
    QCOMPARE(operate->notch().startIndex, 20);
    QCOMPARE(operate->notch().stopIndex, 60);
}

void TestGraphWidget::rubberBandAboveTheTopAddsNothingButReports()
{
    QSignalSpy changed(&operate->graph, &GraphWidget::graphChanged);
    operate->drag({266, 5}, {286, 15});
    QVERIFY(operate->setup.notches->items.isEmpty());
    QCOMPARE(changed.count(), 1);
}

void TestGraphWidget::clickOnNothingReports()
{
    QSignalSpy changed(&operate->graph, &GraphWidget::graphChanged);
    QTest::mouseClick(&operate->graph, Qt::LeftButton, Qt::NoModifier, {300, 100});
    QCOMPARE(changed.count(), 1);
    QTest::mouseClick(&operate->graph, Qt::MiddleButton, Qt::NoModifier, {300, 100});
    QCOMPARE(changed.count(), 1);
}

void TestGraphWidget::lastOfOverlappingNotchesIsDragged()
{
    operate->addNotch(-100, 0, -52.0);
    operate->addNotch(-80, -20, -52.0);
    operate->drag({231, 60}, {241, 60});
    QCOMPARE(operate->notch(0).startIndex, -100);
    QCOMPARE(operate->notch(1).startIndex, -60);
}

void TestGraphWidget::cursorShowsWhatADragWouldDo()
{
    operate->addNotch(-100, 0, -52.0); // pixels 206 to 256
    operate->moveTo({231, 103});
    QCOMPARE(operate->graph.cursor().shape(), Qt::SizeVerCursor);
    operate->moveTo({202, 60});
    QCOMPARE(operate->graph.cursor().shape(), Qt::SizeHorCursor);
    operate->moveTo({260, 60});
    QCOMPARE(operate->graph.cursor().shape(), Qt::SizeHorCursor);
    operate->moveTo({231, 60});
    QCOMPARE(operate->graph.cursor().shape(), Qt::SizeAllCursor);
    operate->moveTo({231, 5});
    QCOMPARE(operate->graph.cursor().shape(), Qt::ArrowCursor);
    operate->moveTo({231, 60});
    operate->moveTo({400, 60});
    QCOMPARE(operate->graph.cursor().shape(), Qt::ArrowCursor);
}

void TestGraphWidget::menuDeletesTheNotch()
{
    operate->addNotch(-100, -60, -52.0);
    operate->addNotch(60, 100, -52.0);
    QSignalSpy changed(&operate->graph, &GraphWidget::graphChanged);
    operate->rightClick({216, 60}, {Qt::Key_Escape});
    QCOMPARE(operate->count(), 2);
    const QStringList entries = operate->rightClick({216, 60}, {Qt::Key_Return});
    QCOMPARE(entries, QStringList{QStringLiteral("Delete Notch")});
    QCOMPARE(operate->count(), 1);
    QCOMPARE(operate->notch().startIndex, 60);
    QCOMPARE(changed.count(), 1);
}

void TestGraphWidget::menuOpensOnNotchesOnly()
{
    operate->addNotch(-100, -60, -52.0);
    QVERIFY(operate->rightClick({300, 60}, {Qt::Key_Escape}).isEmpty());
    QCOMPARE(operate->count(), 1);
}

void TestGraphWidget::aDragWhoseReleaseGoesToTheMenuEndsWithIt()
{
    operate->addNotch(-100, -60, -52.0); // pixels 206 to 226
    QSignalSpy changed(&operate->graph, &GraphWidget::graphChanged);
    operate->moveTo({216, 60});
    operate->press({216, 60});
    operate->moveTo({226, 60}, Qt::LeftButton); // 20 bins up
    operate->paint();
    releaseOverTheNextMenu();
    QCOMPARE(operate->rightClick({226, 60}, {Qt::Key_Escape}).size(), 1);
    QCOMPARE(changed.count(), 1);
    QCOMPARE(operate->notch().startIndex, -80);
    QCOMPARE(operate->notch().startFreq, -80 * operate->setup.binWidth());
    operate->moveTo({300, 100});
    QCOMPARE(operate->notch().startIndex, -80);
    QCOMPARE(changed.count(), 1);
}

void TestGraphWidget::aRubberBandWhoseReleaseGoesToTheMenuEndsWithIt()
{
    operate->addNotch(100, 140, -52.0); // pixels 306 to 326
    QSignalSpy changed(&operate->graph, &GraphWidget::graphChanged);
    operate->press({200, 5});
    operate->moveTo({220, 99}, Qt::LeftButton);
    releaseOverTheNextMenu();
    operate->rightClick({316, 60}, {Qt::Key_Escape});
    QCOMPARE(changed.count(), 1);
    QCOMPARE(operate->count(), 2);
    QCOMPARE(operate->notch(1).startFreq, operate->notch(1).startIndex * operate->setup.binWidth());
    operate->moveTo({400, 150});
    operate->paint();
    QCOMPARE(operate->pixel(400, 5), QColor(Qt::black)); // no band follows
}

void TestGraphWidget::aNotchDeletedDuringItsDragIsGone()
{
    operate->addNotch(-100, -60, -52.0);
    operate->press({216, 60});
    releaseOverTheNextMenu();
    operate->rightClick({216, 60}, {Qt::Key_Return});
    QCOMPARE(operate->count(), 0);
    operate->addNotch(0, 40, -52.0);
    operate->moveTo({300, 100});
    QCOMPARE(operate->notch().startIndex, 0);
}

// With events of the window system, which know what is held.
void TestGraphWidget::aDragOfAHeldButtonGoesOnAfterTheMenu()
{
    operate->addNotch(-100, -60, -52.0);
    QSignalSpy changed(&operate->graph, &GraphWidget::graphChanged);
    QWindow* screen = operate->graph.windowHandle();
    QTest::mousePress(screen, Qt::LeftButton, {}, {216, 60});
    const MenuAnswers menus({Qt::Key_Escape});
    QTest::mousePress(screen, Qt::RightButton, {}, {216, 60});
    QTest::mouseRelease(screen, Qt::RightButton, {}, {216, 60});
    QCOMPARE(menus.entries.size(), 1);
    QCOMPARE(changed.count(), 0);
    operate->moveTo({226, 60}, Qt::LeftButton);
    QCOMPARE(operate->notch().startIndex, -80);
    // The release was lost: the first move without the button ends the drag where it was.
    operate->moveTo({300, 60});
    QCOMPARE(operate->notch().startIndex, -80);
    QCOMPARE(changed.count(), 1);
    QTest::mouseRelease(screen, Qt::LeftButton, {}, {300, 60});
}

void TestGraphWidget::withoutASetupNothingHappens()
{
    operate->graph.setSetup(nullptr);
    operate->drag({266, 5}, {286, 100});
    QCOMPARE(operate->pixel(256, 100), QColor(Qt::black));
}

QTEST_MAIN(TestGraphWidget)
#include "test_graph_widget.moc"
