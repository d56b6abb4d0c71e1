// How a line of a text file falls into its fields.
#pragma once

#include <QString>
#include <QVector>

// What stands between the separators, without white space at the ends of the line and of each
// field; one empty field for an empty line. The fields are parts of line, which must outlive them.
QVector<QStringRef> fieldsOf(const QString& line, char separator);
