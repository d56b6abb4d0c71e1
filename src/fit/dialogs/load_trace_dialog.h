// "Load SAN Mag": shows a stored analyzer trace and the polynomial fitted to it, and offers both
// as the correction of the magnitude. Reading and fitting run in the background; the curves and
// their buttons come when they are ready. A file that offers nothing leaves "---" and "Cancel".
//
// Deletes itself when it closes, whether a job still runs or not. Main thread only.
#pragma once

#include <QDialog>
#include <QVector>

#include <atomic>
#include <memory>

struct AnalyzerTrace;
struct MeasurementSetup;
struct TraceRequest;

namespace Ui {
class LoadTraceDialog;
}

class LoadTraceDialog : public QDialog
{
    Q_OBJECT

public:
    // Starts reading at once and doesn't wait. setup outlives the dialog.
    LoadTraceDialog(const QString& fileName, MeasurementSetup* setup, QWidget* parent = nullptr);
    ~LoadTraceDialog() override;

signals:
    // The correction stands in the dialog.
    void directLoaded();
    void polyLoaded();

public slots:
    void newDirect();
    void newPoly();
    // Put the correction into the record, switch it on and close.
    void on_load_poly_button_clicked();
    void on_load_direct_button_clicked();
    void on_cancel_button_clicked();

private:
    void load();
    void readTrace(const TraceRequest& request);
    void fitTrace(const TraceRequest& request, const AnalyzerTrace& trace);
    void take(QVector<double>& correction);

    std::unique_ptr<Ui::LoadTraceDialog> ui;
    MeasurementSetup* setup;
    QVector<double> directTrace;      // dB, one value a line
    QVector<double> polyTrace;        // dB, one value a line
    QVector<double> lineFrequencies;  // Hz from the centre
    QVector<double> traceFrequencies; // Hz from the trace's centre
    quint64 pointCount = 0;
    QString fileName;
    // The dialog has gone and nobody waits for its jobs any more.
    std::shared_ptr<std::atomic<bool>> abandoned = std::make_shared<std::atomic<bool>>(false);
};
