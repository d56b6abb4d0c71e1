// What "analyze" is asked for, checked before any recording is read.
#pragma once

#include "campaign/npr_result.h"
#include "cli/arguments.h"
#include "dut/chain.h"

#include <optional>

struct SampleType;

struct AnalyzeRequest
{
    QStringList files;
    QVector<double> levels; // dBm, one a file, or none
    const SampleType* type = nullptr;
    std::optional<double> sampleRate;
    std::optional<double> center;
    double skipSeconds = 0.0;
    QVector<double> thresholds;
    std::optional<double> limit;
    std::optional<Chain> theory;
    std::optional<NprResult> without; // the device

    LevelUnit unit() const { return levels.isEmpty() ? LevelUnit::Dbfs : LevelUnit::Dbm; }
};

// Throws Failure.
AnalyzeRequest analyzeRequestOf(const Arguments& arguments);
