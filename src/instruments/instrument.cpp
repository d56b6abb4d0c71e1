#include "instruments/instrument.h"

#include "instruments/config_line.h"
#include "remote/instrument_commands.h"

void Instrument::reset() const
{
    const std::shared_ptr<InstrumentCommands> commands = remote();
    if (!commands) {
        return;
    }
    failQuietly(*sharedLink, [&commands] {
        commands->reset();
        commands->goToLocal();
    });
}

QString Instrument::commonConfigLines(const QString& section) const
{
    return QLatin1Char('[') + section + QLatin1String("]\n") +
           configLine("Device", QString::number(device)) +
           configLine("Interface", QString::number(static_cast<qint32>(interfaceKind))) +
           configLine("GPIB Addr", QString::number(gpibAddress)) +
           configLine("IP Addr", QLatin1Char('"') + ipAddress + QLatin1Char('"')) +
           configLine("RS232 Port", QString::number(rs232Port)) +
           configLine("RS232 BaudRate", QString::number(rs232BaudRate)) +
           configLine("RS232 DataBits", QString::number(rs232DataBits)) +
           configLine("RS232 Parity", QString::number(rs232Parity)) +
           configLine("RS232 StopBits", QString::number(rs232StopBits)) +
           configLine("RS232 FlowControl", QString::number(rs232FlowControl)) +
           configLine("Frequency", QString::number(frequency));
}
