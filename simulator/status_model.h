// Status and errors of an instrument as IEEE 488.2 and SCPI have them: event status, questionable
// status, status byte, error queue. They belong to the instrument, whoever asks. One thread.
#pragma once

#include "simulator/scpi_errors.h"

class StatusModel
{
public:
    // Queues the error and sets the bit of its class.
    void add(ScpiError error, const QByteArray& context);
    void addOverload() { questionable |= inputPower; }

    // "*OPC": the bit is set now or, when something is under way, by operationsEnded().
    void askForCompletion(bool underWay);
    void operationsEnded();

    void clear(); // "*CLS": events, queue and a waiting "*OPC"; not the enable registers

    QByteArray takeOldestError() { return errors.takeOldest(); }
    quint8 takeEvents();       // "*ESR?"
    quint8 takeQuestionable(); // "STATus:QUEStionable?"
    // "*STB?"; whether an answer waits is up to the connection.
    quint8 statusByte(bool messageAvailable) const;

    quint8 eventEnable = 0;   // "*ESE"
    quint8 serviceEnable = 0; // "*SRE"

private:
    static constexpr quint8 inputPower = 1U << 3;
    static constexpr quint8 powerOn = 1U << 7;

    ScpiErrorQueue errors;
    quint8 events = powerOn;
    quint8 questionable = 0;
    bool completionAsked = false;
};
