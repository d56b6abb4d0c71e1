#include "simulator/scpi_session.h"

#include <algorithm>
#include <functional>
#include <utility>

namespace {

constexpr char sweepStart[] = "INITiate[:IMMediate]";
constexpr char channelPowerResult[] = "CALCulate:MARKer:FUNCtion:POWer:RESult";
constexpr char wait[] = "*WAI";
constexpr char completion[] = "*OPC";

QByteArray powerText(double value)
{
    return QByteArray::number(value, 'f', 6);
}

int parameterCount(const QByteArray& argument)
{
    return argument.isEmpty() ? 0 : argument.count(',') + 1;
}

ScpiError checkedCount(const QByteArray& argument, int wanted)
{
    const int count = parameterCount(argument);
    return count > wanted   ? ScpiError::ParameterNotAllowed
           : count < wanted ? ScpiError::MissingParameter
                            : ScpiError::None;
}

const char* nameOf(const SimulatedInstrument& instrument)
{
    if (instrument.hasMicrowave()) {
        return "microwave";
    }
    return !instrument.hasAnalyzer()    ? "generator"
           : !instrument.hasGenerator() ? "analyzer"
                                        : "bench";
}

} // namespace

// A word that is no setting.
struct SessionCommand
{
    using Action = std::function<ScpiError(ScpiSession& session, const QByteArray& argument)>;

    ScpiPattern pattern;
    bool query;
    int parameters;
    bool analyzerOnly;
    Action run;

    static const std::vector<SessionCommand>& all();

private:
    using PlainAction = void (*)(ScpiSession& session);

    static Action unrefused(PlainAction action)
    {
        return [action](ScpiSession& session, const QByteArray& /*argument*/) {
            action(session);
            return ScpiError::None;
        };
    }

    // Without a parameter and never refused.
    static SessionCommand question(const char* pattern, PlainAction action)
    {
        return {ScpiPattern(pattern), true, 0, false, unrefused(action)};
    }
    static SessionCommand order(const char* pattern, PlainAction action)
    {
        return {ScpiPattern(pattern), false, 0, false, unrefused(action)};
    }
    // With one parameter.
    static SessionCommand orderWith(const char* pattern, Action action)
    {
        return {ScpiPattern(pattern), false, 1, false, std::move(action)};
    }
};

const std::vector<SessionCommand>& SessionCommand::all()
{
    using S = ScpiSession;
    static const std::vector<SessionCommand> table{
        question("*IDN", [](S& s) { s.answer(s.instrument.identity()); }),
        question("*OPT", [](S& s) { s.answer(s.instrument.options()); }),
        question("*TST", [](S& s) { s.answerNumber(0); }),
        question(completion, [](S& s) { s.answerNumber(1); }),
        order(completion, [](S& s) { s.status().askForCompletion(s.instrument.isSweeping()); }),
        order(wait, [](S&) {}),
        order("*CLS", [](S& s) { s.status().clear(); }),
        order("*RST", [](S& s) { s.reset(); }),
        question("*ESR", [](S& s) { s.answerNumber(s.status().takeEvents()); }),
        question("*STB", [](S& s) { s.answerNumber(s.status().statusByte(!s.answers.isEmpty())); }),
        question("*ESE", [](S& s) { s.answerNumber(s.status().eventEnable); }),
        orderWith("*ESE",
                  [](S& s, const QByteArray& text) {
                      return s.setRegister(s.status().eventEnable, text);
                  }),
        question("*SRE", [](S& s) { s.answerNumber(s.status().serviceEnable); }),
        orderWith("*SRE",
                  [](S& s, const QByteArray& text) {
                      return s.setRegister(s.status().serviceEnable, text);
                  }),
        order("&GTL", [](S&) {}),
        order("@LOC", [](S&) {}),
        question("SYSTem:ERRor[:NEXT]", [](S& s) { s.answer(s.status().takeOldestError()); }),
        question("SYSTem:VERSion", [](S& s) { s.answer("1999.0"); }),
        question("STATus:QUEStionable[:EVENt]",
                 [](S& s) { s.answerNumber(s.status().takeQuestionable()); }),
        // Whoever keeps the time starts the sweep.
        {ScpiPattern(sweepStart), false, 0, true, unrefused([](S&) {})},
        {ScpiPattern(channelPowerResult), true, 1, true,
         [](S& s, const QByteArray& text) { return s.answerChannelPower(text); }},
    };
    return table;
}

ScpiSession::ScpiSession(SimulatedInstrument& simulatedInstrument) : instrument(simulatedInstrument)
{
}

bool ScpiSession::startsSweep(const ScpiUnit& unit) const
{
    static const ScpiPattern pattern(sweepStart);
    return instrument.hasAnalyzer() && !unit.query && unit.argument.isEmpty() &&
           pattern.matches(unit.header);
}

bool ScpiSession::waitsForCompletion(const ScpiUnit& unit)
{
    static const ScpiPattern waiting(wait);
    static const ScpiPattern completed(completion);
    return unit.query ? completed.matches(unit.header) : waiting.matches(unit.header);
}

