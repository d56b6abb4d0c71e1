// "--theory": a device in closed form beside what was measured.
#pragma once

#include "campaign/npr_result.h"
#include "campaign/plan.h"
#include "campaign/theory.h"
#include "cli/stop_check.h"
#include "dut/chain.h"
#include "setup/measurement_setup.h"

#include <optional>

// The chain of "DEVICE[,KEY=VALUE...]", or "same" for the one simulated. A converter has the full
// scale of the simulated one unless it is given; over levels in dBFS it has 0, and there is no
// other device, for they tell nothing of a device's input. Throws Failure.
Chain theoryChain(const QString& text, const std::optional<Chain>& simulated, LevelUnit unit);

// Level, notch and ratio of each point of the plan. The setup's signal is the stimulus. Asks stop
// at each level.
QVector<NprPoint> theoryPoints(const MeasurementSetup& setup, const Chain& chain,
                               const CampaignPlan& plan, const StopCheck& stop = endAtSignal);

// The same of a theory of the notches.
QVector<NprPoint> theoryPoints(const Theory& theory, const QVector<double>& levels,
                               const QVector<NumberedNotch>& notches,
                               const StopCheck& stop = endAtSignal);
