// A first reading at the simulated bench, after a new signal or level: device, transform, channels.
// The argument is the exponent of the length. "AtTheSamples" is the same reading without
// interpolation, which folds distortion back and is wrong; it shows what the interpolation costs.
#include "dut/chain.h"

#include <benchmark/benchmark.h>

#include <random>

namespace {

Envelope noise(int count)
{
    Envelope signal{QVector<double>(count), QVector<double>(count), 1e8};
    std::mt19937 random(1);
    std::normal_distribution<double> normal;
    for (int k = 0; k < count; ++k) {
        signal.iSamples[k] = normal(random);
        signal.qSamples[k] = normal(random);
    }
    return signal;
}

void readChannels(const Chain& chain, Envelope samples)
{
    passThrough(chain.device, samples);
    const ChainOutput output(chain, std::move(samples));
    benchmark::DoNotOptimize(output.channelPower(-1e6, 1e6));
}

Chain chainWith(const char* device)
{
    Chain chain;
    chain.device.name = QLatin1String(device);
    return chain;
}

void firstReading(benchmark::State& state, const char* device)
{
    const Chain chain = chainWith(device);
    const Envelope signal = noise(1 << state.range(0));
    while (state.KeepRunning()) {
        readChannels(chain, deviceInput(chain, signal, 0.0));
    }
}

void atTheSamples(benchmark::State& state, const char* device)
{
    const Chain chain = chainWith(device);
    const Envelope signal = noise(1 << state.range(0));
    while (state.KeepRunning()) {
        Envelope samples = signal;
        setMeanPower(samples, 1.0);
        readChannels(chain, std::move(samples));
    }
}

} // namespace

BENCHMARK_CAPTURE(atTheSamples, rapp, "rapp")->Arg(17)->Arg(22)->Unit(benchmark::kMillisecond);
BENCHMARK_CAPTURE(firstReading, rapp, "rapp")->Arg(17)->Arg(22)->Unit(benchmark::kMillisecond);
BENCHMARK_CAPTURE(atTheSamples, saleh, "saleh")->Arg(17)->Unit(benchmark::kMillisecond);
BENCHMARK_CAPTURE(firstReading, saleh, "saleh")->Arg(17)->Unit(benchmark::kMillisecond);
BENCHMARK_CAPTURE(firstReading, adc, "adc")->Arg(17)->Unit(benchmark::kMillisecond);
BENCHMARK_MAIN();
