#include "cli/command.h"
#include "cli/serve_command.h"
#include "cli/signal_command.h"
#include "cli/trim_command.h"

const QVector<Command>& commandTable()
{
    static const QVector<Command> commands = {
        signalCommand(),
        trimCommand(),
        serveCommand(),
    };
    return commands;
}
