// The words behind the name of a command, taken apart by its options.
//
// A value follows its option as a word of its own or after "=". It may begin with one minus sign;
// a word that begins with two is the next option. "-" alone is no option.
#pragma once

#include "cli/option.h"

#include <QHash>
#include <QStringList>

class Arguments
{
public:
    // Throws Failure for an option that isn't known, comes twice or lacks its value, which is
    // never empty.
    Arguments(const QStringList& words, const Options& options);

    bool has(const QString& option) const { return given.contains(option); }
    // Empty when it wasn't given.
    QString value(const QString& option) const { return given.value(option).value(0); }
    QStringList values(const QString& option) const { return given.value(option); }
    // In their order.
    const QStringList& positional() const { return others; }

private:
    QHash<QString, QStringList> given; // by name; a switch has one empty value
    QStringList others;
};
