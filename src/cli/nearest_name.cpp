#include "cli/nearest_name.h"

#include <QVector>

#include <algorithm>

namespace {

// Levenshtein's distance, by rows.
int distance(const QString& a, const QString& b)
{
    QVector<int> row(b.size() + 1);
    for (int j = 0; j <= b.size(); ++j) {
        row[j] = j;
    }
    for (int i = 1; i <= a.size(); ++i) {
        int diagonal = row.at(0);
        row[0] = i;
        for (int j = 1; j <= b.size(); ++j) {
            const int changed = diagonal + (a.at(i - 1) == b.at(j - 1) ? 0 : 1);
            diagonal = row.at(j);
            row[j] = std::min({changed, diagonal + 1, row.at(j - 1) + 1});
        }
    }
    return row.at(b.size());
}

} // namespace

QString nearestName(const QString& typed, const QStringList& names)
{
    constexpr int longest = 200; // what nobody types by mistake
    const QString wanted = typed.left(longest).toLower();
    QString nearest;
    int best = 0;
    for (const QString& name : names) {
        const int far = distance(wanted, name.toLower());
        if (nearest.isEmpty() || far < best) {
            nearest = name;
            best = far;
        }
    }
    return nearest;
}

QString didYouMean(const QString& typed, const QStringList& names)
{
    const QString nearest = nearestName(typed, names);
    return nearest.isEmpty() ? QString() : QStringLiteral("; did you mean %1?").arg(nearest);
}
