// The program's own files and pages, for tests that read them.
#pragma once

#include <QDir>
#include <QDirIterator>
#include <QFile>
#include <QRegularExpression>
#include <QString>
#include <QStringList>
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

// What the first group of a pattern takes, for each place where it fits. "^" and "$" are the ends
// of lines, and "." takes those too.
inline QStringList allMatches(const QString& text, const char* pattern)
{
    QStringList found;
    const QRegularExpression expression(QString::fromLatin1(pattern),
                                        QRegularExpression::MultilineOption |
                                            QRegularExpression::DotMatchesEverythingOption);
    for (auto match = expression.globalMatch(text); match.hasNext();) {
        found.append(match.next().captured(1));
    }
    return found;
}
