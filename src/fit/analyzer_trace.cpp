#include "fit/analyzer_trace.h"

#include "base/line_fields.h"
#include "base/regular_file.h"

#include <algorithm>

namespace {

// What is kept of a line at a time, so that a file without an end of line can't fill the memory.
constexpr int longestPiece = 65536;

void readPoint(const QString& line, AnalyzerTrace& trace)
{
    const QVector<QStringRef> fields = fieldsOf(line, ';');
    if (fields.size() >= 2) {
        trace.frequencies.append(fields.at(0).toDouble());
        trace.levels.append(fields.at(1).toDouble());
    }
}

// The next line, or that much of it; false at the end of the file.
bool readPiece(QFile& file, QByteArray& piece)
{
    piece.resize(longestPiece);
    const qint64 length = file.readLine(piece.data(), longestPiece);
    piece.truncate(static_cast<int>(std::max<qint64>(length, 0)));
    return length > 0;
}

void centre(QVector<double>& frequencies)
{
    const double middle = (frequencies.first() + frequencies.last()) * 0.5;
    for (double& frequency : frequencies) {
        frequency -= middle;
    }
}

} // namespace

AnalyzerTrace readAnalyzerTrace(const QString& fileName, int mostPoints,
                                const std::atomic<bool>* abandoned)
{
    AnalyzerTrace trace;
    QFile file(fileName);
    if (!openRegular(file, QIODevice::ReadOnly | QIODevice::Text)) {
        return trace;
    }
    QByteArray piece;
    bool lineBegins = true;
    while (trace.pointCount() < mostPoints && readPiece(file, piece)) {
        if (abandoned != nullptr && *abandoned) {
            return {};
        }
        if (lineBegins) {
            readPoint(QString::fromUtf8(piece), trace);
        }
        lineBegins = piece.endsWith('\n');
    }
    if (trace.pointCount() > 0) {
        centre(trace.frequencies);
    }
    return trace;
}
