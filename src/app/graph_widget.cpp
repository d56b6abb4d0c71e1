#include "app/graph_widget.h"

#include "app/graph_geometry.h"
#include "setup/measurement_setup.h"
#include "setup/truncation.h"

#include <QMenu>
#include <QMouseEvent>
#include <QPainter>
#include <QPainterPath>
#include <QPointer>

namespace {

void moveBin(qint32& bin, qint64 distance)
{
    bin = truncatedToInt32(static_cast<double>(bin - distance));
}

struct Grip
{
    QRectF Notch::*area;
    int dragMode;
    Qt::CursorShape cursor;
};

// In the order of the tests: where grips overlap, the first one takes the mouse.
constexpr Grip grips[] = {
    {&Notch::depthHandleRect, 4, Qt::SizeVerCursor},
    {&Notch::leftHandleRect, 2, Qt::SizeHorCursor},
    {&Notch::rightHandleRect, 3, Qt::SizeHorCursor},
    {&Notch::bodyRect, 1, Qt::SizeAllCursor},
};

const Grip* gripAt(const Notch& notch, QPoint position)
{
    for (const Grip& grip : grips) {
        if ((notch.*grip.area).contains(position)) {
            return &grip;
        }
    }
    return nullptr;
}

} // namespace

GraphWidget::GraphWidget(QWidget* parent) : QWidget(parent)
{
    setMouseTracking(true);
}

void GraphWidget::setSetup(MeasurementSetup* shownSetup)
{
    setup = shownSetup;
    update();
}

bool GraphWidget::isNotchMode() const
{
    return setup != nullptr && setup->notchOrCarrier == 0;
}

GraphGeometry GraphWidget::mouseGeometry() const
{
    return {rect().size(), setup->fftLength()};
}

void GraphWidget::mousePressEvent(QMouseEvent* event)
{
    if (!isNotchMode() || event->button() != Qt::LeftButton) {
        return;
    }
    lastPos = event->pos();
    if (lastPos.y() < mouseGeometry().yOfLevel(GraphGeometry::topLevel)) {
        dragMode = RubberBand;
        // Deliberate: the other corner stays where it was until the mouse moves.
        rubberBand.setTopLeft(lastPos);
        rubberBandActive = true;
        return;
    }
    pressOnNotches(lastPos);
}

// No early exit: where notches overlap, the last in the list wins.
void GraphWidget::pressOnNotches(QPoint position)
{
    const QList<Notch>& notches = setup->notches->items;
    for (int row = 0; row < notches.size(); ++row) {
        if (const Grip* grip = gripAt(notches.at(row), position)) {
            dragMode = static_cast<DragMode>(grip->dragMode);
            dragNotch = row;
        }
    }
}

void GraphWidget::mouseMoveEvent(QMouseEvent* event)
{
    cursorPos = event->pos();
    if (!isNotchMode()) {
        return;
    }
    if (dragMode == NoDrag && !rubberBandActive) {
        showCursor();
    }
    if (dragMode == RubberBand) {
        rubberBand.setBottomRight(cursorPos);
    } else if (dragNotch >= 0 && dragNotch < setup->notches->items.size()) {
        dragNotchTo(cursorPos);
    }
    lastPos = cursorPos;
    update();
}

void GraphWidget::showCursor()
{
    Qt::CursorShape shape = Qt::ArrowCursor;
    if (cursorPos.y() >= mouseGeometry().yOfLevel(GraphGeometry::topLevel)) {
        for (const Notch& notch : qAsConst(setup->notches->items)) {
            if (const Grip* grip = gripAt(notch, cursorPos)) {
                shape = grip->cursor;
            }
        }
    }
    setCursor(shape);
}

// Only bins and depth change here, so that the picture follows the mouse; the frequencies catch up
// at the release. The depth has no lower bound.
void GraphWidget::dragNotchTo(QPoint position)
{
    const GraphGeometry geometry = mouseGeometry();
    const qint64 bins = qint64{geometry.binAt(lastPos.x())} - geometry.binAt(position.x());
    const qint64 decibels = qint64{geometry.depthAt(lastPos.y())} - geometry.depthAt(position.y());
    if (dragMode == NoDrag) {
        return;
    }
    Notch& notch = setup->notches->items[dragNotch];
    if (dragMode == WholeNotch || dragMode == LeftEdge) {
        moveBin(notch.startIndex, bins);
    }
    if (dragMode == WholeNotch || dragMode == RightEdge) {
        moveBin(notch.stopIndex, bins);
    }
    if (dragMode == DepthEdge) {
        notch.depth = qMin(0.0, notch.depth - static_cast<double>(decibels));
    }
}

void GraphWidget::mouseReleaseEvent(QMouseEvent* event)
{
    if (!isNotchMode()) {
        return;
    }
    if (event->button() == Qt::LeftButton) {
        endDrag();
    } else if (event->button() == Qt::RightButton) {
        deleteByMenu(event->pos(), event->globalPos());
    }
}

// A band that ends above the top level adds nothing.
void GraphWidget::addRubberBandNotch()
{
    const GraphGeometry geometry = mouseGeometry();
    Notch notch;
    notch.startIndex = geometry.binAt(rubberBand.left());
    notch.stopIndex = geometry.binAt(rubberBand.right());
    notch.depth = geometry.depthAt(rubberBand.bottom());
    if (notch.depth < 0.0) {
        setup->notches->items.append(notch);
    }
}

