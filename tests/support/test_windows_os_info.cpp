// What is looked up on Windows and what becomes of it, on machines made up here.
#include "kit/made_up_windows.h"
#include "support/file_version_record.h"
#include "support/info_sections.h"
#include "support/windows_os_info.h"

#include <QtTest>

#include <ctime>

namespace {

const std::string systemFolder = "C:\\Windows\\system32";
const std::string windowsKey = "SOFTWARE\\Microsoft\\Windows NT\\CurrentVersion|";
const std::string frameworkKey = "SOFTWARE\\VXIPNP_Alliance\\VXIPNP\\CurrentVersion|";
const std::string internationalKey = "Control Panel\\International|";
constexpr auto machineRoot = WindowsPlatform::RegistryRoot::localMachine;
constexpr auto userRoot = WindowsPlatform::RegistryRoot::currentUser;

} // namespace

class TestWindowsOSInfo : public QObject
{
    Q_OBJECT

private slots:
    void initTestCase();
    void init();

    void theSectionsAndKeysStandInOrder();
    void anEmptyMachineShowsDashes();
    void theRegistryTellsSystemAndLanguage();
    void theInstallationDateIsLocalTime();
    void anInstallationDateOfZeroIsMissing();
    void administratorIsYesNoOrUnable();
    void versionsComeFromTheSystemDirectory_data();
    void versionsComeFromTheSystemDirectory();
    void theBrowserIsFoundThroughItsKey();
    void visaRowsComeFromOneFile();
    void theFirstIeeeDriverHidesTheSecond();
    void theSecondIeeeDriverStandsInForTheFirst();
    void theNewSensorControlGoesBeforeTheOld();
    void theConstantsDoNotDependOnTheMachine();

    void aFileWithoutAResourceHasOnlyDashes();
    void allTextsOfAResourceAreRead();
    void aShortResourceIsNotReadBeyondItsEnd();

    void withoutDriversEachSectionSaysSo();
    void vxiDriversAreListedInTheOrderOfTheSystem();
    void theOlderNameOfTheFrameworkPathIsSecondChoice();
    void iviDriversLieBelowTheProgramFiles();
    void usbDriversHaveTheirVersionInTheSysFile();
    void anInfFileWithoutASysFileGivesDashes();

private:
    WindowsOSInfo info() { return WindowsOSInfo(std::make_unique<MadeUpWindows>(machine)); }
    QString row(const char* section, const char* key);
    QStringList driverLines(int index) { return info().driverInformation().at(index).second; }

    MadeUpMachine machine;
};

void TestWindowsOSInfo::initTestCase()
{
    qputenv("TZ", "UTC-2"); // two hours east of Greenwich
    tzset();
}

void TestWindowsOSInfo::init()
{
    machine = MadeUpMachine();
}

QString TestWindowsOSInfo::row(const char* section, const char* key)
{
    for (const SystemSection& one : info().systemInformation()) {
        for (const KeyValue& pair : one.second) {
            if (one.first == QLatin1String(section) && pair.first == QLatin1String(key)) {
                return pair.second;
            }
        }
    }
    return QStringLiteral("no such row");
}

void TestWindowsOSInfo::theSectionsAndKeysStandInOrder()
{
    QStringList shape;
    for (const SystemSection& section : info().systemInformation()) {
        shape.append('[' + section.first + ']');
        for (const KeyValue& pair : section.second) {
            shape.append(pair.first);
        }
    }
    const QStringList expected{"[Operating System]",
                               "",
                               "Installed",
                               "Admin rights",
                               "[Language Settings]",
                               "Country",
                               "Language",
                               "Local ID",
                               "[DLL and EXE versions]",
                               "VB runtime",
                               "CVI runtime",
                               "MSI runtime",
                               "Internet Explorer",
                               "Assist Panel",
                               "Qt",
                               "[NI ActiveX versions]",
                               "NI Analysis",
                               "NI UI",
                               "NI 3d graph",
                               "[VISA]",
                               "Name",
                               "Version",
                               "Company",
                               "[Remote Control]",
                               "IEEE driver",
                               "TLNK",
                               "[KO USB Drivers]",
                               "Vesta Control",
                               "Lumen Control2"};
    QCOMPARE(shape, expected);
}

