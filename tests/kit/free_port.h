// A TCP port that anybody may listen on and that was free a moment ago, at every address.
#pragma once

#include <QTcpServer>

inline quint16 freePort()
{
    QTcpServer probe;
    if (!probe.listen()) {
        qFatal("no port is free");
    }
    return probe.serverPort();
}
