// The folder of the operator's settings goes away while the program runs, or something else stands
// in its place: no word, no end, and the next try saves again.
#include "app/main_window.h"
#include "files/waveform_output.h"
#include "kit/file_content.h"
#include "kit/fresh_home.h"
#include "kit/window_driver.h"
#include "setup/config_file.h"

#include <QTemporaryDir>

#include <memory>

class TestVanishingHome : public QObject
{
    Q_OBJECT

private slots:
    void init();
    void programGoesOnWithoutItsHomeAndSavesInANewOne();
    void fileInPlaceOfTheHomeIsLeftAlone();

private:
    void changeSeedAndClose(const QString& seed);
    static quint32 savedSeed() { return loadConfig(defaultConfigPath()).seed; }

    std::unique_ptr<QTemporaryDir> folder;
    QString home;
    std::unique_ptr<MainWindow> window;
};

void TestVanishingHome::init()
{
    folder = std::make_unique<QTemporaryDir>();
    home = folder->filePath("home");
    QVERIFY(QDir().mkdir(home));
    qputenv("HOME", QFile::encodeName(home));
    qputenv("XDG_DATA_HOME", QFile::encodeName(home + "/data"));
    window = std::make_unique<MainWindow>();
    window->show();
    QVERIFY(QTest::qWaitForWindowExposed(window.get()));
}

void TestVanishingHome::changeSeedAndClose(const QString& seed)
{
    const WindowDriver operate(*window);
    operate.type("seed_input", seed);
    window->close();
    window.reset();
}

void TestVanishingHome::programGoesOnWithoutItsHomeAndSavesInANewOne()
{
    const WindowDriver operate(*window);
    QVERIFY(QDir(home).removeRecursively());
    operate.pick("fft_length_input", 12);
    operate.click("calc_fft_button");
    QTRY_COMPARE(operate.text("fft_status_label"), QStringLiteral("Data valid"));
    SignalData signal;
    signal.reset(64);
    QVERIFY(!saveWaveform("signal.wv", signal, 1e8)); // in the folder that is no more
    changeSeedAndClose("41");
    QCOMPARE(savedSeed(), 41U);
    window = std::make_unique<MainWindow>();
    window->show();
    QCOMPARE(WindowDriver(*window).text("seed_input"), QStringLiteral("41"));
    changeSeedAndClose("42");
    QCOMPARE(savedSeed(), 42U);
}

void TestVanishingHome::fileInPlaceOfTheHomeIsLeftAlone()
{
    QVERIFY(QDir(home).removeRecursively());
    putContent(home, "good");
    changeSeedAndClose("43");
    QFile file(home);
    QVERIFY(file.open(QIODevice::ReadOnly));
    QCOMPARE(file.readAll(), QByteArray("good"));
    QVERIFY(file.remove());
    window = std::make_unique<MainWindow>();
    window->show();
    QCOMPARE(WindowDriver(*window).text("seed_input"), QStringLiteral("1"));
    changeSeedAndClose("44");
    QCOMPARE(savedSeed(), 44U);
}

QTEST_MAIN(TestVanishingHome)
#include "test_vanishing_home.moc"
