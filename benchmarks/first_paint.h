// From the start of a process to its first painted window, measured by the process that starts it.
#pragma once

#include "turns.h"

#include <benchmark/benchmark.h>

#include <QCoreApplication>
#include <QEvent>
#include <QProcess>
#include <QTimer>
#include <QWidget>

#include <iostream>

// Tells when the widget that it filters has been painted, and ends the process's event loop.
class PaintWatch : public QObject
{
public:
    bool eventFilter(QObject* watched, QEvent* event) override
    {
        if (event->type() == QEvent::Paint) {
            QTimer::singleShot(0, watched, [] {
                std::cout << "painted" << std::endl;
                QCoreApplication::quit();
            });
        }
        return false;
    }
};

// This program is started with the scenario "paintOnce", which has a widget watched.
inline void startToFirstPaint(benchmark::State& state)
{
    Fastest first;
    while (state.KeepRunning()) {
        QProcess program;
        state.SetIterationTime(first.add(secondsOf([&] {
            program.start(QCoreApplication::applicationFilePath(), {"paintOnce"});
            program.waitForReadyRead(-1);
        })));
        program.waitForFinished(-1);
    }
    state.counters["ms"] = first.seconds() * 1e3;
}
