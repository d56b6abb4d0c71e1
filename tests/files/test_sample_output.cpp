// The open formats: every byte of the samples, the header of an array, and the metadata against
// the rules of their format.
#include "files/sample_output.h"
#include "kit/file_content.h"
#include "kit/json_object.h"
#include "kit/json_schema.h"
#include "setup/measurement_setup.h"

#include <QTemporaryDir>
#include <QtTest>

#include <cmath>

namespace {

// 64 lines of 100 Hz each.
MeasurementSetup smallSetup()
{
    MeasurementSetup setup;
    setup.sampleRate = 6400.0;
    setup.signal = SignalData(64);
    return setup;
}

void addRow(MeasurementSetup& setup, qint32 startIndex, qint32 stopIndex)
{
    Notch row;
    row.startIndex = startIndex;
    row.stopIndex = stopIndex;
    setup.notches->items.append(row);
}

} // namespace

class TestSampleOutput : public QObject
{
    Q_OBJECT

private slots:
    void samplesAreNearestFloatsLowByteFirst();
    void valuesBeyondFloatsBecomeInfinite();
    void arrayHeaderIsPaddedToSixtyFourBytes_data();
    void arrayHeaderIsPaddedToSixtyFourBytes();
    void longSignalsAreWrittenWhole();
    void shortVectorsAreNotReadBeyond();
    void hashIsThatOfTheSamples();
    void metadataKeepsTheRulesOfTheFormat();
    void theRulesAreNotEmpty_data();
    void theRulesAreNotEmpty();
    void aNotchReachesFromItsFirstLineToItsLast();
    void aCarrierIsTheLineAboveItsIndex();
    void rowsThatLeaveNothingHaveNoAnnotation();
    void withoutARateThereAreNoFrequencies();
    void aFileThatCannotBeOpenedIsTold();

private:
    QString path(const QString& suffix) const { return folder.filePath("signal") + suffix; }
    QJsonObject metadataOf(const MeasurementSetup& setup);

    QTemporaryDir folder;
};

QJsonObject TestSampleOutput::metadataOf(const MeasurementSetup& setup)
{
    return writeSigmfFiles(setup, "bench 1.2", path("")) ? jsonOf(contentOf(path(".sigmf-meta")))
                                                         : QJsonObject();
}

// 1 + 2^-24 lies in the middle of two floats and goes to the even one, 1; a little more goes up.
void TestSampleOutput::samplesAreNearestFloatsLowByteFirst()
{
    MeasurementSetup setup;
    setup.signal = SignalData(3);
    setup.signal.iSamples = {1.0, -0.1, 1.0 + std::ldexp(1.0, -24)};
    setup.signal.qSamples = {-2.5, -0.0, 1.0 + std::ldexp(1.5, -24)};
    const QByteArray bytes = QByteArray::fromHex("0000803f 000020c0"
                                                 "cdccccbd 00000080"
                                                 "0000803f 0100803f");
    QVERIFY(writeRawFile(setup.signal, path(".cf32")));
    QCOMPARE(contentOf(path(".cf32")), bytes);
    QVERIFY(writeNpyFile(setup.signal, path(".npy")));
    QCOMPARE(contentOf(path(".npy")).mid(128), bytes);
    QVERIFY(writeSigmfFiles(setup, "bench 1.2", path("")));
    QCOMPARE(contentOf(path(".sigmf-data")), bytes);
}

void TestSampleOutput::valuesBeyondFloatsBecomeInfinite()
{
    SignalData signal(1);
    signal.iSamples = {1e39};
    signal.qSamples = {-1e39};
    QVERIFY(writeRawFile(signal, path(".cf32")));
    QCOMPARE(contentOf(path(".cf32")), QByteArray::fromHex("0000807f 000080ff"));
}

void TestSampleOutput::arrayHeaderIsPaddedToSixtyFourBytes_data()
{
    QTest::addColumn<int>("count");
    QTest::addColumn<QByteArray>("text");
    const QByteArray before = "{'descr': '<c8', 'fortran_order': False, 'shape': (";
    QTest::newRow("one") << 1 << before + "1,), }" + QByteArray(60, ' ') + '\n';
    QTest::newRow("131072") << 131072 << before + "131072,), }" + QByteArray(55, ' ') + '\n';
}

// 10 bytes before the text and 118 of text make 128.
void TestSampleOutput::arrayHeaderIsPaddedToSixtyFourBytes()
{
    QFETCH(int, count);
    QFETCH(QByteArray, text);
    QVERIFY(writeNpyFile(SignalData(static_cast<quint32>(count)), path(".npy")));
    const QByteArray bytes = contentOf(path(".npy"));
    QCOMPARE(bytes.left(10), QByteArray::fromHex("93 4e554d5059 01 00 7600"));
    QCOMPARE(bytes.mid(10, 118), text);
    QCOMPARE(bytes.size(), 128 + 8 * count);
}

