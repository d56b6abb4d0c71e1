// The facts of a Linux machine, in the shape that all platforms share. Rows of things that exist
// on Windows alone show "---", and no instrument drivers are listed: there are none to install.
#pragma once

#include "support/os_info.h"

#include <QLocale>

// Where the facts are looked for; tests look elsewhere.
struct LinuxPlaces
{
    // Written when the system was installed and not touched since; the first that exists counts.
    QStringList installationTraces = {
        QStringLiteral("/var/log/installer"),
        QStringLiteral("/var/log/anaconda"),
        QStringLiteral("/etc/machine-id"),
    };
    QStringList visaFolders = {
        QStringLiteral("/usr/local/lib"),
        QStringLiteral("/usr/local/lib64"),
        QStringLiteral("/usr/lib/x86_64-linux-gnu"),
        QStringLiteral("/usr/lib/aarch64-linux-gnu"),
        QStringLiteral("/usr/lib64"),
        QStringLiteral("/usr/lib"),
    };
    QLocale locale = QLocale::system();
};

class LinuxOSInfo : public OSInfo
{
public:
    explicit LinuxOSInfo(LinuxPlaces lookedAt = {});

    QString productName() const override;
    QString country() const override;
    QString language() const override;
    QString localeId() const override;
    QString sensorControlVersion() const override; // the sensors' library is for Windows only
    QList<SystemSection> systemInformation() const override;
    QList<DriverSection> driverInformation() const override;

private:
    QString visaLibrary() const;
    QString installationDate() const;

    LinuxPlaces places;
};
