// Words of the command line "curve", checked and made ready by the command's own code. Any thread;
// files are read, so the main thread leaves it to another one.
#pragma once

#include "cli/prepared_measuring.h"

#include <QStringList>

#include <functional>

struct OrderCheck
{
    QString failure = QStringLiteral("not enough memory or no thread"); // empty when all is well
    QString notice; // what has to be known before the start; empty otherwise
    qint64 readings = 0;
    double seconds = 0.0; // about
};

// Without making the signal.
OrderCheck checkOrder(const QStringList& words);

struct ReadyOrder
{
    QString failure = QStringLiteral("not enough memory or no thread"); // empty when stopped too
    QStringList warnings;
    QString holders; // who holds an instrument; empty for nobody
    PreparedMeasuring measuring;
};

// Makes the signal. isStopped is asked between the steps, here.
ReadyOrder prepareOrder(
    const QStringList& words, const std::function<bool()>& isStopped = [] { return false; });
