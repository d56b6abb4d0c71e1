// Settings of the optional second generator, which converts the stimulus up. Device row 0
// is "None": no microwave generator is in the chain.
#pragma once

#include "instruments/instrument.h"
#include "remote/generator_commands.h"

class MicrowaveGenerator : public Instrument
{
public:
    QString configSection() const override;
    void init() const override;
    void setup() const override;

    std::shared_ptr<GeneratorCommands> commands() const; // the same object as remote(), or null

    quint32 attenuation = 0; // output attenuation, dB
    bool ifInput = true;     // driven through its IF input
};
