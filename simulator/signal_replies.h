// What the status server sends, as bytes; no socket. All numbers are little-endian, a record is a
// 32-bit tag and a float.
#pragma once

#include "simulator/played_signal.h"

#include <QByteArray>

// A block of fixed content that answers "GetServerID". Since the server answers in order, it marks
// the end of the answer before it: symbols carry no length of their own.
const QByteArray& serverIdentity();

constexpr int recordSize = 8; // bytes

// The value of the first record with the tag among the records in front of the symbols; otherwise
// where there is none.
enum class ReplyTag : quint32 { SymbolRate = 0, SequenceLength = 1, Symbols = 2, NewState = 3 };
double recordValue(const QByteArray& reply, ReplyTag tag, double otherwise);

// The signal in a complete reply: its symbols, at the rate of its own record or at the one given.
// Empty when the reply holds no symbols.
PlayedSignal signalInReply(const QByteArray& reply, double symbolRate);
