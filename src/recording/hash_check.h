// Whether the data of a recording is what its metadata says: the SHA-512 of the whole file, in
// pieces beside the analysis. One thread at a time.
#pragma once

#include "recording/recording.h"

#include <QCryptographicHash>
#include <QFile>

class HashCheck
{
public:
    // Does nothing for a recording without a hash. Throws RecordingError.
    explicit HashCheck(const Recording& itsRecording);

    // Goes on to done of total parts of the file.
    void advance(qint64 done, qint64 total);
    // After the last one. Throws RecordingError.
    void requireMatch() const;

private:
    const QString name;
    const QByteArray wanted;
    QFile file;
    QCryptographicHash hash{QCryptographicHash::Sha512};
    qint64 position = 0;
};
