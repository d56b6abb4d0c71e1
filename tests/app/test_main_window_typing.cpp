// What is typed into the inputs of the window stays as it is typed, whatever happens meanwhile.
#include "kit/file_content.h"
#include "kit/main_window_test.h"

#include <QTemporaryDir>

class TestMainWindowTyping : public MainWindowTest
{
    Q_OBJECT

private slots:
    void init() { openWindow(); }
    void cleanup() { closeWindow(); }
    void aRatioIsStoredWhileOneTypes();
    void theNextDigitReplacesWhatTheRewritingAdded();
    void digitsOfARatioCanBeTakenBack();
    void textThatIsNoValueYetSurvivesARefresh_data();
    void textThatIsNoValueYetSurvivesARefresh();
    void aLoadedValueReplacesWhatIsTyped();

private:
    QLineEdit* startTyping(const char* name, const QString& text);
};

QLineEdit* TestMainWindowTyping::startTyping(const char* name, const QString& text)
{
    auto* box = operate->find<QAbstractSpinBox>(name);
    box->setFocus();
    box->selectAll();
    QTest::keyClicks(box, text);
    return box->findChild<QLineEdit*>();
}

void TestMainWindowTyping::aRatioIsStoredWhileOneTypes()
{
    startTyping("nbw_srate_input", "0.5");
    QCOMPARE(operate->text("nbw_srate_input"), QStringLiteral("0.500000"));
    QCOMPARE(operate->text("noise_bw_output"), QStringLiteral("50.000000"));
}

void TestMainWindowTyping::theNextDigitReplacesWhatTheRewritingAdded()
{
    QLineEdit* edit = startTyping("nbw_srate_input", "0.2");
    QCOMPARE(edit->selectedText(), QStringLiteral("00000"));
    QTest::keyClicks(edit, "5");
    QCOMPARE(edit->text(), QStringLiteral("0.250000"));
    QTest::keyClick(edit, Qt::Key_Return);
    QCOMPARE(operate->text("nbw_srate_input"), QStringLiteral("0.250000"));
    QCOMPARE(operate->text("noise_bw_output"), QStringLiteral("25.000000"));
}

void TestMainWindowTyping::digitsOfARatioCanBeTakenBack()
{
    QLineEdit* edit = startTyping("nbw_srate_input", "0.2");
    QTest::keyClick(edit, Qt::Key_Backspace);
    QTest::keyClick(edit, Qt::Key_Backspace);
    QCOMPARE(edit->text(), QStringLiteral("0."));
    QTest::keyClicks(edit, "75");
    QTest::keyClick(edit, Qt::Key_Return);
    QCOMPARE(operate->text("nbw_srate_input"), QStringLiteral("0.750000"));
}

void TestMainWindowTyping::textThatIsNoValueYetSurvivesARefresh_data()
{
    QTest::addColumn<QString>("typed");
    QTest::newRow("nbw_srate_input") << "0.";
    QTest::newRow("sample_rate_input") << "12.";
    QTest::newRow("notch_width_input") << "0.";
    QTest::newRow("notch_offset_input") << "-";
    QTest::newRow("notch_depth_input") << "-";
    QTest::newRow("notch_count_input") << "";
    QTest::newRow("seed_input") << "";
}

void TestMainWindowTyping::textThatIsNoValueYetSurvivesARefresh()
{
    QFETCH(QString, typed);
    QLineEdit* edit = startTyping(QTest::currentDataTag(), typed);
    if (typed.isEmpty()) {
        QTest::keyClick(edit, Qt::Key_Backspace);
    }
    window->notifyPropertyChanged(); // as a client that comes or a calculation that ends brings it
    QCOMPARE(edit->text(), typed);
    QCOMPARE(edit->cursorPosition(), typed.size());
}

void TestMainWindowTyping::aLoadedValueReplacesWhatIsTyped()
{
    startTyping("nbw_srate_input", "0.");
    QTemporaryDir folder;
    const QString path = folder.filePath("a.cfg");
    putContent(path, "[NPR]\nNBW/SRate = 0.5\n");
    operate->answerFileDialog(path);
    operate->trigger("actionLoad_Cfg_File");
    QCOMPARE(operate->text("nbw_srate_input"), QStringLiteral("0.500000"));
}

QTEST_MAIN(TestMainWindowTyping)
#include "test_main_window_typing.moc"
