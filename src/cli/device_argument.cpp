#include "cli/device_argument.h"

#include "cli/exit_status.h"
#include "cli/nearest_name.h"
#include "dut/chain_figures.h"

#include <algorithm>

namespace {

const QString rippleKey = QStringLiteral("ripple");

// The keys of one device alone; those that aren't here belong to all.
struct OwnKeys
{
    const char* device;
    QStringList keys;
};

const QVector<OwnKeys>& ownKeys()
{
    static const QVector<OwnKeys> all = {
        {"rapp", {"saturation", "smoothness"}},
        {"soft", {"saturation"}},
        {"saleh", {"saturation"}},
        {"cubic", {"intercept"}},
        {"adc", {"bits", "full-scale", "loading"}},
    };
    return all;
}

const ChainFigure& figureNamed(const QString& name)
{
    return *std::find_if(chainFigures().begin(), chainFigures().end(),
                         [&name](const ChainFigure& figure) { return figure.name == name; });
}

void storeRipple(const QString& value, const QString& what, Chain& chain)
{
    const std::optional<Ripple> ripple = rippleOf(value, ':');
    if (!ripple) {
        failUsage(what + ": ripple takes DB:PERIOD_HZ, such as 1:5e6, not \"" + value + '"');
    }
    chain.ripple = *ripple;
}

void storeFigure(const ChainFigure& figure, const QString& value, const QString& what, Chain& chain)
{
    bool isNumber = false;
    const double number = value.toDouble(&isNumber);
    if (!isNumber || !figure.allows(number)) {
        failUsage(QStringLiteral("%1: %2 takes a %3 from %4 to %5, not \"%6\"")
                      .arg(what, figure.name, figure.whole ? "whole number" : "number",
                           QString::number(figure.lowest), QString::number(figure.highest), value));
    }
    figure.store(chain, number);
}

} // namespace

QStringList keysOfDevice(const QString& device)
{
    if (!deviceNames().contains(device)) {
        return {};
    }
    QStringList keys;
    for (const ChainFigure& figure : chainFigures()) {
        const bool isOthers =
            std::any_of(ownKeys().begin(), ownKeys().end(),
                        [&](const OwnKeys& own) { return own.keys.contains(figure.name); });
        const bool isOwn = std::any_of(ownKeys().begin(), ownKeys().end(), [&](const OwnKeys& own) {
            return own.device == device && own.keys.contains(figure.name);
        });
        if (isOwn || !isOthers) {
            keys << figure.name;
        }
    }
    return keys << rippleKey;
}

Chain chainOf(const QString& text, const QString& what)
{
    Chain chain;
    QStringList words = text.split(',');
    chain.device.name = words.takeFirst();
    if (!deviceNames().contains(chain.device.name)) {
        failUsage(what + ": unknown device " + chain.device.name +
                  didYouMean(chain.device.name, deviceNames()) + "; there are " +
                  deviceNames().join(", "));
    }
    const QStringList keys = keysOfDevice(chain.device.name);
    QStringList given;
    for (const QString& word : qAsConst(words)) {
        const QString key = word.section('=', 0, 0);
        const QString value = word.section('=', 1);
        if (!keys.contains(key)) {
            failUsage(what + ": " + chain.device.name + " has no key " + key +
                      didYouMean(key, keys) + "; it has " + keys.join(", "));
        }
        if (given.contains(key)) {
            failUsage(what + ": " + key + " is given twice");
        }
        if (key == rippleKey) {
            storeRipple(value, what, chain);
        } else {
            storeFigure(figureNamed(key), value, what, chain);
        }
        given << key;
    }
    if (given.contains("full-scale") && given.contains("loading")) {
        failUsage(what + ": full-scale and loading exclude each other");
    }
    return chain;
}

Options deviceKeys()
{
    Options keys;
    for (const ChainFigure& figure : chainFigures()) {
        keys << Option{figure.name, figure.unit, figure.description};
    }
    return keys << Option{rippleKey, "DB:PERIOD_HZ",
                          "Ripple of the cables in front of the device: so many dB from top to "
                          "bottom, once up and down every so many Hz, highest at the carrier "
                          "(default: none)."};
}
