#include "fit/dialogs/load_trace_dialog.h"

#include "fit/dialogs/trace_job.h"
#include "look/house_style.h"
#include "setup/measurement_setup.h"
#include "ui_load_trace_dialog.h"

LoadTraceDialog::LoadTraceDialog(const QString& nameOfFile, MeasurementSetup* setupToCorrect,
                                 QWidget* parent)
    : QDialog(parent),
      ui(std::make_unique<Ui::LoadTraceDialog>()),
      setup(setupToCorrect),
      fileName(nameOfFile),
      job(std::make_shared<TraceJob>())
{
    ui->setupUi(this);
    setStyleSheet(houseStyleSheet());
    setWindowFlags(Qt::Dialog | Qt::WindowTitleHint | Qt::WindowCloseButtonHint);
    setAttribute(Qt::WA_DeleteOnClose);
    connect(job.get(), &TraceJob::directComputed, this, &LoadTraceDialog::storeDirect);
    connect(job.get(), &TraceJob::polynomialComputed, this, &LoadTraceDialog::storePoly);
    connect(this, &LoadTraceDialog::directLoaded, this, &LoadTraceDialog::newDirect);
    connect(this, &LoadTraceDialog::polyLoaded, this, &LoadTraceDialog::newPoly);
    load();
}

LoadTraceDialog::~LoadTraceDialog()
{
    job->abandon();
}

void LoadTraceDialog::load()
{
    // No correction is offered for a signal from files.
    if (setup->customSource == 0 && setup->signal.length > 0) {
        TraceJob::start(job,
                        {fileName, setup->signal.length, setup->sampleRate, setup->binWidth()});
    }
}

void LoadTraceDialog::storeDirect(const QVector<double>& frequencies,
                                  const QVector<double>& correction)
{
    traceFrequencies = frequencies;
    directTrace = correction;
    pointCount = static_cast<quint64>(frequencies.size());
    emit directLoaded();
}

void LoadTraceDialog::storePoly(const QVector<double>& lines, const QVector<double>& correction)
{
    lineFrequencies = lines;
    polyTrace = correction;
    emit polyLoaded();
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
