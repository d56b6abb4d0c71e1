// What one connection says to the bench and is answered: the meaning of SCPI units. No socket.
//
// The signal generator and the analyzer share an address and tell themselves apart by their words;
// the microwave generator has an address of its own, since it uses the signal generator's words.
//
// To add a query or an action: a row in the table of scpi_session.cpp. For a setting see
// command_table.h.
#pragma once

#include "simulator/bench.h"
#include "simulator/scpi_errors.h"
#include "simulator/scpi_text.h"

struct SettingCommand;

// Which instruments stand behind an address.
enum class BenchFace { GeneratorAndAnalyzer, Microwave };

class ScpiSession
{
public:
    // bench must outlive the session. options: the answer to "*OPT?".
    ScpiSession(Bench& bench, BenchFace face, const QByteArray& options);

    // Whether the unit starts a sweep, which is to see the newest signal.
    static bool startsSweep(const ScpiUnit& unit);

    // Carries the unit out. What isn't understood leaves an error in the queue and nothing else.
    void run(const ScpiUnit& unit);

    // The answers to the queries since the last call, divided by ";"; empty when there was none.
    QByteArray takeAnswers();

    void addError(ScpiError error, const QByteArray& context) { errors.add(error, context); }

private:
    friend struct SessionCommand;

    enum class Instrument { Unknown, Generator, Analyzer };

    bool runCommand(const ScpiUnit& unit);
    bool runSetting(const ScpiUnit& unit, const SettingCommand* row);
    void answer(const QByteArray& text);

    void answerIdentity();
    void answerOptions();
    void answerOne();
    void answerOldestError();
    void answerChannelPower();
    void clearErrors();
    void reset();
    void nothing() {}

    Bench& bench;
    const BenchFace face;
    const QByteArray options;
    ScpiErrorQueue errors;
    QByteArray answers;
    Instrument spokenTo = Instrument::Unknown; // by the settings so far
};
