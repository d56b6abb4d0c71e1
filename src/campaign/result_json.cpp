#include "campaign/result_json.h"

#include "base/regular_file.h"
#include "campaign/json_values.h"
#include "campaign/recording_json.h"

#include <QJsonDocument>

namespace {

const QString formatName = QStringLiteral("notchbench-npr");
constexpr int formatVersion = 1;

QJsonObject objectOf(const ConfigSections& config)
{
    const auto asItIs = [](const QString& text) { return text; };
    return membersOf(config, asItIs, [&](const QMap<QString, QString>& keys) {
        return membersOf(keys, asItIs, asItIs);
    });
}

QJsonObject objectOf(const SignalFigures& signal)
{
    const QJsonObject ccdf = membersOf(
        signal.ccdf, [](double share) { return QString::number(share); },
        [](double level) { return numberOf(level); });
    return {
        {"length", signal.length},
        {"sample_rate_hz", signal.sampleRate},
        {"crest_factor_db", numberOf(signal.crestFactor)},
        {"peak_between_samples_db", numberOf(signal.peakBetweenSamples)},
        {"ccdf_db", ccdf},
        {"noise_like", signal.noiseLike},
        {"seeds", arrayOf(signal.seeds, [](quint32 seed) { return QJsonValue(qint64{seed}); })}};
}

QJsonObject objectOf(const BenchNames& bench)
{
    return {{"simulated", textOf(bench.simulated)},
            {"generator", bench.generator},
            {"analyzer", bench.analyzer}};
}

// The name of a member that is a level, as in "level_dbm".
QString levelName(const char* stem, LevelUnit unit)
{
    return QLatin1String(stem) + '_' + nameOf(unit).toLower();
}

QJsonObject objectOf(const NprPoint& point, LevelUnit unit)
{
    QJsonObject object{{levelName("level", unit), point.level},
                       {"notch", point.notch},
                       {"center_hz", point.center},
                       {"width_hz", point.width},
                       {levelName("power", unit), numberOf(point.power)},
                       {"npr_db", numberOf(point.npr)},
                       {"sigma_db", numberOf(point.sigma)},
                       {"evm_percent", numberOf(point.evmPercent())},
                       {"marks", QJsonArray::fromStringList(point.marks)},
                       {"passed", truthOf(point.passed)}};
    if (point.recorded) {
        addTo(object, *point.recorded);
    }
    return object;
}

QJsonObject objectOf(const NprRange& range, LevelUnit unit)
{
    return {{"threshold_db", range.threshold},
            {levelName("from", unit), numberOf(range.from)},
            {levelName("to", unit), numberOf(range.to)},
            {"range_db", numberOf(range.range())}};
}

QJsonObject objectOf(const NprCurve& curve, LevelUnit unit)
{
    return {
        {"notch", curve.notch},
        {"peak_npr_db", numberOf(curve.peakNpr)},
        {levelName("peak_level", unit), numberOf(curve.peakLevel)},
        {"ranges", arrayOf(curve.ranges, [unit](const NprRange& r) { return objectOf(r, unit); })}};
}

ConfigSections configFrom(const Member& json)
{
    ConfigSections config;
    json.forEachMember([&config](const QString& section, const Member& keys) {
        keys.forEachMember(
            [&](const QString& key, const Member& text) { config[section][key] = text.text(); });
    });
    return config;
}

SignalFigures signalFrom(const Member& json)
{
    SignalFigures signal;
    signal.length = json["length"].whole();
    signal.sampleRate = json["sample_rate_hz"].number();
    signal.crestFactor = json["crest_factor_db"].decibelsOrNone().value_or(0.0);
    signal.peakBetweenSamples = json["peak_between_samples_db"].decibelsOrNone().value_or(0.0);
    json["ccdf_db"].forEachMember([&signal](const QString& name, const Member& level) {
        bool isNumber = false;
        const double share = name.toDouble(&isNumber);
        if (!isNumber || !std::isfinite(share)) {
            level.refuse("share of time");
        }
        if (const std::optional<double> known = level.decibelsOrNone()) {
            signal.ccdf[share] = *known;
        }
    });
    signal.noiseLike = json["noise_like"].yes();
    json["seeds"].forEachElement([&signal](const Member& seed) { signal.seeds << seed.seed(); });
    return signal;
}

BenchNames benchFrom(const Member& json)
{
    BenchNames names{std::nullopt, json["generator"].text(), json["analyzer"].text()};
    if (!json["simulated"].isMissing()) {
        names.simulated = json["simulated"].text();
    }
    return names;
}

NprPoint pointFrom(const Member& json, LevelUnit unit)
{
    NprPoint point;
    point.level = json[levelName("level", unit)].decibels();
    point.notch = json["notch"].whole();
    point.center = json["center_hz"].hertz();
    point.width = json["width_hz"].hertz();
    point.power = json[levelName("power", unit)].decibelsOrNone().value_or(-HUGE_VAL);
    point.npr = json["npr_db"].decibelsOrNone();
    point.sigma = json["sigma_db"].numberOrNone();
    json["marks"].forEachElement([&point](const Member& mark) { point.addMark(mark.text()); });
    if (!json["passed"].isMissing()) {
        point.passed = json["passed"].yes();
    }
    point.recorded = recordedFrom(json);
    return point;
}

NprCurve curveFrom(const Member& json, LevelUnit unit)
{
    NprCurve curve;
    curve.notch = json["notch"].whole();
    curve.peakNpr = json["peak_npr_db"].decibelsOrNone();
    curve.peakLevel = json[levelName("peak_level", unit)].decibelsOrNone();
    json["ranges"].forEachElement([&curve, unit](const Member& range) {
        curve.ranges << NprRange{range["threshold_db"].decibels(),
                                 range[levelName("from", unit)].decibelsOrNone(),
                                 range[levelName("to", unit)].decibelsOrNone()};
    });
    return curve;
}

void requireVersion(const Member& whole)
{
    if (whole["format"].value != formatName) {
        throw ResultError{QStringLiteral("its \"format\" isn't \"%1\"").arg(formatName)};
    }
    const QJsonValue version = whole["version"].value;
    if (version != formatVersion) {
        throw ResultError{QStringLiteral("it is of version %1, and this program reads version %2")
                              .arg(version.toVariant().toString(), QString::number(formatVersion))};
    }
}

} // namespace

