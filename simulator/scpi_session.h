// What one connection says to an instrument and is answered: the meaning of SCPI units. No socket.
//
// Where signal generator and analyzer share an address they tell themselves apart by their words;
// the microwave generator has an address of its own, since it uses the signal generator's words.
//
// To add a query or an action: a row in the table of scpi_session.cpp. For a setting see
// command_table.h.
#pragma once

#include "simulator/command_table.h"
#include "simulator/instrument.h"
#include "simulator/scpi_text.h"

class ScpiSession
{
public:
    // The instrument must outlive the session.
    explicit ScpiSession(SimulatedInstrument& instrument);

    // Whether the unit starts a sweep of this instrument.
    bool startsSweep(const ScpiUnit& unit) const;

    // Whether the unit is one of the standard's that wait for what is under way.
    static bool waitsForCompletion(const ScpiUnit& unit);

    // Whether the unit asks for what a sweep has measured.
    static bool asksForResult(const ScpiUnit& unit);

    // Carries the unit out. What is refused leaves an error in the queue and nothing else.
    void run(const ScpiUnit& unit);

    // The answers to the queries since the last call, divided by ";"; empty when there was none.
    QByteArray takeAnswers();

    void refuse(ScpiError error, const QByteArray& context);

private:
    friend struct SessionCommand;

    enum class Spoken { ToNobody, ToGenerator, ToAnalyzer };

    StatusModel& status() { return instrument.status; }
    bool runCommand(const ScpiUnit& unit);
    bool runSetting(const ScpiUnit& unit, const SettingTable& table, const InstrumentType& type,
                    const char* who);
    ScpiError set(const ScpiUnit& unit, const SettingCommand& row, const InstrumentType& type);
    bool hasOptionFor(const SettingCommand& row) const;
    void answer(const QByteArray& text);
    void answerNumber(int number) { answer(QByteArray::number(number)); }
    ScpiError setRegister(quint8& to, const QByteArray& argument);
    ScpiError answerChannelPower(const QByteArray& argument);
    void reset();

    SimulatedInstrument& instrument;
    QByteArray answers;
    Spoken spoken = Spoken::ToNobody; // by the settings so far
};
