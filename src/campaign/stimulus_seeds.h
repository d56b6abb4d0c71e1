// Which seeds make the stimuli of a setup. Any thread.
#pragma once

#include "setup/measurement_setup.h"

// Whether the next seed makes another stimulus: not for files and the other phase laws.
inline bool hasSeed(const MeasurementSetup& setup)
{
    return setup.customSource == SignalSource::Internal && setup.phaseMode == PhaseLaw::Seeded;
}

// That of the setup's own signal, or none.
inline QVector<quint32> seedsOf(const MeasurementSetup& setup)
{
    return hasSeed(setup) ? QVector<quint32>{setup.seed} : QVector<quint32>();
}
