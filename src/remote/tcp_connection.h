// Opening and closing a TCP connection with waits that can be broken off. The socket class itself
// tears an attempt down when its wait runs out, so it can't wait for one in slices.
#pragma once

#include "remote/patience.h"

#include <QtGlobal>

class QHostAddress;
class QTcpSocket;

// Connects within the limit. False when nobody answers there, or no wait is left.
bool connectSocket(QTcpSocket& socket, const QHostAddress& address, quint16 port, int limitMs,
                   const Patience& patience);

// Tells the device that nothing more comes, and waits at most limitMs until it has hung up too. A
// device that serves one connection at a time would otherwise meet the next one too early.
void hangUp(QTcpSocket& socket, int limitMs, const Patience& patience);
