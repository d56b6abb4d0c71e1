#include "fit/dialogs/load_trace_dialog.h"

#include "base/background.h"
#include "fit/trace_correction.h"
#include "look/house_style.h"
#include "setup/measurement_setup.h"
#include "ui_load_trace_dialog.h"

// What the jobs need of the record, taken when they start.
struct TraceRequest
{
    QString fileName;
    int lineCount; // length of the signal, at least 1
    double sampleRate;
    double lineSpacing; // both in Hz
};

namespace {

// Frequencies in Hz from the centre, corrections in dB with one value a line.
struct DirectTrace
{
    AnalyzerTrace trace;
    QVector<double> correction;
};

struct FittedTrace
{
    QVector<double> lines;
    QVector<double> correction;
};

DirectTrace directlyFrom(const TraceRequest& request, const std::atomic<bool>* abandoned)
{
    const AnalyzerTrace trace = readAnalyzerTrace(request.fileName, request.lineCount, abandoned);
    if (trace.pointCount() == 0 || *abandoned) {
        return {};
    }
    return {trace, directCorrection(trace, request.lineCount)};
}

FittedTrace fittedTo(const TraceRequest& request, const AnalyzerTrace& trace,
                     const std::atomic<bool>* abandoned)
{
    const QVector<double> lines =
        lineFrequencies(request.lineCount, request.sampleRate, request.lineSpacing);
    return {lines, polynomialCorrection(trace, lines, abandoned)};
}

} // namespace

LoadTraceDialog::LoadTraceDialog(const QString& nameOfFile, MeasurementSetup* setupToCorrect,
                                 QWidget* parent)
    : QDialog(parent),
      ui(std::make_unique<Ui::LoadTraceDialog>()),
      setup(setupToCorrect),
      fileName(nameOfFile)
{
    ui->setupUi(this);
    setStyleSheet(houseStyleSheet());
    setWindowFlags(Qt::Dialog | Qt::WindowTitleHint | Qt::WindowCloseButtonHint);
    setAttribute(Qt::WA_DeleteOnClose);
    connect(this, &LoadTraceDialog::directLoaded, this, &LoadTraceDialog::newDirect);
    connect(this, &LoadTraceDialog::polyLoaded, this, &LoadTraceDialog::newPoly);
    load();
}

LoadTraceDialog::~LoadTraceDialog()
{
    *abandoned = true;
}

void LoadTraceDialog::load()
{
    // No correction is offered for a signal from files.
    if (setup->customSource == SignalSource::Internal && setup->signal.length > 0) {
        readTrace({fileName, setup->signal.length, setup->sampleRate, setup->binWidth()});
    }
}

// A file without points, or one that is too long for the memory, brings nothing.
void LoadTraceDialog::readTrace(const TraceRequest& request)
{
    inBackground(
        this, [request, given = abandoned] { return directlyFrom(request, given.get()); },
        [this, request](const DirectTrace& result) {
            if (result.trace.pointCount() == 0) {
                return;
            }
            traceFrequencies = result.trace.frequencies;
            directTrace = result.correction;
            pointCount = static_cast<quint64>(result.trace.pointCount());
            emit directLoaded();
            fitTrace(request, result.trace);
        });
}

// A trace that can't be fitted brings nothing.
void LoadTraceDialog::fitTrace(const TraceRequest& request, const AnalyzerTrace& trace)
{
    inBackground(
        this, [request, trace, given = abandoned] { return fittedTo(request, trace, given.get()); },
        [this](const FittedTrace& result) {
            if (!result.lines.isEmpty()) {
                lineFrequencies = result.lines;
                polyTrace = result.correction;
                emit polyLoaded();
            }
        });
}

void LoadTraceDialog::newDirect()
{
    ui->length->setText(QString::number(pointCount));
    // Deliberate: under "Sample Rate:" operators read the span of the trace.
    const double span = traceFrequencies.last() - traceFrequencies.first();
    ui->sample_rate->setText(QString::number(span, 'g', 6) + QLatin1String(" Hz"));
    ui->trace->addTrace(traceFrequencies, directTrace, QStringLiteral("Direct"));
    ui->load_direct_button->setEnabled(true);
}

void LoadTraceDialog::newPoly()
{
    ui->trace->addTrace(lineFrequencies, polyTrace, QStringLiteral("Polynomial"));
    ui->load_poly_button->setEnabled(true);
}

void LoadTraceDialog::take(QVector<double>& correction)
{
    setup->compensationTrace = std::move(correction);
    setup->traceLoaded = true;
    setup->compensate = true;
    setup->setDataState(DataState::Invalid); // the signal was made without this correction
    close();
}

void LoadTraceDialog::on_load_direct_button_clicked()
{
    take(directTrace);
}

void LoadTraceDialog::on_load_poly_button_clicked()
{
    take(polyTrace);
}

void LoadTraceDialog::on_cancel_button_clicked()
{
    close();
}
