#include "setup/measurement_setup.h"

#include "base/truncation.h"

#include <cmath>

MeasurementSetup::MeasurementSetup()
    : notches(std::make_shared<NotchList>()), spareNotches(std::make_shared<NotchList>())
{
}

MeasurementSetup MeasurementSetup::forOtherThread() const
{
    MeasurementSetup copy(*this);
    copy.notches = std::make_shared<NotchList>(notches->rowsOnly());
    copy.spareNotches = std::make_shared<NotchList>(spareNotches->rowsOnly());
    return copy;
}

quint32 MeasurementSetup::fftLength() const
{
    return truncatedToUint32(std::pow(2.0, 22.0 - fftLengthIndex));
}

double MeasurementSetup::binWidth() const
{
    return sampleRate / fftLength();
}

void MeasurementSetup::setDataState(DataState newState)
{
    newDataFlag = dataState != DataState::Valid && newState == DataState::Valid;
    dataState = newState;
}

double MeasurementSetup::effectiveFrequency() const
{
    return microwave.device == 0 ? generator.frequency : generator.frequency + microwave.frequency;
}
