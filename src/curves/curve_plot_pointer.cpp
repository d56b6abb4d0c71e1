// What the pointer and the keys do to the chart, and what is painted over its picture.
#include "curves/curve_plot.h"

#include "chart/chart_style.h"

#include <QKeyEvent>
#include <QPainter>
#include <QWheelEvent>

#include <cmath>

namespace {

constexpr double reach = 24.0; // pixels, from a line to the pointer
constexpr double step = 1.25;  // of a zoom

QPointF arrowOf(int key)
{
    switch (key) {
    case Qt::Key_Left:
        return {-1.0, 0.0};
    case Qt::Key_Right:
        return {1.0, 0.0};
    case Qt::Key_Up:
        return {0.0, 1.0};
    case Qt::Key_Down:
        return {0.0, -1.0};
    default:
        return {};
    }
}

} // namespace

void CurvePlot::setCursor(const PlotPlace& newPlace)
{
    if (newPlace != place) {
        place = newPlace;
        update();
    }
}

// Escape is wanted here before a shortcut of the window, but only when there is something to let
// go.
bool CurvePlot::event(QEvent* event)
{
    if (event->type() == QEvent::ShortcutOverride) {
        const int key = static_cast<QKeyEvent*>(event)->key();
        if (key == Qt::Key_Escape && (place.isSome() || !dragged.isNull())) {
            event->accept();
            return true;
        }
    }
    return QWidget::event(event);
}

void CurvePlot::mousePressEvent(QMouseEvent* event)
{
    if (event->button() == Qt::LeftButton) {
        pressed = event->localPos();
        dragged = {};
    }
}

void CurvePlot::mouseMoveEvent(QMouseEvent* event)
{
    if ((event->buttons() & Qt::LeftButton) != 0) {
        const QRectF rectangle = QRectF(pressed, event->localPos()).normalized();
        dragged = rectangle & frame().area;
        setCursor({});
        update();
        return;
    }
    setCursor(placeNear(event->localPos(), reach, shown, frame()));
}

void CurvePlot::mouseReleaseEvent(QMouseEvent* event)
{
    constexpr double least = 8.0; // pixels; less is a click
    if (event->button() != Qt::LeftButton) {
        return;
    }
    const QRectF rectangle = dragged;
    dragged = {};
    update();
    if (rectangle.width() >= least && rectangle.height() >= least) {
        chooseSpan(frame().spanOf(rectangle));
    } else if (place.isSome()) {
        emit picked(shown.lines.at(place.line).result);
    }
}

void CurvePlot::mouseDoubleClickEvent(QMouseEvent* event)
{
    if (event->button() == Qt::LeftButton) {
        showWhole();
    }
}

void CurvePlot::wheelEvent(QWheelEvent* event)
{
    constexpr double notch = 120.0; // of a wheel
    const double turns = event->angleDelta().y() / notch;
    if (turns != 0.0 && frame().area.contains(event->position())) {
        chooseSpan(frame().zoomed(std::pow(step, -turns), event->position()));
        setCursor(placeNear(event->position(), reach, shown, frame()));
    }
    event->accept();
}

void CurvePlot::leaveEvent(QEvent* event)
{
    QWidget::leaveEvent(event);
    setCursor({});
}

bool CurvePlot::moveCursor(int key)
{
    const QPointF arrow = arrowOf(key);
    if (arrow.isNull()) {
        return false;
    }
    setCursor(arrow.x() != 0.0 ? besidePlace(place, static_cast<int>(arrow.x()), shown)
                               : otherLinePlace(place, static_cast<int>(-arrow.y()), shown));
    return true;
}

void CurvePlot::keyPressEvent(QKeyEvent* event)
{
    constexpr double share = 0.1; // of the span, that an arrow moves
    const QPointF arrow = arrowOf(event->key());
    if (event->modifiers() == Qt::ControlModifier && !arrow.isNull()) {
        chooseSpan(frame().moved(share * arrow.x(), share * arrow.y()));
        return;
    }
    if (moveCursor(event->key())) {
        return;
    }
    switch (event->key()) {
    case Qt::Key_Plus:
        return zoom(1.0 / step);
    case Qt::Key_Minus:
        return zoom(step);
    case Qt::Key_Home:
        return showWhole();
    case Qt::Key_Escape:
        dragged = {};
        return setCursor({});
    case Qt::Key_Return:
    case Qt::Key_Enter:
        if (place.isSome()) {
            emit picked(shown.lines.at(place.line).result);
        }
        return;
    default:
        QWidget::keyPressEvent(event);
    }
}

