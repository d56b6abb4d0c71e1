#include "graph/graph_tool_tip.h"

#include "setup/measurement_setup.h"

namespace {

QString megahertz(double hertz)
{
    return QString::number(hertz / 1e6, 'f', 6) + QStringLiteral(" MHz");
}

} // namespace

QString graphToolTip(const MeasurementSetup& setup)
{
    const double carrier = setup.effectiveFrequency();
    const double halfBand = setup.nbwSrate * setup.sampleRate / 2;
    const QString editing =
        setup.notchOrCarrier == NotchOrCarrier::Notch
            ? QStringLiteral("Drag a notch, its sides or its bottom; draw a new one from above the "
                             "band; right-click to delete.")
            : QStringLiteral("One yellow line for each carrier of the table.");
    const QString axes = QStringLiteral("Across: the whole sample rate, %1. Down: 105 dB from the "
                                        "band's top to the floor.");
    const QString edges = QStringLiteral("The noise band goes from %1 to %2.");
    return editing + '\n' + axes.arg(megahertz(setup.sampleRate)) + '\n' +
           edges.arg(megahertz(carrier - halfBand), megahertz(carrier + halfBand));
}
