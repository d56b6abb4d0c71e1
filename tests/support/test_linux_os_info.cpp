// The facts of a Linux machine: real ones where the row has a meaning, dashes elsewhere.
#include "kit/file_content.h"
#include "kit/made_up_windows.h"
#include "support/create_os_info.h"
#include "support/linux_os_info.h"
#include "support/windows_os_info.h"

#include <QRegularExpression>
#include <QTemporaryDir>
#include <QtTest>

#include <ctime>
#include <unistd.h>

namespace {

QStringList shapeOf(const OSInfo& info)
{
    QStringList shape;
    for (const SystemSection& section : info.systemInformation()) {
        shape.append('[' + section.first + ']');
        for (const KeyValue& pair : section.second) {
            shape.append(pair.first);
        }
    }
    return shape;
}

// All rows as "section/key" -> value.
QMap<QString, QString> rowsOf(const OSInfo& info)
{
    QMap<QString, QString> rows;
    for (const SystemSection& section : info.systemInformation()) {
        for (const KeyValue& pair : section.second) {
            rows[section.first + '/' + pair.first] = pair.second;
        }
    }
    return rows;
}

} // namespace

class TestLinuxOSInfo : public QObject
{
    Q_OBJECT

private slots:
    void initTestCase();
    void init();

    void theShapeIsThatOfWindows();
    void theSystemIsNamedAsItNamesItself();
    void theAdministratorIsRoot();
    void theLocaleTellsCountryAndLanguage();
    void aLocaleOfNoCountryShowsDashes();
    void theFirstTraceDatesTheInstallation();
    void withoutATraceTheDateIsMissing();
    void theQtVersionIsThatOfTheBuild();
    void aVisaLibraryIsNamedBehindItsLinks();
    void aVisaLibraryWithoutANumberHasNoVersion();
    void theVisaLibraryIsTheOneThatTheProgramLoads();
    void rowsWithoutAMeaningShowDashes();
    void noDriversAreListed();
    void thisPlatformIsChosen();

private:
    QMap<QString, QString> rows() const { return rowsOf(LinuxOSInfo(places)); }
    void touch(const QString& name) const;

    std::unique_ptr<QTemporaryDir> folder;
    LinuxPlaces places;
};

void TestLinuxOSInfo::initTestCase()
{
    qputenv("TZ", "UTC");
    tzset();
}

void TestLinuxOSInfo::init()
{
    folder = std::make_unique<QTemporaryDir>();
    places.installationTraces = QStringList{folder->filePath("first"), folder->filePath("second")};
    places.visaFolders = QStringList{folder->filePath("none"), folder->path()};
    places.locale = QLocale(QLocale::German, QLocale::Austria);
}

void TestLinuxOSInfo::touch(const QString& name) const
{
    putContent(folder->filePath(name), "");
}

void TestLinuxOSInfo::theShapeIsThatOfWindows()
{
    MadeUpMachine machine;
    const WindowsOSInfo windows(std::make_unique<MadeUpWindows>(machine));
    QCOMPARE(shapeOf(LinuxOSInfo(places)), shapeOf(windows));
    QCOMPARE(LinuxOSInfo(places).driverInformation(), windows.driverInformation());
}

void TestLinuxOSInfo::theSystemIsNamedAsItNamesItself()
{
    QFile release(QStringLiteral("/etc/os-release"));
    if (!release.open(QIODevice::ReadOnly)) {
        QSKIP("this system has no os-release file");
    }
    const QRegularExpression line("^PRETTY_NAME=\"?([^\"\n]*)",
                                  QRegularExpression::MultilineOption);
    const QString name = line.match(QString::fromUtf8(release.readAll())).captured(1);
    QCOMPARE(rows()["Operating System/"], name);
}

void TestLinuxOSInfo::theAdministratorIsRoot()
{
    QCOMPARE(rows()["Operating System/Admin rights"],
             geteuid() == 0 ? QStringLiteral("Yes") : QStringLiteral("No"));
}

void TestLinuxOSInfo::theLocaleTellsCountryAndLanguage()
{
    QCOMPARE(rows()["Language Settings/Country"], QStringLiteral("Austria"));
    QCOMPARE(rows()["Language Settings/Language"], QStringLiteral("German"));
    QCOMPARE(rows()["Language Settings/Local ID"], QStringLiteral("de_AT"));
}

void TestLinuxOSInfo::aLocaleOfNoCountryShowsDashes()
{
    places.locale = QLocale::c();
    QCOMPARE(rows()["Language Settings/Country"], QStringLiteral("---"));
    QCOMPARE(rows()["Language Settings/Language"], QStringLiteral("---"));
    QCOMPARE(rows()["Language Settings/Local ID"], QStringLiteral("C"));
}

