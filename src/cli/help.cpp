#include "cli/help.h"

#include "cli/command.h"
#include "cli/device_argument.h"

#include <QPair>

#include <algorithm>

namespace {

constexpr int lineWidth = 80;

// Words in lines that begin at a column; the first line goes on where it stands. All others end in
// lineEnd.
QString wrapped(const QString& text, int column, const QString& lineEnd = {})
{
    QString all;
    int at = column;
    for (const QString& word : text.split(' ')) {
        if (at > column && at + word.size() + 1 + lineEnd.size() > lineWidth) {
            all += lineEnd + '\n' + QString(column, ' ');
            at = column;
        }
        const QString piece = (at > column ? " " : "") + word;
        all += piece;
        at += piece.size();
    }
    return all + '\n';
}

// Names on the left, what they do on the right.
QString glossary(const QVector<QPair<QString, QString>>& entries)
{
    constexpr int widestName = 26;
    int column = 0;
    for (const auto& entry : entries) {
        const int width = entry.first.size();
        column = std::max(column, width <= widestName ? width + 4 : 0);
    }
    QString all;
    for (const auto& entry : entries) {
        const bool fits = entry.first.size() + 4 <= column;
        all += "  " + (fits ? entry.first.leftJustified(column - 2)
                            : entry.first + '\n' + QString(column, ' '));
        all += wrapped(entry.second, column);
    }
    return all;
}

bool takesDevice(const Command& command)
{
    return std::any_of(command.options.begin(), command.options.end(),
                       [](const Option& option) { return option.valueName.startsWith("DEVICE"); });
}

QString helpOfDevices()
{
    QVector<QPair<QString, QString>> keys;
    for (const Option& key : deviceKeys()) {
        keys.append(qMakePair(key.name + '=' + key.valueName, key.help));
    }
    return "\nDevices are " + deviceNames().join(", ") + ".\nTheir keys:\n" + glossary(keys);
}

QString nameOf(const Option& option)
{
    return "--" + option.name + (option.valueName.isEmpty() ? "" : ' ' + option.valueName);
}

const char configHelp[] =
    "CONFIG is a file that the window saved (.cfg), \"-\" for one on standard input, or\n"
    "\"default\" for the program's defaults.\n";

const char examples[] =
    "  notchbench-cli curve default --notches 3,1e6,-100,0 --levels -40:0:2 \\\n"
    "  --simulate adc,bits=12,full-scale=0 --threshold 41 --plot curve.png\n"
    "  notchbench-cli signal default --set \"NPR/Seed=7\" --out noise --format wv\n"
    "  notchbench-cli trim default --target 9 --out trimmed.pmc\n";

const char statuses[] =
    "  0    done, and within limits\n"
    "  1    a limit or a target was missed\n"
    "  2    wrong usage\n"
    "  3    a file or a port can't be had, or the signal can't be made\n"
    "  4    an instrument failed\n"
    "  130  interrupted by Ctrl+C; 143 by SIGTERM; 129 by a terminal that closed\n";

} // namespace

QString helpOfProgram()
{
    QVector<QPair<QString, QString>> commands;
    for (const Command& command : commandTable()) {
        commands.append(qMakePair(command.name, command.summary));
    }
    return "usage: notchbench-cli COMMAND CONFIG [OPTIONS]\n"
           "       notchbench-cli COMMAND --help\n"
           "       notchbench-cli --help | --version\n\n"
           "The test bench for noise power ratio without its window.\n\n"
           "Commands:\n" +
           glossary(commands) + '\n' + configHelp + "\nExamples:\n" + examples +
           "\nExit status:\n" + statuses;
}

QString helpOf(const Command& command)
{
    QVector<QPair<QString, QString>> options;
    for (const Option& option : command.options) {
        options.append(qMakePair(nameOf(option), option.help));
    }
    options.append(qMakePair(QString("--help"), QString("Show this text.")));
    return "usage: notchbench-cli " + command.name + ' ' + command.positional + " [OPTIONS]\n\n" +
           wrapped(command.summary, 0) + '\n' +
           (command.positional.contains("CONFIG") ? configHelp + QString('\n') : QString()) +
           "Options:\n" + glossary(options) + (takesDevice(command) ? helpOfDevices() : QString()) +
           "\nExample:\n  " + wrapped("notchbench-cli " + command.example, 2, " \\");
}
