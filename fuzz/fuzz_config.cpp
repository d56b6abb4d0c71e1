// The configuration file: whatever it holds makes a record, and what the program writes of that
// record it reads again, but for the sections that a number without a finite value cuts short.
#include "fuzz/input_file.h"
#include "setup/config_file.h"

#include <cstdlib>

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    const InputFile input(bytesOf(data, size));
    const MeasurementSetup setup = loadConfig(input.path());
    setup.notches->fillTable(setup.effectiveFrequency());
    saveConfig(setup, input.path());
    const MeasurementSetup again = loadConfig(input.path());
    if (again.notches->items.size() > setup.notches->items.size() ||
        again.tcpPort != setup.tcpPort || again.sinxCompensation != setup.sinxCompensation) {
        std::abort();
    }
    return 0;
}
