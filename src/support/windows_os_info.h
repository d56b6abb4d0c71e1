// The facts of a Windows machine: registry, system directory and version resources. Here stands
// what is looked up; the looking itself is the platform's, so this file runs everywhere.
#pragma once

#include "support/os_info.h"
#include "support/windows_platform.h"

#include <memory>

class WindowsOSInfo : public OSInfo
{
public:
    explicit WindowsOSInfo(std::unique_ptr<const WindowsPlatform> machine);

    QString productName() const override;
    QString country() const override;
    QString language() const override;
    QString localeId() const override;
    QString sensorControlVersion() const override;
    QList<SystemSection> systemInformation() const override;
    QList<DriverSection> driverInformation() const override;

private:
    std::unique_ptr<const WindowsPlatform> platform;
};
