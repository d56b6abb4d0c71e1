#include "remote/generator_commands.h"

namespace {

// The commands of one model up to their value; null where the model has no such command.
struct Dialect
{
    const char* output;
    const char* iqModulation;
    const char* afterIqState; // what follows the state of the I/Q modulation
    const char* frequency;
    const char* level;
};

// These models keep an I/Q parameter mode, which has to be off in either state.
constexpr char parameterModeOff[] = ";:DM:IQ:PRAM OFF";

constexpr Dialect dialects[] = {
    {"OUTP ", "IQ:STAT ", "", "FREQ ", "POW "},                                 // RIGL
    {"LEV:", nullptr, "", "RF ", "L "},                                         // LYR
    {"L:", "IQ:", "", "RF ", "L "},                                             // ALTAIR
    {"OUTP ", ":DM:IQ:STAT ", parameterModeOff, "FREQ ", "POW "},               // DENB
    {"OUTP ", ":DM:IQ:STAT ", parameterModeOff, "FREQ ", "POW "},               // ORI
    {"OUTP ", ":DM:IQ:STAT ", parameterModeOff, "FREQ ", "POW "},               // PHD(A)
    {":OUTP2 ", ":DM:IQ:STAT ", parameterModeOff, "SOUR2:FREQ ", "SOUR2:POW "}, // PHD(B)
    {"OUTP1 ", ":DM:IQ:STAT ", parameterModeOff, "FREQ ", "POW "},              // CYG
    {"OUTP ", nullptr, "", "FREQ ", "POW "},                                    // KAU(A)
    {":OUTP2 ", nullptr, "", "SOUR2:FREQ ", "SOUR2:POW "},                      // KAU(B)
    {"OUTP ", nullptr, "", "FREQ ", "POW "},                                    // TAU
    {"OUTP1 ", nullptr, "", "FREQ ", "POW "},                                   // ZUB
};
constexpr int dialectCount = sizeof(dialects) / sizeof(dialects[0]);

constexpr qint32 modelWithOptions = 11;
constexpr Dialect silent = {nullptr, nullptr, nullptr, nullptr, nullptr};

const Dialect& dialectOf(qint32 model)
{
    return model >= 0 && model < dialectCount ? dialects[model] : silent;
}

QString stateText(bool on)
{
    return on ? QStringLiteral("ON") : QStringLiteral("OFF");
}

QString sixDecimals(double value)
{
    return QString::number(value, 'f', 6);
}

} // namespace

GeneratorCommands::GeneratorCommands(std::unique_ptr<KORemoteInterface> transport,
                                     qint32 modelNumber)
    : InstrumentCommands(std::move(transport)), model(modelNumber)
{
}

void GeneratorCommands::setOutput(bool on)
{
    if (const char* words = dialectOf(model).output) {
        send(QLatin1String(words) + stateText(on));
    }
}

void GeneratorCommands::setIqModulation(bool on)
{
    const Dialect& dialect = dialectOf(model);
    if (dialect.iqModulation != nullptr) {
        send(QLatin1String(dialect.iqModulation) + stateText(on) +
             QLatin1String(dialect.afterIqState));
    }
}

void GeneratorCommands::setFrequency(double hz)
{
    if (const char* words = dialectOf(model).frequency) {
        send(QLatin1String(words) + sixDecimals(hz));
    }
}

void GeneratorCommands::setLevel(double dbm)
{
    if (const char* words = dialectOf(model).level) {
        send(QLatin1String(words) + sixDecimals(dbm));
    }
}

void GeneratorCommands::setIfInput(bool on)
{
    if (model == modelWithOptions && hasEitherOption("B23", "B24")) {
        send(QLatin1String(":INP:IF:STAT ") + stateText(on));
    }
}

void GeneratorCommands::setOutputAttenuation(double db)
{
    if (model == modelWithOptions && hasEitherOption("B15", "B17")) {
        send(QLatin1String("OUTP1:ATT ") + sixDecimals(db));
    }
}

// Deliberate: the code counts anywhere in the text, also inside a longer item; the makers
// append letters to their option codes.
bool GeneratorCommands::hasEitherOption(const char* one, const char* other)
{
    const QString options = query(QStringLiteral("*OPT?"));
    return options.indexOf(QLatin1String(one)) >= 0 || options.indexOf(QLatin1String(other)) >= 0;
}
