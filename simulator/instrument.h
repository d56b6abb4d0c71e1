// What stands behind one address of the bench: one instrument, or generator and analyzer together.
// Its words, its identity, its status and errors, which all connections share. No socket. One
// thread.
#pragma once

#include "simulator/bench.h"
#include "simulator/instrument_types.h"
#include "simulator/status_model.h"

#include <functional>
#include <optional>

enum class BenchFace { GeneratorAndAnalyzer, Generator, Analyzer, Microwave };

// Which models stand on the bench.
struct BenchModels
{
    const InstrumentType* generator = &generatorTypes().front();
    const InstrumentType* analyzer = &analyzerTypes().front();
    const InstrumentType* microwave = &microwaveTypes().front();
    std::optional<QByteArray> options; // the answer to "*OPT?" in place of the models' own
};

class SimulatedInstrument
{
public:
    // bench must outlive the instrument.
    SimulatedInstrument(Bench& bench, BenchFace face, const BenchModels& models = {});

    bool hasGenerator() const;
    bool hasAnalyzer() const;
    bool hasMicrowave() const { return face == BenchFace::Microwave; }

    QByteArray identity() const;
    QByteArray options() const;
    bool hasOption(const QByteArray& option) const { return options().split(',').contains(option); }

    // Refuses what `who` was told: status, queue and one line through tell.
    void refuse(const char* who, ScpiError error, const QByteArray& context);

    // A reading, which tells of an overload as well.
    ChannelPowers read();

    // A sweep, as long as whoever keeps the time says.
    void beginSweep() { sweeping = true; }
    void endSweep();
    bool isSweeping() const { return sweeping; }

    Bench& bench;
    const BenchModels models;
    StatusModel status;
    // Hears one line for each refusal and each overload; may be empty.
    std::function<void(const QString& text)> tell;

private:
    QByteArray modelNames() const;

    const BenchFace face;
    bool sweeping = false;
};
