// The facts about the machine that a support engineer asks for, whatever the platform.
// createOSInfo() in support/create_os_info.h makes the one of the running platform.
//
// To add a platform: derive, fill a SystemFacts and a DriverLists (support/info_sections.h) as
// far as the platform goes, and return their sections. What stays unset shows as "---".
//
// Nothing throws and nothing is reported. Reading may scan directories; main thread.
#pragma once

#include <QList>
#include <QPair>
#include <QString>
#include <QStringList>

using KeyValue = QPair<QString, QString>;
using SystemSection = QPair<QString, QList<KeyValue>>; // a name and its rows
using DriverSection = QPair<QString, QStringList>;     // a name and its lines

class OSInfo
{
public:
    virtual ~OSInfo() = default;

    // Each is "---" where it can't be found.
    virtual QString productName() const = 0;
    virtual QString country() const = 0;
    virtual QString language() const = 0;
    virtual QString localeId() const = 0;
    virtual QString sensorControlVersion() const = 0;

    // The same sections and keys in the same order on every platform.
    virtual QList<SystemSection> systemInformation() const = 0;
    virtual QList<DriverSection> driverInformation() const = 0;
};
