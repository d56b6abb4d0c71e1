// Bringing the whole instrument chain up: all devices connected, then all set, then the analyzer
// put into its channel power measurement. Each step is a conversation of its own over its device's
// link, so that others come in between.
#pragma once

#include "instruments/analyzer.h"
#include "instruments/microwave_generator.h"
#include "instruments/signal_generator.h"

#include <functional>

class KORemoteException;

// The settings of the chain, as they stand when the preset is asked for.
struct InstrumentChain
{
    SignalGenerator generator;
    Analyzer analyzer;
    MicrowaveGenerator microwave;
};

// On the calling thread; waits for each link's turn. analyzersTurn is the place of the first step.
// Ends early, without a word, when the links were retired. Throws KORemoteException*.
void presetInstruments(const InstrumentChain& chain, LinkTurn analyzersTurn);

// The same on a worker thread. Main thread: the place in the analyzer's queue is taken at once.
// failed is called on that thread, and the failure is freed when it returns.
void presetInBackground(const InstrumentChain& chain,
                        const std::function<void(KORemoteException*)>& failed);
