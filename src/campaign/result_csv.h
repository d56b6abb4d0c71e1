// The points of a result as comma-separated values: a header line, then one line a point, in the C
// locale with line feeds. Marks are joined by spaces, what is missing is empty.
#pragma once

#include "campaign/npr_result.h"

#include <QByteArray>

QByteArray pointsToCsv(const QVector<NprPoint>& points);

struct NamedPoints
{
    QString name; // of the result
    QVector<NprPoint> points;
};

// One result after the other, with the name as a last column "result".
QByteArray joinedCsv(const QVector<NamedPoints>& results);
