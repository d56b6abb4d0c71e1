// The graph under a real mouse: what is painted, and what drags, clicks and the menu do.
#include "app/graph_widget.h"
#include "setup/measurement_setup.h"

#include <QApplication>
#include <QMenu>
#include <QMouseEvent>
#include <QTimer>
#include <QtTest>

class TestGraphWidget : public QObject
{
    Q_OBJECT

private slots:
    void init();
    void bandIsOutlinedAndTheCarrierGreen();
    void hoveredNotchIsHighlighted();
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
    void withoutASetupNothingHappens();

private:
    void addNotch(qint32 start, qint32 stop, double depth);
    void paint();
    void moveTo(QPoint position, Qt::MouseButtons buttons = Qt::NoButton);
    void drag(QPoint from, QPoint to);
    QColor pixel(int x, int y) const;
    const Notch& notch(int row = 0) const { return setup->notches->items.at(row); }

    std::unique_ptr<MeasurementSetup> setup;
    std::unique_ptr<GraphWidget> graph;
};

// 1024 bins on 512 pixels: two bins a pixel, bin 0 at 256. 200 high: 0 dB at 19, -105 dB at 180,
// -52 dB at 99.
void TestGraphWidget::init()
{
    setup = std::make_unique<MeasurementSetup>();
    setup->fftLengthIndex = 12;
    setup->nbwSrate = 0.5; // band edges at bins -256 and 256, pixels 128 and 384
    graph = std::make_unique<GraphWidget>();
    graph->setSetup(setup.get());
    graph->resize(512, 200);
    graph->show();
    QVERIFY(QTest::qWaitForWindowExposed(graph.get()));
}

void TestGraphWidget::addNotch(qint32 start, qint32 stop, double depth)
{
    Notch added;
    added.startIndex = start;
    added.stopIndex = stop;
    added.depth = depth;
    setup->notches->items.append(added);
    paint();
}

void TestGraphWidget::paint()
{
    graph->grab();
}

void TestGraphWidget::moveTo(QPoint position, Qt::MouseButtons buttons)
{
    QMouseEvent event(QEvent::MouseMove, position, graph->mapToGlobal(position), Qt::NoButton,
                      buttons, Qt::NoModifier);
    QApplication::sendEvent(graph.get(), &event);
}

void TestGraphWidget::drag(QPoint from, QPoint to)
{
    moveTo(from);
    QTest::mousePress(graph.get(), Qt::LeftButton, Qt::NoModifier, from);
    moveTo((from + to) / 2, Qt::LeftButton);
    paint();
    moveTo(to, Qt::LeftButton);
    QTest::mouseRelease(graph.get(), Qt::LeftButton, Qt::NoModifier, to);
    paint();
}

QColor TestGraphWidget::pixel(int x, int y) const
{
    const QImage image = graph->grab().toImage();
    const double ratio = image.devicePixelRatio();
    return image.pixelColor(static_cast<int>(x * ratio), static_cast<int>(y * ratio));
}

void TestGraphWidget::bandIsOutlinedAndTheCarrierGreen()
{
    addNotch(-100, -60, -52.0);                    // pixels 206 to 226
    QCOMPARE(pixel(50, 180), QColor(Qt::yellow));  // floor below the band
    QCOMPARE(pixel(128, 100), QColor(Qt::yellow)); // lower band edge
    QCOMPARE(pixel(384, 100), QColor(Qt::yellow));
    QCOMPARE(pixel(300, 19), QColor(Qt::yellow)); // top of the band
    QCOMPARE(pixel(216, 99), QColor(Qt::yellow)); // bottom of the notch
    QCOMPARE(pixel(216, 60), QColor(Qt::black));  // inside it
    QCOMPARE(pixel(60, 60), QColor(Qt::black));   // outside the band
    const QColor carrier = pixel(256, 100);
    QVERIFY(carrier.green() > 100 && carrier.red() < 20 && carrier.blue() < 20);
}

