#include "simulator/instrument.h"

SimulatedInstrument::SimulatedInstrument(Bench& simulatedBench, BenchFace benchFace,
                                         const BenchModels& benchModels)
    : bench(simulatedBench), models(benchModels), face(benchFace)
{
}

bool SimulatedInstrument::hasGenerator() const
{
    return face == BenchFace::GeneratorAndAnalyzer || face == BenchFace::Generator;
}

bool SimulatedInstrument::hasAnalyzer() const
{
    return face == BenchFace::GeneratorAndAnalyzer || face == BenchFace::Analyzer;
}

// The chosen ones, divided by blanks.
QByteArray SimulatedInstrument::modelNames() const
{
    QByteArray names;
    names += hasGenerator() ? models.generator->name : "";
    names += ' ';
    names += hasAnalyzer() ? models.analyzer->name : "";
    names += hasMicrowave() ? models.microwave->name : "";
    return names.trimmed();
}

QByteArray SimulatedInstrument::identity() const
{
    static constexpr const char* kinds[] = {"Bench", "Signal Generator", "Analyzer",
                                            "Microwave Generator"};
    const QByteArray names = modelNames();
    return QByteArray("Notchbench,Simulated ") + kinds[static_cast<int>(face)] +
           (names.isEmpty() ? names : ' ' + names) + ",0,1.0";
}

QByteArray SimulatedInstrument::options() const
{
    if (models.options) {
        return *models.options;
    }
    const InstrumentType& type = hasMicrowave()   ? *models.microwave
                                 : hasGenerator() ? *models.generator
                                                  : *models.analyzer;
    return type.options;
}

void SimulatedInstrument::refuse(const char* who, ScpiError error, const QByteArray& context)
{
    status.add(error, context);
    if (tell) {
        tell(QString::fromLatin1(who + QByteArray(": ") + errorEntry(error, context)));
    }
}

ChannelPowers SimulatedInstrument::read()
{
    const ChannelPowers powers = bench.channelPowers();
    if (bench.isOverloaded()) {
        status.addOverload();
        if (tell) {
            tell(QStringLiteral("analyzer: overload: the input's peaks are above %1 dBm; raise "
                                "attenuation or reference level, or lower the signal")
                     .arg(inputLimit(bench.settings.analyzer)));
        }
    }
    return powers;
}

void SimulatedInstrument::endSweep()
{
    sweeping = false;
    status.operationsEnded();
}
