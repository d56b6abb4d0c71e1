#include "curves/result_file.h"

#include "campaign/result_json.h"

#include <algorithm>

ReadResult readResultFile(const QString& path)
{
    ReadResult read;
    try {
        read.result = resultFromFile(path);
        read.failure.clear();
    } catch (const ResultError& error) {
        read.failure = error.text;
    }
    return read;
}

QVector<ReadResult> readResultFiles(const QStringList& paths)
{
    QVector<ReadResult> all;
    std::transform(paths.begin(), paths.end(), std::back_inserter(all), readResultFile);
    return all;
}
