#include "cli/progress.h"

#include <cmath>
#include <utility>

Progress::Progress(Console& itsConsole, QString things, bool quiet)
    : console(itsConsole), what(std::move(things)), isShown(itsConsole.showsProgress() && !quiet)
{
    sinceBegin.start();
}

Progress::~Progress()
{
    console.setProgress({});
}

void Progress::show(qint64 done, qint64 total)
{
    constexpr qint64 interval = 100; // ms
    const qint64 now = sinceBegin.elapsed();
    if (!isShown || (lastShown > 0 && now - lastShown < interval)) {
        return;
    }
    lastShown = std::max<qint64>(now, 1);
    console.setProgress(progressLine(what, done, total, now));
}

QString progressLine(const QString& things, qint64 done, qint64 total, qint64 elapsedMs)
{
    QString counted = QStringLiteral("%1 of %2 %3").arg(done).arg(total).arg(things);
    if (done <= 0 || elapsedMs <= 0) {
        return counted;
    }
    const double perSecond = 1000.0 * double(done) / double(elapsedMs);
    const auto left = static_cast<qint64>(std::ceil(double(total - done) / perSecond)); // s
    return QStringLiteral("%1, %2/s, %3:%4 left")
        .arg(counted, QString::number(perSecond, 'g', 3))
        .arg(left / 60)
        .arg(left % 60, 2, 10, QLatin1Char('0'));
}
