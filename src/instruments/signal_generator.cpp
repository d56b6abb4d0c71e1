#include "instruments/signal_generator.h"

#include "instruments/config_line.h"
#include "instruments/connect_device.h"

QString SignalGenerator::configSection() const
{
    return commonConfigLines(QStringLiteral("Generator1")) +
           configLine("Level", QString::number(level)) + QLatin1Char('\n');
}

// Only init() puts a command object into the link, and that of this type.
std::shared_ptr<GeneratorCommands> SignalGenerator::commands() const
{
    return std::static_pointer_cast<GeneratorCommands>(remote());
}

void SignalGenerator::init() const
{
    // Deliberate: the model is copied here. Another row of the device list speaks its own dialect
    // from the next init() on, so that a running connection keeps the words it was opened with.
    connectDevice(*this, [this](std::unique_ptr<KORemoteInterface> transport) {
        return std::make_shared<GeneratorCommands>(std::move(transport),
                                                   static_cast<qint32>(device));
    });
}

void SignalGenerator::setup() const
{
    configureDevice(*this, [this](GeneratorCommands& commands) {
        commands.setOutput(true);
        commands.setIqModulation(true);
        commands.setFrequency(frequency);
        commands.setLevel(level);
    });
}
