// Every file that is written, onto disks that are full and into places that take nothing: no word,
// no end of the program, and what stood there before stands there still.
#include "files/magnitude_phase_output.h"
#include "files/sample_output.h"
#include "files/signal_input.h"
#include "files/waveform_output.h"
#include "kit/file_content.h"
#include "kit/system_limits.h"
#include "setup/config_file.h"

#include <QtTest>

#include <memory>
#include <sys/mount.h>
#include <sys/stat.h>
#include <unistd.h>

namespace {

constexpr int sampleCount = 65536;
constexpr rlim_t diskSize = 65536; // bytes, fewer than every form of the signal takes

// While it lives the process has no more rights than an ordinary user.
class OrdinaryUser
{
public:
    OrdinaryUser()
    {
        constexpr uid_t nobody = 65534;
        isOrdinary = former != 0 || setresuid(nobody, nobody, former) == 0;
    }
    ~OrdinaryUser() { (void)!setresuid(former, former, former); }
    OrdinaryUser(const OrdinaryUser&) = delete;
    OrdinaryUser& operator=(const OrdinaryUser&) = delete;

    bool isOrdinary;

private:
    const uid_t former = geteuid();
};

SignalData longSignal()
{
    SignalData signal;
    signal.reset(sampleCount);
    for (int k = 0; k < sampleCount; ++k) {
        signal.iSamples[k] = k % 3 - 1.0;
        signal.qSamples[k] = k % 5 - 2.0;
    }
    return signal;
}

MeasurementSetup longSetup()
{
    MeasurementSetup setup;
    setup.signal = longSignal();
    for (int row = 0; row < 400; ++row) { // metadata longer than the disk
        setup.notches->insert(row, Notch());
    }
    return setup;
}

void saveLongConfig(const QString& path)
{
    MeasurementSetup setup;
    for (int row = 0; row < 2000; ++row) {
        setup.notches->insert(row, Notch());
    }
    saveConfig(setup, path);
}

// A writer, and the files that it makes of a base name.
struct Form
{
    void (*save)(const QString& base);
    QStringList endings;
};

const QMap<QByteArray, Form> forms = {
    {"configuration", {[](const QString& base) { saveLongConfig(base + ".cfg"); }, {".cfg"}}},
    {"spectrum",
     {[](const QString& base) { saveMagnitudePhaseFile(longSignal(), base + ".pmc"); }, {".pmc"}}},
    {"text",
     {[](const QString& base) { saveWaveform(base + ".i", longSignal(), 1e8); }, {".i", ".q"}}},
    {"WAV",
     {[](const QString& base) { saveWaveform(base + ".i.wav", longSignal(), 1e8); },
      {".i.wav", ".q.wav"}}},
    {"waveform",
     {[](const QString& base) { saveWaveform(base + ".wv", longSignal(), 1e8); }, {".wv"}}},
    {"raw samples",
     {[](const QString& base) { writeRawFile(longSignal(), base + ".cf32"); }, {".cf32"}}},
    {"array", {[](const QString& base) { writeNpyFile(longSignal(), base + ".npy"); }, {".npy"}}},
    {"recording",
     {[](const QString& base) { writeSigmfFiles(longSetup(), "bench", base); },
      {".sigmf-data", ".sigmf-meta"}}},
};

} // namespace

class TestFullDisk : public QObject
{
    Q_OBJECT

private slots:
    void init();
    void limitOnFilesLeavesTheFormerOnes_data() { allForms(); }
    void limitOnFilesLeavesTheFormerOnes();
    void fullDiskLeavesTheFormerFiles_data() { allForms(); }
    void fullDiskLeavesTheFormerFiles();
    void nothingIsLeftOnAFullDisk_data() { allForms(); }
    void nothingIsLeftOnAFullDisk();
    void writersOfSignalsTellWhetherTheyWrote();
    void fullSecondFileLeavesTheFirstAsItWas();
    void placesThatTakeNothingGoUnnoticed_data() { allForms(); }
    void placesThatTakeNothingGoUnnoticed();
    void writableFileInAFolderThatIsNotIsWritten_data() { allForms(); }
    void writableFileInAFolderThatIsNotIsWritten();
    void fileThatMayNotBeWrittenStays_data() { allForms(); }
    void fileThatMayNotBeWrittenStays();
    void pipesAndDevicesAreNeitherReplacedNorWaitedFor_data() { allForms(); }
    void pipesAndDevicesAreNeitherReplacedNorWaitedFor();
    void deviceThatIsAlwaysFullGoesUnnoticed_data() { allForms(); }
    void deviceThatIsAlwaysFullGoesUnnoticed();
    void pipesAndDevicesAreNoInput();
    void linkIsFollowed_data() { allForms(); }
    void linkIsFollowed();

private:
    static void allForms();
    QString base() const { return folder->filePath("signal"); }

