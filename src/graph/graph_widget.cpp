#include "graph/graph_widget.h"

#include "base/truncation.h"
#include "graph/graph_geometry.h"
#include "setup/measurement_setup.h"

#include <QGuiApplication>
#include <QMenu>
#include <QMouseEvent>
#include <QPainter>
#include <QPointer>

namespace {

void moveBin(qint32& bin, qint64 distance)
{
    bin = truncatedToInt32(static_cast<double>(bin - distance));
}

struct Grip
{
    QRectF Notch::*area;
    DragMode dragMode;
    Qt::CursorShape cursor;
};

// In the order of the tests: where grips overlap, the first one takes the mouse.
constexpr Grip grips[] = {
    {&Notch::depthHandleRect, DragMode::DepthEdge, Qt::SizeVerCursor},
    {&Notch::leftHandleRect, DragMode::LeftEdge, Qt::SizeHorCursor},
    {&Notch::rightHandleRect, DragMode::RightEdge, Qt::SizeHorCursor},
    {&Notch::bodyRect, DragMode::WholeNotch, Qt::SizeAllCursor},
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

// Sees whether the left button is released over what it watches.
class LeftRelease : public QObject
{
public:
    bool isSeen() const { return seen; }

    bool eventFilter(QObject* receiver, QEvent* event) override
    {
        seen = seen || (event->type() == QEvent::MouseButtonRelease &&
                        static_cast<QMouseEvent*>(event)->button() == Qt::LeftButton);
        return QObject::eventFilter(receiver, event);
    }

private:
    bool seen = false;
};

QVector<QLineF> segmentsOf(const QVector<QPointF>& line)
{
    QVector<QLineF> segments;
    segments.reserve(line.size());
    for (int i = 1; i < line.size(); ++i) {
        if (line.at(i) != line.at(i - 1)) {
            segments.append({line.at(i - 1), line.at(i)});
        }
    }
    return segments;
}

QPointF direction(const QLineF& segment)
{
    const QLineF unit = segment.unitVector();
    return unit.p2() - unit.p1();
}

// Draws what one stroke of a pen with square ends and bevelled corners draws along upright and
// level segments. A stroke of so many segments costs the rasteriser the square of their number;
// drawn one by one, and the corners after them, they cost no more than there are.
void strokeSteps(QPainter& painter, const QVector<QPointF>& line, const QPen& pen)
{
    const double half = pen.widthF() / 2;
    const QVector<QLineF> segments = segmentsOf(line);
    painter.save();
    painter.setPen(QPen(pen.brush(), pen.widthF(), Qt::SolidLine, Qt::FlatCap));
    painter.drawLines(segments);
    painter.setPen(Qt::NoPen);
    painter.setBrush(pen.brush());
    for (int i = 1; i < segments.size(); ++i) {
        const QPointF corner = segments.at(i).p1();
        const QPointF bevel[] = {corner, corner + half * direction(segments.at(i - 1)),
                                 corner - half * direction(segments.at(i))};
        painter.drawConvexPolygon(bevel, 3);
    }
    for (const QPointF& end : {line.first(), line.last()}) {
        painter.drawRect(QRectF(end.x() - half, end.y() - half, 2 * half, 2 * half));
    }
    painter.restore();
}

} // namespace

GraphWidget::GraphWidget(QWidget* parent) : QWidget(parent)
{
    setMouseTracking(true);
    setAttribute(Qt::WA_OpaquePaintEvent);
}

void GraphWidget::setSetup(MeasurementSetup* shownSetup)
{
    setup = shownSetup;
    update();
}

bool GraphWidget::isNotchMode() const
{
    return setup != nullptr && setup->notchOrCarrier == NotchOrCarrier::Notch;
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
        dragMode = DragMode::RubberBand;
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
            dragMode = grip->dragMode;
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
    if (releaseMayBeLost && (event->buttons() & Qt::LeftButton) == 0) {
        endDrag();
    }
    if (dragMode == DragMode::None && !rubberBandActive) {
        showCursor();
    }
    if (dragMode == DragMode::RubberBand) {
        rubberBand.setBottomRight(cursorPos);
    } else if (dragMode != DragMode::None && dragNotch >= 0 &&
               dragNotch < setup->notches->items.size()) {
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
    Notch& notch = setup->notches->items[dragNotch];
    if (dragMode == DragMode::WholeNotch || dragMode == DragMode::LeftEdge) {
        moveBin(notch.startIndex, bins);
    }
    if (dragMode == DragMode::WholeNotch || dragMode == DragMode::RightEdge) {
        moveBin(notch.stopIndex, bins);
    }
    if (dragMode == DragMode::DepthEdge) {
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
    if (dragMode == DragMode::RubberBand) {
        addRubberBandNotch();
    }
    if (dragMode != DragMode::None && dragMode != DragMode::DepthEdge) {
        tidyNotches(*setup);
    }
    forgetDrag();
    emit graphChanged();
}

void GraphWidget::forgetDrag()
{
    rubberBandActive = false;
    releaseMayBeLost = false;
    dragMode = DragMode::None;
    update();
}

// A drag that a menu has interrupted. While the button is still held it goes on, but nobody knows
// who will get the release.
void GraphWidget::endInterruptedDrag(bool released)
{
    const bool held = !released && (QGuiApplication::mouseButtons() & Qt::LeftButton) != 0;
    if (dragMode == DragMode::None) {
        return;
    }
    if (!isNotchMode()) {
        forgetDrag();
    } else if (held) {
        releaseMayBeLost = true;
    } else {
        endDrag();
    }
}

// The menu gets the release of a drag that it interrupts. The widget may be gone afterwards.
bool GraphWidget::isDeletionChosen(QPoint globalPosition)
{
    LeftRelease release;
    QMenu menu;
    menu.installEventFilter(&release);
    const QAction* deletion = menu.addAction(QStringLiteral("Delete Notch"));
    connect(&menu, &QMenu::aboutToHide, this,
            [this, &release] { endInterruptedDrag(release.isSeen()); });
    return menu.exec(globalPosition) == deletion;
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
        if (!isDeletionChosen(globalPosition) || !alive) {
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
    strokeSteps(painter, outline(geometry, width), QPen(Qt::yellow, 2));
    if (isNotchMode()) {
        paintNotches(painter, geometry);
        paintOutside(painter, geometry, width);
    }
    QPen carrier(Qt::green);
    carrier.setCosmetic(true);
    painter.setPen(carrier);
    const int middle = truncatedToInt32(width * 0.5);
    painter.drawLine(middle, 0, middle, height);
    if (setup->notchOrCarrier == NotchOrCarrier::Carrier) {
        paintCarriers(painter, geometry);
    }
    if (rubberBandActive) {
        painter.setPen(Qt::white);
        painter.drawRect(rubberBand);
    }
}

// The list isn't sorted for this: notches out of order make the line double back.
QVector<QPointF> GraphWidget::outline(const GraphGeometry& geometry, int width) const
{
    const int top = geometry.yOfLevel(GraphGeometry::topLevel);
    const int floor = geometry.yOfLevel(GraphGeometry::floorLevel);
    QVector<QPointF> line{QPointF(0, floor)};
    if (isNotchMode()) {
        const QList<Notch>& notches = setup->notches->items;
        line.reserve(4 * notches.size() + 6);
        const qint64 edge = bandEdge(*setup);
        line << QPointF(geometry.xOfBin(-edge), floor) << QPointF(geometry.xOfBin(-edge), top);
        for (const Notch& notch : notches) {
            const int start = geometry.xOfBin(notch.startIndex);
            const int stop = geometry.xOfBin(notch.stopIndex);
            const int bottom = geometry.yOfLevel(GraphGeometry::levelOfDepth(notch.depth));
            line << QPointF(start, top) << QPointF(start, bottom) << QPointF(stop, bottom)
                 << QPointF(stop, top);
        }
        line << QPointF(geometry.xOfBin(edge), top) << QPointF(geometry.xOfBin(edge), floor);
    }
    line << QPointF(width, floor);
    return line;
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
    const double bottom = geometry.yOfLevel(GraphGeometry::floorLevel) - 1.0;
    const QRectF left(QPointF(0, 0), QPointF(geometry.xOfBin(-edge) - 1.0, bottom));
    const QRectF right(QPointF(width, 0), QPointF(geometry.xOfBin(edge) + 1.0, bottom));
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
