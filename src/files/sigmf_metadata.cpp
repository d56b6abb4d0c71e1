#include "files/sigmf_metadata.h"

#include "setup/measurement_setup.h"

#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>

#include <algorithm>

namespace {

bool hasCarriers(const MeasurementSetup& setup)
{
    return setup.notchOrCarrier == NotchOrCarrier::Carrier;
}

// Lines of the spectrum in frequency order, both ends count.
struct Lines
{
    quint32 first;
    quint32 last;
};

// Those that a row changes, in the arithmetic of SignalData::applyNotches: what lies outside
// wraps, and a carrier stands one line above its index.
Lines linesOf(const Notch& row, bool isCarrier, quint32 length)
{
    const quint32 half = length >> 1;
    const quint32 first = half + static_cast<quint32>(row.startIndex);
    if (isCarrier) {
        return {first + 1, first + 1};
    }
    return {first, half + static_cast<quint32>(row.stopIndex)};
}

QJsonArray annotationsOf(const MeasurementSetup& setup)
{
    const auto length = static_cast<quint32>(setup.signal.length);
    const double half = length >> 1;
    const double lineWidth = setup.sampleRate / length;
    const QString name = hasCarriers(setup) ? "carrier" : "notch";
    QJsonArray annotations;
    int number = 0;
    for (const Notch& row : qAsConst(setup.notches->items)) {
        ++number;
        Lines lines = linesOf(row, hasCarriers(setup), length);
        lines.last = std::min(lines.last, length - 1);
        if (lines.first > lines.last) {
            continue;
        }
        annotations.append(
            QJsonObject{{"core:sample_start", 0},
                        {"core:sample_count", setup.signal.length},
                        {"core:freq_lower_edge", (lines.first - half - 0.5) * lineWidth},
                        {"core:freq_upper_edge", (lines.last - half + 0.5) * lineWidth},
                        {"core:label", name + ' ' + QString::number(number)}});
    }
    return annotations;
}

QJsonObject globalOf(const MeasurementSetup& setup, const QString& program, const QByteArray& hash)
{
    const QString description =
        QStringLiteral("Test signal for noise power ratio, one period of %1 samples. %2: %3.")
            .arg(setup.signal.length)
            .arg(hasCarriers(setup) ? "Carriers" : "Notches")
            .arg(setup.notches->items.size());
    return {{"core:datatype", "cf32_le"},      {"core:version", "1.0.0"},
            {"core:num_channels", 1},          {"core:sha512", QString::fromLatin1(hash.toHex())},
            {"core:description", description}, {"core:recorder", program}};
}

} // namespace

QByteArray sigmfMetadata(const MeasurementSetup& setup, const QString& program,
                         const QByteArray& hash)
{
    QJsonObject global = globalOf(setup, program, hash);
    QJsonArray annotations;
    if (setup.sampleRate > 0.0) {
        global["core:sample_rate"] = setup.sampleRate;
        annotations = annotationsOf(setup);
    }
    const QJsonArray captures{QJsonObject{{"core:sample_start", 0}}};
    const QJsonObject metadata{
        {"global", global}, {"captures", captures}, {"annotations", annotations}};
    return QJsonDocument(metadata).toJson();
}
