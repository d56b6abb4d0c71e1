// The settings that SCPI reaches, as tables: which header sets which member of the bench.
//
// To add a setting: 1. its member in bench_settings.h, 2. its row in command_table.cpp, with the
// dialects that know it and the options that it needs. Every row can be set and, with a "?" behind
// the header, asked.
#pragma once

#include "simulator/bench_settings.h"
#include "simulator/instrument_types.h"
#include "simulator/scpi_errors.h"
#include "simulator/scpi_text.h"

#include <QByteArray>

#include <functional>
#include <vector>

struct SettingCommand
{
    ScpiPattern pattern;
    int parameters; // that it is set with, 0 or 1
    // Changes nothing when it returns an error.
    std::function<ScpiError(BenchSettings& settings, const QByteArray& argument,
                            const Ranges& ranges)>
        set;
    std::function<QByteArray(BenchSettings& settings)> value;
    quint32 dialects = Dialect::all;
    std::vector<QByteArray> anyOption = {}; // one of these must be installed, if there are any
};

using SettingTable = std::vector<SettingCommand>;

const SettingTable& generatorSettings();
const SettingTable& microwaveSettings();
const SettingTable& analyzerSettings();

// The row whose pattern the header matches and whose words belong to one of the dialects, or null.
const SettingCommand* findSetting(const SettingTable& table, const QByteArray& header,
                                  quint32 dialects);
