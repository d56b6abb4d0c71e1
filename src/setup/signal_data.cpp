#include "setup/signal_data.h"

SignalData::SignalData(quint32 n)
{
    reset(static_cast<qint32>(n));
}

void SignalData::reset(qint32 n)
{
    const int count = n < 1 ? 0 : n;
    iSamples = QVector<double>(count, 0.0);
    qSamples = QVector<double>(count, 0.0);
    magnitude = QVector<double>(count, 0.0);
    phase = QVector<double>(count, 0.0);
    length = n;
}
