// A write that fails for a limit on the size of files, or because the reader of a pipe has gone,
// ends a program by a signal unless it asks for the failure alone. For systems with POSIX signals.
#pragma once

// Asks for it. The signals stay ignored; to be called before the first write.
void outliveFailedWrites();
