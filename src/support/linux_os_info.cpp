#include "support/linux_os_info.h"

#include "support/info_sections.h"

#include <QDateTime>
#include <QFileInfo>
#include <QSysInfo>

#include <unistd.h>

namespace {

// libvisa.so.7.2.1 has the version 7.2.1; a name that ends in .so has none.
QString versionInName(const QString& library)
{
    const QString version = library.section(QStringLiteral(".so."), 1);
    return version.isEmpty() ? missingFact() : version;
}

} // namespace

LinuxOSInfo::LinuxOSInfo(LinuxPlaces lookedAt) : places(std::move(lookedAt)) {}

QString LinuxOSInfo::productName() const
{
    return QSysInfo::prettyProductName();
}

QString LinuxOSInfo::country() const
{
    const QLocale::Country country = places.locale.country();
    return country == QLocale::AnyCountry ? missingFact() : QLocale::countryToString(country);
}

QString LinuxOSInfo::language() const
{
    const QLocale::Language language = places.locale.language();
    return language == QLocale::C ? missingFact() : QLocale::languageToString(language);
}

QString LinuxOSInfo::localeId() const
{
    return places.locale.name();
}

QString LinuxOSInfo::sensorControlVersion() const
{
    return missingFact();
}

// The file that the VISA library really is, behind the links to it; empty without one. Of several
// it is the one that the program loads, so the names come in the order in which they are tried.
QString LinuxOSInfo::visaLibrary() const
{
    for (const char* name : {"libvisa64.so", "libvisa.so", "libvisa.so.0"}) {
        for (const QString& folder : places.visaFolders) {
            const QFileInfo found(folder + QLatin1Char('/') + QLatin1String(name));
            if (found.exists()) {
                return QFileInfo(found.canonicalFilePath()).fileName();
            }
        }
    }
    return {};
}

QString LinuxOSInfo::installationDate() const
{
    for (const QString& trace : places.installationTraces) {
        const QFileInfo info(trace);
        if (info.exists()) {
            return dateText(info.lastModified().toSecsSinceEpoch());
        }
    }
    return missingFact();
}

QList<SystemSection> LinuxOSInfo::systemInformation() const
{
    SystemFacts facts;
    facts.productName = productName();
    facts.installed = installationDate();
    facts.administrator = geteuid() == 0 ? QStringLiteral("Yes") : QStringLiteral("No");
    facts.country = country();
    facts.language = language();
    facts.localeId = localeId();
    facts.qt = QStringLiteral(QT_VERSION_STR);
    const QString visa = visaLibrary();
    if (!visa.isEmpty()) {
        facts.visaName = visa;
        facts.visaVersion = versionInName(visa);
    }
    facts.lumenControl = sensorControlVersion();
    return systemSections(facts);
}

QList<DriverSection> LinuxOSInfo::driverInformation() const
{
    return driverSections({});
}
