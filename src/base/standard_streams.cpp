#include "base/standard_streams.h"

#include <fcntl.h>
#include <unistd.h>

void holdClosedStandardStreams()
{
    for (int stream = STDIN_FILENO; stream <= STDERR_FILENO; ++stream) {
        if (fcntl(stream, F_GETFD) < 0) {
            // The lowest free number is this one. Opened for the direction that nobody uses, so
            // that what can't be written is told and doesn't seem to be.
            const int opened =
                open("/dev/null", stream == STDIN_FILENO ? O_WRONLY : O_RDONLY); // kept open
            static_cast<void>(opened);
        }
    }
}
