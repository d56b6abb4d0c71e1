#include "simulator/scpi_session.h"

#include "simulator/command_table.h"

namespace {

constexpr char sweepStart[] = "INITiate[:IMMediate]";

QByteArray powerText(double value)
{
    return QByteArray::number(value, 'f', 6);
}

} // namespace

// A word that is no setting.
struct SessionCommand
{
    ScpiPattern pattern;
    bool query;
    void (ScpiSession::*run)();

    static const std::vector<SessionCommand>& all();
};

const std::vector<SessionCommand>& SessionCommand::all()
{
    using S = ScpiSession;
    static const std::vector<SessionCommand> table{
        {ScpiPattern("*IDN"), true, &S::answerIdentity},
        {ScpiPattern("*OPT"), true, &S::answerOptions},
        {ScpiPattern("*OPC"), true, &S::answerOne},
        {ScpiPattern("*OPC"), false, &S::nothing},
        {ScpiPattern("*WAI"), false, &S::nothing},
        {ScpiPattern("*CLS"), false, &S::clearErrors},
        {ScpiPattern("*RST"), false, &S::reset},
        {ScpiPattern("&GTL"), false, &S::nothing},
        {ScpiPattern("@LOC"), false, &S::nothing},
        {ScpiPattern("SYSTem:ERRor[:NEXT]"), true, &S::answerOldestError},
        {ScpiPattern(sweepStart), false, &S::nothing},
        {ScpiPattern("CALCulate:MARKer:FUNCtion:POWer:RESult"), true, &S::answerChannelPower},
    };
    return table;
}

ScpiSession::ScpiSession(Bench& simulatedBench, BenchFace benchFace,
                         const QByteArray& installedOptions)
    : bench(simulatedBench), face(benchFace), options(installedOptions)
{
}

bool ScpiSession::startsSweep(const ScpiUnit& unit)
{
    static const ScpiPattern pattern(sweepStart);
    return !unit.query && pattern.matches(unit.header);
}

void ScpiSession::run(const ScpiUnit& unit)
{
    if (runCommand(unit)) {
        return;
    }
    if (face == BenchFace::Microwave) {
        if (runSetting(unit, findSetting(microwaveSettings(), unit.header))) {
            return;
        }
    } else if (runSetting(unit, findSetting(generatorSettings(), unit.header))) {
        spokenTo = Instrument::Generator;
        return;
    } else if (runSetting(unit, findSetting(analyzerSettings(), unit.header))) {
        spokenTo = Instrument::Analyzer;
        return;
    }
    errors.add(ScpiError::UndefinedHeader, unit.header);
}

QByteArray ScpiSession::takeAnswers()
{
    QByteArray taken;
    taken.swap(answers);
    return taken;
}

bool ScpiSession::runCommand(const ScpiUnit& unit)
{
    for (const SessionCommand& row : SessionCommand::all()) {
        if (row.query == unit.query && row.pattern.matches(unit.header)) {
            (this->*row.run)();
            return true;
        }
    }
    return false;
}

bool ScpiSession::runSetting(const ScpiUnit& unit, const SettingCommand* row)
{
    if (row == nullptr) {
        return false;
    }
    if (unit.query) {
        answer(row->value(bench.settings));
        return true;
    }
    const ScpiError error = row->set(bench.settings, unit.argument);
    if (error != ScpiError::None) {
        errors.add(error, unit.header + ' ' + unit.argument);
    }
    return true;
}

void ScpiSession::answer(const QByteArray& text)
{
    answers += answers.isEmpty() ? text : ';' + text;
}

void ScpiSession::answerIdentity()
{
    answer(face == BenchFace::Microwave ? "Notchbench,Simulated Microwave Generator,0,1.0"
                                        : "Notchbench,Simulated Bench,0,1.0");
}

void ScpiSession::answerOptions()
{
    answer(options);
}

void ScpiSession::answerOne()
{
    answer("1");
}

void ScpiSession::answerOldestError()
{
    answer(errors.takeOldest());
}

// Reference, lower and upper adjacent channel.
void ScpiSession::answerChannelPower()
{
    const ChannelPowers powers = bench.channelPowers();
    const double base = bench.settings.analyzer.relativeChannels ? powers.reference : 0.0;
    answer(powerText(powers.reference) + ',' + powerText(powers.lower - base) + ',' +
           powerText(powers.upper - base));
}

void ScpiSession::clearErrors()
{
    errors.clear();
}

// Only the instrument that this connection has been setting goes back: to reset the analyzer must
// not silence the generator, which would be another device on a real bench.
void ScpiSession::reset()
{
    if (face == BenchFace::Microwave) {
        bench.settings.microwave = {};
        return;
    }
    if (spokenTo != Instrument::Analyzer) {
        bench.settings.generator = {};
    }
    if (spokenTo != Instrument::Generator) {
        bench.settings.analyzer = {};
    }
}
