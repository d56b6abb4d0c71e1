// A graph with a record of its own, and what an operator does to it with the mouse.
//
// 1024 bins on 512 pixels: two bins a pixel, bin 0 at 256. 200 high: 0 dB at 19, -105 dB at 180,
// -52 dB at 99. The band ends at bins -256 and 256, pixels 128 and 384.
#pragma once

#include "graph/graph_widget.h"
#include "kit/menu_answers.h"
#include "setup/measurement_setup.h"

#include <QApplication>
#include <QMouseEvent>
#include <QtTest>

class GraphDriver
{
public:
    GraphDriver()
    {
        setup.fftLengthIndex = 12;
        setup.nbwSrate = 0.5;
        graph.setSetup(&setup);
        graph.resize(512, 200);
        graph.show();
    }

    void addNotch(qint32 start, qint32 stop, double depth)
    {
        Notch added;
        added.startIndex = start;
        added.stopIndex = stop;
        added.depth = depth;
        setup.notches->items.append(added);
        paint();
    }

    const Notch& notch(int row = 0) const { return setup.notches->items.at(row); }
    int count() const { return setup.notches->items.size(); }

    void paint() { graph.grab(); }

    void moveTo(QPoint position, Qt::MouseButtons buttons = Qt::NoButton)
    {
        QMouseEvent event(QEvent::MouseMove, position, graph.mapToGlobal(position), Qt::NoButton,
                          buttons, Qt::NoModifier);
        QApplication::sendEvent(&graph, &event);
    }

    void press(QPoint position)
    {
        QTest::mousePress(&graph, Qt::LeftButton, Qt::NoModifier, position);
    }

    void release(QPoint position)
    {
        QTest::mouseRelease(&graph, Qt::LeftButton, Qt::NoModifier, position);
        paint();
    }

    void drag(QPoint from, QPoint to)
    {
        moveTo(from);
        press(from);
        moveTo((from + to) / 2, Qt::LeftButton);
        paint();
        moveTo(to, Qt::LeftButton);
        release(to);
    }

    // Right-clicks and answers the menus that open; returns the texts of their entries.
    QStringList rightClick(QPoint position, const QList<Qt::Key>& answers)
    {
        const MenuAnswers menus(answers);
        QTest::mouseRelease(&graph, Qt::RightButton, Qt::NoModifier, position);
        return menus.entries;
    }

    QColor pixel(int x, int y)
    {
        const QImage image = graph.grab().toImage();
        const double ratio = image.devicePixelRatio();
        return image.pixelColor(static_cast<int>(x * ratio), static_cast<int>(y * ratio));
    }

    MeasurementSetup setup;
    GraphWidget graph;
};
