// Devices under test: memoryless models with a gain of 0 dB that act on the complex envelope.
//
// To add a device: 1. its figures in DeviceSettings, 2. its function and its row in the table of
// device_under_test.cpp, 3. its options in simulator_options.cpp.
//
// No state; any thread.
#pragma once

#include "simulator/played_signal.h"

#include <QString>
#include <QStringList>

struct DeviceSettings
{
    QString name = QStringLiteral("linear"); // one of deviceNames()
    double saturationPower = 10.0;           // rapp: output power at saturation, dBm
    double smoothness = 2.0;                 // rapp: 1 bends early, 10 is nearly a hard limit
    double thirdOrderIntercept = 20.0;       // cubic: power of one of two tones, dBm
    int bits = 12;                           // adc: resolution, 1 to 24
    double loadingFactor = 5.0;              // adc: full scale over the rms of one component
};

QStringList deviceNames();

// Passes the envelope through the device in place. An unknown name acts as "linear".
void passThrough(const DeviceSettings& device, PlayedSignal& envelope);
