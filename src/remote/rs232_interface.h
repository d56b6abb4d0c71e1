// SCPI over a serial line. The end of an answer is a silence of one second; what is longer than
// 1 MiB or than the time limit is cut there.
#pragma once

#include "remote/ko_remote_interface.h"

#include <memory>

class QSerialPort;
class QSerialPortInfo;

// Settings of a serial line; data bits to flow control are values of QSerialPort's enumerations.
struct SerialParameters
{
    qint32 baudRate;
    qint32 dataBits;
    qint32 parity;
    qint32 stopBits;
    qint32 flowControl;
    int longestAnswerMs = 30000; // a device that never falls silent is cut off here
};

class RS232Interface : public KORemoteInterface
{
public:
    RS232Interface(const QSerialPortInfo& port, const SerialParameters& parameters);
    // portName: as the system reports it, or the path of a device.
    RS232Interface(const QString& portName, const SerialParameters& parameters);
    ~RS232Interface() override;

    void sendSCPI(const QString& command) override;
    QString querySCPI(const QString& command) override;
    void open() override;
    void close() override;
    void goToLocal() override;

private:
    RS232Interface(std::unique_ptr<QSerialPort> port, const SerialParameters& parameters);

    bool works() const;
    bool awaitData(int limitMs);

    std::unique_ptr<QSerialPort> port;
    int longestAnswerMs;
};

// Whether the system reports any serial port.
bool serialPortsAvailable();
