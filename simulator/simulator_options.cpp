#include "simulator/simulator_options.h"

#include <QCommandLineParser>
#include <QHostAddress>

#include <stdexcept>

namespace {

constexpr double mostDecibels = 300.0;

// A numeric option: its name, its bounds and where it goes.
struct NumberOption
{
    const char* name;
    const char* valueName;
    const char* description;
    double lowest;
    double highest;
    bool whole;
    void (*store)(SimulatorOptions& options, double value);
};

const NumberOption numberOptions[] = {
    {"port", "PORT", "Port for SCPI (default 5025; 0 takes any free one).", 0, 65535, true,
     [](SimulatorOptions& o, double v) { o.port = static_cast<quint16>(v); }},
    {"signal-port", "PORT",
     "Port of the program's status server on 127.0.0.1, whose signal is played (default 1000).", 1,
     65535, true, [](SimulatorOptions& o, double v) { o.signalPort = static_cast<quint16>(v); }},
    {"saturation", "DBM", "rapp: output power at saturation in dBm (default 10).", -mostDecibels,
     mostDecibels, false,
     [](SimulatorOptions& o, double v) { o.wiring.chain.device.saturationPower = v; }},
    {"smoothness", "P", "rapp: smoothness of the bend, 0.1 to 100, larger is harder (default 2).",
     0.1, 100, false, [](SimulatorOptions& o, double v) { o.wiring.chain.device.smoothness = v; }},
    {"intercept", "DBM",
     "cubic: third-order intercept, power of one of two tones, in dBm "
     "(default 20).",
     -mostDecibels, mostDecibels, false,
     [](SimulatorOptions& o, double v) { o.wiring.chain.device.thirdOrderIntercept = v; }},
    {"bits", "N", "adc: resolution in bits, 1 to 24 (default 12).", 1, 24, true,
     [](SimulatorOptions& o, double v) { o.wiring.chain.device.bits = static_cast<int>(v); }},
    {"loading", "FACTOR",
     "adc: full scale over the rms of one component, 0.01 to 1000 (default 5).", 0.01, 1000, false,
     [](SimulatorOptions& o, double v) { o.wiring.chain.device.loadingFactor = v; }},
    {"noise-floor", "DBM_HZ", "Noise of the analyzer in dBm/Hz (default: none).", -mostDecibels,
     mostDecibels, false, [](SimulatorOptions& o, double v) { o.wiring.chain.noiseFloor = v; }},
};

double checkedNumber(const NumberOption& option, const QString& text)
{
    bool isNumber = false;
    const double value = text.toDouble(&isNumber);
    const bool fits = isNumber && value >= option.lowest && value <= option.highest;
    if (!fits || (option.whole && value != static_cast<int>(value))) {
        throw std::invalid_argument(std::string("--") + option.name);
    }
    return value;
}

QString checkedDevice(const QString& name)
{
    if (!deviceNames().contains(name)) {
        throw std::invalid_argument("--dut");
    }
    return name;
}

QString checkedAddress(const QString& text)
{
    if (QHostAddress(text).isNull()) {
        throw std::invalid_argument("--microwave");
    }
    return text;
}

// Throws the name of the first option whose value is no good.
SimulatorOptions readChecked(const QCommandLineParser& parser)
{
    SimulatorOptions options;
    for (const NumberOption& option : numberOptions) {
        const QString name = QLatin1String(option.name);
        if (parser.isSet(name)) {
            option.store(options, checkedNumber(option, parser.value(name)));
        }
    }
    options.wiring.chain.device.name = checkedDevice(parser.value("dut"));
    if (parser.isSet("microwave")) {
        options.microwaveAddress = checkedAddress(parser.value("microwave"));
        options.wiring.hasMicrowave = true;
    }
    options.waveformFile = parser.value("waveform");
    if (parser.isSet("opt")) {
        options.installedOptions = parser.value("opt").toLatin1();
    }
    options.verbose = parser.isSet("verbose");
    return options;
}

} // namespace

void addSimulatorOptions(QCommandLineParser& parser)
{
    parser.setApplicationDescription(
        "A bench of simulated instruments for Notchbench: a signal generator that plays the\n"
        "program's own signal, a device under test, and a spectrum analyzer that measures\n"
        "adjacent channel power. Point the interface \"LAN (Socket)\" of the generator and of\n"
        "the analyzer at 127.0.0.1, and that of the microwave generator at the address given\n"
        "with --microwave.");
    parser.addHelpOption();
    parser.addVersionOption();
    parser.addOption({"dut",
                      "Device under test: \"linear\", \"rapp\" (an amplifier that saturates), "
                      "\"cubic\" (third-order distortion) or \"adc\" (a pair of converters) "
                      "(default linear).",
                      "DEVICE", "linear"});
    for (const NumberOption& option : numberOptions) {
        parser.addOption({QLatin1String(option.name), QLatin1String(option.description),
                          QLatin1String(option.valueName)});
    }
    parser.addOption(
        {"waveform", "Play this saved .wv file in place of the program's signal.", "FILE"});
    parser.addOption({"microwave",
                      "Put a microwave generator into the chain, which listens on this address, "
                      "such as 127.0.0.2, and whose frequency adds to the generator's.",
                      "ADDRESS"});
    parser.addOption(
        {"opt", "Answer to \"*OPT?\" (default B15,B17,B23,B24: attenuator and IF input).", "TEXT"});
    parser.addOption({"verbose", "Log every command and answer on the standard error output."});
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
    } catch (const std::invalid_argument& option) {
        const QString name = QString::fromLatin1(option.what());
        errorText = "bad value for " + name + ": " + parser.value(name.mid(2));
        return {};
    }
}
