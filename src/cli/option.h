// One option of a command, as its help shows it.
#pragma once

#include <QString>
#include <QVector>

struct Option
{
    QString name;      // without dashes
    QString valueName; // empty for a switch
    QString help;
    bool isRepeatable = false;
};

using Options = QVector<Option>;
