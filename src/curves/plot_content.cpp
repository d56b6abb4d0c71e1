#include "curves/plot_content.h"

#include "campaign/npr_curve.h"
#include "chart/chart_ratios.h"
#include "chart/chart_scale.h"
#include "chart/chart_style.h"
#include "chart/chart_texts.h"

#include <algorithm>
#include <limits>

namespace {

constexpr int paletteSize = 7; // of ChartStyle; then its colours come darker, then lighter
constexpr int ticks = 9;

// Of a result that stays; points of several thousand lines aren't copied.
using Points = QVector<const NprPoint*>;

// The points of each key, keys and points by rising order.
template <class Key, class Order>
QMap<double, Points> grouped(const QVector<NprPoint>& points, Key key, Order order)
{
    QMap<double, Points> groups;
    for (const NprPoint& point : points) {
        groups[key(point)] << &point;
    }
    const auto isBefore = [&order](const NprPoint* a, const NprPoint* b) {
        return order(*a) < order(*b);
    };
    for (Points& group : groups) {
        if (!std::is_sorted(group.cbegin(), group.cend(), isBefore)) { // they mostly are
            std::stable_sort(group.begin(), group.end(), isBefore);
        }
    }
    return groups;
}

double levelOf(const NprPoint& point)
{
    return point.level;
}

double megahertzOf(const NprPoint& point)
{
    return point.center / 1e6;
}

double numberOf(const NprPoint& point)
{
    return point.notch;
}

// Appends a line like the pattern for each run of points with a ratio.
template <class X>
void addRuns(const PlotLine& pattern, const Points& points, X xOf, QVector<PlotLine>& lines)
{
    PlotLine line = pattern;
    line.points.reserve(points.size());
    const auto finish = [&] {
        if (!line.points.isEmpty()) {
            lines << line;
            line.points.clear();
            ++line.run;
        }
    };
    for (const NprPoint* point : points) {
        if (point->npr) {
            line.points << PlotPoint{{xOf(*point), *point->npr}, point->sigma, point->level};
        } else {
            finish();
        }
    }
    finish();
}

// Lowest and highest of values.
struct Ends
{
    void include(double value)
    {
        low = std::min(low, value);
        high = std::max(high, value);
    }
    QVector<double> values() const
    {
        return low > high ? QVector<double>() : QVector<double>{low, high};
    }

    double low = std::numeric_limits<double>::infinity();
    double high = -std::numeric_limits<double>::infinity();
};

// Those of the ratios to hold, as ratiosToHold() has them, without a list of all.
class RatioEnds
{
public:
    void include(double ratio) { (isCredible(ratio) ? credible : others).include(ratio); }
    QVector<double> values() const
    {
        return credible.values().isEmpty() ? others.values() : credible.values();
    }

private:
    Ends credible;
    Ends others;
};

// Theory may go where nothing was measured, and doesn't widen the ratios.
PlotSpan spanAround(const PlotContent& content)
{
    Ends x;
    RatioEnds y;
    for (const PlotLine& line : content.lines) {
        for (const PlotPoint& point : line.isShown ? line.points : QVector<PlotPoint>()) {
            x.include(point.value.x());
            if (line.kind == PlotLine::Kind::Measured) {
                const double sigma = line.isChosen ? point.sigma.value_or(0.0) : 0.0;
                for (const double end : {-sigma, 0.0, sigma}) {
                    y.include(point.value.y() + end);
                }
            }
        }
    }
    QVector<double> ratios = y.values() + content.thresholds;
    if (content.limit) {
        ratios << *content.limit;
    }
    const ChartScale across = scaleWithin(x.values(), ticks);
    const ChartScale up = scaleAround(ratios, ticks);
    return {across.low, across.high, up.low, up.high};
}

PlotLine patternOf(const ShownResult& result, const PlotChoice& choice)
{
    PlotLine pattern;
    pattern.result = result.id;
    pattern.name = result.name;
    pattern.levelUnit = nameOf(result.result.levelUnit);
    pattern.isChosen = choice.results.contains(result.id);
    pattern.isShown = result.isShown;
    return pattern;
}

void addNotches(const ShownResult& result, const PlotLine& pattern, const PlotChoice& choice,
                bool colourByNotch, QVector<PlotLine>& lines)
{
    const QMap<double, Points> groups =
        grouped(pattern.kind == PlotLine::Kind::Theory ? result.theory : result.result.points,
                numberOf, levelOf);
    for (const Points& points : groups) {
        PlotLine line = pattern;
        line.notch = points.constFirst()->notch;
        line.detail = notchText(line.notch, points.constFirst()->center);
        line.isShown = pattern.isShown && !choice.hiddenNotches.contains(line.notch);
        line.colour = colourByNotch ? notchColour(line.notch) : pattern.colour;
        addRuns(line, points, levelOf, lines);
    }
}

void addTheory(const ShownResult& result, PlotLine pattern, const PlotChoice& choice,
               QVector<PlotLine>& lines)
{
    pattern.kind = PlotLine::Kind::Theory;
    pattern.name = result.theoryName;
    pattern.colour = ChartStyle::textColour();
    addNotches(result, pattern, choice, false, lines);
}

QColor paler(const QColor& colour, double share)
{
    const auto mixed = [share](int part) { return part + qRound(share * (255 - part)); };
    return {mixed(colour.red()), mixed(colour.green()), mixed(colour.blue())};
}

QVector<NprPoint> pointsOf(const NprResult& result, const QSet<int>& hiddenNotches)
{
    QVector<NprPoint> visible = result.points;
    if (!hiddenNotches.isEmpty()) {
        visible.erase(std::remove_if(visible.begin(), visible.end(),
                                     [&](const NprPoint& point) {
                                         return hiddenNotches.contains(point.notch);
                                     }),
                      visible.end());
    }
    return visible;
}

// From the first line's colour to the last one's.
QColor shade(int place, int count)
{
    const double share = count > 1 ? double(place) / (count - 1) : 0.0;
    return QColor::fromHsvF(0.6 - 0.6 * share, 0.85, 0.8); // blue for quiet, red for loud
}

// Recordings have a unit of their own; both may be looked at together.
QString levelUnitsOf(const QVector<ShownResult>& results)
{
    QStringList units;
    for (const ShownResult& one : results) {
        units << nameOf(one.result.levelUnit);
    }
    units.removeDuplicates();
    return units.isEmpty() ? nameOf(LevelUnit::Dbm) : units.join(QStringLiteral(" or "));
}

} // namespace

