// The menu entries. Nothing here reports a failure: a file that can't be read or written leaves
// everything as it was.
#include "app/main_window.h"
#include "files/waveform_output.h"
#include "fit/dialogs/load_trace_dialog.h"
#include "setup/config_file.h"
#include "signal/dialogs/crest_factor_dialog.h"
#include "support/dialogs/about_window.h"
#include "ui_main_window.h"

#include <QCoreApplication>
#include <QDebug>
#include <QDir>
#include <QFile>
#include <QFileDialog>
#include <QProcess>

namespace {

const char configFilter[] = "Config File (*.cfg)";

// The folder of the manual; empty, which means the present one, where it isn't installed.
QString installedManual()
{
    const QDir folder(QCoreApplication::applicationDirPath() +
                      QStringLiteral("/../share/notchbench/manual"));
    return folder.exists() ? folder.path() : QString();
}

} // namespace

void MainWindow::on_actionLoad_Cfg_File_triggered()
{
    const QString name = QFileDialog::getOpenFileName(
        this, QStringLiteral("Load Cfg File"), QDir::currentPath(), QLatin1String(configFilter));
    if (name.isEmpty()) {
        return;
    }
    // The table connection belongs to the old model, which may live on in a copy.
    disconnectTable();
    retireLinks();
    if (setup.measureMode != MeasureMode::Single) { // where it sleeps already
        measurementThread.pause();                  // the loaded record is in "Single"
    }
    setup = loadConfig(name);
    measurementThread.setAnalyzer(setup.analyzer);
    bindTable(); // first: another generator in the dialog refreshes this window
    devicesDialog.setSetup(&setup);
    invalidate();
}

void MainWindow::on_actionSave_Cfg_File_triggered()
{
    const QString name = QFileDialog::getSaveFileName(
        this, QStringLiteral("Save Cfg File"), QDir::currentPath(), QLatin1String(configFilter));
    if (!name.isEmpty()) {
        saveConfig(setup, name);
    }
}

void MainWindow::on_actionLoad_SAN_Mag_triggered()
{
    const QString name =
        QFileDialog::getOpenFileName(this, QStringLiteral("Load SAN Mag"), QDir::currentPath(),
                                     QStringLiteral("Text File(*.txt)"));
    if (name.isEmpty()) {
        return;
    }
    auto* dialog = new LoadTraceDialog(name, &setup, this); // deletes itself when it closes
    connect(dialog, &QObject::destroyed, this, [this] { notifyPropertyChanged(); });
    dialog->show();
}

void MainWindow::on_actionSave_Waveform_triggered()
{
    QString selectedFilter = QStringLiteral("Kelmar WV File (*.wv)");
    const QString name = QFileDialog::getSaveFileName(
        this, QStringLiteral("Save Waveform"), QDir::currentPath(),
        QStringLiteral("I/Q Files (*.i;*.q);;Wave Files (*.i.wav;*.q.wav);;Kelmar WV File (*.wv)"),
        &selectedFilter);
    saveWaveform(name, setup.signal, setup.sampleRate);
}

void MainWindow::crest_factor_clicked()
{
    qDebug() << "Crest Fector Window Opened"; // Deliberate: spelled as logs have it
    crestFactorDialog->show();
}

void MainWindow::on_actionQuit_triggered()
{
    close();
}

// Deliberate: the process is never freed, so the viewer outlives the window, and a missing
// viewer gives no message. A collection in the home folder, where the program works, goes before
// the installed one.
void MainWindow::on_actionHelp_triggered()
{
    const QString collection = QStringLiteral("collection.qhc");
    auto* viewer = new QProcess;
    if (!QFile::exists(collection)) {
        viewer->setWorkingDirectory(installedManual());
    }
    viewer->start(QStringLiteral("assistant"), {QStringLiteral("-collectionFile"), collection},
                  QIODevice::ReadWrite);
    viewer->waitForStarted(10000);
}

// The window stands by itself: it is not kept here, and goes when it is closed.
void MainWindow::on_actionAbout_triggered()
{
    auto* about =
        new AboutWindow(QStringLiteral("Notchbench"),
                        QStringLiteral("Noise Power Ratio Signal Generation and Measurement"),
                        QStringLiteral("5.0.3.1"), QStringLiteral("2018"), QStringLiteral("7QX58"));
    about->setAttribute(Qt::WA_DeleteOnClose);
    about->show();
}
