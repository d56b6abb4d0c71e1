// The bottom row: preset, choice of the notch, readings and their labels; and the windows of the
// instruments.
#include "app/main_window.h"
#include "app/preset_job.h"
#include "app/remote_failure_box.h"
#include "instruments/connect_device.h"
#include "ui_main_window.h"

#include <QDebug>
#include <QMessageBox>

void MainWindow::connectMeasurement()
{
    measurementThread.setAnalyzer(setup.analyzer);
    measurementThread.pause();
    measurementThread.start(QThread::InheritPriority);
    connect(&measurementThread, &NPRMeasurementThread::measurementFinished, this,
            &MainWindow::newNPR);
    connectRemoteFailure(&measurementThread, &NPRMeasurementThread::measurementError, this);
    connectRemoteFailure(this, &MainWindow::remoteError, this);
    connectRemoteFailure(presetJob.get(), &PresetJob::failed, this);
    connect(&measurementThread, &NPRMeasurementThread::analyzerConnected, this,
            [this](const Analyzer& connected) {
                adoptConnection(setup.analyzer, connected);
                offerAnalyzer();
            });
    connect(presetJob.get(), &PresetJob::finished, this, [this](const InstrumentChain& chain) {
        adoptConnection(setup.generator, chain.generator);
        adoptConnection(setup.analyzer, chain.analyzer);
        adoptConnection(setup.microwave, chain.microwave);
        offerAnalyzer();
    });
    connect(&devicesDialog, &DevicesDialog::instrumentsChanged, this, &MainWindow::offerAnalyzer);
    connect(&devicesDialog, &DevicesDialog::generatorFrequencyChanged, this,
            [this] { notifyPropertyChanged(); });
}

void MainWindow::offerAnalyzer()
{
    measurementThread.offerAnalyzer(setup.analyzer);
}

// The connections of a record that is replaced are deliberately neither closed nor freed: the
// instruments keep their link until the program ends, as after any other change of settings.
void MainWindow::setAsideConnections()
{
    for (const Instrument* each :
         {static_cast<Instrument*>(&setup.generator), static_cast<Instrument*>(&setup.analyzer),
          static_cast<Instrument*>(&setup.microwave)}) {
        if (each->remote) {
            formerConnections.append(each->remote);
        }
    }
}

void MainWindow::devices_clicked()
{
    qDebug() << "Device Window Opened";
    devicesDialog.show();
    devicesDialog.raise();
    devicesDialog.activateWindow();
}

void MainWindow::on_preset_button_clicked()
{
    PresetJob::start(presetJob, setup);
}

void MainWindow::on_measure_notch_valueChanged(int value)
{
    setup.measureNotch = value;
    notifyPropertyChanged(ui->measure_notch);
    try {
        setup.tuneAnalyzerToNotch();
    } catch (KORemoteException* failure) {
        QMessageBox::critical(this, QStringLiteral("Remote Error"), failure->message(),
                              QMessageBox::Ok);
        setup.measureNotch = 0;
        notifyPropertyChanged();
    }
}

void MainWindow::on_measure_mode_currentIndexChanged(int index)
{
    setup.measureMode = index;
    notifyPropertyChanged(ui->measure_mode);
    if (index == 1) {
        measurementThread.pause();
    } else {
        offerAnalyzer();
        measurementThread.resume();
    }
}

void MainWindow::on_measure_button_clicked()
{
    if (setup.measureMode == 1) {
        offerAnalyzer();
        measurementThread.requestSingleMeasurement();
    }
}

void MainWindow::newNPR()
{
    const NPRMeasurementThread::Result result = measurementThread.results();
    ui->signal_power->setText(QString::number(result[0], 'f', 2));
    ui->npr_lower->setText(QString::number(result[1], 'f', 2));
    ui->npr_upper->setText(QString::number(result[2], 'f', 2));
}

void MainWindow::remoteErrorCalled(KORemoteException* e)
{
    QMessageBox::critical(this, QStringLiteral("Error"), e->message(), QMessageBox::Ok);
    // Deliberate: an empty box flashes up and goes at once, as operators know it.
    QMessageBox empty;
    empty.show();
}
