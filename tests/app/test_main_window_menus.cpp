// The menus: configurations, waveforms, signal files and help, through real file dialogs.
#include "kit/file_content.h"
#include "kit/main_window_test.h"
#include "kit/warning_count.h"
#include "support/dialogs/about_window.h"

#include <QPointer>
#include <QTemporaryDir>

#include <cmath>

namespace {

// Where the program looks for the manual: beside itself, as an installation places it.
QString installedManual()
{
    return QCoreApplication::applicationDirPath() + "/../share/notchbench/manual";
}

// A file of 64 samples: words around the zero of 8192, no bin of their spectrum zero.
QByteArray sampleWords()
{
    QByteArray words;
    for (int i = 0; i < 64; ++i) {
        const int word = 8192 + 100 * i * i % 5000;
        words.append(static_cast<char>(word & 0xFF)).append(static_cast<char>(word >> 8));
    }
    return words;
}

// The manual's folder, for as long as this lives.
struct InstalledManual
{
    InstalledManual() { QDir().mkpath(installedManual()); }
    ~InstalledManual() { QDir().rmpath(installedManual()); }
    Q_DISABLE_COPY_MOVE(InstalledManual)
};

} // namespace

class TestMainWindowMenus : public MainWindowTest
{
    Q_OBJECT

private slots:
    void init();
    void cleanup();
    void savedConfigurationLoadsAgain();
    void cancelledDialogsKeepEverything();
    void fileDialogsStartWhereTheirKindDoes_data();
    void fileDialogsStartWhereTheirKindDoes();
    void missingConfigurationGivesDefaults();
    void loadingForgetsTheSignal();
    void typedCellsWorkAfterALoad();
    void aLoadedGeneratorMeetsTheNewTable();
    void waveformIsSavedInThreeForms();
    void waveformOfAnotherEndingIsNotSaved();
    void magnitudePhaseFileIsPickedAndUsed();
    void sampleFilesArePickedAndUsed();
    void aPickedFileInvalidatesAndACancelledPickDoesNot_data();
    void aPickedFileInvalidatesAndACancelledPickDoesNot();
    void theSweepDialogBlocksTheWindowAndUsesItsSettings();
    void helpStartsTheViewerWithTheCollection();
    void helpShowsTheInstalledManual();
    void anOwnCollectionGoesBeforeTheInstalledManual();
    void helpWithoutAViewerDoesNothingVisible();
    void aboutOpensAWindowOfItsOwn();
    void quitClosesTheWindow();

private:
    void writeFile(const QString& name, const QByteArray& bytes);
    QByteArray readFile(const QString& name);
    QByteArray askForHelp();

    std::unique_ptr<QTemporaryDir> folder;
};

void TestMainWindowMenus::init()
{
    folder = std::make_unique<QTemporaryDir>();
    openWindow();
}

void TestMainWindowMenus::cleanup()
{
    closeWindow();
    folder.reset();
}

void TestMainWindowMenus::writeFile(const QString& name, const QByteArray& bytes)
{
    putContent(folder->filePath(name), bytes);
}

QByteArray TestMainWindowMenus::readFile(const QString& name)
{
    return contentOf(folder->filePath(name));
}

void TestMainWindowMenus::savedConfigurationLoadsAgain()
{
    operate->type("sample_rate_input", "61.44");
    operate->type("notch_count_input", "3");
    operate->type("notch_offset_input", "0");
    operate->click("autocalc_notches_button");
    operate->answerFileDialog(folder->filePath("a.cfg"));
    operate->trigger("actionSave_Cfg_File");
    QVERIFY(readFile("a.cfg").contains("SRate = 6.144e+07\n"));

    operate->type("sample_rate_input", "10");
    operate->pick("nc_combobox", 1);
    operate->answerFileDialog(folder->filePath("a.cfg"));
    operate->trigger("actionLoad_Cfg_File");
    QCOMPARE(operate->text("sample_rate_input"), QStringLiteral("61.440000"));
    QCOMPARE(operate->text("nc_combobox"), QStringLiteral("Notch"));
    QCOMPARE(operate->rowCount(), 3);
    QCOMPARE(operate->text("notch_count_input"), QStringLiteral("3"));
}

