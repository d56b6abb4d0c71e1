// The settings and the state of one remote instrument: how it is reached, what it is to
// be set to, and what it last said. Plain values in base units (Hz, dBm).
//
// init(), setup() and reset() block for the instrument's traffic and never let an exception
// out: a failure ends in deviceMessage. They run on a copy of the record's instrument, on
// any thread; adoptConnection() then takes the outcome into the record. Copies share the
// connection.
#pragma once

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
    virtual void init() = 0;  // connects anew and asks who is there
    virtual void setup() = 0; // sends the settings; connects first where there is no connection

    // "*RST"; does nothing before the first init().
    void reset();

    InterfaceKind interfaceKind = InterfaceKind::LanSocket;
    quint32 device = 0;       // row of the instrument's device list
    quint32 gpibAddress = 20; // primary address
    quint32 rs232Port = 0;    // index into the serial ports that the system reports
    QString deviceMessage;    // last answer of the device, or the text of the last failure
    QString ipAddress = QStringLiteral("127.0.0.1");
    double frequency = 0.0; // Hz
    double level = -20.0;   // dBm
    quint32 rs232BaudRate = 9600;
    qint32 rs232DataBits = 8;
    qint32 rs232Parity = 0;      // a QSerialPort::Parity
    qint32 rs232StopBits = 1;    // a QSerialPort::StopBits
    qint32 rs232FlowControl = 0; // a QSerialPort::FlowControl
    // The command object over the transport that init() made; null before. The subclasses
    // hold the same object as `commands`, in its own type.
    std::shared_ptr<InstrumentCommands> remote;
    bool initialized = false; // the connection was made and stands

    // deviceMessage := the failure, initialized := false.
    void fail(const QString& message);

protected:
    Instrument() = default;
    Instrument(const Instrument&) = default;
    Instrument(Instrument&&) = default;
    Instrument& operator=(const Instrument&) = default;
    Instrument& operator=(Instrument&&) = default;

    // Header line and the key lines that all three instruments share.
    QString commonConfigLines(const QString& section) const;
};
