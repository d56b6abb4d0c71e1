// JSON and CSV of a result: what stands in them, and that JSON reads back.
#include "campaign/result_csv.h"
#include "campaign/result_json.h"
#include "kit/json_object.h"

#include <QJsonArray>
#include <QtTest>

#include <limits>

namespace {

NprPoint goodPoint()
{
    NprPoint point;
    point.level = -20.5;
    point.notch = 1;
    point.center = -31999969.482421875;
    point.width = 1e6;
    point.power = -39.75;
    point.npr = 20.0;
    point.sigma = 0.125;
    point.marks = QStringList{"margin", "few-peaks"};
    point.passed = true;
    return point;
}

NprPoint missingPoint()
{
    NprPoint point;
    point.level = 0.1;
    point.notch = 2;
    point.width = 2.5;
    point.power = -std::numeric_limits<double>::infinity();
    point.marks = QStringList{"below-zero"};
    return point;
}

NprResult result()
{
    NprResult made;
    made.program = "program 1.0";
    made.started = "2026-11-21T14:00:00Z";
    made.config["NPR"]["SRate"] = "1e+08";
    made.config["User"]["I File"] = "a \"b\"";
    made.signal.length = 131072;
    made.signal.sampleRate = 1e8;
    made.signal.crestFactor = 10.63;
    made.signal.peakBetweenSamples = 11.02;
    made.signal.ccdf = {{10.0, 3.62}, {1.0, 6.63}, {0.1, 8.39}, {0.01, 9.64}};
    made.signal.seeds = {1, 4294967295U};
    made.bench = {QString("adc,bits=12"), "G", "A"};
    made.points = {goodPoint(), missingPoint()};
    made.curves = {{1, 62.7, -10.99, {{41.0, -33.0, -7.5}, {60.0, {}, -9.0}}}, {2, {}, {}, {}}};
    return made;
}

QString errorOf(const QByteArray& json)
{
    try {
        (void)resultFromJson(json);
    } catch (const ResultError& error) {
        return error.text;
    }
    return "none";
}

// Of a recording with no level in dBm.
NprResult recordedResult()
{
    NprResult made = result();
    made.levelUnit = LevelUnit::Dbfs;
    RecordingFacts facts;
    facts.file = "a.npy";
    facts.sampleRate = 1e8;
    facts.center = -2.5e6;
    facts.samples = 5000000000;
    facts.hasWholePeriods = true;
    facts.averages = 38146;
    facts.segmentLength = 131072;
    facts.level = -12.5;
    facts.peak = -1.5;
    facts.clipped = 0.125;
    facts.clockError = 2.5;
    facts.isInverted = true;
    made.recordings = {facts, RecordingFacts()};
    made.points[0].recorded = RecordedReading{0, 1311, -120.5, 21.5};
    made.points[1].recorded = RecordedReading{1, 4, {}, {}};
    return made;
}

} // namespace

class TestResultFiles : public QObject
{
    Q_OBJECT

private slots:
    void jsonHasItsMembers();
    void whatIsMissingIsNull();
    void jsonReadsBack();
    void unknownMembersArePassedOver();
    void otherFilesAreRefused_data();
    void otherFilesAreRefused();
    void csvHasALineAPoint();
    void marksOfOthersStayOneField();
    void recordingsTellTheirOwnUnitAndHowTheyWereRead();
    void csvOfRecordingsHasTheirColumns();
};

void TestResultFiles::jsonHasItsMembers()
{
    const QJsonObject json = jsonOf(resultToJson(result()));
    QCOMPARE(json["format"].toString(), QString("notchbench-npr"));
    QCOMPARE(json["version"].toInt(), 1);
    QCOMPARE(json["config"].toObject()["NPR"].toObject()["SRate"].toString(), QString("1e+08"));
    const QJsonObject signal = json["signal"].toObject();
    QCOMPARE(signal["ccdf_db"].toObject().keys(), (QStringList{"0.01", "0.1", "1", "10"}));
    QCOMPARE(signal["ccdf_db"].toObject()["0.1"].toDouble(), 8.39);
    QCOMPARE(signal["seeds"].toArray()[1].toDouble(), 4294967295.0);
    const QJsonObject point = json["points"].toArray()[0].toObject();
    QCOMPARE(point["npr_db"].toDouble(), 20.0);
    QCOMPARE(point["evm_percent"].toDouble(), 10.0);
    QCOMPARE(point["center_hz"].toDouble(), -31999969.482421875);
    QCOMPARE(point["marks"].toArray(), (QJsonArray{"margin", "few-peaks"}));
    QCOMPARE(point["passed"], QJsonValue(true));
    const QJsonObject curve = json["curves"].toArray()[0].toObject();
    QCOMPARE(curve["ranges"].toArray()[0].toObject()["range_db"].toDouble(), 25.5);
}

