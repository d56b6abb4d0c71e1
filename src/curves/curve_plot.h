// The chart of the window: lines of NPR with a reading under the pointer. Axes and lines are those
// of Qt Charts, drawn into a kept picture when they change; pointer, reading and zoom rectangle are
// painted over it. Main thread.
//
// Mouse: a drag zooms to its rectangle, the wheel zooms around the pointer, a double click goes
// back, a click picks the line below. Keys: left and right go along a line, up and down to another,
// plus and minus zoom, Ctrl with an arrow moves, Home goes back, Return picks, Escape lets go.
#pragma once

#include "curves/plot_content.h"
#include "curves/plot_reading.h"

#include <QGraphicsScene>
#include <QPixmap>
#include <QWidget>

namespace QtCharts {
class QAbstractSeries;
class QAreaSeries;
class QChart;
class QLineSeries;
class QValueAxis;
} // namespace QtCharts

class CurvePlot : public QWidget
{
    Q_OBJECT

public:
    explicit CurvePlot(QWidget* parent = nullptr);
    ~CurvePlot() override;

    // Keeps a zoom that somebody chose; span and cursor follow the content otherwise.
    void setContent(const PlotContent& content);
    // What is said where there is no line to see.
    void setHint(const QString& text);

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
    // A line as it is drawn.
    struct Drawn
    {
        PlotLine line;
        QtCharts::QLineSeries* series;
        QtCharts::QAreaSeries* band; // null for none
    };

    void addAxes();
    void setSpan(const PlotSpan& span);
    void chooseSpan(const PlotSpan& span);
    void placeTicks(QtCharts::QValueAxis& axis, double low, double high);
    Drawn draw(const PlotLine& line);
    void redraw(Drawn& drawn, const PlotLine& line);
    static QVector<QtCharts::QAbstractSeries*> seriesOf(const Drawn& drawn);
    void erase(const Drawn& drawn);
    void attach(QtCharts::QAbstractSeries* series);
    void drawLevels();
    void setCursor(const PlotPlace& newPlace);
    bool moveCursor(int key);
    void touch();
    void renderPicture();
    void paintCursor(QPainter& painter) const;
    void paintReading(QPainter& painter, const QPointF& at) const;
    void paintHint(QPainter& painter) const;

    QGraphicsScene scene;
    QtCharts::QChart* chart;
    QtCharts::QValueAxis* across = nullptr;
    QtCharts::QValueAxis* up = nullptr;
    PlotContent shown;
    QVector<Drawn> lines;
    QVector<QtCharts::QLineSeries*> levels; // thresholds and limit
    QPixmap picture;
    bool isStale = true;
    bool hasOwnSpan = false;
    PlotSpan span;
    PlotPlace place;
    QPointF pressed;
    QRectF dragged;
    QString hint;
};