QByteArray resultToJson(const NprResult& result)
{
    const LevelUnit unit = result.levelUnit;
    QJsonObject whole{
        {"format", formatName},
        {"version", formatVersion},
        {"program", result.program},
        {"started", result.started},
        {"config", objectOf(result.config)},
        {"signal", objectOf(result.signal)},
        {"bench", objectOf(result.bench)},
        {"points", arrayOf(result.points, [unit](const NprPoint& p) { return objectOf(p, unit); })},
        {"curves",
         arrayOf(result.curves, [unit](const NprCurve& c) { return objectOf(c, unit); })}};
    if (!result.recordings.isEmpty()) {
        addTo(whole, result.recordings);
        whole["level_unit"] = nameOf(unit);
    }
    return QJsonDocument(whole).toJson();
}

NprResult resultFromJson(const QByteArray& json)
{
    if (json.size() > mostResultBytes) {
        throw ResultError{QStringLiteral("it is too long for a result")};
    }
    QJsonParseError error{};
    const QJsonDocument document = QJsonDocument::fromJson(json, &error);
    if (error.error != QJsonParseError::NoError) {
        throw ResultError{QStringLiteral("it is no JSON: %1 at byte %2")
                              .arg(error.errorString())
                              .arg(error.offset)};
    }
    const Member whole{QString(), document.object()};
    requireVersion(whole);
    NprResult result;
    result.program = whole["program"].text();
    result.started = whole["started"].text();
    result.config = configFrom(whole["config"]);
    result.signal = signalFrom(whole["signal"]);
    result.bench = benchFrom(whole["bench"]);
    result.recordings = recordingsFrom(whole);
    const LevelUnit unit =
        whole["level_unit"].value == nameOf(LevelUnit::Dbfs) ? LevelUnit::Dbfs : LevelUnit::Dbm;
    result.levelUnit = unit;
    whole["points"].forEachElement(
        [&result, unit](const Member& point) { result.points << pointFrom(point, unit); });
    whole["curves"].forEachElement(
        [&result, unit](const Member& curve) { result.curves << curveFrom(curve, unit); });
    return result;
}

NprResult resultFromFile(const QString& path)
{
    QFile file(path);
    if (!openRegular(file)) {
        throw ResultError{!file.exists()              ? QStringLiteral("there is no such file")
                          : !QFileInfo(path).isFile() ? QStringLiteral("it is no file")
                                                      : file.errorString()};
    }
    try {
        return resultFromJson(file.read(qint64{mostResultBytes} + 1));
    } catch (const ResultError& error) {
        throw ResultError{"it is no result of a measurement: " + error.text};
    }
}
