// All bytes of a file, and a file of given bytes.
#pragma once

#include <QByteArray>
#include <QFile>
#include <QString>

// "no file", which none of the files that a test looks at holds, where there is none.
inline QByteArray contentOf(const QString& path)
{
    QFile file(path);
    return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray("no file");
}

// In place of what the file held. A test whose files can't be written ends at once.
inline void putContent(const QString& path, const QByteArray& bytes)
{
    QFile file(path);
    if (!file.open(QIODevice::WriteOnly) || file.write(bytes) != bytes.size() || !file.flush()) {
        qFatal("%s can't be written", qPrintable(path));
    }
}
