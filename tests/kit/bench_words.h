// What the program says to instruments, where a test needs it as one word of a conversation; that
// it says just this is checked by the tests of the commands.
#pragma once

#include <QByteArray>

// The question for a reading: powers of the reference channel and of its neighbours.
inline const QByteArray acpQuery = "*CLS;:CALC1:MARK1:FUNC:POW:RES? ACP";