    std::unique_ptr<QTemporaryDir> folder;
};

void TestFullDisk::init()
{
    folder = std::make_unique<QTemporaryDir>();
    QVERIFY(folder->isValid());
}

void TestFullDisk::allForms()
{
    QTest::addColumn<QByteArray>("name");
    for (const QByteArray& name : forms.keys()) {
        QTest::newRow(name.constData()) << name;
    }
}

void TestFullDisk::limitOnFilesLeavesTheFormerOnes()
{
    QFETCH(QByteArray, name);
    const Form& form = forms[name];
    for (const QString& ending : form.endings) {
        putContent(base() + ending, "good");
    }
    {
        const FileSizeLimit limit(diskSize);
        form.save(base());
    }
    for (const QString& ending : form.endings) {
        QCOMPARE(contentOf(base() + ending), QByteArray("good"));
    }
    QCOMPARE(QDir(folder->path()).entryList(QDir::Files).size(), form.endings.size());
    form.save(base());
    for (const QString& ending : form.endings) {
        QVERIFY(contentOf(base() + ending).size() > int(diskSize));
    }
}

void TestFullDisk::fullDiskLeavesTheFormerFiles()
{
    QFETCH(QByteArray, name);
    const Form& form = forms[name];
    const QByteArray place = QFile::encodeName(folder->path());
    if (mount("none", place.constData(), "tmpfs", 0, "size=64k") != 0) {
        QSKIP("only root may make a small disk");
    }
    for (const QString& ending : form.endings) {
        putContent(base() + ending, "good");
    }
    form.save(base());
    QByteArrayList contents;
    for (const QString& ending : form.endings) {
        contents << contentOf(base() + ending);
    }
    const int fileCount = QDir(folder->path()).entryList(QDir::Files).size();
    QCOMPARE(umount(place.constData()), 0);
    for (const QByteArray& content : contents) {
        QCOMPARE(content, QByteArray("good"));
    }
    QCOMPARE(fileCount, form.endings.size());
}

void TestFullDisk::nothingIsLeftOnAFullDisk()
{
    QFETCH(QByteArray, name);
    {
        const FileSizeLimit limit(diskSize);
        forms[name].save(base());
    }
    QVERIFY(QDir(folder->path()).isEmpty());
}

void TestFullDisk::writersOfSignalsTellWhetherTheyWrote()
{
    const SignalData signal = longSignal();
    for (const char* ending : {".i", ".q.wav", ".wv"}) {
        QVERIFY(saveWaveform(base() + ending, signal, 1e8));
        QVERIFY(!saveWaveform(base() + "/none" + ending, signal, 1e8));
        const FileSizeLimit limit(diskSize);
        QVERIFY(!saveWaveform(base() + ending, signal, 1e8));
    }
    QVERIFY(!saveWaveform(base() + ".txt", signal, 1e8));
    QVERIFY(saveMagnitudePhaseFile(signal, base() + ".pmc"));
    QVERIFY(writeRawFile(signal, base() + ".cf32"));
    QVERIFY(writeNpyFile(signal, base() + ".npy"));
    QVERIFY(writeSigmfFiles(longSetup(), "bench", base()));
    QVERIFY(!saveMagnitudePhaseFile(signal, base() + "/none.pmc"));
    QVERIFY(!writeRawFile(signal, base() + "/none.cf32"));
    QVERIFY(!writeNpyFile(signal, base() + "/none.npy"));
    QVERIFY(!writeSigmfFiles(longSetup(), "bench", base() + "/none"));
    const FileSizeLimit limit(diskSize);
    QVERIFY(!saveMagnitudePhaseFile(signal, base() + ".pmc"));
    QVERIFY(!writeRawFile(signal, base() + ".cf32"));
    QVERIFY(!writeNpyFile(signal, base() + ".npy"));
    QVERIFY(!writeSigmfFiles(longSetup(), "bench", base()));
}

// The sign makes the second file longer than the first.
void TestFullDisk::fullSecondFileLeavesTheFirstAsItWas()
{
    SignalData signal;
    signal.reset(6000);
    for (int k = 0; k < signal.length; ++k) {
        signal.iSamples[k] = 1.0;  // "2.500000", 9 bytes a line
        signal.qSamples[k] = -1.0; // "-2.500000", 10 bytes a line
    }
    putContent(base() + ".i", "good");
    putContent(base() + ".q", "good");
    {
        const FileSizeLimit limit(57000);
        writeIQTextFiles(signal, base());
    }
    QCOMPARE(contentOf(base() + ".i"), QByteArray("good"));
    QCOMPARE(contentOf(base() + ".q"), QByteArray("good"));
}

