// The jobs of the devices dialog: "Init", "Set" and "Reset" of each instrument.
#include "base/background.h"
#include "instruments/dialogs/devices_dialog.h"
#include "ui_devices_dialog.h"

// The place in the queue of the instrument's link is taken here, at the click, and the settings go
// along as they stand now.
template <class Device>
void DevicesDialog::request(Device MeasurementSetup::*member, QLineEdit* message, Job job)
{
    const Device device = setup->*member;
    const auto show = [this, member, message, link = device.link()] {
        if (link == (setup->*member).link()) { // or else the record was replaced meanwhile
            showOutcome(*link, message);
        }
    };
    device.link()->converse([device, job] { (device.*job)(); },
                            [end = std::make_shared<CallHome>(this, show)] { end->send(); });
    message->setText(QStringLiteral("pending...")); // last: without memory there is no job
}

void DevicesDialog::showOutcome(const InstrumentLink& link, QLineEdit* message)
{
    notifyPropertyChanged();
    if (link.pendingConversations() > 0) {
        message->setText(QStringLiteral("pending..."));
    }
}

void DevicesDialog::on_g_init_clicked()
{
    request(&MeasurementSetup::generator, ui->g_message, &Instrument::init);
}

void DevicesDialog::on_a_init_clicked()
{
    request(&MeasurementSetup::analyzer, ui->a_message, &Instrument::init);
}

void DevicesDialog::on_m_init_clicked()
{
    request(&MeasurementSetup::microwave, ui->m_message, &Instrument::init);
}

void DevicesDialog::on_g_set_clicked()
{
    request(&MeasurementSetup::generator, ui->g_message, &Instrument::setup);
}

void DevicesDialog::on_a_set_clicked()
{
    request(&MeasurementSetup::analyzer, ui->a_message, &Instrument::setup);
}

void DevicesDialog::on_m_set_clicked()
{
    request(&MeasurementSetup::microwave, ui->m_message, &Instrument::setup);
}

void DevicesDialog::on_g_reset_clicked()
{
    request(&MeasurementSetup::generator, ui->g_message, &Instrument::reset);
}

void DevicesDialog::on_a_reset_clicked()
{
    request(&MeasurementSetup::analyzer, ui->a_message, &Instrument::reset);
}

void DevicesDialog::on_m_reset_clicked()
{
    request(&MeasurementSetup::microwave, ui->m_message, &Instrument::reset);
}
