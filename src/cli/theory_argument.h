// "--theory": a device in closed form beside what was measured.
#pragma once

#include "campaign/npr_result.h"
#include "campaign/plan.h"
#include "dut/chain.h"
#include "setup/measurement_setup.h"

#include <optional>

// The chain of "DEVICE[,KEY=VALUE...]", or "same" for the one simulated. A converter has the full
// scale of the simulated one unless it is given. Throws Failure.
Chain theoryChain(const QString& text, const std::optional<Chain>& simulated);

// Level, notch and ratio of each point of the plan. The setup's signal is the stimulus.
QVector<NprPoint> theoryPoints(const MeasurementSetup& setup, const Chain& chain,
                               const CampaignPlan& plan);
