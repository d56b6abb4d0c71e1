#include "cli/program.h"

#include "cli/command.h"
#include "cli/help.h"
#include "cli/nearest_name.h"

#include <algorithm>
#include <new>

namespace {

bool isHelp(const QString& word)
{
    return word == "--help" || word == "-h";
}

const Command& findCommand(const QString& name)
{
    const QVector<Command>& commands = commandTable();
    const auto* const found = std::find_if(commands.begin(), commands.end(),
                                           [&](const Command& one) { return one.name == name; });
    if (found != commands.end()) {
        return *found;
    }
    QStringList names;
    for (const Command& command : commands) {
        names.append(command.name);
    }
    failUsage(QStringLiteral("unknown command %1%2").arg(name, didYouMean(name, names)));
}

ExitStatus runCommand(const Command& command, const QStringList& words, Console& console,
                      const StopSignals& stop)
{
    if (std::any_of(words.begin(), words.end(), isHelp)) {
        console.print(helpOf(command));
        return ExitStatus::Done;
    }
    const Arguments arguments(words, command.options);
    return command.run({arguments, console, stop});
}

ExitStatus runWords(const QStringList& words, Console& console, const StopSignals& stop)
{
    if (words.isEmpty()) {
        failUsage(QStringLiteral("no command; notchbench-cli --help lists them"));
    }
    const QString& first = words.constFirst();
    if (isHelp(first)) {
        console.print(helpOfProgram());
        return ExitStatus::Done;
    }
    if (first == "--version") {
        console.print(QStringLiteral("notchbench-cli " NOTCHBENCH_VERSION "\n"));
        return ExitStatus::Done;
    }
    return runCommand(findCommand(first), words.mid(1), console, stop);
}

} // namespace

ExitStatus runProgram(const QStringList& words, Console& console, const StopSignals& stop)
{
    ExitStatus status = ExitStatus::Done;
    try {
        status = runWords(words, console, stop);
    } catch (const Failure& failure) {
        console.message(failure.text);
        status = failure.status;
    } catch (const std::bad_alloc&) {
        console.message(QStringLiteral("not enough memory; try a shorter \"NPR/FFT Len\""));
        status = ExitStatus::FileFailed;
    }
    if (!console.isWhole() && !console.hasLostReader()) {
        console.message(QStringLiteral("standard output can't be written; is its disk full?"));
        const bool wentWell = status == ExitStatus::Done || status == ExitStatus::LimitMissed;
        status = wentWell ? ExitStatus::FileFailed : status;
    }
    return status;
}

bool asksForPicture(const QStringList& words)
{
    return std::any_of(words.begin(), words.end(), [](const QString& word) {
        return word == "--plot" || word.startsWith("--plot=");
    });
}
