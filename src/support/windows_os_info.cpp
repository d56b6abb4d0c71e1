#include "support/windows_os_info.h"

#include "remote/visa_function_table.h"
#include "support/file_version_record.h"
#include "support/info_sections.h"

namespace {

using Root = WindowsPlatform::RegistryRoot;

const char windowsKey[] = "SOFTWARE\\Microsoft\\Windows NT\\CurrentVersion";
const char internationalKey[] = "Control Panel\\International";
const char browserKey[] = "SOFTWARE\\Microsoft\\Windows\\CurrentVersion\\App Paths\\IEXPLORE.EXE";
const char programsKey[] = "SOFTWARE\\Microsoft\\Windows\\CurrentVersion";

// A row that shows the version of one file of the system directory.
struct VersionRow
{
    QString SystemFacts::*fact;
    const char* file;
};

const VersionRow versionRows[] = {
    {&SystemFacts::vbRuntime, "\\msvbvm60.dll"},
    {&SystemFacts::cviRuntime, "\\cvirte.dll"},
    {&SystemFacts::msiRuntime, "\\msi.dll"},
    {&SystemFacts::analysisControl, "\\cwanalysis.ocx"},
    {&SystemFacts::uiControl, "\\cwui.ocx"},
    {&SystemFacts::graph3dControl, "\\cw3dgrph.ocx"},
    {&SystemFacts::tlnk, "\\KoViTlnk.dll"},
    {&SystemFacts::vestaControl, "\\vestacontrol.dll"},
};

std::string registryText(const WindowsPlatform& platform, Root root, const char* key,
                         const char* name)
{
    return platform.registryString(root, key, name).value_or("---");
}

QString systemFileVersion(const WindowsPlatform& platform, const char* file)
{
    return readFileVersion(platform, platform.systemDirectory() + file).fileVersion;
}

// The second file is looked at only if the first has no version.
QString firstVersion(const WindowsPlatform& platform, const char* file, const char* otherFile)
{
    const QString version = systemFileVersion(platform, file);
    return version == missingFact() ? systemFileVersion(platform, otherFile) : version;
}

QString administratorText(WindowsPlatform::Administrator administrator)
{
    switch (administrator) {
    case WindowsPlatform::Administrator::yes:
        return QStringLiteral("Yes");
    case WindowsPlatform::Administrator::no:
        return QStringLiteral("No");
    case WindowsPlatform::Administrator::unknown:
        break;
    }
    return QStringLiteral("Unable to allocate & initialize SID struct");
}

QString driverLine(const WindowsPlatform& platform, const std::string& path)
{
    const FileVersionRecord record = readFileVersion(platform, path);
    return record.originalFileName + QStringLiteral(" (Version ") + record.fileVersion +
           QLatin1Char(')');
}

QStringList libraryDrivers(const WindowsPlatform& platform, const std::string& directory)
{
    const std::string prefix = directory + '\\';
    QStringList lines;
    for (const std::string& name : platform.namesMatching(prefix + "ko*.dll")) {
        lines.append(driverLine(platform, prefix + name));
    }
    return lines;
}

// An installed USB driver is known by its .inf file; its version stands in the .SYS file.
QStringList usbDrivers(const WindowsPlatform& platform)
{
    const std::string windows = platform.windowsDirectory();
    const std::string drivers = windows + "\\SYSTEM32\\Drivers\\";
    QStringList lines;
    for (const std::string& name : platform.namesMatching(windows + "\\INF\\ko*.inf")) {
        lines.append(driverLine(platform, drivers + name.substr(0, name.rfind('.')) + ".SYS"));
    }
    return lines;
}

// Where the VXI plug and play drivers lie.
std::string frameworkDirectory(const WindowsPlatform& platform)
{
    const auto text = [&platform](const char* key, const char* name) {
        const auto stored = platform.registryString(Root::localMachine, key, name);
        return stored ? std::make_optional(QString::fromLocal8Bit(stored->c_str())) : std::nullopt;
    };
    return vxipnpFrameworkPath(text).toLocal8Bit().toStdString();
}

} // namespace

WindowsOSInfo::WindowsOSInfo(std::unique_ptr<const WindowsPlatform> machine)
    : platform(std::move(machine))
{
}

QString WindowsOSInfo::productName() const
{
    return QString::fromLocal8Bit(
        registryText(*platform, Root::localMachine, windowsKey, "ProductName").c_str());
}

QString WindowsOSInfo::country() const
{
    return QString::fromLocal8Bit(
        registryText(*platform, Root::currentUser, internationalKey, "sCountry").c_str());
}

QString WindowsOSInfo::language() const
{
    return QString::fromLocal8Bit(
        registryText(*platform, Root::currentUser, internationalKey, "sLanguage").c_str());
}

QString WindowsOSInfo::localeId() const
{
    return QString::fromLocal8Bit(
        registryText(*platform, Root::currentUser, internationalKey, "Locale").c_str());
}

QString WindowsOSInfo::sensorControlVersion() const
{
    return firstVersion(*platform, "\\lumencontrol2.dll", "\\lumencontrol.dll");
}

QList<SystemSection> WindowsOSInfo::systemInformation() const
{
    SystemFacts facts;
    facts.productName = productName();
    facts.installed = dateText(
        platform->registryNumber(Root::localMachine, windowsKey, "InstallDate").value_or(0));
    facts.administrator = administratorText(platform->administrator());
    facts.country = country();
    facts.language = language();
    facts.localeId = localeId();
    for (const VersionRow& row : versionRows) {
        facts.*row.fact = systemFileVersion(*platform, row.file);
    }
    facts.browser =
        readFileVersion(*platform, registryText(*platform, Root::localMachine, browserKey, ""))
            .fileVersion;
    // Deliberate: a constant. Support compares it with the version named in its release notes.
    facts.qt = QStringLiteral("5.9.1");
    const FileVersionRecord visa =
        readFileVersion(*platform, platform->systemDirectory() + "\\visa32.dll");
    facts.visaName = visa.fileDescription;
    facts.visaVersion = visa.fileVersion;
    facts.visaCompany = visa.companyName;
    facts.ieeeDriver = firstVersion(*platform, "\\GPIB-32.dll", "\\sicl32.dll");
    facts.lumenControl = sensorControlVersion();
    return systemSections(facts);
}

QList<DriverSection> WindowsOSInfo::driverInformation() const
{
    const std::string programs =
        registryText(*platform, Root::localMachine, programsKey, "ProgramFilesDir");
    DriverLists lists;
    lists.vxi = libraryDrivers(*platform, frameworkDirectory(*platform));
    lists.ivi = libraryDrivers(*platform, programs + "\\IVI\\Bin");
    lists.usb = usbDrivers(*platform);
    return driverSections(lists);
}
