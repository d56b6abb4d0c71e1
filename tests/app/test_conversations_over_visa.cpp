// The window with two instruments behind a VISA library, which is called from several threads.
#include "kit/background_jobs.h"
#include "kit/bench_words.h"
#include "kit/main_window_test.h"
#include "kit/message_boxes.h"
#include "kit/stand_in_visa.h"
#include "kit/top_level.h"

#include <QTemporaryDir>

class TestConversationsOverVisa : public MainWindowTest
{
    Q_OBJECT

private slots:
    void init();
    void cleanup();

    void aPickDuringAPresetGoesOverTheOpenSession_data();
    void aPickDuringAPresetGoesOverTheOpenSession();
    void repeatedInitsAndPresetsCloseWhatTheyReplace();
    void aLoadDuringAnInitSeesNothingOfItsEnd();
    void aReadingWhoseInstrumentWasReplacedIsNotShown_data();
    void aReadingWhoseInstrumentWasReplacedIsNotShown();

private:
    WindowDriver devicesAt(const char* widget) const;
    void overVisa(const char* interface, const char* address, const QString& ip) const;
    void pickNextNotch() const;
    void load() const;
    bool hasCalled(const QByteArray& text);

    std::unique_ptr<StandIn> visa;
    QByteArray calls; // everything so far
    QTemporaryDir folder;
};

namespace {

constexpr char analyzerResource[] = "TCPIP::127.0.0.1::INSTR";
constexpr char generatorResource[] = "TCPIP::127.0.0.2::INSTR";
constexpr int vxiRow = 3;
constexpr char toLocal[] = "&GTL;@LOC;*OPC?\n";

const QByteArray acpLine = acpQuery + '\n';
const QString name = "ACME,42\n"; // over VISA the line end of an answer stays

QByteArray writeOf(int session, const char* text)
{
    return "viWrite(" + QByteArray::number(session) + ", " + text;
}

} // namespace

void TestConversationsOverVisa::init()
{
    visa = std::make_unique<StandIn>();
    calls.clear();
    visa->tellSessionsApart();
    visa->answer("*IDN?\n", name.toLatin1());
    visa->answer(acpLine.constData(), "-10.126,-0.5,-43.75\n");
    openWindow();
    overVisa("g_interface", "g_address", "127.0.0.2");
    overVisa("a_interface", "a_address", "127.0.0.1");
    operate->type("notch_count_input", "3");
    operate->type("notch_width_input", "1");
    operate->type("notch_offset_input", "10");
    operate->click("autocalc_notches_button");
    const QString file = folder.filePath("a.cfg");
    QFile::remove(file);
    operate->answerFileDialog(file);
    operate->trigger("actionSave_Cfg_File");
}

void TestConversationsOverVisa::cleanup()
{
    visa->release();
    closeWindow();
    waitForBackgroundJobs();
}

WindowDriver TestConversationsOverVisa::devicesAt(const char* widget) const
{
    return openDevices(*operate, *widget == 'g' ? 0 : 1);
}

void TestConversationsOverVisa::overVisa(const char* interface, const char* address,
                                         const QString& ip) const
{
    const WindowDriver devices = devicesAt(interface);
    devices.find<QComboBox>(interface)->setCurrentIndex(vxiRow);
    devices.type(address, ip);
}

void TestConversationsOverVisa::pickNextNotch() const
{
    QTest::keyClick(operate->find<QSpinBox>("measure_notch"), Qt::Key_Up);
}

void TestConversationsOverVisa::load() const
{
    operate->answerFileDialog(folder.filePath("a.cfg"));
    operate->trigger("actionLoad_Cfg_File");
}

bool TestConversationsOverVisa::hasCalled(const QByteArray& text)
{
    calls += visa->log();
    return calls.contains(text);
}

void TestConversationsOverVisa::aPickDuringAPresetGoesOverTheOpenSession_data()
{
    QTest::addColumn<bool>("repeated");
    QTest::addColumn<int>("session");
    QTest::newRow("the first") << false << 42;
    QTest::newRow("a repeated one") << true << 44; // the first has opened 42 and 43
}

