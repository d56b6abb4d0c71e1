#include "recording/hash_check.h"

#include "base/regular_file.h"

#include <algorithm>

HashCheck::HashCheck(const Recording& itsRecording)
    : name(itsRecording.name), wanted(itsRecording.sha512), file(itsRecording.paths.constFirst())
{
    if (!wanted.isEmpty() && !openRegular(file)) {
        throw RecordingError{"can't read " + file.fileName() + ": " + file.errorString()};
    }
}

void HashCheck::advance(qint64 done, qint64 total)
{
    constexpr qint64 block = 1 << 20;
    if (wanted.isEmpty()) {
        return;
    }
    const qint64 end = done == total ? file.size() : file.size() / total * done;
    while (position < end) {
        const QByteArray bytes = file.read(std::min(block, end - position));
        if (bytes.isEmpty()) {
            throw RecordingError{"can't read " + file.fileName() + ": " + file.errorString()};
        }
        hash.addData(bytes);
        position += bytes.size();
    }
}

void HashCheck::requireMatch() const
{
    if (!wanted.isEmpty() && hash.result().toHex() != wanted) {
        throw RecordingError{name + ": its samples in " + file.fileName() +
                             " were changed after the metadata were written: the SHA-512 differs; "
                             "remove \"core:sha512\" to read them anyway"};
    }
}
