#include "cli/commands.h"

#include "cli/measuring.h"
#include "cli/measuring_request.h"

namespace {

ExitStatus run(const Session& session)
{
    return measure(session, curveRequestOf(session.arguments));
}

} // namespace

Command curveCommand()
{
    return {
        "curve",
        "Measure NPR in the notches over levels: peak, range over a threshold, pass or fail.",
        "CONFIG",
        "curve default --notches 9,1e6,-100,0 --simulate adc,bits=12,full-scale=0 --levels "
        "-40:0:1 --threshold 41",
        Options{{"levels", "FROM:TO:STEP", "Levels in dBm, both ends included."},
                {"threshold", "DB",
                 "Report the range of levels around the peak where NPR stays above this.", true}} +
            measuringOptions(),
        run};
}
