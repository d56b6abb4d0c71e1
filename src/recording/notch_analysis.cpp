#include "recording/notch_analysis.h"

#include "recording/clock_error.h"
#include "recording/kaiser_window.h"
#include "recording/periodograms.h"
#include "recording/segment_length.h"
#include "recording/whole_periods.h"
#include "transform/decibels.h"

#include <algorithm>
#include <cmath>
#include <limits>

namespace {

// Notches read as the signal was played and as its mirror image.
struct BothReadings
{
    QVector<NotchReading> upright;
    QVector<NotchReading> inverted;
};

class Analysis
{
public:
    Analysis(const SampleReader& itsReader, const RecordingRequest& itsRequest,
             const ReadingProgress& itsProgress);

    RecordingAnalysis run();

private:
    bool hasPlayedRate() const;
    std::optional<double> slipOf(double clockError) const;
    int wholePeriod() const;
    bool readPeriods(int period);
    void readPeriodograms();
    void takeLevels(const LevelSums& levels);
    void decideInversion(const BothReadings& both);

    RecordingView view(double guard, bool isInverted) const;
    NotchReading readLines(const PeriodLines& lines, const NotchChannels& channels) const;
    NotchReading readDensity(const PowerDensity& density, const NotchChannels& channels) const;
    template <typename Read> BothReadings readBoth(double guard, Read read) const;

