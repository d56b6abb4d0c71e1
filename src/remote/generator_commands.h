// The five settings of a generator in the words of its model. Over the remote connection a
// generator gets settings only, never a waveform.
#pragma once

#include "remote/instrument_commands.h"

class GeneratorCommands : public InstrumentCommands
{
public:
    // modelNumber: a row of the dialect table, 0 to 9 signal generators, 10 and 11 microwave
    // generators. For any other model nothing is ever sent.
    GeneratorCommands(std::unique_ptr<KORemoteInterface> transport, qint32 modelNumber);

    void setOutput(bool on);
    void setIqModulation(bool on);
    void setFrequency(double hz);
    void setLevel(double dbm);

    // Model 11 only, and only with the option installed, which is asked for at every call.
    void setIfInput(bool on);
    void setOutputAttenuation(double db);

private:
    bool hasEitherOption(const char* one, const char* other);

    qint32 model;
};
