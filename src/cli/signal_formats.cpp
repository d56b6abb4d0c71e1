#include "cli/signal_formats.h"

#include "files/sample_output.h"
#include "files/waveform_output.h"

namespace {

using Setup = MeasurementSetup;

bool writeWaveform(const Setup& setup, const QString& path)
{
    return saveWaveform(path, setup.signal, setup.sampleRate);
}

} // namespace

const std::vector<SignalFormat>& signalFormats()
{
    static const std::vector<SignalFormat> all = {
        {"text",
         {".i", ".q"},
         [](const Setup& setup, const QString& base) { return writeWaveform(setup, base + ".i"); }},
        {"wav",
         {".i.wav", ".q.wav"},
         [](const Setup& setup, const QString& base) {
             return writeWaveform(setup, base + ".i.wav");
         }},
        {"wv",
         {".wv"},
         [](const Setup& setup, const QString& base) {
             return writeWaveform(setup, base + ".wv");
         }},
        {"npy",
         {".npy"},
         [](const Setup& setup, const QString& base) {
             return writeNpyFile(setup.signal, base + ".npy");
         }},
        {"sigmf",
         {".sigmf-meta", ".sigmf-data"},
         [](const Setup& setup, const QString& base) {
             return writeSigmfFiles(setup, "notchbench-cli " NOTCHBENCH_VERSION, base);
         }},
        {"cf32",
         {".cf32"},
         [](const Setup& setup, const QString& base) {
             return writeRawFile(setup.signal, base + ".cf32");
         }},
    };
    return all;
}

QStringList signalFormatNames()
{
    QStringList names;
    for (const SignalFormat& format : signalFormats()) {
        names.append(format.name);
    }
    return names;
}
