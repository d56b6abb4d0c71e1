// What the transports over a plain byte stream (socket, serial line) share: writing a command
// line and turning the bytes of an answer into text.
#pragma once

#include <QIODevice>
#include <QString>

namespace DeviceText {

// command and a line feed; returns what QIODevice::write returns.
qint64 writeLine(QIODevice& device, const QString& command);

// The same, and a result of exactly 0 throws "Error at sendSCPI: " with the command.
void sendLine(QIODevice& device, const QString& command);

// The bytes up to the first zero byte, Latin-1, trimmed.
QString answerFrom(const QByteArray& bytes);

} // namespace DeviceText
