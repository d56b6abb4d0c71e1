// From an instrument's "Interface" row to a transport.
#pragma once

#include "remote/ko_remote_interface.h"

#include <memory>

class Instrument;

// A new, closed transport for the instrument's present settings; null for a row above the
// last one. Without a VISA library the VISA rows throw KORemoteException* "Could not load
// VISA". A serial port row that the system does not report gives a port that cannot be opened.
std::unique_ptr<KORemoteInterface> createInterface(const Instrument& instrument);
