#include "cli/made_signal.h"

#include "cli/exit_status.h"
#include "cli/text_table.h"

#include <cmath>

namespace {

bool isPowerOfTwo(qint32 n)
{
    return n > 0 && (n & (n - 1)) == 0;
}

QString whyThereIsNone(const MeasurementSetup& setup)
{
    switch (setup.customSource) {
    case SignalSource::MagnitudePhaseFile:
        return "can't read a signal from \"PhaseMag File\" " + setup.phaseMagFile;
    case SignalSource::IQFiles:
        return "can't read a signal from \"I File\" " + setup.iFile + " and \"Q File\" " +
               setup.qFile + "; they must be of the same size";
    case SignalSource::Internal:
        break;
    }
    return QStringLiteral("no signal can be made: check \"NPR/FFT Len\" (%1), \"NPR/Phase Mode\" "
                          "(%2) and \"NPR/Custom\" (%3)")
        .arg(setup.fftLength())
        .arg(int(setup.phaseMode))
        .arg(int(setup.customSource));
}

QString twoDecimals(double value)
{
    return QString::number(value, 'f', 2);
}

QString hertz(double value)
{
    return QString::number(value, 'g', 9);
}

} // namespace

void makeSignal(MeasurementSetup& setup)
{
    setup.calculateSignal();
    if (setup.signal.length == 0) {
        failFile(whyThereIsNone(setup));
    }
    if (!isPowerOfTwo(setup.signal.length)) {
        failFile(QStringLiteral("%1 has %2 lines; make it a power of two")
                     .arg(setup.phaseMagFile)
                     .arg(setup.signal.length));
    }
    if (!std::isfinite(setup.crestFactor)) {
        failFile(QStringLiteral("the signal has no power, or values that are no numbers"));
    }
}

void printSignal(const MeasurementSetup& setup, const StimulusStatistics& statistics,
                 Console& console)
{
    TextTable table({Align::Left, Align::Right, Align::Left});
    table.addRow({"length", QString::number(setup.signal.length), "samples"});
    table.addRow({"sample rate", hertz(setup.sampleRate), "Hz"});
    table.addRow({"noise bandwidth", hertz(setup.sampleRate * setup.nbwSrate), "Hz"});
    table.addRow({setup.notchOrCarrier == NotchOrCarrier::Carrier ? "carriers" : "notches",
                  QString::number(setup.notches->items.size())});
    table.addRow({"crest factor", QString::number(setup.crestFactor, 'g', 6), "dB"});
    table.addRow({"peak between samples", twoDecimals(statistics.peak), "dB"});
    for (std::size_t i = 0; i < ccdfShares.size(); ++i) {
        table.addRow({QString::number(100.0 * ccdfShares[i]) + " % of the time above",
                      twoDecimals(statistics.ccdf[i]), "dB over the mean"});
    }
    table.addRow({"noise-like", statistics.isNoiseLike ? "yes" : "no"},
                 statistics.isNoiseLike ? Colour::Good : Colour::Bad);
    console.print(table.text(console));
}

void warnUnlessNoiseLike(const StimulusStatistics& statistics, Console& console)
{
    if (!statistics.isNoiseLike) {
        console.warn("the signal isn't noise-like; what you measure with it isn't NPR");
    }
}
