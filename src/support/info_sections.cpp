#include "support/info_sections.h"

#include <ctime>

namespace {

struct Row
{
    const char* section;
    const char* key;
    QString SystemFacts::*fact;
};

// Rows of one section stand together. Deliberate: the rows of runtimes that the program doesn't use
// stay. Support reads them to know what else is installed beside the program.
const Row rows[] = {
    // Deliberate: the first row has no key, its value explains itself.
    {"Operating System", "", &SystemFacts::productName},
    {"Operating System", "Installed", &SystemFacts::installed},
    {"Operating System", "Admin rights", &SystemFacts::administrator},
    {"Language Settings", "Country", &SystemFacts::country},
    {"Language Settings", "Language", &SystemFacts::language},
    {"Language Settings", "Local ID", &SystemFacts::localeId},
    {"DLL and EXE versions", "VB runtime", &SystemFacts::vbRuntime},
    {"DLL and EXE versions", "CVI runtime", &SystemFacts::cviRuntime},
    {"DLL and EXE versions", "MSI runtime", &SystemFacts::msiRuntime},
    {"DLL and EXE versions", "Internet Explorer", &SystemFacts::browser},
    {"DLL and EXE versions", "Assist Panel", &SystemFacts::assistPanel},
    {"DLL and EXE versions", "Qt", &SystemFacts::qt},
    {"NI ActiveX versions", "NI Analysis", &SystemFacts::analysisControl},
    {"NI ActiveX versions", "NI UI", &SystemFacts::uiControl},
    {"NI ActiveX versions", "NI 3d graph", &SystemFacts::graph3dControl},
    {"VISA", "Name", &SystemFacts::visaName},
    {"VISA", "Version", &SystemFacts::visaVersion},
    {"VISA", "Company", &SystemFacts::visaCompany},
    {"Remote Control", "IEEE driver", &SystemFacts::ieeeDriver},
    {"Remote Control", "TLNK", &SystemFacts::tlnk},
    {"KO USB Drivers", "Vesta Control", &SystemFacts::vestaControl},
    {"KO USB Drivers", "Lumen Control2", &SystemFacts::lumenControl},
};

struct DriverRow
{
    const char* section;
    const char* lineIfEmpty;
    QStringList DriverLists::*lines;
};

const DriverRow driverRows[] = {
    {"Installed Kelmar VXI PnP drivers", "No VXI driver found", &DriverLists::vxi},
    {"Installed Kelmar IVI drivers", "No IVI driver found", &DriverLists::ivi},
    {"Installed Kelmar USB drivers", "No USB driver found", &DriverLists::usb},
};

} // namespace

QList<SystemSection> systemSections(const SystemFacts& facts)
{
    QList<SystemSection> sections;
    for (const Row& row : rows) {
        const QString name = QLatin1String(row.section);
        if (sections.isEmpty() || sections.last().first != name) {
            sections.append({name, {}});
        }
        sections.last().second.append({QLatin1String(row.key), facts.*row.fact});
    }
    return sections;
}

QList<DriverSection> driverSections(const DriverLists& lists)
{
    QList<DriverSection> sections;
    for (const DriverRow& row : driverRows) {
        QStringList lines = lists.*row.lines;
        if (lines.isEmpty()) {
            lines.append(QLatin1String(row.lineIfEmpty));
        }
        sections.append({QLatin1String(row.section), lines});
    }
    return sections;
}

QString dateText(qint64 secondsSince1970)
{
    const auto time = static_cast<std::time_t>(secondsSince1970);
    const char* text = secondsSince1970 == 0 ? nullptr : std::ctime(&time);
    return text == nullptr ? missingFact() : QString::fromLatin1(text).trimmed();
}
