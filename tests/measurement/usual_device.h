// The analyzer of the measurement's tests.
#pragma once

#include "instruments/analyzer.h"
#include "kit/bench_words.h"
#include "kit/scripted_instrument.h"

inline Analyzer connectedAnalyzer()
{
    Analyzer analyzer;
    analyzer.init();
    return analyzer;
}

// An analyzer that answers whom one asks for; what it measures is told by the test.
class UsualDevice : public ScriptedInstrument
{
public:
    UsualDevice() { answer("*IDN?", "an analyzer\n"); }
};

// Whether nobody has the link.
inline bool isFree(const Instrument& instrument)
{
    bool given = false;
    instrument.link()->ask([&given](const LinkTurn& turn) { given = bool(turn); });
    return given;
}
