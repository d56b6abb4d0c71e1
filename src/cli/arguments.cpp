#include "cli/arguments.h"

#include "cli/exit_status.h"
#include "cli/nearest_name.h"

#include <algorithm>

namespace {

const QLatin1String dashes("--");

const Option& findOption(const Options& options, const QString& name)
{
    const auto* const found = std::find_if(options.begin(), options.end(),
                                           [&](const Option& one) { return one.name == name; });
    if (found != options.end()) {
        return *found;
    }
    QStringList names;
    for (const Option& option : options) {
        names.append(dashes + option.name);
    }
    failUsage(QStringLiteral("unknown option --%1%2").arg(name, didYouMean(dashes + name, names)));
}

// The value of an option, from behind "=" or from the next word, which at then passes.
QString takeValue(const Option& option, const QString& word, const QStringList& words, int& at)
{
    const int equals = word.indexOf(QLatin1Char('='));
    if (option.valueName.isEmpty()) {
        if (equals >= 0) {
            failUsage(QStringLiteral("--%1 takes no value").arg(option.name));
        }
        return {};
    }
    const bool isNext = equals < 0 && at < words.size() && !words.at(at).startsWith(dashes);
    QString value = isNext ? words.at(at++) : equals >= 0 ? word.mid(equals + 1) : QString();
    if (value.isEmpty()) {
        failUsage(QStringLiteral("--%1 needs a value: --%1 %2").arg(option.name, option.valueName));
    }
    return value;
}

} // namespace

Arguments::Arguments(const QStringList& words, const Options& options)
{
    for (int at = 0; at < words.size();) {
        const QString& word = words.at(at++);
        if (!word.startsWith(dashes)) {
            if (word.startsWith(QLatin1Char('-')) && word.size() > 1) {
                failUsage(QStringLiteral("unknown option %1; options have two dashes").arg(word));
            }
            others.append(word);
            continue;
        }
        const QString name = word.section(QLatin1Char('='), 0, 0).mid(dashes.size());
        const Option& option = findOption(options, name);
        if (has(name) && !option.isRepeatable) {
            failUsage(QStringLiteral("--%1 is given twice").arg(name));
        }
        given[name].append(takeValue(option, word, words, at));
    }
}
