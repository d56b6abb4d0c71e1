// The program's own files, for tests that read them.
#pragma once

#include <QDir>
#include <QDirIterator>
#include <QFile>
#include <QString>
#include <QVector>

struct SourceFile
{
    QString path; // below the folder that was asked for
    QString text;

    QString folder() const { return path.left(path.lastIndexOf('/')); }
    bool isHeader() const { return path.endsWith(".h"); }
};

inline QString textOfFile(const QString& path)
{
    QFile file(path);
    return file.open(QIODevice::ReadOnly) ? QString::fromUtf8(file.readAll()) : QString();
}

// All files of a folder and those below it whose names fit, as in "*.cpp".
inline QVector<SourceFile> sourceFiles(const QString& folder, const QStringList& names)
{
    QVector<SourceFile> found;
    QDirIterator files(folder, names, QDir::Files, QDirIterator::Subdirectories);
    while (files.hasNext()) {
        const QString path = files.next();
        found.append({QDir(folder).relativeFilePath(path), textOfFile(path)});
    }
    return found;
}
