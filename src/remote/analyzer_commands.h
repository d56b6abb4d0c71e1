// The analyzer's settings as SCPI, and its adjacent channel power measurement, from which
// noise power ratio is read. One dialect serves all analyzer models. Numbers always have a
// decimal point, whatever the locale.
#pragma once

#include "remote/instrument_commands.h"

#include <QStringList>

#include <array>
#include <optional>

class AnalyzerCommands : public InstrumentCommands
{
public:
    using InstrumentCommands::InstrumentCommands;

    void setCenterFrequency(double hz);
    void setSpan(double hz);
    void setReferenceLevel(double dbm);
    void setAttenuation(double db);
    void setAutoAttenuation(bool on);
    void setResolutionBandwidth(double hz); // not above 0: automatic
    void setVideoBandwidth(double hz);      // not above 0: automatic
    void setSweepTime(double s);            // not above 0: automatic
    // Reference and adjacent channels get the same bandwidth; both in Hz.
    void setChannels(double bandwidth, double spacing);

    // Puts the analyzer into the adjacent channel power measurement: automatic modes and a
    // sweep of one second, whatever the operator's settings are.
    void presetChannelPower(double level);

    // One sweep. Power of the reference channel in dBm, lower and upper adjacent channel in
    // dB relative to it; a field that the answer lacks is 0.
    std::array<double, 3> measureChannelPower();

    // The same; none when the answer has fewer than three numbers.
    std::optional<std::array<double, 3>> readChannelPower();

private:
    void sendNumber(const char* format, double value);
    QStringList sweepAndAsk();
};
