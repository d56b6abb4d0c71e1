// All bytes of a file, or "no file", which none of the files that a test looks at holds.
#pragma once

#include <QByteArray>
#include <QFile>
#include <QString>

inline QByteArray contentOf(const QString& path)
{
    QFile file(path);
    return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray("no file");
}
