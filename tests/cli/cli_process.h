// The program notchbench-cli as a process, with what it printed and how it ended.
#pragma once

#include "kit/instrumented.h"

#include <QProcess>
#include <QString>
#include <QTemporaryDir>

struct CliRun
{
    int status = -1; // -1 for one that didn't end by itself
    QString out;
    QString err;

    QStringList errLines() const { return err.split('\n', Qt::SkipEmptyParts); }
};

class CliProcess
{
public:
    // Works in a folder of its own, with no display to find.
    CliProcess()
    {
        process.setWorkingDirectory(folder.path());
        QProcessEnvironment environment = QProcessEnvironment::systemEnvironment();
        for (const char* name : {"DISPLAY", "WAYLAND_DISPLAY", "QT_QPA_PLATFORM"}) {
            environment.remove(name);
        }
        process.setProcessEnvironment(environment);
    }
    ~CliProcess()
    {
        if (process.state() != QProcess::NotRunning) {
            process.kill();
            process.waitForFinished();
        }
    }

    QString path(const QString& name) const { return folder.filePath(name); }

    CliRun run(const QStringList& words, const QByteArray& input = {})
    {
        return runBy(NOTCHBENCH_CLI, words, input);
    }

    // By way of another program, which starts it.
    CliRun runBy(const char* program, const QStringList& words, const QByteArray& input = {})
    {
        process.start(program, words);
        process.write(input);
        process.closeWriteChannel();
        constexpr int patience = isInstrumented ? 600000 : 100000; // ms
        process.waitForFinished(patience);
        const bool ended =
            process.exitStatus() == QProcess::NormalExit && process.state() == QProcess::NotRunning;
        return {ended ? process.exitCode() : -1,
                QString::fromLocal8Bit(process.readAllStandardOutput()),
                QString::fromLocal8Bit(process.readAllStandardError())};
    }

    QProcess process;

private:
    QTemporaryDir folder;
};