void TestConversationsOverVisa::aPickDuringAPresetGoesOverTheOpenSession()
{
    QFETCH(bool, repeated);
    QFETCH(int, session);
    const MessageBoxes boxes;
    if (repeated) {
        operate->click("preset_button");
        QVERIFY(backgroundJobsEnd(10000));
    }
    visa->hold(generatorResource, "*IDN?\n");
    operate->click("preset_button");
    QTRY_VERIFY(hasCalled(writeOf(session + 1, "*IDN?\n")));
    pickNextNotch();
    QVERIFY(hasCalled(writeOf(session, "POW:ACH:SPAC ")));
    operate->click("measure_button");
    QTRY_COMPARE(operate->text("signal_power"), QString("-10.13"));
    visa->release();
    QVERIFY(backgroundJobsEnd(10000));
    QCOMPARE(boxes.texts, QStringList());
    QCOMPARE(operate->text("measure_notch"), QString("1"));
}

void TestConversationsOverVisa::repeatedInitsAndPresetsCloseWhatTheyReplace()
{
    devicesAt("a").click("a_init");
    operate->click("preset_button");
    devicesAt("a").click("a_init");
    operate->click("preset_button");
    QVERIFY(backgroundJobsEnd(10000));
    QTRY_COMPARE(devicesAt("a").text("a_message"), name);
    QVERIFY(devicesAt("a").isEnabled("a_set"));
    hasCalled({});
    const QByteArray open = "viOpen(7, ";
    QCOMPARE(calls.count(open + analyzerResource), 4);
    QCOMPARE(calls.count(open + generatorResource), 2);
    QCOMPARE(calls.count("viClose("), 4); // all but the last of each
}

void TestConversationsOverVisa::aLoadDuringAnInitSeesNothingOfItsEnd()
{
    visa->hold(analyzerResource, "*IDN?\n");
    devicesAt("a").click("a_init");
    QTRY_VERIFY(hasCalled(writeOf(42, "*IDN?\n")));
    load();
    QCOMPARE(devicesAt("a").text("a_message"), QString());
    QVERIFY(!hasCalled(writeOf(42, toLocal)));
    visa->release();
    QVERIFY(backgroundJobsEnd(10000));
    QVERIFY(hasCalled(writeOf(42, toLocal)));
    QCOMPARE(devicesAt("a").text("a_message"), QString());
    QVERIFY(!devicesAt("a").isEnabled("a_set"));
    devicesAt("a").click("a_init");
    QTRY_COMPARE(devicesAt("a").text("a_message"), name);
    QVERIFY(hasCalled(writeOf(43, toLocal)));
    QVERIFY(!hasCalled("viClose(")); // the former session stays open
}

void TestConversationsOverVisa::aReadingWhoseInstrumentWasReplacedIsNotShown_data()
{
    QTest::addColumn<QByteArray>("waitsFor");
    QTest::newRow("before it came") << acpLine;
    QTest::newRow("while the panel is handed back") << QByteArray(toLocal);
}

void TestConversationsOverVisa::aReadingWhoseInstrumentWasReplacedIsNotShown()
{
    QFETCH(QByteArray, waitsFor);
    devicesAt("a").click("a_init");
    QVERIFY(backgroundJobsEnd(10000));
    pickNextNotch();
    hasCalled({});
    const QByteArray awaited = writeOf(42, waitsFor);
    const int before = calls.count(awaited);
    const QString shown = operate->text("signal_power");
    visa->hold(analyzerResource, waitsFor);
    operate->click("measure_button");
    QTRY_VERIFY(hasCalled(awaited) && calls.count(awaited) > before);
    load();
    visa->release();
    QVERIFY(backgroundJobsEnd(10000));
    QCOMPARE(operate->text("signal_power"), shown);
}

QTEST_MAIN(TestConversationsOverVisa)
#include "test_conversations_over_visa.moc"
