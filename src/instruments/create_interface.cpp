#include "instruments/create_interface.h"

#include "instruments/instrument.h"
#include "remote/rs232_interface.h"
#include "remote/socket_interface.h"
#include "remote/visa_interfaces.h"

#include <QSerialPortInfo>

namespace {

std::unique_ptr<KORemoteInterface> serialInterface(const Instrument& instrument)
{
    const SerialParameters parameters = {static_cast<qint32>(instrument.rs232BaudRate),
                                         instrument.rs232DataBits, instrument.rs232Parity,
                                         instrument.rs232StopBits, instrument.rs232FlowControl};
    const QList<QSerialPortInfo> ports = QSerialPortInfo::availablePorts();
    const int row = static_cast<int>(qMin(instrument.rs232Port, quint32(ports.size())));
    return std::make_unique<RS232Interface>(ports.value(row), parameters);
}

} // namespace

std::unique_ptr<KORemoteInterface> createInterface(const Instrument& instrument)
{
    const auto gpibAddress = static_cast<quint16>(instrument.gpibAddress);
    switch (instrument.interfaceKind) {
    case InterfaceKind::Gpib0:
        return std::make_unique<GPIBInterface>(0, gpibAddress);
    case InterfaceKind::Gpib1:
        return std::make_unique<GPIBInterface>(1, gpibAddress);
    case InterfaceKind::LanTlnk:
        return std::make_unique<TLNKInterface>(instrument.ipAddress);
    case InterfaceKind::LanVxi11:
        return std::make_unique<VXIInterface>(instrument.ipAddress);
    case InterfaceKind::LanSocket:
        return std::make_unique<SocketInterface>(instrument.ipAddress);
    case InterfaceKind::LanHislip:
        return std::make_unique<HiSLIPInterface>(instrument.ipAddress);
    case InterfaceKind::Rs232:
        return serialInterface(instrument);
    }
    return nullptr;
}
