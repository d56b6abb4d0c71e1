#include "instruments/microwave_generator.h"

#include "instruments/config_line.h"
#include "instruments/connect_device.h"

QString MicrowaveGenerator::configSection() const
{
    return commonConfigLines(QStringLiteral("Generator2")) +
           configLine("Level", QString::number(level)) +
           configLine("Atten", QString::number(attenuation)) +
           configLine("IF Input", QString::number(int{ifInput})) + QLatin1Char('\n');
}

// Only init() puts a command object into the link, and that of this type.
std::shared_ptr<GeneratorCommands> MicrowaveGenerator::commands() const
{
    return std::static_pointer_cast<GeneratorCommands>(remote());
}

void MicrowaveGenerator::init() const
{
    // Row 1 is "TAU"; every other row, "None" included, speaks the dialect of "ZUB".
    // Deliberate: the model is copied here and holds until the next init().
    const qint32 model = device == 1 ? 10 : 11;
    connectDevice(*this, [model](std::unique_ptr<KORemoteInterface> transport) {
        return std::make_shared<GeneratorCommands>(std::move(transport), model);
    });
}

void MicrowaveGenerator::setup() const
{
    configureDevice(*this, [this](GeneratorCommands& commands) {
        commands.setFrequency(frequency);
        commands.setOutput(true);
        commands.setIfInput(ifInput);
        commands.setOutputAttenuation(attenuation);
        if (!ifInput) {
            commands.setLevel(level);
        }
    });
}