void TestWindowsOSInfo::anEmptyMachineShowsDashes()
{
    machine.administrator = WindowsPlatform::Administrator::unknown;
    int dashes = 0;
    for (const SystemSection& section : info().systemInformation()) {
        for (const KeyValue& pair : section.second) {
            dashes += pair.second == QLatin1String("---") ? 1 : 0;
        }
    }
    // Of 22 rows, two are constants, one is the administrator, and the name and the company of
    // a missing VISA library are empty.
    QCOMPARE(dashes, 17);
    QCOMPARE(row("VISA", "Name"), QString());
    QCOMPARE(row("VISA", "Version"), QStringLiteral("---"));
    QCOMPARE(row("VISA", "Company"), QString());
}

void TestWindowsOSInfo::theRegistryTellsSystemAndLanguage()
{
    machine.texts[{machineRoot, windowsKey + "ProductName"}] = "Windows 10 Pro";
    machine.texts[{userRoot, internationalKey + "sCountry"}] = "Norway";
    machine.texts[{userRoot, internationalKey + "sLanguage"}] = "NOR";
    machine.texts[{userRoot, internationalKey + "Locale"}] = "00000414";
    QCOMPARE(row("Operating System", ""), QStringLiteral("Windows 10 Pro"));
    QCOMPARE(row("Language Settings", "Country"), QStringLiteral("Norway"));
    QCOMPARE(row("Language Settings", "Language"), QStringLiteral("NOR"));
    QCOMPARE(row("Language Settings", "Local ID"), QStringLiteral("00000414"));
}

void TestWindowsOSInfo::theInstallationDateIsLocalTime()
{
    machine.numbers[{machineRoot, windowsKey + "InstallDate"}] = 86400 + 3600; // 01:00 at Greenwich
    QCOMPARE(row("Operating System", "Installed"), QStringLiteral("Fri Jan  2 03:00:00 1970"));
    // Beyond the range of a signed number.
    machine.numbers[{machineRoot, windowsKey + "InstallDate"}] = 4294967295;
    QCOMPARE(row("Operating System", "Installed"), QStringLiteral("Sun Feb  7 08:28:15 2106"));
}

void TestWindowsOSInfo::anInstallationDateOfZeroIsMissing()
{
    machine.numbers[{machineRoot, windowsKey + "InstallDate"}] = 0;
    QCOMPARE(row("Operating System", "Installed"), QStringLiteral("---"));
}

void TestWindowsOSInfo::administratorIsYesNoOrUnable()
{
    QCOMPARE(row("Operating System", "Admin rights"), QStringLiteral("No"));
    machine.administrator = WindowsPlatform::Administrator::yes;
    QCOMPARE(row("Operating System", "Admin rights"), QStringLiteral("Yes"));
    machine.administrator = WindowsPlatform::Administrator::unknown;
    QCOMPARE(row("Operating System", "Admin rights"),
             QStringLiteral("Unable to allocate & initialize SID struct"));
}

void TestWindowsOSInfo::versionsComeFromTheSystemDirectory_data()
{
    QTest::addColumn<QString>("section");
    QTest::addColumn<QString>("key");
    const auto add = [](const char* file, const char* section, const char* key) {
        QTest::newRow(file) << QString(section) << QString(key);
    };
    add("\\msvbvm60.dll", "DLL and EXE versions", "VB runtime");
    add("\\cvirte.dll", "DLL and EXE versions", "CVI runtime");
    add("\\msi.dll", "DLL and EXE versions", "MSI runtime");
    add("\\cwanalysis.ocx", "NI ActiveX versions", "NI Analysis");
    add("\\cwui.ocx", "NI ActiveX versions", "NI UI");
    add("\\cw3dgrph.ocx", "NI ActiveX versions", "NI 3d graph");
    add("\\visa32.dll", "VISA", "Version");
    add("\\GPIB-32.dll", "Remote Control", "IEEE driver");
    add("\\KoViTlnk.dll", "Remote Control", "TLNK");
    add("\\vestacontrol.dll", "KO USB Drivers", "Vesta Control");
    add("\\lumencontrol2.dll", "KO USB Drivers", "Lumen Control2");
}

void TestWindowsOSInfo::versionsComeFromTheSystemDirectory()
{
    QFETCH(QString, section);
    QFETCH(QString, key);
    machine.addFile(systemFolder + QTest::currentDataTag(), 4);
    QCOMPARE(row(qPrintable(section), qPrintable(key)), QStringLiteral("1.2.3.4"));
}

void TestWindowsOSInfo::theBrowserIsFoundThroughItsKey()
{
    machine.addFile("D:\\Browser\\iexplore.exe", 7);
    QCOMPARE(row("DLL and EXE versions", "Internet Explorer"), QStringLiteral("---"));
    machine.texts[{machineRoot,
                   "SOFTWARE\\Microsoft\\Windows\\CurrentVersion\\App Paths\\IEXPLORE.EXE|"}] =
        "D:\\Browser\\iexplore.exe";
    QCOMPARE(row("DLL and EXE versions", "Internet Explorer"), QStringLiteral("1.2.3.7"));
}

