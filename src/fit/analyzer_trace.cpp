#include "fit/analyzer_trace.h"

#include "setup/regular_file.h"

namespace {

void readPoint(const QString& line, AnalyzerTrace& trace)
{
    const QVector<QStringRef> fields = line.splitRef(QLatin1Char(';'));
    if (fields.size() >= 2) {
        trace.frequencies.append(fields.at(0).trimmed().toDouble());
        trace.levels.append(fields.at(1).trimmed().toDouble());
    }
}

void centre(QVector<double>& frequencies)
{
    const double middle = (frequencies.first() + frequencies.last()) * 0.5;
    for (double& frequency : frequencies) {
        frequency -= middle;
    }
}

} // namespace

AnalyzerTrace readAnalyzerTrace(const QString& fileName, int mostPoints)
{
    AnalyzerTrace trace;
    QFile file(fileName);
    if (!openRegular(file, QIODevice::ReadOnly | QIODevice::Text)) {
        return trace;
    }
    while (!file.atEnd() && trace.pointCount() < mostPoints) {
        readPoint(QString::fromUtf8(file.readLine()), trace);
    }
    if (trace.pointCount() > 0) {
        centre(trace.frequencies);
    }
    return trace;
}
