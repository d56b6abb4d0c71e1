// The settings of one remote instrument: how it is reached and what it is to be set to. Plain
// values in base units (Hz, dBm), copied freely; all copies share the link, which is the connection
// and knows what the device last said.
//
// init(), setup() and reset() are conversations: they block for the instrument's traffic, on any
// thread, and are for the one who holds the link (see instrument_link.h). They change nothing but
// the link and never let an exception out: a failure ends in deviceMessage.
#pragma once

#include "instruments/instrument_link.h"

#include <QString>

#include <memory>

class InstrumentCommands;

// Transport to an instrument, as the row of its "Interface" combo box. A value above
// Rs232 comes from files only and means no transport.
enum class InterfaceKind : qint32 {
    Gpib0 = 0,
    Gpib1 = 1,
    LanTlnk = 2,
    LanVxi11 = 3,
    LanSocket = 4,
    LanHislip = 5,
    Rs232 = 6
};

class Instrument
{
public:
    virtual ~Instrument() = default;

    // The instrument's section of the configuration file: header line, key lines in
    // their fixed order, one empty line.
    virtual QString configSection() const = 0;
    virtual void init() const = 0;  // connects anew and asks who is there
    virtual void setup() const = 0; // sends the settings; connects first without a connection

    // "*RST"; does nothing before the first init().
    void reset() const;

    // Shared by all copies; never null.
    const std::shared_ptr<InstrumentLink>& link() const { return sharedLink; }

    // What the link knows. The subclasses give remote() in its own type as commands().
    std::shared_ptr<InstrumentCommands> remote() const { return sharedLink->remote(); }
    QString deviceMessage() const { return sharedLink->deviceMessage(); } // answer or failure
    bool initialized() const { return sharedLink->initialized(); }        // the connection stands

    InterfaceKind interfaceKind = InterfaceKind::LanSocket;
    quint32 device = 0;       // row of the instrument's device list
    quint32 gpibAddress = 20; // primary address
    quint32 rs232Port = 0;    // index into the serial ports that the system reports
    QString ipAddress = QStringLiteral("127.0.0.1");
    double frequency = 0.0; // Hz
    double level = -20.0;   // dBm
    quint32 rs232BaudRate = 9600;
    qint32 rs232DataBits = 8;
    qint32 rs232Parity = 0;      // a QSerialPort::Parity
    qint32 rs232StopBits = 1;    // a QSerialPort::StopBits
    qint32 rs232FlowControl = 0; // a QSerialPort::FlowControl

protected:
    // Copies only: a move would leave an instrument without a link behind.
    Instrument() = default;
    Instrument(const Instrument&) = default;
    Instrument& operator=(const Instrument&) = default;

    // Header line and the key lines that all three instruments share.
    QString commonConfigLines(const QString& section) const;

private:
    std::shared_ptr<InstrumentLink> sharedLink = std::make_shared<InstrumentLink>();
};
