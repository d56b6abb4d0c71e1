// The points of a result as comma-separated values: a header line, then one line a point, in the C
// locale with line feeds. Marks are joined by spaces, what is missing is empty.
#pragma once

#include "campaign/npr_result.h"

#include <QByteArray>

QByteArray pointsToCsv(const NprResult& result);

struct NamedResult
{
    QString name;
    NprResult result;
};

// One result after the other, with the name as a last column "result". Levels of all are in one
// unit.
QByteArray joinedCsv(const QVector<NamedResult>& results);
