#include "cli/stop_check.h"

#include "base/stop_signals.h"
#include "cli/exit_status.h"

void endAtSignal()
{
    if (StopSignals::received() != 0) {
        throw Failure{statusOfSignal(StopSignals::received()), "interrupted"};
    }
}
