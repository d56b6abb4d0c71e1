// What came out of a measurement: plain values, as the files keep them. Levels in dBm, ratios in
// dB, frequencies in Hz as offsets from the carrier.
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

struct NprPoint
{
    double level = 0.0;
    int notch = 0; // number, from 1
    double center = 0.0;
    double width = 0.0;
    double power = 0.0;          // of the reference channel, dBm
    std::optional<double> npr;   // none for a notch above its signal
    std::optional<double> sigma; // standard deviation to be expected over stimuli
    QStringList marks;           // each once
    std::optional<bool> passed;  // none without a limit

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

using ConfigSections = QMap<QString, QMap<QString, QString>>;

struct NprResult
{
    QString program; // name and version
    QString started; // UTC, ISO 8601
    ConfigSections config;
    SignalFigures signal;
    BenchNames bench;
    QVector<NprPoint> points; // by level in the order of measuring, then by notch
    QVector<NprCurve> curves;
};
