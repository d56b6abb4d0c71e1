// What tests of a session share: a bench with a microwave generator and both ways to speak to it.
#pragma once

#include "simulator/scpi_session.h"

#include <QtTest>

const char noError[] = "0,\"No error\"";

// Runs the units of a line and returns what they answered.
inline QByteArray tell(ScpiSession& session, const QByteArray& line)
{
    for (const ScpiUnit& unit : scpiUnits(line)) {
        session.run(unit);
    }
    return session.takeAnswers();
}

// A line that asks nothing and is understood leaves neither an answer nor an error.
inline bool isUnderstood(ScpiSession& session, const QByteArray& line)
{
    return tell(session, line).isEmpty() && tell(session, "SYST:ERR?") == noError;
}

// How the program prepares the analyzer for its readings.
inline const QList<QByteArray> channelPowerPreset = {"SENS:DET1:FUNC RMS",
                                                     ":CALC1:MARK1:FUNC:POW:SEL ACP",
                                                     ":SENS1:POW:ACH:ACP 1",
                                                     ":CALC1:MARK1:FUNC:POW:RES:PHZ OFF;*WAI",
                                                     "POW:ACH:MODE REL",
                                                     "INP:ATT:AUTO ON",
                                                     "BAND:RES:AUTO ON",
                                                     "BAND:VID:AUTO ON",
                                                     "SWE:TIME 1.000000",
                                                     "DISP:WIND1:TRAC:Y:RLEV -20.000",
                                                     "&GTL"};

class ScpiSessionTest : public QObject
{
protected:
    static BenchWiring withMicrowave()
    {
        BenchWiring wiring;
        wiring.hasMicrowave = true;
        return wiring;
    }

    static BenchModels withOptions(const char* options)
    {
        BenchModels models;
        models.options = options;
        return models;
    }

    // As before the first command.
    void startAnew()
    {
        bench.settings = {};
        mainInstrument.status = StatusModel();
        microwaveInstrument.status = StatusModel();
    }

    Bench bench{withMicrowave()};
    SimulatedInstrument mainInstrument{bench, BenchFace::GeneratorAndAnalyzer, withOptions("B15")};
    SimulatedInstrument microwaveInstrument{bench, BenchFace::Microwave, withOptions("B15,B23")};
    ScpiSession main() { return ScpiSession(mainInstrument); }
    ScpiSession microwave() { return ScpiSession(microwaveInstrument); }
};
