// The settings that SCPI reaches, as tables: which header sets which member of the bench.
//
// To add a setting: 1. its member in bench_settings.h, 2. its row in command_table.cpp. Every
// row can be set and, with a "?" behind the header, asked.
#pragma once

#include "simulator/bench_settings.h"
#include "simulator/scpi_errors.h"
#include "simulator/scpi_text.h"

#include <QByteArray>

#include <functional>
#include <vector>

struct SettingCommand
{
    ScpiPattern pattern;
    std::function<ScpiError(BenchSettings& settings, const QByteArray& argument)> set;
    std::function<QByteArray(BenchSettings& settings)> value;
};

using SettingTable = std::vector<SettingCommand>;

const SettingTable& generatorSettings();
const SettingTable& microwaveSettings();
const SettingTable& analyzerSettings();

// The row whose pattern the header matches, or null.
const SettingCommand* findSetting(const SettingTable& table, const QByteArray& header);
