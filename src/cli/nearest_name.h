// What somebody may have meant who mistyped a name.
#pragma once

#include <QString>
#include <QStringList>

// The one of fewest changed, missing and surplus letters, whatever their case; the first of
// several. Empty for no names.
QString nearestName(const QString& typed, const QStringList& names);

// "; did you mean X?"
QString didYouMean(const QString& typed, const QStringList& names);