void TestLinuxOSInfo::theFirstTraceDatesTheInstallation()
{
    touch("second");
    QFile trace(folder->filePath("second"));
    QVERIFY(trace.open(QIODevice::ReadWrite));
    QVERIFY(trace.setFileTime(QDateTime::fromSecsSinceEpoch(90000, Qt::UTC),
                              QFileDevice::FileModificationTime));
    trace.close();
    QCOMPARE(rows()["Operating System/Installed"], QStringLiteral("Fri Jan  2 01:00:00 1970"));

    touch("first"); // just now
    QVERIFY(rows()["Operating System/Installed"].endsWith(
        QString::number(QDateTime::currentDateTimeUtc().date().year())));
}

void TestLinuxOSInfo::withoutATraceTheDateIsMissing()
{
    QCOMPARE(rows()["Operating System/Installed"], QStringLiteral("---"));
}

void TestLinuxOSInfo::theQtVersionIsThatOfTheBuild()
{
    QCOMPARE(rows()["DLL and EXE versions/Qt"], QStringLiteral(QT_VERSION_STR));
}

void TestLinuxOSInfo::aVisaLibraryIsNamedBehindItsLinks()
{
    touch("libvisa.so.7.2.1");
    QVERIFY(QFile::link(folder->filePath("libvisa.so.7.2.1"), folder->filePath("libvisa.so")));
    QCOMPARE(rows()["VISA/Name"], QStringLiteral("libvisa.so.7.2.1"));
    QCOMPARE(rows()["VISA/Version"], QStringLiteral("7.2.1"));
    QCOMPARE(rows()["VISA/Company"], QStringLiteral("---"));
}

void TestLinuxOSInfo::aVisaLibraryWithoutANumberHasNoVersion()
{
    touch("libvisa64.so");
    QCOMPARE(rows()["VISA/Name"], QStringLiteral("libvisa64.so"));
    QCOMPARE(rows()["VISA/Version"], QStringLiteral("---"));
}

void TestLinuxOSInfo::theVisaLibraryIsTheOneThatTheProgramLoads()
{
    QVERIFY(QDir(folder->path()).mkdir("first folder"));
    places.visaFolders.prepend(folder->filePath("first folder"));
    const auto name = [this] { return rows()["VISA/Name"]; };

    touch("libvisa.so.7.2.1"); // under a number that is never tried
    touch("libvisa64.so.1");
    QCOMPARE(name(), QStringLiteral("---"));

    touch("libvisa.so.0");
    QCOMPARE(name(), QStringLiteral("libvisa.so.0"));
    touch("first folder/libvisa.so.0");
    touch("libvisa.so"); // tried before, in whatever folder
    QCOMPARE(name(), QStringLiteral("libvisa.so"));
    touch("libvisa64.so");
    QCOMPARE(name(), QStringLiteral("libvisa64.so"));
    QVERIFY(QFile::link(folder->filePath("libvisa64.so.1"),
                        folder->filePath("first folder/libvisa64.so")));
    QCOMPARE(name(), QStringLiteral("libvisa64.so.1"));
}

void TestLinuxOSInfo::rowsWithoutAMeaningShowDashes()
{
    const QStringList meaningless{"DLL and EXE versions/VB runtime",
                                  "DLL and EXE versions/CVI runtime",
                                  "DLL and EXE versions/MSI runtime",
                                  "DLL and EXE versions/Internet Explorer",
                                  "NI ActiveX versions/NI Analysis",
                                  "NI ActiveX versions/NI UI",
                                  "NI ActiveX versions/NI 3d graph",
                                  "VISA/Name",
                                  "VISA/Version",
                                  "VISA/Company",
                                  "Remote Control/IEEE driver",
                                  "Remote Control/TLNK",
                                  "KO USB Drivers/Vesta Control",
                                  "KO USB Drivers/Lumen Control2"};
    const QMap<QString, QString> all = rows();
    for (const QString& row : meaningless) {
        QVERIFY2(all.value(row) == QLatin1String("---"), qPrintable(row));
    }
}

void TestLinuxOSInfo::noDriversAreListed()
{
    const QList<DriverSection> sections = LinuxOSInfo(places).driverInformation();
    QCOMPARE(sections.size(), 3);
    QCOMPARE(sections[0].second, QStringList{"No VXI driver found"});
}

void TestLinuxOSInfo::thisPlatformIsChosen()
{
    QVERIFY(dynamic_cast<LinuxOSInfo*>(createOSInfo().get()) != nullptr);
}

QTEST_APPLESS_MAIN(TestLinuxOSInfo)
#include "test_linux_os_info.moc"
