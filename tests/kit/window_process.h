// The program itself as a process of its own, with a home that nobody else has.
#pragma once

#include <QProcess>
#include <QTemporaryDir>
#include <QtTest>

class WindowProcess
{
public:
    explicit WindowProcess(const QString& logFile = QProcess::nullDevice())
    {
        QProcessEnvironment environment = QProcessEnvironment::systemEnvironment();
        environment.insert("HOME", home.path());
        environment.insert("XDG_DATA_HOME", home.path());
        environment.insert("QT_QPA_PLATFORM", "offscreen");
        process.setProcessEnvironment(environment);
        process.setStandardErrorFile(logFile, QIODevice::Append);
        process.start(QStringLiteral(NOTCHBENCH), QStringList());
    }
    ~WindowProcess()
    {
        process.kill();
        process.waitForFinished();
    }

    bool isRunning() const { return process.state() == QProcess::Running; }

    QTemporaryDir home;
    QProcess process;
};