void TestResultFiles::whatIsMissingIsNull()
{
    const QJsonObject json = jsonOf(resultToJson(result()));
    const QJsonObject point = json["points"].toArray()[1].toObject();
    for (const char* name : {"npr_db", "sigma_db", "evm_percent", "passed", "power_dbm"}) {
        QVERIFY2(point[name].isNull(), name);
    }
    const QJsonObject curve = json["curves"].toArray()[1].toObject();
    QVERIFY(curve["peak_npr_db"].isNull() && curve["peak_level_dbm"].isNull());
    const QJsonObject range =
        json["curves"].toArray()[0].toObject()["ranges"].toArray()[1].toObject();
    QVERIFY(range["from_dbm"].isNull() && range["range_db"].isNull());
    QCOMPARE(range["to_dbm"].toDouble(), -9.0);
    NprResult real = result();
    real.bench.simulated.reset();
    QVERIFY(jsonOf(resultToJson(real))["bench"].toObject()["simulated"].isNull());
}

void TestResultFiles::jsonReadsBack()
{
    const QByteArray json = resultToJson(result());
    const NprResult back = resultFromJson(json);
    QCOMPARE(resultToJson(back), json);
    QCOMPARE(back.points[0].level, -20.5);
    QCOMPARE(*back.points[0].passed, true);
    QVERIFY(!back.points[1].npr && !back.points[1].passed);
    QCOMPARE(back.signal.ccdf[0.01], 9.64);
    QCOMPARE(*back.bench.simulated, QString("adc,bits=12"));
    QCOMPARE(*back.curves[0].ranges[0].from, -33.0);
    QCOMPARE(back.config["User"]["I File"], QString("a \"b\""));
}

void TestResultFiles::unknownMembersArePassedOver()
{
    QByteArray json = resultToJson(result());
    json.replace("\"format\"", "\"later\": {\"x\": [1]}, \"format\"");
    QCOMPARE(resultFromJson(json).points.size(), 2);
}

void TestResultFiles::otherFilesAreRefused_data()
{
    QTest::addColumn<QByteArray>("json");
    QTest::addColumn<QString>("words");
    const QByteArray good = resultToJson(result());
    QTest::newRow("empty") << QByteArray() << "no JSON";
    QTest::newRow("cut off") << good.left(good.size() / 2) << "no JSON";
    QTest::newRow("a list") << QByteArray("[]") << "its \"format\" isn't";
    QTest::newRow("another format")
        << QByteArray(R"({"format": "x", "version": 1})") << "isn't \"notchbench-npr\"";
    const auto spoilt = [&good](const char* from, const char* to) {
        return QByteArray(good).replace(from, to);
    };
    QTest::newRow("another version") << spoilt("\"version\": 1", "\"version\": 2")
                                     << "it is of version 2, and this program reads version 1";
    QTest::newRow("text for a number") << spoilt("\"notch\": 2", "\"notch\": \"2\"") << "notch";
    QTest::newRow("half a notch") << spoilt("\"notch\": 2", "\"notch\": 2.5") << "whole number";
    QTest::newRow("no points") << spoilt("\"points\"", "\"dots\"") << "points";
    QTest::newRow("seed") << spoilt("4294967295", "4294967296") << "seeds[1]";
    QTest::newRow("share") << spoilt("\"0.1\"", "\"nan\"") << "ccdf_db.nan\" is no share of time";
    QTest::newRow("level beyond all bounds")
        << spoilt("-20.5", "1e17") << "points[0].level_dbm\" is no number of dB";
    QTest::newRow("ratio beyond all bounds")
        << spoilt("\"npr_db\": 20", "\"npr_db\": -1e300") << "points[0].npr_db\" is no number of";
    QTest::newRow("frequency beyond all bounds")
        << spoilt("\"center_hz\": 0", "\"center_hz\": 1e300") << "center_hz\" is no frequency";
    const QByteArray recorded = resultToJson(recordedResult());
    const auto miscounted = [&recorded](const char* to) {
        return QByteArray(recorded).replace("\"samples\": 5000000000", to);
    };
    QVERIFY(miscounted("") != recorded);
    QTest::newRow("count beyond all bounds")
        << miscounted("\"samples\": 1e300") << "samples\" is no";
    QTest::newRow("negative count") << miscounted("\"samples\": -1") << "recordings[0].samples";
    QTest::newRow("no list") << spoilt("\"seeds\": [", "\"seeds\": 1, \"s\": [") << "seeds";
}