void TestMainWindowMenus::cancelledDialogsKeepEverything()
{
    operate->type("sample_rate_input", "61.44");
    operate->type("notch_count_input", "3");
    operate->click("autocalc_notches_button");
    const int rows = operate->rowCount();
    for (const char* action : {"actionLoad_Cfg_File", "actionSave_Cfg_File", "actionLoad_SAN_Mag",
                               "actionSave_Waveform"}) {
        window->findChild<QAction*>(action)->setEnabled(true);
        operate->answerFileDialog(QString());
        operate->trigger(action);
    }
    QCOMPARE(operate->text("sample_rate_input"), QStringLiteral("61.440000"));
    QCOMPARE(operate->rowCount(), rows);
}

void TestMainWindowMenus::fileDialogsStartWhereTheirKindDoes_data()
{
    QTest::addColumn<QByteArray>("source"); // the button that brings the field up
    QTest::addColumn<QByteArray>("button"); // or action
    QTest::addColumn<QString>("title");
    QTest::addColumn<QStringList>("filters");
    QTest::addColumn<QString>("selected");
    const auto row = [](const char* source, const char* button, const char* title,
                        const QStringList& filters) {
        QTest::newRow(title) << QByteArray(source) << QByteArray(button) << QString(title)
                             << filters << filters.last();
    };
    row("", "actionLoad_Cfg_File", "Load Cfg File", {"Config File (*.cfg)"});
    row("", "actionSave_Cfg_File", "Save Cfg File", {"Config File (*.cfg)"});
    row("", "actionLoad_SAN_Mag", "Load SAN Mag", {"Text File(*.txt)"});
    row("", "actionSave_Waveform", "Save Waveform",
        {"I/Q Files (*.i;*.q)", "Wave Files (*.i.wav;*.q.wav)", "Kelmar WV File (*.wv)"});
    row("mp_load_ratio_button", "le_custom_file_button", "Load Magnitue / Phase File",
        {"Magnitude/Phase File (*.pmc)"});
    row("iq_load_ratio_button", "i_file_button", "Load I File", {"WAV File (*.wav)"});
    row("iq_load_ratio_button", "q_file_button", "Load Q File", {"WAV File (*.wav)"});
}

// Those of the menu in the present folder, those of the fields in the home.
void TestMainWindowMenus::fileDialogsStartWhereTheirKindDoes()
{
    QFETCH(QByteArray, source);
    QFETCH(QByteArray, button);
    operate->pick("fft_length_input", 16);
    calculate();
    QVERIFY(QDir::setCurrent(folder->path()));
    WindowDriver::FileDialogLook look;
    operate->answerFileDialog(QString(), &look);
    if (source.isEmpty()) {
        operate->trigger(button);
    } else {
        operate->click(source);
        operate->click(button);
    }
    QCOMPARE(QDir(look.folder), source.isEmpty() ? QDir::current() : QDir::home());
    QTEST(look.title, "title");
    QTEST(look.filters, "filters");
    QTEST(look.selectedFilter, "selected");
}

void TestMainWindowMenus::missingConfigurationGivesDefaults()
{
    operate->type("sample_rate_input", "61.44");
    writeFile("empty.cfg", "no section at all\n");
    operate->answerFileDialog(folder->filePath("empty.cfg"));
    operate->trigger("actionLoad_Cfg_File");
    QCOMPARE(operate->text("sample_rate_input"), QStringLiteral("100.000000"));
    QCOMPARE(operate->text("fft_status_label"), QStringLiteral("Data invalid"));
}

void TestMainWindowMenus::loadingForgetsTheSignal()
{
    operate->pick("fft_length_input", 16);
    operate->click("calc_fft_button");
    QTRY_COMPARE(operate->text("fft_status_label"), QStringLiteral("Data valid"));
    QVERIFY(operate->text("crest_factor_output") != QLatin1String("---"));
    writeFile("empty.cfg", "");
    operate->answerFileDialog(folder->filePath("empty.cfg"));
    operate->trigger("actionLoad_Cfg_File");
    QCOMPARE(operate->text("crest_factor_output"), QStringLiteral("---"));
    QCOMPARE(operate->text("fft_status_label"), QStringLiteral("Data invalid"));
}

