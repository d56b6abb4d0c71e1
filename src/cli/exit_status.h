// How the program ends, and the one way to end a command early: throw a Failure. Its text is one
// line that names the option, file or instrument and says what to do.
#pragma once

#include <QString>

#include <csignal>

enum class ExitStatus {
    Done = 0,
    LimitMissed = 1,
    WrongUsage = 2,
    FileFailed = 3, // or there can be no signal
    InstrumentFailed = 4,
    HungUp = 129,      // the terminal closed
    Interrupted = 130, // Ctrl+C
    Terminated = 143   // SIGTERM
};

struct Failure
{
    ExitStatus status;
    QString text;
};

[[noreturn]] inline void failUsage(const QString& text)
{
    throw Failure{ExitStatus::WrongUsage, text};
}

[[noreturn]] inline void failFile(const QString& text)
{
    throw Failure{ExitStatus::FileFailed, text};
}

// Of a command that a signal ended, by the signal's number.
inline ExitStatus statusOfSignal(int signal)
{
    return signal == SIGTERM  ? ExitStatus::Terminated
           : signal == SIGHUP ? ExitStatus::HungUp
                              : ExitStatus::Interrupted;
}
