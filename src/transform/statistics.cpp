#include "transform/statistics.h"

#include <cmath>

void meanAndStdDev(const QVector<double>& values, double& mean, double& stdDev)
{
    double sum = 0.0;
    for (const double value : values) {
        sum += value;
    }
    mean = sum / values.size();

    double squares = 0.0;
    for (const double value : values) {
        const double deviation = value - mean;
        squares += deviation * deviation;
    }
    stdDev = std::sqrt(squares / values.size());
}

void standardize(const QVector<double>& values, quint32 count, QVector<double>& out, double& mean,
                 double& stdDev)
{
    meanAndStdDev(values, mean, stdDev);
    const int end = static_cast<int>(count);
    for (int i = 0; i < end; ++i) {
        out[i] = (values[i] - mean) / stdDev;
    }
}