void TestMainWindowMenus::typedCellsWorkAfterALoad()
{
    writeFile("one.cfg", "[Notch 1]\nfcenter = 0\nfspan = 1e+07\nStart = -10\nStop = 10\n"
                         "Notch Depth = -40\n\n");
    operate->answerFileDialog(folder->filePath("one.cfg"));
    operate->trigger("actionLoad_Cfg_File");
    QCOMPARE(operate->rowCount(), 1);
    operate->typeCell(0, 4, "20");
    QCOMPARE(operate->cell(0, 4), QStringLiteral("10"));
    QCOMPARE(operate->cell(0, 5), QStringLiteral("20"));
}

// The devices' window reports the other generator to the main window in the middle of the load.
void TestMainWindowMenus::aLoadedGeneratorMeetsTheNewTable()
{
    writeFile("none.cfg", "[Generator2]\nDevice = 0\n\n");
    writeFile("zub.cfg", "[Generator2]\nDevice = 2\n\n");
    QVector<int> warnings; // the screen of tests has some of its own, the same each time
    for (const char* name : {"none.cfg", "zub.cfg"}) {
        const WarningCount counted;
        operate->answerFileDialog(folder->filePath(name));
        operate->trigger("actionLoad_Cfg_File");
        warnings.append(counted.value());
    }
    QCOMPARE(warnings.at(1), warnings.at(0));
}

void TestMainWindowMenus::waveformIsSavedInThreeForms()
{
    operate->pick("fft_length_input", 16);
    operate->click("calc_fft_button");
    QTRY_COMPARE(operate->text("fft_status_label"), QStringLiteral("Data valid"));

    operate->answerFileDialog(folder->filePath("text.i"));
    operate->trigger("actionSave_Waveform");
    QCOMPARE(readFile("text.i").count('\n'), 64);
    QCOMPARE(readFile("text.q").count('\n'), 64);

    operate->answerFileDialog(folder->filePath("wave.q.wav"));
    operate->trigger("actionSave_Waveform");
    QCOMPARE(readFile("wave.i.wav").size(), 44 + 128);
    QCOMPARE(readFile("wave.q.wav").mid(24, 4), QByteArray::fromHex("00e1f505")); // 100 MHz

    operate->answerFileDialog(folder->filePath("form.WV"));
    operate->trigger("actionSave_Waveform");
    QVERIFY(readFile("form.wv").startsWith("{TYPE:PHD-WV,0}{COPYRIGHT:"));
    QVERIFY(readFile("form.wv").contains("{SAMPLES:64}             {CLOCK:100000000}"));
}

void TestMainWindowMenus::waveformOfAnotherEndingIsNotSaved()
{
    operate->pick("fft_length_input", 16);
    operate->click("calc_fft_button");
    QTRY_COMPARE(operate->text("fft_status_label"), QStringLiteral("Data valid"));
    operate->answerFileDialog(folder->filePath("wave.txt"));
    operate->trigger("actionSave_Waveform");
    QVERIFY(QDir(folder->path()).isEmpty());
}

void TestMainWindowMenus::magnitudePhaseFileIsPickedAndUsed()
{
    writeFile("line.pmc", "4\n3 0.0 2.0\n");
    operate->click("mp_load_ratio_button");
    operate->answerFileDialog(folder->filePath("line.pmc"));
    operate->click("le_custom_file_button");
    QCOMPARE(operate->text("le_custom_file"), folder->filePath("line.pmc"));
    operate->click("calc_fft_button");
    QTRY_COMPARE(operate->text("fft_status_label"), QStringLiteral("Data valid"));
    operate->answerFileDialog(folder->filePath("out.i"));
    operate->trigger("actionSave_Waveform");
    // One line turning once over four samples, its peak made 2.5.
    QCOMPARE(readFile("out.i").replace("-0.000000", "0.000000"),
             QByteArray("2.500000\n0.000000\n-2.500000\n0.000000\n"));
    QCOMPARE(readFile("out.q").replace("-0.000000", "0.000000"),
             QByteArray("0.000000\n2.500000\n0.000000\n-2.500000\n"));
}

