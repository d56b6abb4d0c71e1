// The simulated bench as a process of its own: the program notchbench-simulator.
#pragma once

#include "kit/event_wait.h"

#include <QElapsedTimer>
#include <QProcess>
#include <QtTest>

class SimulatorProcess
{
public:
    // Starts it, with sweeps that take no time, and waits until it listens. signalPort is the
    // status server that it plays.
    SimulatorProcess(quint16 signalPort, const QStringList& options)
    {
        process.start(
            QStringLiteral(NOTCHBENCH_SIMULATOR),
            QStringList{"--fast", "--verbose", "--signal-port", QString::number(signalPort)} +
                options);
        ready = eventsBring(
            [this] {
                out += process.readAllStandardOutput();
                return out.contains("listening on");
            },
            10000);
    }
    ~SimulatorProcess()
    {
        process.terminate();
        if (!process.waitForFinished(5000)) {
            process.kill();
            process.waitForFinished();
        }
    }

    bool isReady() const { return ready; }

    // Waits until a line with this text has come since the last call.
    bool logs(const QByteArray& text, int limitMs = 60000)
    {
        const bool found = eventsBring(
            [&] {
                const QByteArray news = process.readAllStandardError();
                log += news;
                wholeLog += news;
                return log.contains(text);
            },
            limitMs);
        log.clear();
        return found;
    }

    // The lines so far that tell of a command that an instrument refused.
    QByteArrayList refusals()
    {
        wholeLog += process.readAllStandardError();
        QByteArrayList lines;
        for (const QByteArray& line : wholeLog.split('\n')) {
            if (line.contains(": -")) {
                lines << line;
            }
        }
        return lines;
    }

    void kill()
    {
        process.kill();
        process.waitForFinished();
    }

private:
    QProcess process;
    QByteArray out;
    QByteArray log;
    QByteArray wholeLog;
    bool ready = false;
};
