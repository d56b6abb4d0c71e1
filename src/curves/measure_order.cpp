#include "curves/measure_order.h"

#include <QRegularExpression>

namespace {

void addUnlessEmpty(const char* option, const QString& value, QStringList& words)
{
    if (!value.isEmpty()) {
        words << QLatin1String(option) << value;
    }
}

QString quoted(const QString& word)
{
    static const QRegularExpression plain(QStringLiteral("^[A-Za-z0-9_./:,=+-]+$"));
    return plain.match(word).hasMatch() ? word : '\'' + QString(word).replace("'", "'\\''") + '\'';
}

} // namespace

QString deviceWord(const QString& device, const QMap<QString, QString>& figures,
                   const QString& others)
{
    QStringList parts{device};
    for (auto figure = figures.begin(); figure != figures.end(); ++figure) {
        if (!figure.value().isEmpty()) {
            parts << figure.key() + '=' + figure.value();
        }
    }
    if (!others.isEmpty()) {
        parts << others;
    }
    return parts.join(',');
}

QStringList wordsOf(const MeasureOrder& order)
{
    QStringList words{"curve", order.config};
    addUnlessEmpty("--notches", order.notches, words);
    if (order.isSimulated) {
        words << "--simulate" << deviceWord(order.device, order.figures, order.others);
    }
    words << "--levels" << QStringList{order.from, order.to, order.step}.join(':');
    addUnlessEmpty("--notch", order.notchRows, words);
    addUnlessEmpty("--average", order.averages, words);
    addUnlessEmpty("--settle", order.settling, words);
    addUnlessEmpty("--limit", order.limit, words);
    for (const QString& threshold : order.thresholds) {
        addUnlessEmpty("--threshold", threshold, words);
    }
    addUnlessEmpty("--theory", order.theory, words);
    addUnlessEmpty("--subtract", order.subtract, words);
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

QString commandLinesOf(const QStringList& words, int most)
{
    QStringList options{"notchbench-cli"};
    for (const QString& word : words) {
        if (word.startsWith(QStringLiteral("--"))) {
            options << quoted(word);
        } else {
            options.last() += ' ' + quoted(word);
        }
    }
    QStringList lines;
    for (const QString& option : qAsConst(options)) {
        if (!lines.isEmpty() && lines.constLast().size() + 1 + option.size() <= most) {
            lines.last() += ' ' + option;
        } else {
            lines << option;
        }
    }
    return lines.join(QStringLiteral(" \\\n    "));
}
