#include "transform/interpolation.h"

#include "transform/transform.h"

#include <algorithm>
#include <cmath>

namespace {

// Transform order with zeros behind the positive frequencies, scaled for the way back.
QVector<double> widened(const QVector<double>& lines, int count, double scale)
{
    const int half = lines.size() / 2;
    const int positive = lines.size() - half;
    QVector<double> wide(count, 0.0);
    const auto scaled = [scale](double value) { return value * scale; };
    std::transform(lines.begin(), lines.begin() + positive, wide.begin(), scaled);
    std::transform(lines.begin() + positive, lines.end(), wide.end() - half, scaled);
    return wide;
}

} // namespace

void interpolate(QVector<double>& re, QVector<double>& im, int factor)
{
    const int count = re.size();
    if (factor == 1 || count == 0) {
        return;
    }
    const int longCount = count * factor;
    // Quadrature first: that turns the exponent's sign, so that low indices are frequencies above
    // the carrier.
    forwardTransform(im, re, static_cast<quint32>(count));
    // The two transforms together divide by the root of count and by longCount to the 3/2.
    const double scale = longCount * std::sqrt(static_cast<double>(factor));
    re = widened(re, longCount, scale);
    im = widened(im, longCount, scale);
    inverseTransform(im, re, static_cast<quint32>(longCount));
}
