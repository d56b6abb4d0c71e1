// The instruments' window as an operator uses it, with a device at the other end of the line.
#include "instruments/dialogs/devices_dialog.h"

#include "kit/background_jobs.h"
#include "kit/scripted_instrument.h"
#include "kit/top_level.h"

#include <QSignalSpy>
#include <QtTest>

class TestDevicesDialog : public QObject
{
    Q_OBJECT

private slots:
    void init();
    void cleanup();

    void defaultsAreShown();
    void aChangeIsStoredAtOnce();
    void eachTabStoresIntoItsOwnInstrument_data();
    void eachTabStoresIntoItsOwnInstrument();
    void frequenciesAreShownInMegahertz();
    void whatIsNoNumberIsDropped();
    void whatIsBeingTypedSurvivesARefresh();
    void infinityIsNoCrash();
    void theFrequencyOfTheChainIsTold();
    void theInterfacePicksThePage_data();
    void theInterfacePicksThePage();
    void automaticAttenuationKeepsItsNumber();
    void automaticSweepTimeZeroesIt();
    void microwaveInputsFollowTheModel_data();
    void microwaveInputsFollowTheModel();
    void rowsThatDoNotExistLeaveTheRecordAlone();
    void portsRepeatWithEverySetup();
    void aSavedPortSurvivesTheFilling();
    void theLinkOpensTheSerialDialogOfItsTab_data();
    void theLinkOpensTheSerialDialogOfItsTab();
    void otherLinksDoNothing_data();
    void otherLinksDoNothing();
    void initConnectsAndShowsTheAnswer();
    void aFailedInitShowsWhy();
    void setAndResetNeedAConnection();
    void settingsAreSentAsTheyStandAtTheClick();
    void jobsOfOneInstrumentRunInTurn();
    void closingDuringAJobIsSafe();
    void enterInAFieldPressesNoButton();
    void okHidesIt();

private:
    void showTab(int tab) const { operate->find<QTabWidget>("tabWidget")->setCurrentIndex(tab); }
    Instrument& instrument(int tab) const
    {
        Instrument* const all[] = {&setup->generator, &setup->analyzer, &setup->microwave};
        return *all[tab];
    }
    void showPage(int tab, InterfaceKind kind) const
    {
        instrument(tab).interfaceKind = kind;
        dialog->notifyPropertyChanged();
    }
    static void addTabs()
    {
        QTest::addColumn<int>("tab");
        QTest::addColumn<QByteArray>("prefix");
        QTest::newRow("generator") << 0 << QByteArray("g_");
        QTest::newRow("analyzer") << 1 << QByteArray("a_");
        QTest::newRow("microwave") << 2 << QByteArray("m_");
    }

    std::unique_ptr<MeasurementSetup> setup;
    std::unique_ptr<DevicesDialog> dialog;
    std::unique_ptr<WindowDriver> operate;
};

void TestDevicesDialog::init()
{
    setup = std::make_unique<MeasurementSetup>();
    dialog = std::make_unique<DevicesDialog>();
    dialog->setSetup(setup.get(), {});
    dialog->show();
    QVERIFY(QTest::qWaitForWindowActive(dialog.get()));
    operate = std::make_unique<WindowDriver>(*dialog);
}

void TestDevicesDialog::cleanup()
{
    dialog.reset();
    waitForBackgroundJobs();
}

void TestDevicesDialog::defaultsAreShown()
{
    QCOMPARE(operate->text("g_interface"), QString("LAN (Socket)"));
    QCOMPARE(operate->text("g_address"), QString("127.0.0.1"));
    QCOMPARE(operate->text("g_gpib_addr"), QString("20"));
    QCOMPARE(operate->text("g_frequency"), QString("0.000000"));
    QCOMPARE(operate->text("g_level"), QString("-20.00"));
    QCOMPARE(operate->text("g_message"), QString());
    QVERIFY(!operate->isEnabled("g_message"));
    QCOMPARE(operate->text("a_span"), QString("0.100000"));
    QCOMPARE(operate->text("a_rbw"), QString("30 kHz"));
    QCOMPARE(operate->text("a_vbw"), QString("300 kHz"));
    QCOMPARE(operate->text("a_attenuation"), QString("10"));
    // The sweep time is automatic, which zeroes it as soon as the form says so.
    QCOMPARE(operate->text("a_sweeptime"), QString("0.000000"));
    QCOMPARE(operate->text("m_type"), QString("None"));
    QVERIFY(operate->isEnabled("g_init"));
    QVERIFY(operate->isEnabled("a_init"));
}

