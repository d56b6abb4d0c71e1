// A recording on the disk: where its samples lie and what its file tells of them.
#pragma once

#include "recording/sample_type.h"

#include <QByteArray>
#include <QStringList>

#include <optional>

// One line that names the file and says what is wrong with it.
struct RecordingError
{
    QString text;
};

[[noreturn]] inline void refuseFile(const QString& path, const QString& why)
{
    throw RecordingError{path + ": " + why};
}

struct Recording
{
    QString name;      // as it was given
    QStringList paths; // of one file, or of two with I and Q, half of a sample in each
    const SampleType* type = nullptr;
    qint64 offset = 0;                // bytes before the first sample
    qint64 samples = 0;               // all of them are there
    std::optional<double> sampleRate; // Hz
    std::optional<double> frequency;  // of the middle of the recorded band, Hz
    QByteArray sha512;                // of the whole file, in hexadecimal digits; empty for none
    QStringList remarks;              // what people are to be told
};