void CurvePlot::resizeEvent(QResizeEvent* event)
{
    QWidget::resizeEvent(event);
    touchGround();
}

void CurvePlot::paintEvent(QPaintEvent* /*event*/)
{
    if (isStale || picture.devicePixelRatio() != devicePixelRatioF()) {
        renderPicture();
    }
    QPainter painter(this);
    painter.drawImage(0, 0, picture);
    if (!hint.isEmpty()) {
        paintHint(painter);
    }
    painter.setRenderHint(QPainter::Antialiasing);
    if (!dragged.isNull()) {
        QColor veil = palette().color(QPalette::Highlight);
        painter.setPen(veil);
        veil.setAlpha(40);
        painter.setBrush(veil);
        painter.drawRect(dragged);
    }
    if (place.isSome()) {
        paintCursor(painter);
    }
    if (hasFocus()) {
        painter.setBrush(Qt::NoBrush);
        painter.setPen(QPen(palette().color(QPalette::Highlight), 2.0));
        painter.drawRect(rect().adjusted(1, 1, -1, -1));
    }
}

// The whole line strong, so that it is told from those around it.
void CurvePlot::paintCursor(QPainter& painter) const
{
    const PlotFrame now = frame();
    const PlotLine& line = shown.lines.at(place.line);
    QPolygonF course;
    for (const PlotPoint& point : line.points) {
        course << now.positionOf(point.value);
    }
    const QPointF at = seenPosition(line.points.at(place.point).value, now);
    painter.save();
    painter.setClipRect(now.area);
    painter.setPen(QPen(line.colour, 3.0));
    painter.drawPolyline(course);
    painter.setPen(QPen(ChartStyle::thresholdColour(), 1.0, Qt::DotLine));
    painter.drawLine(QPointF(at.x(), now.area.top()), QPointF(at.x(), now.area.bottom()));
    painter.setPen(QPen(line.colour, 2.0));
    painter.setBrush(Qt::white);
    painter.drawEllipse(at, 4.5, 4.5);
    painter.restore();
    paintReading(painter, at);
}

// Beside the point, on the side where there is room.
void CurvePlot::paintReading(QPainter& painter, const QPointF& at) const
{
    constexpr double margin = 8.0;
    constexpr double gap = 14.0;
    const QStringList texts = readingTexts(place, shown);
    const QFontMetricsF metrics(ChartStyle::font(12));
    const double widest = 0.6 * width();
    QStringList fitting;
    double wide = 0.0;
    for (const QString& text : texts) {
        fitting << metrics.elidedText(text, Qt::ElideMiddle, widest);
        wide = std::max(
            wide, QFontMetricsF(ChartStyle::font(12, true)).horizontalAdvance(fitting.constLast()));
    }
    QRectF box(0.0, 0.0, wide + 2.0 * margin, metrics.lineSpacing() * texts.size() + 2.0 * margin);
    const bool hasRoomOnTheRight = at.x() + gap + box.width() < width();
    box.moveLeft(std::max(0.0, hasRoomOnTheRight ? at.x() + gap : at.x() - gap - box.width()));
    box.moveTop(std::max(0.0, std::min(at.y() - box.height() / 2.0, height() - box.height())));
    painter.setPen(QColor(178, 184, 190));
    painter.setBrush(QColor(255, 255, 255, 240));
    painter.drawRoundedRect(box, 2.0, 2.0);
    painter.setPen(ChartStyle::textColour());
    double y = box.top() + margin + metrics.ascent();
    for (const QString& text : qAsConst(fitting)) {
        painter.setFont(ChartStyle::font(12, text == fitting.constFirst()));
        painter.drawText(QPointF(box.left() + margin, y), text);
        y += metrics.lineSpacing();
    }
}

void CurvePlot::paintHint(QPainter& painter) const
{
    const QRectF area = frame().area.adjusted(24, 24, -24, -24);
    painter.fillRect(rect(), Qt::white);
    painter.setFont(ChartStyle::font(15));
    painter.setPen(ChartStyle::thresholdColour());
    painter.drawText(area, Qt::AlignCenter | Qt::TextWordWrap, hint);
}
