#include "remote/rs232_interface.h"

#include "remote/device_text.h"
#include "remote/ko_remote_exception.h"

#include <QElapsedTimer>
#include <QSerialPort>
#include <QSerialPortInfo>

namespace {

constexpr int writtenMs = 1000;
constexpr int firstDataMs = 3000;
constexpr int endSilenceMs = 1000;
constexpr int longestAnswer = 1024 * 1024; // bytes

} // namespace

RS232Interface::RS232Interface(std::unique_ptr<QSerialPort> newPort,
                               const SerialParameters& parameters)
    : port(std::move(newPort)), longestAnswerMs(parameters.longestAnswerMs)
{
    // Used by several threads in turn, with blocking calls only: it belongs to none. Opening
    // makes Qt warn twice that its notifiers have no event loop, which is what is wanted.
    port->moveToThread(nullptr);
    port->setBaudRate(parameters.baudRate, QSerialPort::AllDirections);
    port->setDataBits(static_cast<QSerialPort::DataBits>(parameters.dataBits));
    port->setParity(static_cast<QSerialPort::Parity>(parameters.parity));
    port->setStopBits(static_cast<QSerialPort::StopBits>(parameters.stopBits));
    port->setFlowControl(static_cast<QSerialPort::FlowControl>(parameters.flowControl));
}

RS232Interface::RS232Interface(const QSerialPortInfo& info, const SerialParameters& parameters)
    : RS232Interface(std::make_unique<QSerialPort>(info), parameters)
{
}

RS232Interface::RS232Interface(const QString& portName, const SerialParameters& parameters)
    : RS232Interface(std::make_unique<QSerialPort>(portName), parameters)
{
}

RS232Interface::~RS232Interface() = default;

void RS232Interface::open()
{
    if (!port->open(QIODevice::ReadWrite)) {
        throwRemoteException(QStringLiteral("Error at openSerial"));
    }
}

void RS232Interface::close()
{
    port->close();
}

void RS232Interface::sendSCPI(const QString& command)
{
    DeviceText::sendLine(*port, command);
    port->flush();
}

QString RS232Interface::querySCPI(const QString& command)
{
    if (!port->isOpen()) {
        return {};
    }
    port->waitForReadyRead(0);
    const qint64 leftOver = port->bytesAvailable();
    DeviceText::writeLine(*port, command);
    port->flush();
    patience.await(
        writtenMs, [this](int ms) { return port->waitForBytesWritten(ms); },
        [this] { return works() && port->bytesToWrite() > 0; });
    // The wait above takes in data that arrives meanwhile: a wait for more would run out.
    if (port->bytesAvailable() <= leftOver && !awaitData(firstDataMs)) {
        return {};
    }
    QElapsedTimer sinceFirstData;
    sinceFirstData.start();
    QByteArray answer = port->readAll();
    while (answer.size() < longestAnswer && !sinceFirstData.hasExpired(longestAnswerMs) &&
           awaitData(endSilenceMs)) {
        answer += port->readAll();
    }
    return DeviceText::answerFrom(answer);
}

// After a wait that ran out, which is no failure of the line.
bool RS232Interface::works() const
{
    const QSerialPort::SerialPortError error = port->error();
    return error == QSerialPort::NoError || error == QSerialPort::TimeoutError;
}

bool RS232Interface::awaitData(int limitMs)
{
    port->clearError();
    return patience.await(
        limitMs, [this](int ms) { return port->waitForReadyRead(ms); }, [this] { return works(); });
}

void RS232Interface::goToLocal()
{
    sendSCPI(QStringLiteral("&GTL"));
}

bool serialPortsAvailable()
{
    return !QSerialPortInfo::availablePorts().isEmpty();
}
