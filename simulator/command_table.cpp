#include "simulator/command_table.h"

#include <algorithm>

namespace {

using Settings = BenchSettings;

struct Range
{
    double lowest;
    double highest;
};

constexpr Range generatorFrequencies{0.0, 1e12};
// Below zero too: a notch below the carrier of an analyzer that stands at 0 Hz is asked for so.
constexpr Range analyzerFrequencies{-1e12, 1e12};
constexpr Range widths{0.0, 1e12};
constexpr Range levels{-200.0, 100.0};
constexpr Range attenuations{0.0, 200.0};
constexpr Range times{0.0, 1e6};

ScpiError readNumber(const QByteArray& argument, Range range, double& to)
{
    bool isNumber = false;
    const double value = argument.toDouble(&isNumber);
    if (!isNumber) {
        return argument.isEmpty() ? ScpiError::MissingParameter : ScpiError::DataType;
    }
    if (!(value >= range.lowest && value <= range.highest)) {
        return ScpiError::OutOfRange;
    }
    to = value;
    return ScpiError::None;
}

ScpiError readSwitch(const QByteArray& argument, bool& to)
{
    const QByteArray word = argument.toUpper();
    const bool on = word == "ON" || word == "1";
    if (!on && word != "OFF" && word != "0") {
        return argument.isEmpty() ? ScpiError::MissingParameter : ScpiError::IllegalValue;
    }
    to = on;
    return ScpiError::None;
}

QByteArray numberText(double value)
{
    return QByteArray::number(value, 'f', 6);
}

QByteArray switchText(bool on)
{
    return on ? "1" : "0";
}

using NumberIn = double& (*)(Settings& settings);
using SwitchIn = bool& (*)(Settings& settings);
using AutomaticIn = AutomaticNumber& (*)(Settings& settings);

SettingCommand number(const char* pattern, Range range, NumberIn in)
{
    return {ScpiPattern(pattern),
            [range, in](Settings& settings, const QByteArray& argument) {
                return readNumber(argument, range, in(settings));
            },
            [in](Settings& settings) { return numberText(in(settings)); }};
}

SettingCommand onOff(const char* pattern, SwitchIn in)
{
    return {ScpiPattern(pattern),
            [in](Settings& settings, const QByteArray& argument) {
                return readSwitch(argument, in(settings));
            },
            [in](Settings& settings) { return switchText(in(settings)); }};
}

// A header that carries its state as its last word, as in "LEV:ON".
SettingCommand stateWord(const char* pattern, bool state, SwitchIn in)
{
    return {ScpiPattern(pattern),
            [state, in](Settings& settings, const QByteArray& /*argument*/) {
                in(settings) = state;
                return ScpiError::None;
            },
            [state, in](Settings& settings) { return switchText(in(settings) == state); }};
}

// A number that, once set, is no longer the instrument's choice.
SettingCommand automaticNumber(const char* pattern, Range range, AutomaticIn in)
{
    return {ScpiPattern(pattern),
            [range, in](Settings& settings, const QByteArray& argument) {
                const ScpiError error = readNumber(argument, range, in(settings).value);
                in(settings).automatic &= error != ScpiError::None;
                return error;
            },
            [in](Settings& settings) { return numberText(in(settings).value); }};
}

SettingCommand automaticChoice(const char* pattern, AutomaticIn in)
{
    return {ScpiPattern(pattern),
            [in](Settings& settings, const QByteArray& argument) {
                return readSwitch(argument, in(settings).automatic);
            },
            [in](Settings& settings) { return switchText(in(settings).automatic); }};
}

// A setting with the one value that the simulated instrument can do.
SettingCommand only(const char* pattern, const char* value)
{
    return {ScpiPattern(pattern),
            [value](Settings& /*settings*/, const QByteArray& argument) {
                return argument.toUpper() == value ? ScpiError::None : ScpiError::IllegalValue;
            },
            [value](Settings& /*settings*/) { return QByteArray(value); }};
}

// Two words for a switch that has names.
SettingCommand eitherWord(const char* pattern, const char* on, const char* off, SwitchIn in)
{
    return {ScpiPattern(pattern),
            [on, off, in](Settings& settings, const QByteArray& argument) {
                const ScpiPattern onWord(on);
                if (!onWord.matches(argument) && !ScpiPattern(off).matches(argument)) {
                    return ScpiError::IllegalValue;
                }
                in(settings) = onWord.matches(argument);
                return ScpiError::None;
            },
            [on, off, in](Settings& settings) { return QByteArray(in(settings) ? on : off); }};
}

// A level of its own takes the place of what comes through the IF input: models without a switch
// for the input are sent nothing else.
SettingCommand ownLevel(const char* pattern)
{
    return {ScpiPattern(pattern),
            [](Settings& settings, const QByteArray& argument) {
                const ScpiError error = readNumber(argument, levels, settings.microwave.level);
                settings.microwave.ifInput &= error != ScpiError::None;
                return error;
            },
            [](Settings& settings) { return numberText(settings.microwave.level); }};
}

double& generatorFrequency(Settings& settings)
{
    return settings.generator.frequency;
}

double& generatorLevel(Settings& settings)
{
    return settings.generator.level;
}

bool& generatorOutput(Settings& settings)
{
    return settings.generator.output;
}

bool& iqModulation(Settings& settings)
{
    return settings.generator.iqModulation;
}

AutomaticNumber& attenuation(Settings& settings)
{
    return settings.analyzer.attenuation;
}

AutomaticNumber& resolutionBandwidth(Settings& settings)
{
    return settings.analyzer.resolutionBandwidth;
}

AutomaticNumber& videoBandwidth(Settings& settings)
{
    return settings.analyzer.videoBandwidth;
}

AutomaticNumber& sweepTime(Settings& settings)
{
    return settings.analyzer.sweepTime;
}

} // namespace

