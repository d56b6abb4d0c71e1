// What the chart shows, drawn up from results: lines of points, told apart by what they belong to.
// Any thread.
#pragma once

#include "curves/plot_frame.h"
#include "curves/shown_result.h"

#include <QColor>
#include <QSet>

struct PlotPoint
{
    QPointF value; // level, or frequency in MHz; ratio in dB
    std::optional<double> sigma;
    double level = 0.0;
    bool operator==(const PlotPoint& other) const;
};
Q_DECLARE_TYPEINFO(PlotPoint, Q_MOVABLE_TYPE);

struct PlotLine
{
    enum class Kind { Measured, Theory };

    Kind kind = Kind::Measured;
    int result = 0;    // id
    int notch = 0;     // number; of a line over frequency the place of its level
    int run = 0;       // of points without a gap, by rising x
    QString name;      // of the result
    QString detail;    // "notch 1, -32 MHz", "at -20 dBm"
    QString levelUnit; // "dBm"
    QColor colour;
    bool isChosen = false; // drawn strong, with its band of sigma
    bool isShown = true;
    QVector<PlotPoint> points; // by rising x, all with a ratio

    bool looksLike(const PlotLine& other) const; // when both are shown
};

struct PlotContent
{
    QString xTitle;
    QString yTitle;
    QVector<PlotLine> lines;
    QVector<double> thresholds; // dB
    std::optional<double> limit;
    PlotSpan whole; // around all lines that are shown
};

struct PlotChoice
{
    QSet<int> results;       // ids of the chosen ones
    QSet<int> hiddenNotches; // numbers
};

// NPR over level, a line a notch of each result.
PlotContent contentOverLevel(const QVector<ShownResult>& results, const PlotChoice& choice);

// NPR over the centres of the notches that aren't hidden, a line a level: of the chosen results, or
// of all that are shown where none is chosen.
PlotContent contentOverFrequency(const QVector<ShownResult>& results, const PlotChoice& choice);

bool showsAny(const PlotContent& content);

// A result that is shown alone has a colour for each notch; of several, each has one.
bool coloursAreOfNotches(const QVector<ShownResult>& results);
QColor notchColour(int notch);
QColor resultColour(int place); // in the list
