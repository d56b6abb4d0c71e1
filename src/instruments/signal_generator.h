// Settings of the signal generator that plays the stimulus.
#pragma once

#include "instruments/instrument.h"
#include "remote/generator_commands.h"

class SignalGenerator : public Instrument
{
public:
    QString configSection() const override;
    void init() const override;
    void setup() const override;

    std::shared_ptr<GeneratorCommands> commands() const; // the same object as remote(), or null
};