void TestSampleOutput::longSignalsAreWrittenWhole()
{
    constexpr int count = 70001; // more than one piece, and not a whole number
    SignalData signal(count);
    for (int k = 0; k < count; ++k) {
        signal.iSamples[k] = k; // whole numbers that a float holds
        signal.qSamples[k] = -k;
    }
    QVERIFY(writeRawFile(signal, path(".cf32")));
    const QByteArray bytes = contentOf(path(".cf32"));
    QCOMPARE(bytes.size(), 8 * count);
    for (int k = 0; k < count; ++k) {
        float pair[2];
        memcpy(pair, bytes.constData() + qint64{8} * k, sizeof pair);
        QVERIFY(pair[0] == float(k) && pair[1] == float(-k));
    }
}

void TestSampleOutput::shortVectorsAreNotReadBeyond()
{
    SignalData signal(3);
    signal.qSamples = {1.0};
    QVERIFY(writeNpyFile(signal, path(".npy")));
    QVERIFY(contentOf(path(".npy")).contains("'shape': (1,)"));
    QCOMPARE(contentOf(path(".npy")).size(), 128 + 8);
    signal.length = -1;
    QVERIFY(writeRawFile(signal, path(".cf32")));
    QCOMPARE(contentOf(path(".cf32")), QByteArray());
}

// The hash of 8 zero bytes, as sha512sum tells it.
void TestSampleOutput::hashIsThatOfTheSamples()
{
    MeasurementSetup setup = smallSetup();
    setup.signal = SignalData(1);
    QCOMPARE(metadataOf(setup)["global"].toObject()["core:sha512"].toString(),
             QString("1b7409ccf0d5a34d3a77eaabfa9fe27427655be9297127ee9522aa1bf4046d4f"
                     "945983678169cb1a7348edcac47ef0d9e2c924130e5bcc5f0d94937852c42f1b"));
}

void TestSampleOutput::metadataKeepsTheRulesOfTheFormat()
{
    MeasurementSetup setup = smallSetup();
    addRow(setup, -10, -5);
    addRow(setup, 3, 3);
    const QJsonObject metadata = metadataOf(setup);
    const JsonSchema schema(jsonOf(contentOf(NOTCHBENCH_TEST_DATA "/sigmf.schema.json")));
    QCOMPARE(schema.errorsIn(metadata), QStringList());
    const QJsonObject global = metadata["global"].toObject();
    QCOMPARE(global["core:datatype"].toString(), QString("cf32_le"));
    QCOMPARE(global["core:version"].toString(), QString("1.0.0"));
    QCOMPARE(global["core:sample_rate"].toDouble(), 6400.0);
    QCOMPARE(global["core:recorder"].toString(), QString("bench 1.2"));
    QCOMPARE(global["core:description"].toString(),
             QString("Test signal for noise power ratio, one period of 64 samples. Notches: 2."));
    // No frequency: edges are offsets from the carrier, wherever that is played.
    QCOMPARE(metadata["captures"].toArray(), QJsonArray{QJsonObject({{"core:sample_start", 0}})});
}

void TestSampleOutput::theRulesAreNotEmpty_data()
{
    QTest::addColumn<QString>("part");
    QTest::addColumn<QString>("member");
    QTest::addColumn<QJsonValue>("value");
    const QJsonValue nothing(QJsonValue::Undefined);
    QTest::newRow("no type of the samples") << "global"
                                            << "core:datatype" << nothing;
    QTest::newRow("no byte order") << "global"
                                   << "core:datatype" << QJsonValue("cf32");
    QTest::newRow("no version") << "global"
                                << "core:version" << nothing;
    QTest::newRow("a rate as text") << "global"
                                    << "core:sample_rate" << QJsonValue("6400");
    QTest::newRow("a rate of zero") << "global"
                                    << "core:sample_rate" << QJsonValue(0);
    QTest::newRow("a short hash") << "global"
                                  << "core:sha512" << QJsonValue("1b7409");
    QTest::newRow("a member that isn't known") << "global"
                                               << "core:rate" << QJsonValue(1);
    QTest::newRow("a capture without a start") << "captures"
                                               << "core:sample_start" << nothing;
    QTest::newRow("half a sample") << "annotations"
                                   << "core:sample_start" << QJsonValue(0.5);
    QTest::newRow("an edge that is null") << "annotations"
                                          << "core:freq_lower_edge" << QJsonValue(QJsonValue::Null);
    QTest::newRow("no label") << "annotations"
                              << "core:label" << QJsonValue("");
}

