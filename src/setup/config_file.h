// The configuration file: all settings of a MeasurementSetup as sections of "key = value" lines.
// Run-time state, the signal and the loaded correction are not part of it. Main thread.
//
// To add a setting: a row in a table of config_file.cpp, which reader and writer share. (The
// instruments write their own sections, see Instrument::configSection, and have a row each for
// reading.)
//
// Doubles are written with six significant digits, and that is the format. Some values come back
// changed; each such place is marked in config_file.cpp, because stored files rely on it.
#pragma once

#include "setup/config_kind.h"
#include "setup/config_text.h"
#include "setup/measurement_setup.h"

#include <QString>
#include <QStringList>
#include <QVector>

constexpr qint64 mostConfigBytes =
    qint64{16} * 1048576; // a table of 999 rows takes a fifth of one MiB

// A new record; whatever the file does not carry has its default. Never fails: without a readable
// file the record is the default one. A file of more than 16 MiB counts as one without a section.
MeasurementSetup loadConfig(const QString& path);

// Writes the file whole or leaves the former one as it is, also when it is cut off in the middle
// (see WholeFile). A failure is not reported.
void saveConfig(const MeasurementSetup& setup, const QString& path);

// The same with a file in the application's local data directory, which saving makes if needed.
MeasurementSetup loadDefaultConfig(const QString& name);
void saveDefaultConfig(const MeasurementSetup& setup, const QString& name);

// The same without a file.
MeasurementSetup configOf(const ConfigText& sections);
QString configTextOf(const MeasurementSetup& setup);

// What the reader knows: the names of the sections, but for the rows of the notch table, which are
// "Notch 1", "Notch 2" and so on; and the keys of one, none for a name that it doesn't know.
struct ConfigKey
{
    QString name;
    ConfigKind kind;
};
QStringList configSections();
QVector<ConfigKey> configKeys(const QString& section);
