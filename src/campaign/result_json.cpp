#include "campaign/result_json.h"

#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>

#include <cmath>

namespace {

const QString formatName = QStringLiteral("notchbench-npr");
constexpr int formatVersion = 1;

QJsonValue numberOf(std::optional<double> number)
{
    return number && std::isfinite(*number) ? QJsonValue(*number) : QJsonValue();
}

QJsonValue textOf(const std::optional<QString>& text)
{
    return text ? QJsonValue(*text) : QJsonValue();
}

QJsonValue truthOf(std::optional<bool> yes)
{
    return yes ? QJsonValue(*yes) : QJsonValue();
}

template <typename List, typename Convert> QJsonArray arrayOf(const List& list, Convert convert)
{
    QJsonArray array;
    for (const auto& element : list) {
        array.append(convert(element));
    }
    return array;
}

template <typename Map, typename Name, typename Convert>
QJsonObject membersOf(const Map& map, Name name, Convert convert)
{
    QJsonObject object;
    for (auto entry = map.cbegin(); entry != map.cend(); ++entry) {
        object[name(entry.key())] = convert(entry.value());
    }
    return object;
}

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

QJsonObject objectOf(const NprPoint& point)
{
    return {{"level_dbm", point.level},
            {"notch", point.notch},
            {"center_hz", point.center},
            {"width_hz", point.width},
            {"power_dbm", numberOf(point.power)},
            {"npr_db", numberOf(point.npr)},
            {"sigma_db", numberOf(point.sigma)},
            {"evm_percent", numberOf(point.evmPercent())},
            {"marks", QJsonArray::fromStringList(point.marks)},
            {"passed", truthOf(point.passed)}};
}

QJsonObject objectOf(const NprRange& range)
{
    return {{"threshold_db", range.threshold},
            {"from_dbm", numberOf(range.from)},
            {"to_dbm", numberOf(range.to)},
            {"range_db", numberOf(range.range())}};
}

QJsonObject objectOf(const NprCurve& curve)
{
    return {{"notch", curve.notch},
            {"peak_npr_db", numberOf(curve.peakNpr)},
            {"peak_level_dbm", numberOf(curve.peakLevel)},
            {"ranges", arrayOf(curve.ranges, [](const NprRange& r) { return objectOf(r); })}};
}

// A member of an object, with its path for messages.
struct Member
{
    QString path;
    QJsonValue value;

    [[noreturn]] void refuse(const char* expected) const
    {
        throw ResultError{QStringLiteral("\"%1\" is no %2").arg(path, QLatin1String(expected))};
    }

    Member operator[](const char* name) const
    {
        if (!value.isObject()) {
            refuse("object");
        }
        return {path.isEmpty() ? QString(name) : path + '.' + name, value.toObject()[name]};
    }
    double number() const
    {
        if (!value.isDouble()) {
            refuse("number");
        }
        return value.toDouble();
    }
    int whole() const
    {
        const double found = number();
        if (found != std::floor(found) || std::abs(found) > 2147483647.0) {
            refuse("whole number");
        }
        return static_cast<int>(found);
    }
    quint32 seed() const
    {
        const double found = number();
        if (!(found >= 0.0 && found <= 4294967295.0) || found != std::floor(found)) {
            refuse("seed");
        }
        return static_cast<quint32>(found);
    }
    QString text() const
    {
        if (!value.isString()) {
            refuse("text");
        }
        return value.toString();
    }
    bool yes() const
    {
        if (!value.isBool()) {
            refuse("truth value");
        }
        return value.toBool();
    }
    bool isMissing() const { return value.isNull() || value.isUndefined(); }
    std::optional<double> numberOrNone() const
    {
        return isMissing() ? std::nullopt : std::make_optional(number());
    }
    // Calls take(element) for each element of a list.
    template <typename Take> void forEachElement(Take take) const
    {
        if (!value.isArray()) {
            refuse("list");
        }
        int index = 0;
        for (const QJsonValue element : value.toArray()) {
            take(Member{QStringLiteral("%1[%2]").arg(path).arg(index++), element});
        }
    }
    // Calls take(name, member) for each member of an object.
    template <typename Take> void forEachMember(Take take) const
    {
        if (!value.isObject()) {
            refuse("object");
        }
        const QJsonObject object = value.toObject();
        for (auto member = object.begin(); member != object.end(); ++member) {
            take(member.key(), Member{path + '.' + member.key(), member.value()});
        }
    }
};

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
    signal.crestFactor = json["crest_factor_db"].numberOrNone().value_or(0.0);
    signal.peakBetweenSamples = json["peak_between_samples_db"].numberOrNone().value_or(0.0);
    json["ccdf_db"].forEachMember([&signal](const QString& share, const Member& level) {
        if (const std::optional<double> known = level.numberOrNone()) {
            signal.ccdf[share.toDouble()] = *known;
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

NprPoint pointFrom(const Member& json)
{
    NprPoint point;
    point.level = json["level_dbm"].number();
    point.notch = json["notch"].whole();
    point.center = json["center_hz"].number();
    point.width = json["width_hz"].number();
    point.power = json["power_dbm"].numberOrNone().value_or(-HUGE_VAL);
    point.npr = json["npr_db"].numberOrNone();
    point.sigma = json["sigma_db"].numberOrNone();
    json["marks"].forEachElement([&point](const Member& mark) { point.addMark(mark.text()); });
    if (!json["passed"].isMissing()) {
        point.passed = json["passed"].yes();
    }
    return point;
}

NprCurve curveFrom(const Member& json)
{
    NprCurve curve;
    curve.notch = json["notch"].whole();
    curve.peakNpr = json["peak_npr_db"].numberOrNone();
    curve.peakLevel = json["peak_level_dbm"].numberOrNone();
    json["ranges"].forEachElement([&curve](const Member& range) {
        curve.ranges << NprRange{range["threshold_db"].number(), range["from_dbm"].numberOrNone(),
                                 range["to_dbm"].numberOrNone()};
    });
    return curve;
}

} // namespace

QByteArray resultToJson(const NprResult& result)
{
    const QJsonObject whole{
        {"format", formatName},
        {"version", formatVersion},
        {"program", result.program},
        {"started", result.started},
        {"config", objectOf(result.config)},
        {"signal", objectOf(result.signal)},
        {"bench", objectOf(result.bench)},
        {"points", arrayOf(result.points, [](const NprPoint& p) { return objectOf(p); })},
        {"curves", arrayOf(result.curves, [](const NprCurve& c) { return objectOf(c); })}};
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
    if (whole["format"].value != formatName || whole["version"].value != formatVersion) {
        throw ResultError{QStringLiteral("it is no result of version %1").arg(formatVersion)};
    }
    NprResult result;
    result.program = whole["program"].text();
    result.started = whole["started"].text();
    result.config = configFrom(whole["config"]);
    result.signal = signalFrom(whole["signal"]);
    result.bench = benchFrom(whole["bench"]);
    whole["points"].forEachElement(
        [&result](const Member& point) { result.points << pointFrom(point); });
    whole["curves"].forEachElement(
        [&result](const Member& curve) { result.curves << curveFrom(curve); });
    return result;
}
