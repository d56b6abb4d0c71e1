// Kinds of values that keys of a configuration have. Any thread.
#pragma once

#include <QString>

enum class ConfigKind { Whole, Real, Text }; // whole number, number, text in quotes

// Whether a value, with its quotes, is one that a key of this kind takes as it stands.
bool fitsConfigKind(const QString& value, ConfigKind kind);
QString nameOf(ConfigKind kind); // as in "isn't a whole number"
