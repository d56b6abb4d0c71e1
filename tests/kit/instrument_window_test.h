#pragma once

#include "kit/background_jobs.h"
#include "kit/bench_instrument.h"
#include "kit/bench_words.h"
#include "kit/conversations.h"
#include "kit/main_window_test.h"
#include "kit/message_boxes.h"
#include "kit/top_level.h"

// What tests of the window with instruments share: an analyzer at 127.0.0.1 and a signal generator
// at 127.0.0.2, the window with three notches that knows where they are, and the steps of an
// operator.
class InstrumentWindowTest : public MainWindowTest
{
protected:
    using Second = BenchInstrument::Second;

    void openBench(Second second = Second::IsServed)
    {
        analyzer = newAnalyzer("127.0.0.1", "AN,1\n", second);
        generator = std::make_unique<BenchInstrument>("127.0.0.2", second);
        generator->answer("*IDN?", "GEN,2\n");
        QVERIFY(analyzer->isListening() && generator->isListening());
        openWindow();
        typeText("g_address", "127.0.0.2");
        makeNotches();
    }

    void closeBench()
    {
        if (analyzer) {
            analyzer->release();
            generator->release();
        }
        closeWindow();
        waitForBackgroundJobs();
        analyzer.reset();
        generator.reset();
    }

    static std::unique_ptr<BenchInstrument>
    newAnalyzer(const QString& address, const QByteArray& name, Second second = Second::IsServed)
    {
        auto made = std::make_unique<BenchInstrument>(address, second);
        made->answer("*IDN?", name);
        made->answer(acpQuery, "-10.126,-0.5,-43.75\n");
        return made;
    }

    // The devices dialog with the tab that has the object.
    WindowDriver devicesAt(const char* name) const
    {
        return openDevices(*operate, QByteArray("gam").indexOf(*name));
    }

    void click(const char* name) const { devicesAt(name).click(name); }
    QString messageOf(const char* name) const { return devicesAt(name).text(name); }

    void typeText(const char* name, const QString& text) const { devicesAt(name).type(name, text); }

    // One tuning; a number typed in and left with Enter would tune twice.
    void pickNextNotch() const
    {
        QTest::keyClick(operate->find<QSpinBox>("measure_notch"), Qt::Key_Up);
    }

    // Brings what the links know to the screen, as any change of a setting does.
    void refreshDevices() const
    {
        click("a_atten_auto");
        click("a_atten_auto");
    }

    void makeNotches() const
    {
        operate->type("notch_count_input", "3");
        operate->type("notch_width_input", "1");
        operate->type("notch_offset_input", "10");
        operate->click("autocalc_notches_button");
        QCOMPARE(operate->rowCount(), 3);
    }

    void initAnalyzer() const
    {
        const int before = countWith(*analyzer, "init");
        click("a_init");
        QTRY_COMPARE(messageOf("a_message"), QString("AN,1"));
        QTRY_COMPARE(countWith(*analyzer, "init"), before + 1);
    }

    // The whole chain, once.
    void preset() const
    {
        const int before = countWith(*analyzer, "channel power");
        operate->click("preset_button");
        QTRY_COMPARE(countWith(*analyzer, "channel power"), before + 1);
        QVERIFY(backgroundJobsEnd(10000));
    }

    std::unique_ptr<BenchInstrument> analyzer;
    std::unique_ptr<BenchInstrument> generator;
};