void TestMainWindowMenus::sampleFilesArePickedAndUsed()
{
    const QByteArray words = sampleWords();
    writeFile("i.wav", words);
    writeFile("q.wav", words);
    operate->click("iq_load_ratio_button");
    operate->answerFileDialog(folder->filePath("i.wav"));
    operate->click("i_file_button");
    operate->answerFileDialog(folder->filePath("q.wav"));
    operate->click("q_file_button");
    QCOMPARE(operate->text("i_file"), folder->filePath("i.wav"));
    QCOMPARE(operate->text("q_file"), folder->filePath("q.wav"));
    operate->click("calc_fft_button");
    QTRY_COMPARE(operate->text("fft_status_label"), QStringLiteral("Data valid"));

    writeFile("q.wav", words.left(100)); // another size: a failed read, told by the status alone
    operate->click("calc_fft_button");
    QTRY_COMPARE(operate->text("fft_status_label"), QStringLiteral("Data invalid"));
}

void TestMainWindowMenus::aPickedFileInvalidatesAndACancelledPickDoesNot_data()
{
    QTest::addColumn<QByteArray>("source"); // its row in a configuration
    QTest::addColumn<QByteArray>("field");
    QTest::addColumn<QString>("file");
    QTest::newRow("magnitude and phase")
        << QByteArray("1") << QByteArray("le_custom_file") << QString("line.pmc");
    QTest::newRow("I") << QByteArray("2") << QByteArray("i_file") << QString("i.wav");
    QTest::newRow("Q") << QByteArray("2") << QByteArray("q_file") << QString("q.wav");
}

void TestMainWindowMenus::aPickedFileInvalidatesAndACancelledPickDoesNot()
{
    QFETCH(QByteArray, source);
    QFETCH(QByteArray, field);
    QFETCH(QString, file);
    const QByteArray place = folder->path().toLocal8Bit() + '/';
    writeFile("line.pmc", "4\n3 0.0 2.0\n");
    writeFile("i.wav", sampleWords());
    writeFile("q.wav", sampleWords());
    writeFile("files.cfg", "[NPR]\nCustom = " + source + "\n\n[User]\nPhaseMag File = \"" + place +
                               "line.pmc\"\nI File = \"" + place + "i.wav\"\nQ File = \"" + place +
                               "q.wav\"\n\n");
    operate->answerFileDialog(folder->filePath("files.cfg"));
    operate->trigger("actionLoad_Cfg_File");
    calculate();
    operate->answerFileDialog(QString());
    operate->click(field + "_button");
    QCOMPARE(operate->text(field), folder->filePath(file));
    QCOMPARE(operate->text("fft_status_label"), QStringLiteral("Data valid"));
    operate->answerFileDialog(folder->filePath(file)); // it may hold something else by now
    operate->click(field + "_button");
    QCOMPARE(operate->text(field), folder->filePath(file));
    QCOMPARE(operate->text("fft_status_label"), QStringLiteral("Data invalid"));
}

void TestMainWindowMenus::theSweepDialogBlocksTheWindowAndUsesItsSettings()
{
    operate->pick("fft_length_input", 12);
    operate->click("calc_fft_button");
    QTRY_COMPARE(operate->text("fft_status_label"), QStringLiteral("Data valid"));
    const QString crestFactor = operate->text("crest_factor_output"); // of seed 1

    QTest::ignoreMessage(QtDebugMsg, "Crest Fector Window Opened");
    operate->trigger("actionOptimize_Crest_Fector");
    QWidget* dialog = QApplication::activeModalWidget();
    QVERIFY(dialog != nullptr);
    QCOMPARE(dialog->windowTitle(), QStringLiteral("Optimize Crest Factor"));
    const WindowDriver inDialog(*dialog);
    inDialog.click("start_button");
    QTRY_VERIFY(inDialog.isEnabled("start_button"));
    QCOMPARE(inDialog.text("min_cf_output") + " dB", crestFactor);
    inDialog.click("ok_button");

    // A loaded configuration is swept without a new dialog.
    writeFile("half.cfg", "[NPR]\nNBW/SRate = 0.5\nFFT Len = 1024\n\n");
    operate->answerFileDialog(folder->filePath("half.cfg"));
    operate->trigger("actionLoad_Cfg_File");
    QCOMPARE(operate->text("fft_length_input"), QStringLiteral("1024"));
    operate->trigger("actionOptimize_Crest_Fector");
    inDialog.click("start_button");
    QTRY_VERIFY(inDialog.isEnabled("start_button"));
    QVERIFY(inDialog.text("min_cf_output") + " dB" != crestFactor);
    inDialog.click("ok_button");
}

