// Settings of the spectrum analyzer that measures the device under test.
#pragma once

#include "instruments/instrument.h"
#include "remote/analyzer_commands.h"

class Analyzer : public Instrument
{
public:
    QString configSection() const override;
    void init() const override;
    void setup() const override;

    std::shared_ptr<AnalyzerCommands> commands() const; // the same object as remote(), or null

    // Store a bandwidth in whole hertz as its code; see codeFromBandwidth.
    void setResolutionBandwidth(quint32 hertz);
    void setVideoBandwidth(quint32 hertz);
    quint32 resolutionBandwidth() const; // Hz
    quint32 videoBandwidth() const;      // Hz

    // Switching the automatic sweep time on also sets the sweep time to 0, which is how
    // "automatic" reaches the device.
    void setAutoSweepTime(bool automatic);

    double span = 100000.0;      // Hz
    double sweepTime = 2.0;      // s
    quint32 rbwCode = 19;        // resolution bandwidth as a code: 30 kHz
    quint32 vbwCode = 23;        // video bandwidth as a code: 300 kHz
    quint32 attenuation = 10;    // input attenuation, dB
    bool autoAttenuation = true; // attenuation is chosen by the device
    bool autoSweepTime = true;   // sweep time is chosen by the device
};
