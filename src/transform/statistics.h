// Mean and standard deviation of a vector, in its order of summation.
#pragma once

#include <QVector>

// stdDev is the population form: the root of the mean squared deviation. An empty vector
// gives not-a-number in both.
void meanAndStdDev(const QVector<double>& values, double& mean, double& stdDev);

// out[i] = (values[i] - mean) / stdDev for i below count, mean and stdDev over all of
// values. values and out may be the same vector and must hold count elements. A constant
// vector divides by 0 and yields not-a-number.
void standardize(const QVector<double>& values, quint32 count, QVector<double>& out, double& mean,
                 double& stdDev);