// Deliberate: also a click that hit nothing reports a change, so each left click in notch mode
// invalidates the signal.
void GraphWidget::endDrag()
{
    if (dragMode == RubberBand) {
        addRubberBandNotch();
    }
    if (dragMode != NoDrag && dragMode != DepthEdge) {
        tidyNotches(*setup);
    }
    rubberBandActive = false;
    dragMode = NoDrag;
    update();
    emit graphChanged();
}

// Deliberate: the loop goes on with the next number, so the row that moved up into a deleted place
// is not asked about. Anything may happen while a menu is open, so all is looked at afresh.
void GraphWidget::deleteByMenu(QPoint position, QPoint globalPosition)
{
    const QPointer<GraphWidget> alive(this);
    for (int row = 0; alive && row < setup->notches->items.size(); ++row) {
        if (!setup->notches->items.at(row).bodyRect.contains(position)) {
            continue;
        }
        QMenu menu;
        const QAction* deletion = menu.addAction(QStringLiteral("Delete Notch"));
        if (menu.exec(globalPosition) != deletion || !alive) {
            continue;
        }
        if (row < setup->notches->items.size()) {
            setup->notches->items.removeAt(row);
            update();
            emit graphChanged();
        }
    }
}

// The scale is that of the event's rectangle: the whole widget for every repaint that the program
// asks for.
void GraphWidget::paintEvent(QPaintEvent* event)
{
    QPainter painter(this);
    painter.setRenderHint(QPainter::Antialiasing);
    painter.fillRect(event->rect(), Qt::black);
    if (setup == nullptr) {
        return;
    }
    const int width = event->rect().width();
    const int height = event->rect().height();
    const GraphGeometry geometry(event->rect().size(), setup->fftLength());
    paintOutline(painter, geometry, width);
    if (isNotchMode()) {
        paintNotches(painter, geometry);
        paintOutside(painter, geometry, width);
    }
    QPen carrier(Qt::green);
    carrier.setCosmetic(true);
    painter.setPen(carrier);
    const int middle = truncatedToInt32(width * 0.5);
    painter.drawLine(middle, 0, middle, height);
    if (setup->notchOrCarrier == 1) {
        paintCarriers(painter, geometry);
    }
    if (rubberBandActive) {
        painter.setPen(Qt::white);
        painter.drawRect(rubberBand);
    }
}

// The list isn't sorted for this: notches out of order make the path double back.
void GraphWidget::paintOutline(QPainter& painter, const GraphGeometry& geometry, int width) const
{
    const int top = geometry.yOfLevel(GraphGeometry::topLevel);
    const int floor = geometry.yOfLevel(GraphGeometry::floorLevel);
    QPainterPath path(QPointF(0, floor));
    if (isNotchMode()) {
        const qint64 edge = bandEdge(*setup);
        path.lineTo(geometry.xOfBin(-edge), floor);
        path.lineTo(geometry.xOfBin(-edge), top);
        for (const Notch& notch : qAsConst(setup->notches->items)) {
            const int bottom = geometry.yOfLevel(GraphGeometry::levelOfDepth(notch.depth));
            path.lineTo(geometry.xOfBin(notch.startIndex), top);
            path.lineTo(geometry.xOfBin(notch.startIndex), bottom);
            path.lineTo(geometry.xOfBin(notch.stopIndex), bottom);
            path.lineTo(geometry.xOfBin(notch.stopIndex), top);
        }
        path.lineTo(geometry.xOfBin(edge), top);
        path.lineTo(geometry.xOfBin(edge), floor);
    }
    path.lineTo(width, floor);
    painter.setPen(QPen(Qt::yellow, 2));
    painter.drawPath(path);
}

void GraphWidget::paintNotches(QPainter& painter, const GraphGeometry& geometry)
{
    for (Notch& notch : setup->notches->items) {
        geometry.placeHandles(notch);
        const bool hovered = notch.bodyRect.contains(cursorPos);
        painter.fillRect(notch.bodyRect, hovered ? QColor(50, 50, 50) : QColor(Qt::black));
    }
}

void GraphWidget::paintOutside(QPainter& painter, const GraphGeometry& geometry, int width) const
{
    const qint64 edge = bandEdge(*setup);
    const int bottom = geometry.yOfLevel(GraphGeometry::floorLevel) - 1;
    const QRectF left(QPointF(0, 0), QPointF(geometry.xOfBin(-edge) - 1, bottom));
    const QRectF right(QPointF(width, 0), QPointF(geometry.xOfBin(edge) + 1, bottom));
    painter.fillRect(left, Qt::black);
    painter.fillRect(right, Qt::black);
}

void GraphWidget::paintCarriers(QPainter& painter, const GraphGeometry& geometry) const
{
    painter.setPen(QPen(Qt::yellow, 2));
    const int top = geometry.yOfLevel(GraphGeometry::topLevel);
    const int floor = geometry.yOfLevel(GraphGeometry::floorLevel);
    for (const Notch& carrier : qAsConst(setup->notches->items)) {
        const int x = geometry.xOfBin(carrier.startIndex);
        painter.drawLine(x, top, x, floor);
    }
}