void TestFullDisk::placesThatTakeNothingGoUnnoticed()
{
    QFETCH(QByteArray, name);
    const Form& form = forms[name];
    form.save(folder->filePath("missing/signal"));
    putContent(folder->filePath("file"), "good");
    form.save(folder->filePath("file/signal"));
    QCOMPARE(contentOf(folder->filePath("file")), QByteArray("good"));
    for (const QString& ending : form.endings) {
        QVERIFY(QDir(folder->path()).mkdir("signal" + ending));
    }
    form.save(base());
    form.save(folder->filePath(QString(5000, 'x')));
    form.save("/proc/notchbench");
    form.save(QString());
    QCOMPARE(QDir(folder->path()).entryList(QDir::Files), QStringList("file"));
}

void TestFullDisk::writableFileInAFolderThatIsNotIsWritten()
{
    QFETCH(QByteArray, name);
    const Form& form = forms[name];
    for (const QString& ending : form.endings) {
        putContent(base() + ending, "former");
        QCOMPARE(chmod(QFile::encodeName(base() + ending).constData(), 0666), 0);
    }
    QCOMPARE(chmod(QFile::encodeName(folder->path()).constData(), 0555), 0);
    {
        const OrdinaryUser user;
        if (!user.isOrdinary) {
            QSKIP("the rights of this process can't be taken away");
        }
        form.save(base());
    }
    chmod(QFile::encodeName(folder->path()).constData(), 0755);
    for (const QString& ending : form.endings) {
        QVERIFY(contentOf(base() + ending).size() > int(diskSize));
    }
}

void TestFullDisk::fileThatMayNotBeWrittenStays()
{
    QFETCH(QByteArray, name);
    const Form& form = forms[name];
    QCOMPARE(chmod(QFile::encodeName(folder->path()).constData(), 0777), 0);
    for (const QString& ending : form.endings) {
        putContent(base() + ending, "good");
        QCOMPARE(chmod(QFile::encodeName(base() + ending).constData(), 0444), 0);
    }
    {
        const OrdinaryUser user;
        if (!user.isOrdinary) {
            QSKIP("the rights of this process can't be taken away");
        }
        form.save(base());
    }
    for (const QString& ending : form.endings) {
        QCOMPARE(contentOf(base() + ending), QByteArray("good"));
    }
}

void TestFullDisk::pipesAndDevicesAreNeitherReplacedNorWaitedFor()
{
    QFETCH(QByteArray, name);
    const Form& form = forms[name];
    for (const QString& ending : form.endings) {
        const QByteArray path = QFile::encodeName(base() + ending);
        QCOMPARE(mkfifo(path.constData(), 0666), 0);
    }
    form.save(base());
    for (const QString& ending : form.endings) {
        struct stat status = {};
        QCOMPARE(stat(QFile::encodeName(base() + ending).constData(), &status), 0);
        QVERIFY(S_ISFIFO(status.st_mode));
    }
    QCOMPARE(QDir(folder->path()).entryList(QDir::System).size(), form.endings.size());
    QVERIFY(QDir(folder->path()).entryList(QDir::Files).isEmpty());
}

void TestFullDisk::deviceThatIsAlwaysFullGoesUnnoticed()
{
    QFETCH(QByteArray, name);
    const Form& form = forms[name];
    QCOMPARE(chmod(QFile::encodeName(folder->path()).constData(), 0777), 0);
    for (const QString& ending : form.endings) {
        QVERIFY(QFile::link("/dev/full", base() + ending));
    }
    const OrdinaryUser user; // who couldn't harm the device
    if (!user.isOrdinary) {
        QSKIP("the rights of this process can't be taken away");
    }
    form.save(base());
    for (const QString& ending : form.endings) {
        QVERIFY(QFileInfo(base() + ending).isSymLink());
    }
}

void TestFullDisk::pipesAndDevicesAreNoInput()
{
    QCOMPARE(mkfifo(QFile::encodeName(base()).constData(), 0666), 0);
    for (const QString& path : {base(), QString("/dev/zero"), folder->path()}) {
        QCOMPARE(loadMagnitudePhaseFile(path).length, 0);
        QCOMPARE(loadIQFiles(path, path).length, 0);
        QCOMPARE(loadConfig(path).sampleRate, 1e8);
    }
}

void TestFullDisk::linkIsFollowed()
{
    QFETCH(QByteArray, name);
    const Form& form = forms[name];
    for (const QString& ending : form.endings) {
        putContent(folder->filePath("real" + ending), "former");
        QVERIFY(QFile::link("real" + ending, base() + ending));
    }
    form.save(base());
    for (const QString& ending : form.endings) {
        QVERIFY(QFileInfo(base() + ending).isSymLink());
        QVERIFY(contentOf(folder->filePath("real" + ending)).size() > int(diskSize));
    }
}

QTEST_GUILESS_MAIN(TestFullDisk)
#include "test_full_disk.moc"