void TestWindowsOSInfo::visaRowsComeFromOneFile()
{
    machine.addFile(systemFolder + "\\visa32.dll", 5);
    machine.addText(systemFolder + "\\visa32.dll", "FileDescription", "VISA for tests");
    machine.addText(systemFolder + "\\visa32.dll", "CompanyName", "Nobody");
    QCOMPARE(row("VISA", "Name"), QStringLiteral("VISA for tests"));
    QCOMPARE(row("VISA", "Version"), QStringLiteral("1.2.3.5"));
    QCOMPARE(row("VISA", "Company"), QStringLiteral("Nobody"));
}

void TestWindowsOSInfo::theFirstIeeeDriverHidesTheSecond()
{
    machine.addFile(systemFolder + "\\GPIB-32.dll", 1);
    machine.addFile(systemFolder + "\\sicl32.dll", 2);
    QCOMPARE(row("Remote Control", "IEEE driver"), QStringLiteral("1.2.3.1"));
    QVERIFY(!machine.lookedAt.empty());
    for (const std::string& path : machine.lookedAt) {
        QVERIFY(path != systemFolder + "\\sicl32.dll");
    }
}

void TestWindowsOSInfo::theSecondIeeeDriverStandsInForTheFirst()
{
    machine.addFile(systemFolder + "\\sicl32.dll", 2);
    QCOMPARE(row("Remote Control", "IEEE driver"), QStringLiteral("1.2.3.2"));
}

void TestWindowsOSInfo::theNewSensorControlGoesBeforeTheOld()
{
    QCOMPARE(info().sensorControlVersion(), QStringLiteral("---"));
    machine.addFile(systemFolder + "\\lumencontrol.dll", 1);
    QCOMPARE(info().sensorControlVersion(), QStringLiteral("1.2.3.1"));
    machine.addFile(systemFolder + "\\lumencontrol2.dll", 2);
    QCOMPARE(info().sensorControlVersion(), QStringLiteral("1.2.3.2"));
}

void TestWindowsOSInfo::theConstantsDoNotDependOnTheMachine()
{
    QCOMPARE(row("DLL and EXE versions", "Assist Panel"), QStringLiteral("2.2.0.0"));
    QCOMPARE(row("DLL and EXE versions", "Qt"), QStringLiteral("5.9.1"));
}

void TestWindowsOSInfo::aFileWithoutAResourceHasOnlyDashes()
{
    const FileVersionRecord record = readFileVersion(MadeUpWindows(machine), "C:\\none.dll");
    QCOMPARE(record.fileVersion, QStringLiteral("---"));
    QCOMPARE(record.productVersion, QString());
    QCOMPARE(record.originalFileName, QString());
}

void TestWindowsOSInfo::allTextsOfAResourceAreRead()
{
    const std::string path = "C:\\full.dll";
    machine.addFile(path, 4);
    for (const char* name :
         {"Comments", "CompanyName", "FileDescription", "InternalName", "LegalCopyright",
          "LegalTrademarks", "OriginalFileName", "ProductName", "PrivateBuild", "Label"}) {
        machine.addText(path, name, std::string("the ") + name);
    }
    const FileVersionRecord record = readFileVersion(MadeUpWindows(machine), path);
    QCOMPARE(record.comments, QStringLiteral("the Comments"));
    QCOMPARE(record.companyName, QStringLiteral("the CompanyName"));
    QCOMPARE(record.fileDescription, QStringLiteral("the FileDescription"));
    QCOMPARE(record.fileVersion, QStringLiteral("1.2.3.4"));
    QCOMPARE(record.internalName, QStringLiteral("the InternalName"));
    QCOMPARE(record.legalCopyright, QStringLiteral("the LegalCopyright"));
    QCOMPARE(record.legalTrademarks, QStringLiteral("the LegalTrademarks"));
    QCOMPARE(record.originalFileName, QStringLiteral("the OriginalFileName"));
    QCOMPARE(record.productName, QStringLiteral("the ProductName"));
    QCOMPARE(record.productVersion, QStringLiteral("9.8.7.6"));
    QCOMPARE(record.privateBuild, QStringLiteral("the PrivateBuild"));
    QCOMPARE(record.specialBuild, QString()); // the resource lacks this name
    QCOMPARE(record.label, QStringLiteral("the Label"));
}

