#include "base/whole_file.h"

#include <QFileInfo>

WholeFile::WholeFile(const QString& path) : QSaveFile(path)
{
    setDirectWriteFallback(true);
}

bool WholeFile::open(OpenMode mode)
{
    const QFileInfo former(fileName());
    return (former.isFile() || !former.exists()) && QSaveFile::open(mode);
}

bool WholeFile::isWhole()
{
    const bool flushed = flush();
    return flushed && allTaken;
}

void WholeFile::putInPlace()
{
    if (!isWhole()) {
        cancelWriting();
    }
    commit();
}

void putBothInPlace(WholeFile& one, WholeFile& other)
{
    if (one.isWhole() && other.isWhole()) {
        one.putInPlace();
        other.putInPlace();
    }
}

// A disk that fills up takes a part of a write, which alone the base class does not call a failure.
qint64 WholeFile::writeData(const char* data, qint64 size)
{
    const qint64 taken = QSaveFile::writeData(data, size);
    allTaken = allTaken && taken == size;
    return taken;
}
