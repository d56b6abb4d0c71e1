// The replies of the TCP status protocol as bytes; no socket.
//
// All numbers are little-endian, floats IEEE 754 single precision, without padding, length or
// terminator. A record is eight bytes: a 32-bit tag and a float.
//
// To add a request: a row in the table of status_replies.cpp.
#pragma once

#include <QByteArray>
#include <QString>

struct MeasurementSetup;
struct SignalData;

// What a new client is told before it asks: new state, sequence length, symbol rate. Clears
// newDataFlag. Deliberate: another order than that of the answer to "GetNewState", and no symbols.
QByteArray greeting(MeasurementSetup& setup);

// The answer to what a client sent, by the word it begins with, case-sensitive; empty for
// anything unknown. "GetNewState" clears newDataFlag.
QByteArray replyTo(const QString& request, MeasurementSetup& setup);

// Tag 2, then I and Q of every sample as floats. The block carries no length of its own.
// Main thread, where alone the record's signal is replaced, so the samples stay while they are
// read.
QByteArray symbolBlock(const SignalData& signal);
