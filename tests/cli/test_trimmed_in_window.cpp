// What "trim" writes is what the window loads: the same crest factor, with the notches that it was
// trimmed with and without any.
#include "cli/cli_process.h"
#include "kit/main_window_test.h"

class TestTrimmedInWindow : public MainWindowTest
{
    Q_OBJECT

private slots:
    void init() { openWindow(); }
    void cleanup() { closeWindow(); }
    void loadedSpectrumHasTheCrestFactor_data();
    void loadedSpectrumHasTheCrestFactor();
};

void TestTrimmedInWindow::loadedSpectrumHasTheCrestFactor_data()
{
    QTest::addColumn<bool>("withNotches");
    QTest::newRow("with the notches") << true;
    QTest::newRow("without") << false;
}

void TestTrimmedInWindow::loadedSpectrumHasTheCrestFactor()
{
    QFETCH(bool, withNotches);
    CliProcess cli;
    const CliRun trim = cli.run({"trim", "default", "--notches", "9,1e6,-100,0", "--set",
                                 "NPR/NBW/SRate=0.8", "--target", "9", "--out", "t.pmc"});
    QCOMPARE(trim.status, 0);
    const double told =
        QRegularExpression("crest factor +(\\S+)").match(trim.out).captured(1).toDouble();
    QVERIFY2(told > 8.8 && told <= 9.0, qPrintable(trim.out));

    if (withNotches) {
        operate->type("nbw_srate_input", "0.8");
        operate->type("notch_count_input", "9");
        operate->type("notch_width_input", "1");
        operate->type("notch_offset_input", "0");
        operate->click("autocalc_notches_button");
        QCOMPARE(operate->rowCount(), 9);
    }
    operate->click("mp_load_ratio_button");
    operate->answerFileDialog(cli.path("t.pmc"));
    operate->click("le_custom_file_button");
    calculate();
    const QString shown = operate->text("crest_factor_output");
    // Lines below the band and in the notches, 100 dB down, are cut twice.
    QVERIFY2(std::abs(shown.section(' ', 0, 0).toDouble() - told) < 0.001, qPrintable(shown));
}

QTEST_MAIN(TestTrimmedInWindow)
#include "test_trimmed_in_window.moc"