void TestWindowsOSInfo::aShortResourceIsNotReadBeyondItsEnd()
{
    machine.resources["C:\\cut.dll"]["\\"] = std::string(23, '\1');
    machine.resources["C:\\cut.dll"]["\\VarFileInfo\\Translation"] = std::string(3, '\1');
    const FileVersionRecord record = readFileVersion(MadeUpWindows(machine), "C:\\cut.dll");
    QCOMPARE(record.fileVersion, QStringLiteral("---"));
    QCOMPARE(record.comments, QString());
}

void TestWindowsOSInfo::withoutDriversEachSectionSaysSo()
{
    const QList<DriverSection> expected{
        {"Installed Kelmar VXI PnP drivers", {"No VXI driver found"}},
        {"Installed Kelmar IVI drivers", {"No IVI driver found"}},
        {"Installed Kelmar USB drivers", {"No USB driver found"}},
    };
    QCOMPARE(info().driverInformation(), expected);
}

void TestWindowsOSInfo::vxiDriversAreListedInTheOrderOfTheSystem()
{
    machine.texts[{machineRoot, frameworkKey + "FRAMEWORK_PATH"}] = "C:\\VXIpnp\\WinNT\\";
    machine.directories["C:\\VXIpnp\\WinNT\\bin\\ko*.dll"] = {"kosg_32.dll", "koan_32.dll"};
    machine.addFile("C:\\VXIpnp\\WinNT\\bin\\kosg_32.dll", 1);
    machine.addText("C:\\VXIpnp\\WinNT\\bin\\kosg_32.dll", "OriginalFileName", "KOSG.DLL");
    machine.addFile("C:\\VXIpnp\\WinNT\\bin\\koan_32.dll", 2);
    machine.addText("C:\\VXIpnp\\WinNT\\bin\\koan_32.dll", "OriginalFileName", "KOAN.DLL");
    QCOMPARE(driverLines(0),
             QStringList({"KOSG.DLL (Version 1.2.3.1)", "KOAN.DLL (Version 1.2.3.2)"}));
}

void TestWindowsOSInfo::theOlderNameOfTheFrameworkPathIsSecondChoice()
{
    machine.texts[{machineRoot, frameworkKey + "FrameworkPath"}] = "D:\\Old\\";
    machine.directories["D:\\Old\\bin\\ko*.dll"] = {"koold.dll"};
    machine.addFile("D:\\Old\\bin\\koold.dll", 3);
    QCOMPARE(driverLines(0), QStringList{" (Version 1.2.3.3)"});

    machine.texts[{machineRoot, frameworkKey + "FRAMEWORK_PATH"}] = "D:\\New\\";
    QCOMPARE(driverLines(0), QStringList{"No VXI driver found"});
}

void TestWindowsOSInfo::iviDriversLieBelowTheProgramFiles()
{
    machine.texts[{machineRoot, "SOFTWARE\\Microsoft\\Windows\\CurrentVersion|ProgramFilesDir"}] =
        "C:\\Program Files";
    machine.directories["C:\\Program Files\\IVI\\Bin\\ko*.dll"] = {"koivi.dll"};
    machine.addFile("C:\\Program Files\\IVI\\Bin\\koivi.dll", 9);
    machine.addText("C:\\Program Files\\IVI\\Bin\\koivi.dll", "OriginalFileName", "koivi.dll");
    QCOMPARE(driverLines(1), QStringList{"koivi.dll (Version 1.2.3.9)"});
}

void TestWindowsOSInfo::usbDriversHaveTheirVersionInTheSysFile()
{
    machine.directories["C:\\Windows\\INF\\ko*.inf"] = {"ko.sensor.inf"};
    machine.addFile("C:\\Windows\\SYSTEM32\\Drivers\\ko.sensor.SYS", 6);
    machine.addText("C:\\Windows\\SYSTEM32\\Drivers\\ko.sensor.SYS", "OriginalFileName",
                    "kosensor.sys");
    QCOMPARE(driverLines(2), QStringList{"kosensor.sys (Version 1.2.3.6)"});
}

void TestWindowsOSInfo::anInfFileWithoutASysFileGivesDashes()
{
    machine.directories["C:\\Windows\\INF\\ko*.inf"] = {"kousb.inf"};
    QCOMPARE(driverLines(2), QStringList{" (Version ---)"});
}

QTEST_APPLESS_MAIN(TestWindowsOSInfo)
#include "test_windows_os_info.moc"