bool ScpiSession::asksForResult(const ScpiUnit& unit)
{
    static const ScpiPattern result(channelPowerResult);
    return unit.query && result.matches(unit.header);
}

void ScpiSession::run(const ScpiUnit& unit)
{
    const BenchModels& models = instrument.models;
    if (runCommand(unit)) {
        return;
    }
    if (instrument.hasGenerator() &&
        runSetting(unit, generatorSettings(), *models.generator, "generator")) {
        spoken = Spoken::ToGenerator;
        return;
    }
    if (instrument.hasAnalyzer() &&
        runSetting(unit, analyzerSettings(), *models.analyzer, "analyzer")) {
        spoken = Spoken::ToAnalyzer;
        return;
    }
    if (instrument.hasMicrowave() &&
        runSetting(unit, microwaveSettings(), *models.microwave, "microwave")) {
        return;
    }
    refuse(ScpiError::UndefinedHeader, unit.header);
}

QByteArray ScpiSession::takeAnswers()
{
    QByteArray taken;
    taken.swap(answers);
    return taken;
}

void ScpiSession::refuse(ScpiError error, const QByteArray& context)
{
    instrument.refuse(nameOf(instrument), error, context);
}

bool ScpiSession::runCommand(const ScpiUnit& unit)
{
    for (const SessionCommand& row : SessionCommand::all()) {
        if (row.query == unit.query && row.pattern.matches(unit.header) &&
            (!row.analyzerOnly || instrument.hasAnalyzer())) {
            ScpiError error = checkedCount(unit.argument, row.parameters);
            error = error == ScpiError::None ? row.run(*this, unit.argument) : error;
            if (error != ScpiError::None) {
                refuse(error, unit.header + ' ' + unit.argument);
            }
            return true;
        }
    }
    return false;
}

bool ScpiSession::runSetting(const ScpiUnit& unit, const SettingTable& table,
                             const InstrumentType& type, const char* who)
{
    const SettingCommand* row = findSetting(table, unit.header, type.dialects);
    if (row == nullptr) {
        return false;
    }
    const ScpiError error = set(unit, *row, type);
    if (error != ScpiError::None) {
        instrument.refuse(who, error, unit.header + ' ' + unit.argument);
    }
    return true;
}

ScpiError ScpiSession::set(const ScpiUnit& unit, const SettingCommand& row,
                           const InstrumentType& type)
{
    const ScpiError counted = checkedCount(unit.argument, unit.query ? 0 : row.parameters);
    if (counted != ScpiError::None) {
        return counted;
    }
    if (!hasOptionFor(row)) {
        return ScpiError::HardwareMissing;
    }
    if (unit.query) {
        answer(row.value(instrument.bench.settings));
        return ScpiError::None;
    }
    return row.set(instrument.bench.settings, unit.argument, type.ranges);
}

bool ScpiSession::hasOptionFor(const SettingCommand& row) const
{
    return row.anyOption.empty() ||
           std::any_of(row.anyOption.begin(), row.anyOption.end(),
                       [this](const QByteArray& option) { return instrument.hasOption(option); });
}

void ScpiSession::answer(const QByteArray& text)
{
    answers += answers.isEmpty() ? text : ';' + text;
}

ScpiError ScpiSession::setRegister(quint8& to, const QByteArray& argument)
{
    bool isNumber = false;
    const int value = argument.toInt(&isNumber);
    if (!isNumber) {
        return ScpiError::DataType;
    }
    if (value < 0 || value > 255) {
        return ScpiError::OutOfRange;
    }
    to = static_cast<quint8>(value);
    return ScpiError::None;
}

// Reference, lower and upper adjacent channel.
ScpiError ScpiSession::answerChannelPower(const QByteArray& argument)
{
    const SimulatedAnalyzer& analyzer = instrument.bench.settings.analyzer;
    if (argument.toUpper() != "ACP") {
        return ScpiError::IllegalValue;
    }
    if (!analyzer.channelPowerSelected || !analyzer.channelWidthSet ||
        !analyzer.channelSpacingSet) {
        return ScpiError::SettingsConflict;
    }
    const ChannelPowers powers = instrument.read();
    const double base = analyzer.relativeChannels ? powers.reference : 0.0;
    answer(powerText(powers.reference) + ',' + powerText(powers.lower - base) + ',' +
           powerText(powers.upper - base));
    return ScpiError::None;
}

// Where generator and analyzer share the address, only the one that this connection has been
// setting goes back: to reset the analyzer must not silence the generator, which would be another
// device on a real bench.
void ScpiSession::reset()
{
    BenchSettings& settings = instrument.bench.settings;
    if (instrument.hasMicrowave()) {
        settings.microwave = {};
    }
    if (instrument.hasGenerator() && spoken != Spoken::ToAnalyzer) {
        settings.generator = {};
    }
    if (instrument.hasAnalyzer() && spoken != Spoken::ToGenerator) {
        settings.analyzer = {};
    }
}
