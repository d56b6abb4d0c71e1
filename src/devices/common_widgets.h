// The widgets of the devices dialog that all three tabs have.
#pragma once

#include "devices/devices_dialog.h"

#include <QComboBox>
#include <QDoubleSpinBox>
#include <QLineEdit>
#include <QPushButton>
#include <QSpinBox>
#include <QStackedWidget>

struct DevicesDialog::CommonWidgets
{
    QComboBox* type;
    QComboBox* interface;
    QLineEdit* message;
    QStackedWidget* pages;
    QSpinBox* gpibAddress;
    QLineEdit* address;
    QLineEdit* frequency;
    QDoubleSpinBox* level;
    QPushButton* set;
    QPushButton* reset;
};