const SettingTable& generatorSettings()
{
    static const SettingTable table{
        number("FREQuency[:CW]", generatorFrequencies, generatorFrequency),
        number("RF", generatorFrequencies, generatorFrequency),
        number("SOURce2:FREQuency[:CW]", generatorFrequencies, generatorFrequency),
        number("POWer[:LEVel]", levels, generatorLevel),
        number("L", levels, generatorLevel),
        number("SOURce2:POWer[:LEVel]", levels, generatorLevel),
        onOff("OUTPut[:STATe]", generatorOutput),
        onOff("OUTPut2[:STATe]", generatorOutput),
        stateWord("LEV:ON", true, generatorOutput),
        stateWord("LEV:OFF", false, generatorOutput),
        stateWord("L:ON", true, generatorOutput),
        stateWord("L:OFF", false, generatorOutput),
        onOff("IQ:STATe", iqModulation),
        stateWord("IQ:ON", true, iqModulation),
        stateWord("IQ:OFF", false, iqModulation),
        onOff("DM:IQ:STATe", iqModulation),
        only("DM:IQ:PRAM", "OFF"),
    };
    return table;
}

const SettingTable& microwaveSettings()
{
    static const SettingTable table{
        number("FREQuency[:CW]", generatorFrequencies,
               [](Settings& settings) -> double& { return settings.microwave.frequency; }),
        onOff("OUTPut[:STATe]",
              [](Settings& settings) -> bool& { return settings.microwave.output; }),
        onOff("INPut:IF:STATe",
              [](Settings& settings) -> bool& { return settings.microwave.ifInput; }),
        number("OUTPut:ATTenuation", attenuations,
               [](Settings& settings) -> double& { return settings.microwave.attenuation; }),
        ownLevel("POWer[:LEVel]"),
    };
    return table;
}

const SettingTable& analyzerSettings()
{
    static const SettingTable table{
        number("[SENSe:]FREQuency:CENTer", analyzerFrequencies,
               [](Settings& settings) -> double& { return settings.analyzer.centerFrequency; }),
        number("[SENSe:]FREQuency:SPAN", widths,
               [](Settings& settings) -> double& { return settings.analyzer.span; }),
        number("DISPlay[:WINDow]:TRACe:Y[:SCALe]:RLEVel", levels,
               [](Settings& settings) -> double& { return settings.analyzer.referenceLevel; }),
        automaticNumber("INPut:ATTenuation", attenuations, attenuation),
        automaticChoice("INPut:ATTenuation:AUTO", attenuation),
        automaticNumber("[SENSe:]BANDwidth[:RESolution]", widths, resolutionBandwidth),
        automaticChoice("[SENSe:]BANDwidth[:RESolution]:AUTO", resolutionBandwidth),
        automaticNumber("[SENSe:]BANDwidth:VIDeo", widths, videoBandwidth),
        automaticChoice("[SENSe:]BANDwidth:VIDeo:AUTO", videoBandwidth),
        automaticNumber("[SENSe:]SWEep:TIME", times, sweepTime),
        automaticChoice("[SENSe:]SWEep:TIME:AUTO", sweepTime),
        onOff("INITiate:CONTinuous",
              [](Settings& settings) -> bool& { return settings.analyzer.continuousSweep; }),
        number("[SENSe:]POWer:ACHannel:BWIDth[:CHANnel]", widths,
               [](Settings& settings) -> double& { return settings.analyzer.channelBandwidth; }),
        number("[SENSe:]POWer:ACHannel:BWIDth:ACHannel", widths,
               [](Settings& settings) -> double& { return settings.analyzer.adjacentBandwidth; }),
        number("[SENSe:]POWer:ACHannel:SPACing", widths,
               [](Settings& settings) -> double& { return settings.analyzer.channelSpacing; }),
        eitherWord("[SENSe:]POWer:ACHannel:MODE", "RELative", "ABSolute",
                   [](Settings& settings) -> bool& { return settings.analyzer.relativeChannels; }),
        only("[SENSe:]POWer:ACHannel:ACPairs", "1"),
        only("[SENSe:]DETector:FUNCtion", "RMS"),
        only("CALCulate:MARKer:FUNCtion:POWer:SELect", "ACP"),
        only("CALCulate:MARKer:FUNCtion:POWer:RESult:PHZ", "OFF"),
    };
    return table;
}

const SettingCommand* findSetting(const SettingTable& table, const QByteArray& header)
{
    const auto row = std::find_if(table.begin(), table.end(), [&header](const SettingCommand& it) {
        return it.pattern.matches(header);
    });
    return row == table.end() ? nullptr : &*row;
}
