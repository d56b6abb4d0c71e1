// The lower half of the window: a schematic of the occupied band with its notches, or in carrier
// mode a comb of lines, and the graphical editor of the notch table. Shows what the signal is
// meant to look like and never reads samples.
//
// Notches are dragged, resized, deepened, drawn with a rubber band from above the top level, and
// deleted from a context menu. Hit testing uses the rectangles of the last paint. Main thread.
#pragma once

#include <QPoint>
#include <QRect>
#include <QVector>
#include <QWidget>

class GraphGeometry;
struct MeasurementSetup;
struct Notch;

// What the left button drags.
enum class DragMode { None, WholeNotch, LeftEdge, RightEdge, DepthEdge, RubberBand };

class GraphWidget : public QWidget
{
    Q_OBJECT

public:
    explicit GraphWidget(QWidget* parent = nullptr);

    // The record to show and edit, which must outlive the widget. Without one the widget is black
    // and ignores the mouse.
    void setSetup(MeasurementSetup* shownSetup);

signals:
    // After every left-button release in notch mode, whether it changed anything or not, after
    // every deletion, and when a menu closes that has taken the release of a drag.
    void graphChanged();

protected:
    void mousePressEvent(QMouseEvent* event) override;
    void mouseReleaseEvent(QMouseEvent* event) override;
    void mouseMoveEvent(QMouseEvent* event) override;
    void paintEvent(QPaintEvent* event) override;

private:
    bool isNotchMode() const;
    GraphGeometry mouseGeometry() const;
    void pressOnNotches(QPoint position);
    void showCursor();
    void dragNotchTo(QPoint position);
    void addRubberBandNotch();
    void endDrag();
    void forgetDrag();
    void endInterruptedDrag(bool released);
    bool isDeletionChosen(QPoint globalPosition);
    void deleteByMenu(QPoint position, QPoint globalPosition);
    QVector<QPointF> outline(const GraphGeometry& geometry, int width) const;
    void paintNotches(QPainter& painter, const GraphGeometry& geometry);
    void paintOutside(QPainter& painter, const GraphGeometry& geometry, int width) const;
    void paintCarriers(QPainter& painter, const GraphGeometry& geometry) const;

    MeasurementSetup* setup = nullptr;
    bool rubberBandActive = false;
    QPoint lastPos;   // of the last processed step of a drag
    QPoint cursorPos; // last known position
    QRect rubberBand;
    DragMode dragMode = DragMode::None;
    bool releaseMayBeLost = false; // a menu was open during the drag
    int dragNotch = -1;            // row; keeps its value after a drag ends
};
