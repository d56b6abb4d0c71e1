// The shape of the support information, the same on every platform: which sections there are,
// which rows they have and in which order. Platforms fill the two records, nothing else.
//
// To add a row: a member in SystemFacts and a line in the table of info_sections.cpp.
#pragma once

#include "support/os_info.h"

// What a row shows when its fact is missing or has no meaning on the platform.
inline QString missingFact()
{
    return QStringLiteral("---");
}

// One member for each row, in the order of the rows.
struct SystemFacts
{
    QString productName = missingFact();
    QString installed = missingFact();
    QString administrator = missingFact();
    QString country = missingFact();
    QString language = missingFact();
    QString localeId = missingFact();
    QString vbRuntime = missingFact();
    QString cviRuntime = missingFact();
    QString msiRuntime = missingFact();
    QString browser = missingFact();
    QString assistPanel = QStringLiteral("2.2.0.0"); // the version of this collection of facts
    QString qt = missingFact();
    QString analysisControl = missingFact();
    QString uiControl = missingFact();
    QString graph3dControl = missingFact();
    QString visaName = missingFact();
    QString visaVersion = missingFact();
    QString visaCompany = missingFact();
    QString ieeeDriver = missingFact();
    QString tlnk = missingFact();
    QString vestaControl = missingFact();
    QString lumenControl = missingFact();
};

// One line of text for each driver found.
struct DriverLists
{
    QStringList vxi;
    QStringList ivi;
    QStringList usb;
};

QList<SystemSection> systemSections(const SystemFacts& facts);

// A list that is empty becomes the one line that says so.
QList<DriverSection> driverSections(const DriverLists& lists);

// Local date and time in the form "Wed Jun 30 21:49:08 1993"; missingFact() for 0.
QString dateText(qint64 secondsSince1970);
