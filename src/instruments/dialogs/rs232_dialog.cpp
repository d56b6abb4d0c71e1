#include "instruments/dialogs/rs232_dialog.h"

#include "instruments/instrument.h"
#include "look/house_style.h"
#include "ui_rs232_dialog.h"

RS232Dialog::RS232Dialog(QWidget* parent)
    : QDialog(parent, Qt::WindowTitleHint | Qt::WindowCloseButtonHint),
      ui(std::make_unique<Ui::RS232Dialog>())
{
    ui->setupUi(this);
    setStyleSheet(houseStyleSheet());
    ensurePolished();
    setFixedSize(sizeHint());
    connect(ui->ok_button, &QPushButton::clicked, this, &QDialog::close);
}

RS232Dialog::~RS232Dialog() = default;

void RS232Dialog::setInstrument(Instrument* newInstrument)
{
    instrument = newInstrument;
}

void RS232Dialog::showEvent(QShowEvent* event)
{
    QDialog::showEvent(event);
    if (instrument == nullptr) {
        return;
    }
    ui->baud->setCurrentText(QString::number(instrument->rs232BaudRate));
    ui->data->setCurrentIndex(instrument->rs232DataBits - 5);
    ui->parity->setCurrentIndex(instrument->rs232Parity == 0 ? 0 : instrument->rs232Parity - 1);
    ui->stop->setCurrentIndex(instrument->rs232StopBits == 3 ? 1 : instrument->rs232StopBits - 1);
    ui->flowcontrol->setCurrentIndex(instrument->rs232FlowControl);
}

// A row below 0 stands for a stored value that has no row; the value stays.

void RS232Dialog::on_baud_currentIndexChanged(const QString& arg1)
{
    if (instrument != nullptr && !arg1.isEmpty()) {
        instrument->rs232BaudRate = arg1.toUInt();
    }
}

void RS232Dialog::on_data_currentIndexChanged(int index)
{
    if (instrument != nullptr && index >= 0) {
        instrument->rs232DataBits = index + 5;
    }
}

// Deliberate: "Odd" stores even parity, "Even" odd, "Mark" space and "Space" mark. Saved
// configurations, and the cables made for them, rely on these numbers.
void RS232Dialog::on_parity_currentIndexChanged(int index)
{
    if (instrument != nullptr && index >= 0) {
        instrument->rs232Parity = index == 0 ? 0 : index + 1;
    }
}

// Deliberate: "2" stores one and a half stop bits, as "1.5" does. Saved configurations rely on it.
void RS232Dialog::on_stop_currentIndexChanged(int index)
{
    if (instrument != nullptr && index >= 0) {
        instrument->rs232StopBits = index == 1 ? 3 : index + 1;
    }
}

void RS232Dialog::on_flowcontrol_currentIndexChanged(int index)
{
    if (instrument != nullptr && index >= 0) {
        instrument->rs232FlowControl = index;
    }
}
