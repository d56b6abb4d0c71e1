// The least-squares polynomial through points.
#pragma once

#include <QVector>

#include <atomic>

// The coefficients of the powers 0 to degree, from the normal equations. The caller scales x to
// about -1 to 1; nothing is scaled here. Fewer distinct points than coefficients give
// infinities or not-a-number. std::invalid_argument when the sizes differ, std::range_error when
// they are 0. Empty when abandoned becomes true meanwhile. Any thread.
QVector<double> polyfit(const QVector<double>& x, const QVector<double>& y, quint32 degree,
                        const std::atomic<bool>* abandoned = nullptr);
