#include "cli/output_files.h"

#include "base/whole_file.h"
#include "cli/exit_status.h"

#include <QDir>
#include <QFileInfo>

#include <algorithm>

namespace {

// The same for all names of one file.
QString placeOf(const QString& path)
{
    const QFileInfo file(path);
    return file.exists() ? file.canonicalFilePath() : QDir::cleanPath(file.absoluteFilePath());
}

QStringList placesOf(const QStringList& paths)
{
    QStringList places;
    std::transform(paths.begin(), paths.end(), std::back_inserter(places), placeOf);
    return places;
}

} // namespace

void failWriting(const QString& files)
{
    failFile("can't write " + files + "; is there such a folder, and room on its disk?");
}

void requireOutputs(const Arguments& arguments, const QStringList& further)
{
    const QStringList read = placesOf(arguments.positional() + arguments.values("subtract"));
    QStringList written;
    QStringList names = further;
    for (const char* option : {"csv", "json", "plot"}) {
        names += arguments.values(option);
    }
    names.removeAll(QStringLiteral("-"));
    for (const QString& name : qAsConst(names)) {
        const QString place = placeOf(name);
        if (read.contains(place) || written.contains(place)) {
            failUsage(name +
                      (read.contains(place) ? " is read and would be written over"
                                            : " would be written twice") +
                      "; name another file");
        }
        if (!WholeFile::canStandAt(name)) {
            failWriting(name);
        }
        written << place;
    }
}
