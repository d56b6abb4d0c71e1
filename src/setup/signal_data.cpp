#include "setup/signal_data.h"

#include "base/large_pages.h"

namespace {

QVector<double> zeros(int count)
{
    QVector<double> values;
    values.reserve(count);
    preferLargePages(values.data(), static_cast<quint64>(count) * sizeof(double));
    values.resize(count);
    return values;
}

} // namespace

SignalData::SignalData(quint32 n)
{
    reset(static_cast<qint32>(n));
}

void SignalData::reset(qint32 n)
{
    const int count = n < 1 ? 0 : n;
    iSamples = zeros(count);
    qSamples = zeros(count);
    magnitude = zeros(count);
    phase = zeros(count);
    length = n;
}
