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
