// A program may be started without standard input, output or error (a shell's "2>&-", a careless
// service). The next file or socket that it opens takes the free number then, and the text for
// people goes there: to an instrument, for example. For systems with POSIX descriptors.
#pragma once

// Holds the numbers of those that are closed: reading and writing them fails. The first thing in
// main().
void holdClosedStandardStreams();