// One change to a good one each.
void TestSampleOutput::theRulesAreNotEmpty()
{
    QFETCH(QString, part);
    QFETCH(QString, member);
    QFETCH(QJsonValue, value);
    MeasurementSetup setup = smallSetup();
    addRow(setup, -10, -5);
    QJsonObject metadata = metadataOf(setup);
    const bool isList = metadata[part].isArray();
    QJsonObject changed =
        isList ? metadata[part].toArray().first().toObject() : metadata[part].toObject();
    if (value.isUndefined()) {
        changed.remove(member);
    } else {
        changed[member] = value;
    }
    metadata[part] = isList ? QJsonValue(QJsonArray{changed}) : QJsonValue(changed);
    const JsonSchema schema(jsonOf(contentOf(NOTCHBENCH_TEST_DATA "/sigmf.schema.json")));
    QCOMPARE(schema.errorsIn(metadata).size(), 1);
}

// Half a line below the first and half a line above the last.
void TestSampleOutput::aNotchReachesFromItsFirstLineToItsLast()
{
    MeasurementSetup setup = smallSetup();
    addRow(setup, -10, -5);
    addRow(setup, 30, 40); // the highest line is number 31
    const QJsonArray expected{QJsonObject{{"core:sample_start", 0},
                                          {"core:sample_count", 64},
                                          {"core:freq_lower_edge", -1050},
                                          {"core:freq_upper_edge", -450},
                                          {"core:label", "notch 1"}},
                              QJsonObject{{"core:sample_start", 0},
                                          {"core:sample_count", 64},
                                          {"core:freq_lower_edge", 2950},
                                          {"core:freq_upper_edge", 3150},
                                          {"core:label", "notch 2"}}};
    QCOMPARE(metadataOf(setup)["annotations"].toArray(), expected);
}

void TestSampleOutput::aCarrierIsTheLineAboveItsIndex()
{
    MeasurementSetup setup = smallSetup();
    setup.notchOrCarrier = NotchOrCarrier::Carrier;
    addRow(setup, -2, -2);
    addRow(setup, 31, 31); // the line above lies beyond the end
    const QJsonObject metadata = metadataOf(setup);
    const QJsonArray annotations = metadata["annotations"].toArray();
    QCOMPARE(annotations.size(), 1);
    const QJsonObject carrier = annotations[0].toObject();
    QCOMPARE(carrier["core:label"].toString(), QString("carrier 1"));
    QCOMPARE(carrier["core:freq_lower_edge"].toDouble(), -150.0);
    QCOMPARE(carrier["core:freq_upper_edge"].toDouble(), -50.0);
    QVERIFY(metadata["global"].toObject()["core:description"].toString().endsWith("Carriers: 2."));
}

void TestSampleOutput::rowsThatLeaveNothingHaveNoAnnotation()
{
    MeasurementSetup setup = smallSetup();
    addRow(setup, -33, -20); // begins below the lowest line
    addRow(setup, 5, 4);
    addRow(setup, 32, 40); // begins above the highest
    addRow(setup, 0, 0);
    const QJsonArray annotations = metadataOf(setup)["annotations"].toArray();
    QCOMPARE(annotations.size(), 1);
    QCOMPARE(annotations[0].toObject()["core:label"].toString(), QString("notch 4"));
}

void TestSampleOutput::withoutARateThereAreNoFrequencies()
{
    MeasurementSetup setup = smallSetup();
    setup.sampleRate = 0.0;
    addRow(setup, -10, -5);
    const QJsonObject metadata = metadataOf(setup);
    QVERIFY(!metadata["global"].toObject().contains("core:sample_rate"));
    QVERIFY(metadata["annotations"].toArray().isEmpty());
}

void TestSampleOutput::aFileThatCannotBeOpenedIsTold()
{
    const MeasurementSetup setup = smallSetup();
    const QString missing = folder.filePath("missing/signal");
    QVERIFY(!writeRawFile(setup.signal, missing));
    QVERIFY(!writeNpyFile(setup.signal, missing));
    QVERIFY(!writeSigmfFiles(setup, "bench 1.2", missing));
    // The second of two files is in the way.
    QVERIFY(QDir(folder.path()).mkdir("other.sigmf-meta"));
    QVERIFY(!writeSigmfFiles(setup, "bench 1.2", folder.filePath("other")));
    QVERIFY(!QFile::exists(folder.filePath("other.sigmf-data")));
}

QTEST_APPLESS_MAIN(TestSampleOutput)
#include "test_sample_output.moc"
