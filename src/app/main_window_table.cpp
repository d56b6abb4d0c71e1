// The notch table: its binding to the model, "Auto-Calculate" and typed cells. Rebuilding the
// model would call the cell slot for its own writes, so both edits disconnect it meanwhile.
#include "app/main_window.h"
#include "setup/notch_editing.h"
#include "ui_main_window.h"

#include <QDebug>
#include <QStandardItemModel>

void MainWindow::bindTable()
{
    ui->main_table->setModel(setup.notches->model());
    connectTable();
}

void MainWindow::connectTable()
{
    connect(setup.notches->model(), &QStandardItemModel::itemChanged, this,
            &MainWindow::table_cell_changed);
}

void MainWindow::disconnectTable()
{
    disconnect(setup.notches->model(), &QStandardItemModel::itemChanged, this,
               &MainWindow::table_cell_changed);
}

void MainWindow::on_autocalc_notches_button_clicked()
{
    disconnectTable();
    qDebug() << "AutoCalc Notches Clicked";
    if (!autoCalculateNotches(setup)) {
        // Deliberate: a notch without room ends everything at once. The table keeps what it
        // showed, the signal its state, and typed cells have no effect until the next
        // "Auto-Calculate" or "Load Cfg File".
        return;
    }
    setup.notches->fillTable(setup.effectiveFrequency());
    invalidate();
    connectTable();
}

// A cell that is rejected invalidates the signal all the same.
void MainWindow::table_cell_changed(QStandardItem* item)
{
    disconnectTable();
    qDebug() << "Cell Changed" << item->column() << item->row();
    if (editNotchCell(setup, item->row(), item->column(), item->text())) {
        qDebug() << setup.effectiveFrequency();
    }
    setup.notches->fillTable(setup.effectiveFrequency());
    invalidate();
    connectTable();
}