void TestGraphWidget::hoveredNotchIsHighlighted()
{
    addNotch(-100, -60, -52.0);
    moveTo({216, 60});
    QCOMPARE(pixel(216, 60), QColor(50, 50, 50));
    moveTo({300, 60});
    QCOMPARE(pixel(216, 60), QColor(Qt::black));
}

void TestGraphWidget::carrierModeDrawsACombAndIgnoresTheMouse()
{
    setup->notchOrCarrier = 1;
    addNotch(100, 100, 0.0);
    QCOMPARE(pixel(306, 100), QColor(Qt::yellow));
    QCOMPARE(pixel(300, 180), QColor(Qt::yellow)); // the floor runs through
    QCOMPARE(pixel(128, 100), QColor(Qt::black));  // no band edge
    QSignalSpy changed(graph.get(), &GraphWidget::graphChanged);
    drag({306, 100}, {350, 100});
    drag({100, 5}, {200, 150});
    QCOMPARE(changed.count(), 0);
    QCOMPARE(setup->notches->items.size(), 1);
    QCOMPARE(notch().startIndex, 100);
}

void TestGraphWidget::bodyDragMovesBothEdges()
{
    addNotch(-100, -60, -52.0);
    QSignalSpy changed(graph.get(), &GraphWidget::graphChanged);
    drag({216, 60}, {246, 70});
    QCOMPARE(notch().startIndex, -40);
    QCOMPARE(notch().stopIndex, 0);
    QCOMPARE(notch().depth, -52.0);
    QCOMPARE(notch().startFreq, -40 * 97656.25); // the frequencies caught up
    QCOMPARE(changed.count(), 1);
}

void TestGraphWidget::edgeDragMovesOneEdge()
{
    addNotch(-100, -20, -52.0); // pixels 206 to 246, body 207 to 245
    drag({202, 60}, {192, 60});
    QCOMPARE(notch().startIndex, -120);
    QCOMPARE(notch().stopIndex, -20);
    drag({250, 60}, {260, 60});
    QCOMPARE(notch().startIndex, -120);
    QCOMPARE(notch().stopIndex, 0);
}

void TestGraphWidget::leftEdgePastTheRightOneIsSwappedAtTheRelease()
{
    addNotch(-100, -20, -52.0);
    drag({202, 60}, {262, 60}); // 120 bins to the right
    QCOMPARE(notch().startIndex, -20);
    QCOMPARE(notch().stopIndex, 20);
    QCOMPARE(notch().startFreq, -20 * 97656.25);
    QCOMPARE(notch().stopFreq, 20 * 97656.25);
}

void TestGraphWidget::dragPastTheBandEndsOneBinInside()
{
    addNotch(100, 140, -52.0); // pixels 306 to 326
    drag({316, 60}, {500, 60});
    QCOMPARE(notch().stopIndex, 255);
}

void TestGraphWidget::depthSticksAtZeroAndHasNoFloor()
{
    addNotch(-100, 0, -52.0); // depth handle from y 98 to 108
    drag({231, 103}, {231, 195});
    QVERIFY(notch().depth < -105.0);
    const double deep = notch().depth;
    QSignalSpy changed(graph.get(), &GraphWidget::graphChanged);
    const int y = static_cast<int>(notch().depthHandleRect.center().y());
    QTest::mousePress(graph.get(), Qt::LeftButton, Qt::NoModifier, {231, y});
    moveTo({231, 0}, Qt::LeftButton);
    QTest::mouseRelease(graph.get(), Qt::LeftButton, Qt::NoModifier, {231, 0});
    QVERIFY(deep < 0.0);
    QCOMPARE(notch().depth, 0.0);
    QCOMPARE(changed.count(), 1);
}

void TestGraphWidget::rubberBandAddsANotch()
{
    QSignalSpy changed(graph.get(), &GraphWidget::graphChanged);
    drag({266, 5}, {286, 100});
    QCOMPARE(setup->notches->items.size(), 1);
    QCOMPARE(notch().startIndex, 20);
    QCOMPARE(notch().stopIndex, 60);
    QCOMPARE(notch().depth, -52.0);
    QCOMPARE(notch().center, 40 * 97656.25);
    QCOMPARE(changed.count(), 1);
}

