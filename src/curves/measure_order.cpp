#include "curves/measure_order.h"

#include <QRegularExpression>

namespace {

void addUnlessEmpty(const char* option, const QString& value, QStringList& words)
{
    if (!value.isEmpty()) {
        words << QLatin1String(option) << value;
    }
}

QString deviceWord(const MeasureOrder& order)
{
    QStringList parts{order.device};
    for (auto figure = order.figures.begin(); figure != order.figures.end(); ++figure) {
        if (!figure.value().isEmpty()) {
            parts << figure.key() + '=' + figure.value();
        }
    }
    if (!order.others.isEmpty()) {
        parts << order.others;
    }
    return parts.join(',');
}

QString quoted(const QString& word)
{
    static const QRegularExpression plain(QStringLiteral("^[A-Za-z0-9_./:,=+-]+$"));
    return plain.match(word).hasMatch() ? word : '\'' + QString(word).replace("'", "'\\''") + '\'';
}

} // namespace

QStringList wordsOf(const MeasureOrder& order)
{
    QStringList words{"curve", order.config};
    addUnlessEmpty("--notches", order.notches, words);
    if (order.isSimulated) {
        words << "--simulate" << deviceWord(order);
    }
    words << "--levels" << QStringList{order.from, order.to, order.step}.join(':');
    addUnlessEmpty("--average", order.averages, words);
    addUnlessEmpty("--limit", order.limit, words);
    for (const QString& threshold : order.thresholds) {
        addUnlessEmpty("--threshold", threshold, words);
    }
    if (order.isSimulated && order.hasTheory) {
        words << "--theory"
              << "same";
    }
    return words;
}

QString commandLineOf(const QStringList& words)
{
    QStringList shown{"notchbench-cli"};
    for (const QString& word : words) {
        shown << quoted(word);
    }
    return shown.join(' ');
}
