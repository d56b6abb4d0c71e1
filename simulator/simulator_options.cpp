#include "simulator/simulator_options.h"

#include "dut/chain_figures.h"

#include <QCommandLineParser>
#include <QHostAddress>

#include <cmath>
#include <stdexcept>

namespace {

using Options = SimulatorOptions;

// A numeric option that is no figure of the chain.
struct NumberOption
{
    const char* name;
    const char* valueName;
    const char* description;
    double lowest;
    double highest;
    bool whole;
    void (*store)(Options& options, double value);

    bool allows(double value) const
    {
        return value >= lowest && value <= highest && (!whole || value == std::floor(value));
    }
};

const NumberOption numberOptions[] = {
    {"signal-port", "PORT",
     "Port of the program's status server on 127.0.0.1, whose signal is played (default 1000).", 1,
     65535, true, [](Options& o, double v) { o.signalPort = static_cast<quint16>(v); }},
    {"port", "PORT", "Port for SCPI (default 5025; 0 takes any free one).", 0, 65535, true,
     [](Options& o, double v) { o.port = static_cast<quint16>(v); }},
    {"delay", "SECONDS", "Wait so long before each answer, 0 to 3600.", 0, 3600, false,
     [](Options& o, double v) { o.manner.delay = static_cast<int>(std::lround(1000.0 * v)); }},
};

struct TextOption
{
    const char* name;
    const char* valueName;
    const char* description;
    // False for a value that is no good.
    bool (*store)(Options& options, const QString& value);
};

bool takeAddress(QString& to, const QString& text)
{
    to = text;
    return !QHostAddress(text).isNull();
}

bool takeRipple(Options& options, const QString& text)
{
    const std::optional<Ripple> ripple = rippleOf(text, ',');
    options.wiring.chain.ripple = ripple.value_or(Ripple());
    return ripple.has_value();
}

const TextOption deviceOption{
    "dut", "DEVICE",
    "Device under test: \"linear\", \"rapp\" (an amplifier that saturates), \"soft\" (linear up to "
    "its saturation), \"saleh\" (a travelling-wave tube that turns the phase too), \"cubic\" "
    "(third-order distortion) or \"adc\" (a pair of converters) (default linear).",
    [](Options& o, const QString& text) {
        o.wiring.chain.device.name = text;
        return deviceNames().contains(text);
    }};

const TextOption chainOptions[] = {
    {"ripple", "DB,PERIOD_HZ",
     "Ripple of the cables in front of the device: so many dB from top to bottom, once up and down "
     "every so many Hz, highest at the carrier.",
     takeRipple},
    {"write-trace", "FILE",
     "Write the ripple there whenever a signal comes, as the analyzer trace that \"Load SAN Mag\" "
     "reads.",
     [](Options& o, const QString& text) {
         o.traceFile = text;
         return !text.isEmpty();
     }},
    {"waveform", "FILE", "Play this saved .wv file in place of the program's signal.",
     [](Options& o, const QString& text) {
         o.waveformFile = text;
         return !text.isEmpty();
     }},
};

const TextOption instrumentOptions[] = {
    {"generator", "ADDRESS",
     "Give the signal generator an address of its own, such as 127.0.0.2, with one client at a "
     "time.",
     [](Options& o, const QString& text) { return takeAddress(o.generatorAddress, text); }},
    {"analyzer", "ADDRESS", "The same for the analyzer.",
     [](Options& o, const QString& text) { return takeAddress(o.analyzerAddress, text); }},
    {"microwave", "ADDRESS",
     "Put a microwave generator into the chain, which listens on this address, such as 127.0.0.4, "
     "one client at a time, and whose frequency adds to the generator's.",
     [](Options& o, const QString& text) {
         o.wiring.hasMicrowave = true;
         return takeAddress(o.microwaveAddress, text);
     }},
    {"opt", "TEXT",
     "Answer to \"*OPT?\" (default: the model's; without a model B15,B17,B23,B24: attenuator and "
     "IF input).",
     [](Options& o, const QString& text) {
         o.models.options = text.toLatin1();
         return true;
     }},
};

// An instrument's model, one of those that its types list.
struct TypeOption
{
    const char* name;
    const char* description; // %1 stands for the models
    const std::vector<InstrumentType>& (*types)();
    const InstrumentType* BenchModels::*model;
};

const TypeOption typeOptions[] = {
    {"generator-type",
     "Signal generator that knows the words of one model alone and has its ranges: %1 (default: "
     "the words of all).",
     generatorTypes, &BenchModels::generator},
    {"analyzer-type",
     "Analyzer with the name, ranges and options of a model: %1 (default: the widest ranges).",
     analyzerTypes, &BenchModels::analyzer},
    {"microwave-type",
     "Microwave generator that knows the words of one model alone and has its ranges: %1 (default: "
     "the words of both).",
     microwaveTypes, &BenchModels::microwave},
};

struct Switch
{
    const char* name;
    const char* description;
    void (*store)(Options& options);
};

const Switch switches[] = {
    {"serial", "Open a pseudo terminal as well, print its name and speak there.",
     [](Options& o) { o.serial = true; }},
    {"fast", "Sweeps take no time.", [](Options& o) { o.fast = true; }},
    {"silent", "Carry everything out and never answer.",
     [](Options& o) { o.manner.silent = true; }},
    {"drop", "End the connection in place of an answer.",
     [](Options& o) { o.manner.dropsClient = true; }},
    {"verbose", "Log every command and answer on the standard error output.",
     [](Options& o) { o.verbose = true; }},
};

[[noreturn]] void failAt(const QCommandLineParser& parser, const char* name)
{
    const QString value = parser.value(QLatin1String(name));
    throw std::invalid_argument(
        (QStringLiteral("bad value for --") + QLatin1String(name) + ": " + value).toStdString());
}

template <typename Row, typename Target>
void readNumber(const QCommandLineParser& parser, const Row& row, Target& target)
{
    const QString name = QLatin1String(row.name);
    if (!parser.isSet(name)) {
        return;
    }
    bool isNumber = false;
    const double value = parser.value(name).toDouble(&isNumber);
    if (!isNumber || !row.allows(value)) {
        failAt(parser, row.name);
    }
    row.store(target, value);
}

void readText(const QCommandLineParser& parser, const TextOption& row, Options& options)
{
    const QString name = QLatin1String(row.name);
    if (parser.isSet(name) && !row.store(options, parser.value(name))) {
        failAt(parser, row.name);
    }
}

void readType(const QCommandLineParser& parser, const TypeOption& row, BenchModels& models)
{
    const QString name = QLatin1String(row.name);
    if (!parser.isSet(name)) {
        return;
    }
    const QString type = parser.value(name);
    const InstrumentType* const found = type.isEmpty() ? nullptr : findType(row.types(), type);
    if (found == nullptr) {
        failAt(parser, row.name);
    }
    models.*row.model = found;
}

// Throws a message that names the first option whose value is no good.
Options readChecked(const QCommandLineParser& parser)
{
    Options options;
    readText(parser, deviceOption, options);
    for (const ChainFigure& figure : chainFigures()) {
        readNumber(parser, figure, options.wiring.chain);
    }
    for (const NumberOption& row : numberOptions) {
        readNumber(parser, row, options);
    }
    for (const TextOption& row : chainOptions) {
        readText(parser, row, options);
    }
    for (const TextOption& row : instrumentOptions) {
        readText(parser, row, options);
    }
    for (const TypeOption& row : typeOptions) {
        readType(parser, row, options.models);
    }
    for (const Switch& row : switches) {
        if (parser.isSet(QLatin1String(row.name))) {
            row.store(options);
        }
    }
    if (parser.isSet("full-scale") && parser.isSet("loading")) {
        throw std::invalid_argument("--full-scale and --loading exclude each other");
    }
    return options;
}

const char description[] =
    "A bench of simulated instruments for Notchbench: a signal generator that plays the\n"
    "program's own signal, a device under test, and a spectrum analyzer that measures\n"
    "adjacent channel power. Point the interface \"LAN (Socket)\" of the generator and of\n"
    "the analyzer at 127.0.0.1, or at the addresses given below, and set the frequencies\n"
    "of both to the same carrier. What an instrument refuses, and each overload of the\n"
    "analyzer, is a line on the standard error output.\n"
    "\n"
    "One example for each device:\n"
    "  notchbench-simulator --dut linear --source-notch 55 --noise-floor -140\n"
    "  notchbench-simulator --dut rapp --saturation 0 --smoothness 2\n"
    "  notchbench-simulator --dut soft --saturation 0\n"
    "  notchbench-simulator --dut saleh --saturation 10\n"
    "  notchbench-simulator --dut cubic --intercept 20 --device-noise -120\n"
    "  notchbench-simulator --dut adc --bits 12 --full-scale 0\n"
    "\n"
    "Saturation is the level at which the model's normalised input is 1; saleh has a gain\n"
    "of 6.7 dB, all others of 0 dB. The converters are of the mid-tread kind (zero is a\n"
    "level), work at the signal's own rate and clip at full scale on both sides alike.";

template <typename Row> QCommandLineOption valueOption(const Row& row, const char* valueName)
{
    return {QLatin1String(row.name), QLatin1String(row.description), QLatin1String(valueName)};
}

QCommandLineOption typeOption(const TypeOption& row)
{
    QStringList names = typeNames(row.types());
    const QString last = names.takeLast();
    return {QLatin1String(row.name),
            QString(QLatin1String(row.description)).arg(names.join(", ") + " or " + last), "TYPE"};
}

} // namespace

