#include "chart/chart_overlay.h"

#include "chart/chart_ratios.h"
#include "chart/chart_style.h"
#include "chart/chart_texts.h"

#include <QFontMetricsF>
#include <QGraphicsItemGroup>
#include <QGraphicsLineItem>
#include <QGraphicsPathItem>
#include <QGraphicsRectItem>
#include <QGraphicsSimpleTextItem>

#include <algorithm>

namespace {

constexpr double lineHeight = 1.5; // of the legend, in heights of letters

// One entry of the legend.
struct Entry
{
    QString text = {};
    QPen pen = {};
    int mark = -1; // index of the line; -1 for none
};

bool hasSigma(const NprChartData& data)
{
    for (const ChartLine& line : data.lines) {
        for (const ChartPoint& point : line.points) {
            if (point.sigma) {
                return true;
            }
        }
    }
    return false;
}

QVector<Entry> lineEntries(const NprChartData& data)
{
    QVector<Entry> entries;
    for (int i = 0; i < data.lines.size(); ++i) {
        entries.append({legendText(data.lines.at(i), data.levelUnit), ChartStyle::linePen(i), i});
    }
    return entries;
}

QVector<Entry> otherEntries(const NprChartData& data)
{
    QVector<Entry> entries;
    QStringList named;
    for (const ChartTheory& theory : data.theories) {
        if (!named.contains(theory.name)) {
            named.append(theory.name);
            entries.append({theory.name, ChartStyle::theoryPen(), -1});
        }
    }
    if (hasSigma(data)) {
        constexpr double height = 14.0; // pixels
        entries.append({bandText(), ChartStyle::bandSample(height), -1});
    }
    if (hasArrows(data)) {
        entries.append({arrowText(), Qt::NoPen, -1});
    }
    return entries;
}

double entryWidth(const QVector<Entry>& entries, int text)
{
    const QFontMetricsF metrics(ChartStyle::font(text));
    double widest = 0.0;
    for (const Entry& entry : entries) {
        widest = std::max(widest, metrics.horizontalAdvance(entry.text));
    }
    return widest + 4.6 * text;
}

int columnsOf(const QVector<Entry>& entries, double width, int text)
{
    const int fitting = static_cast<int>(width / entryWidth(entries, text));
    return std::clamp(fitting, 1, std::max(1, entries.size()));
}

// Lines that would take the room of the plot are counted.
QVector<Entry> legendEntries(const NprChartData& data, double width, int text)
{
    constexpr int mostRows = 12;
    QVector<Entry> lines = lineEntries(data);
    const QVector<Entry> others = otherEntries(data);
    const int room = mostRows * columnsOf(lines + others, width, text) - others.size();
    if (lines.size() > room) {
        const int named = std::max(1, room - 1);
        const QString rest = moreText(lines.size() - named);
        lines.resize(named);
        lines.append({rest, Qt::NoPen, -1});
    }
    return lines + others;
}

class Painter
{
public:
    Painter(QGraphicsItemGroup& itsGroup, const NprChartData& itsData, const OverlayPlace& itsPlace)
        : group(itsGroup), data(itsData), place(itsPlace)
    {
    }

    void addMarks();
    void addArrows();
    void addThreshold(double threshold);
    void addLimit(double limit);
    void addPeaks();
    void addLegend();

private:
    double markSize() const { return 0.45 * place.text; }
    double barDistance() const { return 0.35 * place.text; }
    bool isBeyond(const QPointF& value) const;
    QPointF within(const QPointF& position) const;
    QLineF extent(const ChartRange& range) const;
    void addPath(const QPainterPath& path, const QPointF& at, const QPen& pen, const QBrush& brush);
    void addSegment(const QPointF& from, const QPointF& to, const QPen& pen);
    void addText(const QString& text, const QPointF& topLeft, const QColor& colour, bool backed);
    void addRange(int line, int row, const ChartRange& range);
    void addEntry(const Entry& entry, const QPointF& left);
    double widthOf(const QString& text) const
    {
        return QFontMetricsF(ChartStyle::font(place.text)).horizontalAdvance(text);
    }

