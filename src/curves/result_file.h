// A result in a file. Any thread.
#pragma once

#include "campaign/npr_result.h"

struct ReadResult
{
    NprResult result;
    QString failure = QStringLiteral("not enough memory or no thread"); // empty when it was read
};

ReadResult readResultFile(const QString& path);

// As many as paths, in their order.
QVector<ReadResult> readResultFiles(const QStringList& paths);