void TestResultFiles::otherFilesAreRefused()
{
    QFETCH(QByteArray, json);
    QFETCH(QString, words);
    QVERIFY2(errorOf(json).contains(words), qPrintable(errorOf(json)));
}

void TestResultFiles::csvHasALineAPoint()
{
    QCOMPARE(
        pointsToCsv(result()),
        QByteArray("level_dbm,notch,center_hz,width_hz,power_dbm,npr_db,sigma_db,evm_percent,"
                   "marks,passed\n"
                   "-20.5,1,-31999969.482421875,1e+06,-39.75,20,0.125,10,margin few-peaks,true\n"
                   "0.1,2,0,2.5,,,,,below-zero,\n"));
}

void TestResultFiles::marksOfOthersStayOneField()
{
    NprResult made = result();
    made.points = {goodPoint()};
    made.points[0].marks = QStringList{"cold, \"wet\"", "windy"};
    QVERIFY(pointsToCsv(made).endsWith(",\"cold, \"\"wet\"\" windy\",true\n"));
}

void TestResultFiles::recordingsTellTheirOwnUnitAndHowTheyWereRead()
{
    const NprResult made = recordedResult();
    const QByteArray json = resultToJson(made);
    const QJsonObject whole = jsonOf(json);
    QCOMPARE(whole["level_unit"].toString(), QString("dBFS"));
    const QJsonObject point = whole["points"].toArray().at(0).toObject();
    QCOMPARE(point["level_dbfs"].toDouble(), -20.5);
    QVERIFY(!point.contains("level_dbm") && !point.contains("power_dbm"));
    const QJsonObject curve = whole["curves"].toArray().at(0).toObject();
    QCOMPARE(curve["peak_level_dbfs"].toDouble(), -10.99);
    QCOMPARE(curve["ranges"].toArray().at(0).toObject()["from_dbfs"].toDouble(), -33.0);
    const QJsonObject facts = whole["recordings"].toArray().at(0).toObject();
    QCOMPARE(facts["way"].toString(), QString("whole-periods"));
    QCOMPARE(facts["samples"].toDouble(), 5e9);
    const NprResult read = resultFromJson(json);
    QCOMPARE(resultToJson(read), json);
    QVERIFY(read.levelUnit == LevelUnit::Dbfs);
    QCOMPARE(read.recordings.at(0).isInverted, std::optional<bool>(true));
    QCOMPARE(read.recordings.at(1).clockError, std::optional<double>());
    QCOMPARE(read.points.at(0).recorded->distortionNpr, std::optional<double>(21.5));
}

void TestResultFiles::csvOfRecordingsHasTheirColumns()
{
    const QByteArray csv = pointsToCsv(recordedResult());
    QCOMPARE(csv, QByteArray("level_dbfs,notch,center_hz,width_hz,power_dbfs,npr_db,sigma_db,"
                             "evm_percent,marks,passed,recording,lines,noise_density_dbfs_hz,"
                             "distortion_npr_db\n"
                             "-20.5,1,-31999969.482421875,1e+06,-39.75,20,0.125,10,"
                             "margin few-peaks,true,0,1311,-120.5,21.5\n"
                             "0.1,2,0,2.5,,,,,below-zero,,1,4,,\n"));
}

QTEST_APPLESS_MAIN(TestResultFiles)
#include "test_result_files.moc"
