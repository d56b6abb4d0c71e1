#include "instruments/signal_generator.h"

#include "instruments/config_line.h"
#include "instruments/connect_device.h"

QString SignalGenerator::configSection() const
{
    return commonConfigLines(QStringLiteral("Generator1")) +
           configLine("Level", QString::number(level)) + QLatin1Char('\n');
}

void SignalGenerator::init()
{
    try {
        connectDevice(*this, [this](std::unique_ptr<KORemoteInterface> transport) {
            return std::make_shared<GeneratorCommands>(std::move(transport),
                                                       static_cast<qint32>(device));
        });
    } catch (KORemoteException* failure) {
        fail(failure->message());
    }
}

void SignalGenerator::setup()
{
    if (!commands) {
        init();
    }
    if (!commands) {
        return; // deviceMessage tells why
    }
    try {
        commands->setOutput(true);
        commands->setIqModulation(true);
        commands->setFrequency(frequency);
        commands->setLevel(level);
        deviceMessage = commands->identity();
        commands->goToLocal();
    } catch (KORemoteException* failure) {
        fail(failure->message());
    }
}
