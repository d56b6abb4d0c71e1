#include "recording/sigmf_recording.h"

#include "base/regular_file.h"

#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>

#include <cmath>

namespace {

constexpr qint64 mostMetadata = 64 << 20; // bytes

QJsonObject metadataOf(const QString& path)
{
    QFile file(path);
    if (!openRegular(file)) {
        refuseFile(path, file.exists() ? file.errorString() : QString("there is no such file"));
    }
    const QByteArray text = file.read(mostMetadata + 1);
    if (text.size() > mostMetadata) {
        refuseFile(path, QStringLiteral("it is too long for metadata"));
    }
    QJsonParseError error{};
    const QJsonDocument document = QJsonDocument::fromJson(text, &error);
    if (error.error != QJsonParseError::NoError || !document.isObject()) {
        refuseFile(path, "it is no JSON: " + error.errorString());
    }
    return document.object();
}

// A whole number of samples or bytes; 0 where there is none.
qint64 countOf(const QJsonObject& object, const char* name, const QString& path)
{
    const QJsonValue value = object[QLatin1String(name)];
    const double number = value.toDouble();
    constexpr double most = 1LL << 53;
    if (!(value.isUndefined() || value.isDouble()) || !(number >= 0.0 && number <= most) ||
        number != std::floor(number)) {
        refuseFile(path, QStringLiteral("\"%1\" is no count").arg(QLatin1String(name)));
    }
    return static_cast<qint64>(number);
}

const SampleType* datatypeOf(const QJsonObject& global, const QString& path)
{
    const QString name = global[QLatin1String("core:datatype")].toString();
    if (name.endsWith("_be")) {
        refuseFile(path, "its samples are big-endian (" + name + "); save them as little-endian");
    }
    const QString plain = name.endsWith("_le") ? name.left(name.size() - 3) : name;
    const SampleType* const type = sampleTypeOf(plain);
    const bool needsOrder = type != nullptr && type->integerBits != 8;
    if (type == nullptr || needsOrder == (plain == name)) {
        refuseFile(path,
                   "samples of \"core:datatype\" \"" + name +
                       "\" aren't taken; cf32_le, cf64_le, ci16_le, ci8, rf32_le, rf64_le and "
                       "ri16_le are");
    }
    return type;
}

QString dataPathOf(const QString& metaPath, const QJsonObject& global)
{
    const QString other = global[QLatin1String("core:dataset")].toString();
    if (other.isEmpty()) {
        return metaPath.left(metaPath.size() - 4) + "data";
    }
    if (other.contains('/') || other.contains('\\')) {
        refuseFile(metaPath, "\"core:dataset\" " + other + " isn't beside it");
    }
    return QFileInfo(metaPath).path() + '/' + other;
}

// Where the samples of the first capture lie.
void takeCapture(const QJsonObject& global, const QJsonArray& captures, qint64 dataBytes,
                 Recording& recording)
{
    const QJsonObject first = captures.at(0).toObject();
    const qint64 firstIndex = countOf(global, "core:offset", recording.name);
    const qint64 start = countOf(first, "core:sample_start", recording.name) - firstIndex;
    const qint64 header = countOf(first, "core:header_bytes", recording.name);
    const int bytes = recording.type->bytes;
    recording.samples =
        (dataBytes - header - countOf(global, "core:trailing_bytes", recording.name)) / bytes -
        start;
    if (start < 0 || recording.samples <= 0) {
        refuseFile(recording.name, QStringLiteral("its data ends before the first capture begins"));
    }
    recording.offset = header + start * bytes;
    if (captures.size() > 1) {
        const qint64 next =
            countOf(captures.at(1).toObject(), "core:sample_start", recording.name) - firstIndex;
        recording.samples = std::min(recording.samples, std::max<qint64>(next - start, 0));
        recording.remarks << QStringLiteral("%1: only the first of %2 captures is read")
                                 .arg(recording.name)
                                 .arg(captures.size());
    }
    const double frequency = first[QLatin1String("core:frequency")].toDouble();
    if (frequency != 0.0) { // 0 stands for baseband
        recording.frequency = frequency;
    }
}

void requireOneChannel(const QJsonObject& global, const QString& path)
{
    if (global.contains(QLatin1String("core:num_channels")) &&
        countOf(global, "core:num_channels", path) != 1) {
        refuseFile(path, QStringLiteral("it has several channels; save one"));
    }
}

} // namespace

Recording openSigmf(const QString& path)
{
    const QString metaPath = path.endsWith("data") ? path.left(path.size() - 4) + "meta" : path;
    const QJsonObject metadata = metadataOf(metaPath);
    const QJsonObject global = metadata[QLatin1String("global")].toObject();
    requireOneChannel(global, metaPath);
    Recording recording;
    recording.name = metaPath;
    recording.type = datatypeOf(global, metaPath);
    const QString dataPath = dataPathOf(metaPath, global);
    if (!QFileInfo(dataPath).isFile()) {
        refuseFile(metaPath, "its samples are missing: there is no file " + dataPath);
    }
    recording.paths = QStringList{dataPath};
    const double rate = global[QLatin1String("core:sample_rate")].toDouble();
    if (rate > 0.0 && std::isfinite(rate)) {
        recording.sampleRate = rate;
    }
    recording.sha512 = global[QLatin1String("core:sha512")].toString().toLatin1().toLower();
    takeCapture(global, metadata[QLatin1String("captures")].toArray(), QFileInfo(dataPath).size(),
                recording);
    return recording;
}
