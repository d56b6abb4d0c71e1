// Whether another program of this machine holds the one socket of an instrument, as the window of
// Notchbench does after "Init". Any thread.
#pragma once

#include <QString>

struct MeasurementSetup;

// Names the addresses that are held; empty for none, and where the system doesn't tell.
QString holdersNotice(const MeasurementSetup& setup);

// Whether a table as in /proc/net/tcp has a connection to the port of an IPv4 address that stands,
// of another socket than those named by their inodes.
bool isHeldByOthers(const QByteArray& table, const QString& address, quint16 port,
                    const QList<QByteArray>& ownInodes);