void addSimulatorOptions(QCommandLineParser& parser)
{
    parser.setApplicationDescription(QLatin1String(description));
    parser.addHelpOption();
    parser.addVersionOption();
    QCommandLineOption device = valueOption(deviceOption, deviceOption.valueName);
    device.setDefaultValue("linear");
    parser.addOption(device);
    for (const ChainFigure& figure : chainFigures()) {
        parser.addOption(valueOption(figure, figure.unit));
    }
    for (const TextOption& row : chainOptions) {
        parser.addOption(valueOption(row, row.valueName));
    }
    for (const NumberOption& row : numberOptions) {
        parser.addOption(valueOption(row, row.valueName));
    }
    for (const TextOption& row : instrumentOptions) {
        parser.addOption(valueOption(row, row.valueName));
    }
    for (const TypeOption& row : typeOptions) {
        parser.addOption(typeOption(row));
    }
    for (const Switch& row : switches) {
        parser.addOption({QLatin1String(row.name), QLatin1String(row.description)});
    }
}

std::optional<SimulatorOptions> readSimulatorOptions(const QCommandLineParser& parser,
                                                     QString& errorText)
{
    if (!parser.positionalArguments().isEmpty()) {
        errorText = "unexpected argument: " + parser.positionalArguments().first();
        return {};
    }
    try {
        return readChecked(parser);
    } catch (const std::invalid_argument& message) {
        errorText = QString::fromStdString(message.what());
        return {};
    }
}
