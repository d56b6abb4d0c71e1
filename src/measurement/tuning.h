// Tuning the analyzer to a notch.
#pragma once

class Analyzer;
struct Notch;

// Sends the channels of the notch and the analyzer's settings. For the one who holds the analyzer's
// link; blocks for the traffic. Throws KORemoteException*, with "Analyzer is not initialized!"
// before the analyzer was ever connected.
void tuneToNotch(const Notch& notch, const Analyzer& analyzer);