void TestDevicesDialog::aChangeIsStoredAtOnce()
{
    operate->pick("g_type", 2);
    QCOMPARE(setup->generator.device, 2U);
    operate->type("g_level", "-3.5");
    QCOMPARE(setup->generator.level, -3.5);
    operate->type("g_address", "10.0.0.8");
    QCOMPARE(setup->generator.ipAddress, QString("10.0.0.8"));
    showTab(1);
    operate->pick("a_type", 8);
    QCOMPARE(setup->analyzer.device, 8U);
    operate->type("a_span", "3.5");
    QCOMPARE(setup->analyzer.span, 3.5e6);
    operate->pick("a_rbw", 0);
    QCOMPARE(setup->analyzer.rbwCode, 0U);
    operate->pick("a_vbw", 29);
    QCOMPARE(setup->analyzer.vbwCode, 29U);
    showTab(2);
    operate->pick("m_type", 2);
    QCOMPARE(setup->microwave.device, 2U);
    operate->type("m_attenuation", "30");
    QCOMPARE(setup->microwave.attenuation, 30U);
    operate->click("m_if_input");
    QCOMPARE(setup->microwave.ifInput, false);
}

void TestDevicesDialog::eachTabStoresIntoItsOwnInstrument_data()
{
    addTabs();
}

void TestDevicesDialog::eachTabStoresIntoItsOwnInstrument()
{
    QFETCH(int, tab);
    QFETCH(QByteArray, prefix);
    dialog->setSetup(setup.get(), {"ttyS0", "ttyUSB0"});
    showTab(tab);
    operate->pick(prefix + "type", 1);
    operate->type(prefix + "frequency", "2400");
    operate->type(prefix + "level", "-3.5");
    showPage(tab, InterfaceKind::Gpib0);
    operate->type(prefix + "gpib_addr", "7");
    showPage(tab, InterfaceKind::Rs232);
    operate->pick(prefix + "port", 1);
    showPage(tab, InterfaceKind::LanSocket);
    operate->type(prefix + "address", "10.0.0.8");
    const QVariantList before = {0U, 0.0, -20.0, 20U, 0U, "127.0.0.1"};
    const QVariantList typed = {1U, 2.4e9, -3.5, 7U, 1U, "10.0.0.8"};
    for (int each = 0; each < 3; ++each) {
        const Instrument& of = instrument(each);
        const QVariantList stored = {of.device,      of.frequency, of.level,
                                     of.gpibAddress, of.rs232Port, of.ipAddress};
        QCOMPARE(stored, each == tab ? typed : before);
    }
}

void TestDevicesDialog::frequenciesAreShownInMegahertz()
{
    operate->type("g_frequency", "1000");
    QCOMPARE(setup->generator.frequency, 1e9);
    QCOMPARE(operate->text("g_frequency"), QString("1000.000000"));
    showTab(1);
    operate->type("a_frequency", "0.0000015");
    QCOMPARE(setup->analyzer.frequency, 1.5);
    QCOMPARE(operate->text("a_frequency"), QString("0.000002"));
}

void TestDevicesDialog::whatIsNoNumberIsDropped()
{
    operate->type("g_frequency", "12.5");
    operate->type("g_frequency", "abc");
    QCOMPARE(setup->generator.frequency, 12.5e6);
    QCOMPARE(operate->text("g_frequency"), QString("12.500000"));
    showTab(1);
    operate->type("a_span", "");
    QCOMPARE(setup->analyzer.span, 100000.0);
    QCOMPARE(operate->text("a_span"), QString("0.100000"));
    setup->analyzer.autoSweepTime = false;
    dialog->notifyPropertyChanged();
    operate->type("a_sweeptime", "1,5");
    QCOMPARE(setup->analyzer.sweepTime, 0.0);
    operate->type("a_sweeptime", "1.5");
    QCOMPARE(setup->analyzer.sweepTime, 1.5);
}

