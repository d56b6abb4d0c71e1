#include "cli/analyze_command.h"
#include "cli/command.h"
#include "cli/curve_command.h"
#include "cli/measure_command.h"
#include "cli/plot_command.h"
#include "cli/serve_command.h"
#include "cli/signal_command.h"
#include "cli/trim_command.h"

const QVector<Command>& commandTable()
{
    static const QVector<Command> commands = {
        signalCommand(),  trimCommand(), measureCommand(), curveCommand(),
        analyzeCommand(), plotCommand(), serveCommand(),
    };
    return commands;
}
