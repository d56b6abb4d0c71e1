#include "cli/commands.h"

const QVector<Command>& commandTable()
{
    static const QVector<Command> commands = {
        signalCommand(),  trimCommand(), measureCommand(), curveCommand(),
        analyzeCommand(), plotCommand(), serveCommand(),
    };
    return commands;
}
