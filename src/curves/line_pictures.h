// Lines of a chart as kept pictures: the few pixels that each covers are kept until it changes. So
// a chart in which some lines are switched is put together in a moment; drawing lines takes long.
// Main thread.
#pragma once

#include "curves/plot_content.h"

#include <QImage>

#include <map>
#include <tuple>

class LinePictures
{
public:
    // Onto a picture of 32 bits without transparency, whose pixels the frame counts in: the lines
    // that are shown, chosen ones above the others. density: pixels that make a unit of a pen.
    void paint(QImage& picture, const QVector<PlotLine>& lines, const PlotFrame& frame,
               double density);

    // Lines for whose pixels there is no room are drawn each time.
    qint64 keptPixels() const { return keptTotal; }

private:
    using Key = std::tuple<PlotLine::Kind, int, int, int>;

    struct Pixel
    {
        qint32 x;
        qint32 y;
        QRgb colour; // premultiplied
    };

    struct Kept
    {
        PlotLine line;
        QVector<Pixel> pixels;
    };

    static Key keyOf(const PlotLine& line);
    void prepare(const QRect& room, const PlotFrame& newFrame, double newDensity);
    void dropAllBut(const QVector<PlotLine>& lines);
    void paintOne(QImage& picture, const PlotLine& line);
    void draw(QImage& picture, const PlotLine& line) const;
    QVector<Pixel> pixelsOf(const PlotLine& line);

    std::map<Key, Kept> kept;
    qint64 keptTotal = 0;
    PlotFrame frame;
    double density = 1.0;
    QRect part;   // of the picture: the axes' rectangle, as far as it lies on the picture
    QImage sheet; // as large as that; transparent between two lines
};
