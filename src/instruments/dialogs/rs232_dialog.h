// The serial settings of one instrument. Every change is stored at once; it reaches the line
// with the next "Init". Main thread.
#pragma once

#include <QDialog>

#include <memory>

class Instrument;

namespace Ui {
class RS232Dialog;
}

class RS232Dialog : public QDialog
{
    Q_OBJECT

public:
    explicit RS232Dialog(QWidget* parent = nullptr);
    ~RS232Dialog() override;

    void setInstrument(Instrument* newInstrument); // not owned; outlives the dialog

public slots:
    // Reads the instrument back into the form, which may rewrite values that no row stands for.
    void showEvent(QShowEvent* event) override;

    void on_baud_currentIndexChanged(const QString& arg1);
    void on_data_currentIndexChanged(int index);
    void on_parity_currentIndexChanged(int index);
    void on_stop_currentIndexChanged(int index);
    void on_flowcontrol_currentIndexChanged(int index);

private:
    std::unique_ptr<Ui::RS232Dialog> ui;
    Instrument* instrument = nullptr;
};
