#include "cli/commands.h"

#include "cli/measuring.h"
#include "cli/measuring_request.h"

Command measureCommand()
{
    return {
        "measure",          "Measure NPR in the notches at CONFIG's level.",
        "CONFIG",           "measure default --notches 9,1e6,-100,0 --simulate rapp,saturation=-12",
        measuringOptions(), [](const Session& session) { return measure(session, {}); }};
}
