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

    Bench bench{withMicrowave()};
    ScpiSession main() { return {bench, BenchFace::GeneratorAndAnalyzer, "B15"}; }
    ScpiSession microwave() { return {bench, BenchFace::Microwave, "B15,B23"}; }
};
