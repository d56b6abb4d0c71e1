// The bottom row: preset, choice of the notch, readings and their labels; and the windows of the
// instruments.
#include "app/failure_door.h"
#include "app/main_window.h"
#include "app/remote_failure_box.h"
#include "instruments/instrument_link.h"
#include "measurement/preset.h"
#include "remote/ko_remote_exception.h"
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
    connect(&devicesDialog, &DevicesDialog::instrumentsChanged, this,
            [this] { measurementThread.setAnalyzer(setup.analyzer); });
    connect(&devicesDialog, &DevicesDialog::generatorFrequencyChanged, this,
            [this] { notifyPropertyChanged(); });
}

// The record is about to be replaced. Deliberate: its connections are neither closed nor freed. The
// instruments keep their link until the program ends, as after any other change of settings.
void MainWindow::retireLinks()
{
    for (const std::shared_ptr<InstrumentLink>& link :
         {setup.generator.link(), setup.analyzer.link(), setup.microwave.link()}) {
        link->retire();
        if (link->isInUse()) {
            retiredLinks.append(link);
        }
    }
}

// The program ends: nobody waits for an instrument any more.
void MainWindow::breakOffLinks()
{
    retireLinks();
    for (const std::shared_ptr<InstrumentLink>& link : qAsConst(retiredLinks)) {
        link->breakOff();
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
    presetInBackground({setup.generator, setup.analyzer, setup.microwave},
                       [door = failureDoor](KORemoteException* failure) { door->tell(failure); });
}

void MainWindow::on_measure_notch_valueChanged(int value)
{
    setup.measureNotch = value;
    notifyPropertyChanged(ui->measure_notch);
    try {
        setup.tuneAnalyzerToNotch();
    } catch (KORemoteException* failure) {
        QMessageBox::critical(this, QStringLiteral("Remote Error"), takeMessage(failure),
                              QMessageBox::Ok);
        setup.measureNotch = 0;
        notifyPropertyChanged();
    }
}

void MainWindow::on_measure_mode_currentIndexChanged(int index)
{
    setup.measureMode = static_cast<MeasureMode>(index);
    notifyPropertyChanged(ui->measure_mode);
    if (setup.measureMode == MeasureMode::Single) {
        measurementThread.pause();
    } else {
        measurementThread.setAnalyzer(setup.analyzer);
        measurementThread.resume();
    }
}

void MainWindow::on_measure_button_clicked()
{
    if (setup.measureMode == MeasureMode::Single) {
        measurementThread.setAnalyzer(setup.analyzer);
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
