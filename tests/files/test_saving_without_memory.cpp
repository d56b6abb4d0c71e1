// Saving a signal when there is no memory left for the work.
#include "files/sample_output.h"
#include "files/waveform_output.h"
#include "setup/measurement_setup.h"

#include "kit/file_content.h"
#include "kit/instrumented.h"
#include "kit/system_limits.h"

#include <QTemporaryDir>
#include <QtTest>

#include <functional>

class TestSavingWithoutMemory : public QObject
{
    Q_OBJECT

private slots:
    void itFailsAndTheFormerFileStays_data();
    void itFailsAndTheFormerFileStays();
};

// What is saved, the file's path, and that path without its ending.
using Save = std::function<bool(const MeasurementSetup&, const QString&, const QString&)>;
Q_DECLARE_METATYPE(Save)

void TestSavingWithoutMemory::itFailsAndTheFormerFileStays_data()
{
    QTest::addColumn<QString>("ending");
    QTest::addColumn<Save>("save");
    const auto row = [](const char* ending, const Save& save) {
        QTest::newRow(ending) << ending << save;
    };
    for (const char* ending : {".i", ".i.wav", ".wv"}) {
        row(ending, [](const MeasurementSetup& setup, const QString& path, const QString&) {
            return saveWaveform(path, setup.signal, setup.sampleRate);
        });
    }
    row(".cf32", [](const MeasurementSetup& setup, const QString& path, const QString&) {
        return writeRawFile(setup.signal, path);
    });
    row(".npy", [](const MeasurementSetup& setup, const QString& path, const QString&) {
        return writeNpyFile(setup.signal, path);
    });
    row(".sigmf-data", [](const MeasurementSetup& setup, const QString&, const QString& base) {
        return writeSigmfFiles(setup, "bench", base);
    });
}

void TestSavingWithoutMemory::itFailsAndTheFormerFileStays()
{
    if (isInstrumented) {
        QSKIP("a sanitizer's own memory has no limit");
    }
    QFETCH(QString, ending);
    QFETCH(Save, save);
    const QTemporaryDir folder;
    const QString base = folder.filePath("a");
    const QString path = base + ending;
    putContent(path, "former");
    MeasurementSetup setup;
    setup.signal = SignalData(64);
    setup.signal.iSamples[0] = 1.0;
    bool saved = true;
    {
        const LastMemory none(0, LastMemory::smallestOfAll);
        saved = save(setup, path, base);
    }
    QVERIFY(!saved);
    QCOMPARE(contentOf(path), QByteArray("former"));
    QVERIFY(save(setup, path, base)); // with memory again
    QFile file(path);
    QVERIFY(file.open(QIODevice::ReadOnly));
    QVERIFY(file.readAll() != "former");
}

QTEST_APPLESS_MAIN(TestSavingWithoutMemory)
#include "test_saving_without_memory.moc"
