// The samples of a recording, in pieces of any size from any place. The file isn't mapped: one that
// is cut short while it is read fails like any other. Any number of threads may read one object at
// once.
#pragma once

#include "recording/recording.h"
#include "transform/complex_buffer.h"

#include <memory>
#include <vector>

class QFile;

class SampleReader
{
public:
    // Throws RecordingError.
    explicit SampleReader(Recording itsRecording);
    ~SampleReader();
    SampleReader(const SampleReader&) = delete;
    SampleReader& operator=(const SampleReader&) = delete;

    const Recording& recording() const { return source; }

    // Bytes of so many samples from first on, in the recording's type. Throws RecordingError.
    void read(qint64 first, qint64 count, std::vector<char>& raw) const;

    // The samples themselves, and zeros behind them up to length.
    ComplexBuffer samples(qint64 first, qint64 count, qint64 length) const;

private:
    void readBytes(const QFile& file, qint64 position, qint64 size, char* to) const;

    const Recording source;
    std::vector<std::unique_ptr<QFile>> files;
};
