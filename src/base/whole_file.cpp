#include "base/whole_file.h"

#include <QFileInfo>
#include <QRandomGenerator>

#include <cstdio>

#ifdef Q_OS_UNIX
#include <unistd.h>
#endif

namespace {

// The end of a chain of links, where there may be no file yet. A ring of links ends in a link.
QString behindLinks(const QString& path)
{
    constexpr int mostLinks = 40; // that a system follows
    QFileInfo info(path);
    for (int links = 0; info.isSymLink() && links < mostLinks; ++links) {
        info.setFile(info.exists() ? info.canonicalFilePath() : info.symLinkTarget());
    }
    return info.filePath();
}

QString shortNameBeside(const QString& path)
{
    const QString folder = QFileInfo(path).path();
    const quint32 number = QRandomGenerator::global()->generate();
    return folder + QStringLiteral("/.%1").arg(number, 7, 36, QLatin1Char('0'));
}

bool replace(const QString& former, const QString& by)
{
#ifdef Q_OS_WIN // where no file takes the place of another in one step
    QFile::remove(former);
    return QFile::rename(by, former);
#else
    return std::rename(QFile::encodeName(by).constData(), QFile::encodeName(former).constData()) ==
           0;
#endif
}

} // namespace

WholeFile::WholeFile(const QString& path) : QFile(path), target(behindLinks(path)) {}

WholeFile::~WholeFile()
{
    if (isBeside) {
        close(); // what the disk doesn't take any more would keep remove() from removing
        remove();
    }
}

bool WholeFile::open(OpenMode mode)
{
    const QFileInfo former(target);
    if (former.isSymLink() || (former.exists() && !canStandAt(target))) {
        return false;
    }
    if (openBeside(mode)) {
        if (former.exists()) {
            setPermissions(former.permissions());
        }
        return true;
    }
    setFileName(target);
    return former.exists() && QFile::open(mode | Truncate);
}

bool WholeFile::canStandAt(const QString& path)
{
    const QFileInfo former(behindLinks(path));
    const QFileInfo folder(former.path());
    return former.exists() ? former.isFile() && former.isWritable()
                           : !former.isSymLink() && !former.fileName().isEmpty() &&
                                 folder.isDir() && folder.isWritable();
}

bool WholeFile::openBeside(OpenMode mode)
{
    constexpr int tries = 10; // names that somebody else has taken
    for (int i = 0; i < tries && !isBeside; ++i) {
        setFileName(shortNameBeside(target));
        isBeside = QFile::open(mode | NewOnly);
        if (!isBeside && !exists()) {
            return false;
        }
    }
    return isBeside;
}

bool WholeFile::isWhole()
{
    const bool flushed = flush();
    return flushed && allTaken;
}

bool WholeFile::isOnDisk()
{
    const bool whole = isWhole();
#ifdef Q_OS_UNIX
    return whole && fsync(handle()) == 0;
#else
    return whole;
#endif
}

bool WholeFile::putInPlace()
{
    const bool isComplete = isOnDisk();
    close();
    return isComplete && takePlace();
}

bool WholeFile::takePlace()
{
    isBeside = isBeside && !replace(target, fileName()); // or else it was written in place
    return !isBeside;
}

bool writeWholeFile(const QString& path, const QByteArray& bytes)
{
    WholeFile file(path);
    if (!file.open(QIODevice::WriteOnly)) {
        return false;
    }
    file.write(bytes);
    return file.putInPlace();
}

bool putBothInPlace(WholeFile& one, WholeFile& other)
{
    const bool areComplete = one.isOnDisk() && other.isOnDisk();
    one.close();
    other.close();
    return areComplete && one.takePlace() && other.takePlace();
}

// A disk that fills up takes a part of a write, which alone the base class does not call a failure.
qint64 WholeFile::writeData(const char* data, qint64 size)
{
    const qint64 taken = QFile::writeData(data, size);
    allTaken = allTaken && taken == size;
    return taken;
}