    QGraphicsItemGroup& group;
    const NprChartData& data;
    const OverlayPlace& place;
};

void Painter::addPath(const QPainterPath& path, const QPointF& at, const QPen& pen,
                      const QBrush& brush)
{
    auto* item = new QGraphicsPathItem(path.translated(at));
    item->setPen(pen);
    item->setBrush(brush);
    group.addToGroup(item);
}

void Painter::addSegment(const QPointF& from, const QPointF& to, const QPen& pen)
{
    auto* item = new QGraphicsLineItem(QLineF(from, to));
    item->setPen(pen);
    group.addToGroup(item);
}

// backed: on a ground of its own, for a text over curves.
void Painter::addText(const QString& text, const QPointF& topLeft, const QColor& colour,
                      bool backed)
{
    auto* item = new QGraphicsSimpleTextItem(text);
    item->setFont(ChartStyle::font(place.text));
    item->setBrush(colour);
    item->setPos(topLeft);
    if (backed) {
        const double margin = 0.2 * place.text;
        auto* ground = new QGraphicsRectItem(
            item->boundingRect().translated(topLeft).adjusted(-margin, 0.0, margin, 0.0));
        ground->setPen(Qt::NoPen);
        ground->setBrush(QColor(255, 255, 255, 225));
        group.addToGroup(ground);
    }
    group.addToGroup(item);
}

// So many that they are told apart.
void Painter::addMarks()
{
    constexpr int mostMarks = 30;
    for (int i = 0; i < data.lines.size(); ++i) {
        const QVector<ChartPoint>& points = data.lines.at(i).points;
        const int every = std::max(1, (points.size() + mostMarks - 1) / mostMarks);
        for (int k = 0; k < points.size(); k += every) {
            const ChartPoint& point = points.at(k);
            if (point.npr && !isBeyond({point.level, *point.npr})) {
                addPath(ChartStyle::markShape(i, markSize()),
                        place.positionOf({point.level, *point.npr}), Qt::NoPen,
                        ChartStyle::lineColour(i));
            }
        }
    }
}

bool Painter::isBeyond(const QPointF& value) const
{
    const double y = place.positionOf(value).y();
    return !isCredible(value.y()) && (y < place.plot.top() || y > place.plot.bottom());
}

QPointF Painter::within(const QPointF& position) const
{
    return {position.x(), std::clamp(position.y(), place.plot.top(), place.plot.bottom())};
}

// One for each reading: there are few.
void Painter::addArrows()
{
    for (int i = 0; i < data.lines.size(); ++i) {
        for (const ChartPoint& point : data.lines.at(i).points) {
            if (point.npr && isBeyond({point.level, *point.npr})) {
                const QPointF tip = within(place.positionOf({point.level, *point.npr}));
                const bool isUp = tip.y() < place.plot.center().y();
                addPath(edgeArrow(tip, isUp, 0.7 * place.text), {}, Qt::NoPen,
                        ChartStyle::lineColour(i));
            }
        }
    }
}

// Where a range lies on the page, from edge to edge where an end isn't known.
QLineF Painter::extent(const ChartRange& range) const
{
    const auto xOf = [this](const std::optional<double>& level, double otherwise) {
        return level ? place.positionOf({*level, 0.0}).x() : otherwise;
    };
    const double y = place.positionOf({0.0, range.threshold}).y();
    return {xOf(range.from, place.plot.left()), y, xOf(range.to, place.plot.right()), y};
}

// A bar below the threshold's line with a tick at each end that is known; rows of bars for lines.
void Painter::addRange(int line, int row, const ChartRange& range)
{
    const double drop = barDistance() * (row + 1);
    const QLineF bar = extent(range).translated(0.0, drop);
    QPen pen = ChartStyle::linePen(line);
    pen.setWidthF(0.2 * place.text);
    pen.setCapStyle(Qt::FlatCap);
    addSegment(bar.p1(), bar.p2(), pen);
    pen.setWidthF(2.0);
    const QPointF up(0.0, -drop - 0.5 * place.text);
    const QPointF down(0.0, 0.25 * place.text);
    if (range.from) {
        addSegment(bar.p1() + up, bar.p1() + down, pen);
    }
    if (range.to) {
        addSegment(bar.p2() + up, bar.p2() + down, pen);
    }
}

// The label goes below the bars, where the curves, which lie above, leave room. Bars that would
// leave the plot are left out.
void Painter::addThreshold(double threshold)
{
    const double y = place.positionOf({0.0, threshold}).y();
    const double room = place.plot.bottom() - y - 1.6 * place.text; // above the label
    const int mostRows = static_cast<int>(room / barDistance());
    int row = 0;
    QLineF widest;
    for (int i = 0; i < data.lines.size(); ++i) {
        for (const ChartRange& range : data.lines.at(i).ranges) {
            if (range.threshold == threshold && (range.from || range.to) && row < mostRows) {
                addRange(i, row++, range);
                widest = extent(range).length() > widest.length() ? extent(range) : widest;
            }
        }
    }
    const QString text = thresholdText(threshold, data.lines, data.levelUnit);
    const QPointF below(widest.center().x() - widthOf(text) / 2.0,
                        y + barDistance() * row + 0.4 * place.text);
    const QPointF above(place.plot.left() + 0.5 * place.text, y - 1.35 * place.text);
    addText(text, row > 0 ? below : above, ChartStyle::thresholdColour(), true);
}

void Painter::addPeaks()
{
    const QPointF* highest = nullptr;
    for (int i = 0; i < data.lines.size(); ++i) {
        const std::optional<QPointF>& peak = data.lines.at(i).peak;
        if (!peak || isBeyond(*peak)) {
            continue;
        }
        QPen pen = ChartStyle::linePen(i);
        pen.setColor(pen.color().darker(120));
        QPainterPath ring;
        ring.addEllipse(QPointF(0, 0), 0.45 * place.text, 0.45 * place.text);
        addPath(ring, place.positionOf(*peak), pen, Qt::NoBrush);
        highest = highest == nullptr || peak->y() > highest->y() ? &*peak : highest;
    }
    if (highest != nullptr) {
        const QString text = peakText(*highest, data.levelUnit);
        const QPointF at = place.positionOf(*highest);
        const double left = std::clamp(at.x() - widthOf(text) / 2.0, place.plot.left(),
                                       place.plot.right() - widthOf(text));
        addText(text, {left, at.y() - 2.0 * place.text}, ChartStyle::textColour(), true);
    }
}

// On the right, above its line.
void Painter::addLimit(double limit)
{
    const QString text = limitText(limit);
    const double y = place.positionOf({0.0, limit}).y();
    addText(text, {place.plot.right() - widthOf(text) - 0.5 * place.text, y - 1.35 * place.text},
            ChartStyle::limitColour(), true);
}

void Painter::addEntry(const Entry& entry, const QPointF& left)
{
    const double sample = 2.6 * place.text;
    const QPointF middle = left + QPointF(sample / 2.0, lineHeight * place.text / 2.0);
    addSegment(middle - QPointF(sample / 2.0, 0.0), middle + QPointF(sample / 2.0, 0.0), entry.pen);
    if (entry.mark >= 0) {
        addPath(ChartStyle::markShape(entry.mark, 1.3 * markSize()), middle, Qt::NoPen,
                ChartStyle::lineColour(entry.mark));
    }
    addText(entry.text, left + QPointF(sample + 0.5 * place.text, 0.15 * place.text),
            ChartStyle::textColour(), false);
}

void Painter::addLegend()
{
    const QVector<Entry> entries = legendEntries(data, place.legend.width(), place.text);
    const double width = entryWidth(entries, place.text);
    const int columns = columnsOf(entries, place.legend.width(), place.text);
    const double left = place.legend.center().x() - columns * width / 2.0;
    for (int i = 0; i < entries.size(); ++i) {
        const int row = i / columns;
        const double y = place.legend.top() + row * lineHeight * place.text;
        addEntry(entries.at(i), {std::max(left, place.legend.left()) + i % columns * width, y});
    }
}

} // namespace

void fillOverlay(QGraphicsItemGroup& group, const NprChartData& data, const OverlayPlace& place)
{
    Painter painter(group, data, place);
    painter.addMarks();
    painter.addArrows();
    for (const double threshold : data.thresholds) {
        painter.addThreshold(threshold);
    }
    if (data.limit) {
        painter.addLimit(*data.limit);
    }
    painter.addPeaks();
    painter.addLegend();
}

double legendHeight(const NprChartData& data, double width, int text)
{
    const QVector<Entry> entries = legendEntries(data, width, text);
    const int columns = columnsOf(entries, width, text);
    const int rows = (entries.size() + columns - 1) / columns;
    return rows * lineHeight * text;
}
