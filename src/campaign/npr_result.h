// What came out of a measurement: plain values, as the files keep them. Levels in the result's
// unit, dBm unless it says otherwise, ratios in dB, frequencies in Hz as offsets from the carrier.
#pragma once

#include <QMap>
#include <QString>
#include <QStringList>
#include <QVector>

#include <optional>

// What a reader must know of a point; the words of the files.
namespace PointMark {
extern const QString margin;       // less than 3 dB above what was subtracted
extern const QString fewPeaks;     // they, not the lines, decide sigma
extern const QString notNoiseLike; // the stimulus isn't, so the number is no NPR
extern const QString belowZero;    // the notch is above the signal
extern const QString overload;     // the analyzer may be driven beyond its range
extern const QString clipped;      // a recording that is
} // namespace PointMark

// What a point from a recording has beside its ratio.
struct RecordedReading
{
    int recording = 0;                   // index in the result's recordings
    int lines = 0;                       // of the spectrum, in the notch
    std::optional<double> noiseDensity;  // what differs from period to period, dBFS/Hz
    std::optional<double> distortionNpr; // without that noise
};

struct NprPoint
{
    double level = 0.0;
    int notch = 0; // number, from 1
    double center = 0.0;
    double width = 0.0;
    double power = 0.0;          // of the reference channel; minus infinity where it isn't known
    std::optional<double> npr;   // none for a notch above its signal
    std::optional<double> sigma; // standard deviation to be expected over stimuli
    QStringList marks;           // each once
    std::optional<bool> passed;  // none without a limit
    std::optional<RecordedReading> recorded;

    // 100 % x 10^(-NPR/20)
    std::optional<double> evmPercent() const;
    void addMark(const QString& mark);
};

// The span of levels around a curve's peak over which NPR stays above a threshold.
struct NprRange
{
    double threshold = 0.0;
    std::optional<double> from; // none where the curve doesn't cross on that side
    std::optional<double> to;
    std::optional<double> range() const; // none unless both are known
};

struct NprCurve
{
    int notch = 0;
    std::optional<double> peakNpr; // none for a curve without a ratio
    std::optional<double> peakLevel;
    QVector<NprRange> ranges;
};

struct SignalFigures
{
    int length = 0;
    double sampleRate = 0.0;
    double crestFactor = 0.0;        // over the samples, dB
    double peakBetweenSamples = 0.0; // interpolated 4 times, dB
    QMap<double, double> ccdf;       // level over the mean in dB by share of time in percent
    bool noiseLike = true;
    QVector<quint32> seeds; // those that were played; none where seeds mean nothing
};

struct BenchNames
{
    std::optional<QString> simulated; // the device, as the command line gives it
    QString generator;
    QString analyzer;
};

// A recording that points come from, and how it was read. 0 dBFS is a carrier whose components just
// reach full scale, for a real recording a sine that does.
struct RecordingFacts
{
    QString file;
    double sampleRate = 0.0;          // Hz
    double center = 0.0;              // of the carrier in it, Hz
    qint64 samples = 0;               // that were read
    bool hasWholePeriods = false;     // or else averaged periodograms
    qint64 averages = 0;              // periods or segments
    int segmentLength = 0;            // samples of one
    double level = 0.0;               // mean, dBFS
    double peak = 0.0;                // largest component, dBFS
    std::optional<double> clipped;    // share of components at the ends, percent; integers only
    std::optional<double> clockError; // by which the recorder's clock is fast, ppm
    std::optional<bool> isInverted;
};

enum class LevelUnit { Dbm, Dbfs };
QString nameOf(LevelUnit unit); // "dBm"

using ConfigSections = QMap<QString, QMap<QString, QString>>;

struct NprResult
{
    QString program; // name and version
    QString started; // UTC, ISO 8601
    ConfigSections config;
    SignalFigures signal;
    BenchNames bench;
    LevelUnit levelUnit = LevelUnit::Dbm; // of points and curves
    QVector<RecordingFacts> recordings;   // none unless points come from recordings
    QVector<NprPoint> points;             // by level in the order of measuring, then by notch
    QVector<NprCurve> curves;
};
