#include "cli/recording_table.h"

#include "cli/text_table.h"

#include <QFileInfo>

namespace {

QString decimals(std::optional<double> value, int count)
{
    return value ? QString::number(*value, 'f', count) : QStringLiteral("-");
}

QString yesOrNo(std::optional<bool> value)
{
    return !value ? QStringLiteral("-") : *value ? QStringLiteral("yes") : QStringLiteral("no");
}

QString wayOf(const RecordingFacts& facts)
{
    const QString things =
        facts.hasWholePeriods ? QStringLiteral("whole periods") : QStringLiteral("periodograms");
    return QStringLiteral("%1 %2 of %3").arg(facts.averages).arg(things).arg(facts.segmentLength);
}

} // namespace

QString recordingTable(const QVector<RecordingFacts>& recordings, const Console& console)
{
    TextTable table(
        {Align::Left, Align::Left, Align::Right, Align::Right, Align::Right, Align::Right,
         Align::Left},
        {"recording", "read as", "level/dBFS", "peak/dBFS", "clipped/%", "clock/ppm", "inverted"});
    for (const RecordingFacts& facts : recordings) {
        table.addRow({QFileInfo(facts.file).fileName(), wayOf(facts), decimals(facts.level, 2),
                      decimals(facts.peak, 2), decimals(facts.clipped, 4),
                      decimals(facts.clockError, 3), yesOrNo(facts.isInverted)});
    }
    return table.text(console);
}
