#include "app/graph_widget.h"

#include <QPaintEvent>
#include <QPainter>

GraphWidget::GraphWidget(QWidget* parent) : QWidget(parent) {}

void GraphWidget::paintEvent(QPaintEvent* event)
{
    QPainter(this).fillRect(event->rect(), Qt::black);
}
