// Files of 4194304 samples, in a temporary folder. Beside each the plain way, in turns: for text
// one conversion of Qt after the other (counter "against_plain", how often ours is faster), for
// words one write of the same bytes (counter "against_one_write", the share of time ours takes).
#include "files/reference_files.h"
#include "files/signal_input.h"
#include "files/waveform_output.h"
#include "turns.h"

#include <benchmark/benchmark.h>

#include <QLoggingCategory>
#include <QTemporaryDir>

#include <random>

namespace {

constexpr int samples = 4194304;

const SignalData& noise()
{
    static const SignalData signal = [] {
        SignalData data(samples);
        std::mt19937 engine(1);
        std::normal_distribution<double> value;
        for (int i = 0; i < samples; ++i) {
            data.iSamples[i] = value(engine);
            data.qSamples[i] = value(engine);
        }
        return data;
    }();
    return signal;
}

void writeText(benchmark::State& state)
{
    const QTemporaryDir folder;
    Fastest ours;
    Fastest plain;
    while (state.KeepRunning()) {
        state.SetIterationTime(
            ours.add(secondsOf([&] { saveWaveform(folder.filePath("a.i"), noise(), 1e8); })));
        plain.add(secondsOf([&] {
            reference::writeText(folder.filePath("b.i"), noise().iSamples, 0.5);
            reference::writeText(folder.filePath("b.q"), noise().qSamples, 0.5);
        }));
    }
    state.counters["against_plain"] = plain.seconds() / ours.seconds();
}

double writeOnce(const QString& path, const QByteArray& bytes)
{
    return secondsOf([&] {
        QFile file(path);
        if (file.open(QIODevice::WriteOnly | QIODevice::Truncate)) {
            file.write(bytes);
        }
    });
}

QByteArray contents(const QString& path)
{
    QFile file(path);
    return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray();
}

void writeWords(benchmark::State& state, const QString& suffix, const QStringList& written)
{
    QLoggingCategory::setFilterRules("*.debug=false");
    const QTemporaryDir folder;
    Fastest ours;
    Fastest once;
    saveWaveform(folder.filePath("a" + suffix), noise(), 1e8);
    QVector<QByteArray> bytes;
    for (const QString& ending : written) {
        bytes.append(contents(folder.filePath("a" + ending)));
    }
    while (state.KeepRunning()) {
        state.SetIterationTime(ours.add(
            secondsOf([&] { saveWaveform(folder.filePath("a" + suffix), noise(), 1e8); })));
        double seconds = 0.0;
        for (int i = 0; i < written.size(); ++i) {
            seconds += writeOnce(folder.filePath("b" + written.at(i)), bytes.at(i));
        }
        once.add(seconds);
    }
    state.counters["against_one_write"] = ours.seconds() / once.seconds();
}

void writeWv(benchmark::State& state)
{
    writeWords(state, ".wv", {".wv"});
}

void writeWav(benchmark::State& state)
{
    writeWords(state, ".i.wav", {".i.wav", ".q.wav"});
}

// All digits of a double, as programs write them, or six, as persons do.
void readPmc(benchmark::State& state)
{
    const QTemporaryDir folder;
    const QString path = folder.filePath("a.pmc");
    {
        QFile file(path);
        if (!file.open(QIODevice::WriteOnly)) {
            state.SkipWithError("no file to read");
            return;
        }
        const auto digits = static_cast<int>(state.range(0));
        file.write(QByteArray::number(samples) + '\n');
        for (int i = 0; i < samples; ++i) {
            file.write(QByteArray::number(i) + ' ' +
                       QByteArray::number(noise().iSamples[i], 'g', digits) + ' ' +
                       QByteArray::number(std::abs(noise().qSamples[i]), 'g', digits) + '\n');
        }
    }
    Fastest ours;
    Fastest plain;
    while (state.KeepRunning()) {
        state.SetIterationTime(
            ours.add(secondsOf([&] { benchmark::DoNotOptimize(loadMagnitudePhaseFile(path)); })));
        plain.add(
            secondsOf([&] { benchmark::DoNotOptimize(reference::readMagnitudePhase(path)); }));
    }
    state.counters["against_plain"] = plain.seconds() / ours.seconds();
}

} // namespace

BENCHMARK(writeText)->UseManualTime()->Iterations(5)->Unit(benchmark::kMillisecond);
BENCHMARK(writeWv)->UseManualTime()->Iterations(40)->Unit(benchmark::kMillisecond);
BENCHMARK(writeWav)->UseManualTime()->Iterations(40)->Unit(benchmark::kMillisecond);
BENCHMARK(readPmc)->Arg(17)->Arg(6)->UseManualTime()->Iterations(5)->Unit(benchmark::kMillisecond);
BENCHMARK_MAIN();