// As the end of a job brings one.
void TestDevicesDialog::whatIsBeingTypedSurvivesARefresh()
{
    auto* frequency = operate->find<QLineEdit>("g_frequency");
    frequency->setFocus();
    frequency->selectAll();
    QTest::keyClicks(frequency, "24");
    dialog->notifyPropertyChanged();
    QCOMPARE(frequency->text(), QString("24"));
    QTest::keyClicks(frequency, "00");
    QTest::keyClick(frequency, Qt::Key_Return);
    QCOMPARE(setup->generator.frequency, 2.4e9);
    QCOMPARE(frequency->text(), QString("2400.000000"));
    // Another record's value comes all the same.
    QTest::keyClicks(frequency, "7");
    MeasurementSetup other;
    dialog->setSetup(&other, {});
    QCOMPARE(frequency->text(), QString("0.000000"));
    dialog->setSetup(setup.get(), {});
}

void TestDevicesDialog::infinityIsNoCrash()
{
    operate->type("g_frequency", "1e400");
    operate->type("g_frequency", "nan");
    operate->type("g_frequency", "7");
    QCOMPARE(operate->text("g_frequency"), QString("7.000000"));
}

void TestDevicesDialog::theFrequencyOfTheChainIsTold()
{
    QSignalSpy told(dialog.get(), &DevicesDialog::generatorFrequencyChanged);
    operate->type("g_frequency", "100");
    QCOMPARE(told.count(), 1);
    operate->find<QWidget>("ok_button")->setFocus(); // leaving the field finishes it once more
    told.clear();
    operate->type("g_level", "1");
    showTab(1);
    operate->type("a_frequency", "100");
    QCOMPARE(told.count(), 0);
    showTab(2);
    operate->pick("m_type", 1);
    QCOMPARE(told.count(), 1);
    operate->type("m_frequency", "9000");
    QCOMPARE(told.count(), 2);
}

void TestDevicesDialog::theInterfacePicksThePage_data()
{
    QTest::addColumn<int>("row");
    QTest::addColumn<int>("page");
    QTest::newRow("GPIB0") << 0 << 0;
    QTest::newRow("GPIB1") << 1 << 0;
    QTest::newRow("TLNK") << 2 << 1;
    QTest::newRow("VXI-11") << 3 << 1;
    QTest::newRow("Socket") << 4 << 1;
    QTest::newRow("HiSLIP") << 5 << 1;
    QTest::newRow("RS232") << 6 << 2;
    QTest::newRow("unknown") << 7 << 0;
}

void TestDevicesDialog::theInterfacePicksThePage()
{
    QFETCH(int, row);
    setup->analyzer.interfaceKind = static_cast<InterfaceKind>(row);
    dialog->notifyPropertyChanged();
    QTEST(operate->find<QStackedWidget>("a_stacked_widget")->currentIndex(), "page");
    QCOMPARE(static_cast<int>(setup->analyzer.interfaceKind), row);
}

void TestDevicesDialog::automaticAttenuationKeepsItsNumber()
{
    showTab(1);
    QVERIFY(!operate->isEnabled("a_attenuation"));
    operate->click("a_atten_auto");
    QVERIFY(operate->isEnabled("a_attenuation"));
    operate->type("a_attenuation", "25");
    operate->click("a_atten_auto");
    QVERIFY(!operate->isEnabled("a_attenuation"));
    QCOMPARE(operate->text("a_attenuation"), QString("25"));
    QCOMPARE(setup->analyzer.attenuation, 25U);
}

void TestDevicesDialog::automaticSweepTimeZeroesIt()
{
    showTab(1);
    operate->click("a_swt_auto");
    QVERIFY(operate->isEnabled("a_sweeptime"));
    operate->type("a_sweeptime", "0.5");
    operate->click("a_swt_auto");
    QCOMPARE(operate->text("a_sweeptime"), QString("0.000000"));
    QVERIFY(!operate->isEnabled("a_sweeptime"));
    QCOMPARE(setup->analyzer.sweepTime, 0.0);
}

