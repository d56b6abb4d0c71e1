// Devices under test: memoryless models that act on the complex envelope, whose squared magnitude
// is in milliwatts.
//
// To add a device: 1. its figures in DeviceSettings, 2. its function and its row in the table of
// device.cpp, 3. its figures' rows in chain_figures.cpp.
//
// No state; any thread.
#pragma once

#include "dut/envelope.h"

#include <QString>
#include <QStringList>

#include <optional>

struct DeviceSettings
{
    QString name = QStringLiteral("linear"); // one of deviceNames()
    // rapp, soft, saleh: level at which the model's normalised input is 1, dBm.
    double saturationPower = 10.0;
    double smoothness = 2.0;           // rapp: 1 bends early, 10 is nearly a hard limit
    double thirdOrderIntercept = 20.0; // cubic: power of one of two tones, dBm
    int bits = 12;                     // adc: resolution, 1 to 24
    double loadingFactor = 5.0;        // adc without fullScale: full scale over the rms of one
                                       // component of whatever comes
    std::optional<double> fullScale;   // adc: level of a carrier whose components just reach full
                                       // scale, dBm
};

QStringList deviceNames();

// Whether the device acts on the signal between the samples too. It then has to be given a
// signal with room for the new lines (see chain.h), or they fold back into the band.
bool actsBetweenSamples(const DeviceSettings& device);

// A device that is driven by a signal of a mean power in milliwatts: converters without a full
// scale of their own have it from there.
class DeviceInUse
{
public:
    DeviceInUse(const DeviceSettings& settings, double power);

    // So many samples of the signal, in place, by the calling thread. Any thread.
    void pass(double* i, double* q, quint64 count) const;

private:
    DeviceSettings device;
    double fullScale; // amplitude
};

// Passes the samples through the device as they stand, in place. An unknown name acts as "linear".
void passThrough(const DeviceSettings& device, Envelope& envelope);
