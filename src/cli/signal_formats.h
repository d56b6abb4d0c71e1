// The forms in which "signal" writes. To add one: its row in the table of signal_formats.cpp, and
// its name in the man page and in the completion.
#pragma once

#include "setup/measurement_setup.h"

#include <QStringList>

#include <vector>

struct SignalFormat
{
    QString name;
    QStringList suffixes; // of its files
    bool (*write)(const MeasurementSetup& setup, const QString& baseName);
};

const std::vector<SignalFormat>& signalFormats();

QStringList signalFormatNames();