void TestDevicesDialog::microwaveInputsFollowTheModel_data()
{
    QTest::addColumn<int>("row");
    QTest::addColumn<bool>("ifInput");
    QTest::addColumn<bool>("init");
    QTest::addColumn<bool>("level");
    QTest::addColumn<bool>("ifBox");
    QTest::addColumn<bool>("attenuation");
    QTest::newRow("None") << 0 << true << false << true << false << false;
    QTest::newRow("TAU") << 1 << true << true << true << false << false;
    QTest::newRow("ZUB, IF input") << 2 << true << true << false << true << true;
    QTest::newRow("ZUB, no IF input") << 2 << false << true << true << true << false;
}

void TestDevicesDialog::microwaveInputsFollowTheModel()
{
    QFETCH(int, row);
    QFETCH(bool, ifInput);
    showTab(2);
    setup->microwave.ifInput = ifInput;
    operate->pick("m_type", row);
    QTEST(operate->isEnabled("m_init"), "init");
    QTEST(operate->isEnabled("m_level"), "level");
    QTEST(operate->isEnabled("m_if_input"), "ifBox");
    QTEST(operate->isEnabled("m_attenuation"), "attenuation");
}

void TestDevicesDialog::rowsThatDoNotExistLeaveTheRecordAlone()
{
    setup->generator.device = 99;
    setup->analyzer.rbwCode = 77;
    setup->analyzer.interfaceKind = static_cast<InterfaceKind>(12);
    dialog->notifyPropertyChanged();
    QCOMPARE(setup->generator.device, 99U);
    QCOMPARE(setup->analyzer.rbwCode, 77U);
    QCOMPARE(static_cast<int>(setup->analyzer.interfaceKind), 12);
}

void TestDevicesDialog::portsRepeatWithEverySetup()
{
    const QStringList ports = {"ttyS0", "ttyUSB0"};
    dialog->setSetup(setup.get(), ports);
    dialog->setSetup(setup.get(), ports);
    dialog->setSetup(setup.get(), ports);
    for (const char* name : {"g_port", "a_port", "m_port"}) {
        const auto* box = operate->find<QComboBox>(name);
        QCOMPARE(box->count(), 6);
        QCOMPARE(box->itemText(1), QString("ttyUSB0"));
        QCOMPARE(box->itemText(4), QString("ttyS0"));
    }
}

void TestDevicesDialog::aSavedPortSurvivesTheFilling()
{
    setup->generator.rs232Port = 1;
    setup->analyzer.rs232Port = 7; // not there today
    setup->generator.interfaceKind = InterfaceKind::Rs232;
    dialog->setSetup(setup.get(), {"ttyS0", "ttyUSB0"});
    QCOMPARE(setup->generator.rs232Port, 1U);
    QCOMPARE(operate->text("g_port"), QString("ttyUSB0"));
    QCOMPARE(setup->analyzer.rs232Port, 7U);
    operate->pick("g_port", 0);
    QCOMPARE(setup->generator.rs232Port, 0U);
}

void TestDevicesDialog::theLinkOpensTheSerialDialogOfItsTab_data()
{
    addTabs();
}

void TestDevicesDialog::theLinkOpensTheSerialDialogOfItsTab()
{
    QFETCH(int, tab);
    QFETCH(QByteArray, prefix);
    showTab(tab);
    showPage(tab, InterfaceKind::Rs232);
    auto* link = operate->find<QLabel>(prefix + "rs232configure");
    QCOMPARE(link->text(), "<a href=\"#" + QString(prefix) + "rs232configure\">configure</a>");
    QTest::mouseClick(link, Qt::LeftButton, Qt::NoModifier, QPoint(10, link->height() / 2));
    QWidget* serial = shownWindow("RS232 Configuration");
    QVERIFY(serial != nullptr);
    const WindowDriver other(*serial);
    other.pick("parity", 1);
    for (int each = 0; each < 3; ++each) {
        QCOMPARE(instrument(each).rs232Parity, each == tab ? 2 : 0);
    }
    serial->close();
}

void TestDevicesDialog::otherLinksDoNothing_data()
{
    addTabs();
}

