// The text of a configuration file, taken apart into sections and keys.
//
// The grammar is that of two expressions, matched globally, where "." takes neither CR nor LF:
//   section:  \[(.+)\][\r\n]+((?:.+\ =\ (?:(?:-?\d+(?:\.\d+)?(?:[eE][\+|-]\d+)?)|".*")[\r\n]+)+)
//   key:      (.+)\ =\ ((?:-?\d+(?:\.\d+)?(?:[eE][\+|-]\d+)?)|".+")
// the second one inside the body of the first. They are not run as expressions, because matching
// them backtracks: a line scanner takes the same texts in linear time, whatever the bytes are.
//
// What follows from them and is relied on: a line of another form ends its section without a word,
// a section without a key line is lost, a last line without a line end isn't read, and a key whose
// quoted value is empty is absent.
#pragma once

#include <QHash>
#include <QSet>
#include <QString>
#include <QStringView>
#include <QVector>

#include <functional>

using ConfigSection = QHash<QString, QString>;    // key -> value, quotes kept
using ConfigText = QHash<QString, ConfigSection>; // section name -> section

// The keys to keep of a section of that name; null when none of it is kept. What the filter leaves
// out costs no memory.
using ConfigFilter = std::function<const QSet<QString>*(QStringView section)>;

// A repeated section replaces the earlier one as a whole, a repeated key the earlier value. Without
// a filter everything is kept.
ConfigText parseConfigText(const QString& text, const ConfigFilter& filter = {});

// What becomes of one line that holds anything, in the order of the text.
struct ConfigLine
{
    enum class Role {
        Section, // its name stands in section
        Key,     // of section; key is empty when the line is taken but carries no value
        Other    // not read
    };

    int number; // from 1
    Role role;
    QString section;
    QString key;
    QString value; // quotes kept
};

QVector<ConfigLine> configLines(const QString& text);
