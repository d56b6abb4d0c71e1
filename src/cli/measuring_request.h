// What the commands that measure are asked for, checked before anything is calculated.
#pragma once

#include "campaign/npr_result.h"
#include "campaign/plan.h"
#include "cli/arguments.h"
#include "cli/option.h"
#include "dut/chain.h"
#include "setup/measurement_setup.h"

#include <optional>

// --simulate, --notch, --average and the others that "measure" and "curve" share.
Options measuringOptions();

Option notchOption();

// Of all notches those of "--notch all" or "--notch 1,3", in their order. Throws Failure.
QVector<NumberedNotch> chosenNotches(const Arguments& arguments, const QVector<NumberedNotch>& all);

struct MeasuringRequest
{
    std::optional<Chain> simulated;
    QString simulatedText;
    int averages = 1;
    double settleSeconds = 0.0;
    std::optional<double> limit;
    std::optional<NprResult> without; // the device
    std::optional<Chain> theory;
};

// As a measurement is expected to take: "about 20 s", "about 1:10 min", "about 2:05 h".
QString durationText(double seconds);

// None for the present level alone, of which there is no curve.
struct CurveRequest
{
    QVector<double> levels;     // dBm
    QVector<double> thresholds; // dB
};

// Throws Failure.
CurveRequest curveRequestOf(const Arguments& arguments);
MeasuringRequest requestOf(const Arguments& arguments);

// Before hours of measuring, not after them: throws Failure when the result of "--subtract" lacks a
// point of the plan, or was measured otherwise than the wanted result is to be. Any thread.
void requireSubtractable(const std::optional<NprResult>& without, const NprResult& wanted,
                         const CampaignPlan& plan, const Arguments& arguments);

// Throws Failure in carrier mode, without a notch and without a rate.
void requireMeasurable(const MeasurementSetup& setup);

// Of a setup whose signal has, or will have, so many samples. Throws Failure for notches that
// aren't there or can't be read.
CampaignPlan planOf(const MeasurementSetup& setup, int signalLength,
                    const MeasuringRequest& request, const QVector<double>& levels,
                    const Arguments& arguments);
