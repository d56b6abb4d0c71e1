#include "fit/givens_qr.h"

#include <cmath>

namespace {

Matrix identity(quint32 size)
{
    Matrix result(size, size);
    for (quint32 i = 0; i < size; ++i) {
        result.at(i, i) = 1.0;
    }
    return result;
}

} // namespace

GivensQR::GivensQR() : q(1, 1), r(1, 1), rotation(2, 2) {}

void GivensQR::decompose(const Matrix& input)
{
    q = identity(input.rows);
    r = input;
    const quint32 columnsToClear = input.rows > input.columns ? input.columns : input.rows - 1;
    for (quint32 column = 0; column < columnsToClear; ++column) {
        for (quint32 row = column + 1; row < input.rows; ++row) {
            setRotation(r.at(row, column), r.at(column, column));
            rotate(r, column, row);
            rotate(q, column, row);
        }
    }
    q = q.transposed();
}

Matrix GivensQR::solve(const Matrix& b) const
{
    const Matrix d = q.transposed().multiply(b);
    const quint32 n = r.columns;
    Matrix x(1, n);
    for (quint32 i = n; i-- > 0;) {
        x.at(0, i) = d.at(i, 0);
        for (quint32 k = i + 1; k < n; ++k) {
            x.at(0, i) -= r.at(i, k) * x.at(0, k);
        }
        x.at(0, i) /= r.at(i, i);
    }
    return x;
}

// The quotient of the two stays within 1, so that no square overflows.
void GivensQR::setRotation(double toClear, double pivot)
{
    double c = 0.0;
    double s = 0.0;
    if (toClear == 0.0) {
        c = pivot >= 0.0 ? 1.0 : -1.0;
    } else if (pivot == 0.0) {
        s = toClear >= 0.0 ? -1.0 : 1.0;
    } else if (std::fabs(toClear) > std::fabs(pivot)) {
        const double t = pivot / toClear;
        s = -1.0 / std::sqrt(t * t + 1.0);
        c = -(t * s);
    } else {
        const double t = toClear / pivot;
        c = 1.0 / std::sqrt(t * t + 1.0);
        s = -(t * c);
    }
    rotation.at(0, 0) = c;
    rotation.at(0, 1) = -s;
    rotation.at(1, 0) = s;
    rotation.at(1, 1) = c;
}

void GivensQR::rotate(Matrix& matrix, quint32 upper, quint32 lower) const
{
    const double c = rotation.at(0, 0);
    const double s = rotation.at(1, 0);
    for (quint32 column = 0; column < matrix.columns; ++column) {
        const double u = matrix.at(upper, column);
        const double v = matrix.at(lower, column);
        matrix.at(upper, column) = c * u - s * v;
        matrix.at(lower, column) = s * u + c * v;
    }
}
