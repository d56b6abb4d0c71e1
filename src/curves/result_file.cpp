#include "curves/result_file.h"

#include "base/regular_file.h"
#include "campaign/result_json.h"

#include <QFile>
#include <QFileInfo>

#include <algorithm>

ReadResult readResultFile(const QString& path)
{
    ReadResult read;
    QFile file(path);
    if (!openRegular(file)) {
        read.failure = !file.exists()              ? QStringLiteral("there is no such file")
                       : !QFileInfo(path).isFile() ? QStringLiteral("it is no file")
                                                   : file.errorString();
        return read;
    }
    try {
        read.result = resultFromJson(file.read(qint64{mostResultBytes} + 1));
        read.failure.clear();
    } catch (const ResultError& error) {
        read.failure = "it is no result of a measurement: " + error.text;
    }
    return read;
}

QVector<ReadResult> readResultFiles(const QStringList& paths)
{
    QVector<ReadResult> all;
    std::transform(paths.begin(), paths.end(), std::back_inserter(all), readResultFile);
    return all;
}
