// Where rows stand after they were inserted into a list one after the other. Inserting each into
// the list itself takes time that grows with the square of their number.
#pragma once

#include <QVector>

// For the rows in order of their insertion, the one that stands first, second and so on at the end.
// A position at or beyond the end appends, one at or below 0 prepends.
QVector<int> orderAfterInsertions(const QVector<qint32>& positions);
