// Settings of the signal generator that plays the stimulus.
#pragma once

#include "instruments/instrument.h"

class SignalGenerator : public Instrument
{
public:
    QString configSection() const override;
};
