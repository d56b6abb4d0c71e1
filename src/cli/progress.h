// How far a long command is: a line on standard error with what is done, how fast and how long it
// will take, at most ten times a second. None without a terminal or when it is to be quiet. Goes
// away with its object.
#pragma once

#include "cli/console.h"

#include <QElapsedTimer>

class Progress
{
public:
    // things names what is counted, as in "readings".
    Progress(Console& itsConsole, QString things, bool quiet = false);
    ~Progress();
    Progress(const Progress&) = delete;
    Progress& operator=(const Progress&) = delete;

    void show(qint64 done, qint64 total);

private:
    Console& console;
    const QString what;
    const bool isShown;
    QElapsedTimer sinceBegin;
    qint64 lastShown = 0; // ms after the begin
};

// "12 of 61 readings, 2.4/s, 0:20 left"; without rate and time before anything is done.
QString progressLine(const QString& things, qint64 done, qint64 total, qint64 elapsedMs);
