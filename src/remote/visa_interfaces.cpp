#include "remote/visa_interfaces.h"

GPIBInterface::GPIBInterface(quint32 boardNumber, quint16 primaryAddress)
    : board(boardNumber), address(primaryAddress)
{
}

void GPIBInterface::goToLocal()
{
    visa.koGpibControlREN(session, VI_GPIB_REN_ADDRESS_GTL);
}

QString GPIBInterface::resourceString() const
{
    return QLatin1String("GPIB") + QString::number(board) + QLatin1String("::") +
           QString::number(address) + QLatin1String("::INSTR");
}

VXIInterface::VXIInterface(const QString& ipAddress) : LANInterface(ipAddress) {}

QString VXIInterface::resourceString() const
{
    return QLatin1String("TCPIP::") + address.toString() + QLatin1String("::INSTR");
}

TLNKInterface::TLNKInterface(const QString& ipAddress) : LANInterface(ipAddress) {}

void TLNKInterface::goToLocal()
{
    // Deliberate: this link keeps the panel usable by itself; its instruments refuse the text.
}

QString TLNKInterface::resourceString() const
{
    return QLatin1String("TLNK::") + address.toString() + QLatin1String("::INSTR");
}

HiSLIPInterface::HiSLIPInterface(const QString& ipAddress) : LANInterface(ipAddress) {}

QString HiSLIPInterface::resourceString() const
{
    return QLatin1String("TCPIP::") + address.toString() + QLatin1String("::hislip0::INSTR");
}
