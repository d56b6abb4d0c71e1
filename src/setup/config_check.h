// What of a configuration's text the reader passes over, or reads as something else than it says.
// Reading itself is silent; this is for those who want to know. Any thread.
#pragma once

#include <QString>
#include <QVector>

struct ConfigComplaint
{
    int line;     // from 1
    QString text; // without file and line
};

// In the order of the lines; none for a text that the program wrote itself.
QVector<ConfigComplaint> ignoredConfigLines(const QString& text);
