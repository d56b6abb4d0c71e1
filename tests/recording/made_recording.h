// Signals with notches and recordings of them, made by plain sums and written byte by byte.
#pragma once

#include "kit/file_content.h"
#include "recording/notch_analysis.h"
#include "recording/recording_file.h"
#include "transform/transform.h"

#include <QTemporaryDir>
#include <QtEndian>

#include <algorithm>
#include <cmath>
#include <complex>
#include <random>
#include <vector>

using Complex = std::complex<double>;
using Wave = std::vector<Complex>;

constexpr double twoPi = 6.283185307179586;

// Lines of strength 1 with random phases from first to last (both count), but for some gaps.
struct MadeSignal
{
    struct Gap
    {
        int first;
        int last;
    };
    int length = 0;
    double sampleRate = 0.0;
    int first = 0;
    int last = 0;
    std::vector<Gap> gaps;
    double gapLevel = 0.0; // amplitude of the lines in the gaps

    RecordedSignal described() const
    {
        RecordedSignal signal;
        signal.sampleRate = sampleRate;
        signal.length = length;
        const double spacing = sampleRate / length;
        signal.band = {first * spacing, last * spacing};
        for (const Gap& gap : gaps) {
            signal.gaps << FrequencyBand{(gap.first - 1) * spacing, (gap.last + 1) * spacing};
        }
        return signal;
    }

    bool isGap(int line) const
    {
        return std::any_of(gaps.begin(), gaps.end(), [line](const Gap& gap) {
            return line >= gap.first && line <= gap.last;
        });
    }

    int fullLines() const
    {
        int count = 0;
        for (int line = first; line <= last; ++line) {
            count += isGap(line) ? 0 : 1;
        }
        return count;
    }

    // Value k is that of line first + k.
    Wave lines(unsigned seed) const
    {
        std::mt19937_64 random(seed);
        std::uniform_real_distribution<double> turn(0.0, twoPi);
        Wave values;
        for (int line = first; line <= last; ++line) {
            const Complex value = std::polar(1.0, turn(random));
            values.push_back(isGap(line) ? gapLevel * value : value);
        }
        return values;
    }

    // One period of mean power 1.
    Wave period(unsigned seed) const
    {
        ComplexBuffer buffer(static_cast<quint64>(length));
        const Wave values = lines(seed);
        for (int line = first; line <= last; ++line) {
            buffer[static_cast<quint64>((line + length) % length)] =
                values[static_cast<std::size_t>(line - first)];
        }
        fft(buffer);
        const double scale = std::sqrt(static_cast<double>(length) / fullLines());
        Wave samples;
        for (quint64 k = 0; k < buffer.size(); ++k) {
            samples.push_back(buffer[k] * scale);
        }
        return samples;
    }

    // The same signal where its samples aren't: count of them, periods apart by step, from start on
    // (both in periods). Costs a product a line and sample.
    Wave sampledAt(unsigned seed, double start, double step, int count) const
    {
        const Wave values = lines(seed);
        Wave samples(static_cast<std::size_t>(count));
        const double scale = 1.0 / std::sqrt(static_cast<double>(fullLines()));
        for (int line = first; line <= last; ++line) {
            Complex value = values[static_cast<std::size_t>(line - first)] * scale *
                            std::polar(1.0, twoPi * line * start);
            const Complex turn = std::polar(1.0, twoPi * line * step);
            for (Complex& sample : samples) {
                sample += value;
                value *= turn;
            }
        }
        return samples;
    }
};

inline Wave repeated(const Wave& period, int first, int count)
{
    Wave samples(static_cast<std::size_t>(count));
    for (std::size_t k = 0; k < samples.size(); ++k) {
        samples[k] = period[(static_cast<std::size_t>(first) + k) % period.size()];
    }
    return samples;
}

// Moves the carrier by so many turns a sample.
inline Wave shifted(Wave samples, double turns)
{
    for (std::size_t k = 0; k < samples.size(); ++k) {
        samples[k] *= std::polar(1.0, twoPi * std::fmod(turns * static_cast<double>(k), 1.0));
    }
    return samples;
}

// Adds Gaussian noise of a mean power.
inline void addNoise(Wave& samples, double power, unsigned seed)
{
    std::mt19937_64 random(seed);
    std::normal_distribution<double> component(0.0, std::sqrt(power / 2.0));
    for (Complex& sample : samples) {
        const double re = component(random);
        sample += Complex(re, component(random));
    }
}

// Two converters of so many bits whose full scale is loading times the rms of a component; in
// units of full scale.
inline Wave quantised(const Wave& samples, int bits, double loading)
{
    const double scale = std::sqrt(2.0) / loading;
    const double steps = std::exp2(bits - 1);
    const auto convert = [&](double value) {
        const double code = std::floor(value * scale * steps + 0.5);
        return std::min(std::max(code, -steps), steps - 1.0) / steps;
    };
    Wave out;
    for (const Complex& sample : samples) {
        out.emplace_back(convert(sample.real()), convert(sample.imag()));
    }
    return out;
}

template <typename Number> void append(QByteArray& bytes, Number number)
{
    char raw[sizeof(Number)];
    qToLittleEndian(number, raw);
    bytes.append(raw, sizeof(Number));
}

inline QByteArray asCf32(const Wave& samples)
{
    QByteArray bytes;
    for (const Complex& sample : samples) {
        append(bytes, static_cast<float>(sample.real()));
        append(bytes, static_cast<float>(sample.imag()));
    }
    return bytes;
}

inline QByteArray asCf64(const Wave& samples)
{
    QByteArray bytes;
    for (const Complex& sample : samples) {
        append(bytes, sample.real());
        append(bytes, sample.imag());
    }
    return bytes;
}

// Real parts alone.
inline QByteArray asRf32(const Wave& samples)
{
    QByteArray bytes;
    for (const Complex& sample : samples) {
        append(bytes, static_cast<float>(sample.real()));
    }
    return bytes;
}

inline QByteArray asCi16(const Wave& samples)
{
    QByteArray bytes;
    for (const Complex& sample : samples) {
        append(bytes, static_cast<qint16>(std::lround(32768.0 * sample.real())));
        append(bytes, static_cast<qint16>(std::lround(32768.0 * sample.imag())));
    }
    return bytes;
}

// A folder for files, and their analysis.
class RecordingFolder
{
public:
    QString write(const QString& name, const QByteArray& bytes) const
    {
        putContent(path(name), bytes);
        return path(name);
    }
    QString path(const QString& name) const { return folder.filePath(name); }

    RecordingAnalysis analyze(const QByteArray& bytes, const char* type,
                              const RecordingRequest& request) const
    {
        const QString name = write("recording", bytes);
        const SampleReader reader(openRecording(name, sampleTypeOf(type)));
        return analyzeNotches(reader, request, [](qint64, qint64) { return true; });
    }

private:
    QTemporaryDir folder;
};

inline double nprOf(const NotchReading& reading)
{
    return 10.0 * std::log10((reading.beside - reading.within) / reading.within);
}

// Of a reading over stimuli, dB.
inline double sigmaOf(const NotchReading& reading)
{
    return 4.343 * std::sqrt(1.0 / reading.cells + 1.0 / reading.besideCells);
}
