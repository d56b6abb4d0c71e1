// The reader of waveform files: what the program writes, and every way a file can be wrong.
#include "files/waveform_output.h"
#include "kit/file_content.h"
#include "simulator/wv_file.h"

#include <QTemporaryDir>
#include <QtTest>

class TestWvFile : public QObject
{
    Q_OBJECT

private slots:
    void wordsAreReadAsSamples();
    void aFileOfTheProgramIsRead();
    void aBadFileIsRefusedWithItsReason_data();
    void aBadFileIsRefusedWithItsReason();
    void aMissingFileIsReported();

private:
    QString fileOf(const QByteArray& content)
    {
        QString path = folder.filePath("case.wv");
        putContent(path, content);
        return path;
    }

    QTemporaryDir folder;
};

void TestWvFile::wordsAreReadAsSamples()
{
    const QByteArray words = QByteArray::fromHex("0100FFFF FF7F0080");
    QString errorText;
    const PlayedSignal signal =
        loadWaveform(fileOf("{TYPE:X}{CLOCK:250000}{WAVEFORM-9:#" + words + "}"), errorText);
    QCOMPARE(errorText, QString());
    QCOMPARE(signal.iSamples, QVector<double>({1.0, 32767.0}));
    QCOMPARE(signal.qSamples, QVector<double>({-1.0, -32768.0}));
    QCOMPARE(signal.sampleRate, 250000.0);
}

void TestWvFile::aFileOfTheProgramIsRead()
{
    SignalData written(4);
    written.iSamples = {1.0, 0.0, 0.0, 0.5};
    written.qSamples = {0.0, 1.0, 0.25, 0.0};
    writeWvFile(written, folder.filePath("program"), 100000000);
    QString errorText;
    const PlayedSignal signal = loadWaveform(folder.filePath("program.wv"), errorText);
    QCOMPARE(errorText, QString());
    QCOMPARE(signal.iSamples, QVector<double>({32767.0, 0.0, 0.0, 16384.0}));
    QCOMPARE(signal.qSamples, QVector<double>({0.0, 32767.0, 8192.0, 0.0}));
    QCOMPARE(signal.sampleRate, 1e8);
}

void TestWvFile::aBadFileIsRefusedWithItsReason_data()
{
    QTest::addColumn<QByteArray>("content");
    QTest::addColumn<QString>("reason");
    const struct
    {
        const char* name;
        QByteArray content;
        const char* reason;
    } rows[] = {
        {"empty", "", "has no tag {CLOCK:"},
        {"no clock", "{WAVEFORM-5:#abcd}", "has no tag {CLOCK:"},
        {"open clock", "{CLOCK:5", "has no tag {CLOCK:"},
        {"no waveform", "{CLOCK:5}", "has no tag {WAVEFORM-"},
        {"clock of zero", "{CLOCK:0}{WAVEFORM-5:#abcd}", "holds a number that is none: 0"},
        {"clock of letters", "{CLOCK:fast}{WAVEFORM-5:#abcd}", "holds a number that is none: fast"},
        {"clock of nan", "{CLOCK:nan}{WAVEFORM-5:#abcd}", "holds a number that is none: nan"},
        {"negative size", "{CLOCK:5}{WAVEFORM--5:#abcd}", "holds a number that is none: -5"},
        {"no mark", "{CLOCK:5}{WAVEFORM-5:abcd}", "has no samples"},
        {"three samples", "{CLOCK:5}{WAVEFORM-13:#abcdabcdabcd}",
         "has a number of samples that is no power of two up to 2^24"},
        {"no samples", "{CLOCK:5}{WAVEFORM-1:#}",
         "has a number of samples that is no power of two up to 2^24"},
        {"half a sample", "{CLOCK:5}{WAVEFORM-3:#ab}",
         "has a number of samples that is no power of two up to 2^24"},
        {"absurd size", "{CLOCK:5}{WAVEFORM-4611686018427387905:#ab}",
         "holds a number that is none: 4611686018427387905"},
        {"too long", "{CLOCK:5}{WAVEFORM-134217729:#ab}",
         "has a number of samples that is no power of two up to 2^24"},
        {"cut off", "{CLOCK:5}{WAVEFORM-9:#abcdabc", "ends before its last sample"},
        {"a megabyte of nothing", QByteArray(1 << 20, '\0'), "has no tag {CLOCK:"},
    };
    for (const auto& row : rows) {
        QTest::newRow(row.name) << row.content << QString(row.reason);
    }
}

void TestWvFile::aBadFileIsRefusedWithItsReason()
{
    QFETCH(QByteArray, content);
    QFETCH(QString, reason);
    const QString path = fileOf(content);
    QString errorText;
    QCOMPARE(loadWaveform(path, errorText).size(), 0);
    QCOMPARE(errorText, path + ' ' + reason);
}

void TestWvFile::aMissingFileIsReported()
{
    QString errorText;
    QCOMPARE(loadWaveform(folder.filePath("none.wv"), errorText).size(), 0);
    QVERIFY(errorText.startsWith(folder.filePath("none.wv: ")));
}

QTEST_APPLESS_MAIN(TestWvFile)
#include "test_wv_file.moc"
