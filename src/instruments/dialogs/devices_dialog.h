// The window in which the operator chooses the three instruments, their connections and their
// settings, and brings them up. Every change is in the record at once.
//
// Main thread. A job ("Init", "Set", "Reset") is a conversation over its instrument's link, on a
// worker thread and in order of asking, so the window never waits. Slots named on_<object>_<signal>
// are connected by name; the prefixes are g_ (signal generator), a_ (analyzer) and m_ (microwave
// generator).
//
// To add a setting: 1. its widget in the form, 2. its row in listSettings(), 3. its slot.
#pragma once

#include "instruments/dialogs/rs232_dialog.h"
#include "setup/measurement_setup.h"

#include <QDialog>

#include <memory>
#include <variant>
#include <vector>

class QComboBox;
class QLineEdit;
class QPushButton;
class QStackedWidget;

namespace Ui {
class DevicesDialog;
}

class DevicesDialog : public QDialog
{
    Q_OBJECT

public:
    explicit DevicesDialog(QWidget* parent = nullptr);
    ~DevicesDialog() override;

    // The record to edit, not owned. Appends the system's serial ports to the port lists.
    // Deliberate: the lists are not cleared first, so a port keeps the row that it was
    // chosen by, also when the record was replaced.
    void setSetup(MeasurementSetup* newSetup);
    void setSetup(MeasurementSetup* newSetup, const QStringList& portNames);

signals:
    // A frequency of the generator chain may have changed, and with it the middle of the graph.
    void generatorFrequencyChanged();
    // The refresh has run: settings or connections of the instruments may have changed.
    void instrumentsChanged();

public slots:
    // Copies the record to the form. from is the widget that the operator is moving: its value
    // is not written back.
    void notifyPropertyChanged(QWidget* from = nullptr);

    void on_g_type_currentIndexChanged(int index);
    void on_a_type_currentIndexChanged(int index);
    void on_m_type_currentIndexChanged(int index);
    void on_g_interface_currentIndexChanged(int index);
    void on_a_interface_currentIndexChanged(int index);
    void on_m_interface_currentIndexChanged(int index);
    void on_g_gpib_addr_valueChanged(int arg1);
    void on_a_gpib_addr_valueChanged(int arg1);
    void on_m_gpib_addr_valueChanged(int arg1);
    void on_g_address_editingFinished();
    void on_a_address_editingFinished();
    void on_m_address_editingFinished();
    void on_g_port_currentIndexChanged(int index);
    void on_a_port_currentIndexChanged(int index);
    void on_m_port_currentIndexChanged(int index);
    void on_g_level_valueChanged(double arg1);
    void on_a_level_valueChanged(double arg1);
    void on_m_level_valueChanged(double arg1);
    void on_g_frequency_editingFinished();
    void on_a_frequency_editingFinished();
    void on_m_frequency_editingFinished();
    void on_a_span_editingFinished();
    void on_a_sweeptime_editingFinished();
    void on_a_rbw_currentIndexChanged(int index);
    void on_a_vbw_currentIndexChanged(int index);
    void on_a_attenuation_valueChanged(int arg1);
    void on_a_atten_auto_toggled(bool checked);
    void on_a_swt_auto_toggled(bool checked);
    void on_m_attenuation_valueChanged(int arg1);
    void on_m_if_input_toggled(bool checked);
    void on_g_init_clicked();
    void on_a_init_clicked();
    void on_m_init_clicked();
    void on_g_set_clicked();
    void on_a_set_clicked();
    void on_m_set_clicked();
    void on_g_reset_clicked();
    void on_a_reset_clicked();
    void on_m_reset_clicked();
    void on_g_rs232configure_linkActivated(const QString& link);
    void on_a_rs232configure_linkActivated(const QString& link);
    void on_m_rs232configure_linkActivated(const QString& link);

private:
    using Job = void (Instrument::*)() const;

    // A setting on a tab: its widget, where the record has it, and how many of the record's units
    // make one of the widget's.
    struct Setting
    {
        QWidget* widget;
        std::variant<quint32*, InterfaceKind*, double*, bool*, QString*> field;
        double unit = 1.0;
    };
    // What the link to an instrument shows on its tab.
    struct LinkDisplay
    {
        const Instrument* instrument;
        QLineEdit* message;
        QStackedWidget* pages;
        QPushButton* set;
        QPushButton* reset;
    };

    void disableMissingInterfaces();
    std::vector<Setting> listSettings();
    std::vector<LinkDisplay> listLinks();
    void showAvailability();

    const Setting& settingOf(const QWidget* widget) const;
    template <class Field, class Value> void store(QWidget* widget, Value value);
    template <class Field> void storeRow(QComboBox* box, int row);
    void storeText(QLineEdit* line);
    void storeNumber(QLineEdit* line);

    template <class Device>
    void request(Device MeasurementSetup::*member, QLineEdit* message, Job job);
    void showOutcome(const InstrumentLink& link, QLineEdit* message);

    std::unique_ptr<Ui::DevicesDialog> ui;
    MeasurementSetup* setup = nullptr;
    std::vector<Setting> settings; // of all tabs; of the record in setup, as the links are
    std::vector<LinkDisplay> links;
    RS232Dialog generatorSerial;
    RS232Dialog analyzerSerial;
    RS232Dialog microwaveSerial;
};