    const SampleReader& reader;
    const Recording& recording;
    const RecordingRequest& request;
    const ReadingProgress& progress;
    const RecordedSignal& signal;
    const qint64 first;
    // The largest turn of a line from one period to the next, in turns; 0 where the clocks can't
    // be compared, none where lines turn too fast to be read one by one.
    std::optional<double> slip = 0.0;
    RecordingAnalysis result;
};

qint64 firstSample(const RecordingRequest& request, const Recording& recording)
{
    const double skipped = std::ceil(request.skipSeconds * request.sampleRate);
    if (skipped >= static_cast<double>(recording.samples)) {
        throw RecordingError{QStringLiteral("%1 holds %2 s, all of which is skipped")
                                 .arg(recording.name)
                                 .arg(static_cast<double>(recording.samples) / request.sampleRate)};
    }
    return static_cast<qint64>(skipped);
}

double nominalPeriod(const RecordingRequest& request)
{
    return request.signal.length * (request.sampleRate / request.signal.sampleRate);
}

Analysis::Analysis(const SampleReader& itsReader, const RecordingRequest& itsRequest,
                   const ReadingProgress& itsProgress)
    : reader(itsReader),
      recording(itsReader.recording()),
      request(itsRequest),
      progress(itsProgress),
      signal(itsRequest.signal),
      first(firstSample(itsRequest, itsReader.recording()))
{
    const FrequencyBand band = seen(signal.band, view(0.0, false));
    result.samples = recording.samples - first;
    const auto measured =
        measurePeriod(reader, request.sampleRate, first, nominalPeriod(request), band);
    if (measured) {
        result.clockError = measured->samples / nominalPeriod(request) - 1.0;
        slip = measured->slip;
    } else if (hasPlayedRate()) {
        result.clockError = clockErrorAgainst(request.played, reader, request.sampleRate, first,
                                              request.center, signal.band);
        slip = slipOf(result.clockError.value_or(0.0));
    }
}

// Of the lines at the band's ends; none beyond what a leakage can be told of.
std::optional<double> Analysis::slipOf(double clockError) const
{
    constexpr double most = 0.1; // turns
    const double farthest = std::max(std::abs(signal.band.low), std::abs(signal.band.high));
    const double turns = std::abs(clockError) * farthest / signal.lineSpacing();
    return turns < most ? std::make_optional(turns) : std::nullopt;
}

bool Analysis::hasPlayedRate() const
{
    return !request.played.i.isEmpty() && nominalPeriod(request) == signal.length;
}

RecordingView Analysis::view(double guard, bool isInverted) const
{
    const double half = 0.5 * request.sampleRate;
    RecordingView here;
    here.center = request.center;
    here.scale = 1.0 / (1.0 + result.clockError.value_or(0.0));
    here.isInverted = isInverted;
    here.guard = guard;
    here.range = {recording.type->isComplex ? -half : 0.0, half};
    return here;
}

template <typename Read> BothReadings Analysis::readBoth(double guard, Read read) const
{
    BothReadings both;
    for (int gap = 0; gap < signal.gaps.size(); ++gap) {
        const NotchChannels upright = channelsOf(signal, gap, view(guard, false));
        const NotchChannels inverted = channelsOf(signal, gap, view(guard, true));
        both.upright << read(upright);
        both.inverted << read(inverted);
        both.upright.last().isRecorded &= upright.isRecorded;
        both.inverted.last().isRecorded &= inverted.isRecorded;
    }
    return both;
}

// Samples of a period whose lines can be read one by one; 0 where they can't.
int Analysis::wholePeriod() const
{
    constexpr double exactly = 1e-6;
    const double nominal = nominalPeriod(request);
    const double period = std::round(nominal);
    const double centerLine = request.center / signal.lineSpacing();
    const bool isPower = period >= 1.0 && std::exp2(std::round(std::log2(period))) == period;
    const bool fits = isPower && period <= static_cast<double>(result.samples);
    const bool isSameRate = std::abs(nominal - period) < exactly;
    const bool isOnLine = std::abs(centerLine - std::round(centerLine)) < exactly;
    return fits && isSameRate && isOnLine && slip ? static_cast<int>(period) : 0;
}

// Independent values behind a density that is partly noise, which scatters from period to period,
// and partly the same in each period, so that its lines alone tell it.
double cellsOf(const PeriodLines::Density& density, qint64 periods)
{
    const double lines = density.lines;
    const double noise = density.noise.value_or(0.0) / density.all;
    const double same = std::max(0.0, 1.0 - noise);
    return lines /
           (same * same + (noise * noise + 2.0 * same * noise) / static_cast<double>(periods));
}

NotchReading Analysis::readLines(const PeriodLines& lines, const NotchChannels& channels) const
{
    const PeriodLines::Density within = lines.in(channels.within);
    const PeriodLines::Density beside = lines.in(channels.beside);
    NotchReading reading;
    reading.isRecorded = within.lines >= 2 && beside.lines >= 2;
    reading.beside = beside.all;
    reading.within = within.all;
    reading.lines = within.lines;
    reading.cells = cellsOf(within, lines.periods());
    reading.besideCells = std::numeric_limits<double>::infinity();
    reading.noise = within.noise;
    if (within.noise) {
        constexpr double clearly = 3.0; // standard deviations of what noise leaves behind
        const double doubt = *within.noise / std::sqrt(static_cast<double>(lines.periods()) *
                                                       std::max(1, within.lines));
        if (within.periodic() > clearly * doubt) {
            reading.distortion = within.periodic();
        }
    }
    return reading;
}

// What lines of strength 1 that slip by a share of their spacing leave in a notch without any: each
// leaks slip^2 / m^2 to the m-th line beside it, from both sides of the notch.
double leakage(double slip, int lines)
{
    constexpr double edge = 1.64; // pi^2 / 6, of the first line
    return slip * slip * 2.0 * (edge + std::log(std::max(1, lines))) / std::max(1, lines);
}

// False where the clocks are too far apart for what stands in the notches.
bool Analysis::readPeriods(int period)
{
    constexpr double mostLeakage = 0.05; // of what is found
    const double guard = 0.5 * request.sampleRate / period;
    QVector<Bands> bands;
    for (int gap = 0; gap < signal.gaps.size(); ++gap) {
        for (const bool isInverted : {false, true}) {
            const NotchChannels channels = channelsOf(signal, gap, view(guard, isInverted));
            bands << channels.within << channels.beside;
        }
    }
    const PeriodLines lines(reader, request.sampleRate, first, period, bands, progress);
    takeLevels(lines.levels());
    decideInversion(
        readBoth(guard, [&](const NotchChannels& channels) { return readLines(lines, channels); }));
    result.way = AnalysisWay::WholePeriods;
    result.averages = lines.periods();
    result.segmentLength = period;
    return std::all_of(result.notches.cbegin(), result.notches.cend(), [&](const NotchReading& n) {
        return !n.isRecorded ||
               leakage(slip.value_or(0.0), n.lines) * n.beside <= mostLeakage * n.within;
    });
}

// What is played again and again brings the same distortion in each period, which more time
// doesn't average, and a spectrum that doesn't scatter once a period is whole.
NotchReading Analysis::readDensity(const PowerDensity& density, const NotchChannels& channels) const
{
    const BandDensity within = densityIn(channels.within, density);
    const BandDensity beside = densityIn(channels.beside, density);
    NotchReading reading;
    reading.isRecorded = within.bins >= 2 && beside.bins >= 2;
    reading.beside = beside.density;
    reading.within = within.density;
    reading.lines = within.bins;
    reading.cells = std::min(within.cells, widthOf(channels.within) / signal.lineSpacing());
    const bool hasPeriod = static_cast<double>(result.samples) >= nominalPeriod(request);
    reading.besideCells = hasPeriod ? std::numeric_limits<double>::infinity() : beside.cells;
    return reading;
}

void Analysis::readPeriodograms()
{
    double narrowest = std::numeric_limits<double>::infinity();
    for (const FrequencyBand& gap : signal.gaps) {
        narrowest = std::min(narrowest, gap.width());
    }
    const int length =
        segmentLengthFor({recording.name, result.samples, request.sampleRate, narrowest});
    const PowerDensity density = powerDensity(reader, request.sampleRate, first, length, progress);
    takeLevels(density.levels);
    decideInversion(readBoth(mainLobe * density.spacing, [&](const NotchChannels& channels) {
        return readDensity(density, channels);
    }));
    result.way = AnalysisWay::Periodograms;
    result.averages = density.segments;
    result.segmentLength = length;
}

void Analysis::takeLevels(const LevelSums& levels)
{
    result.power = levels.power();
    result.peak = levels.peak();
    if (levels.hasClippedShare()) {
        result.clippedShare = levels.clippedShare();
    }
    if (!(result.power > 0.0)) {
        throw RecordingError{recording.name + " holds nothing but zeros"};
    }
}

double heightOverNotch(const NotchReading& reading)
{
    return decibels(reading.beside / reading.within);
}

// By notches whose mirror images are no notches; where there are none, by the signal's samples.
void Analysis::decideInversion(const BothReadings& both)
{
    constexpr double clearly = 6.0; // dB
    double difference = 0.0;
    for (int gap = 0; gap < signal.gaps.size(); ++gap) {
        const NotchReading& upright = both.upright.at(gap);
        const NotchReading& inverted = both.inverted.at(gap);
        if (tellsInversion(signal, gap) && upright.isRecorded && inverted.isRecorded) {
            const double one = heightOverNotch(inverted) - heightOverNotch(upright);
            difference = std::abs(one) > std::abs(difference) ? one : difference;
        }
    }
    if (std::abs(difference) > clearly) {
        result.isInverted = difference > 0.0;
    } else if (hasPlayedRate()) {
        const auto place =
            placeOfSignal(reader, request.sampleRate, first, request.center, request.played);
        if (place) {
            result.isInverted = place->isInverted;
        }
    }
    result.notches = result.isInverted.value_or(false) ? both.inverted : both.upright;
}

RecordingAnalysis Analysis::run()
{
    const int period = wholePeriod();
    if (period == 0 || !readPeriods(period)) {
        readPeriodograms();
    }
    return result;
}

} // namespace

RecordingAnalysis analyzeNotches(const SampleReader& reader, const RecordingRequest& request,
                                 const ReadingProgress& progress)
{
    return Analysis(reader, request, progress).run();
}
