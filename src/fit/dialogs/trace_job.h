// The work behind the trace dialog: one stored trace read and both corrections computed on the
// thread pool, and the way the results come back.
//
// A job shares the ownership of this link, so a job that ends after its dialog has been closed
// meets no destroyed object: its signals then have no receiver.
#pragma once

#include <QObject>
#include <QVector>

#include <atomic>
#include <memory>

// What a job needs of the record, taken when it starts.
struct TraceRequest
{
    QString fileName;
    int lineCount; // length of the signal, at least 1
    double sampleRate;
    double lineSpacing; // both in Hz
};

class TraceJob : public QObject
{
    Q_OBJECT

public:
    TraceJob();

    // Starts a job on the global pool; main thread.
    static void start(const std::shared_ptr<TraceJob>& link, const TraceRequest& request);

    // Nobody waits for the results any more: reading ends soon, and no fit begins.
    void abandon() { abandoned = true; }

signals:
    // Emitted on the pool thread; a receiver on the main thread gets them queued. Frequencies in
    // Hz from the centre, corrections in dB with one value a line. Neither comes for a file
    // without points, and the second not for a trace without a fit.
    void directComputed(const QVector<double>& traceFrequencies, const QVector<double>& correction);
    void polynomialComputed(const QVector<double>& lines, const QVector<double>& correction);

private:
    void load(const TraceRequest& request);

    std::atomic<bool> abandoned{false};
};
