// "Optimize Crest Factor": tries the seeds 1 to a chosen count with the present settings, each on
// a thread of its own, three at a time, and shows their crest factors, the extremes, the mean and
// the deviation. It changes nothing in the record: the operator reads the best seed and enters it.
//
// The dialog may be closed, reopened, stopped, started anew and destroyed at any moment of a sweep.
// Results of a stopped sweep that are still on their way count in the next one. Main thread only.
#pragma once

#include <QDialog>
#include <QList>
#include <QQueue>
#include <QVector>

#include <memory>

class Calculation;
struct MeasurementSetup;

namespace Ui {
class CrestFactorDialog;
}

class CrestFactorDialog : public QDialog
{
    Q_OBJECT

public:
    explicit CrestFactorDialog(QWidget* parent = nullptr);
    // Doesn't wait for workers: the application takes them over and waits for them at its end.
    ~CrestFactorDialog() override;

    // The record that a sweep starts from. It outlives the dialog's use.
    void setSetup(const MeasurementSetup* newSetup) { setup = newSetup; }

public slots:
    void on_start_button_clicked();
    // Doesn't wait: the up to three seeds that are being calculated still report.
    void on_stop_button_clicked();
    void calcFinished(uint seed, double crestFactor);
    // The sender, a worker, has ended.
    void finished();
    // Ends the sweep, which the close button of the window's frame doesn't.
    void closeDialog();

private:
    void startWorkers();
    void startNextWorkers();
    void addWorker(Calculation* worker);
    void end(Calculation* worker);
    void countSeed();
    void prepareTable();
    void cancelWorkers();
    void updateExtremes(uint seed, double crestFactor);
    void showStatistics(uint seed);
    void showResult(uint seed, double crestFactor);

    std::unique_ptr<Ui::CrestFactorDialog> ui;
    const MeasurementSetup* setup = nullptr;
    QVector<double> results; // dB, of this sweep, in order of arrival
    QList<Calculation*> workers;
    QQueue<Calculation*> toStart; // those of the workers whose threads are yet to be started
    quint32 remaining = 0;        // results still awaited
    quint32 seedCount = 1;
    quint32 seedMaxCf = 0; // 0 for none yet
    quint32 seedMinCf = 0;
    double maxCf = -1.0; // dB
    double minCf = -1.0;
};
