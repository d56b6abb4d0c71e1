#include "dut/source.h"

#include "transform/pi.h"
#include "transform/transform.h"

#include <algorithm>
#include <random>

namespace {

// Lines in transform order: the carrier has index 0, offsets above it follow. An envelope's
// samples are the plain sum of its lines.
void toLines(Envelope& envelope)
{
    const int count = envelope.size();
    // Quadrature first turns the exponent's sign in both directions; the way back divides by count.
    forwardTransform(envelope.qSamples, envelope.iSamples, static_cast<quint32>(count));
}

void toSamples(Envelope& lines)
{
    const double count = lines.size();
    inverseTransform(lines.qSamples, lines.iSamples, static_cast<quint32>(lines.size()));
    for (QVector<double>* component : {&lines.iSamples, &lines.qSamples}) {
        for (double& value : *component) {
            value *= count;
        }
    }
}

double powerOf(const Envelope& lines, int k)
{
    const double x = lines.iSamples.at(k);
    const double y = lines.qSamples.at(k);
    return x * x + y * y;
}

// Mean power of the lines that carry the signal, which are all but 40 dB below the strongest.
double signalLinePower(const Envelope& lines)
{
    const double weakest = 1e-4 * peakPower(lines);
    double sum = 0.0;
    int count = 0;
    for (int k = 0; k < lines.size(); ++k) {
        const double power = powerOf(lines, k);
        if (power >= weakest) {
            sum += power;
            ++count;
        }
    }
    return sum / std::max(count, 1);
}

} // namespace

double Ripple::gain(double offset) const
{
    return 0.5 * peakToPeak * std::cos(2.0 * pi * offset / period);
}

void fillNotches(Envelope& envelope, double depth)
{
    toLines(envelope);
    const double amplitude = std::sqrt(signalLinePower(envelope) * milliwatts(-depth));
    std::mt19937 random; // the standard fixes what it gives from its own first seed
    for (int k = 0; k < envelope.size(); ++k) {
        const double phase = 2.0 * pi * static_cast<double>(random()) / 4294967296.0;
        envelope.iSamples[k] += amplitude * std::cos(phase);
        envelope.qSamples[k] += amplitude * std::sin(phase);
    }
    toSamples(envelope);
}

void applyRipple(Envelope& envelope, const Ripple& ripple)
{
    toLines(envelope);
    const int count = envelope.size();
    const double spacing = envelope.sampleRate / count;
    for (int k = 0; k < count; ++k) {
        const int line = k < count - count / 2 ? k : k - count;
        const double factor = std::pow(10.0, 0.05 * ripple.gain(line * spacing));
        envelope.iSamples[k] *= factor;
        envelope.qSamples[k] *= factor;
    }
    toSamples(envelope);
}