// Triggers "Help" where the viewer is a script that tells its folder and arguments, a line each.
QByteArray TestMainWindowMenus::askForHelp()
{
    writeFile("assistant", "#!/bin/sh\n"
                           "{ pwd -P; printf '%s\\n' \"$@\"; } > \"$0.tmp\"\n"
                           "mv \"$0.tmp\" \"$0.told\"\n");
    QFile::setPermissions(folder->filePath("assistant"),
                          QFile::ReadOwner | QFile::WriteOwner | QFile::ExeOwner);
    const QByteArray path = qgetenv("PATH");
    qputenv("PATH", folder->path().toLocal8Bit() + ':' + path);
    operate->trigger("actionHelp");
    qputenv("PATH", path);
    const QString told = folder->filePath("assistant.told");
    return QTest::qWaitFor([&] { return QFile::exists(told); }, 10000) ? readFile("assistant.told")
                                                                       : QByteArray();
}

void TestMainWindowMenus::helpStartsTheViewerWithTheCollection()
{
    QVERIFY(!QFile::exists("collection.qhc") && !QFile::exists(installedManual()));
    QCOMPARE(askForHelp(),
             QDir().canonicalPath().toLocal8Bit() + "\n-collectionFile\ncollection.qhc\n");
}

void TestMainWindowMenus::helpShowsTheInstalledManual()
{
    const InstalledManual manual;
    QCOMPARE(askForHelp(), QDir(installedManual()).canonicalPath().toLocal8Bit() +
                               "\n-collectionFile\ncollection.qhc\n");
}

void TestMainWindowMenus::anOwnCollectionGoesBeforeTheInstalledManual()
{
    const InstalledManual manual;
    const QString before = QDir::currentPath();
    writeFile("collection.qhc", "");
    QDir::setCurrent(folder->path());
    const QByteArray told = askForHelp();
    QDir::setCurrent(before);
    QCOMPARE(told, QDir(folder->path()).canonicalPath().toLocal8Bit() +
                       "\n-collectionFile\ncollection.qhc\n");
}

void TestMainWindowMenus::helpWithoutAViewerDoesNothingVisible()
{
    const QByteArray path = qgetenv("PATH");
    qputenv("PATH", folder->path().toLocal8Bit());
    operate->trigger("actionHelp");
    qputenv("PATH", path);
    QVERIFY(QApplication::activeModalWidget() == nullptr);
    QVERIFY(window->isVisible());
}

void TestMainWindowMenus::aboutOpensAWindowOfItsOwn()
{
    operate->trigger("actionAbout");
    QPointer<AboutWindow> about;
    for (QWidget* widget : QApplication::topLevelWidgets()) {
        if (auto* found = qobject_cast<AboutWindow*>(widget)) {
            about = found;
        }
    }
    QVERIFY(about != nullptr && about->isVisible() && !about->isModal());
    QCOMPARE(about->windowTitle(), QStringLiteral("Information about Notchbench"));
    const WindowDriver read(*about);
    QCOMPARE(read.text("title"), QStringLiteral("Notchbench"));
    QCOMPARE(read.text("subtitle"),
             QStringLiteral("Noise Power Ratio Signal Generation and Measurement"));
    QCOMPARE(read.text("version"), QStringLiteral("Version 5.0.3.1 64 bit (2018)"));
    QVERIFY(read.text("product_page").contains("/appnote/7QX58\""));

    operate->trigger("actionQuit"); // ends the program, whichever of its windows stand open
    QTRY_VERIFY(about.isNull());
}

void TestMainWindowMenus::quitClosesTheWindow()
{
    operate->trigger("actionQuit");
    QVERIFY(!window->isVisible());
    window->show();
    operate->click("quit_button");
    QVERIFY(!window->isVisible());
}

QTEST_MAIN(TestMainWindowMenus)
#include "test_main_window_menus.moc"
