// SCPI over a raw TCP connection to port 5025. Silence is not an error: the caller gets what
// arrived, possibly nothing.
#pragma once

#include "remote/ko_remote_interface.h"
#include "remote/lan_interface.h"

#include <memory>

class QTcpSocket;

class SocketInterface : public LANInterface, public KORemoteInterface
{
public:
    // Only tests name a port: the program's instruments always listen on 5025.
    explicit SocketInterface(const QString& ipAddress, quint16 port = 5025);
    ~SocketInterface() override;

    void sendSCPI(const QString& command) override;
    QString querySCPI(const QString& command) override;
    void open() override;
    void close() override;
    void goToLocal() override;
    bool hasHungUp() override;

private:
    bool connected() const;
    QByteArray arrived() const;

    quint16 port;
    std::unique_ptr<QTcpSocket> socket; // made by open()
};
