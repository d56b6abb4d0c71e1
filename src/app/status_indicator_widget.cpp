#include "app/status_indicator_widget.h"

#include <QPainter>
#include <QTimer>

namespace {

constexpr int dotRadius = 4; // pixels

constexpr int turnInterval = 63; // ms for one spoke
constexpr int spokeCount = 10;
constexpr int trailLength = 8; // spokes that fade behind the brightest
constexpr double minimumOpacity = 0.031415926535897934;
constexpr double hubRadius = 2.0; // pixels
constexpr QRect spokeBar(0, 0, 3, 1);

// How far the spoke lies behind the brightest one, against the turn.
int stepsBehind(int spoke, int brightest)
{
    const int distance = brightest - spoke;
    return distance < 0 ? distance + spokeCount : distance;
}

QColor spokeColor(int distance)
{
    double alpha = minimumOpacity;
    if (distance <= trailLength) {
        alpha = qBound(0.0, 1.0 - distance * (1.0 - minimumOpacity) / (trailLength + 1), 1.0);
    }
    QColor color(Qt::white);
    color.setAlphaF(alpha);
    return color;
}

void drawDot(QPainter& painter, const QRect& area, Qt::GlobalColor color)
{
    painter.setBrush(color);
    painter.drawEllipse(area.center(), dotRadius, dotRadius);
}

void drawWheel(QPainter& painter, const QRect& area, int brightest)
{
    for (int spoke = 0; spoke < spokeCount; ++spoke) {
        painter.save();
        painter.translate(area.center());
        painter.rotate(spoke * 360.0 / spokeCount);
        painter.translate(hubRadius, 0.0);
        painter.setBrush(spokeColor(stepsBehind(spoke, brightest)));
        painter.drawRect(spokeBar);
        painter.restore();
    }
}

} // namespace

StatusIndicatorWidget::StatusIndicatorWidget(QWidget* parent)
    : QWidget(parent), timer(new QTimer(this))
{
    timer->setInterval(turnInterval);
    connect(timer, &QTimer::timeout, this, &StatusIndicatorWidget::rotate);
}

void StatusIndicatorWidget::setState(int value)
{
    state = value;
    if (state == 2) {
        timer->start();
    } else if (state == 0 || state == 1) {
        timer->stop();
    }
    update();
}

void StatusIndicatorWidget::rotate()
{
    step = (step + 1) % spokeCount;
    update();
}

void StatusIndicatorWidget::paintEvent(QPaintEvent*)
{
    QPainter painter(this);
    painter.fillRect(rect(), Qt::transparent);
    painter.setRenderHint(QPainter::Antialiasing);
    painter.setPen(Qt::NoPen);
    if (state == 0) {
        drawDot(painter, rect(), Qt::green);
    } else if (state == 1) {
        drawDot(painter, rect(), Qt::red);
    } else if (state == 2) {
        drawWheel(painter, rect(), step);
    }
}