void TestGraphWidget::rubberBandFromRightToLeftIsSwapped()
{
    drag({286, 5}, {266, 100});
    QCOMPARE(notch().startIndex, 20);
    QCOMPARE(notch().stopIndex, 60);
}

void TestGraphWidget::rubberBandAboveTheTopAddsNothingButReports()
{
    QSignalSpy changed(graph.get(), &GraphWidget::graphChanged);
    drag({266, 5}, {286, 15});
    QVERIFY(setup->notches->items.isEmpty());
    QCOMPARE(changed.count(), 1);
}

void TestGraphWidget::clickOnNothingReports()
{
    QSignalSpy changed(graph.get(), &GraphWidget::graphChanged);
    QTest::mouseClick(graph.get(), Qt::LeftButton, Qt::NoModifier, {300, 100});
    QCOMPARE(changed.count(), 1);
    QTest::mouseClick(graph.get(), Qt::MiddleButton, Qt::NoModifier, {300, 100});
    QCOMPARE(changed.count(), 1);
}

void TestGraphWidget::lastOfOverlappingNotchesIsDragged()
{
    addNotch(-100, 0, -52.0);
    addNotch(-80, -20, -52.0);
    drag({231, 60}, {241, 60});
    QCOMPARE(notch(0).startIndex, -100);
    QCOMPARE(notch(1).startIndex, -60);
}

void TestGraphWidget::cursorShowsWhatADragWouldDo()
{
    addNotch(-100, 0, -52.0); // pixels 206 to 256
    moveTo({231, 103});
    QCOMPARE(graph->cursor().shape(), Qt::SizeVerCursor);
    moveTo({202, 60});
    QCOMPARE(graph->cursor().shape(), Qt::SizeHorCursor);
    moveTo({260, 60});
    QCOMPARE(graph->cursor().shape(), Qt::SizeHorCursor);
    moveTo({231, 60});
    QCOMPARE(graph->cursor().shape(), Qt::SizeAllCursor);
    moveTo({231, 5});
    QCOMPARE(graph->cursor().shape(), Qt::ArrowCursor);
    moveTo({231, 60});
    moveTo({400, 60});
    QCOMPARE(graph->cursor().shape(), Qt::ArrowCursor);
}

void TestGraphWidget::menuDeletesTheNotch()
{
    addNotch(-100, -60, -52.0);
    addNotch(60, 100, -52.0);
    QSignalSpy changed(graph.get(), &GraphWidget::graphChanged);
    QString entry;
    const auto answer = [&entry](Qt::Key key) {
        QTimer::singleShot(0, [&entry, key] {
            auto* menu = qobject_cast<QMenu*>(QApplication::activePopupWidget());
            if (menu != nullptr) {
                entry = menu->actions().constFirst()->text();
                QTest::keyClick(menu, Qt::Key_Down);
                QTest::keyClick(menu, key);
            }
        });
    };
    answer(Qt::Key_Escape);
    QTest::mouseRelease(graph.get(), Qt::RightButton, Qt::NoModifier, {216, 60});
    QCOMPARE(setup->notches->items.size(), 2);
    answer(Qt::Key_Return);
    QTest::mouseRelease(graph.get(), Qt::RightButton, Qt::NoModifier, {216, 60});
    QCOMPARE(entry, QStringLiteral("Delete Notch"));
    QCOMPARE(setup->notches->items.size(), 1);
    QCOMPARE(notch().startIndex, 60);
    QCOMPARE(changed.count(), 1);
}

void TestGraphWidget::menuOpensOnNotchesOnly()
{
    addNotch(-100, -60, -52.0);
    QTest::mouseRelease(graph.get(), Qt::RightButton, Qt::NoModifier,
                        {300, 60}); // would not return
    QCOMPARE(setup->notches->items.size(), 1);
}

void TestGraphWidget::withoutASetupNothingHappens()
{
    graph->setSetup(nullptr);
    drag({266, 5}, {286, 100});
    QCOMPARE(pixel(256, 100), QColor(Qt::black));
}

QTEST_MAIN(TestGraphWidget)
#include "test_graph_widget.moc"
