#include "simulator/command_table.h"

#include <algorithm>
#include <utility>

namespace {

using Settings = BenchSettings;

using RangeOf = Range Ranges::*;

ScpiError readNumber(const QByteArray& argument, const Range& range, double& to)
{
    bool isNumber = false;
    const double value = argument.toDouble(&isNumber);
    if (!isNumber) {
        return ScpiError::DataType;
    }
    if (!range.holds(value)) {
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
        return ScpiError::IllegalValue;
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

SettingCommand number(const char* pattern, RangeOf range, NumberIn in)
{
    return {ScpiPattern(pattern), 1,
            [range, in](Settings& settings, const QByteArray& argument, const Ranges& ranges) {
                return readNumber(argument, ranges.*range, in(settings));
            },
            [in](Settings& settings) { return numberText(in(settings)); }};
}

SettingCommand onOff(const char* pattern, SwitchIn in)
{
    return {ScpiPattern(pattern), 1,
            [in](Settings& settings, const QByteArray& argument, const Ranges& /*ranges*/) {
                return readSwitch(argument, in(settings));
            },
            [in](Settings& settings) { return switchText(in(settings)); }};
}

// A header that carries its state as its last word, as in "LEV:ON".
SettingCommand stateWord(const char* pattern, bool state, SwitchIn in)
{
    return {
        ScpiPattern(pattern), 0,
        [state, in](Settings& settings, const QByteArray& /*argument*/, const Ranges& /*ranges*/) {
            in(settings) = state;
            return ScpiError::None;
        },
        [state, in](Settings& settings) { return switchText(in(settings) == state); }};
}

// A number that has an effect of its own when it is set.
SettingCommand numberThat(const char* pattern, RangeOf range, NumberIn in,
                          void (*afterwards)(Settings& settings))
{
    SettingCommand row = number(pattern, range, in);
    row.set = [range, in, afterwards](Settings& settings, const QByteArray& argument,
                                      const Ranges& ranges) {
        const ScpiError error = readNumber(argument, ranges.*range, in(settings));
        if (error == ScpiError::None) {
            afterwards(settings);
        }
        return error;
    };
    return row;
}

// A number that, once set, is no longer the instrument's choice.
SettingCommand automaticNumber(const char* pattern, RangeOf range, AutomaticIn in)
{
    return {ScpiPattern(pattern), 1,
            [range, in](Settings& settings, const QByteArray& argument, const Ranges& ranges) {
                const ScpiError error = readNumber(argument, ranges.*range, in(settings).value);
                in(settings).automatic &= error != ScpiError::None;
                return error;
            },
            [in](Settings& settings) { return numberText(in(settings).value); }};
}

SettingCommand automaticChoice(const char* pattern, AutomaticIn in)
{
    return {ScpiPattern(pattern), 1,
            [in](Settings& settings, const QByteArray& argument, const Ranges& /*ranges*/) {
                return readSwitch(argument, in(settings).automatic);
            },
            [in](Settings& settings) { return switchText(in(settings).automatic); }};
}

// A setting with the one value that the simulated instrument can do.
SettingCommand only(const char* pattern, const char* value)
{
    return {ScpiPattern(pattern), 1,
            [value](Settings& /*settings*/, const QByteArray& argument, const Ranges& /*ranges*/) {
                return argument.toUpper() == value ? ScpiError::None : ScpiError::IllegalValue;
            },
            [value](Settings& /*settings*/) { return QByteArray(value); }};
}

// Two words for a switch that has names.
SettingCommand eitherWord(const char* pattern, const char* on, const char* off, SwitchIn in)
{
    return {
        ScpiPattern(pattern), 1,
        [on, off, in](Settings& settings, const QByteArray& argument, const Ranges& /*ranges*/) {
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
    return numberThat(
        pattern, &Ranges::level,
        [](Settings& settings) -> double& { return settings.microwave.level; },
        [](Settings& settings) { settings.microwave.ifInput = false; });
}

// The measurement that adjacent channel power must be selected for.
SettingCommand channelPowerSelection(const char* pattern)
{
    SettingCommand row = only(pattern, "ACP");
    row.set = [](Settings& settings, const QByteArray& argument, const Ranges& /*ranges*/) {
        const bool known = argument.toUpper() == "ACP";
        settings.analyzer.channelPowerSelected |= known;
        return known ? ScpiError::None : ScpiError::IllegalValue;
    };
    return row;
}

SettingCommand knownTo(quint32 dialects, SettingCommand row)
{
    row.dialects = dialects;
    return row;
}

SettingCommand needing(std::vector<QByteArray> anyOption, SettingCommand row)
{
    row.anyOption = std::move(anyOption);
    return row;
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
    using namespace Dialect;
    constexpr quint32 plain = rigl | denb | cyg | kauA;
    constexpr quint32 secondPath = phdB | kauB;
    constexpr quint32 digital = denb | phdB | cyg;
    static const SettingTable table{
        knownTo(plain, number("FREQuency[:CW]", &Ranges::frequency, generatorFrequency)),
        knownTo(lyr | altair, number("RF", &Ranges::frequency, generatorFrequency)),
        knownTo(secondPath,
                number("SOURce2:FREQuency[:CW]", &Ranges::frequency, generatorFrequency)),
        knownTo(plain, number("POWer[:LEVel]", &Ranges::level, generatorLevel)),
        knownTo(lyr | altair, number("L", &Ranges::level, generatorLevel)),
        knownTo(secondPath, number("SOURce2:POWer[:LEVel]", &Ranges::level, generatorLevel)),
        knownTo(plain, onOff("OUTPut[:STATe]", generatorOutput)),
        knownTo(secondPath, onOff("OUTPut2[:STATe]", generatorOutput)),
        knownTo(lyr, stateWord("LEV:ON", true, generatorOutput)),
        knownTo(lyr, stateWord("LEV:OFF", false, generatorOutput)),
        knownTo(altair, stateWord("L:ON", true, generatorOutput)),
        knownTo(altair, stateWord("L:OFF", false, generatorOutput)),
        knownTo(rigl, onOff("IQ:STATe", iqModulation)),
        knownTo(altair, stateWord("IQ:ON", true, iqModulation)),
        knownTo(altair, stateWord("IQ:OFF", false, iqModulation)),
        knownTo(digital, onOff("DM:IQ:STATe", iqModulation)),
        knownTo(digital, only("DM:IQ:PRAM", "OFF")),
    };
    return table;
}

const SettingTable& microwaveSettings()
{
    using namespace Dialect;
    static const SettingTable table{
        number("FREQuency[:CW]", &Ranges::frequency,
               [](Settings& settings) -> double& { return settings.microwave.frequency; }),
        onOff("OUTPut[:STATe]",
              [](Settings& settings) -> bool& { return settings.microwave.output; }),
        knownTo(zub, needing({"B23", "B24"}, onOff("INPut:IF:STATe",
                                                   [](Settings& settings) -> bool& {
                                                       return settings.microwave.ifInput;
                                                   }))),
        knownTo(zub, needing({"B15", "B17"}, number("OUTPut:ATTenuation", &Ranges::attenuation,
                                                    [](Settings& settings) -> double& {
                                                        return settings.microwave.attenuation;
                                                    }))),
        ownLevel("POWer[:LEVel]"),
    };
    return table;
}

const SettingTable& analyzerSettings()
{
    static const SettingTable table{
        number("[SENSe:]FREQuency:CENTer", &Ranges::frequency,
               [](Settings& settings) -> double& { return settings.analyzer.centerFrequency; }),
        number("[SENSe:]FREQuency:SPAN", &Ranges::span,
               [](Settings& settings) -> double& { return settings.analyzer.span; }),
        number("DISPlay[:WINDow]:TRACe:Y[:SCALe]:RLEVel", &Ranges::level,
               [](Settings& settings) -> double& { return settings.analyzer.referenceLevel; }),
        automaticNumber("INPut:ATTenuation", &Ranges::attenuation, attenuation),
        automaticChoice("INPut:ATTenuation:AUTO", attenuation),
        automaticNumber("[SENSe:]BANDwidth[:RESolution]", &Ranges::bandwidth, resolutionBandwidth),
        automaticChoice("[SENSe:]BANDwidth[:RESolution]:AUTO", resolutionBandwidth),
        automaticNumber("[SENSe:]BANDwidth:VIDeo", &Ranges::bandwidth, videoBandwidth),
        automaticChoice("[SENSe:]BANDwidth:VIDeo:AUTO", videoBandwidth),
        automaticNumber("[SENSe:]SWEep:TIME", &Ranges::sweepTime, sweepTime),
        automaticChoice("[SENSe:]SWEep:TIME:AUTO", sweepTime),
        onOff("INITiate:CONTinuous",
              [](Settings& settings) -> bool& { return settings.analyzer.continuousSweep; }),
        numberThat(
            "[SENSe:]POWer:ACHannel:BWIDth[:CHANnel]", &Ranges::span,
            [](Settings& settings) -> double& { return settings.analyzer.channelBandwidth; },
            [](Settings& settings) { settings.analyzer.channelWidthSet = true; }),
        number("[SENSe:]POWer:ACHannel:BWIDth:ACHannel", &Ranges::span,
               [](Settings& settings) -> double& { return settings.analyzer.adjacentBandwidth; }),
        numberThat(
            "[SENSe:]POWer:ACHannel:SPACing", &Ranges::span,
            [](Settings& settings) -> double& { return settings.analyzer.channelSpacing; },
            [](Settings& settings) { settings.analyzer.channelSpacingSet = true; }),
        eitherWord("[SENSe:]POWer:ACHannel:MODE", "RELative", "ABSolute",
                   [](Settings& settings) -> bool& { return settings.analyzer.relativeChannels; }),
        only("[SENSe:]POWer:ACHannel:ACPairs", "1"),
        only("[SENSe:]DETector:FUNCtion", "RMS"),
        channelPowerSelection("CALCulate:MARKer:FUNCtion:POWer:SELect"),
        only("CALCulate:MARKer:FUNCtion:POWer:RESult:PHZ", "OFF"),
    };
    return table;
}

const SettingCommand* findSetting(const SettingTable& table, const QByteArray& header,
                                  quint32 dialects)
{
    const auto row = std::find_if(table.begin(), table.end(), [&](const SettingCommand& it) {
        return (it.dialects & dialects) != 0 && it.pattern.matches(header);
    });
    return row == table.end() ? nullptr : &*row;
}
