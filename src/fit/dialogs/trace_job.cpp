#include "fit/dialogs/trace_job.h"

#include "fit/trace_correction.h"

#include <QMetaType>
#include <QtConcurrent>

#include <exception>

TraceJob::TraceJob()
{
    qRegisterMetaType<QVector<double>>("QVector<double>"); // travels in queued signals
}

void TraceJob::start(const std::shared_ptr<TraceJob>& link, const TraceRequest& request)
{
    QtConcurrent::run([link, request] {
        try {
            link->load(request);
        } catch (const std::exception&) {
            // A trace that can't be fitted, or is too long for the memory, ends the job quietly.
        }
    });
}

void TraceJob::load(const TraceRequest& request)
{
    const AnalyzerTrace trace = readAnalyzerTrace(request.fileName, request.lineCount, &abandoned);
    if (trace.pointCount() == 0 || abandoned) {
        return;
    }
    emit directComputed(trace.frequencies, directCorrection(trace, request.lineCount));
    const QVector<double> lines =
        lineFrequencies(request.lineCount, request.sampleRate, request.lineSpacing);
    emit polynomialComputed(lines, polynomialCorrection(trace, lines));
}
