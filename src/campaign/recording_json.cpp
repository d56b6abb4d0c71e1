#include "campaign/recording_json.h"

namespace {

const QString wholePeriods = QStringLiteral("whole-periods");
const QString periodograms = QStringLiteral("averaged-periodograms");

QJsonObject objectOf(const RecordingFacts& facts)
{
    return {{"file", facts.file},
            {"sample_rate_hz", facts.sampleRate},
            {"center_hz", facts.center},
            {"samples", facts.samples},
            {"way", facts.hasWholePeriods ? wholePeriods : periodograms},
            {"averages", facts.averages},
            {"segment_length", facts.segmentLength},
            {"level_dbfs", numberOf(facts.level)},
            {"peak_dbfs", numberOf(facts.peak)},
            {"clipped_percent", numberOf(facts.clipped)},
            {"clock_error_ppm", numberOf(facts.clockError)},
            {"inverted", truthOf(facts.isInverted)}};
}

RecordingFacts factsFrom(const Member& json)
{
    RecordingFacts facts;
    facts.file = json["file"].text();
    facts.sampleRate = json["sample_rate_hz"].number();
    facts.center = json["center_hz"].number();
    facts.samples = json["samples"].count();
    facts.hasWholePeriods = json["way"].text() == wholePeriods;
    facts.averages = json["averages"].count();
    facts.segmentLength = json["segment_length"].whole();
    facts.level = json["level_dbfs"].decibelsOrNone().value_or(-HUGE_VAL);
    facts.peak = json["peak_dbfs"].decibelsOrNone().value_or(-HUGE_VAL);
    facts.clipped = json["clipped_percent"].numberOrNone();
    facts.clockError = json["clock_error_ppm"].numberOrNone();
    if (!json["inverted"].isMissing()) {
        facts.isInverted = json["inverted"].yes();
    }
    return facts;
}

} // namespace

void addTo(QJsonObject& point, const RecordedReading& reading)
{
    point["recording"] = reading.recording;
    point["lines"] = reading.lines;
    point["noise_density_dbfs_hz"] = numberOf(reading.noiseDensity);
    point["distortion_npr_db"] = numberOf(reading.distortionNpr);
}

void addTo(QJsonObject& result, const QVector<RecordingFacts>& recordings)
{
    result["recordings"] =
        arrayOf(recordings, [](const RecordingFacts& facts) { return objectOf(facts); });
}

std::optional<RecordedReading> recordedFrom(const Member& point)
{
    if (point["recording"].isMissing()) {
        return std::nullopt;
    }
    return RecordedReading{point["recording"].whole(), point["lines"].whole(),
                           point["noise_density_dbfs_hz"].decibelsOrNone(),
                           point["distortion_npr_db"].decibelsOrNone()};
}

QVector<RecordingFacts> recordingsFrom(const Member& result)
{
    QVector<RecordingFacts> recordings;
    if (!result["recordings"].isMissing()) {
        result["recordings"].forEachElement(
            [&recordings](const Member& facts) { recordings << factsFrom(facts); });
    }
    return recordings;
}
