// Settings of the signal generator that plays the stimulus.
#pragma once

#include "instruments/instrument.h"
#include "remote/generator_commands.h"

class SignalGenerator : public Instrument
{
public:
    QString configSection() const override;
    void init() override;
    void setup() override;

    std::shared_ptr<GeneratorCommands> commands; // the same object as remote
};