void TestDevicesDialog::otherLinksDoNothing()
{
    QFETCH(int, tab);
    QFETCH(QByteArray, prefix);
    auto* link = operate->find<QLabel>(prefix + "rs232configure");
    const QStringList links = {"#g_rs232configure", "#a_rs232configure", "#m_rs232configure"};
    for (int other = 0; other < 3; ++other) {
        if (other != tab) {
            emit link->linkActivated(links.at(other));
            QVERIFY(shownWindow("RS232 Configuration") == nullptr);
        }
    }
}

void TestDevicesDialog::initConnectsAndShowsTheAnswer()
{
    ScriptedInstrument device;
    device.answer("*IDN?", {{200, "ACME,42\n"}});
    operate->click("g_init");
    QCOMPARE(operate->text("g_message"), QString("pending..."));
    QCOMPARE(setup->generator.deviceMessage(), QString());
    QTRY_COMPARE(operate->text("g_message"), QString("ACME,42"));
    QVERIFY(operate->isEnabled("g_set"));
    QVERIFY(operate->isEnabled("g_reset"));
    QVERIFY(!operate->isEnabled("a_set"));
    QVERIFY(setup->generator.initialized());
}

void TestDevicesDialog::aFailedInitShowsWhy()
{
    operate->type("g_address", "127.0.0.9");
    operate->click("g_init");
    QTRY_COMPARE(operate->text("g_message"), QString("Unable to connect to Host: 127.0.0.9"));
    QVERIFY(!operate->isEnabled("g_set"));
    QVERIFY(!operate->isEnabled("g_reset"));
    QVERIFY(operate->isEnabled("g_init"));
}

void TestDevicesDialog::setAndResetNeedAConnection()
{
    ScriptedInstrument device;
    device.answer("*IDN?", "ACME,42\n");
    showTab(1);
    QVERIFY(!operate->isEnabled("a_set"));
    operate->click("a_init");
    QTRY_VERIFY(operate->isEnabled("a_set"));
    device.takeReceivedUpTo("&GTL\n");
    operate->click("a_reset");
    QCOMPARE(device.takeReceivedUpTo("&GTL\n"), QByteArray("*RST\n&GTL\n"));
    operate->click("a_set");
    QVERIFY(device.takeReceivedUpTo("*IDN?\n&GTL\n").startsWith("FREQ:CENT"));
    QTRY_COMPARE(operate->text("a_message"), QString("ACME,42"));
}

void TestDevicesDialog::settingsAreSentAsTheyStandAtTheClick()
{
    ScriptedInstrument device;
    device.answer("*IDN?", "ACME,42\n");
    operate->click("g_init");
    QTRY_VERIFY(operate->isEnabled("g_set"));
    device.takeReceivedUpTo("&GTL\n");
    operate->type("g_frequency", "2400");
    operate->type("g_level", "-7");
    operate->click("g_set");
    const QByteArray sent = device.takeReceivedUpTo("*IDN?\n&GTL\n");
    QVERIFY2(sent.contains("FREQ 2400000000.000000\nPOW -7.000000\n"), sent.constData());
}

void TestDevicesDialog::jobsOfOneInstrumentRunInTurn()
{
    ScriptedInstrument device;
    device.answer("*IDN?", {{150, "ACME,42\n"}});
    operate->click("g_init");
    operate->click("g_init");
    operate->click("g_init");
    QTRY_COMPARE(device.connectionCount(), 3);
    QTRY_COMPARE(operate->text("g_message"), QString("ACME,42"));
    QTRY_COMPARE(device.openConnections(), 1);
}

void TestDevicesDialog::closingDuringAJobIsSafe()
{
    ScriptedInstrument device;
    device.answer("*IDN?", {{300, "ACME,42\n"}});
    operate->click("g_init");
    QTRY_COMPARE(device.connectionCount(), 1);
    dialog.reset();
    setup.reset();
    waitForBackgroundJobs();
    QTRY_COMPARE(device.openConnections(), 0);
}

void TestDevicesDialog::enterInAFieldPressesNoButton()
{
    operate->type("g_frequency", "100");
    QVERIFY(dialog->isVisible());
    QCOMPARE(operate->text("g_message"), QString());
}

void TestDevicesDialog::okHidesIt()
{
    operate->click("ok_button");
    QVERIFY(!dialog->isVisible());
}

QTEST_MAIN(TestDevicesDialog)
#include "test_devices_dialog.moc"
