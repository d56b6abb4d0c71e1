#include "fit/polyfit.h"

#include "fit/givens_qr.h"

#include <stdexcept>

namespace {

// The row of the design matrix that belongs to x: its powers from 0.
void setPowers(Matrix& powers, double x)
{
    double power = 1.0;
    for (quint32 j = 0; j < powers.columns; ++j) {
        powers.at(0, j) = power;
        power *= x;
    }
}

} // namespace

// With A the design matrix, the sums of At x A and At x y are gathered point by point. Each
// element sees the same products in the same order as in Matrix::multiply, so the bits are the
// same, and A, which for the longest trace takes a gigabyte, is never there as a whole.
QVector<double> polyfit(const QVector<double>& x, const QVector<double>& y, quint32 degree,
                        const std::atomic<bool>* abandoned)
{
    if (x.size() != y.size()) {
        throw std::invalid_argument("X and Y vector sizes do not match");
    }
    const auto m = static_cast<quint32>(x.size());
    const quint32 n = degree + 1;
    Matrix values(m, 1);
    values.data = y;
    Matrix powers(1, n);
    Matrix left(n, n);
    Matrix right(n, 1);
    for (quint32 point = 0; point < m; ++point) {
        if (abandoned != nullptr && *abandoned) {
            return {};
        }
        setPowers(powers, x.at(static_cast<int>(point)));
        for (quint32 i = 0; i < n; ++i) {
            for (quint32 j = 0; j < n; ++j) {
                left.at(i, j) += powers.at(0, i) * powers.at(0, j);
            }
            right.at(i, 0) += powers.at(0, i) * values.at(point, 0);
        }
    }
    GivensQR qr;
    qr.decompose(left);
    return qr.solve(right).data;
}
