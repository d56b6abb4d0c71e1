// Chains that hold nothing but a device under test.
#pragma once

#include "dut/chain.h"

// In dBm: what a limiting device saturates at, and where a cubic one intercepts.
struct DeviceLevels
{
    double saturation = 0.0;
    double intercept = 20.0;
};

inline DeviceSettings deviceOf(const QString& name, const DeviceLevels& levels = {})
{
    DeviceSettings device;
    device.name = name;
    device.saturationPower = levels.saturation;
    device.thirdOrderIntercept = levels.intercept;
    return device;
}

// A pair of converters whose full scale is loading times the rms of a component.
inline DeviceSettings converterOf(int bits, double loading)
{
    DeviceSettings device = deviceOf(QStringLiteral("adc"));
    device.bits = bits;
    device.loadingFactor = loading;
    return device;
}

inline Chain chainOf(const DeviceSettings& device)
{
    Chain chain;
    chain.device = device;
    return chain;
}

inline Chain chainOf(const QString& device, const DeviceLevels& levels = {})
{
    return chainOf(deviceOf(device, levels));
}
