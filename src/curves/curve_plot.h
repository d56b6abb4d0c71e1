// The chart of the window: lines of NPR with a reading under the pointer. Axes are those of Qt
// Charts; they and the lines are drawn into a kept picture when they change; pointer, reading and
// zoom rectangle are painted over it. Main thread.
//
// Mouse: a drag zooms to its rectangle, the wheel zooms around the pointer, a double click goes
// back, a click picks the line below. Keys: left and right go along a line, up and down to another,
// plus and minus zoom, Ctrl with an arrow moves, Home goes back, Return picks, Escape lets go.
#pragma once

#include "curves/line_pictures.h"
#include "curves/plot_content.h"
#include "curves/plot_reading.h"

#include <QGraphicsScene>
#include <QImage>
#include <QWidget>

namespace QtCharts {
class QChart;
class QValueAxis;
} // namespace QtCharts

class CurvePlot : public QWidget
{
    Q_OBJECT

public:
    explicit CurvePlot(QWidget* parent = nullptr);
    ~CurvePlot() override;

    // Keeps a zoom that somebody chose; cursor and, where they have to, the axes follow otherwise.
    void setContent(const PlotContent& content);
    // What is said where there is no line to see.
    void setHint(const QString& text);
    const QString& hintText() const { return hint; }

    void zoom(double factor); // around the cursor or the middle; below 1 enlarges
    void showWhole();
    bool isZoomed() const { return hasOwnSpan; }

    PlotFrame frame() const;
    const PlotPlace& cursor() const { return place; }
    // Another one for each picture that was drawn.
    qint64 pictureKey() const { return picture.cacheKey(); }

    QSize sizeHint() const override { return {720, 480}; }

signals:
    void picked(int result);
    void zoomed(bool isZoomed);

protected:
    bool event(QEvent* event) override;
    void paintEvent(QPaintEvent* event) override;
    void resizeEvent(QResizeEvent* event) override;
    void mousePressEvent(QMouseEvent* event) override;
    void mouseMoveEvent(QMouseEvent* event) override;
    void mouseReleaseEvent(QMouseEvent* event) override;
    void mouseDoubleClickEvent(QMouseEvent* event) override;
    void wheelEvent(QWheelEvent* event) override;
    void keyPressEvent(QKeyEvent* event) override;
    void leaveEvent(QEvent* event) override;

private:
    void addAxes();
    void setSpan(const PlotSpan& span);
    void chooseSpan(const PlotSpan& span);
    void placeTicks(QtCharts::QValueAxis& axis, double low, double high);
    void setCursor(const PlotPlace& newPlace);
    bool moveCursor(int key);
    void touch();
    void touchGround();
    void renderGround(double density);
    void renderPicture();
    void paintLevels(QPainter& painter, const PlotFrame& inPixels, double density) const;
    void paintCursor(QPainter& painter) const;
    void paintReading(QPainter& painter, const QPointF& at) const;
    void paintHint(QPainter& painter) const;

    QGraphicsScene scene;
    QtCharts::QChart* chart;
    QtCharts::QValueAxis* across = nullptr;
    QtCharts::QValueAxis* up = nullptr;
    PlotContent shown;
    LinePictures pictures;
    QImage ground;     // the axes
    QRectF groundArea; // theirs when they were drawn
    QImage picture;
    bool isGroundStale = true;
    bool isStale = true;
    bool hasOwnSpan = false;
    PlotSpan span;
    PlotPlace place;
    QPointF pressed;
    QRectF dragged;
    QString hint;
};
