// How the output of a device, driven by Gaussian noise, divides into the signal and orders of
// distortion: shares of the input's power, the signal's first; the last order holds all that
// follow. Sources of the formulas are in theory.h.
#pragma once

#include "dut/device.h"

#include <QVector>

#include <complex>

constexpr int distortionOrderCount = 80; // behind the signal

// Complex gain of a memoryless device for a momentary power in milliwatts.
using DeviceGain = std::complex<double> (*)(const DeviceSettings& device, double power);

// Null for a device that isn't memoryless, is linear or isn't known. Written without a line of the
// devices themselves.
DeviceGain gainOf(const DeviceSettings& device);

// Full scale over the rms of a component when the input has this power in milliwatts.
double loadingOf(const DeviceSettings& converter, double power);

QVector<double> memorylessOrders(DeviceGain gain, const DeviceSettings& device, double power);
QVector<double> clippingOrders(double loading);
