#include "signal/dialogs/crest_factor_dialog.h"

#include "look/house_style.h"
#include "setup/measurement_setup.h"
#include "signal/calculation.h"
#include "transform/statistics.h"
#include "ui_crest_factor_dialog.h"

#include <QCoreApplication>
#include <QDebug>
#include <QTimer>

#include <new>

namespace {

// The settled number of seeds calculated at a time, whatever the number of cores.
constexpr int workersAtATime = 3;

// How many threads are started before the window gets a turn to answer.
constexpr int startsATurn = 50;

QString shortNumber(double value)
{
    return QString::number(value, 'g', 6);
}

} // namespace

CrestFactorDialog::CrestFactorDialog(QWidget* parent)
    : QDialog(parent), ui(std::make_unique<Ui::CrestFactorDialog>())
{
    ui->setupUi(this);
    setStyleSheet(houseStyleSheet());
    setFixedSize(390, 250);
    setModal(true);
    setWindowFlags(Qt::Dialog | Qt::WindowTitleHint | Qt::WindowCloseButtonHint);
    connect(ui->ok_button, &QPushButton::clicked, this, &CrestFactorDialog::closeDialog);
}

CrestFactorDialog::~CrestFactorDialog()
{
    for (Calculation* worker : qAsConst(toStart)) {
        workers.removeOne(worker);
        delete worker;
    }
    for (Calculation* worker : qAsConst(workers)) {
        worker->cancel();
        worker->disconnect(this);
        worker->setParent(QCoreApplication::instance());
        connect(worker, &QThread::finished, worker, &QObject::deleteLater);
        if (worker->isFinished()) { // perhaps before there was this connection
            worker->deleteLater();
        }
    }
}

void CrestFactorDialog::on_start_button_clicked()
{
    ui->start_button->setEnabled(false);
    ui->stop_button->setEnabled(true);
    seedCount = static_cast<quint32>(ui->seed_count_input->value());
    ui->progressBar->setMaximum(static_cast<int>(seedCount));
    ui->progressBar->setValue(0);
    remaining = seedCount;
    startWorkers();
    prepareTable();
    results.resize(0);
    // Deliberate: the extremes themselves stay. The next result relies on the zero seeds alone to
    // know that it is the first, and until it comes the old numbers stand on display.
    seedMaxCf = 0;
    seedMinCf = 0;
}

void CrestFactorDialog::startWorkers()
{
    quint32 seed = 1;
    try {
        const auto semaphore = std::make_shared<QSemaphore>(workersAtATime);
        const auto copy = std::make_shared<const MeasurementSetup>(setup->forOtherThread());
        for (; seed <= seedCount; ++seed) {
            addWorker(new Calculation(seed, copy, semaphore));
        }
    } catch (const std::bad_alloc&) {
        for (; seed <= seedCount; ++seed) {
            countSeed();
        }
    }
    startNextWorkers();
}

void CrestFactorDialog::addWorker(Calculation* worker)
{
    workers.append(worker);
    connect(worker, &Calculation::calculated, this, &CrestFactorDialog::calcFinished);
    connect(worker, &Calculation::finished, this, &CrestFactorDialog::finished);
    toStart.enqueue(worker);
}

// Also those that were cancelled meanwhile: they end at once, like all others. A seed that the
// system refuses a thread stays without a result.
void CrestFactorDialog::startNextWorkers()
{
    for (int i = 0; i < startsATurn && !toStart.isEmpty(); ++i) {
        Calculation* worker = toStart.dequeue();
        if (!worker->begin()) {
            end(worker);
        }
    }
    if (!toStart.isEmpty()) {
        QTimer::singleShot(0, this, &CrestFactorDialog::startNextWorkers);
    }
}

// Results of the workers that run already wait in the event queue.
void CrestFactorDialog::prepareTable()
{
    ui->tableWidget->clear();
    ui->tableWidget->setRowCount(static_cast<int>(seedCount));
    ui->tableWidget->setColumnCount(1);
    ui->tableWidget->setHorizontalHeaderLabels({QStringLiteral("Crest Factor")});
}

void CrestFactorDialog::calcFinished(uint seed, double crestFactor)
{
    results.append(crestFactor);
    updateExtremes(seed, crestFactor);
    showStatistics(seed);
    showResult(seed, crestFactor);
    countSeed();
}

// One seed less to wait for, with or without its result.
void CrestFactorDialog::countSeed()
{
    // Deliberate: late results of a stopped sweep count too, and may take this below zero, where
    // it wraps.
    --remaining;
    ui->progressBar->setValue(static_cast<int>(seedCount - remaining));
    if (remaining == 0) {
        ui->start_button->setEnabled(true);
        ui->stop_button->setEnabled(false);
    }
}

void CrestFactorDialog::updateExtremes(uint seed, double crestFactor)
{
    if (seedMinCf == 0 && seedMaxCf == 0) {
        minCf = crestFactor;
        maxCf = crestFactor;
        seedMinCf = seed;
        seedMaxCf = seed;
    } else if (minCf > crestFactor) {
        minCf = crestFactor;
        seedMinCf = seed;
    } else if (crestFactor > maxCf) {
        maxCf = crestFactor;
        seedMaxCf = seed;
    }
}

void CrestFactorDialog::showStatistics(uint seed)
{
    double mean = 0.0;
    double stdDev = 0.0;
    meanAndStdDev(results, mean, stdDev);
    ui->mean_output->setText(shortNumber(mean));
    ui->stddev_output->setText(shortNumber(stdDev));
    ui->min_cf_output->setText(shortNumber(minCf));
    ui->seed_min_cf_output->setText(QString::number(seedMinCf));
    ui->max_cf_output->setText(shortNumber(maxCf));
    ui->seed_max_cf_output->setText(QString::number(seedMaxCf));
    ui->current_index_output->setText(QString::number(seed));
}

void CrestFactorDialog::showResult(uint seed, double crestFactor)
{
    const int row = static_cast<int>(seed) - 1;
    if (row < ui->tableWidget->rowCount()) { // a late one may belong to a longer sweep
        ui->tableWidget->setItem(row, 0, new QTableWidgetItem(shortNumber(crestFactor)));
    }
}

void CrestFactorDialog::finished()
{
    end(qobject_cast<Calculation*>(sender()));
}

void CrestFactorDialog::end(Calculation* worker)
{
    workers.removeOne(worker);
    worker->wait();
    if (worker->hasFailed()) {
        countSeed();
    }
    worker->deleteLater();
}

void CrestFactorDialog::cancelWorkers()
{
    for (Calculation* worker : qAsConst(workers)) {
        worker->cancel();
    }
}

void CrestFactorDialog::on_stop_button_clicked()
{
    cancelWorkers();
    ui->start_button->setEnabled(true);
    ui->stop_button->setEnabled(false);
}

// Deliberate: only OK comes here. The close button of the frame leaves the sweep running, and who
// reopens the dialog finds its numbers complete. Deliberate too: the buttons stay as they are, so a
// sweep that OK has ended is left by "Stop".
void CrestFactorDialog::closeDialog()
{
    qDebug() << "close CrestFactorDialog";
    cancelWorkers();
    close();
}
