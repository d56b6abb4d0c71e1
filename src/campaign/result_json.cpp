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

QJsonObject objectOf(const ConfigSections& config)
{
    QJsonObject sections;
    for (auto section = config.cbegin(); section != config.cend(); ++section) {
        QJsonObject keys;
        for (auto key = section->cbegin(); key != section->cend(); ++key) {
            keys[key.key()] = key.value();
        }
        sections[section.key()] = keys;
    }
    return sections;
}

QJsonObject objectOf(const SignalFigures& signal)
{
    QJsonObject ccdf;
    for (auto share = signal.ccdf.cbegin(); share != signal.ccdf.cend(); ++share) {
        ccdf[QString::number(share.key())] = numberOf(share.value());
    }
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
    QVector<Member> elements() const
    {
        if (!value.isArray()) {
            refuse("list");
        }
        QVector<Member> all;
        for (const QJsonValue element : value.toArray()) {
            all << Member{QStringLiteral("%1[%2]").arg(path).arg(all.size()), element};
        }
        return all;
    }
    QMap<QString, Member> members() const
    {
        if (!value.isObject()) {
            refuse("object");
        }
        QMap<QString, Member> all;
        const QJsonObject object = value.toObject();
        for (auto member = object.begin(); member != object.end(); ++member) {
            all[member.key()] = {path + '.' + member.key(), member.value()};
        }
        return all;
    }
};

ConfigSections configFrom(const Member& json)
{
    ConfigSections config;
    const QMap<QString, Member> sections = json.members();
    for (auto section = sections.cbegin(); section != sections.cend(); ++section) {
        const QMap<QString, Member> keys = section->members();
        for (auto key = keys.cbegin(); key != keys.cend(); ++key) {
            config[section.key()][key.key()] = key->text();
        }
    }
    return config;
}

SignalFigures signalFrom(const Member& json)
{
    SignalFigures signal;
    signal.length = json["length"].whole();
    signal.sampleRate = json["sample_rate_hz"].number();
    signal.crestFactor = json["crest_factor_db"].numberOrNone().value_or(0.0);
    signal.peakBetweenSamples = json["peak_between_samples_db"].numberOrNone().value_or(0.0);
    const QMap<QString, Member> ccdf = json["ccdf_db"].members();
    for (auto share = ccdf.cbegin(); share != ccdf.cend(); ++share) {
        signal.ccdf[share.key().toDouble()] = share->number();
    }
    signal.noiseLike = json["noise_like"].yes();
    for (const Member& seed : json["seeds"].elements()) {
        signal.seeds << static_cast<quint32>(static_cast<qint64>(seed.number()));
    }
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
    for (const Member& mark : json["marks"].elements()) {
        point.addMark(mark.text());
    }
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
    for (const Member& range : json["ranges"].elements()) {
        curve.ranges << NprRange{range["threshold_db"].number(), range["from_dbm"].numberOrNone(),
                                 range["to_dbm"].numberOrNone()};
    }
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
    for (const Member& point : whole["points"].elements()) {
        result.points << pointFrom(point);
    }
    for (const Member& curve : whole["curves"].elements()) {
        result.curves << curveFrom(curve);
    }
    return result;
}
