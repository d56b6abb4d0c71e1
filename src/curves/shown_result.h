// A result as the window holds it: plain values.
#pragma once

#include "campaign/npr_result.h"

#include <QString>

struct ShownResult
{
    enum class State { InFile, Unsaved, Running };

    int id = 0;   // unlike that of any other result of the window, for good
    QString name; // of its file, or when it was measured
    QString path; // of its file; empty without one
    State state = State::InFile;
    bool isShown = true; // in the chart
    NprResult result;
    std::optional<double> limit;
    QString theoryName;
    QVector<NprPoint> theory; // level, notch and ratio count
};