bool PlotPoint::operator==(const PlotPoint& other) const
{
    return value == other.value && sigma == other.sigma && level == other.level;
}

bool PlotLine::looksLike(const PlotLine& other) const
{
    return kind == other.kind && isChosen == other.isChosen && colour == other.colour &&
           points == other.points;
}

bool coloursAreOfNotches(const QVector<ShownResult>& results)
{
    return std::count_if(results.begin(), results.end(),
                         [](const ShownResult& result) { return result.isShown; }) < 2;
}

// Black has no darker colour.
QColor resultColour(int place)
{
    const QColor colour = ChartStyle::lineColour(place);
    const int round = place / paletteSize % 3;
    const bool isBlack = colour == QColor(Qt::black);
    constexpr int darker = 160; // percent
    return round == 0              ? colour
           : round == 1 && isBlack ? paler(colour, 0.35)
           : round == 1            ? colour.darker(darker)
                                   : paler(colour, isBlack ? 0.6 : 0.4);
}

bool showsAny(const PlotContent& content)
{
    return std::any_of(content.lines.begin(), content.lines.end(),
                       [](const PlotLine& line) { return line.isShown; });
}

QColor notchColour(int notch)
{
    return resultColour(notch - 1);
}

PlotContent contentOverLevel(const QVector<ShownResult>& results, const PlotChoice& choice)
{
    PlotContent content;
    content.xTitle = levelTitle(levelUnitsOf(results));
    content.yTitle = QStringLiteral("NPR / dB");
    const bool isAlone = coloursAreOfNotches(results);
    for (int place = 0; place < results.size(); ++place) {
        const ShownResult& result = results.at(place);
        PlotLine pattern = patternOf(result, choice);
        pattern.colour = resultColour(place);
        addNotches(result, pattern, choice, isAlone, content.lines);
        addTheory(result, pattern, choice, content.lines);
        if (pattern.isShown && (isAlone || pattern.isChosen)) {
            addThresholds(result.result, content.thresholds);
            content.limit = result.limit ? result.limit : content.limit;
        }
    }
    content.whole = spanAround(content);
    return content;
}

PlotContent contentOverFrequency(const QVector<ShownResult>& results, const PlotChoice& choice)
{
    PlotContent content;
    content.xTitle = QStringLiteral(
        "Centre of the notch, from the carrier / MHz; blue: lowest level, red: highest");
    content.yTitle = QStringLiteral("NPR / dB");
    for (const ShownResult& result : results) {
        PlotLine pattern = patternOf(result, choice);
        pattern.isShown = result.isShown && (choice.results.isEmpty() || pattern.isChosen);
        const QVector<NprPoint> visible = pointsOf(result.result, choice.hiddenNotches);
        const QMap<double, Points> groups = grouped(visible, levelOf, megahertzOf);
        for (const Points& points : groups) {
            pattern.colour = shade(pattern.notch, groups.size());
            pattern.detail =
                "at " + printed(points.constFirst()->level, 2) + ' ' + pattern.levelUnit;
            addRuns(pattern, points, megahertzOf, content.lines);
            ++pattern.notch;
        }
    }
    content.whole = spanAround(content);
    return content;
}
